#include "compression/DXTTestSupport.h"

#include <OpenSG/DXTBlocks.h>
#include <OpenSG/DXTCompressor.h>

#include <OpenSG/OSGImageFileHandler.h>

#include <gtest/gtest.h>
#include <support/LimitedRun.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <vector>

using namespace osg;

namespace
{

// Image::PixelFormat values.
const osg::Image::PixelFormat kRGB = osg::Image::OSG_RGB_PF, kRGBA = osg::Image::OSG_RGBA_PF,
                              kBGR = osg::Image::OSG_BGR_PF, kBGRA = osg::Image::OSG_BGRA_PF;

typedef std::vector<UInt8> Bytes;

struct alignas(16) Block
{
    UInt8 px[64];
};

Block uniformBlock(UInt8 r, UInt8 g, UInt8 b, UInt8 a)
{
    const UInt8 pixel[4] = { r, g, b, a };
    Block       block;
    for(int i = 0; i < 64; i += 4)
        std::memcpy(block.px + i, pixel, 4);
    return block;
}

Bytes compress(const Bytes &rgba, int width, int height, bool dxt5)
{
    Bytes out(std::size_t(width) * height / (dxt5 ? 1 : 2));
    Int32 written = -1;
    (dxt5 ? CompressImageDXT5 : CompressImageDXT1)(rgba.data(), out.data(), width, height, written);
    EXPECT_EQ(Int32(out.size()), written);
    return out;
}

typedef void (*AlphaRoutine)(const UInt8 *, UInt8, UInt8, UInt8 *&);
typedef void (*ColorRoutine)(const UInt8 *, const UInt8 *, const UInt8 *, UInt8 *&);

// The three-bit index of every pixel; checks that six bytes were emitted.
std::vector<UInt32> alphaIndices(AlphaRoutine emit, const Block &block, UInt8 lo, UInt8 hi)
{
    UInt8  bits[6];
    UInt8 *out = bits;
    emit(block.px, lo, hi, out);
    EXPECT_EQ(bits + 6, out);

    UInt64 all = 0;
    for(int i = 0; i < 6; ++i)
        all |= UInt64(bits[i]) << (8 * i);
    std::vector<UInt32> indices;
    for(int i = 0; i < 16; ++i)
        indices.push_back(UInt32(all >> (3 * i)) & 7);
    return indices;
}

UInt32 colorIndices(ColorRoutine emit, const Block &block, const UInt8 *lo, const UInt8 *hi)
{
    UInt8  bits[4];
    UInt8 *out = bits;
    emit(block.px, lo, hi, out);
    EXPECT_EQ(bits + 4, out);
    return bits[0] | bits[1] << 8 | bits[2] << 16 | UInt32(bits[3]) << 24;
}

// Our reading of the thresholds, kept apart from the vector code it checks.
UInt32 thresholdIndex(Int32 a, Int32 lo, Int32 hi)
{
    const Int32 mid   = (hi - lo) / 14;
    const Int32 ab[7] = { lo + mid, (6 * hi + lo) / 7 + mid, (5 * hi + 2 * lo) / 7 + mid,
                          (4 * hi + 3 * lo) / 7 + mid, (3 * hi + 4 * lo) / 7 + mid,
                          (2 * hi + 5 * lo) / 7 + mid, (hi + 6 * lo) / 7 + mid };
    UInt32 n = 0;
    for(Int32 t : ab)
        n += a <= t;
    const UInt32 index = (n + 1) & 7;
    return index < 2 ? index ^ 1 : index;
}

} // namespace

// ---- exact bytes of single blocks --------------------------------------------

