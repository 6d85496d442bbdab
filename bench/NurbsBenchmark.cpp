// NURBS tessellation and drawing.
//
// Tessellation: a 16 x 16 bicubic net with a 16 x 16 texture net at a fixed
// sampling (64 steps a side), built into static geometry by NurbsSurface
// (a field change, then the window's validation runs handleGL) against
// bare GLU given the same data, whose callbacks append to plain vectors
// the same vertices, normals, texture coordinates, indices, types and
// lengths. The ratio of the two is what the surface adds to GLU's work.
//
// Drawing: frames of a 256 x 256 window showing that surface as static
// geometry (Geometry's display list of GLU's triangles), as the surface's
// own display list, and uncached (GLU evaluates it in every frame).
#include <OpenSG/OSGBaseInitFunctions.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGeoPropPositions.h>
#include <OpenSG/OSGGeoPropTexCoords.h>
#include <OpenSG/OSGGLU.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGHeadlessGLContext.h>
#include <OpenSG/OSGMatrixCamera.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGNurbsSurface.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>

#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <vector>

using namespace osg;

namespace
{

const UInt32 NetSize = 16;
const UInt32 Order   = 4;
/// GLU's steps per unit parameter length, over the knots' range [0, 1].
const Int32 Steps = 64;

/// Clamped uniform knots for NetSize points of Order over [0, 1].
std::vector<Real32> knots(void)
{
    std::vector<Real32> k(Order, 0.f);
    const UInt32        inner = NetSize - Order;
    for(UInt32 i = 1; i <= inner; ++i)
        k.push_back(Real32(i) / (inner + 1));
    k.insert(k.end(), Order, 1.f);
    return k;
}

/// A wavy 16 x 16 net over [-1, 1]^2, and its texture net over [0, 1]^2.
void makeNets(std::vector<Real32> &points, std::vector<Real32> &texCoords)
{
    for(UInt32 j = 0; j < NetSize; ++j)
        for(UInt32 i = 0; i < NetSize; ++i)
        {
            Real32 x = -1.f + 2.f * j / (NetSize - 1), y = -1.f + 2.f * i / (NetSize - 1);
            points.insert(points.end(), {x, y, 0.2f * std::sin(3.f * x) * std::cos(2.f * y)});
            texCoords.insert(texCoords.end(),
                             {Real32(i) / (NetSize - 1), Real32(j) / (NetSize - 1)});
        }
}

/// One window over a scene holding one NurbsSurface of the nets.
class Scene
{
  public:
    Scene(void)
    {
        _win = EGLWindow::create();
        addRefCP(_win);
        beginEditCP(_win);
        _win->setSize(256, 256);
        endEditCP(_win);
        _win->init();

        std::vector<Real32> pts, tcs;
        makeNets(pts, tcs);
        GeoPositions3fPtr points = GeoPositions3f::create();
        GeoTexCoords2fPtr texCoords = GeoTexCoords2f::create();
        beginEditCP(points);
        for(size_t i = 0; i < pts.size(); i += 3)
            points->getField().push_back(Pnt3f(pts[i], pts[i + 1], pts[i + 2]));
        endEditCP(points);
        beginEditCP(texCoords);
        for(size_t i = 0; i < tcs.size(); i += 2)
            texCoords->getField().push_back(Vec2f(tcs[i], tcs[i + 1]));
        endEditCP(texCoords);

        _surface = NurbsSurface::create();
        addRefCP(_surface);
        SimpleMaterialPtr material = SimpleMaterial::create();
        beginEditCP(material);
        material->setDiffuse(Color3f(0.8f, 0.6f, 0.4f));
        endEditCP(material);
        beginEditCP(_surface);
        _surface->setControlPoint(points);
        _surface->setControlTexCoord(texCoords);
        _surface->setUDim(NetSize);
        _surface->setVDim(NetSize);
        _surface->setUOrder(Order);
        _surface->setVOrder(Order);
        for(Real32 k : knots())
        {
            _surface->getUKnot().push_back(k);
            _surface->getVKnot().push_back(k);
        }
        // a positive setting is a number of spans: Steps steps a side
        _surface->setUTessellation(Steps - 1);
        _surface->setVTessellation(Steps - 1);
        _surface->setMaterial(material);
        endEditCP(_surface);

        _root = Node::create();
        addRefCP(_root);
        NodePtr node = Node::create();
        beginEditCP(node);
        node->setCore(_surface);
        endEditCP(node);
        beginEditCP(_root);
        _root->setCore(Group::create());
        _root->addChild(node);
        endEditCP(_root);

        NodePtr beacon = Node::create();
        beginEditCP(beacon);
        beacon->setCore(Transform::create());
        endEditCP(beacon);
        beginEditCP(_root, Node::ChildrenFieldMask);
        _root->addChild(beacon);
        endEditCP(_root, Node::ChildrenFieldMask);

        MatrixCameraPtr camera = MatrixCamera::create();
        Matrix          proj;
        MatrixOrthogonal(proj, -1.2f, 1.2f, -1.2f, 1.2f, -10.f, 10.f);
        beginEditCP(camera);
        camera->setProjectionMatrix(proj);
        camera->setModelviewMatrix(Matrix());
        camera->setBeacon(beacon);
        endEditCP(camera);

        SolidBackgroundPtr bg = SolidBackground::create();
        ViewportPtr        port = Viewport::create();
        beginEditCP(port);
        port->setSize(0, 0, 1, 1);
        port->setCamera(camera);
        port->setRoot(_root);
        port->setBackground(bg);
        endEditCP(port);
        _win->addPort(port);

        _action.reset(RenderAction::create());
    }

    ~Scene(void)
    {
        _action.reset();
        subRefCP(_root);
        subRefCP(_surface);
        subRefCP(_win);
    }

