/// Post-classification: each sample takes colour and opacity from the
/// table at its own value, and the opacity is corrected for the step size.
#ifndef _SIMPLETRANSFERFUNCTION_H_
#define _SIMPLETRANSFERFUNCTION_H_

#include <OpenSG/Transferfunction.h>

class SimpleTransferfunction : public Transferfunction
{
  public:
    /// As Transferfunction's.
    explicit SimpleTransferfunction(bool unused = false);
    /// As Transferfunction's copy: nothing carried over.
    SimpleTransferfunction(const SimpleTransferfunction &source);
    virtual ~SimpleTransferfunction(void);

    /// The 1-D text for mode 0, the 2-D text for mode 1, nothing otherwise.
    virtual std::string getFragmentShaderString(void);

    /// Adds the table texture and sets "transferFunction" to its unit and
    /// "correctionFactor" to 200.
    virtual void setMaterialParameter(osg::ChunkMaterialPtr &material,
                                      osg::SHLChunkPtr      &shader,
                                      int                   &textureUnit,
                                      VolumeData            *volumeData);

    virtual bool load(std::string fileName);
    virtual bool setFunc(osg::TextureChunkPtr texture);

    /// Mode 0 bakes 256 bytes, any other mode 65536 halves; the bake itself
    /// follows the object's mode, so callers pass the current one.
    virtual void createLinearTransfer(int mode);

    /// Builds the table from the control points when there is none or when
    /// its type doesn't fit the mode; a fitting table is left as it is.
    virtual void init(VolumeData *volumeData);

    /// Classification of 8-bit volumes through a 1-D lookup.
    static const char *const _fragmentShader1D;
    /// Classification of 16-bit volumes: high byte picks the row.
    static const char *const _fragmentShader2D;
    /// Opacity correction for the step size, then premultiplied colour.
    static const char *const _correctionShader;

  private:
    SimpleTransferfunction &operator=(const SimpleTransferfunction &source);
};

#endif
