// Image: field layout, set/setData and the block layout, sizes of mip
// levels, the conversions (reformat, convertDataTypeTo, scale) byte for
// byte, the key/value store and the notification of the image's users.
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGImageGenericAtt.h>
#include <OpenSG/OSGImageUserTestCore.h>
#include <OpenSG/OSGFieldDescription.h>
#include <OpenSG/OSGChangeList.h>
#include <OpenSG/OSGThread.h>
#include <OpenSG/OSGLog.h>

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

using namespace osg;

namespace
{

/// A new image with a reference held by the test.
ImagePtr makeImage(void)
{
    ImagePtr image = Image::create();
    addRefCP(image);
    return image;
}

/// An image set from bytes, one level, frame and side.
ImagePtr makeImage(UInt32 format, Int32 w, Int32 h, const std::vector<UInt8> &bytes,
                   Int32 type = Image::OSG_UINT8_IMAGEDATA)
{
    ImagePtr image = makeImage();
    EXPECT_TRUE(image->set(format, w, h, 1, 1, 1, 0.0, bytes.data(), type));
    EXPECT_EQ(image->getSize(), bytes.size());
    return image;
}

std::vector<UInt8> bytesOf(const ImagePtr &image)
{
    const UInt8 *data = image->getData();
    return data != NULL ? std::vector<UInt8>(data, data + image->getSize())
                        : std::vector<UInt8>();
}

template <class T>
std::vector<UInt8> asBytes(const std::vector<T> &values)
{
    std::vector<UInt8> bytes(values.size() * sizeof(T));
    std::memcpy(bytes.data(), values.data(), bytes.size());
    return bytes;
}

template <class T>
std::vector<T> valuesOf(const ImagePtr &image)
{
    std::vector<T> values(image->getSize() / sizeof(T));
    std::memcpy(values.data(), image->getData(), values.size() * sizeof(T));
    return values;
}

std::vector<UInt16> halfBits(const ImagePtr &image)
{
    std::vector<UInt16> bits;
    for(Real16 h : valuesOf<Real16>(image))
        bits.push_back(h.bits());
    return bits;
}

} // namespace

// --- the container -------------------------------------------------------------

TEST(ImageFields, IdsMasksAndDefaultsAreOpenSGs)
{
    EXPECT_EQ(Image::ParentsFieldId, 2u);
    EXPECT_EQ(Image::PixelFormatFieldId, 11u);
    EXPECT_EQ(Image::PixelFieldId, 12u);
    EXPECT_EQ(Image::NameFieldId, 14u);
    EXPECT_EQ(Image::DataTypeFieldId, 15u);
    EXPECT_EQ(Image::SideCountFieldId, 17u);
    EXPECT_EQ(Image::ResUnitFieldId, 25u);
    EXPECT_EQ(Image::NextFieldId, 26u);
    EXPECT_EQ(Image::PixelFieldMask, BitVector(0x1000));
    EXPECT_EQ(Image::ResUnitFieldMask, BitVector(0x2000000));

    FieldContainerType &type = Image::getClassType();
    EXPECT_STREQ(type.getCName(), "Image");
    EXPECT_STREQ(type.getParent()->getCName(), "AttachmentContainer");
    EXPECT_TRUE(type.findFieldDescription("frameSize")->isInternal());
    EXPECT_TRUE(type.findFieldDescription("componentSize")->isInternal());
    EXPECT_TRUE(type.findFieldDescription("sideSize")->isInternal());
    EXPECT_FALSE(type.findFieldDescription("parents")->isInternal());

    ImagePtr image = makeImage();
    EXPECT_EQ(image->getDimension(), 0);
    EXPECT_EQ(image->getWidth(), 0);
    EXPECT_EQ(image->getHeight(), 1);
    EXPECT_EQ(image->getDepth(), 1);
    EXPECT_EQ(image->getBpp(), 1);
    EXPECT_EQ(image->getMipMapCount(), 1);
    EXPECT_EQ(image->getFrameCount(), 1);
    EXPECT_EQ(image->getSideCount(), 1);
    EXPECT_EQ(image->getPixelFormat(), UInt32(Image::OSG_INVALID_PF));
    EXPECT_EQ(image->getDataType(), GL_UNSIGNED_BYTE);
    EXPECT_FLOAT_EQ(image->getResX(), 72.f);
    EXPECT_EQ(image->getResUnit(), UInt16(Image::OSG_RESUNIT_INCH));
    EXPECT_EQ(image->getData(), (UInt8 *)NULL);
    EXPECT_FALSE(image->isValid());
    subRefCP(image);
}

// --- set and the block layout ----------------------------------------------------

TEST(ImageSet, ElevenArgumentsLayFramesSidesAndLevels)
{
    ImagePtr image = makeImage();
    ASSERT_TRUE(image->set(GL_RGBA, 4, 2, 1, 2, 3, 0.25, NULL, GL_HALF_FLOAT, true, 6));

    EXPECT_EQ(image->getBpp(), 8);
    EXPECT_EQ(image->getDimension(), 2);
    EXPECT_EQ(image->getDataType(), GL_HALF_FLOAT);
    EXPECT_DOUBLE_EQ(image->getFrameDelay(), 0.25);
    EXPECT_EQ(image->calcMipmapSumSize(1), 64u);   // 4 x 2 x 8
    EXPECT_EQ(image->getSideSize(), 80);           // + 2 x 1 x 8
    EXPECT_EQ(image->getFrameSize(), 480);         // six sides
    EXPECT_EQ(image->getSize(), 1440ul);           // three frames
    EXPECT_EQ(image->getSize(false), 64ul * 6 * 3);
    EXPECT_EQ(image->getSize(true, false, false), 80ul);
    EXPECT_EQ(image->getMFPixel()->size(), 1440u);

    // side, frame and level offsets: s * sideSize + f * frameSize + levels
    const UInt8 *base = image->getData();
    EXPECT_EQ(image->getData(1, 2, 3) - base, 3 * 80 + 2 * 480 + 64);
    EXPECT_EQ(image->getData(0, 1, 0) - base, 480);
    EXPECT_EQ(image->getDataFast(1, 2, 3), image->getData(1, 2, 3));

    // new storage is zero, half zero being +0.0
    std::vector<UInt8> bytes = bytesOf(image);
    EXPECT_EQ(std::count(bytes.begin(), bytes.end(), 0), 1440);
    subRefCP(image);
}

