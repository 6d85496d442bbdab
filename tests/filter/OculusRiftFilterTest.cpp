// The lens-warp filters in whole frames: two eyes of 64 x 80 pixels side by
// side, each port with its own filter foreground, the right one showing the
// left one's picture mirrored. The warped pixels are compared with the
// filters' maths done on the CPU over the same picture (bilinear lookups,
// black outside the image), the right eye with the mirror of the left; the
// uniforms are checked against their formulas, and field edits after the
// build must reach the screen (program swap for the chromatic correction
// included).
#include "filter/FilterTestSupport.h"

#include <OpenSG/OSGOculusRiftFilter.h>
#include <OpenSG/OSGOculusRiftFilter2.h>

using namespace osg;
using namespace filtertest;

namespace
{

const Int32 EyeW = 64, EyeH = 80;

/// Smooth ramps in every channel: bilinear lookups reproduce them.
RGBA gradient(Int32 x, Int32 y)
{
    return RGBA{UInt8(x * 4), UInt8(y * 3), UInt8(255 - x * 2 - y), 255};
}

/// The ramps on a checkerboard of 8-pixel squares: sharp edges show any
/// misplaced lookup.
RGBA checker(Int32 x, Int32 y)
{
    const RGBA c = gradient(x, y);
    if(((x / 8) + (y / 8)) % 2 == 0)
        return c;
    return RGBA{UInt8(c.r / 3), UInt8(c.g / 3), UInt8(c.b / 3), 255};
}

Picture picture(const std::function<RGBA(Int32, Int32)> &fn)
{
    Picture p;
    p.w = EyeW;
    p.h = EyeH;
    for(Int32 y = 0; y < EyeH; ++y)
        for(Int32 x = 0; x < EyeW; ++x)
            p.px.push_back(fn(x, y));
    return p;
}

/// The fields both filters read.
struct Lens
{
    Vec4f  k       = Vec4f(1.f, 0.22f, 0.24f, 0.f);
    Vec4f  chroma  = Vec4f(1.f, 0.f, 1.f, 0.f);
    UInt32 width   = 1280;
    UInt32 height  = 800;
    Real32 lensSep = 0.064f;
    Real32 hScreen = 0.14976f;
    bool   left    = true;
};

/// A reference pixel and whether the lookup that decides black lies too
/// near the image's edge to tell.
struct Expected
{
    Colour colour;
    bool   nearEdge;
};

bool outside(Real32 s, Real32 t)
{
    return s < 0.f || s > 1.f || t < 0.f || t > 1.f;
}

bool nearBorder(Real32 s, Real32 t, Real32 margin)
{
    return std::fabs(s) < margin || std::fabs(s - 1.f) < margin || std::fabs(t) < margin ||
           std::fabs(t - 1.f) < margin;
}

const Colour Black = {0.f, 0.f, 0.f};

/// OculusRiftFilter at pixel (x, y) of an eye showing src.
Expected riftPixel(const Picture &src, const Lens &l, bool chromatic, Int32 x, Int32 y)
{
    const Real32 aspect = Real32(l.width) / Real32(l.height * 2);
    const Real32 c      = 1.f - 2.f * l.lensSep / l.hScreen;
    const Real32 r      = -1.f - c;
    const Real32 fit =
        l.k[0] + l.k[1] * r * r + l.k[2] * r * r * r * r + l.k[3] * r * r * r * r * r * r;
    const Real32 lc = l.left ? c : -c;

    const Real32 u = (x + 0.5f) / EyeW * 2.f - 1.f, v = (y + 0.5f) / EyeH * 2.f - 1.f;
    const Real32 tx = (u - lc) * 1.f, ty = v * (1.f / aspect);
    const Real32 rSq = tx * tx + ty * ty;
    const Real32 d   = l.k[0] + l.k[1] * rSq + l.k[2] * rSq * rSq + l.k[3] * rSq * rSq * rSq;

    // the lookup at the warped radius times f
    auto at = [&](Real32 f, Real32 &s, Real32 &t)
    {
        s = (lc + (1.f / fit) * tx * d * f + 1.f) / 2.f;
        t = (0.f + (aspect / fit) * ty * d * f + 1.f) / 2.f;
    };

    Real32 s, t;
    at(1.f, s, t);
    const Real32 margin = 1.5f / EyeW;

    if(!chromatic)
    {
        if(outside(s, t))
            return Expected{Black, nearBorder(s, t, margin)};
        return Expected{sampleLinear(src, s, t), nearBorder(s, t, margin)};
    }

    Real32 sb, tb, sr, tr;
    at(l.chroma[2] + l.chroma[3] * rSq, sb, tb);
    at(l.chroma[0] + l.chroma[1] * rSq, sr, tr);

    if(outside(sb, tb))
        return Expected{Black, nearBorder(sb, tb, margin)};

    return Expected{Colour{sampleLinear(src, sr, tr).r, sampleLinear(src, s, t).g,
                           sampleLinear(src, sb, tb).b},
                    nearBorder(sb, tb, margin)};
}

/// OculusRiftFilter2 at pixel (x, y) of an eye showing src.
Expected rift2Pixel(const Picture &src, const Lens &l, Int32 x, Int32 y)
{
    const Real32 h  = (1.f - 2.f * l.lensSep / l.hScreen) * 0.5f;
    const Real32 e  = h + 0.5f;
    const Real32 r  = std::sqrt(e * e + 0.390625f);
    const Real32 q  = r * r;
    const Real32 dq = ((l.k[3] * q + l.k[2]) * q + l.k[1]) * q + l.k[0];
    const Real32 sc = 1.f / (dq * r / r) * 0.5f;
    const Real32 lx = l.left ? 0.5f + h : 0.5f - h, ly = 0.5f;

    // theta1 and rSq at the centre of pixel (px, py)
    auto warp = [&](Int32 px, Int32 py, Real32 &t1x, Real32 &t1y)
    {
        const Real32 tx  = ((px + 0.5f) / EyeW - lx) * 2.f;
        const Real32 ty  = ((py + 0.5f) / EyeH - ly) * 2.5f;
        const Real32 rSq = tx * tx + ty * ty;
        const Real32 d   = l.k[0] + (l.k[1] + (l.k[2] + l.k[3] * rSq) * rSq) * rSq;
        t1x              = tx * sc * d;
        t1y              = ty * sc * 0.8f * d;
        return rSq;
    };

    Real32       t1x, t1y;
    const Real32 rSq = warp(x, y, t1x, t1y);

    const Real32 fb = l.chroma[2] + l.chroma[3] * rSq, fr = l.chroma[0] + l.chroma[1] * rSq;
    const Real32 sb = lx + t1x * fb, tb = ly + t1y * fb;
    const Real32 sg = lx + t1x, tg = ly + t1y;

    // The green footprint: screen derivatives as differences across the
    // 2 x 2 block of pixels that GL shades together.
    Real32 ax, ay, bx, by, cx, cy;
    warp(x & ~1, y & ~1, ax, ay);
    warp((x & ~1) + 1, y & ~1, bx, by);
    warp(x & ~1, (y & ~1) + 1, cx, cy);
    const Real32 dx = 0.5f * ((bx - ax) + (cx - ax)), dy = 0.5f * ((by - ay) + (cy - ay));
    const Real32 corners = sampleLinear(src, sg - dx, tg - dy).g +
                           sampleLinear(src, sg + dx, tg + dy).g +
                           sampleLinear(src, sg - dx, tg + dy).g +
                           sampleLinear(src, sg + dx, tg - dy).g;
    const Real32 green = (0.5f * corners + sampleLinear(src, sg, tg).g) / 3.f;

    // the green box reaches about a texel beyond the centre
    const bool edge = nearBorder(sb, tb, 1.5f / EyeW) || nearBorder(sg, tg, 2.5f / EyeW);

    if(outside(sb, tb))
        return Expected{Black, edge};

    return Expected{Colour{sampleLinear(src, lx + t1x * fr, ly + t1y * fr).r, green,
                           sampleLinear(src, sb, tb).b},
                    edge};
}

/// Two eyes side by side; FilterT is OculusRiftFilter or OculusRiftFilter2.
template <class FilterT>
class Eyes : public FilterFrame
{
  protected:
    typedef typename FilterT::Ptr FilterPtr;

