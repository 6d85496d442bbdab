/// A camera decorator for one eye of a stereo pair: leftEye chooses the
/// eye, eyeSeparation the distance between the eyes.
#ifndef _OSGSTEREOCAMERADECORATOR_H_
#define _OSGSTEREOCAMERADECORATOR_H_

#include <OpenSG/OSGStereoCameraDecoratorBase.h>

OSG_BEGIN_NAMESPACE

class StereoCameraDecorator : public StereoCameraDecoratorBase
{
  private:
    typedef StereoCameraDecoratorBase Inherited;

  public:
    /// Does not forward: an eye switch concerns nobody further up.
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    StereoCameraDecorator(void);
    StereoCameraDecorator(const StereoCameraDecorator &source);
    virtual ~StereoCameraDecorator(void);

  private:
    friend class FieldContainer;
    friend class StereoCameraDecoratorBase;

    static void initMethod(void);

    void operator=(const StereoCameraDecorator &source);
};

typedef StereoCameraDecorator *StereoCameraDecoratorP;

OSG_END_NAMESPACE

#endif
