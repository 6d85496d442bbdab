// SortedPrimitives and its drawers, rendered: blended groups come out back
// to front from either side, the order is refreshed in one pass of four, the
// nearest part is ordered by height, the farthest fraction is left out, bit 0
// of the render parameters (and an effects pass) keep the stored order, rays
// pass through, the volume holds every group, and bad arrays give a log line
// instead of a crash.
#include "PrimitivesTestSupport.h"
#include "window/WindowTestSupport.h"

#include <OpenSG/OSGChangeList.h>
#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGDrawable.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGStatCollector.h>
#include <OpenSG/OSGThread.h>

#include <cmath>
#include <algorithm>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

using namespace osg;
using namespace wintest;
using primtest::Square;

namespace
{

const RGBA Black = {0, 0, 0, 255};


const Color4f HalfRed(1, 0, 0, 0.5f), HalfGreen(0, 1, 0, 0.5f), HalfBlue(0, 0, 1, 0.5f);

/// What "source alpha, one minus source alpha" makes of the layers drawn in
/// the given order over bg, in 8-bit steps as the framebuffer keeps them.
RGBA blendOver(RGBA bg, const std::vector<Color4f> &layers)
{
    Real32 c[3] = {Real32(bg.r), Real32(bg.g), Real32(bg.b)};
    for(const Color4f &l : layers)
    {
        const Real32 a = std::round(l[3] * 255.f) / 255.f;
        for(int k = 0; k < 3; ++k)
            c[k] = std::round(l[k] * 255.f * a + c[k] * (1.f - a));
    }
    return RGBA{UInt8(c[0]), UInt8(c[1]), UInt8(c[2]), 255};
}

bool within(RGBA a, RGBA b, int tolerance)
{
    return std::abs(a.r - b.r) <= tolerance && std::abs(a.g - b.g) <= tolerance &&
           std::abs(a.b - b.b) <= tolerance;
}

/// Equal but for the rounding of the blend hardware.
bool blendsTo(RGBA a, RGBA b)
{
    return within(a, b, 2);
}

/// Red nearest to a camera at the origin looking down -z, blue farthest.
std::vector<Square> threeLayers(void)
{
    return {{Pnt3f(0, 0, -2), HalfRed, 0.5f},
            {Pnt3f(0, 0, -3), HalfGreen, 0.5f},
            {Pnt3f(0, 0, -4), HalfBlue, 0.5f}};
}

class SortedPrimitivesTest : public FrameFixture
{
  protected:
    void SetUp(void) override
    {
        FrameFixture::SetUp();
        if(win == NullFC)
            return;
        port(0, 1, 0, 1, solid(Black));
        setRenderParams(0);
    }

    void TearDown(void) override
    {
        setRenderParams(0);
        FrameFixture::TearDown();
    }

    /// The cloud on a node under root, drawn with the blended material.
    SortedPrimitivesPtr addCloud(const std::vector<Square> &groups, UInt32 mode = 1,
                                 const NodePtr &parent = NullFC)
    {
        SortedPrimitivesPtr cloud = corvane::makeSquareCloud(groups, mode);
        keep(cloud);
        beginEditCP(cloud, SortedPrimitives::MaterialFieldMask);
        cloud->setMaterial(primtest::blendedMaterial());
        endEditCP(cloud, SortedPrimitives::MaterialFieldMask);
        cloudNode = addNode(cloud, parent);
        return cloud;
    }

    NodePtr addNode(const NodeCorePtr &core, const NodePtr &parent = NullFC)
    {
        NodePtr node = Node::create();
        beginEditCP(node);
        node->setCore(core);
        endEditCP(node);
        NodePtr under = parent != NullFC ? parent : root;
        beginEditCP(under, Node::ChildrenFieldMask);
        under->addChild(node);
        endEditCP(under, Node::ChildrenFieldMask);
        return node;
    }

