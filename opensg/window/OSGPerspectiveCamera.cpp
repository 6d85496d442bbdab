#include <OpenSG/OSGPerspectiveCamera.h>

#include <OpenSG/OSGBaseFunctions.h>
#include <OpenSG/OSGMatrixUtility.h>

OSG_BEGIN_NAMESPACE

PerspectiveCamera::PerspectiveCamera(void) : Inherited()
{
}

PerspectiveCamera::PerspectiveCamera(const PerspectiveCamera &source) :
    Inherited(source)
{
}

PerspectiveCamera::~PerspectiveCamera(void)
{
}

void PerspectiveCamera::initMethod(void)
{
}

void PerspectiveCamera::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void PerspectiveCamera::dump(UInt32, const BitVector) const
{
    SLOG << "Dump PerspectiveCamera NI" << std::endl;
}

void PerspectiveCamera::draw(DrawAction *, const Viewport &)
{
}

void PerspectiveCamera::getProjection(Matrix &result, UInt32 width,
                                      UInt32 height)
{
    Real32 fov = getFov();

    if(fov < 0.f || width == 0 || height == 0)
    {
        result.setIdentity();
        return;
    }

    // Values beyond pi can only be meant as degrees.
    if(fov > Pi)
        fov = osgdegree2rad(fov);

    const Real32 aspect = Real32(width) / Real32(height) * getAspect();

    // The checks (with their warnings) and the vertical case in one go.
    if(!MatrixPerspective(result, fov / 2.f, aspect, getNear(), getFar()))
        return;

    Real32 x = osgtan(fov / 2.f) * getNear();
    Real32 y = x;

    switch(getFovMode())
    {
        case FOV_vertical:
            return;

        case FOV_horizontal:
            y /= aspect;
            break;

        case FOV_smaller:
            if(Real32(width) * getAspect() >= Real32(height))
                x *= aspect;
            else
                y /= aspect;
            break;

        default:
            result.setIdentity();
            return;
    }

    MatrixFrustum(result, -x, x, -y, y, getNear(), getFar());
}

OSG_END_NAMESPACE
