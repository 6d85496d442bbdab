#include <OpenSG/CommonSurfaceShader.h>
#include <OpenSG/OSGBlendChunk.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGLog.h>

#include <string>

OSG_USING_NAMESPACE

namespace
{

const char *ProgramPrefix = "#version 120\n";

// The material's texture coordinate sets go through as gl_TexCoord[n], the
// fog coordinate is the eye-space depth.
const char *VertexProgram = R"(
#ifndef CSS_TEXCOORD_SETS
#define CSS_TEXCOORD_SETS 0
#endif

varying vec3 cssEyePosition;
varying vec3 cssEyeNormal;

void main()
{
    vec4 eye       = gl_ModelViewMatrix * gl_Vertex;
    cssEyePosition = eye.xyz;
    cssEyeNormal   = gl_NormalMatrix * gl_Normal;
    gl_FogFragCoord = abs(eye.z);
#if (CSS_TEXCOORD_SETS & 1) != 0
    gl_TexCoord[0] = gl_MultiTexCoord0;
#endif
#if (CSS_TEXCOORD_SETS & 2) != 0
    gl_TexCoord[1] = gl_MultiTexCoord1;
#endif
#if (CSS_TEXCOORD_SETS & 4) != 0
    gl_TexCoord[2] = gl_MultiTexCoord2;
#endif
#if (CSS_TEXCOORD_SETS & 8) != 0
    gl_TexCoord[3] = gl_MultiTexCoord3;
#endif
#if (CSS_TEXCOORD_SETS & 16) != 0
    gl_TexCoord[4] = gl_MultiTexCoord4;
#endif
#if (CSS_TEXCOORD_SETS & 32) != 0
    gl_TexCoord[5] = gl_MultiTexCoord5;
#endif
#if (CSS_TEXCOORD_SETS & 64) != 0
    gl_TexCoord[6] = gl_MultiTexCoord6;
#endif
#if (CSS_TEXCOORD_SETS & 128) != 0
    gl_TexCoord[7] = gl_MultiTexCoord7;
#endif
    gl_Position = ftransform();
}
)";

// A family without texture has no defines; one with a texture has
// CSS_<FAMILY>_TEXTURE (the unit), _TEXCOORD (the set), _CHANNELS (the
// swizzle) and _TRANSFORM (0 or 1); the normal family adds
// CSS_NORMAL_FORMAT and CSS_NORMAL_SPACE.
// cssFactors: [0] emissive, alpha; [1] ambient, shininess; [2] diffuse;
// [3] specular; [4] normal scale; [5] normal bias and, in w, a zero. The
// branch on that zero keeps every texture and transform of the material
// in every light permutation, so that all permutations of one material
// share one set of uniforms.
const char *FragmentProgram = R"(
#ifndef CSS_EMISSIVE_TEXTURE
#define CSS_EMISSIVE_TEXTURE -1
#endif
#ifndef CSS_AMBIENT_TEXTURE
#define CSS_AMBIENT_TEXTURE -1
#endif
#ifndef CSS_DIFFUSE_TEXTURE
#define CSS_DIFFUSE_TEXTURE -1
#endif
#ifndef CSS_SPECULAR_TEXTURE
#define CSS_SPECULAR_TEXTURE -1
#endif
#ifndef CSS_SHININESS_TEXTURE
#define CSS_SHININESS_TEXTURE -1
#endif
#ifndef CSS_ALPHA_TEXTURE
#define CSS_ALPHA_TEXTURE -1
#endif
#ifndef CSS_NORMAL_TEXTURE
#define CSS_NORMAL_TEXTURE -1
#endif

uniform vec4 cssFactors[6];

varying vec3 cssEyePosition;
varying vec3 cssEyeNormal;

#define CSS_UV(SET) gl_TexCoord[SET].st
#define CSS_UVT(SET, M) (M * vec4(gl_TexCoord[SET].st, 0.0, 1.0)).st

