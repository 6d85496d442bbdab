// calcVertexTangents against hand-computed tangent frames, its index-mapping
// rules and messages; vertex normals with and without a crease angle; face
// normals, normal display geometry, shared indices, optimised primitives;
// primitive counts.
#include <OpenSG/OSGGeoFunctions.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGLog.h>

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using namespace osg;

namespace
{

/// One triangle (or more) with positions, normals and unit-0 texture
/// coordinates, single-indexed with a one-entry mapping.
GeometryPtr makeTriangles(const std::vector<Pnt3f> &p, const std::vector<Vec3f> &n,
                          const std::vector<Vec2f> &t, const std::vector<UInt32> &ind,
                          bool withMapping = true)
{
    GeoPositions3fPtr  pos = GeoPositions3f::create();
    GeoNormals3fPtr    nrm = GeoNormals3f::create();
    GeoTexCoords2fPtr  tex = GeoTexCoords2f::create();
    GeoIndicesUI32Ptr  idx = GeoIndicesUI32::create();
    GeoPTypesUI8Ptr    typ = GeoPTypesUI8::create();
    GeoPLengthsUI32Ptr len = GeoPLengthsUI32::create();
    pos->getField().getValues().assign(p.begin(), p.end());
    nrm->getField().getValues().assign(n.begin(), n.end());
    tex->getField().getValues().assign(t.begin(), t.end());
    idx->getField().getValues().assign(ind.begin(), ind.end());
    typ->getField().push_back(GL_TRIANGLES);
    len->getField().push_back(UInt32(ind.size()));

    GeometryPtr geo = Geometry::create();
    addRefCP(geo);
    beginEditCP(geo);
    geo->setPositions(pos);
    if(!n.empty())
        geo->setNormals(nrm);
    geo->setTexCoords(tex);
    geo->setIndices(idx);
    geo->setTypes(typ);
    geo->setLengths(len);
    if(withMapping)
        geo->getMFIndexMapping()->push_back(Geometry::MapPosition | Geometry::MapNormal |
                                            Geometry::MapTexCoords);
    endEditCP(geo);
    return geo;
}

void expectVec4(const Vec4f &v, Real32 x, Real32 y, Real32 z, Real32 w)
{
    EXPECT_NEAR(v[0], x, 1e-5f);
    EXPECT_NEAR(v[1], y, 1e-5f);
    EXPECT_NEAR(v[2], z, 1e-5f);
    EXPECT_EQ(v[3], w);
}

} // namespace

TEST(CalcVertexTangents, MirroredTextureGivesNegativeHandedness)
{
    // u runs along +y and v along +x: a mirrored mapping
    GeometryPtr geo = makeTriangles({Pnt3f(0, 0, 0), Pnt3f(1, 0, 0), Pnt3f(0, 1, 0)},
                                    {Vec3f(0, 0, 1), Vec3f(0, 0, 1), Vec3f(0, 0, 1)},
                                    {Vec2f(0, 0), Vec2f(0, 1), Vec2f(1, 0)}, {0, 1, 2});

    calcVertexTangents(geo, 0, Geometry::TexCoords1FieldId, Geometry::TexCoords2FieldId);

    GeoTexCoords4fPtr tan = GeoTexCoords4fPtr::dcast(geo->getTexCoords1());
    GeoTexCoords4fPtr bin = GeoTexCoords4fPtr::dcast(geo->getTexCoords2());
    ASSERT_NE(tan, NullFC);
    ASSERT_NE(bin, NullFC);
    ASSERT_EQ(tan->getField().size(), 3u);
    for(UInt32 i = 0; i < 3; ++i)
    {
        // det = -1: T = e2 = (0,1,0), B = e1 = (1,0,0), (N x T).B = -1
        expectVec4(tan->getField()[i], 0, 1, 0, -1);
        expectVec4(bin->getField()[i], 1, 0, 0, -1);
    }
    // the destinations are indexed like the positions
    EXPECT_EQ(geo->getIndexMapping(0), Geometry::MapPosition | Geometry::MapNormal |
                                           Geometry::MapTexCoords | Geometry::MapTexCoords1 |
                                           Geometry::MapTexCoords2);
    EXPECT_EQ(tan->findParent(geo), 0);
    subRefCP(geo);
}

