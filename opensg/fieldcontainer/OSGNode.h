/// A place in the scene graph: one core, at most one parent, any children.
#ifndef _OSGNODE_H_
#define _OSGNODE_H_

#include <OpenSG/OSGNodeCore.h>
#include <OpenSG/OSGNodeBase.h>

OSG_BEGIN_NAMESPACE

class Node : public NodeBase
{
  private:
    typedef NodeBase Inherited;

  public:
    typedef DynamicVolume VolumeType;

    NodeCorePtr getCore(void) const { return _sfCore.getValue(); }
    /// Sets the core, moving the counted reference and the core's parent
    /// entry; the caller brackets it with an edit of CoreFieldMask.
    void setCore(const NodeCorePtr &core);

    NodePtr getParent(void) const { return _sfParent.getValue(); }

    UInt32 getNChildren(void) const { return _mfChildren.size(); }
    NodePtr getChild(UInt32 childIndex) const { return _mfChildren[childIndex]; }
    void addChild(const NodePtr &childP);
    void insertChild(UInt32 childIndex, const NodePtr &childP);
    void replaceChild(UInt32 childIndex, const NodePtr &childP);
    bool replaceChildBy(const NodePtr &childP, const NodePtr &newChildP);
    Int32 findChild(const NodePtr &childP) const;
    void subChild(const NodePtr &childP);
    void subChild(UInt32 childIndex);

    bool getActive(void) const { return _sfTravMask.getValue() == 0xFFFFFFFF; }
    void setActive(bool active) { _sfTravMask.setValue(active ? 0xFFFFFFFF : 0); }

    UInt8 getOcclusionMask(void) const { return _occlusionMask; }
    void setOcclusionMask(UInt8 val) { _occlusionMask = val; }

    /// Parent's transformation times this node's core's.
    Matrix getToWorld(void);
    void getToWorld(Matrix &result);

    DynamicVolume &getVolume(bool update);
    const DynamicVolume &getVolume(void) const { return _sfVolume.getValue(); }
    DynamicVolume &editVolume(bool update) { return getVolume(update); }
    void getWorldVolume(DynamicVolume &result);
    void updateVolume(void);
    void invalidateVolume(void);

    NodePtr clone(void);

    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    Node(void);
    /// Copies volume and traversal mask, not parent, children or core.
    Node(const Node &source);
    virtual ~Node(void);

    /// A shallow copy shares the source's core and attachments.
    void onCreate(const Node *source = NULL);
    /// Releases the core and the children, once, from the aspect-0 copy.
    virtual void onDestroy(void);

    void setParent(const NodePtr &parent);

    NodePtr getPtr(void);

  private:
    friend class FieldContainer;
    friend class NodeBase;

    static void initMethod(void);

    UInt8 _occlusionMask;

    void operator=(const Node &source);
};

typedef Node *NodeP;

inline NodePtr::NodePtr(const Node &source) : Inherited(source)
{
}

inline NodePtr::NodePtr(const Node *source) : Inherited(source)
{
}

inline NodePtr::NodePtr(const Node *source, UInt32 containerSize)
    : Inherited(source, containerSize)
{
}

inline Node *CNodePtr::getNode(void) const
{
    return NodePtr::getCPtr();
}

inline NodeCorePtr NodePtr::getCore(void) const
{
    return (*this)->getCore();
}

inline NodeCore *CNodePtr::operator->(void) const
{
    return NodePtr::operator->()->getCore().getCPtr();
}

inline NodeCore *CNodePtr::getCPtr(void) const
{
    return _storeP != NULL ? operator->() : NULL;
}

/// A new node sharing root's core, with clones of root's children.
NodePtr cloneTree(const NodePtr &root);

OSG_END_NAMESPACE

#endif
