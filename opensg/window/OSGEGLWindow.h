/// A window without a window system: an EGL desktop-GL context that renders
/// into an off-screen framebuffer of the window's size, which stands in for
/// the back buffer. It runs where there is no display at all (tests, batch
/// rendering) on Mesa's llvmpipe as well as on GPU drivers.
///
///     EGLWindowPtr win = EGLWindow::create();
///     win->resize(256, 128);     // or setSize before init
///     win->init();               // context current, GL state set up
///     if(!win->isInitialized()) ...   // no EGL on this machine
///     win->addPort(viewport);
///     win->render(renderAction);
///     win->readPixels(...);      // the framebuffer, bottom row first
///
/// activate() makes the context current on the calling thread and binds the
/// framebuffer; frameInit() activates too when the context is not current,
/// so the extension and function tables can be filled before any frame.
/// A pending resize reallocates the framebuffer in resizeGL().
#ifndef _OSGEGLWINDOW_H_
#define _OSGEGLWINDOW_H_

#include <OpenSG/OSGEGLWindowBase.h>

OSG_BEGIN_NAMESPACE

class HeadlessGLContext;

class EGLWindow : public EGLWindowBase
{
  private:
    typedef EGLWindowBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    /// Reallocates the framebuffer if a resize is pending, then as Window.
    virtual void resizeGL(void);

    /// Activates first if the context is not current on this thread.
    virtual void frameInit(void);

    /// Creates the context and framebuffer at the window's size (a 0 edge
    /// counts as 1), makes it current and sets up the GL state. Logs and
    /// leaves the window uninitialised when EGL gives no context; a second
    /// call does nothing.
    virtual void init(void);
    /// Makes the context current and binds the framebuffer.
    virtual void activate(void);
    /// Releases the context from the calling thread.
    virtual void deactivate(void);
    /// Finishes the frame (there is nothing to present).
    virtual void swap(void);

    bool isInitialized(void) const;

    /// The context (NULL before init); its framebuffer is the window's
    /// image.
    HeadlessGLContext *getContext(void) const { return _context; }

    /// Reads a rectangle of the window's image, rows bottom to top, tightly
    /// packed; activates the window first.
    bool readPixels(UInt32 x, UInt32 y, UInt32 width, UInt32 height,
                    GLenum format, GLenum type, void *dst);

  protected:
    EGLWindow(void);
    /// A copy gets a context of its own at its init.
    EGLWindow(const EGLWindow &source);
    /// Destroys the context of this aspect copy.
    virtual ~EGLWindow(void);

  private:
    friend class FieldContainer;
    friend class EGLWindowBase;

    static void initMethod(void);

    HeadlessGLContext *_context;

    void operator=(const EGLWindow &source);
};

typedef EGLWindow *EGLWindowP;

OSG_END_NAMESPACE

#endif
