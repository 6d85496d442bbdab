// Test core: records every enter and leave call of the actions in a global
// list, with what the action looked like at that moment, and answers the
// enter calls with enterResult.
#ifndef _OSGCOREPROBE_H_
#define _OSGCOREPROBE_H_

#include <OpenSG/OSGCoreProbeBase.h>
#include <OpenSG/OSGAction.h>

#include <string>
#include <vector>

OSG_BEGIN_NAMESPACE

struct CoreProbeCall
{
    std::string what;     ///< "E:label" or "L:label"
    NodePtr     actNode;  ///< the action's active node
    Node       *node;     ///< the node the functor was called with
    bool        culling;  ///< the draw action's frustum culling flag
};

std::vector<CoreProbeCall> &coreProbeCalls(void);
/// The calls' what, joined with spaces.
std::string coreProbeLog(void);

class CoreProbe : public CoreProbeBase
{
  private:
    typedef CoreProbeBase Inherited;

  public:
    /// The functors: they get the node, which a method functor doesn't see.
    static Action::ResultE enter(CNodePtr &node, Action *action);
    static Action::ResultE leave(CNodePtr &node, Action *action);

  protected:
    CoreProbe(void) : Inherited() {}
    CoreProbe(const CoreProbe &source) : Inherited(source) {}
    virtual ~CoreProbe(void) {}

  private:
    friend class FieldContainer;
    friend class CoreProbeBase;

    static void initMethod(void);

    void record(const char *kind, Node *node, Action *action);

    void operator=(const CoreProbe &source);
};

OSG_END_NAMESPACE

#endif
