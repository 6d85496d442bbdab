// On-screen windows: a GLUT program written as OpenSG's first tutorial, and
// an XWindow on an X window made here, render the pixels the headless
// window renders; mouse events sent through the X server (xdotool) reach
// the manager through GLUT's callbacks and turn the camera as the
// trackball's formulas say. The tests run on DISPLAY, or on a private
// Xvfb where DISPLAY names none.
#include "manager/ManagerTestSupport.h"

#include <OpenSG/OSGGLUT.h>
#include <OpenSG/OSGGLUTWindow.h>
#include <OpenSG/OSGXWindow.h>

#include <GL/freeglut.h>
#include <GL/glx.h>

#include <support/XDisplay.h>

#include <dlfcn.h>
#include <link.h>
#include <stdlib.h>
#include <unistd.h>

#include <functional>
#include <string>

using namespace osg;
using namespace mgrtest;
using wintest::RGBA;

namespace
{

// --- a GLUT program, as the tutorial writes it -----------------------------------

SimpleSceneManager *mgr = NULL;
int displayCalls = 0, reshapeCalls = 0, mouseCalls = 0, motionCalls = 0;
int lastReshapeW = -1, lastReshapeH = -1;

void display(void)
{
    ++displayCalls;
    if(mgr != NULL)
        mgr->redraw();
}

void reshape(int w, int h)
{
    ++reshapeCalls;
    lastReshapeW = w;
    lastReshapeH = h;
    if(mgr != NULL)
        mgr->resize(w, h);
    glutPostRedisplay();
}

void mouse(int button, int state, int x, int y)
{
    ++mouseCalls;
    if(mgr == NULL)
        return;
    if(state)
        mgr->mouseButtonRelease(button, x, y);
    else
        mgr->mouseButtonPress(button, x, y);
    glutPostRedisplay();
}

void motion(int x, int y)
{
    ++motionCalls;
    if(mgr != NULL)
        mgr->mouseMove(x, y);
    glutPostRedisplay();
}

/// Mesa's GLX unloads its DRI driver when the display closes at exit, before
/// LeakSanitizer looks: blocks the driver loses then come from an unknown
/// module, which no suppression can name. Loaded drivers stay mapped.
void keepGLDriversLoaded(void)
{
    dl_iterate_phdr(
        [](dl_phdr_info *info, size_t, void *) {
            const std::string name = info->dlpi_name ? info->dlpi_name : "";
            if(name.find("_dri.so") != std::string::npos)
                dlopen(name.c_str(), RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE);
            return 0;
        },
        NULL);
}

/// glutInit once per process (GLUT allows no second one), on the test
/// display; "" or why there is no display.
const std::string &glutReady(void)
{
    static const std::string error = [] {
        const std::string e = corvanetest::ensureXDisplay();
        if(!e.empty())
            return e;
        static char  name[] = "test_glut";
        static char *argv[] = {name, NULL};
        int          argc   = 1;
        glutInit(&argc, argv);
        // a window closed by the user must not end the test program
        glutSetOption(GLUT_ACTION_ON_WINDOW_CLOSE, GLUT_ACTION_CONTINUE_EXECUTION);
        keepGLDriversLoaded();
        return std::string();
    }();
    return error;
}

/// Runs GLUT's event loop step by step until done() or 10 seconds passed.
bool pumpUntil(const std::function<bool(void)> &done)
{
    for(int i = 0; i < 5000; ++i)
    {
        glutMainLoopEvent();
        if(done())
            return true;
        usleep(2000);
    }
    return false;
}

/// GLX and EGL contexts can't both be current on a thread: the headless
/// reference frame is drawn with no GLX context current.
void releaseGLX(void)
{
    if(glXGetCurrentContext() != NULL)
        glXMakeCurrent(glXGetCurrentDisplay(), 0, NULL);
}

/// What the X window shows: its w x h pixels as the X server holds them
/// (XGetImage on the connection the GL context draws through), bottom row
/// first.
std::vector<RGBA> readWindow(Display *dpy, ::Window xid, int w, int h)
{
    glFinish();
    XSync(dpy, False);

    std::vector<RGBA> px(w * h);
    XImage *image = XGetImage(dpy, xid, 0, 0, w, h, AllPlanes, ZPixmap);
    EXPECT_NE(image, nullptr);
    if(image == NULL)
        return px;

    auto channel = [](unsigned long pixel, unsigned long mask) {
        int shift = 0;
        while(mask != 0 && (mask & 1) == 0)
        {
            mask >>= 1;
            ++shift;
        }
        return UInt8(((pixel >> shift) & mask) * 255 / (mask ? mask : 1));
    };
    for(int y = 0; y < h; ++y)
        for(int x = 0; x < w; ++x)
        {
            const unsigned long p = XGetPixel(image, x, y);
            px[(h - 1 - y) * w + x] = RGBA{channel(p, image->red_mask),
                                           channel(p, image->green_mask),
                                           channel(p, image->blue_mask), 255};
        }
    XDestroyImage(image);
    return px;
}

/// What the current GLUT window shows.
std::vector<RGBA> readGlutWindow(int w, int h)
{
    return readWindow(glXGetCurrentDisplay(), glXGetCurrentDrawable(), w, h);
}

/// The on-screen frame matches the headless one: the same rasteriser
/// draws both, so all but a handful of edge pixels agree exactly, and none
/// differs by more than a rounding step.
void expectSameFrame(const std::vector<RGBA> &got, const std::vector<RGBA> &want)
{
    ASSERT_EQ(got.size(), want.size());
    size_t differ = 0;
    int    worst  = 0;
    for(size_t i = 0; i < got.size(); ++i)
    {
        const int d = std::max({std::abs(got[i].r - want[i].r), std::abs(got[i].g - want[i].g),
                                std::abs(got[i].b - want[i].b)});
        differ += d != 0;
        worst = std::max(worst, d);
    }
    EXPECT_LE(worst, 1);
    EXPECT_LE(differ, got.size() / 1000);
    // and it is the torus, not an empty frame
    size_t lit = 0;
    for(const RGBA &c : got)
        lit += c.r > 50;
    EXPECT_GT(lit, got.size() / 10);
}

class GlutTest : public ::testing::Test
{
  protected:
    static constexpr int W = 300, H = 300;