TEST(CalcVertexTangents, OrthogonalisesAgainstTheVertexNormal)
{
    // T = (2,0,0), B = (0,1,0) from the texture; N = (0, .6, .8):
    // T' = (1,0,0), B' = normalize((0,1,0) - .6 N) = (0, .8, -.6), sign +1
    Vec3f       n(0, .6f, .8f);
    GeometryPtr geo = makeTriangles({Pnt3f(0, 0, 0), Pnt3f(2, 0, 0), Pnt3f(0, 1, 0)}, {n, n, n},
                                    {Vec2f(0, 0), Vec2f(1, 0), Vec2f(0, 1)}, {0, 1, 2});

    calcVertexTangents(geo, 0, Geometry::TexCoords3FieldId, Geometry::TexCoords2FieldId);

    GeoTexCoords4fPtr tan = GeoTexCoords4fPtr::dcast(geo->getTexCoords3());
    GeoTexCoords4fPtr bin = GeoTexCoords4fPtr::dcast(geo->getTexCoords2());
    ASSERT_NE(tan, NullFC);
    ASSERT_NE(bin, NullFC);
    expectVec4(tan->getField()[1], 1, 0, 0, 1);
    expectVec4(bin->getField()[2], 0, .8f, -.6f, 1);
    subRefCP(geo);
}

TEST(CalcVertexTangents, LibraryCallOnAPlaneSumsSharedVertices)
{
    GeometryPtr geo = makePlaneGeo(2, 2, 2, 2);
    addRefCP(geo);
    calcVertexTangents(geo, 0, Geometry::TexCoords1FieldId, -1);

    EXPECT_EQ(geo->getTexCoords2(), NullFC);
    GeoTexCoords4fPtr tan = GeoTexCoords4fPtr::dcast(geo->getTexCoords1());
    ASSERT_NE(tan, NullFC);
    ASSERT_EQ(tan->getField().size(), 9u);
    for(UInt32 i = 0; i < 9; ++i)
        expectVec4(tan->getField()[i], 1, 0, 0, 1);
    EXPECT_EQ(geo->getIndexMapping(0), 0x13 | Geometry::MapTexCoords1);
    subRefCP(geo);
}

TEST(CalcVertexTangents, EmptyMappingStaysEmptyWithoutNormalsWIsPositive)
{
    GeometryPtr geo = makeTriangles({Pnt3f(0, 0, 0), Pnt3f(1, 0, 0), Pnt3f(0, 1, 0)}, {},
                                    {Vec2f(0, 0), Vec2f(0, 1), Vec2f(1, 0)}, {0, 1, 2}, false);
    calcVertexTangents(geo, 0, Geometry::TexCoords1FieldId, -1);
    EXPECT_EQ(geo->getMFIndexMapping()->size(), 0u);
    GeoTexCoords4fPtr tan = GeoTexCoords4fPtr::dcast(geo->getTexCoords1());
    ASSERT_NE(tan, NullFC);
    // no normal: nothing to orthogonalise against and no handedness
    expectVec4(tan->getField()[0], 0, 1, 0, 1);
    subRefCP(geo);
}

TEST(CalcVertexTangents, MultiIndexedGeometryGetsAColumnOfItsOwn)
{
    GeometryPtr geo = makeTriangles({Pnt3f(0, 0, 0), Pnt3f(1, 0, 0), Pnt3f(0, 1, 0)},
                                    {Vec3f(0, 0, 1)}, {Vec2f(0, 0), Vec2f(1, 0), Vec2f(0, 1)},
                                    // (position, normal+texcoord) tuples
                                    {2, 2, 0, 0, 1, 1}, false);
    beginEditCP(geo);
    geo->getMFIndexMapping()->push_back(Geometry::MapPosition | Geometry::MapTexCoords1);
    geo->getMFIndexMapping()->push_back(Geometry::MapNormal | Geometry::MapTexCoords);
    geo->getLengths()->setValue(3, 0);
    endEditCP(geo);
    // the normal index is 2, 0, 1: only normal 0 exists, the others read zero

    calcVertexTangents(geo, 0, Geometry::TexCoords1FieldId, -1);

    MFUInt16 &map = *geo->getMFIndexMapping();
    ASSERT_EQ(map.size(), 3u);
    EXPECT_EQ(map[0], Geometry::MapPosition);
    EXPECT_EQ(map[1], Geometry::MapNormal | Geometry::MapTexCoords);
    EXPECT_EQ(map[2], Geometry::MapTexCoords1);
    GeoIndicesPtr ind = geo->getIndices();
    ASSERT_EQ(ind->getSize(), 9u);
    const UInt32 expect[9] = {2, 2, 0, 0, 0, 1, 1, 1, 2};
    for(UInt32 i = 0; i < 9; ++i)
        EXPECT_EQ(ind->getValue(i), expect[i]) << i;

    TriangleIterator it = geo->beginTriangles();
    EXPECT_EQ(it.getTexCoordsIndex1(2), 2);
    GeoTexCoords4fPtr tan = GeoTexCoords4fPtr::dcast(geo->getTexCoords1());
    ASSERT_EQ(tan->getField().size(), 3u);
    subRefCP(geo);
}

