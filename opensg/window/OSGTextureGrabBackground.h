/// Grabs what the framebuffer holds in the viewport's rectangle into a
/// texture, then clears like SolidBackground. The texture image is set to
/// the viewport's size when it has at most one pixel per edge, or (with
/// autoResize) when its size is off by more than a pixel. Display-filter
/// groups use it to pick up the rendered image.
#ifndef _OSGTEXTUREGRABBACKGROUND_H_
#define _OSGTEXTUREGRABBACKGROUND_H_

#include <OpenSG/OSGTextureGrabBackgroundBase.h>

OSG_BEGIN_NAMESPACE

class TextureGrabBackground : public TextureGrabBackgroundBase
{
  private:
    typedef TextureGrabBackgroundBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    virtual void clear(DrawActionBase *action, Viewport *port);

  protected:
    TextureGrabBackground(void);
    TextureGrabBackground(const TextureGrabBackground &source);
    virtual ~TextureGrabBackground(void);

  private:
    friend class FieldContainer;
    friend class TextureGrabBackgroundBase;

    static void initMethod(void);

    void operator=(const TextureGrabBackground &source);
};

typedef TextureGrabBackground *TextureGrabBackgroundP;

OSG_END_NAMESPACE

#endif
