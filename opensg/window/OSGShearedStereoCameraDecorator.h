/// Off-axis stereo for a PerspectiveCamera: each eye gets a frustum sheared
/// so that both images coincide at zeroParallaxDistance, and moved sideways
/// by half the eye separation (the left eye to the left).
#ifndef _OSGSHEAREDSTEREOCAMERADECORATOR_H_
#define _OSGSHEAREDSTEREOCAMERADECORATOR_H_

#include <OpenSG/OSGShearedStereoCameraDecoratorBase.h>

OSG_BEGIN_NAMESPACE

class ShearedStereoCameraDecorator : public ShearedStereoCameraDecoratorBase
{
  private:
    typedef ShearedStereoCameraDecoratorBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    /// Identity for an empty size or a decoratee that is not a
    /// PerspectiveCamera; the decoratee's projection for a zero separation.
    virtual void getProjection(Matrix &result, UInt32 width, UInt32 height);
    virtual void getDecoration(Matrix &result, UInt32 width, UInt32 height);

  protected:
    ShearedStereoCameraDecorator(void);
    ShearedStereoCameraDecorator(const ShearedStereoCameraDecorator &source);
    virtual ~ShearedStereoCameraDecorator(void);

  private:
    friend class FieldContainer;
    friend class ShearedStereoCameraDecoratorBase;

    static void initMethod(void);

    void operator=(const ShearedStereoCameraDecorator &source);
};

typedef ShearedStereoCameraDecorator *ShearedStereoCameraDecoratorP;

OSG_END_NAMESPACE

#endif
