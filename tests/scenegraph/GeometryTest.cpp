// Geometry without drawing: field layout, the property links and their
// reference counts, change propagation from property data to the node
// volume, index mapping, primitive and triangle iteration, bounding volume
// and picking.
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGGeoProperty.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGFieldDescription.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGLog.h>

#include <gtest/gtest.h>

#include <array>
#include <vector>

using namespace osg;

namespace
{

GeoPositions3fPtr makePositions(const std::vector<Pnt3f> &pnts)
{
    GeoPositions3fPtr p = GeoPositions3f::create();
    beginEditCP(p);
    for(const Pnt3f &pt : pnts)
        p->getField().push_back(pt);
    endEditCP(p);
    return p;
}

GeoIndicesUI32Ptr makeIndices(const std::vector<UInt32> &values)
{
    GeoIndicesUI32Ptr p = GeoIndicesUI32::create();
    beginEditCP(p);
    for(UInt32 v : values)
        p->getField().push_back(v);
    endEditCP(p);
    return p;
}

/// types[i] with lengths[i]; an empty lengths list leaves the field unset.
GeometryPtr makeGeo(const std::vector<UInt8> &types, const std::vector<UInt32> &lengths,
                    GeoPositionsPtr pos, GeoIndicesPtr ind = NullFC,
                    const std::vector<UInt16> &mapping = std::vector<UInt16>())
{
    GeometryPtr geo = Geometry::create();
    addRefCP(geo);

    GeoPTypesUI8Ptr t = GeoPTypesUI8::create();
    beginEditCP(t);
    for(UInt8 v : types)
        t->getField().push_back(v);
    endEditCP(t);

    beginEditCP(geo);
    geo->setTypes(t);
    if(!lengths.empty())
    {
        GeoPLengthsUI32Ptr l = GeoPLengthsUI32::create();
        beginEditCP(l);
        for(UInt32 v : lengths)
            l->getField().push_back(v);
        endEditCP(l);
        geo->setLengths(l);
    }
    geo->setPositions(pos);
    geo->setIndices(ind);
    for(UInt16 m : mapping)
        geo->getMFIndexMapping()->push_back(m);
    endEditCP(geo);
    return geo;
}

typedef std::array<Int32, 3> Tri;

std::vector<Tri> positionTriangles(GeometryPtr geo)
{
    std::vector<Tri> out;
    Int32            n = 0;
    for(TriangleIterator it = geo->beginTriangles(); it != geo->endTriangles(); ++it, ++n)
    {
        EXPECT_EQ(it.getIndex(), n);
        out.push_back(Tri{{it.getPositionIndex(0), it.getPositionIndex(1), it.getPositionIndex(2)}});
    }
    return out;
}

std::vector<Pnt3f> grid(UInt32 n)
{
    std::vector<Pnt3f> p;
    for(UInt32 i = 0; i < n; ++i)
        p.push_back(Pnt3f(Real32(i), Real32(i * i % 7), 0));
    return p;
}

NodePtr nodeWith(NodeCorePtr core)
{
    NodePtr node = Node::create();
    addRefCP(node);
    beginEditCP(node, Node::CoreFieldMask);
    node->setCore(core);
    endEditCP(node, Node::CoreFieldMask);
    return node;
}

} // namespace

// --- layout --------------------------------------------------------------------------

