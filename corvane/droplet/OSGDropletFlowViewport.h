/// The viewport that drives the droplet-flow simulation once per frame.
#ifndef _OSGDROPLETFLOWVIEWPORT_H_
#define _OSGDROPLETFLOWVIEWPORT_H_

#include <OpenSG/OSGDropletFlowViewportBase.h>

OSG_BEGIN_NAMESPACE

class DropletFlowViewport : public DropletFlowViewportBase
{
  private:
    typedef DropletFlowViewportBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    DropletFlowViewport(void);
    DropletFlowViewport(const DropletFlowViewport &source);
    virtual ~DropletFlowViewport(void);

  private:
    friend class FieldContainer;
    friend class DropletFlowViewportBase;

    static void initMethod(void);

    void operator=(const DropletFlowViewport &source);
};

typedef DropletFlowViewport *DropletFlowViewportP;

OSG_END_NAMESPACE

#endif
