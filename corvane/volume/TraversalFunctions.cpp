#include "TraversalFunctions.h"
#include "BitVolume.h"
#include "VolumeData.h"

#include <OpenSG/OSGImage.h>

OSG_USING_NAMESPACE

namespace
{

const char *const SimpleTraversalShader = R"GLSL(
void traverseVolume(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout vec4 outColor)
{
    int numSteps = int(ray.length / stepSize);
    int k = 0;
    vec3 advance = stepSize * ray.direction;
    current.position = ray.origin + ray.tnear * ray.direction;
    current.t = ray.tnear;
    for(int i = 0; i < 42; ++i)
    {
        if(!ray.active)
            break;
        for(int j = 0; j < 42; ++j)
        {
            if(!ray.active)
                break;
            ++k;
            doShading(ray, current, previous, outColor);
            storeSamplePoint(current, previous);
            current.position += advance;
            current.t += stepSize;
            ray.active = ray.active && k < numSteps;
        }
    }
}
)GLSL";

// The unscaled advance added to the scaled position in the block index is
// a nudge into the block the ray is heading for, not a step.
const char *const BlockSkippingShader = R"GLSL(
uniform vec3 bitVolumeSize;
uniform vec3 bitVolumeTexelSize;
uniform sampler3D bitVolume;

void traverseVolume(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout vec4 outColor)
{
    float invStepSize = 1.0 / stepSize;
    vec3 advance = stepSize * ray.direction;
    vec3 invDirection = vec3(1.0) / ray.direction;
    vec3 directionSign = max(vec3(0.0), sign(ray.direction));
    vec3 scaledRayOrigin = ray.origin * bitVolumeSize - directionSign;
    vec3 scaledInvDirection = invDirection * bitVolumeTexelSize;
    current.position = ray.origin + ray.tnear * ray.direction;
    current.t = ray.tnear;
    for(int i = 0; i < 255; ++i)
    {
        if(!ray.active)
            break;
        vec3 index = floor((current.position * bitVolumeSize) + advance);
        float maxMinusMin = texture3D(bitVolume, (index + vec3(0.5)) * bitVolumeTexelSize).a;
        if(maxMinusMin == 0.0)
        {
            vec3 tnext3 = (index - scaledRayOrigin) * scaledInvDirection;
            float tnext = min(min(tnext3.x, tnext3.y), tnext3.z);
            current.t = ceil(tnext * invStepSize) * stepSize;
            current.position = ray.origin + current.t * ray.direction;
            ray.active = ray.active && current.t < ray.tfar;
        }
        else
        {
            for(int j = 0; j < 8; ++j)
            {
                if(!ray.active)
                    break;
                doShading(ray, current, previous, outColor);
                storeSamplePoint(current, previous);
                current.position += advance;
                current.t += stepSize;
                ray.active = ray.active && current.t < ray.tfar;
            }
        }
    }
}
)GLSL";

} // namespace

std::string SimpleTraversal::getFragmentShaderString(void)
{
    return SimpleTraversalShader;
}

void SimpleTraversal::setMaterialParameter(ChunkMaterialPtr &, SHLChunkPtr &, int &, VolumeData *)
{
}

std::string BlockSkippingTraversal::getFragmentShaderString(void)
{
    return BlockSkippingShader;
}

void BlockSkippingTraversal::setMaterialParameter(ChunkMaterialPtr &material, SHLChunkPtr &shader,
                                                  int &textureUnit, VolumeData *volumeData)
{
    if(material == NullFC || shader == NullFC || volumeData == NULL ||
       volumeData->getBitVolume() == NULL)
        return;
    TextureChunkPtr bits = volumeData->getBitVolume()->getBitVolumeTexture();
    if(bits == NullFC)
        return;

    beginEditCP(material, ChunkMaterial::ChunksFieldMask);
    material->addChunk(bits, State::AutoSlotReplace);
    endEditCP(material, ChunkMaterial::ChunksFieldMask);

    Vec3f   size(0.f, 0.f, 0.f), texel(0.f, 0.f, 0.f);
    ImagePtr image = bits->getImage();
    if(image != NullFC)
    {
        size = Vec3f(Real32(image->getWidth()), Real32(image->getHeight()),
                     Real32(image->getDepth()));
        for(int i = 0; i < 3; ++i)
            texel[i] = size[i] > 0.f ? 1.f / size[i] : 0.f;
    }
    beginEditCP(shader, SHLChunk::ParametersFieldMask);
    shader->setUniformParameter("bitVolume", Int32(textureUnit));
    shader->setUniformParameter("bitVolumeSize", size);
    shader->setUniformParameter("bitVolumeTexelSize", texel);
    endEditCP(shader, SHLChunk::ParametersFieldMask);
    ++textureUnit;
}
