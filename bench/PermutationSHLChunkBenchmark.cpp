// What a PermutationSHLChunk costs over a plain SHLChunk with the very same
// program (the ready common-surface shader, as compiled for one light set):
//
//   BM_Switch/plain:0       activate A, changeFrom A to B, deactivate B, with
//                           two SHLChunks of that program
//   BM_Switch/plain:1       the same with two PermutationSHLChunks, each in
//                           its steady state (its permutation made before):
//                           the state block from its cache, the key looked
//                           up, and a full deactivate and activate per switch
//   BM_CacheMiss            a permutation parameter with a new value at
//                           every activation: key, new SHLChunk, compile and
//                           link of both programs
//
// The GL work is llvmpipe's (or the driver's) on the headless context.
#include <OpenSG/CommonSurfaceShader.h>
#include <OpenSG/OSGBaseInitFunctions.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGHeadlessGLContext.h>
#include <OpenSG/OSGPermutationSHLChunk.h>
#include <OpenSG/OSGRenderAction.h>

#include <benchmark/benchmark.h>

#include <memory>
#include <random>
#include <sstream>
#include <string>

using namespace osg;

namespace
{

/// A small headless window whose context stays current, a render action
/// bound to it, and a common-surface material with a diffuse texture id.
class Bench
{
  public:
    Bench(void)
    {
        _win = EGLWindow::create();
        addRefCP(_win);
        beginEditCP(_win);
        _win->setSize(64, 64);
        endEditCP(_win);
        _win->init();

        _action.reset(RenderAction::create());
        _action->setWindow(_win.getCPtr());

        _material = CommonSurfaceShaderMaterial::create();
        addRefCP(_material);
        beginEditCP(_material);
        _material->setDiffuseTextureId(0);
        endEditCP(_material);
    }

    ~Bench(void)
    {
        _action.reset();
        subRefCP(_material);
        subRefCP(_win);
    }

    bool ready(void) const { return _win->isInitialized(); }

    /// A permutation chunk with the ready shader and the material's
    /// parameters, activated once so that its permutation exists.
    PermutationSHLChunkPtr permutationChunk(void)
    {
        PermutationSHLChunkPtr chunk = PermutationSHLChunk::create();
        addRefCP(chunk);
        beginEditCP(chunk);
        chunk->setVertexProgramPrefix(CommonSurfaceShader::getProgramPrefix());
        chunk->setFragmentProgramPrefix(CommonSurfaceShader::getProgramPrefix());
        chunk->setVertexProgram(CommonSurfaceShader::getVertexProgram());
        chunk->setFragmentProgram(CommonSurfaceShader::getFragmentProgram());
        endEditCP(chunk);
        CommonSurfaceShader::update(_material, chunk);
        chunk->activate(_action.get(), 0);
        chunk->deactivate(_action.get(), 0);
        return chunk;
    }

    /// A plain chunk with the programs and uniforms of chunk's permutation.
    SHLChunkPtr plainChunk(const PermutationSHLChunkPtr &chunk)
    {
        std::stringstream key;
        chunk->appendOSGPermutationParameters(key, _action.get());
        chunk->appendPermutationParameters(key);
        SHLChunkPtr permutation = chunk->findPermutation(key.str());

        SHLChunkPtr plain = SHLChunk::create();
        addRefCP(plain);
        beginEditCP(plain);
        plain->setVertexProgram(permutation->getVertexProgram());
        plain->setFragmentProgram(permutation->getFragmentProgram());
        for(UInt32 i = 0; i < permutation->getParameters().size(); ++i)
            plain->getParameters().push_back(permutation->getParameters()[i]);
        endEditCP(plain);
        for(UInt32 i = 0; i < plain->getParameters().size(); ++i)
            addRefCP(plain->getParameters()[i]);
        plain->activate(_action.get(), 0);
        plain->deactivate(_action.get(), 0);
        return plain;
    }

    RenderAction *action(void) { return _action.get(); }

  private:
    EGLWindowPtr                   _win;
    std::unique_ptr<RenderAction>  _action;
    CommonSurfaceShaderMaterialPtr _material;
};

/// The bench, or null (and the run skipped) without a GL context.
std::unique_ptr<Bench> openBench(benchmark::State &state)
{
    std::unique_ptr<Bench> bench;
    if(HeadlessGLContext::isAvailable())
        bench.reset(new Bench);
    if(!bench || !bench->ready())
    {
        state.SkipWithError("no EGL context on this machine");
        bench.reset();
    }
    return bench;
}

void BM_Switch(benchmark::State &state)
{
    std::unique_ptr<Bench> opened = openBench(state);
    if(!opened)
        return;
    Bench &bench = *opened;

    PermutationSHLChunkPtr permA = bench.permutationChunk();
    PermutationSHLChunkPtr permB = bench.permutationChunk();
    SHLChunkPtr            a     = state.range(0) ? SHLChunkPtr(permA) : bench.plainChunk(permA);
    SHLChunkPtr            b     = state.range(0) ? SHLChunkPtr(permB) : bench.plainChunk(permB);

    RenderAction *action = bench.action();
    for(auto _ : state)
    {
        a->activate(action, 0);
        b->changeFrom(action, a.getCPtr(), 0);
        b->deactivate(action, 0);
    }
    glFinish();

    if(!state.range(0))
    {
        subRefCP(a);
        subRefCP(b);
    }
    subRefCP(permA);
    subRefCP(permB);
}

void BM_CacheMiss(benchmark::State &state)
{
    std::unique_ptr<Bench> opened = openBench(state);
    if(!opened)
        return;
    Bench &bench = *opened;

    // values no earlier run used, so that no shader cache of the driver
    // can answer for the compiler
    PermutationSHLChunkPtr chunk  = bench.permutationChunk();
    RenderAction          *action = bench.action();
    std::random_device     random;
    UInt64                 value  = (UInt64(random()) << 32) ^ random();
    for(auto _ : state)
    {
        // last in the key, the new define needs no line break
        chunk->setPermutationParameter("BENCH_VALUE", std::to_string(++value) + "u");
        chunk->activate(action, 0);
        chunk->deactivate(action, 0);
        glFinish();
    }
    chunk->clearPermutationCache();
    subRefCP(chunk);
}

} // namespace

BENCHMARK(BM_Switch)->ArgNames({"permutation"})->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_CacheMiss)->Unit(benchmark::kMillisecond);
