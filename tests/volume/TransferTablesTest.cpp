// Baking control points and deriving the tables, on plain buffers.
#include <OpenSG/OSGReal16.h>
#include <OpenSG/TransferTables.h>

#include <gtest/gtest.h>
#include <support/LimitedRun.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>
#include <vector>

using namespace osg;

namespace
{

typedef TransferTables::AlphaPoints AlphaPoints;
typedef TransferTables::ColorPoints ColorPoints;

AlphaPoints alphaPoints(std::initializer_list<std::pair<float, float> > points)
{
    return AlphaPoints(points);
}

/// An 8-bit table of 256 RGBA texels with a guard zone behind it.
struct ByteTable
{
    ByteTable(UInt32 texels = 256) : texels(texels), bytes(texels * 4 + 64, 0xEE)
    {
        std::fill(bytes.begin(), bytes.begin() + texels * 4, 0);
    }
    UInt8 *data(void) { return bytes.data(); }
    UInt64 size(void) const { return UInt64(texels) * 4; }
    UInt8  alpha(UInt32 k) const { return bytes[k * 4 + 3]; }
    UInt8  red(UInt32 k) const { return bytes[k * 4]; }
    bool   guardIntact(void) const
    {
        for(UInt64 i = size(); i < bytes.size(); ++i)
            if(bytes[i] != 0xEE)
                return false;
        return true;
    }

    UInt32             texels;
    std::vector<UInt8> bytes;
};

/// A half table of 65536 RGBA texels.
struct HalfTable
{
    HalfTable(void) : halves(65536 * 4, 0) {}
    UInt8 *data(void) { return reinterpret_cast<UInt8 *>(halves.data()); }
    UInt64 size(void) const { return halves.size() * 2; }
    unsigned short bits(UInt32 texel, UInt32 channel) const { return halves[texel * 4 + channel]; }

    std::vector<unsigned short> halves;
};

unsigned short halfBits(float f)
{
    return Real16(f).bits();
}

} // namespace

// --- baking 8-bit tables -------------------------------------------------------------

TEST(TransferBake8Bit, DefaultRampStopsOneTexelShortOfFull)
{
    ByteTable table;
    TransferTables::bakeAlpha(table.data(), table.size(), false, 256,
                              alphaPoints({{0.f, 0.f}, {1.f, 1.f}}));
    for(UInt32 k = 0; k < 256; ++k)
        ASSERT_EQ(table.alpha(k), UInt8(255 * k / 256)) << "texel " << k;
    EXPECT_EQ(table.alpha(255), 254);
}

TEST(TransferBake8Bit, OpacityListEndingEarlyFlattensWholeChannel)
{
    ByteTable table;
    TransferTables::bakeAlpha(table.data(), table.size(), false, 256,
                              alphaPoints({{0.f, 0.f}, {0.5f, 1.f}}));
    for(UInt32 k = 0; k < 256; ++k)
        ASSERT_EQ(table.alpha(k), 255) << "texel " << k;
}

TEST(TransferBake8Bit, ColourListEndingEarlyContinuesOnlyItsTail)
{
    ByteTable   table;
    ColorPoints points;
    points.push_back(std::make_pair(0.f, FloatColor(0.f, 0.f, 0.f)));
    points.push_back(std::make_pair(0.5f, FloatColor(1.f, 1.f, 1.f)));
    TransferTables::bakeColor(table.data(), table.size(), false, 256, points);
    for(UInt32 k = 0; k < 128; ++k)
        ASSERT_EQ(table.red(k), UInt8(255 * k / 128)) << "texel " << k;
    for(UInt32 k = 128; k < 256; ++k)
        ASSERT_EQ(table.red(k), 255) << "texel " << k;
    EXPECT_EQ(table.alpha(200), 0) << "the colour bake leaves opacity alone";
}

