// Points, vectors, colours and the scalar helpers.
#include <OpenSG/OSGBaseFunctions.h>
#include <OpenSG/OSGColor.h>
#include <OpenSG/OSGVector.h>

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <type_traits>

OSG_USING_NAMESPACE

template <class T>
static std::string text(const T &value)
{
    std::ostringstream out;
    out << value;
    return out.str();
}

TEST(VectorConstruction, UnsetComponentsAreZero)
{
    Vec4f v;
    EXPECT_EQ(text(v), "0, 0, 0, 0");
    EXPECT_EQ(text(Vec4f(1, 2)), "1, 2, 0, 0");
    EXPECT_EQ(text(Pnt3f(5)), "5, 0, 0");
    EXPECT_EQ(text(Vec2f(1, 2, 3, 4)), "1, 2");

    const Real32 values[3] = {7, 8, 9};
    EXPECT_EQ(text(Vec3f(values)), "7, 8, 9");
    EXPECT_EQ(text(Vec3f::Null), "0, 0, 0");
}

TEST(VectorConstruction, ConvertsImplicitlyBetweenSizesAndKinds)
{
    Vec3f v3(1, 2, 3);
    Vec4f v4 = v3;
    EXPECT_EQ(text(v4), "1, 2, 3, 0");

    Pnt2f p2 = Vec4f(4, 5, 6, 7);
    EXPECT_EQ(text(p2), "4, 5");

    Pnt3f p3 = v3;
    Vec3f back = p3;
    EXPECT_EQ(back, v3);

    Vec3d d = v3;
    EXPECT_DOUBLE_EQ(d[2], 3.0);
}

TEST(VectorConstruction, SetValueLeavesExtraComponents)
{
    Vec4f v(1, 2, 3, 4);
    v.setValue(Vec2f(7, 8));
    EXPECT_EQ(text(v), "7, 8, 3, 4");

    v.setValues(1, 2, 3);
    EXPECT_EQ(text(v), "1, 2, 3, 0");

    v.setValueFromCString("9, 8  7");
    EXPECT_EQ(text(v), "9, 8, 7, 0");

    v.setValue("1.5");
    EXPECT_EQ(text(v), "1.5, 0, 0, 0");
}

TEST(VectorAlgebra, PointAndVectorResultTypes)
{
    Pnt3f a(1, 1, 1), b(4, 5, 1);
    Vec3f d(1, 0, 0);

    static_assert(std::is_same<decltype(b - a), Vec3f>::value, "p - p");
    static_assert(std::is_same<decltype(a + d), Pnt3f>::value, "p + v");
    static_assert(std::is_same<decltype(a - d), Pnt3f>::value, "p - v");
    static_assert(std::is_same<decltype(d + d), Vec3f>::value, "v + v");
    static_assert(std::is_same<decltype(2.f * d), Vec3f>::value, "s * v");
    static_assert(std::is_same<decltype(d * d), Real32>::value, "dot");

    EXPECT_EQ(b - a, Vec3f(3, 4, 0));
    EXPECT_FLOAT_EQ(a.dist(b), 5.f);
    EXPECT_FLOAT_EQ(a.dist2(b), 25.f);
    EXPECT_EQ(a + d * 2, Pnt3f(3, 1, 1));
    EXPECT_EQ(2 * d, Vec3f(2, 0, 0));
    EXPECT_EQ(-a, Pnt3f(-1, -1, -1));
    EXPECT_EQ(b.subZero(), Vec3f(4, 5, 1));
    EXPECT_EQ(b.maxValue(), 5);
}

TEST(VectorAlgebra, CrossIsRightHandedAndDotIsStar)
{
    Vec3f x(1, 0, 0), y(0, 1, 0);
    EXPECT_EQ(x % y, Vec3f(0, 0, 1));
    EXPECT_EQ(y.cross(x), Vec3f(0, 0, -1));
    EXPECT_EQ(x * y, 0.f);
    EXPECT_EQ(Vec3f(1, 2, 3) * Vec3f(4, 5, 6), 32.f);

    Vec4f a(1, 0, 0, 5), b(0, 1, 0, 7);
    EXPECT_EQ(text(a % b), "0, 0, 1, 0");

    Vec3f c = x;
    c.crossThis(y);
    EXPECT_EQ(c, Vec3f(0, 0, 1));
}