    void setMode(bool fillGeo, bool dlistCache)
    {
        beginEditCP(_surface, NurbsSurface::FillGeoFieldMask | Geometry::DlistCacheFieldMask);
        _surface->setFillGeo(fillGeo);
        _surface->setDlistCache(dlistCache);
        endEditCP(_surface, NurbsSurface::FillGeoFieldMask | Geometry::DlistCacheFieldMask);
    }

    /// Marks the surface changed and lets the window validate it, as the
    /// next frame would: one tessellation into static geometry.
    void tessellate(void)
    {
        beginEditCP(_surface, NurbsSurface::UTessellationFieldMask);
        endEditCP(_surface, NurbsSurface::UTessellationFieldMask);
        _win->validateGLObject(UInt32(_surface->getSurfaceGLId()));
    }

    void frame(void)
    {
        _win->render(_action.get());
        glFinish();
    }

    UInt32 vertices(void) const { return _surface->getPositions()->getSize(); }

  private:
    EGLWindowPtr                  _win;
    NurbsSurfacePtr               _surface;
    NodePtr                       _root;
    std::unique_ptr<RenderAction> _action;
};

// --- bare GLU --------------------------------------------------------------------------

/// What the bare callbacks fill: the same arrays as the static geometry.
struct Arrays
{
    std::vector<UInt8>  types;
    std::vector<UInt32> lengths, indices;
    std::vector<Real32> positions, normals, texCoords;
    UInt32              current;
};

Arrays arrays;

void bareBegin(GLenum type)
{
    arrays.types.push_back(UInt8(type));
    arrays.current = 0;
}

void bareEnd(void)
{
    arrays.lengths.push_back(arrays.current);
}

void bareVertex(GLfloat *v)
{
    arrays.positions.insert(arrays.positions.end(), v, v + 3);
    arrays.indices.push_back(UInt32(arrays.indices.size()));
    ++arrays.current;
}

void bareNormal(GLfloat *n)
{
    arrays.normals.insert(arrays.normals.end(), n, n + 3);
}

void bareTexCoord(GLfloat *t)
{
    arrays.texCoords.insert(arrays.texCoords.end(), t, t + 2);
}

template <class FunctionT>
void callback(GLUnurbs *r, GLenum which, FunctionT f)
{
    gluNurbsCallback(r, which, reinterpret_cast<_GLUfuncptr>(f));
}

void BM_TessellateNurbsSurface(benchmark::State &state)
{
    if(!HeadlessGLContext::isAvailable())
    {
        state.SkipWithError("no EGL context");
        return;
    }
    Scene scene;
    for(auto _ : state)
        scene.tessellate();
    state.counters["vertices"] = scene.vertices();
}
BENCHMARK(BM_TessellateNurbsSurface)->Unit(benchmark::kMicrosecond);

void BM_TessellateBareGlu(benchmark::State &state)
{
    if(!HeadlessGLContext::isAvailable())
    {
        state.SkipWithError("no EGL context");
        return;
    }
    // the same context as the surface has, though GLU needs none here
    Scene               scene;
    std::vector<Real32> pts, tcs;
    makeNets(pts, tcs);
    std::vector<Real32> k = knots();

    for(auto _ : state)
    {
        arrays.types.clear();
        arrays.lengths.clear();
        arrays.indices.clear();
        arrays.positions.clear();
        arrays.normals.clear();
        arrays.texCoords.clear();

        GLUnurbs *r = gluNewNurbsRenderer();
        gluNurbsProperty(r, GLU_CULLING, 0);
        gluNurbsProperty(r, GLU_SAMPLING_METHOD, GLU_DOMAIN_DISTANCE);
        gluNurbsProperty(r, GLU_U_STEP, Steps);
        gluNurbsProperty(r, GLU_V_STEP, Steps);
        gluNurbsProperty(r, GLU_NURBS_MODE, GLU_NURBS_TESSELLATOR);
        callback(r, GLU_NURBS_BEGIN, bareBegin);
        callback(r, GLU_NURBS_END, bareEnd);
        callback(r, GLU_NURBS_VERTEX, bareVertex);
        callback(r, GLU_NURBS_NORMAL, bareNormal);
        callback(r, GLU_NURBS_TEXTURE_COORD, bareTexCoord);

        gluBeginSurface(r);
        gluNurbsSurface(r, GLint(k.size()), k.data(), GLint(k.size()), k.data(),
                        NetSize * 3, 3, pts.data(), Order, Order, GL_MAP2_VERTEX_3);
        gluNurbsSurface(r, GLint(k.size()), k.data(), GLint(k.size()), k.data(),
                        NetSize * 2, 2, tcs.data(), Order, Order, GL_MAP2_TEXTURE_COORD_2);
        gluEndSurface(r);
        gluDeleteNurbsRenderer(r);
        benchmark::DoNotOptimize(arrays.positions.data());
    }
    state.counters["vertices"] = Real64(arrays.indices.size());
}
BENCHMARK(BM_TessellateBareGlu)->Unit(benchmark::kMicrosecond);

/// Frames of the surface drawn one way: 0 static geometry, 1 the surface's
/// display list, 2 uncached.
void BM_DrawNurbsSurface(benchmark::State &state)
{
    if(!HeadlessGLContext::isAvailable())
    {
        state.SkipWithError("no EGL context");
        return;
    }
    Scene scene;
    scene.setMode(state.range(0) == 0, state.range(0) < 2);
    scene.frame();
    for(auto _ : state)
        scene.frame();
}
BENCHMARK(BM_DrawNurbsSurface)
    ->ArgName("static0_dlist1_uncached2")
    ->DenseRange(0, 2)
    ->Unit(benchmark::kMicrosecond);

} // namespace