    Eyes(void) : FilterFrame(2 * EyeW, EyeH) {}

    /// Both eyes, the right one mirrored, each with its filter built at the
    /// first frame.
    void build(const std::function<RGBA(Int32, Int32)> &fn)
    {
        source = picture(fn);

        leftFilters  = pictureQuad(0, 0, EyeW, EyeH, fn);
        rightFilters = pictureQuad(EyeW, 0, EyeW, EyeH,
                                   [fn](Int32 x, Int32 y) { return fn(EyeW - 1 - x, y); });

        left  = FilterT::create();
        right = FilterT::create();
        keep(left);
        keep(right);

        // before the build: only the field changes
        beginEditCP(right);
        right->setLeftEye(false);
        endEditCP(right);

        setFilter(leftFilters, left);
        setFilter(rightFilters, right);
    }

    SHLChunkPtr shader(const DisplayFilterForegroundPtr &filters)
    {
        return shaderOf(filters->findReadbackGroup("ColorDisplayFilter")->getMaterial());
    }

    Picture leftEye(const std::string &png = "") { return grab(0, 0, EyeW, EyeH, png); }
    Picture rightEye(void) { return grab(EyeW, 0, EyeW, EyeH); }

    /// Checks an eye against reference(x, y), leaving out the pixels too
    /// near the border of the image.
    void expectEye(const char *name, const Picture &got,
                   const std::function<Expected(Int32, Int32)> &reference)
    {
        UInt32 black = 0, checked = 0;
        const UInt32 wrong = countWrong(
            name, got, [&](Int32 x, Int32 y) { return reference(x, y).colour; }, 3,
            [&](Int32 x, Int32 y)
            {
                const Expected e = reference(x, y);
                if(!e.nearEdge)
                {
                    ++checked;
                    black += e.colour.r == 0.f && e.colour.g == 0.f && e.colour.b == 0.f;
                }
                return e.nearEdge;
            });
        EXPECT_EQ(wrong, 0u) << name;

        // both the warped image and the black around it are seen
        EXPECT_GT(black, 50u) << name;
        EXPECT_GT(checked - black, UInt32(EyeW * EyeH / 2)) << name;
    }

