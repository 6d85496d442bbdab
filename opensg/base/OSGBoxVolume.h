/// Axis-aligned box volume.
#ifndef _OSGBOXVOLUME_H_
#define _OSGBOXVOLUME_H_

#include <OpenSG/OSGVolume.h>

OSG_BEGIN_NAMESPACE

class BoxVolume : public Volume
{
  public:
    /// Both corners at the origin; valid and empty.
    BoxVolume(void) : Volume(), _min(), _max() {}
    /// Non-empty box between the corners.
    BoxVolume(Real32 xmin, Real32 ymin, Real32 zmin, Real32 xmax, Real32 ymax,
              Real32 zmax)
        : Volume(), _min(xmin, ymin, zmin), _max(xmax, ymax, zmax)
    {
        setEmpty(false);
    }
    BoxVolume(const Pnt3f &min, const Pnt3f &max)
        : Volume(), _min(min), _max(max)
    {
        setEmpty(false);
    }
    /// Copies corners and state.
    BoxVolume(const BoxVolume &) = default;
    BoxVolume &operator=(const BoxVolume &) = default;

    const Pnt3f &getMin(void) const { return _min; }
    const Pnt3f &getMax(void) const { return _max; }

    /// The minimum corner.
    void getOrigin(Real32 &originX, Real32 &originY, Real32 &originZ) const
    {
        originX = _min[0];
        originY = _min[1];
        originZ = _min[2];
    }
    /// The edge lengths, max - min.
    void getSize(Real32 &w, Real32 &h, Real32 &d) const
    {
        w = _max[0] - _min[0];
        h = _max[1] - _min[1];
        d = _max[2] - _min[2];
    }
    void getSize(Vec3f &vec) const { vec = _max - _min; }

    /// Each form sets the corners and then: valid (unless static), not
    /// empty, not infinite.
    void setBounds(Real32 w, Real32 h, Real32 d);
    void setBounds(Real32 xmin, Real32 ymin, Real32 zmin, Real32 xmax,
                   Real32 ymax, Real32 zmax);
    void setBounds(const Pnt3f &min, const Pnt3f &max);
    /// As setBounds, but a zero size makes the box empty.
    void setBoundsByCenterAndSize(const Pnt3f &center, const Vec3f &size);

    /// The stored corners, even for an empty box.
    void   getBounds(Pnt3f &min, Pnt3f &max) const override;
    /// The origin for an empty box.
    void   getCenter(Pnt3f &center) const override;
    /// 0 for an empty box.
    Real32 getScalarVolume(void) const override;

    /// Untouchable: nothing. Empty: both corners become pt. Otherwise grows.
    void extendBy(const Pnt3f &pt) override;
    /// extend(*this, volume).
    void extendBy(const Volume &volume) override;

    /// Strictly inside (not on the boundary) of a non-empty box.
    bool intersect(const Pnt3f &point) const override;
    bool intersect(const Line &line) const override;
    bool intersect(const Line &line, Real32 &enter, Real32 &exit) const override;
    bool intersect(const Volume &volume) const override;
    bool isOnSurface(const Pnt3f &point) const override;

    /// Keeps the box axis-aligned around the transformed box; an empty box
    /// stays as it is.
    void transform(const Matrix &matrix) override;

    void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const override;

    /// Compares the corners only.
    bool operator==(const BoxVolume &other) const
    {
        return _min == other._min && _max == other._max;
    }
    bool operator!=(const BoxVolume &other) const { return !(*this == other); }

  private:
    Pnt3f _min;
    Pnt3f _max;
};

std::ostream &operator<<(std::ostream &os, const BoxVolume &box);

OSG_END_NAMESPACE

#include <OpenSG/OSGVolumeFunctions.h>

#endif
