/// What a viewport's buffers start from: clear() runs once per pass, with
/// the viewport active (GL viewport and scissor set; for render actions the
/// projection is already loaded), and leaves colour, depth and stencil as
/// the pass begins.
#ifndef _OSGBACKGROUND_H_
#define _OSGBACKGROUND_H_

#include <OpenSG/OSGBackgroundBase.h>

OSG_BEGIN_NAMESPACE

class DrawActionBase;
class Viewport;

class Background : public BackgroundBase
{
  private:
    typedef BackgroundBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    virtual void clear(DrawActionBase *action, Viewport *port) = 0;

  protected:
    Background(void);
    Background(const Background &source);
    virtual ~Background(void);

  private:
    friend class FieldContainer;
    friend class BackgroundBase;

    static void initMethod(void);

    void operator=(const Background &source);
};

typedef Background *BackgroundP;

OSG_END_NAMESPACE

#endif
