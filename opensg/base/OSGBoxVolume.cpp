#include <OpenSG/OSGBoxVolume.h>

#include <OpenSG/OSGLine.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGVolumeFunctions.h>

OSG_BEGIN_NAMESPACE

void BoxVolume::setBounds(Real32 w, Real32 h, Real32 d)
{
    setBounds(-w * 0.5f, -h * 0.5f, -d * 0.5f, w * 0.5f, h * 0.5f, d * 0.5f);
}

void BoxVolume::setBounds(Real32 xmin, Real32 ymin, Real32 zmin, Real32 xmax,
                          Real32 ymax, Real32 zmax)
{
    setBounds(Pnt3f(xmin, ymin, zmin), Pnt3f(xmax, ymax, zmax));
}

void BoxVolume::setBounds(const Pnt3f &min, const Pnt3f &max)
{
    _min = min;
    _max = max;
    Volume::setValid(true);
    Volume::setEmpty(false);
    Volume::setInfinite(false);
}

void BoxVolume::setBoundsByCenterAndSize(const Pnt3f &center, const Vec3f &size)
{
    Vec3f half = size * 0.5f;
    _min       = center - half;
    _max       = center + half;
    Volume::setValid(true);
    Volume::setEmpty(size.isZero());
    Volume::setInfinite(false);
}

void BoxVolume::getBounds(Pnt3f &min, Pnt3f &max) const
{
    min = _min;
    max = _max;
}

void BoxVolume::getCenter(Pnt3f &center) const
{
    if(isEmpty())
    {
        center.setNull();
        return;
    }
    center = _min + (_max - _min) * 0.5f;
}

Real32 BoxVolume::getScalarVolume(void) const
{
    if(isEmpty())
        return 0.f;
    Vec3f d = _max - _min;
    return d[0] * d[1] * d[2];
}

void BoxVolume::extendBy(const Pnt3f &pt)
{
    if(isUntouchable())
        return;

    if(isEmpty())
    {
        _min = pt;
        _max = pt;
        Volume::setEmpty(false);
        return;
    }

    for(UInt32 i = 0; i < 3; ++i)
    {
        if(pt[i] < _min[i])
            _min[i] = pt[i];
        if(pt[i] > _max[i])
            _max[i] = pt[i];
    }
}

void BoxVolume::extendBy(const Volume &volume)
{
    ::osg::extend(*this, volume);
}

bool BoxVolume::intersect(const Pnt3f &p) const
{
    return !isEmpty() &&
           _min[0] < p[0] && p[0] < _max[0] &&
           _min[1] < p[1] && p[1] < _max[1] &&
           _min[2] < p[2] && p[2] < _max[2];
}

bool BoxVolume::intersect(const Line &line) const
{
    return line.intersect(*this);
}

bool BoxVolume::intersect(const Line &line, Real32 &enter, Real32 &exit) const
{
    return line.intersect(*this, enter, exit);
}

bool BoxVolume::intersect(const Volume &volume) const
{
    return ::osg::intersect(*this, volume);
}

bool BoxVolume::isOnSurface(const Pnt3f &p) const
{
    if(isEmpty())
        return false;

    bool onFace = false;
    for(UInt32 i = 0; i < 3; ++i)
    {
        if(p[i] < _min[i] - Eps || p[i] > _max[i] + Eps)
            return false;
        if(osgabs(p[i] - _min[i]) <= Eps || osgabs(p[i] - _max[i]) <= Eps)
            onFace = true;
    }
    return onFace;
}

void BoxVolume::transform(const Matrix &m)
{
    if(isEmpty())
        return;

    // Each output axis is the translation plus, per input axis, the smaller
    // and the larger of the two corner contributions (Arvo's method).
    Pnt3f newMin(m[3][0], m[3][1], m[3][2]);
    Pnt3f newMax(newMin);
    for(UInt32 r = 0; r < 3; ++r)
        for(UInt32 c = 0; c < 3; ++c)
        {
            Real32 a = m[c][r] * _min[c];
            Real32 b = m[c][r] * _max[c];
            if(a < b)
            {
                newMin[r] += a;
                newMax[r] += b;
            }
            else
            {
                newMin[r] += b;
                newMax[r] += a;
            }
        }
    _min = newMin;
    _max = newMax;
}

void BoxVolume::dump(UInt32 uiIndent, const BitVector) const
{
    indentLog(uiIndent, PLOG);
    PLOG << *this << std::endl;
}

std::ostream &operator<<(std::ostream &os, const BoxVolume &box)
{
    os << "BoxVolume(" << box.getMin() << " | " << box.getMax() << ")";
    if(box.isEmpty())
        os << " empty";
    if(box.isInfinite())
        os << " infinite";
    if(!box.isValid())
        os << " invalid";
    if(box.isStatic())
        os << " static";
    return os;
}

OSG_END_NAMESPACE
