/// A place in the scene graph: one core, at most one parent, any children.
#ifndef _OSGNODE_H_
#define _OSGNODE_H_

#include <OpenSG/OSGNodeCore.h>
#include <OpenSG/OSGNodeBase.h>

#include <string>
#include <vector>

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

/// A new node with the core, inside an edit of Node::CoreFieldMask.
NodePtr makeNodeFor(NodeCorePtr core);

// Deep copies. A container whose type derives from one of the share types
// is shared (the same pointer is used) instead of copied. The share types
// are given by name, by group id, or as one comma-separated string; names
// the factory doesn't know are ignored.

/// A copy of every non-internal field of src (but "parents"), with the
/// containers it points to copied in turn unless shared.
FieldContainerPtr deepClone(const FieldContainerPtr &src,
                            const std::vector<std::string> &share);
FieldContainerPtr deepClone(const FieldContainerPtr &src,
                            const std::vector<UInt16> &shareGroupIds);
FieldContainerPtr deepClone(const FieldContainerPtr &src,
                            const std::string &shareString = "");

/// Adds copies (or, when shared, the originals) of src's attachments to dst,
/// each with binding 0.
void deepCloneAttachments(const AttachmentContainerPtr &src, AttachmentContainerPtr &dst,
                          const std::vector<std::string> &share);
void deepCloneAttachments(const AttachmentContainerPtr &src, AttachmentContainerPtr &dst,
                          const std::vector<UInt16> &shareGroupIds);
void deepCloneAttachments(const AttachmentContainerPtr &src, AttachmentContainerPtr &dst,
                          const std::string &shareString = "");

/// A copy of the subtree with copies of its cores, attachments and what
/// they point to (unless shared).
NodePtr deepCloneTree(const NodePtr &src, const std::vector<std::string> &share);
NodePtr deepCloneTree(const NodePtr &src, const std::vector<UInt16> &shareGroupIds);
NodePtr deepCloneTree(const NodePtr &src, const std::string &shareString = "");

OSG_END_NAMESPACE

#endif