    void SetUp(void) override
    {
        ASSERT_EQ(glutReady(), "");
        releaseGLX();
        displayCalls = reshapeCalls = mouseCalls = motionCalls = 0;
    }

    void TearDown(void) override
    {
        if(!glutReady().empty())
            return;
        delete mgr;
        mgr = NULL;
        if(gwin != NullFC)
            subRefCP(gwin);
        if(winid > 0)
            glutDestroyWindow(winid);
        glutMainLoopEvent();
        releaseGLX();
    }

    /// The tutorial's main(): GLUT window, GLUTWindow, manager, torus.
    void openTutorial(void)
    {
        glutInitDisplayMode(GLUT_RGB | GLUT_DEPTH | GLUT_DOUBLE);
        glutInitWindowPosition(0, 0);
        glutInitWindowSize(W, H);
        winid = glutCreateWindow("OpenSG");
        ASSERT_GT(winid, 0);

        glutDisplayFunc(display);
        glutReshapeFunc(reshape);
        glutMouseFunc(mouse);
        glutMotionFunc(motion);

        gwin = GLUTWindow::create();
        addRefCP(gwin);
        beginEditCP(gwin);
        gwin->setId(winid);
        endEditCP(gwin);
        gwin->init();

        mgr = new SimpleSceneManager;
        mgr->setWindow(gwin);
        mgr->setRoot(makeTutorialTorus());
        mgr->showAll();

        // mapped, sized and drawn once
        ASSERT_TRUE(pumpUntil([] { return displayCalls > 0 && reshapeCalls > 0; }));
        ASSERT_EQ(gwin->getWidth(), W);
        ASSERT_EQ(gwin->getHeight(), H);
    }

    /// Redisplay and wait for it.
    void redisplay(void)
    {
        const int before = displayCalls;
        glutPostRedisplay();
        ASSERT_TRUE(pumpUntil([before] { return displayCalls > before; }));
    }

