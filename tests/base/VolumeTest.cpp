// Volume state rules, box and sphere behaviour, and the dynamic wrapper.
#include <OpenSG/OSGBoxVolume.h>
#include <OpenSG/OSGDynamicVolume.h>
#include <OpenSG/OSGSphereVolume.h>
#include <OpenSG/OSGVolumeFunctions.h>

#include <gtest/gtest.h>

#include <cmath>

OSG_USING_NAMESPACE

TEST(VolumeState, NewVolumeIsValidAndEmpty)
{
    BoxVolume b;
    EXPECT_EQ(b.getState(), Volume::OSGVALID | Volume::OSGEMPTY);
    SphereVolume s;
    EXPECT_EQ(s.getState(), Volume::VALID | Volume::EMPTY);
}

TEST(VolumeState, StaticBlocksSetValidButNotSetEmpty)
{
    BoxVolume b(0, 0, 0, 1, 1, 1);
    b.setStatic();
    b.setValid(false);
    EXPECT_TRUE(b.isValid());

    b.setInfinite();
    b.setEmpty();
    EXPECT_EQ(b.getState(), Volume::STATIC | Volume::EMPTY | Volume::VALID);

    b.setStatic(false);
    b.setValid(false);
    EXPECT_FALSE(b.isValid());
    b.setEmpty(false);
    EXPECT_FALSE(b.isEmpty());
    EXPECT_FALSE(b.isValid()); // clearing empty does not validate
}

TEST(VolumeState, InfiniteIsValidAndNotEmpty)
{
    BoxVolume b;
    b.setValid(false);
    b.setInfinite();
    EXPECT_EQ(b.getState(), Volume::INFINITE | Volume::VALID);
    b.setInfinite(false);
    EXPECT_EQ(b.getState(), Volume::VALID);
}

TEST(VolumeState, UntouchableUnlessPlainlyValid)
{
    BoxVolume b;
    EXPECT_FALSE(b.isUntouchable()); // empty does not matter
    b.setValid(false);
    EXPECT_TRUE(b.isUntouchable());
    b.setValid(true);
    b.setStatic(true);
    EXPECT_TRUE(b.isUntouchable());
    b.setStatic(false);
    b.setInfinite(true);
    EXPECT_TRUE(b.isUntouchable());
}

TEST(VolumeState, BaseEqualityComparesStateOnly)
{
    BoxVolume a(0, 0, 0, 1, 1, 1), b(5, 5, 5, 9, 9, 9);
    EXPECT_TRUE(static_cast<Volume &>(a) == static_cast<Volume &>(b));
    EXPECT_FALSE(a == b);
}

TEST(BoxVolume, SetBoundsValidatesUnlessStatic)
{
    BoxVolume b;
    b.setValid(false);
    b.setInfinite(true);
    b.setBounds(2, 4, 6);
    EXPECT_EQ(b.getState(), Volume::VALID);
    EXPECT_EQ(b.getMin(), Pnt3f(-1, -2, -3));
    EXPECT_EQ(b.getMax(), Pnt3f(1, 2, 3));

    BoxVolume s;
    s.setValid(false);
    s.setStatic(true);
    s.setBounds(Pnt3f(0, 0, 0), Pnt3f(1, 1, 1));
    EXPECT_FALSE(s.isValid());
    EXPECT_FALSE(s.isEmpty());

    b.setBoundsByCenterAndSize(Pnt3f(1, 1, 1), Vec3f(0, 0, 0));
    EXPECT_TRUE(b.isEmpty());
    b.setBoundsByCenterAndSize(Pnt3f(1, 1, 1), Vec3f(2, 2, 2));
    EXPECT_FALSE(b.isEmpty());
    EXPECT_EQ(b.getMax(), Pnt3f(2, 2, 2));
}