#if CSS_EMISSIVE_TEXTURE >= 0
uniform sampler2D cssEmissiveTexture;
#if CSS_EMISSIVE_TRANSFORM
uniform mat4 cssEmissiveTransform;
#define CSS_EMISSIVE_UV CSS_UVT(CSS_EMISSIVE_TEXCOORD, cssEmissiveTransform)
#else
#define CSS_EMISSIVE_UV CSS_UV(CSS_EMISSIVE_TEXCOORD)
#endif
#endif

#if CSS_AMBIENT_TEXTURE >= 0
uniform sampler2D cssAmbientTexture;
#if CSS_AMBIENT_TRANSFORM
uniform mat4 cssAmbientTransform;
#define CSS_AMBIENT_UV CSS_UVT(CSS_AMBIENT_TEXCOORD, cssAmbientTransform)
#else
#define CSS_AMBIENT_UV CSS_UV(CSS_AMBIENT_TEXCOORD)
#endif
#endif

#if CSS_DIFFUSE_TEXTURE >= 0
uniform sampler2D cssDiffuseTexture;
#if CSS_DIFFUSE_TRANSFORM
uniform mat4 cssDiffuseTransform;
#define CSS_DIFFUSE_UV CSS_UVT(CSS_DIFFUSE_TEXCOORD, cssDiffuseTransform)
#else
#define CSS_DIFFUSE_UV CSS_UV(CSS_DIFFUSE_TEXCOORD)
#endif
#endif

#if CSS_SPECULAR_TEXTURE >= 0
uniform sampler2D cssSpecularTexture;
#if CSS_SPECULAR_TRANSFORM
uniform mat4 cssSpecularTransform;
#define CSS_SPECULAR_UV CSS_UVT(CSS_SPECULAR_TEXCOORD, cssSpecularTransform)
#else
#define CSS_SPECULAR_UV CSS_UV(CSS_SPECULAR_TEXCOORD)
#endif
#endif

#if CSS_SHININESS_TEXTURE >= 0
uniform sampler2D cssShininessTexture;
#if CSS_SHININESS_TRANSFORM
uniform mat4 cssShininessTransform;
#define CSS_SHININESS_UV CSS_UVT(CSS_SHININESS_TEXCOORD, cssShininessTransform)
#else
#define CSS_SHININESS_UV CSS_UV(CSS_SHININESS_TEXCOORD)
#endif
#endif

#if CSS_ALPHA_TEXTURE >= 0
uniform sampler2D cssAlphaTexture;
#if CSS_ALPHA_TRANSFORM
uniform mat4 cssAlphaTransform;
#define CSS_ALPHA_UV CSS_UVT(CSS_ALPHA_TEXCOORD, cssAlphaTransform)
#else
#define CSS_ALPHA_UV CSS_UV(CSS_ALPHA_TEXCOORD)
#endif
#endif

#if CSS_NORMAL_TEXTURE >= 0
uniform sampler2D cssNormalTexture;
#if CSS_NORMAL_TRANSFORM
uniform mat4 cssNormalTransform;
#define CSS_NORMAL_UV CSS_UVT(CSS_NORMAL_TEXCOORD, cssNormalTransform)
#else
#define CSS_NORMAL_UV CSS_UV(CSS_NORMAL_TEXCOORD)
#endif
#endif

vec3 cssNormal(void)
{
    vec3 n = normalize(cssEyeNormal);
#if CSS_NORMAL_TEXTURE >= 0
    vec4 texel = texture2D(cssNormalTexture, CSS_NORMAL_UV);
#if CSS_NORMAL_FORMAT == 1
    vec2 xy = vec2(texel.CSS_NORMAL_CHANNELS) * cssFactors[4].xy + cssFactors[5].xy;
    vec3 m  = vec3(xy, sqrt(max(1.0 - dot(xy, xy), 0.0)));
#else
    vec3 m = vec3(texel.CSS_NORMAL_CHANNELS) * cssFactors[4].xyz + cssFactors[5].xyz;
#endif
#if CSS_NORMAL_SPACE == 1
    n = normalize(gl_NormalMatrix * m);
#else
    // the tangent frame of the map's coordinates, from the screen-space
    // derivatives of position and coordinates
    vec2  uv      = CSS_NORMAL_UV;
    vec3  dp1     = dFdx(cssEyePosition);
    vec3  dp2     = dFdy(cssEyePosition);
    vec2  duv1    = dFdx(uv);
    vec2  duv2    = dFdy(uv);
    vec3  dp2perp = cross(dp2, n);
    vec3  dp1perp = cross(n, dp1);
    vec3  t       = dp2perp * duv1.x + dp1perp * duv2.x;
    vec3  b       = dp2perp * duv1.y + dp1perp * duv2.y;
    float scale   = inversesqrt(max(max(dot(t, t), dot(b, b)), 1e-20));
    n = normalize(mat3(t * scale, b * scale, n) * m);
#endif
#endif
    return n;
}