    void lookFrom(const Pnt3f &from, const Pnt3f &at) { primtest::lookFrom(beacon, from, at); }

    /// From the far side: the camera at z = -7 looking up +z.
    void lookFromBehind(void) { lookFrom(Pnt3f(0, 0, -7), Pnt3f(0, 0, 0)); }

    void frames(UInt32 n)
    {
        for(UInt32 i = 0; i < n; ++i)
            frame();
    }

    RGBA centre(void) { return readAll(win)[(winH / 2) * winW + winW / 2]; }

    NodePtr cloudNode;
};

// --- order ---------------------------------------------------------------------------

TEST_F(SortedPrimitivesTest, BlendsBackToFrontFromEitherSide)
{
    addCloud(threeLayers());

    frame();
    const RGBA fromFront = blendOver(Black, {HalfBlue, HalfGreen, HalfRed});
    EXPECT_PRED2(blendsTo, centre(), fromFront) << centre();
    EXPECT_EQ(primtest::drawnGroups(SortedPrimitivesPtr::dcast(cloudNode->getCore())),
              (std::vector<int>{2, 1, 0}));

    // seen from behind the stored order is wrong until the next refresh,
    // three passes on, puts red at the back
    lookFromBehind();
    const RGBA stale = blendOver(Black, {HalfBlue, HalfGreen, HalfRed});
    for(int pass = 1; pass <= 3; ++pass)
    {
        frame();
        EXPECT_PRED2(blendsTo, centre(), stale) << "pass " << pass << ": " << centre();
    }
    frame();
    const RGBA fromBehind = blendOver(Black, {HalfRed, HalfGreen, HalfBlue});
    EXPECT_PRED2(blendsTo, centre(), fromBehind) << centre();
    EXPECT_FALSE(within(fromFront, fromBehind, 20));
}

TEST_F(SortedPrimitivesTest, TrianglePairsBlendLikeQuads)
{
    addCloud(threeLayers(), 0);
    lookFromBehind();
    frame();
    EXPECT_PRED2(blendsTo, centre(), blendOver(Black, {HalfRed, HalfGreen, HalfBlue})) << centre();
}

TEST_F(SortedPrimitivesTest, RefreshesTheOrderInOnePassOfFour)
{
    SortedPrimitivesPtr cloud   = addCloud(threeLayers());
    const UInt32        indices = getContainerId(cloud->getIndices());
    ChangeList         *changes = Thread::getCurrentChangeList();

    std::vector<int> rewrites, sorts;
    for(int pass = 0; pass < 8; ++pass)
    {
        changes->clearAll();
        frame();
        int n = 0;
        for(auto it = changes->beginChanged(); it != changes->endChanged(); ++it)
            n += it->first == indices;
        rewrites.push_back(n);
        sorts.push_back(int(cloud->getSort()));
    }
    EXPECT_EQ(rewrites, (std::vector<int>{1, 0, 0, 0, 1, 0, 0, 0}));
    EXPECT_EQ(sorts, (std::vector<int>{1, 2, 3, 0, 1, 2, 3, 0}));
    EXPECT_EQ(cloud->getIndicesSize(), 12u);
}

TEST_F(SortedPrimitivesTest, StoredOrderWithoutDrawOrder)
{
    SortedPrimitivesPtr cloud = addCloud(threeLayers());
    beginEditCP(cloud, SortedPrimitives::DrawOrderFieldMask);
    cloud->setDrawOrder(0);
    endEditCP(cloud, SortedPrimitives::DrawOrderFieldMask);
    frame();
    EXPECT_EQ(primtest::drawnGroups(cloud), (std::vector<int>{0, 1, 2}));
    // red first: only the nearest, last layer counts in full
    EXPECT_PRED2(blendsTo, centre(), blendOver(Black, {HalfRed, HalfGreen, HalfBlue})) << centre();
}

/// Eight groups going away from the viewer, farthest last in storage, with
/// heights that run against the distance. The far four stand off to the
/// side, where a sphere can hide them alone (sight lines are rays, so a
/// sphere behind a group hides it too).
std::vector<Square> staircase(void)
{
    std::vector<Square> groups;
    const Real32 heights[8] = {0.3f, 0.1f, 0.2f, 0.f, 0.9f, 0.5f, 0.7f, 0.6f};
    for(int i = 0; i < 8; ++i)
        groups.push_back(
            {Pnt3f(i < 4 ? 0.f : 2.f, heights[i], -2.f - Real32(i)), HalfRed, 0.1f});
    return groups;
}

TEST_F(SortedPrimitivesTest, NearestPartIsOrderedAgainByHeight)
{
    SortedPrimitivesPtr cloud = addCloud(staircase());
    auto orderWith = [&](Real32 threshold, const std::vector<Vec4f> &spheres) {
        beginEditCP(cloud, SortedPrimitives::ThresholdValFieldMask |
                               SortedPrimitives::OccluderSpheresFieldMask |
                               SortedPrimitives::SortFieldMask);
        cloud->setThresholdVal(threshold);
        cloud->getOccluderSpheres().getValues().assign(spheres.begin(), spheres.end());
        cloud->setSort(0);
        endEditCP(cloud, SortedPrimitives::ThresholdValFieldMask |
                             SortedPrimitives::OccluderSpheresFieldMask |
                             SortedPrimitives::SortFieldMask);
        frame();
        return primtest::drawnGroups(cloud);
    };

    // -1: all by distance, farthest first
    EXPECT_EQ(orderWith(-1.f, {}), (std::vector<int>{7, 6, 5, 4, 3, 2, 1, 0}));
    // -0.5: the farthest half by distance, the nearest half by height
    EXPECT_EQ(orderWith(-0.5f, {}), (std::vector<int>{7, 6, 5, 4, 3, 1, 2, 0}));
    // 0, and 1 without spheres: everything by height
    const std::vector<int> byHeight = {3, 1, 2, 0, 5, 7, 6, 4};
    EXPECT_EQ(orderWith(0.f, {}), byHeight);
    EXPECT_EQ(orderWith(1.f, {}), byHeight);
    // the default 0.85, nothing hidden: 8 * 0.15 = 1.2, so one by distance
    EXPECT_EQ(orderWith(0.85f, {}), (std::vector<int>{7, 3, 1, 2, 0, 5, 6, 4}));
    // a sphere round the viewer hides everything: all by distance
    EXPECT_EQ(orderWith(0.85f, {Vec4f(0, 0, 0, 0.5f)}),
              (std::vector<int>{7, 6, 5, 4, 3, 2, 1, 0}));
    // a sphere behind the viewer hides nothing
    EXPECT_EQ(orderWith(1.f, {Vec4f(0, 0, 5, 0.5f)}), byHeight);
    // the far four behind a sphere: split (1 - 4 / 8 * 1) * 8 = 4
    EXPECT_EQ(orderWith(1.f, {Vec4f(1.5f, 0.5f, -5.5f, 0.6f)}),
              (std::vector<int>{7, 6, 5, 4, 3, 1, 2, 0}));
    // a threshold above 1 would put the split before the list: all by height
    EXPECT_EQ(orderWith(2.f, {}), byHeight);
}

TEST_F(SortedPrimitivesTest, ViewerIsFoundInTheCloudsOwnCoordinates)
{
    // the cloud lies at z = 16 to 18 in its own coordinates and is moved to
    // -4 to -2 by its parent: the order must come from where the groups
    // are seen
    TransformPtr xf = Transform::create();
    Matrix       m;
    m.setTranslate(0.f, 100.f, -20.f);
    beginEditCP(xf);
    xf->setMatrix(m);
    endEditCP(xf);
    NodePtr moved = addNode(xf);

    std::vector<Square> groups = {{Pnt3f(0, -100, 18), HalfRed, 0.5f},
                                 {Pnt3f(0, -100, 17), HalfGreen, 0.5f},
                                 {Pnt3f(0, -100, 16), HalfBlue, 0.5f}};
    SortedPrimitivesPtr cloud = addCloud(groups, 1, moved);
    frame();
    EXPECT_EQ(primtest::drawnGroups(cloud), (std::vector<int>{2, 1, 0}));
    EXPECT_PRED2(blendsTo, centre(), blendOver(Black, {HalfBlue, HalfGreen, HalfRed})) << centre();

    // the immediate draw action takes the node's own to-world matrix
    beginEditCP(cloud, SortedPrimitives::SortFieldMask);
    cloud->setSort(0);
    endEditCP(cloud, SortedPrimitives::SortFieldMask);
    lookFromBehind();
    std::unique_ptr<DrawAction> draw(DrawAction::create());
    {
        LogCapture log(LOG_WARNING);
        win->draw(draw.get());
        EXPECT_EQ(log.take(), "");
    }
    EXPECT_EQ(primtest::drawnGroups(cloud), (std::vector<int>{0, 1, 2}));
}

TEST(SortedPrimitivesOrder, MatchesTheRecordsOwnOrders)
{
    // scattered groups above and below the viewer; outside a traversal the
    // action's matrices are the identity, so the viewer is the origin
    std::mt19937                          rng(3);
    std::uniform_real_distribution<float> coord(-10.f, 10.f);
    std::vector<Square>                   groups(1000);
    for(Square &g : groups)
        g = {Pnt3f(coord(rng), coord(rng), coord(rng)), HalfRed, 0.1f};
    SortedPrimitivesPtr cloud = corvane::makeSquareCloud(groups);
    addRefCP(cloud);
    beginEditCP(cloud, SortedPrimitives::ThresholdValFieldMask);
    cloud->setThresholdVal(-0.3f);
    endEditCP(cloud, SortedPrimitives::ThresholdValFieldMask);

    std::vector<SortedPrimitives::Sorter> expected;
    for(UInt32 i = 0; i < groups.size(); ++i)
    {
        const Pnt3f &p = groups[i].ref;
        expected.push_back({-p.dist2(Pnt3f(0, 0, 0)), i, p[1]});
    }
    std::sort(expected.begin(), expected.end());
    std::sort(expected.begin() + 300, expected.end(), SortedPrimitives::Sorter::compareFunc);

    std::unique_ptr<RenderAction> outside(RenderAction::create());
    std::vector<int>              order(groups.size(), -1);
    UInt32                        count = 0;
    EXPECT_EQ(cloud->calcIndex(outside.get(), count, order.data()), order.data());
    ASSERT_EQ(count, groups.size());
    for(UInt32 i = 0; i < count; ++i)
        ASSERT_EQ(order[i], int(expected[i].index)) << "at " << i;
    subRefCP(cloud);
}

// --- what is drawn -------------------------------------------------------------------

TEST_F(SortedPrimitivesTest, LeavesOutTheFarthestFraction)
{
    std::vector<Square> groups = threeLayers();
    groups.push_back({Pnt3f(0, 0, -5), Color4f(1, 1, 1, 0.5f), 0.5f});
    SortedPrimitivesPtr cloud = addCloud(groups);
    auto dropping = [&](Real32 fraction) {
        beginEditCP(cloud, SortedPrimitives::LowerBoundFieldMask | SortedPrimitives::SortFieldMask);
        cloud->setLowerBound(fraction);
        cloud->setSort(0);
        endEditCP(cloud, SortedPrimitives::LowerBoundFieldMask | SortedPrimitives::SortFieldMask);
        frame();
    };

    // half of four: white and blue, the farthest two, are left out
    dropping(0.5f);
    EXPECT_EQ(primtest::drawnGroups(cloud), (std::vector<int>{1, 0}));
    EXPECT_EQ(cloud->getIndicesSize(), 8u);
    EXPECT_PRED2(blendsTo, centre(), blendOver(Black, {HalfGreen, HalfRed})) << centre();

    // a quarter of four: the white one
    dropping(0.25f);
    EXPECT_EQ(primtest::drawnGroups(cloud), (std::vector<int>{2, 1, 0}));
    dropping(0.f);
    EXPECT_EQ(cloud->getIndicesSize(), 16u);

    // everything left out: nothing drawn, the background stays
    dropping(1.f);
    EXPECT_EQ(cloud->getIndicesSize(), 0u);
    EXPECT_EQ(centre(), Black);
}

TEST_F(SortedPrimitivesTest, TriangleGroupsRoundUpToWholeSteps)
{
    // group 0 has four entries: its second step takes two of group 1's
    SortedPrimitivesPtr cloud = addCloud(threeLayers(), 0);
    std::vector<int>    entries = {0, 1, 2, 3, 4, 5, 6, 8, 9, 10};
    std::vector<int>    offsets = {0, 4, 7, 10};
    beginEditCP(cloud, SortedPrimitives::IndexArrayFieldMask |
                           SortedPrimitives::OffsetArrayFieldMask |
                           SortedPrimitives::DrawOrderFieldMask);
    cloud->setIndexArray(&entries);
    cloud->setOffsetArray(&offsets);
    cloud->setDrawOrder(0);
    endEditCP(cloud, SortedPrimitives::IndexArrayFieldMask |
                         SortedPrimitives::OffsetArrayFieldMask |
                         SortedPrimitives::DrawOrderFieldMask);
    // indices was sized to indexArray; two more steps would not fit, so the
    // list stops where it is full
    LogCapture log(LOG_WARNING);
    win->render(action.get());
    EXPECT_NE(log.take().find("the element list stops at 9"), std::string::npos);
    std::vector<UInt32> written;
    for(UInt32 i = 0; i < cloud->getIndicesSize(); ++i)
        written.push_back(cloud->getIndices()->getValue(i));
    EXPECT_EQ(written, (std::vector<UInt32>{0, 1, 2, 3, 4, 5, 4, 5, 6}));
}

TEST_F(SortedPrimitivesTest, StatisticsCountAQuarterOfTheElements)
{
    addCloud(threeLayers(), 0);
    StatCollector stats;
    stats.getElem(Drawable::statNTriangles);
    stats.getElem(Drawable::statNVertices);
    action->setStatistics(&stats);
    frame();
    // 18 elements of triangles are counted as 18 / 4 primitives
    EXPECT_EQ(stats.getElem(Drawable::statNTriangles)->get(), 4);
    EXPECT_EQ(stats.getElem(Drawable::statNVertices)->get(), 12);
    action->setStatistics(NULL);
}

// --- the stored order ----------------------------------------------------------------

TEST_F(SortedPrimitivesTest, RenderParamsBitZeroKeepsTheStoredOrder)
{
    SortedPrimitivesPtr cloud = addCloud(threeLayers());
    frame();
    const std::vector<int> stored = primtest::drawnGroups(cloud);

    setRenderParams(1);
    EXPECT_EQ(getRenderParams(), 1u);
    lookFromBehind();
    for(int pass = 0; pass < 8; ++pass)
        frame();
    EXPECT_EQ(cloud->getSort(), 1u);
    EXPECT_EQ(primtest::drawnGroups(cloud), stored);
    EXPECT_PRED2(blendsTo, centre(), blendOver(Black, {HalfBlue, HalfGreen, HalfRed})) << centre();

    // the other bits are the application's
    // three passes finish the cycle, the fourth refreshes
    setRenderParams(~1u);
    frames(4);
    EXPECT_EQ(cloud->getSort(), 1u);
    EXPECT_PRED2(blendsTo, centre(), blendOver(Black, {HalfRed, HalfGreen, HalfBlue})) << centre();
}

TEST_F(SortedPrimitivesTest, EffectsPassKeepsTheStoredOrder)
{
    SortedPrimitivesPtr cloud = addCloud(threeLayers());
    frame();
    action->setEffectsPass(true);
    lookFromBehind();
    frames(4);
    EXPECT_EQ(cloud->getSort(), 1u);
    EXPECT_EQ(primtest::drawnGroups(cloud), (std::vector<int>{2, 1, 0}));
    action->setEffectsPass(false);
}

// --- picking and bounds ----------------------------------------------------------------

TEST_F(SortedPrimitivesTest, RaysPassThroughTheCloud)
{
    addCloud(threeLayers());
    std::unique_ptr<IntersectAction> pick(
        IntersectAction::create(Line(Pnt3f(0, 0, 0), Vec3f(0, 0, -1))));
    pick->apply(root);
    EXPECT_FALSE(pick->didHit());

    // a wall behind the cloud is what the ray finds
    NodePtr wall = makePlane(4, 4, 1, 1);
    Matrix  m;
    m.setTranslate(0, 0, -6);
    TransformPtr xf = Transform::create();
    beginEditCP(xf);
    xf->setMatrix(m);
    endEditCP(xf);
    NodePtr behind = addNode(xf);
    beginEditCP(behind, Node::ChildrenFieldMask);
    behind->addChild(wall);
    endEditCP(behind, Node::ChildrenFieldMask);
    pick->apply(root);
    ASSERT_TRUE(pick->didHit());
    EXPECT_EQ(pick->getHitObject(), wall);
    EXPECT_NEAR(pick->getHitT(), 6.f, 1e-4f);
}

TEST_F(SortedPrimitivesTest, VolumeHoldsASphereRoundEveryReferencePoint)
{
    SortedPrimitivesPtr cloud = addCloud({{Pnt3f(2, 0, 0), HalfRed, 0.5f},
                                          {Pnt3f(5, 1, 0), HalfRed, 0.5f}});
    beginEditCP(cloud, SortedPrimitives::SizeFieldMask);
    cloud->setSize(Vec3f(1, 2, 2)); // a radius of 3
    endEditCP(cloud, SortedPrimitives::SizeFieldMask);
    cloudNode->invalidateVolume();

    Pnt3f lo, hi;
    cloudNode->getVolume(true).getBounds(lo, hi);
    // the volume is marked non-empty before the spheres go in, so the node's
    // starting box at the origin stays part of it
    EXPECT_EQ(lo, Pnt3f(-1, -3, -3));
    EXPECT_EQ(hi, Pnt3f(8, 4, 3));

    // moving a reference point reaches the node through the property
    GeoPositionsPtr refs = cloud->getRefPoints();
    beginEditCP(refs);
    refs->setValue(Pnt3f(10, 1, 0), 1);
    endEditCP(refs);
    cloudNode->getVolume(true).getBounds(lo, hi);
    EXPECT_EQ(hi, Pnt3f(13, 4, 3));

    // a cloud without reference points leaves the volume alone
    beginEditCP(cloud, SortedPrimitives::RefPointsFieldMask);
    cloud->setRefPoints(NullFC);
    endEditCP(cloud, SortedPrimitives::RefPointsFieldMask);
    EXPECT_TRUE(cloudNode->getVolume(true).isEmpty());
}

// --- bad input -----------------------------------------------------------------------

/// Renders one frame and returns the log; the centre stays black when
/// nothing is drawn.
class SortedPrimitivesBadInputTest : public SortedPrimitivesTest
{
  protected:
    std::string warnings(void)
    {
        LogCapture log(LOG_WARNING);
        win->render(action.get());
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
        return log.take();
    }

