#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGRenderAction.h>

OSG_BEGIN_NAMESPACE

Group::Group(void) : Inherited()
{
}

Group::Group(const Group &source) : Inherited(source)
{
}

Group::~Group(void)
{
}

void Group::initMethod(void)
{
    typedef Action::ResultE R;

    DrawAction::registerEnterDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, GroupPtr, CNodePtr, Action *>(&Group::drawEnter));
    DrawAction::registerLeaveDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, GroupPtr, CNodePtr, Action *>(&Group::drawLeave));

    RenderAction::registerEnterDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, GroupPtr, CNodePtr, Action *>(&Group::renderEnter));
    RenderAction::registerLeaveDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, GroupPtr, CNodePtr, Action *>(&Group::renderLeave));

    IntersectAction::registerEnterDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, GroupPtr, CNodePtr, Action *>(&Group::intersect));
}

Action::ResultE Group::drawEnter(Action *action)
{
    DrawActionBase *da = dynamic_cast<DrawActionBase *>(action);
    if(da != NULL && da->selectVisibles() == 0)
        return Action::Skip;
    return Action::Continue;
}

Action::ResultE Group::drawLeave(Action *)
{
    return Action::Continue;
}

Action::ResultE Group::renderEnter(Action *action)
{
    RenderAction *ra = dynamic_cast<RenderAction *>(action);
    if(ra == NULL)
        return Action::Continue;

    if(ra->pushVisibility() && ra->selectVisibles() == 0)
    {
        ra->popVisibility();
        return Action::Skip;
    }
    return Action::Continue;
}

Action::ResultE Group::renderLeave(Action *action)
{
    RenderAction *ra = dynamic_cast<RenderAction *>(action);
    if(ra != NULL)
        ra->popVisibility();
    return Action::Continue;
}

Action::ResultE Group::intersect(Action *action)
{
    IntersectAction *ia = dynamic_cast<IntersectAction *>(action);
    if(ia == NULL)
        return Action::Continue;

    const DynamicVolume &vol = ia->getActNode()->getVolume();
    if(vol.isValid() && !vol.intersect(ia->getLine()))
        return Action::Skip;

    return Action::Continue;
}

void Group::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void Group::dump(UInt32 uiIndent, const BitVector bvFlags) const
{
    Inherited::dump(uiIndent, bvFlags);
}

OSG_END_NAMESPACE