// Adds light i's ambient, diffuse and specular share.
void cssLight(int i, vec3 n, vec3 v, float exponent,
              inout vec3 ambient, inout vec3 diffuse, inout vec3 specular)
{
    vec4  position    = gl_LightSource[i].position;
    vec3  l           = position.xyz;
    float attenuation = 1.0;
    if(position.w != 0.0)
    {
        vec3  d        = position.xyz / position.w - cssEyePosition;
        float distance = length(d);
        l              = d / max(distance, 1e-20);
        attenuation    = 1.0 / max(gl_LightSource[i].constantAttenuation +
                                   gl_LightSource[i].linearAttenuation * distance +
                                   gl_LightSource[i].quadraticAttenuation * distance * distance,
                                   1e-20);
        if(gl_LightSource[i].spotCutoff <= 90.0)
        {
            float spot = dot(-l, normalize(gl_LightSource[i].spotDirection));
            attenuation *= spot < gl_LightSource[i].spotCosCutoff
                               ? 0.0 : pow(max(spot, 0.0), gl_LightSource[i].spotExponent);
        }
    }
    l = normalize(l);

    float nl = max(dot(n, l), 0.0);
    ambient += gl_LightSource[i].ambient.rgb * attenuation;
    diffuse += gl_LightSource[i].diffuse.rgb * (nl * attenuation);
    if(nl > 0.0)
    {
        float nh = max(dot(n, normalize(l + v)), 0.0);
        specular += gl_LightSource[i].specular.rgb * (pow(nh, exponent) * attenuation);
    }
}

