// The PNG codec against files that libpng itself writes and reads, plus
// truncated, corrupted and hostile input.
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGPNGCodec.h>

#include <png.h>
#include <zlib.h>

#include <gtest/gtest.h>
#include <image/PNGChunks.h>

#include <cstdio>
#include <sstream>
#include <streambuf>
#include <string>
#include <tuple>
#include <unistd.h>
#include <support/ScratchDir.h>

using namespace osg;

namespace
{

PNGPixels makePixels(UInt32 w, UInt32 h, UInt32 channels, UInt32 depth)
{
    PNGPixels p;
    p.width    = w;
    p.height   = h;
    p.channels = channels;
    p.bitDepth = depth;
    p.data.resize(size_t(w) * h * channels * depth / 8);
    UInt32 seed = 12345 + channels * 7 + depth;
    for(UInt8 &b : p.data) // full byte range, so 0x00 and 0xFF words occur
        b = UInt8((seed = seed * 1103515245u + 12345u) >> 23);
    p.data[0] = 0x00;
    p.data.back() = 0xFF;
    return p;
}

std::string encode(const PNGPixels &p)
{
    std::ostringstream out;
    EXPECT_TRUE(writePNG(out, p));
    return out.str();
}

bool decode(const std::string &bytes, PNGPixels &p)
{
    std::istringstream in(bytes);
    return readPNG(in, p);
}

void expectSame(const PNGPixels &a, const PNGPixels &b)
{
    EXPECT_EQ(a.width, b.width);
    EXPECT_EQ(a.height, b.height);
    EXPECT_EQ(a.channels, b.channels);
    EXPECT_EQ(a.bitDepth, b.bitDepth);
    EXPECT_EQ(a.pixelsPerMeterX, b.pixelsPerMeterX);
    EXPECT_EQ(a.pixelsPerMeterY, b.pixelsPerMeterY);
    EXPECT_TRUE(a.data == b.data);
}

// A file as an independent encoder writes it: rows top first, samples
// big-endian, optional palette, tRNS and interlacing.
struct RawPNG
{
    UInt32                 width = 0, height = 0;
    int                    bitDepth = 8, colorType = PNG_COLOR_TYPE_GRAY;
    int                    interlace = PNG_INTERLACE_NONE;
    std::vector<png_color> palette;
    std::vector<UInt8>     trnsAlpha;       // palette transparency
    bool                   trnsColor = false;
    png_color_16           trnsValue = {};
    std::vector<std::vector<UInt8>> rows;   // packed file rows, top first
};

void PNGCBAPI appendToString(png_structp png, png_bytep d, png_size_t n)
{
    static_cast<std::string *>(png_get_io_ptr(png))
        ->append(reinterpret_cast<char *>(d), n);
}

std::string writeRaw(const RawPNG &r)
{
    std::string out;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr,
                                              nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    if(setjmp(png_jmpbuf(png)))
    {
        ADD_FAILURE() << "libpng refused the test image";
        png_destroy_write_struct(&png, &info);
        return std::string();
    }
    png_set_write_fn(png, &out, appendToString, nullptr);
    png_set_IHDR(png, info, r.width, r.height, r.bitDepth, r.colorType,
                 r.interlace, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    if(!r.palette.empty())
        png_set_PLTE(png, info, r.palette.data(), int(r.palette.size()));
    if(!r.trnsAlpha.empty())
        png_set_tRNS(png, info, r.trnsAlpha.data(), int(r.trnsAlpha.size()),
                     nullptr);
    if(r.trnsColor)
        png_set_tRNS(png, info, nullptr, 0, &r.trnsValue);
    png_write_info(png, info);
    std::vector<png_bytep> rows;
    for(const auto &row : r.rows)
        rows.push_back(const_cast<png_bytep>(row.data()));
    png_write_image(png, rows.data());
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return out;
}

// Chunk types in file order, for checking what the writer emits.
std::vector<std::string> chunkTypes(const std::string &f)
{
    std::vector<std::string> types;
    for(size_t pos = 8; pos + 8 <= f.size();)
    {
        const UInt32 len = UInt32(UInt8(f[pos])) << 24 |
                           UInt32(UInt8(f[pos + 1])) << 16 |
                           UInt32(UInt8(f[pos + 2])) << 8 | UInt8(f[pos + 3]);
        types.push_back(f.substr(pos + 4, 4));
        pos += 12 + size_t(len);
    }
    return types;
}

// A well-formed header for any size, with an empty IDAT behind it.
std::string headerOnlyPNG(UInt32 w, UInt32 h)
{
    std::string s = pngchunks::rgbaHead(w, h);
    pngchunks::putChunk(s, "IDAT", std::string());
    pngchunks::putChunk(s, "IEND", std::string());
    return s;
}

} // namespace

class PNGRoundTrip
    : public ::testing::TestWithParam<std::tuple<UInt32, UInt32>>
{
};

TEST_P(PNGRoundTrip, MemoryAndFileAreBitExact)
{
    const UInt32 channels = std::get<0>(GetParam());
    const UInt32 depth    = std::get<1>(GetParam());

    // Odd sizes catch row-stride mistakes; 1-pixel-wide images catch
    // off-by-one row indexing.
    for(auto size : {std::make_pair(7u, 5u), std::make_pair(1u, 3u)})
    {
        PNGPixels src = makePixels(size.first, size.second, channels, depth);
        src.pixelsPerMeterX = 3780;
        src.pixelsPerMeterY = 2835;

        PNGPixels viaMemory;
        ASSERT_TRUE(decode(encode(src), viaMemory));
        expectSame(viaMemory, src);

        const std::string file = corvanetest::scratchPath("png_roundtrip.png");
        PNGPixels viaFile;
        ASSERT_TRUE(writePNGFile(file.c_str(), src));
        ASSERT_TRUE(readPNGFile(file.c_str(), viaFile));
        std::remove(file.c_str());
        expectSame(viaFile, src);
    }
}

INSTANTIATE_TEST_SUITE_P(AllLayouts, PNGRoundTrip,
                         ::testing::Combine(::testing::Values(1u, 2u, 3u, 4u),
                                            ::testing::Values(8u, 16u)));

TEST(PNGFileLayout, FileIsUprightBigEndianWithPhysBeforeIdat)
{
    // One 16-bit grey column: data row y holds 0x0100 * (y + 1) + 0x34.
    PNGPixels src;
    src.width = 1, src.height = 3, src.channels = 1, src.bitDepth = 16;
    for(UInt16 v : {UInt16(0x0134), UInt16(0x0234), UInt16(0x0334)})
        src.data.insert(src.data.end(), reinterpret_cast<UInt8 *>(&v),
                        reinterpret_cast<UInt8 *>(&v) + 2);
    const std::string f = encode(src);

    EXPECT_EQ(chunkTypes(f),
              (std::vector<std::string>{"IHDR", "pHYs", "IDAT", "IEND"}));

    // Decode without transformations: the top file row is the last data
    // row, and its bytes are big-endian.
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr,
                                             nullptr, nullptr);
    png_infop   info = png_create_info_struct(png);
    std::istringstream in(f);
    png_set_read_fn(png, &in, [](png_structp p, png_bytep d, png_size_t n) {
        static_cast<std::istream *>(png_get_io_ptr(p))
            ->read(reinterpret_cast<char *>(d), std::streamsize(n));
    });
    png_read_info(png, info);
    EXPECT_EQ(png_get_color_type(png, info), PNG_COLOR_TYPE_GRAY);
    EXPECT_EQ(png_get_bit_depth(png, info), 16);
    EXPECT_EQ(png_get_interlace_type(png, info), PNG_INTERLACE_NONE);
    EXPECT_EQ(png_get_x_pixels_per_meter(png, info), 2835u); // 72 dpi
    UInt8 rows[3][2];
    png_bytep rowPtrs[3] = {rows[0], rows[1], rows[2]};
    png_read_image(png, rowPtrs);
    png_destroy_read_struct(&png, &info, nullptr);
    EXPECT_EQ(rows[0][0], 0x03);
    EXPECT_EQ(rows[0][1], 0x34);
    EXPECT_EQ(rows[2][0], 0x01);

