// Trimming: loops of polylines and of NURBS curves cut holes that show the
// background and islands that show the surface again, as GLU's winding rule
// says (it keeps what lies to the left of a curve), in every mode; picking
// misses the holes; entries that are not trimming curves are passed over.
// Trimming curves lie in GLU's (s, t) = (v, u) parameter space.
#include "NurbsTestSupport.h"

#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGIntersectAction.h>

#include <memory>

using namespace nurbstest;

namespace
{

/// Where parameter p of the flat test square lies in pixels.
Real32 toPixel(Real32 p)
{
    return 16.f + 32.f * p;
}

/// 1 inside [a, b]^2 by more than half a pixel, 0 outside by more, -1
/// near its edge.
int inSquare(Real32 x, Real32 y, Real32 a, Real32 b)
{
    Real32 lo = toPixel(a), hi = toPixel(b);
    Real32 d  = std::min({x - lo, hi - x, y - lo, hi - y});
    return d > 0.5f ? 1 : d < -0.5f ? 0 : -1;
}

/// What the square with the hole [0.25, 0.75]^2 covers, as inSquare says.
int squareWithHole(Real32 x, Real32 y)
{
    int square = inSquare(x, y, 0, 1), hole = inSquare(x, y, 0.25f, 0.75f);
    if(square < 0 || hole < 0)
        return -1;
    return square == 1 && hole == 0 ? 1 : 0;
}

/// The rational quadratic circle of radius r around (c, c) in parameter
/// space, as 9 homogeneous points (s w, t w, w), clockwise or not.
NurbsCurvePtr circle(Real32 c, Real32 r, bool counterClockwise)
{
    const Real32 w       = std::sqrt(2.f) / 2.f;
    const Real32 dir[9][2] = {{1, 0}, {1, 1}, {0, 1}, {-1, 1}, {-1, 0},
                              {-1, -1}, {0, -1}, {1, -1}, {1, 0}};
    std::vector<Pnt3f> pts;
    for(int k = 0; k < 9; ++k)
    {
        int    i      = counterClockwise ? k : 8 - k;
        Real32 weight = (i % 2) ? w : 1.f;
        pts.push_back(Pnt3f((c + r * dir[i][0]) * weight, (c + r * dir[i][1]) * weight, weight));
    }
    return trimNurbs(points3(pts), 3,
                     {0, 0, 0, 0.25f, 0.25f, 0.5f, 0.5f, 0.75f, 0.75f, 1, 1, 1});
}

class NurbsTrimmingFrame : public PixelFrame
{
  protected:
    /// The flat red square 16..48 with these loops, in the scene.
    NurbsSurfacePtr trimmedSquare(const std::vector<std::vector<NodeCorePtr> > &loops)
    {
        NurbsSurfacePtr s = flatSquare(16, 16, 48, 48);
        setMaterialOf(s, flatColour(Red));
        beginEditCP(s, NurbsSurface::TrimmingLoopFieldMask);
        for(const std::vector<NodeCorePtr> &contour : loops)
        {
            for(const NodeCorePtr &c : contour)
                if(c != NullFC)
                    keep(c);
            NurbsTrimmingLoopPtr loop = makeLoop(contour);
            keep(loop);
            s->getTrimmingLoop().push_back(loop);
        }
        endEditCP(s, NurbsSurface::TrimmingLoopFieldMask);
        add(s);
        return s;
    }

    NodeCorePtr outer(void) { return trimPolyline(squareLoop(0, 1, true)); }
};

} // namespace

