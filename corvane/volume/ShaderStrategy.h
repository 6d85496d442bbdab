#ifndef _SHADERSTRATEGY_H_
#define _SHADERSTRATEGY_H_

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGSHLChunk.h>

#include <string>

class VolumeData;

/// What every strategy of the ray caster offers: a group of GLSL functions
/// for the concatenated shader, and the binding of what they read.
class ShaderStrategy
{
  public:
    virtual ~ShaderStrategy(void) {}

    /// The strategy's functions, as they stand in the ray-casting shader.
    virtual std::string getFragmentShaderString(void) = 0;

    /// Adds what the functions read to the material and binds their
    /// uniforms, counting textureUnit up once for each texture added.
    virtual void setMaterialParameter(osg::ChunkMaterialPtr &material,
                                      osg::SHLChunkPtr      &shader,
                                      int                   &textureUnit,
                                      VolumeData            *volumeData) = 0;

    /// Prepares what the strategy needs from the volume (textures, tables);
    /// nothing by default.
    virtual void init(VolumeData *) {}
};

/// The override list of a concrete strategy.
#define CORVANE_SHADER_STRATEGY                                                      \
    std::string getFragmentShaderString(void) override;                              \
    void        setMaterialParameter(osg::ChunkMaterialPtr &material,                \
                                     osg::SHLChunkPtr &shader, int &textureUnit,     \
                                     VolumeData *volumeData) override;

#endif
