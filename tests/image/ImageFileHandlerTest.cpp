// ImageFileHandler and the PNG file type: choosing a type by mime type,
// suffix and file header; PNG round trips of every channel/bit-depth pair by
// file and by stream; what the writer refuses; broken files.
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGImageFileHandler.h>
#include <OpenSG/OSGPNGImageFileType.h>
#include <OpenSG/OSGLog.h>

#include <png.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <unistd.h>

using namespace osg;

namespace
{

// A format of the tests' own: files are "TST!" and one grey byte. Its
// header check is real, so it takes part in autodetection.
class TestImageFileType : public ImageFileType
{
  public:
    TestImageFileType(const Char8 *mime, const Char8 *suffixes[], UInt16 size,
                      UInt32 flags)
        : ImageFileType(mime, suffixes, size, flags)
    {
    }

    virtual bool validateHeader(const Char8 *fileName, bool &implemented)
    {
        implemented = true;
        std::ifstream in(fileName, std::ios::binary);
        char          head[4];
        return in.read(head, 4) && std::memcmp(head, "TST!", 4) == 0;
    }

    virtual bool read(ImagePtr &image, std::istream &is, const std::string &)
    {
        char data[5];
        if(!is.read(data, 5) || std::memcmp(data, "TST!", 4) != 0)
            return false;
        return image->set(GL_LUMINANCE, 1, 1, 1, 1, 1, 0.0,
                          reinterpret_cast<UInt8 *>(data + 4));
    }

    virtual bool write(const ImagePtr &image, std::ostream &os, const std::string &)
    {
        os.write("TST!", 4);
        os.put(char(image->getData()[0]));
        return bool(os);
    }
};

const Char8      *testSuffixes[] = {"tst", " TsT2 "};
TestImageFileType testType("Image/X-Test; version=1", testSuffixes, sizeof(testSuffixes),
                           ImageFileType::OSG_READ_SUPPORTED);

// Files go to a directory of their own, removed at the end of each test.
class ImageFiles : public ::testing::Test
{
  protected:
    void SetUp(void) override
    {
        char pattern[] = "/tmp/corvane-image-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), (char *)NULL);
        dir = pattern;
    }

    void TearDown(void) override
    {
        for(const std::string &f : files)
            std::remove(f.c_str());
        rmdir(dir.c_str());
    }

    std::string path(const std::string &name)
    {
        files.push_back(dir + "/" + name);
        return files.back();
    }

    static void putFile(const std::string &name, const std::string &bytes)
    {
        std::ofstream(name, std::ios::binary) << bytes;
    }

    static std::string getFile(const std::string &name)
    {
        std::ifstream      in(name, std::ios::binary);
        std::ostringstream s;
        s << in.rdbuf();
        return s.str();
    }

