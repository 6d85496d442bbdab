#include <OpenSG/OSGAction.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGNodeCore.h>

OSG_BEGIN_NAMESPACE

std::vector<Action::Functor> *Action::_defaultEnterFunctors = NULL;
std::vector<Action::Functor> *Action::_defaultLeaveFunctors = NULL;
Action                       *Action::_prototype            = NULL;

namespace
{

const Action::Functor &defaultEnter(void)
{
    static const Action::Functor f =
        osgTypedFunctionFunctor2CPtrRef<Action::ResultE, CNodePtr, Action *>(
            &Action::_defaultEnterFunction);
    return f;
}

const Action::Functor &defaultLeave(void)
{
    static const Action::Functor f =
        osgTypedFunctionFunctor2CPtrRef<Action::ResultE, CNodePtr, Action *>(
            &Action::_defaultLeaveFunction);
    return f;
}

} // namespace

// --- class tables -----------------------------------------------------------------

void Action::registerDefault(std::vector<Functor> *&table,
                             const FieldContainerType &type,
                             const Functor &func,
                             const Functor &pad)
{
    if(table == NULL)
        table = new std::vector<Functor>;

    UInt32 id = type.getId();
    while(table->size() <= id)
        table->push_back(pad);
    (*table)[id] = func;
}

void Action::registerEnterDefault(const FieldContainerType &type, const Functor &func)
{
    registerDefault(_defaultEnterFunctors, type, func, defaultEnter());
}

void Action::registerLeaveDefault(const FieldContainerType &type, const Functor &func)
{
    registerDefault(_defaultLeaveFunctors, type, func, defaultLeave());
}

void Action::registerEnterFunction(const FieldContainerType &type, const Functor &func)
{
    UInt32 id = type.getId();
    while(_enterFunctors.size() <= id)
        _enterFunctors.push_back(defaultEnter());
    _enterFunctors[id] = func;
}

void Action::registerLeaveFunction(const FieldContainerType &type, const Functor &func)
{
    UInt32 id = type.getId();
    while(_leaveFunctors.size() <= id)
        _leaveFunctors.push_back(defaultLeave());
    _leaveFunctors[id] = func;
}

std::vector<Action::Functor> *Action::getDefaultEnterFunctors(void)
{
    return _defaultEnterFunctors;
}

std::vector<Action::Functor> *Action::getDefaultLeaveFunctors(void)
{
    return _defaultLeaveFunctors;
}

Action::ResultE Action::_defaultEnterFunction(CNodePtr &, Action *)
{
    return Continue;
}

Action::ResultE Action::_defaultLeaveFunction(CNodePtr &, Action *)
{
    return Continue;
}

// --- creation ---------------------------------------------------------------------

Action::Action(void)
    : _enterFunctors(), _leaveFunctors(), _actNode(), _travMask(0xFFFFFFFF),
      _actList(NULL), _useNewList(false), _newList(), _listPool(), _listDepth(0)
{
    if(_defaultEnterFunctors != NULL)
        _enterFunctors = *_defaultEnterFunctors;
    if(_defaultLeaveFunctors != NULL)
        _leaveFunctors = *_defaultLeaveFunctors;
}

Action::Action(const Action &source)
    : _enterFunctors(source._enterFunctors), _leaveFunctors(source._leaveFunctors), _actNode(),
      _travMask(source._travMask), _actList(NULL), _useNewList(false), _newList(), _listPool(),
      _listDepth(0)
{
}

Action::~Action(void)
{
}

Action *Action::create(void)
{
    if(_prototype != NULL)
        return new Action(*_prototype);
    return new Action;
}

void Action::setPrototype(Action *proto)
{
    _prototype = proto;
}

Action *Action::getPrototype(void)
{
    return _prototype;
}

// --- dispatch -----------------------------------------------------------------------

Action::ResultE Action::callFunctor(std::vector<Functor> &table,
                                    std::vector<Functor> *defaults,
                                    const Functor &fallback,
                                    NodePtr node,
                                    Action *action)
{
    CNodePtr cnode(node);
    UInt32   id = node->getCore()->getType().getId();

    if(id < table.size())
        return table[id].call(cnode, action);

    // A type registered after this instance was made: catch up with the
    // class table.
    if(defaults != NULL && id < defaults->size())
    {
        table.insert(table.end(), defaults->begin() + table.size(), defaults->end());
        return table[id].call(cnode, action);
    }

    return fallback.call(cnode, action);
}

Action::ResultE Action::callEnter(NodePtr node)
{
    return callFunctor(_enterFunctors, getDefaultEnterFunctors(), defaultEnter(), node, this);
}

Action::ResultE Action::callLeave(NodePtr node)
{
    return callFunctor(_leaveFunctors, getDefaultLeaveFunctors(), defaultLeave(), node, this);
}

// --- traversal ----------------------------------------------------------------------

Action::ResultE Action::start(void)
{
    return Continue;
}

Action::ResultE Action::stop(ResultE res)
{
    return res;
}

