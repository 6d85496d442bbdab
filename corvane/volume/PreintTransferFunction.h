/// Pre-integrated classification: a ray segment between two samples takes
/// the transfer function's average over the whole value range between
/// them, so thin features between samples aren't missed.
///
/// For 8-bit volumes the averages are finished in a 256 x 256 table of half
/// floats, one texel a pair of values. For 16-bit volumes only the running
/// integral of the 65536 entries is stored (256 x 256 floats), and the
/// shader forms the average from two lookups.
#ifndef _PREINTTRANSFERFUNCTION_H_
#define _PREINTTRANSFERFUNCTION_H_

#include <OpenSG/Transferfunction.h>

class PreintTransferFunction : public Transferfunction
{
  public:
    /// As Transferfunction's, without a pre-integration table yet.
    explicit PreintTransferFunction(bool unused = false);
    /// As Transferfunction's copy: nothing carried over.
    PreintTransferFunction(const PreintTransferFunction &source);
    virtual ~PreintTransferFunction(void);

    /// The classification text of the mode, then correction and
    /// compositing.
    virtual std::string getFragmentShaderString(void);

    /// Adds the pre-integration table ("preIntTable") and, for 16-bit
    /// volumes, the plain table ("transferFunction"), and sets
    /// "correctionFactor" to 200.
    virtual void setMaterialParameter(osg::ChunkMaterialPtr &material,
                                      osg::SHLChunkPtr      &shader,
                                      int                   &textureUnit,
                                      VolumeData            *volumeData);

    virtual bool load(std::string fileName);
    virtual bool setFunc(osg::TextureChunkPtr texture);
    virtual void createLinearTransfer(int mode);

    /// Takes the mode from the volume (1 for 16-bit voxels, else 0),
    /// rebuilds a table that doesn't fit it, then the pre-integration.
    virtual void init(VolumeData *volumeData);

    /// Builds the pre-integration table of the mode from a table image.
    /// False, with a warning, for a null image; a mode other than 0 or 1
    /// builds nothing and succeeds.
    bool calcPreIntTable(osg::ImagePtr transferFunction);

    /// The pre-integration table; NullFC before calcPreIntTable.
    osg::TextureChunkPtr getPreIntTable(void) const { return _preIntTable; }

    /// 8-bit volumes: one lookup of the pair (current, previous).
    static const char *const _fragmentShader8Bit;
    /// 16-bit volumes: difference of two integral lookups, or the plain
    /// table where the segment has no extent.
    static const char *const _fragmentShader16Bit;
    /// Opacity correction that rescales the premultiplied colour.
    static const char *const _correctionShader;

  private:
    PreintTransferFunction &operator=(const PreintTransferFunction &source);

    osg::TextureChunkPtr _preIntTable;
};

#endif
