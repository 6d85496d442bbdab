#include <OpenSG/OSGFrustumVolume.h>

#include <OpenSG/OSGBoxVolume.h>
#include <OpenSG/OSGDynamicVolume.h>
#include <OpenSG/OSGLine.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGSphereVolume.h>

#include <cmath>
#include <limits>
#include <ostream>

OSG_BEGIN_NAMESPACE

namespace
{

// Where three planes meet; false when two of them are parallel.
bool meet(const Plane &a, const Plane &b, const Plane &c, Pnt3f &result)
{
    const Vec3f &n1 = a.getNormal();
    const Vec3f &n2 = b.getNormal();
    const Vec3f &n3 = c.getNormal();

    const Vec3f  n23   = n2.cross(n3);
    const Real32 denom = n1.dot(n23);

    if(std::fabs(denom) < 1e-12f)
        return false;

    const Vec3f p = (n23 * a.getDistanceFromOrigin() +
                     n3.cross(n1) * b.getDistanceFromOrigin() +
                     n1.cross(n2) * c.getDistanceFromOrigin()) *
                    (1.f / denom);

    result = Pnt3f(p);
    return true;
}

// Six times the volume of the tetrahedron (a, b, c, d).
Real32 tetra6(const Pnt3f &a, const Pnt3f &b, const Pnt3f &c, const Pnt3f &d)
{
    return std::fabs((b - a).dot((c - a).cross(d - a)));
}

} // namespace

FrustumVolume::FrustumVolume(void) : Volume()
{
}

FrustumVolume::FrustumVolume(const Plane &pnear, const Plane &pfar,
                             const Plane &left, const Plane &right,
                             const Plane &top, const Plane &bottom) :
    Volume()
{
    setPlanes(pnear, pfar, left, right, top, bottom);
}

void FrustumVolume::setPlanes(const Plane &pnear, const Plane &pfar,
                              const Plane &left, const Plane &right,
                              const Plane &top, const Plane &bottom)
{
    _planeVec[NEAR_PLANE]   = pnear;
    _planeVec[FAR_PLANE]    = pfar;
    _planeVec[LEFT_PLANE]   = left;
    _planeVec[RIGHT_PLANE]  = right;
    _planeVec[TOP_PLANE]    = top;
    _planeVec[BOTTOM_PLANE] = bottom;

    setValid(true);
    setEmpty(false);
}

void FrustumVolume::setPlanes(const Pnt3f &nlt, const Pnt3f &nlb,
                              const Pnt3f &nrt, const Pnt3f &nrb,
                              const Pnt3f &flt, const Pnt3f &flb,
                              const Pnt3f &frt, const Pnt3f &frb)
{
    Vec3f sum = nlt.subZero() + nlb.subZero() + nrt.subZero() +
                nrb.subZero() + flt.subZero() + flb.subZero() +
                frt.subZero() + frb.subZero();
    const Pnt3f center(sum * 0.125f);

    // Three corners fix each plane; which way its normal points does not
    // depend on the winding the caller happens to use: inwards is where
    // the centre is.
    auto inward = [&center](const Pnt3f &a, const Pnt3f &b, const Pnt3f &c) {
        Plane p(a, b, c);
        if(p.distance(center) < 0.f)
            p = Plane(-p.getNormal(), -p.getDistanceFromOrigin());
        return p;
    };

    setPlanes(inward(nlt, nlb, nrb), inward(flt, flb, frb),
              inward(nlt, nlb, flb), inward(nrt, nrb, frb),
              inward(nlt, nrt, frt), inward(nlb, nrb, frb));
}

void FrustumVolume::setPlanes(const Matrix &objectClipMat)
{
    // Row r of the matrix; clip-space x, y, z, w of a point are the rows
    // times (p, 1).
    auto row = [&objectClipMat](UInt32 r) {
        return Vec4f(objectClipMat[0][r], objectClipMat[1][r],
                     objectClipMat[2][r], objectClipMat[3][r]);
    };

    const Vec4f x = row(0), y = row(1), z = row(2), w = row(3);

    Plane pnear, pfar, left, right, top, bottom;

    pnear.set(w + z);
    pfar.set(w - z);
    left.set(w + x);
    right.set(w - x);
    top.set(w - y);
    bottom.set(w + y);

    setPlanes(pnear, pfar, left, right, top, bottom);
}