TEST(BoxVolume, EmptyBoxKeepsItsCornersButReportsNoExtent)
{
    BoxVolume b(1, 2, 3, 4, 5, 6);
    b.setEmpty();
    Pnt3f mi, ma, c;
    b.getBounds(mi, ma);
    EXPECT_EQ(mi, Pnt3f(1, 2, 3));
    EXPECT_EQ(ma, Pnt3f(4, 5, 6));
    b.getCenter(c);
    EXPECT_EQ(c, Pnt3f(0, 0, 0));
    EXPECT_EQ(b.getScalarVolume(), 0.f);

    b.setEmpty(false);
    b.getCenter(c);
    EXPECT_EQ(c, Pnt3f(2.5f, 3.5f, 4.5f));
    EXPECT_FLOAT_EQ(b.getScalarVolume(), 27.f);
}

TEST(BoxVolume, OriginAndSize)
{
    BoxVolume box(-1, 2, 3, 4, 6, 11);
    Real32    x, y, z;
    box.getOrigin(x, y, z);
    EXPECT_EQ(Vec3f(x, y, z), Vec3f(-1, 2, 3));
    box.getSize(x, y, z);
    EXPECT_EQ(Vec3f(x, y, z), Vec3f(5, 4, 8));
    Vec3f size;
    box.getSize(size);
    EXPECT_EQ(size, Vec3f(5, 4, 8));
}

TEST(BoxVolume, ExtendByPoint)
{
    BoxVolume b;
    b.extendBy(Pnt3f(1, 2, 3));
    EXPECT_FALSE(b.isEmpty());
    EXPECT_EQ(b.getMin(), Pnt3f(1, 2, 3));
    EXPECT_EQ(b.getMax(), Pnt3f(1, 2, 3));

    b.extendBy(Pnt3f(-1, 5, 3));
    EXPECT_EQ(b.getMin(), Pnt3f(-1, 2, 3));
    EXPECT_EQ(b.getMax(), Pnt3f(1, 5, 3));

    b.setStatic();
    b.extendBy(Pnt3f(100, 100, 100));
    EXPECT_EQ(b.getMax(), Pnt3f(1, 5, 3));

    BoxVolume invalid;
    invalid.setValid(false);
    invalid.extendBy(Pnt3f(1, 1, 1));
    EXPECT_TRUE(invalid.isEmpty());
}

TEST(BoxVolume, ExtendByBoxFollowsTheStateRules)
{
    BoxVolume src(0, 0, 0, 1, 1, 1);

    BoxVolume empty;
    extend(empty, src);
    EXPECT_EQ(empty.getMax(), Pnt3f(1, 1, 1));
    EXPECT_EQ(empty.getState(), src.getState());

    BoxVolume dst(2, 2, 2, 3, 3, 3);
    extend(dst, src);
    EXPECT_EQ(dst.getMin(), Pnt3f(0, 0, 0));
    EXPECT_EQ(dst.getMax(), Pnt3f(3, 3, 3));

    BoxVolume invalidSrc(5, 5, 5, 6, 6, 6);
    invalidSrc.setValid(false);
    extend(dst, invalidSrc);
    EXPECT_EQ(dst.getMax(), Pnt3f(3, 3, 3));

    BoxVolume invalidDst(0, 0, 0, 1, 1, 1);
    invalidDst.setValid(false);
    extend(invalidDst, BoxVolume(5, 5, 5, 6, 6, 6));
    EXPECT_EQ(invalidDst.getMax(), Pnt3f(1, 1, 1));

    // Invalid but empty is still extended.
    BoxVolume invalidEmpty;
    invalidEmpty.setState(Volume::EMPTY);
    extend(invalidEmpty, src);
    EXPECT_EQ(invalidEmpty.getMax(), Pnt3f(1, 1, 1));
    EXPECT_TRUE(invalidEmpty.isValid());

    BoxVolume infiniteSrc(5, 5, 5, 6, 6, 6);
    infiniteSrc.setInfinite();
    extend(dst, infiniteSrc);
    EXPECT_TRUE(dst.isInfinite());
    EXPECT_EQ(dst.getMax(), Pnt3f(6, 6, 6));

    BoxVolume emptySrc;
    BoxVolume kept(2, 2, 2, 3, 3, 3);
    extend(kept, emptySrc);
    EXPECT_EQ(kept.getMin(), Pnt3f(2, 2, 2));
}