// An outer loop around the domain, a clockwise hole and a counter-clockwise
// island inside it: background in the hole, surface in the ring and on the
// island.
TEST_F(NurbsTrimmingFrame, HoleAndIslandFollowTheWindingRule)
{
    trimmedSquare({{outer()},
                   {trimPolyline(squareLoop(0.25f, 0.75f, false))},
                   {trimPolyline(squareLoop(0.375f, 0.625f, true))}});

    auto expect = [](Real32 x, Real32 y) -> int {
        int square = inSquare(x, y, 0, 1), hole = inSquare(x, y, 0.25f, 0.75f),
            island = inSquare(x, y, 0.375f, 0.625f);
        if(square < 0 || hole < 0 || island < 0)
            return -1;
        return square == 1 && (hole == 0 || island == 1) ? 1 : 0;
    };

    NurbsSurfacePtr s = NurbsSurfacePtr::dcast(root->getChild(0)->getCore());
    inEveryMode(s, [&](const std::vector<RGBA> &img) {
        EXPECT_EQ(mismatches(img, Red, expect), 0u);
        EXPECT_EQ(px(img, 26, 26), Grey);
        EXPECT_EQ(px(img, 32, 32), Red);
        EXPECT_EQ(px(img, 20, 20), Red);
    });
}

// A rational circle given as a NURBS trimming curve of homogeneous points
// (dimension 3, so GLU_MAP1_TRIM_3) cuts a round hole: pixels a pixel or
// more inside the circle show the background, those a pixel or more
// outside it the surface. GLU samples trimming curves with the surface's
// steps, so the surface asks for 32 spans a side.
TEST_F(NurbsTrimmingFrame, RationalCircleCutsARoundHole)
{
    NurbsSurfacePtr s = trimmedSquare({{outer()}, {circle(0.5f, 0.25f, false)}});
    beginEditCP(s, NurbsSurface::UTessellationFieldMask | NurbsSurface::VTessellationFieldMask);
    s->setUTessellation(32);
    s->setVTessellation(32);
    endEditCP(s, NurbsSurface::UTessellationFieldMask | NurbsSurface::VTessellationFieldMask);

    auto expect = [](Real32 x, Real32 y) -> int {
        int square = inSquare(x, y, 0, 1);
        if(square != 1)
            return square;
        Real32 d = std::sqrt((x - 32.f) * (x - 32.f) + (y - 32.f) * (y - 32.f)) - 8.f;
        return d > 1.f ? 1 : d < -1.f ? 0 : -1;
    };

    inEveryMode(s, [&](const std::vector<RGBA> &img) {
        EXPECT_EQ(mismatches(img, Red, expect), 0u);
    });
}

// A counter-clockwise loop alone is the outer boundary: only the disc it
// encloses stays.
TEST_F(NurbsTrimmingFrame, TrimmingLoopAloneKeepsWhatItEncloses)
{
    trimmedSquare({{circle(0.5f, 0.25f, true)}});
    std::vector<RGBA> img = shot();
    EXPECT_EQ(px(img, 32, 32), Red);
    EXPECT_EQ(px(img, 20, 20), Grey);
    EXPECT_EQ(px(img, 44, 44), Grey);
}

// Picking hits the ring and misses the hole.
TEST_F(NurbsTrimmingFrame, PickingMissesTheHole)
{
    trimmedSquare({{outer()}, {trimPolyline(squareLoop(0.25f, 0.75f, false))}});
    frame();

    std::unique_ptr<IntersectAction> ia(IntersectAction::create());
    ia->setLine(Line(Pnt3f(32, 32, 5), Vec3f(0, 0, -1)));
    ia->apply(root);
    EXPECT_FALSE(ia->didHit());

    ia->setLine(Line(Pnt3f(20, 32, 5), Vec3f(0, 0, -1)));
    ia->apply(root);
    ASSERT_TRUE(ia->didHit());
    EXPECT_NEAR(ia->getHitT(), 5.f, 1e-4f);
}

