// The precomputed normal volume: every channel against a reference written
// from the formulas, exact normals of a ramp and of a sphere, 8- and
// 16-bit volumes, a chunk handed in by the application, and the normals
// read back through getNormal in a shader on the GPU.
#include <OpenSG/PreCentralDiffNormal.h>
#include <OpenSG/VolumeData.h>
#include <OpenSG/VolumeNodeHandler.h>
#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGSimpleGeometry.h>

#include "window/WindowTestSupport.h"
#include <support/TextSupport.h>

#include <cmath>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

using namespace osg;

namespace normalstest
{

/// A single-channel image of the voxels, kept by the caller.
template <class T>
ImagePtr volumeImage(int w, int h, int d, Int32 type, const std::vector<T> &voxels)
{
    ImagePtr image = Image::create();
    addRefCP(image);
    image->set(GL_LUMINANCE, w, h, d, 1, 1, 0.0, reinterpret_cast<const UInt8 *>(voxels.data()),
               type, true, 1);
    return image;
}

/// A volume adopted from voxels, the load's chatter swallowed.
template <class T>
void adoptVoxels(VolumeData &volume, int w, int h, int d, Int32 type, const std::vector<T> &voxels)
{
    ImagePtr        image = volumeImage(w, h, d, type, voxels);
    TextureChunkPtr chunk = TextureChunk::create();
    beginEditCP(chunk);
    chunk->setImage(image);
    endEditCP(chunk);
    subRefCP(image);
    LogCapture quiet;
    testing::internal::CaptureStdout();
    volume.setVolume(chunk, false);
    std::fflush(stdout);
    testing::internal::GetCapturedStdout();
}

/// The channels of one voxel, straight from the formulas, with every
/// neighbour looked up and bounds-checked on its own.
class Reference
{
  public:
    Reference(const std::vector<UInt8> &v, int w, int h, int d) : _v(v), _w(w), _h(h), _d(d) {}

    int at(int x, int y, int z) const
    {
        if(x < 0 || y < 0 || z < 0 || x >= _w || y >= _h || z >= _d)
            return 0;
        return _v[(size_t(z) * _h + y) * _w + x];
    }

    UInt8 channel(char letter, int x, int y, int z) const
    {
        const int    gx  = at(x - 1, y, z) - at(x + 1, y, z);
        const int    gy  = at(x, y - 1, z) - at(x, y + 1, z);
        const int    gz  = at(x, y, z - 1) - at(x, y, z + 1);
        const float  len = std::sqrt(float(gx * gx + gy * gy + gz * gz));
        const float  inv = std::fabs(len) < 0.000001f ? 1.f : 1.f / len;
        const float  nx = gx * inv, ny = gy * inv, nz = gz * inv;
        const bool   face = x == 0 || y == 0 || z == 0 || x == _w - 1 || y == _h - 1 || z == _d - 1;
        switch(letter)
        {
            case 's': return UInt8(at(x, y, z));
            case 'S': return face ? 0 : UInt8(at(x, y, z));
            case 'x': return UInt8(int(nx * 127.f + 127.f));
            case 'y': return UInt8(int(ny * 127.f + 127.f));
            case 'z': return UInt8(int(nz * 127.f + 127.f));
            case 'g': return 255; // the lower bound of 255 makes it constant
            case 't': return UInt8(int(255.f * std::acos(std::max(-1.f, std::min(1.f, nz))) / 3.1415927f));
            case 'p':
            {
                const float r   = std::sqrt(nx * nx + ny * ny);
                float       phi = r == 0.f ? std::acos(r) : std::acos(std::max(-1.f, std::min(1.f, nx / r)));
                if(ny < 0.f)
                    phi = 6.2831855f - phi;
                return UInt8(int(255.f * phi / 6.2831855f));
            }
        }
        return 0;
    }

