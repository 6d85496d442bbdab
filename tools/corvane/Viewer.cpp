#include "Viewer.h"
#include "Args.h"
#include "DemoSupport.h"
#include "VolumeRenderer.h"

#include <OpenSG/OSGGLUT.h>
// freeglut's additions: leaving the main loop, and a window the user closes
#include <GL/freeglut_ext.h>
#include <OpenSG/OSGGLUTWindow.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGSimpleSceneManager.h>
#include <OpenSG/OSGVolumeNode.h>
#include <OpenSG/OSGVolumeViewport.h>

#include <X11/Xlib.h>

#if defined(__SANITIZE_ADDRESS__)
#define CORVANE_VIEW_LEAK_CHECKED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define CORVANE_VIEW_LEAK_CHECKED 1
#endif
#endif
#ifdef CORVANE_VIEW_LEAK_CHECKED
#include <dlfcn.h>
#include <link.h>
#endif

#include <algorithm>
#include <memory>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

OSG_USING_NAMESPACE

namespace corvane
{

namespace
{

const char *const ViewHelp =
    "usage: corvane view [VOLUME] [options]\n"
    "Shows a volume file (DAT, NRRD, MetaImage, NIfTI, DICOM) or, without one, the\n"
    "built-in Shepp-Logan phantom, with a mesh, in a window turned with the mouse.\n"
    "  --mesh FILE              a mesh file (OBJ, PLY, STL, glTF) instead of the sphere;\n"
    "                           without VOLUME the mesh is shown alone\n"
    "  --tf FILE|NAME           transfer-function file or preset: phantom, ramp\n"
    "  --size W H               window size (default 640 480)\n"
    "  --style NAME             dvr, lit, mip, xray or boundary (default dvr)\n"
    "  --step S                 ray step in unit-cube coordinates (default 0.004)\n"
    "  --shot FILE              where the key p writes the window as PNG\n"
    "                           (default corvane-view.png)\n"
    "  --frames N               draw N frames, print their times and exit (with\n"
    "                           --shot, write the last frame first)\n"
    "Mouse: left turns, middle pans, right zooms (trackball). Keys:\n"
    "  1-5 style (dvr, lit, mip, xray, boundary)   t traversal (simple, skipping)\n"
    "  r rays (simple, interleaved)   f fly   b trackball   a show all\n"
    "  h headlight   p screenshot   q or Esc quit\n";

/// In a LeakSanitizer build only: Mesa's GLX unloads its DRI driver when
/// the display closes at exit, before the leak check runs, and what the
/// driver loses then comes from an unknown module that no suppression can
/// name. The loaded drivers stay mapped, so the driver's own leaks are
/// told apart from ours.
void keepGLDriversForTheLeakCheck(void)
{
#ifdef CORVANE_VIEW_LEAK_CHECKED
    dl_iterate_phdr(
        [](dl_phdr_info *info, size_t, void *) {
            const std::string name = info->dlpi_name != NULL ? info->dlpi_name : "";
            if(name.find("_dri.so") != std::string::npos)
                dlopen(name.c_str(), RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE);
            return 0;
        },
        NULL);
#endif
}

int viewError(const std::string &message, int code = 2)
{
    fprintf(stderr, "corvane view: %s\n", message.c_str());
    return code;
}

/// Everything the GLUT callbacks reach; GLUT calls plain functions.
struct Viewer
{
    Holder                   held;
    VolumeRenderOptions      options;
    VolumeScene              scene;
    SimpleSceneManager      *manager = NULL;
    GLUTWindowPtr            window;
    ScreenDumpForegroundPtr  dump;
    std::string              shot = "corvane-view.png";
    unsigned                 frames = 0;     ///< 0: run until closed
    unsigned                 drawn  = 0;
    std::vector<double>      times;          ///< since the last report
    std::chrono::steady_clock::time_point lastReport = std::chrono::steady_clock::now();
    bool                     shotAtEnd  = false; ///< --shot with --frames: write it after the last
    bool                     buttonHeld = false;
};

Viewer *viewer = NULL;

void report(bool force)
{
    const auto now = std::chrono::steady_clock::now();
    if(viewer->times.empty() ||
       (!force && now - viewer->lastReport < std::chrono::seconds(2)))
        return;
    std::vector<double> t = viewer->times;
    std::sort(t.begin(), t.end());
    printf("%zu frame%s, median %.1f ms, fastest %.1f ms, slowest %.1f ms\n", t.size(),
           t.size() == 1 ? "" : "s", t[t.size() / 2], t.front(), t.back());
    fflush(stdout);
    viewer->times.clear();
    viewer->lastReport = now;
}

/// The manager's showAll arithmetic on the box the volume is drawn in (a
/// volume node's own bounding box counts voxels, not scene units).
void showScene(void)
{
    SimpleSceneManager *manager = viewer->manager;
    if(viewer->scene.volume == NullFC)
    {
        manager->showAll();
        return;
    }
    const Vec3f  d    = viewer->scene.extent;
    const Real32 fov  = manager->getCamera()->getFov();
    const Real32 dist = osgMax(d[0], d[1]) / (2.f * osgtan(fov / 2.f));
    // from the renderer's angle (30 degrees round, 20 up), not head-on
    // along the slices
    const Real32 r  = dist + d[2] / 2.f;
    const Real32 az = osgdegree2rad(30.f), el = osgdegree2rad(20.f);
    const Pnt3f  at(0.f, 0.f, 0.f);
    const Pnt3f  from(r * osgcos(el) * osgsin(az), r * osgsin(el), r * osgcos(el) * osgcos(az));
    manager->getNavigator()->set(from, at, Vec3f(0.f, 1.f, 0.f));
    manager->getNavigator()->setMotionFactor((d[0] + d[1] + d[2]) / 100.f);
    const Real32 diag = osgMax(osgMax(d[0], d[1]), d[2]);
    beginEditCP(manager->getCamera(), Camera::NearFieldMask | Camera::FarFieldMask);
    manager->getCamera()->setNear(diag / 100.f);
    manager->getCamera()->setFar(10.f * diag);
    endEditCP(manager->getCamera(), Camera::NearFieldMask | Camera::FarFieldMask);
}

/// Writes the window's next frame as PNG through a screen dump.
void screenshot(void)
{
    // the camera where the navigator has it (the manager's redraw does
    // this), and the manager's own action: the ray caster keeps its state
    // per action
    viewer->manager->getNavigator()->updateCameraTransformation();
    RenderAction *action = dynamic_cast<RenderAction *>(viewer->manager->getAction());
    if(action != NULL && renderFrameToFile(viewer->window, action, viewer->dump,
                         viewer->shot.c_str()))
        printf("wrote %s\n", viewer->shot.c_str());
    else
        fprintf(stderr, "corvane view: can't write '%s'\n", viewer->shot.c_str());
    fflush(stdout);
}

void display(void)
{
    const auto start = std::chrono::steady_clock::now();
    viewer->manager->redraw();
    glFinish();
    const auto stop = std::chrono::steady_clock::now();
    viewer->times.push_back(std::chrono::duration<double, std::milli>(stop - start).count());
    ++viewer->drawn;
    report(false);
    if(viewer->frames > 0 && viewer->drawn >= viewer->frames)
    {
        report(true);
        if(viewer->shotAtEnd)
            screenshot();
        glutLeaveMainLoop();
    }
    // the volume viewport's first frame only sets it up: a second one shows
    // the volume
    else if(viewer->frames > 0 || viewer->buttonHeld || viewer->drawn == 1)
        glutPostRedisplay();
}

void reshape(int w, int h)
{
    viewer->manager->resize(UInt16(std::max(w, 0)), UInt16(std::max(h, 0)));
    glutPostRedisplay();
}

/// Fly and walk repeat their motion while a button is held; GLUT calls an
/// idle function without pause, so there is one only then.
void idle(void)
{
    viewer->manager->idle();
    glutPostRedisplay();
}

void mouse(int button, int state, int x, int y)
{
    if(state == GLUT_DOWN)
        viewer->manager->mouseButtonPress(UInt16(button), Int16(x), Int16(y));
    else
        viewer->manager->mouseButtonRelease(UInt16(button), Int16(x), Int16(y));
    viewer->buttonHeld = state == GLUT_DOWN;
    glutIdleFunc(viewer->buttonHeld ? idle : NULL);
    glutPostRedisplay();
}

void motion(int x, int y)
{
    viewer->manager->mouseMove(Int16(x), Int16(y));
    glutPostRedisplay();
}

/// Switches a strategy field of the volume between its two values, 1 and
/// 2, and says which one is on now.
void toggleStrategy(const char *what, BitVector mask, const UInt32 &(VolumeNode::*get)(void) const,
                    void (VolumeNode::*set)(const UInt32 &), const char *one, const char *two)
{
    const VolumeNodePtr volume = viewer->scene.volume;
    if(volume == NullFC)
        return;
    const UInt32 value = ((*volume).*get)() == 1 ? 2 : 1;
    beginEditCP(volume, mask);
    ((*volume).*set)(value);
    endEditCP(volume, mask);
    printf("%s: %s\n", what, value == 1 ? one : two);
}

void keyboard(unsigned char key, int, int)
{
    const VolumeNodePtr volume = viewer->scene.volume;
    switch(key)
    {
        case 27:
        case 'q':
            glutLeaveMainLoop();
            return;
        case '1': case '2': case '3': case '4': case '5':
        {
            const std::string style = volumeStyles()[size_t(key - '1')];
            if(volume != NullFC)
            {
                applyStyle(viewer->held, volume, style);
                printf("style: %s\n", style.c_str());
            }
            break;
        }
        case 't':
            toggleStrategy("traversal", VolumeNode::TraversalTypeFieldMask,
                           &VolumeNode::getTraversalType, &VolumeNode::setTraversalType,
                           "simple", "skipping");
            break;
        case 'r':
            toggleStrategy("rays", VolumeNode::RayGenTypeFieldMask, &VolumeNode::getRayGenType,
                           &VolumeNode::setRayGenType, "simple", "interleaved");
            break;
        case 'f':
            viewer->manager->setNavigationMode(Navigator::FLY);
            printf("navigation: fly\n");
            break;
        case 'b':
            viewer->manager->setNavigationMode(Navigator::TRACKBALL);
            printf("navigation: trackball\n");
            break;
        case 'a':
            showScene();
            break;
        case 'h':
            viewer->manager->setHeadlight(!viewer->manager->getHeadlightState());
            printf("headlight: %s\n", viewer->manager->getHeadlightState() ? "on" : "off");
            break;
        case 'p':
            screenshot();
            break;
        default:
            return;
    }
    fflush(stdout);
    glutPostRedisplay();
}


} // namespace

int viewCommand(int argc, char **argv)
{
    Viewer view;
    view.options.width  = 640;
    view.options.height = 480;
    for(int i = 0; i < argc; ++i)
    {
        const std::string a    = argv[i];
        auto              need = [&](int count) { return i + count < argc; };
        if(a == "--help" || a == "-h")
        {
            fputs(ViewHelp, stdout);
            return 0;
        }
        else if(a == "--tf" && need(1))
            view.options.transfer = argv[++i];
        else if(a == "--shot" && need(1))
        {
            view.shot      = argv[++i];
            view.shotAtEnd = true;
        }
        else if(a == "--frames" && need(1))
        {
            if(!parseUInt(argv[++i], 1, 100000, view.frames))
                return viewError("bad frame count '" + std::string(argv[i]) + "' (1 to 100000)");
        }
        else
        {
            std::string error;
            if(!parseSharedOption(argc, argv, i, view.options, "window", error))
                return viewError(error);
        }
    }
    // a mesh alone is shown without the phantom
    view.options.volume = !view.options.file.empty() || view.options.meshFile.empty();

    // GLUT ends the process when it finds no display: ask X first
    const char *displayName = getenv("DISPLAY");
    if(displayName == NULL || *displayName == 0)
        return viewError("no display to open a window on (DISPLAY is not set)", 1);
    if(Display *probe = XOpenDisplay(NULL))
        XCloseDisplay(probe);
    else
        return viewError("can't open the display '" + std::string(displayName) + "'", 1);

    // the library's notices would drown the frame times
    osgLog().setLogLevel(LOG_WARNING);
    std::string error;
    if(!buildVolumeScene(view.held, view.options, view.scene, error))
        return viewError(error, 1);

    int   glutArgc   = 1;
    char  name[]     = "corvane";
    char *glutArgv[] = {name, NULL};
    glutInit(&glutArgc, glutArgv);
    glutInitDisplayMode(GLUT_RGB | GLUT_DEPTH | GLUT_DOUBLE);
    glutInitWindowSize(int(view.options.width), int(view.options.height));
    const int id = glutCreateWindow("corvane view");
    glutSetOption(GLUT_ACTION_ON_WINDOW_CLOSE, GLUT_ACTION_GLUTMAINLOOP_RETURNS);

    view.window = view.held.keep(GLUTWindow::create());
    beginEditCP(view.window);
    view.window->setId(id);
    endEditCP(view.window);
    view.window->init();
    keepGLDriversForTheLeakCheck();

    view.manager = new SimpleSceneManager;
    view.manager->setWindow(view.window);
    view.manager->setRoot(view.scene.root);
    viewer = &view;
    showScene();

    // the volume viewport goes first: it casts the rays against the scene's
    // depth and hangs the result into the scene, which the manager's
    // viewport then draws
    if(view.scene.volume != NullFC)
    {
        VolumeViewportPtr volumePort = view.held.keep(VolumeViewport::create());
        ViewportPtr       port       = view.window->getPort(0);
        beginEditCP(volumePort);
        volumePort->setCamera(view.manager->getCamera());
        volumePort->setRoot(port->getRoot());
        volumePort->setBackground(port->getBackground());
        volumePort->getVolumeNodes().push_back(view.scene.volume);
        endEditCP(volumePort);
        // the port list counts no references: the manager's viewport lives
        // on while it is out of the list
        beginEditCP(view.window, osg::Window::PortFieldMask);
        view.window->subPort(UInt32(0));
        view.window->addPort(volumePort);
        view.window->addPort(port);
        endEditCP(view.window, osg::Window::PortFieldMask);
    }
    view.dump = addDumpPort(view.held, view.window);

    glutDisplayFunc(display);
    glutReshapeFunc(reshape);
    glutMouseFunc(mouse);
    glutMotionFunc(motion);
    glutKeyboardFunc(keyboard);

    if(view.frames == 0)
        fputs("left drag turns, middle pans, right zooms; 1-5 style, t traversal, r rays, "
              "p screenshot, q quits\n", stdout);
    fflush(stdout);

    glutMainLoop();
    report(true);
    viewer = NULL;

    // the window may already be gone when the user closed it
    delete view.manager;
    if(glutGetWindow() != 0)
        glutDestroyWindow(id);
    return 0;
}

} // namespace corvane