    static int count(const std::string &text, const std::string &what)
    {
        int n = 0;
        for(size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1))
            ++n;
        return n;
    }
};

TEST_F(SortedPrimitivesBadInputTest, MissingPropertyWarnsEveryPassAndDrawsNothing)
{
    SortedPrimitivesPtr cloud = addCloud(threeLayers());
    beginEditCP(cloud, SortedPrimitives::TangentsFieldMask);
    cloud->setTangents(NullFC);
    endEditCP(cloud, SortedPrimitives::TangentsFieldMask);
    for(int pass = 0; pass < 2; ++pass)
    {
        const std::string log = warnings();
        EXPECT_EQ(count(log, "couldn't find drawer!"), 1) << log;
        EXPECT_EQ(centre(), Black);
    }
    EXPECT_EQ(cloud->getSort(), 0u);
}

TEST_F(SortedPrimitivesBadInputTest, MissingIndicesIsFatalAndDrawsNothing)
{
    SortedPrimitivesPtr cloud = addCloud(threeLayers());
    beginEditCP(cloud, SortedPrimitives::IndicesFieldMask);
    cloud->setIndices(NullFC);
    endEditCP(cloud, SortedPrimitives::IndicesFieldMask);
    const std::string log = warnings();
    EXPECT_NE(log.find("getIndices() NullFC"), std::string::npos) << log;
    EXPECT_EQ(count(log, "couldn't find drawer!"), 1) << log;
    EXPECT_EQ(centre(), Black);
}

