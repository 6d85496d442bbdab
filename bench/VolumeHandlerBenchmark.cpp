// What a strategy change costs the volume node handler: each setter
// rebuilds the ray caster's material (the shader text, the uniforms, the
// textures) on the CPU, and the next frame compiles and links the new
// program. The two are reported apart: the setters on a 64^3 volume, and
// the compile and link of the programs they produce, in an EGL context.
#include "QuietStdout.h"
#include <OpenSG/BVGeometry.h>
#include <OpenSG/NormalVolume.h>
#include <OpenSG/RayGeneration.h>
#include <OpenSG/ShadingFunctions.h>
#include <OpenSG/SimpleTransferfunction.h>
#include <OpenSG/TraversalFunctions.h>
#include <OpenSG/VolumeNodeHandler.h>
#include <OpenSG/OSGVolumeNode.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGHeadlessGLContext.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGTextureChunk.h>

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

using namespace osg;
using corvanebench::QuietStdout;

namespace
{

const Int32 Edge = 64;

/// A volume node with a soft ball of 64^3 voxels; its handler, built by the
/// node with the defaults of every new handler, is what the cases time.
class BallVolume
{
  public:
    BallVolume(void)
    {
        std::vector<UInt8> voxels(size_t(Edge) * Edge * Edge);
        const Real32       c = (Edge - 1) / 2.f;
        size_t             n = 0;
        for(Int32 z = 0; z < Edge; ++z)
            for(Int32 y = 0; y < Edge; ++y)
                for(Int32 x = 0; x < Edge; ++x)
                {
                    const Real32 r = std::sqrt((x - c) * (x - c) + (y - c) * (y - c) +
                                               (z - c) * (z - c)) /
                                     c;
                    voxels[n++] = UInt8(r < 1.f ? (1.f - r) * 255.f : 0.f);
                }
        ImagePtr image = Image::create();
        beginEditCP(image);
        image->set(Image::OSG_L_PF, Edge, Edge, Edge, 1, 1, 0.0, voxels.data(),
                   Image::OSG_UINT8_IMAGEDATA);
        endEditCP(image);
        TextureChunkPtr chunk = TextureChunk::create();
        beginEditCP(chunk);
        chunk->setImage(image);
        endEditCP(chunk);

        QuietStdout quiet;
        _node = VolumeNode::create();
        addRefCP(_node);
        beginEditCP(_node, VolumeNode::VoxelsFieldMask);
        _node->setVoxels(chunk);
        endEditCP(_node, VolumeNode::VoxelsFieldMask);
    }
    ~BallVolume(void) { subRefCP(_node); }

    /// NULL when the node refused the voxels.
    VolumeNodeHandler *handler(void) const { return _node->getVolume(); }

