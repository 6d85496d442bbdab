#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGLightChunk.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGRenderAction.h>

OSG_BEGIN_NAMESPACE

StatElemDesc<StatIntElem> DirectionalLight::statNDirectionalLights(
    "NDirectionalLights", "number of directional light sources");

DirectionalLight::DirectionalLight(void) : Inherited()
{
}

DirectionalLight::DirectionalLight(const DirectionalLight &source) : Inherited(source)
{
}

DirectionalLight::~DirectionalLight(void)
{
}

void DirectionalLight::initMethod(void)
{
    typedef Action::ResultE R;

    DrawAction::registerEnterDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, DirectionalLightPtr, CNodePtr, Action *>(
            &DirectionalLight::drawEnter));
    DrawAction::registerLeaveDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, DirectionalLightPtr, CNodePtr, Action *>(
            &DirectionalLight::drawLeave));

    RenderAction::registerEnterDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, DirectionalLightPtr, CNodePtr, Action *>(
            &DirectionalLight::renderEnter));
    RenderAction::registerLeaveDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<R, DirectionalLightPtr, CNodePtr, Action *>(
            &DirectionalLight::renderLeave));
}

void DirectionalLight::makeChunk(void)
{
    Inherited::makeChunk();

    const Vec3f &dir = getDirection();
    _pChunk->setPosition(Vec4f(dir[0], dir[1], dir[2], 0.f));
}

void DirectionalLight::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void DirectionalLight::dump(UInt32 uiIndent, const BitVector bvFlags) const
{
    SLOG << "Dump DirectionalLight NI" << std::endl;
}

Action::ResultE DirectionalLight::drawEnter(Action *action)
{
    return Light::drawEnter(action);
}

Action::ResultE DirectionalLight::drawLeave(Action *action)
{
    return Light::drawLeave(action);
}

Action::ResultE DirectionalLight::renderEnter(Action *action)
{
    if(!getOn())
        return Action::Continue;

    DrawActionBase *da = dynamic_cast<DrawActionBase *>(action);
    if(da != NULL)
        da->getStatistics()->getElem(statNDirectionalLights)->inc();

    return Light::renderEnter(action);
}

Action::ResultE DirectionalLight::renderLeave(Action *action)
{
    return Light::renderLeave(action);
}

OSG_END_NAMESPACE