    /// Checks every voxel of image in the channels of format.
    void expectImage(const ImagePtr &image, const std::string &format) const
    {
        ASSERT_NE(image, NullFC);
        ASSERT_EQ(image->getWidth(), _w);
        ASSERT_EQ(image->getHeight(), _h);
        ASSERT_EQ(image->getDepth(), _d);
        ASSERT_EQ(image->getDataType(), Int32(GL_UNSIGNED_BYTE));
        ASSERT_EQ(image->getSize(), size_t(_w) * _h * _d * format.size());
        const UInt8 *p      = image->getData();
        int          errors = 0;
        for(int z = 0; z < _d; ++z)
            for(int y = 0; y < _h; ++y)
                for(int x = 0; x < _w; ++x)
                    for(char c : format)
                    {
                        const UInt8 expected = channel(c, x, y, z);
                        if(*p != expected && ++errors < 10)
                            ADD_FAILURE() << format << " channel " << c << " at " << x << ' '
                                          << y << ' ' << z << ": " << int(*p) << " instead of "
                                          << int(expected);
                        ++p;
                    }
        EXPECT_EQ(errors, 0) << format;
    }

  private:
    const std::vector<UInt8> &_v;
    int                       _w, _h, _d;
};

std::vector<UInt8> randomVoxels(size_t count, unsigned seed)
{
    std::vector<UInt8> v(count);
    std::mt19937       random(seed);
    for(UInt8 &x : v)
        x = UInt8(random() & 0xFF);
    return v;
}

/// A ball of radius 5 around (8, 8, 8), value 200 inside, 0 outside.
std::vector<UInt8> ballVoxels(int n)
{
    std::vector<UInt8> v(size_t(n) * n * n);
    for(int z = 0; z < n; ++z)
        for(int y = 0; y < n; ++y)
            for(int x = 0; x < n; ++x)
                v[(size_t(z) * n + y) * n + x] =
                    (x - 8) * (x - 8) + (y - 8) * (y - 8) + (z - 8) * (z - 8) <= 25 ? 200 : 0;
    return v;
}

/// The normals of an image, in "xyz", through a local copy of the pointer.
ImagePtr normalsOf(const ImagePtr &volume, const std::string &format = "xyz")
{
    PreCentralDiffNormal normals;
    ImagePtr             in  = volume;
    ImagePtr             out = Image::create();
    addRefCP(out);
    EXPECT_TRUE(normals.createPrecomputedNormals(in, out, format));
    return out;
}

/// The "xyz" normals of an 8-bit volume, checked voxel by voxel against
/// the reference; the caller releases them.
ImagePtr checkedNormals(const std::vector<UInt8> &v, int w, int h, int d)
{
    ImagePtr volume  = volumeImage(w, h, d, GL_UNSIGNED_BYTE, v);
    ImagePtr normals = normalsOf(volume);
    subRefCP(volume);
    Reference(v, w, h, d).expectImage(normals, "xyz");
    return normals;
}

const UInt8 *texel(const ImagePtr &image, int x, int y, int z)
{
    return image->getData() +
           ((size_t(z) * image->getHeight() + y) * image->getWidth() + x) * 3;
}

#define EXPECT_TEXEL(image, x, y, z, r, g, b)                                                \
    do                                                                                       \
    {                                                                                        \
        const UInt8 *t_ = texel(image, x, y, z);                                             \
        EXPECT_EQ(int(t_[0]), r) << x << ' ' << y << ' ' << z;                               \
        EXPECT_EQ(int(t_[1]), g) << x << ' ' << y << ' ' << z;                               \
        EXPECT_EQ(int(t_[2]), b) << x << ' ' << y << ' ' << z;                               \
    } while(false)

} // namespace normalstest

using namespace normalstest;

// --- the normals ---------------------------------------------------------------------------

TEST(PreCentralDiffNormal, RampGivesTheAxisAgainstItsSlope)
{
    // v = 10 x + 3: inside, the gradient v(x-1) - v(x+1) = -20 points to -x;
    // at x = 0 the missing left neighbour (0) keeps it so; at the last
    // column the missing right neighbour turns it to +x
    const int          w = 6, h = 5, d = 4;
    std::vector<UInt8> v(size_t(w) * h * d);
    for(size_t i = 0; i < v.size(); ++i)
        v[i] = UInt8(10 * (i % w) + 3);
    ImagePtr normals = checkedNormals(v, w, h, d);
    EXPECT_EQ(normals->getPixelFormat(), UInt32(GL_RGB));
    for(int x = 0; x < w - 1; ++x)
        EXPECT_TEXEL(normals, x, 2, 2, 0, 127, 127);
    EXPECT_TEXEL(normals, w - 1, 2, 2, 254, 127, 127);
    subRefCP(normals);
}