    /// The right eye must be the left one mirrored.
    void expectMirrored(const char *name, const Picture &l, const Picture &r)
    {
        const UInt32 wrong = countWrong(name, r,
                                        [&](Int32 x, Int32 y)
                                        { return toColour(l.at(EyeW - 1 - x, y)); },
                                        2);
        EXPECT_EQ(wrong, 0u) << name;
    }

    Picture                    source;
    DisplayFilterForegroundPtr leftFilters, rightFilters;
    FilterPtr                  left, right;
};

typedef Eyes<OculusRiftFilter>  RiftFilter;
typedef Eyes<OculusRiftFilter2> RiftFilter2;

} // namespace

TEST_F(RiftFilter, DefaultsGivePlainWarpOfBothEyes)
{
    build(checker);
    frame();

    // c = 1 - 2 * 0.064 / 0.14976 in single precision
    SHLChunkPtr shl = shader(leftFilters);
    ASSERT_TRUE(shl != NullFC);
    Vec2f lensCentre, scale, scaleIn;
    Vec4f k;
    Int32 unit = -1;
    ASSERT_TRUE(shl->getUniformParameter("LensCenter", lensCentre));
    EXPECT_FLOAT_EQ(lensCentre[0], 0.1452991f);
    EXPECT_EQ(lensCentre[1], 0.f);
    EXPECT_TRUE(shl->getUniformParameter("Texture", unit));
    EXPECT_EQ(unit, 0);
    EXPECT_TRUE(shl->getUniformParameter("HmdWarpParam", k));
    EXPECT_EQ(k, Vec4f(1.f, 0.22f, 0.24f, 0.f));

    const Real32 r   = -1.f - 0.1452991f;
    const Real32 fit = 1.f + 0.22f * r * r + 0.24f * r * r * r * r;
    EXPECT_TRUE(shl->getUniformParameter("ScaleIn", scaleIn));
    EXPECT_TRUE(shl->getUniformParameter("Scale", scale));
    EXPECT_FLOAT_EQ(scaleIn[0], 1.f);
    EXPECT_FLOAT_EQ(scaleIn[1], 1.f / 0.8f);
    EXPECT_FLOAT_EQ(scale[0], 1.f / fit);
    EXPECT_FLOAT_EQ(scale[1], 0.8f / fit);

    // the plain program, without the chromatic parameter
    EXPECT_FALSE(shl->hasUniformParameter("ChromAbParam"));
    EXPECT_EQ(shl->getFragmentProgram().find("ChromAbParam"), std::string::npos);

    EXPECT_TRUE(shader(rightFilters)->getUniformParameter("LensCenter", lensCentre));
    EXPECT_FLOAT_EQ(lensCentre[0], -0.1452991f);

    const Lens    lens;
    const Picture l = leftEye("rift_plain");
    expectEye("plain", l,
              [&](Int32 x, Int32 y) { return riftPixel(source, lens, false, x, y); });
    expectMirrored("plain mirrored", l, rightEye());
}

