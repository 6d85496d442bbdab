#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGFrustumVolume.h>
#include <OpenSG/OSGNode.h>

OSG_BEGIN_NAMESPACE

std::vector<Action::Functor> *DrawAction::_defaultEnterFunctors = NULL;
std::vector<Action::Functor> *DrawAction::_defaultLeaveFunctors = NULL;
DrawAction                   *DrawAction::_prototype            = NULL;

void DrawAction::registerEnterDefault(const FieldContainerType &type, const Functor &func)
{
    registerDefault(_defaultEnterFunctors, type, func,
                    osgTypedFunctionFunctor2CPtrRef<ResultE, CNodePtr, Action *>(
                        &Action::_defaultEnterFunction));
}

void DrawAction::registerLeaveDefault(const FieldContainerType &type, const Functor &func)
{
    registerDefault(_defaultLeaveFunctors, type, func,
                    osgTypedFunctionFunctor2CPtrRef<ResultE, CNodePtr, Action *>(
                        &Action::_defaultLeaveFunction));
}

std::vector<Action::Functor> *DrawAction::getDefaultEnterFunctors(void)
{
    return _defaultEnterFunctors;
}

std::vector<Action::Functor> *DrawAction::getDefaultLeaveFunctors(void)
{
    return _defaultLeaveFunctors;
}

DrawAction::DrawAction(void) : DrawActionBase(), _lightCount(0)
{
    _enterFunctors.clear();
    _leaveFunctors.clear();
    if(_defaultEnterFunctors != NULL)
        _enterFunctors = *_defaultEnterFunctors;
    if(_defaultLeaveFunctors != NULL)
        _leaveFunctors = *_defaultLeaveFunctors;
}

DrawAction::DrawAction(const DrawAction &source)
    : DrawActionBase(source), _lightCount(source._lightCount)
{
}

DrawAction::~DrawAction(void)
{
}

DrawAction *DrawAction::create(void)
{
    if(_prototype != NULL)
        return new DrawAction(*_prototype);
    return new DrawAction;
}

void DrawAction::setPrototype(DrawAction *proto)
{
    _prototype = proto;
}

DrawAction *DrawAction::getPrototype(void)
{
    return _prototype;
}

Action::ResultE DrawAction::start(void)
{
    ResultE res = DrawActionBase::start();
    if(res != Continue)
        return res;

    _lightCount = 0;
    return Continue;
}

bool DrawAction::isVisible(Node *node)
{
    if(!getFrustumCulling())
        return true;
    if(node == NULL)
        return false;

    getStatistics()->getElem(statCullTestedNodes)->inc();

    DynamicVolume vol;
    node->getWorldVolume(vol);

    if(intersect(getFrustum(), vol))
    {
        queueVolume(vol);
        return true;
    }

    getStatistics()->getElem(statCulledNodes)->inc();
    return false;
}

OSG_END_NAMESPACE