TEST(BoxVolume, SphereGoesInAsPlainBoxThroughVolume)
{
    // Through Volume& an empty sphere (radius 0 at the origin) still adds
    // the origin; the direct overload respects its emptiness.
    SphereVolume emptySphere;

    BoxVolume viaBase(2, 2, 2, 3, 3, 3);
    viaBase.extendBy(static_cast<const Volume &>(emptySphere));
    EXPECT_EQ(viaBase.getMin(), Pnt3f(0, 0, 0));

    BoxVolume direct(2, 2, 2, 3, 3, 3);
    extend(direct, emptySphere);
    EXPECT_EQ(direct.getMin(), Pnt3f(2, 2, 2));

    BoxVolume b;
    b.extendBy(SphereVolume(Pnt3f(1, 0, 0), 2));
    EXPECT_EQ(b.getMin(), Pnt3f(-1, -2, -2));
    EXPECT_EQ(b.getMax(), Pnt3f(3, 2, 2));
}

TEST(BoxVolume, PointIntersectionIsStrict)
{
    BoxVolume b(0, 0, 0, 1, 1, 1);
    EXPECT_TRUE(b.intersect(Pnt3f(0.5f, 0.5f, 0.5f)));
    EXPECT_FALSE(b.intersect(Pnt3f(1, 0.5f, 0.5f)));
    EXPECT_FALSE(b.intersect(Pnt3f(0, 0, 0)));
    EXPECT_TRUE(b.isOnSurface(Pnt3f(1, 0.5f, 0.5f)));
    EXPECT_FALSE(b.isOnSurface(Pnt3f(0.5f, 0.5f, 0.5f)));
    b.setEmpty();
    EXPECT_FALSE(b.intersect(Pnt3f(0.5f, 0.5f, 0.5f)));
}

TEST(BoxVolume, TransformStaysAxisAligned)
{
    BoxVolume  b(-1, -1, -1, 1, 1, 1);
    Matrix     m;
    Quaternion q(Vec3f(0, 0, 1), Pi / 4);
    m.setTransform(Vec3f(10, 0, 0), q);
    b.transform(m);
    Real32 r = std::sqrt(2.f);
    EXPECT_TRUE(b.getMin().equals(Pnt3f(10 - r, -r, -1), 1e-5f)) << b;
    EXPECT_TRUE(b.getMax().equals(Pnt3f(10 + r, r, 1), 1e-5f)) << b;

    BoxVolume empty(1, 1, 1, 2, 2, 2);
    empty.setEmpty();
    empty.transform(m);
    EXPECT_EQ(empty.getMin(), Pnt3f(1, 1, 1));
}

TEST(SphereVolume, CopyDoesNotCarryTheState)
{
    SphereVolume src(Pnt3f(1, 2, 3), 4);
    src.setValid(false);
    src.setStatic(true);

    SphereVolume copy(src);
    EXPECT_EQ(copy.getState(), Volume::VALID);
    EXPECT_EQ(copy.getRadius(), 4);

    SphereVolume empty;
    SphereVolume copyOfEmpty(empty);
    EXPECT_FALSE(copyOfEmpty.isEmpty());

    SphereVolume assigned;
    assigned = src;
    EXPECT_EQ(assigned.getState(), Volume::VALID | Volume::EMPTY);
    EXPECT_EQ(assigned.getCenter(), Pnt3f(1, 2, 3));

    assigned.setCenter(Pnt3f(0, 0, 0));
    EXPECT_TRUE(assigned.isEmpty());
    assigned.setValue(Pnt3f(0, 0, 0), 1);
    EXPECT_FALSE(assigned.isEmpty());
}

