#include "OSGCoreProbe.h"

#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGRenderAction.h>

OSG_BEGIN_NAMESPACE

namespace
{

template <class ActionT>
void registerProbe(const FieldContainerType &type)
{
    typedef Action::ResultE R;
    ActionT::registerEnterDefault(
        type, osgTypedFunctionFunctor2CPtrRef<R, CNodePtr, Action *>(&CoreProbe::enter));
    ActionT::registerLeaveDefault(
        type, osgTypedFunctionFunctor2CPtrRef<R, CNodePtr, Action *>(&CoreProbe::leave));
}

} // namespace

std::vector<CoreProbeCall> &coreProbeCalls(void)
{
    static std::vector<CoreProbeCall> calls;
    return calls;
}

std::string coreProbeLog(void)
{
    std::string s;
    for(const CoreProbeCall &c : coreProbeCalls())
        s += (s.empty() ? "" : " ") + c.what;
    return s;
}

void CoreProbe::initMethod(void)
{
    registerProbe<Action>(getClassType());
    registerProbe<DrawAction>(getClassType());
    registerProbe<RenderAction>(getClassType());
    registerProbe<IntersectAction>(getClassType());
}

void CoreProbe::record(const char *kind, Node *node, Action *action)
{
    DrawActionBase *da = dynamic_cast<DrawActionBase *>(action);

    CoreProbeCall c;
    c.what    = std::string(kind) + ":" + getLabel();
    c.actNode = action->getActNode();
    c.node    = node;
    c.culling = da != NULL && da->getFrustumCulling();
    coreProbeCalls().push_back(c);
}

Action::ResultE CoreProbe::enter(CNodePtr &node, Action *action)
{
    CoreProbe *probe = dynamic_cast<CoreProbe *>(node.getCPtr());
    probe->record("E", node.getNode(), action);
    return Action::ResultE(probe->getEnterResult());
}

Action::ResultE CoreProbe::leave(CNodePtr &node, Action *action)
{
    dynamic_cast<CoreProbe *>(node.getCPtr())->record("L", node.getNode(), action);
    return Action::Continue;
}

OSG_END_NAMESPACE