TEST(PreCentralDiffNormal, BallNormalsPointOutward)
{
    const int          n = 16;
    ImagePtr normals = checkedNormals(ballVoxels(n), n, n, n);

    // the six poles: one neighbour inside, the other out, the side
    // neighbours both out
    EXPECT_TEXEL(normals, 13, 8, 8, 254, 127, 127);
    EXPECT_TEXEL(normals, 3, 8, 8, 0, 127, 127);
    EXPECT_TEXEL(normals, 8, 13, 8, 127, 254, 127);
    EXPECT_TEXEL(normals, 8, 3, 8, 127, 0, 127);
    EXPECT_TEXEL(normals, 8, 8, 13, 127, 127, 254);
    EXPECT_TEXEL(normals, 8, 8, 3, 127, 127, 0);
    // the centre and the air far away: no gradient, all 127
    EXPECT_TEXEL(normals, 8, 8, 8, 127, 127, 127);
    EXPECT_TEXEL(normals, 0, 15, 1, 127, 127, 127);

    // wherever there is a gradient it leaves the ball
    for(int z = 0; z < n; ++z)
        for(int y = 0; y < n; ++y)
            for(int x = 0; x < n; ++x)
            {
                const UInt8 *t = texel(normals, x, y, z);
                const Vec3f  normal(t[0] - 127.f, t[1] - 127.f, t[2] - 127.f);
                if(normal.length() > 0.f)
                {
                    EXPECT_GT(normal.dot(Vec3f(x - 8.f, y - 8.f, z - 8.f)), 0.f)
                        << x << ' ' << y << ' ' << z;
                }
            }
    subRefCP(normals);
}

TEST(PreCentralDiffNormal, EveryChannelMatchesTheFormulas)
{
    // odd edges, so that rows end in the middle of any block of voxels
    const int          w = 37, h = 5, d = 4;
    std::vector<UInt8> v = randomVoxels(size_t(w) * h * d, 7);
    ImagePtr  volume     = volumeImage(w, h, d, GL_UNSIGNED_BYTE, v);
    Reference reference(v, w, h, d);

    const UInt32 pixelFormats[] = {GL_LUMINANCE, GL_LUMINANCE_ALPHA, GL_RGB, GL_RGBA};
    for(const std::string format : {"xyz", "zyx", "s", "S", "x", "y", "z", "g", "t", "p", "sS",
                                    "tp", "xyzg", "Sxyz", "xyzs", "gtps", "pppp"})
    {
        ImagePtr out = normalsOf(volume, format);
        EXPECT_EQ(out->getPixelFormat(), pixelFormats[format.size() - 1]) << format;
        reference.expectImage(out, format);
        subRefCP(out);
    }
    subRefCP(volume);

    // rows longer than the scratch of one pass
    const int          lw = 300;
    std::vector<UInt8> lv = randomVoxels(size_t(lw) * 3 * 3, 9);
    ImagePtr           longRows = volumeImage(lw, 3, 3, GL_UNSIGNED_BYTE, lv);
    for(const std::string format : {"Sxyz", "tp"})
    {
        ImagePtr out = normalsOf(longRows, format);
        Reference(lv, lw, 3, 3).expectImage(out, format);
        subRefCP(out);
    }
    subRefCP(longRows);
}

TEST(PreCentralDiffNormal, LargeVolumeIsSplitWithoutSeams)
{
    // enough voxels for several slabs; each slab's first and last slice
    // reads its neighbours' voxels
    const int          w = 130, h = 128, d = 131;
    subRefCP(checkedNormals(randomVoxels(size_t(w) * h * d, 11), w, h, d));
}