TEST(DXTBlockBytes, OneColourGivesEqualEndpointsAndZeroIndices)
{
    const Block block = uniformBlock(200, 100, 50, 77);
    const Bytes image(block.px, block.px + 64);

    // 565 of (200, 100, 50) = 25 << 11 | 25 << 5 | 6 = 0xCB26.
    EXPECT_EQ(Bytes({ 0x26, 0xCB, 0x26, 0xCB, 0, 0, 0, 0 }), compress(image, 4, 4, false));

    // Equal alphas: every threshold is 77, every pixel counts all seven: index 1.
    EXPECT_EQ(Bytes({ 77, 77, 0x49, 0x92, 0x24, 0x49, 0x92, 0x24,
                      0x26, 0xCB, 0x26, 0xCB, 0, 0, 0, 0 }), compress(image, 4, 4, true));
}

TEST(DXTBlockBytes, TwoColoursUseInsetEndpointsAndNearestIndices)
{
    // Pixels 0-7 black with alpha 0, 8-15 white with alpha 255: every
    // channel's endpoints are 15 and 240 (inset 255 >> 4).
    Bytes image(64, 0);
    std::fill(image.begin() + 32, image.end(), 255);

    // 565(240, 240, 240) = 0xF79E, 565(15, 15, 15) = 0x0861; black is nearest
    // to colour1 (index 1), white to colour0. Alpha 0 lies below the alpha
    // minimum (index 1), 255 above the maximum (index 0).
    const Bytes colour = { 0x9E, 0xF7, 0x61, 0x08, 0x55, 0x55, 0, 0 };
    Bytes       dxt5   = { 240, 15, 0x49, 0x92, 0x24, 0, 0, 0 };
    dxt5.insert(dxt5.end(), colour.begin(), colour.end());
    EXPECT_EQ(colour, compress(image, 4, 4, false));
    EXPECT_EQ(dxt5, compress(image, 4, 4, true));
}

TEST(DXTBlockBytes, EndpointsAreTheInsetBoxOfAllFourChannels)
{
    Block       block    = uniformBlock(100, 0, 7, 255);
    const UInt8 other[4] = { 20, 255, 9, 0 };
    std::memcpy(block.px + 36, other, 4);

    // Ranges 80, 255, 2, 255 give insets 5, 15, 0, 15; all four double words.
    alignas(16) UInt8 lo[16], hi[16];
    GetMinMaxColors_Intrinsics(block.px, lo, hi);
    for(int i = 0; i < 16; i += 4)
    {
        EXPECT_EQ(Bytes({ 25, 15, 7, 15 }), Bytes(lo + i, lo + i + 4));
        EXPECT_EQ(Bytes({ 95, 240, 9, 240 }), Bytes(hi + i, hi + i + 4));
    }
}

// ---- alpha indices -------------------------------------------------------------

TEST(DXTAlphaIndices, MaxGivesIndexZeroAndMinIndexOne)
{
    Block block = uniformBlock(0, 0, 0, 200);
    for(int i = 8; i < 16; ++i)
        block.px[4 * i + 3] = 10;

    std::vector<UInt32> expected(16, 0);
    std::fill(expected.begin() + 8, expected.end(), 1);
    EXPECT_EQ(expected, alphaIndices(EmitAlphaIndicesFast, block, 10, 200));
    EXPECT_EQ(expected, alphaIndices(EmitAlphaIndices, block, 10, 200));
}

TEST(DXTAlphaIndices, FastFollowsTheThresholdsForEveryEndpointPair)
{
    Block block = uniformBlock(0, 0, 0, 0);
    for(Int32 start = 0; start < 256; start += 16)
    {
        for(int i = 0; i < 16; ++i)
            block.px[4 * i + 3] = UInt8(start + i);

        for(Int32 lo = 0; lo < 256; ++lo)
            for(Int32 hi = lo; hi < 256; ++hi)
            {
                const std::vector<UInt32> got =
                    alphaIndices(EmitAlphaIndicesFast, block, UInt8(lo), UInt8(hi));
                for(int i = 0; i < 16; ++i)
                    ASSERT_EQ(thresholdIndex(start + i, lo, hi), got[i])
                        << "min " << lo << " max " << hi << " alpha " << start + i;
            }
    }
}