TEST(GeometryFields, IdsMasksDefaultsAndInternalFlags)
{
    struct
    {
        const char *name;
        UInt32      id;
        bool        internal;
    } fields[] = {
        {"material", 3, false},         {"types", 4, false},
        {"lengths", 5, false},          {"positions", 6, false},
        {"normals", 7, false},          {"colors", 8, false},
        {"secondaryColors", 9, false},  {"texCoords", 10, false},
        {"texCoords1", 11, false},      {"texCoords7", 17, false},
        {"indices", 18, false},         {"indexMapping", 19, false},
        {"dlistCache", 20, false},      {"GLId", 21, true},
        {"IgnoreGLForAspect", 22, true}, {"minindex", 23, true},
        {"maxindex", 24, true},         {"lowindices", 25, true},
        {"highindices", 26, true},      {"vbo", 27, false},
    };
    FieldContainerType &type = Geometry::getClassType();
    for(auto &f : fields)
    {
        SCOPED_TRACE(f.name);
        FieldDescription *desc = type.getFieldDescription(f.id);
        ASSERT_NE(desc, nullptr);
        EXPECT_STREQ(desc->getCName(), f.name);
        EXPECT_EQ(desc->getFieldMask(), BitVector(1) << f.id);
        EXPECT_EQ(desc->isInternal(), f.internal);
    }
    EXPECT_EQ(Geometry::NextFieldId, 28);
    EXPECT_EQ(Geometry::TexCoords1FieldId, 11);
    EXPECT_EQ(Geometry::TexCoords3FieldId, 13);
    EXPECT_EQ(Geometry::VboFieldMask, BitVector(0x8000000));
    EXPECT_EQ(MaterialDrawable::NextFieldId, 4);
    EXPECT_STREQ(Geometry::getClassType().getParent()->getCName(), "MaterialDrawable");
    EXPECT_STREQ(MaterialDrawable::getClassType().getParent()->getCName(), "Drawable");

    GeometryPtr geo = Geometry::create();
    addRefCP(geo);
    EXPECT_TRUE(geo->getDlistCache());
    EXPECT_FALSE(geo->getVbo());
    EXPECT_EQ(geo->getIgnoreGLForAspect(), -1);
    EXPECT_EQ(geo->getMaterial(), NullFC);
    EXPECT_EQ(geo->getPositions(), NullFC);
    EXPECT_EQ(geo->getMFIndexMapping()->size(), 0u);
    subRefCP(geo);
}

TEST(GeometryFields, MappingConstantsAndNames)
{
    EXPECT_EQ(Geometry::MapPosition, 0x1);
    EXPECT_EQ(Geometry::MapNormal, 0x2);
    EXPECT_EQ(Geometry::MapColor, 0x4);
    EXPECT_EQ(Geometry::MapSecondaryColor, 0x8);
    EXPECT_EQ(Geometry::MapTexCoords, 0x10);
    EXPECT_EQ(Geometry::MapTexCoords7, 0x800);
    EXPECT_EQ(Geometry::MapEmpty, 0x1000);

    EXPECT_STREQ(Geometry::mapType(GL_TRIANGLE_STRIP), "TriangleStrip");
    EXPECT_STREQ(Geometry::mapType(GL_POLYGON), "Polygon");
    EXPECT_STREQ(Geometry::mapType(GL_POINTS), "Points");
    EXPECT_STREQ(Geometry::mapType(200), "Unknown Primitive");
}

TEST(GeometryMapping, CalcMappingIndexTakesTheLastEntry)
{
    GeometryPtr geo = Geometry::create();
    addRefCP(geo);
    EXPECT_EQ(geo->calcMappingIndex(Geometry::MapPosition), -1);
    EXPECT_TRUE(geo->isSingleIndex());

    beginEditCP(geo, Geometry::IndexMappingFieldMask);
    geo->getMFIndexMapping()->push_back(Geometry::MapPosition | Geometry::MapNormal);
    geo->getMFIndexMapping()->push_back(Geometry::MapTexCoords | Geometry::MapNormal);
    endEditCP(geo, Geometry::IndexMappingFieldMask);

    EXPECT_EQ(geo->calcMappingIndex(Geometry::MapPosition), 0);
    EXPECT_EQ(geo->calcMappingIndex(Geometry::MapNormal), 1);
    EXPECT_EQ(geo->calcMappingIndex(Geometry::MapTexCoords), 1);
    EXPECT_EQ(geo->calcMappingIndex(Geometry::MapColor), -1);
    EXPECT_FALSE(geo->isSingleIndex());
    subRefCP(geo);
}

// --- property links -------------------------------------------------------------------

