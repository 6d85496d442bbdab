// The volume header parsers and voxel conversions, fed from memory.
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGNRRDCodec.h>
#include <OpenSG/OSGVolumeHeaders.h>

#include <gtest/gtest.h>

#include <bzlib.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

using namespace osg;

namespace
{

bool parseDAT(const std::string &text, DATHeader &header)
{
    return parseDATHeader(text.data(), text.size(), header);
}

bool parseMeta(const std::string &text, MetaImageHeader &header)
{
    return parseMetaImageHeader(text.data(), text.size(), header);
}

std::string valueOf(const VolumeHeaderEntries &entries, const std::string &key)
{
    for(const auto &e : entries)
        if(e.first == key)
            return e.second;
    return "<none>";
}

const std::string MinimalDAT = "ObjectFileName: v.raw\n"
                               "Resolution: 4 3 2\n"
                               "Format: UCHAR\n";

} // namespace

TEST(VolumeDATHeader, SplitsKeysVerbatimAndTrimsValues)
{
    VolumeHeaderEntries entries;
    const std::string   text = "ObjectFileName:   head.raw \r\n"
                               "Resolution : 1 2 3\n"
                               "no colon here\n"
                               "  Indented: x\n"
                               "Format:UCHAR";

    splitDATHeader(text.data(), text.size(), entries);

    ASSERT_EQ(entries.size(), 4u);
    EXPECT_EQ(valueOf(entries, "ObjectFileName"), "head.raw");
    // keys are not trimmed: these two are not the keys they look like
    EXPECT_EQ(valueOf(entries, "Resolution "), "1 2 3");
    EXPECT_EQ(valueOf(entries, "  Indented"), "x");
    EXPECT_EQ(valueOf(entries, "Format"), "UCHAR");
}

TEST(VolumeDATHeader, OverlongLineEndsTheHeader)
{
    VolumeHeaderEntries entries;
    const std::string   text = "A: 1\n" + std::string(1023, 'x') + "\nB: 2\n" +
                               std::string(1024, 'y') + "\nC: 3\n";

    splitDATHeader(text.data(), text.size(), entries);

    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].first, "A");
    EXPECT_EQ(entries[1].first, "B");
}

TEST(VolumeDATHeader, InterpretsTheKnownKeys)
{
    DATHeader header;

    ASSERT_TRUE(parseDAT(MinimalDAT, header));
    EXPECT_EQ(header.objectFileName, "v.raw");
    EXPECT_EQ(header.layout.width, 4u);
    EXPECT_EQ(header.layout.height, 3u);
    EXPECT_EQ(header.layout.depth, 2u);
    EXPECT_EQ(header.layout.element, VolumeUInt8);
    EXPECT_EQ(header.layout.channels, 1u);
    EXPECT_TRUE(header.layout.bigEndian) << "big endian is the default";
    EXPECT_FALSE(header.layout.hasSpacing);
    EXPECT_EQ(header.fileOffset, 0u);

    ASSERT_TRUE(parseDAT(MinimalDAT + "Format: USHORT\nEndian: LITTLE\n"
                         "Channel: 3\nFileOffset: 17\n"
                         "SliceThickness: 1 1 2.5\n", header));
    EXPECT_EQ(header.layout.element, VolumeUInt16) << "the last Format wins";
    EXPECT_FALSE(header.layout.bigEndian);
    EXPECT_EQ(header.layout.channels, 3u);
    EXPECT_EQ(header.fileOffset, 17u);
    EXPECT_TRUE(header.layout.hasSpacing);
    EXPECT_DOUBLE_EQ(header.layout.spacing[2], 2.5);

    // numbers are read as scanf reads them: trailing text is ignored
    ASSERT_TRUE(parseDAT("ObjectFileName: v\nFormat: UCHAR\n"
                         "Resolution: 5 6 7voxels\n", header));
    EXPECT_EQ(header.layout.depth, 7u);

    // Endian is exact and case-sensitive; Channel outside 2..4 is one
    ASSERT_TRUE(parseDAT(MinimalDAT + "Endian: little\nChannel: 7\n", header));
    EXPECT_TRUE(header.layout.bigEndian);
    EXPECT_EQ(header.layout.channels, 1u);

    const struct { const char *name; VolumeElement element; } formats[] = {
        {"UINT", VolumeUInt32}, {"ULONG", VolumeUInt32},
        {"FLOAT", VolumeFloat32}, {"DOUBLE", VolumeFloat64}};
    for(const auto &f : formats)
    {
        ASSERT_TRUE(parseDAT(MinimalDAT + "Format: " + f.name + "\n", header))
            << f.name;
        EXPECT_EQ(header.layout.element, f.element) << f.name;
        EXPECT_EQ(header.formatDouble, f.element == VolumeFloat64);
    }
}

