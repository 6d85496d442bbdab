// Planes and frusta: the culling answers for boxes and spheres around a
// perspective frustum whose geometry is known exactly.
#include <OpenSG/OSGBoxVolume.h>
#include <OpenSG/OSGDynamicVolume.h>
#include <OpenSG/OSGFrustumVolume.h>
#include <OpenSG/OSGLine.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGPlane.h>
#include <OpenSG/OSGSphereVolume.h>

#include <gtest/gtest.h>

#include <cmath>

using namespace osg;

namespace
{

// 90 degree square frustum looking down -z from the origin, near 1, far 10:
// at depth d it spans [-d, d] in x and y.
FrustumVolume unitFrustum(void)
{
    Matrix proj;
    MatrixFrustum(proj, -1.f, 1.f, -1.f, 1.f, 1.f, 10.f);

    FrustumVolume f;
    f.setPlanes(proj);
    return f;
}

BoxVolume boxAround(const Pnt3f &c, Real32 half)
{
    return BoxVolume(c - Vec3f(half, half, half), c + Vec3f(half, half, half));
}

} // namespace

TEST(PlaneTest, PointsNormalDistanceAndLines)
{
    // Counter-clockwise seen from +z: normal +z.
    Plane p(Pnt3f(0, 0, 2), Pnt3f(1, 0, 2), Pnt3f(0, 1, 2));

    EXPECT_NEAR(p.getNormal()[2], 1.f, 1e-6f);
    EXPECT_NEAR(p.getDistanceFromOrigin(), 2.f, 1e-6f);
    EXPECT_NEAR(p.distance(Pnt3f(5, 5, 5)), 3.f, 1e-6f);
    EXPECT_TRUE(p.isInHalfSpace(Pnt3f(0, 0, 2.5f)));
    EXPECT_FALSE(p.isInHalfSpace(Pnt3f(0, 0, 1.5f)));
    EXPECT_TRUE(p.isOnPlane(Pnt3f(7, -3, 2)));

    // The equation form is scaled to a unit normal.
    Plane q;
    q.set(0.f, 0.f, 2.f, -4.f);
    EXPECT_EQ(p, q);

    Pnt3f hit;
    EXPECT_TRUE(p.intersect(Line(Pnt3f(1, 1, 0), Vec3f(0, 0, 1)), hit));
    EXPECT_NEAR(hit[2], 2.f, 1e-6f);
    // Behind the ray's origin: only the infinite line meets it.
    EXPECT_FALSE(p.intersect(Line(Pnt3f(1, 1, 3), Vec3f(0, 0, 1)), hit));
    EXPECT_TRUE(p.intersectInfinite(Line(Pnt3f(1, 1, 3), Vec3f(0, 0, 1)), hit));

    // Two planes meet in a line lying on both.
    Plane x0(Vec3f(1, 0, 0), 0.f);
    Line  meet;
    ASSERT_TRUE(p.intersect(x0, meet));
    EXPECT_TRUE(p.isOnPlane(meet.getPosition()));
    EXPECT_TRUE(x0.isOnPlane(meet.getPosition()));
    EXPECT_NEAR(std::fabs(meet.getDirection()[1]), 1.f, 1e-6f);
    EXPECT_FALSE(p.intersect(q, meet));
}

TEST(PlaneTest, TransformKeepsPointsOnThePlane)
{
    Plane p(Vec3f(0, 1, 0), Pnt3f(0, 3, 0));

    Matrix m;
    m.setTransform(Vec3f(1, 2, 3), Quaternion(Vec3f(1, 0, 0), Pi / 2.f));
    m[0][0] = 2.f; // a non-uniform scale as well

    p.transform(m);

    for(const Pnt3f &onPlane : {Pnt3f(0, 3, 0), Pnt3f(4, 3, -2)})
    {
        Pnt3f moved;
        m.mult(onPlane, moved);
        EXPECT_NEAR(p.distance(moved), 0.f, 1e-5f);
    }

    // The positive side stays the positive side.
    Pnt3f above;
    m.mult(Pnt3f(0, 5, 0), above);
    EXPECT_GT(p.distance(above), 0.f);
}

