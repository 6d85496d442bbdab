#include <OpenSG/OSGSpotLight.h>
#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGLightChunk.h>
#include <OpenSG/OSGBaseFunctions.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGRenderAction.h>

OSG_BEGIN_NAMESPACE

StatElemDesc<StatIntElem> SpotLight::statNSpotLights(
    "NSpotLights", "number of spot light sources");

SpotLight::SpotLight(void) : Inherited()
{
}

SpotLight::SpotLight(const SpotLight &source) : Inherited(source)
{
}

SpotLight::~SpotLight(void)
{
}

void SpotLight::initMethod(void)
{
    typedef Action::ResultE R;

    DrawAction::registerEnterDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, SpotLightPtr, CNodePtr, Action *>(
            &SpotLight::drawEnter));
    DrawAction::registerLeaveDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, SpotLightPtr, CNodePtr, Action *>(
            &SpotLight::drawLeave));

    RenderAction::registerEnterDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, SpotLightPtr, CNodePtr, Action *>(
            &SpotLight::renderEnter));
    RenderAction::registerLeaveDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, SpotLightPtr, CNodePtr, Action *>(
            &SpotLight::renderLeave));
}

void SpotLight::makeChunk(void)
{
    Inherited::makeChunk();

    _pChunk->setDirection(getDirection());
    _pChunk->setExponent(getSpotExponent());
    _pChunk->setCutoff(osgrad2degree(getSpotCutOff()));
}

void SpotLight::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void SpotLight::dump(UInt32 uiIndent, const BitVector bvFlags) const
{
    SLOG << "Dump SpotLight NI" << std::endl;
}

Action::ResultE SpotLight::drawEnter(Action *action)
{
    return PointLight::drawEnter(action);
}

Action::ResultE SpotLight::drawLeave(Action *action)
{
    return PointLight::drawLeave(action);
}

Action::ResultE SpotLight::renderEnter(Action *action)
{
    if(!getOn())
        return Action::Continue;

    DrawActionBase *da = dynamic_cast<DrawActionBase *>(action);
    if(da != NULL)
        da->getStatistics()->getElem(statNSpotLights)->inc();

    // counted as a point light too
    return PointLight::renderEnter(action);
}

Action::ResultE SpotLight::renderLeave(Action *action)
{
    return PointLight::renderLeave(action);
}

OSG_END_NAMESPACE