TEST_F(SortedPrimitivesBadInputTest, UnknownModeAndShortGroupTableDrawNothing)
{
    SortedPrimitivesPtr cloud = addCloud(threeLayers());
    beginEditCP(cloud, SortedPrimitives::ModeFieldMask);
    cloud->setMode(2);
    endEditCP(cloud, SortedPrimitives::ModeFieldMask);
    EXPECT_EQ(count(warnings(), "couldn't find drawer!"), 1);

    beginEditCP(cloud, SortedPrimitives::ModeFieldMask | SortedPrimitives::OffsetArrayFieldMask);
    cloud->setMode(1);
    cloud->getOffsetArray().getValues().resize(2);
    endEditCP(cloud, SortedPrimitives::ModeFieldMask | SortedPrimitives::OffsetArrayFieldMask);
    EXPECT_EQ(count(warnings(), "couldn't find drawer!"), 1);
    EXPECT_EQ(centre(), Black);
}

TEST_F(SortedPrimitivesBadInputTest, GroupTableOneShortLeavesTheLastGroupOut)
{
    SortedPrimitivesPtr cloud = addCloud(threeLayers());
    beginEditCP(cloud, SortedPrimitives::OffsetArrayFieldMask | SortedPrimitives::DrawOrderFieldMask);
    cloud->getOffsetArray().getValues().pop_back();
    cloud->setDrawOrder(0);
    endEditCP(cloud, SortedPrimitives::OffsetArrayFieldMask | SortedPrimitives::DrawOrderFieldMask);
    const std::string log = warnings();
    EXPECT_NE(log.find("1 groups have no valid span"), std::string::npos) << log;
    EXPECT_EQ(primtest::drawnGroups(cloud), (std::vector<int>{0, 1}));
}

