/// Node pointers: NodePtr, and CNodePtr, which dereferences to the core.
#ifndef _OSGNODEPTR_H_
#define _OSGNODEPTR_H_

#include <OpenSG/OSGAttachmentContainerFields.h>
#include <OpenSG/OSGNodeCoreFields.h>

OSG_BEGIN_NAMESPACE

class Node;
class NodeCore;

class NodePtr : public FCPtr<AttachmentContainerPtr, Node>
{
  public:
    typedef FCPtr<AttachmentContainerPtr, Node> Inherited;

    NodePtr(void) : Inherited() {}
    NodePtr(const NodePtr &source) = default;
    NodePtr &operator=(const NodePtr &source) = default;
    NodePtr(const Inherited &source) : Inherited(source) {}
    NodePtr(const NullFieldContainerPtr &) : Inherited() {}
    // these need the complete Node; OSGNode.h defines them
    explicit NodePtr(const Node &source);
    explicit NodePtr(const Node *source);
    NodePtr(const Node *source, UInt32 containerSize);

    /// The node's core, NullFC for none.
    NodeCorePtr getCore(void) const;

    template <class InTypeT>
    static NodePtr dcast(const InTypeT &in)
    {
        return NodePtr(Inherited::dcast(in));
    }
};

/// A node pointer whose -> and * reach the node's core; action functors
/// receive it.
class CNodePtr : public NodePtr
{
  public:
    CNodePtr(void) : NodePtr() {}
    CNodePtr(const CNodePtr &source) = default;
    CNodePtr &operator=(const CNodePtr &source) = default;
    CNodePtr(const NullFieldContainerPtr &) : NodePtr() {}
    explicit CNodePtr(const NodePtr &source) : NodePtr(source) {}

    NodeCore *operator->(void) const;
    NodeCore &operator*(void) const { return *operator->(); }
    NodeCore *getCPtr(void) const;

    Node *getNode(void) const;
};

template <>
struct FieldDataTraits<NodePtr> : public FieldTraitsRecurseMapper<NodePtr, true>
{
    static DataType _type;

    enum { StringConvertable = ToStringConvertable };
    enum { bHasParent        = 0x01 };

    static DataType &getType(void) { return _type; }
    static const Char8 *getSName(void) { return "SFNodePtr"; }
    static const Char8 *getMName(void) { return "MFNodePtr"; }
};

typedef SField<NodePtr> SFNodePtr;
typedef MField<NodePtr> MFNodePtr;

template <> const FieldType SField<NodePtr, 0>::_fieldType;
template <> const FieldType MField<NodePtr, 0>::_fieldType;

std::ostream &operator<<(std::ostream &os, const NodePtr &fc);
std::ostream &operator<<(std::ostream &os, const CNodePtr &fc);

NodePtr makeNodeFor(NodeCorePtr core);

/// A new node with a new core of type Core (stored into *coreP when given).
template <class Core>
inline NodePtr makeCoredNode(typename Core::Ptr *coreP = NULL)
{
    typename Core::Ptr core = Core::create();
    if(coreP != NULL)
        *coreP = core;
    return makeNodeFor(core);
}

OSG_END_NAMESPACE

#endif
