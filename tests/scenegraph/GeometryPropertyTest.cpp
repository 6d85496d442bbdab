// Geometry properties: type tree and field layout, the array view, the
// generic interface with its conversions, and cloning.
#include <OpenSG/OSGGeoProperty.h>
#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGFieldDescription.h>

#include <gtest/gtest.h>

using namespace osg;

namespace
{

template <class PtrT>
PtrT refd(PtrT p)
{
    addRefCP(p);
    return p;
}

} // namespace

TEST(GeometryPropertyTypes, AbstractKindsAndConcreteClasses)
{
    struct
    {
        FieldContainerType &type;
        const char         *kind;
    } cases[] = {
        {GeoPositions2f::getClassType(), "GeoPositions"},
        {GeoPositions3f::getClassType(), "GeoPositions"},
        {GeoPositions4f::getClassType(), "GeoPositions"},
        {GeoNormals3f::getClassType(), "GeoNormals"},
        {GeoColors3f::getClassType(), "GeoColors"},
        {GeoColors4f::getClassType(), "GeoColors"},
        {GeoColors3ub::getClassType(), "GeoColors"},
        {GeoColors4ub::getClassType(), "GeoColors"},
        {GeoTexCoords1f::getClassType(), "GeoTexCoords"},
        {GeoTexCoords2f::getClassType(), "GeoTexCoords"},
        {GeoTexCoords3f::getClassType(), "GeoTexCoords"},
        {GeoTexCoords4f::getClassType(), "GeoTexCoords"},
        {GeoIndicesUI32::getClassType(), "GeoIndices"},
        {GeoIndicesUI16::getClassType(), "GeoIndices"},
        {GeoPTypesUI8::getClassType(), "GeoPTypes"},
        {GeoPLengthsUI32::getClassType(), "GeoPLengths"},
        {GeoPLengthsUI16::getClassType(), "GeoPLengths"},
        {GeoPLengthsUI8::getClassType(), "GeoPLengths"},
    };
    for(auto &c : cases)
    {
        SCOPED_TRACE(c.type.getCName());
        ASSERT_NE(c.type.getParent(), nullptr);
        EXPECT_STREQ(c.type.getParent()->getCName(), c.kind);
        EXPECT_STREQ(c.type.getParent()->getParent()->getCName(), "Attachment");
        EXPECT_TRUE(c.type.getParent()->isAbstract());
        EXPECT_FALSE(c.type.isAbstract());
        EXPECT_TRUE(c.type.isAttachment());

        // the one data field: id 3, mask 0x8, not internal
        FieldDescription *desc = c.type.getFieldDescription(3);
        ASSERT_NE(desc, nullptr);
        EXPECT_EQ(desc->getFieldMask(), BitVector(0x8));
        EXPECT_FALSE(desc->isInternal());
        EXPECT_EQ(c.type.getNumFieldDescs(), 3u);

        FieldContainerPtr fc = FieldContainerFactory::the()->createFieldContainer(c.type.getCName());
        EXPECT_NE(fc, NullFC);
    }
    EXPECT_EQ(GeoPositions3f::GeoPropDataFieldId, 3);
    EXPECT_EQ(GeoPositions3f::GeoPropDataFieldMask, BitVector(0x8));
    EXPECT_STREQ(GeoPositions3f::getClassType().getFieldDescription(3)->getCName(), "positions");
    EXPECT_STREQ(GeoTexCoords2f::getClassType().getFieldDescription(3)->getCName(), "TexCoords");
}

TEST(GeometryPropertyTypes, PointersConvertToTheKindAndBack)
{
    GeoPositions3fPtr p3 = refd(GeoPositions3f::create());
    GeoPositionsPtr   abstractP = p3;
    EXPECT_EQ(GeoPositions3fPtr::dcast(abstractP), p3);
    EXPECT_EQ(GeoPositions2fPtr::dcast(abstractP), NullFC);
    AttachmentPtr att = abstractP;
    EXPECT_EQ(GeoPositionsPtr::dcast(att), p3);
    subRefCP(p3);
}

