#include <OpenSG/OSGComponentTransform.h>
#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGIntersectActor.h>
#include <OpenSG/OSGRenderAction.h>

OSG_BEGIN_NAMESPACE

ComponentTransform::ComponentTransform(void) : Inherited()
{
}

ComponentTransform::ComponentTransform(const ComponentTransform &source) : Inherited(source)
{
}

ComponentTransform::~ComponentTransform(void)
{
}

void ComponentTransform::initMethod(void)
{
    typedef Action::ResultE R;

    // the actions find functors by exact type: give this type the
    // Transform's own
    DrawAction::registerEnterDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, TransformPtr, CNodePtr, Action *>(&Transform::drawEnter));
    DrawAction::registerLeaveDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, TransformPtr, CNodePtr, Action *>(&Transform::drawLeave));

    RenderAction::registerEnterDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, TransformPtr, CNodePtr, Action *>(&Transform::renderEnter));
    RenderAction::registerLeaveDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, TransformPtr, CNodePtr, Action *>(&Transform::renderLeave));

    IntersectAction::registerEnterDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, TransformPtr, CNodePtr, Action *>(&Transform::intersectEnter));
    IntersectAction::registerLeaveDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, TransformPtr, CNodePtr, Action *>(&Transform::intersectLeave));

    IntersectActor::regClassEnter(
        osgTypedMethodFunctor2BaseCPtr<NewActionTypes::ResultE, TransformPtr, NodeCorePtr,
                                       ActorBase::FunctorArgumentType &>(&Transform::intersectActorEnter),
        getClassType());
    IntersectActor::regClassLeave(
        osgTypedMethodFunctor2BaseCPtr<NewActionTypes::ResultE, TransformPtr, NodeCorePtr,
                                       ActorBase::FunctorArgumentType &>(&Transform::intersectActorLeave),
        getClassType());
}

void ComponentTransform::changed(BitVector whichField, UInt32 origin)
{
    const BitVector components = CenterFieldMask | RotationFieldMask | ScaleFieldMask |
                                 ScaleOrientationFieldMask | TranslationFieldMask;

    if(whichField & components)
    {
        getMatrix().setTransform(getTranslation(), getRotation(), getScale(),
                                 getScaleOrientation(), getCenter());
        invalidateVolume();
    }
    else if(whichField & MatrixFieldMask)
    {
        getMatrix().getTransform(getTranslation(), getRotation(), getScale(),
                                 getScaleOrientation(), getCenter());
    }

    Inherited::changed(whichField, origin);
}

void ComponentTransform::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ComponentTransform NI" << std::endl;
}

OSG_END_NAMESPACE