TEST(VolumeDATHeader, RefusesWithTheDATMessages)
{
    DATHeader  header;
    LogCapture log(LOG_NOTICE);

    EXPECT_FALSE(parseDAT("Resolution: 1 1 1\nFormat: UCHAR\n", header));
    EXPECT_NE(log.take().find("Invalid/Missing DAT ObjectFileName"),
              std::string::npos);

    const char *resolutions[] = {"", "4 3", "4 0 2", "4 -3 2", "4x3x2",
                                 "4, 3, 2", "99999999999 1 1"};
    for(const char *r : resolutions)
    {
        EXPECT_FALSE(parseDAT(std::string("ObjectFileName: v\nFormat: UCHAR\n"
                                          "Resolution: ") + r + "\n", header))
            << r;
        EXPECT_NE(log.take().find("Invalid/Missing DAT Resolution"),
                  std::string::npos) << r;
    }

    EXPECT_FALSE(parseDAT("ObjectFileName: v\nResolution: 1 1 1\n"
                          "Format: uchar\n", header));
    EXPECT_NE(log.take().find("Invalid/Missing DAT Format"), std::string::npos);

    EXPECT_FALSE(parseDAT(MinimalDAT + "FileOffset: -4\n", header));
    EXPECT_NE(log.take().find("FileOffset"), std::string::npos);

    // edges that are valid on their own but whose product is absurd
    EXPECT_FALSE(parseDAT("ObjectFileName: v\nFormat: USHORT\n"
                          "Resolution: 2147483647 2147483647 2147483647\n",
                          header));
    EXPECT_NE(log.take().find("larger than"), std::string::npos);

    EXPECT_TRUE(parseDAT(MinimalDAT + "GridType: EQUIDISTANT\n", header));
    EXPECT_NE(log.take().find("Uknown DAT file key: >GridType<"),
              std::string::npos);
}

TEST(VolumeDATHeader, WriterHeaderHasTheClassicLayout)
{
    VolumeLayout layout;
    layout.width      = 256;
    layout.height     = 256;
    layout.depth      = 113;
    layout.element    = VolumeUInt16;
    layout.bigEndian  = true;
    layout.spacing[2] = 2.5;

    EXPECT_EQ(formatDATHeader("head.raw", layout),
              "ObjectFileName: head.raw\n"
              "TaggedFileName: ---\n"
              "Resolution:     256 256 113\n"
              "SliceThickness: 1 1 2.5\n"
              "Format:         USHORT\n"
              "NbrTags:        0\n"
              "ObjectType:     TEXTURE_VOLUME_OBJECT\n"
              "ObjectModel:    DENSITY\n"
              "GridType:       EQUIDISTANT\n");

    layout.bigEndian = false;
    layout.channels  = 2;
    const std::string little = formatDATHeader("head.raw", layout);
    EXPECT_NE(little.find("Endian:         LITTLE\n"), std::string::npos);
    EXPECT_NE(little.find("Channel: 2\n"), std::string::npos);

    DATHeader back;
    ASSERT_TRUE(parseDAT(little, back));
    EXPECT_EQ(back.layout.channels, 2u);
    EXPECT_FALSE(back.layout.bigEndian);
    EXPECT_EQ(back.layout.element, VolumeUInt16);

    layout.element = VolumeInt16; // no DAT format for signed data
    EXPECT_EQ(formatDATHeader("x.raw", layout), "");
}