    int           winid = 0;
    GLUTWindowPtr gwin;
};

TEST_F(GlutTest, TutorialProgramShowsTheHeadlessPicture)
{
    const std::vector<RGBA> reference = headlessTutorialFrame(W, H);
    if(reference.empty())
        GTEST_SKIP() << "no EGL context for the headless reference";

    openTutorial();
    redisplay();
    EXPECT_EQ(glutGetWindow(), winid);
    expectSameFrame(readGlutWindow(W, H), reference);
}

// Press, move and release sent to the X server reach the manager through
// GLUT's callbacks; the camera ends where the trackball formulas put it.
TEST_F(GlutTest, MouseEventsTurnTheCamera)
{
    openTutorial();

    glutSetWindow(winid);
    const unsigned long xid = glXGetCurrentDrawable();
    ASSERT_NE(xid, 0u);

    const std::string cmd = "xdotool mousemove --window " + std::to_string(xid) +
                            " 150 150 mousedown 1 mousemove --window " + std::to_string(xid) +
                            " 160 150 mouseup 1";
    ASSERT_EQ(system(cmd.c_str()), 0) << "xdotool failed (scripts/deps.sh installs it): " << cmd;

    // press and release through glutMouseFunc, the drag through glutMotionFunc
    ASSERT_TRUE(pumpUntil([] { return mouseCalls >= 2; }));
    EXPECT_GE(motionCalls, 1);
    redisplay();

    Real32 fx, fy, tx, ty;
    normalised(150, 150, W, H, fx, fy);
    normalised(160, 150, W, H, tx, ty);
    const Matrix want = product(trackballRotation(fx, fy, tx, ty),
                                translation(0.f, 0.f, 4.8301272f));
    EXPECT_TRUE(matrixNear(beaconMatrix(*mgr), want));
}

// A zero-sized window draws nothing and does not fail; GLUT's reshape to a
// new size brings the picture back at that size.
TEST_F(GlutTest, ZeroSizeAndReshape)
{
    openTutorial();

    const Matrix before = beaconMatrix(*mgr);
    mgr->resize(0, 0);
    {
        LogCapture log(LOG_WARNING);
        mgr->redraw();
        mgr->mouseButtonPress(SimpleSceneManager::MouseLeft, 0, 0);
        mgr->mouseMove(10, 10);
        mgr->mouseButtonRelease(SimpleSceneManager::MouseLeft, 10, 10);
        mgr->redraw();
        // nothing to draw and nothing to complain about
        EXPECT_EQ(log.take(), "");
    }
    EXPECT_TRUE(matrixNear(beaconMatrix(*mgr), before, 0.f));

    glutReshapeWindow(200, 100);
    ASSERT_TRUE(pumpUntil([] { return lastReshapeW == 200 && lastReshapeH == 100; }));
    redisplay();
    EXPECT_EQ(gwin->getWidth(), 200);
    EXPECT_EQ(gwin->getHeight(), 100);

    const std::vector<RGBA> px = readGlutWindow(200, 100);
    // the hole in the middle, the tube's lit front at 0.8 of the half
    // height to the right
    EXPECT_EQ(px[50 * 200 + 100], (RGBA{0, 0, 0, 255}));
    EXPECT_GT(px[50 * 200 + 140].r, 200);
}

// A closed GLUT window: the manager's redraw logs once and draws nothing.
TEST_F(GlutTest, ClosedWindowLogsAndDrawsNothing)
{
    openTutorial();

    glutDestroyWindow(winid);
    winid = 0;
    glutMainLoopEvent();

    LogCapture log(LOG_WARNING);
    mgr->redraw();
    mgr->redraw();
    const std::string text = log.take();
    EXPECT_NE(text.find("GLUTWindow: GLUT window"), std::string::npos) << text;
    EXPECT_EQ(text.find("GLUTWindow: GLUT window", text.find("GLUTWindow: GLUT window") + 1),
              std::string::npos)
        << "logged more than once: " << text;
}

TEST_F(GlutTest, WindowWithoutIdLogs)
{
    GLUTWindowPtr lone = GLUTWindow::create();
    addRefCP(lone);
    LogCapture log(LOG_WARNING);
    lone->init();
    lone->render(NULL);
    EXPECT_NE(log.take().find("no id set"), std::string::npos);
    subRefCP(lone);
}

// No display: GLUT says so in one line and the program ends with an error
// status, it does not crash.
void tutorialWithoutDisplay(void)
{
    setenv("DISPLAY", ":4711", 1);
    static char  name[] = "tutorial";
    static char *argv[] = {name, NULL};
    int          argc   = 1;
    glutInit(&argc, argv);
    glutCreateWindow("OpenSG");
    std::exit(0);
}

TEST(GlutNoDisplay, ProgramExitsWithAClearLine)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(tutorialWithoutDisplay(), ::testing::ExitedWithCode(1),
                "failed to open display ':4711'");
}

// --- XWindow ------------------------------------------------------------------

