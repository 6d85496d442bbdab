// Per-frame cost of reading a 1024 x 768 RGBA viewport back into an image:
// a frame without read-back, OpenSG's GrabForeground (glReadPixels straight
// into the image), and PBOGrabForeground with no ring (direct), and rings
// of 1, 2 and 3 pixel buffer objects. Every frame clears to a new colour,
// so no driver can skip the work. The difference to the frame without
// read-back is what the grab costs; a ring of at least 2 lets glReadPixels
// return before the pixels are there.
#include <OpenSG/OSGBaseInitFunctions.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGrabForeground.h>
#include <OpenSG/OSGHeadlessGLContext.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGPBOGrabForeground.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>

#include <benchmark/benchmark.h>

#include <memory>

using namespace osg;

namespace
{

const UInt16 Width  = 1024;
const UInt16 Height = 768;

/// Which foreground reads the frame back.
enum Reader
{
    NoReadBack = -2,
    PlainGrab  = -1
    // 0 and above: a PBOGrabForeground with that many buffers
};

/// One window with one viewport over an empty scene; the background
/// changes colour every frame.
class Scene
{
  public:
    explicit Scene(Int32 reader) : _frame(0)
    {
        _win = EGLWindow::create();
        addRefCP(_win);
        beginEditCP(_win);
        _win->setSize(Width, Height);
        endEditCP(_win);
        _win->init();

        _root = Node::create();
        addRefCP(_root);
        beginEditCP(_root);
        _root->setCore(Group::create());
        endEditCP(_root);

        _beacon = Node::create();
        addRefCP(_beacon);
        beginEditCP(_beacon);
        _beacon->setCore(Transform::create());
        endEditCP(_beacon);

        _camera = PerspectiveCamera::create();
        addRefCP(_camera);
        beginEditCP(_camera);
        _camera->setBeacon(_beacon);
        _camera->setFov(1.f);
        _camera->setNear(0.1f);
        _camera->setFar(10.f);
        endEditCP(_camera);

        _bg = SolidBackground::create();
        addRefCP(_bg);

        _port = Viewport::create();
        addRefCP(_port);
        beginEditCP(_port);
        _port->setSize(0.f, 0.f, 1.f, 1.f);
        _port->setCamera(_camera);
        _port->setRoot(_root);
        _port->setBackground(_bg);
        endEditCP(_port);
        _win->addPort(_port);

        _image = Image::create();
        addRefCP(_image);
        _image->set(GL_RGBA, Width, Height);

        if(reader == PlainGrab)
        {
            GrabForegroundPtr fg = GrabForeground::create();
            beginEditCP(fg);
            fg->setImage(_image);
            fg->setActive(true);
            endEditCP(fg);
            _port->addForeground(fg);
        }
        else if(reader >= 0)
        {
            PBOGrabForegroundPtr fg = PBOGrabForeground::create();
            beginEditCP(fg);
            fg->setImage(_image);
            fg->setNumPBOs(reader);
            fg->setActive(true);
            endEditCP(fg);
            _port->addForeground(fg);
        }

        _action.reset(RenderAction::create());
    }

    ~Scene(void)
    {
        _action.reset();
        subRefCP(_image);
        subRefCP(_port);
        subRefCP(_bg);
        subRefCP(_camera);
        subRefCP(_beacon);
        subRefCP(_root);
        subRefCP(_win);
    }

    bool ready(void) const { return _win->isInitialized(); }

    void frame(void)
    {
        ++_frame;
        beginEditCP(_bg);
        _bg->setColor(Color3f((_frame % 7) / 7.f, (_frame % 5) / 5.f, (_frame % 3) / 3.f));
        endEditCP(_bg);

        _win->render(_action.get());
    }

    const ImagePtr &image(void) const { return _image; }

  private:
    UInt32                        _frame;
    EGLWindowPtr                  _win;
    NodePtr                       _root, _beacon;
    PerspectiveCameraPtr          _camera;
    SolidBackgroundPtr            _bg;
    ViewportPtr                   _port;
    ImagePtr                      _image;
    std::unique_ptr<RenderAction> _action;
};

void BM_ReadBackFrame(benchmark::State &state)
{
    if(!HeadlessGLContext::isAvailable())
    {
        state.SkipWithError("no EGL context on this machine");
        return;
    }

    Scene scene(Int32(state.range(0)));
    if(!scene.ready())
    {
        state.SkipWithError("the window could not be initialised");
        return;
    }

    // Fill the ring before measuring.
    for(UInt32 i = 0; i < 4; ++i)
        scene.frame();

    for(auto _ : state)
    {
        scene.frame();
        benchmark::DoNotOptimize(scene.image()->getData()[0]);
    }

    state.SetBytesProcessed(Int64(state.iterations()) * Width * Height * 4);
}

} // namespace

// reader: -2 no read-back, -1 GrabForeground, 0 PBOGrabForeground without a
// ring (direct), 1 to 3 the size of the ring
BENCHMARK(BM_ReadBackFrame)
    ->ArgNames({"reader"})
    ->Arg(NoReadBack)
    ->Arg(PlainGrab)
    ->Arg(0)
    ->Arg(1)
    ->Arg(2)
    ->Arg(3)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
