// Loading and adopting volumes: normalisation, formats, thickness, extent,
// padding and the reports on standard output and in the log.
#include <OpenSG/VolumeData.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGTextureChunk.h>

#include <gtest/gtest.h>
#include <support/TextSupport.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>
#include <support/ScratchDir.h>

using namespace osg;
using corvanetest::contains;

namespace
{

/// A chunk with an image of the given format, edges and voxels.
TextureChunkPtr makeChunk(UInt32 pixelFormat, Int32 w, Int32 h, Int32 d, Int32 type,
                          const void *voxels = NULL)
{
    ImagePtr image = Image::create();
    image->set(pixelFormat, w, h, d, 1, 1, 0.0, static_cast<const UInt8 *>(voxels), type,
               true, 1);
    TextureChunkPtr chunk = TextureChunk::create();
    beginEditCP(chunk);
    chunk->setImage(image);
    endEditCP(chunk);
    return chunk;
}

template <class T>
const T *voxelsOf(const VolumeData &volume)
{
    return reinterpret_cast<const T *>(volume.getVolumeImage()->getData());
}

std::string volumeTempPath(const std::string &name)
{
    return corvanetest::scratchPath("volume_" + name);
}

/// Standard output is captured for the whole test: loading talks a lot.
class VolumeDataTest : public testing::Test
{
  protected:
    void SetUp(void) override { testing::internal::CaptureStdout(); }
    void TearDown(void) override
    {
        std::fflush(stdout);
        testing::internal::GetCapturedStdout();
    }

    /// What was printed since the last call.
    std::string takeStdout(void)
    {
        std::fflush(stdout);
        std::string text = testing::internal::GetCapturedStdout();
        testing::internal::CaptureStdout();
        return text;
    }
};

} // namespace

// --- adopting a texture -----------------------------------------------------------------

TEST_F(VolumeDataTest, SixteenBitMaximumOf4095IsExpandedAnd4096IsNot)
{
    std::vector<UInt16> twelve(4 * 4 * 4, 100);
    twelve[5] = 4095;
    VolumeData expanded;
    ASSERT_TRUE(expanded.setVolume(makeChunk(GL_LUMINANCE, 4, 4, 4, GL_UNSIGNED_SHORT,
                                             twelve.data()), false));
    EXPECT_EQ(voxelsOf<UInt16>(expanded)[0], 1600);
    EXPECT_EQ(voxelsOf<UInt16>(expanded)[5], 65520);

    std::vector<UInt16> full(4 * 4 * 4, 100);
    full[5] = 4096;
    VolumeData kept;
    ASSERT_TRUE(kept.setVolume(makeChunk(GL_LUMINANCE, 4, 4, 4, GL_UNSIGNED_SHORT,
                                         full.data()), false));
    EXPECT_EQ(voxelsOf<UInt16>(kept)[0], 100);
    EXPECT_EQ(voxelsOf<UInt16>(kept)[5], 4096);
}

TEST_F(VolumeDataTest, ByteSwapComesBeforeTheTwelveBitTest)
{
    std::vector<UInt16> voxels(2 * 2 * 2, 0x0100); // 1 once swapped
    voxels[3] = 0xFF0F;                           // 4095 once swapped
    VolumeData volume;
    ASSERT_TRUE(volume.setVolume(makeChunk(GL_LUMINANCE, 2, 2, 2, GL_UNSIGNED_SHORT,
                                           voxels.data()), true));
    EXPECT_EQ(voxelsOf<UInt16>(volume)[0], 16);
    EXPECT_EQ(voxelsOf<UInt16>(volume)[3], 65520);
}

TEST_F(VolumeDataTest, EightBitChunkKeepsItsInternalFormatSixteenBitGetsLuminance16)
{
    std::vector<UInt8> bytes(8, 9);
    TextureChunkPtr    chunk8 = makeChunk(GL_LUMINANCE, 2, 2, 2, GL_UNSIGNED_BYTE, bytes.data());
    beginEditCP(chunk8);
    chunk8->setInternalFormat(GL_INTENSITY8);
    endEditCP(chunk8);
    VolumeData volume8;
    ASSERT_TRUE(volume8.setVolume(chunk8, false));
    EXPECT_EQ(chunk8->getInternalFormat(), GLenum(GL_INTENSITY8));
    EXPECT_EQ(chunk8->getWrapR(), GLenum(GL_CLAMP_TO_BORDER));
    EXPECT_EQ(chunk8->getMinFilter(), GLenum(GL_LINEAR));

    TextureChunkPtr chunk16 = makeChunk(GL_LUMINANCE, 2, 2, 2, GL_UNSIGNED_SHORT);
    VolumeData      volume16;
    ASSERT_TRUE(volume16.setVolume(chunk16, false));
    EXPECT_EQ(chunk16->getInternalFormat(), GLenum(GL_LUMINANCE16));
    EXPECT_EQ(chunk16->getDirtyMinX(), -1);
    EXPECT_EQ(chunk16->getDirtyMaxZ(), -1);
}

