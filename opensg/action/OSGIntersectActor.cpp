#include <OpenSG/OSGIntersectActor.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGNodeCore.h>

OSG_BEGIN_NAMESPACE

ActorBase::ActorBase(void)
{
}

ActorBase::~ActorBase(void)
{
}

BasicActorBase::BasicActorBase(void) : ActorBase()
{
}

BasicActorBase::~BasicActorBase(void)
{
}

// --- IntersectActorBase ---------------------------------------------------------------

IntersectActorBase::FunctorStore *IntersectActorBase::_classEnter = NULL;
IntersectActorBase::FunctorStore *IntersectActorBase::_classLeave = NULL;

IntersectActorBase::IntersectActorBase(void)
    : BasicActorBase(), _enter(), _leave(), _defaultEnter(), _defaultLeave()
{
}

IntersectActorBase::~IntersectActorBase(void)
{
}

void IntersectActorBase::regClassEnter(const Functor &refFunc, const FieldContainerType &refType)
{
    if(_classEnter == NULL)
        _classEnter = new FunctorStore;
    (*_classEnter)[refType.getId()] = refFunc;
}

void IntersectActorBase::regClassLeave(const Functor &refFunc, const FieldContainerType &refType)
{
    if(_classLeave == NULL)
        _classLeave = new FunctorStore;
    (*_classLeave)[refType.getId()] = refFunc;
}

bool IntersectActorBase::hasClassEnter(UInt32 typeId)
{
    return _classEnter != NULL && _classEnter->count(typeId) != 0;
}

bool IntersectActorBase::hasClassLeave(UInt32 typeId)
{
    return _classLeave != NULL && _classLeave->count(typeId) != 0;
}

void IntersectActorBase::regEnter(const Functor &refFunc, const FieldContainerType &refType)
{
    _enter[refType.getId()] = refFunc;
}

void IntersectActorBase::regLeave(const Functor &refFunc, const FieldContainerType &refType)
{
    _leave[refType.getId()] = refFunc;
}

IntersectActorBase::ResultE IntersectActorBase::call(const FunctorStore &instance,
                                                     const FunctorStore *classwide,
                                                     const Functor &fallback,
                                                     FunctorArgumentType &funcArg)
{
    NodePtr node = funcArg.getNode();
    if(node == NullFC || node->getCore() == NullFC)
        return NewActionTypes::Continue;

    NodeCorePtr core = node->getCore();
    UInt32      id   = core->getType().getId();

    FunctorStore::const_iterator it = instance.find(id);
    if(it != instance.end())
        return it->second.call(core, funcArg);

    if(classwide != NULL)
    {
        it = classwide->find(id);
        if(it != classwide->end())
            return it->second.call(core, funcArg);
    }

    if(fallback.isValid())
        return fallback.call(core, funcArg);

    return NewActionTypes::Continue;
}

IntersectActorBase::ResultE IntersectActorBase::enterNode(FunctorArgumentType &funcArg)
{
    return call(_enter, _classEnter, _defaultEnter, funcArg);
}

IntersectActorBase::ResultE IntersectActorBase::leaveNode(FunctorArgumentType &funcArg)
{
    return call(_leave, _classLeave, _defaultLeave, funcArg);
}

// --- IntersectActor ------------------------------------------------------------------------

IntersectActor *IntersectActor::create(void)
{
    return new IntersectActor;
}

IntersectActor::IntersectActor(void)
    : IntersectActorBase(), _ray(), _maxDistance(Inf), _scaleFactor(1.f), _hit(false),
      _hitDist(Inf), _hitObject(), _hitTriangle(-1), _hitNormal()
{
}

IntersectActor::~IntersectActor(void)
{
}

void IntersectActor::setHit(Real32 hitDist, NodePtr obj, Int32 triIndex, Vec3f &normal)
{
    if(hitDist < 0.f || hitDist > _hitDist || hitDist > _maxDistance)
        return;

    _hit         = true;
    _hitDist     = hitDist;
    _hitObject   = obj;
    _hitTriangle = triIndex;
    _hitNormal   = normal;
}

void IntersectActor::reset(void)
{
    _hit         = false;
    _hitDist     = Inf;
    _hitObject   = NullFC;
    _hitTriangle = -1;
    _hitNormal   = Vec3f(0.f, 0.f, 0.f);
    _scaleFactor = 1.f;
}

OSG_END_NAMESPACE