TEST(ImageSet, CopiesDataAndDerivesDimension)
{
    std::vector<UInt8> src(4 * 3 * 2 * 2);
    for(size_t i = 0; i < src.size(); ++i)
        src[i] = UInt8(i * 7 + 1);

    ImagePtr image = makeImage();
    ASSERT_TRUE(image->set(GL_LUMINANCE_ALPHA, 4, 3, 2, 1, 1, 0.0, src.data()));
    EXPECT_EQ(image->getDimension(), 3);
    EXPECT_EQ(bytesOf(image), src);

    ASSERT_TRUE(image->set(GL_LUMINANCE, 5));
    EXPECT_EQ(image->getDimension(), 1);
    ASSERT_TRUE(image->set(GL_LUMINANCE, 5, 2));
    EXPECT_EQ(image->getDimension(), 2);
    subRefCP(image);
}

TEST(ImageSet, TypeFallsBackToBytesAndCountsToOne)
{
    ImagePtr image = makeImage();
    ASSERT_TRUE(image->set(GL_RGB, 2, 2, 1, 1, 1, 0.0, NULL, GL_FLOAT));
    EXPECT_EQ(image->getBpp(), 12);

    ASSERT_TRUE(image->set(GL_RGB, 2, 2));
    EXPECT_EQ(image->getDataType(), GL_UNSIGNED_BYTE);
    EXPECT_EQ(image->getBpp(), 3);

    ASSERT_TRUE(image->set(GL_RGB, 2, 2, 1, 0, -3, 0.0, NULL, GL_UNSIGNED_BYTE, true, 0));
    EXPECT_EQ(image->getMipMapCount(), 1);
    EXPECT_EQ(image->getFrameCount(), 1);
    EXPECT_EQ(image->getSideCount(), 1);
    EXPECT_EQ(image->getSize(), 12ul);
    subRefCP(image);
}

TEST(ImageSet, ZeroEdgeMakesAnEmptyImage)
{
    ImagePtr image = makeImage();
    ASSERT_TRUE(image->set(GL_RGB, 4, 4));

    const Int32 edges[][3] = {{0, 4, 1}, {4, 0, 1}, {4, 4, 0}, {-2, 4, 1}};
    for(const auto &e : edges)
    {
        EXPECT_FALSE(image->set(GL_RGB, e[0], e[1], e[2]));
        EXPECT_EQ(image->getData(), (UInt8 *)NULL);
        EXPECT_EQ(image->getSize(), 0ul);
        EXPECT_EQ(image->getDimension(), 0);
        EXPECT_EQ(image->calcMipmapLevelCount(), 0u);
    }
    EXPECT_EQ(image->getWidth(), 0);
    subRefCP(image);
}

TEST(ImageSet, NoStorageWithoutAllocationOrKnownFormatAndType)
{
    ImagePtr image = makeImage();

    EXPECT_FALSE(image->set(GL_RGBA, 4, 4, 1, 1, 1, 0.0, NULL, GL_UNSIGNED_BYTE, false));
    EXPECT_EQ(image->getBpp(), 4);
    EXPECT_EQ(image->getData(), (UInt8 *)NULL);

    EXPECT_FALSE(image->set(GL_DEPTH_COMPONENT, 4, 4)); // no depth format in images
    EXPECT_EQ(image->getBpp(), 0);

    EXPECT_FALSE(image->set(GL_RGBA, 4, 4, 1, 1, 1, 0.0, NULL, GL_BYTE));
    EXPECT_EQ(image->getBpp(), 0);
    subRefCP(image);
}

TEST(ImageSet, ResizingKeepsEqualGrowsZeroedAndShrinksCleared)
{
    const std::vector<UInt8> four = {1, 2, 3, 4};
    ImagePtr image = makeImage(GL_LUMINANCE, 4, 1, four);

    ASSERT_TRUE(image->set(GL_LUMINANCE, 2, 2)); // same size: bytes stay
    EXPECT_EQ(bytesOf(image), four);

    ASSERT_TRUE(image->set(GL_LUMINANCE, 6, 1)); // growing: zero tail
    EXPECT_EQ(bytesOf(image), (std::vector<UInt8>{1, 2, 3, 4, 0, 0}));

    ASSERT_TRUE(image->set(GL_LUMINANCE, 2, 1)); // shrinking: all zero
    EXPECT_EQ(bytesOf(image), (std::vector<UInt8>{0, 0}));

    // data taken from the image itself survives the reallocation
    ASSERT_TRUE(image->set(GL_LUMINANCE, 4, 1, 1, 1, 1, 0.0, four.data()));
    ASSERT_TRUE(image->set(GL_LUMINANCE, 2, 1, 1, 1, 1, 0.0, image->getData() + 2));
    EXPECT_EQ(bytesOf(image), (std::vector<UInt8>{3, 4}));
    subRefCP(image);
}

TEST(ImageSet, PixelFormatSetterKeepsBytesPerPixel)
{
    ImagePtr image = makeImage(GL_LUMINANCE, 4, 4, std::vector<UInt8>(16, 9));

    beginEditCP(image, Image::PixelFormatFieldMask);
    image->setPixelFormat(GL_RGBA);
    endEditCP(image, Image::PixelFormatFieldMask);

    EXPECT_EQ(image->getPixelFormat(), UInt32(GL_RGBA));
    EXPECT_EQ(image->getBpp(), 1);
    EXPECT_EQ(image->getSize(), 16ul);

    const std::vector<UInt8> rgba(64, 5);
    ASSERT_TRUE(image->setData(rgba.data()));
    EXPECT_EQ(image->getBpp(), 4);
    EXPECT_EQ(image->getSize(), 64ul);
    subRefCP(image);
}