TEST(DXTAlphaIndices, ExactPicksTheNearestInterpolatedAlphaFirstOnTies)
{
    // min 0, max 70: alphas 70, 60, .. 10, 0 at indices 0, 2..7, 1; 35, 5, 65
    // and 15 lie halfway and keep the higher alpha.
    Block       block    = uniformBlock(0, 0, 0, 0);
    const UInt8 alpha[16] = { 70, 66, 64, 60, 56, 54, 35, 34, 26, 24, 5, 4, 0, 255, 65, 15 };
    for(int i = 0; i < 16; ++i)
        block.px[4 * i + 3] = alpha[i];

    EXPECT_EQ(std::vector<UInt32>({ 0, 0, 2, 2, 2, 3, 4, 5, 5, 6, 7, 1, 1, 0, 0, 6 }),
              alphaIndices(EmitAlphaIndices, block, 0, 70));
}

// ---- colour indices ------------------------------------------------------------

TEST(DXTColorIndices, ScalarFastFormAgreesWithIntrinsics)
{
    std::mt19937 rng(7);
    for(int round = 0; round < 20000; ++round)
    {
        Block block;
        for(UInt8 &byte : block.px)
            byte = UInt8(rng());

        // Box endpoints, reversed, arbitrary and equal ones.
        alignas(16) UInt8 lo[16], hi[16];
        GetMinMaxColors_Intrinsics(block.px, lo, hi);
        if(round % 4 == 1)
            std::swap(lo, hi);
        if(round % 4 == 2)
            for(UInt8 &b : lo)
                b = UInt8(rng());
        if(round % 4 == 3)
            std::memcpy(lo, hi, 16);

        ASSERT_EQ(colorIndices(EmitColorIndices_Intrinsics, block, lo, hi),
                  colorIndices(EmitColorIndicesFast, block, lo, hi)) << "round " << round;
    }
}

TEST(DXTColorIndices, SquaredDistanceChoosesOtherwiseThanAbsolute)
{
    // Endpoints black and white: palette 255, 0, 170, 85 per channel. For
    // (60, 253, 230) white is nearer by absolute differences (222 against
    // 253) and grey 170 by squared ones (22589 against 38654).
    const Block block = uniformBlock(60, 253, 230, 255);
    const UInt8 lo[4] = { 0, 0, 0, 0 }, hi[4] = { 255, 255, 255, 0 };
    EXPECT_EQ(0x00000000u, colorIndices(EmitColorIndicesFast, block, lo, hi));
    EXPECT_EQ(0xAAAAAAAAu, colorIndices(EmitColorIndices, block, lo, hi));
}

TEST(DXTColorIndices, SquaredDistanceTiesGoToTheLowerIndex)
{
    // Red 24 and 0 give the palette 24, 0, 16, 8: red 20 ties 0 and 2,
    // 12 ties 2 and 3, 4 ties 1 and 3.
    Block block = uniformBlock(20, 0, 0, 0);
    block.px[4] = 12;
    block.px[8] = 4;
    const UInt8 lo[4] = { 0, 0, 0, 0 }, hi[4] = { 24, 0, 0, 0 };
    EXPECT_EQ(0x18u, colorIndices(EmitColorIndices, block, lo, hi));   // 0, 2, 1, 0, ..
}

// ---- endpoint variants ---------------------------------------------------------

TEST(DXTEndpointVariants, FarthestPairAndLuminanceOrderBy565)
{
    // Grey, with a dark red and a bright blue as the farthest pair; the last
    // grey is told apart by its alpha.
    Block       block = uniformBlock(100, 100, 100, 1);
    const UInt8 red[4] = { 120, 10, 0, 3 }, blue[4] = { 10, 20, 250, 2 };
    std::memcpy(block.px + 8, red, 4);
    std::memcpy(block.px + 40, blue, 4);
    block.px[63] = 5;

    // Found as (red, blue), swapped: 565 of red (0x7840) is above blue's (0x08BF).
    UInt8 lo[4], hi[4];
    GetMinMaxColors(block.px, lo, hi);
    EXPECT_EQ(Bytes(blue, blue + 4), Bytes(lo, lo + 4));
    EXPECT_EQ(Bytes(red, red + 4), Bytes(hi, hi + 4));

    // Luminance: red 140 lowest, grey 400 highest (the first of the ties);
    // grey's 565 (0x632C) is below red's, so they swap too.
    GetMinMaxColorsByLuminance(block.px, lo, hi);
    EXPECT_EQ(Bytes(block.px, block.px + 4), Bytes(lo, lo + 4));
    EXPECT_EQ(Bytes(red, red + 4), Bytes(hi, hi + 4));
}