TEST(TransferBake8Bit, FirstPointFillsTheTexelsBeforeIt)
{
    ByteTable table;
    TransferTables::bakeAlpha(table.data(), table.size(), false, 256,
                              alphaPoints({{0.25f, 0.6f}, {1.f, 0.6f}}));
    const UInt8 expected = UInt8(255.f * 0.6f);
    for(UInt32 k = 0; k < 64; ++k)
        ASSERT_EQ(table.alpha(k), expected) << "texel " << k;
}

TEST(TransferBake8Bit, EqualPositionsJumpAtTheirIndex)
{
    ByteTable table;
    TransferTables::bakeAlpha(table.data(), table.size(), false, 256,
                              alphaPoints({{0.f, 0.f}, {0.5f, 0.25f}, {0.5f, 1.f}, {1.f, 1.f}}));
    EXPECT_EQ(table.alpha(127), UInt8(255.f * (0.25f * 127.f / 128.f)));
    EXPECT_EQ(table.alpha(128), 255);
    EXPECT_EQ(table.alpha(255), 255);
}

TEST(TransferBake8Bit, PointBehindItsPredecessorWritesNothingAndNextSegmentOverwrites)
{
    ByteTable table;
    TransferTables::bakeAlpha(
        table.data(), table.size(), false, 256,
        alphaPoints({{0.f, 1.f}, {0.5f, 1.f}, {0.25f, 0.f}, {0.75f, 0.f}, {1.f, 1.f}}));
    for(UInt32 k = 0; k < 64; ++k)
        ASSERT_EQ(table.alpha(k), 255) << "texel " << k;
    for(UInt32 k = 64; k < 192; ++k)
        ASSERT_EQ(table.alpha(k), 0) << "texel " << k;
    for(UInt32 k = 192; k < 256; ++k)
        ASSERT_EQ(table.alpha(k), UInt8(255 * (k - 192) / 64)) << "texel " << k;
}

TEST(TransferBake8Bit, EmptyListWritesNothing)
{
    ByteTable table;
    std::fill(table.bytes.begin(), table.bytes.begin() + table.size(), 7);
    TransferTables::bakeAlpha(table.data(), table.size(), false, 256, AlphaPoints());
    TransferTables::bakeColor(table.data(), table.size(), false, 256, ColorPoints());
    for(UInt64 i = 0; i < table.size(); ++i)
        ASSERT_EQ(table.bytes[i], 7);
}

TEST(TransferBake8Bit, ValuesOutsideTheUnitRangeAreClamped)
{
    ByteTable table;
    TransferTables::bakeAlpha(table.data(), table.size(), false, 256,
                              alphaPoints({{0.f, 2.f}, {0.5f, -1.f}, {1.f, NAN}}));
    EXPECT_EQ(table.alpha(0), 255);
    EXPECT_EQ(table.alpha(128), 0) << "-1 gives 0";
    EXPECT_EQ(table.alpha(255), 0) << "a NaN mix gives 0";
}

TEST(TransferBake8Bit, NoWriteLandsBeyondTheBuffer)
{
    // a table of 64 texels: the colour tail (to texel 255) and a
    // half-float bake of the same bytes must both stay inside
    ByteTable   table(64);
    ColorPoints colours;
    colours.push_back(std::make_pair(0.1f, FloatColor(1.f, 0.f, 0.f)));
    TransferTables::bakeColor(table.data(), table.size(), false, 1024, colours);
    TransferTables::bakeAlpha(table.data(), table.size(), false, 1024,
                              alphaPoints({{0.f, 1.f}, {0.2f, 0.f}}));
    EXPECT_EQ(table.red(63), UInt8(255));
    EXPECT_TRUE(table.guardIntact());
    TransferTables::bakeColor(table.data(), table.size(), true, 65536, colours);
    TransferTables::bakeAlpha(table.data(), table.size(), true, 65536,
                              alphaPoints({{-3.f, 1.f}, {1e30f, 0.f}, {NAN, 1.f}}));
    EXPECT_TRUE(table.guardIntact());
}