void main(void)
{
    vec3  emissive  = cssFactors[0].rgb;
    float alpha     = cssFactors[0].a;
    vec3  ambient   = cssFactors[1].rgb;
    float shininess = cssFactors[1].a;
    vec3  diffuse   = cssFactors[2].rgb;
    vec3  specular  = cssFactors[3].rgb;

#if CSS_EMISSIVE_TEXTURE >= 0
    emissive *= vec3(texture2D(cssEmissiveTexture, CSS_EMISSIVE_UV).CSS_EMISSIVE_CHANNELS);
#endif
#if CSS_AMBIENT_TEXTURE >= 0
    ambient *= vec3(texture2D(cssAmbientTexture, CSS_AMBIENT_UV).CSS_AMBIENT_CHANNELS);
#endif
#if CSS_DIFFUSE_TEXTURE >= 0
    diffuse *= vec3(texture2D(cssDiffuseTexture, CSS_DIFFUSE_UV).CSS_DIFFUSE_CHANNELS);
#endif
#if CSS_SPECULAR_TEXTURE >= 0
    specular *= vec3(texture2D(cssSpecularTexture, CSS_SPECULAR_UV).CSS_SPECULAR_CHANNELS);
#endif
#if CSS_SHININESS_TEXTURE >= 0
    shininess *= float(texture2D(cssShininessTexture, CSS_SHININESS_UV).CSS_SHININESS_CHANNELS);
#endif
#if CSS_ALPHA_TEXTURE >= 0
    alpha *= float(texture2D(cssAlphaTexture, CSS_ALPHA_UV).CSS_ALPHA_CHANNELS);
#endif

    vec3  n        = cssNormal();
    vec3  v        = normalize(-cssEyePosition);
    float exponent = max(shininess * 128.0, 1e-4);

    vec3 lightAmbient  = gl_LightModel.ambient.rgb;
    vec3 lightDiffuse  = vec3(0.0);
    vec3 lightSpecular = vec3(0.0);
#if OSG_LIGHT_0_ACTIVE
    cssLight(0, n, v, exponent, lightAmbient, lightDiffuse, lightSpecular);
#endif
#if OSG_LIGHT_1_ACTIVE
    cssLight(1, n, v, exponent, lightAmbient, lightDiffuse, lightSpecular);
#endif
#if OSG_LIGHT_2_ACTIVE
    cssLight(2, n, v, exponent, lightAmbient, lightDiffuse, lightSpecular);
#endif
#if OSG_LIGHT_3_ACTIVE
    cssLight(3, n, v, exponent, lightAmbient, lightDiffuse, lightSpecular);
#endif
#if OSG_LIGHT_4_ACTIVE
    cssLight(4, n, v, exponent, lightAmbient, lightDiffuse, lightSpecular);
#endif
#if OSG_LIGHT_5_ACTIVE
    cssLight(5, n, v, exponent, lightAmbient, lightDiffuse, lightSpecular);
#endif
#if OSG_LIGHT_6_ACTIVE
    cssLight(6, n, v, exponent, lightAmbient, lightDiffuse, lightSpecular);
#endif
#if OSG_LIGHT_7_ACTIVE
    cssLight(7, n, v, exponent, lightAmbient, lightDiffuse, lightSpecular);
#endif

    vec3 colour = emissive + ambient * lightAmbient + diffuse * lightDiffuse +
                  specular * lightSpecular;

    if(cssFactors[5].w != 0.0)
        colour += diffuse + specular + n + vec3(shininess);

#if OSG_FOG == 1
    float fog = (gl_Fog.end - gl_FogFragCoord) * gl_Fog.scale;
#elif OSG_FOG == 2
    float fog = exp(-gl_Fog.density * gl_FogFragCoord);
#elif OSG_FOG == 3
    float fog = exp(-(gl_Fog.density * gl_FogFragCoord) * (gl_Fog.density * gl_FogFragCoord));
#endif
#if OSG_FOG != 0
    colour = mix(gl_Fog.color.rgb, colour, clamp(fog, 0.0, 1.0));
#endif

    gl_FragColor = vec4(colour, clamp(alpha, 0.0, 1.0));
}
)";

// --- the material's families ---------------------------------------------------------------

/// What the program needs of one family.
struct Family
{
    const char   *name;        ///< in the defines, e.g. "DIFFUSE"
    const char   *uniform;     ///< in the uniforms, e.g. "Diffuse"
    const char   *defaultMask; ///< the channel mask of a new material
    Int32         kind;        ///< Colour, Scalar or Normal
    Int32         textureId;
    Int32         coordinates;
    std::string   mask;
    const Matrix *transform;
};

enum
{
    Colour,
    Scalar,
    Normal
};

const UInt32 NumFamilies  = 7;
const UInt32 AlphaFamily  = 5;
const UInt32 NormalFamily = 6;

/// Whether a texture lookup's .mask gives what the family converts: vec3()
/// takes one, three or four channels, vec2() two or more, float() any.
bool validMask(const std::string &mask, Int32 kind, Int32 normalFormat)
{
    if(mask.empty() || mask.size() > 4 || mask.find_first_not_of("rgba") != std::string::npos)
        return false;
    if(kind == Colour || (kind == Normal && normalFormat == 0))
        return mask.size() != 2;
    if(kind == Normal)
        return mask.size() >= 2;
    return true;
}

void addDefine(std::string &config, const std::string &name, const std::string &value)
{
    config += "#define " + name + " " + value + "\n";
}

void addDefine(std::string &config, const std::string &name, Int32 value)
{
    addDefine(config, name, std::to_string(value));
}

} // namespace

const char *CommonSurfaceShader::getProgramPrefix(void)
{
    return ProgramPrefix;
}

const char *CommonSurfaceShader::getVertexProgram(void)
{
    return VertexProgram;
}

const char *CommonSurfaceShader::getFragmentProgram(void)
{
    return FragmentProgram;
}

