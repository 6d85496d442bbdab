/// A symmetric perspective projection. fov is the full field of view in
/// radians (a value above pi is taken as degrees), vertical by default;
/// aspect is the aspect ratio of one pixel and multiplies the viewport's.
#ifndef _OSGPERSPECTIVECAMERA_H_
#define _OSGPERSPECTIVECAMERA_H_

#include <OpenSG/OSGPerspectiveCameraBase.h>

OSG_BEGIN_NAMESPACE

class PerspectiveCamera : public PerspectiveCameraBase
{
  private:
    typedef PerspectiveCameraBase Inherited;

  public:
    /// Which extent fov describes.
    enum
    {
        FOV_vertical   = 0,
        FOV_horizontal = 1,
        FOV_smaller    = 2
    };

    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    /// Nothing.
    virtual void draw(DrawAction *action, const Viewport &port);

    /// The frustum matrix for the viewport's size; identity for an empty
    /// size, a negative fov, an unknown fovMode or bad near/far/fov/aspect
    /// (these warn).
    virtual void getProjection(Matrix &result, UInt32 width, UInt32 height);

  protected:
    PerspectiveCamera(void);
    PerspectiveCamera(const PerspectiveCamera &source);
    virtual ~PerspectiveCamera(void);

  private:
    friend class FieldContainer;
    friend class PerspectiveCameraBase;

    static void initMethod(void);

    void operator=(const PerspectiveCamera &source);
};

typedef PerspectiveCamera *PerspectiveCameraP;

OSG_END_NAMESPACE

#endif
