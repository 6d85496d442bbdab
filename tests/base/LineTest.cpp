// Rays against spheres, boxes and triangles, and the closest-point helpers.
#include <OpenSG/OSGBoxVolume.h>
#include <OpenSG/OSGLine.h>
#include <OpenSG/OSGSphereVolume.h>

#include <gtest/gtest.h>

OSG_USING_NAMESPACE

TEST(LineSetup, DirectionIsNormalised)
{
    Line l(Pnt3f(1, 0, 0), Pnt3f(1, 0, 4));
    EXPECT_EQ(l.getPosition(), Pnt3f(1, 0, 0));
    EXPECT_EQ(l.getDirection(), Vec3f(0, 0, 1));

    l.setValue(Pnt3f(0, 0, 0), Vec3f(0, 3, 4));
    EXPECT_EQ(l.getDirection(), Vec3f(0, 0.6f, 0.8f));

    // A zero direction stays zero instead of turning into NaN.
    l.setValue(Pnt3f(0, 0, 0), Pnt3f(0, 0, 0));
    EXPECT_EQ(l.getDirection(), Vec3f(0, 0, 0));
}

TEST(LineSphere, HitAheadGivesEnterAndExit)
{
    Line         l(Pnt3f(0, 0, 0), Vec3f(0, 0, -1));
    SphereVolume s(Pnt3f(0, 0, -10), 2);
    Real32       enter = 0, exit = 0;
    ASSERT_TRUE(l.intersect(s, enter, exit));
    EXPECT_FLOAT_EQ(enter, 8);
    EXPECT_FLOAT_EQ(exit, 12);
    EXPECT_TRUE(s.intersect(l));
}

TEST(LineSphere, IsAHalfInfiniteRay)
{
    // A sphere past the end point of a two-point line still counts.
    Line         l(Pnt3f(0, 0, 0), Pnt3f(0, 0, -1));
    SphereVolume beyond(Pnt3f(0, 0, -100), 1);
    EXPECT_TRUE(l.intersect(beyond));

    SphereVolume behind(Pnt3f(0, 0, 10), 2);
    EXPECT_FALSE(l.intersect(behind));

    SphereVolume aside(Pnt3f(3, 0, -10), 2);
    EXPECT_FALSE(l.intersect(aside));
}

TEST(LineSphere, OriginInsideAlwaysHits)
{
    Line         l(Pnt3f(0, 0, 0), Vec3f(1, 0, 0));
    SphereVolume s(Pnt3f(0, 0, 0), 1);
    Real32       enter, exit;
    ASSERT_TRUE(l.intersect(s, enter, exit));
    EXPECT_FLOAT_EQ(enter, -1);
    EXPECT_FLOAT_EQ(exit, 1);
}

TEST(LineSphere, IgnoresTheSphereState)
{
    Line         l(Pnt3f(0, 0, 0), Vec3f(0, 0, -1));
    SphereVolume s(Pnt3f(0, 0, -5), 1);
    s.setEmpty();
    s.setValid(false);
    EXPECT_TRUE(l.intersect(s));
}

TEST(LineSphere, HitsCloserThanEpsDoNotCount)
{
    // Origin on the surface of a tiny sphere just ahead: both t < Eps.
    Line         l(Pnt3f(0, 0, 0), Vec3f(0, 0, 1));
    SphereVolume s(Pnt3f(0, 0, 2e-7f), 2e-7f);
    EXPECT_FALSE(l.intersect(s));

    // The same sphere scaled up is hit.
    SphereVolume big(Pnt3f(0, 0, 2), 2);
    Real32       enter, exit;
    ASSERT_TRUE(l.intersect(big, enter, exit));
    EXPECT_FLOAT_EQ(exit, 4);
}

