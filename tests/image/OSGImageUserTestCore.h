/// Test container using an image; records its changed calls.
#ifndef _OSGIMAGEUSERTESTCORE_H_
#define _OSGIMAGEUSERTESTCORE_H_

#include <OpenSG/OSGImageUserTestCoreBase.h>

#include <utility>
#include <vector>

OSG_BEGIN_NAMESPACE

class ImageUserTestCore : public ImageUserTestCoreBase
{
  private:
    typedef ImageUserTestCoreBase Inherited;

  public:
    typedef std::pair<BitVector, UInt32> ChangedCall;

    /// Every changed(whichField, origin) since creation, in order.
    std::vector<ChangedCall> changedCalls;

    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    ImageUserTestCore(void);
    ImageUserTestCore(const ImageUserTestCore &source);
    virtual ~ImageUserTestCore(void);

  private:
    friend class FieldContainer;
    friend class ImageUserTestCoreBase;

    static void initMethod(void);

    void operator=(const ImageUserTestCore &source);
};

OSG_END_NAMESPACE

#endif
