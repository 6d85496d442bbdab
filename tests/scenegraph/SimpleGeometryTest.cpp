// The shape makers: makePlaneGeo's exact layout, the default material, and
// for the other shapes that every triangle faces outwards, the vertex
// normals agree with it and the bounds are those asked for.
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGLog.h>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

using namespace osg;

namespace
{

GeoPositions3fPtr positionsOf(GeometryPtr geo)
{
    return GeoPositions3fPtr::dcast(geo->getPositions());
}

} // namespace

TEST(MakePlane, UnitPlaneIsOneStripOfFourVertices)
{
    GeometryPtr geo = makePlaneGeo(1, 1, 1, 1);
    ASSERT_NE(geo, NullFC);
    addRefCP(geo);

    GeoPositions3fPtr   pos = positionsOf(geo);
    GeoNormals3fPtr     n   = GeoNormals3fPtr::dcast(geo->getNormals());
    GeoTexCoords2fPtr   tc  = GeoTexCoords2fPtr::dcast(geo->getTexCoords());
    GeoIndicesUI32Ptr   ind = GeoIndicesUI32Ptr::dcast(geo->getIndices());
    GeoPTypesUI8Ptr     t   = GeoPTypesUI8Ptr::dcast(geo->getTypes());
    GeoPLengthsUI32Ptr  l   = GeoPLengthsUI32Ptr::dcast(geo->getLengths());
    ASSERT_TRUE(pos != NullFC && n != NullFC && tc != NullFC && ind != NullFC && t != NullFC &&
                l != NullFC);

    const Pnt3f p[4] = {Pnt3f(-.5f, -.5f, 0), Pnt3f(.5f, -.5f, 0), Pnt3f(-.5f, .5f, 0),
                        Pnt3f(.5f, .5f, 0)};
    const Vec2f uv[4] = {Vec2f(0, 0), Vec2f(1, 0), Vec2f(0, 1), Vec2f(1, 1)};
    ASSERT_EQ(pos->getField().size(), 4u);
    for(UInt32 i = 0; i < 4; ++i)
    {
        EXPECT_EQ(pos->getField()[i], p[i]) << i;
        EXPECT_EQ(n->getField()[i], Vec3f(0, 0, 1)) << i;
        EXPECT_EQ(tc->getField()[i], uv[i]) << i;
    }
    ASSERT_EQ(ind->getField().size(), 4u);
    EXPECT_EQ(ind->getField()[0], 2u);
    EXPECT_EQ(ind->getField()[1], 0u);
    EXPECT_EQ(ind->getField()[2], 3u);
    EXPECT_EQ(ind->getField()[3], 1u);
    ASSERT_EQ(t->getField().size(), 1u);
    EXPECT_EQ(t->getField()[0], GL_TRIANGLE_STRIP);
    EXPECT_EQ(l->getField()[0], 4u);
    ASSERT_EQ(geo->getMFIndexMapping()->size(), 1u);
    EXPECT_EQ(geo->getIndexMapping(0), 0x13);
    EXPECT_EQ(geo->getMaterial(), getDefaultMaterial());

    subRefCP(geo);
}

TEST(MakePlane, GridLayoutRowsAndStrips)
{
    const UInt16 hor = 3, vert = 2;
    GeometryPtr  geo = makePlaneGeo(6, 4, hor, vert);
    ASSERT_NE(geo, NullFC);
    addRefCP(geo);

    GeoPositions3fPtr pos = positionsOf(geo);
    GeoTexCoords2fPtr tc  = GeoTexCoords2fPtr::dcast(geo->getTexCoords());
    ASSERT_EQ(pos->getField().size(), UInt32((hor + 1) * (vert + 1)));
    for(UInt32 y = 0; y <= vert; ++y)
    {
        for(UInt32 x = 0; x <= hor; ++x)
        {
            UInt32 i = y * (hor + 1) + x;
            EXPECT_EQ(pos->getField()[i], Pnt3f(x * 2.f - 3.f, y * 2.f - 2.f, 0)) << i;
            EXPECT_EQ(tc->getField()[i], Vec2f(x / 3.f, y / 2.f)) << i;
        }
    }

    GeoPLengthsPtr l   = geo->getLengths();
    GeoIndicesPtr  ind = geo->getIndices();
    ASSERT_EQ(l->getSize(), UInt32(vert));
    UInt32 k = 0;
    for(UInt32 y = 0; y < vert; ++y)
    {
        EXPECT_EQ(geo->getTypes()->getValue(y), GL_TRIANGLE_STRIP);
        EXPECT_EQ(l->getValue(y), 2u * (hor + 1));
        for(UInt32 x = 0; x <= hor; ++x)
        {
            EXPECT_EQ(ind->getValue(k++), (y + 1) * (hor + 1) + x);
            EXPECT_EQ(ind->getValue(k++), y * (hor + 1) + x);
        }
    }
    subRefCP(geo);
}