TEST_F(VolumeDataTest, PixelFormatIsRewrittenWithOneReportUnlessSingleChannel8Bit)
{
    struct Case
    {
        UInt32 format;
        Int32  type;
        bool   rewritten;
    } cases[] = {{GL_RGB, GL_UNSIGNED_BYTE, true},
                 {GL_ALPHA, GL_UNSIGNED_BYTE, false},
                 {GL_INTENSITY, GL_UNSIGNED_BYTE, false},
                 {GL_ALPHA, GL_UNSIGNED_SHORT, true},
                 {GL_LUMINANCE, GL_UNSIGNED_SHORT, true}};
    for(const Case &c : cases)
    {
        LogCapture log(LOG_NOTICE);
        VolumeData volume;
        ASSERT_TRUE(volume.setVolume(makeChunk(c.format, 2, 2, 2, c.type), false));
        EXPECT_EQ(volume.getVolumeImage()->getPixelFormat(),
                  c.rewritten ? UInt32(GL_LUMINANCE) : c.format) << c.format;
        std::string text = log.take();
        size_t      first = text.find("PixelFormat: ");
        EXPECT_EQ(first != std::string::npos, c.rewritten) << c.format << "\n" << text;
        if(c.rewritten)
        {
            EXPECT_TRUE(contains(text, "PixelFormat: 6409"));
            EXPECT_EQ(text.find("PixelFormat: ", first + 1), std::string::npos) << "one report";
        }
    }
}

TEST_F(VolumeDataTest, NullChunkIsRefusedAndChangesNothing)
{
    VolumeData      volume;
    TextureChunkPtr chunk = makeChunk(GL_LUMINANCE, 2, 2, 2, GL_UNSIGNED_BYTE);
    ASSERT_TRUE(volume.setVolume(chunk, false));

    LogCapture log;
    EXPECT_FALSE(volume.setVolume(NullFC, false));
    EXPECT_TRUE(contains(log.take(), "VolumeData::setVolume() Couldn't set empty volume!\n"));
    EXPECT_EQ(volume.getVolumeTextureChunk(), chunk);
}

TEST_F(VolumeDataTest, ChunkWithoutImageIsKeptButRefused)
{
    VolumeData      volume;
    TextureChunkPtr chunk = TextureChunk::create();
    LogCapture      log;
    EXPECT_FALSE(volume.setVolume(chunk, false));
    EXPECT_TRUE(contains(log.take(), "VolumeData::setVolume() Volume texture without image!\n"));
    EXPECT_EQ(volume.getVolumeTextureChunk(), chunk);
}

TEST_F(VolumeDataTest, ReportsGoToStandardOutput)
{
    VolumeData volume;
    takeStdout();
    ASSERT_TRUE(volume.setVolume(makeChunk(GL_LUMINANCE, 8, 4, 2, GL_UNSIGNED_SHORT), false));
    std::string out = takeStdout();
    EXPECT_EQ(out, "16Bit\n"
                   "Volume Slice Thickness 1.000000 1.000000 1.000000; "
                   "Resolution of Volume 8.000000 4.000000 2.000000\n"
                   "Size of Volume 4.000000 2.000000 1.000000\n");

    VolumeData other;
    ASSERT_TRUE(other.setVolume(makeChunk(GL_LUMINANCE, 1, 1, 1, GL_FLOAT), false));
    EXPECT_EQ(takeStdout().substr(0, 5), "?Bit\n");
}

// --- thickness and extent ---------------------------------------------------------------------

