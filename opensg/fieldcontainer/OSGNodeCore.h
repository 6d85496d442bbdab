/// What a node is: the behaviour shared by the nodes that point to it.
#ifndef _OSGNODECORE_H_
#define _OSGNODECORE_H_

#include <OpenSG/OSGNodeCoreBase.h>
#include <OpenSG/OSGMatrix.h>
#include <OpenSG/OSGVolume.h>

OSG_BEGIN_NAMESPACE

class NodeCore : public NodeCoreBase
{
  private:
    typedef NodeCoreBase Inherited;

  public:
    static const bool isNodeCore = true;

    MFNodePtr &getParents(void) { return _parents; }
    const MFNodePtr &getParents(void) const { return _parents; }

    /// Invalidates the volume of every node that uses this core.
    virtual void invalidateVolume(void);
    /// Multiplies the core's transformation onto result (none by default).
    virtual void accumulateMatrix(Matrix &result);

    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    NodeCore(void);
    /// A copy is used by no node yet.
    NodeCore(const NodeCore &source);
    virtual ~NodeCore(void);

    /// Lets the core change the volume of its node's children (a transform
    /// moves it); nothing by default.
    virtual void adjustVolume(Volume &volume);

    void addParent(const NodePtr &parent);
    void subParent(const NodePtr &parent);

    NodeCorePtr getPtr(void);

  private:
    friend class FieldContainer;
    friend class NodeCoreBase;
    friend class Node;

    static void initMethod(void);

    void operator=(const NodeCore &source);
};

typedef NodeCore *NodeCoreP;

OSG_END_NAMESPACE

#include <OpenSG/OSGNode.h>

#endif