Action::ResultE Action::callStart(void)
{
    _newList.clear();

    ResultE res = start();
    if(res != Continue)
        return res;

    if(!_newList.empty())
        res = callNewList();

    return res;
}

Action::ResultE Action::callStop(ResultE res)
{
    _newList.clear();

    res = stop(res);

    if(res == Continue && !_newList.empty())
        res = callNewList();

    return res;
}

Action::ResultE Action::apply(std::vector<NodePtr>::iterator begin,
                              std::vector<NodePtr>::iterator end)
{
    ResultE res = callStart();
    if(res != Continue)
        return res;

    for(; begin != end; ++begin)
    {
        if(*begin == NullFC)
        {
            SWARNING << "apply: encountered NullNode!" << std::endl;
            return Quit;
        }

        res = recurse(*begin);
        if(res != Continue)
            break;
    }

    return callStop(res);
}

Action::ResultE Action::apply(NodePtr node)
{
    if(node == NullFC)
    {
        SWARNING << "apply: node is Null!" << std::endl;
        return Quit;
    }

    std::vector<NodePtr> nodeList(1, node);
    return apply(nodeList.begin(), nodeList.end());
}

Action::ResultE Action::recurse(NodePtr node)
{
    if(node == NullFC)
        return Continue;

    if((node->getTravMask() & getTravMask()) == 0)
        return Continue;

    if(node->getOcclusionMask() & 1)
        return Continue;

    NodeCorePtr core = node->getCore();
    if(core == NullFC)
    {
        SWARNING << "recurse: core is Null,  don't know what to do!" << std::endl;
        return Quit;
    }

    _actNode    = node;
    _actList    = NULL;
    _useNewList = false;
    _newList.clear();

    ResultE result = callEnter(node);
    if(result != Continue)
        return result == Skip ? Continue : result;

    if(!_newList.empty())
    {
        result = callNewList();
    }
    else if(!_useNewList)
    {
        // re-read the count: a functor below may change the child list
        for(UInt32 i = 0; i < node->getNChildren(); ++i)
        {
            result = recurse(node->getChild(i));
            if(result != Continue)
                break;
        }
    }

    _actNode = node;

    ResultE leaveResult = callLeave(node);
    if(result == Continue)
        result = leaveResult;

    return result == Skip ? Continue : result;
}

Action::ResultE Action::callNewList(void)
{
    // Each nesting level has its own list; swapping keeps both capacities.
    if(_listPool.size() <= _listDepth)
        _listPool.resize(_listDepth + 1);

    std::vector<NodePtr> &list = _listPool[_listDepth++];
    list.clear();
    list.swap(_newList);

    _actList = &list;

    ResultE result = Continue;
    for(UInt32 i = 0; i < list.size(); ++i)
    {
        result = recurse(list[i]);
        if(result != Continue)
            break;
    }

    --_listDepth;
    _actList = NULL;

    return result;
}

UInt32 Action::getNNodes(void) const
{
    if(_actList != NULL)
        return UInt32(_actList->size());
    if(_actNode == NullFC)
        return 0;
    return _actNode->getNChildren();
}

const NodePtr Action::getNode(int index)
{
    if(_actList != NULL)
        return (*_actList)[index];
    return _actNode->getChild(index);
}

// --- traverse ---------------------------------------------------------------------------

// Enter runs for every node, a null one included; Skip leaves the children
// out, Quit ends the walk. The leave functor always runs, after Quit too, and
// what it returns is the result of its node.

Action::ResultE traverse(NodePtr root, TraverseEnterFunctor func)
{
    Action::ResultE res = func.call(root);
    if(root == NullFC || res == Action::Skip)
        return Action::Continue;
    if(res != Action::Continue)
        return res;

    for(UInt32 i = 0; i < root->getNChildren() && res == Action::Continue; ++i)
        res = traverse(root->getChild(i), func);
    return res;
}

Action::ResultE traverse(const std::vector<NodePtr> &list, TraverseEnterFunctor func)
{
    Action::ResultE res = Action::Continue;
    for(UInt32 i = 0; i < list.size() && res != Action::Quit; ++i)
        res = traverse(list[i], func);
    return res;
}

Action::ResultE traverse(NodePtr root, TraverseEnterFunctor enter, TraverseLeaveFunctor leave)
{
    Action::ResultE res = enter.call(root);
    if(res == Action::Skip)
        res = Action::Continue;
    else if(res == Action::Continue && root != NullFC)
    {
        for(UInt32 i = 0; i < root->getNChildren() && res != Action::Quit; ++i)
            res = traverse(root->getChild(i), enter, leave);
    }
    return leave.call(root, res);
}

Action::ResultE traverse(const std::vector<NodePtr> &list, TraverseEnterFunctor enter,
                         TraverseLeaveFunctor leave)
{
    Action::ResultE res = Action::Continue;
    for(UInt32 i = 0; i < list.size() && res != Action::Quit; ++i)
        res = traverse(list[i], enter, leave);
    return res;
}

OSG_END_NAMESPACE
