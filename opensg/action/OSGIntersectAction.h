/// IntersectAction: ray picking. Nodes whose volume the ray misses are left
/// out; geometries report hits with setHit, the nearest one is kept.
#ifndef _OSGINTERSECTACTION_H_
#define _OSGINTERSECTACTION_H_

#include <OpenSG/OSGAction.h>
#include <OpenSG/OSGLine.h>

OSG_BEGIN_NAMESPACE

class IntersectAction : public Action
{
  public:
    static IntersectAction *create(void);
    static IntersectAction *create(const Line &line, const Real32 maxdist = Inf);
    static void             setPrototype(IntersectAction *proto);
    static IntersectAction *getPrototype(void);

    static void registerEnterDefault(const FieldContainerType &type, const Functor &func);
    static void registerLeaveDefault(const FieldContainerType &type, const Functor &func);

    virtual ~IntersectAction(void);

    void setLine(const Line &line, const Real32 maxdist = Inf);

    const Line &getLine(void) const { return _line; }
    Real32      getMaxDist(void) const { return _maxdist; }

    bool didHit(void) const { return _hit; }

    /// -1 without a hit, else the distance along the line.
    Real32  getHitT(void) const { return _hit ? _hitT : -1.f; }
    Pnt3f   getHitPoint(void) const;
    Vec3f   getHitNormal(void) const;
    NodePtr getHitObject(void) const;
    Int32   getHitTriangle(void) const;

    /// Skip when the volume interval [enter, leave] cannot hold a nearer hit.
    ResultE setEnterLeave(Real32 enter, Real32 leave);
    /// Records a hit unless t is negative, farther than the hit so far or
    /// beyond the maximum distance.
    void setHit(Real32 t, NodePtr obj, Int32 triIndex, Vec3f &normal);

    /// Hit distance and maximum distance are multiplied by s (a transform
    /// changed the coordinate system).
    void scale(Real32 s);

  protected:
    IntersectAction(void);
    IntersectAction(const IntersectAction &source);

    virtual ResultE start(void);

    virtual std::vector<Functor> *getDefaultEnterFunctors(void);
    virtual std::vector<Functor> *getDefaultLeaveFunctors(void);

  private:
    static std::vector<Functor> *_defaultEnterFunctors;
    static std::vector<Functor> *_defaultLeaveFunctors;
    static IntersectAction *_prototype;

    Line    _line;
    Real32  _maxdist;
    bool    _hit;
    Real32  _enterT;
    Real32  _leaveT;
    Real32  _hitT;
    NodePtr _hitObject;
    Int32   _hitTriangle;
    Vec3f   _hitNormal;

    void operator=(const IntersectAction &source);
};

typedef IntersectAction *IntersectActionP;

OSG_END_NAMESPACE

#endif