TEST_F(RiftFilter, ChromaticCorrectionSwapsTheProgramBackAndForth)
{
    build(checker);
    frame();
    const Picture plain = leftEye();
    const std::string plainProgram = shader(leftFilters)->getFragmentProgram();

    // Away from (1, 0, 1, 0): the chromatic program and its parameter.
    const Vec4f small(0.996f, -0.004f, 1.014f, 0.f);
    beginEditCP(left);
    left->setChromaAbCorrection(small);
    endEditCP(left);

    SHLChunkPtr shl = shader(leftFilters);
    Vec4f       a;
    EXPECT_TRUE(shl->getUniformParameter("ChromAbParam", a));
    EXPECT_EQ(a, small);
    EXPECT_NE(shl->getFragmentProgram(), plainProgram);
    EXPECT_NE(shl->getFragmentProgram().find("ChromAbParam"), std::string::npos);
    frame();

    // A strong correction, so that the channels part visibly.
    Lens lens;
    lens.chroma = Vec4f(0.9f, -0.02f, 1.08f, 0.03f);
    beginEditCP(left);
    left->setChromaAbCorrection(lens.chroma);
    endEditCP(left);
    frame();
    expectEye("chromatic", leftEye("rift_chromatic"),
              [&](Int32 x, Int32 y) { return riftPixel(source, lens, true, x, y); });

    // Back at the default: the plain program again, and no parameter the
    // program lacks (that would be warned about at the frame).
    beginEditCP(left);
    left->setChromaAbCorrection(Vec4f(1.f, 0.f, 1.f, 0.f));
    endEditCP(left);
    EXPECT_FALSE(shl->hasUniformParameter("ChromAbParam"));
    EXPECT_EQ(shl->getFragmentProgram(), plainProgram);
    frame();
    EXPECT_TRUE(leftEye().px == plain.px);

    // Within 1e-6 of the default still counts as the default.
    beginEditCP(left);
    left->setChromaAbCorrection(Vec4f(1.f, 0.f, 1.0000005f, 0.f));
    endEditCP(left);
    EXPECT_FALSE(shl->hasUniformParameter("ChromAbParam"));
}

TEST_F(RiftFilter, FieldEditsAfterTheBuildReachTheScreen)
{
    build(checker);
    frame();

    // Another lens, panel and eye for the left port.
    Lens lens;
    lens.k       = Vec4f(1.f, 0.4f, 0.1f, 0.05f);
    lens.width   = 1000;
    lens.height  = 700;
    lens.lensSep = 0.07f;
    lens.left    = false;
    beginEditCP(left);
    left->setDistortionK(lens.k);
    left->setWidth(lens.width);
    left->setHeight(lens.height);
    left->setLensSeparationDistance(lens.lensSep);
    left->setLeftEye(false);
    endEditCP(left);

    frame();
    expectEye("edited", leftEye("rift_edited"),
              [&](Int32 x, Int32 y) { return riftPixel(source, lens, false, x, y); });

    // The eye flag alone flips the sign of the lens centre.
    Vec2f before, after;
    SHLChunkPtr shl = shader(leftFilters);
    EXPECT_TRUE(shl->getUniformParameter("LensCenter", before));
    beginEditCP(left);
    left->setLeftEye(true);
    endEditCP(left);
    EXPECT_TRUE(shl->getUniformParameter("LensCenter", after));
    EXPECT_EQ(after, Vec2f(-before[0], before[1]));
}

TEST_F(RiftFilter, EditsSurviveTheForegroundDroppingItsGroups)
{
    build(gradient);
    frame();

    // The foreground lets go of its groups and with them of the material
    // holding the shader; an edit of the filter afterwards must be harmless.
    setFilter(leftFilters, NullFC);
    beginEditCP(left);
    left->setChromaAbCorrection(Vec4f(0.9f, 0.f, 1.1f, 0.f));
    left->setDistortionK(Vec4f(1.f, 0.3f, 0.f, 0.f));
    endEditCP(left);
    frame();

    // Built again with the new fields.
    setFilter(leftFilters, left);
    frame();
    EXPECT_TRUE(shader(leftFilters)->hasUniformParameter("ChromAbParam"));
}

