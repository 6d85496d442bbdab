// DAT, NRRD and MetaImage volumes through Image::read/write and the file
// handler: round trips, the formats' conventions, and bad files.
#include <OpenSG/OSGDATImageFileType.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGImageFileHandler.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGMHDImageFileType.h>
#include <OpenSG/OSGNRRDImageFileType.h>
#include <OpenSG/OSGVolumeHeaders.h>

#include <gtest/gtest.h>
#include <zlib.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

using namespace osg;

namespace
{

void writeFile(const std::string &path, const std::string &bytes)
{
    std::ofstream out(path, std::ios::binary);
    out << bytes;
}

std::string readFile(const std::string &path)
{
    std::ifstream      in(path, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

std::string bytesOf(const std::vector<UInt16> &values, bool big)
{
    std::string out;
    for(UInt16 v : values)
    {
        out += char(big ? v >> 8 : v & 0xFF);
        out += char(big ? v & 0xFF : v >> 8);
    }
    return out;
}

class VolumeFileIO : public ::testing::Test
{
  protected:
    void SetUp(void) override
    {
        char pattern[] = "/tmp/corvane-volumes-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        _dir = pattern;
    }

    void TearDown(void) override
    {
        for(ImagePtr image : _images)
            subRefCP(image);
        DATImageFileType::the().setOptions("");
        NRRDImageFileType::the().setOptions("");
        MHDImageFileType::the().setOptions("");
        std::filesystem::remove_all(_dir);
    }

    std::string path(const std::string &name) const { return _dir + "/" + name; }

    ImagePtr newImage(void)
    {
        ImagePtr image = Image::create();
        addRefCP(image);
        _images.push_back(image);
        return image;
    }

    /// A volume with a pattern that differs in every byte position.
    ImagePtr makeVolume(Int32 w, Int32 h, Int32 d, UInt32 type,
                        UInt32 format = GL_LUMINANCE)
    {
        ImagePtr image = newImage();
        EXPECT_TRUE(image->set(format, w, h, d, 1, 1, 0.0, NULL, Int32(type)));

        UInt8 *data = image->editData();
        if(type == GL_FLOAT)
        {
            for(unsigned long i = 0; i < image->getSize() / 4; ++i)
            {
                float f = float(i) * 0.37f - 3.0f;
                std::memcpy(data + 4 * i, &f, 4);
            }
        }
        else
        {
            for(unsigned long i = 0; i < image->getSize(); ++i)
                data[i] = UInt8(i * 7 + i / 5 + 1);
        }
        image->setAttachmentField("SliceThickness", "1 1 2.5");
        return image;
    }

    /// Reads a file into a new image; NullFC when the read fails.
    ImagePtr load(const std::string &file)
    {
        ImagePtr image = newImage();
        return image->read(file.c_str()) ? image : ImagePtr(NullFC);
    }

    void expectSameVolume(const ImagePtr &a, const ImagePtr &b,
                          const std::string &what)
    {
        ASSERT_NE(b, NullFC) << what;
        EXPECT_EQ(b->getWidth(), a->getWidth()) << what;
        EXPECT_EQ(b->getHeight(), a->getHeight()) << what;
        EXPECT_EQ(b->getDepth(), a->getDepth()) << what;
        EXPECT_EQ(b->getDataType(), a->getDataType()) << what;
        EXPECT_EQ(b->getPixelFormat(), a->getPixelFormat()) << what;
        ASSERT_EQ(b->getSize(), a->getSize()) << what;
        EXPECT_EQ(std::memcmp(b->getData(), a->getData(), a->getSize()), 0)
            << what;

        const std::string *t = b->findAttachmentField("SliceThickness");
        ASSERT_NE(t, nullptr) << what;
        Real64 s[3];
        EXPECT_TRUE(parseSliceThickness(*t, s)) << what << ": " << *t;
        EXPECT_DOUBLE_EQ(s[0], 1.0) << what;
        EXPECT_DOUBLE_EQ(s[2], 2.5) << what;
    }

    std::string           _dir;
    std::vector<ImagePtr> _images;
};

} // namespace

TEST_F(VolumeFileIO, TypesAreRegisteredByMimeTypeAndSuffix)
{
    ImageFileHandler &handler = ImageFileHandler::the();

    EXPECT_EQ(handler.getFileType("image/x-dat"), &DATImageFileType::the());
    EXPECT_EQ(handler.getFileType("image/x-nrrd"), &NRRDImageFileType::the());
    EXPECT_EQ(handler.getFileType("image/x-metaimage"), &MHDImageFileType::the());

    EXPECT_EQ(handler.determineMimetypeFromSuffix("DAT"), "image/x-dat");
    EXPECT_EQ(handler.determineMimetypeFromSuffix("nrrd"), "image/x-nrrd");
    EXPECT_EQ(handler.determineMimetypeFromSuffix("nhdr"), "image/x-nrrd");
    EXPECT_EQ(handler.determineMimetypeFromSuffix("mhd"), "image/x-metaimage");
    EXPECT_EQ(handler.determineMimetypeFromSuffix("mha"), "image/x-metaimage");

    EXPECT_EQ(DATImageFileType::the().getFlags(),
              UInt32(ImageFileType::OSG_READ_SUPPORTED | ImageFileType::OSG_NAMES_OTHER_FILES));
    EXPECT_NE(NRRDImageFileType::the().getFlags() & ImageFileType::OSG_NAMES_OTHER_FILES, 0u);
    EXPECT_NE(MHDImageFileType::the().getFlags() & ImageFileType::OSG_NAMES_OTHER_FILES, 0u);
}

TEST_F(VolumeFileIO, EveryFormatRoundTrips)
{
    struct Variant
    {
        const char    *suffix;
        ImageFileType *type;
        const char    *options;
    };
    const Variant variants[] = {
        {"dat", &DATImageFileType::the(), ""},
        {"dat", &DATImageFileType::the(), "endian=little"},
        {"nrrd", &NRRDImageFileType::the(), ""},
        {"nrrd", &NRRDImageFileType::the(), "encoding=gzip"},
        {"nhdr", &NRRDImageFileType::the(), ""},
        {"mha", &MHDImageFileType::the(), ""},
        {"mha", &MHDImageFileType::the(), "msb=true;compress=true"},
        {"mhd", &MHDImageFileType::the(), "msb=true"},
        {"mhd", &MHDImageFileType::the(), "compress=true"},
    };
    const UInt32 types[] = {GL_UNSIGNED_BYTE, GL_UNSIGNED_SHORT, GL_FLOAT};

    int n = 0;
    for(const Variant &v : variants)
    {
        v.type->setOptions(v.options);

        for(UInt32 type : types)
        {
            for(UInt32 format : {GLenum(GL_LUMINANCE), GLenum(GL_LUMINANCE_ALPHA)})
            {
                const std::string what = std::string(v.suffix) + " " +
                                         v.options + " type " +
                                         std::to_string(type) + " format " +
                                         std::to_string(format);
                const std::string file = path("v" + std::to_string(n++) + "." +
                                              v.suffix);
                ImagePtr original = makeVolume(13, 7, 5, type, format);

                ASSERT_TRUE(original->write(file.c_str())) << what;
                expectSameVolume(original, load(file), what);
            }
        }
        v.type->setOptions("");
    }
}

TEST_F(VolumeFileIO, DATWritesBigEndianUnlessToldOtherwise)
{
    ImagePtr image = makeVolume(2, 1, 1, GL_UNSIGNED_SHORT);
    const UInt16 values[2] = {0x0102, 0xA0B0};
    std::memcpy(image->editData(), values, 4);

    ASSERT_TRUE(image->write(path("big.dat").c_str()));
    EXPECT_EQ(readFile(path("big.raw")), bytesOf({0x0102, 0xA0B0}, true));
    EXPECT_EQ(readFile(path("big.dat")).find("Endian"), std::string::npos);

    DATImageFileType::the().setOptions("endian=little");
    ASSERT_TRUE(image->write(path("little.dat").c_str()));
    EXPECT_EQ(readFile(path("little.raw")), bytesOf({0x0102, 0xA0B0}, false));
    EXPECT_NE(readFile(path("little.dat")).find("Endian:         LITTLE\n"),
              std::string::npos);

    // writing leaves the image's own bytes alone
    EXPECT_EQ(std::memcmp(image->getData(), values, 4), 0);
}

TEST_F(VolumeFileIO, DATHeaderLinesBecomeAttachmentFields)
{
    writeFile(path("head.dat"), "ObjectFileName: head.raw\n"
                                "TaggedFileName: ---\n"
                                "Resolution:     3 2 2\n"
                                "SliceThickness: 0.8 0.8 2\r\n"
                                "Format:         USHORT\n"
                                "ObjectModel:    DENSITY\n"
                                "comment line without colon\n");
    const std::vector<UInt16> voxels = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 0xFFFF};
    writeFile(path("head.raw"), bytesOf(voxels, true));

    LogCapture log(LOG_NOTICE);
    ImagePtr   image = load(path("head.dat"));

    ASSERT_NE(image, NullFC);
    EXPECT_EQ(image->getDimension(), 3);
    EXPECT_EQ(image->getDataType(), GL_UNSIGNED_SHORT);
    EXPECT_EQ(image->getPixelFormat(), UInt32(GL_LUMINANCE));
    EXPECT_EQ(std::memcmp(image->getData(), voxels.data(), 24), 0)
        << "big-endian file data is swapped to host order";

    const std::pair<const char *, const char *> fields[] = {
        {"ObjectFileName", "head.raw"}, {"TaggedFileName", "---"},
        {"Resolution", "3 2 2"},        {"SliceThickness", "0.8 0.8 2"},
        {"Format", "USHORT"},           {"ObjectModel", "DENSITY"}};
    for(const auto &f : fields)
    {
        const std::string *value = image->findAttachmentField(f.first);
        ASSERT_NE(value, nullptr) << f.first;
        EXPECT_EQ(*value, f.second) << f.first;
    }
    EXPECT_NE(log.str().find("Uknown DAT file key: >ObjectModel<"),
              std::string::npos);
}

TEST_F(VolumeFileIO, DATFindsItsRawFileBesideTheHeaderOnly)
{
    std::filesystem::create_directory(path("sub"));
    writeFile(path("sub/v.dat"), "ObjectFileName: v.raw\nResolution: 2 1 1\n"
                                 "Format: UCHAR\n");
    writeFile(path("v.raw"), "AB");

    char old[4096];
    ASSERT_NE(getcwd(old, sizeof(old)), nullptr);
    ASSERT_EQ(chdir(_dir.c_str()), 0);

    // not in the working directory: only the header's folder counts
    LogCapture log;
    ImagePtr   fromCwd = load("sub/v.dat");
    EXPECT_NE(log.take().find("Can not open v.raw image data"), std::string::npos);
    writeFile(path("sub/v.raw"), "CD");
    ImagePtr beside = load("sub/v.dat");

    ASSERT_EQ(chdir(old), 0);

    EXPECT_EQ(fromCwd, NullFC);
    ASSERT_NE(beside, NullFC);
    EXPECT_EQ(std::string(reinterpret_cast<const char *>(beside->getData()), 2),
              "CD");
}

TEST_F(VolumeFileIO, DATReadsGzippedRawFilesAndSkipsTheOffset)
{
    const std::string header = "ObjectFileName: g.raw\nResolution: 4 1 1\n"
                               "Format: UCHAR\nFileOffset: 3\n";
    gzFile gz = gzopen(path("g.raw.gz").c_str(), "wb");
    ASSERT_NE(gz, nullptr);
    gzwrite(gz, "xyzWXYZ", 7);
    gzclose(gz);
    writeFile(path("g.dat"), header);

    ImagePtr image = load(path("g.dat"));
    ASSERT_NE(image, NullFC) << "g.raw.gz is found for g.raw";
    EXPECT_EQ(std::string(reinterpret_cast<const char *>(image->getData()), 4),
              "WXYZ");

    writeFile(path("p.dat"), "ObjectFileName: p.raw\nResolution: 2 1 1\n"
                             "Format: UCHAR\nFileOffset: 1\n");
    writeFile(path("p.raw"), "#hi");
    image = load(path("p.dat"));
    ASSERT_NE(image, NullFC);
    EXPECT_EQ(std::string(reinterpret_cast<const char *>(image->getData()), 2),
              "hi");
}

TEST_F(VolumeFileIO, DATDoubleIsReadFromEightOrFourByteValues)
{
    const std::string header = "ObjectFileName: d.raw\nResolution: 2 1 1\n"
                               "Format: DOUBLE\nEndian: LITTLE\n";
    writeFile(path("d.dat"), header);

    const double doubles[2] = {0.25, -1e6};
    writeFile(path("d.raw"), std::string(reinterpret_cast<const char *>(doubles), 16));
    ImagePtr image = load(path("d.dat"));
    ASSERT_NE(image, NullFC);
    ASSERT_EQ(image->getDataType(), GL_FLOAT);
    const float *f = reinterpret_cast<const float *>(image->getData());
    EXPECT_EQ(f[0], 0.25f);
    EXPECT_EQ(f[1], -1e6f);

    const float floats[2] = {0.5f, 7.0f};
    writeFile(path("d.raw"), std::string(reinterpret_cast<const char *>(floats), 8));
    image = load(path("d.dat"));
    ASSERT_NE(image, NullFC);
    f = reinterpret_cast<const float *>(image->getData());
    EXPECT_EQ(f[0], 0.5f);
    EXPECT_EQ(f[1], 7.0f);
}

TEST_F(VolumeFileIO, NRRDReadsForeignFiles)
{
    // big-endian signed shorts, as scanners write them
    writeFile(path("ct.nrrd"), "NRRD0004\ntype: short\ndimension: 3\n"
                               "sizes: 2 1 1\nendian: big\nencoding: raw\n"
                               "space: left-posterior-superior\n"
                               "space directions: (0.5,0,0) (0,0.5,0) (0,0,3)\n\n" +
                                   bytesOf({0xFC18, 0x03E8}, true)); // -1000, 1000
    ImagePtr image = load(path("ct.nrrd"));
    ASSERT_NE(image, NullFC);
    const UInt16 *v = reinterpret_cast<const UInt16 *>(image->getData());
    EXPECT_EQ(v[0], 32768 - 1000);
    EXPECT_EQ(v[1], 32768 + 1000);
    ASSERT_NE(image->findAttachmentField("ValueOffset"), nullptr);
    EXPECT_EQ(*image->findAttachmentField("ValueOffset"), "32768");
    ASSERT_NE(image->findAttachmentField("SliceThickness"), nullptr);
    EXPECT_EQ(*image->findAttachmentField("SliceThickness"), "0.5 0.5 3");

    // a detached header finds its data relative to itself
    std::filesystem::create_directory(path("hdr"));
    writeFile(path("hdr/d.nhdr"), "NRRD0004\ntype: uchar\ndimension: 3\n"
                                  "sizes: 3 1 1\nencoding: raw\n"
                                  "data file: d.bin\n\n");
    writeFile(path("hdr/d.bin"), "xyz");
    image = load(path("hdr/d.nhdr"));
    ASSERT_NE(image, NullFC);
    EXPECT_EQ(std::string(reinterpret_cast<const char *>(image->getData()), 3),
              "xyz");
}

TEST_F(VolumeFileIO, MetaImageReadsForeignFiles)
{
    writeFile(path("ct.mhd"), "ObjectType = Image\nNDims = 3\nDimSize = 2 1 1\n"
                              "ElementType = MET_SHORT\nElementSpacing = 1 1 2\n"
                              "ElementByteOrderMSB = True\nHeaderSize = -1\n"
                              "ElementDataFile = ct.img\n");
    writeFile(path("ct.img"), "some preamble" + bytesOf({0xFC18, 0x03E8}, true));

    ImagePtr image = load(path("ct.mhd"));
    ASSERT_NE(image, NullFC);
    const UInt16 *v = reinterpret_cast<const UInt16 *>(image->getData());
    EXPECT_EQ(v[0], 32768 - 1000);
    EXPECT_EQ(v[1], 32768 + 1000);
    EXPECT_EQ(*image->findAttachmentField("SliceThickness"), "1 1 2");
}

TEST_F(VolumeFileIO, StreamsCarryNRRDAndMha)
{
    ImagePtr original = makeVolume(5, 4, 3, GL_UNSIGNED_SHORT);

    for(const char *name : {"s.nrrd", "s.mha"})
    {
        ASSERT_TRUE(original->write(path(name).c_str()));

        std::ifstream in(path(name), std::ios::binary);
        ImagePtr      image = newImage();
        const char   *mime  = name[2] == 'n' ? "image/x-nrrd" : "image/x-metaimage";

        ASSERT_TRUE(ImageFileHandler::the().read(image, in, mime)) << name;
        expectSameVolume(original, image, name);
    }

    std::ifstream nrrd(path("s.nrrd"), std::ios::binary);
    EXPECT_EQ(ImageFileHandler::the().determineMimetypeFromStream(nrrd),
              "image/x-nrrd");
}

// --- bad input -------------------------------------------------------------------

TEST_F(VolumeFileIO, DATMissingShortOrLongRawFiles)
{
    ImagePtr image = makeVolume(2, 2, 2, GL_UNSIGNED_BYTE);
    const std::string before(reinterpret_cast<const char *>(image->getData()), 8);
    LogCapture log;

    writeFile(path("m.dat"), "ObjectFileName: gone.raw\nResolution: 4 4 4\n"
                             "Format: UCHAR\n");
    EXPECT_FALSE(image->read(path("m.dat").c_str()));
    EXPECT_NE(log.take().find("Can not open gone.raw image data"),
              std::string::npos);

    writeFile(path("s.dat"), "ObjectFileName: s.raw\nResolution: 4 4 4\n"
                             "Format: USHORT\n");
    writeFile(path("s.raw"), std::string(127, 'x'));
    EXPECT_FALSE(image->read(path("s.dat").c_str()));
    EXPECT_NE(log.take().find("RAW file length to small!"), std::string::npos);

    // a failed read leaves the voxels, keeps the header's fields
    EXPECT_EQ(image->getWidth(), 2);
    EXPECT_EQ(image->getDataType(), GL_UNSIGNED_BYTE);
    EXPECT_EQ(std::string(reinterpret_cast<const char *>(image->getData()), 8),
              before);
    ASSERT_NE(image->findAttachmentField("ObjectFileName"), nullptr);
    EXPECT_EQ(*image->findAttachmentField("ObjectFileName"), "s.raw");

    writeFile(path("s.raw"), std::string(129, 'x'));
    EXPECT_TRUE(image->read(path("s.dat").c_str()));
    EXPECT_NE(log.take().find("RAW file length to big!"), std::string::npos);
    EXPECT_EQ(image->getWidth(), 4);
}

TEST_F(VolumeFileIO, DATGarbageAndAbsurdHeaders)
{
    ImagePtr   image = newImage();
    LogCapture log;

    EXPECT_FALSE(image->read(path("nothing-here.dat").c_str()));
    EXPECT_NE(log.take().find("can not open " + path("nothing-here.dat")),
              std::string::npos);
    writeFile(path("empty.dat"), "");
    EXPECT_FALSE(image->read(path("empty.dat").c_str()));
    EXPECT_NE(log.take().find("Invalid/Missing DAT ObjectFileName"),
              std::string::npos);

    std::string garbage;
    for(int i = 0; i < 4096; ++i)
        garbage += char((i * 131 + 7) & 0xFF);
    writeFile(path("g.dat"), garbage);
    EXPECT_FALSE(image->read(path("g.dat").c_str()));

    // the raw file exists, the announced volume would be 16 GiB
    writeFile(path("huge.raw"), "tiny");
    writeFile(path("huge.dat"), "ObjectFileName: huge.raw\n"
                                "Resolution: 4096 4096 512\nFormat: USHORT\n");
    EXPECT_FALSE(image->read(path("huge.dat").c_str()));
    EXPECT_NE(log.take().find("larger than"), std::string::npos);

    writeFile(path("neg.dat"), "ObjectFileName: huge.raw\n"
                               "Resolution: 4 -4 4\nFormat: UCHAR\n");
    EXPECT_FALSE(image->read(path("neg.dat").c_str()));
    EXPECT_EQ(image->getData(), nullptr);
}

TEST_F(VolumeFileIO, NRRDBadFiles)
{
    ImagePtr   image = newImage();
    LogCapture log;

    const std::string head = "NRRD0004\ntype: ushort\ndimension: 3\n"
                             "sizes: 4 4 4\nendian: little\nencoding: ";
    writeFile(path("short.nrrd"), head + "raw\n\n" + std::string(100, 'x'));
    EXPECT_FALSE(image->read(path("short.nrrd").c_str()));

    // corrupt gzip data never reaches Teem's decoder, which would lose its
    // zlib state on it
    writeFile(path("gz.nrrd"), head + "gzip\n\n" + std::string(100, 'x'));
    EXPECT_FALSE(image->read(path("gz.nrrd").c_str()));
    EXPECT_NE(log.take().find("NRRD: the gzip data is corrupt or short"), std::string::npos);

    writeFile(path("bad.nrrd"), head + "hex\n\n" + std::string(200, 'x'));
    EXPECT_FALSE(image->read(path("bad.nrrd").c_str()));

    writeFile(path("lost.nhdr"), "NRRD0004\ntype: uchar\ndimension: 3\n"
                                 "sizes: 2 2 2\nencoding: raw\n"
                                 "data file: lost.raw\n\n");
    EXPECT_FALSE(image->read(path("lost.nhdr").c_str()));

    writeFile(path("huge.nrrd"), "NRRD0004\ntype: float\ndimension: 3\n"
                                 "sizes: 1024 1024 1024\nendian: little\n"
                                 "encoding: raw\n\nxx");
    EXPECT_FALSE(image->read(path("huge.nrrd").c_str()));
    EXPECT_NE(log.take().find("larger than"), std::string::npos);

    writeFile(path("text.nrrd"), "1 2 3\n4 5 6\n");
    EXPECT_FALSE(image->read(path("text.nrrd").c_str()))
        << "Teem's plain-text reader must not be reached";

    EXPECT_EQ(image->getData(), nullptr);
}

TEST_F(VolumeFileIO, MetaImageBadFiles)
{
    ImagePtr   image = newImage();
    LogCapture log;

    const std::string head = "NDims = 3\nDimSize = 4 4 4\nElementType = MET_USHORT\n";

    writeFile(path("short.mha"), head + "ElementDataFile = LOCAL\n" +
                                     std::string(127, 'x'));
    EXPECT_FALSE(image->read(path("short.mha").c_str()));
    EXPECT_NE(log.take().find("holds 127 of the 128 bytes"), std::string::npos);

    writeFile(path("lost.mhd"), head + "ElementDataFile = lost.raw\n");
    EXPECT_FALSE(image->read(path("lost.mhd").c_str()));
    EXPECT_NE(log.take().find("can not open the data file lost.raw"),
              std::string::npos);

    writeFile(path("z.mha"), head + "CompressedData = True\n"
                                    "ElementDataFile = LOCAL\nnot zlib at all");
    EXPECT_FALSE(image->read(path("z.mha").c_str()));

    writeFile(path("neg.mha"), "NDims = 3\nDimSize = 4 -4 4\n"
                               "ElementType = MET_UCHAR\nElementDataFile = LOCAL\n");
    EXPECT_FALSE(image->read(path("neg.mha").c_str()));

    writeFile(path("huge.mha"), "NDims = 3\nDimSize = 100000 100000 100000\n"
                                "ElementType = MET_UCHAR\nElementDataFile = LOCAL\n");
    EXPECT_FALSE(image->read(path("huge.mha").c_str()));

    EXPECT_EQ(image->getData(), nullptr);
}

TEST_F(VolumeFileIO, WritersRefuseWhatTheyCanNotStore)
{
    LogCapture log;
    ImagePtr   empty = newImage();

    for(const char *suffix : {"dat", "nrrd", "mha"})
    {
        const std::string file = path(std::string("x.") + suffix);
        EXPECT_FALSE(empty->write(file.c_str())) << suffix;

        ImagePtr half = makeVolume(2, 2, 2, GL_HALF_FLOAT);
        EXPECT_FALSE(half->write(file.c_str())) << suffix;

        // a pixel format set by hand leaves the old bytes per pixel behind
        ImagePtr la = makeVolume(2, 2, 2, GL_UNSIGNED_BYTE, GL_LUMINANCE_ALPHA);
        beginEditCP(la, Image::PixelFormatFieldMask);
        la->setPixelFormat(GL_LUMINANCE);
        endEditCP(la, Image::PixelFormatFieldMask);
        EXPECT_FALSE(la->write(file.c_str())) << suffix;

        ImagePtr ok = makeVolume(2, 2, 2, GL_UNSIGNED_BYTE);
        EXPECT_FALSE(ok->write(path(std::string("no/such/dir/x.") + suffix).c_str()))
            << suffix;
    }
    EXPECT_NE(log.str().find("Can not open output stream"), std::string::npos);
}