TEST(VectorAlgebra, CrossThisChangesOnlyXYZ)
{
    Vec3f v(1, 0, 0);
    v.crossThis(Vec3f(0, 1, 0));
    EXPECT_EQ(v, Vec3f(0, 0, 1));

    // w keeps its value
    Vec4f w(1, 0, 0, 7);
    w.crossThis(Vec4f(0, 1, 0, 3));
    EXPECT_EQ(w, Vec4f(0, 0, 1, 7));

    // no cross product in two dimensions: the vector stays
    Vec2f p(1, 2);
    p.crossThis(Vec2f(3, 4));
    EXPECT_EQ(p, Vec2f(1, 2));
}

TEST(VectorAlgebra, NormalizeLeavesTinyVectorsAlone)
{
    Vec3f v(3, 0, 4);
    v.normalize();
    EXPECT_FLOAT_EQ(v.length(), 1.f);
    EXPECT_FLOAT_EQ(v[0], 0.6f);

    Vec3f tiny(5e-7f, 0, 0);
    tiny.normalize();
    EXPECT_EQ(tiny[0], 5e-7f);

    Vec3f zero;
    zero.normalize();
    EXPECT_EQ(text(zero), "0, 0, 0");
}

TEST(VectorAlgebra, AnglesAndProjection)
{
    EXPECT_FLOAT_EQ(Vec3f(1, 0, 0).enclosedAngle(Vec3f(0, 2, 0)), Pi / 2);
    EXPECT_FLOAT_EQ(Vec3f(1, 0, 0).enclosedAngle(Vec3f(-1, 0, 0)), Pi);

    Vec3f v(2, 3, 0);
    EXPECT_FLOAT_EQ(v.projectTo(Vec3f(2, 0, 0)), 1.f);
    EXPECT_EQ(v, Vec3f(2, 0, 0));
}

TEST(VectorComparison, EqualityToleratesEps)
{
    EXPECT_TRUE(Vec3f(1, 2, 3) == Vec3f(1 + 5e-7f, 2, 3));
    EXPECT_FALSE(Vec3f(1, 2, 3) == Vec3f(1 + 5e-6f, 2, 3));
    EXPECT_TRUE(Vec3f(1, 2, 3) != Vec3f(1, 2, 3.1f));
    EXPECT_TRUE(Vec3f(1, 2, 3).equals(Vec3f(1.05f, 2, 3), 0.1f));

    EXPECT_TRUE(Vec3f(0, 9e-7f, -9e-7f).isZero());
    EXPECT_FALSE(Vec3f(0, 2e-6f, 0).isZero());

    // Integer components compare exactly.
    EXPECT_FALSE(Vec3ub(1, 2, 3) == Vec3ub(1, 2, 4));
}

TEST(VectorComparison, LessIsLexicographic)
{
    EXPECT_TRUE(Vec3f(1, 9, 9) < Vec3f(2, 0, 0));
    EXPECT_TRUE(Vec3f(1, 2, 3) < Vec3f(1, 2, 4));
    EXPECT_FALSE(Vec3f(1, 2, 3) < Vec3f(1, 2, 3));

    std::map<Pnt3f, int> byPoint;
    byPoint[Pnt3f(1, 0, 0)] = 1;
    byPoint[Pnt3f(0, 1, 0)] = 2;
    EXPECT_EQ(byPoint.begin()->second, 2);
}

TEST(VectorOutput, ByteComponentsPrintAsNumbers)
{
    EXPECT_EQ(text(Vec3ub(65, 66, 255)), "65, 66, 255");
    EXPECT_EQ(text(Vec2b(-1, 2)), "-1, 2");
}

TEST(Color, DefaultIsAllZeroAlphaToo)
{
    Color4f c;
    EXPECT_EQ(c.red(), 0.f);
    EXPECT_EQ(c.alpha(), 0.f);
    EXPECT_EQ(text(Color3f()), "0, 0, 0");
}

