/// A display filter that warps one eye's image for the lenses of an Oculus Rift.
#ifndef _OSGOCULUSRIFTFILTER_H_
#define _OSGOCULUSRIFTFILTER_H_

#include <OpenSG/OSGOculusRiftFilterBase.h>

OSG_BEGIN_NAMESPACE

class OculusRiftFilter : public OculusRiftFilterBase
{
  private:
    typedef OculusRiftFilterBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    OculusRiftFilter(void);
    OculusRiftFilter(const OculusRiftFilter &source);
    virtual ~OculusRiftFilter(void);

  private:
    friend class FieldContainer;
    friend class OculusRiftFilterBase;

    static void initMethod(void);

    void operator=(const OculusRiftFilter &source);
};

typedef OculusRiftFilter *OculusRiftFilterP;

OSG_END_NAMESPACE

#endif