TEST(VolumeMetaImageHeader, ParsesAHeaderAndFindsTheData)
{
    const std::string head = "ObjectType = Image\r\n"
                             "NDims = 3\n"
                             "BinaryData = True\n"
                             "binarydatabyteordermsb = TRUE\n"
                             "ElementSpacing = 0.5 0.5 2\n"
                             "DimSize = 5 4 3\n"
                             "ElementNumberOfChannels = 2\n"
                             "ElementType = MET_SHORT\n"
                             "ElementDataFile = LOCAL\n";
    MetaImageHeader header;

    ASSERT_TRUE(parseMeta(head + "\x01\x02\x03 binary", header));
    EXPECT_TRUE(header.local);
    EXPECT_EQ(header.headerLength, head.size());
    EXPECT_EQ(header.layout.width, 5u);
    EXPECT_EQ(header.layout.height, 4u);
    EXPECT_EQ(header.layout.depth, 3u);
    EXPECT_EQ(header.layout.channels, 2u);
    EXPECT_EQ(header.layout.element, VolumeInt16);
    EXPECT_TRUE(header.layout.bigEndian);
    EXPECT_TRUE(header.layout.hasSpacing);
    EXPECT_DOUBLE_EQ(header.layout.spacing[0], 0.5);
    EXPECT_DOUBLE_EQ(header.layout.spacing[2], 2.0);

    ASSERT_TRUE(parseMeta("NDims = 2\nDimSize = 7 6\nElementType = MET_UCHAR\n"
                          "HeaderSize = -1\nCompressedData = True\n"
                          "CompressedDataSize = 99\n"
                          "ElementDataFile = slice.zraw\n", header));
    EXPECT_FALSE(header.local);
    EXPECT_EQ(header.dataFile, "slice.zraw");
    EXPECT_EQ(header.layout.depth, 1u);
    EXPECT_FALSE(header.layout.bigEndian);
    EXPECT_EQ(header.headerSize, -1);
    EXPECT_TRUE(header.compressed);
    EXPECT_EQ(header.compressedSize, 99u);
}

TEST(VolumeMetaImageHeader, RefusesWhatItCanNotRead)
{
    const std::string ok = "NDims = 3\nDimSize = 2 2 2\nElementType = MET_UCHAR\n";
    const char *bad[] = {
        "DimSize = 2 2 2\nElementType = MET_UCHAR\nElementDataFile = LOCAL\n",
        "NDims = 3\nDimSize = 2 2\nElementType = MET_UCHAR\nElementDataFile = LOCAL\n",
        "NDims = 3\nDimSize = 2 -2 2\nElementType = MET_UCHAR\nElementDataFile = LOCAL\n",
        "NDims = 5\nDimSize = 2 2 2 2 2\nElementType = MET_UCHAR\nElementDataFile = LOCAL\n",
        "NDims = 3\nDimSize = 2 2 2\nElementType = MET_INT\nElementDataFile = LOCAL\n",
        "NDims = 3\nDimSize = 2 2 2\nElementDataFile = LOCAL\n",
        "NDims = 3\nDimSize = 65536 65536 65536\nElementType = MET_UCHAR\nElementDataFile = LOCAL\n",
        "ObjectType = Scene\nNDims = 3\nDimSize = 2 2 2\nElementType = MET_UCHAR\nElementDataFile = LOCAL\n",
    };
    MetaImageHeader header;
    LogCapture      log;

    for(const char *text : bad)
    {
        EXPECT_FALSE(parseMeta(text, header)) << text;
        EXPECT_NE(log.take().find("MetaImage"), std::string::npos) << text;
    }

    EXPECT_FALSE(parseMeta(ok, header)) << "no ElementDataFile";
    EXPECT_FALSE(parseMeta(ok + "ElementDataFile = LIST\n", header));
    EXPECT_FALSE(parseMeta(ok + "ElementDataFile = s%03d.raw 1 9 1\n", header));
    EXPECT_FALSE(parseMeta(ok + "BinaryData = False\nElementDataFile = LOCAL\n",
                           header));
    EXPECT_FALSE(parseMeta("garbage without equals\n" + ok +
                           "ElementDataFile = LOCAL\n", header));
    EXPECT_TRUE(parseMeta(ok + "ElementDataFile = LOCAL\n", header));
}