bool FrustumVolume::getCorners(Pnt3f corners[8]) const
{
    const Plane *n = &_planeVec[NEAR_PLANE], *f = &_planeVec[FAR_PLANE];
    const Plane *l = &_planeVec[LEFT_PLANE], *r = &_planeVec[RIGHT_PLANE];
    const Plane *t = &_planeVec[TOP_PLANE], *b = &_planeVec[BOTTOM_PLANE];

    return meet(*n, *l, *t, corners[0]) && meet(*n, *l, *b, corners[1]) &&
           meet(*n, *r, *t, corners[2]) && meet(*n, *r, *b, corners[3]) &&
           meet(*f, *l, *t, corners[4]) && meet(*f, *l, *b, corners[5]) &&
           meet(*f, *r, *t, corners[6]) && meet(*f, *r, *b, corners[7]);
}

void FrustumVolume::getCenter(Pnt3f &center) const
{
    Pnt3f c[8];

    center = Pnt3f(0.f, 0.f, 0.f);

    if(!getCorners(c))
        return;

    Vec3f sum;
    for(UInt32 i = 0; i < 8; ++i)
        sum += c[i].subZero();

    center = Pnt3f(sum * 0.125f);
}

Real32 FrustumVolume::getScalarVolume(void) const
{
    Pnt3f c[8];

    if(isEmpty() || !getCorners(c))
        return 0.f;

    Pnt3f center;
    getCenter(center);

    // A pyramid from the centre onto each face, each face split in two.
    static const UInt8 faces[6][4] = {
        {0, 1, 3, 2}, {4, 5, 7, 6}, {0, 1, 5, 4},
        {2, 3, 7, 6}, {0, 2, 6, 4}, {1, 3, 7, 5}};

    Real32 v6 = 0.f;
    for(UInt32 i = 0; i < 6; ++i)
    {
        const Pnt3f &a = c[faces[i][0]], &b = c[faces[i][1]];
        const Pnt3f &d = c[faces[i][2]], &e = c[faces[i][3]];

        v6 += tetra6(center, a, b, d) + tetra6(center, a, d, e);
    }

    return v6 / 6.f;
}

void FrustumVolume::getBounds(Pnt3f &minPnt, Pnt3f &maxPnt) const
{
    Pnt3f c[8];

    if(!getCorners(c))
    {
        const Real32 inf = std::numeric_limits<Real32>::infinity();
        minPnt.setValues(-inf, -inf, -inf);
        maxPnt.setValues(inf, inf, inf);
        return;
    }

    minPnt = maxPnt = c[0];

    for(UInt32 i = 1; i < 8; ++i)
    {
        for(UInt32 k = 0; k < 3; ++k)
        {
            minPnt[k] = osgMin(minPnt[k], c[i][k]);
            maxPnt[k] = osgMax(maxPnt[k], c[i][k]);
        }
    }
}

void FrustumVolume::extendBy(const Pnt3f &)
{
}

void FrustumVolume::extendBy(const Volume &)
{
}

bool FrustumVolume::intersect(const Pnt3f &point) const
{
    for(UInt32 i = 0; i < 6; ++i)
        if(!_planeVec[i].isInHalfSpace(point))
            return false;

    return true;
}

bool FrustumVolume::intersect(const Line &line) const
{
    Real32 enter, exit;
    return intersect(line, enter, exit);
}

// Clips the ray against each half space in turn.
bool FrustumVolume::intersect(const Line &line, Real32 &minDist,
                              Real32 &maxDist) const
{
    Real32 tmin = -std::numeric_limits<Real32>::infinity();
    Real32 tmax = std::numeric_limits<Real32>::infinity();

    for(UInt32 i = 0; i < 6; ++i)
    {
        const Plane &p     = _planeVec[i];
        const Real32 denom = p.getNormal().dot(line.getDirection());
        const Real32 dist  = p.distance(line.getPosition());

        if(std::fabs(denom) < 1e-12f)
        {
            if(dist < 0.f)
                return false;
            continue;
        }

        const Real32 t = -dist / denom;

        if(denom > 0.f)
            tmin = osgMax(tmin, t);
        else
            tmax = osgMin(tmax, t);

        if(tmin > tmax)
            return false;
    }

    if(tmax < 0.f)
        return false;

    minDist = tmin;
    maxDist = tmax;

    return true;
}

bool FrustumVolume::intersect(const Volume &volume) const
{
    return OSG::intersect(*this, volume);
}

bool FrustumVolume::isOnSurface(const Pnt3f &point) const
{
    bool onOne = false;

    for(UInt32 i = 0; i < 6; ++i)
    {
        const Real32 d = _planeVec[i].distance(point);

        if(d < -Eps)
            return false;
        if(d < Eps)
            onOne = true;
    }

    return onOne;
}

