#include "RayGeneration.h"

const char *const RayGeneration::_directionShader = R"GLSL(
void getRayDirection(inout Ray ray, inout SamplePoint current, inout SamplePoint previous)
{
    vec4 dirLength = texture2DLod(backTexture, gl_TexCoord[0].st, 0.0);
    ray.direction = dirLength.rgb;
    ray.tfar = dirLength.a;
    ray.active = (dirLength.a > 0.0);
}
)GLSL";

namespace
{

// Moves the ray's origin back onto the grid of steps that starts where the
// ray's line enters the unit cube: one step or less back along the ray.
const char *const SnapToStepGrid = R"GLSL(
    ray.origin = texture2DLod(frontTexture, gl_TexCoord[0].st, 0.0).rgb;
    vec3 t1nah = -ray.origin / ray.direction;
    vec3 t1fern = (vec3(1.0) - ray.origin) / ray.direction;
    vec3 minDist = min(t1nah, t1fern);
    float tnah = max(max(minDist.x, minDist.y), minDist.z);
    float offset = fract(tnah / stepSize);
    ray.tnear = offset * stepSize - stepSize;
    ray.origin += ray.tnear * ray.direction;
)GLSL";

const char *const SimpleStart = R"GLSL(
    ray.tnear = 0.0;
    ray.length = ray.tfar - ray.tnear;
}
)GLSL";

const char *const InterleavedStart = R"GLSL(
    vec2 modulo = mod(gl_FragCoord.xy, vec2(2.0));
    float rayOffset = (modulo.x * 2.0 + modulo.y) * stepSize / 4.0;
    ray.origin += rayOffset * ray.direction;
    ray.tnear = 0.0;
    ray.length = ray.tfar - (ray.tnear + rayOffset);
}
)GLSL";

const char *const StartHead = R"GLSL(
void getRayStartPosition(inout Ray ray, inout SamplePoint current, inout SamplePoint previous)
{)GLSL";

} // namespace

std::string SimpleRay::getFragmentShaderString(void)
{
    return std::string(_directionShader) + StartHead + SnapToStepGrid + SimpleStart;
}

void SimpleRay::setMaterialParameter(osg::ChunkMaterialPtr &, osg::SHLChunkPtr &, int &,
                                     VolumeData *)
{
}

std::string InterleavedRay::getFragmentShaderString(void)
{
    return std::string(_directionShader) + StartHead + SnapToStepGrid + InterleavedStart;
}

void InterleavedRay::setMaterialParameter(osg::ChunkMaterialPtr &, osg::SHLChunkPtr &, int &,
                                          VolumeData *)
{
}