    std::string              dir;
    std::vector<std::string> files;
};

ImagePtr emptyImage(void)
{
    ImagePtr image = Image::create();
    addRefCP(image);
    return image;
}

const GLenum formatByChannels[5] = {0, GL_LUMINANCE, GL_LUMINANCE_ALPHA, GL_RGB, GL_RGBA};

/// A 5x3 image (odd rows) whose bytes cover the full range.
ImagePtr patternImage(UInt32 channels, UInt32 bits)
{
    const Int32 type = bits == 16 ? GL_UNSIGNED_SHORT : GL_UNSIGNED_BYTE;
    std::vector<UInt8> bytes(5 * 3 * channels * bits / 8);
    UInt32             seed = 77 + channels * 3 + bits;
    for(UInt8 &b : bytes)
        b = UInt8((seed = seed * 1103515245u + 12345u) >> 23);
    bytes.front() = 0x00;
    bytes.back()  = 0xFF;

    ImagePtr image = emptyImage();
    EXPECT_TRUE(image->set(formatByChannels[channels], 5, 3, 1, 1, 1, 0.0, bytes.data(), type));
    return image;
}

void expectSamePixels(const ImagePtr &a, const ImagePtr &b)
{
    ASSERT_NE(b, NullFC);
    EXPECT_EQ(a->getPixelFormat(), b->getPixelFormat());
    EXPECT_EQ(a->getDataType(), b->getDataType());
    EXPECT_EQ(a->getWidth(), b->getWidth());
    EXPECT_EQ(a->getHeight(), b->getHeight());
    EXPECT_EQ(a->getDepth(), b->getDepth());
    ASSERT_EQ(a->getSize(), b->getSize());
    EXPECT_EQ(std::memcmp(a->getData(), b->getData(), a->getSize()), 0);
}

/// The pixels of a PNG as libpng's simplified reader gives them: top row
/// first, 8 bits.
std::vector<UInt8> decodeTopDown(const std::string &bytes, png_uint_32 format)
{
    png_image image;
    std::memset(&image, 0, sizeof(image));
    image.version = PNG_IMAGE_VERSION;
    if(!png_image_begin_read_from_memory(&image, bytes.data(), bytes.size()))
        return std::vector<UInt8>();
    image.format = format;
    std::vector<UInt8> out(PNG_IMAGE_SIZE(image));
    if(!png_image_finish_read(&image, NULL, out.data(), 0, NULL))
        return std::vector<UInt8>();
    return out;
}

std::string encode(const ImagePtr &image)
{
    std::ostringstream out;
    EXPECT_TRUE(ImageFileHandler::the().write(image, out, "image/png"));
    return out.str();
}

} // namespace

// --- choosing the file type -------------------------------------------------------

TEST(ImageFileTypes, ByMimeTypeThenSuffix)
{
    ImageFileHandler &h   = ImageFileHandler::the();
    ImageFileType    *png = &PNGImageFileType::the();

    EXPECT_STREQ(png->getMimeType(), "image/png");
    EXPECT_EQ(h.getFileType("image/png"), png);
    EXPECT_EQ(h.getFileType(" IMAGE/Png ; q=0.5"), png);
    EXPECT_EQ(h.getFileType("png"), png);               // a bare word means image/<word>
    EXPECT_EQ(h.getFileType("image/x-test"), &testType);
    EXPECT_EQ(h.getFileType(NULL, "/a/b.c/picture.PNG"), png);
    EXPECT_EQ(h.getFileType("", "shot.tst2"), &testType);
    EXPECT_EQ(h.getFileType(NULL, "shot.png.tst"), &testType); // the last dot counts
    EXPECT_EQ(h.getFileType(NULL, "png"), (ImageFileType *)NULL);
    EXPECT_EQ(h.getFileType(NULL, "picture.jpg"), (ImageFileType *)NULL);

    // the mime type wins over the suffix; an unknown one falls back to it
    EXPECT_EQ(h.getFileType("image/x-test", "picture.png"), &testType);
    LogCapture log;
    EXPECT_EQ(h.getFileType("image/x-nope", "picture.png"), png);
    EXPECT_NE(log.take().find("Invalid mimeType image/x-nope in getFileType()"),
              std::string::npos);
}

TEST(ImageFileTypes, NamesAndSuffixLists)
{
    ImageFileHandler &h = ImageFileHandler::the();

    EXPECT_EQ(h.determineMimetypeFromName("dir/shot.Png"), "image/png");
    EXPECT_EQ(h.determineMimetypeFromSuffix(" TST "), "Image/X-Test; version=1");
    EXPECT_EQ(h.determineMimetypeFromName("noSuffix"), "");

    std::list<const Char8 *> all, writable;
    const Int32 count = h.getSuffixList(all);
    EXPECT_EQ(count, Int32(all.size()));
    std::vector<std::string> names(all.begin(), all.end());
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
    EXPECT_NE(std::find(names.begin(), names.end(), "png"), names.end());
    EXPECT_NE(std::find(names.begin(), names.end(), "tst2"), names.end());

    h.getSuffixList(writable, ImageFileType::OSG_WRITE_SUPPORTED);
    std::vector<std::string> w(writable.begin(), writable.end());
    EXPECT_NE(std::find(w.begin(), w.end(), "png"), w.end());
    EXPECT_EQ(std::find(w.begin(), w.end(), "tst"), w.end());

    EXPECT_TRUE(h.setOptions("png", "level=9"));
    EXPECT_STREQ(h.getOptions("png"), "level=9");
    EXPECT_FALSE(h.setOptions("nope", "x"));
}