TEST(GeometryProperties, SettersCountReferencesAndRecordTheFieldPosition)
{
    GeoPositions3fPtr pos = makePositions({Pnt3f(0, 0, 0)});
    addRefCP(pos);
    GeometryPtr a = Geometry::create(), b = Geometry::create();
    addRefCP(a);
    addRefCP(b);

    beginEditCP(a, Geometry::PositionsFieldMask);
    a->setPositions(pos);
    endEditCP(a, Geometry::PositionsFieldMask);
    beginEditCP(b, Geometry::PositionsFieldMask);
    b->setPositions(pos);
    endEditCP(b, Geometry::PositionsFieldMask);

    EXPECT_EQ(pos.getRefCount(), 3);
    ASSERT_EQ(pos->getParents().size(), 2u);
    EXPECT_EQ(pos->getParents()[0], a);
    EXPECT_EQ(GeoParentFieldPos::get(pos->getParents()[0]), Geometry::PositionsFieldId);
    EXPECT_EQ(pos->findParent(b), 1);

    // replacing drops the link and the reference of the old value
    GeoPositions3fPtr other = makePositions({Pnt3f(1, 1, 1)});
    beginEditCP(a, Geometry::PositionsFieldMask);
    a->setPositions(other);
    endEditCP(a, Geometry::PositionsFieldMask);
    EXPECT_EQ(pos.getRefCount(), 2);
    EXPECT_EQ(pos->findParent(a), -1);
    EXPECT_EQ(other.getRefCount(), 1);

    // setting the same value again keeps one link and one reference
    beginEditCP(b, Geometry::PositionsFieldMask);
    b->setPositions(pos);
    endEditCP(b, Geometry::PositionsFieldMask);
    EXPECT_EQ(pos.getRefCount(), 2);
    EXPECT_EQ(pos->getParents().size(), 1u);

    // destroying a geometry releases its properties
    addRefCP(other);
    subRefCP(a);
    EXPECT_EQ(other.getRefCount(), 1);
    EXPECT_EQ(other->getParents().size(), 0u);
    subRefCP(b);
    EXPECT_EQ(pos.getRefCount(), 1);
    EXPECT_EQ(pos->getParents().size(), 0u);
    subRefCP(other);
    subRefCP(pos);
}

TEST(GeometryProperties, LoaderFilledFieldsAreRepairedOnAbstractChanges)
{
    GeoNormals3fPtr n = GeoNormals3f::create();
    addRefCP(n);
    GeometryPtr geo = Geometry::create();
    addRefCP(geo);

    // as a loader does it: the field is written, then changed() repairs
    geo->editSFNormals()->setValue(n);
    changedCP(geo, Geometry::NormalsFieldMask, ChangedOrigin::Abstract);
    EXPECT_EQ(n.getRefCount(), 2);
    EXPECT_EQ(n->findParent(geo), 0);

    // a valid link is left alone
    changedCP(geo, Geometry::NormalsFieldMask,
              ChangedOrigin::Abstract | ChangedOrigin::AbstrCheckValid);
    EXPECT_EQ(n.getRefCount(), 2);
    EXPECT_EQ(n->getParents().size(), 1u);

    // only a reference
    changedCP(geo, Geometry::NormalsFieldMask,
              ChangedOrigin::Abstract | ChangedOrigin::AbstrIncRefCount);
    EXPECT_EQ(n.getRefCount(), 3);
    EXPECT_EQ(n->getParents().size(), 1u);
    subRefCP(n);

    subRefCP(geo);
    EXPECT_EQ(n.getRefCount(), 1);
    subRefCP(n);
}

TEST(GeometryProperties, EditingPropertyDataInvalidatesTheNodeVolume)
{
    GeoPositions3fPtr pos = makePositions({Pnt3f(0, 0, 0), Pnt3f(1, 0, 0), Pnt3f(0, 1, 0)});
    GeometryPtr       geo = makeGeo({GL_TRIANGLES}, {3}, pos);
    NodePtr           node = nodeWith(geo);

    Pnt3f lo, hi;
    node->getVolume(true).getBounds(lo, hi);
    EXPECT_EQ(hi, Pnt3f(1, 1, 0));

    beginEditCP(pos, GeoPositions3f::GeoPropDataFieldMask);
    pos->getField()[1] = Pnt3f(4, 0, 2);
    endEditCP(pos, GeoPositions3f::GeoPropDataFieldMask);

    EXPECT_FALSE(node->getVolume().isValid());
    node->getVolume(true).getBounds(lo, hi);
    EXPECT_EQ(lo, Pnt3f(0, 0, 0));
    EXPECT_EQ(hi, Pnt3f(4, 1, 2));

    subRefCP(node);
    subRefCP(geo);
}

