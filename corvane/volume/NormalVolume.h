/// The normal strategy of the ray caster: how the shader's getNormal comes
/// by the gradient of the volume at a sample.
///
/// OnlineCentralDiffNormal and OnlineSobelNormal differentiate in the
/// shader; PreCentralDiffNormal reads a normal volume computed once on the
/// CPU. The gradients of the online strategies are not normalised: their
/// length is what gradient-opacity shading reads.
#ifndef _NORMALVOLUME_H_
#define _NORMALVOLUME_H_

#include <OpenSG/ShaderStrategy.h>

#include <string>

class NormalVolume : public ShaderStrategy
{
};

/// Central differences of the six neighbours, in the shader.
class OnlineCentralDiffNormal : public NormalVolume
{
  public:
    CORVANE_SHADER_STRATEGY
};

/// The 3-D Sobel operator over the 26 neighbours, in the shader.
class OnlineSobelNormal : public NormalVolume
{
  public:
    CORVANE_SHADER_STRATEGY
};

#endif
