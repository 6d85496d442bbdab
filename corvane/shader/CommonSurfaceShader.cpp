#include <OpenSG/CommonSurfaceShader.h>
#include <OpenSG/OSGBlendChunk.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGLog.h>

#include <string>

OSG_USING_NAMESPACE

namespace
{

const char *ProgramPrefix = "#version 120\n";

// The vertex program passes the texture coordinate sets the families use
// on as gl_TexCoord[n]; the fog coordinate is the eye-space depth.
const char *VertexHead = R"(
#ifndef CSS_TEXCOORD_SETS
#define CSS_TEXCOORD_SETS 0
#endif

varying vec3 cssEyePosition;
varying vec3 cssEyeNormal;

void main()
{
    vec4 eye        = gl_ModelViewMatrix * gl_Vertex;
    cssEyePosition  = eye.xyz;
    cssEyeNormal    = gl_NormalMatrix * gl_Normal;
    gl_FogFragCoord = abs(eye.z);
    gl_Position     = ftransform();
)";

// One set (% is its number, ^ its bit).
const char *VertexTexCoord = R"(#if (CSS_TEXCOORD_SETS & ^) != 0
    gl_TexCoord[%] = gl_MultiTexCoord%;
#endif
)";

// A family without texture has no defines; one with a texture has
// CSS_<FAMILY>_TEXTURE (the unit), _TEXCOORD (the set), _CHANNELS (the
// swizzle) and _TRANSFORM (0 or 1); the normal family adds
// CSS_NORMAL_FORMAT and CSS_NORMAL_SPACE.
//
// cssFactors: [0] emissive, alpha; [1] ambient, shininess; [2] diffuse;
// [3] specular; [4] normal scale; [5] normal bias and, in w, a zero. The
// branch on that zero keeps every texture and transform of the material
// in every light permutation, so that all permutations of one material
// share one set of uniforms.
const char *FragmentHead = R"(
uniform vec4 cssFactors[6];

varying vec3 cssEyePosition;
varying vec3 cssEyeNormal;

#define CSS_UV(SET) gl_TexCoord[SET].st
#define CSS_UVT(SET, M) (M * vec4(gl_TexCoord[SET].st, 0.0, 1.0)).st
)";

// One family (@ its define name, $ its uniform name): CSS_@_TEXEL(T) is
// its texel's channels converted to T, or T(1.0) without a texture.
const char *FragmentFamily = R"(
#ifndef CSS_@_TEXTURE
#define CSS_@_TEXTURE -1
#endif
#if CSS_@_TEXTURE >= 0
uniform sampler2D css$Texture;
#if CSS_@_TRANSFORM
uniform mat4 css$Transform;
#define CSS_@_UV CSS_UVT(CSS_@_TEXCOORD, css$Transform)
#else
#define CSS_@_UV CSS_UV(CSS_@_TEXCOORD)
#endif
#define CSS_@_TEXEL(T) T(texture2D(css$Texture, CSS_@_UV).CSS_@_CHANNELS)
#else
#define CSS_@_TEXEL(T) T(1.0)
#endif
)";

const char *FragmentFunctions = R"(
vec3 cssNormal(void)
{
    vec3 n = normalize(cssEyeNormal);
#if CSS_NORMAL_TEXTURE >= 0
#if CSS_NORMAL_FORMAT == 1
    vec2 xy = CSS_NORMAL_TEXEL(vec2) * cssFactors[4].xy + cssFactors[5].xy;
    vec3 m  = vec3(xy, sqrt(max(1.0 - dot(xy, xy), 0.0)));
#else
    vec3 m = CSS_NORMAL_TEXEL(vec3) * cssFactors[4].xyz + cssFactors[5].xyz;
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
    vec3  emissive  = cssFactors[0].rgb * CSS_EMISSIVE_TEXEL(vec3);
    float alpha     = cssFactors[0].a * CSS_ALPHA_TEXEL(float);
    vec3  ambient   = cssFactors[1].rgb * CSS_AMBIENT_TEXEL(vec3);
    float shininess = cssFactors[1].a * CSS_SHININESS_TEXEL(float);
    vec3  diffuse   = cssFactors[2].rgb * CSS_DIFFUSE_TEXEL(vec3);
    vec3  specular  = cssFactors[3].rgb * CSS_SPECULAR_TEXEL(vec3);

    vec3  n        = cssNormal();
    vec3  v        = normalize(-cssEyePosition);
    float exponent = max(shininess * 128.0, 1e-4);

    vec3 lightAmbient  = gl_LightModel.ambient.rgb;
    vec3 lightDiffuse  = vec3(0.0);
    vec3 lightSpecular = vec3(0.0);
)";

// One light (% is its number).
const char *FragmentLight = R"(#if OSG_LIGHT_%_ACTIVE
    cssLight(%, n, v, exponent, lightAmbient, lightDiffuse, lightSpecular);
#endif
)";

const char *FragmentTail = R"(
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

enum
{
    Colour,
    Scalar,
    Normal
};

/// A family as the program knows it.
struct Family
{
    const char *name;        ///< in the defines, e.g. "DIFFUSE"
    const char *uniform;     ///< in the uniforms, e.g. "Diffuse"
    const char *defaultMask; ///< the channel mask of a new material
    Int32       kind;        ///< Colour, Scalar or Normal
};

const UInt32 NumFamilies  = 7;
const UInt32 AlphaFamily  = 5;
const UInt32 NormalFamily = 6;