TEST(Color, PackedForms)
{
    Color3f c(1.f, 0.5f, 0.f);
    EXPECT_EQ(c.getRGB(), 0xFF8000u);

    c.setRGB(0x00FF80u);
    EXPECT_FLOAT_EQ(c.green(), 1.f);
    EXPECT_FLOAT_EQ(c.blue(), 128.f / 255.f);

    Color4f rgba(1.f, 0.f, 0.f, 1.f);
    EXPECT_EQ(rgba.getRGBA(), 0xFF0000FFu);
    rgba.setRGBA(0x11223344u);
    EXPECT_EQ(rgba.getRGBA(), 0x11223344u);

    Color4ub b;
    b.setRGBA(0x11223344u);
    EXPECT_EQ(b[0], 0x11);
    EXPECT_EQ(b.alpha(), 0x44);
    EXPECT_EQ(text(b), "17, 34, 51, 68");
}

TEST(Color, HsvToRgb)
{
    Color3f c;
    c.setValuesHSV(0.f, 1.f, 1.f);
    EXPECT_EQ(c, Color3f(1, 0, 0));
    c.setValuesHSV(120.f, 1.f, 1.f);
    EXPECT_EQ(c, Color3f(0, 1, 0));
    c.setValuesHSV(240.f, 1.f, 0.5f);
    EXPECT_EQ(c, Color3f(0, 0, 0.5f));
    c.setValuesHSV(60.f, 0.f, 0.25f);
    EXPECT_EQ(c, Color3f(0.25f, 0.25f, 0.25f));
    c.setValuesHSV(-60.f, 1.f, 1.f);
    EXPECT_EQ(c, Color3f(1, 0, 1));
}

TEST(Color, ComponentWiseArithmetic)
{
    Color3f a(0.2f, 0.4f, 0.6f), b(0.1f, 0.1f, 0.1f);
    EXPECT_EQ(a + b, Color3f(0.3f, 0.5f, 0.7f));
    EXPECT_EQ(a * 2.f, Color3f(0.4f, 0.8f, 1.2f));
    EXPECT_EQ(2.f * a, a * 2.f);
    a -= b;
    EXPECT_EQ(a, Color3f(0.1f, 0.3f, 0.5f));
    EXPECT_TRUE(a.equals(Color3f(0.11f, 0.3f, 0.5f), 0.02f));
    EXPECT_FALSE(a == Color3f(0.11f, 0.3f, 0.5f));

    Color4f c;
    c.setValue("0.5, 0.25 1");
    EXPECT_EQ(text(c), "0.5, 0.25, 1, 0");
}

TEST(BaseFunctions, PowersOfTwo)
{
    EXPECT_EQ(osgnextpower2(0u), 1u);
    EXPECT_EQ(osgnextpower2(1u), 1u);
    EXPECT_EQ(osgnextpower2(5u), 8u);
    EXPECT_EQ(osgnextpower2(64u), 64u);
    EXPECT_EQ(osgnextpower2(65), 128);
    EXPECT_EQ(osgnextpower2(UInt32(0x80000000u)), 0x80000000u);
    EXPECT_EQ(osgnextpower2(UInt32(0x80000001u)), 0u);
    EXPECT_EQ(osgnextpower2(Int32(0x40000001)), 0);
    EXPECT_EQ(osgnextpower2(UInt16(300)), 512);

    EXPECT_TRUE(osgIsPower2(1u));
    EXPECT_TRUE(osgIsPower2(UInt64(1) << 40));
    EXPECT_FALSE(osgIsPower2(0));
    EXPECT_FALSE(osgIsPower2(6));
    EXPECT_FALSE(osgIsPower2(-4));
}

TEST(BaseFunctions, ScalarHelpers)
{
    EXPECT_EQ(osgClamp(0.f, 1.5f, 1.f), 1.f);
    EXPECT_EQ(osgClamp(0, -3, 10), 0);
    EXPECT_EQ(osgMin(2.5f, 1.f), 1.f);
    EXPECT_EQ(osgMax(-1, 3), 3);
    EXPECT_EQ(osgabs(-2), 2);
    EXPECT_FLOAT_EQ(osgpow(2.f, 10), 1024.f);
    EXPECT_FLOAT_EQ(osgsqrt(16), 4.f);
    EXPECT_FLOAT_EQ(osgatan2(1.f, 1), Pi / 4);
    EXPECT_EQ(osgfloor(-1.5), -2.0);
    EXPECT_EQ(osgceil(1.2f), 2.f);

    EXPECT_EQ(stringcasecmp("Warning", "WARNING"), 0);
    Char8 *copy = stringDup("abc");
    EXPECT_STREQ(copy, "abc");
    delete[] copy;
    EXPECT_EQ(stringDup(NULL), nullptr);
}
