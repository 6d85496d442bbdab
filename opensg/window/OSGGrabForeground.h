/// Reads the viewport's pixels back into `image` after the scene (and the
/// foregrounds before it) was drawn, in the image's pixel format and data
/// type. An image of at most one pixel per edge, or one of the wrong size
/// with autoResize on, is first set to the viewport's size (at least 2 x 2)
/// as 8-bit data; without autoResize a larger image keeps its size and
/// receives the lower-left part.
///
/// A new GrabForeground starts inactive: set `active` once the image is in
/// place. The image is not announced as changed, so a texture showing it
/// needs an edit of its own.
#ifndef _OSGGRABFOREGROUND_H_
#define _OSGGRABFOREGROUND_H_

#include <OpenSG/OSGGrabForegroundBase.h>

OSG_BEGIN_NAMESPACE

class GrabForeground : public GrabForegroundBase
{
  private:
    typedef GrabForegroundBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    virtual void draw(DrawActionBase *action, Viewport *port);

  protected:
    /// Switches active off: every instance copies this prototype.
    GrabForeground(void);
    GrabForeground(const GrabForeground &source);
    virtual ~GrabForeground(void);

  private:
    friend class FieldContainer;
    friend class GrabForegroundBase;

    static void initMethod(void);

    void operator=(const GrabForeground &source);
};

typedef GrabForeground *GrabForegroundP;

OSG_END_NAMESPACE

#endif
