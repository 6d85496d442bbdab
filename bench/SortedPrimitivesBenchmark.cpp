// SortedPrimitives with 100 000 blended quads scattered in front of the
// camera. The refresh alone: calcIndex, the two sorts that order the groups
// (the library's default split: 15 % by distance, 85 % by height). And the
// frame time in a 640 x 480 window: groups in their stored order
// (drawOrder 0, the element list still rewritten one pass in four), sorted by
// view in its four-pass cadence, sorted in every frame, and frozen by bit 0
// of the render parameters (the element list drawn as it stands).
#include "primitives/PrimitivesTestSupport.h"

#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGHeadlessGLContext.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>

#include <benchmark/benchmark.h>

#include <memory>
#include <random>
#include <vector>

using namespace osg;

namespace
{

/// Groups of 0.1 units in a cube of 10 units whose centre lies 12 units in
/// front of a camera at the origin; random colours at half opacity.
std::vector<primtest::Square> scatter(UInt32 count)
{
    std::mt19937                          rng(7);
    std::uniform_real_distribution<float> unit(0.f, 1.f);
    std::vector<primtest::Square>         groups(count);
    for(primtest::Square &g : groups)
    {
        g.ref   = Pnt3f(10.f * unit(rng) - 5.f, 10.f * unit(rng) - 5.f, -7.f - 10.f * unit(rng));
        g.color = Color4f(unit(rng), unit(rng), unit(rng), 0.5f);
        g.half  = 0.05f;
    }
    return groups;
}

SortedPrimitivesPtr makeScattered(UInt32 count)
{
    SortedPrimitivesPtr cloud = corvane::makeSquareCloud(scatter(count), 1);
    addRefCP(cloud);
    beginEditCP(cloud);
    cloud->setThresholdVal(0.85f);
    cloud->setMaterial(primtest::blendedMaterial());
    endEditCP(cloud);
    return cloud;
}

void BM_SortRefresh(benchmark::State &state)
{
    SortedPrimitivesPtr           cloud = makeScattered(UInt32(state.range(0)));
    std::unique_ptr<RenderAction> action(RenderAction::create());
    for(auto _ : state)
    {
        UInt32 count = 0;
        int   *order = cloud->calcIndex(action.get(), count, NULL);
        benchmark::DoNotOptimize(order);
        delete[] order;
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    subRefCP(cloud);
}
BENCHMARK(BM_SortRefresh)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

enum FrameMode
{
    StoredOrder,
    SortedByView,
    SortedEveryFrame,
    Frozen
};

/// One window, one viewport, the cloud under the root.
class CloudFrame
{
  public:
    explicit CloudFrame(UInt32 count) : _cloud(makeScattered(count))
    {
        _win = EGLWindow::create();
        addRefCP(_win);
        beginEditCP(_win);
        _win->setSize(640, 480);
        endEditCP(_win);
        _win->init();

        NodePtr beacon = Node::create();
        beginEditCP(beacon);
        beacon->setCore(Transform::create());
        endEditCP(beacon);
        NodePtr cloudNode = Node::create();
        beginEditCP(cloudNode);
        cloudNode->setCore(_cloud);
        endEditCP(cloudNode);
        _root = Node::create();
        addRefCP(_root);
        beginEditCP(_root);
        _root->setCore(Group::create());
        _root->addChild(beacon);
        _root->addChild(cloudNode);
        endEditCP(_root);

        PerspectiveCameraPtr camera = PerspectiveCamera::create();
        beginEditCP(camera);
        camera->setBeacon(beacon);
        camera->setFov(1.f);
        camera->setNear(0.1f);
        camera->setFar(100.f);
        endEditCP(camera);

        SolidBackgroundPtr bg = SolidBackground::create();
        ViewportPtr        port = Viewport::create();
        beginEditCP(port);
        port->setSize(0.f, 0.f, 1.f, 1.f);
        port->setCamera(camera);
        port->setRoot(_root);
        port->setBackground(bg);
        endEditCP(port);
        _win->addPort(port);

        _action.reset(RenderAction::create());
    }

    ~CloudFrame(void)
    {
        _action.reset();
        subRefCP(_win);
        subRefCP(_root);
        subRefCP(_cloud);
        setRenderParams(0);
    }

    bool ok(void) const { return _win->isInitialized(); }

    void setMode(FrameMode mode)
    {
        beginEditCP(_cloud, SortedPrimitives::DrawOrderFieldMask);
        _cloud->setDrawOrder(mode == StoredOrder ? 0 : 1);
        endEditCP(_cloud, SortedPrimitives::DrawOrderFieldMask);
        _mode = mode;
        // the first frame always refreshes the element list
        render();
        setRenderParams(mode == Frozen ? 1 : 0);
    }

    void render(void)
    {
        if(_mode == SortedEveryFrame)
        {
            beginEditCP(_cloud, SortedPrimitives::SortFieldMask);
            _cloud->setSort(0);
            endEditCP(_cloud, SortedPrimitives::SortFieldMask);
        }
        _win->render(_action.get());
    }

  private:
    SortedPrimitivesPtr           _cloud;
    EGLWindowPtr                  _win;
    NodePtr                       _root;
    std::unique_ptr<RenderAction> _action;
    FrameMode                     _mode = StoredOrder;
};

void BM_Frame(benchmark::State &state)
{
    if(!HeadlessGLContext::isAvailable())
    {
        state.SkipWithError("no EGL context");
        return;
    }
    CloudFrame frame(UInt32(state.range(1)));
    if(!frame.ok())
    {
        state.SkipWithError("no window");
        return;
    }
    frame.setMode(FrameMode(state.range(0)));
    for(auto _ : state)
        frame.render();
    state.SetItemsProcessed(state.iterations() * state.range(1));
}
BENCHMARK(BM_Frame)
    ->ArgNames({"mode", "groups"})
    ->Args({StoredOrder, 100000})
    ->Args({SortedByView, 100000})
    ->Args({SortedEveryFrame, 100000})
    ->Args({Frozen, 100000})
    ->Unit(benchmark::kMillisecond);

} // namespace
