#include <OpenSG/OSGViewport.h>

#include <OpenSG/OSGBackground.h>
#include <OpenSG/OSGCamera.h>
#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGForeground.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGRenderActionBase.h>
#include <OpenSG/OSGWindow.h>

OSG_BEGIN_NAMESPACE

Viewport::Viewport(void) : Inherited()
{
}

Viewport::Viewport(const Viewport &source) : Inherited(source)
{
}

Viewport::~Viewport(void)
{
}

void Viewport::initMethod(void)
{
}

void Viewport::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void Viewport::dump(UInt32, const BitVector) const
{
    SLOG << "Dump Viewport NI" << std::endl;
}

// --- pixel rectangle ---------------------------------------------------------

Int32 Viewport::getPixelLeft(void) const
{
    if(getLeft() > 1.f)
        return Int32(getLeft());

    if(getParent() == NullFC)
    {
        SWARNING << "Viewport::getPixelLeft: viewport has no parent window!"
                 << std::endl;
        return 0;
    }

    return Int32(getParent()->getWidth() * getLeft());
}

Int32 Viewport::getPixelRight(void) const
{
    if(getRight() > 1.f)
        return Int32(getRight());

    if(getParent() == NullFC)
    {
        SWARNING << "Viewport::getPixelRight: viewport has no parent window!"
                 << std::endl;
        return 0;
    }

    // One less, so that a viewport ending at 0.5 and one starting there
    // don't share a column.
    return Int32(getParent()->getWidth() * getRight() - 1);
}

Int32 Viewport::getPixelBottom(void) const
{
    if(getBottom() > 1.f)
        return Int32(getBottom());

    if(getParent() == NullFC)
    {
        SWARNING << "Viewport::getPixelBottom: viewport has no parent window!"
                 << std::endl;
        return 0;
    }

    return Int32(getParent()->getHeight() * getBottom());
}

Int32 Viewport::getPixelTop(void) const
{
    if(getTop() > 1.f)
        return Int32(getTop());

    if(getParent() == NullFC)
    {
        SWARNING << "Viewport::getPixelTop: viewport has no parent window!"
                 << std::endl;
        return 0;
    }

    return Int32(getParent()->getHeight() * getTop() - 1);
}

Int32 Viewport::getPixelWidth(void) const
{
    return getPixelRight() - getPixelLeft() + 1;
}

Int32 Viewport::getPixelHeight(void) const
{
    return getPixelTop() - getPixelBottom() + 1;
}

bool Viewport::isFullWindow(void) const
{
    if(getParent() == NullFC)
    {
        SWARNING << "Viewport::isFullWindow: viewport has no parent window!"
                 << std::endl;
        return false;
    }

    return getPixelBottom() == 0 && getPixelLeft() == 0 &&
           getPixelTop() == Int32(getParent()->getHeight()) - 1 &&
           getPixelRight() == Int32(getParent()->getWidth()) - 1;
}

void Viewport::setSize(Real32 left, Real32 bottom, Real32 right, Real32 top)
{
    _sfLeft.setValue(left);
    _sfRight.setValue(right);
    _sfBottom.setValue(bottom);
    _sfTop.setValue(top);
}

void Viewport::addForeground(const ForegroundPtr &fg)
{
    addRefCP(fg);
    _mfForegrounds.push_back(fg);
}

void Viewport::clearForegrounds(void)
{
    MFForegroundPtr old;
    old.swap(_mfForegrounds);

    for(UInt32 i = 0; i < old.size(); ++i)
        subRefCP(old[i]);
}

// --- activation ----------------------------------------------------------------

void Viewport::activateSize(void)
{
    const GLint l = getPixelLeft();
    const GLint b = getPixelBottom();
    const GLint r = getPixelRight();
    const GLint t = getPixelTop();

    glViewport(l, b, r - l + 1, t - b + 1);

    // Clears must stay inside a partial viewport.
    if(!isFullWindow())
    {
        glScissor(l, b, r - l + 1, t - b + 1);
        glEnable(GL_SCISSOR_TEST);
    }
    else
    {
        glDisable(GL_SCISSOR_TEST);
    }
}

void Viewport::activate(void)
{
    activateSize();
}

void Viewport::deactivate(void)
{
}

// --- rendering -------------------------------------------------------------------

void Viewport::render(RenderActionBase *action)
{
    if(getCamera() == NullFC)
    {
        SWARNING << "Viewport::render: no camera!" << std::endl;
        return;
    }
    if(getBackground() == NullFC)
    {
        SWARNING << "Viewport::render: no Background!" << std::endl;
        return;
    }
    if(getRoot() == NullFC)
    {
        SWARNING << "Viewport::render: no root!" << std::endl;
        return;
    }

    activate();

    // The render action's start loads the projection and clears; this
    // viewport only says with what.
    action->setCamera(getCamera().getCPtr());
    action->setBackground(getBackground().getCPtr());
    action->setViewport(this);
    action->setTravMask(getTravMask());

    action->apply(getRoot());

    for(UInt32 i = 0; i < getForegrounds().size(); ++i)
    {
        if(getForegrounds(i) != NullFC)
            getForegrounds(i)->draw(action, this);
    }

    deactivate();
}

void Viewport::draw(DrawAction *action)
{
    if(getCamera() == NullFC)
    {
        SWARNING << "Viewport::draw: no camera!" << std::endl;
        return;
    }
    if(getBackground() == NullFC)
    {
        SWARNING << "Viewport::draw: no Background!" << std::endl;
        return;
    }
    if(getRoot() == NullFC)
    {
        SWARNING << "Viewport::draw: no root!" << std::endl;
        return;
    }

    activate();

    action->setViewport(this);
    action->setCamera(getCamera().getCPtr());
    action->setBackground(getBackground().getCPtr());
    action->setTravMask(getTravMask());

    // The immediate-mode action leaves camera and background to us.
    getCamera()->setup(action, *this);
    getBackground()->clear(action, this);

    action->apply(getRoot());

    for(UInt32 i = 0; i < getForegrounds().size(); ++i)
    {
        if(getForegrounds(i) != NullFC)
            getForegrounds(i)->draw(action, this);
    }

    deactivate();
}

OSG_END_NAMESPACE
