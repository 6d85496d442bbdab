#include <OpenSG/TransferTables.h>
#include <OpenSG/OSGReal16.h>

#include <algorithm>
#include <cmath>
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

    /// Whole texels the buffer holds.
    UInt64 texels(void) const
    {
        return _bytes / (_halves ? 8 : 4);
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

float TransferTables::accumulated(float step, UInt64 count)
{
    // Inside one binade of t every addition of the same step rounds the
    // same way once the first one there has settled the tie-breaking, so
    // after three single additions in a binade the rest of it is one
    // multiplication: exact, as all values there are multiples of its ulp.
    float t = 0.f;

    while(count > 0)
    {
        const float t1 = t + step;
        if(--count == 0)
            return t1;
        const float t2 = t1 + step;
        if(--count == 0)
            return t2;
        const float t3 = t2 + step;
        if(--count == 0)
            return t3;

        int e1 = 0, e3 = 0;
        std::frexp(t1, &e1);
        std::frexp(t3, &e3);

        const double increment = double(t3) - double(t2);

        if(e1 == e3 && increment == 0.0)
            return t3; // the step is lost in rounding: t stays

        if(e1 == e3 && increment > 0.0)
        {
            // additions whose exact sums stay below the binade's top
            const double top   = std::ldexp(1.0, e3);
            const double fit   = std::floor((top - double(t3) - double(step)) /
                                            increment) - 1.0;
            const UInt64 taken = fit > 0.0 ? std::min(count, UInt64(fit)) : 0;

            t = float(double(t3) + double(taken) * increment);
            count -= taken;
            continue;
        }
        t = t3;
    }
    return t;
}

namespace
{

/// The texels of a table that no later step of a bake has written yet. A
/// bake is painted from its last step back to its first, so that every
/// texel is written once, by the step that would have written it last:
/// the cost is the table plus the list, whatever the points do.
class UnpaintedTexels
{
  public:
    explicit UnpaintedTexels(Int64 count) : _next(size_t(count) + 1)
    {
        for(size_t k = 0; k < _next.size(); ++k)
            _next[k] = UInt32(k);
    }

    /// The first unpainted texel at or after k; the count when none is.
    Int64 first(Int64 k)
    {
        UInt32 at = UInt32(k);
        while(_next[at] != at)
        {
            _next[at] = _next[_next[at]];
            at        = _next[at];
        }
        return at;
    }

    bool unpainted(Int64 k) const
    {
        return _next[size_t(k)] == UInt32(k);
    }

    void paint(Int64 k)
    {
        _next[size_t(k)] = UInt32(k) + 1;
    }

  private:
    std::vector<UInt32> _next;
};

/// Bakes one list of points in the table's texels [0, count): `store(k, v)`
/// writes value v to texel k, `mix(t, to, from)` interpolates. The steps,
/// in list order: the first value below the first point's index, a ramp
/// between each pair of points, then (tailFrom < tailTo, after the last
/// point) the last value over [tailFrom, tailTo). Each ramp takes t from 0
/// by steps of 1 / (index difference), accumulated in float as a walk
/// over the texels would accumulate it.
template <class Value, class Store, class Mix>
void bakePoints(const std::list<std::pair<float, Value> > &points,
                UInt32 texels, Int64 count, bool withTail, Int64 tailTo,
                Store store, Mix mix)
{
    std::vector<Int32>        index;
    std::vector<const Value *> value;

    index.reserve(points.size());
    value.reserve(points.size());
    for(typename std::list<std::pair<float, Value> >::const_iterator it =
            points.begin();
        it != points.end(); ++it)
    {
        index.push_back(TransferTables::texelIndex(it->first, texels));
        value.push_back(&it->second);
    }

    const Int64     end = std::min<Int64>(texels, count);
    UnpaintedTexels open(count);

    // a constant over [from, to), only where nothing later wrote
    auto fill = [&](Int64 from, Int64 to, const Value &v) {
        from = std::max<Int64>(from, 0);
        to   = std::min(to, count);
        for(Int64 k = from < to ? open.first(from) : to; k < to;
            k = open.first(k + 1))
        {
            store(k, v);
            open.paint(k);
        }
    };

    const size_t last = index.size() - 1;

    if(withTail)
        fill(index[last], tailTo, *value[last]);

    for(size_t j = last; j > 0; --j)
    {
        const Int32  from  = index[j - 1];
        const Int32  to    = index[j];
        const float  step  = 1.f / float(to - from);
        const Int64  lo    = std::max<Int64>(from, 0);
        const Int64  hi    = std::min<Int64>(to, end);
        const Value &a     = *value[j - 1];
        const Value &b     = *value[j];

        for(Int64 k = lo < hi ? open.first(lo) : hi; k < hi; k = open.first(k))
        {
            // one run of unpainted texels, t picked up where the walk
            // from the ramp's start would have it
            float t = TransferTables::accumulated(step, UInt64(k - from));
            for(; k < hi && open.unpainted(k); ++k)
            {
                store(k, mix(t, b, a));
                open.paint(k);
                t += step;
            }
        }
    }

    fill(0, std::min<Int64>(index[0], end), *value[0]);
}

} // namespace

void TransferTables::bakeAlpha(UInt8 *table, UInt64 tableBytes, bool halves,
                               UInt32 texels, const AlphaPoints &points)
{
    if(points.empty())
        return;

    TexelWriter out(table, tableBytes, halves);
    const Int64 count = Int64(std::min<UInt64>(out.texels(), texels));
    const Int32 last  = texelIndex(points.back().first, texels);

    // A list that ends before the table's end flattens the whole channel
    // to its last opacity: nothing before that matters.
    if(UInt32(std::max(last, 0)) < (halves ? HalfTableLimit : ByteTableLimit))
    {
        for(Int64 k = 0; k < count; ++k)
            out.store(k, 3, points.back().second);
        return;
    }

    bakePoints(points, texels, count, false, 0,
               [&out](Int64 k, float a) { out.store(k, 3, a); },
               [](float t, float to, float from) {
                   return t * to + (1.f - t) * from;
               });
}

void TransferTables::bakeColor(UInt8 *table, UInt64 tableBytes, bool halves,
                               UInt32 texels, const ColorPoints &points)
{
    if(points.empty())
        return;

    TexelWriter out(table, tableBytes, halves);
    // the tail continues the last colour up to the layout's limit, even
    // beyond `texels`, as far as the buffer reaches
    const Int64 limit = halves ? HalfTableLimit : ByteTableLimit;
    const Int64 count = Int64(std::min<UInt64>(
        out.texels(), std::max<UInt64>(texels, UInt64(limit))));

    bakePoints(points, texels, count, true, limit,
               [&out](Int64 k, const FloatColor &c) { out.storeColor(k, c); },
               mixColor);
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