TEST(GeometryPropertyArray, FormatsSizesAndData)
{
    struct
    {
        GeoPropertyArrayInterface *prop;
        UInt32                     format, formatSize, dim;
    } cases[] = {
        {GeoPositions2f::create().getCPtr(), GL_FLOAT, 4, 2},
        {GeoPositions3f::create().getCPtr(), GL_FLOAT, 4, 3},
        {GeoPositions4f::create().getCPtr(), GL_FLOAT, 4, 4},
        {GeoNormals3f::create().getCPtr(), GL_FLOAT, 4, 3},
        {GeoColors3f::create().getCPtr(), GL_FLOAT, 4, 3},
        {GeoColors4f::create().getCPtr(), GL_FLOAT, 4, 4},
        {GeoColors4ub::create().getCPtr(), GL_UNSIGNED_BYTE, 1, 4},
        {GeoTexCoords1f::create().getCPtr(), GL_FLOAT, 4, 1},
        {GeoTexCoords2f::create().getCPtr(), GL_FLOAT, 4, 2},
        {GeoTexCoords3f::create().getCPtr(), GL_FLOAT, 4, 3},
        {GeoTexCoords4f::create().getCPtr(), GL_FLOAT, 4, 4},
        {GeoIndicesUI32::create().getCPtr(), GL_UNSIGNED_INT, 4, 1},
        {GeoIndicesUI16::create().getCPtr(), GL_UNSIGNED_SHORT, 2, 1},
        {GeoPTypesUI8::create().getCPtr(), GL_UNSIGNED_BYTE, 1, 1},
        {GeoPLengthsUI32::create().getCPtr(), GL_UNSIGNED_INT, 4, 1},
        {GeoPLengthsUI16::create().getCPtr(), GL_UNSIGNED_SHORT, 2, 1},
    };
    for(auto &c : cases)
    {
        ASSERT_NE(c.prop, nullptr);
        EXPECT_EQ(c.prop->getFormat(), c.format);
        EXPECT_EQ(c.prop->getFormatSize(), c.formatSize);
        EXPECT_EQ(c.prop->getDimension(), c.dim);
        EXPECT_EQ(c.prop->getStride(), 0u);
        EXPECT_EQ(c.prop->getSize(), 0u);
        EXPECT_EQ(c.prop->getData(), nullptr);

        // resized elements are zero and the bytes are tightly packed
        c.prop->resize(3);
        EXPECT_EQ(c.prop->size(), 3u);
        ASSERT_NE(c.prop->getData(), nullptr);
        const UInt8 *bytes = c.prop->getData();
        for(UInt32 i = 0; i < 3 * c.formatSize * c.dim; ++i)
            EXPECT_EQ(bytes[i], 0) << i;
        c.prop->shrink();
        c.prop->clear();
        EXPECT_EQ(c.prop->getSize(), 0u);
    }
}

TEST(GeometryPropertyGeneric, PositionsPadAndTruncate)
{
    GeoPositions2fPtr p2 = refd(GeoPositions2f::create());
    GeoPositions4fPtr p4 = refd(GeoPositions4f::create());
    GeoPositionsPtr   a2 = p2, a4 = p4;

    a2->push_back(Pnt3f(1, 2, 3));
    a4->push_back(Pnt3f(1, 2, 3));
    EXPECT_EQ(p2->getField()[0], Pnt2f(1, 2));
    EXPECT_EQ(p4->getField()[0], Pnt4f(1, 2, 3, 0));
    EXPECT_EQ(a2->getValue(0), Pnt3f(1, 2, 0));

    p4->getField()[0] = Pnt4f(5, 6, 7, 8);
    Pnt3f out;
    a4->getValue(out, 0);
    EXPECT_EQ(out, Pnt3f(5, 6, 7));

    a2->setValue(Pnt3f(9, 8, 7), 0);
    EXPECT_EQ(p2->getField()[0], Pnt2f(9, 8));

    // raw bytes follow the stored type
    const Real32 *raw = reinterpret_cast<const Real32 *>(a2->getData());
    EXPECT_EQ(raw[0], 9.f);
    EXPECT_EQ(raw[1], 8.f);

    subRefCP(p2);
    subRefCP(p4);
}

