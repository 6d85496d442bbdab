/// Shading parameters of a volume, turned into a shading strategy by its subclasses.
#ifndef _OSGVOLUMESHADINGSTYLE_H_
#define _OSGVOLUMESHADINGSTYLE_H_

#include <OpenSG/OSGVolumeShadingStyleBase.h>

OSG_BEGIN_NAMESPACE

class VolumeShadingStyle : public VolumeShadingStyleBase
{
  private:
    typedef VolumeShadingStyleBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    VolumeShadingStyle(void);
    VolumeShadingStyle(const VolumeShadingStyle &source);
    virtual ~VolumeShadingStyle(void);

  private:
    friend class FieldContainer;
    friend class VolumeShadingStyleBase;

    static void initMethod(void);

    void operator=(const VolumeShadingStyle &source);
};

typedef VolumeShadingStyle *VolumeShadingStyleP;

OSG_END_NAMESPACE

#endif
