#include <OpenSG/OSGPointLight.h>
#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGLightChunk.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGRenderAction.h>

OSG_BEGIN_NAMESPACE

StatElemDesc<StatIntElem> PointLight::statNPointLights(
    "NPointLights", "number of point light sources");

PointLight::PointLight(void) : Inherited()
{
}

PointLight::PointLight(const PointLight &source) : Inherited(source)
{
}

PointLight::~PointLight(void)
{
}

void PointLight::initMethod(void)
{
    typedef Action::ResultE R;

    DrawAction::registerEnterDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, PointLightPtr, CNodePtr, Action *>(
            &PointLight::drawEnter));
    DrawAction::registerLeaveDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, PointLightPtr, CNodePtr, Action *>(
            &PointLight::drawLeave));

    RenderAction::registerEnterDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, PointLightPtr, CNodePtr, Action *>(
            &PointLight::renderEnter));
    RenderAction::registerLeaveDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, PointLightPtr, CNodePtr, Action *>(
            &PointLight::renderLeave));
}

void PointLight::makeChunk(void)
{
    Inherited::makeChunk();

    const Pnt3f &pos = getPosition();
    _pChunk->setPosition(Vec4f(pos[0], pos[1], pos[2], 1.f));
    _pChunk->setConstantAttenuation(getConstantAttenuation());
    _pChunk->setLinearAttenuation(getLinearAttenuation());
    _pChunk->setQuadraticAttenuation(getQuadraticAttenuation());
}

void PointLight::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void PointLight::dump(UInt32 uiIndent, const BitVector bvFlags) const
{
    SLOG << "Dump PointLight NI" << std::endl;
}

Action::ResultE PointLight::drawEnter(Action *action)
{
    return Light::drawEnter(action);
}

Action::ResultE PointLight::drawLeave(Action *action)
{
    return Light::drawLeave(action);
}

Action::ResultE PointLight::renderEnter(Action *action)
{
    if(!getOn())
        return Action::Continue;

    DrawActionBase *da = dynamic_cast<DrawActionBase *>(action);
    if(da != NULL)
        da->getStatistics()->getElem(statNPointLights)->inc();

    return Light::renderEnter(action);
}

Action::ResultE PointLight::renderLeave(Action *action)
{
    return Light::renderLeave(action);
}

OSG_END_NAMESPACE
