/// A volume that is a box or a sphere, chosen at run time, stored in place.
#ifndef _OSGDYNAMICVOLUME_H_
#define _OSGDYNAMICVOLUME_H_

#include <OpenSG/OSGBoxVolume.h>
#include <OpenSG/OSGSphereVolume.h>

OSG_BEGIN_NAMESPACE

/// The outer state mirrors the instance's: the set... overrides copy the
/// outer state into the instance, and every call that changes the instance
/// copies its state back out.
class DynamicVolume : public Volume
{
  public:
    enum Type
    {
        BOX_VOLUME    = 0,
        SPHERE_VOLUME = 1
    };

    explicit DynamicVolume(Type type = BOX_VOLUME);
    DynamicVolume(const DynamicVolume &other);
    DynamicVolume &operator=(const DynamicVolume &other);
    ~DynamicVolume(void) override;

    Type getType(void) const { return _type; }

    /// A fresh default instance of the type.
    void setVolumeType(Type type);
    /// Converts the current instance through its bounds; the state stays.
    void morphToType(Type type);

    Volume       &getInstance(void);
    const Volume &getInstance(void) const;

    /// Outer state := instance state.
    void instanceChanged(void) { Volume::setState(getInstance().getState()); }
    /// Instance state := outer state.
    void updateInstanceState(void) { getInstance().setState(Volume::getState()); }

    void setValid(bool value = true)
    {
        Volume::setValid(value);
        updateInstanceState();
    }
    void setEmpty(bool value = true)
    {
        Volume::setEmpty(value);
        updateInstanceState();
    }
    void setStatic(bool value = true)
    {
        Volume::setStatic(value);
        updateInstanceState();
    }
    void setInfinite(bool value = true)
    {
        Volume::setInfinite(value);
        updateInstanceState();
    }

    void   getCenter(Pnt3f &center) const override;
    Real32 getScalarVolume(void) const override;
    void   getBounds(Pnt3f &min, Pnt3f &max) const override;

    void extendBy(const Pnt3f &pt) override;
    void extendBy(const Volume &volume) override;

    bool intersect(const Pnt3f &point) const override;
    bool intersect(const Line &line) const override;
    bool intersect(const Line &line, Real32 &enter, Real32 &exit) const override;
    bool intersect(const Volume &volume) const override;
    bool isOnSurface(const Pnt3f &point) const override;

    void transform(const Matrix &matrix) override;

    void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const override;

    /// Same type and equal instances.
    bool operator==(const DynamicVolume &other) const;
    bool operator!=(const DynamicVolume &other) const { return !(*this == other); }

  private:
    BoxVolume          &box(void);
    const BoxVolume    &box(void) const;
    SphereVolume       &sphere(void);
    const SphereVolume &sphere(void) const;

    void construct(Type type);
    void destroy(void);

    Type   _type;
    Real64 _volumeMem[5];
};

OSG_END_NAMESPACE

#endif
