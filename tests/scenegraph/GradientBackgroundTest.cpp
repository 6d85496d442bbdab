// GradientBackground drawn into an EGL window: each pixel row (column for
// HORIZONTAL) against the colour interpolated linearly between the lines
// around its centre, black outside the first and last line; one line or
// none clears to that colour or black; an unknown style warns.
#include "GeometryRenderScene.h"

#include <OpenSG/OSGGradientBackground.h>

#include <cmath>
#include <cstdlib>

using namespace osg;
using namespace geometrytest;

namespace
{

/// The colour at fraction f of the list of lines (with black below the
/// first and above the last).
Color3f gradientAt(const std::vector<std::pair<Real32, Color3f> > &lines, Real32 f)
{
    std::vector<std::pair<Real32, Color3f> > l = lines;
    if(l.front().first > 0)
        l.insert(l.begin(), std::make_pair(0.f, Color3f(0, 0, 0)));
    if(l.back().first < 1)
        l.push_back(std::make_pair(1.f, Color3f(0, 0, 0)));
    for(size_t i = 0; i + 1 < l.size(); ++i)
    {
        if(f >= l[i].first && f <= l[i + 1].first && l[i + 1].first > l[i].first)
        {
            Real32 t = (f - l[i].first) / (l[i + 1].first - l[i].first);
            return l[i].second * (1 - t) + l[i + 1].second * t;
        }
    }
    return Color3f(0, 0, 0);
}

/// Largest channel difference over the image, along rows or columns.
Int32 worstDifference(const std::vector<UInt8> &img,
                      const std::vector<std::pair<Real32, Color3f> > &lines, bool vertical)
{
    Int32 worst = 0;
    for(UInt32 y = 0; y < H; ++y)
    {
        for(UInt32 x = 0; x < W; ++x)
        {
            Real32  f    = ((vertical ? y : x) + .5f) / (vertical ? H : W);
            Color3f want = gradientAt(lines, f);
            for(UInt32 c = 0; c < 3; ++c)
                worst = std::max(worst, std::abs(Int32(pixel(img, x, y)[c]) -
                                                 Int32(std::lround(want[c] * 255))));
        }
    }
    return worst;
}

} // namespace

TEST(GradientBackground, BandsAsTheLinesSay)
{
    RenderScene s;
    NEED_GL(s);

    GradientBackgroundPtr bg = GradientBackground::create();
    EXPECT_EQ(bg->getStyle(), UInt32(GradientBackground::VERTICAL));
    EXPECT_EQ(bg->getClearStencilBit(), -1);
    EXPECT_EQ(GradientBackground::ColorFieldId, 2u);
    EXPECT_EQ(GradientBackground::StyleFieldMask, BitVector(0x20));
    beginEditCP(s.vp, Viewport::BackgroundFieldMask);
    s.vp->setBackground(bg);
    endEditCP(s.vp, Viewport::BackgroundFieldMask);

    // from (0.7, 0.7, 0.8) at the bottom to (0, 0.1, 0.3) at the top
    std::vector<std::pair<Real32, Color3f> > lines = {{0.f, Color3f(.7f, .7f, .8f)},
                                                      {1.f, Color3f(0, .1f, .3f)}};
    beginEditCP(bg);
    for(auto &l : lines)
        bg->addLine(l.second, l.first);
    endEditCP(bg);
    std::vector<UInt8> img = s.render();
    savePNG(img, "gradient");
    // a rasterised smooth strip: one step of 8 bits off at most
    EXPECT_LE(worstDifference(img, lines, true), 2);

    // bands inside the viewport with black around them and a hard edge
    lines = {{.25f, Color3f(0, 0, 1)}, {.5f, Color3f(.8f, .8f, .8f)}, {.5f, Color3f(1, 0, 0)},
             {.75f, Color3f(1, 1, 0)}};
    for(UInt32 style : {UInt32(GradientBackground::VERTICAL), UInt32(GradientBackground::HORIZONTAL)})
    {
        beginEditCP(bg);
        bg->clearLines();
        for(auto &l : lines)
            bg->addLine(l.second, l.first);
        bg->setStyle(style);
        endEditCP(bg);
        img = s.render();
        EXPECT_LE(worstDifference(img, lines, style == GradientBackground::VERTICAL), 2)
            << "style " << style;
    }

    // one line: its colour; none: black
    beginEditCP(bg);
    bg->clearLines();
    bg->addLine(Color3f(0, 1, 0), .3f);
    endEditCP(bg);
    img = s.render();
    EXPECT_EQ(pixel(img, 10, 60)[1], 255);
    EXPECT_EQ(pixel(img, 10, 60)[0], 0);
    beginEditCP(bg);
    bg->clearLines();
    endEditCP(bg);
    img = s.render();
    EXPECT_EQ(pixel(img, 10, 60)[1], 0);

    LogCapture log(LOG_WARNING);
    beginEditCP(bg);
    bg->addLine(Color3f(1, 1, 1), 0);
    bg->addLine(Color3f(1, 1, 1), 1);
    bg->setStyle(7);
    endEditCP(bg);
    s.render();
    EXPECT_NE(log.take().find("GradientBackground: SFStyle has invalid value [7]."),
              std::string::npos);
}