TEST(FrustumVolumeTest, PlanesFromMatrixHaveTheExpectedCorners)
{
    FrustumVolume f = unitFrustum();

    Pnt3f c[8];
    ASSERT_TRUE(f.getCorners(c));

    // nlt, nlb, nrt, nrb, flt, flb, frt, frb
    const Pnt3f expected[8] = {{-1, 1, -1},   {-1, -1, -1}, {1, 1, -1},
                               {1, -1, -1},   {-10, 10, -10}, {-10, -10, -10},
                               {10, 10, -10}, {10, -10, -10}};

    for(int i = 0; i < 8; ++i)
        for(int k = 0; k < 3; ++k)
            EXPECT_NEAR(c[i][k], expected[i][k], 1e-4f) << "corner " << i;

    // Pyramid frustum volume: (A1 + A2 + sqrt(A1 A2)) h / 3.
    EXPECT_NEAR(f.getScalarVolume(), (4.f + 400.f + 40.f) * 9.f / 3.f, 0.1f);

    Pnt3f mi, ma;
    f.getBounds(mi, ma);
    EXPECT_NEAR(mi[0], -10.f, 1e-4f);
    EXPECT_NEAR(ma[2], -1.f, 1e-4f);

    // Rebuilding from the corners gives the same planes.
    FrustumVolume g;
    g.setPlanes(c[0], c[1], c[2], c[3], c[4], c[5], c[6], c[7]);
    EXPECT_EQ(f, g);
}

TEST(FrustumVolumeTest, PointsAndRays)
{
    FrustumVolume f = unitFrustum();

    EXPECT_TRUE(f.intersect(Pnt3f(0, 0, -5)));
    EXPECT_TRUE(f.intersect(Pnt3f(4.9f, -4.9f, -5)));
    EXPECT_FALSE(f.intersect(Pnt3f(5.1f, 0, -5)));
    EXPECT_FALSE(f.intersect(Pnt3f(0, 0, -0.5f))); // before near
    EXPECT_FALSE(f.intersect(Pnt3f(0, 0, -11)));   // beyond far
    EXPECT_FALSE(f.intersect(Pnt3f(0, 0, 5)));     // behind the eye
    EXPECT_TRUE(f.isOnSurface(Pnt3f(0, 0, -1)));
    EXPECT_FALSE(f.isOnSurface(Pnt3f(0, 0, -2)));

    Real32 enter, exit;
    ASSERT_TRUE(f.intersect(Line(Pnt3f(0, 0, 0), Vec3f(0, 0, -1)), enter, exit));
    EXPECT_NEAR(enter, 1.f, 1e-5f);
    EXPECT_NEAR(exit, 10.f, 1e-4f);

    // Parallel to the frustum, outside it; and pointing away.
    EXPECT_FALSE(f.intersect(Line(Pnt3f(20, 0, 0), Vec3f(0, 0, -1))));
    EXPECT_FALSE(f.intersect(Line(Pnt3f(0, 0, 0), Vec3f(0, 0, 1))));
}

TEST(FrustumVolumeTest, CullsBoxesAndSpheres)
{
    FrustumVolume f = unitFrustum();

    // Inside, straddling each plane, wholly beyond each plane.
    EXPECT_TRUE(intersect(f, boxAround(Pnt3f(0, 0, -5), 1.f)));
    EXPECT_TRUE(intersect(f, boxAround(Pnt3f(5, 0, -5), 0.5f)));   // right
    EXPECT_TRUE(intersect(f, boxAround(Pnt3f(0, 0, -10), 0.5f)));  // far
    EXPECT_TRUE(intersect(f, boxAround(Pnt3f(0, 0, -1), 0.5f)));   // near
    EXPECT_FALSE(intersect(f, boxAround(Pnt3f(7, 0, -5), 0.5f)));  // right
    EXPECT_FALSE(intersect(f, boxAround(Pnt3f(-7, 0, -5), 0.5f))); // left
    EXPECT_FALSE(intersect(f, boxAround(Pnt3f(0, 7, -5), 0.5f)));  // top
    EXPECT_FALSE(intersect(f, boxAround(Pnt3f(0, -7, -5), 0.5f))); // bottom
    EXPECT_FALSE(intersect(f, boxAround(Pnt3f(0, 0, -11), 0.5f))); // far
    EXPECT_FALSE(intersect(f, boxAround(Pnt3f(0, 0, 0), 0.5f)));   // near
    // A box enclosing the whole frustum is visible.
    EXPECT_TRUE(intersect(f, boxAround(Pnt3f(0, 0, -5), 100.f)));

    EXPECT_TRUE(intersect(f, SphereVolume(Pnt3f(0, 0, -5), 1.f)));
    // Centre outside the right plane, but within the radius.
    EXPECT_TRUE(intersect(f, SphereVolume(Pnt3f(5.5f, 0, -5), 1.f)));
    EXPECT_FALSE(intersect(f, SphereVolume(Pnt3f(8.f, 0, -5), 1.f)));

    // Empty volumes never count, infinite ones always.
    BoxVolume empty;
    EXPECT_FALSE(intersect(f, empty));
    BoxVolume infinite;
    infinite.setInfinite();
    EXPECT_TRUE(intersect(f, infinite));

    // A dynamic volume counts as its instance; the member form agrees.
    DynamicVolume dyn;
    dyn.getInstance().extendBy(Pnt3f(6, 0, -5));
    dyn.getInstance().extendBy(Pnt3f(7, 1, -4));
    dyn.instanceChanged();
    EXPECT_FALSE(intersect(f, static_cast<const Volume &>(dyn)));
    EXPECT_FALSE(f.intersect(dyn));
    dyn.getInstance().extendBy(Pnt3f(0, 0, -5));
    dyn.instanceChanged();
    EXPECT_TRUE(f.intersect(dyn));
}

