// NurbsCurve: a visible curve draws along the curve of its formula in every
// mode; its static geometry holds points on the curve (a rational one on its
// circle) and numVertices holds the length of the last primitive; finer
// sampling gives more points; a polyline warns and shows nothing; a
// trimming curve is never drawn.
#include "NurbsTestSupport.h"

using namespace nurbstest;

namespace
{

/// The quadratic Bezier arch from (10, 10) over (32, 54) to (54, 10): x runs
/// evenly with t, y = 10 + 88 t (1 - t).
NurbsCurvePtr arch(Int32 tessellation)
{
    NurbsCurvePtr c = NurbsCurve::create();
    beginEditCP(c);
    c->setControlPoint(points3({Pnt3f(10, 10, 0), Pnt3f(32, 54, 0), Pnt3f(54, 10, 0)}));
    c->setOrder(3);
    for(Real32 k : bezierKnots(3))
        c->getKnot().push_back(k);
    c->setTessellation(tessellation);
    endEditCP(c);
    return c;
}

Real32 archY(Real32 x)
{
    Real32 t = (x - 10.f) / 44.f;
    return 10.f + 88.f * t * (1.f - t);
}

/// Distance of (x, y) from the arch, by sampling it finely.
Real32 archDistance(Real32 x, Real32 y)
{
    Real32 best = 1e9f;
    for(int i = 0; i <= 4000; ++i)
    {
        Real32 cx = 10.f + 44.f * i / 4000.f;
        Real32 d  = std::hypot(cx - x, archY(cx) - y);
        best      = std::min(best, d);
    }
    return best;
}

class NurbsCurveFrame : public PixelFrame
{
};

} // namespace

// Every column the arch passes has a curve pixel within a pixel and a half
// of it, and no curve pixel lies two pixels or more away from it.
TEST_F(NurbsCurveFrame, ArchDrawsAlongItsFormulaInEveryMode)
{
    NurbsCurvePtr c = arch(32);
    setMaterialOf(c, flatColour(Red));
    add(c);

    inEveryMode(c, [&](const std::vector<RGBA> &img) {
        for(UInt32 x = 12; x < 52; ++x)
        {
            bool near = false;
            for(UInt32 y = 0; y < Size; ++y)
                near |= px(img, x, y) == Red && archDistance(x + 0.5f, y + 0.5f) < 1.5f;
            EXPECT_TRUE(near) << "column " << x;
        }
        for(UInt32 y = 0; y < Size; ++y)
            for(UInt32 x = 0; x < Size; ++x)
            {
                if(px(img, x, y) == Red)
                {
                    EXPECT_LT(archDistance(x + 0.5f, y + 0.5f), 2.f) << x << ", " << y;
                }
            }
    });
}

// Static geometry: one line strip whose points lie on the arch, numVertices
// its length; more samples for a finer setting.
TEST_F(NurbsCurveFrame, StaticGeometryLiesOnTheCurve)
{
    NurbsCurvePtr c = arch(16);
    add(c);
    frame();

    ASSERT_NE(c->getTypes(), NullFC);
    ASSERT_EQ(c->getTypes()->getSize(), 1u);
    EXPECT_EQ(c->getTypes()->getValue(0), UInt8(GL_LINE_STRIP));
    const UInt32 n = c->getPositions()->getSize();
    EXPECT_GE(n, 17u);
    EXPECT_EQ(c->getLengths()->getValue(0), n);
    EXPECT_EQ(c->getNumVertices(), n);
    EXPECT_EQ(c->getIndices()->getSize(), n);
    ASSERT_EQ(c->getMFIndexMapping()->size(), 1u);
    EXPECT_EQ((*c->getMFIndexMapping())[0], UInt16(Geometry::MapPosition));
    EXPECT_EQ(c->getNormals(), NullFC) << "normals are left as they were";
    for(UInt32 k = 0; k < n; ++k)
    {
        Pnt3f p = c->getPositions()->getValue(k);
        EXPECT_NEAR(p[1], archY(p[0]), 1e-3f) << k;
    }
    EXPECT_EQ(c->getPositions()->getValue(0), Pnt3f(10, 10, 0));
    EXPECT_EQ(c->getPositions()->getValue(n - 1), Pnt3f(54, 10, 0));

    beginEditCP(c, NurbsCurve::TessellationFieldMask);
    c->setTessellation(64);
    endEditCP(c, NurbsCurve::TessellationFieldMask);
    frame();
    EXPECT_GE(c->getPositions()->getSize(), 65u);
    EXPECT_GT(c->getPositions()->getSize(), n);

    // a parametric tolerance (settings of 0 and below) still gives a curve
    beginEditCP(c, NurbsCurve::TessellationFieldMask);
    c->setTessellation(-3);
    endEditCP(c, NurbsCurve::TessellationFieldMask);
    frame();
    EXPECT_GE(c->getPositions()->getSize(), 3u);
}

