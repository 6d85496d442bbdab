#include <OpenSG/OSGSphereVolume.h>

#include <OpenSG/OSGLine.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGVolumeFunctions.h>

OSG_BEGIN_NAMESPACE

Real32 SphereVolume::getScalarVolume(void) const
{
    if(isEmpty())
        return 0.f;
    return 4.f / 3.f * Pi * _radius * _radius * _radius;
}

void SphereVolume::getBounds(Pnt3f &min, Pnt3f &max) const
{
    Vec3f r(_radius, _radius, _radius);
    min = _center - r;
    max = _center + r;
}

void SphereVolume::extendBy(const Pnt3f &pt)
{
    if(isUntouchable())
        return;

    if(isEmpty())
    {
        _center = pt;
        _radius = 0.f;
        Volume::setEmpty(false);
        return;
    }

    Real32 d = _center.dist(pt);
    if(d > _radius)
        _radius = d;
}

void SphereVolume::extendBy(const Volume &volume)
{
    ::osg::extend(*this, volume);
}

bool SphereVolume::intersect(const Pnt3f &point) const
{
    return _center.dist(point) <= _radius;
}

bool SphereVolume::intersect(const Line &line) const
{
    return line.intersect(*this);
}

bool SphereVolume::intersect(const Line &line, Real32 &enter,
                             Real32 &exit) const
{
    return line.intersect(*this, enter, exit);
}

bool SphereVolume::intersect(const Volume &volume) const
{
    return ::osg::intersect(*this, volume);
}

bool SphereVolume::isOnSurface(const Pnt3f &point) const
{
    return osgabs(_center.dist(point) - _radius) <= Eps;
}

void SphereVolume::transform(const Matrix &m)
{
    Pnt3f c, e;
    m.mult(_center, c);
    m.mult(_center + Vec3f(0.f, _radius, 0.f), e);
    _radius = (e - c).length();
    _center = c;
}

void SphereVolume::dump(UInt32 uiIndent, const BitVector) const
{
    indentLog(uiIndent, PLOG);
    PLOG << *this << std::endl;
}

std::ostream &operator<<(std::ostream &os, const SphereVolume &sphere)
{
    os << "SphereVolume(" << sphere.getCenter() << " | "
       << sphere.getRadius() << ")";
    if(sphere.isEmpty())
        os << " empty";
    if(sphere.isInfinite())
        os << " infinite";
    if(!sphere.isValid())
        os << " invalid";
    if(sphere.isStatic())
        os << " static";
    return os;
}

OSG_END_NAMESPACE
