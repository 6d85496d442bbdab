// Display filters in whole frames: a trivial inverting filter turns the
// port's image into its negative pixel for pixel; filters are created once
// and updated every frame; groups are shared by name and chained in the
// order they were asked for; the stock colour, distortion and resolution
// filters build working groups.
#include "WindowTestSupport.h"

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGColorDisplayFilter.h>
#include <OpenSG/OSGDisplayFilterForeground.h>
#include <OpenSG/OSGDisplayFilterTestInverter.h>
#include <OpenSG/OSGDistortionDisplayFilter.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGPolygonForeground.h>
#include <OpenSG/OSGResolutionDisplayFilter.h>
#include <OpenSG/OSGTextureChunk.h>

#include <cmath>
#include <functional>

using namespace osg;
using namespace wintest;

namespace
{

const RGBA Back   = {128, 128, 128, 255};

// The filtered port: pixels 8..39 x 4..27 (32 x 24) of a 64 x 48 window.
const Int32 PortL = 8, PortB = 4, PortW = 32, PortH = 24;

/// What the filtered port shows before filtering, in its own pixels: the
/// background with a four-colour quad over columns 4..27 and rows 4..19.
RGBA portImage(Int32 x, Int32 y)
{
    if(x >= 4 && x <= 27 && y >= 4 && y <= 19)
        return y < 12 ? (x < 16 ? Red : Green) : (x < 16 ? Blue : Yellow);
    return Back;
}

RGBA invert(const RGBA &c)
{
    return RGBA{UInt8(255 - c.r), UInt8(255 - c.g), UInt8(255 - c.b), 255};
}

class FilterFixture : public FrameFixture
{
  protected:
    void SetUp(void) override
    {
        FrameFixture::SetUp();
        if(win == NullFC)
            return;

        port(0.f, 1.f, 0.f, 1.f, solid(Grey));
        vp = port(Real32(PortL), Real32(PortL + PortW - 1), Real32(PortB),
                  Real32(PortB + PortH - 1), solid(Back));

        vp->addForeground(colourQuad());

        filters = DisplayFilterForeground::create();
        vp->addForeground(filters);
    }

    /// Red, green (bottom) and blue, yellow (top) texels over pixels
    /// (4, 4) .. (28, 20) of the port.
    PolygonForegroundPtr colourQuad(void)
    {
        ImagePtr    img        = Image::create();
        const UInt8 texels[12] = {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 0};
        img->set(GL_RGB, 2, 2, 1, 1, 1, 0.0, texels);

        TextureChunkPtr tex = nearestTexture(img);

        ChunkMaterialPtr mat = ChunkMaterial::create();
        keep(mat);
        beginEditCP(mat);
        mat->addChunk(tex);
        endEditCP(mat);

        PolygonForegroundPtr fg = PolygonForeground::create();
        beginEditCP(fg);
        fg->setMaterial(mat);
        fg->setNormalizedX(false);
        fg->setNormalizedY(false);
        const Real32 c[4][2] = {{4, 4}, {28, 4}, {28, 20}, {4, 20}};
        for(UInt32 i = 0; i < 4; ++i)
        {
            fg->getPositions().push_back(Pnt2f(c[i][0], c[i][1]));
            fg->getTexCoords().push_back(Vec3f(i == 1 || i == 2, i >= 2, 0));
        }
        endEditCP(fg);
        return fg;
    }

    DisplayFilterTestInverterPtr inverter(const std::string &group)
    {
        DisplayFilterTestInverterPtr f = DisplayFilterTestInverter::create();
        keep(f);
        beginEditCP(f);
        f->setGroup(group);
        endEditCP(f);
        return f;
    }

    void addFilter(const DisplayFilterPtr &f)
    {
        beginEditCP(filters, DisplayFilterForeground::FilterFieldMask);
        filters->getFilter().push_back(f);
        endEditCP(filters, DisplayFilterForeground::FilterFieldMask);
    }

    /// Compares the port's pixels with expect(x, y) within tolerance; the
    /// rest of the window must stay grey.
    void expectPort(const char *name, const std::function<RGBA(Int32, Int32)> &expect,
                    Int32 tolerance = 0)
    {
        std::vector<RGBA> px = readAll(win);
        writePNG(name, px, 64, 48);

        UInt32 wrong = 0;
        for(Int32 y = 0; y < 48; ++y)
        {
            for(Int32 x = 0; x < 64; ++x)
            {
                const Int32 vx = x - PortL, vy = y - PortB;
                const bool  in = vx >= 0 && vx < PortW && vy >= 0 && vy < PortH;
                const RGBA  e  = in ? expect(vx, vy) : Grey;
                const RGBA  g  = px[y * 64 + x];
                const bool  ok = std::abs(g.r - e.r) <= tolerance &&
                                std::abs(g.g - e.g) <= tolerance &&
                                std::abs(g.b - e.b) <= tolerance;
                if(!ok && ++wrong <= 5)
                    ADD_FAILURE() << name << ": window pixel " << x << "," << y << " is " << g
                                  << ", expected " << e;
            }
        }
        EXPECT_EQ(wrong, 0u) << name;
    }

