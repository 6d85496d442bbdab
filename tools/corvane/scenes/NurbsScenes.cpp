#include "../DemoScene.h"
#include "../DemoSupport.h"

#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGeoPropPositions.h>
#include <OpenSG/OSGGeoPropTexCoords.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGNurbsCurve.h>
#include <OpenSG/OSGNurbsSurface.h>
#include <OpenSG/OSGNurbsTrimmingLoop.h>
#include <OpenSG/OSGSimpleMaterial.h>

#include <cmath>
#include <vector>

OSG_USING_NAMESPACE

using namespace corvane;

namespace
{

/// Clamped cubic B-spline knots for five control points, and the parameter
/// each point sits over (its Greville abscissa): a net laid out at these
/// parameters maps them linearly.
const Real32 SailKnots[]    = {0.f, 0.f, 0.f, 0.f, 0.5f, 1.f, 1.f, 1.f, 1.f};
const Real32 SailGreville[] = {0.f, 1.f / 6.f, 0.5f, 5.f / 6.f, 1.f};

MaterialPtr unlit(const Color3f &c)
{
    SimpleMaterialPtr m = SimpleMaterial::create();
    beginEditCP(m);
    m->setLit(false);
    m->setDiffuse(c);
    endEditCP(m);
    return m;
}

/// A new property of class PropT holding values.
template <class PropT, class ValueT>
typename PropT::Ptr propertyOf(const std::vector<ValueT> &values)
{
    typename PropT::Ptr p = PropT::create();
    beginEditCP(p);
    for(const ValueT &v : values)
        p->getField().push_back(v);
    endEditCP(p);
    return p;
}

/// A curve of these points: NURBS of order and knots, or with no knots
/// a polyline; a trimming curve or a visible one.
NurbsCurvePtr makeCurve(const GeoPositionsPtr &points, UInt32 order,
                        const std::vector<Real32> &knots, bool trimming)
{
    NurbsCurvePtr c = NurbsCurve::create();
    beginEditCP(c);
    c->setControlPoint(points);
    c->setControlCurve(trimming);
    c->setPolyline(knots.empty());
    c->setOrder(order);
    for(Real32 k : knots)
        c->getKnot().push_back(k);
    endEditCP(c);
    return c;
}

/// A closed polyline in the surface's parameter space.
NurbsCurvePtr polylineTrim(const std::vector<Pnt2f> &points)
{
    return makeCurve(propertyOf<GeoPositions2f>(points), 2, {}, true);
}

/// The nine homogeneous points (and their knots) of a rational quadratic
/// circle, counter-clockwise from angle 0, each made into a point by make.
template <class PointT, class MakeT>
void circleNet(std::vector<PointT> &points, std::vector<Real32> &knots, MakeT make)
{
    const Real32 w      = std::sqrt(2.f) / 2.f;
    const Real32 d[9][2] = {{1, 0}, {1, 1}, {0, 1}, {-1, 1}, {-1, 0},
                            {-1, -1}, {0, -1}, {1, -1}, {1, 0}};
    for(int i = 0; i < 9; ++i)
        points.push_back(make(d[i][0], d[i][1], (i % 2) ? w : 1.f));
    knots = {0, 0, 0, 0.25f, 0.25f, 0.5f, 0.5f, 0.75f, 0.75f, 1, 1, 1};
}

/// A clockwise ellipse of radii rs, rt in parameter space: a hole.
NurbsCurvePtr ellipseHole(Real32 cs, Real32 ct, Real32 rs, Real32 rt)
{
    std::vector<Pnt3f>  pts;
    std::vector<Real32> knots;
    // clockwise: the mirror image in t of the counter-clockwise circle
    circleNet(pts, knots, [=](Real32 x, Real32 y, Real32 w) {
        return Pnt3f((cs + rs * x) * w, (ct - rt * y) * w, w);
    });
    return makeCurve(propertyOf<GeoPositions3f>(pts), 3, knots, true);
}

NurbsTrimmingLoopPtr loopOf(const NurbsCurvePtr &curve)
{
    NurbsTrimmingLoopPtr loop = NurbsTrimmingLoop::create();
    beginEditCP(loop);
    loop->getTrimmingContour().push_back(curve);
    endEditCP(loop);
    return loop;
}

/// A sail: a clamped bicubic B-spline sheet of 5 x 5 points that billows
/// towards the viewer, textured with a checker, with a round hole (a
/// rational NURBS trimming curve) and a five-pointed star (a polyline)
/// left standing in the hole. u runs up and v to the right, so the sheet
/// faces +z; trimming curves are given in (v, u).
NurbsSurfacePtr makeSail(Holder &h, std::vector<NodeCorePtr> &trims)
{
    std::vector<Pnt3f> pts;
    std::vector<Vec2f> tcs;
    for(int j = 0; j < 5; ++j)
        for(int i = 0; i < 5; ++i)
        {
            Real32 v = SailGreville[j], u = SailGreville[i];
            Real32 billow = 1.6f * std::sin(3.1416f * v) * (0.5f + 0.5f * std::sin(3.1416f * u));
            pts.push_back(Pnt3f(-2.2f + 4.4f * v, -1.6f + 3.2f * u + 0.35f * billow,
                                billow - 0.5f * u));
            tcs.push_back(Vec2f(2.f * v, 1.5f * u));
        }

    // an outer loop around the domain, counter-clockwise in (v, u)
    NurbsCurvePtr outer = polylineTrim({Pnt2f(0, 0), Pnt2f(1, 0), Pnt2f(1, 1), Pnt2f(0, 1),
                                        Pnt2f(0, 0)});
    // the sail is wider than high: these look round on it
    const Real32  aspect = 3.2f / 4.4f;
    NurbsCurvePtr hole   = ellipseHole(0.5f, 0.5f, 0.3f * aspect, 0.3f);
    std::vector<Pnt2f> star;
    for(int k = 0; k <= 10; ++k)
    {
        Real32 a = 3.1416f / 2.f + k * 3.1416f / 5.f;
        Real32 r = (k % 2) ? 0.09f : 0.22f;
        star.push_back(Pnt2f(0.5f + aspect * r * std::cos(a), 0.5f + r * std::sin(a)));
    }
    star.back() = star.front();
    NurbsCurvePtr island = polylineTrim(star);
    trims        = {outer, hole, island};
    for(const NodeCorePtr &t : trims)
        h.keep(t);

    NurbsSurfacePtr sail = NurbsSurface::create();
    beginEditCP(sail);
    sail->setControlPoint(propertyOf<GeoPositions3f>(pts));
    sail->setControlTexCoord(propertyOf<GeoTexCoords2f>(tcs));
    sail->setUDim(5);
    sail->setVDim(5);
    sail->setUOrder(4);
    sail->setVOrder(4);
    for(Real32 k : SailKnots)
    {
        sail->getUKnot().push_back(k);
        sail->getVKnot().push_back(k);
    }
    // fine enough for the round hole, which GLU samples with these steps too
    sail->setUTessellation(48);
    sail->setVTessellation(48);
    sail->getTrimmingLoop().push_back(h.keep(loopOf(outer)));
    sail->getTrimmingLoop().push_back(h.keep(loopOf(hole)));
    sail->getTrimmingLoop().push_back(h.keep(loopOf(island)));
    sail->setMaterial(texturedMaterial(makeChecker(256, 8, Color3f(0.95f, 0.55f, 0.15f),
                                                   Color3f(0.95f, 0.92f, 0.85f)),
                                       Color3f(1.f, 1.f, 1.f)));
    endEditCP(sail);
    return sail;
}

/// A rational circle of homogeneous points floating in front of the hole,
/// and a cubic B-spline that swings past the sail: two visible curves.
NurbsCurvePtr makeRing(void)
{
    std::vector<Pnt4f>  pts;
    std::vector<Real32> knots;
    circleNet(pts, knots, [](Real32 x, Real32 y, Real32 w) {
        return Pnt4f(1.05f * x * w, (0.05f + 1.05f * y) * w, 1.6f * w, w);
    });
    NurbsCurvePtr ring = makeCurve(propertyOf<GeoPositions4f>(pts), 3, knots, false);
    beginEditCP(ring);
    ring->setTessellation(64);
    ring->setMaterial(unlit(Color3f(1.f, 0.9f, 0.2f)));
    endEditCP(ring);
    return ring;
}

NurbsCurvePtr makeSwing(void)
{
    const std::vector<Pnt3f> pts = {Pnt3f(-2.8f, -1.9f, 0.4f), Pnt3f(-1.5f, 2.6f, 1.2f),
                                    Pnt3f(0.f, -2.4f, 2.2f), Pnt3f(1.5f, 2.6f, 1.2f),
                                    Pnt3f(2.8f, -1.9f, 0.4f)};
    NurbsCurvePtr swing = makeCurve(propertyOf<GeoPositions3f>(pts), 4,
                                    std::vector<Real32>(std::begin(SailKnots), std::end(SailKnots)),
                                    false);
    beginEditCP(swing);
    swing->setTessellation(96);
    swing->setMaterial(unlit(Color3f(0.3f, 0.9f, 1.f)));
    endEditCP(swing);
    return swing;
}

bool renderNurbs(const char *fileName, UInt32 width, UInt32 height)
{
    Holder       h;
    EGLWindowPtr win = openWindow(h, width, height);
    if(win == NullFC)
        return false;

    NodePtr lightBeacon = makeNodeFor(Group::create());
    DirectionalLightPtr sun = DirectionalLight::create();
    beginEditCP(sun);
    sun->setDirection(Vec3f(-0.4f, 0.5f, 0.8f));
    sun->setAmbient(Color4f(0.3f, 0.3f, 0.32f, 1.f));
    sun->setDiffuse(Color4f(1.f, 0.97f, 0.9f, 1.f));
    sun->setBeacon(lightBeacon);
    endEditCP(sun);

    std::vector<NodeCorePtr> trims;
    NodePtr root = h.keep(Node::create());
    beginEditCP(root);
    root->setCore(sun);
    root->addChild(lightBeacon);
    root->addChild(makeNodeFor(makeSail(h, trims)));
    root->addChild(makeNodeFor(makeRing()));
    root->addChild(makeNodeFor(makeSwing()));
    endEditCP(root);

    CameraPtr camera = makeCamera(h, root, Pnt3f(2.6f, 1.2f, 6.8f), Pnt3f(0.f, 0.1f, 0.4f), 45.f);
    addPort(h, win, camera, root, makeSolid(h, Color3f(0.12f, 0.13f, 0.16f)), 0.f, 1.f);
    return renderToFile(h, win, fileName);
}

const DemoSceneRegistration nurbsScene(
    "nurbs", "a textured NURBS sail with a round hole and a star island, and two NURBS curves",
    renderNurbs);

} // namespace