void FrustumVolume::transform(const Matrix &matrix)
{
    for(UInt32 i = 0; i < 6; ++i)
        _planeVec[i].transform(matrix);
}

void FrustumVolume::dump(UInt32 uiIndent, const BitVector) const
{
    static const char *names[6] = {"near", "far", "left", "right", "top",
                                   "bottom"};

    indentLog(uiIndent, PLOG);
    PLOG << "FrustumVolume(state " << getState() << ")" << std::endl;

    for(UInt32 i = 0; i < 6; ++i)
    {
        indentLog(uiIndent + 4, PLOG);
        PLOG << names[i] << ": " << _planeVec[i] << std::endl;
    }
}

bool FrustumVolume::operator==(const FrustumVolume &rhs) const
{
    for(UInt32 i = 0; i < 6; ++i)
        if(_planeVec[i] != rhs._planeVec[i])
            return false;

    return true;
}

// --- culling -------------------------------------------------------------

bool intersect(const FrustumVolume &frustum, const BoxVolume &box,
               FrustumVolume::PlaneSet &inplanes)
{
    if(box.isEmpty())
        return false;
    if(box.isInfinite())
        return true;

    const Plane *planes = frustum.getPlanes();
    const Pnt3f &min    = box.getMin();
    const Pnt3f &max    = box.getMax();

    for(UInt32 i = 0; i < 6; ++i)
    {
        const FrustumVolume::PlaneSet bit = FrustumVolume::PlaneSet(1u << i);

        if((inplanes & bit) != 0)
            continue;

        if(planes[i].isOutHalfSpace(min, max))
            return false;

        if(planes[i].isInHalfSpace(min, max))
            inplanes |= bit;
    }

    return true;
}

bool intersect(const FrustumVolume &frustum, const SphereVolume &sphere,
               FrustumVolume::PlaneSet &inplanes)
{
    if(sphere.isEmpty())
        return false;
    if(sphere.isInfinite())
        return true;

    const Plane  *planes = frustum.getPlanes();
    const Real32  r      = sphere.getRadius();

    for(UInt32 i = 0; i < 6; ++i)
    {
        const FrustumVolume::PlaneSet bit = FrustumVolume::PlaneSet(1u << i);

        if((inplanes & bit) != 0)
            continue;

        const Real32 d = planes[i].distance(sphere.getCenter());

        if(d < -r)
            return false;

        if(d >= r)
            inplanes |= bit;
    }

    return true;
}

bool intersect(const FrustumVolume &frustum, const Volume &v,
               FrustumVolume::PlaneSet &inplanes)
{
    // A DynamicVolume counts as its instance.
    if(const DynamicVolume *dyn = dynamic_cast<const DynamicVolume *>(&v))
        return intersect(frustum, dyn->getInstance(), inplanes);

    if(const BoxVolume *box = dynamic_cast<const BoxVolume *>(&v))
        return intersect(frustum, *box, inplanes);

    if(const SphereVolume *sphere = dynamic_cast<const SphereVolume *>(&v))
        return intersect(frustum, *sphere, inplanes);

    if(v.isEmpty())
        return false;
    if(v.isInfinite())
        return true;

    // Anything else (another frustum, say) by its bounding box.
    Pnt3f min, max;
    v.getBounds(min, max);

    return intersect(frustum, BoxVolume(min, max), inplanes);
}

bool intersect(const FrustumVolume &frustum, const BoxVolume &box)
{
    FrustumVolume::PlaneSet inplanes = FrustumVolume::P_NONE;
    return intersect(frustum, box, inplanes);
}

bool intersect(const FrustumVolume &frustum, const SphereVolume &sphere)
{
    FrustumVolume::PlaneSet inplanes = FrustumVolume::P_NONE;
    return intersect(frustum, sphere, inplanes);
}

bool intersect(const FrustumVolume &frustum, const Volume &vol)
{
    FrustumVolume::PlaneSet inplanes = FrustumVolume::P_NONE;
    return intersect(frustum, vol, inplanes);
}

std::ostream &operator<<(std::ostream &os, const FrustumVolume &frustum)
{
    os << "Frustum(";
    for(UInt32 i = 0; i < 6; ++i)
        os << (i ? "; " : "") << frustum.getPlanes()[i];
    return os << ")";
}

OSG_END_NAMESPACE
