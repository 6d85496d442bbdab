/// Draws 8-bit images over the viewport with glDrawPixels, alpha-blended,
/// without depth test. A position with a coordinate of 1 or more is in
/// pixels, otherwise in fractions of the viewport.
#ifndef _OSGIMAGEFOREGROUND_H_
#define _OSGIMAGEFOREGROUND_H_

#include <OpenSG/OSGImageForegroundBase.h>

OSG_BEGIN_NAMESPACE

class ImageForeground : public ImageForegroundBase
{
  private:
    typedef ImageForegroundBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    virtual void draw(DrawActionBase *action, Viewport *port);

    /// Appends to both lists.
    void addImage(ImagePtr image, Pnt2f position);

  protected:
    ImageForeground(void);
    ImageForeground(const ImageForeground &source);
    virtual ~ImageForeground(void);

  private:
    friend class FieldContainer;
    friend class ImageForegroundBase;

    static void initMethod(void);

    void operator=(const ImageForeground &source);
};

typedef ImageForeground *ImageForegroundP;

OSG_END_NAMESPACE

#endif
