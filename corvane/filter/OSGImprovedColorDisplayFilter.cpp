#include <OpenSG/OSGImprovedColorDisplayFilter.h>

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGDisplayFilterForeground.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGState.h>
#include <OpenSG/OSGTextureChunk.h>

#include <vector>

OSG_BEGIN_NAMESPACE

// The foreground's quad runs over 0..1, so gl_Vertex.xy is the screen
// position; texture matrix 1 carries the scale of a table stored in a
// bigger texture.
const char *const ImprovedColorDisplayFilter::_vertexProgram = R"GLSL(
varying vec2 position;
varying mat4 shadingTexMat;

void main(void)
{
    gl_TexCoord[0] = gl_TextureMatrix[0] * gl_MultiTexCoord0;
    shadingTexMat = gl_TextureMatrix[1];
    gl_Position = ftransform();
    position = gl_Vertex.xy;
}
)GLSL";

namespace
{

// What the normal and the debug program share.
const char *const shadingCommon = R"GLSL(
uniform sampler2D grabTexture;
uniform sampler3D shadingTexture;
uniform mat4 colorMatrix;
uniform float gamma;
uniform int shadingWidth;
uniform int shadingHeight;
uniform int shadingDepth;

varying vec2 position;
varying mat4 shadingTexMat;

// linearised, then through the colour matrix
vec4 calibrated(vec4 color)
{
    color.rgb = clamp(color.rgb, 0.0, 1.0);

    color.r = pow(color.r, gamma);
    color.g = pow(color.g, gamma);
    color.b = pow(color.b, gamma);

    return color * colorMatrix;
}

// 0..1 runs from the centre of the first to that of the last of n texels
float centred(float v, int n)
{
    float s = float(n - 1) / float(n);
    return v * s + (1.0 - s) / 2.0;
}

vec2 tablePosition(void)
{
    return vec2(centred(position.x, shadingWidth), centred(position.y, shadingHeight));
}

vec3 tableCoordinate(vec2 pos, float value)
{
    return (shadingTexMat * vec4(pos, value, 1.0)).xyz;
}
)GLSL";

} // namespace

const std::string ImprovedColorDisplayFilter::_fragmentProgram = std::string(shadingCommon) + R"GLSL(
void main(void)
{
    vec4 color = calibrated(texture2D(grabTexture, gl_TexCoord[0].xy));

    color.r = centred(color.r, shadingDepth);
    color.g = centred(color.g, shadingDepth);
    color.b = centred(color.b, shadingDepth);

    vec2 pos = tablePosition();

    color.r = texture3D(shadingTexture, tableCoordinate(pos, color.r)).r;
    color.g = texture3D(shadingTexture, tableCoordinate(pos, color.g)).g;
    color.b = texture3D(shadingTexture, tableCoordinate(pos, color.b)).b;

    gl_FragColor = color;
}
)GLSL";

// Shows the top of the table's colour axis across the screen, over a probe
// colour instead of the grabbed image. Explicit levels in a fragment stage
// need the texture-lod extension before GLSL 1.30.
const std::string ImprovedColorDisplayFilter::_debugFragmentProgram =
    "#extension GL_ARB_shader_texture_lod : enable\n" + std::string(shadingCommon) + R"GLSL(
uniform vec4 debugColor;

void main(void)
{
    vec4 color = calibrated(vec4(debugColor.rgb, 0.5));

    color.r = centred(color.r, shadingDepth);
    color.g = centred(color.g, shadingDepth);
    color.b = centred(color.b, shadingDepth);

    vec2 pos = tablePosition();

    color.rgb = vec3(1.0, 1.0, 1.0);

    color.r = texture3DLod(shadingTexture, tableCoordinate(pos, color.r), 0.0).r;
    color.g = texture3DLod(shadingTexture, tableCoordinate(pos, color.g), 0.0).g;
    color.b = texture3DLod(shadingTexture, tableCoordinate(pos, color.b), 0.0).b;

    gl_FragColor = color;
}
)GLSL";

ImprovedColorDisplayFilter::ImprovedColorDisplayFilter(void)
    : Inherited(), _shadingImage(NullFC), _shlChunk(NullFC)
{
}

ImprovedColorDisplayFilter::ImprovedColorDisplayFilter(const ImprovedColorDisplayFilter &source)
    : Inherited(source), _shadingImage(NullFC), _shlChunk(NullFC)
{
}

ImprovedColorDisplayFilter::~ImprovedColorDisplayFilter(void)
{
    releaseChunks();
}