TEST(VolumeConversion, DecodesEveryElementTypeToHostOrder)
{
    VolumeLayout layout;
    layout.width  = 2;
    layout.height = 1;
    layout.depth  = 1;

    auto decode = [&](VolumeElement element, bool big,
                      const std::vector<UInt8> &src) {
        layout.element   = element;
        layout.bigEndian = big;
        std::vector<UInt8> dst(2 * volumeImageComponentSize(element));
        EXPECT_TRUE(decodeVolumeData(layout, src.data(), src.size(),
                                     dst.data(), dst.size()));
        return dst;
    };
    auto u16 = [](const std::vector<UInt8> &d, int i) {
        UInt16 v; std::memcpy(&v, &d[2 * i], 2); return v; };
    auto f32 = [](const std::vector<UInt8> &d, int i) {
        float v; std::memcpy(&v, &d[4 * i], 4); return v; };

    std::vector<UInt8> d = decode(VolumeUInt16, true, {0x12, 0x34, 0xAB, 0xCD});
    EXPECT_EQ(u16(d, 0), 0x1234);
    EXPECT_EQ(u16(d, 1), 0xABCD);
    d = decode(VolumeUInt16, false, {0x12, 0x34, 0xAB, 0xCD});
    EXPECT_EQ(u16(d, 0), 0x3412);

    // signed values keep their order: -32768 -> 0, -2 -> 32766, 256 -> 33024
    d = decode(VolumeInt16, true, {0xFF, 0xFE, 0x01, 0x00});
    EXPECT_EQ(u16(d, 0), 32766);
    EXPECT_EQ(u16(d, 1), 33024);
    d = decode(VolumeInt8, false, {0x80, 0x7F});
    EXPECT_EQ(d[0], 0);
    EXPECT_EQ(d[1], 255);

    d = decode(VolumeFloat32, true, {0x3F, 0xC0, 0, 0, 0xC0, 0x20, 0, 0});
    EXPECT_EQ(f32(d, 0), 1.5f);
    EXPECT_EQ(f32(d, 1), -2.5f);

    // doubles are narrowed; beyond float range they saturate
    d = decode(VolumeFloat64, false,
               {0, 0, 0, 0, 0, 0, 0xF8, 0x3F,                      // 1.5
                0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xEF, 0x7F}); // DBL_MAX
    EXPECT_EQ(f32(d, 0), 1.5f);
    EXPECT_TRUE(std::isinf(f32(d, 1)));
    d = decode(VolumeFloat64, true, {0x47, 0xEF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                                     0xC7, 0xEF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF});
    EXPECT_TRUE(std::isinf(f32(d, 0)) && f32(d, 0) > 0);
    EXPECT_TRUE(std::isinf(f32(d, 1)) && f32(d, 1) < 0);

    // too little input or output is refused before anything is written
    layout.element = VolumeUInt16;
    std::vector<UInt8> src(3), dst(4, 0x55);
    EXPECT_FALSE(decodeVolumeData(layout, src.data(), src.size(), dst.data(),
                                  dst.size()));
    EXPECT_EQ(dst, std::vector<UInt8>(4, 0x55));
}

TEST(VolumeConversion, EncodeIsTheInverseOfDecode)
{
    VolumeLayout layout;
    layout.width  = 3;
    layout.height = 2;
    layout.depth  = 2;

    for(VolumeElement element : {VolumeUInt8, VolumeUInt16, VolumeUInt32,
                                 VolumeFloat32})
    {
        for(bool big : {false, true})
        {
            layout.element   = element;
            layout.bigEndian = big;

            std::vector<UInt8> image(12 * volumeElementSize(element));
            for(size_t i = 0; i < image.size(); ++i)
                image[i] = UInt8(i * 37 + 11);

            std::vector<UInt8> file, back(image.size());
            ASSERT_TRUE(encodeVolumeData(layout, image.data(), image.size(), file));
            ASSERT_EQ(file.size(), image.size());
            if(volumeElementSize(element) > 1)
            {
                EXPECT_EQ(file[0], big ? image[volumeElementSize(element) - 1]
                                       : image[0]);
            }
            ASSERT_TRUE(decodeVolumeData(layout, file.data(), file.size(),
                                         back.data(), back.size()));
            EXPECT_EQ(back, image);
        }
    }

    layout.element = VolumeInt16;
    std::vector<UInt8> out, image(24);
    EXPECT_FALSE(encodeVolumeData(layout, image.data(), image.size(), out));
}

