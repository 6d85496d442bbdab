/// Switch: a group that traverses only the child its choice names, all its
/// children (ALL) or none (NONE, or an index out of range). Its bounding
/// volume is the group's, all children included.
#ifndef _OSGSWITCH_H_
#define _OSGSWITCH_H_

#include <OpenSG/OSGSwitchBase.h>
#include <OpenSG/OSGAction.h>

OSG_BEGIN_NAMESPACE

class Switch : public SwitchBase
{
  private:
    typedef SwitchBase Inherited;

  public:
    enum
    {
        ALL  = -2,
        NONE = -1
    };

    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    Action::ResultE draw(Action *action);
    Action::ResultE intersect(Action *action);

  protected:
    Switch(void);
    Switch(const Switch &source);
    virtual ~Switch(void);

  private:
    friend class FieldContainer;
    friend class SwitchBase;

    static void initMethod(void);

    void operator=(const Switch &source);
};

typedef Switch *SwitchP;

OSG_END_NAMESPACE

#endif