PermutationSHLChunkPtr CommonSurfaceShader::apply(const CommonSurfaceShaderMaterialPtr &material)
{
    if(material == NullFC)
        return PermutationSHLChunkPtr();

    PermutationSHLChunkPtr chunk =
        PermutationSHLChunkPtr::dcast(material->find(PermutationSHLChunk::getClassType()));
    if(chunk == NullFC)
    {
        chunk = PermutationSHLChunk::create();
        beginEditCP(chunk);
        chunk->setVertexProgramPrefix(ProgramPrefix);
        chunk->setFragmentProgramPrefix(ProgramPrefix);
        chunk->setVertexProgram(VertexProgram);
        chunk->setFragmentProgram(FragmentProgram);
        endEditCP(chunk);

        beginEditCP(material, ChunkMaterial::ChunksFieldMask);
        material->addChunk(chunk);
        endEditCP(material, ChunkMaterial::ChunksFieldMask);
    }

    update(material, chunk);

    // a see-through surface blends over what is behind it
    if(chunk->getIsTransparent() && material->find(BlendChunk::getClassType()) == NullFC)
    {
        BlendChunkPtr blend = BlendChunk::create();
        beginEditCP(blend);
        blend->setSrcFactor(GL_SRC_ALPHA);
        blend->setDestFactor(GL_ONE_MINUS_SRC_ALPHA);
        endEditCP(blend);

        beginEditCP(material, ChunkMaterial::ChunksFieldMask);
        material->addChunk(blend);
        endEditCP(material, ChunkMaterial::ChunksFieldMask);
    }

    return chunk;
}