TEST_F(SortedPrimitivesBadInputTest, SpansPastTheIndexArrayAreCutShort)
{
    SortedPrimitivesPtr cloud = addCloud(threeLayers());
    beginEditCP(cloud, SortedPrimitives::OffsetArrayFieldMask | SortedPrimitives::DrawOrderFieldMask);
    cloud->getOffsetArray()[2] = 1000;
    cloud->getOffsetArray()[3] = 2000;
    cloud->setDrawOrder(0);
    endEditCP(cloud, SortedPrimitives::OffsetArrayFieldMask | SortedPrimitives::DrawOrderFieldMask);
    const std::string log = warnings();
    EXPECT_NE(log.find("the groups run past indexArray"), std::string::npos) << log;
    EXPECT_EQ(cloud->getIndicesSize(), 4u);

    // and backwards spans or negative offsets are left out
    beginEditCP(cloud, SortedPrimitives::OffsetArrayFieldMask | SortedPrimitives::SortFieldMask);
    cloud->getOffsetArray()[1] = -4;
    cloud->setSort(0);
    endEditCP(cloud, SortedPrimitives::OffsetArrayFieldMask | SortedPrimitives::SortFieldMask);
    EXPECT_NE(warnings().find("2 groups have no valid span"), std::string::npos);
}

