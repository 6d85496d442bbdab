/// Warps the image: the grid of the group "ColorDisplayFilter" gets
/// columns x rows vertices at `positions` (0..1 over the viewport), each
/// still showing the texture coordinate of its regular place. Shares its
/// group (grab and material) with the colour filter.
#ifndef _OSGDISTORTIONDISPLAYFILTER_H_
#define _OSGDISTORTIONDISPLAYFILTER_H_

#include <OpenSG/OSGDistortionDisplayFilterBase.h>

OSG_BEGIN_NAMESPACE

class DistortionDisplayFilter : public DistortionDisplayFilterBase
{
  private:
    typedef DistortionDisplayFilterBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    virtual void createFilter(DisplayFilterForeground *fg, Viewport *port);

  protected:
    DistortionDisplayFilter(void);
    DistortionDisplayFilter(const DistortionDisplayFilter &source);
    virtual ~DistortionDisplayFilter(void);

  private:
    friend class FieldContainer;
    friend class DistortionDisplayFilterBase;

    static void initMethod(void);

    void operator=(const DistortionDisplayFilter &source);
};

typedef DistortionDisplayFilter *DistortionDisplayFilterP;

OSG_END_NAMESPACE

#endif