TEST(ImageFileTypes, FirstRegistrationKeepsTheName)
{
    static const Char8 *suffixes[] = {"PNG", "tst3"};
    LogCapture          log;
    static TestImageFileType late("image/png", suffixes, sizeof(suffixes),
                                  ImageFileType::OSG_READ_SUPPORTED);
    const std::string text = log.take();

    EXPECT_NE(text.find("Can't add an image file type with suffix png a second time"),
              std::string::npos);
    EXPECT_NE(text.find("Can't add an image file type with mimetype image/png a second time"),
              std::string::npos);
    EXPECT_EQ(ImageFileHandler::the().getFileType("image/png"), &PNGImageFileType::the());
    EXPECT_EQ(ImageFileHandler::the().getFileType(NULL, "a.png"), &PNGImageFileType::the());
    EXPECT_EQ(ImageFileHandler::the().getFileType(NULL, "a.tst3"), &late);
}

TEST_F(ImageFiles, HeaderCheckRecognisesMisnamedFiles)
{
    ImageFileHandler &h = ImageFileHandler::the();

    ImagePtr          grey = patternImage(1, 8);
    const std::string png  = encode(grey);
    const std::string pngAsTst = path("png.tst"), tstAsPng = path("tst.png"),
                      junkAsPng = path("junk.png"), missing = path("missing.png");
    putFile(pngAsTst, png);
    putFile(tstAsPng, std::string("TST!") + char(42));
    putFile(junkAsPng, "GIF89a...");

    LogCapture log;
    EXPECT_EQ(h.getFileType(NULL, tstAsPng.c_str(), true), &testType);
    std::string text = log.take();
    EXPECT_NE(text.find("Found wrong image header trying to autodetect image type!"),
              std::string::npos);
    EXPECT_NE(text.find("Autodetected 'tst' image type!"), std::string::npos);

    EXPECT_EQ(h.getFileType(NULL, pngAsTst.c_str(), true), &PNGImageFileType::the());
    EXPECT_NE(log.take().find("Autodetected 'png' image type!"), std::string::npos);

    EXPECT_EQ(h.getFileType(NULL, junkAsPng.c_str(), true), (ImageFileType *)NULL);
    EXPECT_NE(log.take().find("Couldn't autodetect image type!"), std::string::npos);
    EXPECT_EQ(h.getFileType(NULL, missing.c_str(), true), (ImageFileType *)NULL);
    EXPECT_EQ(h.getFileType(NULL, junkAsPng.c_str(), false), &PNGImageFileType::the());

    // reading goes through the recognised type
    ImagePtr image = emptyImage();
    ASSERT_TRUE(h.read(image, tstAsPng.c_str()));
    EXPECT_EQ(image->getData()[0], 42);
    ASSERT_TRUE(image->read(pngAsTst.c_str()));
    expectSamePixels(grey, image);

    std::istringstream in(png);
    in.seekg(0);
    EXPECT_EQ(h.determineMimetypeFromStream(in), "image/png");
    EXPECT_EQ(in.tellg(), std::streampos(0));

    subRefCP(image);
    subRefCP(grey);
}

// --- PNG round trips ---------------------------------------------------------------------------

