#include <OpenSG/OSGLine.h>

#include <OpenSG/OSGBoxVolume.h>
#include <OpenSG/OSGSphereVolume.h>

#include <cmath>

OSG_BEGIN_NAMESPACE

bool Line::getClosestPoints(const Line &line2, Pnt3f &ptOnThis,
                            Pnt3f &ptOnLine2) const
{
    const Vec3f &d1 = _dir;
    const Vec3f &d2 = line2._dir;
    Vec3f        w0 = _pos - line2._pos;

    Real32 a = d1.dot(d1), b = d1.dot(d2), c = d2.dot(d2);
    Real32 d = d1.dot(w0), e = d2.dot(w0);
    Real32 denom = a * c - b * b;
    if(osgabs(denom) < Eps)
        return false;

    Real32 s = (b * e - c * d) / denom;
    Real32 t = (a * e - b * d) / denom;
    ptOnThis  = _pos + d1 * s;
    ptOnLine2 = line2._pos + d2 * t;
    return true;
}

bool Line::intersect(const SphereVolume &sphere) const
{
    Real32 enter, exit;
    return intersect(sphere, enter, exit);
}

bool Line::intersect(const SphereVolume &sphere, Real32 &enter,
                     Real32 &exit) const
{
    Vec3f  v = sphere.getCenter() - _pos;
    Real32 r = sphere.getRadius();
    Real32 h = v.dot(v) - r * r;
    Real32 b = v.dot(_dir);

    // Origin outside and the sphere behind it.
    if(h >= 0.f && b <= 0.f)
        return false;

    Real32 d = b * b - h;
    if(d < 0.f)
        return false;

    d         = std::sqrt(d);
    Real32 t1 = b - d;
    Real32 t2 = b + d;
    if(t1 < Eps && t2 < Eps)
        return false;

    enter = t1;
    exit  = t2;
    return true;
}

bool Line::intersect(const BoxVolume &box) const
{
    Real32 enter, exit;
    return intersect(box, enter, exit);
}

bool Line::intersect(const BoxVolume &box, Real32 &enter, Real32 &exit) const
{
    if(box.isEmpty())
        return false;

    const Pnt3f &bmin = box.getMin();
    const Pnt3f &bmax = box.getMax();

    Real32 tEnter = -1e30f;
    Real32 tExit  = 1e30f;
    for(UInt32 i = 0; i < 3; ++i)
    {
        if(osgabs(_dir[i]) < Eps)
        {
            // Parallel to this slab: inside it or no hit at all.
            if(_pos[i] < bmin[i] || _pos[i] > bmax[i])
                return false;
            continue;
        }
        Real32 inv = 1.f / _dir[i];
        Real32 t1  = (bmin[i] - _pos[i]) * inv;
        Real32 t2  = (bmax[i] - _pos[i]) * inv;
        if(t1 > t2)
            osgSwap(t1, t2);
        if(t1 > tEnter)
            tEnter = t1;
        if(t2 < tExit)
            tExit = t2;
        if(tEnter > tExit)
            return false;
    }

    if(tExit < 0.f)
        return false;

    enter = tEnter;
    exit  = tExit;
    return true;
}

bool Line::intersect(const Pnt3f &v0, const Pnt3f &v1, const Pnt3f &v2,
                     Real32 &t, Vec3f *normal) const
{
    Vec3f  e1  = v1 - v0;
    Vec3f  e2  = v2 - v0;
    Vec3f  p   = _dir.cross(e2);
    Real32 det = e1.dot(p);

    // Relative to the edge lengths, so the test does not depend on scale;
    // also rejects degenerate triangles.
    if(osgabs(det) <= Eps * e1.length() * e2.length())
        return false;

    Real32 inv = 1.f / det;
    Vec3f  s   = _pos - v0;
    Real32 u   = s.dot(p) * inv;
    if(u < 0.f || u > 1.f)
        return false;

    Vec3f  q = s.cross(e1);
    Real32 v = _dir.dot(q) * inv;
    if(v < 0.f || u + v > 1.f)
        return false;

    t = e2.dot(q) * inv;
    if(normal != NULL)
    {
        *normal = e1.cross(e2);
        normal->normalize();
    }
    return true;
}

std::ostream &operator<<(std::ostream &os, const Line &line)
{
    return os << "(" << line.getPosition() << ") (" << line.getDirection()
              << ")";
}

OSG_END_NAMESPACE