// --- baking half tables ------------------------------------------------------------------

TEST(TransferBakeHalf, RampCoversAllRowsInOrder)
{
    HalfTable table;
    TransferTables::bakeAlpha(table.data(), table.size(), true, 65536,
                              alphaPoints({{0.f, 0.f}, {1.f, 1.f}}));
    for(UInt32 k = 0; k < 65536; k += 257)
        ASSERT_EQ(table.bits(k, 3), halfBits(float(k) / 65536.f)) << "texel " << k;
    EXPECT_EQ(table.bits(0, 3), 0);
    EXPECT_EQ(table.bits(0, 0), 0) << "colour channels untouched";
}

TEST(TransferBakeHalf, EarlyEndFlattensOpacityAtTheHalfLimit)
{
    HalfTable table;
    TransferTables::bakeAlpha(table.data(), table.size(), true, 65536,
                              alphaPoints({{0.f, 0.f}, {0.5f, 0.75f}}));
    for(UInt32 k = 0; k < 65536; k += 1021)
        ASSERT_EQ(table.bits(k, 3), halfBits(0.75f)) << "texel " << k;
}

// --- any list at linear cost ---------------------------------------------------------

namespace
{

/// The bake as its description tells it: a walk over the texels, segment
/// after segment in list order, t accumulated step by step. Quadratic for
/// lists that jump back and forth, so only for small tables here; the
/// reference the painted bake must match bit for bit.
struct WalkTable
{
    WalkTable(UInt8 *table, UInt64 bytes, bool halves) : table(table), bytes(bytes), halves(halves)
    {
    }

    void store(Int64 k, UInt32 channel, float v)
    {
        if(k < 0)
            return;
        if(halves)
        {
            const UInt64 offset = UInt64(k) * 8 + channel * 2;
            if(offset + 2 > bytes)
                return;
            const unsigned short bits = v == 0.f ? 0 : Real16(v).bits();
            std::memcpy(table + offset, &bits, 2);
        }
        else if(UInt64(k) * 4 + channel < bytes)
        {
            table[UInt64(k) * 4 + channel] = TransferTables::toByte(v);
        }
    }

    UInt8 *table;
    UInt64 bytes;
    bool   halves;
};

void walkAlpha(WalkTable out, UInt32 texels, const AlphaPoints &points)
{
    AlphaPoints::const_iterator it = points.begin();
    float                       a  = it->second;
    Int32                       i  = TransferTables::texelIndex(it->first, texels);
    for(Int64 k = 0; k < std::min<Int64>(i, texels); ++k)
        out.store(k, 3, a);
    for(++it; it != points.end(); ++it)
    {
        const Int32 next = TransferTables::texelIndex(it->first, texels);
        const float step = 1.f / float(next - i);
        float       t    = 0.f;
        for(Int64 k = i; k < std::min<Int64>(next, texels); ++k)
        {
            out.store(k, 3, t * it->second + (1.f - t) * a);
            t += step;
        }
        a = it->second;
        i = next;
    }
    if(UInt32(std::max(i, 0)) < (out.halves ? 65536u : 256u))
        for(Int64 k = 0; k < texels; ++k)
            out.store(k, 3, a);
}

void walkColor(WalkTable out, UInt32 texels, const ColorPoints &points)
{
    auto store = [&out](Int64 k, const FloatColor &c) {
        out.store(k, 0, c.r);
        out.store(k, 1, c.g);
        out.store(k, 2, c.b);
    };
    ColorPoints::const_iterator it = points.begin();
    FloatColor                  c  = it->second;
    Int32                       i  = TransferTables::texelIndex(it->first, texels);
    for(Int64 k = 0; k < std::min<Int64>(i, texels); ++k)
        store(k, c);
    for(++it; it != points.end(); ++it)
    {
        const Int32 next = TransferTables::texelIndex(it->first, texels);
        const float step = 1.f / float(next - i);
        float       t    = 0.f;
        for(Int64 k = i; k < std::min<Int64>(next, texels); ++k)
        {
            const FloatColor &d = it->second;
            store(k, FloatColor(t * d.r + (1.f - t) * c.r, t * d.g + (1.f - t) * c.g,
                                t * d.b + (1.f - t) * c.b));
            t += step;
        }
        c = it->second;
        i = next;
    }
    for(Int64 k = std::max(i, 0); k < (out.halves ? 65536 : 256); ++k)
        store(k, c);
}

/// Lists that go back and forth, repeat positions, start before 0 and
/// end past 1, with values inside and outside 0..1.
float randomPosition(std::mt19937 &random)
{
    switch(random() % 8)
    {
        case 0: return 0.f;
        case 1: return 1.f;
        case 2: return -float(random() % 1000) / 400.f;
        case 3: return 1.f + float(random() % 1000) / 400.f;
        default: return float(random() % 100000) / 100000.f;
    }
}

} // namespace

