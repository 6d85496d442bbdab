/// A display filter that calibrates colour with a gamma, a matrix and a per-region shading table.
#ifndef _OSGIMPROVEDCOLORDISPLAYFILTER_H_
#define _OSGIMPROVEDCOLORDISPLAYFILTER_H_

#include <OpenSG/OSGImprovedColorDisplayFilterBase.h>

OSG_BEGIN_NAMESPACE

class ImprovedColorDisplayFilter : public ImprovedColorDisplayFilterBase
{
  private:
    typedef ImprovedColorDisplayFilterBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    ImprovedColorDisplayFilter(void);
    ImprovedColorDisplayFilter(const ImprovedColorDisplayFilter &source);
    virtual ~ImprovedColorDisplayFilter(void);

  private:
    friend class FieldContainer;
    friend class ImprovedColorDisplayFilterBase;

    static void initMethod(void);

    void operator=(const ImprovedColorDisplayFilter &source);
};

typedef ImprovedColorDisplayFilter *ImprovedColorDisplayFilterP;

OSG_END_NAMESPACE

#endif
