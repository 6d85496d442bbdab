/// A view frustum as six planes whose normals point inwards, for culling.
///
/// The planes come from a world-to-clip matrix (projection x viewing): a
/// point is inside when it lies in the positive half space of all six.
/// The culling tests are conservative: a box or sphere near a frustum edge
/// may count as visible although it is not, never the other way round.
#ifndef _OSGFRUSTUMVOLUME_H_
#define _OSGFRUSTUMVOLUME_H_

#include <OpenSG/OSGPlane.h>
#include <OpenSG/OSGVolume.h>

OSG_BEGIN_NAMESPACE

class BoxVolume;
class SphereVolume;
class DynamicVolume;

class FrustumVolume : public Volume
{
  public:
    /// One bit per plane, for the plane sets of hierarchical culling.
    enum FrustumPlane
    {
        P_NONE   = 0,
        P_NEAR   = 1,
        P_FAR    = 2,
        P_LEFT   = 4,
        P_RIGHT  = 8,
        P_TOP    = 16,
        P_BOTTOM = 32,
        P_ALL    = 63
    };

    /// The planes a volume lies wholly inside of: their tests can be
    /// skipped for everything below it.
    typedef UInt8 PlaneSet;

    /// Plane indices into getPlanes(), in this order.
    enum PlaneIndex
    {
        NEAR_PLANE   = 0,
        FAR_PLANE    = 1,
        LEFT_PLANE   = 2,
        RIGHT_PLANE  = 3,
        TOP_PLANE    = 4,
        BOTTOM_PLANE = 5
    };

    /// Six default planes, valid and empty until planes are set.
    FrustumVolume(void);
    FrustumVolume(const Plane &pnear, const Plane &pfar, const Plane &left,
                  const Plane &right, const Plane &top, const Plane &bottom);
    FrustumVolume(const FrustumVolume &) = default;
    FrustumVolume &operator=(const FrustumVolume &) = default;

    const Plane &getNear(void) const { return _planeVec[NEAR_PLANE]; }
    const Plane &getFar(void) const { return _planeVec[FAR_PLANE]; }
    const Plane &getLeft(void) const { return _planeVec[LEFT_PLANE]; }
    const Plane &getRight(void) const { return _planeVec[RIGHT_PLANE]; }
    const Plane &getTop(void) const { return _planeVec[TOP_PLANE]; }
    const Plane &getBottom(void) const { return _planeVec[BOTTOM_PLANE]; }
    const Plane *getPlanes(void) const { return _planeVec; }

    /// Each setter makes the frustum valid and non-empty.
    void setPlanes(const Plane &pnear, const Plane &pfar, const Plane &left,
                   const Plane &right, const Plane &top, const Plane &bottom);
    /// From the eight corners (n/f = near/far, l/r, t/b).
    void setPlanes(const Pnt3f &nlt, const Pnt3f &nlb, const Pnt3f &nrt,
                   const Pnt3f &nrb, const Pnt3f &flt, const Pnt3f &flb,
                   const Pnt3f &frt, const Pnt3f &frb);
    /// From a matrix taking object space to clip space: the planes are
    /// those of the clip cube -w <= x, y, z <= w pulled back into object
    /// space.
    void setPlanes(const Matrix &objectClipMat);

    /// The eight corners in the order of setPlanes(points); false when
    /// three planes do not meet in a point.
    bool getCorners(Pnt3f corners[8]) const;

    void   getCenter(Pnt3f &center) const override;
    Real32 getScalarVolume(void) const override;
    void   getBounds(Pnt3f &minPnt, Pnt3f &maxPnt) const override;

    /// A frustum is not grown: both do nothing.
    void extendBy(const Pnt3f &pt) override;
    void extendBy(const Volume &volume) override;

    /// Inside or on all six planes.
    bool intersect(const Pnt3f &point) const override;
    bool intersect(const Line &line) const override;
    /// The part of the ray inside the frustum, as distances along it.
    bool intersect(const Line &line, Real32 &minDist,
                   Real32 &maxDist) const override;
    /// By the dynamic type of volume (boxes, spheres, dynamic volumes, other
    /// frusta by their bounds).
    bool intersect(const Volume &volume) const override;
    bool isOnSurface(const Pnt3f &point) const override;

    /// Maps the planes through the matrix.
    void transform(const Matrix &matrix) override;

    void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const override;

    bool operator==(const FrustumVolume &rhs) const;
    bool operator!=(const FrustumVolume &rhs) const { return !(*this == rhs); }

  private:
    Plane _planeVec[6];
};

/// Culling tests: false only when the volume lies wholly outside one plane.
/// Empty volumes never intersect, infinite ones always do.
bool intersect(const FrustumVolume &frustum, const BoxVolume &box);
bool intersect(const FrustumVolume &frustum, const SphereVolume &sphere);
bool intersect(const FrustumVolume &frustum, const Volume &vol);

/// The same, skipping the planes in inplanes and adding to it every plane
/// the volume lies wholly inside of. When the result is P_ALL the volume is
/// wholly inside and its children need no test.
bool intersect(const FrustumVolume &frustum, const BoxVolume &box,
               FrustumVolume::PlaneSet &inplanes);
bool intersect(const FrustumVolume &frustum, const SphereVolume &sphere,
               FrustumVolume::PlaneSet &inplanes);
bool intersect(const FrustumVolume &frustum, const Volume &vol,
               FrustumVolume::PlaneSet &inplanes);

std::ostream &operator<<(std::ostream &os, const FrustumVolume &frustum);

OSG_END_NAMESPACE

#endif
