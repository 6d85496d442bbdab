/// What the two primitive cores register with the actions: MaterialDrawable's
/// enter and leave handlers with the draw and the render action (drawing goes
/// through the material and the virtual drawPrimitives), and the core's own
/// intersect as the intersect action's enter handler.
#ifndef _PRIMITIVESREGISTRATION_H_
#define _PRIMITIVESREGISTRATION_H_

#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGMaterialDrawable.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGTypedFunctors.h>

OSG_BEGIN_NAMESPACE

/// Registers MaterialDrawable's draw and render handlers for the type, and
/// `intersect` as its intersect handler.
template <class CorePtrT, class CoreT>
void registerPrimitivesHandlers(const FieldContainerType &type,
                                Action::ResultE (CoreT::*intersect)(Action *))
{
    DrawAction::registerEnterDefault(
        type, osgTypedMethodFunctor2BaseCPtrRef<Action::ResultE, MaterialDrawablePtr, CNodePtr,
                                                Action *>(&MaterialDrawable::drawActionEnterHandler));
    DrawAction::registerLeaveDefault(
        type, osgTypedMethodFunctor2BaseCPtrRef<Action::ResultE, MaterialDrawablePtr, CNodePtr,
                                                Action *>(&MaterialDrawable::drawActionLeaveHandler));
    RenderAction::registerEnterDefault(
        type,
        osgTypedMethodFunctor2BaseCPtrRef<Action::ResultE, MaterialDrawablePtr, CNodePtr, Action *>(
            &MaterialDrawable::renderActionEnterHandler));
    RenderAction::registerLeaveDefault(
        type,
        osgTypedMethodFunctor2BaseCPtrRef<Action::ResultE, MaterialDrawablePtr, CNodePtr, Action *>(
            &MaterialDrawable::renderActionLeaveHandler));
    IntersectAction::registerEnterDefault(
        type, osgTypedMethodFunctor2BaseCPtrRef<Action::ResultE, CorePtrT, CNodePtr, Action *>(
                  intersect));
}

OSG_END_NAMESPACE

#endif
