/// CoredNodePtr<Core>: a node and its core of type Core, handled as one;
/// both are counted references. <Class>NodePtr names it for every core type.
#ifndef _OSGCOREDNODEPTR_H_
#define _OSGCOREDNODEPTR_H_

#include <OpenSG/OSGNodePtr.h>

OSG_BEGIN_NAMESPACE

class CoredNodePtrBase
{
  public:
    CoredNodePtrBase(void) : _node() {}
    CoredNodePtrBase(const CoredNodePtrBase &other) : _node(other._node) { addRefCP(_node); }
    virtual ~CoredNodePtrBase(void) { subRefCP(_node); }

    NodePtr node(void) const { return _node; }
    operator NodePtr(void) const { return _node; }

  protected:
    void setNodeRef(const NodePtr &node) { setRefdCP(_node, node); }

    NodePtr _node;

  private:
    CoredNodePtrBase &operator=(const CoredNodePtrBase &);
};

template <class Core>
class CoredNodePtr : public CoredNodePtrBase
{
    // Node is complete only where it is used; naming it through the
    // template parameter defers the lookup to that point.
    typedef typename osgIF<true, Node, Core>::_IRet NodeT;

  public:
    typedef Core                 CoreType;
    typedef typename Core::Ptr   CorePtr;
    typedef CoredNodePtr<Core>   Self;

    /// Neither node nor core.
    CoredNodePtr(void) : CoredNodePtrBase(), _core() {}
    /// The node and its core (NullFC when the core is not a Core).
    CoredNodePtr(const NodePtr &node) : CoredNodePtrBase(), _core() { setNode(node); }
    /// A new node for the core.
    CoredNodePtr(const CorePtr &core) : CoredNodePtrBase(), _core() { setCore(core); }
    CoredNodePtr(const CoredNodePtr &other) : CoredNodePtrBase(other), _core(other._core)
    {
        addRefCP(_core);
    }
    virtual ~CoredNodePtr(void) { subRefCP(_core); }

    /// A new node with a new core.
    static CoredNodePtr create(void) { return CoredNodePtr(Core::create()); }

    CorePtr core(void) const { return _core; }
    Core   *operator->(void) const { return _core.operator->(); }
    operator CorePtr(void) const { return _core; }

    /// Takes the node's core again after someone changed it.
    void coreChanged(void) { setNode(NodePtr(_node)); }

    CoredNodePtr &operator=(const NodePtr &node)
    {
        setNode(node);
        return *this;
    }
    CoredNodePtr &operator=(const CorePtr &core)
    {
        setCore(core);
        return *this;
    }
    CoredNodePtr &operator=(const CoredNodePtr &other)
    {
        setNodeRef(other._node);
        setRefdCP(_core, other._core);
        return *this;
    }

  private:
    void setNode(const NodePtr &node)
    {
        setNodeRef(node);
        NodeT *n = static_cast<NodeT *>(_node.getCPtr());
        setRefdCP(_core, n != NULL ? CorePtr::dcast(n->getCore()) : CorePtr());
    }

    /// Puts the core into the node, making the node when there is none.
    void setCore(const CorePtr &core)
    {
        if(_node == NullFC)
            setNodeRef(NodeT::create());
        NodeT *n = static_cast<NodeT *>(_node.getCPtr());
        beginEditCP(_node, NodeT::CoreFieldMask);
        n->setCore(core);
        endEditCP(_node, NodeT::CoreFieldMask);
        setRefdCP(_core, core);
    }

    CorePtr _core;
};

OSG_END_NAMESPACE

#endif
