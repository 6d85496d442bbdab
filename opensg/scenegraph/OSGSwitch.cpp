#include <OpenSG/OSGSwitch.h>
#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGRenderAction.h>

OSG_BEGIN_NAMESPACE

Switch::Switch(void) : Inherited()
{
}

Switch::Switch(const Switch &source) : Inherited(source)
{
}

Switch::~Switch(void)
{
}

void Switch::initMethod(void)
{
    typedef Action::ResultE R;

    // enter functors only: the chosen children are the whole traversal
    DrawAction::registerEnterDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, SwitchPtr, CNodePtr, Action *>(&Switch::draw));
    RenderAction::registerEnterDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, SwitchPtr, CNodePtr, Action *>(&Switch::draw));
    IntersectAction::registerEnterDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, SwitchPtr, CNodePtr, Action *>(&Switch::intersect));
}

Action::ResultE Switch::draw(Action *action)
{
    DrawActionBase *da     = dynamic_cast<DrawActionBase *>(action);
    NodePtr         node   = action->getActNode();
    const Int32     choice = getChoice();

    if(choice >= 0 && UInt32(choice) < node->getNChildren())
    {
        action->useNodeList();
        NodePtr child = node->getChild(choice);
        if(da == NULL || da->isVisible(child.getCPtr()))
            action->addNode(child);
        return Action::Continue;
    }
    if(choice == ALL)
    {
        if(da != NULL && da->selectVisibles() == 0)
            return Action::Skip;
        return Action::Continue;
    }
    return Action::Skip;
}

Action::ResultE Switch::intersect(Action *action)
{
    NodePtr     node   = action->getActNode();
    const Int32 choice = getChoice();

    if(choice >= 0 && UInt32(choice) < node->getNChildren())
    {
        action->useNodeList();
        action->addNode(node->getChild(choice));
        return Action::Continue;
    }
    return choice == ALL ? Action::Continue : Action::Skip;
}

void Switch::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void Switch::dump(UInt32 uiIndent, const BitVector bvFlags) const
{
    Inherited::dump(uiIndent, bvFlags);
}

OSG_END_NAMESPACE
