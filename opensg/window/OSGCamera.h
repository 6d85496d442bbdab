/// A camera turns a viewport's pixel size into the projection and viewing
/// matrices of a pass. It sits at the origin of its beacon node's
/// coordinate system and looks down that system's -z axis.
///
/// Matrices multiply column vectors: projection x projection-translation x
/// viewing takes world points to clip space.
#ifndef _OSGCAMERA_H_
#define _OSGCAMERA_H_

#include <OpenSG/OSGCameraBase.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGFrustumVolume.h>
#include <OpenSG/OSGLine.h>
#include <OpenSG/OSGMatrix.h>

OSG_BEGIN_NAMESPACE

class DrawActionBase;
class DrawAction;
class Viewport;

class Camera : public CameraBase
{
  private:
    typedef CameraBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    /// Loads projection x projection-translation into GL_PROJECTION and the
    /// viewing matrix into GL_MODELVIEW, for the port's pixel size.
    virtual void setup(DrawActionBase *action, const Viewport &port);
    /// Only the projection part of setup.
    virtual void setupProjection(DrawActionBase *action, const Viewport &port);
    /// Nothing.
    virtual void draw(DrawAction *action, const Viewport &port);

    /// No projection of its own: a fatal log line and abort. Every camera
    /// class overrides it.
    virtual void getProjection(Matrix &result, UInt32 width, UInt32 height);
    /// Identity.
    virtual void getProjectionTranslation(Matrix &result, UInt32 width,
                                          UInt32 height);
    /// World to eye: the inverse of the beacon's to-world matrix. Without a
    /// beacon it warns and leaves result as it was.
    virtual void getViewing(Matrix &result, UInt32 width, UInt32 height);

    /// The planes of projection x projection-translation x viewing.
    virtual void getFrustum(FrustumVolume &result, const Viewport &port);
    virtual void getFrustum(FrustumVolume &result, UInt32 width, UInt32 height);
    /// Projection x projection-translation x viewing for the port.
    virtual void getWorldToScreen(Matrix &result, const Viewport &port);
    /// Identity (tile decorators change it).
    virtual void getDecoration(Matrix &result, UInt32 width, UInt32 height);

    /// The picking ray through pixel (x, y) of the port's window, y counted
    /// from the window's top: from the near plane away from the eye, in
    /// world space. False for an empty port or a singular camera; t, if
    /// given, receives the distance to the far plane along the ray.
    bool calcViewRay(Line &line, Int32 x, Int32 y, const Viewport &port,
                     Real32 *t = NULL);

  protected:
    Camera(void);
    Camera(const Camera &source);
    virtual ~Camera(void);

  private:
    friend class FieldContainer;
    friend class CameraBase;

    static void initMethod(void);

    void operator=(const Camera &source);
};

typedef Camera *CameraP;

OSG_END_NAMESPACE

#endif