TEST_F(SortedPrimitivesBadInputTest, IndicesPastTheVerticesDrawNothing)
{
    SortedPrimitivesPtr cloud   = addCloud(threeLayers());
    std::vector<int>    entries = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 12};
    beginEditCP(cloud, SortedPrimitives::IndexArrayFieldMask);
    cloud->setIndexArray(&entries);
    endEditCP(cloud, SortedPrimitives::IndexArrayFieldMask);
    std::string log = warnings();
    EXPECT_NE(log.find("index 12 lies past the 12 vertices"), std::string::npos) << log;
    EXPECT_EQ(centre(), Black);

    // fewer colours than positions: the colours bound what may be drawn
    GeoColorsPtr colors = cloud->getColors();
    beginEditCP(colors);
    colors->resize(4);
    endEditCP(colors);
    entries.back() = 11;
    beginEditCP(cloud, SortedPrimitives::IndexArrayFieldMask | SortedPrimitives::SortFieldMask);
    cloud->setIndexArray(&entries);
    cloud->setSort(0);
    endEditCP(cloud, SortedPrimitives::IndexArrayFieldMask | SortedPrimitives::SortFieldMask);
    log = warnings();
    EXPECT_NE(log.find("past the 4 vertices"), std::string::npos) << log;

    // a negative entry is as far past as an index gets
    colors->resize(12);
    entries[0] = -1;
    beginEditCP(cloud, SortedPrimitives::IndexArrayFieldMask | SortedPrimitives::SortFieldMask);
    cloud->setIndexArray(&entries);
    cloud->setSort(0);
    endEditCP(cloud, SortedPrimitives::IndexArrayFieldMask | SortedPrimitives::SortFieldMask);
    EXPECT_NE(warnings().find("index 4294967295 lies past"), std::string::npos);
}

