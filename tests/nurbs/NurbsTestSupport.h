// What the NURBS tests share: a window seen through an orthographic camera
// in pixel units (world x, y = window pixel edges), builders for control
// nets, surfaces, trimming curves and loops, unlit materials, and counting
// what the log said.
#ifndef _NURBSTESTSUPPORT_H_
#define _NURBSTESTSUPPORT_H_

#include "window/WindowTestSupport.h"

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGGeoPropPositions.h>
#include <OpenSG/OSGGeoPropTexCoords.h>
#include <OpenSG/OSGMatrixCamera.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGNurbsCurve.h>
#include <OpenSG/OSGNurbsSurface.h>
#include <OpenSG/OSGNurbsTrimmingLoop.h>
#include <OpenSG/OSGSimpleMaterial.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

namespace nurbstest
{

using namespace osg;
using namespace wintest;

const UInt16 Size = 64;

/// The three ways to the screen: static geometry, a display list, and
/// GLU drawing afresh in every frame.
struct Mode
{
    const char *name;
    bool        fillGeo;
    bool        dlistCache;
};

const Mode Modes[] = {{"static", true, true}, {"dlist", false, true}, {"uncached", false, false}};

/// How many times text holds what.
inline UInt32 count(const std::string &text, const std::string &what)
{
    UInt32 n = 0;
    for(size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1))
        ++n;
    return n;
}

/// A new property of class PropT holding values.
template <class PropT, class ValueT>
typename PropT::Ptr property(const std::vector<ValueT> &values)
{
    typename PropT::Ptr p = PropT::create();
    beginEditCP(p);
    for(const ValueT &v : values)
        p->getField().push_back(v);
    endEditCP(p);
    return p;
}

inline GeoPositionsPtr points3(const std::vector<Pnt3f> &pts)
{
    return property<GeoPositions3f>(pts);
}

inline GeoPositionsPtr points2(const std::vector<Pnt2f> &pts)
{
    return property<GeoPositions2f>(pts);
}

inline GeoTexCoordsPtr texCoords2(const std::vector<Vec2f> &tcs)
{
    return property<GeoTexCoords2f>(tcs);
}

/// A texture net of uDim x vDim points running from (0, 0) to (1, 1):
/// with Bezier knots it gives every surface point its (u, v).
inline GeoTexCoordsPtr gridTexCoords(UInt32 uDim, UInt32 vDim)
{
    std::vector<Vec2f> tcs;
    for(UInt32 j = 0; j < vDim; ++j)
        for(UInt32 i = 0; i < uDim; ++i)
            tcs.push_back(Vec2f(Real32(i) / (uDim - 1), Real32(j) / (vDim - 1)));
    return texCoords2(tcs);
}

/// order times 0, then order times 1: one Bezier span.
inline std::vector<Real32> bezierKnots(UInt32 order)
{
    std::vector<Real32> k(order, 0.f);
    k.insert(k.end(), order, 1.f);
    return k;
}

/// A surface of the given net, orders and knots, with fillGeo and
/// dlistCache as asked.
inline NurbsSurfacePtr makeSurface(const GeoPositionsPtr &pts, const GeoTexCoordsPtr &tcs,
                                   UInt32 uDim, UInt32 vDim, UInt32 uOrder, UInt32 vOrder,
                                   const std::vector<Real32> &uKnots,
                                   const std::vector<Real32> &vKnots)
{
    NurbsSurfacePtr s = NurbsSurface::create();
    beginEditCP(s);
    s->setControlPoint(pts);
    s->setControlTexCoord(tcs);
    s->setUDim(uDim);
    s->setVDim(vDim);
    s->setUOrder(uOrder);
    s->setVOrder(vOrder);
    for(Real32 k : uKnots)
        s->getUKnot().push_back(k);
    for(Real32 k : vKnots)
        s->getVKnot().push_back(k);
    endEditCP(s);
    return s;
}

/// The flat square [x0, x1] x [y0, y1] at z = 0 as a bilinear patch, u
/// along x and v along y, with texture coordinates from (0, 0) to (1, 1).
inline NurbsSurfacePtr flatSquare(Real32 x0, Real32 y0, Real32 x1, Real32 y1)
{
    return makeSurface(points3({Pnt3f(x0, y0, 0), Pnt3f(x1, y0, 0), Pnt3f(x0, y1, 0),
                                Pnt3f(x1, y1, 0)}),
                       gridTexCoords(2, 2), 2, 2, 2, 2, bezierKnots(2), bezierKnots(2));
}

template <class PtrT>
void setMode(const PtrT &obj, bool fillGeo, bool dlistCache)
{
    beginEditCP(obj, PtrT::StoredObjectType::FillGeoFieldMask | Geometry::DlistCacheFieldMask);
    obj->setFillGeo(fillGeo);
    obj->setDlistCache(dlistCache);
    endEditCP(obj, PtrT::StoredObjectType::FillGeoFieldMask | Geometry::DlistCacheFieldMask);
}

/// A trimming curve in the surface's parameter space: a polyline of the
/// points, or a NURBS curve of the points with order and knots.
inline NurbsCurvePtr trimPolyline(const GeoPositionsPtr &pts)
{
    NurbsCurvePtr c = NurbsCurve::create();
    beginEditCP(c);
    c->setControlPoint(pts);
    c->setControlCurve(true);
    c->setPolyline(true);
    endEditCP(c);
    return c;
}

inline NurbsCurvePtr trimNurbs(const GeoPositionsPtr &pts, UInt32 order,
                               const std::vector<Real32> &knots)
{
    NurbsCurvePtr c = NurbsCurve::create();
    beginEditCP(c);
    c->setControlPoint(pts);
    c->setControlCurve(true);
    c->setOrder(order);
    for(Real32 k : knots)
        c->getKnot().push_back(k);
    endEditCP(c);
    return c;
}

