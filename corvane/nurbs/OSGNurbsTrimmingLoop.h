/// The curves of one closed trimming contour of a NURBS surface.
#ifndef _OSGNURBSTRIMMINGLOOP_H_
#define _OSGNURBSTRIMMINGLOOP_H_

#include <OpenSG/OSGNurbsTrimmingLoopBase.h>

OSG_BEGIN_NAMESPACE

class NurbsTrimmingLoop : public NurbsTrimmingLoopBase
{
  private:
    typedef NurbsTrimmingLoopBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    NurbsTrimmingLoop(void);
    NurbsTrimmingLoop(const NurbsTrimmingLoop &source);
    virtual ~NurbsTrimmingLoop(void);

  private:
    friend class FieldContainer;
    friend class NurbsTrimmingLoopBase;

    static void initMethod(void);

    void operator=(const NurbsTrimmingLoop &source);
};

typedef NurbsTrimmingLoop *NurbsTrimmingLoopP;

OSG_END_NAMESPACE

#endif