TEST(DXTEndpointVariants, BoxFormsInsetAndYCoCgWorksInPlace)
{
    Block block = uniformBlock(200, 100, 50, 9);
    block.px[0] = 40;

    UInt8 lo[4] = { 1, 2, 3, 4 }, hi[4] = { 5, 6, 7, 8 };
    GetMinMaxColorsByBBox(block.px, lo, hi);
    EXPECT_EQ(Bytes({ 50, 100, 50, 4 }), Bytes(lo, lo + 4));   // alpha left alone
    EXPECT_EQ(Bytes({ 190, 100, 50, 8 }), Bytes(hi, hi + 4));

    // (40, 100, 50): Co -10, t 45, Cg 55, Y 72 -> 118, 151, 0, 72.
    // (200, 100, 50): Co 150, t 125, Cg -25, Y 113 -> 255, 71, 0, 113.
    GetMinMaxColorsAlpha(block.px, lo, hi);
    EXPECT_EQ(Bytes({ 118, 151, 0, 72, 255, 71, 0, 113 }), Bytes(block.px, block.px + 8));
    EXPECT_EQ(Bytes({ 118 + 8, 71 + 5, 0, 72 + 2 }), Bytes(lo, lo + 4));
    EXPECT_EQ(Bytes({ 255 - 8, 151 - 5, 0, 113 - 2 }), Bytes(hi, hi + 4));
}

// ---- whole images --------------------------------------------------------------

TEST(DXTImage, MainPathEqualsTheBlockRoutinesInSequence)
{
    const int   width = 64, height = 32;
    const Bytes rgba  = dxttest::makePhotoImage(width, height, 3);

    for(bool dxt5 : { false, true })
    {
        Bytes  expected(std::size_t(width) * height / (dxt5 ? 1 : 2));
        UInt8 *out = expected.data();
        for(int j = 0; j < height; j += 4)
            for(int i = 0; i < width; i += 4)
            {
                Block a, b;
                ExtractBlock_Intrinsics(&rgba[(j * width + i) * 4], width, a.px);
                ExtractBlock(&rgba[(j * width + i) * 4], width, b.px);
                ASSERT_EQ(Bytes(a.px, a.px + 64), Bytes(b.px, b.px + 64));

                alignas(16) UInt8 lo[16], hi[16];
                GetMinMaxColors_Intrinsics(a.px, lo, hi);
                if(dxt5)
                {
                    EmitByte(hi[3], out);
                    EmitByte(lo[3], out);
                    EmitAlphaIndicesFast(a.px, lo[3], hi[3], out);
                }
                EmitWord(ColorTo565(hi), out);
                EmitWord(ColorTo565(lo), out);
                EmitColorIndicesFast(a.px, lo, hi, out);
            }
        EXPECT_EQ(expected, compress(rgba, width, height, dxt5)) << (dxt5 ? "DXT5" : "DXT1");
    }
}