TEST(TransferBakeLinear, AccumulatedEqualsRepeatedAddition)
{
    std::mt19937 random(11);
    std::vector<UInt32> lengths = {1, 2, 3, 5, 7, 255, 256, 257, 1000, 65535, 65536, 65537,
                                   131072, 1u << 24, (1u << 24) + 65536};
    for(int i = 0; i < 40; ++i)
        lengths.push_back(1 + random() % 140000);

    for(UInt32 length : lengths)
    {
        const float  step = 1.f / float(length);
        const UInt64 walk = std::min<UInt64>(length, 140000) + 5;
        float        t    = 0.f;
        for(UInt64 n = 0; n <= walk; ++n)
        {
            // every count near the start and the end, a sample between
            if(n < 3000 || n + 100 > walk || n % 97 == 0)
            {
                ASSERT_EQ(TransferTables::accumulated(step, n), t)
                    << "step 1/" << length << ", " << n << " additions";
            }
            t += step;
        }
    }
}

TEST(TransferBakeLinear, PaintedBakeEqualsTheWalkForAnyList)
{
    std::mt19937 random(5);
    for(int round = 0; round < 300; ++round)
    {
        const bool   halves = round % 3 == 0;
        const UInt32 texels = halves ? 65536 : (round % 3 == 1 ? 256 : 100 + random() % 400);
        const UInt64 bytes  = UInt64(texels) * (halves ? 8 : 4) - (round % 5 == 0 ? 24 : 0);

        AlphaPoints alpha;
        ColorPoints color;
        const int   count = 1 + int(random() % (halves ? 12 : 40));
        for(int p = 0; p < count; ++p)
        {
            const float v = float(int(random() % 1400) - 200) / 1000.f;
            alpha.push_back(std::make_pair(randomPosition(random), v));
            color.push_back(std::make_pair(randomPosition(random), FloatColor(v, 1.f - v, 0.5f)));
        }

        std::vector<UInt8> painted(UInt64(texels) * 8 + 64, 0x3C), walked(painted);
        TransferTables::bakeAlpha(painted.data(), bytes, halves, texels, alpha);
        TransferTables::bakeColor(painted.data(), bytes, halves, texels, color);
        walkAlpha(WalkTable(walked.data(), bytes, halves), texels, alpha);
        walkColor(WalkTable(walked.data(), bytes, halves), texels, color);
        ASSERT_TRUE(painted == walked) << "round " << round << ", " << count << " points";
    }
}

