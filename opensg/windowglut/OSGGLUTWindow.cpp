#include <OpenSG/OSGGLUTWindow.h>

#include <OpenSG/OSGGLUT.h>
#include <OpenSG/OSGLog.h>

#if defined(__has_include)
#if __has_include(<GL/freeglut_ext.h>)
#include <GL/freeglut_ext.h>
#endif
#endif

OSG_BEGIN_NAMESPACE

namespace
{

// freeglut ends the program on any call but glutGet(GLUT_INIT_STATE)
// before glutInit; other GLUTs offer no such question.
bool glutInitialised(void)
{
#ifdef GLUT_INIT_STATE
    return glutGet(GLUT_INIT_STATE) != 0;
#else
    return true;
#endif
}

} // namespace

GLUTWindow::GLUTWindow(void) : Inherited(), _missingId(-1)
{
}

GLUTWindow::GLUTWindow(const GLUTWindow &source) :
    Inherited(source),
    _missingId(-1)
{
}

GLUTWindow::~GLUTWindow(void)
{
}

void GLUTWindow::initMethod(void)
{
}

void GLUTWindow::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void GLUTWindow::dump(UInt32, const BitVector) const
{
    SLOG << "Dump GLUTWindow NI" << std::endl;
}

void GLUTWindow::setGlutId(Int32 val)
{
    setId(val);
}

void GLUTWindow::init(void)
{
    if(!makeCurrent())
        return;

    setupGL();
}

// GLUT offers no other way to make a window's context current than to
// make the window current.
void GLUTWindow::activate(void)
{
    // GLUT never hands a closed window's id out again: once found missing
    // it is not asked for (GLUT warns at each try)
    if(getId() <= 0 || getId() == _missingId || !glutInitialised())
        return;

    if(glutGetWindow() != getId())
        glutSetWindow(getId());
}

bool GLUTWindow::makeCurrent(void)
{
    activate();

    if(getId() > 0 && getId() != _missingId && glutInitialised() &&
       glutGetWindow() == getId())
        return true;

    if(getId() != _missingId)
    {
        FWARNING(("GLUTWindow: GLUT window %d does not exist (no id set, or "
                  "closed); not drawing\n", getId()));
        _missingId = getId();
    }
    return false;
}

void GLUTWindow::render(RenderActionBase *action)
{
    if(!makeCurrent())
        return;

    Inherited::render(action);
}

void GLUTWindow::deactivate(void)
{
}

void GLUTWindow::swap(void)
{
    if(getId() <= 0 || !glutInitialised() || glutGetWindow() == 0)
        return;

    glutSwapBuffers();
}

OSG_END_NAMESPACE