TEST(CalcVertexTangents, ReportsWhatItCannotDo)
{
    GeometryPtr geo = makeTriangles({Pnt3f(0, 0, 0), Pnt3f(1, 0, 0), Pnt3f(0, 1, 0)}, {},
                                    {Vec2f(0, 0), Vec2f(1, 0), Vec2f(0, 1)}, {0, 1, 2});
    LogCapture  log(LOG_DEBUG);

    // texture unit 5 is not supported, but the destination is installed
    calcVertexTangents(geo, 5, Geometry::TexCoords1FieldId, -1);
    EXPECT_NE(log.take().find("Index set not supported in calcVertexTangents()"),
              std::string::npos);
    ASSERT_NE(geo->getTexCoords1(), NullFC);
    EXPECT_EQ(geo->getTexCoords1()->getSize(), 0u);

    // positions are no destination; nothing is left to write to
    calcVertexTangents(geo, 0, Geometry::PositionsFieldId, -1);
    std::string text = log.take();
    EXPECT_NE(text.find("Index set not supported in calcVertexTangents()"), std::string::npos);
    EXPECT_NE(GeoPositions3fPtr::dcast(geo->getPositions()), NullFC);

    // the same destination twice stores only the tangent
    calcVertexTangents(geo, 0, Geometry::TexCoords4FieldId, Geometry::TexCoords4FieldId);
    EXPECT_NE(geo->getTexCoords4(), NullFC);
    EXPECT_EQ(geo->getTexCoords4()->getSize(), 3u);

    beginEditCP(geo, Geometry::IndicesFieldMask);
    geo->setIndices(NullFC);
    endEditCP(geo, Geometry::IndicesFieldMask);
    calcVertexTangents(geo, 0, Geometry::TexCoords1FieldId, -1);
    EXPECT_NE(log.take().find("Geo without indices in calcVertexTangents()"), std::string::npos);

    subRefCP(geo);
}

TEST(CalcVertexNormals, SmoothNormalsFollowThePositions)
{
    GeometryPtr sphere = makeSphereGeo(2, 3.f);
    addRefCP(sphere);
    calcVertexNormals(sphere);
    for(TriangleIterator it = sphere->beginTriangles(); !it.isAtEnd(); ++it)
    {
        for(Int32 c = 0; c < 3; ++c)
        {
            Vec3f expect = it.getPosition(c).subZero();
            expect.normalize();
            EXPECT_GT(it.getNormal(c).dot(expect), 0.99f);
            EXPECT_EQ(it.getNormalIndex(c), it.getPositionIndex(c));
        }
    }
    subRefCP(sphere);
}

