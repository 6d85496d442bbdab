/// A fly navigator that keeps to the ground and out of walls: moves are
/// horizontal (perpendicular to up), the eye stays groundDistance + height
/// above the ground node, and a move that would come closer to the world
/// than fatness + the wall distance is refused.
#ifndef _OSGWALKNAVIGATOR_H_
#define _OSGWALKNAVIGATOR_H_

#include <OpenSG/OSGFlyNavigator.h>
#include <OpenSG/OSGNode.h>

OSG_BEGIN_NAMESPACE

class IntersectAction;

class WalkNavigator : public FlyNavigator
{
  public:
    WalkNavigator(void);
    virtual ~WalkNavigator(void);

    void setGround(const NodePtr &new_ground);
    void setWorld(const NodePtr &new_world);
    void setGroundDistance(Real32 groundDistance);
    void setMinWallDistance(Real32 wallDistance);
    void setPersonDimensions(Real32 height, Real32 width, Real32 fatness);

    NodePtr getGround(void) const { return _ground; }
    NodePtr getWorld(void) const { return _world; }

    /// As FlyNavigator's, horizontally, with the ground and wall tests.
    /// Returns step, or 0 for a refused move.
    virtual Real32 forward(Real32 step);
    virtual Real32 right(Real32 step);

  private:
    Real32 move(const Vec3f &direction, Real32 step);

    NodePtr          _ground;
    NodePtr          _world;
    Real32           _groundDistance;
    Real32           _wallDistance;
    Real32           _height;
    Real32           _width;
    Real32           _fatness;
    IntersectAction *_act;

    WalkNavigator(const WalkNavigator &);
    void operator=(const WalkNavigator &);
};

OSG_END_NAMESPACE

#endif
