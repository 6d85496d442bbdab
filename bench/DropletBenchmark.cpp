// Time of one droplet-flow step (the velocity pass and the advection pass,
// each one full-screen quad into a float surface map) at 256², 512² and
// 1024² surface maps, on whatever GL the EGL window gets: llvmpipe on a
// plain machine, the GPU through EGL's device platform where there is one.
// A few droplets lie on a flat plane under a sideways force, so every step
// moves fluid. glFinish after each step makes the time the GPU's, not the
// submission's.
#include <OpenSG/DropletFlow.h>
#include <OpenSG/DropletPlacer.h>
#include <OpenSG/DropletUtils.h>

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGHeadlessGLContext.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSimpleGeometry.h>

#include <benchmark/benchmark.h>

#include <memory>

using namespace osg;

namespace
{

/// A window whose context stays current, and a simulation over a plane.
class Simulation
{
  public:
    explicit Simulation(int edge)
    {
        _win = EGLWindow::create();
        addRefCP(_win);
        beginEditCP(_win);
        _win->setSize(64, 64);
        endEditCP(_win);
        _win->init();

        _action.reset(RenderAction::create());
        _win->activate();
        _win->frameInit();
        _action->setWindow(_win.getCPtr());
        DropletUtils::the()->updateWindowState(_win, _action.get());

        _plane = makePlane(2.f, 2.f, 1, 1);
        addRefCP(_plane);
        DropletUtils::the()->calcTangents(_plane, 1);
        _material = ChunkMaterial::create();
        addRefCP(_material);

        _flow.reset(new DropletFlow(_plane, _material, edge, edge, 1, NullFC));
        _win->frameInit();
        _flow->setFlowParams(0.01f, 0.4f, 1.f, 1.f, 8.f, 0.5f);
        _flow->setForce(Vec3f(0.3f, -1.f, 0.f));
        _flow->updateProjectedMaps(0.52f);
        for(int i = 0; i < 8; ++i)
            _flow->getPlacer()->addSource(DropletSource(0.1f + 0.1f * i, 0.8f, 0.08f, 1.f));
        _flow->getPlacer()->render(true);
        glFinish();
    }

    ~Simulation(void)
    {
        _flow.reset();
        DropletUtils::the()->updateWindowState(NullFC, NULL);
        _action.reset();
        subRefCP(_material);
        subRefCP(_plane);
        subRefCP(_win);
    }

    void step(void)
    {
        _flow->renderNextFrame();
        glFinish();
    }

    bool ok(void) const { return _win->isInitialized() && glGetError() == GL_NO_ERROR; }

  private:
    EGLWindowPtr                  _win;
    std::unique_ptr<RenderAction> _action;
    NodePtr                       _plane;
    ChunkMaterialPtr              _material;
    std::unique_ptr<DropletFlow>  _flow;
};

void BM_DropletStep(benchmark::State &state)
{
    if(!HeadlessGLContext::isAvailable())
    {
        state.SkipWithError("no EGL context");
        return;
    }

    const int  edge = int(state.range(0));
    Simulation sim(edge);
    if(!sim.ok())
    {
        state.SkipWithError("the simulation could not be set up");
        return;
    }
    sim.step(); // shaders compiled, framebuffers made

    for(auto _ : state)
        sim.step();

    state.SetItemsProcessed(state.iterations() * Int64(edge) * edge);
    state.counters["steps/s"] = benchmark::Counter(Real64(state.iterations()),
                                                   benchmark::Counter::kIsRate);
    state.SetLabel(reinterpret_cast<const char *>(glGetString(GL_RENDERER)));
}

BENCHMARK(BM_DropletStep)
    ->Arg(256)
    ->Arg(512)
    ->Arg(1024)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

} // namespace
