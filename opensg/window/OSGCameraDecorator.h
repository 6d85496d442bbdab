/// A camera that changes another camera's matrices (stereo, tiles, ...).
/// Whatever a decorator does not change it forwards to its decoratee.
///
/// Reached through a CameraDecorator (or derived) pointer, the beacon, near
/// and far accessors forward to the decoratee as well; through a plain
/// Camera pointer they are the decorator's own, unused fields (null, 0, 0),
/// so code reading near/far of "a camera" unwraps decorators first.
#ifndef _OSGCAMERADECORATOR_H_
#define _OSGCAMERADECORATOR_H_

#include <OpenSG/OSGCameraDecoratorBase.h>

OSG_BEGIN_NAMESPACE

class CameraDecorator : public CameraDecoratorBase
{
  private:
    typedef CameraDecoratorBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    /// Forwarded to the decoratee; without one: a warning and identity.
    virtual void getProjection(Matrix &result, UInt32 width, UInt32 height);
    virtual void getProjectionTranslation(Matrix &result, UInt32 width,
                                          UInt32 height);
    virtual void getViewing(Matrix &result, UInt32 width, UInt32 height);
    virtual void draw(DrawAction *action, const Viewport &port);

    // --- the decoratee's fields (hiding the decorator's own) -----------------
    // Without a decoratee they fall back to the decorator's own fields. The
    // setters edit the decoratee.

    SFNodePtr       *getSFBeacon(void);
    const NodePtr   &getBeacon(void) const;
    NodePtr         &getBeacon(void);
    void             setBeacon(const NodePtr &value);

    SFReal32        *getSFNear(void);
    const Real32    &getNear(void) const;
    Real32          &getNear(void);
    void             setNear(const Real32 &value);

    SFReal32        *getSFFar(void);
    const Real32    &getFar(void) const;
    Real32          &getFar(void);
    void             setFar(const Real32 &value);

  protected:
    CameraDecorator(void);
    CameraDecorator(const CameraDecorator &source);
    virtual ~CameraDecorator(void);

    /// The decoratee as a raw pointer (NULL when unset).
    Camera *decoratee(void) const;

  private:
    friend class FieldContainer;
    friend class CameraDecoratorBase;

    static void initMethod(void);

    void operator=(const CameraDecorator &source);
};

typedef CameraDecorator *CameraDecoratorP;

OSG_END_NAMESPACE

#endif