TEST(VolumeConversion, ByteCountsRefuseOverflowAndHugeVolumes)
{
    VolumeLayout layout;
    UInt64       fileBytes = 0, imageBytes = 0;
    LogCapture   log;

    layout.width = layout.height = 512;
    layout.depth   = 1023;
    layout.element = VolumeFloat64;
    ASSERT_TRUE(volumeByteCounts(layout, fileBytes, imageBytes, "t"));
    EXPECT_EQ(fileBytes, UInt64(512 * 512 * 1023) * 8);
    EXPECT_EQ(imageBytes, UInt64(512 * 512 * 1023) * 4);
    // the doubles of the file count against the budget, although their
    // floats would fit
    layout.depth = 1024;
    EXPECT_FALSE(volumeByteCounts(layout, fileBytes, imageBytes, "t"));
    EXPECT_NE(log.take().find("larger than the 2147483647 bytes allowed"), std::string::npos);

    layout.element = VolumeUInt8;
    layout.width = layout.height = layout.depth = 1u << 31;
    EXPECT_FALSE(volumeByteCounts(layout, fileBytes, imageBytes, "t"));
    layout.width  = 0x7FFFFFFF;
    layout.height = layout.depth = 1;
    EXPECT_TRUE(volumeByteCounts(layout, fileBytes, imageBytes, "t"))
        << "exactly the budget of Image";
    layout.width = 0x80000000u;
    EXPECT_FALSE(volumeByteCounts(layout, fileBytes, imageBytes, "t"));
    layout.width    = 65535;
    layout.depth    = 1;
    layout.channels = 5;
    EXPECT_FALSE(volumeByteCounts(layout, fileBytes, imageBytes, "t"));
    layout.channels = 1;
    layout.height   = 0;
    EXPECT_FALSE(volumeByteCounts(layout, fileBytes, imageBytes, "t"));
}

TEST(VolumeConversion, DecompressionNeedsTheWholeStreamAndGrowsWithIt)
{
    std::vector<UInt8> data(5000);
    for(size_t i = 0; i < data.size(); ++i)
        data[i] = UInt8((i * i) >> 3);

    std::vector<UInt8> packed, back;
    ASSERT_TRUE(deflateVolumeData(data.data(), data.size(), packed));
    ASSERT_TRUE(decompressVolumeData(VolumeZlib, packed.data(), packed.size(), 0,
                                     data.size(), back));
    EXPECT_EQ(back, data);

    // a skip drops the first bytes, fewer wanted than there are is fine
    ASSERT_TRUE(decompressVolumeData(VolumeZlib, packed.data(), packed.size(), 1000, 10,
                                     back));
    EXPECT_EQ(back, std::vector<UInt8>(data.begin() + 1000, data.begin() + 1010));

    LogCapture log;
    EXPECT_FALSE(decompressVolumeData(VolumeZlib, packed.data(), packed.size() / 2, 0,
                                      data.size(), back));
    EXPECT_TRUE(back.empty());
    std::vector<UInt8> corrupt = packed;
    corrupt[corrupt.size() / 2] ^= 0xFF;
    corrupt[corrupt.size() / 2 + 1] ^= 0x5A;
    EXPECT_FALSE(decompressVolumeData(VolumeZlib, corrupt.data(), corrupt.size(), 0,
                                      data.size(), back));
    EXPECT_FALSE(decompressVolumeData(VolumeZlib, packed.data(), packed.size(), 0,
                                      data.size() + 1, back));
    EXPECT_FALSE(decompressVolumeData(VolumeZlib, packed.data(), packed.size(), 1,
                                      data.size(), back));
    EXPECT_NE(log.take().find("zlib data gave 4999 of 5000 bytes (too short)"),
              std::string::npos);

    // a promise of 1 GiB over three bytes costs three bytes' worth
    EXPECT_FALSE(decompressVolumeData(VolumeZlib, packed.data(), 3, 0, UInt64(1) << 30,
                                      back));
    EXPECT_EQ(back.capacity(), 0u);

    // bzip2, and streams that follow one another (gzip members)
    std::vector<UInt8> bz(6000);
    unsigned int       bzSize = unsigned(bz.size());
    ASSERT_EQ(BZ2_bzBuffToBuffCompress(reinterpret_cast<char *>(bz.data()), &bzSize,
                                       reinterpret_cast<char *>(data.data()),
                                       unsigned(data.size()), 9, 0, 0),
              BZ_OK);
    bz.resize(bzSize);
    ASSERT_TRUE(decompressVolumeData(VolumeBzip2, bz.data(), bz.size(), 0, data.size(), back));
    EXPECT_EQ(back, data);
    std::vector<UInt8> twice = bz;
    twice.insert(twice.end(), bz.begin(), bz.end());
    ASSERT_TRUE(decompressVolumeData(VolumeBzip2, twice.data(), twice.size(), 4000, 2000,
                                     back));
    EXPECT_EQ(back[999], data[4999]);
    EXPECT_EQ(back[1000], data[0]);
    EXPECT_FALSE(decompressVolumeData(VolumeBzip2, packed.data(), packed.size(), 0, 1, back));
}

