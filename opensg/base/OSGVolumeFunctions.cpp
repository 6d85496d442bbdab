#include <OpenSG/OSGVolumeFunctions.h>

#include <OpenSG/OSGBoxVolume.h>
#include <OpenSG/OSGDynamicVolume.h>
#include <OpenSG/OSGSphereVolume.h>

OSG_BEGIN_NAMESPACE

namespace
{

// A volume that must not grow: invalid but not empty, infinite or static.
bool refusesExtension(const Volume &dst)
{
    return (!dst.isValid() && !dst.isEmpty()) || dst.isInfinite() ||
           dst.isStatic();
}

const Volume &unwrap(const Volume &v)
{
    const DynamicVolume *dyn = dynamic_cast<const DynamicVolume *>(&v);
    return dyn != NULL ? dyn->getInstance() : v;
}

void boundsUnion(const Volume &a, const Volume &b, Pnt3f &min, Pnt3f &max)
{
    Pnt3f amin, amax, bmin, bmax;
    a.getBounds(amin, amax);
    b.getBounds(bmin, bmax);
    for(UInt32 i = 0; i < 3; ++i)
    {
        min[i] = osgMin(amin[i], bmin[i]);
        max[i] = osgMax(amax[i], bmax[i]);
    }
}

// The sphere around a box given by its corners.
SphereVolume sphereAround(const Pnt3f &min, const Pnt3f &max)
{
    return SphereVolume(min + (max - min) * 0.5f, min.dist(max) * 0.5f);
}

bool overlapBounds(const Pnt3f &amin, const Pnt3f &amax, const Pnt3f &bmin,
                   const Pnt3f &bmax)
{
    for(UInt32 i = 0; i < 3; ++i)
        if(amin[i] > bmax[i] || bmin[i] > amax[i])
            return false;
    return true;
}

} // namespace

// --- extend ----------------------------------------------------------------

void extend(BoxVolume &dst, const BoxVolume &src)
{
    if(refusesExtension(dst))
        return;
    if(!src.isValid())
        return;

    if(dst.isEmpty())
    {
        if(!src.isEmpty())
            dst = src;
        return;
    }
    if(src.isEmpty())
        return;

    Pnt3f min, max;
    boundsUnion(dst, src, min, max);
    dst.setBounds(min, max);
    if(src.isInfinite())
        dst.setInfinite(true);
}

void extend(BoxVolume &dst, const SphereVolume &src)
{
    if(refusesExtension(dst))
        return;
    if(!src.isValid())
        return;

    if(dst.isEmpty())
    {
        if(src.isEmpty())
            return;
        Pnt3f min, max;
        src.getBounds(min, max);
        dst.setBounds(min, max);
        dst.setState(src.getState());
        return;
    }
    if(src.isEmpty())
        return;

    Pnt3f min, max;
    boundsUnion(dst, src, min, max);
    dst.setBounds(min, max);
    if(src.isInfinite())
        dst.setInfinite(true);
}

void extend(BoxVolume &dst, const Volume &src)
{
    const Volume &v = unwrap(src);

    if(const BoxVolume *box = dynamic_cast<const BoxVolume *>(&v))
    {
        extend(dst, *box);
        return;
    }

    // Everything else, spheres included, goes in as a plain box of its
    // bounds, which is valid and non-empty whatever v's state says.
    Pnt3f min, max;
    v.getBounds(min, max);
    BoxVolume tmp;
    tmp.setBounds(min, max);
    extend(dst, tmp);
}

void extend(SphereVolume &dst, const SphereVolume &src)
{
    if(refusesExtension(dst))
        return;
    if(!src.isValid())
        return;

    if(dst.isEmpty())
    {
        if(src.isEmpty())
            return;
        dst.setValue(src.getCenter(), src.getRadius());
        dst.setState(src.getState());
        return;
    }
    if(src.isEmpty())
        return;

    Pnt3f min, max;
    boundsUnion(dst, src, min, max);
    SphereVolume around = sphereAround(min, max);
    dst.setValue(around.getCenter(), around.getRadius());
    if(src.isInfinite())
        dst.setInfinite(true);
}

void extend(SphereVolume &dst, const BoxVolume &src)
{
    SphereVolume tmp = sphereAround(src.getMin(), src.getMax());
    tmp.setState(src.getState());
    extend(dst, tmp);
}

void extend(SphereVolume &dst, const Volume &src)
{
    const Volume &v = unwrap(src);

    if(const SphereVolume *sphere = dynamic_cast<const SphereVolume *>(&v))
    {
        extend(dst, *sphere);
        return;
    }
    if(const BoxVolume *box = dynamic_cast<const BoxVolume *>(&v))
    {
        extend(dst, *box);
        return;
    }

    Pnt3f min, max;
    v.getBounds(min, max);
    extend(dst, sphereAround(min, max));
}

// --- intersect ---------------------------------------------------------------

bool intersect(const BoxVolume &a, const BoxVolume &b)
{
    if(a.isEmpty() || b.isEmpty())
        return false;
    if(a.isInfinite() || b.isInfinite())
        return true;
    return overlapBounds(a.getMin(), a.getMax(), b.getMin(), b.getMax());
}

bool intersect(const BoxVolume &a, const SphereVolume &b)
{
    if(a.isEmpty() || b.isEmpty())
        return false;
    if(a.isInfinite() || b.isInfinite())
        return true;

    // Distance from the centre to the nearest point of the box.
    const Pnt3f &c  = b.getCenter();
    Real32       d2 = 0.f;
    for(UInt32 i = 0; i < 3; ++i)
    {
        Real32 v = osgClamp(a.getMin()[i], c[i], a.getMax()[i]) - c[i];
        d2 += v * v;
    }
    return d2 <= b.getRadius() * b.getRadius();
}

bool intersect(const SphereVolume &a, const BoxVolume &b)
{
    return intersect(b, a);
}

bool intersect(const SphereVolume &a, const SphereVolume &b)
{
    if(a.isEmpty() || b.isEmpty())
        return false;
    if(a.isInfinite() || b.isInfinite())
        return true;
    return a.getCenter().dist(b.getCenter()) <= a.getRadius() + b.getRadius();
}

bool intersect(const Volume &a, const Volume &b)
{
    const Volume &va = unwrap(a);
    const Volume &vb = unwrap(b);

    const BoxVolume    *ba = dynamic_cast<const BoxVolume *>(&va);
    const BoxVolume    *bb = dynamic_cast<const BoxVolume *>(&vb);
    const SphereVolume *sa = dynamic_cast<const SphereVolume *>(&va);
    const SphereVolume *sb = dynamic_cast<const SphereVolume *>(&vb);

    if(ba != NULL && bb != NULL)
        return intersect(*ba, *bb);
    if(ba != NULL && sb != NULL)
        return intersect(*ba, *sb);
    if(sa != NULL && bb != NULL)
        return intersect(*bb, *sa);
    if(sa != NULL && sb != NULL)
        return intersect(*sa, *sb);

    if(va.isEmpty() || vb.isEmpty())
        return false;
    if(va.isInfinite() || vb.isInfinite())
        return true;
    Pnt3f amin, amax, bmin, bmax;
    va.getBounds(amin, amax);
    vb.getBounds(bmin, bmax);
    return overlapBounds(amin, amax, bmin, bmax);
}

OSG_END_NAMESPACE
