/// Shows the image at a reduced resolution: the group "ColorDisplayFilter"
/// draws it scaled down by downScale (0..1) into the lower left corner, and
/// the group "ResolutionDisplayFilter" grabs that and scales it back up.
#ifndef _OSGRESOLUTIONDISPLAYFILTER_H_
#define _OSGRESOLUTIONDISPLAYFILTER_H_

#include <OpenSG/OSGResolutionDisplayFilterBase.h>

OSG_BEGIN_NAMESPACE

class ResolutionDisplayFilter : public ResolutionDisplayFilterBase
{
  private:
    typedef ResolutionDisplayFilterBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    virtual void createFilter(DisplayFilterForeground *fg, Viewport *port);

  protected:
    ResolutionDisplayFilter(void);
    ResolutionDisplayFilter(const ResolutionDisplayFilter &source);
    virtual ~ResolutionDisplayFilter(void);

  private:
    friend class FieldContainer;
    friend class ResolutionDisplayFilterBase;

    static void initMethod(void);

    void operator=(const ResolutionDisplayFilter &source);
};

typedef ResolutionDisplayFilter *ResolutionDisplayFilterP;

OSG_END_NAMESPACE

#endif