// --- volume ---------------------------------------------------------------------------

TEST(GeometryVolume, OnlyReferencedVerticesCount)
{
    // vertex 3 is far away but no index uses it
    GeoPositions3fPtr pos = makePositions(
        {Pnt3f(-1, 0, 0), Pnt3f(2, 0, 0), Pnt3f(0, 3, 1), Pnt3f(100, 100, 100)});
    GeometryPtr geo  = makeGeo({GL_TRIANGLES}, {3}, pos, makeIndices({2, 1, 0}));
    NodePtr     node = nodeWith(geo);

    Pnt3f lo, hi;
    node->getVolume(true).getBounds(lo, hi);
    EXPECT_EQ(lo, Pnt3f(-1, 0, 0));
    EXPECT_EQ(hi, Pnt3f(2, 3, 1));

    // a geometry without positions leaves an empty volume
    GeometryPtr empty = Geometry::create();
    NodePtr     enode = nodeWith(empty);
    EXPECT_TRUE(enode->getVolume(true).isEmpty());

    subRefCP(node);
    subRefCP(enode);
    subRefCP(geo);
}

// --- iteration -------------------------------------------------------------------------

TEST(GeometryIteration, PrimitivesWithAndWithoutLengths)
{
    GeometryPtr geo = makeGeo({GL_POINTS, GL_TRIANGLES}, {2, 3}, makePositions(grid(5)));
    PrimitiveIterator it = geo->beginPrimitives();
    ASSERT_FALSE(it.isAtEnd());
    EXPECT_EQ(it.getType(), UInt32(GL_POINTS));
    EXPECT_EQ(it.getLength(), 2u);
    ++it;
    EXPECT_EQ(it.getType(), UInt32(GL_TRIANGLES));
    EXPECT_EQ(it.getIndex(), 1);
    EXPECT_EQ(it.getPositionIndex(0), 2);
    EXPECT_EQ(it.getPosition(2), grid(5)[4]);
    ++it;
    EXPECT_TRUE(it == geo->endPrimitives());

    // no lengths: one primitive over every index
    GeometryPtr single = makeGeo({GL_TRIANGLE_FAN}, {}, makePositions(grid(6)),
                                 makeIndices({5, 4, 3, 2}));
    it = single->beginPrimitives();
    EXPECT_EQ(it.getLength(), 4u);
    EXPECT_EQ(it.getPositionIndex(1), 4);
    ++it;
    EXPECT_TRUE(it.isAtEnd());

    // a length beyond the data is cut short rather than read past it
    GeometryPtr broken = makeGeo({GL_TRIANGLES}, {9}, makePositions(grid(4)));
    EXPECT_EQ(broken->beginPrimitives().getLength(), 4u);
    EXPECT_EQ(positionTriangles(broken).size(), 1u);

    subRefCP(geo);
    subRefCP(single);
    subRefCP(broken);
}

TEST(GeometryIteration, TrianglesOfEveryPolygonalType)
{
    GeometryPtr geo = makeGeo(
        {GL_LINES, GL_TRIANGLES, GL_TRIANGLE_STRIP, GL_TRIANGLE_FAN, GL_QUADS, GL_QUAD_STRIP,
         GL_POLYGON, GL_TRIANGLES},
        {2, 6, 5, 4, 4, 4, 5, 2},
        makePositions(grid(40)),
        makeIndices({30, 31,                 // lines: no triangles
                     0, 1, 2, 3, 4, 5,       // two triangles
                     10, 11, 12, 13, 14,     // strip
                     20, 21, 22, 23,         // fan
                     0, 1, 2, 3,             // quad
                     4, 5, 6, 7,             // quad strip
                     8, 9, 10, 11, 12,       // polygon
                     1, 2}));                // too short
    std::vector<Tri> expect = {
        {{0, 1, 2}},    {{3, 4, 5}},                                   // triangles
        {{10, 11, 12}}, {{12, 11, 13}}, {{12, 13, 14}},                 // strip
        {{20, 21, 22}}, {{20, 22, 23}},                                 // fan
        {{0, 1, 2}},    {{0, 2, 3}},                                    // quad
        {{4, 5, 6}},    {{6, 5, 7}},                                    // quad strip
        {{8, 9, 10}},   {{8, 10, 11}}, {{8, 11, 12}},                   // polygon
    };
    EXPECT_EQ(positionTriangles(geo), expect);
    subRefCP(geo);
}