void ImprovedColorDisplayFilter::initMethod(void)
{
}

void ImprovedColorDisplayFilter::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ImprovedColorDisplayFilter::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ImprovedColorDisplayFilter NI" << std::endl;
}

void ImprovedColorDisplayFilter::releaseChunks(void)
{
    if(_shadingImage != NullFC)
        subRefCP(_shadingImage);
    if(_shlChunk != NullFC)
        subRefCP(_shlChunk);

    _shadingImage = NullFC;
    _shlChunk     = NullFC;
}

void ImprovedColorDisplayFilter::createFilter(DisplayFilterForeground *fg, Viewport *)
{
    DisplayFilterForeground::DisplayFilterGroup *group =
        fg->findReadbackGroup("ImprovedColorDisplayFilter");

    // A rebuild of the foreground makes everything anew.
    releaseChunks();

    _shlChunk = SHLChunk::create();
    addRefCP(_shlChunk);
    beginEditCP(_shlChunk);
    _shlChunk->setVertexProgram(_vertexProgram);
    _shlChunk->setFragmentProgram(getDebugMode() != 0 ? _debugFragmentProgram
                                                      : _fragmentProgram);
    _shlChunk->setUniformParameter("grabTexture", Int32(0));
    _shlChunk->setUniformParameter("shadingTexture", Int32(1));
    endEditCP(_shlChunk);

    const GLenum filter = getDebugMode() == 2 ? GL_NEAREST : GL_LINEAR;

    _shadingImage = Image::create();
    addRefCP(_shadingImage);

    // The table may have any size: no scaling to powers of two, and where
    // the texture has to be bigger the texture matrix gets the correction.
    TextureChunkPtr shading = TextureChunk::create();
    beginEditCP(shading);
    shading->setImage(_shadingImage);
    shading->setMinFilter(filter);
    shading->setMagFilter(filter);
    shading->setWrapS(GL_CLAMP_TO_EDGE);
    shading->setWrapT(GL_CLAMP_TO_EDGE);
    shading->setWrapR(GL_CLAMP_TO_EDGE);
    shading->setScale(false);
    shading->setNPOTMatrixScale(TextureChunk::NPotTexScale_TT);
    endEditCP(shading);

    // The grab is unit 0, so the table becomes unit 1.
    ChunkMaterialPtr mat = group->getMaterial();
    beginEditCP(mat, ChunkMaterial::ChunksFieldMask);
    mat->addChunk(shading, State::AutoSlotReplace);
    mat->addChunk(_shlChunk, State::AutoSlotReplace);
    endEditCP(mat, ChunkMaterial::ChunksFieldMask);

    updateFilterValues();
}

void ImprovedColorDisplayFilter::updateFilterValues(void)
{
    if(_shadingImage == NullFC || _shlChunk == NullFC)
        return;

    UInt32 w = getWidth();
    UInt32 h = getHeight();
    UInt32 d = getDepth();

    const MFVec3f &entries = getTable();

    std::vector<UInt8> bytes;

    if(entries.size() == size_t(w) * size_t(h) * size_t(d))
    {
        bytes.resize(entries.size() * 3);

        for(size_t i = 0; i < entries.size(); ++i)
            for(UInt32 c = 0; c < 3; ++c)
                bytes[i * 3 + c] = UInt8(entries[i][c] * 255.f);
    }
    else
    {
        FWARNING(("Wrong shanding table size\n"));

        // The identity ramp; the fields stay as they are.
        w = 1;
        h = 1;
        d = 2;

        const UInt8 ramp[6] = {0, 0, 0, 255, 255, 255};
        bytes.assign(ramp, ramp + 6);
    }

    beginEditCP(_shadingImage);
    _shadingImage->set(GL_RGB, w, h, d, 1, 1, 0.0, bytes.empty() ? NULL : &bytes[0],
                       GL_UNSIGNED_BYTE);
    endEditCP(_shadingImage);

    beginEditCP(_shlChunk);
    _shlChunk->setUniformParameter("colorMatrix", getMatrix());
    _shlChunk->setUniformParameter("gamma", getGamma());
    _shlChunk->setUniformParameter("shadingWidth", Int32(w));
    _shlChunk->setUniformParameter("shadingHeight", Int32(h));
    _shlChunk->setUniformParameter("shadingDepth", Int32(d));
    if(getDebugMode() != 0)
        _shlChunk->setUniformParameter("debugColor", getDebugColor());
    endEditCP(_shlChunk);
}

OSG_END_NAMESPACE