TEST_F(RiftFilter2, WarpsWithChromaAndDiscardsOutside)
{
    build(gradient);
    frame();

    SHLChunkPtr shl = shader(leftFilters);
    ASSERT_TRUE(shl != NullFC);
    const Real32 h = (1.f - 2.f * 0.064f / 0.14976f) * 0.5f;
    Vec2f        lensCentre, scale;
    Vec4f        chroma;
    Int32        unit = -1;
    EXPECT_TRUE(shl->getUniformParameter("PostSceneColorTex", unit));
    EXPECT_EQ(unit, 0);
    EXPECT_TRUE(shl->getUniformParameter("LensCenter", lensCentre));
    EXPECT_FLOAT_EQ(lensCentre[0], 0.5f + h);
    EXPECT_FLOAT_EQ(lensCentre[1], 0.5f);
    EXPECT_TRUE(shader(rightFilters)->getUniformParameter("LensCenter", lensCentre));
    EXPECT_FLOAT_EQ(lensCentre[0], 0.5f - h);
    EXPECT_TRUE(shl->getUniformParameter("Chroma", chroma));
    EXPECT_EQ(chroma, Vec4f(1.f, 0.f, 1.f, 0.f));

    const Real32 e = h + 0.5f, q = e * e + 0.390625f;
    const Real32 s = 0.5f / (1.f + 0.22f * q + 0.24f * q * q);
    EXPECT_TRUE(shl->getUniformParameter("Scale", scale));
    EXPECT_NEAR(scale[0], s, 1e-6f);
    EXPECT_NEAR(scale[1], s * 0.8f, 1e-6f);

    Lens lens;
    Picture l = leftEye("rift2_plain");
    expectEye("rift2", l, [&](Int32 x, Int32 y) { return rift2Pixel(source, lens, x, y); });
    expectMirrored("rift2 mirrored", l, rightEye());

    // The chromatic correction is always in the program.
    lens.chroma = Vec4f(0.9f, -0.02f, 1.08f, 0.03f);
    beginEditCP(left);
    left->setChromaAbCorrection(lens.chroma);
    endEditCP(left);
    frame();
    expectEye("rift2 chromatic", leftEye("rift2_chromatic"),
              [&](Int32 x, Int32 y) { return rift2Pixel(source, lens, x, y); });
}

TEST_F(RiftFilter2, PanelPixelsAndHeightAlterNothingButRecomputeTheUniforms)
{
    build(gradient);
    frame();
    const Picture before = leftEye();

    // Spoil a uniform; any field edit computes all of them again.
    SHLChunkPtr shl = shader(leftFilters);
    Vec2f       scale;
    EXPECT_TRUE(shl->getUniformParameter("Scale", scale));
    beginEditCP(shl);
    shl->setUniformParameter("Scale", Vec2f(3.f, 3.f));
    endEditCP(shl);

    beginEditCP(left);
    left->setWidth(333);
    left->setHeight(77);
    left->setVScreenSize(0.5f);
    endEditCP(left);

    Vec2f again;
    EXPECT_TRUE(shl->getUniformParameter("Scale", again));
    EXPECT_EQ(again, scale);
    frame();
    EXPECT_TRUE(leftEye().px == before.px);

    // The lens separation does move the picture.
    beginEditCP(left);
    left->setLensSeparationDistance(0.07f);
    endEditCP(left);
    frame();
    EXPECT_FALSE(leftEye().px == before.px);

    Lens lens;
    lens.lensSep = 0.07f;
    expectEye("rift2 separated", leftEye(),
              [&](Int32 x, Int32 y) { return rift2Pixel(source, lens, x, y); });
}

TEST_F(RiftFilter2, GreenIsFilteredOverThePixelFootprint)
{
    // Sharp edges: the footprint filter softens green across them, red and
    // blue stay single lookups.
    build(checker);
    frame();

    const Lens lens;
    expectEye("rift2 checker", leftEye("rift2_checker"),
              [&](Int32 x, Int32 y) { return rift2Pixel(source, lens, x, y); });
}

TEST(RiftFilterNoBuild, UpdatesBeforeTheBuildDoNothing)
{
    OculusRiftFilterPtr  a = OculusRiftFilter::create();
    OculusRiftFilter2Ptr b = OculusRiftFilter2::create();
    addRefCP(a);
    addRefCP(b);

    a->updateShaderParameters();
    b->updateShaderParameters();
    beginEditCP(a);
    a->setLeftEye(false);
    endEditCP(a);
    beginEditCP(b);
    b->setDistortionK(Vec4f(1.f, 0.f, 0.f, 0.f));
    endEditCP(b);

    EXPECT_FALSE(a->getLeftEye());
    subRefCP(b);
    subRefCP(a);
}
