#include <OpenSG/OSGMultiCore.h>
#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGIntersectActorBase.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGRenderAction.h>

OSG_BEGIN_NAMESPACE

namespace
{

// kinds of trouble warned about once per instance
const UInt8 WarnedNullCore = 1;
const UInt8 WarnedCycle    = 2;

} // namespace

MultiCore::MultiCore(void) : Inherited(), _coreNode(NullFC), _playing(false), _warned(0)
{
}

MultiCore::MultiCore(const MultiCore &source)
    : Inherited(source), _coreNode(NullFC), _playing(false), _warned(0)
{
}

// Each aspect copy has a node of its own.
MultiCore::~MultiCore(void)
{
    subRefCP(_coreNode);
}

void MultiCore::onCreate(const MultiCore *source)
{
    if(source == NULL)
        return;

    for(UInt32 i = 0; i < _mfCores.size(); ++i)
        addRefCP(_mfCores[i]);
}

void MultiCore::onDestroy(void)
{
    MFNodeCorePtr cores;
    cores.swap(_mfCores);
    for(UInt32 i = 0; i < cores.size(); ++i)
        subRefCP(cores[i]);

    Inherited::onDestroy();
}

void MultiCore::initMethod(void)
{
    typedef Action::ResultE R;
    typedef MultiCorePtr    P;

    DrawAction::registerEnterDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, P, CNodePtr, Action *>(&MultiCore::drawEnter));
    DrawAction::registerLeaveDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, P, CNodePtr, Action *>(&MultiCore::drawLeave));

    RenderAction::registerEnterDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, P, CNodePtr, Action *>(&MultiCore::renderEnter));
    RenderAction::registerLeaveDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, P, CNodePtr, Action *>(&MultiCore::renderLeave));

    IntersectAction::registerEnterDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, P, CNodePtr, Action *>(&MultiCore::intersectEnter));
    IntersectAction::registerLeaveDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, P, CNodePtr, Action *>(&MultiCore::intersectLeave));

    typedef NewActionTypes::ResultE         AR;
    typedef ActorBase::FunctorArgumentType &A;

    IntersectActorBase::regClassEnter(
        osgTypedMethodFunctor2BaseCPtr<AR, P, NodeCorePtr, A>(&MultiCore::intersectActorEnter),
        getClassType());
    IntersectActorBase::regClassLeave(
        osgTypedMethodFunctor2BaseCPtr<AR, P, NodeCorePtr, A>(&MultiCore::intersectActorLeave),
        getClassType());
}

// --- the core list -----------------------------------------------------------------

void MultiCore::addCore(const NodeCorePtr &core)
{
    if(core == NullFC)
        return;

    addRefCP(core);
    _mfCores.push_back(core);
}

void MultiCore::insertCore(UInt32 index, const NodeCorePtr &core)
{
    if(core == NullFC)
        return;

    addRefCP(core);
    if(index >= _mfCores.size())
        _mfCores.push_back(core);
    else
        _mfCores.insert(_mfCores.begin() + index, core);
}

void MultiCore::subCore(UInt32 index)
{
    if(index >= _mfCores.size())
        return;

    NodeCorePtr core = _mfCores[index];
    _mfCores.erase(_mfCores.begin() + index);
    subRefCP(core);
}

void MultiCore::subCore(const NodeCorePtr &core)
{
    Int32 index = findCore(core);
    if(index < 0)
    {
        SWARNING << "MultiCore(" << this << ")::subCcore: " << core << " is not one of my cores!"
                 << std::endl;
        return;
    }

    subCore(UInt32(index));
}

void MultiCore::replaceCore(UInt32 index, const NodeCorePtr &core)
{
    if(core == NullFC || index >= _mfCores.size())
        return;

    // the new reference first: the core may replace itself
    addRefCP(core);
    subRefCP(_mfCores[index]);
    _mfCores[index] = core;
}

