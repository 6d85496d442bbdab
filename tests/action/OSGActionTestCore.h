// Test core: records enter/leave/draw calls of every action in a global log
// and answers with the results its fields give.
#ifndef _OSGACTIONTESTCORE_H_
#define _OSGACTIONTESTCORE_H_

#include <OpenSG/OSGActionTestCoreBase.h>
#include <OpenSG/OSGAction.h>
#include <OpenSG/OSGMatrix.h>

#include <string>
#include <vector>

OSG_BEGIN_NAMESPACE

class DrawActionBase;

/// What a draw functor saw when it was called.
struct ActionTestDraw
{
    std::string label;
    NodePtr     actNode;
    Matrix      topMatrix;   ///< RenderAction::top_matrix()
    Matrix      glModelView; ///< GL_MODELVIEW_MATRIX
    UInt32      lightsMask;  ///< RenderAction::getActiveLightsMask()
    bool        depthWrite;  ///< GL_DEPTH_WRITEMASK
    UInt32      glLightsOn;  ///< bit i: GL_LIGHT0 + i enabled
};

/// Everything the test cores and chunks did, in order ("E:a", "L:a",
/// "D:a", "act:m", ...).
std::vector<std::string> &actionTestLog(void);
std::vector<ActionTestDraw> &actionTestDraws(void);
void clearActionTestLog(void);
/// While true nothing is logged or recorded (for counting allocations).
bool &actionTestQuiet(void);
/// Appends to the log unless quiet.
void actionTestRecord(const std::string &entry);
/// The log joined with spaces.
std::string actionTestLogString(void);

class ActionTestCore : public ActionTestCoreBase
{
  private:
    typedef ActionTestCoreBase Inherited;

  public:
    /// Enter of the plain Action: logs, applies useList/pick, returns
    /// enterResult.
    Action::ResultE enter(Action *action);
    Action::ResultE leave(Action *action);

    /// RenderAction: queues a draw functor with the override or own material.
    Action::ResultE renderEnter(Action *action);
    Action::ResultE renderLeave(Action *action);

    /// DrawAction: draws at once through the material.
    Action::ResultE drawEnter(Action *action);

    /// IntersectAction: a unit square in the z = 0 plane, centred at the
    /// origin (triangles 0 and 1).
    Action::ResultE intersect(Action *action);

    /// The draw functor's target: records an ActionTestDraw.
    Action::ResultE draw(DrawActionBase *action);

    /// Number of enter calls of the plain Action since creation.
    UInt32 getEnterCount(void) const { return _enterCount; }

    virtual void changed(BitVector whichField, UInt32 origin);

  protected:
    ActionTestCore(void);
    ActionTestCore(const ActionTestCore &source);
    virtual ~ActionTestCore(void);

    /// A unit cube around the origin.
    virtual void adjustVolume(Volume &volume);

  private:
    friend class FieldContainer;
    friend class ActionTestCoreBase;

    static void initMethod(void);

    UInt32 _enterCount;

    void operator=(const ActionTestCore &source);
};

OSG_END_NAMESPACE

#endif
