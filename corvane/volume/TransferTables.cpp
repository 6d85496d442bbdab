#include <OpenSG/TransferTables.h>
#include <OpenSG/OSGReal16.h>

#include <algorithm>
#include <cstring>
#include <vector>

OSG_USING_NAMESPACE

namespace
{

const UInt32 ByteTableLimit = 256;
const UInt32 HalfTableLimit = 65536;

/// Writes into one RGBA table, bytes or halves, dropping what would land
/// beyond the buffer.
class TexelWriter
{
  public:
    TexelWriter(UInt8 *table, UInt64 bytes, bool halves)
        : _table(table), _bytes(table ? bytes : 0), _halves(halves)
    {
    }

    void store(Int64 texel, UInt32 channel, float value)
    {
        if(texel < 0)
            return;
        if(_halves)
        {
            UInt64 offset = UInt64(texel) * 8 + channel * 2;
            if(offset + 2 > _bytes)
                return;
            // an exact 0 needs no conversion
            unsigned short bits = value == 0.f ? 0 : Real16(value).bits();
            std::memcpy(_table + offset, &bits, 2);
        }
        else
        {
            UInt64 offset = UInt64(texel) * 4 + channel;
            if(offset >= _bytes)
                return;
            _table[offset] = TransferTables::toByte(value);
        }
    }

    void storeColor(Int64 texel, const FloatColor &c)
    {
        store(texel, 0, c.r);
        store(texel, 1, c.g);
        store(texel, 2, c.b);
    }

  private:
    UInt8 *_table;
    UInt64 _bytes;
    bool   _halves;
};

inline FloatColor mixColor(float t, const FloatColor &to, const FloatColor &from)
{
    return FloatColor(t * to.r + (1.f - t) * from.r,
                      t * to.g + (1.f - t) * from.g,
                      t * to.b + (1.f - t) * from.b);
}

inline float readHalf(const UInt8 *table, UInt64 bytes, UInt64 texel, UInt32 channel)
{
    UInt64 offset = texel * 8 + channel * 2;
    if(table == NULL || offset + 2 > bytes)
        return 0.f;
    unsigned short bits;
    std::memcpy(&bits, table + offset, 2);
    Real16 h;
    h.setBits(bits);
    return float(h);
}

inline UInt8 readByte(const UInt8 *table, UInt64 bytes, UInt64 texel, UInt32 channel)
{
    UInt64 offset = texel * 4 + channel;
    return (table != NULL && offset < bytes) ? table[offset] : 0;
}

inline unsigned short halfOf(double value)
{
    // negative averages and values too small for a float are stored as 0
    float f = float(value);
    if(value < 0.0 || f == 0.f)
        return 0;
    return Real16(f).bits();
}

} // namespace

Int32 TransferTables::texelIndex(float position, UInt32 texels)
{
    float index = position * float(texels);
    if(index != index)
        return 0;
    // Below -texels a segment only delays the walk into the table; far
    // above the table nothing more is stored. Both bounds keep the walk
    // short and the conversion defined.
    float high = float(1 << 24);
    float low  = -std::min(float(texels), high);
    index      = std::max(low, std::min(high, index));
    return Int32(index);
}

UInt8 TransferTables::toByte(float value)
{
    float scaled = 255.f * value;
    if(!(scaled > 0.f))
        return 0;
    if(scaled >= 255.f)
        return 255;
    return UInt8(scaled);
}

void TransferTables::bakeAlpha(UInt8 *table, UInt64 tableBytes, bool halves,
                               UInt32 texels, const AlphaPoints &points)
{
    if(points.empty())
        return;

    TexelWriter out(table, tableBytes, halves);
    const Int64 end = texels;

    AlphaPoints::const_iterator it = points.begin();
    float a = it->second;
    Int32 i = texelIndex(it->first, texels);
    for(Int64 k = 0; k < std::min<Int64>(i, end); ++k)
        out.store(k, 3, a);

    for(++it; it != points.end(); ++it)
    {
        float nextA = it->second;
        Int32 nextI = texelIndex(it->first, texels);
        float step  = 1.f / float(nextI - i);
        float t     = 0.f;
        // t accumulates from the segment's start, also across the texels
        // before the table that a negative start walks over
        for(Int64 k = i; k < std::min<Int64>(nextI, end); ++k)
        {
            out.store(k, 3, t * nextA + (1.f - t) * a);
            t += step;
        }
        a = nextA;
        i = nextI;
    }

    if(UInt32(std::max(i, 0)) < (halves ? HalfTableLimit : ByteTableLimit))
    {
        for(Int64 k = 0; k < end; ++k)
            out.store(k, 3, a);
    }
}

void TransferTables::bakeColor(UInt8 *table, UInt64 tableBytes, bool halves,
                               UInt32 texels, const ColorPoints &points)
{
    if(points.empty())
        return;

    TexelWriter out(table, tableBytes, halves);
    const Int64 end = texels;

    ColorPoints::const_iterator it = points.begin();
    FloatColor c = it->second;
    Int32      i = texelIndex(it->first, texels);
    for(Int64 k = 0; k < std::min<Int64>(i, end); ++k)
        out.storeColor(k, c);

    for(++it; it != points.end(); ++it)
    {
        const FloatColor &nextC = it->second;
        Int32 nextI = texelIndex(it->first, texels);
        float step  = 1.f / float(nextI - i);
        float t     = 0.f;
        for(Int64 k = i; k < std::min<Int64>(nextI, end); ++k)
        {
            out.storeColor(k, mixColor(t, nextC, c));
            t += step;
        }
        c = nextC;
        i = nextI;
    }

    const Int64 limit = halves ? HalfTableLimit : ByteTableLimit;
    for(Int64 k = std::max(i, 0); k < limit; ++k)
        out.storeColor(k, c);
}