TEST(MakePlane, RefusesZeroSubdivisions)
{
    LogCapture log(LOG_WARNING);
    EXPECT_EQ(makePlaneGeo(1, 1, 0, 2), NullFC);
    EXPECT_NE(log.take().find("makePlane: illegal parameters hor=0, vert=2"), std::string::npos);
    EXPECT_EQ(makePlane(1, 1, 3, 0), NullFC);

    NodePtr node = makePlane(1, 1, 1, 1);
    ASSERT_NE(node, NullFC);
    EXPECT_NE(GeometryPtr::dcast(node->getCore()), NullFC);
    addRefCP(node);
    subRefCP(node);
}

TEST(DefaultMaterial, OneSharedLitMaterialAndOneUnlit)
{
    MaterialPtr m = getDefaultMaterial();
    ASSERT_NE(m, NullFC);
    EXPECT_EQ(getDefaultMaterial(), m);
    SimpleMaterialPtr sm = SimpleMaterialPtr::dcast(m);
    ASSERT_NE(sm, NullFC);
    EXPECT_EQ(sm->getDiffuse(), Color3f(.7f, .7f, .5f));
    EXPECT_EQ(sm->getAmbient(), Color3f(.1f, .1f, .1f));
    EXPECT_EQ(sm->getSpecular(), Color3f(1, 1, 1));
    EXPECT_EQ(sm->getShininess(), 20.f);
    EXPECT_TRUE(sm->getLit());

    SimpleMaterialPtr unlit = SimpleMaterialPtr::dcast(getDefaultUnlitMaterial());
    ASSERT_NE(unlit, NullFC);
    EXPECT_NE(MaterialPtr(unlit), m);
    EXPECT_FALSE(unlit->getLit());
    EXPECT_EQ(unlit->getDiffuse(), Color3f(1, 1, .5f));

    // the process keeps its own reference: a user's release does not free it
    addRefCP(m);
    subRefCP(m);
    EXPECT_GE(getDefaultMaterial().getRefCount(), 1);
}

namespace
{

/// Checks a closed shape: every triangle winds counter-clockwise seen from
/// outside (outward = direction from the shape's "inner" point for that
/// triangle), vertex normals are on the same side (and unit length unless
/// the shape's are not), and returns the bounds.
void checkShape(GeometryPtr geo, std::function<Pnt3f(const Pnt3f &)> inner, Pnt3f &lo, Pnt3f &hi,
                UInt32 &triangles, bool unitNormals = true)
{
    triangles = 0;
    lo        = Pnt3f(1e30f, 1e30f, 1e30f);
    hi        = Pnt3f(-1e30f, -1e30f, -1e30f);
    for(TriangleIterator it = geo->beginTriangles(); !it.isAtEnd(); ++it, ++triangles)
    {
        Pnt3f p0 = it.getPosition(0), p1 = it.getPosition(1), p2 = it.getPosition(2);
        Vec3f face = (p1 - p0).cross(p2 - p0);
        if(face.length() < 1e-7f)
            continue; // the poles of lat/long spheres
        Pnt3f centre((p0[0] + p1[0] + p2[0]) / 3, (p0[1] + p1[1] + p2[1]) / 3,
                     (p0[2] + p1[2] + p2[2]) / 3);
        Vec3f out = centre - inner(centre);
        EXPECT_GT(face.dot(out), 0.f) << "triangle " << it.getIndex();
        for(Int32 c = 0; c < 3; ++c)
        {
            Vec3f n = it.getNormal(c);
            if(unitNormals)
            {
                EXPECT_NEAR(n.length(), 1.f, 1e-4f);
            }
            EXPECT_GT(n.dot(out), 0.f) << "triangle " << it.getIndex() << " corner " << c;
            Pnt3f p = it.getPosition(c);
            for(UInt32 a = 0; a < 3; ++a)
            {
                lo[a] = std::min(lo[a], p[a]);
                hi[a] = std::max(hi[a], p[a]);
            }
        }
    }
}

void expectBounds(const Pnt3f &lo, const Pnt3f &hi, const Pnt3f &elo, const Pnt3f &ehi)
{
    for(UInt32 a = 0; a < 3; ++a)
    {
        EXPECT_NEAR(lo[a], elo[a], 1e-4f) << "axis " << a;
        EXPECT_NEAR(hi[a], ehi[a], 1e-4f) << "axis " << a;
    }
}

Pnt3f origin(const Pnt3f &)
{
    return Pnt3f(0, 0, 0);
}

} // namespace

