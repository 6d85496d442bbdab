// The DDS files of `corvane dxt`: header layout, blocks, row order.
#include <OpenSG/DXTCompressor.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>

#include <corvane/DDSWriter.h>

#include <gtest/gtest.h>

#include <cstring>
#include <sstream>

using namespace osg;

namespace
{

UInt32 u32(const std::string &s, size_t offset)
{
    UInt32 v = 0;
    for(int i = 3; i >= 0; --i)
        v = (v << 8) | UInt8(s[offset + i]);
    return v;
}

ImagePtr makeRGB(int width, int height)
{
    ImagePtr image = Image::create();
    addRefCP(image);
    beginEditCP(image);
    image->set(Image::OSG_RGB_PF, width, height);
    for(UInt32 i = 0; i < image->getSize(); ++i)
        image->editData()[i] = UInt8(i * 7);
    endEditCP(image);
    return image;
}

} // namespace

TEST(DDSWriter, WritesHeaderAndBlocks)
{
    ImagePtr image = makeRGB(8, 12);
    ASSERT_TRUE(DXTCompressor::the().compressImage(image, DXTCompressor::DXT5));

    std::ostringstream out;
    ASSERT_TRUE(corvane::writeDDS(image, out));
    const std::string dds = out.str();

    ASSERT_EQ(dds.size(), 4u + 124u + image->getSize());
    EXPECT_EQ(dds.substr(0, 4), "DDS ");
    EXPECT_EQ(u32(dds, 4), 124u);            // header size
    EXPECT_EQ(u32(dds, 8), 0x81007u);        // caps, height, width, pixel format, linear size
    EXPECT_EQ(u32(dds, 12), 12u);            // height
    EXPECT_EQ(u32(dds, 16), 8u);             // width
    EXPECT_EQ(u32(dds, 20), image->getSize());
    EXPECT_EQ(u32(dds, 76), 32u);            // pixel format size
    EXPECT_EQ(u32(dds, 80), 4u);             // FourCC flag
    EXPECT_EQ(dds.substr(84, 4), "DXT5");
    EXPECT_EQ(u32(dds, 108), 0x1000u);       // texture caps
    EXPECT_EQ(0, memcmp(dds.data() + 128, image->getData(), image->getSize()));
    subRefCP(image);
}

TEST(DDSWriter, RefusesUncompressedImages)
{
    ImagePtr image = makeRGB(4, 4);
    LogCapture log;
    std::ostringstream out;
    EXPECT_FALSE(corvane::writeDDS(image, out));
    EXPECT_FALSE(corvane::writeDDS(NullFC, out));
    EXPECT_TRUE(out.str().empty());
    subRefCP(image);
}

TEST(DDSWriter, FlipRowsReversesTheRows)
{
    ImagePtr image   = makeRGB(3, 4);
    ImagePtr flipped = corvane::flipRows(image);
    addRefCP(flipped);
    ASSERT_EQ(flipped->getHeight(), 4);
    for(int y = 0; y < 4; ++y)
        EXPECT_EQ(0, memcmp(flipped->getData() + y * 9, image->getData() + (3 - y) * 9, 9)) << y;
    subRefCP(flipped);
    subRefCP(image);
}