TEST(DXTImage, RoundTripStaysCloseToAPhotoLikeImage)
{
    const int   width = 256, height = 256;
    const Bytes rgba  = dxttest::makePhotoImage(width, height);
    const Bytes dxt1  = dxttest::decodeImage(compress(rgba, width, height, false).data(),
                                             width, height, false);
    Bytes       dxt5  = dxttest::decodeImage(compress(rgba, width, height, true).data(),
                                             width, height, true);

    // ComputeError reads its second image as GL reads back: RGB, bottom row first.
    Bytes flipped;
    for(int y = height - 1; y >= 0; --y)
        for(int x = 0; x < width; ++x)
            flipped.insert(flipped.end(), &dxt1[(y * width + x) * 4], &dxt1[(y * width + x) * 4 + 3]);
    const double error = ComputeError(rgba.data(), flipped.data(), width, height);
    EXPECT_NEAR(std::sqrt(3.0) * dxttest::rmse(rgba.data(), dxt1.data(), width * height, 0, 3),
                error, 1e-9);
    EXPECT_LT(error, 14.0);

    // DXT5 adds alpha to the same colour blocks.
    EXPECT_LT(dxttest::rmse(rgba.data(), dxt5.data(), width * height, 3, 1), 2.5);
    for(std::size_t i = 3; i < dxt5.size(); i += 4)
        dxt5[i] = 255;
    EXPECT_EQ(dxt1, dxt5);
}

TEST(DXTImage, YCoCgHalvesTowardZeroClampsAndRoundTrips)
{
    // (49, 100, 200): Co -151 halves to -75, t 125, Cg -25, Y 113.
    // (255, 0, 0): Co 255, t 127, Cg -127, Y 64.
    const UInt8 in[8] = { 49, 100, 200, 7, 255, 0, 0, 0 };
    UInt8       out[8];
    RGBAtoYCoCg(in, out, 2, 1);
    EXPECT_EQ(Bytes({ 0, 71, 0, 113, 255, 0, 0, 64 }), Bytes(out, out + 8));

    // Co and Cg travel in the colour endpoints, Y in alpha.
    const int   width = 64, height = 64;
    const Bytes rgba  = dxttest::makePhotoImage(width, height, 5);
    Bytes       blocks(std::size_t(width) * height);
    Int32       written = 0;
    CompressImageDXT5YCoCg(rgba.data(), blocks.data(), width, height, written);
    ASSERT_EQ(Int32(blocks.size()), written);

    Bytes back = dxttest::decodeImage(blocks.data(), width, height, true);
    for(std::size_t i = 0; i < back.size(); i += 4)
    {
        const int co = back[i] - 128, cg = back[i + 1] - 96, t = back[i + 3] - cg / 2;
        const int b = t - co / 2;
        back[i]     = UInt8(std::clamp(b + co, 0, 255));
        back[i + 1] = UInt8(std::clamp(cg + t, 0, 255));
        back[i + 2] = UInt8(std::clamp(b, 0, 255));
    }
    EXPECT_LT(dxttest::rmse(rgba.data(), back.data(), width * height, 0, 3), 14.0);
}

// ---- DXTCompressor ---------------------------------------------------------------

TEST(DXTCompressorPixels, RefusesAndWritesNothing)
{
    const Bytes rgba(8 * 8 * 4, 100);
    struct Case { UInt32 width, height; osg::Image::PixelFormat format; int target; const char *text; };
    const Case cases[] = {
        { 6, 8, kRGBA, DXTCompressor::DXT1, "Width and height no multiple of 4. Doing nothing.\n" },
        { 8, 6, kRGBA, DXTCompressor::DXT1, "Width and height no multiple of 4. Doing nothing.\n" },
        { 8, 8, osg::Image::OSG_L_PF, DXTCompressor::Auto, "Unsupported inPixelFormat. Doing nothing.\n" },
        { 8, 8, kRGB, 3, "Unsupported targetFormat. Doing nothing.\n" },
    };
    for(const Case &c : cases)
    {
        Bytes out(64, 0xAB);
        testing::internal::CaptureStderr();
        EXPECT_FALSE(DXTCompressor::the().compressPixels(out.data(), rgba.data(), c.width, c.height,
                                                         c.format, DXTCompressor::CompressedFormat(c.target)));
        const std::string log = testing::internal::GetCapturedStderr();
        EXPECT_EQ(Bytes(64, 0xAB), out);
        EXPECT_NE(std::string::npos, log.find(std::string("DXTCompressor::compressPixels: ") + c.text)) << log;
    }
}

