/// The ray-generation strategy of the ray caster: where a ray starts and
/// where it runs, read from the start and direction images that the
/// position passes rendered.
#ifndef _RAYGENERATION_H_
#define _RAYGENERATION_H_

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGSHLChunk.h>

#include <string>

class VolumeData;

class RayGeneration
{
  public:
    virtual ~RayGeneration(void) {}

    /// The text of getRayDirection and getRayStartPosition.
    virtual std::string getFragmentShaderString(void) = 0;

    /// Binds what the text needs; the ray texts need nothing of their own.
    virtual void setMaterialParameter(osg::ChunkMaterialPtr &material,
                                      osg::SHLChunkPtr      &shader,
                                      int                   &textureUnit,
                                      VolumeData            *volumeData) = 0;

    virtual void init(VolumeData *volumeData);

  protected:
    /// getRayDirection, the same for every ray generation.
    static const char *const _directionShader;
};

/// Each ray starts on the grid of steps measured from where its line enters
/// the unit cube, so neighbouring rays sample in the same planes.
class SimpleRay : public RayGeneration
{
  public:
    std::string getFragmentShaderString(void) override;
    void        setMaterialParameter(osg::ChunkMaterialPtr &material,
                                     osg::SHLChunkPtr      &shader,
                                     int                   &textureUnit,
                                     VolumeData            *volumeData) override;
};

/// As SimpleRay, and the four pixels of each 2x2 block start a quarter step
/// apart, which turns the wood-grain pattern of coarse steps into noise.
class InterleavedRay : public RayGeneration
{
  public:
    std::string getFragmentShaderString(void) override;
    void        setMaterialParameter(osg::ChunkMaterialPtr &material,
                                     osg::SHLChunkPtr      &shader,
                                     int                   &textureUnit,
                                     VolumeData            *volumeData) override;
};

#endif
