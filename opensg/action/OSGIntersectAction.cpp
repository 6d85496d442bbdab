#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGNode.h>

OSG_BEGIN_NAMESPACE

std::vector<Action::Functor> *IntersectAction::_defaultEnterFunctors = NULL;
std::vector<Action::Functor> *IntersectAction::_defaultLeaveFunctors = NULL;
IntersectAction              *IntersectAction::_prototype            = NULL;

namespace
{

Action::Functor enterPad(void)
{
    return osgTypedFunctionFunctor2CPtrRef<Action::ResultE, CNodePtr, Action *>(
        &Action::_defaultEnterFunction);
}

Action::Functor leavePad(void)
{
    return osgTypedFunctionFunctor2CPtrRef<Action::ResultE, CNodePtr, Action *>(
        &Action::_defaultLeaveFunction);
}

} // namespace

void IntersectAction::registerEnterDefault(const FieldContainerType &type, const Functor &func)
{
    registerDefault(_defaultEnterFunctors, type, func, enterPad());
}

void IntersectAction::registerLeaveDefault(const FieldContainerType &type, const Functor &func)
{
    registerDefault(_defaultLeaveFunctors, type, func, leavePad());
}

std::vector<Action::Functor> *IntersectAction::getDefaultEnterFunctors(void)
{
    return _defaultEnterFunctors;
}

std::vector<Action::Functor> *IntersectAction::getDefaultLeaveFunctors(void)
{
    return _defaultLeaveFunctors;
}

IntersectAction::IntersectAction(void)
    : Action(), _line(), _maxdist(0.f), _hit(false), _enterT(-1.f), _leaveT(-1.f), _hitT(-1.f),
      _hitObject(), _hitTriangle(-1), _hitNormal()
{
    // the base took Action's tables; this class has its own
    _enterFunctors.clear();
    _leaveFunctors.clear();
    if(_defaultEnterFunctors != NULL)
        _enterFunctors = *_defaultEnterFunctors;
    if(_defaultLeaveFunctors != NULL)
        _leaveFunctors = *_defaultLeaveFunctors;
}

IntersectAction::IntersectAction(const IntersectAction &source)
    : Action(source), _line(source._line), _maxdist(source._maxdist), _hit(source._hit),
      _enterT(source._enterT), _leaveT(source._leaveT), _hitT(source._hitT),
      _hitObject(source._hitObject), _hitTriangle(source._hitTriangle),
      _hitNormal(source._hitNormal)
{
}

IntersectAction::~IntersectAction(void)
{
}

IntersectAction *IntersectAction::create(void)
{
    if(_prototype != NULL)
        return new IntersectAction(*_prototype);
    return new IntersectAction;
}

IntersectAction *IntersectAction::create(const Line &line, const Real32 maxdist)
{
    IntersectAction *act = create();
    act->setLine(line, maxdist);
    return act;
}

void IntersectAction::setPrototype(IntersectAction *proto)
{
    _prototype = proto;
}

IntersectAction *IntersectAction::getPrototype(void)
{
    return _prototype;
}

void IntersectAction::setLine(const Line &line, const Real32 maxdist)
{
    _line    = line;
    _maxdist = maxdist;
}

Pnt3f IntersectAction::getHitPoint(void) const
{
    if(!_hit)
        return Pnt3f(0.f, 0.f, 0.f);
    return _line.getPosition() + _line.getDirection() * _hitT;
}

Vec3f IntersectAction::getHitNormal(void) const
{
    return _hit ? _hitNormal : Vec3f(0.f, 0.f, 0.f);
}

NodePtr IntersectAction::getHitObject(void) const
{
    return _hit ? _hitObject : NodePtr();
}

Int32 IntersectAction::getHitTriangle(void) const
{
    return _hit ? _hitTriangle : -1;
}

Action::ResultE IntersectAction::setEnterLeave(Real32 enter, Real32 leave)
{
    if(leave < 0.f || enter > _maxdist || (_hit && enter > _hitT))
        return Skip;

    _enterT = enter;
    _leaveT = leave;
    return Continue;
}

void IntersectAction::setHit(Real32 t, NodePtr obj, Int32 triIndex, Vec3f &normal)
{
    if(t < 0.f || t > _hitT || t > _maxdist)
        return;

    _hitT        = t;
    _hitObject   = obj;
    _hitTriangle = triIndex;
    _hitNormal   = normal;
    _hit         = true;
}

void IntersectAction::scale(Real32 s)
{
    _hitT    *= s;
    _maxdist *= s;
}

Action::ResultE IntersectAction::start(void)
{
    _hit         = false;
    _hitT        = Inf;
    _hitObject   = NullFC;
    _hitTriangle = -1;
    return Continue;
}

OSG_END_NAMESPACE