TEST(GeometryPropertyGeneric, TexCoordsColorsAndScalars)
{
    GeoTexCoords3fPtr t3 = refd(GeoTexCoords3f::create());
    GeoTexCoordsPtr   t  = t3;
    t->push_back(Vec2f(0.25f, 0.75f));
    EXPECT_EQ(t3->getField()[0], Vec3f(0.25f, 0.75f, 0));

    GeoTexCoords1fPtr t1 = refd(GeoTexCoords1f::create());
    GeoTexCoordsPtr(t1)->push_back(Vec2f(0.5f, 0.9f));
    EXPECT_EQ(t1->getField()[0], 0.5f);
    EXPECT_EQ(GeoTexCoordsPtr(t1)->getValue(0), Vec2f(0.5f, 0));

    GeoColors4ubPtr cub = refd(GeoColors4ub::create());
    GeoColorsPtr    c   = cub;
    c->push_back(Color3f(1.f, 0.f, 0.5f));
    EXPECT_EQ(cub->getField()[0], Color4ub(255, 0, 128, 255));
    Color3f back = c->getValue(0);
    EXPECT_FLOAT_EQ(back[0], 1.f);
    EXPECT_FLOAT_EQ(back[2], 128 / 255.f);

    GeoColors4fPtr c4 = refd(GeoColors4f::create());
    GeoColorsPtr(c4)->push_back(Color3f(0.1f, 0.2f, 0.3f));
    EXPECT_EQ(c4->getField()[0], Color4f(0.1f, 0.2f, 0.3f, 1.f));

    GeoIndicesUI16Ptr i16 = refd(GeoIndicesUI16::create());
    GeoIndicesPtr     ind = i16;
    ind->push_back(7);
    ind->push_back(65535);
    EXPECT_EQ(ind->getValue(1), 65535u);
    EXPECT_EQ(*reinterpret_cast<const UInt16 *>(ind->getData()), 7);

    GeoPTypesPtr types = refd(GeoPTypesUI8::create());
    types->push_back(GL_TRIANGLE_STRIP);
    EXPECT_EQ(types->getValue(0), GL_TRIANGLE_STRIP);

    subRefCP(t3);
    subRefCP(t1);
    subRefCP(cub);
    subRefCP(c4);
    subRefCP(i16);
    subRefCP(types);
}

TEST(GeometryPropertyGeneric, InsertValueAndBounds)
{
    GeoPLengthsUI32Ptr l = refd(GeoPLengthsUI32::create());
    GeoPLengthsPtr     a = l;
    EXPECT_TRUE(a->insertValue(5, 0));
    EXPECT_TRUE(a->insertValue(7, 1)); // == size: appends
    EXPECT_TRUE(a->insertValue(6, 1));
    EXPECT_FALSE(a->insertValue(9, 4)); // beyond the end
    ASSERT_EQ(a->getSize(), 3u);
    EXPECT_EQ(l->getField()[0], 5u);
    EXPECT_EQ(l->getField()[1], 6u);
    EXPECT_EQ(l->getField()[2], 7u);
    subRefCP(l);
}

TEST(GeometryPropertyGeneric, CloneCopiesDataIntoANewContainer)
{
    GeoNormals3fPtr n = refd(GeoNormals3f::create());
    beginEditCP(n);
    n->getField().push_back(Vec3f(0, 0, 1));
    n->getField().push_back(Vec3f(1, 0, 0));
    endEditCP(n);

    GeoNormalsPtr copy = n->clone();
    ASSERT_NE(copy, NullFC);
    EXPECT_NE(copy, n);
    GeoNormals3fPtr typed = GeoNormals3fPtr::dcast(copy);
    ASSERT_NE(typed, NullFC);
    EXPECT_EQ(typed->getField().size(), 2u);
    EXPECT_EQ(typed->getField()[1], Vec3f(1, 0, 0));
    EXPECT_EQ(typed->getParents().size(), 0u);

    n->getField()[1] = Vec3f(0, 1, 0);
    EXPECT_EQ(typed->getField()[1], Vec3f(1, 0, 0));

    subRefCP(n);
    addRefCP(copy);
    subRefCP(copy);
}