void TransferTables::prefixSumBytes(const UInt8 *table, UInt64 tableBytes,
                                    UInt32 texels, Real32 *sum)
{
    float s = 0.f;
    for(UInt32 k = 0; k < texels; ++k)
    {
        s += float(readByte(table, tableBytes, k, 3));
        sum[k] = s;
    }
}

void TransferTables::prefixSumHalves(const UInt8 *table, UInt64 tableBytes,
                                     UInt32 texels, Real32 *sum)
{
    float s = 0.f;
    for(UInt32 k = 0; k < texels; ++k)
    {
        s += readHalf(table, tableBytes, k, 3);
        sum[k] = s;
    }
}

void TransferTables::maxOpacityTable(const UInt8 *table, UInt64 tableBytes,
                                     UInt32 n, UInt8 *out)
{
    std::vector<UInt8> alpha(n);
    for(UInt32 k = 0; k < n; ++k)
        alpha[k] = readByte(table, tableBytes, k, 3);

    // Row y holds, left of the diagonal, the maximum of alpha[x..y]: a
    // running maximum walked from the diagonal to the left.
    for(UInt32 y = 0; y < n; ++y)
    {
        UInt8 *row = out + UInt64(y) * n;
        UInt8  m   = 0;
        for(UInt32 x = y + 1; x-- > 0;)
        {
            m      = std::max(m, alpha[x]);
            row[x] = m;
        }
        if(y + 1 < n)
            std::memset(row + y + 1, 0, n - y - 1);
    }
}

void TransferTables::preIntegrateBytes(const UInt8 *table, UInt64 tableBytes,
                                       UInt8 *out, UInt64 outBytes)
{
    const UInt32 n = 256;
    double texel[n][4];
    for(UInt32 k = 0; k < n; ++k)
        for(UInt32 c = 0; c < 4; ++c)
            texel[k][c] = readByte(table, tableBytes, k, c) / 255.0;

    // running integrals of premultiplied colour and of opacity
    double integral[n][4];
    for(UInt32 c = 0; c < 4; ++c)
        integral[0][c] = 0.0;
    for(UInt32 k = 0; k + 1 < n; ++k)
    {
        const double *t0 = texel[k];
        const double *t1 = texel[k + 1];
        for(UInt32 c = 0; c < 3; ++c)
            integral[k + 1][c] = integral[k][c] + 0.5 * (t0[c] * t0[3] + t1[c] * t1[3]);
        integral[k + 1][3] = integral[k][3] + 0.5 * (t0[3] + t1[3]);
    }

    // The table is symmetric: each pair is computed once and written to
    // both of its texels, the row stride fixed at 256 whatever the image.
    for(UInt32 hi = 0; hi < n; ++hi)
    {
        for(UInt32 lo = 0; lo <= hi; ++lo)
        {
            double entry[4];
            if(lo == hi)
            {
                const double *t = texel[lo];
                entry[0]        = t[0] * t[3];
                entry[1]        = t[1] * t[3];
                entry[2]        = t[2] * t[3];
                entry[3]        = t[3];
            }
            else
            {
                double range = double(hi - lo);
                for(UInt32 c = 0; c < 4; ++c)
                    entry[c] = (integral[hi][c] - integral[lo][c]) * 1.0 / range;
            }

            unsigned short bits[4];
            for(UInt32 c = 0; c < 4; ++c)
                bits[c] = halfOf(entry[c]);

            const UInt64 below = (UInt64(hi) * n + lo) * 8;
            const UInt64 above = (UInt64(lo) * n + hi) * 8;
            if(below + 8 <= outBytes)
                std::memcpy(out + below, bits, 8);
            if(above + 8 <= outBytes)
                std::memcpy(out + above, bits, 8);
        }
    }
}

void TransferTables::integrateHalves(const UInt8 *table, UInt64 tableBytes, Real32 *out)
{
    const UInt32 n = 65536;
    double sum[4] = {0.0, 0.0, 0.0, 0.0};
    float  t0[4];
    for(UInt32 c = 0; c < 4; ++c)
    {
        out[c] = 0.f;
        t0[c]  = readHalf(table, tableBytes, 0, c);
    }
    for(UInt32 k = 0; k + 1 < n; ++k)
    {
        float t1[4];
        for(UInt32 c = 0; c < 4; ++c)
            t1[c] = readHalf(table, tableBytes, k + 1, c);

        for(UInt32 c = 0; c < 3; ++c)
            sum[c] += 0.5 * (double(t0[c]) * double(t0[3]) + double(t1[c]) * double(t1[3]));
        sum[3] += 0.5 * (double(t0[3]) + double(t1[3]));

        Real32 *entry = out + UInt64(k + 1) * 4;
        for(UInt32 c = 0; c < 4; ++c)
        {
            entry[c] = float(sum[c]);
            t0[c]    = t1[c];
        }
    }
}
