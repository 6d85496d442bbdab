/// The shading style that modifies the parameters of the current strategy.
#ifndef _OSGCOMPOSABLEVOLUMESHADINGSTYLE_H_
#define _OSGCOMPOSABLEVOLUMESHADINGSTYLE_H_

#include <OpenSG/OSGComposableVolumeShadingStyleBase.h>

OSG_BEGIN_NAMESPACE

class ComposableVolumeShadingStyle : public ComposableVolumeShadingStyleBase
{
  private:
    typedef ComposableVolumeShadingStyleBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;
    virtual void paramShading(VolumeNodeHandler *handler);

  protected:
    ComposableVolumeShadingStyle(void);
    ComposableVolumeShadingStyle(const ComposableVolumeShadingStyle &source);
    virtual ~ComposableVolumeShadingStyle(void);

  private:
    friend class FieldContainer;
    friend class ComposableVolumeShadingStyleBase;

    static void initMethod(void);

    void operator=(const ComposableVolumeShadingStyle &source);
};

typedef ComposableVolumeShadingStyle *ComposableVolumeShadingStyleP;

OSG_END_NAMESPACE

#endif
