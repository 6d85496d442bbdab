/// The ray-generation strategy of the ray caster: where a ray starts and
/// where it runs, read from the start and direction images that the
/// position passes rendered.
#ifndef _RAYGENERATION_H_
#define _RAYGENERATION_H_

#include <OpenSG/ShaderStrategy.h>

#include <string>

class RayGeneration : public ShaderStrategy
{
  protected:
    /// getRayDirection, the same for every ray generation.
    static const char *const _directionShader;
};

/// Each ray starts on the grid of steps measured from where its line enters
/// the unit cube, so neighbouring rays sample in the same planes.
class SimpleRay : public RayGeneration
{
  public:
    CORVANE_SHADER_STRATEGY
};

/// As SimpleRay, and the four pixels of each 2x2 block start a quarter step
/// apart, which turns the wood-grain pattern of coarse steps into noise.
class InterleavedRay : public RayGeneration
{
  public:
    CORVANE_SHADER_STRATEGY
};

#endif
