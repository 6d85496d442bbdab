#include <OpenSG/OSGDynamicVolume.h>

#include <OpenSG/OSGLine.h>
#include <OpenSG/OSGLog.h>

#include <new>

OSG_BEGIN_NAMESPACE

static_assert(sizeof(BoxVolume) <= sizeof(Real64) * 5 &&
                  sizeof(SphereVolume) <= sizeof(Real64) * 5,
              "the instance must fit the in-place buffer");
static_assert(alignof(BoxVolume) <= alignof(Real64) &&
                  alignof(SphereVolume) <= alignof(Real64),
              "the in-place buffer must be aligned for the instance");

DynamicVolume::DynamicVolume(Type type) : Volume(), _type(type)
{
    construct(type);
    instanceChanged();
}

DynamicVolume::DynamicVolume(const DynamicVolume &other)
    : Volume(other), _type(other._type)
{
    construct(_type);
    if(_type == BOX_VOLUME)
        box() = other.box();
    else
        sphere() = other.sphere();
    // The sphere's own copy does not carry the state; the instance must.
    getInstance().setState(other.getInstance().getState());
}

DynamicVolume &DynamicVolume::operator=(const DynamicVolume &other)
{
    if(this == &other)
        return *this;

    if(_type != other._type)
    {
        destroy();
        _type = other._type;
        construct(_type);
    }
    if(_type == BOX_VOLUME)
        box() = other.box();
    else
        sphere() = other.sphere();
    getInstance().setState(other.getInstance().getState());
    Volume::operator=(other);
    return *this;
}

DynamicVolume::~DynamicVolume(void)
{
    destroy();
}

void DynamicVolume::construct(Type type)
{
    if(type == SPHERE_VOLUME)
        new(_volumeMem) SphereVolume;
    else
        new(_volumeMem) BoxVolume;
}

void DynamicVolume::destroy(void)
{
    getInstance().~Volume();
}

BoxVolume &DynamicVolume::box(void)
{
    return *std::launder(reinterpret_cast<BoxVolume *>(_volumeMem));
}

const BoxVolume &DynamicVolume::box(void) const
{
    return *std::launder(reinterpret_cast<const BoxVolume *>(_volumeMem));
}

SphereVolume &DynamicVolume::sphere(void)
{
    return *std::launder(reinterpret_cast<SphereVolume *>(_volumeMem));
}

const SphereVolume &DynamicVolume::sphere(void) const
{
    return *std::launder(reinterpret_cast<const SphereVolume *>(_volumeMem));
}

Volume &DynamicVolume::getInstance(void)
{
    if(_type == SPHERE_VOLUME)
        return sphere();
    return box();
}

const Volume &DynamicVolume::getInstance(void) const
{
    if(_type == SPHERE_VOLUME)
        return sphere();
    return box();
}

void DynamicVolume::setVolumeType(Type type)
{
    destroy();
    _type = type == SPHERE_VOLUME ? SPHERE_VOLUME : BOX_VOLUME;
    construct(_type);
    instanceChanged();
}

void DynamicVolume::morphToType(Type type)
{
    if(type == _type)
        return;

    Pnt3f  min, max;
    getInstance().getBounds(min, max);
    UInt16 state = getInstance().getState();

    destroy();
    _type = type == SPHERE_VOLUME ? SPHERE_VOLUME : BOX_VOLUME;
    construct(_type);

    if(!(state & OSGEMPTY))
    {
        if(_type == BOX_VOLUME)
            box().setBounds(min, max);
        else
            sphere().setValue(min + (max - min) * 0.5f, min.dist(max) * 0.5f);
    }
    getInstance().setState(state);
    instanceChanged();
}

void DynamicVolume::getCenter(Pnt3f &center) const
{
    getInstance().getCenter(center);
}

Real32 DynamicVolume::getScalarVolume(void) const
{
    return getInstance().getScalarVolume();
}

void DynamicVolume::getBounds(Pnt3f &min, Pnt3f &max) const
{
    getInstance().getBounds(min, max);
}

void DynamicVolume::extendBy(const Pnt3f &pt)
{
    getInstance().extendBy(pt);
    instanceChanged();
}

void DynamicVolume::extendBy(const Volume &volume)
{
    getInstance().extendBy(volume);
    instanceChanged();
}

bool DynamicVolume::intersect(const Pnt3f &point) const
{
    return getInstance().intersect(point);
}

bool DynamicVolume::intersect(const Line &line) const
{
    return getInstance().intersect(line);
}

bool DynamicVolume::intersect(const Line &line, Real32 &enter,
                              Real32 &exit) const
{
    return getInstance().intersect(line, enter, exit);
}

bool DynamicVolume::intersect(const Volume &volume) const
{
    return getInstance().intersect(volume);
}

bool DynamicVolume::isOnSurface(const Pnt3f &point) const
{
    return getInstance().isOnSurface(point);
}

void DynamicVolume::transform(const Matrix &matrix)
{
    getInstance().transform(matrix);
    instanceChanged();
}

void DynamicVolume::dump(UInt32 uiIndent, const BitVector bvFlags) const
{
    getInstance().dump(uiIndent, bvFlags);
}

bool DynamicVolume::operator==(const DynamicVolume &other) const
{
    if(_type != other._type)
        return false;
    if(_type == BOX_VOLUME)
        return box() == other.box();
    return sphere() == other.sphere();
}

OSG_END_NAMESPACE
