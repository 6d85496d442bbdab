// NIfTI-1 volumes: files the test writes itself from the header's byte
// layout (either byte order, plain and gzip), read through Image::read;
// the writer's files checked at the same offsets; hostile headers refused
// with their log line inside memory and time limits.
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGImageFileHandler.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGNIfTIImageFileType.h>

#include "../support/LimitedRun.h"
#include "../support/ScratchDir.h"
#include "../support/TextSupport.h"
#include "../support/ZlibSupport.h"
#include "VolumeTransformSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

using namespace osg;
using corvanetest::contains;
using corvanetest::deflated;
using corvanetest::scratchPath;

namespace
{

/// A NIfTI-1 single-file header and voxels, put together byte by byte.
struct NiftiFile
{
    bool   big        = false;
    Int16  dims[8]    = {3, 3, 4, 5, 1, 1, 1, 1};
    Int16  datatype   = 2;
    Int16  bitpix     = 8;
    Real32 pixdim[8]  = {1.f, 0.5f, 0.75f, 2.5f, 1.f, 1.f, 1.f, 1.f};
    Real32 voxOffset  = 352.f;
    Real32 slope      = 0.f;
    Real32 inter      = 0.f;
    Int32  sizeofHdr  = 348;
    const char *magic = "n+1";
    Int16  qformCode  = 0;
    Int16  sformCode  = 0;
    Real32 quatern[6] = {0, 0, 0, 0, 0, 0}; // b, c, d, offsets x, y, z
    Real32 srow[12]   = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};

    std::string head;

    template <class T> void put(size_t offset, T value)
    {
        unsigned char b[sizeof(T)];
        std::memcpy(b, &value, sizeof(T));
        for(size_t i = 0; i < sizeof(T); ++i)
            head[offset + i] = char(b[big ? sizeof(T) - 1 - i : i]);
    }

    /// The header padded to vox_offset (or 352), then `voxels` as given.
    std::string bytes(const std::string &voxels)
    {
        const size_t start = voxOffset >= 352.f && voxOffset < 4096.f ? size_t(voxOffset) : 352;
        head.assign(start, '\0');
        put(0, sizeofHdr);
        for(int i = 0; i < 8; ++i)
            put(40 + 2 * i, dims[i]);
        put(70, datatype);
        put(72, bitpix);
        for(int i = 0; i < 8; ++i)
            put(76 + 4 * i, pixdim[i]);
        put(108, voxOffset);
        put(112, slope);
        put(116, inter);
        put(252, qformCode);
        put(254, sformCode);
        for(int i = 0; i < 6; ++i)
            put(256 + 4 * i, quatern[i]);
        for(int i = 0; i < 12; ++i)
            put(280 + 4 * i, srow[i]);
        std::memcpy(&head[344], magic, std::strlen(magic) + 1);
        return head + voxels;
    }

    /// Element values in the file's byte order.
    template <class T> std::string encode(const std::vector<T> &values) const
    {
        std::string out;
        for(T v : values)
        {
            unsigned char b[sizeof(T)];
            std::memcpy(b, &v, sizeof(T));
            for(size_t i = 0; i < sizeof(T); ++i)
                out += char(b[big ? sizeof(T) - 1 - i : i]);
        }
        return out;
    }
};

void writeNifti(const std::string &path, const std::string &bytes)
{
    std::ofstream out(path, std::ios::binary);
    out << bytes;
}