TEST(CalcVertexNormals, MultiIndexedNormalsMoveToThePositionColumn)
{
    // a unit square in z = 0 as two triangles; tuples (position, normal+texcoord)
    GeometryPtr geo = makeTriangles(
        {Pnt3f(0, 0, 0), Pnt3f(1, 0, 0), Pnt3f(1, 1, 0), Pnt3f(0, 1, 0)},
        {Vec3f(1, 0, 0)}, {Vec2f(0, 0), Vec2f(1, 1)},
        {0, 0, 1, 1, 2, 0, 0, 0, 2, 1, 3, 0}, false);
    beginEditCP(geo);
    geo->getMFIndexMapping()->push_back(Geometry::MapPosition);
    geo->getMFIndexMapping()->push_back(Geometry::MapNormal | Geometry::MapTexCoords);
    geo->getLengths()->setValue(6, 0);
    endEditCP(geo);

    calcVertexNormals(geo);

    MFUInt16 &map = *geo->getMFIndexMapping();
    ASSERT_EQ(map.size(), 2u);
    // the normal bit leaves its entry and joins the position's
    EXPECT_EQ(map[0], Geometry::MapPosition | Geometry::MapNormal);
    EXPECT_EQ(map[1], Geometry::MapTexCoords);
    EXPECT_EQ(geo->getNormals()->getSize(), 4u);
    Int32 n = 0;
    for(TriangleIterator it = geo->beginTriangles(); !it.isAtEnd(); ++it, ++n)
    {
        for(Int32 c = 0; c < 3; ++c)
        {
            EXPECT_EQ(it.getNormalIndex(c), it.getPositionIndex(c));
            EXPECT_EQ(it.getNormal(c), Vec3f(0, 0, 1));
        }
        // the texture coordinates kept their own indices
        EXPECT_EQ(it.getTexCoords(0), Vec2f(0, 0));
        EXPECT_EQ(it.getTexCoords(1), Vec2f(1, 1));
    }
    EXPECT_EQ(n, 2);
    subRefCP(geo);
}

TEST(CalcVertexNormals, CreaseAngleKeepsBoxEdgesSharp)
{
    // an indexed box whose corners are shared by three faces
    std::vector<Pnt3f> p;
    for(UInt32 i = 0; i < 8; ++i)
        p.push_back(Pnt3f(i & 1 ? 1.f : -1.f, i & 2 ? 1.f : -1.f, i & 4 ? 1.f : -1.f));
    // two triangles per face, counter-clockwise from outside
    std::vector<UInt32> ind = {0, 2, 3, 0, 3, 1,  4, 5, 7, 4, 7, 6,  0, 1, 5, 0, 5, 4,
                               2, 6, 7, 2, 7, 3,  0, 4, 6, 0, 6, 2,  1, 3, 7, 1, 7, 5};
    std::vector<Vec2f> t(8, Vec2f(0, 0));
    GeometryPtr        geo = makeTriangles(p, {}, t, ind);

    calcVertexNormals(geo, Real32(osgdegree2rad(30.f)));

    Int32 n = 0;
    for(TriangleIterator it = geo->beginTriangles(); !it.isAtEnd(); ++it, ++n)
    {
        Pnt3f p0   = it.getPosition(0);
        Vec3f face = (it.getPosition(1) - p0).cross(it.getPosition(2) - p0);
        face.normalize();
        for(Int32 c = 0; c < 3; ++c)
        {
            Vec3f nv = it.getNormal(c);
            EXPECT_NEAR(nv.dot(face), 1.f, 1e-5f) << "triangle " << n << " corner " << c;
        }
    }
    EXPECT_EQ(n, 12);
    // six distinct face normals at each of 8 corners: 3 per corner
    EXPECT_EQ(geo->getNormals()->getSize(), 24u);
    EXPECT_EQ(geo->getMFIndexMapping()->size(), 2u);
    subRefCP(geo);
}

TEST(CalcPrimitiveCount, CountsTrianglesLinesAndPoints)
{
    GeometryPtr geo = Geometry::create();
    addRefCP(geo);
    GeoPTypesUI8Ptr    t = GeoPTypesUI8::create();
    GeoPLengthsUI32Ptr l = GeoPLengthsUI32::create();
    GeoPositions3fPtr  p = GeoPositions3f::create();
    const UInt8  types[] = {GL_POINTS, GL_LINES, GL_LINE_STRIP, GL_LINE_LOOP, GL_TRIANGLES,
                           GL_TRIANGLE_STRIP, GL_QUADS, GL_QUAD_STRIP, GL_POLYGON};
    const UInt32 lens[]  = {3, 4, 4, 3, 6, 5, 8, 6, 5};
    UInt32       total   = 0;
    for(UInt32 i = 0; i < 9; ++i)
    {
        t->getField().push_back(types[i]);
        l->getField().push_back(lens[i]);
        total += lens[i];
    }
    p->getField().resize(total);
    beginEditCP(geo);
    geo->setTypes(t);
    geo->setLengths(l);
    geo->setPositions(p);
    endEditCP(geo);

    UInt32 tri, line, point;
    calcPrimitiveCount(geo, tri, line, point);
    EXPECT_EQ(point, 3u);
    EXPECT_EQ(line, 2u + 3u + 3u);
    EXPECT_EQ(tri, 2u + 3u + 4u + 4u + 3u);
    subRefCP(geo);
}