TEST_F(VolumeDataTest, LongestEdgeMeasuresFourUnitsScaledByThickness)
{
    TextureChunkPtr unit = makeChunk(GL_LUMINANCE, 256, 256, 128, GL_UNSIGNED_BYTE);
    unit->getImage()->setAttachmentField("SliceThickness", "1 1 1");
    VolumeData volume;
    ASSERT_TRUE(volume.setVolume(unit, false));
    EXPECT_EQ(volume.getVolumeSize(), Vec3f(4.f, 4.f, 2.f));

    TextureChunkPtr thick = makeChunk(GL_LUMINANCE, 256, 256, 128, GL_UNSIGNED_BYTE);
    thick->getImage()->setAttachmentField("SliceThickness", "1 1 2");
    VolumeData thickVolume;
    ASSERT_TRUE(thickVolume.setVolume(thick, false));
    EXPECT_EQ(thickVolume.getSliceThickness(), Vec3f(1.f, 1.f, 2.f));
    EXPECT_EQ(thickVolume.getVolumeSize(), Vec3f(4.f, 4.f, 4.f));
}

TEST_F(VolumeDataTest, MissingThicknessIsOnlyANoticeWhenAdopting)
{
    LogCapture warnings(LOG_WARNING);
    VolumeData volume;
    ASSERT_TRUE(volume.setVolume(makeChunk(GL_LUMINANCE, 2, 2, 2, GL_UNSIGNED_BYTE), false));
    EXPECT_FALSE(contains(warnings.take(), "No Slice Thickness found"));
    EXPECT_EQ(volume.getSliceThickness(), Vec3f(1.f, 1.f, 1.f));

    LogCapture notices(LOG_NOTICE);
    VolumeData again;
    ASSERT_TRUE(again.setVolume(makeChunk(GL_LUMINANCE, 2, 2, 2, GL_UNSIGNED_BYTE), false));
    EXPECT_TRUE(contains(notices.take(), "No Slice Thickness found, set to default\n"));
}

TEST_F(VolumeDataTest, UnparsableThicknessKeepsUnitSpacing)
{
    TextureChunkPtr chunk = makeChunk(GL_LUMINANCE, 4, 4, 4, GL_UNSIGNED_BYTE);
    chunk->getImage()->setAttachmentField("SliceThickness", "0.5 abc");
    VolumeData volume;
    ASSERT_TRUE(volume.setVolume(chunk, false));
    EXPECT_EQ(volume.getSliceThickness(), Vec3f(0.5f, 1.f, 1.f));
}

TEST_F(VolumeDataTest, EdgesAreReadAsSixteenBits)
{
    // 65537 wide reads as 1: the extent of a 1 x 1 x 1 volume
    VolumeData volume;
    ASSERT_TRUE(volume.setVolume(makeChunk(GL_LUMINANCE, 65537, 1, 1, GL_UNSIGNED_BYTE), false));
    EXPECT_EQ(volume.getVolumeSize(), Vec3f(4.f, 4.f, 4.f));
}

TEST_F(VolumeDataTest, CopyCarriesTheExtentOnly)
{
    VolumeData volume;
    ASSERT_TRUE(volume.setVolume(makeChunk(GL_LUMINANCE, 4, 2, 2, GL_UNSIGNED_BYTE), false));
    VolumeData copy(volume);
    EXPECT_EQ(copy.getVolumeSize(), Vec3f(4.f, 2.f, 2.f));
    EXPECT_EQ(copy.getSliceThickness(), Vec3f(0.f, 0.f, 0.f));
    EXPECT_EQ(copy.getVolumeTextureChunk(), NullFC);
    EXPECT_EQ(copy.getBlockVolume(), nullptr);
}

// --- padding ---------------------------------------------------------------------------------

TEST_F(VolumeDataTest, PaddingKeepsVoxelsInPlaceAndTheExtentOfTheOriginal)
{
    const int          w = 10, h = 16, d = 7;
    std::vector<UInt8> voxels(w * h * d);
    for(size_t i = 0; i < voxels.size(); ++i)
        voxels[i] = UInt8(1 + i % 250);
    VolumeData volume;
    ASSERT_TRUE(volume.setVolume(makeChunk(GL_LUMINANCE, w, h, d, GL_UNSIGNED_BYTE,
                                           voxels.data()), false));
    const Vec3f size = volume.getVolumeSize();

    LogCapture log(LOG_NOTICE);
    ASSERT_TRUE(volume.resizeVolume(8));
    EXPECT_TRUE(contains(log.take(), "Resize Volume Res: 16, 16, 8"));

    ImagePtr padded = volume.getVolumeImage();
    ASSERT_EQ(padded->getWidth(), 16);
    ASSERT_EQ(padded->getHeight(), 16);
    ASSERT_EQ(padded->getDepth(), 8);
    EXPECT_EQ(padded->getPixelFormat(), UInt32(GL_LUMINANCE));
    const UInt8 *data = padded->getData();
    for(int z = 0; z < 8; ++z)
        for(int y = 0; y < 16; ++y)
            for(int x = 0; x < 16; ++x)
            {
                UInt8 expected = (x < w && y < h && z < d) ? voxels[(z * h + y) * w + x] : 0;
                ASSERT_EQ(data[(z * 16 + y) * 16 + x], expected) << x << "," << y << "," << z;
            }
    EXPECT_EQ(volume.getVolumeSize(), size);

    TextureChunkPtr chunk = volume.getVolumeTextureChunk();
    EXPECT_EQ(chunk->getInternalFormat(), GLenum(GL_LUMINANCE16));
    EXPECT_EQ(chunk->getWrapS(), GLenum(GL_CLAMP_TO_EDGE)) << "8-bit data is clamped to the edge";
}

