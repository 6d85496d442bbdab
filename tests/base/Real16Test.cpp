// Half floats: bit layout, the rounding rule and the exact way back.
#include <OpenSG/OSGReal16.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <sstream>
#include <type_traits>

OSG_USING_NAMESPACE

namespace
{

unsigned short bitsOf(float f)
{
    return Real16(f).bits();
}

Real16 fromBits(unsigned short b)
{
    Real16 h;
    h.setBits(b);
    return h;
}

// The value of a half, computed independently of the conversion table.
double halfValue(unsigned short b)
{
    int    sign = (b & 0x8000) ? -1 : 1;
    int    exp  = (b >> 10) & 0x1F;
    int    mant = b & 0x3FF;
    if(exp == 0)
        return sign * std::ldexp(double(mant), -24);
    return sign * std::ldexp(double(mant | 0x400), exp - 25);
}

} // namespace

TEST(Real16Layout, IsTwoTriviallyCopyableBytes)
{
    EXPECT_EQ(sizeof(Real16), 2u);
    EXPECT_TRUE(std::is_trivially_copyable<Real16>::value);
    EXPECT_TRUE(std::is_trivially_default_constructible<Real16>::value);
}

TEST(Real16Layout, KnownBitPatterns)
{
    EXPECT_EQ(bitsOf(0.5f), 0x3800);
    EXPECT_EQ(bitsOf(1.0f), 0x3C00);
    EXPECT_EQ(bitsOf(2.0f), 0x4000);
    EXPECT_EQ(bitsOf(-2.0f), 0xC000);
    EXPECT_EQ(bitsOf(65504.f), 0x7BFF);
    EXPECT_EQ(Real16::posInf().bits(), 0x7C00);
    EXPECT_EQ(Real16::negInf().bits(), 0xFC00);
    EXPECT_EQ(Real16::qNan().bits(), 0x7FFF);
    EXPECT_EQ(Real16::sNan().bits(), 0x7DFF);
}

TEST(Real16FromFloat, CheckedConversions)
{
    EXPECT_EQ(bitsOf(0.1f), 0x2E66);
    EXPECT_FLOAT_EQ(float(Real16(0.1f)), 0.0999755859375f);
    EXPECT_EQ(bitsOf(40000.f), 0x78E2);
    EXPECT_EQ(bitsOf(65519.f), 0x7BFF);
    EXPECT_EQ(bitsOf(65520.f), 0x7C00);
    EXPECT_EQ(bitsOf(3e-8f), 0x0001);
    EXPECT_EQ(bitsOf(1e-8f), 0x0000);
    EXPECT_EQ(bitsOf(-1e-30f), 0x0000);
}

TEST(Real16FromFloat, ZeroLosesItsSign)
{
    EXPECT_EQ(bitsOf(-0.0f), 0x0000);
    EXPECT_EQ(bitsOf(-1e-8f), 0x0000);
}

TEST(Real16FromFloat, TiesRoundAwayFromZero)
{
    // Exactly halfway between two halves, in each range of the conversion:
    // normal (fast path), denormal and large (general path).
    EXPECT_EQ(bitsOf(1.f + std::ldexp(1.f, -11)), 0x3C01);
    EXPECT_EQ(bitsOf(-(1.f + std::ldexp(1.f, -11))), 0xBC01);
    EXPECT_EQ(bitsOf(1.f + std::ldexp(1.f, -11) - std::ldexp(1.f, -23)),
              0x3C00);
    EXPECT_EQ(bitsOf(std::ldexp(1.f, -25)), 0x0001);
    EXPECT_EQ(bitsOf(std::ldexp(3.f, -25)), 0x0002);
    EXPECT_EQ(bitsOf(32784.f), 0x7801);
    EXPECT_EQ(bitsOf(-32784.f), 0xF801);
}

TEST(Real16FromFloat, RoundingCarriesIntoTheExponent)
{
    // Largest denormal rounds up to the smallest normal; 2047.5 to 2048.
    EXPECT_EQ(bitsOf(float(halfValue(0x03FF) + std::ldexp(1.0, -25))), 0x0400);
    EXPECT_EQ(bitsOf(2047.5f), 0x6800);
}

TEST(Real16FromFloat, InfinityAndNanSurvive)
{
    EXPECT_EQ(bitsOf(INFINITY), 0x7C00);
    EXPECT_EQ(bitsOf(-INFINITY), 0xFC00);
    EXPECT_EQ(bitsOf(-1e10f), 0xFC00);
    EXPECT_TRUE(Real16(NAN).isNan());

    // A NaN whose payload sits only in the low float bits must not become
    // an infinity.
    std::uint32_t lowPayload = 0x7F800001u;
    float         f;
    std::memcpy(&f, &lowPayload, sizeof(f));
    EXPECT_TRUE(Real16(f).isNan());
}

TEST(Real16FromFloat, EveryResultIsTheNearestHalfWithTiesAway)
{
    // A sweep over float bit patterns of both signs below the overflow
    // threshold, checked against the neighbouring halves.
    for(std::uint64_t u = 0; u < 0x477FF000u; u += 1237)
    {
        for(std::uint32_t sign : {0u, 0x80000000u})
        {
            std::uint32_t x = std::uint32_t(u) | sign;
            float         f;
            std::memcpy(&f, &x, sizeof(f));

            unsigned short h   = Real16(f).bits();
            double         got = halfValue(h);
            double         err = std::fabs(got - double(f));
            ASSERT_TRUE(fromBits(h).isFinite()) << f;

            unsigned short mag = h & 0x7FFF;
            for(int step : {-1, 1})
            {
                int n = int(mag) + step;
                if(n < 0 || n > 0x7BFF)
                    continue;
                double other    = halfValue(std::uint16_t(n)) *
                               (std::signbit(f) ? -1.0 : 1.0);
                double otherErr = std::fabs(other - double(f));
                ASSERT_LE(err, otherErr) << "f=" << f << " h=" << h;
                if(err == otherErr)
                {
                    ASSERT_GT(std::fabs(got), std::fabs(other)) << f;
                }
            }
        }
    }
}