TEST(VolumeConversion, SliceThicknessText)
{
    const Real64 s[3] = {1.0, 1.0, 2.5};
    EXPECT_EQ(formatSliceThickness(s), "1 1 2.5");
    const Real64 t[3] = {0.3333333333, 1e-7, 1234567.0};
    EXPECT_EQ(formatSliceThickness(t), "0.333333 1e-07 1.23457e+06");

    Real64 r[3];
    EXPECT_TRUE(parseSliceThickness(" 0.5 0.5 3", r));
    EXPECT_DOUBLE_EQ(r[2], 3.0);
    EXPECT_FALSE(parseSliceThickness("2 -1", r));
    EXPECT_DOUBLE_EQ(r[0], 2.0);
    EXPECT_DOUBLE_EQ(r[1], 1.0);
    EXPECT_DOUBLE_EQ(r[2], 1.0);
}

// --- NRRD through Teem, from memory ------------------------------------------

namespace
{

std::string nrrdText(const std::string &fields, const std::string &data)
{
    return "NRRD0004\n" + fields + "\n" + data;
}

bool readNrrdText(const std::string &text, VolumeLayout &layout,
                  std::vector<UInt8> &voxels)
{
    return readNRRD(reinterpret_cast<const UInt8 *>(text.data()), text.size(),
                    layout, voxels);
}

} // namespace

TEST(VolumeNRRDMemory, ReadsBothByteOrdersAndSignedData)
{
    VolumeLayout       layout;
    std::vector<UInt8> voxels;
    const std::string  fields = "type: ushort\ndimension: 3\nsizes: 2 1 1\n"
                                "spacings: 0.5 1 3\nencoding: raw\n";

    ASSERT_TRUE(readNrrdText(nrrdText(fields + "endian: big\n",
                                      std::string("\x12\x34\xAB\xCD", 4)),
                             layout, voxels));
    ASSERT_EQ(voxels.size(), 4u);
    UInt16 v[2];
    std::memcpy(v, voxels.data(), 4);
    EXPECT_EQ(v[0], 0x1234);
    EXPECT_EQ(v[1], 0xABCD);
    EXPECT_EQ(layout.element, VolumeUInt16);
    EXPECT_TRUE(layout.hasSpacing);
    EXPECT_DOUBLE_EQ(layout.spacing[0], 0.5);
    EXPECT_DOUBLE_EQ(layout.spacing[2], 3.0);

    ASSERT_TRUE(readNrrdText(nrrdText(fields + "endian: little\n",
                                      std::string("\x12\x34\xAB\xCD", 4)),
                             layout, voxels));
    std::memcpy(v, voxels.data(), 4);
    EXPECT_EQ(v[0], 0x3412);

    ASSERT_TRUE(readNrrdText(nrrdText("type: short\ndimension: 3\nsizes: 2 1 1\n"
                                      "endian: big\nencoding: raw\n",
                                      std::string("\xFF\xFE\x01\x00", 4)),
                             layout, voxels));
    std::memcpy(v, voxels.data(), 4);
    EXPECT_EQ(layout.element, VolumeInt16);
    EXPECT_EQ(v[0], 32766);
    EXPECT_EQ(v[1], 33024);
    EXPECT_FALSE(layout.hasSpacing);
}

