#include <OpenSG/OSGOculusRiftFilter.h>

#include <OpenSG/LensFilterSupport.h>
#include <OpenSG/OSGLog.h>

#include <cmath>

OSG_BEGIN_NAMESPACE

const char *const OculusRiftFilter::_vertexProgram = R"GLSL(
void main(void)
{
    gl_TexCoord[0] = gl_TextureMatrix[0] * gl_MultiTexCoord0;
    gl_Position = ftransform();
}
)GLSL";

namespace
{

// What the plain and the chromatic program share.
const char *const warpCommon = R"GLSL(#version 120

uniform vec2 Scale;
uniform vec2 ScaleIn;
uniform vec2 LensCenter;
uniform vec4 HmdWarpParam;
uniform sampler2D Texture;

// the point's offset from the lens centre, bent by the lens polynomial
vec2 warped(out float rSq)
{
    vec2 uv = gl_TexCoord[0].xy * 2.0 - 1.0;
    vec2 theta = (uv - LensCenter) * ScaleIn;
    rSq = theta.x * theta.x + theta.y * theta.y;
    return theta * (HmdWarpParam.x +
                    HmdWarpParam.y * rSq +
                    HmdWarpParam.z * rSq * rSq +
                    HmdWarpParam.w * rSq * rSq * rSq);
}

// the image's texture coordinate of a bent offset
vec2 lookup(vec2 theta)
{
    return (LensCenter + Scale * theta + 1.0) / 2.0;
}

bool outside(vec2 tc)
{
    return tc.x < 0.0 || tc.x > 1.0 || tc.y < 0.0 || tc.y > 1.0;
}
)GLSL";

} // namespace

const std::string OculusRiftFilter::_fragmentProgram = std::string(warpCommon) + R"GLSL(
void main(void)
{
    float rSq;
    vec2 tc = lookup(warped(rSq));

    if(outside(tc))
        gl_FragColor = vec4(0.0, 0.0, 0.0, 1.0);
    else
        gl_FragColor = texture2D(Texture, tc);
}
)GLSL";

const std::string OculusRiftFilter::_chromaFragmentProgram = std::string(warpCommon) + R"GLSL(
uniform vec4 ChromAbParam;

void main(void)
{
    float rSq;
    vec2 theta1 = warped(rSq);

    // blue is bent furthest, so it decides what lies outside the image
    vec2 tcBlue = lookup(theta1 * (ChromAbParam.z + ChromAbParam.w * rSq));

    if(outside(tcBlue))
    {
        gl_FragColor = vec4(0.0, 0.0, 0.0, 1.0);
        return;
    }

    float blue = texture2D(Texture, tcBlue).b;

    vec4 center = texture2D(Texture, lookup(theta1));

    float red = texture2D(Texture, lookup(theta1 * (ChromAbParam.x + ChromAbParam.y * rSq))).r;

    gl_FragColor = vec4(red, center.g, blue, center.a);
}
)GLSL";

OculusRiftFilter::OculusRiftFilter(void) : Inherited(), _shlChunk(NullFC), _chromaActive(false)
{
}

OculusRiftFilter::OculusRiftFilter(const OculusRiftFilter &source)
    : Inherited(source), _shlChunk(NullFC), _chromaActive(false)
{
}

OculusRiftFilter::~OculusRiftFilter(void)
{
    releaseLensShader(_shlChunk);
}

void OculusRiftFilter::initMethod(void)
{
}

void OculusRiftFilter::changed(BitVector whichField, UInt32 origin)
{
    if(whichField & lensFieldsMask<OculusRiftFilterBase>())
        updateShaderParameters();

    Inherited::changed(whichField, origin);
}

void OculusRiftFilter::dump(UInt32, const BitVector) const
{
    SLOG << "Dump OculusRiftFilter NI" << std::endl;
}

bool OculusRiftFilter::wantsChroma(void) const
{
    const Vec4f &a     = getChromaAbCorrection();
    const Real32 id[4] = {1.f, 0.f, 1.f, 0.f};

    for(UInt32 i = 0; i < 4; ++i)
        if(std::fabs(a[i] - id[i]) > 1e-6f)
            return true;

    return false;
}

void OculusRiftFilter::createFilter(DisplayFilterForeground *fg, Viewport *)
{
    // The opposite of what is wanted, so that updateShaderParameters sets
    // the fragment program.
    _chromaActive = !wantsChroma();

    attachLensShader(fg, _shlChunk, _vertexProgram, NULL);

    updateShaderParameters();
}

void OculusRiftFilter::updateShaderParameters(void)
{
    if(_shlChunk == NullFC)
        return;

    const Vec4f &k = getDistortionK();

    const Real32 aspect = Real32(getWidth()) / Real32(getHeight() * 2);

    // the lens centre on the -1..1 axis of one eye
    const Real32 c = 1.f - 2.f * getLensSeparationDistance() / getHScreenSize();

    // the far edge seen from the lens still fits after the warp
    const Real32 r   = -1.f - c;
    const Real32 rSq = r * r;
    const Real32 fit = k[0] + k[1] * rSq + k[2] * rSq * rSq + k[3] * rSq * rSq * rSq;

    const bool wanted = wantsChroma();

    beginEditCP(_shlChunk);

    if(wanted != _chromaActive)
    {
        _chromaActive = wanted;
        _shlChunk->setFragmentProgram(wanted ? _chromaFragmentProgram : _fragmentProgram);
    }

    _shlChunk->setUniformParameter("Texture", Int32(0));
    _shlChunk->setUniformParameter("HmdWarpParam", k);

    // The plain program has no such uniform.
    if(wanted)
        _shlChunk->setUniformParameter("ChromAbParam", getChromaAbCorrection());
    else
        _shlChunk->subUniformParameter("ChromAbParam"); // false when it has none

    _shlChunk->setUniformParameter("ScaleIn", Vec2f(1.f, 1.f / aspect));
    _shlChunk->setUniformParameter("Scale", Vec2f(1.f / fit, aspect / fit));
    _shlChunk->setUniformParameter("LensCenter", Vec2f(getLeftEye() ? c : -c, 0.f));

    endEditCP(_shlChunk);
}

OSG_END_NAMESPACE
