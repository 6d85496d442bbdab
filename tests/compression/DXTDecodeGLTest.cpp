// What a GPU makes of the compressor's output: the compressed image goes up
// as an S3TC texture, comes back decompressed through GL, and is compared
// with the source and with the CPU decoder of the tests.
#include "compression/DXTTestSupport.h"

#include <OpenSG/DXTCompressor.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGHeadlessGLContext.h>
#include <OpenSG/OSGImage.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <vector>

using osg::UInt8;

namespace
{

typedef std::vector<UInt8> Bytes;

/// Compresses a photo-like RGBA image through compressImage.
osg::ImagePtr compressedImage(const Bytes &rgba, int width, int height,
                              DXTCompressor::CompressedFormat format)
{
    osg::ImagePtr image = osg::Image::create();
    osg::addRefCP(image);
    osg::beginEditCP(image);
    image->set(osg::Image::OSG_RGBA_PF, width, height);
    std::memcpy(image->editData(), rgba.data(), rgba.size());
    osg::endEditCP(image);
    EXPECT_TRUE(DXTCompressor::the().compressImage(image, format));
    return image;
}

/// Uploads compressed data as a texture and reads it back as RGBA bytes.
Bytes decodeOnGPU(const osg::ImagePtr &image)
{
    GLuint tex = 0;
    glGenTextures(1, &tex);
    glBindTexture(GL_TEXTURE_2D, tex);
    glCompressedTexImage2D(GL_TEXTURE_2D, 0, image->getPixelFormat(), image->getWidth(),
                           image->getHeight(), 0, GLsizei(image->getSize()), image->getData());
    Bytes out(size_t(image->getWidth()) * image->getHeight() * 4);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, out.data());
    glDeleteTextures(1, &tex);
    EXPECT_TRUE(glErr("decoding on the GPU"));
    return out;
}

int maxDifference(const Bytes &a, const Bytes &b, int channels)
{
    int worst = 0;
    for(size_t i = 0; i < a.size(); i += 4)
        for(int c = 0; c < channels; ++c)
            worst = std::max(worst, std::abs(int(a[i + c]) - int(b[i + c])));
    return worst;
}

class DXTDecodeGL : public ::testing::Test
{
  protected:
    void SetUp(void) override
    {
        if(!osg::HeadlessGLContext::isAvailable())
            GTEST_SKIP() << "no EGL context";
        ASSERT_TRUE(_context.init(16, 16));
        GLint n = 0;
        glGetIntegerv(GL_NUM_EXTENSIONS, &n);
        bool s3tc = false;
        for(GLint i = 0; i < n && !s3tc; ++i)
            s3tc = strcmp(reinterpret_cast<const char *>(glGetStringi(GL_EXTENSIONS, GLuint(i))),
                          "GL_EXT_texture_compression_s3tc") == 0;
        ASSERT_TRUE(s3tc) << "the renderer decodes no S3TC";
    }

    osg::HeadlessGLContext _context;
};

} // namespace

TEST_F(DXTDecodeGL, DXT1DecodesCloseToTheSourceAndAsTheCPUDecoder)
{
    const int width = 256, height = 128;
    Bytes rgba = dxttest::makePhotoImage(width, height, 3);
    for(size_t i = 3; i < rgba.size(); i += 4)
        rgba[i] = 255;

    // an RGBA image asked for DXT1 gets DXT1 with one-bit alpha
    osg::ImagePtr image = compressedImage(rgba, width, height, DXTCompressor::DXT1);
    ASSERT_EQ(33777u, image->getPixelFormat());
    const Bytes gpu = decodeOnGPU(image);
    const Bytes cpu = dxttest::decodeImage(image->getData(), width, height, false);

    // decoders may round the thirds differently by one step, no more
    EXPECT_LE(maxDifference(gpu, cpu, 4), 1);
    // the GPU sees the same error as the CPU decoder, and it is a small one
    const double error = dxttest::rmse(gpu.data(), rgba.data(), size_t(width) * height, 0, 3);
    EXPECT_NEAR(error, dxttest::rmse(cpu.data(), rgba.data(), size_t(width) * height, 0, 3), 0.05);
    EXPECT_LT(error, 14.0);
    RecordProperty("rmse_rgb", std::to_string(error));
    osg::subRefCP(image);
}

TEST_F(DXTDecodeGL, DXT5KeepsAlphaOnTheGPU)
{
    const int width = 128, height = 256;
    const Bytes rgba = dxttest::makePhotoImage(width, height, 4);

    osg::ImagePtr image = compressedImage(rgba, width, height, DXTCompressor::Auto);
    ASSERT_EQ(33779u, image->getPixelFormat());
    const Bytes gpu = decodeOnGPU(image);
    const Bytes cpu = dxttest::decodeImage(image->getData(), width, height, true);

    EXPECT_LE(maxDifference(gpu, cpu, 4), 1);
    EXPECT_LT(dxttest::rmse(gpu.data(), rgba.data(), size_t(width) * height, 0, 3), 14.0);
    EXPECT_LT(dxttest::rmse(gpu.data(), rgba.data(), size_t(width) * height, 3, 1), 3.0);
    osg::subRefCP(image);
}