TEST(ImageSet, SetDataAndCopyingAnImage)
{
    ImagePtr image = makeImage();
    ASSERT_TRUE(image->set(GL_RGB, 2, 1, 1, 1, 2, 0.5, NULL, GL_UNSIGNED_SHORT));

    const std::vector<UInt16> values = {1, 2, 3, 400, 500, 600, 7, 8, 9, 10, 11, 65535};
    ASSERT_TRUE(image->setData(asBytes(values).data()));
    EXPECT_EQ(valuesOf<UInt16>(image), values);

    {
        LogCapture log;
        EXPECT_FALSE(image->setData(NULL));
        EXPECT_NE(log.take().find("Image::setData(Null) call"), std::string::npos);
    }

    ImagePtr copy = makeImage();
    EXPECT_TRUE(copy->set(image));
    EXPECT_EQ(copy->getPixelFormat(), UInt32(GL_RGB));
    EXPECT_EQ(copy->getDataType(), GL_UNSIGNED_SHORT);
    EXPECT_EQ(copy->getFrameCount(), 2);
    EXPECT_DOUBLE_EQ(copy->getFrameDelay(), 0.5);
    EXPECT_EQ(valuesOf<UInt16>(copy), values);
    EXPECT_NE(copy->getData(), image->getData());
    subRefCP(copy);
    subRefCP(image);
}

TEST(ImageSet, ClearsAndSwapsComponents)
{
    ImagePtr image = makeImage();
    ASSERT_TRUE(image->set(GL_LUMINANCE_ALPHA, 2, 1, 1, 1, 1, 0.0, NULL, GL_UNSIGNED_SHORT));
    image->clear(0xAB);
    EXPECT_EQ(valuesOf<UInt16>(image), (std::vector<UInt16>(4, 0xABAB)));

    ASSERT_TRUE(image->setData(asBytes(std::vector<UInt16>{0x0102, 0x0304, 0xA0B0, 0x00FF}).data()));
    image->swapDataEndian();
    EXPECT_EQ(valuesOf<UInt16>(image), (std::vector<UInt16>{0x0201, 0x0403, 0xB0A0, 0xFF00}));

    ASSERT_TRUE(image->set(GL_RGBA, 1, 1, 1, 1, 1, 0.0, NULL, GL_HALF_FLOAT));
    image->clearHalf(Real16(1.5f));
    EXPECT_EQ(halfBits(image), (std::vector<UInt16>(4, 0x3E00)));
    subRefCP(image);
}

// --- sizes ---------------------------------------------------------------------------------

TEST(ImageSizes, MipmapLevelsOfPlainAndCompressedFormats)
{
    ImagePtr image = makeImage();

    ASSERT_TRUE(image->set(GL_RGBA, 8, 4, 1, 4));
    EXPECT_EQ(image->calcMipmapSumSize(1), 128u);
    EXPECT_EQ(image->calcMipmapSumSize(2), 160u);
    EXPECT_EQ(image->calcMipmapSumSize(4), 172u);   // 8x4, 4x2, 2x1, 1x1
    EXPECT_EQ(image->calcMipmapLevelSize(3), 4u);
    EXPECT_EQ(image->calcMipmapLevelCount(), 4u);
    EXPECT_EQ(image->getSize(), 172ul);

    UInt32 w, h, d;
    image->calcMipmapGeometry(2, w, h, d);
    EXPECT_EQ(w, 2u);
    EXPECT_EQ(h, 1u);
    EXPECT_EQ(d, 1u);

    ASSERT_TRUE(image->set(GL_LUMINANCE, 4, 4, 4, 3));
    EXPECT_EQ(image->getSize(), 64ul + 8 + 1);

    // DXT: 8 or 16 bytes per started 4x4 block
    ASSERT_TRUE(image->set(GL_COMPRESSED_RGB_S3TC_DXT1_EXT, 10, 6, 1, 4));
    EXPECT_EQ(image->calcMipmapLevelSize(0), 48u);  // 3 x 2 blocks
    EXPECT_EQ(image->calcMipmapSumSize(3), 48u + 16 + 8);
    EXPECT_EQ(image->getSize(), 80ul);
    EXPECT_TRUE(image->hasCompressedData());

    ASSERT_TRUE(image->set(GL_COMPRESSED_RGBA_S3TC_DXT5_EXT, 8, 8, 1, 3));
    EXPECT_EQ(image->getSize(), 64ul + 16 + 16);

    EXPECT_EQ(image->calcMipmapSumSize(2, 0, 8, 1), 0u);
    subRefCP(image);
}

TEST(ImageSizes, FrameNumbersFromTime)
{
    ImagePtr image = makeImage();
    ASSERT_TRUE(image->set(GL_LUMINANCE, 1, 1, 1, 1, 4, 0.5));
    EXPECT_EQ(image->calcFrameNum(0.0), 0u);
    EXPECT_EQ(image->calcFrameNum(1.2), 2u);
    EXPECT_EQ(image->calcFrameNum(2.6), 1u);         // wraps
    EXPECT_EQ(image->calcFrameNum(2.6, false), 3u);  // clamps
    EXPECT_EQ(image->getDataByTime(1.2), image->getData(0, 2));
    subRefCP(image);
}

// --- queries ----------------------------------------------------------------------------