TEST(CalcFaceNormals, EachVertexPointsAtItsFacesNormal)
{
    // two triangles of a tent: z up for the first, tilted for the second
    GeometryPtr geo = makeTriangles({Pnt3f(0, 0, 0), Pnt3f(1, 0, 0), Pnt3f(0, 1, 0),
                                     Pnt3f(1, 0, 0), Pnt3f(0, 1, 0), Pnt3f(1, 1, 1)},
                                    {}, {Vec2f(), Vec2f(), Vec2f(), Vec2f(), Vec2f(), Vec2f()},
                                    {0, 1, 2, 3, 5, 4});
    calcFaceNormals(geo);

    GeoNormals3fPtr n = GeoNormals3fPtr::dcast(geo->getNormals());
    ASSERT_NE(n, NullFC);
    ASSERT_EQ(n->getField().size(), 2u); // one per face
    EXPECT_EQ(n->getField()[0], Vec3f(0, 0, 1));
    Vec3f tilted = (Pnt3f(1, 1, 1) - Pnt3f(1, 0, 0)).cross(Pnt3f(0, 1, 0) - Pnt3f(1, 0, 0));
    tilted.normalize();
    EXPECT_EQ(n->getField()[1], tilted);

    // the normals got an index column of their own
    ASSERT_EQ(geo->getMFIndexMapping()->size(), 2u);
    UInt32 f = 0;
    for(TriangleIterator it = geo->beginTriangles(); !it.isAtEnd(); ++it, ++f)
        for(Int32 c = 0; c < 3; ++c)
            EXPECT_EQ(it.getNormalIndex(c), Int32(f));
    subRefCP(geo);
}

TEST(NormalsGeo, LinesAlongVertexAndFaceNormals)
{
    GeometryPtr geo = makeTriangles({Pnt3f(0, 0, 0), Pnt3f(2, 0, 0), Pnt3f(0, 2, 0)},
                                    {Vec3f(0, 0, 1), Vec3f(1, 0, 0), Vec3f(0, 1, 0)},
                                    {Vec2f(), Vec2f(), Vec2f()}, {0, 1, 2});

    NodePtr vn = calcVertexNormalsGeo(geo, 0.5f);
    ASSERT_NE(vn, NullFC);
    addRefCP(vn);
    GeometryPtr lines = GeometryPtr::dcast(vn->getCore());
    ASSERT_NE(lines, NullFC);
    EXPECT_EQ(lines->getTypes()->getValue(0), UInt8(GL_LINES));
    GeoPositionsPtr p = lines->getPositions();
    ASSERT_EQ(p->getSize(), 6u);
    EXPECT_EQ(p->getValue(1), Pnt3f(0, 0, 0.5f));
    EXPECT_EQ(p->getValue(2), Pnt3f(2, 0, 0));
    EXPECT_EQ(p->getValue(3), Pnt3f(2.5f, 0, 0));
    subRefCP(vn);

    NodePtr fn = calcFaceNormalsGeo(geo, 3.f);
    ASSERT_NE(fn, NullFC);
    addRefCP(fn);
    p = GeometryPtr::dcast(fn->getCore())->getPositions();
    ASSERT_EQ(p->getSize(), 2u);
    EXPECT_EQ(p->getValue(0), Pnt3f(2.f / 3, 2.f / 3, 0)); // the centre
    EXPECT_EQ(p->getValue(1), Pnt3f(2.f / 3, 2.f / 3, 3));
    subRefCP(fn);

    // no normals: nothing to show
    beginEditCP(geo, Geometry::NormalsFieldMask);
    geo->setNormals(NullFC);
    endEditCP(geo, Geometry::NormalsFieldMask);
    EXPECT_EQ(calcVertexNormalsGeo(geo, 1.f), NullFC);
    subRefCP(geo);
}

