/// A trimmable NURBS surface tessellated by GLU into geometry or a display list.
#ifndef _OSGNURBSSURFACE_H_
#define _OSGNURBSSURFACE_H_

#include <OpenSG/OSGNurbsSurfaceBase.h>

OSG_BEGIN_NAMESPACE

class NurbsSurface : public NurbsSurfaceBase
{
  private:
    typedef NurbsSurfaceBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    NurbsSurface(void);
    NurbsSurface(const NurbsSurface &source);
    virtual ~NurbsSurface(void);

  private:
    friend class FieldContainer;
    friend class NurbsSurfaceBase;

    static void initMethod(void);

    void operator=(const NurbsSurface &source);
};

typedef NurbsSurface *NurbsSurfaceP;

OSG_END_NAMESPACE

#endif