TEST(ImageQueries, AlphaChannelByFormat)
{
    const GLenum withAlpha[] = {GL_RGBA, GL_BGRA, GL_ALPHA, GL_INTENSITY,
                                GL_LUMINANCE_ALPHA,
                                GL_COMPRESSED_RGBA_S3TC_DXT1_EXT,
                                GL_COMPRESSED_RGBA_S3TC_DXT3_EXT,
                                GL_COMPRESSED_RGBA_S3TC_DXT5_EXT,
                                GL_ALPHA_INTEGER_EXT, GL_RGBA_INTEGER_EXT,
                                GL_BGRA_INTEGER_EXT, GL_LUMINANCE_ALPHA_INTEGER_EXT};
    const GLenum without[] = {GL_RGB, GL_BGR, GL_LUMINANCE,
                              GL_COMPRESSED_RGB_S3TC_DXT1_EXT,
                              GL_RGB_INTEGER_EXT, GL_LUMINANCE_INTEGER_EXT};

    ImagePtr image = makeImage();
    for(GLenum f : withAlpha)
    {
        image->set(f, 4, 4);
        EXPECT_TRUE(image->hasAlphaChannel()) << std::hex << f;
    }
    for(GLenum f : without)
    {
        image->set(f, 4, 4);
        EXPECT_FALSE(image->hasAlphaChannel()) << std::hex << f;
    }

    image->setForceAlphaChannel(true);
    EXPECT_TRUE(image->hasAlphaChannel());

    image->set(GL_COMPRESSED_RGBA_S3TC_DXT1_EXT, 4, 4);
    EXPECT_TRUE(image->isAlphaBinary());
    image->set(GL_LUMINANCE_ALPHA, 4, 4);
    EXPECT_FALSE(image->hasColorChannel());
    EXPECT_EQ(image->getComponents(), 2);
    subRefCP(image);
}

TEST(ImageQueries, UnknownFormatHasNoComponents)
{
    ImagePtr image = makeImage();
    image->set(GL_DEPTH_COMPONENT, 4, 4);

    LogCapture log;
    EXPECT_EQ(image->getComponents(), 0);
    EXPECT_NE(log.take().find("has unknown pixel format 0x1902!"), std::string::npos);
    subRefCP(image);
}

TEST(ImageQueries, DumpWritesOneLine)
{
    ImagePtr image = makeImage();
    ASSERT_TRUE(image->set(GL_RGBA, 4, 2, 1, 2, 3, 0.25, NULL, GL_HALF_FLOAT, true, 6));

    LogCapture log;
    image->dump(0, 0);
    EXPECT_NE(log.take().find("ImageDump: RGBA; 4/2/1; #mm: 2, #side: 6, #frame: 3, "
                              "frameDelay 0.25, dataType IMAGEDATA_TYPE FLOAT16, "
                              "size: 1440\n"),
              std::string::npos);
    subRefCP(image);
}

// --- reformat ----------------------------------------------------------------------------

struct ReformatCase
{
    GLenum             from;
    std::vector<UInt8> src;
    GLenum             to;
    std::vector<UInt8> expected;
};

TEST(ImageReformat, EightBitTable)
{
    const std::vector<UInt8> rgb  = {10, 20, 33, 255, 254, 250};  // averages 21, 253
    const std::vector<UInt8> rgba = {10, 20, 33, 99, 255, 254, 250, 7};
    const std::vector<UInt8> la   = {5, 200, 6, 100};
    const std::vector<UInt8> l    = {7, 9};

    const ReformatCase cases[] = {
        {GL_RGB, rgb, GL_RGBA, {10, 20, 33, 21, 255, 254, 250, 253}}, // alpha = average
        {GL_RGB, rgb, GL_LUMINANCE, {21, 253}},
        {GL_RGB, rgb, GL_ALPHA, {21, 253}},
        {GL_RGB, rgb, GL_LUMINANCE_ALPHA, {21, 21, 253, 253}},
        {GL_RGB, rgb, GL_BGR, {33, 20, 10, 250, 254, 255}},
        {GL_RGBA, rgba, GL_ALPHA, {99, 7}},
        {GL_RGBA, rgba, GL_INTENSITY, {21, 253}},
        {GL_RGBA, rgba, GL_LUMINANCE_ALPHA, {21, 99, 253, 7}},
        {GL_RGBA, rgba, GL_RGB, {10, 20, 33, 255, 254, 250}},
        {GL_RGBA, rgba, GL_BGRA, {33, 20, 10, 99, 250, 254, 255, 7}},
        {GL_LUMINANCE_ALPHA, la, GL_ALPHA, {200, 100}},
        {GL_LUMINANCE_ALPHA, la, GL_LUMINANCE, {5, 6}},
        {GL_LUMINANCE_ALPHA, la, GL_RGB, {5, 5, 5, 6, 6, 6}},
        {GL_LUMINANCE_ALPHA, la, GL_RGBA, {5, 5, 5, 200, 6, 6, 6, 100}},
        {GL_LUMINANCE, l, GL_RGBA, {7, 7, 7, 7, 9, 9, 9, 9}},  // grey fills alpha too
        {GL_LUMINANCE, l, GL_LUMINANCE_ALPHA, {7, 7, 9, 9}},
        {GL_LUMINANCE, l, GL_ALPHA, {7, 9}},
        {GL_ALPHA, l, GL_RGB, {7, 7, 7, 9, 9, 9}},
        {GL_INTENSITY, l, GL_LUMINANCE, {7, 9}},
        {GL_BGRA, {1, 2, 3, 4, 5, 6, 7, 8}, GL_RGBA, {3, 2, 1, 4, 7, 6, 5, 8}},
        {GL_BGR, {1, 2, 3, 4, 5, 6}, GL_RGB, {3, 2, 1, 6, 5, 4}},
    };

    for(const ReformatCase &c : cases)
    {
        ImagePtr image = makeImage(c.from, 2, 1, c.src);
        image->setAttachmentField("SliceThickness", "1 1 2");

        ASSERT_TRUE(image->reformat(Image::PixelFormat(c.to))) << std::hex << c.from << " -> " << c.to;
        EXPECT_EQ(image->getPixelFormat(), UInt32(c.to));
        EXPECT_EQ(bytesOf(image), c.expected) << std::hex << c.from << " -> " << c.to;
        ASSERT_NE(image->findAttachmentField("SliceThickness"), (const std::string *)NULL);
        subRefCP(image);
    }
}