    // Bytes past the first image (more mip levels or frames) are ignored.
    PNGPixels longer = src, back;
    longer.data.resize(longer.data.size() + 10, 0xAB);
    ASSERT_TRUE(decode(encode(longer), back));
    EXPECT_TRUE(back.data == src.data);

    EXPECT_EQ(pngDpiToPixelsPerMeter(72.f), 2835u);
    EXPECT_EQ(pngDpiToPixelsPerMeter(300.f), 11811u);
    EXPECT_EQ(pngDpiToPixelsPerMeter(0.f), 0u);
    EXPECT_EQ(pngPixelsPerMeterToDpi(2835), 72.f);
    EXPECT_EQ(pngPixelsPerMeterToDpi(3780), 96.f);
}

TEST(PNGReadTransforms, PalettesAndLowBitGreyExpandToEightBit)
{
    RawPNG pal;
    pal.width = 3, pal.height = 2, pal.colorType = PNG_COLOR_TYPE_PALETTE;
    pal.bitDepth = 4;
    pal.palette = {{10, 20, 30}, {40, 50, 60}, {70, 80, 90}};
    pal.rows    = {{0x01, 0x20}, {0x22, 0x10}}; // top: 0 1 2, bottom: 2 2 1
    PNGPixels p;
    ASSERT_TRUE(decode(writeRaw(pal), p));
    EXPECT_EQ(p.channels, 3u);
    EXPECT_EQ(p.bitDepth, 8u);
    EXPECT_EQ(p.pixelsPerMeterX, 0u); // no pHYs chunk
    EXPECT_EQ(p.data, (std::vector<UInt8>{70, 80, 90, 70, 80, 90, 40, 50, 60,
                                          10, 20, 30, 40, 50, 60, 70, 80, 90}));

    // Entries beyond the tRNS list are opaque.
    pal.trnsAlpha = {0, 128};
    ASSERT_TRUE(decode(writeRaw(pal), p));
    EXPECT_EQ(p.channels, 4u);
    EXPECT_EQ(p.data, (std::vector<UInt8>{70, 80, 90, 255, 70, 80, 90, 255,
                                          40, 50, 60, 128, 10, 20, 30, 0,
                                          40, 50, 60, 128, 70, 80, 90, 255}));

    // 1-, 2- and 4-bit grey scale to the full 8-bit range. Ten pixels do not
    // fill whole bytes at 1 and 4 bits.
    const std::vector<UInt8> expect[3] = {
        {255, 0, 255, 0, 0, 0, 0, 0, 255, 255},
        {0, 85, 170, 255, 0, 85, 170, 255, 0, 85},
        {0, 17, 34, 51, 68, 85, 102, 119, 136, 255}};
    const std::vector<UInt8> packed[3] = {
        {0xA0, 0xC0}, {0x1B, 0x1B, 0x10}, {0x01, 0x23, 0x45, 0x67, 0x8F}};
    for(int i = 0; i < 3; ++i)
    {
        RawPNG grey;
        grey.width = 10, grey.height = 1, grey.bitDepth = 1 << i;
        grey.rows = {packed[i]};
        ASSERT_TRUE(decode(writeRaw(grey), p)) << "depth " << grey.bitDepth;
        EXPECT_EQ(p.channels, 1u);
        EXPECT_EQ(p.bitDepth, 8u);
        EXPECT_EQ(p.data, expect[i]) << "depth " << grey.bitDepth;
    }
}

