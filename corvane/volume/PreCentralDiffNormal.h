/// The normal strategy that differentiates the volume once on the CPU:
/// central differences of the six neighbours, normalised and stored as a
/// second 3-D texture (GL_RGB8, each component 127 * n + 127), so that the
/// shader's getNormal is one texture read.
///
/// An application may hand in a normals chunk of its own; one whose image
/// has the volume's size is used as it is, one of another size is refilled.
#ifndef _PRECENTRALDIFFNORMAL_H_
#define _PRECENTRALDIFFNORMAL_H_

#include <OpenSG/NormalVolume.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGTextureChunk.h>

#include <string>

class PreCentralDiffNormal : public NormalVolume
{
  public:
    PreCentralDiffNormal(void);
    /// Takes normals (which may be NullFC) with one reference.
    explicit PreCentralDiffNormal(osg::TextureChunkPtr normals);
    ~PreCentralDiffNormal(void) override;

    /// getNormal: the normal volume's texel at the sample, mapped back to
    /// -1..1 (not renormalised).
    std::string getFragmentShaderString(void) override;

    /// Adds the normals texture and binds the sampler "normalVolume" to
    /// its unit.
    void setMaterialParameter(osg::ChunkMaterialPtr &material,
                              osg::SHLChunkPtr      &shader,
                              int                   &textureUnit,
                              VolumeData            *volumeData) override;

    /// Builds the normals texture for the volume, unless the chunk already
    /// holds an image of the volume's size.
    void init(VolumeData *volumeData) override;

    /// The normals texture; NullFC before init.
    osg::TextureChunkPtr getNormalsTextureChunk(void) const { return _normalsTexture; }

    /// Differentiates inImage (one byte a voxel; anything else is reduced
    /// to 8-bit luminance first, through a temporary that inImage then
    /// refers to) into outImage, one byte a channel, the channels named by
    /// outputFormat (1 to 4 of):
    ///   s  the voxel's value          S  the same, 0 on the volume's faces
    ///   x, y, z  the normal, 127 * n + 127
    ///   g  the gradient's length (saturated)
    ///   t, p  the normal's polar and azimuth angles over 0..255
    /// The gradient v(i-1) - v(i+1) points from high values to low ones;
    /// voxels outside the volume count as 0. False for a format of another
    /// length (with a log line) or with an unknown letter.
    bool createPrecomputedNormals(osg::ImagePtr     &inImage,
                                  osg::ImagePtr     &outImage,
                                  std::string const &outputFormat);

  private:
    PreCentralDiffNormal(const PreCentralDiffNormal &source);
    PreCentralDiffNormal &operator=(const PreCentralDiffNormal &source);

    int                  _computeNormals;
    VolumeData          *_volumeData;
    osg::TextureChunkPtr _normalsTexture;
};

#endif