TEST(DXTCompressorPixels, ConvertsInputFormatsAndChoosesByAlpha)
{
    const int   width = 16, height = 8;
    const Bytes rgba  = dxttest::makePhotoImage(width, height, 9);

    // BGRA's alpha is not carried over: it arrives as 0.
    Bytes rgb, bgr, bgra, opaque = rgba, clear = rgba;
    for(std::size_t i = 0; i < rgba.size(); i += 4)
    {
        const UInt8 *p = &rgba[i];
        rgb.insert(rgb.end(), { p[0], p[1], p[2] });
        bgr.insert(bgr.end(), { p[2], p[1], p[0] });
        bgra.insert(bgra.end(), { p[2], p[1], p[0], p[3] });
        opaque[i + 3] = 255;
        clear[i + 3]  = 0;
    }

    // Output beyond the blocks stays untouched.
    auto run = [&](const Bytes &in, osg::Image::PixelFormat format, DXTCompressor::CompressedFormat target) {
        Bytes out(width * height + 16, 0xEE);
        EXPECT_TRUE(DXTCompressor::the().compressPixels(out.data(), in.data(), width, height, format, target));
        return out;
    };
    auto expect = [&](const Bytes &in, bool dxt5) {
        Bytes out = compress(in, width, height, dxt5);
        out.resize(width * height + 16, 0xEE);
        return out;
    };
    EXPECT_EQ(expect(opaque, false), run(rgb, kRGB, DXTCompressor::Auto));
    EXPECT_EQ(expect(opaque, false), run(bgr, kBGR, DXTCompressor::Auto));
    EXPECT_EQ(expect(rgba, true), run(rgba, kRGBA, DXTCompressor::Auto));
    EXPECT_EQ(expect(clear, true), run(bgra, kBGRA, DXTCompressor::Auto));
    EXPECT_EQ(expect(rgba, false), run(rgba, kRGBA, DXTCompressor::DXT1));
    EXPECT_EQ(expect(opaque, true), run(rgb, kRGB, DXTCompressor::DXT5));
}

TEST(DXTCompressorPixels, UnalignedBuffersGiveTheSameBytes)
{
    const Bytes rgba   = dxttest::makePhotoImage(8, 8, 11);
    const Bytes blocks = compress(rgba, 8, 8, true);

    alignas(16) UInt8 in[8 * 8 * 4 + 16], out[8 * 8 + 32];
    for(int shift : { 0, 1, 7 })
    {
        std::memcpy(in + shift, rgba.data(), rgba.size());
        std::fill(out, out + sizeof(out), UInt8(0xEE));
        ASSERT_TRUE(DXTCompressor::the().compressPixels(out + shift, in + shift, 8, 8, kRGBA,
                                                        DXTCompressor::DXT5));
        EXPECT_EQ(blocks, Bytes(out + shift, out + shift + blocks.size())) << shift;
        EXPECT_EQ(0xEE, out[shift + blocks.size()]) << shift;
    }
}

namespace
{

/// An image of the given format and edges filled with the photo-like test
/// pattern (RGBA bytes from the top row; RGB drops the alpha).
osg::ImagePtr makeImage(osg::Image::PixelFormat format, int width, int height, int depth = 1)
{
    osg::ImagePtr image = osg::Image::create();
    osg::addRefCP(image);
    osg::beginEditCP(image);
    image->set(format, width, height, depth);
    const Bytes rgba = dxttest::makePhotoImage(width, height * depth, 5);
    const int   comps = format == kRGBA ? 4 : 3;
    UInt8      *data  = image->editData();
    for(int i = 0; i < width * height * depth; ++i)
        for(int c = 0; c < comps; ++c)
            data[i * comps + c] = rgba[i * 4 + c];
    osg::endEditCP(image);
    return image;
}

std::string compressWithLog(osg::ImagePtr image, DXTCompressor::CompressedFormat format, bool &ok)
{
    testing::internal::CaptureStderr();
    ok = DXTCompressor::the().compressImage(image, format);
    return testing::internal::GetCapturedStderr();
}

} // namespace