TEST(VolumeNRRDMemory, ChannelsOnTheFirstAxis)
{
    VolumeLayout       layout;
    std::vector<UInt8> voxels;

    ASSERT_TRUE(readNrrdText(nrrdText("type: uchar\ndimension: 4\n"
                                      "sizes: 2 3 1 1\nencoding: raw\n",
                                      "abcdef"), layout, voxels));
    EXPECT_EQ(layout.channels, 2u);
    EXPECT_EQ(layout.width, 3u);
    EXPECT_EQ(layout.depth, 1u);

    ASSERT_TRUE(readNrrdText(nrrdText("type: uchar\ndimension: 3\n"
                                      "sizes: 3 2 1\nkinds: RGB-color domain "
                                      "domain\nencoding: raw\n", "abcdef"),
                             layout, voxels));
    EXPECT_EQ(layout.channels, 3u);
    EXPECT_EQ(layout.width, 2u);

    // without a kind a small first axis is space, not colour
    ASSERT_TRUE(readNrrdText(nrrdText("type: uchar\ndimension: 3\n"
                                      "sizes: 3 2 1\nencoding: raw\n", "abcdef"),
                             layout, voxels));
    EXPECT_EQ(layout.channels, 1u);
    EXPECT_EQ(layout.width, 3u);
    EXPECT_EQ(voxels, std::vector<UInt8>({'a', 'b', 'c', 'd', 'e', 'f'}));
}

TEST(VolumeNRRDMemory, RefusesBeforeAllocatingOrOpeningFiles)
{
    VolumeLayout       layout;
    std::vector<UInt8> voxels;
    LogCapture         log;

    // 2^33 voxels: refused from the header, before Teem allocates
    EXPECT_FALSE(readNrrdText(nrrdText("type: uchar\ndimension: 3\n"
                                       "sizes: 2048 2048 2048\nencoding: raw\n",
                                       "x"), layout, voxels));
    EXPECT_NE(log.take().find("larger than"), std::string::npos);

    EXPECT_FALSE(readNrrdText(nrrdText("type: uchar\ndimension: 3\n"
                                       "sizes: 2 2 2\nData File: /etc/hostname\n",
                                       ""), layout, voxels));
    EXPECT_NE(log.take().find("detached"), std::string::npos);

    // the magic must be the whole first line, or Teem tries its other
    // readers (plain text, PNM) on the data
    for(const char *text : {"P5 2 2 255\nabcd", "NRRD0004nan: 1\n\n1 2\n",
                            "NRRD0004 \ntype: uchar\n", "NRRD0004"})
    {
        EXPECT_FALSE(readNrrdText(text, layout, voxels)) << text;
        EXPECT_NE(log.take().find("magic"), std::string::npos) << text;
    }

    EXPECT_FALSE(readNrrdText(nrrdText("type: uchar\ndimension: 3\n"
                                       "sizes: 4 4 4\nencoding: raw\n",
                                       "too short"), layout, voxels));
    EXPECT_NE(log.take().find("NRRD:"), std::string::npos);

    EXPECT_FALSE(readNrrdText(nrrdText("type: int\ndimension: 1\n"
                                       "sizes: 1\nencoding: raw\n", "abcd"),
                              layout, voxels));
    EXPECT_FALSE(readNrrdText(nrrdText("type: uchar\ndimension: 5\n"
                                       "sizes: 1 1 1 1 1\nencoding: raw\n", "a"),
                              layout, voxels));
    EXPECT_FALSE(readNrrdText(nrrdText("type: uchar\ndimension: 3\n"
                                       "sizes: 2 2 -2\nencoding: raw\n", "abcdefgh"),
                              layout, voxels));

    // the header alone reads without any voxels
    const std::string header = nrrdText("type: float\ndimension: 3\n"
                                        "sizes: 800 800 800\nendian: little\n"
                                        "encoding: gzip\n",
                                        "");
    EXPECT_TRUE(readNRRDHeader(reinterpret_cast<const UInt8 *>(header.data()),
                               header.size(), layout));
    EXPECT_EQ(layout.depth, 800u);
}