TEST(PreCentralDiffNormal, SixteenBitVolumeIsDifferentiatedAtEightBits)
{
    // values 257 v of an 8-bit ball span 0..51400; the reduction stretches
    // the range found to 0..255
    const int           n = 16;
    std::vector<UInt8>  v8 = ballVoxels(n);
    std::vector<UInt16> v16(v8.begin(), v8.end());
    for(UInt16 &x : v16)
        x = UInt16(x * 257);
    ImagePtr volume = volumeImage(n, n, n, GL_UNSIGNED_SHORT, v16);

    ImagePtr in      = volume;
    ImagePtr normals = Image::create();
    addRefCP(normals);
    PreCentralDiffNormal strategy;
    ASSERT_TRUE(strategy.createPrecomputedNormals(in, normals, "sxyz"));
    EXPECT_EQ(in, volume) << "the caller's pointer stays on its image";
    EXPECT_EQ(volume->getDataType(), Int32(GL_UNSIGNED_SHORT));
    ASSERT_EQ(volume->getSize(), v16.size() * 2);
    EXPECT_EQ(std::memcmp(volume->getData(), v16.data(), v16.size() * 2), 0)
        << "the volume's own voxels are left alone";

    std::vector<UInt8> stretched(v8.size());
    for(size_t i = 0; i < v8.size(); ++i)
        stretched[i] = v8[i] != 0 ? 255 : 0;
    Reference(stretched, n, n, n).expectImage(normals, "sxyz");
    subRefCP(normals);
    subRefCP(volume);

    // a colour volume is taken by its luminance
    std::vector<UInt8> rgb(v8.size() * 3);
    for(size_t i = 0; i < v8.size(); ++i)
        rgb[3 * i] = rgb[3 * i + 1] = rgb[3 * i + 2] = v8[i];
    ImagePtr colour = Image::create();
    addRefCP(colour);
    colour->set(GL_RGB, n, n, n, 1, 1, 0.0, rgb.data(), GL_UNSIGNED_BYTE, true, 1);
    ImagePtr fromColour = normalsOf(colour, "sxyz");
    Reference(v8, n, n, n).expectImage(fromColour, "sxyz");
    subRefCP(fromColour);
    subRefCP(colour);
}

TEST(PreCentralDiffNormal, BadFormatsAndImagesAreRefused)
{
    std::vector<UInt8>   v(8, 100);
    ImagePtr             volume = volumeImage(2, 2, 2, GL_UNSIGNED_BYTE, v);
    ImagePtr             out    = Image::create();
    PreCentralDiffNormal normals;
    addRefCP(out);
    {
        LogCapture log;
        EXPECT_FALSE(normals.createPrecomputedNormals(volume, out, ""));
        EXPECT_TRUE(corvanetest::contains(
            log.take(), "Invalid outputFormat length in createNormalVolume: 0\n"));
        EXPECT_FALSE(normals.createPrecomputedNormals(volume, out, "xyzsS"));
        EXPECT_TRUE(corvanetest::contains(
            log.take(), "Invalid outputFormat length in createNormalVolume: 5\n"));
        EXPECT_FALSE(normals.createPrecomputedNormals(volume, out, "xyq"));
        EXPECT_FALSE(normals.createPrecomputedNormals(volume, out, std::string("x\0z", 3)));
        EXPECT_EQ(log.take(), "") << "an unknown letter is refused without a message";
    }

    ImagePtr none = NullFC;
    EXPECT_FALSE(normals.createPrecomputedNormals(none, out, "xyz"));
    EXPECT_FALSE(normals.createPrecomputedNormals(volume, none, "xyz"));

    // one voxel: no neighbours, no gradient
    ImagePtr single = volumeImage(1, 1, 1, GL_UNSIGNED_BYTE, std::vector<UInt8>(1, 90));
    EXPECT_TRUE(normals.createPrecomputedNormals(single, out, "xyzS"));
    ASSERT_EQ(out->getSize(), 4u);
    EXPECT_EQ(out->getData()[0], 127);
    EXPECT_EQ(out->getData()[1], 127);
    EXPECT_EQ(out->getData()[2], 127);
    EXPECT_EQ(out->getData()[3], 0) << "the voxel lies on the faces";

    // an image without voxels gives none
    ImagePtr empty = Image::create();
    addRefCP(empty);
    EXPECT_TRUE(normals.createPrecomputedNormals(empty, out, "xyz"));
    EXPECT_EQ(out->getSize(), 0u);

    subRefCP(empty);
    subRefCP(single);
    subRefCP(out);
    subRefCP(volume);
}

// --- the texture chunk ---------------------------------------------------------------------

