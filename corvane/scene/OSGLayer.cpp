#include <OpenSG/OSGLayer.h>
#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGRenderAction.h>

OSG_BEGIN_NAMESPACE

namespace
{

/// Switches the action to the children that mask lets through, in their
/// order, and with a draw action only those that pass its frustum test.
/// Children beyond the end of the mask aren't filtered by it.
void selectMasked(Action *action, const MFBool &mask, DrawActionBase *da)
{
    UInt32 n = action->getNNodes();

    // from here on only the children added below are traversed
    action->useNodeList();
    for(UInt32 i = 0; i < n; ++i)
    {
        if(i < mask.size() && !mask.getValue(i))
            continue;

        NodePtr child = action->getNode(i);
        if(da == NULL || da->isVisible(child.getCPtr()))
            action->addNode(child);
    }
}

} // namespace

Layer::Layer(void) : Inherited()
{
}

Layer::Layer(const Layer &source) : Inherited(source)
{
}

Layer::~Layer(void)
{
}

void Layer::initMethod(void)
{
    typedef Action::ResultE R;
    typedef LayerPtr        P;

    DrawAction::registerEnterDefault(
        getClassType(), osgTypedMethodFunctor2BaseCPtrRef<R, P, CNodePtr, Action *>(&Layer::draw));
    RenderAction::registerEnterDefault(
        getClassType(), osgTypedMethodFunctor2BaseCPtrRef<R, P, CNodePtr, Action *>(&Layer::draw));

    IntersectAction::registerEnterDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, P, CNodePtr, Action *>(&Layer::intersectEnter));
    IntersectAction::registerLeaveDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, P, CNodePtr, Action *>(&Layer::intersectLeave));
}

void Layer::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void Layer::dump(UInt32, const BitVector) const
{
    SLOG << "Dump Layer NI" << std::endl;
}

// --- actions -------------------------------------------------------------------------

Action::ResultE Layer::draw(Action *action)
{
    DrawActionBase *da = dynamic_cast<DrawActionBase *>(action);
    if(da == NULL)
        return Action::Continue;

    // without a mask: as a group
    if(_mfVisible.size() == 0 && da->getNNodes() > 0)
        return da->selectVisibles() == 0 ? Action::Skip : Action::Continue;

    selectMasked(da, _mfVisible, da);
    return Action::Continue;
}

Action::ResultE Layer::intersectEnter(Action *action)
{
    IntersectAction *ia = dynamic_cast<IntersectAction *>(action);
    if(ia == NULL)
        return Action::Continue;

    // without a mask every child takes part
    if(_mfPickable.size() == 0 && ia->getNNodes() > 0)
        return Action::Continue;

    selectMasked(ia, _mfPickable, NULL);
    return Action::Continue;
}

Action::ResultE Layer::intersectLeave(Action *action)
{
    IntersectAction *ia = dynamic_cast<IntersectAction *>(action);
    if(ia == NULL)
        return Action::Continue;

    LayerPtr thisP(this);
    beginEditCP(thisP, HitFieldMask);
    _sfHit.setValue(ia->didHit() ? ia->getHitT() : -1.f);
    endEditCP(thisP, HitFieldMask);

    return Action::Continue;
}

OSG_END_NAMESPACE