void CommonSurfaceShader::update(const CommonSurfaceShaderMaterialPtr &material,
                                 const PermutationSHLChunkPtr        &chunk)
{
    if(material == NullFC || chunk == NullFC)
        return;

    const CommonSurfaceShaderMaterialPtr &m = material;

    Family families[NumFamilies] = {
        {"EMISSIVE", "Emissive", "rgb", Colour, m->getEmissiveTextureId(),
         m->getEmissiveTextureCoordinatesId(), m->getEmissiveTextureChannelMask(),
         &m->getEmissiveTextureCoordinateTransform()},
        {"AMBIENT", "Ambient", "rgb", Colour, m->getAmbientTextureId(),
         m->getAmbientTextureCoordinatesId(), m->getAmbientTextureChannelMask(),
         &m->getAmbientTextureCoordinateTransform()},
        {"DIFFUSE", "Diffuse", "rgb", Colour, m->getDiffuseTextureId(),
         m->getDiffuseTextureCoordinatesId(), m->getDiffuseTextureChannelMask(),
         &m->getDiffuseTextureCoordinateTransform()},
        {"SPECULAR", "Specular", "rgb", Colour, m->getSpecularTextureId(),
         m->getSpecularTextureCoordinatesId(), m->getSpecularTextureChannelMask(),
         &m->getSpecularTextureCoordinateTransform()},
        {"SHININESS", "Shininess", "a", Scalar, m->getShininessTextureId(),
         m->getShininessTextureCoordinatesId(), m->getShininessTextureChannelMask(),
         &m->getShininessTextureCoordinateTransform()},
        {"ALPHA", "Alpha", "a", Scalar, m->getAlphaTextureId(), m->getAlphaTextureCoordinatesId(),
         m->getAlphaTextureChannelMask(), &m->getAlphaTextureCoordinateTransform()},
        {"NORMAL", "Normal", "rgb", Normal, m->getNormalTextureId(),
         m->getNormalTextureCoordinatesId(), m->getNormalTextureChannelMask(),
         &m->getNormalTextureCoordinateTransform()},
    };

    Int32 normalFormat = m->getNormalFormat();
    if(normalFormat != 0 && normalFormat != 1)
    {
        FWARNING(("CommonSurfaceShader: normalFormat %d is not known, 0 is used\n",
                  normalFormat));
        normalFormat = 0;
    }
    Int32 normalSpace = m->getNormalSpace();
    if(normalSpace != 0 && normalSpace != 1)
    {
        FWARNING(("CommonSurfaceShader: normalSpace %d is not known, 0 is used\n", normalSpace));
        normalSpace = 0;
    }

    const MFInt32 &enabled = m->getTextureTransformEnabled();

    beginEditCP(chunk, ShaderParameterChunk::ParametersFieldMask |
                           PermutationSHLChunk::PermutationParametersFieldMask |
                           PermutationSHLChunk::IsTransparentFieldMask);

    // only the uniforms of this configuration: a permutation warns of
    // any it lacks
    chunk->clearUniformParameters();

    // the whole configuration goes into one permutation parameter: its
    // value carries the define lines, so the key is put together in one
    // piece at every activation
    std::string config         = "1\n";
    UInt32      coordinateSets = 0;
    for(UInt32 i = 0; i < NumFamilies; ++i)
    {
        Family           &f      = families[i];
        const std::string prefix = std::string("CSS_") + f.name;

        if(f.textureId < -1 || f.textureId > 15)
        {
            FWARNING(("CommonSurfaceShader: %s texture id %d is no texture unit, the family "
                      "goes without texture\n",
                      f.uniform, f.textureId));
            f.textureId = -1;
        }

        if(f.textureId >= 0)
        {
            if(f.coordinates < 0 || f.coordinates > 7)
            {
                FWARNING(("CommonSurfaceShader: %s texture coordinates %d are no coordinate "
                          "set, 0 is used\n",
                          f.uniform, f.coordinates));
                f.coordinates = 0;
            }
            if(!validMask(f.mask, f.kind, normalFormat))
            {
                FWARNING(("CommonSurfaceShader: %s channel mask '%s' is not usable, '%s' is "
                          "used\n",
                          f.uniform, f.mask.c_str(), f.defaultMask));
                f.mask = f.defaultMask;
            }
            const bool transformed = i < enabled.size() && enabled[i] != 0;
            coordinateSets |= 1u << f.coordinates;

            chunk->setUniformParameter(("css" + std::string(f.uniform) + "Texture").c_str(),
                                       f.textureId);
            if(transformed)
                chunk->setUniformParameter(
                    ("css" + std::string(f.uniform) + "Transform").c_str(), *f.transform);

            // an untextured family needs no define: it compiles the same
            // whatever its other fields say
            addDefine(config, prefix + "_TEXTURE", f.textureId);
            addDefine(config, prefix + "_TEXCOORD", f.coordinates);
            addDefine(config, prefix + "_CHANNELS", f.mask);
            addDefine(config, prefix + "_TRANSFORM", transformed ? 1 : 0);
        }
    }
    if(families[NormalFamily].textureId >= 0)
    {
        addDefine(config, "CSS_NORMAL_FORMAT", normalFormat);
        addDefine(config, "CSS_NORMAL_SPACE", normalSpace);
    }
    if(coordinateSets != 0)
        addDefine(config, "CSS_TEXCOORD_SETS", Int32(coordinateSets));
    chunk->setPermutationParameter("CSS_CONFIGURATION", config);

    MFVec4f factors;
    const Vec3f &emissive = m->getEmissiveFactor(), &ambient = m->getAmbientFactor();
    const Vec3f &diffuse = m->getDiffuseFactor(), &specular = m->getSpecularFactor();
    const Vec3f &scale = m->getNormalScale(), &bias = m->getNormalBias();
    factors.push_back(Vec4f(emissive[0], emissive[1], emissive[2], m->getAlphaFactor()));
    factors.push_back(Vec4f(ambient[0], ambient[1], ambient[2], m->getShininessFactor()));
    factors.push_back(Vec4f(diffuse[0], diffuse[1], diffuse[2], 0.f));
    factors.push_back(Vec4f(specular[0], specular[1], specular[2], 0.f));
    factors.push_back(Vec4f(scale[0], scale[1], scale[2], 0.f));
    factors.push_back(Vec4f(bias[0], bias[1], bias[2], 0.f));
    chunk->setUniformParameter("cssFactors", factors);

    chunk->setIsTransparent(m->getAlphaFactor() < 1.f || families[AlphaFamily].textureId >= 0);

    endEditCP(chunk, ShaderParameterChunk::ParametersFieldMask |
                         PermutationSHLChunk::PermutationParametersFieldMask |
                         PermutationSHLChunk::IsTransparentFieldMask);
}