TEST(ImageReformat, WiderTypesAverageInTheirOwnArithmetic)
{
    ImagePtr shorts = makeImage(GL_RGB, 1, 1, asBytes(std::vector<UInt16>{1000, 2000, 3001}),
                                GL_UNSIGNED_SHORT);
    ASSERT_TRUE(shorts->reformat(Image::OSG_L_PF));
    EXPECT_EQ(valuesOf<UInt16>(shorts), std::vector<UInt16>{2000});

    ImagePtr ints = makeImage(GL_RGB, 1, 1,
                              asBytes(std::vector<UInt32>{4000000000u, 4000000000u, 4000000001u}),
                              GL_UNSIGNED_INT);
    ASSERT_TRUE(ints->reformat(Image::OSG_L_PF)); // no 32-bit wrap in the sum
    EXPECT_EQ(valuesOf<UInt32>(ints), std::vector<UInt32>{4000000000u});

    ImagePtr floats = makeImage(GL_RGB, 1, 1, asBytes(std::vector<Real32>{0.5f, 0.25f, 1.f}),
                                GL_FLOAT);
    ASSERT_TRUE(floats->reformat(Image::OSG_RGBA_PF));
    EXPECT_EQ(valuesOf<Real32>(floats),
              (std::vector<Real32>{0.5f, 0.25f, 1.f, float(1.75 / 3.0)}));

    ImagePtr halves = makeImage(GL_RGB, 1, 1,
                                asBytes(std::vector<Real16>{Real16(1.f), Real16(0.5f), Real16(0.25f)}),
                                GL_HALF_FLOAT);
    ASSERT_TRUE(halves->reformat(Image::OSG_L_PF));
    EXPECT_EQ(halfBits(halves), std::vector<UInt16>{Real16(float(1.75 / 3.0)).bits()});

    subRefCP(shorts);
    subRefCP(ints);
    subRefCP(floats);
    subRefCP(halves);
}

TEST(ImageReformat, ConvertsEveryLevelFrameAndSide)
{
    // 2x1 with two levels (2 + 1 pixels), two sides, two frames: 12 pixels
    std::vector<UInt8> src;
    for(UInt8 i = 0; i < 12; ++i)
        src.insert(src.end(), {UInt8(i * 3), UInt8(i * 3 + 1), UInt8(i * 3 + 2)});

    ImagePtr image = makeImage();
    ASSERT_TRUE(image->set(GL_RGB, 2, 1, 1, 2, 2, 0.0, src.data(), GL_UNSIGNED_BYTE, true, 2));
    ASSERT_TRUE(image->reformat(Image::OSG_L_PF));

    EXPECT_EQ(image->getMipMapCount(), 2);
    EXPECT_EQ(image->getSideCount(), 2);
    EXPECT_EQ(image->getFrameCount(), 2);
    std::vector<UInt8> expected;
    for(UInt8 i = 0; i < 12; ++i)
        expected.push_back(UInt8(i * 3 + 1));
    EXPECT_EQ(bytesOf(image), expected);
    subRefCP(image);
}

TEST(ImageReformat, IntoDestinationLeavesTheSource)
{
    const std::vector<UInt8> rgb = {30, 60, 90};
    ImagePtr image = makeImage(GL_RGB, 1, 1, rgb);
    ImagePtr dest  = makeImage();

    ASSERT_TRUE(image->reformat(GL_LUMINANCE, dest));
    EXPECT_EQ(bytesOf(dest), std::vector<UInt8>{60});
    EXPECT_EQ(bytesOf(image), rgb);
    EXPECT_EQ(image->getPixelFormat(), UInt32(GL_RGB));

    // with a destination even the same format copies
    ASSERT_TRUE(image->reformat(Image::OSG_RGB_PF, dest));
    EXPECT_EQ(bytesOf(dest), rgb);
    subRefCP(dest);
    subRefCP(image);
}

TEST(ImageReformat, RefusalsLeaveTheImage)
{
    const std::vector<UInt8> rgb = {30, 60, 90};
    ImagePtr image = makeImage(GL_RGB, 1, 1, rgb);
    LogCapture log;

    EXPECT_FALSE(image->reformat(Image::OSG_RGB_PF));     // same format, in place
    EXPECT_FALSE(image->reformat(Image::OSG_INVALID_PF));
    EXPECT_FALSE(image->reformat(Image::OSG_RGBA_DXT5));
    EXPECT_NE(log.take().find("'reformat' NYI"), std::string::npos);
    EXPECT_EQ(bytesOf(image), rgb);
    EXPECT_EQ(image->getPixelFormat(), UInt32(GL_RGB));

    ASSERT_TRUE(image->set(GL_COMPRESSED_RGB_S3TC_DXT1_EXT, 4, 4));
    EXPECT_FALSE(image->reformat(Image::OSG_RGB_PF));
    EXPECT_NE(log.take().find("Invalid Image::reformat for compressed image"), std::string::npos);

    ImagePtr empty = makeImage();
    EXPECT_FALSE(empty->reformat(Image::OSG_RGB_PF));
    subRefCP(empty);
    subRefCP(image);
}

// --- convertDataTypeTo --------------------------------------------------------------------

TEST(ImageConvertDataType, WideningShiftsAndNarrowingStretchesTheRange)
{
    ImagePtr bytes = makeImage(GL_LUMINANCE, 4, 1, {0, 1, 128, 255});
    ASSERT_TRUE(bytes->convertDataTypeTo(GL_UNSIGNED_SHORT));
    EXPECT_EQ(bytes->getBpp(), 2);
    EXPECT_EQ(valuesOf<UInt16>(bytes), (std::vector<UInt16>{0, 256, 32768, 65280}));

    ImagePtr toInt = makeImage(GL_LUMINANCE, 2, 1, {1, 255});
    ASSERT_TRUE(toInt->convertDataTypeTo(GL_UNSIGNED_INT));
    EXPECT_EQ(valuesOf<UInt32>(toInt), (std::vector<UInt32>{1u << 24, 255u << 24}));

    // 16 -> 8 bit normalises the values present: (v - min) * 255 / (max - min)
    ImagePtr shorts = makeImage(GL_LUMINANCE, 4, 1,
                                asBytes(std::vector<UInt16>{1000, 2000, 3000, 1500}),
                                GL_UNSIGNED_SHORT);
    ASSERT_TRUE(shorts->convertDataTypeTo(GL_UNSIGNED_BYTE));
    EXPECT_EQ(bytesOf(shorts), (std::vector<UInt8>{0, 127, 255, 63}));

    ImagePtr flat = makeImage(GL_LUMINANCE, 2, 1, asBytes(std::vector<UInt16>{7, 7}),
                              GL_UNSIGNED_SHORT);
    ASSERT_TRUE(flat->convertDataTypeTo(GL_UNSIGNED_BYTE));
    EXPECT_EQ(bytesOf(flat), (std::vector<UInt8>{0, 0}));

    ImagePtr ints = makeImage(GL_LUMINANCE, 4, 1,
                              asBytes(std::vector<UInt32>{0, 65536, 131072, 4294967295u}),
                              GL_UNSIGNED_INT);
    ASSERT_TRUE(ints->convertDataTypeTo(GL_UNSIGNED_SHORT));
    EXPECT_EQ(valuesOf<UInt16>(ints), (std::vector<UInt16>{0, 0, 1, 65535}));

    for(ImagePtr i : {bytes, toInt, shorts, flat, ints})
        subRefCP(i);
}