TEST(FrustumVolumeTest, PlaneSetsRecordWhatIsWhollyInside)
{
    FrustumVolume f = unitFrustum();

    FrustumVolume::PlaneSet in = FrustumVolume::P_NONE;
    EXPECT_TRUE(intersect(f, boxAround(Pnt3f(0, 0, -5), 1.f), in));
    EXPECT_EQ(in, FrustumVolume::P_ALL);

    // Straddling the right plane: inside all others.
    in = FrustumVolume::P_NONE;
    EXPECT_TRUE(intersect(f, boxAround(Pnt3f(5, 0, -5), 0.5f), in));
    EXPECT_EQ(in, FrustumVolume::P_ALL & ~FrustumVolume::P_RIGHT);

    // Straddling near and left at once.
    in = FrustumVolume::P_NONE;
    EXPECT_TRUE(intersect(f, boxAround(Pnt3f(-1, 0, -1), 0.2f), in));
    EXPECT_EQ(in, FrustumVolume::P_FAR | FrustumVolume::P_RIGHT |
                      FrustumVolume::P_TOP | FrustumVolume::P_BOTTOM);

    // Planes already passed above are not tested again: a box beyond the
    // right plane survives when the parent was wholly inside it.
    in = FrustumVolume::P_RIGHT;
    EXPECT_TRUE(intersect(f, boxAround(Pnt3f(7, 0, -5), 0.5f), in));
    in = FrustumVolume::P_NONE;
    EXPECT_FALSE(intersect(f, boxAround(Pnt3f(7, 0, -5), 0.5f), in));

    in = FrustumVolume::P_NONE;
    EXPECT_TRUE(intersect(f, SphereVolume(Pnt3f(0, 0, -5), 0.5f), in));
    EXPECT_EQ(in, FrustumVolume::P_ALL);
}

TEST(FrustumVolumeTest, ViewTransformAndDefaults)
{
    // The same frustum seen from a camera at (0, 0, 10): world = eye + 10 z.
    Matrix proj, view;
    MatrixFrustum(proj, -1.f, 1.f, -1.f, 1.f, 1.f, 10.f);
    view.setTranslate(0.f, 0.f, -10.f);
    proj.mult(view);

    FrustumVolume f;
    f.setPlanes(proj);
    EXPECT_TRUE(intersect(f, boxAround(Pnt3f(0, 0, 5), 1.f)));
    EXPECT_FALSE(intersect(f, boxAround(Pnt3f(0, 0, -5), 1.f)));

    // Moving the eye-space frustum by the camera-to-world matrix gives the
    // same planes.
    FrustumVolume g = unitFrustum();
    Matrix camToWorld;
    camToWorld.setTranslate(0.f, 0.f, 10.f);
    g.transform(camToWorld);
    EXPECT_EQ(f, g);

    // Default planes cull nothing.
    FrustumVolume none;
    EXPECT_TRUE(intersect(none, boxAround(Pnt3f(123, -45, 6), 1.f)));
}