TEST(DXTCompressorImage, ChoosesTheCompressedFormatByAlpha)
{
    struct Case { osg::Image::PixelFormat in; DXTCompressor::CompressedFormat format; UInt32 target; UInt32 bytes; };
    const Case cases[] = {
        { kRGB, DXTCompressor::Auto, 33776, 8 * 8 / 2 },
        { kRGBA, DXTCompressor::Auto, 33779, 8 * 8 },
        { kRGBA, DXTCompressor::DXT1, 33777, 8 * 8 / 2 },
        { kRGB, DXTCompressor::DXT1, 33776, 8 * 8 / 2 },
        { kRGB, DXTCompressor::DXT5, 33779, 8 * 8 },
    };
    for(const Case &c : cases)
    {
        osg::ImagePtr image = makeImage(c.in, 8, 8);
        Bytes rgba(8 * 8 * 4);
        const UInt8 *src = image->getData();
        const int comps = c.in == kRGBA ? 4 : 3;
        // what the image's own reformat to RGBA gives: RGB gets the average
        // of its channels as alpha
        for(int i = 0; i < 64; ++i)
        {
            const UInt8 *p = src + i * comps;
            for(int k = 0; k < 3; ++k)
                rgba[i * 4 + k] = p[k];
            rgba[i * 4 + 3] = comps == 4 ? p[3] : UInt8((UInt32(p[0]) + p[1] + p[2]) / 3);
        }

        bool ok = false;
        compressWithLog(image, c.format, ok);
        ASSERT_TRUE(ok);
        EXPECT_EQ(c.target, image->getPixelFormat());
        EXPECT_TRUE(DXTCompressor::the().isDXTCompressed(image));
        ASSERT_EQ(c.bytes, image->getSize());
        // the image holds exactly what the block routines make of its pixels
        EXPECT_EQ(compress(rgba, 8, 8, c.bytes == 64), Bytes(image->getData(), image->getData() + c.bytes))
            << "case " << int(&c - cases);
        osg::subRefCP(image);
    }
}

TEST(DXTCompressorImage, RaisesEdgesToMultiplesOfFour)
{
    osg::ImagePtr image = makeImage(kRGB, 6, 10);
    bool ok = false;
    compressWithLog(image, DXTCompressor::Auto, ok);
    EXPECT_TRUE(ok);
    EXPECT_EQ(8, image->getWidth());
    EXPECT_EQ(12, image->getHeight());
    EXPECT_EQ(8u * 12u / 2u, image->getSize());
    osg::subRefCP(image);
}

TEST(DXTCompressorImage, ConvertsDataTypeAndFormatFirst)
{
    // 16-bit luminance becomes bytes, then RGBA, then DXT1 (no alpha)
    osg::ImagePtr image = osg::Image::create();
    osg::addRefCP(image);
    osg::beginEditCP(image);
    image->set(osg::Image::OSG_L_PF, 8, 4, 1, 1, 1, 0.0, NULL, osg::Image::OSG_UINT16_IMAGEDATA);
    osg::endEditCP(image);
    bool ok = false;
    compressWithLog(image, DXTCompressor::Auto, ok);
    EXPECT_TRUE(ok);
    EXPECT_EQ(33776u, image->getPixelFormat());
    EXPECT_EQ(UInt32(GL_UNSIGNED_BYTE), image->getDataType());
    osg::subRefCP(image);
}

TEST(DXTCompressorImage, RefusesWithItsTexts)
{
    const std::string refusal = "Boldly refusing to compress it.\n";
    bool ok = true;

    std::string log = compressWithLog(osg::NullFC, DXTCompressor::Auto, ok);
    EXPECT_FALSE(ok);
    EXPECT_NE(std::string::npos, log.find("DXTCompressor::compressImage: Invalid image. " + refusal)) << log;

    osg::ImagePtr volume = makeImage(kRGB, 8, 8, 2);
    log = compressWithLog(volume, DXTCompressor::Auto, ok);
    EXPECT_FALSE(ok);
    EXPECT_NE(std::string::npos, log.find("DXTCompressor::compressImage: Invalid image. " + refusal)) << log;
    EXPECT_EQ(kRGB, volume->getPixelFormat()) << "a refused image stays as it was";
    osg::subRefCP(volume);
}

