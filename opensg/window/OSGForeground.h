/// Drawn over a viewport after its scene, in the order of the viewport's
/// list, with the viewport still active. Each foreground checks its active
/// flag in draw() itself.
#ifndef _OSGFOREGROUND_H_
#define _OSGFOREGROUND_H_

#include <OpenSG/OSGForegroundBase.h>

OSG_BEGIN_NAMESPACE

class DrawActionBase;
class Viewport;

class Foreground : public ForegroundBase
{
  private:
    typedef ForegroundBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    virtual void draw(DrawActionBase *action, Viewport *port) = 0;

  protected:
    Foreground(void);
    Foreground(const Foreground &source);
    virtual ~Foreground(void);

  private:
    friend class FieldContainer;
    friend class ForegroundBase;

    static void initMethod(void);

    void operator=(const Foreground &source);
};

typedef Foreground *ForegroundP;

OSG_END_NAMESPACE

#endif
