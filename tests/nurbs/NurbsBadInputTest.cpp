// Bad field values: knot vectors of the wrong length or out of order,
// orders of 0, beyond GLU's limit or beyond the control count, nets smaller
// than uDim x vDim or of the wrong kind, numbers that are not finite, empty
// or null trimming pieces and absurd sampling settings. In every mode the
// frame logs the error line, leaves no GL error, draws nothing of the bad
// surface and crashes nothing; the surface stays in place and draws again
// once the field is right.
#include "NurbsTestSupport.h"

#include <OpenSG/OSGGeoPropTexCoords.h>

#include <limits>

using namespace nurbstest;

namespace
{

const Real32 NaN = std::numeric_limits<Real32>::quiet_NaN();

struct BadCase
{
    const char *name;
    /// Spoils the good square; the caller brackets it with an edit of
    /// every field.
    std::function<void(const NurbsSurfacePtr &)> spoil;
    /// What the log must say.
    const char *line;
};

void setKnots(MFReal32 &field, const std::vector<Real32> &knots)
{
    field.clear();
    for(Real32 k : knots)
        field.push_back(k);
}

const BadCase Cases[] = {
    {"too few knots",
     [](const NurbsSurfacePtr &s) { setKnots(s->getUKnot(), {0, 0, 1}); },
     "Nurbs Surface error: 100252/ too few knots"},
    {"more knots than the net has points for",
     [](const NurbsSurfacePtr &s) { setKnots(s->getVKnot(), {0, 0, 0.5f, 1, 1}); },
     "Nurbs Surface error: 100258/ missing or extra geometric data"},
    {"decreasing knots",
     [](const NurbsSurfacePtr &s) { setKnots(s->getUKnot(), {0.5f, 0, 1, 1}); },
     "Nurbs Surface error: 100254/ decreasing knot sequence"},
    {"knot repeated more often than the order",
     [](const NurbsSurfacePtr &s) { setKnots(s->getUKnot(), {0, 0, 0, 1, 1}); },
     "Nurbs Surface error: 100255/ knot multiplicity greater than order of spline"},
    {"order 0", [](const NurbsSurfacePtr &s) { s->setUOrder(0); },
     "Nurbs Surface error: 100251/ spline order un-supported"},
    {"order above GLU's limit",
     [](const NurbsSurfacePtr &s) {
         s->setVOrder(25);
         setKnots(s->getVKnot(), std::vector<Real32>(50, 0.f));
     },
     "Nurbs Surface error: 100251/ spline order un-supported"},
    {"order beyond the control count",
     [](const NurbsSurfacePtr &s) {
         s->setUOrder(3);
         setKnots(s->getUKnot(), {0, 0, 0, 1, 1});
     },
     "Nurbs Surface error: 100252/ too few knots"},
    {"net smaller than uDim x vDim",
     [](const NurbsSurfacePtr &s) {
         beginEditCP(s->getControlPoint());
         GeoPositions3fPtr::dcast(s->getControlPoint())->getField().resize(3);
         endEditCP(s->getControlPoint());
     },
     "Nurbs Surface error: 100258/ missing or extra geometric data"},
    {"dims larger than the net",
     [](const NurbsSurfacePtr &s) {
         s->setUDim(3);
         setKnots(s->getUKnot(), {0, 0, 0.5f, 1, 1});
     },
     "Nurbs Surface error: 100258/ missing or extra geometric data"},
    {"texture net smaller than the position net",
     [](const NurbsSurfacePtr &s) { s->setControlTexCoord(texCoords2({Vec2f(0, 0)})); },
     "Nurbs Surface error: 100258/ missing or extra geometric data"},
    {"not-a-number knot",
     [](const NurbsSurfacePtr &s) { s->getUKnot()[2] = NaN; },
     "Nurbs Surface error: 100282/ unknown knot error"},
    {"infinite knot",
     [](const NurbsSurfacePtr &s) {
         s->getVKnot()[3] = std::numeric_limits<Real32>::infinity();
     },
     "Nurbs Surface error: 100282/ unknown knot error"},
    {"not-a-number control point",
     [](const NurbsSurfacePtr &s) {
         beginEditCP(s->getControlPoint());
         s->getControlPoint()->setValue(Pnt3f(NaN, 0, 0), 2);
         endEditCP(s->getControlPoint());
     },
     "Nurbs Surface error: 100258/ missing or extra geometric data"},
    {"one-dimensional texture net",
     [](const NurbsSurfacePtr &s) {
         GeoTexCoords1fPtr t = GeoTexCoords1f::create();
         beginEditCP(t);
         for(int i = 0; i < 4; ++i)
             t->getField().push_back(0.5f);
         endEditCP(t);
         s->setControlTexCoord(t);
     },
     "Nurbs Surface error: 100285/ unknown type descriptor"},
    {"two-dimensional control points",
     [](const NurbsSurfacePtr &s) {
         s->setControlPoint(
             points2({Pnt2f(16, 16), Pnt2f(48, 16), Pnt2f(16, 48), Pnt2f(48, 48)}));
     },
     "Nurbs Surface error: 100285/ unknown type descriptor"},
};

class NurbsBadInputFrame : public PixelFrame
{
  protected:
    NurbsSurfacePtr redSquare(void)
    {
        NurbsSurfacePtr s = flatSquare(16, 16, 48, 48);
        setMaterialOf(s, flatColour(Red));
        add(s);
        return s;
    }

    UInt32 redPixels(void)
    {
        std::vector<RGBA> img = readAll(win);
        return UInt32(std::count(img.begin(), img.end(), Red));
    }
};

} // namespace

