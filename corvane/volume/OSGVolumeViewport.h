/// A viewport that renders the ray-casting inputs of its volume nodes into textures.
#ifndef _OSGVOLUMEVIEWPORT_H_
#define _OSGVOLUMEVIEWPORT_H_

#include <OpenSG/OSGVolumeViewportBase.h>

OSG_BEGIN_NAMESPACE

class VolumeViewport : public VolumeViewportBase
{
  private:
    typedef VolumeViewportBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    VolumeViewport(void);
    VolumeViewport(const VolumeViewport &source);
    virtual ~VolumeViewport(void);

  private:
    friend class FieldContainer;
    friend class VolumeViewportBase;

    static void initMethod(void);

    void operator=(const VolumeViewport &source);
};

typedef VolumeViewport *VolumeViewportP;

OSG_END_NAMESPACE

#endif