TEST(Shapes, BoxFacesOutwardWithFaceNormals)
{
    GeometryPtr geo = makeBoxGeo(2, 4, 6, 2, 3, 1);
    ASSERT_NE(geo, NullFC);
    addRefCP(geo);
    Pnt3f  lo, hi;
    UInt32 tris;
    checkShape(geo, origin, lo, hi, tris);
    EXPECT_EQ(tris, 2u * (2 * 2 * 3 + 2 * 1 * 3 + 2 * 2 * 1));
    expectBounds(lo, hi, Pnt3f(-1, -2, -3), Pnt3f(1, 2, 3));

    // every normal is one of the six axis directions
    for(TriangleIterator it = geo->beginTriangles(); !it.isAtEnd(); ++it)
    {
        Vec3f n = it.getNormal(0);
        EXPECT_FLOAT_EQ(std::fabs(n[0]) + std::fabs(n[1]) + std::fabs(n[2]), 1.f);
    }
    LogCapture log(LOG_WARNING);
    EXPECT_EQ(makeBoxGeo(1, 1, 1, 1, 0, 1), NullFC);
    EXPECT_NE(log.take().find("makeBox: illegal parameters"), std::string::npos);
    subRefCP(geo);
}

TEST(Shapes, SpheresLieOnTheRadius)
{
    for(UInt16 depth = 0; depth < 3; ++depth)
    {
        GeometryPtr geo = makeSphereGeo(depth, 2.f);
        ASSERT_NE(geo, NullFC);
        addRefCP(geo);
        Pnt3f  lo, hi;
        UInt32 tris;
        checkShape(geo, origin, lo, hi, tris);
        EXPECT_EQ(tris, 20u << (2 * depth));
        GeoPositionsPtr pos = geo->getPositions();
        for(UInt32 i = 0; i < pos->getSize(); ++i)
            EXPECT_NEAR(pos->getValue(i).subZero().length(), 2.f, 1e-5f);
        subRefCP(geo);
    }

    GeometryPtr ll = makeLatLongSphereGeo(8, 12, 1.5f);
    ASSERT_NE(ll, NullFC);
    addRefCP(ll);
    Pnt3f  lo, hi;
    UInt32 tris;
    checkShape(ll, origin, lo, hi, tris);
    EXPECT_NEAR(hi[1], 1.5f, 1e-5f);
    EXPECT_NEAR(lo[1], -1.5f, 1e-5f);
    subRefCP(ll);
}

TEST(Shapes, TorusFacesAwayFromItsTube)
{
    const Real32 r = .5f, R = 2.f;
    GeometryPtr  geo = makeTorusGeo(r, R, 8, 16);
    ASSERT_NE(geo, NullFC);
    addRefCP(geo);
    Pnt3f  lo, hi;
    UInt32 tris;
    // the inner point of a surface point is the nearest point of the ring
    checkShape(
        geo,
        [R](const Pnt3f &p) {
            Vec3f radial(p[0], p[1], 0);
            radial.normalize();
            return Pnt3f(radial * R);
        },
        lo, hi, tris);
    EXPECT_EQ(tris, 2u * 8 * 16);
    expectBounds(lo, hi, Pnt3f(-R - r, -R - r, -r), Pnt3f(R + r, R + r, r));
    subRefCP(geo);
}

TEST(Shapes, CylinderAndConeWithCaps)
{
    GeometryPtr cyl = makeCylinderGeo(2, 1, 12, true, true, true);
    ASSERT_NE(cyl, NullFC);
    addRefCP(cyl);
    Pnt3f  lo, hi;
    UInt32 tris;
    checkShape(cyl, origin, lo, hi, tris);
    // a strip of 24 triangles, two 12-gons of 10
    EXPECT_EQ(tris, 12u * 2 + 10u * 2);
    expectBounds(lo, hi, Pnt3f(-1, -1, -1), Pnt3f(1, 1, 1));
    subRefCP(cyl);

    GeometryPtr cone = makeConeGeo(3, 1, 10, true, true);
    ASSERT_NE(cone, NullFC);
    addRefCP(cone);
    // a cone's side normals are (sin, incl, -cos) scaled by 1 + incl^2
    checkShape(cone, [](const Pnt3f &p) { return Pnt3f(0, p[1] * .5f - .5f, 0); }, lo, hi, tris,
               false);
    EXPECT_NEAR(hi[1], 1.5f, 1e-5f);
    EXPECT_NEAR(lo[1], -1.5f, 1e-5f);
    subRefCP(cone);

    NodePtr n = makeCylinder(1, 1, 8, true, false, false);
    ASSERT_NE(n, NullFC);
    addRefCP(n);
    subRefCP(n);
}