class XWindowTest : public ::testing::Test
{
  protected:
    static constexpr int W = 300, H = 300;

    void SetUp(void) override
    {
        ASSERT_EQ(corvanetest::ensureXDisplay(), "");
        releaseGLX();
        dpy = XOpenDisplay(NULL);
        ASSERT_NE(dpy, nullptr);
    }

    void TearDown(void) override
    {
        delete mgr;
        mgr = NULL;
        if(xwin != NullFC)
        {
            xwin->deactivate();
            subRefCP(xwin);
        }
        if(xw != 0)
            XDestroyWindow(dpy, xw);
        if(cmap != 0)
            XFreeColormap(dpy, cmap);
        if(vi != NULL)
            XFree(vi);
        if(dpy != NULL)
            XCloseDisplay(dpy);
    }

    /// A mapped X window of W x H with a double-buffered RGBA visual.
    void openXWindow(void)
    {
        int attributes[] = {GLX_RGBA, GLX_DEPTH_SIZE, 16, GLX_DOUBLEBUFFER, 0};
        vi = glXChooseVisual(dpy, DefaultScreen(dpy), attributes);
        ASSERT_NE(vi, nullptr);

        const ::Window root = RootWindow(dpy, vi->screen);
        cmap = XCreateColormap(dpy, root, vi->visual, AllocNone);
        XSetWindowAttributes swa;
        swa.colormap     = cmap;
        swa.border_pixel = 0;
        swa.event_mask   = StructureNotifyMask;
        xw = XCreateWindow(dpy, root, 0, 0, W, H, 0, vi->depth, InputOutput, vi->visual,
                           CWBorderPixel | CWColormap | CWEventMask, &swa);
        XMapWindow(dpy, xw);
        XEvent event;
        do
            XNextEvent(dpy, &event);
        while(event.type != MapNotify || event.xmap.window != xw);
    }

    Display      *dpy  = NULL;
    XVisualInfo  *vi   = NULL;
    Colormap      cmap = 0;
    ::Window      xw   = 0;
    XWindowPtr    xwin;
};

TEST_F(XWindowTest, RendersTheHeadlessPicture)
{
    const std::vector<RGBA> reference = headlessTutorialFrame(W, H);
    if(reference.empty())
        GTEST_SKIP() << "no EGL context for the headless reference";

    openXWindow();
    xwin = XWindow::create();
    addRefCP(xwin);
    beginEditCP(xwin);
    xwin->setDisplay(dpy);
    xwin->setWindow(xw);
    endEditCP(xwin);
    xwin->init();
    keepGLDriversLoaded();
    ASSERT_NE(xwin->getContext(), nullptr);
    EXPECT_EQ(glXGetCurrentContext(), xwin->getContext());
    xwin->resize(W, H);

    mgr = new SimpleSceneManager;
    mgr->setWindow(xwin);
    mgr->setRoot(makeTutorialTorus());
    mgr->showAll();
    mgr->redraw();

    expectSameFrame(readWindow(dpy, xw, W, H), reference);

    // the type and its fields, as OpenSG names them
    EXPECT_STREQ(XWindow::getClassType().getCName(), "XWindow");
    EXPECT_EQ(XWindow::DisplayFieldId, 9u);
    EXPECT_EQ(XWindow::ContextFieldMask, BitVector(0x800));
    EXPECT_STREQ(xwin->getSFWindow()->getType().getCName(), "SFX11Window");
    EXPECT_EQ(GLUTWindow::IdFieldMask, BitVector(0x200));
}

// Bad handles: no display, an X window id that does not exist. A log line
// each, no context, nothing drawn, no crash.
TEST_F(XWindowTest, BadHandlesLogAndDrawNothing)
{
    xwin = XWindow::create();
    addRefCP(xwin);

    LogCapture log(LOG_WARNING);
    xwin->init();
    EXPECT_NE(log.take().find("XWindow::init: no display set"), std::string::npos);
    xwin->render(NULL);
    EXPECT_NE(log.take().find("no GLX context"), std::string::npos);

    beginEditCP(xwin);
    xwin->setDisplay(dpy);
    xwin->setWindow(0x7ffffff);
    endEditCP(xwin);
    xwin->init();
    EXPECT_NE(log.take().find("cannot read the attributes"), std::string::npos);
    EXPECT_EQ(xwin->getContext(), nullptr);
}

} // namespace
