#include <OpenSG/OSGCamera.h>

#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGViewport.h>
#include <OpenSG/OSGWindow.h>

OSG_BEGIN_NAMESPACE

Camera::Camera(void) : Inherited()
{
}

Camera::Camera(const Camera &source) : Inherited(source)
{
}

Camera::~Camera(void)
{
}

void Camera::initMethod(void)
{
}

void Camera::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void Camera::dump(UInt32, const BitVector) const
{
    SLOG << "Dump Camera NI" << std::endl;
}

void Camera::setup(DrawActionBase *action, const Viewport &port)
{
    setupProjection(action, port);

    Matrix viewing;
    getViewing(viewing, port.getPixelWidth(), port.getPixelHeight());

    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixf(viewing.getValues());
}

void Camera::setupProjection(DrawActionBase *, const Viewport &port)
{
    Matrix projection, translation;

    getProjection(projection, port.getPixelWidth(), port.getPixelHeight());
    getProjectionTranslation(translation, port.getPixelWidth(),
                             port.getPixelHeight());
    projection.mult(translation);

    glMatrixMode(GL_PROJECTION);
    glLoadMatrixf(projection.getValues());
    glMatrixMode(GL_MODELVIEW);
}

void Camera::draw(DrawAction *, const Viewport &)
{
}

// A camera class without a projection of its own is a programming error;
// identity keeps whatever draws with it from going haywire.
void Camera::getProjection(Matrix &result, UInt32, UInt32)
{
    SFATAL << "Camera::getProjection: NIY" << std::endl;
    result.setIdentity();
}

void Camera::getProjectionTranslation(Matrix &result, UInt32, UInt32)
{
    result.setIdentity();
}

void Camera::getViewing(Matrix &result, UInt32, UInt32)
{
    if(getBeacon() == NullFC)
    {
        SWARNING << "Camera::setup: no beacon!" << std::endl;
        return;
    }

    getBeacon()->getToWorld(result);
    result.invert();
}

void Camera::getFrustum(FrustumVolume &result, const Viewport &port)
{
    getFrustum(result, port.getPixelWidth(), port.getPixelHeight());
}

void Camera::getFrustum(FrustumVolume &result, UInt32 width, UInt32 height)
{
    Matrix projection, translation, viewing;

    getProjection(projection, width, height);
    getProjectionTranslation(translation, width, height);
    getViewing(viewing, width, height);

    projection.mult(translation);
    projection.mult(viewing);

    result.setPlanes(projection);
}

void Camera::getWorldToScreen(Matrix &result, const Viewport &port)
{
    Matrix translation, viewing;

    getProjection(result, port.getPixelWidth(), port.getPixelHeight());
    getProjectionTranslation(translation, port.getPixelWidth(),
                             port.getPixelHeight());
    getViewing(viewing, port.getPixelWidth(), port.getPixelHeight());

    result.mult(translation);
    result.mult(viewing);
}

void Camera::getDecoration(Matrix &result, UInt32, UInt32)
{
    result.setIdentity();
}

// x runs from the window's left edge, y from its top edge, in pixels: the
// ray goes through that point of the window from the near to the far plane.
bool Camera::calcViewRay(Line &line, Int32 x, Int32 y, const Viewport &port,
                         Real32 *t)
{
    // y is counted from the window's top: without the window there is no
    // way to turn it round.
    if(port.getParent() == NullFC)
    {
        SWARNING << "Camera::calcViewRay: viewport has no parent window!"
                 << std::endl;
        return false;
    }

    const Int32 width  = port.getPixelWidth();
    const Int32 height = port.getPixelHeight();

    if(width <= 0 || height <= 0)
        return false;

    Matrix worldToClip, clipToWorld;
    getWorldToScreen(worldToClip, port);

    if(!worldToClip.inverse(clipToWorld))
        return false;

    const Real32 fromBottom =
        Real32(port.getParent()->getHeight()) - Real32(y);

    const Real32 cx =
        (Real32(x) - Real32(port.getPixelLeft())) / Real32(width) * 2.f - 1.f;
    const Real32 cy =
        (fromBottom - Real32(port.getPixelBottom())) / Real32(height) * 2.f -
        1.f;

    Pnt3f from, at;
    clipToWorld.multFull(Pnt3f(cx, cy, -1.f), from);
    clipToWorld.multFull(Pnt3f(cx, cy, 1.f), at);

    const Vec3f dir = at - from;

    if(t != NULL)
        *t = dir.length();

    line.setValue(from, dir);

    return true;
}

OSG_END_NAMESPACE