TEST(PNGReadTransforms, ColourKeyBecomesAlphaAndInterlacingIsUndone)
{
    RawPNG grey;
    grey.width = 4, grey.height = 1;
    grey.trnsColor      = true;
    grey.trnsValue.gray = 7;
    grey.rows           = {{7, 8, 7, 255}};
    PNGPixels p;
    ASSERT_TRUE(decode(writeRaw(grey), p));
    EXPECT_EQ(p.channels, 2u);
    EXPECT_EQ(p.data, (std::vector<UInt8>{7, 0, 8, 255, 7, 0, 255, 255}));

    // Adam7, 16-bit RGBA, big-endian in the file, host order after reading.
    RawPNG il;
    il.width = 13, il.height = 11, il.bitDepth = 16;
    il.colorType = PNG_COLOR_TYPE_RGB_ALPHA;
    il.interlace = PNG_INTERLACE_ADAM7;
    for(UInt32 y = 0; y < il.height; ++y)
    {
        il.rows.emplace_back();
        for(UInt32 x = 0; x < il.width * 4; ++x)
        {
            const UInt16 v = UInt16(y * 4099 + x * 257 + 1);
            il.rows.back().push_back(UInt8(v >> 8));
            il.rows.back().push_back(UInt8(v));
        }
    }
    ASSERT_TRUE(decode(writeRaw(il), p));
    ASSERT_EQ(p.data.size(), size_t(13 * 11 * 4 * 2));
    const UInt16 *words = reinterpret_cast<const UInt16 *>(p.data.data());
    for(UInt32 y = 0; y < il.height; ++y)
        for(UInt32 x = 0; x < il.width * 4; ++x)
            ASSERT_EQ(words[(il.height - 1 - y) * il.width * 4 + x],
                      UInt16(y * 4099 + x * 257 + 1));
}