TEST(SphereVolume, ExtendByPointAndVolume)
{
    SphereVolume s;
    s.extendBy(Pnt3f(1, 1, 1));
    EXPECT_EQ(s.getCenter(), Pnt3f(1, 1, 1));
    EXPECT_EQ(s.getRadius(), 0);
    EXPECT_FALSE(s.isEmpty());
    s.extendBy(Pnt3f(1, 4, 5));
    EXPECT_FLOAT_EQ(s.getRadius(), 5);
    s.extendBy(Pnt3f(1, 2, 1));
    EXPECT_FLOAT_EQ(s.getRadius(), 5);

    // Sphere around the combined bounding box.
    SphereVolume a(Pnt3f(0, 0, 0), 1);
    a.extendBy(SphereVolume(Pnt3f(4, 0, 0), 1));
    EXPECT_EQ(a.getCenter(), Pnt3f(2, 0, 0));
    EXPECT_FLOAT_EQ(a.getRadius(), std::sqrt(9.f + 1 + 1));

    SphereVolume fromBox;
    fromBox.extendBy(BoxVolume(0, 0, 0, 2, 2, 2));
    EXPECT_EQ(fromBox.getCenter(), Pnt3f(1, 1, 1));
    EXPECT_FLOAT_EQ(fromBox.getRadius(), std::sqrt(3.f));
}

TEST(SphereVolume, QueriesAndTransform)
{
    SphereVolume s(Pnt3f(1, 0, 0), 2);
    Pnt3f        mi, ma;
    s.getBounds(mi, ma);
    EXPECT_EQ(mi, Pnt3f(-1, -2, -2));
    EXPECT_FLOAT_EQ(s.getScalarVolume(), 4.f / 3.f * Pi * 8);
    EXPECT_TRUE(s.intersect(Pnt3f(3, 0, 0)));
    EXPECT_FALSE(s.intersect(Pnt3f(3.01f, 0, 0)));
    EXPECT_TRUE(s.isOnSurface(Pnt3f(1, 2, 0)));

    Matrix m;
    m.setTransform(Vec3f(0, 0, 5), Quaternion(), Vec3f(1, 3, 1));
    s.transform(m);
    EXPECT_EQ(s.getCenter(), Pnt3f(1, 0, 5));
    EXPECT_FLOAT_EQ(s.getRadius(), 6); // measured along y

    SphereVolume empty;
    EXPECT_EQ(empty.getScalarVolume(), 0);
}

TEST(VolumeIntersect, BoxesAndSpheres)
{
    BoxVolume    box(0, 0, 0, 1, 1, 1);
    SphereVolume near(Pnt3f(2, 0.5f, 0.5f), 1.01f);
    SphereVolume far(Pnt3f(3, 3, 3), 1);

    EXPECT_TRUE(box.intersect(near));
    EXPECT_FALSE(box.intersect(far));
    EXPECT_TRUE(near.intersect(box));
    EXPECT_TRUE(box.intersect(BoxVolume(1, 1, 1, 2, 2, 2))); // touching
    EXPECT_FALSE(box.intersect(BoxVolume(1.1f, 0, 0, 2, 1, 1)));
    EXPECT_TRUE(near.intersect(SphereVolume(Pnt3f(4, 0.5f, 0.5f), 1)));

    BoxVolume empty;
    EXPECT_FALSE(box.intersect(empty));
    far.setInfinite();
    EXPECT_TRUE(box.intersect(far));
}

TEST(DynamicVolume, InstanceLivesInFiveDoubles)
{
    EXPECT_LE(sizeof(BoxVolume), 5 * sizeof(Real64));
    DynamicVolume d;
    EXPECT_EQ(d.getType(), DynamicVolume::BOX_VOLUME);
    EXPECT_NE(dynamic_cast<BoxVolume *>(&d.getInstance()), nullptr);
    EXPECT_TRUE(d.isEmpty());
}