TEST(Real16ToFloat, EveryPatternHasItsExactValue)
{
    for(std::uint32_t b = 0; b < 0x10000; ++b)
    {
        Real16 h = fromBits(std::uint16_t(b));
        if(h.isNan())
        {
            ASSERT_TRUE(std::isnan(float(h))) << b;
        }
        else if(h.isInfinity())
        {
            ASSERT_TRUE(std::isinf(float(h))) << b;
            ASSERT_EQ(std::signbit(float(h)), h.isNegative()) << b;
        }
        else
        {
            ASSERT_EQ(double(float(h)), halfValue(std::uint16_t(b))) << b;
        }
    }
}

TEST(Real16ToFloat, RoundTripKeepsEveryBitPattern)
{
    for(std::uint32_t b = 0; b < 0x10000; ++b)
    {
        Real16 h = fromBits(std::uint16_t(b));
        Real16 back{float(h)};
        if(h.isNan())
        {
            ASSERT_TRUE(back.isNan()) << b;
        }
        else if(b == 0x8000)
        {
            ASSERT_EQ(back.bits(), 0x0000); // -0 comes back as +0
        }
        else
        {
            ASSERT_EQ(back.bits(), b) << b;
        }
    }
}

TEST(Real16Members, ClassificationOfBitPatterns)
{
    EXPECT_TRUE(fromBits(0x0000).isZero());
    EXPECT_TRUE(fromBits(0x8000).isZero());
    EXPECT_TRUE(fromBits(0x8000).isNegative());
    EXPECT_TRUE(fromBits(0x0001).isDenormalized());
    EXPECT_FALSE(fromBits(0x0001).isNormalized());
    EXPECT_TRUE(fromBits(0x0400).isNormalized());
    EXPECT_TRUE(fromBits(0x7BFF).isFinite());
    EXPECT_FALSE(fromBits(0x7C00).isFinite());
    EXPECT_TRUE(fromBits(0x7C00).isInfinity());
    EXPECT_FALSE(fromBits(0x7C00).isNan());
    EXPECT_TRUE(fromBits(0x7C01).isNan());
    EXPECT_FALSE(fromBits(0x7C01).isInfinity());
}

TEST(Real16Members, ArithmeticGoesThroughFloat)
{
    Real16 h(1.5f);
    EXPECT_EQ((-h).bits(), 0xBE00);
    EXPECT_EQ((-Real16(0.f)).bits(), 0x8000);

    h += 0.5f;
    EXPECT_EQ(h.bits(), 0x4000);
    h *= Real16(3.f);
    EXPECT_EQ(float(h), 6.f);
    h -= 7;
    EXPECT_EQ(float(h), -1.f);
    h /= 4.f;
    EXPECT_EQ(float(h), -0.25f);

    // Results are rounded back to half precision.
    Real16 r(1.f);
    r += 1e-4f;
    EXPECT_EQ(r.bits(), 0x3C00);
}

TEST(Real16Members, RoundKeepsMantissaBits)
{
    EXPECT_EQ(Real16(1.75f).round(10).bits(), Real16(1.75f).bits());
    EXPECT_EQ(float(Real16(1.75f).round(2)), 1.75f);
    EXPECT_EQ(float(Real16(1.75f).round(1)), 2.f);  // tie goes up
    EXPECT_EQ(float(Real16(1.25f).round(1)), 1.5f); // tie goes up
    EXPECT_EQ(float(Real16(-1.75f).round(1)), -2.f);
    EXPECT_EQ(float(Real16(1.2f).round(0)), 1.f);
    // Rounding up would overflow: truncated instead.
    EXPECT_EQ(float(Real16(65504.f).round(0)), 32768.f);
    EXPECT_TRUE(Real16::qNan().round(3).isNan());
}

TEST(Real16Members, StreamsGoThroughFloat)
{
    std::ostringstream out;
    out << Real16(0.5f) << " " << Real16(-2.f);
    EXPECT_EQ(out.str(), "0.5 -2");

    std::istringstream in("0.1 oops");
    Real16             h(7.f);
    in >> h;
    EXPECT_EQ(h.bits(), 0x2E66);
    in >> h;
    EXPECT_TRUE(in.fail());
    EXPECT_EQ(h.bits(), 0x2E66);
}

TEST(Real16Members, LimitMacros)
{
    EXPECT_EQ(float(REAL16_MAX), float(fromBits(0x7BFF)));
    EXPECT_FLOAT_EQ(float(REAL16_MIN), float(fromBits(0x0001)));
    EXPECT_FLOAT_EQ(float(REAL16_NRM_MIN), float(fromBits(0x0400)));
    EXPECT_EQ(REAL16_MANT_DIG, 11);
    EXPECT_EQ(REAL16_MIN_EXP, -13);
    EXPECT_EQ(REAL16_MAX_EXP, 16);
}