TEST_F(VolumeDataTest, PaddedSixteenBitDataIsClampedToTheBorder)
{
    VolumeData volume;
    ASSERT_TRUE(volume.setVolume(makeChunk(GL_LUMINANCE, 3, 3, 3, GL_UNSIGNED_SHORT), false));
    ASSERT_TRUE(volume.resizeVolume(4));
    EXPECT_EQ(volume.getVolumeImage()->getDataType(), Int32(GL_UNSIGNED_SHORT));
    EXPECT_EQ(volume.getVolumeImage()->getWidth(), 4);
    EXPECT_EQ(volume.getVolumeTextureChunk()->getWrapR(), GLenum(GL_CLAMP_TO_BORDER));
}

TEST_F(VolumeDataTest, NegativeMultipleDoesNothingButTheEmptyChecksComeFirst)
{
    VolumeData empty;
    {
        LogCapture log;
        EXPECT_FALSE(empty.resizeVolume(-1));
        EXPECT_TRUE(contains(log.take(), "The input volume is empty.\n"));
    }

    VolumeData withoutImage;
    {
        LogCapture log;
        withoutImage.setVolume(TextureChunk::create(), false);
        log.take();
        EXPECT_FALSE(withoutImage.resizeVolume(8));
        EXPECT_TRUE(contains(log.take(), "The input volume has no valid image.\n"));
    }

    VolumeData volume;
    ASSERT_TRUE(volume.setVolume(makeChunk(GL_LUMINANCE, 3, 3, 3, GL_UNSIGNED_BYTE), false));
    ImagePtr   before = volume.getVolumeImage();
    LogCapture log(LOG_DEBUG);
    EXPECT_TRUE(volume.resizeVolume(-1));
    EXPECT_EQ(log.take(), "");
    EXPECT_EQ(volume.getVolumeImage(), before);
}

TEST_F(VolumeDataTest, ThirtyTwoBitVolumesPassButAreNotPadded)
{
    VolumeData volume;
    takeStdout();
    ASSERT_TRUE(volume.setVolume(makeChunk(GL_LUMINANCE, 3, 3, 3, GL_UNSIGNED_INT), false));
    EXPECT_EQ(takeStdout().substr(0, 6), "32Bit\n");
    ImagePtr before = volume.getVolumeImage();
    EXPECT_TRUE(volume.resizeVolume(8));
    EXPECT_EQ(volume.getVolumeImage(), before);
    EXPECT_EQ(before->getWidth(), 3);
}

// --- loading files --------------------------------------------------------------------------

namespace
{

/// Writes a volume file through the image writers.
std::string writeVolume(const std::string &name, Int32 w, Int32 h, Int32 d, Int32 type,
                        const void *voxels, const char *thickness)
{
    ImagePtr image = Image::create();
    addRefCP(image);
    image->set(GL_LUMINANCE, w, h, d, 1, 1, 0.0, static_cast<const UInt8 *>(voxels), type,
               true, 1);
    if(thickness != NULL)
        image->setAttachmentField("SliceThickness", thickness);
    std::string path = volumeTempPath(name);
    bool        ok   = image->write(path.c_str());
    subRefCP(image);
    return ok ? path : std::string();
}

} // namespace