TEST(DynamicVolume, StateFollowsTheInstance)
{
    DynamicVolume d;
    d.extendBy(Pnt3f(1, 2, 3));
    EXPECT_FALSE(d.isEmpty());
    EXPECT_FALSE(d.getInstance().isEmpty());

    d.setStatic();
    EXPECT_TRUE(d.getInstance().isStatic());
    d.extendBy(Pnt3f(9, 9, 9));
    EXPECT_EQ(d.getMax(), Pnt3f(1, 2, 3));

    // Through a Volume& the base accessors act on the outer state only.
    DynamicVolume e;
    static_cast<Volume &>(e).setEmpty(false);
    EXPECT_FALSE(e.isEmpty());
    EXPECT_TRUE(e.getInstance().isEmpty());
    e.updateInstanceState();
    EXPECT_FALSE(e.getInstance().isEmpty());
}

TEST(DynamicVolume, InstanceEmptyKeepsOldCorners)
{
    // How a core's adjustVolume sees a node volume: the instance is a box.
    DynamicVolume d;
    d.extendBy(Pnt3f(1, 1, 1));
    d.extendBy(Pnt3f(2, 3, 4));
    Volume &inst = d.getInstance();
    inst.setEmpty();
    inst.setEmpty(false);
    EXPECT_EQ(inst.getMin(), Pnt3f(1, 1, 1));
    EXPECT_EQ(inst.getMax(), Pnt3f(2, 3, 4));
}

TEST(DynamicVolume, MorphAndCopy)
{
    DynamicVolume d;
    d.extendBy(Pnt3f(0, 0, 0));
    d.extendBy(Pnt3f(2, 2, 2));
    d.morphToType(DynamicVolume::SPHERE_VOLUME);
    const SphereVolume &s = dynamic_cast<const SphereVolume &>(d.getInstance());
    EXPECT_EQ(s.getCenter(), Pnt3f(1, 1, 1));
    EXPECT_FLOAT_EQ(s.getRadius(), std::sqrt(3.f));
    EXPECT_FALSE(d.isEmpty());

    DynamicVolume emptyCopySource(DynamicVolume::SPHERE_VOLUME);
    DynamicVolume copy(emptyCopySource);
    EXPECT_TRUE(copy.getInstance().isEmpty());
    EXPECT_TRUE(copy == emptyCopySource);

    DynamicVolume assigned;
    assigned = d;
    EXPECT_EQ(assigned.getType(), DynamicVolume::SPHERE_VOLUME);
    EXPECT_TRUE(assigned == d);
    EXPECT_FALSE(assigned == DynamicVolume());

    d.setVolumeType(DynamicVolume::BOX_VOLUME);
    EXPECT_TRUE(d.isEmpty());
    EXPECT_TRUE(d.getInstance().isEmpty());
}

TEST(DynamicVolume, CountsAsItsInstanceWhenExtending)
{
    DynamicVolume d(DynamicVolume::SPHERE_VOLUME);
    d.extendBy(Pnt3f(0, 0, 0)); // sphere of radius 0 at the origin
    d.setValid(false);

    // The instance is a sphere, so it takes the generic path, which ignores
    // even the invalid state.
    BoxVolume b(1, 1, 1, 2, 2, 2);
    b.extendBy(d);
    EXPECT_EQ(b.getMin(), Pnt3f(0, 0, 0));

    // A box instance goes through extend(box, box) and its rules.
    DynamicVolume invalidBox;
    invalidBox.extendBy(Pnt3f(-5, -5, -5));
    invalidBox.setValid(false);
    b.extendBy(invalidBox);
    EXPECT_EQ(b.getMin(), Pnt3f(0, 0, 0));
}
