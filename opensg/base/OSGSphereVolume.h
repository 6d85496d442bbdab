/// Sphere volume.
#ifndef _OSGSPHEREVOLUME_H_
#define _OSGSPHEREVOLUME_H_

#include <OpenSG/OSGVolume.h>

OSG_BEGIN_NAMESPACE

class SphereVolume : public Volume
{
  public:
    /// Centre at the origin, radius 0; valid and empty.
    SphereVolume(void) : Volume(), _center(), _radius(0.f) {}
    /// Valid and non-empty.
    SphereVolume(const Pnt3f &center, Real32 radius)
        : Volume(), _center(center), _radius(radius)
    {
        setEmpty(false);
    }
    /// Copies centre and radius only: the copy is valid and non-empty,
    /// whatever the state of the source.
    SphereVolume(const SphereVolume &other)
        : Volume(), _center(other._center), _radius(other._radius)
    {
        setEmpty(false);
    }
    /// Copies centre and radius only; the state stays.
    SphereVolume &operator=(const SphereVolume &other)
    {
        _center = other._center;
        _radius = other._radius;
        return *this;
    }

    /// Sets both and clears the empty bit.
    void setValue(const Pnt3f &center, Real32 radius)
    {
        _center = center;
        _radius = radius;
        Volume::setEmpty(false);
    }
    /// Neither touches the state.
    void setCenter(const Pnt3f &center) { _center = center; }
    void setRadius(Real32 radius) { _radius = radius; }

    const Pnt3f &getCenter(void) const { return _center; }
    Real32       getRadius(void) const { return _radius; }

    void   getCenter(Pnt3f &center) const override { center = _center; }
    /// 0 for an empty sphere.
    Real32 getScalarVolume(void) const override;
    /// Centre +- radius on every axis.
    void   getBounds(Pnt3f &min, Pnt3f &max) const override;

    /// Untouchable: nothing. Empty: centre pt, radius 0. Otherwise the
    /// radius grows to reach pt.
    void extendBy(const Pnt3f &pt) override;
    /// extend(*this, volume).
    void extendBy(const Volume &volume) override;

    /// |c - p| <= r.
    bool intersect(const Pnt3f &point) const override;
    /// Line::intersect, which ignores the state.
    bool intersect(const Line &line) const override;
    bool intersect(const Line &line, Real32 &enter, Real32 &exit) const override;
    bool intersect(const Volume &volume) const override;
    bool isOnSurface(const Pnt3f &point) const override;

    /// Centre by m.mult; radius |m(c + (0, r, 0)) - m(c)|.
    void transform(const Matrix &matrix) override;

    void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const override;

    /// Compares centre and radius.
    bool operator==(const SphereVolume &other) const
    {
        return _center == other._center &&
               osgabs(_radius - other._radius) <= Eps;
    }
    bool operator!=(const SphereVolume &other) const { return !(*this == other); }

  private:
    Pnt3f  _center;
    Real32 _radius;
};

std::ostream &operator<<(std::ostream &os, const SphereVolume &sphere);

OSG_END_NAMESPACE

#include <OpenSG/OSGVolumeFunctions.h>

#endif