TEST_F(ImageFiles, PNGRoundTripsEveryFormatByFileName)
{
    for(UInt32 channels = 1; channels <= 4; ++channels)
    {
        for(UInt32 bits : {8u, 16u})
        {
            SCOPED_TRACE(::testing::Message() << channels << " channels, " << bits << " bits");
            ImagePtr          image = patternImage(channels, bits);
            const std::string file  = path("rt" + std::to_string(channels) + "_" +
                                          std::to_string(bits) + ".png");

            ASSERT_TRUE(image->write(file.c_str()));

            // IHDR: bit depth and colour type as written
            const std::string bytes = getFile(file);
            ASSERT_GT(bytes.size(), 26u);
            static const int colourTypes[5] = {-1, 0, 4, 2, 6};
            EXPECT_EQ(UInt8(bytes[24]), bits);
            EXPECT_EQ(UInt8(bytes[25]), colourTypes[channels]);

            ImagePtr back = ImageFileHandler::the().read(file.c_str());
            expectSamePixels(image, back);
            EXPECT_FLOAT_EQ(back->getResX(), 72.f);
            EXPECT_FLOAT_EQ(back->getResY(), 72.f);
            EXPECT_EQ(back->getResUnit(), UInt16(Image::OSG_RESUNIT_INCH));
            EXPECT_EQ(back->getName(), file);
            EXPECT_EQ(*back->findAttachmentField("fileName"), file);
            EXPECT_EQ(*back->findAttachmentField("fullFilePath"), file);

            subRefCP(back);
            subRefCP(image);
        }
    }
}

TEST_F(ImageFiles, PNGRoundTripsEveryFormatByStream)
{
    for(UInt32 channels = 1; channels <= 4; ++channels)
    {
        for(UInt32 bits : {8u, 16u})
        {
            SCOPED_TRACE(::testing::Message() << channels << " channels, " << bits << " bits");
            ImagePtr image = patternImage(channels, bits);

            std::istringstream in(encode(image));
            ImagePtr           back = ImageFileHandler::the().read(in, "png");
            expectSamePixels(image, back);

            // into an existing image, which takes the file's geometry
            std::istringstream again(encode(image));
            ImagePtr           existing = emptyImage();
            existing->set(GL_RGBA, 64, 64, 4, 1, 1, 0.0, NULL, GL_FLOAT);
            ASSERT_TRUE(ImageFileHandler::the().read(existing, again, "image/png"));
            expectSamePixels(image, existing);
            EXPECT_EQ(existing->getDimension(), 2);

            subRefCP(existing);
            subRefCP(back);
            subRefCP(image);
        }
    }
}

TEST_F(ImageFiles, RelativeNamesBecomeAbsoluteAndTheNameIsRemembered)
{
    char cwd[4096];
    ASSERT_NE(getcwd(cwd, sizeof(cwd)), (char *)NULL);
    ASSERT_EQ(chdir(dir.c_str()), 0);
    path("relative.png");

    ImagePtr image = patternImage(3, 8);
    ASSERT_TRUE(image->write("relative.png"));
    ImagePtr back = emptyImage();
    ASSERT_TRUE(back->read("relative.png"));
    EXPECT_EQ(back->getName(), dir + "/relative.png");
    EXPECT_EQ(*back->findAttachmentField("fileName"), "relative.png");
    ASSERT_EQ(chdir(cwd), 0);

    // without a name the "fileName" attachment field names the file
    const std::string other = path("other.png");
    back->setAttachmentField("fileName", other);
    ASSERT_TRUE(ImageFileHandler::the().write(back, NULL));
    EXPECT_EQ(getFile(other).substr(1, 3), "PNG");

    subRefCP(back);
    subRefCP(image);
}

