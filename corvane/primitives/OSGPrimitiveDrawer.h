/// A drawable whose drawing comes from a plug-in shared library.
#ifndef _OSGPRIMITIVEDRAWER_H_
#define _OSGPRIMITIVEDRAWER_H_

#include <OpenSG/OSGPrimitiveDrawerBase.h>

OSG_BEGIN_NAMESPACE

class PrimitiveDrawer : public PrimitiveDrawerBase
{
  private:
    typedef PrimitiveDrawerBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    PrimitiveDrawer(void);
    PrimitiveDrawer(const PrimitiveDrawer &source);
    virtual ~PrimitiveDrawer(void);

  private:
    friend class FieldContainer;
    friend class PrimitiveDrawerBase;

    static void initMethod(void);

    void operator=(const PrimitiveDrawer &source);
};

typedef PrimitiveDrawer *PrimitiveDrawerP;

OSG_END_NAMESPACE

#endif
