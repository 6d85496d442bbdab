/// The traversal strategy of the ray caster: how a ray walks through the
/// volume, calling doShading at each sample.
#ifndef _TRAVERSALFUNCTIONS_H_
#define _TRAVERSALFUNCTIONS_H_

#include <OpenSG/ShaderStrategy.h>

#include <string>

class TraversalFunctions : public ShaderStrategy
{
};

/// Equal steps over the ray's whole length, at most 42 x 42 samples.
class SimpleTraversal : public TraversalFunctions
{
  public:
    CORVANE_SHADER_STRATEGY
};

/// Equal steps through the blocks the bit volume marks as visible; an
/// empty block is jumped over to the first step behind it.
class BlockSkippingTraversal : public TraversalFunctions
{
  public:
    std::string getFragmentShaderString(void) override;
    /// Adds the bit volume's texture and binds bitVolume, bitVolumeSize
    /// and bitVolumeTexelSize.
    void setMaterialParameter(osg::ChunkMaterialPtr &material,
                              osg::SHLChunkPtr      &shader,
                              int                   &textureUnit,
                              VolumeData            *volumeData) override;
};

#endif