TEST(PNGFiles, RowsAreWrittenTopFirstAndBGRAsRGB)
{
    // row 0 is the bottom row: red at the bottom, blue on top
    ImagePtr image = emptyImage();
    const UInt8 rows[] = {255, 0, 0, 0, 0, 255};
    ASSERT_TRUE(image->set(GL_RGB, 1, 2, 1, 1, 1, 0.0, rows));
    EXPECT_EQ(decodeTopDown(encode(image), PNG_FORMAT_RGB),
              (std::vector<UInt8>{0, 0, 255, 255, 0, 0}));

    const UInt8 bgra[] = {1, 2, 3, 4};
    ASSERT_TRUE(image->set(GL_BGRA, 1, 1, 1, 1, 1, 0.0, bgra));
    const std::string png = encode(image);
    EXPECT_EQ(decodeTopDown(png, PNG_FORMAT_RGBA), (std::vector<UInt8>{3, 2, 1, 4}));

    std::istringstream in(png);
    ASSERT_TRUE(ImageFileHandler::the().read(image, in, "image/png"));
    EXPECT_EQ(image->getPixelFormat(), UInt32(GL_RGBA));
    EXPECT_EQ(std::vector<UInt8>(image->getData(), image->getData() + 4),
              (std::vector<UInt8>{3, 2, 1, 4}));
    subRefCP(image);
}

TEST(PNGFiles, ResolutionTravelsAsPixelsPerMetre)
{
    ImagePtr image = patternImage(1, 8);
    image->setResX(300.f);
    image->setResY(150.f);

    std::istringstream in(encode(image));
    ImagePtr           back = ImageFileHandler::the().read(in, "image/png");
    ASSERT_NE(back, NullFC);
    EXPECT_FLOAT_EQ(back->getResX(), 300.f);
    EXPECT_FLOAT_EQ(back->getResY(), 150.f);

    subRefCP(back);
    subRefCP(image);
}

TEST(PNGFiles, WriterRefusesWhatPNGCannotHold)
{
    ImagePtr           image = emptyImage();
    std::ostringstream out;
    LogCapture         log;

    ASSERT_TRUE(image->set(GL_LUMINANCE, 4, 4, 2));
    EXPECT_FALSE(ImageFileHandler::the().write(image, out, "image/png"));
    EXPECT_NE(log.take().find("PNGImageFileType::write: invalid dimension 3!"), std::string::npos);

    image->set(GL_LUMINANCE, 0, 4);
    EXPECT_FALSE(ImageFileHandler::the().write(image, out, "image/png"));
    EXPECT_NE(log.take().find("invalid dimension 0!"), std::string::npos);

    ASSERT_TRUE(image->set(GL_ALPHA, 4, 4));
    EXPECT_FALSE(ImageFileHandler::the().write(image, out, "image/png"));
    EXPECT_NE(log.take().find("PNGImageFileType::write: unknown pixel format 6406!"),
              std::string::npos);

    for(GLenum type : {GL_FLOAT, GL_HALF_FLOAT, GL_UNSIGNED_INT})
    {
        ASSERT_TRUE(image->set(GL_RGB, 4, 4, 1, 1, 1, 0.0, NULL, type));
        EXPECT_FALSE(ImageFileHandler::the().write(image, out, "image/png"));
        EXPECT_NE(log.take().find("Invalid pixeldepth, cannot store data"), std::string::npos);
    }

    // a pixel format changed without set() leaves the old block layout
    ASSERT_TRUE(image->set(GL_LUMINANCE, 4, 4));
    image->setPixelFormat(GL_RGBA);
    EXPECT_FALSE(ImageFileHandler::the().write(image, out, "image/png"));

    ASSERT_TRUE(image->set(GL_RGB, 4, 4));
    EXPECT_FALSE(ImageFileHandler::the().write(image, out, "image/x-nope"));
    EXPECT_NE(log.take().find("unknown image format"), std::string::npos);

    EXPECT_TRUE(out.str().empty());
    subRefCP(image);
}

// --- broken input ------------------------------------------------------------------------------