TEST(ImageConvertDataType, FloatsAreZeroToOne)
{
    ImagePtr bytes = makeImage(GL_LUMINANCE, 3, 1, {0, 51, 255});
    ASSERT_TRUE(bytes->convertDataTypeTo(GL_FLOAT));
    EXPECT_EQ(valuesOf<Real32>(bytes), (std::vector<Real32>{0.f, 0.2f, 1.f}));

    ImagePtr floats = makeImage(GL_LUMINANCE, 5, 1,
                                asBytes(std::vector<Real32>{0.f, 0.5f, 1.f, 1.5f, -1.f}),
                                GL_FLOAT);
    ASSERT_TRUE(floats->convertDataTypeTo(GL_UNSIGNED_BYTE));
    EXPECT_EQ(bytesOf(floats), (std::vector<UInt8>{0, 127, 255, 255, 0})); // saturated

    ImagePtr shorts = makeImage(GL_LUMINANCE, 2, 1, asBytes(std::vector<UInt16>{65535, 0}),
                                GL_UNSIGNED_SHORT);
    ASSERT_TRUE(shorts->convertDataTypeTo(GL_FLOAT));
    EXPECT_EQ(valuesOf<Real32>(shorts), (std::vector<Real32>{1.f, 0.f}));

    for(ImagePtr i : {bytes, floats, shorts})
        subRefCP(i);
}

TEST(ImageConvertDataType, HalfFloatsBothWays)
{
    ImagePtr bytes = makeImage(GL_LUMINANCE_ALPHA, 1, 1, {255, 0});
    ASSERT_TRUE(bytes->convertDataTypeTo(GL_HALF_FLOAT));
    EXPECT_EQ(bytes->getBpp(), 4);
    EXPECT_EQ(halfBits(bytes), (std::vector<UInt16>{0x3C00, 0x0000}));

    ImagePtr floats = makeImage(GL_LUMINANCE, 2, 1, asBytes(std::vector<Real32>{0.5f, 0.1f}),
                                GL_FLOAT);
    ASSERT_TRUE(floats->convertDataTypeTo(GL_HALF_FLOAT));
    EXPECT_EQ(halfBits(floats), (std::vector<UInt16>{0x3800, Real16(0.1f).bits()}));

    ImagePtr shorts = makeImage(GL_LUMINANCE, 1, 1, asBytes(std::vector<UInt16>{65535}),
                                GL_UNSIGNED_SHORT);
    ASSERT_TRUE(shorts->convertDataTypeTo(GL_HALF_FLOAT));
    EXPECT_EQ(halfBits(shorts), std::vector<UInt16>{0x3C00});

    ImagePtr halves = makeImage(GL_LUMINANCE, 2, 1,
                                asBytes(std::vector<Real16>{Real16(0.5f), Real16(1.f)}),
                                GL_HALF_FLOAT);
    ASSERT_TRUE(halves->convertDataTypeTo(GL_UNSIGNED_BYTE));
    EXPECT_EQ(bytesOf(halves), (std::vector<UInt8>{127, 255}));

    for(ImagePtr i : {bytes, floats, shorts, halves})
        subRefCP(i);
}

TEST(ImageConvertDataType, KeepsGeometryResetsDelayAndRefusesOddTypes)
{
    ImagePtr image = makeImage();
    ASSERT_TRUE(image->set(GL_RGB, 2, 2, 1, 2, 3, 0.5, NULL, GL_UNSIGNED_BYTE, true, 2));
    image->setAttachmentField("SliceThickness", "1 1 2.5");

    ASSERT_TRUE(image->convertDataTypeTo(GL_FLOAT));
    EXPECT_EQ(image->getMipMapCount(), 2);
    EXPECT_EQ(image->getFrameCount(), 3);
    EXPECT_EQ(image->getSideCount(), 2);
    EXPECT_DOUBLE_EQ(image->getFrameDelay(), 0.0);
    EXPECT_EQ(image->getSize(), (12ul + 3) * 4 * 2 * 3);
    EXPECT_EQ(*image->findAttachmentField("SliceThickness"), "1 1 2.5");

    LogCapture log;
    EXPECT_TRUE(image->convertDataTypeTo(GL_FLOAT));
    EXPECT_NE(log.take().find("same data types: no conversion possible"), std::string::npos);

    EXPECT_FALSE(image->convertDataTypeTo(GL_BYTE));
    EXPECT_NE(log.take().find("invalid destination data type"), std::string::npos);
    EXPECT_EQ(image->getDataType(), GL_FLOAT);

    ASSERT_TRUE(image->set(GL_COMPRESSED_RGB_S3TC_DXT1_EXT, 4, 4));
    EXPECT_FALSE(image->convertDataTypeTo(GL_UNSIGNED_SHORT));
    EXPECT_NE(log.take().find("Invalid Image::convertDataTypeTo for compressed image"),
              std::string::npos);
    subRefCP(image);
}

// --- scale ---------------------------------------------------------------------------------

