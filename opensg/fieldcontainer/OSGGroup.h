/// A node core that only groups its node's children.
#ifndef _OSGGROUP_H_
#define _OSGGROUP_H_

#include <OpenSG/OSGGroupBase.h>
#include <OpenSG/OSGAction.h>

OSG_BEGIN_NAMESPACE

class Group : public GroupBase
{
  private:
    typedef GroupBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    // Action functors, registered in initMethod; derived cores call them.
    /// Draw: the visible children only; Skip when there is none.
    Action::ResultE drawEnter(Action *action);
    Action::ResultE drawLeave(Action *action);
    /// Render: culls the node and then its children against the frustum.
    Action::ResultE renderEnter(Action *action);
    Action::ResultE renderLeave(Action *action);
    /// Intersect: Skip when the ray misses the node's volume.
    Action::ResultE intersect(Action *action);

  protected:
    Group(void);
    Group(const Group &source);
    virtual ~Group(void);

  private:
    friend class FieldContainer;
    friend class GroupBase;

    static void initMethod(void);

    void operator=(const Group &source);
};

typedef Group *GroupP;

OSG_END_NAMESPACE

#endif