TEST(GeometryIteration, StripsSkipTrianglesWithRepeatedPositions)
{
    // two strips joined by repeating their last and first vertex
    GeometryPtr geo = makeGeo({GL_TRIANGLE_STRIP}, {10}, makePositions(grid(8)),
                              makeIndices({0, 1, 2, 3, 3, 4, 4, 5, 6, 7}));
    // the four joining triangles are empty; the second strip keeps the
    // winding because it starts on an even step
    std::vector<Tri> expect = {{{0, 1, 2}}, {{2, 1, 3}}, {{4, 5, 6}}, {{6, 5, 7}}};
    EXPECT_EQ(positionTriangles(geo), expect);
    subRefCP(geo);
}

TEST(GeometryIteration, MultiIndexedAttributesFollowTheMapping)
{
    // tuples (position, normal+texcoord)
    GeoPositions3fPtr pos = makePositions(grid(4));
    GeoNormals3fPtr   n   = GeoNormals3f::create();
    beginEditCP(n);
    n->getField().push_back(Vec3f(1, 0, 0));
    n->getField().push_back(Vec3f(0, 1, 0));
    endEditCP(n);
    GeometryPtr geo = makeGeo({GL_TRIANGLES}, {3}, pos, makeIndices({3, 1, 2, 0, 1, 1}),
                              {Geometry::MapPosition,
                               UInt16(Geometry::MapNormal | Geometry::MapTexCoords)});
    beginEditCP(geo, Geometry::NormalsFieldMask);
    geo->setNormals(n);
    endEditCP(geo, Geometry::NormalsFieldMask);

    TriangleIterator it = geo->beginTriangles();
    ASSERT_FALSE(it.isAtEnd());
    EXPECT_EQ(it.getPositionIndex(0), 3);
    EXPECT_EQ(it.getPositionIndex(1), 2);
    EXPECT_EQ(it.getPositionIndex(2), 1);
    EXPECT_EQ(it.getNormalIndex(0), 1);
    EXPECT_EQ(it.getNormalIndex(1), 0);
    EXPECT_EQ(it.getNormal(0), Vec3f(0, 1, 0));
    EXPECT_EQ(it.getIndex(2), 2);
    // no texture coordinates set: no index
    EXPECT_EQ(it.getTexCoordsIndex(0), -1);
    // no colour bit in the mapping
    EXPECT_EQ(it.getColorIndex(0), -1);
    ++it;
    EXPECT_TRUE(it.isAtEnd());

    // a one-entry mapping is single-indexed: every attribute uses the index
    GeometryPtr single = makeGeo({GL_TRIANGLES}, {3}, makePositions(grid(4)),
                                 makeIndices({3, 1, 2}), {Geometry::MapPosition});
    beginEditCP(single, Geometry::NormalsFieldMask);
    single->setNormals(n->clone());
    endEditCP(single, Geometry::NormalsFieldMask);
    EXPECT_EQ(single->beginTriangles().getNormalIndex(2), 2);

    subRefCP(geo);
    subRefCP(single);
}

// --- picking ---------------------------------------------------------------------------

