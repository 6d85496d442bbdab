/// Action: a traversal of the scene graph that calls, per node, the enter
/// and leave functors registered for the type of the node's core.
#ifndef _OSGACTION_H_
#define _OSGACTION_H_

#include <OpenSG/OSGBaseTypes.h>
#include <OpenSG/OSGFieldContainerType.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGTypedFunctors.h>

#include <deque>
#include <vector>

OSG_BEGIN_NAMESPACE

class Node;
class NodeCore;

class Action
{
  public:
    enum ResultE
    {
        Continue = 0, ///< go on: traverse the children
        Skip     = 1, ///< leave out the children (and this node's leave functor)
        Quit     = 2  ///< enter no further node
    };

    /// ResultE call(CNodePtr &node, Action *action): node's core is the
    /// object the functor works on.
    typedef TypedFunctor2Base<ResultE, CPtrRefCallArg<CNodePtr>, ArgsCollector<Action *> >
        Functor;

    static Action *create(void);
    static void    setPrototype(Action *proto);
    static Action *getPrototype(void);

    /// Functors registered here are copied into every Action made later.
    static void registerEnterDefault(const FieldContainerType &type, const Functor &func);
    static void registerLeaveDefault(const FieldContainerType &type, const Functor &func);

    virtual ~Action(void);

    /// Registers a functor for this instance only.
    void registerEnterFunction(const FieldContainerType &type, const Functor &func);
    void registerLeaveFunction(const FieldContainerType &type, const Functor &func);

    virtual ResultE apply(std::vector<NodePtr>::iterator begin,
                          std::vector<NodePtr>::iterator end);
    virtual ResultE apply(NodePtr node);

    /// The node whose functor is running (during enter and leave).
    NodePtr getActNode(void) { return _actNode; }

    /// In an enter functor: the children of the current node (or the list
    /// being traversed in its place).
    UInt32        getNNodes(void) const;
    const NodePtr getNode(int index);

    /// Adds a node to traverse below the current node instead of its
    /// children.
    void addNode(NodePtr node) { _newList.push_back(node); }
    /// Traverse only what addNode() adds below the current node (nothing if
    /// nothing is added).
    void useNodeList(void) { _useNewList = true; }

    UInt32 getTravMask(void) const { return _travMask; }
    void   setTravMask(UInt32 val) { _travMask = val; }

    bool operator<(const Action &other) const { return this < &other; }
    bool operator==(const Action &other) const { return false; }
    bool operator!=(const Action &other) const { return !(*this == other); }

    /// Calls the functor registered for the type of the node's core (the
    /// core must not be null); getActNode() is not changed.
    ResultE callEnter(NodePtr node);
    ResultE callLeave(NodePtr node);

    static ResultE _defaultEnterFunction(CNodePtr &node, Action *action);
    static ResultE _defaultLeaveFunction(CNodePtr &node, Action *action);

  protected:
    Action(void);
    Action(const Action &source);

    virtual ResultE start(void);
    virtual ResultE stop(ResultE res);

    virtual std::vector<Functor> *getDefaultEnterFunctors(void);
    virtual std::vector<Functor> *getDefaultLeaveFunctors(void);

    ResultE recurse(NodePtr node);
    ResultE callNewList(void);

    void setActNode(NodePtr node) { _actNode = node; }

    /// Lets subclasses fill their class tables the same way.
    static void registerDefault(std::vector<Functor> *&table,
                                const FieldContainerType &type,
                                const Functor &func,
                                const Functor &pad);

    std::vector<Functor> _enterFunctors;
    std::vector<Functor> _leaveFunctors;

  private:
    ResultE callStart(void);
    ResultE callStop(ResultE res);

    static ResultE callFunctor(std::vector<Functor> &table,
                               std::vector<Functor> *defaults,
                               const Functor &fallback,
                               NodePtr node,
                               Action *action);

    static std::vector<Functor> *_defaultEnterFunctors;
    static std::vector<Functor> *_defaultLeaveFunctors;
    static Action *_prototype;

    NodePtr _actNode;
    UInt32  _travMask;

    /// The explicit list being traversed, NULL while the children are.
    std::vector<NodePtr> *_actList;
    bool                  _useNewList;
    std::vector<NodePtr>  _newList;

    /// Lists of the nested callNewList levels, kept with their capacity so
    /// that steady-state traversals don't allocate (a deque: growing it
    /// leaves the outer levels' lists where they are).
    std::deque<std::vector<NodePtr> > _listPool;
    UInt32                             _listDepth;

    void operator=(const Action &source);
};

typedef Action *ActionP;

// --- simple traversal without an action ---------------------------------------------

typedef TypedFunctor1Base<Action::ResultE, CPtrRefCallArg<NodePtr> > TraverseEnterFunctor;
typedef TypedFunctor2Base<Action::ResultE, CPtrRefCallArg<NodePtr>, ArgsCollector<Action::ResultE> >
    TraverseLeaveFunctor;

/// Walks the subtree depth first, calling func on each node; Skip leaves out
/// the children, Quit ends the walk.
Action::ResultE traverse(NodePtr root, TraverseEnterFunctor func);
Action::ResultE traverse(const std::vector<NodePtr> &list, TraverseEnterFunctor func);
/// The same with a leave functor that gets the result of the children.
Action::ResultE traverse(NodePtr root, TraverseEnterFunctor enter, TraverseLeaveFunctor leave);
Action::ResultE traverse(const std::vector<NodePtr> &list, TraverseEnterFunctor enter,
                         TraverseLeaveFunctor leave);

OSG_END_NAMESPACE

#endif