TEST(TransferBakeLinear, ListsThatJumpBackAndForthCostOneTable)
{
    // 65536 points between 0 and 1: a walk would cover the half table
    // 32768 times for each list (minutes); the painted bake covers it once.
    // Run in a child with a time limit.
    const corvanetest::LimitedResult r = corvanetest::runLimited(
        []() {
            AlphaPoints alpha;
            ColorPoints color;
            for(int p = 0; p < 65536; ++p)
            {
                alpha.push_back(std::make_pair(float(p & 1), float(p % 7) / 7.f));
                color.push_back(std::make_pair(float(p & 1), FloatColor(0.f, 1.f, 0.f)));
            }
            HalfTable table;
            TransferTables::bakeAlpha(table.data(), table.size(), true, 65536, alpha);
            TransferTables::bakeColor(table.data(), table.size(), true, 65536, color);

            // the last ramp, from point 65534 (at 0) to point 65535 (at 1)
            const float a = float(65534 % 7) / 7.f, b = float(65535 % 7) / 7.f;
            const float t = TransferTables::accumulated(1.f / 65536.f, 65535);
            return table.bits(0, 3) == halfBits(a) &&
                   table.bits(65535, 3) == halfBits(t * b + (1.f - t) * a) &&
                   table.bits(65535, 1) == halfBits(1.f);
        },
        10);
    EXPECT_EQ(r.signal, 0) << "killed: over the time limit";
    EXPECT_TRUE(r.passed);
}

// --- the dependent table -----------------------------------------------------------------

TEST(TransferDependentTable, HoldsRangeMaximaBelowTheDiagonal)
{
    std::mt19937 random(7);
    for(UInt32 n : {5u, 256u})
    {
        ByteTable table(n);
        for(UInt32 k = 0; k < n; ++k)
            table.bytes[k * 4 + 3] = UInt8(random() & 0xFF);
        std::vector<UInt8> out(UInt64(n) * n, 0xAA);
        TransferTables::maxOpacityTable(table.data(), table.size(), n, out.data());
        for(UInt32 y = 0; y < n; ++y)
        {
            for(UInt32 x = 0; x < n; ++x)
            {
                UInt8 expected = 0;
                for(UInt32 k = x; k <= y; ++k)
                    expected = std::max(expected, table.alpha(k));
                ASSERT_EQ(out[y * n + x], expected) << "n " << n << " x " << x << " y " << y;
            }
        }
    }
}

// --- pre-integration -------------------------------------------------------------------

namespace
{

float halfAt(const std::vector<unsigned short> &table, UInt32 texel, UInt32 channel)
{
    Real16 h;
    h.setBits(table[texel * 4 + channel]);
    return float(h);
}

} // namespace

TEST(TransferPreIntegration8Bit, DiagonalHoldsThePremultipliedTexel)
{
    ByteTable table;
    for(UInt32 k = 0; k < 256; ++k)
    {
        table.bytes[k * 4 + 0] = UInt8(k);
        table.bytes[k * 4 + 1] = UInt8(255 - k);
        table.bytes[k * 4 + 2] = 128;
        table.bytes[k * 4 + 3] = UInt8((k * 3) & 0xFF);
    }
    std::vector<unsigned short> out(256 * 256 * 4);
    TransferTables::preIntegrateBytes(table.data(), table.size(),
                                      reinterpret_cast<UInt8 *>(out.data()), out.size() * 2);
    for(UInt32 k = 0; k < 256; k += 5)
    {
        double a = ((k * 3) & 0xFF) / 255.0;
        ASSERT_EQ(out[(k * 256 + k) * 4 + 0], halfBits(float(k / 255.0 * a)));
        ASSERT_EQ(out[(k * 256 + k) * 4 + 1], halfBits(float((255 - k) / 255.0 * a)));
        ASSERT_EQ(out[(k * 256 + k) * 4 + 3], halfBits(float(a)));
    }
}

