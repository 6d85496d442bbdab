// Frame time of the volume ray caster on the real path: a VolumeNode with a
// 256^3 8-bit volume and an opaque sphere cutting into it, a VolumeViewport
// ahead of an ordinary viewport, an off-screen EGL window of 512x512. Each
// timed frame is Window::render followed by glFinish, measured on the wall
// clock, so the rasteriser's own threads are counted.
//
// Cases:
//  - Dense: the frame that bench/vtk renders with VTK's GPU ray caster
//    (simple traversal, simple rays, one-voxel steps).
//  - Dense, simple rays against interleaved rays.
//  - Sparse (six small blobs), simple traversal against block skipping, both
//    with rays over the volume's whole box; and the default set-up, where
//    the boundary of the blocks to visit already limits the rays.
//
// CORVANE_BENCH_PNG=DIR writes each case's frame once to DIR/corvane_<case>.png.
#include "QuietStdout.h"
#include "vtk/VolumeFrameScene.h"

#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGHeadlessGLContext.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>
#include <OpenSG/OSGVolumeNode.h>
#include <OpenSG/OSGVolumeViewport.h>

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

using namespace osg;
using corvanebench::QuietStdout;

namespace
{

enum VolumeKind
{
    Dense,
    Sparse
};

/// The voxels of each kind, made once per process (a 256^3 volume takes
/// a while to compute).
const std::vector<uint8_t> &voxelsOf(VolumeKind kind)
{
    static const std::vector<uint8_t> dense  = volframe::denseVolume();
    static const std::vector<uint8_t> sparse = volframe::sparseVolume();
    return kind == Dense ? dense : sparse;
}

void addChild(const NodePtr &parent, const NodePtr &child)
{
    beginEditCP(parent, Node::ChildrenFieldMask);
    parent->addChild(child);
    endEditCP(parent, Node::ChildrenFieldMask);
}

TextureChunkPtr textureOf(ImagePtr image)
{
    TextureChunkPtr chunk = TextureChunk::create();
    beginEditCP(chunk);
    chunk->setImage(image);
    endEditCP(chunk);
    return chunk;
}

/// The window and scene of one case, built as an application builds them.
class VolumeFrame
{
  public:
    VolumeFrame(VolumeKind kind, UInt32 traversal, UInt32 rayGen, UInt32 bvGeo)
    {
        using namespace volframe;
        _win = EGLWindow::create();
        addRefCP(_win);
        beginEditCP(_win);
        _win->setSize(Width, Height);
        endEditCP(_win);
        _win->init();
        if(!_win->isInitialized())
            return;

        // camera on a beacon; the head light rides on the same beacon
        NodePtr cameraBeacon = makeNodeFor(Transform::create());
        Matrix  view;
        MatrixLookAt(view, Pnt3f(Eye[0], Eye[1], Eye[2]), Pnt3f(At[0], At[1], At[2]),
                     Vec3f(0.f, 1.f, 0.f));
        TransformPtr beacon = TransformPtr::dcast(cameraBeacon->getCore());
        beginEditCP(beacon);
        beacon->setMatrix(view);
        endEditCP(beacon);

        DirectionalLightPtr head = DirectionalLight::create();
        beginEditCP(head);
        head->setDirection(Vec3f(0.f, 0.f, 1.f));
        head->setDiffuse(Color4f(1.f, 1.f, 1.f, 1.f));
        head->setAmbient(Color4f(0.f, 0.f, 0.f, 1.f));
        head->setSpecular(Color4f(0.f, 0.f, 0.f, 1.f));
        head->setBeacon(cameraBeacon);
        endEditCP(head);
        _root = makeNodeFor(head);
        addRefCP(_root);
        addChild(_root, cameraBeacon);

        // the volume: the unit cube onto [-1, 1]^3
        const std::vector<uint8_t> &voxels = voxelsOf(kind);
        ImagePtr                    image  = Image::create();
        beginEditCP(image);
        image->set(Image::OSG_L_PF, Edge, Edge, Edge, 1, 1, 0.0, voxels.data(),
                   Image::OSG_UINT8_IMAGEDATA);
        endEditCP(image);
        std::vector<uint8_t> table = transferTable();
        ImagePtr             tf    = Image::create();
        beginEditCP(tf);
        tf->set(Image::OSG_RGBA_PF, 256, 1, 1, 1, 1, 0.0, table.data(),
                Image::OSG_UINT8_IMAGEDATA);
        endEditCP(tf);

        _volume = VolumeNode::create();
        {
            QuietStdout quiet;
            beginEditCP(_volume);
            _volume->setDimensions(Vec3f(Cube, Cube, Cube));
            _volume->setTransferFunc(textureOf(tf));
            _volume->setStepSize(Real32(StepUnit));
            _volume->setRayGenType(rayGen);
            _volume->setTraversalType(traversal);
            _volume->setBvGeoType(bvGeo);
            _volume->setVoxels(textureOf(image));
            endEditCP(_volume);
        }
        addChild(_root, makeNodeFor(_volume));

        // the opaque sphere
        SimpleMaterialPtr material = SimpleMaterial::create();
        beginEditCP(material);
        material->setDiffuse(Color3f(SphereDiffuse[0], SphereDiffuse[1], SphereDiffuse[2]));
        material->setAmbient(Color3f(0.f, 0.f, 0.f));
        material->setSpecular(Color3f(0.f, 0.f, 0.f));
        endEditCP(material);
        NodePtr     ball = makeSphere(4, Real32(SphereRadius));
        GeometryPtr geo  = GeometryPtr::dcast(ball->getCore());
        beginEditCP(geo, Geometry::MaterialFieldMask);
        geo->setMaterial(material);
        endEditCP(geo, Geometry::MaterialFieldMask);
        TransformPtr place = Transform::create();
        Matrix       at;
        at.setTranslate(Vec3f(SphereCentre[0], SphereCentre[1], SphereCentre[2]));
        beginEditCP(place);
        place->setMatrix(at);
        endEditCP(place);
        NodePtr placed = makeNodeFor(place);
        addChild(placed, ball);
        addChild(_root, placed);

        PerspectiveCameraPtr camera = PerspectiveCamera::create();
        beginEditCP(camera);
        camera->setBeacon(cameraBeacon);
        camera->setFov(osgdegree2rad(Real32(FovYDeg)));
        camera->setNear(Real32(NearPlane));
        camera->setFar(Real32(FarPlane));
        endEditCP(camera);

        SolidBackgroundPtr background = SolidBackground::create();
        beginEditCP(background);
        background->setColor(Color3f(BackgroundColour[0], BackgroundColour[1], BackgroundColour[2]));
        endEditCP(background);

        VolumeViewportPtr volumePort = VolumeViewport::create();
        beginEditCP(volumePort);
        volumePort->setCamera(camera);
        volumePort->setRoot(_root);
        volumePort->setBackground(background);
        volumePort->getVolumeNodes().push_back(_volume);
        endEditCP(volumePort);
        ViewportPtr port = Viewport::create();
        beginEditCP(port);
        port->setCamera(camera);
        port->setRoot(_root);
        port->setBackground(background);
        endEditCP(port);
        _win->addPort(volumePort);
        _win->addPort(port);
        _action.reset(RenderAction::create());

        // the first frame builds the ray caster, the second compiles and
        // draws it once: neither is timed
        QuietStdout quiet;
        render();
        render();
        _ready = _volume->getVolume() != NULL;
    }