// A contour may be made of several curves, polylines and NURBS pieces
// mixed; cores of other types and null entries, in the contour or in the
// surface's loop list, are passed over without a word.
TEST_F(NurbsTrimmingFrame, ContoursOfSeveralPiecesAndForeignEntries)
{
    // the hole [0.25, 0.75]^2, clockwise: a polyline down the left side and
    // along the top, then a straight order-2 NURBS piece back down the
    // right side and along the bottom
    NurbsCurvePtr first =
        trimPolyline(points2({Pnt2f(0.25f, 0.25f), Pnt2f(0.25f, 0.75f), Pnt2f(0.75f, 0.75f)}));
    NurbsCurvePtr second = trimNurbs(
        points2({Pnt2f(0.75f, 0.75f), Pnt2f(0.75f, 0.25f), Pnt2f(0.25f, 0.25f)}), 2,
        {0, 0, 0.5f, 1, 1});
    NodeCorePtr group = Group::create();

    NurbsSurfacePtr s = trimmedSquare(
        {{outer()}, {NodeCorePtr(NullFC), first, group, second}});
    keep(group);
    beginEditCP(s, NurbsSurface::TrimmingLoopFieldMask);
    s->getTrimmingLoop().push_back(NullFC);
    s->getTrimmingLoop().push_back(group);
    endEditCP(s, NurbsSurface::TrimmingLoopFieldMask);

    EXPECT_EQ(mismatches(shot(), Red, squareWithHole), 0u);
}

// Trimming points of four components go to GLU as two-component points
// four floats apart: the last two are not looked at.
TEST_F(NurbsTrimmingFrame, FourComponentTrimmingPointsAreTwoDimensional)
{
    std::vector<Pnt4f> hole;
    for(const Pnt2f &p : {Pnt2f(0.25f, 0.25f), Pnt2f(0.25f, 0.75f), Pnt2f(0.75f, 0.75f),
                          Pnt2f(0.75f, 0.25f), Pnt2f(0.25f, 0.25f)})
        hole.push_back(Pnt4f(p[0], p[1], 7.f, -3.f));
    trimmedSquare({{outer()}, {trimPolyline(property<GeoPositions4f>(hole))}});

    EXPECT_EQ(mismatches(shot(), Red, squareWithHole), 0u);
}

// An empty loop gives GLU a trim with no curve, which it reports; a piece
// that is not a trimming curve leaves a gap (this GLU closes it without a
// word). The surface stays and draws again once the loops are right.
TEST_F(NurbsTrimmingFrame, BrokenContoursAreReportedByGlu)
{
    NurbsSurfacePtr s = trimmedSquare({{outer()}, {}});
    std::string     log = frameLog();
    EXPECT_NE(log.find("Nurbs Surface error: 100268/ invalid or missing trim curve"),
              std::string::npos)
        << log;

    NurbsCurvePtr half1 = trimPolyline(points2({Pnt2f(0, 0), Pnt2f(1, 0), Pnt2f(1, 1)}));
    NurbsCurvePtr half2 = trimPolyline(points2({Pnt2f(1, 1), Pnt2f(0, 1), Pnt2f(0, 0)}));
    keep(half1);
    keep(half2);
    beginEditCP(half2, NurbsCurve::ControlCurveFieldMask);
    half2->setControlCurve(false);
    endEditCP(half2, NurbsCurve::ControlCurveFieldMask);
    NurbsTrimmingLoopPtr open = makeLoop({half1, half2});
    keep(open);
    beginEditCP(s, NurbsSurface::TrimmingLoopFieldMask);
    s->getTrimmingLoop().clear();
    s->getTrimmingLoop().push_back(open);
    endEditCP(s, NurbsSurface::TrimmingLoopFieldMask);
    frameLog();

    beginEditCP(half2, NurbsCurve::ControlCurveFieldMask);
    half2->setControlCurve(true);
    endEditCP(half2, NurbsCurve::ControlCurveFieldMask);
    beginEditCP(s, NurbsSurface::TrimmingLoopFieldMask);
    endEditCP(s, NurbsSurface::TrimmingLoopFieldMask);
    std::vector<RGBA> img = shot();
    EXPECT_EQ(px(img, 32, 32), Red);
    EXPECT_EQ(root->getChild(0)->getCore(), NodeCorePtr(s));
}