    ViewportPtr                vp;
    DisplayFilterForegroundPtr filters;
};

} // namespace

TEST_F(FilterFixture, InvertingFilterGivesTheNegativeOnceBuilt)
{
    DisplayFilterTestInverterPtr inv = inverter("ColorDisplayFilter");
    addFilter(inv);

    // Without filters the foreground leaves the image as it is.
    beginEditCP(inv);
    inv->setEnabled(false);
    endEditCP(inv);
    frame();
    expectPort("filter_none", portImage);
    EXPECT_EQ(inv->creates, 0u);
    EXPECT_EQ(inv->updates, 0u);

    beginEditCP(inv);
    inv->setEnabled(true);
    endEditCP(inv);

    for(UInt32 i = 1; i <= 3; ++i)
    {
        frame();
        EXPECT_EQ(inv->creates, 1u) << "frame " << i;
        EXPECT_EQ(inv->updates, i);
        expectPort("filter_inverted", [](Int32 x, Int32 y) { return invert(portImage(x, y)); });
    }
    EXPECT_EQ(inv->lastPort, vp.getCPtr());

    // An edit of the filter's own fields doesn't rebuild it.
    const UInt32 changes = inv->getChanged();
    beginEditCP(inv);
    inv->setGroup("ColorDisplayFilter");
    endEditCP(inv);
    EXPECT_GT(inv->getChanged(), changes);
    frame();
    EXPECT_EQ(inv->creates, 1u);
    EXPECT_EQ(inv->updates, 4u);
}

TEST_F(FilterFixture, GroupsAreSharedByNameAndChainedInOrder)
{
    DisplayFilterTestInverterPtr a = inverter("A");
    DisplayFilterTestInverterPtr b = inverter("A");
    addFilter(a);
    addFilter(b);

    // One group "A": one grab, one material (the second shader takes the
    // first one's slot), so the image is inverted once.
    frame();
    expectPort("filter_shared", [](Int32 x, Int32 y) { return invert(portImage(x, y)); });
    EXPECT_EQ(a->creates, 1u);
    EXPECT_EQ(b->creates, 1u);

    // A changed list builds everything again; group "B" grabs the output of
    // group "A" and inverts it back.
    DisplayFilterTestInverterPtr c = inverter("B");
    addFilter(c);
    frame();
    EXPECT_EQ(a->creates, 2u);
    EXPECT_EQ(c->creates, 1u);
    expectPort("filter_chained", portImage);

    // Switching a filter off rebuilds without it.
    beginEditCP(c);
    c->setEnabled(false);
    endEditCP(c);
    frame();
    EXPECT_EQ(a->creates, 3u);
    EXPECT_EQ(c->creates, 1u);
    EXPECT_EQ(c->updates, 1u);
    expectPort("filter_one_off", [](Int32 x, Int32 y) { return invert(portImage(x, y)); });
}

TEST_F(FilterFixture, FindGroupMakesEachNameOnce)
{
    typedef DisplayFilterForeground::DisplayFilterGroup Group;

    Group *readback = filters->findReadbackGroup("X");
    Group *overlay  = filters->findOverlayGroup("X");

    ASSERT_TRUE(readback != NULL);
    ASSERT_TRUE(overlay != NULL);
    EXPECT_EQ(filters->findReadbackGroup("X"), readback);
    EXPECT_EQ(filters->findOverlayGroup("X"), overlay);
    EXPECT_NE(readback, overlay);

    // The grab texture is the material's first chunk (texture unit 0).
    ASSERT_TRUE(readback->getMaterial() != NullFC);
    ASSERT_TRUE(readback->getTexture() != NullFC);
    EXPECT_TRUE(overlay->getTexture() == NullFC);
    ASSERT_GE(readback->getMaterial()->getChunks().size(), 1u);
    EXPECT_TRUE(readback->getMaterial()->getChunks(0) == readback->getTexture());
    EXPECT_EQ(readback->getTexture()->getWrapS(), GLenum(GL_CLAMP_TO_EDGE));
    EXPECT_FALSE(readback->getTexture()->getScale());

    // The grid: w x h vertices over 0..1, h - 1 strips of 2w.
    readback->createGrid(3, 4);
    GeometryPtr geo = readback->getGeometry();
    EXPECT_EQ(geo->getPositions()->getSize(), 12u);
    EXPECT_EQ(geo->getTypes()->getSize(), 3u);
    EXPECT_EQ(geo->getLengths()->getValue(0), 6u);
    EXPECT_EQ(geo->getPositions()->getValue(5), Pnt3f(1.f, 0.5f / 1.5f, 0.f));

    EXPECT_EQ(UInt32(DisplayFilter::EnabledFieldId), 2u);
    EXPECT_EQ(UInt32(DisplayFilter::NextFieldId), 3u);
    EXPECT_EQ(UInt32(DisplayFilterForeground::FilterFieldId), 3u);
}