/// The closed square polyline around [a, b]^2 in parameter space,
/// counter-clockwise (GLU keeps what lies to its left) or clockwise.
inline GeoPositionsPtr squareLoop(Real32 a, Real32 b, bool counterClockwise)
{
    std::vector<Pnt2f> p = {Pnt2f(a, a), Pnt2f(b, a), Pnt2f(b, b), Pnt2f(a, b), Pnt2f(a, a)};
    if(!counterClockwise)
        p = {Pnt2f(a, a), Pnt2f(a, b), Pnt2f(b, b), Pnt2f(b, a), Pnt2f(a, a)};
    return points2(p);
}

inline NurbsTrimmingLoopPtr makeLoop(const std::vector<NodeCorePtr> &contour)
{
    NurbsTrimmingLoopPtr loop = NurbsTrimmingLoop::create();
    beginEditCP(loop);
    for(const NodeCorePtr &c : contour)
        loop->getTrimmingContour().push_back(c);
    endEditCP(loop);
    return loop;
}

/// An unlit material of one colour.
inline MaterialPtr flatColour(const RGBA &c)
{
    SimpleMaterialPtr m = SimpleMaterial::create();
    beginEditCP(m);
    m->setLit(false);
    m->setDiffuse(Color3f(c.r / 255.f, c.g / 255.f, c.b / 255.f));
    endEditCP(m);
    return m;
}

/// A 2 x 2 texture, nearest and replacing: red, green (bottom row), blue,
/// yellow (top row).
inline MaterialPtr quadrantTexture(void)
{
    ImagePtr img = Image::create();
    const UInt8 texels[] = {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 0};
    img->set(GL_RGB, 2, 2, 1, 1, 1, 0.0, texels);
    ChunkMaterialPtr m = ChunkMaterial::create();
    beginEditCP(m);
    m->addChunk(nearestTexture(img));
    endEditCP(m);
    return m;
}

template <class PtrT>
void setMaterialOf(const PtrT &geo, const MaterialPtr &m)
{
    beginEditCP(geo, Geometry::MaterialFieldMask);
    geo->setMaterial(m);
    endEditCP(geo, Geometry::MaterialFieldMask);
}

/// A Size x Size window whose camera maps world x, y to pixel edges (pixel
/// (i, j) has its centre at (i + 0.5, j + 0.5)), looking down -z, over a
/// root group on a grey background.
class PixelFrame : public FrameFixture
{
  protected:
    PixelFrame(void) : FrameFixture(Size, Size) {}

    void SetUp(void) override
    {
        FrameFixture::SetUp();
        if(win == NullFC)
            return;

        MatrixCameraPtr cam = MatrixCamera::create();
        keep(cam);
        Matrix proj;
        MatrixOrthogonal(proj, 0.f, Size, 0.f, Size, -100.f, 100.f);
        beginEditCP(cam);
        cam->setProjectionMatrix(proj);
        cam->setModelviewMatrix(Matrix());
        cam->setBeacon(beacon);
        endEditCP(cam);

        ViewportPtr vp = port(0.f, 1.f, 0.f, 1.f, solid(Grey));
        beginEditCP(vp, Viewport::CameraFieldMask);
        vp->setCamera(cam);
        endEditCP(vp, Viewport::CameraFieldMask);
    }

    /// Puts core into the scene under a node of its own, which only the
    /// scene holds: remove destroys it, and the core with it unless
    /// someone else holds that.
    NodePtr attach(const NodeCorePtr &core)
    {
        NodePtr n = Node::create();
        beginEditCP(n);
        n->setCore(core);
        endEditCP(n);
        beginEditCP(root, Node::ChildrenFieldMask);
        root->addChild(n);
        endEditCP(root, Node::ChildrenFieldMask);
        return n;
    }

    void remove(const NodePtr &n)
    {
        beginEditCP(root, Node::ChildrenFieldMask);
        root->subChild(n);
        endEditCP(root, Node::ChildrenFieldMask);
    }

    /// Puts core into the scene under its own node, both kept by the test.
    NodePtr add(const NodeCorePtr &core)
    {
        keep(core);
        NodePtr n = attach(core);
        keep(n);
        return n;
    }

    /// Renders a frame that must log nothing, and returns its pixels.
    std::vector<RGBA> shot(void)
    {
        frame();
        return readAll(win);
    }

    /// Renders obj drawn in each of the three ways and hands each image to
    /// check.
    template <class PtrT>
    void inEveryMode(const PtrT &obj, const std::function<void(const std::vector<RGBA> &)> &check)
    {
        for(const Mode &m : Modes)
        {
            SCOPED_TRACE(m.name);
            setMode(obj, m.fillGeo, m.dlistCache);
            check(shot());
        }
    }

    static RGBA px(const std::vector<RGBA> &img, UInt32 x, UInt32 y) { return img[y * Size + x]; }

    /// Pixels where expect(x, y) says true must be c, where false must not
    /// be; where it says nothing (returns -1) they are not judged. Returns
    /// how many pixels broke the rule.
    static UInt32 mismatches(const std::vector<RGBA> &img, const RGBA &c,
                             const std::function<int(Real32, Real32)> &expect)
    {
        UInt32 bad = 0;
        for(UInt32 y = 0; y < Size; ++y)
            for(UInt32 x = 0; x < Size; ++x)
            {
                int e = expect(x + 0.5f, y + 0.5f);
                if(e < 0)
                    continue;
                if((px(img, x, y) == c) != (e == 1))
                    ++bad;
            }
        return bad;
    }
};

} // namespace nurbstest

#endif
