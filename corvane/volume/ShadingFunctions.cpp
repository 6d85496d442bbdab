#include "ShadingFunctions.h"

OSG_USING_NAMESPACE

namespace
{

const char *const MIPShader = R"GLSL(
void doShading(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout vec4 outColor)
{
    current.value = texture3DLod(volume, current.position, 0.0);
    outColor = vec4(vec3(1.0), max(outColor.a, current.value.r));
}
)GLSL";

const char *const XRayShader = R"GLSL(
uniform float xRayIntensityFactor;

void doShading(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout vec4 outColor)
{
    current.value = stepSize * xRayIntensityFactor * texture3DLod(volume, current.position, 0.0);
    outColor = vec4(vec3(1.0), outColor.a + current.value.r);
}
)GLSL";

const char *const DVRUniforms = R"GLSL(
uniform float kgc;
uniform float kgs;
uniform float kge;
)GLSL";

const char *const GradientOpacity = R"GLSL(
        float gradMag = length(current.normal);
        float oldAlpha = current.color.a;
        current.color.a *= (kgc + kgs * pow(gradMag, kge));
        current.color.rgb *= current.color.a / oldAlpha;
)GLSL";

const char *const ShadingHead = R"GLSL(
void doShading(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout vec4 outColor)
{
    current.value = texture3DLod(volume, current.position, 0.0);
    getClassification(ray, current, previous, outColor);
    if(current.color.a > 0.0)
    {
        applyCorrectionFactor(ray, current, previous, outColor);
)GLSL";

const char *const ShadingTail = R"GLSL(
        compositeColor(ray, current, previous, outColor);
        ray.active = outColor.a < 0.98;
    }
}
)GLSL";

const char *const LightingShader = R"GLSL(
uniform vec3 emissiveColor;
uniform vec3 diffuseColor;
uniform vec3 specularColor;
uniform float exponent;

void shadeDVRSample(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout vec4 outColor)
{
    vec3 L = normalize((gl_ModelViewMatrixInverse * vec4(gl_LightSource[0].position.xyz, 0.0)).xyz);
    vec3 halfVec = normalize(L - ray.direction);
    float ndotl = clamp(dot(L, current.normal), 0.000001, 1.0);
    float ndoth = clamp(dot(halfVec, current.normal), 0.000001, 1.0);
    float specularScale = pow(ndoth, exponent);
    vec3 diffuse = diffuseColor * current.color.rgb * ndotl * gl_LightSource[0].diffuse.rgb;
    vec3 specular = specularColor * specularScale * gl_LightSource[0].specular.rgb * current.color.a;
    current.color.rgb = emissiveColor * current.color.rgb + diffuse + specular;
}
)GLSL";

} // namespace

std::string MIPShading::getFragmentShaderString(void)
{
    return MIPShader;
}

void MIPShading::setMaterialParameter(ChunkMaterialPtr &, SHLChunkPtr &, int &, VolumeData *)
{
}

std::string XRayShading::getFragmentShaderString(void)
{
    return XRayShader;
}

void XRayShading::setMaterialParameter(ChunkMaterialPtr &material, SHLChunkPtr &shader, int &,
                                       VolumeData *)
{
    if(material == NullFC || shader == NullFC)
        return;
    beginEditCP(shader, SHLChunk::ParametersFieldMask);
    shader->setUniformParameter("xRayIntensityFactor", Real32(2.0));
    endEditCP(shader, SHLChunk::ParametersFieldMask);
}

DVRShadingBase::DVRShadingBase(void) : _gradientOpacity(false), kgc(0.5f), kgs(0.5f), kge(4.0f)
{
}

std::string DVRShadingBase::gradientOpacityText(void) const
{
    return _gradientOpacity ? GradientOpacity : "";
}

void DVRShadingBase::setMaterialParameter(ChunkMaterialPtr &material, SHLChunkPtr &shader, int &,
                                          VolumeData *)
{
    if(material == NullFC || shader == NullFC)
        return;
    beginEditCP(shader, SHLChunk::ParametersFieldMask);
    shader->setUniformParameter("kgs", Real32(kgs));
    shader->setUniformParameter("kgc", Real32(kgc));
    shader->setUniformParameter("kge", Real32(kge));
    endEditCP(shader, SHLChunk::ParametersFieldMask);
}

std::string DVRShading::getFragmentShaderString(void)
{
    std::string text = std::string(DVRUniforms) + ShadingHead;
    if(_gradientOpacity)
        text += "        getNormal(ray, current, previous);\n" + gradientOpacityText();
    return text + ShadingTail;
}

DVRShadingAndLighting::DVRShadingAndLighting(void)
    : DVRShadingBase(),
      emissiveColor(0.5f, 0.5f, 0.5f),
      diffuseColor(0.75f, 0.75f, 0.75f),
      specularColor(1.f, 1.f, 1.f),
      exponent(30.f)
{
}

std::string DVRShadingAndLighting::getFragmentShaderString(void)
{
    return std::string(DVRUniforms) + LightingShader + ShadingHead +
           "        getNormal(ray, current, previous);\n" + gradientOpacityText() +
           "        current.normal = normalize(current.normal);\n"
           "        shadeDVRSample(ray, current, previous, outColor);\n" +
           ShadingTail;
}

void DVRShadingAndLighting::setMaterialParameter(ChunkMaterialPtr &material, SHLChunkPtr &shader,
                                                 int &textureUnit, VolumeData *volumeData)
{
    if(material == NullFC || shader == NullFC)
        return;
    DVRShadingBase::setMaterialParameter(material, shader, textureUnit, volumeData);
    // the exponent member is what a style writes; the shader keeps 25
    beginEditCP(shader, SHLChunk::ParametersFieldMask);
    shader->setUniformParameter("emissiveColor", emissiveColor);
    shader->setUniformParameter("diffuseColor", diffuseColor);
    shader->setUniformParameter("specularColor", specularColor);
    shader->setUniformParameter("exponent", Real32(25.0));
    endEditCP(shader, SHLChunk::ParametersFieldMask);
}