TEST(PNGReadErrors, TruncatedAndCorruptedFilesFailCleanly)
{
    const PNGPixels   src  = makePixels(5, 4, 4, 8);
    const std::string good = encode(src);
    PNGPixels         p;
    LogCapture        log;

    for(size_t len = 0; len < good.size(); ++len)
    {
        p = src;
        ASSERT_FALSE(decode(good.substr(0, len), p)) << "prefix " << len;
        EXPECT_TRUE(p.data.empty() && p.width == 0);
        EXPECT_NE(log.take().find("FATAL"), std::string::npos);
    }

    // Every single-byte corruption is caught by a CRC, the signature or a
    // structure check, except inside pHYs: an ancillary chunk with a bad
    // CRC is dropped with a warning and the image still reads.
    const size_t physData = good.find("pHYs") + 4;
    for(size_t pos = 0; pos < good.size(); ++pos)
    {
        std::string bad = good;
        bad[pos]        = char(bad[pos] ^ 0xFF);
        const bool ok   = decode(bad, p);
        if(pos >= physData && pos < physData + 13)
        {
            ASSERT_TRUE(ok) << "byte " << pos;
            EXPECT_TRUE(p.data == src.data);
            EXPECT_EQ(p.pixelsPerMeterX, 0u);
        }
        else
            ASSERT_FALSE(ok) << "byte " << pos;
    }

    // A stream that throws on failure must not throw through libpng.
    std::istringstream throwing(good.substr(0, good.size() / 2));
    throwing.exceptions(std::ios::failbit | std::ios::badbit | std::ios::eofbit);
    EXPECT_FALSE(readPNG(throwing, p));

    EXPECT_FALSE(decode("GIF89a", p));
    EXPECT_FALSE(readPNGFile("/nonexistent/dir/file.png", p));
}

TEST(PNGReadErrors, HugeHeadersAreRefusedBeforeAllocating)
{
    PNGPixels  p;
    LogCapture log;
    EXPECT_FALSE(decode(headerOnlyPNG(100000, 100000), p)); // 40 GB
    EXPECT_NE(log.take().find("larger than the 2147483647 bytes allowed"), std::string::npos);
    EXPECT_FALSE(decode(headerOnlyPNG(23171, 23171), p)); // just over 2 GiB
    EXPECT_NE(log.take().find("larger than the 2147483647 bytes allowed"), std::string::npos);
    // within the budget the rows that are not there cost nothing
    EXPECT_FALSE(decode(headerOnlyPNG(23170, 23170), p));
    EXPECT_EQ(log.take().find("larger than"), std::string::npos);
    EXPECT_FALSE(decode(headerOnlyPNG(0x7FFFFFFF, 1), p));
    EXPECT_FALSE(decode(headerOnlyPNG(0x80000000u, 1), p));
    EXPECT_FALSE(decode(headerOnlyPNG(0, 1), p));
}

namespace
{
// Accepts `room` bytes, then fails like a full disk.
struct FullDisk : std::streambuf
{
    explicit FullDisk(size_t room) : room(room) {}
    int_type overflow(int_type c) override
    {
        if(room == 0)
            return traits_type::eof();
        --room;
        return c;
    }
    size_t room;
};
} // namespace

TEST(PNGWriteErrors, BadInputAndFailingStreamsReturnFalse)
{
    const PNGPixels    good = makePixels(6, 6, 3, 8);
    std::ostringstream out;
    LogCapture         log;

    PNGPixels bad = good;
    bad.channels  = 5;
    EXPECT_FALSE(writePNG(out, bad));
    bad = good, bad.bitDepth = 4;
    EXPECT_FALSE(writePNG(out, bad));
    bad = good, bad.height = 0;
    EXPECT_FALSE(writePNG(out, bad));
    bad = good, bad.data.pop_back();
    EXPECT_FALSE(writePNG(out, bad));
    bad = good, bad.width = 0x40000000, bad.height = 0x40000000;
    EXPECT_FALSE(writePNG(out, bad)); // size overflows 64 bits
    EXPECT_TRUE(out.str().empty());

    const size_t full = encode(good).size();
    for(size_t room : {size_t(0), size_t(10), size_t(40), full - 1})
    {
        FullDisk     buf(room);
        std::ostream disk(&buf);
        EXPECT_FALSE(writePNG(disk, good)) << "room " << room;
    }
    FullDisk     buf(5);
    std::ostream throwing(&buf);
    throwing.exceptions(std::ios::badbit | std::ios::failbit);
    EXPECT_FALSE(writePNG(throwing, good));

    const std::string file = "/nonexistent/dir/out.png";
    EXPECT_FALSE(writePNGFile(file.c_str(), good));
}
