/// A window on a GLUT window the application created and keeps: GLUT owns
/// the window and its GL context, this class only makes it current and
/// swaps its buffers.
///
///     glutInitDisplayMode(GLUT_RGB | GLUT_DEPTH | GLUT_DOUBLE);
///     int winid = glutCreateWindow("title");
///     GLUTWindowPtr gwin = GLUTWindow::create();
///     gwin->setId(winid);
///     gwin->init();
///
/// The application forwards GLUT's reshape callback to resize(w, h) (the
/// SimpleSceneManager's resize does that).
#ifndef _OSGGLUTWINDOW_H_
#define _OSGGLUTWINDOW_H_

#include <OpenSG/OSGGLUTWindowBase.h>

OSG_BEGIN_NAMESPACE

class OSG_WINDOWGLUTLIB_DLLMAPPING GLUTWindow : public GLUTWindowBase
{
  private:
    typedef GLUTWindowBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    /// setId under GLUT's name.
    void setGlutId(Int32 val);

    /// Makes the GLUT window current and sets up its GL state; the window
    /// must exist (glutCreateWindow made its context). Without it (id 0,
    /// or closed) it logs and does nothing.
    virtual void init(void);
    /// glutSetWindow(id) if another GLUT window is current.
    virtual void activate(void);
    virtual void deactivate(void);
    /// glutSwapBuffers on the current GLUT window.
    virtual void swap(void);

    /// As Window's, but a window whose GLUT window is gone (closed, or no
    /// id set) logs once and draws nothing instead of drawing into
    /// whichever GLUT window is current.
    virtual void render(RenderActionBase *action = NULL);

  protected:
    GLUTWindow(void);
    GLUTWindow(const GLUTWindow &source);
    virtual ~GLUTWindow(void);

  private:
    friend class FieldContainer;
    friend class GLUTWindowBase;

    static void initMethod(void);

    /// Activates and tells whether the GLUT window is now current.
    bool makeCurrent(void);

    /// The id found missing and reported (-1: none).
    Int32 _missingId;

    void operator=(const GLUTWindow &source);
};

typedef GLUTWindow *GLUTWindowP;

OSG_END_NAMESPACE

#endif
