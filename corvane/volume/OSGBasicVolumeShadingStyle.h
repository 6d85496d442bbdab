/// The shading style that selects the volume's shading strategy.
#ifndef _OSGBASICVOLUMESHADINGSTYLE_H_
#define _OSGBASICVOLUMESHADINGSTYLE_H_

#include <OpenSG/OSGBasicVolumeShadingStyleBase.h>

OSG_BEGIN_NAMESPACE

class BasicVolumeShadingStyle : public BasicVolumeShadingStyleBase
{
  private:
    typedef BasicVolumeShadingStyleBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;
    virtual void paramShading(VolumeNodeHandler *handler);

  protected:
    BasicVolumeShadingStyle(void);
    BasicVolumeShadingStyle(const BasicVolumeShadingStyle &source);
    virtual ~BasicVolumeShadingStyle(void);

  private:
    friend class FieldContainer;
    friend class BasicVolumeShadingStyleBase;

    static void initMethod(void);

    void operator=(const BasicVolumeShadingStyle &source);
};

typedef BasicVolumeShadingStyle *BasicVolumeShadingStyleP;

OSG_END_NAMESPACE

#endif
