#include <OpenSG/OSGGeometryTestDrawable.h>
#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGGL.h>

OSG_BEGIN_NAMESPACE

GeometryTestDrawable::GeometryTestDrawable(void) : Inherited(), drawCalls(0), lastNode()
{
}

GeometryTestDrawable::GeometryTestDrawable(const GeometryTestDrawable &source)
    : Inherited(source), drawCalls(0), lastNode()
{
}

GeometryTestDrawable::~GeometryTestDrawable(void)
{
}

void GeometryTestDrawable::initMethod(void)
{
    typedef Action::ResultE R;
    DrawAction::registerEnterDefault(
        getClassType(), osgTypedMethodFunctor2BaseCPtrRef<R, MaterialDrawablePtr, CNodePtr, Action *>(
                            &MaterialDrawable::drawActionEnterHandler));
    DrawAction::registerLeaveDefault(
        getClassType(), osgTypedMethodFunctor2BaseCPtrRef<R, MaterialDrawablePtr, CNodePtr, Action *>(
                            &MaterialDrawable::drawActionLeaveHandler));
    RenderAction::registerEnterDefault(
        getClassType(), osgTypedMethodFunctor2BaseCPtrRef<R, MaterialDrawablePtr, CNodePtr, Action *>(
                            &MaterialDrawable::renderActionEnterHandler));
    RenderAction::registerLeaveDefault(
        getClassType(), osgTypedMethodFunctor2BaseCPtrRef<R, MaterialDrawablePtr, CNodePtr, Action *>(
                            &MaterialDrawable::renderActionLeaveHandler));
}

Action::ResultE GeometryTestDrawable::drawPrimitives(DrawActionBase *action)
{
    ++drawCalls;
    lastNode = action->getActNode();

    const Vec4f &r = getRect();
    glBegin(GL_QUADS);
    glVertex2f(r[0], r[1]);
    glVertex2f(r[2], r[1]);
    glVertex2f(r[2], r[3]);
    glVertex2f(r[0], r[3]);
    glEnd();
    return Action::Continue;
}

void GeometryTestDrawable::adjustVolume(Volume &volume)
{
    const Vec4f &r = getRect();
    volume.setValid();
    volume.extendBy(Pnt3f(r[0], r[1], 0));
    volume.extendBy(Pnt3f(r[2], r[3], 0));
}

void GeometryTestDrawable::changed(BitVector whichField, UInt32 origin)
{
    if(whichField & RectFieldMask)
        invalidateVolume();
    Inherited::changed(whichField, origin);
}

void GeometryTestDrawable::dump(UInt32, const BitVector) const
{
}

OSG_END_NAMESPACE
