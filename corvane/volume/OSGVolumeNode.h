/// The group core that puts a ray-cast volume into the scene.
#ifndef _OSGVOLUMENODE_H_
#define _OSGVOLUMENODE_H_

#include <OpenSG/OSGVolumeNodeBase.h>

OSG_BEGIN_NAMESPACE

class VolumeNode : public VolumeNodeBase
{
  private:
    typedef VolumeNodeBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    VolumeNode(void);
    VolumeNode(const VolumeNode &source);
    virtual ~VolumeNode(void);

  private:
    friend class FieldContainer;
    friend class VolumeNodeBase;

    static void initMethod(void);

    void operator=(const VolumeNode &source);
};

typedef VolumeNode *VolumeNodeP;

OSG_END_NAMESPACE

#endif
