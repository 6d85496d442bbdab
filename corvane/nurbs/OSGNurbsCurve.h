/// A NURBS curve: drawn through GLU, or a trimming curve of a surface.
#ifndef _OSGNURBSCURVE_H_
#define _OSGNURBSCURVE_H_

#include <OpenSG/OSGNurbsCurveBase.h>

OSG_BEGIN_NAMESPACE

class NurbsCurve : public NurbsCurveBase
{
  private:
    typedef NurbsCurveBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    NurbsCurve(void);
    NurbsCurve(const NurbsCurve &source);
    virtual ~NurbsCurve(void);

  private:
    friend class FieldContainer;
    friend class NurbsCurveBase;

    static void initMethod(void);

    void operator=(const NurbsCurve &source);
};

typedef NurbsCurve *NurbsCurveP;

OSG_END_NAMESPACE

#endif
