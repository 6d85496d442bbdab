#include <OpenSG/VolumeGrids.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <vector>

OSG_USING_NAMESPACE

namespace
{

// Loops over fixed-size groups of voxels with one accumulator per lane
// compile to vector code at -O2, where loops of unknown length do not.
const UInt32 Lanes = 32;

inline UInt16 swapped(UInt16 v)
{
    return UInt16((v >> 8) | (v << 8));
}

/// lo = min(lo, srcLo) and hi = max(hi, srcHi), element by element.
template <class T>
void mergeRange(T *__restrict lo, T *__restrict hi, const T *__restrict srcLo,
                const T *__restrict srcHi, UInt64 n)
{
    UInt64 i = 0;
    for(; i + Lanes <= n; i += Lanes)
    {
        for(UInt32 j = 0; j < Lanes; ++j)
        {
            T l       = srcLo[i + j];
            T u       = srcHi[i + j];
            lo[i + j] = l < lo[i + j] ? l : lo[i + j];
            hi[i + j] = u > hi[i + j] ? u : hi[i + j];
        }
    }
    for(; i < n; ++i)
    {
        lo[i] = std::min(lo[i], srcLo[i]);
        hi[i] = std::max(hi[i], srcHi[i]);
    }
}

/// The voxel range [b * bs - 1, b * bs + bs] of block b, clipped to [0, n).
inline void blockSpan(UInt32 b, UInt32 bs, UInt32 n, UInt32 &first, UInt32 &end)
{
    first = b * bs == 0 ? 0 : b * bs - 1;
    end   = std::min(n, b * bs + bs + 1);
}

template <class T>
void blockMinMaxT(const T *v, UInt32 w, UInt32 h, UInt32 d, UInt32 bs, T *cells)
{
    if(v == NULL || cells == NULL || bs == 0)
        return;
    const UInt32 bw = w / bs;
    const UInt32 bh = h / bs;
    const UInt32 bd = d / bs;
    if(bw == 0 || bh == 0 || bd == 0)
        return;

    const T      top   = std::numeric_limits<T>::max();
    const UInt64 slice = UInt64(w) * h;

    // The box is separable. Along z first, over whole slices, and then
    // along y over whole rows, both as wide vector passes; the pass along x
    // is left with a 1/bs^2 share of the voxels.
    std::vector<T> zLo(slice), zHi(slice);
    std::vector<T> yLo(UInt64(bh) * w), yHi(UInt64(bh) * w);

    for(UInt32 bz = 0; bz < bd; ++bz)
    {
        UInt32 z0, z1;
        blockSpan(bz, bs, d, z0, z1);
        std::fill(zLo.begin(), zLo.end(), top);
        std::fill(zHi.begin(), zHi.end(), T(0));
        for(UInt32 z = z0; z < z1; ++z)
        {
            const T *s = v + UInt64(z) * slice;
            mergeRange(zLo.data(), zHi.data(), s, s, slice);
        }

        for(UInt32 by = 0; by < bh; ++by)
        {
            UInt32 y0, y1;
            blockSpan(by, bs, h, y0, y1);
            T *rowLo = &yLo[UInt64(by) * w];
            T *rowHi = &yHi[UInt64(by) * w];
            std::fill(rowLo, rowLo + w, top);
            std::fill(rowHi, rowHi + w, T(0));
            for(UInt32 y = y0; y < y1; ++y)
                mergeRange(rowLo, rowHi, &zLo[UInt64(y) * w], &zHi[UInt64(y) * w], w);
        }

        T *out = cells + UInt64(bz) * bh * bw * 2;
        for(UInt32 by = 0; by < bh; ++by)
        {
            const T *rowLo = &yLo[UInt64(by) * w];
            const T *rowHi = &yHi[UInt64(by) * w];
            for(UInt32 bx = 0; bx < bw; ++bx, out += 2)
            {
                UInt32 x0, x1;
                blockSpan(bx, bs, w, x0, x1);
                T l = top;
                T u = 0;
                for(UInt32 x = x0; x < x1; ++x)
                {
                    l = std::min(l, rowLo[x]);
                    u = std::max(u, rowHi[x]);
                }
                out[0] = l;
                out[1] = u;
            }
        }
    }
}

template <class T>
void bitGridT(const T *cells, UInt64 cellCount, const Real32 *sum,
              UInt64 sumCount, bool sixteenBit, UInt8 *bits)
{
    for(UInt64 i = 0; i < cellCount; ++i)
    {
        bool visit = VolumeGrids::visitBlock(cells[2 * i], cells[2 * i + 1],
                                             sum, sumCount, sixteenBit);
        bits[i] = visit ? 255 : 0;
    }
}

} // namespace

UInt16 VolumeGrids::swapAndMax(UInt16 *voxels, UInt64 count, bool swapBytes)
{
    UInt16 acc[Lanes] = {};
    UInt64 i          = 0;
    if(swapBytes)
    {
        for(; i + Lanes <= count; i += Lanes)
        {
            UInt16 *group = voxels + i;
            for(UInt32 j = 0; j < Lanes; ++j)
            {
                UInt16 x = swapped(group[j]);
                group[j] = x;
                acc[j]   = x > acc[j] ? x : acc[j];
            }
        }
    }
    else
    {
        for(; i + Lanes <= count; i += Lanes)
        {
            const UInt16 *group = voxels + i;
            for(UInt32 j = 0; j < Lanes; ++j)
                acc[j] = group[j] > acc[j] ? group[j] : acc[j];
        }
    }

    UInt16 m = 0;
    for(UInt32 j = 0; j < Lanes; ++j)
        m = std::max(m, acc[j]);
    for(; i < count; ++i)
    {
        if(swapBytes)
            voxels[i] = swapped(voxels[i]);
        m = std::max(m, voxels[i]);
    }
    return m;
}

void VolumeGrids::expand12Bit(UInt16 *voxels, UInt64 count)
{
    UInt64 i = 0;
    for(; i + Lanes <= count; i += Lanes)
    {
        UInt16 *group = voxels + i;
        for(UInt32 j = 0; j < Lanes; ++j)
            group[j] = UInt16(group[j] << 4);
    }
    for(; i < count; ++i)
        voxels[i] = UInt16(voxels[i] << 4);
}

bool VolumeGrids::normalise16(UInt16 *voxels, UInt64 count, bool swapBytes)
{
    if(voxels == NULL || count == 0)
        return false;
    // 12-bit scanners store 0..4095; the ray caster wants the full range
    if(swapAndMax(voxels, count, swapBytes) < 4096)
    {
        expand12Bit(voxels, count);
        return true;
    }
    return false;
}

UInt32 VolumeGrids::paddedEdge(UInt32 edge, UInt32 multiple)
{
    if(multiple == 0)
        return edge;
    UInt32 rest = edge % multiple;
    return rest != 0 ? edge + multiple - rest : edge;
}

void VolumeGrids::padVolume(const UInt8 *src, UInt32 w, UInt32 h, UInt32 d, UInt8 *dst,
                            UInt32 pw, UInt32 ph, UInt32 pd, UInt32 bytesPerVoxel)
{
    if(src == NULL || dst == NULL || w > pw || h > ph || d > pd)
        return;
    const UInt64 rowBytes = UInt64(w) * bytesPerVoxel;
    for(UInt32 z = 0; z < d; ++z)
    {
        for(UInt32 y = 0; y < h; ++y)
        {
            const UInt8 *from = src + ((UInt64(z) * h + y) * w) * bytesPerVoxel;
            UInt8       *to   = dst + ((UInt64(z) * ph + y) * pw) * bytesPerVoxel;
            std::memcpy(to, from, rowBytes);
        }
    }
}

void VolumeGrids::blockMinMax(const UInt8 *voxels, UInt32 w, UInt32 h, UInt32 d,
                              UInt32 blockSize, UInt8 *cells)
{
    blockMinMaxT(voxels, w, h, d, blockSize, cells);
}

void VolumeGrids::blockMinMax(const UInt16 *voxels, UInt32 w, UInt32 h, UInt32 d,
                              UInt32 blockSize, UInt16 *cells)
{
    blockMinMaxT(voxels, w, h, d, blockSize, cells);
}

bool VolumeGrids::visitBlock(UInt32 m, UInt32 M, const Real32 *sum, UInt64 sumCount,
                             bool sixteenBit)
{
    // Past its end the prefix sum stays at its total.
    auto S = [sum, sumCount](UInt64 i) -> Real32 {
        if(sum == NULL || sumCount == 0)
            return 0.f;
        return sum[std::min<UInt64>(i, sumCount - 1)];
    };

    if(m == M)
    {
        // a block of value 0 alone has no entry below its value to subtract;
        // it is always visited
        if(m == 0)
            return true;
        Real32 own = S(M) - S(m - 1);
        return double(own) > 0.0001;
    }

    Real32 inside = S(M) - S(m);
    if(double(inside) >= 0.000001)
        return true;
    return sixteenBit && S(M) != 0.0f;
}

void VolumeGrids::bitGrid(const UInt8 *cells, UInt64 cellCount, const Real32 *sum,
                          UInt64 sumCount, UInt8 *bits)
{
    bitGridT(cells, cellCount, sum, sumCount, false, bits);
}

void VolumeGrids::bitGrid(const UInt16 *cells, UInt64 cellCount, const Real32 *sum,
                          UInt64 sumCount, UInt8 *bits)
{
    bitGridT(cells, cellCount, sum, sumCount, true, bits);
}