TEST_F(VolumeDataTest, LoadsEveryVolumeFormatWithItsThickness)
{
    std::vector<UInt8> voxels(6 * 5 * 4);
    for(size_t i = 0; i < voxels.size(); ++i)
        voxels[i] = UInt8(i * 7);
    for(const char *suffix : {"dat", "nrrd", "mha", "mhd", "nhdr"})
    {
        std::string path = writeVolume(std::string("u8.") + suffix, 6, 5, 4, GL_UNSIGNED_BYTE,
                                       voxels.data(), "1 1 2.5");
        ASSERT_FALSE(path.empty()) << suffix;

        VolumeData volume;
        takeStdout();
        ASSERT_TRUE(volume.loadVolume(path, false)) << suffix;
        std::string out = takeStdout();
        EXPECT_EQ(out.substr(0, 18), "Volume loaded\n8Bit") << suffix;

        ImagePtr image = volume.getVolumeImage();
        ASSERT_NE(image, NullFC);
        EXPECT_EQ(image->getWidth(), 6);
        EXPECT_EQ(image->getDepth(), 4);
        EXPECT_EQ(0, std::memcmp(image->getData(), voxels.data(), voxels.size())) << suffix;
        EXPECT_EQ(volume.getSliceThickness(), Vec3f(1.f, 1.f, 2.5f)) << suffix;
        EXPECT_FLOAT_EQ(volume.getVolumeSize()[0], 4.f) << suffix;
        EXPECT_FLOAT_EQ(volume.getVolumeSize()[1], 4.f * 5 / 6) << suffix;
        EXPECT_FLOAT_EQ(volume.getVolumeSize()[2], 4.f * 4 / 6 * 2.5f) << suffix;

        TextureChunkPtr chunk = volume.getVolumeTextureChunk();
        EXPECT_EQ(chunk->getInternalFormat(), GLenum(GL_LUMINANCE16)) << "also for 8 bit";
        EXPECT_EQ(chunk->getWrapT(), GLenum(GL_CLAMP_TO_BORDER));
        EXPECT_EQ(chunk->getMagFilter(), GLenum(GL_LINEAR));
    }
}

TEST_F(VolumeDataTest, LoadedTwelveBitFileIsExpandedUnlessSwapped)
{
    std::vector<UInt16> voxels(4 * 4 * 4, 1);
    voxels[9] = 4095;
    std::string path = writeVolume("u12.dat", 4, 4, 4, GL_UNSIGNED_SHORT, voxels.data(), "1 1 1");
    ASSERT_FALSE(path.empty());

    VolumeData plain;
    ASSERT_TRUE(plain.loadVolume(path, false));
    EXPECT_EQ(voxelsOf<UInt16>(plain)[9], 65520);
    EXPECT_EQ(voxelsOf<UInt16>(plain)[0], 16);

    VolumeData swapped;
    ASSERT_TRUE(swapped.loadVolume(path, true));
    EXPECT_EQ(voxelsOf<UInt16>(swapped)[9], 0xFF0F) << "swapped, then 16-bit already";
    EXPECT_EQ(voxelsOf<UInt16>(swapped)[0], 0x0100);
}

TEST_F(VolumeDataTest, LoadedColourImageBecomesLuminanceAndWarnsAboutThickness)
{
    std::vector<UInt8> rgb(4 * 4 * 3, 200);
    ImagePtr           image = Image::create();
    addRefCP(image);
    image->set(GL_RGB, 4, 4, 1, 1, 1, 0.0, rgb.data(), GL_UNSIGNED_BYTE, true, 1);
    std::string path = volumeTempPath("rgb.png");
    ASSERT_TRUE(image->write(path.c_str()));
    subRefCP(image);

    LogCapture log(LOG_NOTICE);
    VolumeData volume;
    ASSERT_TRUE(volume.loadVolume(path, false));
    std::string text = log.take();
    EXPECT_TRUE(contains(text, "WARNING"));
    EXPECT_TRUE(contains(text, "No Slice Thickness found, set to default\n"));
    EXPECT_TRUE(contains(text, "PixelFormat: 6409"));
    EXPECT_EQ(volume.getVolumeImage()->getPixelFormat(), UInt32(GL_LUMINANCE));
}

TEST_F(VolumeDataTest, MissingFileFailsAndKeepsTheChunk)
{
    VolumeData volume;
    LogCapture log;
    std::string path = volumeTempPath("does-not-exist.dat");
    EXPECT_FALSE(volume.loadVolume(path, false));
    EXPECT_TRUE(contains(log.take(), "Couldn't load file " + path + "!\n"));
    EXPECT_NE(volume.getVolumeTextureChunk(), NullFC);
    EXPECT_EQ(volume.getVolumeImage(), NullFC) << "the new image is not attached";
}
