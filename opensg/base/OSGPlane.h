/// An oriented plane: the points p with normal . p = distance. The normal
/// points into the "positive" half space; frustum planes point inwards, so a
/// point inside the frustum is in every plane's positive half space.
#ifndef _OSGPLANE_H_
#define _OSGPLANE_H_

#include <OpenSG/OSGBaseTypes.h>
#include <OpenSG/OSGMatrix.h>
#include <OpenSG/OSGVector.h>

#include <ostream>

OSG_BEGIN_NAMESPACE

class Line;

class Plane
{
  public:
    /// Zero normal and distance: every point counts as on the plane, so a
    /// frustum of default planes culls nothing.
    Plane(void);
    Plane(const Plane &) = default;
    Plane &operator=(const Plane &) = default;

    /// Through three points, normal (p1 - p0) x (p2 - p0) normalised, so
    /// the points run counter-clockwise seen from the positive side.
    Plane(const Pnt3f &p0, const Pnt3f &p1, const Pnt3f &p2);
    /// The normal is normalised; distance is taken along the normalised
    /// normal.
    Plane(const Vec3f &normal, Real32 distance);
    Plane(const Vec3f &normal, const Pnt3f &point);

    /// Normal and distance as given (the normal is normalised, the distance
    /// scaled to match).
    void set(const Vec3f &normal, Real32 distance);
    /// From the equation a x + b y + c z + d = 0, positive side where the
    /// left-hand side is positive.
    void set(Real32 a, Real32 b, Real32 c, Real32 d);
    void set(const Vec4f &equation);

    /// Moves the plane along its normal.
    void offset(Real32 d) { _distance += d; }

    const Vec3f &getNormal(void) const { return _normalVec; }
    Real32       getDistanceFromOrigin(void) const { return _distance; }

    /// Signed distance of the point (positive on the normal's side).
    Real32 distance(const Pnt3f &pnt) const
    {
        return _normalVec.dot(pnt.subZero()) - _distance;
    }

    /// On the plane or on its positive side.
    bool isInHalfSpace(const Pnt3f &point) const { return distance(point) >= 0.f; }
    /// The whole box [min, max] is on the plane or its positive side.
    bool isInHalfSpace(const Pnt3f &min, const Pnt3f &max) const;
    /// The whole box [min, max] is strictly on the negative side.
    bool isOutHalfSpace(const Pnt3f &min, const Pnt3f &max) const;
    bool isOnPlane(const Pnt3f &point) const;

    /// The line where the two planes meet; false when they are parallel.
    bool intersect(const Plane &pl, Line &intersection) const;
    /// The ray's hit at t >= 0; false when parallel or behind the origin.
    bool intersect(const Line &line, Pnt3f &point) const;
    bool intersect(const Line &line, Real32 &t) const;
    /// The same for the infinite line: t may be negative.
    bool intersectInfinite(const Line &line, Pnt3f &point) const;
    bool intersectInfinite(const Line &line, Real32 &t) const;

    /// The plane through the transformed points; a singular matrix leaves
    /// the plane unchanged.
    void transform(const Matrix &matrix);

    bool operator==(const Plane &rhs) const;
    bool operator!=(const Plane &rhs) const { return !(*this == rhs); }

  private:
    Vec3f  _normalVec;
    Real32 _distance;
};

/// "(nx, ny, nz) d".
std::ostream &operator<<(std::ostream &os, const Plane &plane);

OSG_END_NAMESPACE

#endif
