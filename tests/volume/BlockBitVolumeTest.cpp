// The block grid of a volume and its visit bits under a transfer function.
#include <OpenSG/BitVolume.h>
#include <OpenSG/BlockVolume.h>
#include <OpenSG/SimpleTransferfunction.h>
#include <OpenSG/VolumeData.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>

#include <gtest/gtest.h>
#include <support/TextSupport.h>

#include <cstdio>
#include <string>
#include <vector>

using namespace osg;
using corvanetest::contains;

namespace
{

/// A volume adopted from voxels, the load's chatter swallowed.
template <class T>
void adopt(VolumeData &volume, Int32 w, Int32 h, Int32 d, Int32 type, const std::vector<T> &voxels)
{
    ImagePtr image = Image::create();
    image->set(GL_LUMINANCE, w, h, d, 1, 1, 0.0,
               reinterpret_cast<const UInt8 *>(voxels.data()), type, true, 1);
    TextureChunkPtr chunk = TextureChunk::create();
    beginEditCP(chunk);
    chunk->setImage(image);
    endEditCP(chunk);
    testing::internal::CaptureStdout();
    volume.setVolume(chunk, false);
    std::fflush(stdout);
    testing::internal::GetCapturedStdout();
}

/// A 32 x 8 x 8 volume: x 0..15 are 0, x 16..31 are `high`.
template <class T>
std::vector<T> twoSlabs(T high)
{
    std::vector<T> v(32 * 8 * 8, 0);
    for(size_t i = 0; i < v.size(); ++i)
        if(i % 32 >= 16)
            v[i] = high;
    return v;
}

/// A transfer function baked from opacity points alone.
void bake(SimpleTransferfunction &tf, Int32 mode, const Transferfunction::AlphaPoints &points)
{
    tf.setMode(mode);
    tf.createLinearTransfer(mode);
    ImagePtr image = tf.getTFTextureChunk()->getImage();
    tf.setAlphaValues(image, points);
    ASSERT_TRUE(tf.calcSummedAreaTable());
}

std::vector<UInt8> bitsOf(const BitVolume &bits)
{
    ImagePtr     image = bits.getBitVolumeImage();
    const UInt8 *data  = image->getData();
    return std::vector<UInt8>(data, data + image->getSize());
}

} // namespace

TEST(BlockVolume, EmptyVolumeIsRefused)
{
    VolumeData  volume;
    BlockVolume block;
    LogCapture  log;
    EXPECT_FALSE(block.calcBlockVolumen(volume, 8));
    EXPECT_TRUE(contains(log.take(), "Das Eingabevolumen ist leer\n"));
    EXPECT_EQ(block.getBlockVolumeTexture(), NullFC);
}

TEST(BlockVolume, PadsTheVolumeAndSeesThePaddingAsZeros)
{
    VolumeData volume;
    adopt(volume, 20, 16, 16, GL_UNSIGNED_BYTE, std::vector<UInt8>(20 * 16 * 16, 50));
    BlockVolume block;
    ASSERT_TRUE(block.calcBlockVolumen(volume, 8));

    EXPECT_EQ(volume.getVolumeImage()->getWidth(), 24) << "the volume was padded";
    ImagePtr grid = block.getBlockVolumeImage();
    ASSERT_NE(grid, NullFC);
    EXPECT_EQ(grid->getPixelFormat(), UInt32(GL_LUMINANCE_ALPHA));
    EXPECT_EQ(grid->getDataType(), Int32(GL_UNSIGNED_BYTE));
    EXPECT_EQ(grid->getWidth(), 3);
    EXPECT_EQ(grid->getHeight(), 2);
    EXPECT_EQ(grid->getDepth(), 2);
    const UInt8 *cells = grid->getData();
    for(int cell = 0; cell < 12; ++cell)
    {
        EXPECT_EQ(cells[cell * 2], cell % 3 == 2 ? 0 : 50) << cell;
        EXPECT_EQ(cells[cell * 2 + 1], 50) << cell;
    }

    TextureChunkPtr chunk = block.getBlockVolumeTexture();
    EXPECT_EQ(chunk->getMinFilter(), GLenum(GL_NEAREST));
    EXPECT_EQ(chunk->getWrapR(), GLenum(GL_CLAMP_TO_EDGE));
    EXPECT_EQ(chunk->getInternalFormat(), GLenum(GL_NONE)) << "left as it is";
}

TEST(BlockVolume, SixteenBitGridKeepsTheType)
{
    VolumeData volume;
    adopt(volume, 32, 8, 8, GL_UNSIGNED_SHORT, twoSlabs<UInt16>(60000));
    BlockVolume block;
    ASSERT_TRUE(block.calcBlockVolumen(volume, 8));
    ImagePtr grid = block.getBlockVolumeImage();
    EXPECT_EQ(grid->getDataType(), Int32(GL_UNSIGNED_SHORT));
    const UInt16 *cells = reinterpret_cast<const UInt16 *>(grid->getData());
    const UInt16  expected[] = {0, 0, 0, 60000, 0, 60000, 60000, 60000};
    for(int i = 0; i < 8; ++i)
        EXPECT_EQ(cells[i], expected[i]) << i;
}

TEST(BlockVolume, UnknownTypeAttachesAnUnsetImage)
{
    VolumeData volume;
    adopt(volume, 8, 8, 8, GL_FLOAT, std::vector<Real32>(8 * 8 * 8, 1.f));
    BlockVolume block;
    testing::internal::CaptureStdout();
    EXPECT_TRUE(block.calcBlockVolumen(volume, 8));
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Unknown Volume Format");
    ASSERT_NE(block.getBlockVolumeImage(), NullFC);
    EXPECT_EQ(block.getBlockVolumeImage()->getData(), nullptr);
}