TEST_F(FilterFixture, ColourFilterLinearisesThroughItsTable)
{
    ColorDisplayFilterPtr colour = ColorDisplayFilter::create();
    keep(colour);
    addFilter(colour);

    // Default fields: an empty table is replaced by the identity ramp.
    std::string log = frameLog();
    EXPECT_NE(log.find("Wrong shanding table size"), std::string::npos);
    EXPECT_EQ(log.find("rror"), std::string::npos) << log;

    DisplayFilterForeground::DisplayFilterGroup *group =
        filters->findReadbackGroup("ColorDisplayFilter");
    EXPECT_EQ(group->getMaterial()->getChunks().size(), 3u);

    // Pure colours stay, grey 128 becomes (128/255)^2.4.
    const UInt8 grey = UInt8(std::pow(128.f / 255.f, 2.4f) * 255.f + 0.5f);
    expectPort("filter_colour",
               [grey](Int32 x, Int32 y)
               {
                   RGBA c = portImage(x, y);
                   return c == Back ? RGBA{grey, grey, grey, 255} : c;
               },
               3);

    // A table of exactly width * height * depth entries gives no warning.
    beginEditCP(colour);
    colour->setGamma(1.f);
    colour->getTable().push_back(Color3f(0, 0, 0));
    colour->getTable().push_back(Color3f(1, 1, 1));
    endEditCP(colour);
    beginEditCP(filters, DisplayFilterForeground::FilterFieldMask);
    endEditCP(filters, DisplayFilterForeground::FilterFieldMask);
    frame();
    expectPort("filter_colour_identity", portImage, 3);
}

TEST_F(FilterFixture, DistortionMovesTheGridOfTheSharedGroup)
{
    DistortionDisplayFilterPtr warp = DistortionDisplayFilter::create();
    keep(warp);
    beginEditCP(warp);
    warp->setColumns(2);
    warp->setRows(2);
    endEditCP(warp);
    addFilter(warp);

    // A mirrored grid: left and right swap.
    beginEditCP(warp);
    warp->getPositions().push_back(Vec2f(1, 0));
    warp->getPositions().push_back(Vec2f(0, 0));
    warp->getPositions().push_back(Vec2f(1, 1));
    warp->getPositions().push_back(Vec2f(0, 1));
    endEditCP(warp);

    frame();
    expectPort("filter_mirrored",
               [](Int32 x, Int32 y) { return portImage(PortW - 1 - x, y); });

    // Wrong sizes warn and leave the grid alone.
    beginEditCP(warp);
    warp->getPositions().resize(3);
    endEditCP(warp);
    beginEditCP(filters, DisplayFilterForeground::FilterFieldMask);
    endEditCP(filters, DisplayFilterForeground::FilterFieldMask);
    EXPECT_NE(frameLog().find("DistortionDisplayFilter wrong number of positions"),
              std::string::npos);
    expectPort("filter_unwarped", portImage);

    beginEditCP(warp);
    warp->setRows(1);
    endEditCP(warp);
    beginEditCP(filters, DisplayFilterForeground::FilterFieldMask);
    endEditCP(filters, DisplayFilterForeground::FilterFieldMask);
    EXPECT_NE(frameLog().find("DistortionDisplayFilter columns or rows < 2"), std::string::npos);
}

TEST_F(FilterFixture, ResolutionFilterScalesDownThenUp)
{
    ResolutionDisplayFilterPtr res = ResolutionDisplayFilter::create();
    keep(res);
    beginEditCP(res);
    res->setDownScale(0.5f);
    endEditCP(res);
    addFilter(res);

    frame();

    Matrix down = filters->findReadbackGroup("ColorDisplayFilter")->getTransform()->getMatrix();
    Matrix up = filters->findReadbackGroup("ResolutionDisplayFilter")->getTransform()->getMatrix();
    EXPECT_FLOAT_EQ(down[0][0], 0.5f);
    EXPECT_FLOAT_EQ(up[1][1], 2.f);

    // Half resolution, enlarged with linear filtering: the middle of each
    // uniform area keeps its colour.
    std::vector<RGBA> px = readAll(win);
    writePNG("filter_resolution", px, 64, 48);
    const Int32 probes[5][2] = {{1, 1}, {9, 7}, {22, 7}, {9, 16}, {22, 16}};
    for(UInt32 i = 0; i < 5; ++i)
    {
        const Int32 x = probes[i][0], y = probes[i][1];
        EXPECT_EQ(px[(PortB + y) * 64 + PortL + x], portImage(x, y)) << x << "," << y;
    }
}
