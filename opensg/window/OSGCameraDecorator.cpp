#include <OpenSG/OSGCameraDecorator.h>

#include <OpenSG/OSGNode.h>

OSG_BEGIN_NAMESPACE

CameraDecorator::CameraDecorator(void) : Inherited()
{
}

CameraDecorator::CameraDecorator(const CameraDecorator &source) :
    Inherited(source)
{
}

CameraDecorator::~CameraDecorator(void)
{
}

void CameraDecorator::initMethod(void)
{
}

void CameraDecorator::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void CameraDecorator::dump(UInt32, const BitVector) const
{
    SLOG << "Dump CameraDecorator NI" << std::endl;
}

Camera *CameraDecorator::decoratee(void) const
{
    return getDecoratee().getCPtr();
}

void CameraDecorator::getProjection(Matrix &result, UInt32 width,
                                    UInt32 height)
{
    if(decoratee() == NULL)
    {
        FWARNING(("CameraDecorator::getProjection: no decoratee!\n"));
        result.setIdentity();
        return;
    }

    decoratee()->getProjection(result, width, height);
}

void CameraDecorator::getProjectionTranslation(Matrix &result, UInt32 width,
                                               UInt32 height)
{
    if(decoratee() == NULL)
    {
        FWARNING(("CameraDecorator::getProjectionTranslation: no "
                  "decoratee!\n"));
        result.setIdentity();
        return;
    }

    decoratee()->getProjectionTranslation(result, width, height);
}

void CameraDecorator::getViewing(Matrix &result, UInt32 width, UInt32 height)
{
    if(decoratee() == NULL)
    {
        FWARNING(("CameraDecorator::getViewing: no decoratee!\n"));
        result.setIdentity();
        return;
    }

    decoratee()->getViewing(result, width, height);
}

void CameraDecorator::draw(DrawAction *action, const Viewport &port)
{
    if(decoratee() == NULL)
    {
        FWARNING(("CameraDecorator::draw: no decoratee!\n"));
        return;
    }

    decoratee()->draw(action, port);
}

// --- the decoratee's fields ------------------------------------------------

SFNodePtr *CameraDecorator::getSFBeacon(void)
{
    return decoratee() != NULL ? decoratee()->getSFBeacon()
                               : Inherited::getSFBeacon();
}

const NodePtr &CameraDecorator::getBeacon(void) const
{
    return decoratee() != NULL
               ? static_cast<const Camera *>(decoratee())->getBeacon()
               : Inherited::getBeacon();
}

NodePtr &CameraDecorator::getBeacon(void)
{
    return decoratee() != NULL ? decoratee()->getBeacon()
                               : Inherited::getBeacon();
}

void CameraDecorator::setBeacon(const NodePtr &value)
{
    if(decoratee() == NULL)
    {
        Inherited::setBeacon(value);
        return;
    }

    beginEditCP(getDecoratee(), Camera::BeaconFieldMask);
    decoratee()->setBeacon(value);
    endEditCP(getDecoratee(), Camera::BeaconFieldMask);
}

SFReal32 *CameraDecorator::getSFNear(void)
{
    return decoratee() != NULL ? decoratee()->getSFNear()
                               : Inherited::getSFNear();
}

const Real32 &CameraDecorator::getNear(void) const
{
    return decoratee() != NULL
               ? static_cast<const Camera *>(decoratee())->getNear()
               : Inherited::getNear();
}

Real32 &CameraDecorator::getNear(void)
{
    return decoratee() != NULL ? decoratee()->getNear()
                               : Inherited::getNear();
}

void CameraDecorator::setNear(const Real32 &value)
{
    if(decoratee() == NULL)
    {
        Inherited::setNear(value);
        return;
    }

    beginEditCP(getDecoratee(), Camera::NearFieldMask);
    decoratee()->setNear(value);
    endEditCP(getDecoratee(), Camera::NearFieldMask);
}

SFReal32 *CameraDecorator::getSFFar(void)
{
    return decoratee() != NULL ? decoratee()->getSFFar()
                               : Inherited::getSFFar();
}

const Real32 &CameraDecorator::getFar(void) const
{
    return decoratee() != NULL
               ? static_cast<const Camera *>(decoratee())->getFar()
               : Inherited::getFar();
}

Real32 &CameraDecorator::getFar(void)
{
    return decoratee() != NULL ? decoratee()->getFar() : Inherited::getFar();
}

void CameraDecorator::setFar(const Real32 &value)
{
    if(decoratee() == NULL)
    {
        Inherited::setFar(value);
        return;
    }

    beginEditCP(getDecoratee(), Camera::FarFieldMask);
    decoratee()->setFar(value);
    endEditCP(getDecoratee(), Camera::FarFieldMask);
}

OSG_END_NAMESPACE