TEST(GeometryIntersect, ReportsDistanceTriangleAndNode)
{
    // two triangles of a unit square in z = 0, as one strip
    GeometryPtr geo = makeGeo({GL_TRIANGLE_STRIP}, {4},
                              makePositions({Pnt3f(-.5f, -.5f, 0), Pnt3f(.5f, -.5f, 0),
                                             Pnt3f(-.5f, .5f, 0), Pnt3f(.5f, .5f, 0)}),
                              makeIndices({2, 0, 3, 1}));
    NodePtr geoNode = nodeWith(geo);
    NodePtr root    = nodeWith(Group::create());
    beginEditCP(root, Node::ChildrenFieldMask);
    root->addChild(geoNode);
    endEditCP(root, Node::ChildrenFieldMask);

    IntersectAction *act = IntersectAction::create();

    // the lower right half is the second triangle (3, 0, 1)
    act->setLine(Line(Pnt3f(.25f, -.25f, 5), Vec3f(0, 0, -1)));
    act->apply(root);
    ASSERT_TRUE(act->didHit());
    EXPECT_FLOAT_EQ(act->getHitT(), 5.f);
    EXPECT_EQ(act->getHitTriangle(), 1);
    EXPECT_EQ(act->getHitObject(), geoNode);
    EXPECT_FLOAT_EQ(std::fabs(act->getHitNormal()[2]), 1.f);

    act->setLine(Line(Pnt3f(-.25f, .25f, -2), Vec3f(0, 0, 1)));
    act->apply(root);
    ASSERT_TRUE(act->didHit());
    EXPECT_FLOAT_EQ(act->getHitT(), 2.f);
    EXPECT_EQ(act->getHitTriangle(), 0);

    // beside the square, and pointing away
    act->setLine(Line(Pnt3f(.75f, 0, 5), Vec3f(0, 0, -1)));
    act->apply(root);
    EXPECT_FALSE(act->didHit());
    act->setLine(Line(Pnt3f(0, 0, 5), Vec3f(0, 0, 1)));
    act->apply(root);
    EXPECT_FALSE(act->didHit());

    delete act;
    subRefCP(root);
    subRefCP(geo);
}

// --- other members -----------------------------------------------------------------

TEST(GeometryMembers, GetPropertyByMappingBit)
{
    GeoPositions3fPtr pos = makePositions({Pnt3f(1, 2, 3)});
    GeometryPtr       geo = makeGeo({GL_POINTS}, {1}, pos);

    GeoPropertyArrayInterface *p = geo->getProperty(Geometry::MapPosition);
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(p->getSize(), 1u);
    EXPECT_EQ(p->getDimension(), 3u);
    EXPECT_EQ(p->getData(), pos->getData());
    EXPECT_EQ(geo->getProperty(Geometry::MapTexCoords3), nullptr);
    EXPECT_EQ(geo->getProperty(0), nullptr);

    LogCapture log(LOG_FATAL);
    EXPECT_EQ(geo->getProperty(Geometry::MapPosition | Geometry::MapNormal), nullptr);
    EXPECT_NE(log.take().find("getProperty"), std::string::npos);
    subRefCP(geo);
}

TEST(GeometryMembers, CloneCopiesThePropertiesAndSharesTheMaterial)
{
    GeometryPtr geo = makeGeo({GL_TRIANGLES}, {3}, makePositions(grid(3)), makeIndices({0, 1, 2}),
                              {Geometry::MapPosition});
    MaterialPtr mat = getDefaultMaterial();
    beginEditCP(geo, Geometry::MaterialFieldMask);
    geo->setMaterial(mat);
    endEditCP(geo, Geometry::MaterialFieldMask);
    Int32 matRefs = mat.getRefCount();

    GeometryPtr copy = geo->clone();
    ASSERT_NE(copy, NullFC);
    addRefCP(copy);
    EXPECT_EQ(copy->getMaterial(), mat);
    EXPECT_EQ(mat.getRefCount(), matRefs + 1);
    EXPECT_NE(copy->getPositions(), geo->getPositions());
    EXPECT_EQ(copy->getPositions()->getSize(), 3u);
    EXPECT_EQ(copy->getPositions()->getValue(2), geo->getPositions()->getValue(2));
    EXPECT_EQ(copy->getPositions().getRefCount(), 1);
    EXPECT_EQ(copy->getIndices()->getValue(1), 1u);
    EXPECT_EQ(copy->getMFIndexMapping()->size(), 1u);
    EXPECT_EQ(positionTriangles(copy), positionTriangles(geo));

    subRefCP(copy);
    EXPECT_EQ(mat.getRefCount(), matRefs);
    subRefCP(geo);
}
