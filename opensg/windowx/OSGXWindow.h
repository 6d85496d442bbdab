/// A window on an X window the application created and keeps: init makes
/// a GLX context for the window's visual and renders through it.
///
///     XWindowPtr xwin = XWindow::create();
///     xwin->setDisplay(dpy);
///     xwin->setWindow(xid);     // created with a GL-capable visual
///     xwin->init();
///
/// The display and the X window stay the application's; the window
/// destroys the context it made when it goes away.
#ifndef _OSGXWINDOW_H_
#define _OSGXWINDOW_H_

#include <OpenSG/OSGXWindowBase.h>

OSG_BEGIN_NAMESPACE

class OSG_WINDOWXLIB_DLLMAPPING XWindow : public XWindowBase
{
  private:
    typedef XWindowBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    /// Reads the X window's visual, makes a new direct GLX context for it,
    /// makes it current and sets up the GL state. Every call makes a new
    /// context. A missing display or window, or a visual without GL, logs
    /// and leaves the window without a context.
    virtual void init(void);
    /// glXMakeCurrent on the window with the context.
    virtual void activate(void);
    /// Makes no context current on the display.
    virtual void deactivate(void);
    virtual void swap(void);

    /// As Window's; a window without a context logs once and draws
    /// nothing.
    virtual void render(RenderActionBase *action = NULL);

  protected:
    XWindow(void);
    XWindow(const XWindow &source);
    virtual ~XWindow(void);

  private:
    friend class FieldContainer;
    friend class XWindowBase;

    static void initMethod(void);

    /// The context this aspect copy made (destroyed with it).
    GLXContext _ownContext;
    bool       _reportedMissing;

    void operator=(const XWindow &source);
};

typedef XWindow *XWindowP;

OSG_END_NAMESPACE

#endif
