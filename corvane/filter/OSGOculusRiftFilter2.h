/// A display filter that warps one eye's image for the Rift's lenses, with chromatic correction always on.
#ifndef _OSGOCULUSRIFTFILTER2_H_
#define _OSGOCULUSRIFTFILTER2_H_

#include <OpenSG/OSGOculusRiftFilter2Base.h>

OSG_BEGIN_NAMESPACE

class OculusRiftFilter2 : public OculusRiftFilter2Base
{
  private:
    typedef OculusRiftFilter2Base Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    OculusRiftFilter2(void);
    OculusRiftFilter2(const OculusRiftFilter2 &source);
    virtual ~OculusRiftFilter2(void);

  private:
    friend class FieldContainer;
    friend class OculusRiftFilter2Base;

    static void initMethod(void);

    void operator=(const OculusRiftFilter2 &source);
};

typedef OculusRiftFilter2 *OculusRiftFilter2P;

OSG_END_NAMESPACE

#endif
