#include <OpenSG/OSGOculusRiftFilter2.h>

#include <OpenSG/LensFilterSupport.h>
#include <OpenSG/OSGLog.h>

#include <cmath>

OSG_BEGIN_NAMESPACE

// The grid's 0..1 fills the viewport without the camera.
const char *const OculusRiftFilter2::_vertexProgram = R"GLSL(
varying vec2 texCoord;

void main(void)
{
    gl_Position = vec4(gl_Vertex.x * 2.0 - 1.0, gl_Vertex.y * 2.0 - 1.0, 0.0, 1.0);
    texCoord = vec2(gl_Vertex.x, gl_Vertex.y);
}
)GLSL";

const char *const OculusRiftFilter2::_fragmentProgram = R"GLSL(
uniform sampler2D PostSceneColorTex;
uniform vec4 HmdWarpParam;
uniform vec2 LensCenter;
uniform vec2 Scale;
uniform vec4 Chroma;

varying vec2 texCoord;

const vec2 ScreenCenter = vec2(0.5, 0.5);
const vec2 ScaleIn = vec2(2.0, 2.5);

void main(void)
{
    vec2 theta = (texCoord - LensCenter) * ScaleIn;
    float rSq = theta.x * theta.x + theta.y * theta.y;
    float distort = HmdWarpParam.x +
                    (HmdWarpParam.y + (HmdWarpParam.z + HmdWarpParam.w * rSq) * rSq) * rSq;
    vec2 theta1 = theta * (Scale * distort);

    // blue is bent furthest, so it decides what lies outside the image
    vec2 uvBlue = LensCenter + theta1 * (Chroma.z + Chroma.w * rSq);
    vec2 clamped = clamp(uvBlue, ScreenCenter - vec2(0.5, 0.5), ScreenCenter + vec2(0.5, 0.5));
    if(distance(uvBlue, clamped) > 0.0)
        discard;

    float blue = texture2D(PostSceneColorTex, uvBlue).b;

    // green, the sharpest channel, averaged over the pixel's footprint
    vec2 uvGreen = LensCenter + theta1;
    vec2 d = 0.5 * (dFdx(uvGreen) + dFdy(uvGreen));
    vec4 box = vec4(uvGreen - d, uvGreen + d);
    float c = texture2D(PostSceneColorTex, box.xy).g +
              texture2D(PostSceneColorTex, box.zw).g +
              texture2D(PostSceneColorTex, box.xw).g +
              texture2D(PostSceneColorTex, box.zy).g;
    float green = (0.5 * c + texture2D(PostSceneColorTex, uvGreen).g) / (1.0 + 4.0 * 0.5);

    vec2 uvRed = LensCenter + theta1 * (Chroma.x + Chroma.y * rSq);
    float red = texture2D(PostSceneColorTex, uvRed).r;

    gl_FragColor = vec4(red, green, blue, 1.0);
}
)GLSL";

OculusRiftFilter2::OculusRiftFilter2(void) : Inherited(), _shlChunk(NullFC)
{
}

OculusRiftFilter2::OculusRiftFilter2(const OculusRiftFilter2 &source)
    : Inherited(source), _shlChunk(NullFC)
{
}

OculusRiftFilter2::~OculusRiftFilter2(void)
{
    releaseLensShader(_shlChunk);
}

void OculusRiftFilter2::initMethod(void)
{
}

void OculusRiftFilter2::changed(BitVector whichField, UInt32 origin)
{
    if(whichField & lensFieldsMask<OculusRiftFilter2Base>())
        updateShaderParameters();

    Inherited::changed(whichField, origin);
}

void OculusRiftFilter2::dump(UInt32, const BitVector) const
{
    SLOG << "Dump OculusRiftFilter2 NI" << std::endl;
}

void OculusRiftFilter2::createFilter(DisplayFilterForeground *fg, Viewport *)
{
    attachLensShader(fg, _shlChunk, _vertexProgram, _fragmentProgram);

    updateShaderParameters();
}

void OculusRiftFilter2::updateShaderParameters(void)
{
    if(_shlChunk == NullFC)
        return;

    const Vec4f &k = getDistortionK();

    // the lens centre's offset from the middle of one eye's 0..1
    const Real32 h = (1.f - 2.f * getLensSeparationDistance() / getHScreenSize()) * 0.5f;

    // the farthest corner from the lens: 0.390625 is 0.625^2, the half
    // height of the view under ScaleIn's y factor of 2.5
    const Real32 e = h + 0.5f;
    const Real32 r = std::sqrt(e * e + 0.390625f);

    const Real32 q       = r * r;
    const Real32 distort = ((k[3] * q + k[2]) * q + k[1]) * q + k[0];
    const Real32 s       = 1.f / (distort * r / r) * 0.5f;

    beginEditCP(_shlChunk);
    _shlChunk->setUniformParameter("PostSceneColorTex", Int32(0));
    _shlChunk->setUniformParameter("LensCenter", Vec2f(getLeftEye() ? 0.5f + h : 0.5f - h, 0.5f));
    _shlChunk->setUniformParameter("HmdWarpParam", k);
    _shlChunk->setUniformParameter("Scale", Vec2f(s, s * 0.8f));
    _shlChunk->setUniformParameter("Chroma", getChromaAbCorrection());
    endEditCP(_shlChunk);
}

OSG_END_NAMESPACE
