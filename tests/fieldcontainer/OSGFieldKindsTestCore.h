/// Test core holding one field of every kind; records its changed calls.
#ifndef _OSGFIELDKINDSTESTCORE_H_
#define _OSGFIELDKINDSTESTCORE_H_

#include <OpenSG/OSGFieldKindsTestCoreBase.h>

#include <utility>
#include <vector>

OSG_BEGIN_NAMESPACE

class FieldKindsTestCore : public FieldKindsTestCoreBase
{
  private:
    typedef FieldKindsTestCoreBase Inherited;

  public:
    typedef std::pair<BitVector, UInt32> ChangedCall;

    /// Every changed(whichField, origin) since creation, in order.
    std::vector<ChangedCall> changedCalls;

    static UInt32 destroyedCount;

    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    FieldKindsTestCore(void);
    FieldKindsTestCore(const FieldKindsTestCore &source);
    virtual ~FieldKindsTestCore(void);

    virtual void onDestroy(void);

  private:
    friend class FieldContainer;
    friend class FieldKindsTestCoreBase;

    static void initMethod(void);

    void operator=(const FieldKindsTestCore &source);
};

typedef FieldKindsTestCore *FieldKindsTestCoreP;

OSG_END_NAMESPACE

#endif
