#include "NormalVolume.h"

OSG_USING_NAMESPACE

namespace
{

const char *const CentralDifferenceShader = R"GLSL(
void getNormal(inout Ray ray, inout SamplePoint current, inout SamplePoint previous)
{
    vec3 sample1;
    vec3 sample2;
    sample1.x = texture3D(volume, current.position - vec3(texelSize.x, 0.0, 0.0)).r;
    sample2.x = texture3D(volume, current.position + vec3(texelSize.x, 0.0, 0.0)).r;
    sample1.y = texture3D(volume, current.position - vec3(0.0, texelSize.y, 0.0)).r;
    sample2.y = texture3D(volume, current.position + vec3(0.0, texelSize.y, 0.0)).r;
    sample1.z = texture3D(volume, current.position - vec3(0.0, 0.0, texelSize.z)).r;
    sample2.z = texture3D(volume, current.position + vec3(0.0, 0.0, texelSize.z)).r;
    current.normal = -(sample2.xyz - sample1.xyz) / 6.0;
}
)GLSL";

// A tap off the centre along one axis weighs 4 in the middle of the 3x3
// cross-section, 2 on its edge centres and 1 at its corners: the product of
// (2 - |offset|) over the two other axes.
const char *const SobelShader = R"GLSL(
void getNormal(inout Ray ray, inout SamplePoint current, inout SamplePoint previous)
{
    vec3 gradient = vec3(0.0);
    for(int i = -1; i <= 1; ++i)
    {
        for(int j = -1; j <= 1; ++j)
        {
            for(int k = -1; k <= 1; ++k)
            {
                if(i == 0 && j == 0 && k == 0)
                    continue;
                vec3 offset = vec3(float(i), float(j), float(k));
                vec3 weight = vec3(2.0) - abs(offset);
                float value = texture3DLod(volume, current.position + offset * texelSize, 0.0).r;
                gradient += offset * vec3(weight.y * weight.z, weight.x * weight.z, weight.x * weight.y) * value;
            }
        }
    }
    current.normal = -gradient / 32.0;
}
)GLSL";

} // namespace

std::string OnlineCentralDiffNormal::getFragmentShaderString(void)
{
    return CentralDifferenceShader;
}

void OnlineCentralDiffNormal::setMaterialParameter(ChunkMaterialPtr &, SHLChunkPtr &, int &,
                                                   VolumeData *)
{
}

std::string OnlineSobelNormal::getFragmentShaderString(void)
{
    return SobelShader;
}

void OnlineSobelNormal::setMaterialParameter(ChunkMaterialPtr &, SHLChunkPtr &, int &,
                                             VolumeData *)
{
}
