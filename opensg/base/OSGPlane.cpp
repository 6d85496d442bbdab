#include <OpenSG/OSGPlane.h>

#include <OpenSG/OSGLine.h>

#include <cmath>

OSG_BEGIN_NAMESPACE

Plane::Plane(void) : _normalVec(0.f, 0.f, 0.f), _distance(0.f)
{
}

Plane::Plane(const Pnt3f &p0, const Pnt3f &p1, const Pnt3f &p2) :
    _normalVec((p1 - p0).cross(p2 - p0)),
    _distance(0.f)
{
    _normalVec.normalize();
    _distance = _normalVec.dot(p0.subZero());
}

Plane::Plane(const Vec3f &normal, Real32 distance) :
    _normalVec(normal),
    _distance(distance)
{
    _normalVec.normalize();
}

Plane::Plane(const Vec3f &normal, const Pnt3f &point) :
    _normalVec(normal),
    _distance(0.f)
{
    _normalVec.normalize();
    _distance = _normalVec.dot(point.subZero());
}

void Plane::set(const Vec3f &normal, Real32 distance)
{
    const Real32 len = normal.length();

    if(len > Eps)
    {
        _normalVec = normal * (1.f / len);
        _distance  = distance / len;
    }
    else
    {
        _normalVec = normal;
        _distance  = distance;
    }
}

void Plane::set(Real32 a, Real32 b, Real32 c, Real32 d)
{
    set(Vec3f(a, b, c), -d);
}

void Plane::set(const Vec4f &equation)
{
    set(equation[0], equation[1], equation[2], equation[3]);
}

// The corner of the box furthest along the normal decides "partly in", the
// one furthest against it "wholly in".
bool Plane::isInHalfSpace(const Pnt3f &min, const Pnt3f &max) const
{
    Pnt3f nearest;

    for(UInt32 i = 0; i < 3; ++i)
        nearest[i] = _normalVec[i] >= 0.f ? min[i] : max[i];

    return distance(nearest) >= 0.f;
}

bool Plane::isOutHalfSpace(const Pnt3f &min, const Pnt3f &max) const
{
    Pnt3f furthest;

    for(UInt32 i = 0; i < 3; ++i)
        furthest[i] = _normalVec[i] >= 0.f ? max[i] : min[i];

    return distance(furthest) < 0.f;
}

bool Plane::isOnPlane(const Pnt3f &point) const
{
    return std::fabs(distance(point)) < Eps;
}

bool Plane::intersect(const Plane &pl, Line &intersection) const
{
    Vec3f dir = _normalVec.cross(pl._normalVec);

    const Real32 len2 = dir.dot(dir);

    if(len2 < Eps * Eps)
        return false;

    // The point on both planes closest to the origin: a combination of
    // the two normals.
    const Real32 n1n2 = _normalVec.dot(pl._normalVec);
    const Real32 n1n1 = _normalVec.dot(_normalVec);
    const Real32 n2n2 = pl._normalVec.dot(pl._normalVec);
    const Real32 det  = n1n1 * n2n2 - n1n2 * n1n2;

    if(std::fabs(det) < Eps * Eps)
        return false;

    const Real32 c1 = (_distance * n2n2 - pl._distance * n1n2) / det;
    const Real32 c2 = (pl._distance * n1n1 - _distance * n1n2) / det;

    Pnt3f point = Pnt3f(_normalVec * c1 + pl._normalVec * c2);

    intersection.setValue(point, dir);

    return true;
}

bool Plane::intersectInfinite(const Line &line, Real32 &t) const
{
    const Real32 denom = _normalVec.dot(line.getDirection());

    if(std::fabs(denom) < Eps)
        return false;

    t = (_distance - _normalVec.dot(line.getPosition().subZero())) / denom;

    return true;
}

bool Plane::intersectInfinite(const Line &line, Pnt3f &point) const
{
    Real32 t;

    if(!intersectInfinite(line, t))
        return false;

    point = line.getPosition() + line.getDirection() * t;

    return true;
}

bool Plane::intersect(const Line &line, Real32 &t) const
{
    return intersectInfinite(line, t) && t >= 0.f;
}

bool Plane::intersect(const Line &line, Pnt3f &point) const
{
    Real32 t;

    if(!intersect(line, t))
        return false;

    point = line.getPosition() + line.getDirection() * t;

    return true;
}

// The equation (n, -d) is a covector: it maps with the inverse transpose,
// which also keeps perspective matrices right.
void Plane::transform(const Matrix &matrix)
{
    Matrix inv;

    if(!matrix.inverse(inv))
        return;

    const Vec4f e(_normalVec[0], _normalVec[1], _normalVec[2], -_distance);
    Vec4f       r;

    for(UInt32 c = 0; c < 4; ++c)
        r[c] = inv[c][0] * e[0] + inv[c][1] * e[1] + inv[c][2] * e[2] +
               inv[c][3] * e[3];

    set(r);
}

bool Plane::operator==(const Plane &rhs) const
{
    return _normalVec.equals(rhs._normalVec, Eps) &&
           std::fabs(_distance - rhs._distance) < Eps;
}

std::ostream &operator<<(std::ostream &os, const Plane &plane)
{
    const Vec3f &n = plane.getNormal();

    return os << "(" << n[0] << ", " << n[1] << ", " << n[2] << ") "
              << plane.getDistanceFromOrigin();
}

OSG_END_NAMESPACE