// A rational quadratic with homogeneous points is an exact quarter circle:
// every point GLU gives lies on it.
TEST_F(NurbsCurveFrame, RationalCurveIsAnExactArc)
{
    const Real32      w = std::sqrt(2.f) / 2.f;
    GeoPositions4fPtr h = GeoPositions4f::create();
    beginEditCP(h);
    h->getField().push_back(Pnt4f(50, 10, 0, 1));
    h->getField().push_back(Pnt4f(50 * w, 50 * w, 0, w));
    h->getField().push_back(Pnt4f(10, 50, 0, 1));
    endEditCP(h);

    NurbsCurvePtr c = NurbsCurve::create();
    beginEditCP(c);
    c->setControlPoint(h);
    for(Real32 k : bezierKnots(3))
        c->getKnot().push_back(k);
    c->setTessellation(20);
    endEditCP(c);
    setMaterialOf(c, flatColour(Red));
    add(c);
    std::vector<RGBA> img = shot();

    ASSERT_GE(c->getPositions()->getSize(), 21u);
    for(UInt32 k = 0; k < c->getPositions()->getSize(); ++k)
    {
        Pnt3f p = c->getPositions()->getValue(k);
        EXPECT_NEAR(std::hypot(p[0] - 10.f, p[1] - 10.f), 40.f, 1e-3f) << k;
    }
    // the middle of the arc, 40 pixels from (10, 10) along the diagonal
    UInt32 onArc = 0;
    for(int d = -1; d <= 1; ++d)
        for(int e = -1; e <= 1; ++e)
            onArc += px(img, 38 + d, 38 + e) == Red;
    EXPECT_GT(onArc, 0u);
}

// A visible polyline warns in every frame and shows nothing; a trimming
// curve shows nothing and says nothing.
TEST_F(NurbsCurveFrame, PolylineWarnsAndTrimmingCurveHides)
{
    NurbsCurvePtr c = arch(16);
    setMaterialOf(c, flatColour(Red));
    beginEditCP(c, NurbsCurve::PolylineFieldMask);
    c->setPolyline(true);
    endEditCP(c, NurbsCurve::PolylineFieldMask);
    add(c);

    for(int f = 0; f < 2; ++f)
    {
        std::string log = frameLog();
        EXPECT_EQ(count(log, "NurbsCurve::drawPrimitives NYI for linear segments!"), 1u) << log;
        std::vector<RGBA> img = readAll(win);
        EXPECT_EQ(std::count(img.begin(), img.end(), Red), 0);
    }

    beginEditCP(c, NurbsCurve::PolylineFieldMask | NurbsCurve::ControlCurveFieldMask);
    c->setPolyline(false);
    c->setControlCurve(true);
    endEditCP(c, NurbsCurve::PolylineFieldMask | NurbsCurve::ControlCurveFieldMask);
    inEveryMode(c, [&](const std::vector<RGBA> &img) {
        EXPECT_EQ(std::count(img.begin(), img.end(), Red), 0);
    });
}