TEST(DXTCompressorImage, ChecksEveryStepItDependsOn)
{
    // Scaling that finds no memory (here: beyond the image budget, as a
    // 134217729 x 1 image scaled to 134217732 x 4 is beyond the default
    // one) and images without pixels are refused, not read through a null
    // pointer. In a child: a crash must not take the test program along.
    const corvanetest::LimitedResult r = corvanetest::runLimited([]() {
        osg::ImageFileHandler::the().setMaxImageBytes(32 << 20);

        osg::ImagePtr wide = osg::Image::create();
        osg::addRefCP(wide);
        bool ok = wide->set(kRGBA, 4194305, 1) &&
                  !DXTCompressor::the().compressImage(wide, DXTCompressor::Auto);

        osg::ImagePtr empty = osg::Image::create();
        osg::addRefCP(empty);
        for(osg::Image::PixelFormat format : {kRGBA, kRGB})
        {
            empty->set(format, 8, 8, 1, 1, 1, 0.0, NULL, GL_UNSIGNED_BYTE, false);
            ok = ok && !DXTCompressor::the().compressImage(empty, DXTCompressor::Auto);
        }

        // a format set by hand leaves three bytes a pixel behind
        osg::ImagePtr rgb = makeImage(kRGB, 8, 8);
        osg::beginEditCP(rgb, osg::Image::PixelFormatFieldMask);
        rgb->setPixelFormat(kRGBA);
        osg::endEditCP(rgb, osg::Image::PixelFormatFieldMask);
        ok = ok && !DXTCompressor::the().compressImage(rgb, DXTCompressor::DXT5);
        return ok;
    });
    EXPECT_EQ(r.signal, 0) << r.log;
    EXPECT_TRUE(r.passed) << r.log;
    const std::string refusal = "Boldly refusing to compress it.\n";
    EXPECT_NE(std::string::npos, r.log.find("DXTCompressor::compressImage: Couldn't scale the "
                                            "image to 4194308 x 4. " + refusal)) << r.log;
    EXPECT_NE(std::string::npos, r.log.find("DXTCompressor::compressImage: The image holds no "
                                            "8 x 8 pixels. " + refusal)) << r.log;
    EXPECT_NE(std::string::npos, r.log.find("DXTCompressor::compressImage: Invalid pixel format "
                                            "(6407 -- must be rgba). " + refusal)) << r.log;
}

TEST(DXTCompressorImage, AlreadyCompressedImages)
{
    const std::string refusal = "Boldly refusing to compress it.\n";
    // DXT1 images return at once, unchanged
    osg::ImagePtr image = makeImage(kRGB, 8, 8);
    bool ok = false;
    compressWithLog(image, DXTCompressor::DXT1, ok);
    const Bytes before(image->getData(), image->getData() + image->getSize());
    compressWithLog(image, DXTCompressor::DXT5, ok);
    EXPECT_TRUE(ok);
    EXPECT_EQ(33776u, image->getPixelFormat());
    EXPECT_EQ(before, Bytes(image->getData(), image->getData() + image->getSize()));
    osg::subRefCP(image);

    // DXT5 counts as compressed, yet compressImage goes on and refuses it at
    // the pixel-format step
    osg::ImagePtr dxt5 = makeImage(kRGBA, 8, 8);
    compressWithLog(dxt5, DXTCompressor::DXT5, ok);
    ASSERT_TRUE(DXTCompressor::the().isDXTCompressed(dxt5));
    std::string log = compressWithLog(dxt5, DXTCompressor::DXT5, ok);
    EXPECT_FALSE(ok);
    EXPECT_NE(std::string::npos, log.find("DXTCompressor::compressImage: Invalid pixel format (33779 -- "
                                          "must be rgba). " + refusal)) << log;
    osg::subRefCP(dxt5);
}
