// Face iteration: quads stay quads, the rest is split into triangles as the
// triangle iterator does; and where a corner's index tuple starts.
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGeoProperty.h>
#include <OpenSG/OSGNode.h>

#include <gtest/gtest.h>

#include <vector>

using namespace osg;

namespace
{

typedef std::vector<Int32> Face;

/// A geometry with positions 0..n-1 at (i, i*i % 7, 0), the given
/// primitives, and, when given, indices with the index mapping.
GeometryPtr faceGeo(const std::vector<UInt8> &types, const std::vector<UInt32> &lengths,
                    UInt32 n, const std::vector<UInt32> &indices = std::vector<UInt32>(),
                    const std::vector<UInt16> &mapping = std::vector<UInt16>())
{
    GeoPositions3fPtr pos = GeoPositions3f::create();
    beginEditCP(pos);
    for(UInt32 i = 0; i < n; ++i)
        pos->push_back(Pnt3f(Real32(i), Real32(i * i % 7), 0));
    endEditCP(pos);

    GeoPTypesUI8Ptr    t = GeoPTypesUI8::create();
    GeoPLengthsUI32Ptr l = GeoPLengthsUI32::create();
    beginEditCP(t);
    beginEditCP(l);
    for(size_t i = 0; i < types.size(); ++i)
    {
        t->push_back(types[i]);
        l->push_back(lengths[i]);
    }
    endEditCP(l);
    endEditCP(t);

    GeometryPtr geo = Geometry::create();
    addRefCP(geo);
    beginEditCP(geo);
    geo->setPositions(pos);
    geo->setTypes(t);
    geo->setLengths(l);
    if(!indices.empty())
    {
        GeoIndicesUI32Ptr ind = GeoIndicesUI32::create();
        beginEditCP(ind);
        for(UInt32 i : indices)
            ind->push_back(i);
        endEditCP(ind);
        geo->setIndices(ind);
        for(UInt16 m : mapping)
            geo->getMFIndexMapping()->push_back(m);
    }
    endEditCP(geo);
    return geo;
}

std::vector<Face> faces(GeometryPtr geo)
{
    std::vector<Face> out;
    Int32             n = 0;
    for(FaceIterator it = geo->beginFaces(); it != geo->endFaces(); ++it, ++n)
    {
        EXPECT_EQ(it.getIndex(), n);
        Face f;
        for(UInt32 c = 0; c < it.getLength(); ++c)
            f.push_back(it.getPositionIndex(c));
        out.push_back(f);
    }
    return out;
}

} // namespace

TEST(FaceIterator, QuadsStayQuadsTrianglesAreSplitAsForTriangles)
{
    GeometryPtr geo =
        faceGeo({GL_POINTS, GL_TRIANGLES, GL_QUADS, GL_QUAD_STRIP, GL_POLYGON, GL_POLYGON,
                 GL_TRIANGLE_FAN, GL_LINES, GL_TRIANGLE_STRIP},
                {1, 3, 8, 6, 4, 5, 4, 2, 4}, 37);
    // vertex numbers: point 0, triangles 1-3, quads 4-11, quad strip
    // 12-17, polygons 18-21 and 22-26, fan 27-30, lines 31-32, strip 33-36
    std::vector<Face> expect = {
        {1, 2, 3},                               // triangle
        {4, 5, 6, 7}, {8, 9, 10, 11},            // quads
        {12, 13, 15, 14}, {14, 15, 17, 16},      // quad strip, in drawing order
        {18, 19, 20, 21},                        // a four-sided polygon is a quad
        {22, 23, 24}, {22, 24, 25}, {22, 25, 26}, // a larger one a fan
        {27, 28, 29}, {27, 29, 30},               // fan
        {33, 34, 35}, {35, 34, 36}};              // strip: alternating winding
    EXPECT_EQ(faces(geo), expect);

    FaceIterator it = geo->beginFaces();
    it.seek(3);
    EXPECT_EQ(it.getLength(), 4u);
    EXPECT_EQ(it.getType(), UInt32(GL_QUAD_STRIP));
    EXPECT_EQ(it.getPosition(2), Pnt3f(15, 15 * 15 % 7, 0));
    it.seek(100);
    EXPECT_TRUE(it.isAtEnd());
    EXPECT_TRUE(it == geo->endFaces());

    NodePtr node = makeNodeFor(geo);
    addRefCP(node);
    FaceIterator fromNode(node);
    EXPECT_EQ(fromNode.getPositionIndex(2), 3);
    subRefCP(node);
    subRefCP(geo);
}

TEST(FaceIterator, StripsSkipTrianglesWithRepeatedPositions)
{
    // indices 0 1 2 2 3 4: the second and third triangle repeat position 2
    GeometryPtr geo = faceGeo({GL_TRIANGLE_STRIP}, {6}, 5, {0, 1, 2, 2, 3, 4});
    std::vector<Face> expect = {{0, 1, 2}, {3, 2, 4}}; // the fourth keeps the winding
    EXPECT_EQ(faces(geo), expect);
    subRefCP(geo);
}

TEST(PrimitiveIteration, IndexIndexIsTheStartOfTheIndexTuple)
{
    // tuples of two indices (position, normal) for four vertices
    GeometryPtr geo = faceGeo({GL_QUADS}, {4}, 4, {3, 0, 2, 0, 1, 0, 0, 0},
                              {Geometry::MapPosition, Geometry::MapNormal});
    TriangleIterator tri = geo->beginTriangles();
    ++tri; // (a, c, d) of the quad: vertices 0, 2, 3
    EXPECT_EQ(tri.getIndexIndex(0), 0);
    EXPECT_EQ(tri.getIndexIndex(1), 4);
    EXPECT_EQ(tri.getIndexIndex(2), 6);
    EXPECT_EQ(tri.getIndex(2), 3); // the vertex number

    FaceIterator face = geo->beginFaces();
    EXPECT_EQ(face.getIndexIndex(3), 6);
    EXPECT_EQ(face.getPositionIndex(3), 0);

    // without indices there is no index array to point into
    GeometryPtr plain = faceGeo({GL_TRIANGLES}, {3}, 3);
    EXPECT_EQ(plain->beginTriangles().getIndexIndex(1), -1);
    EXPECT_EQ(plain->beginFaces().getIndexIndex(1), -1);
    subRefCP(plain);
    subRefCP(geo);
}