bool MultiCore::replaceCoreBy(const NodeCorePtr &oldCore, const NodeCorePtr &newCore)
{
    Int32 index = findCore(oldCore);
    if(newCore == NullFC || index < 0)
        return false;

    replaceCore(UInt32(index), newCore);
    return true;
}

Int32 MultiCore::findCore(const NodeCorePtr &core) const
{
    for(UInt32 i = 0; i < _mfCores.size(); ++i)
    {
        if(_mfCores[i] == core)
            return Int32(i);
    }
    return -1;
}

NodeCorePtr MultiCore::getCore(UInt32 index)
{
    return index < _mfCores.size() ? _mfCores[index] : NodeCorePtr(NullFC);
}

// --- actions -------------------------------------------------------------------------

Action::ResultE MultiCore::drawEnter(Action *action)
{
    return renderEnter(action);
}

Action::ResultE MultiCore::drawLeave(Action *action)
{
    return renderLeave(action);
}

Action::ResultE MultiCore::renderEnter(Action *action)
{
    return play(action, true);
}

Action::ResultE MultiCore::renderLeave(Action *action)
{
    return play(action, false);
}

Action::ResultE MultiCore::play(Action *action, bool enter)
{
    if(_coreNode == NullFC)
    {
        _coreNode = Node::create();
        addRefCP(_coreNode);
    }

    if(_playing)
    {
        warnOnce(WarnedCycle, "its core list leads back to itself; the repeat is not played");
        return Action::Continue;
    }

    // The cores' node has no volume of its own to cull by.
    DrawActionBase *da      = dynamic_cast<DrawActionBase *>(action);
    bool            culling = da != NULL && da->getFrustumCulling();
    if(culling)
        da->setFrustumCulling(false);

    _playing = true;

    Action::ResultE result = Action::Continue;
    UInt32          n      = _mfCores.size();
    for(UInt32 k = 0; k < n && result == Action::Continue; ++k)
    {
        UInt32 i = enter ? k : n - 1 - k;
        // a functor may have shortened the list
        if(i >= _mfCores.size())
            continue;

        NodeCorePtr core = _mfCores[i];
        if(core == NullFC)
        {
            warnOnce(WarnedNullCore, "a NullFC entry in its cores is left out");
            continue;
        }

        _coreNode->setCore(core);
        result = enter ? action->callEnter(_coreNode) : action->callLeave(_coreNode);
    }

    // The node lends its core slot only while the cores play, so that it
    // keeps no core alive and shows up in no core's parents.
    _coreNode->setCore(NullFC);
    _playing = false;

    if(culling)
        da->setFrustumCulling(true);

    // A core that skips ends the playing, not the traversal of the children.
    return result == Action::Skip ? Action::Continue : result;
}

void MultiCore::warnOnce(UInt8 kind, const char *what)
{
    if(_warned & kind)
        return;
    _warned |= kind;
    SWARNING << "MultiCore(" << this << "): " << what << std::endl;
}

Action::ResultE MultiCore::intersectEnter(Action *)
{
    return Action::Continue;
}

Action::ResultE MultiCore::intersectLeave(Action *)
{
    return Action::Continue;
}

NewActionTypes::ResultE MultiCore::intersectActorEnter(ActorBase::FunctorArgumentType &)
{
    return NewActionTypes::Continue;
}

NewActionTypes::ResultE MultiCore::intersectActorLeave(ActorBase::FunctorArgumentType &)
{
    return NewActionTypes::Continue;
}

void MultiCore::changed(BitVector whichField, UInt32 origin)
{
    if(whichField & CoresFieldMask)
        invalidateVolume();

    Inherited::changed(whichField, origin);
}

// The one type without a line of its own: it dumps as the group it is.
void MultiCore::dump(UInt32 uiIndent, const BitVector bvFlags) const
{
    Group::dump(uiIndent, bvFlags);
}

OSG_END_NAMESPACE