TEST(TransferPreIntegration8Bit, OffDiagonalIsTheSymmetricTrapezoidAverage)
{
    std::mt19937 random(3);
    ByteTable    table;
    for(UInt32 i = 0; i < 256 * 4; ++i)
        table.bytes[i] = UInt8(random() & 0xFF);
    std::vector<unsigned short> out(256 * 256 * 4);
    TransferTables::preIntegrateBytes(table.data(), table.size(),
                                      reinterpret_cast<UInt8 *>(out.data()), out.size() * 2);

    auto premultiplied = [&](UInt32 k, UInt32 c) {
        double a = table.bytes[k * 4 + 3] / 255.0;
        return c == 3 ? a : table.bytes[k * 4 + c] / 255.0 * a;
    };
    const UInt32 pairs[][2] = {{0, 1}, {0, 255}, {17, 200}, {100, 101}, {254, 3}};
    for(const auto &pair : pairs)
    {
        UInt32 lo = std::min(pair[0], pair[1]), hi = std::max(pair[0], pair[1]);
        for(UInt32 c = 0; c < 4; ++c)
        {
            double integral = 0.0;
            for(UInt32 k = lo; k < hi; ++k)
                integral += 0.5 * (premultiplied(k, c) + premultiplied(k + 1, c));
            double average = integral / (hi - lo);
            float  xy      = halfAt(out, pair[1] * 256 + pair[0], c);
            EXPECT_NEAR(xy, average, 1e-3 * std::max(1.0, average)) << lo << "-" << hi;
            EXPECT_EQ(out[(pair[1] * 256 + pair[0]) * 4 + c],
                      out[(pair[0] * 256 + pair[1]) * 4 + c]) << "symmetric";
        }
    }
}

TEST(TransferPreIntegration8Bit, ZeroOpacityGivesAllZeroTable)
{
    ByteTable table;
    for(UInt32 k = 0; k < 256; ++k)
        table.bytes[k * 4] = 255;
    std::vector<unsigned short> out(256 * 256 * 4, 0x1234);
    TransferTables::preIntegrateBytes(table.data(), table.size(),
                                      reinterpret_cast<UInt8 *>(out.data()), out.size() * 2);
    for(unsigned short h : out)
        ASSERT_EQ(h, 0);
}

TEST(TransferPreIntegration8Bit, UsesFirst256TexelsAndStaysInsideSmallerTables)
{
    // a table of 16 x 16 texels gets the first 16 rows of stride 256 only
    ByteTable table(512);
    for(UInt32 k = 0; k < 512; ++k)
        table.bytes[k * 4 + 3] = k < 256 ? 255 : 0;
    std::vector<unsigned short> out(16 * 16 * 4 + 32, 0x5555);
    TransferTables::preIntegrateBytes(table.data(), table.size(),
                                      reinterpret_cast<UInt8 *>(out.data()), 16 * 16 * 8);
    EXPECT_EQ(out[(0 * 256 + 3) * 4 + 3], halfBits(1.f));
    for(UInt32 i = 16 * 16 * 4; i < out.size(); ++i)
        ASSERT_EQ(out[i], 0x5555);
}

TEST(TransferPreIntegration16Bit, IntegralOfConstantTableGrowsLinearly)
{
    HalfTable table;
    for(UInt32 k = 0; k < 65536; ++k)
    {
        table.halves[k * 4 + 0] = halfBits(1.f);
        table.halves[k * 4 + 1] = halfBits(0.25f);
        table.halves[k * 4 + 3] = halfBits(0.5f);
    }
    std::vector<Real32> out(65536 * 4, -1.f);
    TransferTables::integrateHalves(table.data(), table.size(), out.data());
    for(UInt32 c = 0; c < 4; ++c)
        EXPECT_EQ(out[c], 0.f);
    for(UInt32 i : {1u, 2u, 1000u, 65535u})
    {
        EXPECT_EQ(out[i * 4 + 0], 0.5f * i) << i;
        EXPECT_EQ(out[i * 4 + 1], 0.125f * i) << i;
        EXPECT_EQ(out[i * 4 + 2], 0.f) << i;
        EXPECT_EQ(out[i * 4 + 3], 0.5f * i) << i;
    }
}