std::string readNifti(const std::string &path)
{
    std::ifstream      in(path, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

/// A voxel value that tells x, y and z apart.
int niftiValue(int x, int y, int z)
{
    return x + 10 * y + 100 * z;
}

class NIfTIFile : public ::testing::Test
{
  protected:
    void TearDown(void) override
    {
        for(ImagePtr image : _images)
            subRefCP(image);
        ImageFileHandler::the().setMaxImageBytes(0);
    }

    ImagePtr load(const std::string &path)
    {
        ImagePtr image = Image::create();
        addRefCP(image);
        _images.push_back(image);
        return image->read(path.c_str()) ? image : NullFC;
    }

    /// Reading path fails, and so does reading its bytes as a stream (which
    /// skips the handler's check of the first bytes); one of them logs
    /// `message`.
    void expectRefused(const std::string &path, const std::string &message)
    {
        LogCapture log;
        EXPECT_EQ(load(path), NullFC) << path;
        std::istringstream in(readNifti(path));
        EXPECT_EQ(ImageFileHandler::the().read(in, "image/x-nifti"), NullFC) << path;
        const std::string text = log.take();
        EXPECT_TRUE(contains(text, message)) << path << " logged:\n" << text;
    }

    std::vector<ImagePtr> _images;
};

/// NIfTI stores its forms as floats.
void expectNiftiTransform(const std::vector<double> &got, const std::vector<double> &want)
{
    voltest::expectTransform(got, want, 1e-5);
}

template <class T> T niftiVoxel(ImagePtr image, int x, int y, int z)
{
    T v;
    const size_t index = size_t(x + image->getWidth() * (y + image->getHeight() * z));
    std::memcpy(&v, image->getData() + index * sizeof(T), sizeof(T));
    return v;
}

} // namespace

TEST_F(NIfTIFile, EveryTypeInEitherByteOrderPlainAndCompressedLoadsInIndexOrder)
{
    const int w = 3, h = 4, d = 5;

    struct Case
    {
        Int16    datatype;
        Int16    bitpix;
        GLenum   imageType;
        int      offset;   // what reading adds to signed values
        Real32   scale;    // file value = scale * niftiValue - offset
    };
    const Case cases[] = {
        {2, 8, GL_UNSIGNED_BYTE, 0, 0.5f},       // uint8 (values up to 213)
        {4, 16, GL_UNSIGNED_SHORT, 32768, -1.f}, // int16, negative values
        {512, 16, GL_UNSIGNED_SHORT, 0, 100.f},  // uint16
        {16, 32, GL_FLOAT, 0, -0.25f},           // float32
    };

    for(const Case &c : cases)
    {
        for(bool big : {false, true})
        {
            for(bool gzip : {false, true})
            {
                NiftiFile file;
                file.big      = big;
                file.datatype = c.datatype;
                file.bitpix   = c.bitpix;

                std::string voxels;
                for(int z = 0; z < d; ++z)
                    for(int y = 0; y < h; ++y)
                        for(int x = 0; x < w; ++x)
                        {
                            const Real32 v = c.scale * Real32(niftiValue(x, y, z));
                            switch(c.datatype)
                            {
                                case 2:   voxels += file.encode(std::vector<UInt8>{UInt8(v)}); break;
                                case 4:   voxels += file.encode(std::vector<Int16>{Int16(v)}); break;
                                case 512: voxels += file.encode(std::vector<UInt16>{UInt16(v)}); break;
                                default:  voxels += file.encode(std::vector<Real32>{v}); break;
                            }
                        }

                std::string bytes = file.bytes(voxels);
                std::string name  = std::string("t") + std::to_string(c.datatype) +
                                   (big ? "b" : "l") + (gzip ? ".nii.gz" : ".nii");
                if(gzip)
                    bytes = deflated(bytes, true);
                writeNifti(scratchPath(name), bytes);

                SCOPED_TRACE(name);
                ImagePtr image = load(scratchPath(name));
                ASSERT_NE(image, NullFC);
                EXPECT_EQ(image->getWidth(), w);
                EXPECT_EQ(image->getHeight(), h);
                EXPECT_EQ(image->getDepth(), d);
                EXPECT_EQ(image->getDataType(), c.imageType);
                EXPECT_EQ(image->getPixelFormat(), GL_LUMINANCE);
                ASSERT_NE(image->findAttachmentField("SliceThickness"), nullptr);
                EXPECT_EQ(*image->findAttachmentField("SliceThickness"), "0.5 0.75 2.5");
                if(c.offset != 0)
                {
                    ASSERT_NE(image->findAttachmentField("ValueOffset"), nullptr);
                    EXPECT_EQ(*image->findAttachmentField("ValueOffset"), "32768");
                }

                for(int z = 0; z < d; ++z)
                    for(int y = 0; y < h; ++y)
                        for(int x = 0; x < w; ++x)
                        {
                            const Real32 v = c.scale * Real32(niftiValue(x, y, z));
                            switch(c.datatype)
                            {
                                case 2:
                                    ASSERT_EQ(niftiVoxel<UInt8>(image, x, y, z), UInt8(v));
                                    break;
                                case 4:
                                    ASSERT_EQ(niftiVoxel<UInt16>(image, x, y, z),
                                              UInt16(Int32(Int16(v)) + 32768));
                                    break;
                                case 512:
                                    ASSERT_EQ(niftiVoxel<UInt16>(image, x, y, z), UInt16(v));
                                    break;
                                default:
                                    ASSERT_EQ(niftiVoxel<Real32>(image, x, y, z), v);
                                    break;
                            }
                        }
            }
        }
    }
}

TEST_F(NIfTIFile, ScalingOffsetsColourAndExtraVolumes)
{
    // scl_slope and scl_inter make floats; vox_offset past an extension
    {
        NiftiFile file;
        file.dims[1] = 2, file.dims[2] = 2, file.dims[3] = 1;
        file.slope     = 2.f;
        file.inter     = -1.5f;
        file.voxOffset = 400.f;
        writeNifti(scratchPath("scaled.nii"), file.bytes(std::string("\x00\x01\x02\xff", 4)));

        ImagePtr image = load(scratchPath("scaled.nii"));
        ASSERT_NE(image, NullFC);
        EXPECT_EQ(image->getDataType(), GL_FLOAT);
        EXPECT_EQ(niftiVoxel<Real32>(image, 0, 0, 0), -1.5f);
        EXPECT_EQ(niftiVoxel<Real32>(image, 1, 0, 0), 0.5f);
        EXPECT_EQ(niftiVoxel<Real32>(image, 0, 1, 0), 2.5f);
        EXPECT_EQ(niftiVoxel<Real32>(image, 1, 1, 0), 508.5f);
    }

    // RGB24 is three channels; a slope of 1 and intercept 0 changes nothing
    {
        NiftiFile file;
        file.dims[1] = 2, file.dims[2] = 1, file.dims[3] = 1;
        file.datatype = 128;
        file.bitpix   = 24;
        file.slope    = 1.f;
        writeNifti(scratchPath("rgb.nii"), file.bytes("abcdef"));

        ImagePtr image = load(scratchPath("rgb.nii"));
        ASSERT_NE(image, NullFC);
        EXPECT_EQ(image->getPixelFormat(), GL_RGB);
        EXPECT_EQ(image->getDataType(), GL_UNSIGNED_BYTE);
        EXPECT_EQ(std::string(reinterpret_cast<const char *>(image->getData()), 6), "abcdef");
    }

    // a time series gives its first volume, with a warning; a negative
    // pixdim (a flipped axis in some writers) counts by its size
    {
        NiftiFile file;
        file.dims[0] = 4, file.dims[1] = 2, file.dims[2] = 1, file.dims[3] = 2, file.dims[4] = 3;
        file.pixdim[2] = -3.f;
        writeNifti(scratchPath("series.nii"), file.bytes("ABCDabcd0123"));

        LogCapture log;
        ImagePtr   image = load(scratchPath("series.nii"));
        ASSERT_NE(image, NullFC);
        EXPECT_TRUE(contains(log.take(), "NIfTI: the file holds more than one volume; reading the first"));
        EXPECT_EQ(image->getDepth(), 2);
        EXPECT_EQ(std::string(reinterpret_cast<const char *>(image->getData()), 4), "ABCD");
        EXPECT_EQ(*image->findAttachmentField("SliceThickness"), "0.5 3 2.5");
    }
}

TEST_F(NIfTIFile, WrittenFilesHaveTheDocumentedLayoutAndReadBack)
{
    ImagePtr image = Image::create();
    addRefCP(image);
    _images.push_back(image);

    const int w = 5, h = 3, d = 4;
    ASSERT_TRUE(image->set(GL_LUMINANCE, w, h, d, 1, 1, 0.0, nullptr, GL_UNSIGNED_SHORT));
    for(int i = 0; i < w * h * d; ++i)
    {
        const UInt16 v = UInt16(i * 1000);
        std::memcpy(image->getData() + 2 * i, &v, 2);
    }
    image->setAttachmentField("SliceThickness", "0.25 1 3");

    for(const char *name : {"w.nii", "w.nii.gz"})
    {
        SCOPED_TRACE(name);
        ASSERT_TRUE(image->write(scratchPath(name).c_str()));

        std::string bytes = readNifti(scratchPath(name));
        if(contains(name, ".gz"))
        {
            // the test inflates it itself
            ASSERT_GE(bytes.size(), 2u);
            EXPECT_EQ(UInt8(bytes[0]), 0x1f);
            EXPECT_EQ(UInt8(bytes[1]), 0x8b);
            gzFile file = gzopen(scratchPath(name).c_str(), "rb");
            ASSERT_NE(file, nullptr);
            std::string plain(1 << 16, '\0');
            const int   got = gzread(file, &plain[0], unsigned(plain.size()));
            gzclose(file);
            ASSERT_GT(got, 0);
            bytes = plain.substr(0, size_t(got));
        }
        ASSERT_EQ(bytes.size(), 352u + 2u * w * h * d);

        Int32  sizeofHdr;
        Int16  dims[4], datatype;
        Real32 pixdim[4], voxOffset;
        std::memcpy(&sizeofHdr, &bytes[0], 4);
        std::memcpy(dims, &bytes[40], 8);
        std::memcpy(&datatype, &bytes[70], 2);
        std::memcpy(pixdim, &bytes[76], 16);
        std::memcpy(&voxOffset, &bytes[108], 4);
        EXPECT_EQ(sizeofHdr, 348);
        EXPECT_EQ(dims[0], 3);
        EXPECT_EQ(dims[1], w);
        EXPECT_EQ(dims[2], h);
        EXPECT_EQ(dims[3], d);
        EXPECT_EQ(datatype, 512);
        EXPECT_EQ(pixdim[1], 0.25f);
        EXPECT_EQ(pixdim[2], 1.f);
        EXPECT_EQ(pixdim[3], 3.f);
        EXPECT_EQ(voxOffset, 352.f);
        EXPECT_EQ(bytes.substr(344, 4), std::string("n+1\0", 4));
        EXPECT_EQ(bytes.substr(352), std::string(reinterpret_cast<const char *>(image->getData()),
                                                 2 * w * h * d));

        ImagePtr back = load(scratchPath(name));
        ASSERT_NE(back, NullFC);
        EXPECT_EQ(back->getDataType(), GL_UNSIGNED_SHORT);
        EXPECT_EQ(*back->findAttachmentField("SliceThickness"), "0.25 1 3");
        EXPECT_EQ(std::memcmp(back->getData(), image->getData(), 2 * w * h * d), 0);
    }
}

TEST_F(NIfTIFile, BadHeadersAndDataAreRefusedWithALogLine)
{
    const std::string voxels(60, 'v');
    NiftiFile         good;
    const std::string bytes = good.bytes(voxels);
    writeNifti(scratchPath("good.nii"), bytes);
    ASSERT_NE(load(scratchPath("good.nii")), NullFC);

    writeNifti(scratchPath("short.nii"), bytes.substr(0, 100));
    expectRefused(scratchPath("short.nii"), "NIfTI: the header is short (100 of 348 bytes)");

    writeNifti(scratchPath("truncated.nii"), bytes.substr(0, 352 + 10));
    expectRefused(scratchPath("truncated.nii"), "holds 10 of the 60 voxel bytes");

    writeNifti(scratchPath("truncated.nii.gz"), deflated(bytes, true).substr(0, 40));
    expectRefused(scratchPath("truncated.nii.gz"), "NIfTI");

    std::string corrupt = deflated(bytes, true);
    for(size_t i = 20; i < corrupt.size(); i += 3)
        corrupt[i] = char(corrupt[i] ^ 0x5a);
    writeNifti(scratchPath("corrupt.nii.gz"), corrupt);
    expectRefused(scratchPath("corrupt.nii.gz"), "NIfTI");

    struct Bad
    {
        const char *name;
        void (*change)(NiftiFile &);
        const char *message;
    };
    const Bad bad[] = {
        {"size.nii", [](NiftiFile &f) { f.sizeofHdr = 540; }, "not a NIfTI-1 header"},
        {"magic.nii", [](NiftiFile &f) { f.magic = "n+2"; }, "the magic is not \"n+1\""},
        {"pair.nii", [](NiftiFile &f) { f.magic = "ni1"; }, "separate .img file"},
        {"rank.nii", [](NiftiFile &f) { f.dims[0] = 0; }, "dim[0] is 0, not 1 to 7"},
        {"negative.nii", [](NiftiFile &f) { f.dims[2] = -4; }, "dim[2] is -4; edges must be positive"},
        {"zero.nii", [](NiftiFile &f) { f.dims[3] = 0; }, "dim[3] is 0"},
        {"huge.nii", [](NiftiFile &f) {
             f.dims[1] = f.dims[2] = f.dims[3] = 32767;
             f.datatype = 16;
         }, "larger than the"},
        {"complex.nii", [](NiftiFile &f) { f.datatype = 32; }, "datatype 32 is not read"},
        {"int32.nii", [](NiftiFile &f) { f.datatype = 8; }, "datatype 8 is not read"},
        {"offset.nii", [](NiftiFile &f) { f.voxOffset = 1e30f; }, "vox_offset 1e+30 is no byte offset"},
        {"nanoffset.nii", [](NiftiFile &f) { f.voxOffset = NAN; }, "is no byte offset"},
        {"inside.nii", [](NiftiFile &f) { f.voxOffset = 100.f; }, "vox_offset 100 is no byte offset"},
    };
    for(const Bad &b : bad)
    {
        NiftiFile file;
        b.change(file);
        writeNifti(scratchPath(b.name), file.bytes(voxels));
        expectRefused(scratchPath(b.name), b.message);
    }

    // spacings that are no lengths fall back to 1 with a warning
    NiftiFile flat;
    flat.pixdim[1] = NAN;
    flat.pixdim[3] = 0.f;
    writeNifti(scratchPath("flat.nii"), flat.bytes(voxels));
    LogCapture log;
    ImagePtr   image = load(scratchPath("flat.nii"));
    ASSERT_NE(image, NullFC);
    EXPECT_TRUE(contains(log.take(), "NIfTI: pixdim: voxel spacing"));
    EXPECT_EQ(*image->findAttachmentField("SliceThickness"), "1 0.75 1");
}

TEST_F(NIfTIFile, GzipBombsAndHugeHeadersCostOnlyWhatTheVolumeHolds)
{
    // 4 KiB of voxels announced, 64 MiB of zeros inflated from ~64 KB
    NiftiFile file;
    file.dims[1] = 16, file.dims[2] = 16, file.dims[3] = 16;
    const std::string bomb = deflated(file.bytes(std::string(64u << 20, '\0')), true, 9);
    writeNifti(scratchPath("bomb.nii.gz"), bomb);

    // the budget refuses a header announcing more, before anything is read
    NiftiFile big;
    big.dims[1] = 1024, big.dims[2] = 1024, big.dims[3] = 1024;
    writeNifti(scratchPath("big.nii.gz"), deflated(big.bytes(std::string(1 << 20, '\0')), true));

    const std::string bombPath = scratchPath("bomb.nii.gz");
    const std::string bigPath  = scratchPath("big.nii.gz");

    const corvanetest::LimitedResult result = corvanetest::runLimited(
        [&](void) {
            ImageFileHandler::the().setMaxImageBytes(64 << 20);
            ImagePtr image = Image::create();
            addRefCP(image);
            const bool bombRead = image->read(bombPath.c_str()) && image->getSize() == 4096;
            const bool bigRead  = image->read(bigPath.c_str());
            subRefCP(image);
            return bombRead && !bigRead;
        },
        20, 512ull << 20);

    EXPECT_TRUE(result.passed) << result.log;
    EXPECT_EQ(result.signal, 0);
    EXPECT_LT(result.peakGrowthKiB, 32 * 1024) << "KiB";
    EXPECT_TRUE(contains(result.log, "larger than the 67108864 bytes allowed")) << result.log;
}

TEST_F(NIfTIFile, StreamsOfPlainAndCompressedFilesRead)
{
    NiftiFile         file;
    const std::string bytes = file.bytes(std::string(60, 'q'));

    for(const std::string &data : {bytes, deflated(bytes, true)})
    {
        std::istringstream in(data);
        ImagePtr           image = ImageFileHandler::the().read(in, "image/x-nifti");
        ASSERT_NE(image, NullFC);
        _images.push_back(image);
        EXPECT_EQ(image->getDepth(), 5);
        EXPECT_EQ(image->getData()[59], 'q');
    }

    std::istringstream cut(bytes.substr(0, 360));
    LogCapture         log;
    EXPECT_EQ(ImageFileHandler::the().read(cut, "image/x-nifti"), NullFC);
    EXPECT_TRUE(contains(log.take(), "holds 8 of the 60 voxel bytes"));
}

TEST_F(NIfTIFile, TheSformQformOrPixdimGiveTheVoxelToWorldMatrix)
{
    // pixdim 0.5 0.75 2.5 (the builder's), voxels of a 3 x 4 x 5 uint8 volume
    const std::string voxels(3 * 4 * 5, '\1');
    const double      s    = std::sqrt(0.5);

    struct Case
    {
        const char         *name;
        std::function<void(NiftiFile &)> set;
        std::vector<double> want;
        const char         *warning;
    };
    const Case cases[] = {
        {"neither form: the pixdim scaling", [](NiftiFile &) {},
         {0.5, 0, 0, 0, 0, 0.75, 0, 0, 0, 0, 2.5, 0}, nullptr},
        {"qform without rotation, offsets",
         [](NiftiFile &f) {
             f.qformCode = 1;
             f.quatern[3] = -10.f, f.quatern[4] = 20.f, f.quatern[5] = 3.5f;
         },
         {0.5, 0, 0, -10, 0, 0.75, 0, 20, 0, 0, 2.5, 3.5}, nullptr},
        {"qfac -1 turns the slice axis over",
         [](NiftiFile &f) {
             f.qformCode = 1;
             f.pixdim[0] = -1.f;
         },
         {0.5, 0, 0, 0, 0, 0.75, 0, 0, 0, 0, -2.5, 0}, nullptr},
        {"qform turned 90 degrees about z",
         [s](NiftiFile &f) {
             f.qformCode  = 2;
             f.quatern[2] = Real32(s); // d = sin 45, a = cos 45
             f.quatern[3] = 1.f;
         },
         {0, -0.75, 0, 1, 0.5, 0, 0, 0, 0, 0, 2.5, 0}, nullptr},
        {"qform turned 180 degrees about x (a = 0)",
         [](NiftiFile &f) {
             f.qformCode  = 1;
             f.quatern[0] = 1.f;
         },
         {0.5, 0, 0, 0, 0, -0.75, 0, 0, 0, 0, -2.5, 0}, nullptr},
        {"the sform wins over the qform",
         [](NiftiFile &f) {
             f.qformCode  = 1;
             f.quatern[3] = 99.f;
             f.sformCode  = 4;
             const Real32 rows[12] = {0, 0, -2.5f, 90, -0.5f, 0, 0, 126, 0, 0.75f, 0, -72};
             std::copy(rows, rows + 12, f.srow);
         },
         {0, 0, -2.5, 90, -0.5, 0, 0, 126, 0, 0.75, 0, -72}, nullptr},
        {"an sform that is not finite gives way to the qform",
         [](NiftiFile &f) {
             f.sformCode  = 1;
             f.srow[5]    = NAN;
             f.qformCode  = 1;
             f.quatern[5] = 7.f;
         },
         {0.5, 0, 0, 0, 0, 0.75, 0, 0, 0, 0, 2.5, 7},
         "NIfTI: the sform holds values that are not finite; it is not used"},
    };

    for(const Case &c : cases)
    {
        for(bool big : {false, true})
        {
            SCOPED_TRACE(std::string(c.name) + (big ? ", big endian" : ""));
            NiftiFile file;
            file.big = big;
            c.set(file);
            const std::string path = scratchPath(std::string("form") + (big ? "b" : "l") + ".nii");
            writeNifti(path, file.bytes(voxels));

            LogCapture log;
            ImagePtr   image = load(path);
            ASSERT_NE(image, NullFC);
            expectNiftiTransform(voltest::transformOf(image), c.want);
            // the voxels keep their order and the spacing stays pixdim's
            EXPECT_EQ(image->getWidth(), 3);
            EXPECT_EQ(*image->findAttachmentField("SliceThickness"), "0.5 0.75 2.5");
            const std::string text = log.take();
            if(c.warning != nullptr)
                EXPECT_TRUE(contains(text, c.warning)) << text;
            else
                EXPECT_EQ(text, "");
        }
    }

    // the writer keeps the matrix as its sform, and a stream reads it too
    NiftiFile file;
    file.sformCode        = 1;
    const Real32 rows[12] = {0, 0.75f, 0, -4, 0.5f, 0, 0, 5, 0, 0, -2.5f, 6};
    std::copy(rows, rows + 12, file.srow);
    const std::string path = scratchPath("form-source.nii");
    writeNifti(path, file.bytes(voxels));
    ImagePtr image = load(path);
    ASSERT_NE(image, NullFC);
    const std::string copy = scratchPath("form-copy.nii.gz");
    ASSERT_TRUE(image->write(copy.c_str()));
    ImagePtr back = load(copy);
    ASSERT_NE(back, NullFC);
    expectNiftiTransform(voltest::transformOf(back), {0, 0.75, 0, -4, 0.5, 0, 0, 5, 0, 0, -2.5, 6});

    std::istringstream in(readNifti(path));
    ImagePtr           streamed = ImageFileHandler::the().read(in, "image/x-nifti");
    ASSERT_NE(streamed, NullFC);
    _images.push_back(streamed);
    expectNiftiTransform(voltest::transformOf(streamed), {0, 0.75, 0, -4, 0.5, 0, 0, 5, 0, 0, -2.5, 6});
}
