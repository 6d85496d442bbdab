/// A ray: a position and a normalised direction.
#ifndef _OSGLINE_H_
#define _OSGLINE_H_

#include <OpenSG/OSGBaseTypes.h>
#include <OpenSG/OSGVector.h>

#include <ostream>

OSG_BEGIN_NAMESPACE

class BoxVolume;
class SphereVolume;

class Line
{
  public:
    /// Position and direction zero.
    Line(void) : _pos(), _dir() {}
    /// From p0 towards p1.
    Line(const Pnt3f &p0, const Pnt3f &p1) { setValue(p0, p1); }
    Line(const Pnt3f &pos, const Vec3f &dir) { setValue(pos, dir); }

    /// pos = p0, dir = normalised p1 - p0.
    void setValue(const Pnt3f &p0, const Pnt3f &p1)
    {
        _pos = p0;
        _dir = p1 - p0;
        _dir.normalize();
    }
    /// The direction is normalised; a zero direction stays zero.
    void setValue(const Pnt3f &pos, const Vec3f &dir)
    {
        _pos = pos;
        _dir = dir;
        _dir.normalize();
    }

    const Pnt3f &getPosition(void) const { return _pos; }
    const Vec3f &getDirection(void) const { return _dir; }

    /// The closest points between this line and line2 (both taken as
    /// infinite lines); false for parallel lines.
    bool  getClosestPoints(const Line &line2, Pnt3f &ptOnThis,
                           Pnt3f &ptOnLine2) const;
    /// The point of the (infinite) line nearest to point.
    Pnt3f getClosestPoint(const Pnt3f &point) const
    {
        return _pos + _dir * _dir.dot(point - _pos);
    }
    Real32 distance(const Pnt3f &point) const
    {
        return (point - getClosestPoint(point)).length();
    }

    /// Ray against sphere, ignoring the sphere's state. enter/exit are the
    /// distances along the ray; a sphere containing the origin always hits,
    /// one wholly behind it never does.
    bool intersect(const SphereVolume &sphere) const;
    bool intersect(const SphereVolume &sphere, Real32 &enter,
                   Real32 &exit) const;

    /// Slab test; false for an empty box or one wholly behind the origin.
    bool intersect(const BoxVolume &box) const;
    bool intersect(const BoxVolume &box, Real32 &enter, Real32 &exit) const;

    /// Ray against triangle (Moeller-Trumbore). t is the distance along the
    /// line and may be negative: callers that want hits ahead check it.
    /// normal, if given, receives the unit normal (v1 - v0) x (v2 - v0).
    bool intersect(const Pnt3f &v0, const Pnt3f &v1, const Pnt3f &v2,
                   Real32 &t, Vec3f *normal = NULL) const;

  private:
    Pnt3f _pos;
    Vec3f _dir;
};

/// "(x, y, z) (dx, dy, dz)": position, then direction.
std::ostream &operator<<(std::ostream &os, const Line &line);

OSG_END_NAMESPACE

#endif