TEST(BitVolume, MissingImagesAreRefused)
{
    BitVolume  bits;
    ImagePtr   image = Image::create();
    LogCapture log;
    EXPECT_FALSE(bits.calcBitVolumen(NullFC, image));
    EXPECT_TRUE(contains(log.take(), "Blockvolume is empty\n"));
    EXPECT_FALSE(bits.calcBitVolumen(image, NullFC));
    EXPECT_TRUE(contains(log.take(), "Summed Area Table is empty\n"));
    EXPECT_EQ(bits.getBitVolumeImage(), NullFC);
    addRefCP(image);
    subRefCP(image);
}

TEST(BitVolume, EightBitCellsUnderATransparentFunction)
{
    // cells along x: (0,0), (0,100), (0,100), (100,100)
    VolumeData volume;
    adopt(volume, 32, 8, 8, GL_UNSIGNED_BYTE, twoSlabs<UInt8>(100));
    BlockVolume block;
    ASSERT_TRUE(block.calcBlockVolumen(volume, 8));

    SimpleTransferfunction tf;
    bake(tf, 0, {{0.f, 0.f}, {1.f, 0.f}});
    BitVolume bits;
    ASSERT_TRUE(bits.calcBitVolumen(block.getBlockVolumeImage(),
                                    tf.getSATextureChunk()->getImage()));
    ImagePtr image = bits.getBitVolumeImage();
    EXPECT_EQ(image->getPixelFormat(), UInt32(GL_ALPHA));
    EXPECT_EQ(image->getDataType(), Int32(GL_UNSIGNED_BYTE));
    EXPECT_EQ(image->getWidth(), 4);
    EXPECT_EQ(bitsOf(bits), std::vector<UInt8>({255, 0, 0, 0})) << "value 0 alone is visited";

    TextureChunkPtr chunk = bits.getBitVolumeTexture();
    EXPECT_EQ(chunk->getInternalFormat(), GLenum(GL_ALPHA16));
    EXPECT_EQ(chunk->getMagFilter(), GLenum(GL_NEAREST));
    EXPECT_EQ(chunk->getWrapS(), GLenum(GL_CLAMP_TO_EDGE));
}

TEST(BitVolume, EightBitCellsUnderAnOpaqueValue)
{
    VolumeData volume;
    adopt(volume, 32, 8, 8, GL_UNSIGNED_BYTE, twoSlabs<UInt8>(100));
    BlockVolume block;
    ASSERT_TRUE(block.calcBlockVolumen(volume, 8));

    // opaque around value 100 only
    SimpleTransferfunction tf;
    bake(tf, 0, {{0.f, 0.f}, {99.f / 256, 0.f}, {99.f / 256, 1.f}, {102.f / 256, 1.f},
                 {102.f / 256, 0.f}, {1.f, 0.f}});
    BitVolume bits;
    ASSERT_TRUE(bits.calcBitVolumen(block.getBlockVolumeImage(),
                                    tf.getSATextureChunk()->getImage()));
    EXPECT_EQ(bitsOf(bits), std::vector<UInt8>({255, 255, 255, 255}));

    // twice with the same sum: the same grid, rebuilt in the same image
    ImagePtr before = bits.getBitVolumeImage();
    ASSERT_TRUE(bits.calcBitVolumen(block.getBlockVolumeImage(),
                                    tf.getSATextureChunk()->getImage()));
    EXPECT_EQ(bits.getBitVolumeImage(), before);
    EXPECT_EQ(bitsOf(bits), std::vector<UInt8>({255, 255, 255, 255}));
}

TEST(BitVolume, SixteenBitRangeIsMarkedWhenAnythingBelowIsOpaque)
{
    // cells (0,0), (0,60000), (0,60000), (60000,60000) against a function
    // opaque only at the very bottom: the constant cell stays empty, the
    // ranges are marked although nothing inside them is opaque
    VolumeData volume;
    adopt(volume, 32, 8, 8, GL_UNSIGNED_SHORT, twoSlabs<UInt16>(60000));
    BlockVolume block;
    ASSERT_TRUE(block.calcBlockVolumen(volume, 8));

    SimpleTransferfunction tf;
    bake(tf, 1, {{0.f, 1.f}, {1.f / 65536, 1.f}, {1.f / 65536, 0.f}, {1.f, 0.f}});
    BitVolume bits;
    ASSERT_TRUE(bits.calcBitVolumen(block.getBlockVolumeImage(),
                                    tf.getSATextureChunk()->getImage()));
    EXPECT_EQ(bitsOf(bits), std::vector<UInt8>({255, 255, 255, 0}));
}

TEST(BitVolume, UnknownBlockTypeKeepsTheImage)
{
    ImagePtr grid = Image::create();
    addRefCP(grid);
    grid->set(GL_LUMINANCE_ALPHA, 2, 2, 2, 1, 1, 0.0, NULL, GL_FLOAT, true, 1);
    ImagePtr sum = Image::create();
    addRefCP(sum);
    sum->set(GL_ALPHA, 256, 1, 1, 1, 1, 0.0, NULL, GL_FLOAT, true, 1);

    BitVolume bits;
    testing::internal::CaptureStdout();
    EXPECT_TRUE(bits.calcBitVolumen(grid, sum));
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Unknown Volume Format");
    EXPECT_NE(bits.getBitVolumeTexture(), NullFC);
    subRefCP(grid);
    subRefCP(sum);
}