TEST(PNGFiles, TruncatedStreamsFailAndLeaveTheImage)
{
    ImagePtr          source = patternImage(4, 16);
    const std::string good   = encode(source);

    ImagePtr keep = patternImage(2, 8);
    ImagePtr image = emptyImage();
    image->set(keep);

    LogCapture log;
    for(size_t len : {size_t(0), size_t(3), size_t(8), size_t(20), size_t(33), size_t(45),
                      good.size() / 2, good.size() - 13, good.size() - 1})
    {
        std::istringstream in(good.substr(0, len));
        EXPECT_FALSE(ImageFileHandler::the().read(image, in, "image/png")) << len;
        EXPECT_NE(log.take().find("PNG: "), std::string::npos) << len;
        expectSamePixels(keep, image);
    }

    std::istringstream in(good.substr(0, 60));
    EXPECT_EQ(ImageFileHandler::the().read(in, "image/png"), NullFC);

    subRefCP(image);
    subRefCP(keep);
    subRefCP(source);
}

TEST_F(ImageFiles, CorruptAndTruncatedFilesFailWithALogLine)
{
    const std::string good = encode(patternImage(3, 8));

    // flip a byte inside the IHDR chunk: its CRC no longer matches
    std::string corrupt = good;
    corrupt[20] ^= 0x40;
    const std::string corruptFile = path("corrupt.png"), cutFile = path("cut.png"),
                      tinyFile = path("tiny.png"), emptyFile = path("empty.png");
    putFile(corruptFile, corrupt);
    putFile(cutFile, good.substr(0, good.size() - 20));
    putFile(tinyFile, good.substr(0, 3));
    putFile(emptyFile, "");

    LogCapture log;
    ImagePtr   image = emptyImage();

    EXPECT_FALSE(image->read(corruptFile.c_str()));
    std::string text = log.take();
    EXPECT_NE(text.find("PNG: "), std::string::npos);
    EXPECT_NE(text.find("could not read " + corruptFile), std::string::npos);

    EXPECT_FALSE(image->read(cutFile.c_str()));
    EXPECT_NE(log.take().find("could not read " + cutFile), std::string::npos);

    // too short for the signature: no type recognises it
    for(const std::string &f : {tinyFile, emptyFile})
    {
        EXPECT_FALSE(image->read(f.c_str()));
        EXPECT_NE(log.take().find("could not read " + f + "; unknown image format"),
                  std::string::npos);
    }
    EXPECT_FALSE(image->read((dir + "/absent.png").c_str()));
    EXPECT_NE(log.take().find("ImageFileHandler: can not open " + dir + "/absent.png"),
              std::string::npos);

    EXPECT_EQ(ImageFileHandler::the().read(corruptFile.c_str()), NullFC);
    EXPECT_FALSE(image->read(""));
    EXPECT_NE(log.take().find("couldn't find image file"), std::string::npos);
    EXPECT_FALSE(image->isValid());
    EXPECT_EQ(image->findAttachmentField("fileName"), (const std::string *)NULL);

    // a refused write leaves no file behind
    const std::string refused = path("refused.png");
    EXPECT_FALSE(image->write(refused.c_str()));
    EXPECT_NE(access(refused.c_str(), F_OK), 0);

    EXPECT_FALSE(image->write((dir + "/no/such/dir.png").c_str()));
    EXPECT_NE(log.take().find("can not open"), std::string::npos);
    subRefCP(image);
}

TEST(ImageFileHandlerCallbacks, ReadCallbackAnswersForNewImages)
{
    struct Callback
    {
        static ImagePtr read(const Char8 *fileName, const Char8 *)
        {
            ImagePtr image = Image::create();
            image->setAttachmentField("fileName", fileName);
            return image;
        }
    };

    ImageFileHandler &h = ImageFileHandler::the();
    h.setReadCB(&Callback::read);
    EXPECT_EQ(h.getReadCB(), &Callback::read);

    ImagePtr image = h.read("whatever.xyz");
    h.setReadCB(NULL);

    ASSERT_NE(image, NullFC);
    addRefCP(image);
    EXPECT_EQ(*image->findAttachmentField("fileName"), "whatever.xyz");
    subRefCP(image);
}
