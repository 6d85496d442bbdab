/// A group core that plays a list of cores as if they sat on one node.
#ifndef _OSGMULTICORE_H_
#define _OSGMULTICORE_H_

#include <OpenSG/OSGMultiCoreBase.h>

OSG_BEGIN_NAMESPACE

class MultiCore : public MultiCoreBase
{
  private:
    typedef MultiCoreBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    MultiCore(void);
    MultiCore(const MultiCore &source);
    virtual ~MultiCore(void);

  private:
    friend class FieldContainer;
    friend class MultiCoreBase;

    static void initMethod(void);

    void operator=(const MultiCore &source);
};

typedef MultiCore *MultiCoreP;

OSG_END_NAMESPACE

#endif
