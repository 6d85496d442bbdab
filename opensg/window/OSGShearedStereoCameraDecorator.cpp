#include <OpenSG/OSGShearedStereoCameraDecorator.h>

#include <OpenSG/OSGBaseFunctions.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGPerspectiveCamera.h>

OSG_BEGIN_NAMESPACE

ShearedStereoCameraDecorator::ShearedStereoCameraDecorator(void) :
    Inherited()
{
}

ShearedStereoCameraDecorator::ShearedStereoCameraDecorator(
    const ShearedStereoCameraDecorator &source) :
    Inherited(source)
{
}

ShearedStereoCameraDecorator::~ShearedStereoCameraDecorator(void)
{
}

void ShearedStereoCameraDecorator::initMethod(void)
{
}

void ShearedStereoCameraDecorator::changed(BitVector whichField,
                                           UInt32    origin)
{
    Inherited::changed(whichField, origin);
}

void ShearedStereoCameraDecorator::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShearedStereoCameraDecorator NI" << std::endl;
}

// The eye sits at -e on the x axis (e = +sep/2 for the left eye), so the
// scene moves by +e; the window on the near plane moves by the same amount
// scaled to the near plane, which keeps points at zeroParallaxDistance on
// the same spot in both images. overlap < 1 pulls the two images apart by
// that share of their half width.
void ShearedStereoCameraDecorator::getProjection(Matrix &result, UInt32 width,
                                                 UInt32 height)
{
    if(width == 0 || height == 0)
    {
        result.setIdentity();
        return;
    }

    PerspectiveCameraPtr cam = PerspectiveCameraPtr::dcast(getDecoratee());

    if(cam == NullFC)
    {
        FFATAL(("ShearedStereoCameraDecorator::getProjection: can only "
                "decorate PerspectiveCameras!\n"));
        result.setIdentity();
        return;
    }

    if(getEyeSeparation() == 0.f)
    {
        cam->getProjection(result, width, height);
        return;
    }

    const Real32 rNear  = cam->getNear();
    const Real32 rFar   = cam->getFar();
    const Real32 fov    = cam->getFov();
    const Real32 aspect = Real32(width) / Real32(height) * cam->getAspect();

    // The same checks and warnings as the plain perspective projection.
    if(!MatrixPerspective(result, fov / 2.f, aspect, rNear, rFar))
        return;

    const Real32 zpd = getZeroParallaxDistance() != 0.f
                           ? getZeroParallaxDistance()
                           : 1.f;
    const Real32 e = -getEyeSeparation() * ((getLeftEye() ? 0.f : 1.f) - .5f);

    const Real32 top   = osgtan(fov / 2.f) * rNear;
    Real32       right = top * aspect;
    Real32       left  = -right;

    const Real32 shift = e / zpd * rNear -
                         (e > 0.f ? 1.f : -1.f) * (1.f - getOverlap()) * right;

    left += shift;
    right += shift;

    MatrixFrustum(result, left, right, -top, top, rNear, rFar);

    Matrix eye;
    eye.setTranslate(e, 0.f, 0.f);
    result.mult(eye);
}

void ShearedStereoCameraDecorator::getDecoration(Matrix &result, UInt32 width,
                                                 UInt32 height)
{
    if(getDecoratee() == NullFC)
    {
        result.setIdentity();
        return;
    }

    getDecoratee()->getDecoration(result, width, height);
}

OSG_END_NAMESPACE
