/// Test camera decorator: forwards every call to its decoratee.
#ifndef _OSGWRAPPINGTESTCAMERADECORATOR_H_
#define _OSGWRAPPINGTESTCAMERADECORATOR_H_

#include <OpenSG/OSGWrappingTestCameraDecoratorBase.h>

OSG_BEGIN_NAMESPACE

class WrappingTestCameraDecorator : public WrappingTestCameraDecoratorBase
{
  private:
    typedef WrappingTestCameraDecoratorBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    WrappingTestCameraDecorator(void);
    WrappingTestCameraDecorator(const WrappingTestCameraDecorator &source);
    virtual ~WrappingTestCameraDecorator(void);

  private:
    friend class FieldContainer;
    friend class WrappingTestCameraDecoratorBase;

    static void initMethod(void);

    void operator=(const WrappingTestCameraDecorator &source);
};

OSG_END_NAMESPACE

#endif