    ~VolumeFrame(void)
    {
        if(_win == NullFC)
            return;
        while(!_win->getPort().empty())
            _win->subPort(UInt32(0));
        if(_root != NullFC)
            subRefCP(_root);
        subRefCP(_win);
    }

    bool ready(void) const { return _ready; }

    void render(void)
    {
        _win->render(_action.get());
        glFinish();
    }

    /// Writes the frame buffer as it stands to a PNG file.
    bool write(const std::string &file)
    {
        using namespace volframe;
        std::vector<UInt8> pixels(size_t(Width) * Height * 3);
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glReadPixels(0, 0, Width, Height, GL_RGB, GL_UNSIGNED_BYTE, pixels.data());
        ImagePtr image = Image::create();
        addRefCP(image);
        beginEditCP(image);
        image->set(Image::OSG_RGB_PF, Width, Height, 1, 1, 1, 0.0, pixels.data(),
                   Image::OSG_UINT8_IMAGEDATA);
        endEditCP(image);
        const bool ok = image->write(file.c_str());
        subRefCP(image);
        return ok;
    }

  private:
    EGLWindowPtr                  _win;
    NodePtr                       _root;
    VolumeNodePtr                 _volume;
    std::unique_ptr<RenderAction> _action;
    bool                          _ready = false;
};

void frameTime(benchmark::State &state, VolumeKind kind, UInt32 traversal, UInt32 rayGen,
               UInt32 bvGeo, const char *name)
{
    if(!HeadlessGLContext::isAvailable())
    {
        state.SkipWithError("no EGL context");
        return;
    }
    voxelsOf(kind); // made before the window, outside any timing
    VolumeFrame frame(kind, traversal, rayGen, bvGeo);
    if(!frame.ready())
    {
        state.SkipWithError("the volume frame could not be set up");
        return;
    }
    if(const char *dir = std::getenv("CORVANE_BENCH_PNG"))
    {
        const std::string file = std::string(dir) + "/corvane_" + name + ".png";
        if(!frame.write(file))
            std::fprintf(stderr, "can't write %s\n", file.c_str());
    }
    const double cpuStart = volframe::processSeconds();
    for(auto _ : state)
    {
        const auto start = std::chrono::steady_clock::now();
        frame.render();
        const auto stop = std::chrono::steady_clock::now();
        state.SetIterationTime(std::chrono::duration<double>(stop - start).count());
    }
    state.counters["frame_cpu_ms"] = benchmark::Counter(
        1000.0 * (volframe::processSeconds() - cpuStart), benchmark::Counter::kAvgIterations);
}

// traversal 1 simple, 2 block skipping; ray generation 1 simple, 2 interleaved;
// bounding geometry 1 the volume's box, 2 the boundary of the blocks to visit

void BM_VolumeFrame_Dense(benchmark::State &state)
{
    frameTime(state, Dense, 1, 1, 2, "dense");
}
BENCHMARK(BM_VolumeFrame_Dense)->UseManualTime()->Unit(benchmark::kMillisecond);

void BM_VolumeFrame_DenseInterleaved(benchmark::State &state)
{
    frameTime(state, Dense, 1, 2, 2, "dense_interleaved");
}
BENCHMARK(BM_VolumeFrame_DenseInterleaved)->UseManualTime()->Unit(benchmark::kMillisecond);

// Rays over the whole box, so that the traversal alone meets the empty space
void BM_VolumeFrame_SparseSimple(benchmark::State &state)
{
    frameTime(state, Sparse, 1, 1, 1, "sparse_simple");
}
BENCHMARK(BM_VolumeFrame_SparseSimple)->UseManualTime()->Unit(benchmark::kMillisecond);

void BM_VolumeFrame_SparseBlockSkipping(benchmark::State &state)
{
    frameTime(state, Sparse, 2, 1, 1, "sparse_blockskip");
}
BENCHMARK(BM_VolumeFrame_SparseBlockSkipping)->UseManualTime()->Unit(benchmark::kMillisecond);

// The default set-up: rays only where the boundary of the visited blocks is
void BM_VolumeFrame_SparseBoundarySimple(benchmark::State &state)
{
    frameTime(state, Sparse, 1, 1, 2, "sparse_boundary");
}
BENCHMARK(BM_VolumeFrame_SparseBoundarySimple)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