TEST(LineBox, SlabTest)
{
    BoxVolume b(-1, -1, -1, 1, 1, 1);
    Real32    enter, exit;

    Line hit(Pnt3f(-5, 0.5f, 0), Vec3f(1, 0, 0));
    ASSERT_TRUE(hit.intersect(b, enter, exit));
    EXPECT_FLOAT_EQ(enter, 4);
    EXPECT_FLOAT_EQ(exit, 6);
    EXPECT_TRUE(b.intersect(hit));

    Line diagonal(Pnt3f(-2, -2, -2), Pnt3f(0, 0, 0));
    ASSERT_TRUE(diagonal.intersect(b, enter, exit));
    EXPECT_NEAR(enter, std::sqrt(3.f), 1e-5f);

    Line miss(Pnt3f(-5, 1.5f, 0), Vec3f(1, 0, 0));
    EXPECT_FALSE(miss.intersect(b));

    Line inside(Pnt3f(0, 0, 0), Vec3f(0, 1, 0));
    ASSERT_TRUE(inside.intersect(b, enter, exit));
    EXPECT_FLOAT_EQ(enter, -1);
    EXPECT_FLOAT_EQ(exit, 1);

    Line away(Pnt3f(5, 0, 0), Vec3f(1, 0, 0));
    EXPECT_FALSE(away.intersect(b));

    b.setEmpty();
    EXPECT_FALSE(hit.intersect(b));
}

TEST(LineTriangle, HitGivesDistanceAndNormal)
{
    Line  l(Pnt3f(0.25f, 0.25f, 5), Vec3f(0, 0, -1));
    Real32 t = 0;
    Vec3f  n;
    ASSERT_TRUE(l.intersect(Pnt3f(0, 0, 0), Pnt3f(1, 0, 0), Pnt3f(0, 1, 0), t,
                            &n));
    EXPECT_FLOAT_EQ(t, 5);
    EXPECT_EQ(n, Vec3f(0, 0, 1));

    // Winding does not matter for a hit, only for the normal.
    ASSERT_TRUE(l.intersect(Pnt3f(0, 0, 0), Pnt3f(0, 1, 0), Pnt3f(1, 0, 0), t,
                            &n));
    EXPECT_EQ(n, Vec3f(0, 0, -1));
}

TEST(LineTriangle, MissesAndParallel)
{
    Real32 t;
    Line   outside(Pnt3f(0.75f, 0.75f, 5), Vec3f(0, 0, -1));
    EXPECT_FALSE(outside.intersect(Pnt3f(0, 0, 0), Pnt3f(1, 0, 0),
                                   Pnt3f(0, 1, 0), t));

    Line parallel(Pnt3f(0, 0, 1), Vec3f(1, 0, 0));
    EXPECT_FALSE(parallel.intersect(Pnt3f(0, 0, 0), Pnt3f(1, 0, 0),
                                    Pnt3f(0, 1, 0), t));

    // Small triangles hit as well as big ones.
    Line l(Pnt3f(2.5e-5f, 2.5e-5f, 1), Vec3f(0, 0, -1));
    EXPECT_TRUE(l.intersect(Pnt3f(0, 0, 0), Pnt3f(1e-4f, 0, 0),
                            Pnt3f(0, 1e-4f, 0), t));

    // Behind the origin: reported, with a negative distance.
    Line back(Pnt3f(0.25f, 0.25f, 5), Vec3f(0, 0, 1));
    ASSERT_TRUE(back.intersect(Pnt3f(0, 0, 0), Pnt3f(1, 0, 0), Pnt3f(0, 1, 0),
                               t));
    EXPECT_FLOAT_EQ(t, -5);
}

TEST(LineClosest, PointsAndDistance)
{
    Line l(Pnt3f(0, 0, 0), Vec3f(1, 0, 0));
    EXPECT_EQ(l.getClosestPoint(Pnt3f(5, 3, 0)), Pnt3f(5, 0, 0));
    EXPECT_EQ(l.getClosestPoint(Pnt3f(-2, 0, 4)), Pnt3f(-2, 0, 0));
    EXPECT_FLOAT_EQ(l.distance(Pnt3f(5, 3, 4)), 5);

    Line  other(Pnt3f(2, 1, 3), Vec3f(0, 0, 1));
    Pnt3f a, b;
    ASSERT_TRUE(l.getClosestPoints(other, a, b));
    EXPECT_EQ(a, Pnt3f(2, 0, 0));
    EXPECT_EQ(b, Pnt3f(2, 1, 0));

    Line parallel(Pnt3f(0, 1, 0), Vec3f(-1, 0, 0));
    EXPECT_FALSE(l.getClosestPoints(parallel, a, b));
}
