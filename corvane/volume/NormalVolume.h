/// The normal strategy of the ray caster: how the shader's getNormal comes
/// by the gradient of the volume at a sample.
///
/// OnlineCentralDiffNormal and OnlineSobelNormal differentiate in the
/// shader; PreCentralDiffNormal reads a normal volume computed once on the
/// CPU. The gradients of the online strategies are not normalised: their
/// length is what gradient-opacity shading reads.
#ifndef _NORMALVOLUME_H_
#define _NORMALVOLUME_H_

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGSHLChunk.h>

#include <string>

class VolumeData;

class NormalVolume
{
  public:
    virtual ~NormalVolume(void) {}

    /// The text of getNormal(inout Ray, inout SamplePoint, inout SamplePoint).
    virtual std::string getFragmentShaderString(void) = 0;

    /// Adds what getNormal reads to the material and binds its uniforms,
    /// counting textureUnit up once for each texture added.
    virtual void setMaterialParameter(osg::ChunkMaterialPtr &material,
                                      osg::SHLChunkPtr      &shader,
                                      int                   &textureUnit,
                                      VolumeData            *volumeData) = 0;

    virtual void init(VolumeData *volumeData);
};

/// Central differences of the six neighbours, in the shader.
class OnlineCentralDiffNormal : public NormalVolume
{
  public:
    std::string getFragmentShaderString(void) override;
    void        setMaterialParameter(osg::ChunkMaterialPtr &material,
                                     osg::SHLChunkPtr      &shader,
                                     int                   &textureUnit,
                                     VolumeData            *volumeData) override;
};

/// The 3-D Sobel operator over the 26 neighbours, in the shader.
class OnlineSobelNormal : public NormalVolume
{
  public:
    std::string getFragmentShaderString(void) override;
    void        setMaterialParameter(osg::ChunkMaterialPtr &material,
                                     osg::SHLChunkPtr      &shader,
                                     int                   &textureUnit,
                                     VolumeData            *volumeData) override;
};

#endif