TEST(ImageScale, NearestNeighbourUpAndDown)
{
    ImagePtr image = makeImage(GL_LUMINANCE, 2, 2, {1, 2, 3, 4});
    ASSERT_TRUE(image->scale(4, 4));
    EXPECT_EQ(image->getWidth(), 4);
    EXPECT_EQ(image->getHeight(), 4);
    EXPECT_EQ(bytesOf(image), (std::vector<UInt8>{1, 1, 2, 2, 1, 1, 2, 2,
                                                  3, 3, 4, 4, 3, 3, 4, 4}));

    ImagePtr row = makeImage(GL_RGB, 4, 1, {10, 11, 12, 20, 21, 22, 30, 31, 32, 40, 41, 42});
    ASSERT_TRUE(row->scale(2));
    EXPECT_EQ(bytesOf(row), (std::vector<UInt8>{10, 11, 12, 30, 31, 32}));

    ImagePtr three = makeImage(GL_LUMINANCE, 3, 1, {10, 20, 30});
    ASSERT_TRUE(three->scale(2)); // source steps of 1.5
    EXPECT_EQ(bytesOf(three), (std::vector<UInt8>{10, 20}));

    for(ImagePtr i : {image, row, three})
        subRefCP(i);
}

TEST(ImageScale, EveryFrameAndLevel)
{
    // 4x4 luminance, levels 4x4, 2x2, 1x1, two frames
    std::vector<UInt8> src;
    for(UInt8 f = 0; f < 2; ++f)
    {
        for(UInt8 i = 0; i < 16; ++i)
            src.push_back(UInt8(f * 100 + i));
        src.insert(src.end(), {UInt8(f * 100 + 50), UInt8(f * 100 + 51),
                               UInt8(f * 100 + 52), UInt8(f * 100 + 53)});
        src.push_back(UInt8(f * 100 + 60));
    }

    ImagePtr image = makeImage();
    ASSERT_TRUE(image->set(GL_LUMINANCE, 4, 4, 1, 3, 2, 0.0, src.data()));
    ASSERT_TRUE(image->scale(2, 2));

    EXPECT_EQ(image->getMipMapCount(), 3);
    EXPECT_EQ(image->getSize(), 2ul * (4 + 1 + 1));
    std::vector<UInt8> expected;
    for(UInt8 f = 0; f < 2; ++f)
        expected.insert(expected.end(), {UInt8(f * 100 + 0), UInt8(f * 100 + 2),
                                         UInt8(f * 100 + 8), UInt8(f * 100 + 10),
                                         UInt8(f * 100 + 50), UInt8(f * 100 + 60)});
    EXPECT_EQ(bytesOf(image), expected);
    subRefCP(image);
}

TEST(ImageScale, DestinationAndRefusals)
{
    const std::vector<UInt8> src = {1, 2, 3, 4};
    ImagePtr image = makeImage(GL_LUMINANCE, 2, 2, src);
    ImagePtr dest  = makeImage();

    ASSERT_TRUE(image->scale(1, 1, 1, dest));
    EXPECT_EQ(bytesOf(dest), std::vector<UInt8>{1});
    EXPECT_EQ(bytesOf(image), src);

    ASSERT_TRUE(image->scale(2, 2, 1, dest)); // same size: a copy
    EXPECT_EQ(bytesOf(dest), src);

    ASSERT_TRUE(image->scaleNextPower2()); // already powers of two
    ImagePtr odd = makeImage(GL_LUMINANCE, 3, 1, {5, 6, 7});
    ASSERT_TRUE(odd->scaleNextPower2());
    EXPECT_EQ(odd->getWidth(), 4);

    ASSERT_TRUE(image->set(GL_COMPRESSED_RGBA_S3TC_DXT5_EXT, 4, 4));
    LogCapture log;
    EXPECT_FALSE(image->scale(8, 8));
    EXPECT_NE(log.take().find("Invalid Image::scale for compressed image"), std::string::npos);

    for(ImagePtr i : {image, dest, odd})
        subRefCP(i);
}

// --- key/value store ------------------------------------------------------------------------

TEST(ImageAttachmentFields, RoundTripThroughTheGenericAttachment)
{
    ImagePtr image = makeImage();
    EXPECT_EQ(image->findAttachmentField("SliceThickness"), (const std::string *)NULL);
    EXPECT_FALSE(image->hasAttachment());

    image->setAttachmentField("SliceThickness", "1.000000 1.000000 2.500000");
    image->setAttachmentField("Format", "USHORT");

    const std::string *value = image->findAttachmentField("SliceThickness");
    ASSERT_NE(value, (const std::string *)NULL);
    EXPECT_EQ(*value, "1.000000 1.000000 2.500000");
    EXPECT_EQ(image->findAttachmentField("slicethickness"), (const std::string *)NULL);
    EXPECT_EQ(image->findAttachmentField("SliceThickness "), (const std::string *)NULL);

    image->setAttachmentField("SliceThickness", "1 1 2");
    EXPECT_EQ(*image->findAttachmentField("SliceThickness"), "1 1 2");
    EXPECT_EQ(*image->findAttachmentField("Format"), "USHORT");

    // stored in one ImageGenericAtt, group "ImageGenAtt", binding 0
    AttachmentPtr att = image->findAttachment(FieldContainerFactory::the()->findGroupId("ImageGenAtt"));
    ImageGenericAttPtr gen = ImageGenericAttPtr::dcast(att);
    ASSERT_NE(gen, NullFC);
    EXPECT_STREQ(gen->getTypeName(), "ImageGenericAtt");
    EXPECT_STREQ(gen->getType().getParent()->getCName(), "Attachment");
    EXPECT_EQ(image->getAttachments().size(), 1u);
    EXPECT_EQ(image->getAttachments().begin()->first,
              UInt32(ImageGenericAtt::getClassType().getGroupId()) << 16);
    EXPECT_EQ(gen->getNumDynamicFields(), 2u);
    EXPECT_EQ(gen->findFieldId("SliceThickness"), 3u);
    EXPECT_EQ(gen->findFieldId("Format"), 4u);
    EXPECT_EQ(*gen->getDynamicFieldName(4), "Format");
    EXPECT_EQ(gen->findParent(image), 0);
    EXPECT_EQ(gen.getRefCount(), 1);

    // the processing functions keep the dictionary
    ASSERT_TRUE(image->set(GL_RGB, 2, 2));
    ASSERT_TRUE(image->scale(4, 4));
    ASSERT_TRUE(image->reformat(Image::OSG_L_PF));
    ASSERT_TRUE(image->convertDataTypeTo(GL_UNSIGNED_SHORT));
    EXPECT_EQ(*image->findAttachmentField("SliceThickness"), "1 1 2");
    EXPECT_TRUE(image->hasAttachment());
    subRefCP(image);
}