TEST(CreateSharedIndex, EqualValuesShareTheFirstIndex)
{
    // positions 0 and 3 are equal, and 1 and 4; texture coordinates differ
    // only at 4, so in a single-indexed geometry 3 follows 0 but 4 stays
    GeometryPtr geo = makeTriangles({Pnt3f(0, 0, 0), Pnt3f(1, 0, 0), Pnt3f(0, 1, 0),
                                     Pnt3f(0, 0, 0), Pnt3f(1, 0, 0), Pnt3f(1, 1, 0)},
                                    {}, {Vec2f(0, 0), Vec2f(1, 0), Vec2f(0, 1),
                                         Vec2f(0, 0), Vec2f(1, 1), Vec2f(1, 1)},
                                    {0, 1, 2, 3, 4, 5});
    EXPECT_EQ(createSharedIndex(geo), 1);
    std::vector<UInt32> expect = {0, 1, 2, 0, 4, 5};
    EXPECT_EQ(GeoIndicesUI32Ptr::dcast(geo->getIndices())->getField().getValues(), expect);

    // a non-indexed geometry is indexed first
    GeometryPtr plain = makeTriangles({Pnt3f(0, 0, 0), Pnt3f(1, 0, 0), Pnt3f(0, 0, 0)}, {},
                                      {}, {0, 1, 2}, false);
    beginEditCP(plain, Geometry::IndicesFieldMask);
    plain->setIndices(NullFC);
    endEditCP(plain, Geometry::IndicesFieldMask);
    EXPECT_EQ(createSharedIndex(plain), 1);
    ASSERT_NE(plain->getIndices(), NullFC);
    expect = {0, 1, 0};
    EXPECT_EQ(GeoIndicesUI32Ptr::dcast(plain->getIndices())->getField().getValues(), expect);

    EXPECT_EQ(createSharedIndex(NullFC), -1);
    subRefCP(plain);
    subRefCP(geo);
}

TEST(CreateOptimizedPrimitives, OneTriangleListAfterPointsAndLines)
{
    GeometryPtr geo = makeTriangles({Pnt3f(0, 0, 0), Pnt3f(1, 0, 0), Pnt3f(1, 1, 0),
                                     Pnt3f(0, 1, 0), Pnt3f(2, 2, 2)},
                                    {}, {}, {4, 0, 1, 2, 3, 0, 1, 2, 3});
    GeoPTypesUI8Ptr    typ = GeoPTypesUI8::create();
    GeoPLengthsUI32Ptr len = GeoPLengthsUI32::create();
    typ->getField().getValues().assign({GL_POINTS, GL_QUADS, GL_TRIANGLE_STRIP});
    len->getField().getValues().assign({1, 4, 4});
    beginEditCP(geo, Geometry::TypesFieldMask | Geometry::LengthsFieldMask);
    geo->setTypes(typ);
    geo->setLengths(len);
    endEditCP(geo, Geometry::TypesFieldMask | Geometry::LengthsFieldMask);

    std::vector<Pnt3f> before;
    for(TriangleIterator it = geo->beginTriangles(); !it.isAtEnd(); ++it)
        for(Int32 c = 0; c < 3; ++c)
            before.push_back(it.getPosition(c));

    EXPECT_EQ(createOptimizedPrimitives(geo), 13); // 1 point and 4 triangles

    std::vector<UInt8> types(geo->getTypes()->getSize());
    for(UInt32 i = 0; i < types.size(); ++i)
        types[i] = geo->getTypes()->getValue(i);
    EXPECT_EQ(types, (std::vector<UInt8>{GL_POINTS, GL_TRIANGLES}));
    EXPECT_EQ(geo->getLengths()->getValue(1), 12u);

    std::vector<Pnt3f> after;
    for(TriangleIterator it = geo->beginTriangles(); !it.isAtEnd(); ++it)
        for(Int32 c = 0; c < 3; ++c)
            after.push_back(it.getPosition(c));
    EXPECT_EQ(after, before);
    EXPECT_EQ(geo->beginPrimitives().getPosition(0), Pnt3f(2, 2, 2));
    subRefCP(geo);
}