TEST(PreCentralDiffNormal, InitBuildsTheNormalsTexture)
{
    const int          n = 16;
    std::vector<UInt8> v = ballVoxels(n);
    VolumeData         volume;
    adoptVoxels(volume, n, n, n, GL_UNSIGNED_BYTE, v);

    PreCentralDiffNormal normals;
    EXPECT_EQ(normals.getNormalsTextureChunk(), NullFC);
    normals.init(&volume);
    TextureChunkPtr chunk = normals.getNormalsTextureChunk();
    ASSERT_NE(chunk, NullFC);
    EXPECT_EQ(chunk->getInternalFormat(), GLenum(GL_RGB8));
    EXPECT_EQ(chunk->getMinFilter(), GLenum(GL_LINEAR));
    EXPECT_EQ(chunk->getMagFilter(), GLenum(GL_LINEAR));
    EXPECT_EQ(chunk->getWrapS(), GLenum(GL_CLAMP_TO_EDGE));
    EXPECT_EQ(chunk->getWrapT(), GLenum(GL_CLAMP_TO_EDGE));
    EXPECT_EQ(chunk->getWrapR(), GLenum(GL_CLAMP_TO_EDGE));
    ImagePtr image = chunk->getImage();
    ASSERT_NE(image, NullFC);
    EXPECT_EQ(image->getPixelFormat(), UInt32(GL_RGB));
    EXPECT_EQ(image->getMipMapCount(), 1);
    EXPECT_EQ(image->getFrameCount(), 1);
    Reference(v, n, n, n).expectImage(image, "xyz");

    // a second init refreshes nothing but the sampling
    normals.init(&volume);
    EXPECT_EQ(normals.getNormalsTextureChunk(), chunk);
    EXPECT_EQ(chunk->getImage(), image);
}

TEST(PreCentralDiffNormal, InitOfSixteenBitAndOneVoxelVolumes)
{
    VolumeData          wide;
    std::vector<UInt16> v16(4 * 4 * 4, 0);
    v16[21] = 60000;
    adoptVoxels(wide, 4, 4, 4, GL_UNSIGNED_SHORT, v16);
    const std::vector<UInt8> before(wide.getVolumeImage()->getData(),
                                    wide.getVolumeImage()->getData() + wide.getVolumeImage()->getSize());
    PreCentralDiffNormal normals;
    normals.init(&wide);
    ASSERT_NE(normals.getNormalsTextureChunk(), NullFC);
    ImagePtr image = normals.getNormalsTextureChunk()->getImage();
    EXPECT_EQ(image->getWidth(), 4);
    EXPECT_EQ(image->getDepth(), 4);
    EXPECT_EQ(image->getDataType(), Int32(GL_UNSIGNED_BYTE));
    EXPECT_EQ(wide.getVolumeImage()->getDataType(), Int32(GL_UNSIGNED_SHORT));
    EXPECT_EQ(std::vector<UInt8>(wide.getVolumeImage()->getData(),
                                 wide.getVolumeImage()->getData() + wide.getVolumeImage()->getSize()),
              before);
    std::vector<UInt8> v8(v16.size(), 0);
    v8[21] = 255;
    Reference(v8, 4, 4, 4).expectImage(image, "xyz");

    VolumeData one;
    adoptVoxels(one, 1, 1, 1, GL_UNSIGNED_BYTE, std::vector<UInt8>(1, 40));
    PreCentralDiffNormal single;
    single.init(&one);
    ASSERT_NE(single.getNormalsTextureChunk(), NullFC);
    EXPECT_TEXEL(single.getNormalsTextureChunk()->getImage(), 0, 0, 0, 127, 127, 127);
}

TEST(PreCentralDiffNormal, InitWithoutVolumeChangesNothing)
{
    PreCentralDiffNormal normals;
    normals.init(NULL);
    VolumeData empty;
    normals.init(&empty);
    EXPECT_EQ(normals.getNormalsTextureChunk(), NullFC);

    VolumeData      noImage;
    TextureChunkPtr chunk = TextureChunk::create();
    testing::internal::CaptureStdout();
    {
        LogCapture quiet;
        noImage.setVolume(chunk, false);
    }
    testing::internal::GetCapturedStdout();
    normals.init(&noImage);
    EXPECT_EQ(normals.getNormalsTextureChunk(), NullFC);
}

