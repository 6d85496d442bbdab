#include <OpenSG/OSGXWindow.h>

#include <OpenSG/OSGLog.h>

OSG_BEGIN_NAMESPACE

DataType FieldDataTraits<DisplayP>::_type("DisplayP", "BaseType");
DataType FieldDataTraits2<X11Window>::_type("X11Window", "BaseType");
DataType FieldDataTraits<GLXContext>::_type("GLXContext", "BaseType");

OSG_DLLEXPORT_SFIELD_DEF1(DisplayP, OSG_WINDOWXLIB_DLLTMPLMAPPING);
OSG_DLLEXPORT_SFIELD_DEF2(X11Window, 2, OSG_WINDOWXLIB_DLLTMPLMAPPING);
OSG_DLLEXPORT_SFIELD_DEF1(GLXContext, OSG_WINDOWXLIB_DLLTMPLMAPPING);

namespace
{

// X reports a bad window id through the error handler, whose default ends
// the program; init asks about the application's window with this one in
// place instead.
int lastXError = 0;

int recordXError(::Display *, XErrorEvent *event)
{
    lastXError = event->error_code;
    return 0;
}

} // namespace

XWindow::XWindow(void) :
    Inherited(),
    _ownContext(NULL),
    _reportedMissing(false)
{
}

XWindow::XWindow(const XWindow &source) :
    Inherited(source),
    _ownContext(NULL),
    _reportedMissing(false)
{
}

XWindow::~XWindow(void)
{
    if(_ownContext != NULL && getDisplay() != NULL)
    {
        if(glXGetCurrentContext() == _ownContext)
            glXMakeCurrent(getDisplay(), 0, NULL);
        glXDestroyContext(getDisplay(), _ownContext);
    }
}

void XWindow::initMethod(void)
{
}

void XWindow::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void XWindow::dump(UInt32, const BitVector) const
{
    SLOG << "Dump XWindow NI" << std::endl;
}

void XWindow::init(void)
{
    DisplayP  dpy = getDisplay();
    X11Window win = getWindow();

    if(dpy == NULL || win == 0)
    {
        FWARNING(("XWindow::init: no %s set\n",
                  dpy == NULL ? "display" : "X window"));
        return;
    }

    XWindowAttributes attributes;
    XSync(dpy, False);
    lastXError = 0;
    int (*previous)(::Display *, XErrorEvent *) = XSetErrorHandler(recordXError);
    const int got = XGetWindowAttributes(dpy, win, &attributes);
    XSync(dpy, False);
    XSetErrorHandler(previous);

    if(got == 0 || lastXError != 0)
    {
        FWARNING(("XWindow::init: cannot read the attributes of X window "
                  "0x%lx\n", static_cast<unsigned long>(win)));
        return;
    }

    XVisualInfo pattern;
    pattern.visualid = XVisualIDFromVisual(attributes.visual);
    pattern.screen   = XScreenNumberOfScreen(attributes.screen);

    int          count = 0;
    XVisualInfo *vi    = XGetVisualInfo(dpy, VisualIDMask | VisualScreenMask,
                                        &pattern, &count);
    if(vi == NULL || count == 0)
    {
        FWARNING(("XWindow::init: no visual info for X window 0x%lx\n",
                  static_cast<unsigned long>(win)));
        if(vi != NULL)
            XFree(vi);
        return;
    }

    int useGL = 0;
    glXGetConfig(dpy, vi, GLX_USE_GL, &useGL);
    if(!useGL)
        SFATAL << "Visual is not OpenGL-capable!" << std::endl;

    GLXContext ctx = glXCreateContext(dpy, vi, NULL, True);
    XFree(vi);

    if(ctx == NULL)
    {
        FWARNING(("XWindow::init: GLX gives no context for X window "
                  "0x%lx\n", static_cast<unsigned long>(win)));
        return;
    }

    // a second init replaces the context this window made before
    if(_ownContext != NULL)
    {
        if(glXGetCurrentContext() == _ownContext)
            glXMakeCurrent(dpy, 0, NULL);
        glXDestroyContext(dpy, _ownContext);
    }
    _ownContext = ctx;

    XWindowPtr self(this);
    beginEditCP(self, ContextFieldMask);
    setContext(ctx);
    endEditCP(self, ContextFieldMask);

    activate();
    setupGL();
}

void XWindow::activate(void)
{
    if(getDisplay() != NULL && getContext() != NULL)
        glXMakeCurrent(getDisplay(), getWindow(), getContext());
}

void XWindow::deactivate(void)
{
    if(getDisplay() != NULL)
        glXMakeCurrent(getDisplay(), 0, NULL);
}

void XWindow::swap(void)
{
    if(getDisplay() != NULL && getWindow() != 0)
        glXSwapBuffers(getDisplay(), getWindow());
}

void XWindow::render(RenderActionBase *action)
{
    if(getDisplay() == NULL || getContext() == NULL)
    {
        if(!_reportedMissing)
        {
            FWARNING(("XWindow::render: the window has no GLX context "
                      "(init not called or failed); not drawing\n"));
            _reportedMissing = true;
        }
        return;
    }

    Inherited::render(action);
}

OSG_END_NAMESPACE