TEST_F(NurbsBadInputFrame, BadFieldsAreReportedAndTheSurfaceStays)
{
    for(const BadCase &c : Cases)
    {
        for(const Mode &m : Modes)
        {
            SCOPED_TRACE(testing::Message() << c.name << ", " << m.name);
            NurbsSurfacePtr s = redSquare();
            setMode(s, m.fillGeo, m.dlistCache);
            frame();
            ASSERT_EQ(redPixels(), 32u * 32u);

            beginEditCP(s);
            c.spoil(s);
            endEditCP(s);
            std::string log = frameLog();
            EXPECT_NE(log.find(c.line), std::string::npos) << log;
            EXPECT_EQ(redPixels(), 0u);
            // GLU's error callback is not there to hear about the uncached
            // path: that the errors are found again each frame is all
            if(m.fillGeo || m.dlistCache)
            {
                EXPECT_EQ(frameLog(), "") << "reported once, not in every frame";
            }

            // the surface is still in place and draws again once repaired
            NodePtr n = root->getChild(root->getNChildren() - 1);
            EXPECT_EQ(n->getCore(), NodeCorePtr(s));
            NurbsSurfacePtr good = flatSquare(16, 16, 48, 48);
            beginEditCP(s);
            s->setControlPoint(good->getControlPoint());
            s->setControlTexCoord(good->getControlTexCoord());
            s->setUDim(2);
            s->setVDim(2);
            s->setUOrder(2);
            s->setVOrder(2);
            setKnots(s->getUKnot(), bezierKnots(2));
            setKnots(s->getVKnot(), bezierKnots(2));
            endEditCP(s);
            addRefCP(good);
            subRefCP(good);
            frame();
            EXPECT_EQ(redPixels(), 32u * 32u);

            remove(n);
        }
    }
}

// Null and foreign entries in the loop list and in a contour are passed
// over; an empty polyline, a trimming curve without points and one whose
// points are no numbers are reported by the curve and left out, after which
// GLU reports the contour they leave broken.
TEST_F(NurbsBadInputFrame, BadTrimmingPiecesAreLeftOut)
{
    NurbsSurfacePtr s = redSquare();
    beginEditCP(s, NurbsSurface::TrimmingLoopFieldMask);
    s->getTrimmingLoop().push_back(NullFC);
    endEditCP(s, NurbsSurface::TrimmingLoopFieldMask);
    frame();
    EXPECT_EQ(redPixels(), 32u * 32u);

    NurbsCurvePtr empty = trimPolyline(points2({}));
    NurbsCurvePtr none  = trimPolyline(NullFC);
    NurbsCurvePtr nan   = trimPolyline(points2({Pnt2f(0, 0), Pnt2f(NaN, 0), Pnt2f(0, 0)}));
    NurbsCurvePtr knots = trimNurbs(points2({Pnt2f(0, 0), Pnt2f(1, 0)}), 2, {0, 0, 0.5f, 1, 1});
    const std::pair<NurbsCurvePtr, const char *> pieces[] = {
        {empty, "Nurbs Curve error: 100258/ missing or extra geometric data"},
        {none, "Nurbs Curve error: 100286/ null control point reference"},
        {nan, "Nurbs Curve error: 100258/ missing or extra geometric data"},
        {knots, "Nurbs Curve error: 100258/ missing or extra geometric data"}};

    for(const auto &piece : pieces)
    {
        SCOPED_TRACE(piece.second);
        keep(piece.first);
        NurbsTrimmingLoopPtr loop = makeLoop({NodeCorePtr(NullFC), piece.first});
        keep(loop);
        beginEditCP(s, NurbsSurface::TrimmingLoopFieldMask);
        s->getTrimmingLoop().clear();
        s->getTrimmingLoop().push_back(loop);
        endEditCP(s, NurbsSurface::TrimmingLoopFieldMask);
        std::string log = frameLog();
        EXPECT_NE(log.find(piece.second), std::string::npos) << log;
        EXPECT_NE(log.find("Nurbs Surface error: "), std::string::npos) << log;
    }
}

// Sampling settings far beyond any use are lowered to a bounded number of
// samples, with a warning, instead of allocating without end.
TEST_F(NurbsBadInputFrame, AbsurdSamplingIsBounded)
{
    NurbsSurfacePtr s = redSquare();
    const Int32     settings[2][2] = {{std::numeric_limits<Int32>::max(), 1},
                                      {1, std::numeric_limits<Int32>::min()}};
    for(const Int32 *uv : settings)
    {
        beginEditCP(s, NurbsSurface::UTessellationFieldMask | NurbsSurface::VTessellationFieldMask);
        s->setUTessellation(uv[0]);
        s->setVTessellation(uv[1]);
        endEditCP(s, NurbsSurface::UTessellationFieldMask | NurbsSurface::VTessellationFieldMask);
        std::string log = frameLog();
        EXPECT_EQ(count(log, "NurbsSurface: "), 1u) << log;
        // at most 1024 strips of 2 (2 + 1) vertices
        EXPECT_LE(s->getPositions()->getSize(), 1024u * 6u);
        EXPECT_EQ(redPixels(), 32u * 32u);
    }

    NurbsCurvePtr c = NurbsCurve::create();
    beginEditCP(c);
    c->setControlPoint(points3({Pnt3f(10, 10, 0), Pnt3f(54, 54, 0)}));
    c->setOrder(2);
    for(Real32 k : bezierKnots(2))
        c->getKnot().push_back(k);
    c->setTessellation(std::numeric_limits<Int32>::max());
    endEditCP(c);
    add(c);
    std::string log = frameLog();
    EXPECT_EQ(count(log, "NurbsCurve: "), 1u) << log;
    EXPECT_LE(c->getPositions()->getSize(), 65536u + 2u);
}