TEST(PreCentralDiffNormal, GivenChunkOfTheVolumesSizeIsUsedAsItIs)
{
    VolumeData volume;
    adoptVoxels(volume, 4, 3, 2, GL_UNSIGNED_BYTE, randomVoxels(24, 3));

    // the application's own normals, whatever they hold
    ImagePtr mine = Image::create();
    mine->set(GL_RGB, 4, 3, 2, 1, 1, 0.0, NULL, GL_UNSIGNED_BYTE, true, 1);
    std::fill(mine->getData(), mine->getData() + mine->getSize(), 42);
    TextureChunkPtr given = TextureChunk::create();
    beginEditCP(given);
    given->setImage(mine);
    given->setInternalFormat(GL_RGB16);
    given->setMinFilter(GL_NEAREST);
    given->setWrapR(GL_REPEAT);
    endEditCP(given);

    PreCentralDiffNormal normals(given);
    normals.init(&volume);
    EXPECT_EQ(normals.getNormalsTextureChunk(), given);
    EXPECT_EQ(given->getImage(), mine);
    EXPECT_EQ(mine->getData()[0], 42);
    EXPECT_EQ(mine->getData()[mine->getSize() - 1], 42);
    EXPECT_EQ(given->getInternalFormat(), GLenum(GL_RGB16)) << "left as the application set it";
    EXPECT_EQ(given->getMinFilter(), GLenum(GL_LINEAR));
    EXPECT_EQ(given->getWrapR(), GLenum(GL_CLAMP_TO_EDGE));
}

TEST(PreCentralDiffNormal, GivenChunkOfAnotherSizeIsRefilled)
{
    const int          n = 16;
    std::vector<UInt8> v = ballVoxels(n);
    VolumeData         volume;
    adoptVoxels(volume, n, n, n, GL_UNSIGNED_BYTE, v);

    ImagePtr small = Image::create();
    small->set(GL_RGB, 4, 4, 4, 1, 1, 0.0, NULL, GL_UNSIGNED_BYTE, true, 1);
    TextureChunkPtr given = TextureChunk::create();
    beginEditCP(given);
    given->setImage(small);
    given->setInternalFormat(GL_RGB16);
    endEditCP(given);
    addRefCP(given);

    {
        PreCentralDiffNormal normals(given);
        normals.init(&volume);
        EXPECT_EQ(normals.getNormalsTextureChunk(), given) << "the same chunk, refilled";
        EXPECT_EQ(given->getInternalFormat(), GLenum(GL_RGB8));
        Reference(v, n, n, n).expectImage(given->getImage(), "xyz");
    }
    EXPECT_EQ(given.getRefCount(), 1) << "the strategy let go of the chunk";
    subRefCP(given);
}

TEST(PreCentralDiffNormal, MaterialGetsTheTextureAndTheSamplerUnit)
{
    VolumeData volume;
    adoptVoxels(volume, 2, 2, 2, GL_UNSIGNED_BYTE, randomVoxels(8, 5));
    PreCentralDiffNormal normals;

    ChunkMaterialPtr material = ChunkMaterial::create();
    SHLChunkPtr      shader   = SHLChunk::create();
    ChunkMaterialPtr noMaterial;
    SHLChunkPtr      noShader;
    addRefCP(material);
    addRefCP(shader);

    int unit = 5;
    normals.setMaterialParameter(material, shader, unit, &volume);
    EXPECT_EQ(unit, 5) << "no texture yet, no unit";
    EXPECT_EQ(material->getChunks().size(), 0u);

    normals.init(&volume);
    normals.setMaterialParameter(noMaterial, shader, unit, &volume);
    normals.setMaterialParameter(material, noShader, unit, &volume);
    EXPECT_EQ(unit, 5);

    normals.setMaterialParameter(material, shader, unit, &volume);
    EXPECT_EQ(unit, 6);
    ASSERT_EQ(material->getChunks().size(), 1u);
    EXPECT_EQ(material->getChunks()[0], StateChunkPtr(normals.getNormalsTextureChunk()));
    EXPECT_TRUE(material->getSlots().size() == 0 || material->getSlots()[0] == State::AutoSlotReplace);
    Int32 sampler = -1;
    EXPECT_TRUE(shader->getUniformParameter("normalVolume", sampler));
    EXPECT_EQ(sampler, 5);

    subRefCP(shader);
    subRefCP(material);
}

// --- the shader --------------------------------------------------------------------------------

namespace normalstest
{

/// A main behind the ray caster's preamble that samples getNormal at a
/// texel centre of one slice and shows the normal as a colour: a byte b of
/// the normal volume reads back as b.
const char *const NormalFrameMain = R"GLSL(
uniform float slice;

void main()
{
    Ray ray;
    SamplePoint current;
    SamplePoint previous;
    current.position = vec3(gl_TexCoord[0].xy, slice);
    getNormal(ray, current, previous);
    gl_FragColor = vec4(current.normal * 0.5 + 0.5, 1.0);
}
)GLSL";

