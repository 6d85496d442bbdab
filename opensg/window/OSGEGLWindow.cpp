#include <OpenSG/OSGEGLWindow.h>

#include <OpenSG/OSGHeadlessGLContext.h>

OSG_BEGIN_NAMESPACE

EGLWindow::EGLWindow(void) : Inherited(), _context(NULL)
{
}

EGLWindow::EGLWindow(const EGLWindow &source) :
    Inherited(source),
    _context(NULL)
{
}

// The context is a plain resource of this aspect copy, not a counted
// reference, so it goes with the object.
EGLWindow::~EGLWindow(void)
{
    delete _context;
}

void EGLWindow::initMethod(void)
{
}

void EGLWindow::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void EGLWindow::dump(UInt32, const BitVector) const
{
    SLOG << "Dump EGLWindow NI" << std::endl;
}

bool EGLWindow::isInitialized(void) const
{
    return _context != NULL && _context->isInitialized();
}

void EGLWindow::init(void)
{
    if(_context != NULL)
    {
        if(!_context->isInitialized())
            FWARNING(("EGLWindow::init: the context failed before; not "
                      "trying again\n"));
        return;
    }

    _context = new HeadlessGLContext;

    if(!_context->init(getWidth(), getHeight()))
    {
        FWARNING(("EGLWindow::init: no headless GL context\n"));
        return;
    }

    // The framebuffer was made at this size; nothing is pending any more.
    if(isResizePending())
    {
        EGLWindowPtr self(this);

        beginEditCP(self, ResizePendingFieldMask);
        setResizePending(false);
        endEditCP(self, ResizePendingFieldMask);
    }

    activate();
    setupGL();
}

void EGLWindow::activate(void)
{
    if(!isInitialized())
        return;

    if(!_context->isCurrent())
        _context->makeCurrent();

    _context->bindFramebuffer();
}

void EGLWindow::deactivate(void)
{
    if(_context != NULL)
        _context->release();
}

void EGLWindow::swap(void)
{
    if(isInitialized())
        _context->swap();
}

void EGLWindow::frameInit(void)
{
    if(isInitialized() && !_context->isCurrent())
        activate();

    Inherited::frameInit();
}

void EGLWindow::resizeGL(void)
{
    if(isResizePending() && isInitialized())
        _context->resize(getWidth(), getHeight());

    Inherited::resizeGL();
}

bool EGLWindow::readPixels(UInt32 x, UInt32 y, UInt32 width, UInt32 height,
                           GLenum format, GLenum type, void *dst)
{
    if(!isInitialized())
    {
        FWARNING(("EGLWindow::readPixels: window not initialised\n"));
        return false;
    }

    activate();

    return _context->readPixels(x, y, width, height, format, type, dst);
}

OSG_END_NAMESPACE