TEST_F(SortedPrimitivesBadInputTest, TangentsCountOnlyWhereMultitextureSendsThem)
{
    SortedPrimitivesPtr cloud    = addCloud(threeLayers());
    GeoNormalsPtr       tangents = cloud->getTangents();
    beginEditCP(tangents);
    tangents->resize(4);
    endEditCP(tangents);
    const std::string log = warnings();
    if(win->hasExtension(SortedPrimitives::_arbMultitexture))
        EXPECT_NE(log.find("past the 4 vertices"), std::string::npos) << log;
    else
        EXPECT_EQ(log, "");
}

TEST_F(SortedPrimitivesBadInputTest, ElementCountBeyondTheIndicesIsCut)
{
    SortedPrimitivesPtr cloud = addCloud(threeLayers());
    frame();
    // an application shrinks indices under the stored count
    GeoIndicesPtr indices = cloud->getIndices();
    beginEditCP(indices);
    indices->resize(4);
    endEditCP(indices);
    const std::string log = warnings();
    EXPECT_NE(log.find("12 elements to draw, but indices holds 4"), std::string::npos) << log;
}

TEST_F(SortedPrimitivesBadInputTest, EmptyCloudDrawsNothingQuietly)
{
    SortedPrimitivesPtr cloud = addCloud({});
    EXPECT_EQ(warnings(), "");
    EXPECT_EQ(cloud->getIndicesSize(), 0u);
    EXPECT_EQ(centre(), Black);

    UInt32 count = 99;
    std::unique_ptr<RenderAction> other(RenderAction::create());
    int *order = cloud->calcIndex(other.get(), count, NULL);
    ASSERT_NE(order, nullptr);
    EXPECT_EQ(count, 0u);
    delete[] order;
}

} // namespace
