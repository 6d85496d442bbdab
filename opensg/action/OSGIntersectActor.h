/// IntersectActor: the ray-picking actor's state (ray, scale factor and the
/// nearest hit). Registrations go through IntersectActorBase.
#ifndef _OSGINTERSECTACTOR_H_
#define _OSGINTERSECTACTOR_H_

#include <OpenSG/OSGIntersectActorBase.h>
#include <OpenSG/OSGLine.h>

OSG_BEGIN_NAMESPACE

class IntersectActor : public IntersectActorBase
{
  public:
    static IntersectActor *create(void);

    virtual ~IntersectActor(void);

    const Line &getRay(void) const { return _ray; }
    void        setRay(const Line &ray) { _ray = ray; }

    Real32 getMaxDistance(void) const { return _maxDistance; }
    void   setMaxDistance(Real32 maxDistance) { _maxDistance = maxDistance; }

    /// Distances found in a transformed system are multiplied by it.
    Real32 getScaleFactor(void) const { return _scaleFactor; }
    void   setScaleFactor(Real32 scaleFactor) { _scaleFactor = scaleFactor; }

    bool    getHit(void) const { return _hit; }
    Real32  getHitDist(void) const { return _hitDist; }
    NodePtr getHitObject(void) const { return _hitObject; }
    Int32   getHitTriangle(void) const { return _hitTriangle; }
    const Vec3f &getHitNormal(void) const { return _hitNormal; }

    /// Keeps the nearest hit within the maximum distance.
    void setHit(Real32 hitDist, NodePtr obj, Int32 triIndex, Vec3f &normal);
    /// Clears the hit.
    void reset(void);

    // Hooks of the actor protocol; this actor keeps plain state.
    void setupChildrenPriorities(void) {}
    void beginEditState(void) {}
    void endEditState(void) {}

  protected:
    IntersectActor(void);

  private:
    Line    _ray;
    Real32  _maxDistance;
    Real32  _scaleFactor;
    bool    _hit;
    Real32  _hitDist;
    NodePtr _hitObject;
    Int32   _hitTriangle;
    Vec3f   _hitNormal;
};

OSG_END_NAMESPACE

#endif