  private:
    VolumeNodePtr _node;
};

/// Times one setter: each round hands the handler a fresh strategy.
void setterTime(benchmark::State &state, const std::function<void(VolumeNodeHandler &)> &set)
{
    BallVolume         ball;
    VolumeNodeHandler *handler = ball.handler();
    if(handler == NULL)
    {
        state.SkipWithError("the volume could not be set");
        return;
    }
    QuietStdout quiet;
    for(auto _ : state)
        set(*handler);
}

void BM_HandlerSetter_StepSize(benchmark::State &state)
{
    float step = 0.004f;
    setterTime(state, [&](VolumeNodeHandler &h) { h.setStepSize(step += 1e-6f); });
}
BENCHMARK(BM_HandlerSetter_StepSize)->Unit(benchmark::kMicrosecond);

void BM_HandlerSetter_RayGeneration(benchmark::State &state)
{
    setterTime(state, [](VolumeNodeHandler &h) { h.setRayGeneration(new InterleavedRay); });
}
BENCHMARK(BM_HandlerSetter_RayGeneration)->Unit(benchmark::kMicrosecond);

void BM_HandlerSetter_Normals(benchmark::State &state)
{
    setterTime(state, [](VolumeNodeHandler &h) { h.setNormalfunction(new OnlineSobelNormal); });
}
BENCHMARK(BM_HandlerSetter_Normals)->Unit(benchmark::kMicrosecond);

void BM_HandlerSetter_Shading(benchmark::State &state)
{
    setterTime(state,
               [](VolumeNodeHandler &h) { h.setShadingfunction(new DVRShadingAndLighting); });
}
BENCHMARK(BM_HandlerSetter_Shading)->Unit(benchmark::kMicrosecond);

void BM_HandlerSetter_Transferfunction(benchmark::State &state)
{
    setterTime(state, [](VolumeNodeHandler &h) {
        h.setTransferfunction(new SimpleTransferfunction(0));
    });
}
BENCHMARK(BM_HandlerSetter_Transferfunction)->Unit(benchmark::kMicrosecond);

// the block-skipping traversal also builds the bit volume of the grid
void BM_HandlerSetter_Traversal(benchmark::State &state)
{
    setterTime(state,
               [](VolumeNodeHandler &h) { h.setTraversalfunction(new BlockSkippingTraversal); });
}
BENCHMARK(BM_HandlerSetter_Traversal)->Unit(benchmark::kMicrosecond);

// the boundary geometry is built anew from the 64^3 volume's block grid
void BM_HandlerSetter_BoundaryGeometry(benchmark::State &state)
{
    setterTime(state, [](VolumeNodeHandler &h) { h.setBVGeometry(new BoundaryGeometry); });
}
BENCHMARK(BM_HandlerSetter_BoundaryGeometry)->Unit(benchmark::kMicrosecond);

GLuint compileShader(GLenum type, const std::string &text)
{
    GLuint      shader = glCreateShader(type);
    const char *source = text.c_str();
    glShaderSource(shader, 1, &source, NULL);
    glCompileShader(shader);
    return shader;
}

/// Compiles and links the ray caster's program as the handler holds it
/// after the given shading strategy and draws one point with it, as the
/// first frame after a change does: the driver translates a program to
/// machine code when it is first drawn with. Each round's text differs by
/// a comment, so that no shader cache answers.
void compileTime(benchmark::State &state, const std::function<ShadingFunctions *()> &shading)
{
    if(!HeadlessGLContext::isAvailable())
    {
        state.SkipWithError("no EGL context");
        return;
    }
    HeadlessGLContext  context;
    BallVolume         ball;
    VolumeNodeHandler *handler = ball.handler();
    if(!context.init(1, 1) || handler == NULL)
    {
        state.SkipWithError("no context or no volume");
        return;
    }
    {
        QuietStdout quiet;
        handler->setShadingfunction(shading());
    }
    SHLChunkPtr       shader   = handler->getRaycastingShader();
    const std::string vertex   = shader->getVertexProgram();
    const std::string fragment = shader->getFragmentProgram();
    unsigned round = 0;
    for(auto _ : state)
    {
        const std::string tag = "\n// round " + std::to_string(++round) + "\n";
        const GLuint      vs  = compileShader(GL_VERTEX_SHADER, vertex + tag);
        const GLuint      fs  = compileShader(GL_FRAGMENT_SHADER, fragment + tag);
        const GLuint program = glCreateProgram();
        glAttachShader(program, vs);
        glAttachShader(program, fs);
        glLinkProgram(program);
        GLint linked = 0;
        glGetProgramiv(program, GL_LINK_STATUS, &linked);
        if(linked)
        {
            glUseProgram(program);
            glBegin(GL_POINTS);
            glVertex3f(0.f, 0.f, 0.f);
            glEnd();
            glFinish();
            glUseProgram(0);
        }
        glDeleteProgram(program);
        glDeleteShader(vs);
        glDeleteShader(fs);
        if(!linked)
        {
            state.SkipWithError("the program does not link");
            break;
        }
    }
}

void BM_HandlerCompile_DVR(benchmark::State &state)
{
    compileTime(state, []() { return new DVRShading; });
}
BENCHMARK(BM_HandlerCompile_DVR)->UseRealTime()->Unit(benchmark::kMillisecond);

void BM_HandlerCompile_LitDVR(benchmark::State &state)
{
    compileTime(state, []() { return new DVRShadingAndLighting; });
}
BENCHMARK(BM_HandlerCompile_LitDVR)->UseRealTime()->Unit(benchmark::kMillisecond);

void BM_HandlerCompile_MIP(benchmark::State &state)
{
    compileTime(state, []() { return new MIPShading; });
}
BENCHMARK(BM_HandlerCompile_MIP)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace
