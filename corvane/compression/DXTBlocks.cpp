/// The block routines of the DXT compressor. The main path keeps a block in
/// four SSE2 registers from the load to the emitted bytes; the scalar forms
/// are the slower variants and references.

#include <OpenSG/DXTBlocks.h>

#include <emmintrin.h>

#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <new>

OSG_BEGIN_NAMESPACE

namespace
{

// SSE2 implies x86, so a double word loaded from memory has the red byte lowest.
inline UInt32 loadColor(const UInt8 *color)
{
    UInt32 value;
    std::memcpy(&value, color, 4);
    return value;
}

inline UInt16 colorTo565(UInt32 rgba)
{
    return UInt16(((rgba & 0xF8) << 8) | ((rgba >> 5) & 0x7E0) | ((rgba >> 19) & 0x1F));
}

// DXT5 stores n (how many thresholds lie at or above the alpha) as index
// (n + 1) & 7, with 0 and 1 exchanged: n = 0 is the maximum (index 0), n = 7
// the minimum (index 1), 1..6 are the interpolated alphas 2..7.
inline UInt32 alphaIndexOf(UInt32 n)
{
    const UInt32 index = (n + 1) & 7;
    return index < 2 ? index ^ 1 : index;
}

// 16 three-bit indices, 8 to every 3 bytes from the low bits up.
inline void emitAlphaBits(UInt64 bits, UInt8 *&out)
{
    for(int i = 0; i < 6; ++i)
        EmitByte(UInt8(bits >> (8 * i)), out);
}

// ---- SSE2 kernel --------------------------------------------------------

struct BlockRows
{
    __m128i row[4];
};

inline __m128i load16(const UInt8 *p)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
}

inline BlockRows loadRows(const UInt8 *first, std::size_t stride)
{
    BlockRows b;
    for(int r = 0; r < 4; ++r)
        b.row[r] = load16(first + r * stride);
    return b;
}

// Per channel, alpha included, the minimum and maximum over the 16 pixels,
// each pulled 1/16 of the range into the box; the colour fills every double word.
inline void minMaxColors(const BlockRows &b, __m128i &minColor, __m128i &maxColor)
{
    __m128i lo = _mm_min_epu8(_mm_min_epu8(b.row[0], b.row[1]),
                              _mm_min_epu8(b.row[2], b.row[3]));
    __m128i hi = _mm_max_epu8(_mm_max_epu8(b.row[0], b.row[1]),
                              _mm_max_epu8(b.row[2], b.row[3]));

    lo = _mm_min_epu8(lo, _mm_shuffle_epi32(lo, _MM_SHUFFLE(1, 0, 3, 2)));
    hi = _mm_max_epu8(hi, _mm_shuffle_epi32(hi, _MM_SHUFFLE(1, 0, 3, 2)));
    lo = _mm_min_epu8(lo, _mm_shuffle_epi32(lo, _MM_SHUFFLE(2, 3, 0, 1)));
    hi = _mm_max_epu8(hi, _mm_shuffle_epi32(hi, _MM_SHUFFLE(2, 3, 0, 1)));

    // There is no byte shift: shift words and drop what crossed a byte.
    const __m128i inset = _mm_and_si128(_mm_srli_epi16(_mm_sub_epi8(hi, lo), 4),
                                        _mm_set1_epi8(0x0F));
    minColor = _mm_add_epi8(lo, inset);
    maxColor = _mm_sub_epi8(hi, inset);
}

// The colour of the low double word in words 0..2 as a decoder sees it
// after 5:6:5: r, b as x & 0xF8 | x >> 5, g as x & 0xFC | x >> 6; alpha and
// words 3..7 are 0.
inline __m128i expand565(__m128i color)
{
    const __m128i mask  = _mm_setr_epi16(0xF8, 0xFC, 0xF8, 0, 0, 0, 0, 0);
    const __m128i shift = _mm_setr_epi16(1 << 11, 1 << 10, 1 << 11, 0, 0, 0, 0, 0);

    const __m128i c = _mm_and_si128(_mm_unpacklo_epi8(color, _mm_setzero_si128()), mask);
    return _mm_or_si128(c, _mm_mulhi_epu16(c, shift));
}

// Distances of 8 pixels to one palette colour, as words in pixel order.
// pixels[r] holds one pixel in the low double word of each quad word;
// palette holds the colour likewise, so psadbw sums one pixel a quad word.
inline __m128i distances(const __m128i pixels[4], __m128i palette)
{
    const __m128i s01 = _mm_packs_epi32(_mm_sad_epu8(pixels[0], palette),
                                        _mm_sad_epu8(pixels[1], palette));
    const __m128i s23 = _mm_packs_epi32(_mm_sad_epu8(pixels[2], palette),
                                        _mm_sad_epu8(pixels[3], palette));
    return _mm_packs_epi32(s01, s23);
}

// Branch-free nearest of four: index = x2 | (x0 | x1) << 1. The low byte of
// each word is all ones where bit 0 is set, the high byte where bit 1 is.
inline __m128i indexBits(__m128i d0, __m128i d1, __m128i d2, __m128i d3)
{
    const __m128i g03 = _mm_cmpgt_epi16(d0, d3);
    const __m128i x0  = _mm_and_si128(_mm_cmpgt_epi16(d0, d2), _mm_cmpgt_epi16(d1, d2));
    const __m128i x1  = _mm_and_si128(g03, _mm_cmpgt_epi16(d1, d3));
    const __m128i x2  = _mm_and_si128(g03, _mm_cmpgt_epi16(d2, d3));

    const __m128i lowByte = _mm_set1_epi16(0x00FF);
    return _mm_or_si128(_mm_and_si128(lowByte, x2),
                        _mm_andnot_si128(lowByte, _mm_or_si128(x0, x1)));
}

inline UInt32 colorIndices(const BlockRows &b, __m128i minColor, __m128i maxColor)
{
    // Thirds without a division: (x * 0x5556) >> 16 == x / 3 for x <= 765.
    const __m128i third = _mm_set1_epi16(0x5556);

    const __m128i c0 = expand565(maxColor);
    const __m128i c1 = expand565(minColor);
    const __m128i c2 = _mm_mulhi_epu16(_mm_add_epi16(_mm_add_epi16(c0, c0), c1), third);
    const __m128i c3 = _mm_mulhi_epu16(_mm_add_epi16(_mm_add_epi16(c1, c1), c0), third);

    // Even pixels 0, 2, .. 14 and odd pixels 1, 3, .. 15, one per quad word.
    // The palette's alpha is 0, so a pixel's alpha adds alike to all four
    // distances.
    const __m128i lowPixel = _mm_setr_epi32(-1, 0, -1, 0);
    __m128i even[4], odd[4];
    for(int r = 0; r < 4; ++r)
    {
        even[r] = _mm_and_si128(b.row[r], lowPixel);
        odd [r] = _mm_srli_epi64(b.row[r], 32);
    }

    const __m128i p0 = _mm_packus_epi16(c0, c0);
    const __m128i p1 = _mm_packus_epi16(c1, c1);
    const __m128i p2 = _mm_packus_epi16(c2, c2);
    const __m128i p3 = _mm_packus_epi16(c3, c3);

    const __m128i e = indexBits(distances(even, p0), distances(even, p1),
                                distances(even, p2), distances(even, p3));
    const __m128i o = indexBits(distances(odd, p0), distances(odd, p1),
                                distances(odd, p2), distances(odd, p3));

    // Interleaved back to pixel order, the byte masks are the index bits.
    return  UInt32(_mm_movemask_epi8(_mm_unpacklo_epi16(e, o))) |
           (UInt32(_mm_movemask_epi8(_mm_unpackhi_epi16(e, o))) << 16);
}

template <int K>
inline __m128i broadcastWord(__m128i v)
{
    if constexpr(K < 4)
        return _mm_shuffle_epi32(_mm_shufflelo_epi16(v, _MM_SHUFFLE(K, K, K, K)),
                                 _MM_SHUFFLE(0, 0, 0, 0));
    else
        return _mm_shuffle_epi32(
            _mm_shufflehi_epi16(v, _MM_SHUFFLE(K - 4, K - 4, K - 4, K - 4)),
            _MM_SHUFFLE(2, 2, 2, 2));
}

// Subtracts 1 from `count` where alpha <= the threshold in word K.
template <int K>
inline __m128i countAtOrAbove(__m128i count, __m128i alpha, __m128i thresholds)
{
    const __m128i t = broadcastWord<K>(thresholds);
    return _mm_add_epi8(count, _mm_cmpeq_epi8(_mm_min_epu8(alpha, t), alpha));
}

// The 48 bits of alpha indices for minAlpha <= maxAlpha: n = the number of
// the thresholds ab1..ab7 at or above the alpha, then alphaIndexOf(n).
inline UInt64 alphaIndices(const BlockRows &b, Int32 minAlpha, Int32 maxAlpha)
{
    const __m128i alpha = _mm_packus_epi16(
        _mm_packs_epi32(_mm_srli_epi32(b.row[0], 24), _mm_srli_epi32(b.row[1], 24)),
        _mm_packs_epi32(_mm_srli_epi32(b.row[2], 24), _mm_srli_epi32(b.row[3], 24)));

    // Word k - 1 holds abk = (wMax * max + wMin * min) / 7 + mid; ab1 is
    // min + mid. (x * 9363) >> 16 == x / 7 for x <= 7 * 255, and no
    // threshold exceeds 255.
    const __m128i wMax = _mm_setr_epi16(0, 6, 5, 4, 3, 2, 1, 0);
    const __m128i wMin = _mm_setr_epi16(7, 1, 2, 3, 4, 5, 6, 0);
    const __m128i sum  =
        _mm_add_epi16(_mm_mullo_epi16(_mm_set1_epi16(Int16(maxAlpha)), wMax),
                      _mm_mullo_epi16(_mm_set1_epi16(Int16(minAlpha)), wMin));
    __m128i ab = _mm_add_epi16(_mm_mulhi_epu16(sum, _mm_set1_epi16(9363)),
                               _mm_set1_epi16(Int16((maxAlpha - minAlpha) / 14)));
    ab = _mm_or_si128(ab, _mm_slli_epi16(ab, 8));

    __m128i count = _mm_setzero_si128();
    count = countAtOrAbove<0>(count, alpha, ab);
    count = countAtOrAbove<1>(count, alpha, ab);
    count = countAtOrAbove<2>(count, alpha, ab);
    count = countAtOrAbove<3>(count, alpha, ab);
    count = countAtOrAbove<4>(count, alpha, ab);
    count = countAtOrAbove<5>(count, alpha, ab);
    count = countAtOrAbove<6>(count, alpha, ab);

    // alphaIndexOf for 16 bytes: count is -n.
    __m128i index = _mm_and_si128(_mm_sub_epi8(_mm_set1_epi8(1), count), _mm_set1_epi8(7));
    index = _mm_xor_si128(index, _mm_and_si128(_mm_cmpgt_epi8(_mm_set1_epi8(2), index),
                                               _mm_set1_epi8(1)));

    // 3 bits a byte -> 6 a word -> 12 a double word -> 24 a quad word.
    __m128i bits = _mm_and_si128(_mm_or_si128(index, _mm_srli_epi16(index, 5)),
                                 _mm_set1_epi16(0x3F));
    bits = _mm_and_si128(_mm_or_si128(bits, _mm_srli_epi32(bits, 10)),
                         _mm_set1_epi32(0xFFF));
    bits = _mm_or_si128(bits, _mm_srli_epi64(bits, 20));

    const UInt64 low  = UInt32(_mm_cvtsi128_si32(bits)) & 0xFFFFFF;
    const UInt64 high = UInt32(_mm_cvtsi128_si32(_mm_shuffle_epi32(bits, 2))) & 0xFFFFFF;
    return low | (high << 24);
}

template <bool WithAlpha>
void compressBlocks(const UInt8 *in, UInt8 *out,
                   Int32 width, Int32 height, Int32 &outputBytes)
{
    UInt8 *const      start  = out;
    const std::size_t stride = std::size_t(width) * 4;

    for(Int32 j = 0; j < height; j += 4)
    {
        const UInt8 *blockRow = in + std::size_t(j) * stride;

        for(Int32 i = 0; i < width; i += 4)
        {
            // Reading the rows straight from the image is ExtractBlock_Intrinsics
            // without the round trip through memory.
            const BlockRows b = loadRows(blockRow + std::size_t(i) * 4, stride);

            __m128i minColor, maxColor;
            minMaxColors(b, minColor, maxColor);

            const UInt32 lo = UInt32(_mm_cvtsi128_si32(minColor));
            const UInt32 hi = UInt32(_mm_cvtsi128_si32(maxColor));

            if(WithAlpha)
            {
                EmitByte(UInt8(hi >> 24), out);
                EmitByte(UInt8(lo >> 24), out);
                emitAlphaBits(alphaIndices(b, Int32(lo >> 24), Int32(hi >> 24)), out);
            }

            EmitWord      (colorTo565(hi), out);
            EmitWord      (colorTo565(lo), out);
            EmitDoubleWord(colorIndices(b, minColor, maxColor), out);
        }
    }

    outputBytes = Int32(out - start);
}

// ---- scalar helpers -------------------------------------------------------

inline UInt8 clampByte(Int32 value)
{
    return UInt8(value < 0 ? 0 : (value > 255 ? 255 : value));
}

// Co, Cg, 0, Y with halving toward zero; in and out may be the same pixel.
inline void pixelToYCoCg(const UInt8 *in, UInt8 *out)
{
    const Int32 r  = in[0];
    const Int32 g  = in[1];
    const Int32 b  = in[2];
    const Int32 co = r - b;
    const Int32 t  = b + co / 2;
    const Int32 cg = g - t;
    const Int32 y  = t + cg / 2;

    out[0] = clampByte(co + 128);
    out[1] = clampByte(cg + 96);
    out[2] = 0;
    out[3] = clampByte(y);
}

// Per-channel box of the block over the first `channels` bytes of each
// pixel, pulled 1/16 of its range inward.
void insetBox(const UInt8 *block, int channels, UInt8 *minColor, UInt8 *maxColor)
{
    for(int c = 0; c < channels; ++c)
    {
        Int32 lo = 255;
        Int32 hi = 0;
        for(int i = 0; i < 16; ++i)
        {
            const Int32 v = block[i * 4 + c];
            lo = v < lo ? v : lo;
            hi = v > hi ? v : hi;
        }
        const Int32 inset = (hi - lo) >> 4;
        minColor[c] = clampByte(lo + inset);
        maxColor[c] = clampByte(hi - inset);
    }
}

// The decoder's palette for the endpoints, alpha 0 (see expand565).
void colorPalette(const UInt8 *minColor, const UInt8 *maxColor, UInt8 palette[4][4])
{
    for(int c = 0; c < 3; ++c)
    {
        const Int32 keep   = c == 1 ? 0xFC : 0xF8;
        const Int32 repeat = c == 1 ? 6 : 5;
        const Int32 c0     = (maxColor[c] & keep) | (maxColor[c] >> repeat);
        const Int32 c1     = (minColor[c] & keep) | (minColor[c] >> repeat);

        palette[0][c] = UInt8(c0);
        palette[1][c] = UInt8(c1);
        palette[2][c] = UInt8(((2 * c0 + c1) * 0x5556) >> 16);
        palette[3][c] = UInt8(((2 * c1 + c0) * 0x5556) >> 16);
    }
    for(int j = 0; j < 4; ++j)
        palette[j][3] = 0;
}

// Pixels `low` and `high` as the endpoints, swapped where needed so that the
// maximum's 5:6:5 value is not below the minimum's.
void takeEndpoints(const UInt8 *block, int low, int high, UInt8 *minColor, UInt8 *maxColor)
{
    std::memcpy(minColor, block + low  * 4, 4);
    std::memcpy(maxColor, block + high * 4, 4);

    if(ColorTo565(maxColor) < ColorTo565(minColor))
        SwapColors(minColor, maxColor);
}

} // namespace

// ---- whole images ---------------------------------------------------------

void CompressImageDXT1(const UInt8 *in, UInt8 *out,
                       Int32 width, Int32 height, Int32 &outputBytes)
{
    compressBlocks<false>(in, out, width, height, outputBytes);
}

void CompressImageDXT5(const UInt8 *in, UInt8 *out,
                       Int32 width, Int32 height, Int32 &outputBytes)
{
    compressBlocks<true>(in, out, width, height, outputBytes);
}

void CompressImageDXT5YCoCg(const UInt8 *in, UInt8 *out,
                            Int32 width, Int32 height, Int32 &outputBytes)
{
    outputBytes = 0;
    if(width < 1 || height < 1)
        return;

    DXTAlignedBuffer converted;
    if(!converted.allocate(std::size_t(width) * std::size_t(height) * 4))
        return;

    RGBAtoYCoCg(in, converted.data(), width, height);
    CompressImageDXT5(converted.data(), out, width, height, outputBytes);
}

// ---- blocks ---------------------------------------------------------------

void ExtractBlock_Intrinsics(const UInt8 *in, Int32 width, UInt8 *block)
{
    const BlockRows b = loadRows(in, std::size_t(width) * 4);
    for(int r = 0; r < 4; ++r)
        _mm_storeu_si128(reinterpret_cast<__m128i *>(block + 16 * r), b.row[r]);
}

void ExtractBlock(const UInt8 *in, Int32 width, UInt8 *block)
{
    const std::size_t stride = std::size_t(width) * 4;
    for(int r = 0; r < 4; ++r)
    {
        UInt64 half[2];
        std::memcpy(half, in + r * stride, 16);
        std::memcpy(block + 16 * r, half, 16);
    }
}

void GetMinMaxColors_Intrinsics(const UInt8 *block, UInt8 *minColor, UInt8 *maxColor)
{
    __m128i lo, hi;
    minMaxColors(loadRows(block, 16), lo, hi);
    _mm_storeu_si128(reinterpret_cast<__m128i *>(minColor), lo);
    _mm_storeu_si128(reinterpret_cast<__m128i *>(maxColor), hi);
}

void GetMinMaxColors(const UInt8 *block, UInt8 *minColor, UInt8 *maxColor)
{
    Int32 maxDistance = -1;
    int   first       = 0;
    int   second      = 1;
    for(int i = 0; i < 15; ++i)
    {
        for(int j = i + 1; j < 16; ++j)
        {
            const Int32 distance = ColorDistance(block + i * 4, block + j * 4);
            if(distance > maxDistance)
            {
                maxDistance = distance;
                first       = i;
                second      = j;
            }
        }
    }
    takeEndpoints(block, first, second, minColor, maxColor);
}

void GetMinMaxColorsByLuminance(const UInt8 *block, UInt8 *minColor, UInt8 *maxColor)
{
    Int32 minLuminance = INT_MAX;
    Int32 maxLuminance = -1;
    int   darkest      = 0;
    int   brightest    = 0;
    for(int i = 0; i < 16; ++i)
    {
        const Int32 luminance = ColorLuminance(block + i * 4);
        if(luminance > maxLuminance)
        {
            maxLuminance = luminance;
            brightest    = i;
        }
        if(luminance < minLuminance)
        {
            minLuminance = luminance;
            darkest      = i;
        }
    }
    takeEndpoints(block, darkest, brightest, minColor, maxColor);
}

void GetMinMaxColorsByBBox(const UInt8 *block, UInt8 *minColor, UInt8 *maxColor)
{
    insetBox(block, 3, minColor, maxColor);
}

void GetMinMaxColorsAlpha(UInt8 *block, UInt8 *minColor, UInt8 *maxColor)
{
    for(int i = 0; i < 16; ++i)
        pixelToYCoCg(block + i * 4, block + i * 4);

    insetBox(block, 4, minColor, maxColor);
}

void EmitColorIndices_Intrinsics(const UInt8 *block, const UInt8 *minColor,
                                 const UInt8 *maxColor, UInt8 *&out)
{
    const __m128i lo = _mm_set1_epi32(Int32(loadColor(minColor)));
    const __m128i hi = _mm_set1_epi32(Int32(loadColor(maxColor)));
    EmitDoubleWord(colorIndices(loadRows(block, 16), lo, hi), out);
}

void EmitColorIndices(const UInt8 *block, const UInt8 *minColor,
                      const UInt8 *maxColor, UInt8 *&out)
{
    UInt8 palette[4][4];
    colorPalette(minColor, maxColor, palette);

    UInt32 indices = 0;
    for(int i = 0; i < 16; ++i)
    {
        Int32  minDistance = INT_MAX;
        UInt32 nearest     = 0;
        for(UInt32 j = 0; j < 4; ++j)
        {
            const Int32 distance = ColorDistance(block + i * 4, palette[j]);
            if(distance < minDistance)
            {
                minDistance = distance;
                nearest     = j;
            }
        }
        indices |= nearest << (2 * i);
    }
    EmitDoubleWord(indices, out);
}

void EmitColorIndicesFast(const UInt8 *block, const UInt8 *minColor,
                          const UInt8 *maxColor, UInt8 *&out)
{
    UInt8 palette[4][4];
    colorPalette(minColor, maxColor, palette);

    UInt32 indices = 0;
    for(int i = 0; i < 16; ++i)
    {
        const UInt8 *pixel = block + i * 4;

        Int32 d[4];
        for(int j = 0; j < 4; ++j)
        {
            d[j] = 0;
            for(int c = 0; c < 4; ++c)
                d[j] += std::abs(Int32(pixel[c]) - Int32(palette[j][c]));
        }

        const UInt32 x0 = (d[0] > d[2]) & (d[1] > d[2]);
        const UInt32 x1 = (d[0] > d[3]) & (d[1] > d[3]);
        const UInt32 x2 = (d[0] > d[3]) & (d[2] > d[3]);

        indices |= (x2 | ((x0 | x1) << 1)) << (2 * i);
    }
    EmitDoubleWord(indices, out);
}

void EmitAlphaIndicesFast(const UInt8 *block, UInt8 minAlpha, UInt8 maxAlpha, UInt8 *&out)
{
    emitAlphaBits(alphaIndices(loadRows(block, 16), minAlpha, maxAlpha), out);
}

void EmitAlphaIndices(const UInt8 *block, UInt8 minAlpha, UInt8 maxAlpha, UInt8 *&out)
{
    // The eight alphas from max down to min; position p maps to the index
    // as n does in the threshold form.
    Int32 alphas[8];
    for(int p = 0; p < 8; ++p)
        alphas[p] = ((7 - p) * maxAlpha + p * minAlpha) / 7;

    UInt64 bits = 0;
    for(int i = 0; i < 16; ++i)
    {
        const Int32 a           = block[i * 4 + 3];
        Int32       minDistance = INT_MAX;
        UInt32      nearest     = 0;
        for(UInt32 p = 0; p < 8; ++p)
        {
            const Int32 distance = std::abs(a - alphas[p]);
            if(distance < minDistance)
            {
                minDistance = distance;
                nearest     = p;
            }
        }
        bits |= UInt64(alphaIndexOf(nearest)) << (3 * i);
    }
    emitAlphaBits(bits, out);
}

void EmitAlphaIndices_Intrinsics(const UInt8 *, UInt8, UInt8, UInt8 *&)
{
    // There is no vector form of the exact search; EmitAlphaIndicesFast is
    // the one the compressor uses.
}

// ---- images and helpers ---------------------------------------------------

void RGBAtoYCoCg(const UInt8 *in, UInt8 *out, Int32 width, Int32 height)
{
    if(width < 1 || height < 1)
        return;

    const std::size_t pixels = std::size_t(width) * std::size_t(height);
    for(std::size_t i = 0; i < pixels; ++i)
        pixelToYCoCg(in + 4 * i, out + 4 * i);
}

Real64 ComputeError(const UInt8 *image, const UInt8 *other, Int32 width, Int32 height)
{
    if(width < 1 || height < 1)
        return 0.0;

    Real64 sum = 0.0;
    for(Int32 y = 0; y < height; ++y)
    {
        const UInt8 *a = image + std::size_t(y) * std::size_t(width) * 4;
        const UInt8 *b = other + std::size_t(height - 1 - y) * std::size_t(width) * 3;
        for(Int32 x = 0; x < width; ++x)
        {
            for(int c = 0; c < 3; ++c)
            {
                const Real64 d = Real64(a[4 * x + c]) - Real64(b[3 * x + c]);
                sum += d * d;
            }
        }
    }
    return std::sqrt(sum / (Real64(width) * Real64(height)));
}

void EmitByte(UInt8 value, UInt8 *&out)
{
    *out++ = value;
}

void EmitWord(UInt16 value, UInt8 *&out)
{
    out[0] = UInt8(value);
    out[1] = UInt8(value >> 8);
    out += 2;
}

void EmitDoubleWord(UInt32 value, UInt8 *&out)
{
    out[0] = UInt8(value);
    out[1] = UInt8(value >> 8);
    out[2] = UInt8(value >> 16);
    out[3] = UInt8(value >> 24);
    out += 4;
}

UInt16 ColorTo565(const UInt8 *color)
{
    return UInt16(((color[0] >> 3) << 11) | ((color[1] >> 2) << 5) | (color[2] >> 3));
}

Int32 ColorDistance(const UInt8 *c1, const UInt8 *c2)
{
    Int32 sum = 0;
    for(int c = 0; c < 3; ++c)
    {
        const Int32 d = Int32(c1[c]) - Int32(c2[c]);
        sum += d * d;
    }
    return sum;
}

Int32 ColorLuminance(const UInt8 *color)
{
    return color[0] + 2 * color[1] + color[2];
}

void SwapColors(UInt8 *c1, UInt8 *c2)
{
    UInt8 held[4];
    std::memcpy(held, c1,   4);
    std::memcpy(c1,   c2,   4);
    std::memcpy(c2,   held, 4);
}

// ---- DXTAlignedBuffer -----------------------------------------------------

DXTAlignedBuffer::DXTAlignedBuffer(void) :
    _storage(NULL),
    _data   (NULL)
{
}

DXTAlignedBuffer::~DXTAlignedBuffer(void)
{
    delete [] _storage;
}

bool DXTAlignedBuffer::allocate(std::size_t size)
{
    delete [] _storage;

    // 15 bytes more, so that a multiple of 16 lies inside.
    _storage = new (std::nothrow) UInt8[size + 15]();
    if(_storage == NULL)
    {
        _data = NULL;
        return false;
    }
    const std::size_t skew = reinterpret_cast<std::size_t>(_storage) & 15;
    _data = _storage + ((16 - skew) & 15);
    return true;
}

OSG_END_NAMESPACE