const Family Families[NumFamilies] = {
    {"EMISSIVE", "Emissive", "rgb", Colour}, {"AMBIENT", "Ambient", "rgb", Colour},
    {"DIFFUSE", "Diffuse", "rgb", Colour},   {"SPECULAR", "Specular", "rgb", Colour},
    {"SHININESS", "Shininess", "a", Scalar}, {"ALPHA", "Alpha", "a", Scalar},
    {"NORMAL", "Normal", "rgb", Normal}};

/// What a material says of one family's texture.
struct TextureUse
{
    Int32         textureId;
    Int32         coordinates;
    std::string   mask;
    const Matrix *transform;
};

// --- the programs ------------------------------------------------------------------------------

/// text with every mark replaced by by.
std::string replaced(std::string text, char mark, const std::string &by)
{
    for(size_t at = text.find(mark); at != std::string::npos; at = text.find(mark, at + by.size()))
        text.replace(at, 1, by);
    return text;
}

/// The block repeated for 0 to count - 1: % the number, ^ its bit.
std::string repeated(const char *block, UInt32 count)
{
    std::string text;
    for(UInt32 i = 0; i < count; ++i)
        text += replaced(replaced(block, '%', std::to_string(i)), '^', std::to_string(1u << i));
    return text;
}

const std::string &vertexProgram(void)
{
    static const std::string text = VertexHead + repeated(VertexTexCoord, 8) + "}\n";
    return text;
}

const std::string &fragmentProgram(void)
{
    static const std::string text = []() {
        std::string program = FragmentHead;
        for(const Family &f : Families)
            program += replaced(replaced(FragmentFamily, '@', f.name), '$', f.uniform);
        return program + FragmentFunctions + repeated(FragmentLight, 8) + FragmentTail;
    }();
    return text;
}

// --- checks and defines -----------------------------------------------------------------------

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
    return vertexProgram().c_str();
}

const char *CommonSurfaceShader::getFragmentProgram(void)
{
    return fragmentProgram().c_str();
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
        chunk->setVertexProgram(vertexProgram());
        chunk->setFragmentProgram(fragmentProgram());
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

    // in the order of Families
    TextureUse uses[NumFamilies] = {
        {m->getEmissiveTextureId(), m->getEmissiveTextureCoordinatesId(),
         m->getEmissiveTextureChannelMask(), &m->getEmissiveTextureCoordinateTransform()},
        {m->getAmbientTextureId(), m->getAmbientTextureCoordinatesId(),
         m->getAmbientTextureChannelMask(), &m->getAmbientTextureCoordinateTransform()},
        {m->getDiffuseTextureId(), m->getDiffuseTextureCoordinatesId(),
         m->getDiffuseTextureChannelMask(), &m->getDiffuseTextureCoordinateTransform()},
        {m->getSpecularTextureId(), m->getSpecularTextureCoordinatesId(),
         m->getSpecularTextureChannelMask(), &m->getSpecularTextureCoordinateTransform()},
        {m->getShininessTextureId(), m->getShininessTextureCoordinatesId(),
         m->getShininessTextureChannelMask(), &m->getShininessTextureCoordinateTransform()},
        {m->getAlphaTextureId(), m->getAlphaTextureCoordinatesId(),
         m->getAlphaTextureChannelMask(), &m->getAlphaTextureCoordinateTransform()},
        {m->getNormalTextureId(), m->getNormalTextureCoordinatesId(),
         m->getNormalTextureChannelMask(), &m->getNormalTextureCoordinateTransform()},
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
        const Family     &f      = Families[i];
        TextureUse       &use    = uses[i];
        const std::string prefix = std::string("CSS_") + f.name;

        if(use.textureId < -1 || use.textureId > 15)
        {
            FWARNING(("CommonSurfaceShader: %s texture id %d is no texture unit, the family "
                      "goes without texture\n",
                      f.uniform, use.textureId));
            use.textureId = -1;
        }

        if(use.textureId >= 0)
        {
            if(use.coordinates < 0 || use.coordinates > 7)
            {
                FWARNING(("CommonSurfaceShader: %s texture coordinates %d are no coordinate "
                          "set, 0 is used\n",
                          f.uniform, use.coordinates));
                use.coordinates = 0;
            }
            if(!validMask(use.mask, f.kind, normalFormat))
            {
                FWARNING(("CommonSurfaceShader: %s channel mask '%s' is not usable, '%s' is "
                          "used\n",
                          f.uniform, use.mask.c_str(), f.defaultMask));
                use.mask = f.defaultMask;
            }
            const bool transformed = i < enabled.size() && enabled[i] != 0;
            coordinateSets |= 1u << use.coordinates;

            chunk->setUniformParameter(("css" + std::string(f.uniform) + "Texture").c_str(),
                                       use.textureId);
            if(transformed)
                chunk->setUniformParameter(
                    ("css" + std::string(f.uniform) + "Transform").c_str(), *use.transform);

            // an untextured family needs no define: it compiles the same
            // whatever its other fields say
            addDefine(config, prefix + "_TEXTURE", use.textureId);
            addDefine(config, prefix + "_TEXCOORD", use.coordinates);
            addDefine(config, prefix + "_CHANNELS", use.mask);
            addDefine(config, prefix + "_TRANSFORM", transformed ? 1 : 0);
        }
    }
    if(uses[NormalFamily].textureId >= 0)
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

    chunk->setIsTransparent(m->getAlphaFactor() < 1.f || uses[AlphaFamily].textureId >= 0);

    endEditCP(chunk, ShaderParameterChunk::ParametersFieldMask |
                         PermutationSHLChunk::PermutationParametersFieldMask |
                         PermutationSHLChunk::IsTransparentFieldMask);
}