TEST(ImageAttachmentFields, FieldIdsAreReusedAfterRemoval)
{
    ImageGenericAttPtr gen = ImageGenericAtt::create();
    addRefCP(gen);
    EXPECT_EQ(gen->addField("a"), 3u);
    EXPECT_EQ(gen->addField("b"), 4u);
    EXPECT_EQ(gen->addField("a"), 3u);
    EXPECT_EQ(gen->addField(""), 0u);
    EXPECT_TRUE(gen->subField(3));
    EXPECT_FALSE(gen->subField(3));
    EXPECT_EQ(gen->getDynamicField(3), (SFString *)NULL);
    EXPECT_EQ(gen->addField("c"), 3u);
    EXPECT_EQ(ImageGenericAtt::dynamicFieldMask(4), BitVector(0x10));
    EXPECT_EQ(ImageGenericAtt::dynamicFieldMask(70), TypeTraits<BitVector>::One << 63);
    subRefCP(gen);
}

// --- users of the image ------------------------------------------------------------------------

TEST(ImageParents, EveryFinishedEditReachesTheUsers)
{
    ImagePtr             image = makeImage();
    ImageUserTestCorePtr user  = ImageUserTestCore::create();
    addRefCP(user);

    image->addParent(user);
    image->addParent(NullFC); // holes are skipped

    ASSERT_TRUE(image->set(GL_RGB, 2, 2));
    // one notification for the geometry, one for the new pixel block
    ASSERT_EQ(user->changedCalls.size(), 2u);
    for(const auto &call : user->changedCalls)
    {
        EXPECT_EQ(call.first, ImageUserTestCore::ImageFieldMask);
        EXPECT_EQ(call.second, ChangedOrigin::Child);
    }

    user->changedCalls.clear();
    beginEditCP(image, Image::PixelFieldMask);
    image->editData()[0] = 7;
    endEditCP(image, Image::PixelFieldMask);
    EXPECT_EQ(user->changedCalls.size(), 1u);

    // attachment fields are no edit of the image
    user->changedCalls.clear();
    image->setAttachmentField("key", "value");
    EXPECT_TRUE(user->changedCalls.empty());

    image->subParent(user);
    image->subParent(user); // absent: nothing happens
    image->set(GL_RGB, 4, 4);
    EXPECT_TRUE(user->changedCalls.empty());
    EXPECT_EQ(image->getMFParents()->size(), 1u);

    subRefCP(user);
    subRefCP(image);
}

// The texture chunk path needs the chunk class; it is reached only through
// the type system, so the test does the same.
TEST(ImageParents, PixelEditsMarkTheWholeImageDirtyInTextureChunks)
{
    FieldContainerPtr chunk =
        FieldContainerFactory::the()->createFieldContainer("TextureChunk");
    if(chunk == NullFC)
        GTEST_SKIP() << "no TextureChunk in this build";
    addRefCP(chunk);

    SFInt32 *minX = static_cast<SFInt32 *>(chunk->getField("dirtyMinX"));
    SFInt32 *maxZ = static_cast<SFInt32 *>(chunk->getField("dirtyMaxZ"));
    ASSERT_NE(minX, (SFInt32 *)NULL);
    ASSERT_NE(maxZ, (SFInt32 *)NULL);

    ImagePtr image = makeImage();
    image->set(GL_RGB, 4, 4);
    image->addParent(chunk);

    minX->setValue(3);
    maxZ->setValue(3);
    beginEditCP(image, Image::PixelFieldMask);
    endEditCP(image, Image::PixelFieldMask);
    EXPECT_EQ(minX->getValue(), -1);
    EXPECT_EQ(maxZ->getValue(), -1);

    minX->setValue(3);
    image->imageContentChanged(1, 2, 3, 4, 5, 6);
    EXPECT_EQ(minX->getValue(), 1);
    EXPECT_EQ(maxZ->getValue(), 6);

    // a geometry change does not touch the dirty box
    image->set(GL_RGB, 8, 8);
    EXPECT_EQ(minX->getValue(), 1);

    image->subParent(chunk);
    subRefCP(image);
    subRefCP(chunk);
}

// --- aspects ----------------------------------------------------------------------------------

TEST(ImageAspects, PixelsAndKeysReachTheSecondAspect)
{
    ASSERT_GE(ThreadManager::getNumAspects(), 2u);
    ChangeList *cl = Thread::getCurrentChangeList();
    cl->clearAll();

    ImagePtr image = makeImage(GL_LUMINANCE_ALPHA, 2, 1, {1, 2, 3, 4});
    image->setAttachmentField("SliceThickness", "1 1 2");
    image->setAttachmentField("Format", "UCHAR");
    image->setAttachmentField("SliceThickness", "1 1 3");
    cl->applyTo(1);

    Thread::setCurrentAspect(1);
    EXPECT_EQ(image->getWidth(), 2);
    EXPECT_EQ(image->getBpp(), 2);
    EXPECT_EQ(bytesOf(image), (std::vector<UInt8>{1, 2, 3, 4}));
    const std::string *thickness = image->findAttachmentField("SliceThickness");
    const std::string *format    = image->findAttachmentField("Format");
    Thread::setCurrentAspect(0);

    ASSERT_NE(thickness, (const std::string *)NULL);
    ASSERT_NE(format, (const std::string *)NULL);
    EXPECT_EQ(*thickness, "1 1 3");
    EXPECT_EQ(*format, "UCHAR");
    EXPECT_NE(thickness, image->findAttachmentField("SliceThickness")); // its own copy

    cl->clearAll();
    subRefCP(image);
}
