#include <OpenSG/OSGWalkNavigator.h>

#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGLine.h>

OSG_BEGIN_NAMESPACE

WalkNavigator::WalkNavigator(void) :
    FlyNavigator(),
    _ground(NullFC),
    _world(NullFC),
    _groundDistance(0.75f),
    _wallDistance(0.1f),
    _height(0.85f),
    _width(0.5f),
    _fatness(0.5f),
    _act(IntersectAction::create())
{
}

WalkNavigator::~WalkNavigator(void)
{
    delete _act;
}

void WalkNavigator::setGround(const NodePtr &new_ground)
{
    _ground = new_ground;
}

void WalkNavigator::setWorld(const NodePtr &new_world)
{
    _world = new_world;
}

void WalkNavigator::setGroundDistance(Real32 groundDistance)
{
    _groundDistance = groundDistance;
}

void WalkNavigator::setMinWallDistance(Real32 wallDistance)
{
    _wallDistance = wallDistance;
}

void WalkNavigator::setPersonDimensions(Real32 height, Real32 width, Real32 fatness)
{
    _height  = height;
    _width   = width;
    _fatness = fatness;
}

// direction is the move's unnormalised direction; its part along up is
// dropped so that the walker stays level.
Real32 WalkNavigator::move(const Vec3f &direction, Real32 step)
{
    Vec3f up = _vUp;
    up.normalize();

    Vec3f horizontal = direction - up * direction.dot(up);
    if(horizontal.length() < Eps)
        return 0.f;
    horizontal.normalize();

    const Vec3f delta = horizontal * step;
    Pnt3f       from  = _rFrom + delta;
    Pnt3f       at    = _rAt + delta;

    if(_ground != NullFC)
    {
        _act->setLine(Line(from, -up));
        _act->apply(_ground);

        if(_act->didHit())
        {
            const Real32 t = _act->getHitT();
            if(t < _height)
                return 0.f;

            const Vec3f lift = up * (_groundDistance - t + _height);
            from += lift;
            at += lift;
        }
    }

    if(_world != NullFC && osgabs(step) > Eps)
    {
        Vec3f heading = delta;
        heading.normalize();

        _act->setLine(Line(from, heading));
        _act->apply(_world);

        if(_act->didHit() && _act->getHitT() <= _fatness + _wallDistance)
            return 0.f;
    }

    _rFrom = from;
    _rAt   = at;
    return step;
}

Real32 WalkNavigator::forward(Real32 step)
{
    Vec3f back = _rFrom - _rAt;
    back.normalize();
    return move(back, step);
}

Real32 WalkNavigator::right(Real32 step)
{
    Vec3f side = (_rFrom - _rAt).cross(_vUp);
    side.normalize();
    return move(side, step);
}

OSG_END_NAMESPACE
