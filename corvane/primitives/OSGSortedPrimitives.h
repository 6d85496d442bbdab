/// A cloud of primitive groups that re-orders itself by distance to the viewer.
#ifndef _OSGSORTEDPRIMITIVES_H_
#define _OSGSORTEDPRIMITIVES_H_

#include <OpenSG/OSGSortedPrimitivesBase.h>

OSG_BEGIN_NAMESPACE

class SortedPrimitives : public SortedPrimitivesBase
{
  private:
    typedef SortedPrimitivesBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    SortedPrimitives(void);
    SortedPrimitives(const SortedPrimitives &source);
    virtual ~SortedPrimitives(void);

  private:
    friend class FieldContainer;
    friend class SortedPrimitivesBase;

    static void initMethod(void);

    void operator=(const SortedPrimitives &source);
};

typedef SortedPrimitives *SortedPrimitivesP;

OSG_END_NAMESPACE

#endif