const char *const NormalFrameVertex = R"GLSL(#version 110
void main()
{
    gl_TexCoord[0] = gl_MultiTexCoord0;
    gl_Position = gl_Vertex;
}
)GLSL";

/// A window of one pixel per texel of a 16 x 16 slice.
class NormalShader : public wintest::FrameFixture
{
  protected:
    NormalShader(void) : FrameFixture(16, 16) {}
};

} // namespace normalstest

TEST_F(NormalShader, GetNormalReadsTheNormalVolume)
{
    const int          n = 16;
    std::vector<UInt8> v = ballVoxels(n);
    VolumeData         volume;
    adoptVoxels(volume, n, n, n, GL_UNSIGNED_BYTE, v);
    PreCentralDiffNormal normals;
    normals.init(&volume);

    SHLChunkPtr shader = SHLChunk::create();
    beginEditCP(shader);
    shader->setVertexProgram(NormalFrameVertex);
    shader->setFragmentProgram(VolumeNodeHandler().getPreambleShaderString() + normals.getFragmentShaderString() +
                               NormalFrameMain);
    endEditCP(shader);

    // two textures before it, as the ray caster's own come first
    ChunkMaterialPtr material = ChunkMaterial::create();
    beginEditCP(material, ChunkMaterial::ChunksFieldMask);
    material->addChunk(shader);
    for(int i = 0; i < 2; ++i)
    {
        ImagePtr flat = Image::create();
        flat->set(GL_RGB, 2, 2, 2, 1, 1, 0.0, NULL, GL_UNSIGNED_BYTE, true, 1);
        material->addChunk(wintest::nearestTexture(flat));
    }
    endEditCP(material, ChunkMaterial::ChunksFieldMask);
    int unit = 2;
    normals.setMaterialParameter(material, shader, unit, &volume);
    ASSERT_EQ(unit, 3);

    NodePtr quad = Node::create();
    beginEditCP(quad, Node::CoreFieldMask);
    // the whole window, texture coordinates 0 to 1
    GeometryPtr plane = makePlaneGeo(2.f, 2.f, 1, 1);
    beginEditCP(plane, Geometry::MaterialFieldMask);
    plane->setMaterial(material);
    endEditCP(plane, Geometry::MaterialFieldMask);
    quad->setCore(plane);
    endEditCP(quad, Node::CoreFieldMask);
    beginEditCP(root, Node::ChildrenFieldMask);
    root->addChild(quad);
    endEditCP(root, Node::ChildrenFieldMask);
    port(0, 1, 0, 1, solid(wintest::Grey));
    // the quad ignores the camera, but must lie in its view to be drawn
    Matrix back;
    back.setTranslate(0.f, 0.f, 1.f);
    beginEditCP(beacon);
    TransformPtr::dcast(beacon->getCore())->setMatrix(back);
    endEditCP(beacon);

    ImagePtr expected = normals.getNormalsTextureChunk()->getImage();
    for(int z : {3, 6, 8, 12})
    {
        beginEditCP(shader, SHLChunk::ParametersFieldMask);
        shader->setUniformParameter("slice", Real32((z + 0.5) / n));
        endEditCP(shader, SHLChunk::ParametersFieldMask);
        frame();
        std::vector<wintest::RGBA> px = wintest::readAll(win);
        wintest::writePNG("normals_slice" + std::to_string(z), px, n, n);
        int errors = 0;
        for(int y = 0; y < n; ++y)
            for(int x = 0; x < n; ++x)
            {
                const UInt8         *t = texel(expected, x, y, z);
                const wintest::RGBA &p = px[y * n + x];
                if((std::abs(p.r - t[0]) > 1 || std::abs(p.g - t[1]) > 1 ||
                    std::abs(p.b - t[2]) > 1) && ++errors < 10)
                    ADD_FAILURE() << x << ' ' << y << ' ' << z << ": " << p << " instead of "
                                  << int(t[0]) << ',' << int(t[1]) << ',' << int(t[2]);
            }
        EXPECT_EQ(errors, 0) << "slice " << z;
    }
}
