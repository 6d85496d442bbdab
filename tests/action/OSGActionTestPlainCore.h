// Test core without action functors of its own (derived from the recording
// core, whose functors are not inherited).
#ifndef _OSGACTIONTESTPLAINCORE_H_
#define _OSGACTIONTESTPLAINCORE_H_

#include <OpenSG/OSGActionTestPlainCoreBase.h>

OSG_BEGIN_NAMESPACE

class ActionTestPlainCore : public ActionTestPlainCoreBase
{
  private:
    typedef ActionTestPlainCoreBase Inherited;

  protected:
    ActionTestPlainCore(void) : Inherited() {}
    ActionTestPlainCore(const ActionTestPlainCore &source) : Inherited(source) {}
    virtual ~ActionTestPlainCore(void) {}

  private:
    friend class FieldContainer;
    friend class ActionTestPlainCoreBase;

    static void initMethod(void) {}

    void operator=(const ActionTestPlainCore &source);
};

OSG_END_NAMESPACE

#endif
