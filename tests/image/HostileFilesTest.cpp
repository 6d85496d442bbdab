// Hostile image and volume files: each class of fault is refused with its
// log line inside a memory and a time limit (the loader runs in a forked
// child, see LimitedRun.h).
//
// - sizes: one budget (ImageFileHandler::setMaxImageBytes) for Image and
//   every header, checked before anything is read; memory grows with the
//   data that is there, never with what a header announces;
// - detached data files: regular files inside the header's folder tree
//   unless the application allows more; offsets are seeked; a file named
//   as one format that is a format naming other files is refused;
// - spacings: not finite or not positive become 1, with a warning.
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGImageFileHandler.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGNRRDImageFileType.h>
#include <OpenSG/OSGVolumeHeaders.h>

#include <gtest/gtest.h>
#include <image/PNGChunks.h>
#include <support/LimitedRun.h>
#include <support/TextSupport.h>
#include <support/ZlibSupport.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace osg;
using corvanetest::contains;
using corvanetest::LimitedResult;
using corvanetest::runLimited;

namespace
{

/// More than any refusal may cost: a loader that sized its memory by the
/// header instead of the data would use hundreds of MiB here.
const long MaxPeakGrowthKiB = 64 * 1024;

/// A PNG that announces width x height RGBA but holds the data of one row.
std::string oneRowPNG(UInt32 width, UInt32 height, bool interlaced)
{
    std::string s = pngchunks::rgbaHead(width, height, interlaced);
    pngchunks::putChunk(s, "IDAT", corvanetest::deflated(std::string(1 + size_t(width) * 4, '\0'), false));
    pngchunks::putChunk(s, "IEND", std::string());
    return s;
}

class HostileFiles : public ::testing::Test
{
  protected:
    void SetUp(void) override
    {
        char pattern[] = "/tmp/corvane-hostile-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        _dir = pattern;
        std::filesystem::create_directory(path("in"));
        std::filesystem::create_directory(path("outside"));
        put("outside/secret.raw", "SECRETSECRETSECR");
    }

    void TearDown(void) override
    {
        ImageFileHandler::the().setMaxImageBytes(ImageFileHandler::MaxImageBytesCeiling);
        ImageFileHandler::the().setAllowOutsideDataFiles(false);
        std::filesystem::remove_all(_dir);
    }

    std::string path(const std::string &name) const { return _dir + "/" + name; }

    std::string put(const std::string &name, const std::string &bytes)
    {
        std::ofstream out(path(name), std::ios::binary);
        out << bytes;
        return path(name);
    }

    /// A file of `size` bytes that takes no room on disk.
    std::string sparse(const std::string &name, const std::string &head, UInt64 size)
    {
        put(name, head);
        EXPECT_EQ(truncate(path(name).c_str(), off_t(size)), 0);
        return path(name);
    }

    /// Reads file in a limited child; the result says whether it was
    /// refused and what the child logged.
    static LimitedResult refuse(const std::string &file, unsigned seconds = 10)
    {
        return runLimited(
            [file]() {
                ImagePtr image = Image::create();
                addRefCP(image);
                const bool read = image->read(file.c_str());
                subRefCP(image);
                return !read;
            },
            seconds);
    }

    /// The whole refusal: in the limits, refused, with `line` logged.
    static void expectRefused(const LimitedResult &r, const std::string &line,
                              const std::string &what)
    {
        EXPECT_EQ(r.signal, 0) << what << ": the child was killed\n" << r.log;
        EXPECT_TRUE(r.passed) << what << ": not refused\n" << r.log;
        EXPECT_TRUE(contains(r.log, line)) << what << ": no '" << line << "' in\n" << r.log;
        EXPECT_LT(r.peakGrowthKiB, MaxPeakGrowthKiB) << what;
    }

    /// Reads file here; NullFC when the read fails.
    ImagePtr load(const std::string &file)
    {
        ImagePtr image = Image::create();
        addRefCP(image);
        if(image->read(file.c_str()))
        {
            _images.push_back(image);
            return image;
        }
        subRefCP(image);
        return NullFC;
    }

    std::string bytesOf(const ImagePtr &image)
    {
        return std::string(reinterpret_cast<const char *>(image->getData()),
                           image->getSize());
    }

    ~HostileFiles(void) override
    {
        for(ImagePtr image : _images)
            subRefCP(image);
    }

    std::string           _dir;
    std::vector<ImagePtr> _images;
};

const std::string MetaHead = "ObjectType = Image\nNDims = 3\nElementType = MET_UCHAR\n";
const std::string NrrdHead = "NRRD0004\ntype: uchar\ndimension: 3\n";

} // namespace

// --- one size budget, memory sized by the data ------------------------------------------

TEST_F(HostileFiles, CompressedMetaImageGrowsWithItsData)
{
    // the 126 bytes of the report: 65535^2 is beyond the budget itself
    const std::string header = "ObjectType = Image\nNDims = 2\nDimSize = 65535 65535\n"
                               "ElementType = MET_UCHAR\nCompressedData = True\n"
                               "ElementDataFile = LOCAL\n";
    expectRefused(refuse(put("big.mha", header + "abc")), "larger than the 2147483647 bytes",
                  "65535^2");

    // within the budget, but larger than the child may allocate: only the
    // three bytes there are may cost anything
    const std::string inBudget = "ObjectType = Image\nNDims = 2\nDimSize = 40000 40000\n"
                                 "ElementType = MET_UCHAR\nCompressedData = True\n"
                                 "ElementDataFile = LOCAL\n";
    expectRefused(refuse(put("z.mha", inBudget + "abc")), "compressed data in", "3 bytes");
    const std::string zeros = corvanetest::deflated(std::string(1 << 20, '\0'), false);
    expectRefused(refuse(put("zeros.mha", inBudget + zeros)), "gave 1048576 of 1600000000",
                  "1 MiB of zeros");
    expectRefused(refuse(put("zeros.mhd", "ObjectType = Image\nNDims = 2\n"
                                          "DimSize = 40000 40000\nElementType = MET_UCHAR\n"
                                          "CompressedData = True\n"
                                          "ElementDataFile = zeros.zraw\n")),
                  "can not open the data file zeros.zraw", "missing data file");
}

TEST_F(HostileFiles, PNGRowsGrowWithTheData)
{
    for(bool interlaced : {false, true})
    {
        // 16384^2 RGBA is 1 GiB, the data one row
        const std::string bytes = oneRowPNG(16384, 16384, interlaced);
        EXPECT_LT(bytes.size(), 400u);
        const LimitedResult r = refuse(put("big.png", bytes));
        expectRefused(r, "PNG: ", interlaced ? "interlaced" : "plain");
        EXPECT_FALSE(contains(r.log, "out of memory")) << r.log;
    }

    // beyond the budget: refused from the header
    const std::string huge = oneRowPNG(23171, 23171, false);
    expectRefused(refuse(put("huge.png", huge)), "larger than the 2147483647 bytes", "23171^2");
}

TEST_F(HostileFiles, NRRDVoxelsMustBeThereBeforeTheyCostMemory)
{
    // 1.44 GB announced, three bytes given: in every binary encoding and
    // in text, nothing is allocated for the announcement
    const std::string fields = NrrdHead + "sizes: 1200 1200 1000\nencoding: ";
    expectRefused(refuse(put("raw.nrrd", fields + "raw\n\nabc")), "NRRD: the data holds 3 of",
                  "raw");
    expectRefused(refuse(put("gz.nrrd", fields + "gzip\n\nabc")),
                  "NRRD: the gzip data is corrupt or short", "corrupt gzip");
    expectRefused(refuse(put("gz2.nrrd", fields + "gzip\n\n" +
                                             corvanetest::deflated(std::string(1 << 20, '\0'), true))),
                  "NRRD: the gzip data is corrupt or short", "short gzip");
    expectRefused(refuse(put("bz.nrrd", fields + "bzip2\n\nabc")),
                  "NRRD: the bzip2 data is corrupt or short", "bzip2");
    expectRefused(refuse(put("txt.nrrd", fields + "ascii\n\n1 2 3")),
                  "bytes of ASCII text can not hold", "ascii");
    expectRefused(refuse(put("hex.nrrd", fields + "hex\n\nabcdef")),
                  "bytes of hex text can not hold", "hex");
}

TEST_F(HostileFiles, NRRDHeaderLinesCanNotOverrunTeem)
{
    // Teem copies a field it can't parse into a fixed message buffer: a
    // line of 2000 characters smashed the stack of the process
    const std::string line = "type:" + std::string(2000, 'x') + "\n";
    expectRefused(refuse(put("long.nrrd", "NRRD0004\n" + line + "dimension: 1\nsizes: 1\n"
                                                        "encoding: raw\n\na")),
                  "NRRD: a header line of 2005 characters; at most 256 are read", "2000");

    // comments are only kept, they may be long
    ImagePtr image = load(put("comment.nrrd", "NRRD0004\n#" + std::string(2000, 'c') +
                                                  "\ntype: uchar\ndimension: 1\nsizes: 1\n"
                                                  "encoding: raw\n\na"));
    ASSERT_NE(image, NullFC);
    EXPECT_EQ(bytesOf(image), "a");
}

TEST_F(HostileFiles, HeadersBeyondTheBudgetAreNotRead)
{
    // 3 GiB of (sparse) data behind each header: between the old limits
    // of the headers and of Image, now refused before a byte of it is read
    const UInt64 size = UInt64(3) << 30;
    sparse("in/v.raw", "", size);
    expectRefused(refuse(put("in/v.dat", "ObjectFileName: v.raw\nResolution: 2048 2048 768\n"
                                         "Format: UCHAR\n")),
                  "larger than the 2147483647 bytes", "DAT");
    expectRefused(refuse(sparse("in/v.mha", MetaHead + "DimSize = 2048 2048 768\n"
                                                       "ElementDataFile = LOCAL\n",
                                size)),
                  "larger than the 2147483647 bytes", "MetaImage");
    expectRefused(refuse(sparse("in/v.nrrd", NrrdHead + "sizes: 2048 2048 768\n"
                                                        "encoding: raw\n\n",
                                size)),
                  "larger than the 2147483647 bytes", "NRRD");
}

TEST_F(HostileFiles, ApplicationsLowerTheBudget)
{
    ImageFileHandler &handler = ImageFileHandler::the();
    EXPECT_EQ(handler.getMaxImageBytes(), ImageFileHandler::MaxImageBytesCeiling);

    // 2 MiB volumes in every format, and a PNG of 2 MiB
    ImagePtr image = Image::create();
    addRefCP(image);
    ASSERT_TRUE(image->set(GL_LUMINANCE, 128, 128, 128));
    for(const char *name : {"v.dat", "v.nrrd", "v.mha"})
        ASSERT_TRUE(image->write(path(name).c_str())) << name;
    ASSERT_TRUE(image->set(GL_RGBA, 1024, 512));
    ASSERT_TRUE(image->write(path("p.png").c_str()));

    handler.setMaxImageBytes(1 << 20);
    EXPECT_EQ(handler.getMaxImageBytes(), 1u << 20);
    {
        LogCapture log;
        EXPECT_FALSE(image->set(GL_LUMINANCE, 1025, 1024));
        EXPECT_TRUE(contains(log.take(), "Image::createData : 1049600 bytes are more than "
                                         "the 1048576 an image may hold"));
        EXPECT_EQ(image->getData(), nullptr);
        EXPECT_TRUE(image->set(GL_LUMINANCE, 1024, 1024));
    }
    for(const char *name : {"v.dat", "v.nrrd", "v.mha", "p.png"})
        expectRefused(refuse(path(name)), "larger than the 1048576 bytes allowed", name);

    handler.setMaxImageBytes(4 << 20);
    for(const char *name : {"v.dat", "v.nrrd", "v.mha", "p.png"})
        EXPECT_NE(load(path(name)), NullFC) << name;

    // the ceiling is what Image's sizes can address
    handler.setMaxImageBytes(0);
    EXPECT_EQ(handler.getMaxImageBytes(), ImageFileHandler::MaxImageBytesCeiling);
    handler.setMaxImageBytes(UInt64(1) << 40);
    EXPECT_EQ(handler.getMaxImageBytes(), ImageFileHandler::MaxImageBytesCeiling);
    EXPECT_EQ(volumeMaxBytes(), ImageFileHandler::MaxImageBytesCeiling);
    subRefCP(image);
}

// --- detached data files -------------------------------------------------------------------

namespace
{

struct Format
{
    const char *suffix;
    std::string (*header)(const std::string &dataFile);
};

std::string datHeader(const std::string &file)
{
    return "ObjectFileName: " + file + "\nResolution: 4 2 2\nFormat: UCHAR\n";
}

std::string mhdHeader(const std::string &file)
{
    return MetaHead + "DimSize = 4 2 2\nElementDataFile = " + file + "\n";
}

std::string nhdrHeader(const std::string &file)
{
    return NrrdHead + "sizes: 4 2 2\nencoding: raw\ndata file: " + file + "\n";
}

const Format Formats[] = {{"dat", datHeader}, {"mhd", mhdHeader}, {"nhdr", nhdrHeader}};

} // namespace

TEST_F(HostileFiles, DataFilesStayInTheHeadersFolder)
{
    std::filesystem::create_directory(path("in/sub"));
    put("in/sub/ok.raw", "okokokokokokokok");
    ASSERT_EQ(symlink(path("outside/secret.raw").c_str(), path("in/link.raw").c_str()), 0);
    ASSERT_EQ(symlink("sub/ok.raw", path("in/inlink.raw").c_str()), 0);

    for(const Format &f : Formats)
    {
        const std::string header = path(std::string("in/h.") + f.suffix);
        std::ofstream(header) << f.header("sub/ok.raw");
        ImagePtr image = load(header);
        ASSERT_NE(image, NullFC) << f.suffix;
        EXPECT_EQ(bytesOf(image), "okokokokokokokok") << f.suffix;

        const std::pair<std::string, const char *> refused[] = {
            {path("outside/secret.raw"), "is an absolute path"},
            {"../outside/secret.raw", "lies outside the header's folder"},
            {"sub/../../outside/secret.raw", "lies outside the header's folder"},
            {"link.raw", "lies outside the header's folder"},
        };
        for(const auto &name : refused)
        {
            std::ofstream(header) << f.header(name.first);
            expectRefused(refuse(header), name.second,
                          std::string(f.suffix) + " naming " + name.first);
        }

        // a link that stays inside is fine
        std::ofstream(header) << f.header("sub/../inlink.raw");
        EXPECT_NE(load(header), NullFC) << f.suffix;
        std::ofstream(header) << f.header("inlink.raw");
        EXPECT_NE(load(header), NullFC) << f.suffix;

        // the application may allow more
        ImageFileHandler::the().setAllowOutsideDataFiles(true);
        for(const std::string &name : {path("outside/secret.raw"),
                                       std::string("../outside/secret.raw")})
        {
            std::ofstream(header) << f.header(name);
            image = load(header);
            ASSERT_NE(image, NullFC) << f.suffix << " " << name;
            EXPECT_EQ(bytesOf(image), "SECRETSECRETSECR");
        }
        ImageFileHandler::the().setAllowOutsideDataFiles(false);
    }
}

TEST_F(HostileFiles, DataFilesAreRegularFilesAndNothingBlocks)
{
    ASSERT_EQ(mkfifo(path("in/fifo.raw").c_str(), 0600), 0);
    std::filesystem::create_directory(path("in/dir.raw"));

    for(const Format &f : Formats)
    {
        const std::string header = path(std::string("in/h.") + f.suffix);
        for(const char *name : {"fifo.raw", "dir.raw"})
        {
            std::ofstream(header) << f.header(name);
            expectRefused(refuse(header, 5), "is not a regular file",
                          std::string(f.suffix) + " naming " + name);
        }
        ImageFileHandler::the().setAllowOutsideDataFiles(true);
        std::ofstream(header) << f.header("/dev/zero");
        expectRefused(refuse(header, 5), "/dev/zero is not a regular file", f.suffix);
        ImageFileHandler::the().setAllowOutsideDataFiles(false);
    }

    // the file named to the loader itself
    ASSERT_EQ(mkfifo(path("in/fifo.png").c_str(), 0600), 0);
    expectRefused(refuse(path("in/fifo.png"), 5), "is not a regular file", "FIFO as image");
    expectRefused(refuse(path("in/dir.raw"), 5), "is not a regular file", "folder as image");
}

TEST_F(HostileFiles, OffsetsAreSkippedBySeeking)
{
    put("in/v.raw", "0123456789abcdef");
    // 2^63 - 1000 bytes in: sought, found beyond the end, refused at once
    expectRefused(refuse(put("in/far.dat", datHeader("v.raw") +
                                               "FileOffset: 9223372036854774807\n"),
                         5),
                  "holds 0 of the 16 bytes", "DAT offset");
    expectRefused(refuse(put("in/far.mhd", MetaHead + "DimSize = 4 2 2\n"
                                                      "HeaderSize = 9223372036854774807\n"
                                                      "ElementDataFile = v.raw\n"),
                         5),
                  "MetaImage:", "MetaImage header size");
    expectRefused(refuse(put("in/far.nhdr", NrrdHead + "sizes: 4 2 2\nencoding: raw\n"
                                                       "byte skip: 9223372036854774807\n"
                                                       "data file: v.raw\n"),
                         5),
                  "NRRD:", "NRRD byte skip");

    // and they are honoured where the data is
    LogCapture log;
    ImagePtr   image = load(put("in/o.dat", "ObjectFileName: v.raw\nResolution: 2 2 1\n"
                                          "Format: UCHAR\nFileOffset: 10\n"));
    ASSERT_NE(image, NullFC);
    EXPECT_EQ(bytesOf(image), "abcd");
}

TEST_F(HostileFiles, NamesThatHideAFormatNamingOtherFilesAreRefused)
{
    put("in/v.raw", "0123456789abcdef");
    const std::string nrrd = nhdrHeader("v.raw");

    // read as what it is, it is fine
    EXPECT_NE(load(put("in/v.nhdr", nrrd)), NullFC);

    // "upload.png" must not pull in any other file
    for(const char *name : {"in/upload.png", "in/upload.PNG"})
    {
        expectRefused(refuse(put(name, nrrd)), "looks like a 'nhdr' file, which may name other "
                                               "files, but is not named so",
                      name);
    }
    // with attached data as well: the format is refused, not the header
    expectRefused(refuse(put("in/attached.png", NrrdHead + "sizes: 2 1 1\nencoding: raw\n\nab")),
                  "looks like a 'nhdr' file", "attached");
}

TEST_F(HostileFiles, NRRDReadsOneDetachedFileOnly)
{
    put("in/v.raw", "0123456789abcdef");
    for(const std::string &field :
        {std::string("data file: LIST\nv.raw\nv.raw\n"),
         std::string("data file: s%03d.raw 1 2 1 2\n"),
         std::string("data file: SKIPLIST 1\n5 v.raw\n"),
         std::string("data file: v.raw\ndatafile: v.raw\n")})
    {
        const std::string header = put("in/l.nhdr", NrrdHead + "sizes: 4 2 2\nencoding: raw\n" +
                                                        field);
        const LimitedResult r = refuse(header, 5);
        EXPECT_TRUE(r.passed) << field << r.log;
        EXPECT_TRUE(contains(r.log, "NRRD: ")) << field << r.log;
    }

    // line and byte skips apply to the data file; CR LF headers; gzip data
    put("in/skip.raw", "one line\r\nsecond\n..0123456789abcdef");
    ImagePtr image = load(put("in/skip.nhdr", "NRRD0004\r\ntype: uchar\r\ndimension: 3\r\n"
                                              "sizes: 4 2 2\r\nencoding: raw\r\n"
                                              "line skip: 2\r\nbyte skip: 2\r\n"
                                              "data file: skip.raw\r\n"));
    ASSERT_NE(image, NullFC);
    EXPECT_EQ(bytesOf(image), "0123456789abcdef");

    put("in/z.raw.gz", corvanetest::deflated("xx0123456789abcdef", true));
    image = load(put("in/z.nhdr", NrrdHead + "sizes: 4 2 2\nencoding: gzip\nbyte skip: 2\n"
                                             "data file: z.raw.gz\n\ntrailing text is ignored"));
    ASSERT_NE(image, NullFC);
    EXPECT_EQ(bytesOf(image), "0123456789abcdef");

    // byte skip -1: the data ends the file
    put("in/end.raw", "preamble of any length0123456789abcdef");
    image = load(put("in/end.nhdr", NrrdHead + "sizes: 4 2 2\nencoding: raw\nbyte skip: -1\n"
                                               "data file: end.raw"));
    ASSERT_NE(image, NullFC);
    EXPECT_EQ(bytesOf(image), "0123456789abcdef");
    put("in/short.raw", "0123");
    expectRefused(refuse(put("in/short.nhdr", NrrdHead + "sizes: 4 2 2\nencoding: raw\n"
                                                         "byte skip: -1\ndata file: short.raw\n")),
                  "NRRD: the data holds", "short with byte skip -1");
}

// --- spacings ----------------------------------------------------------------------------------

TEST_F(HostileFiles, SpacingsAreFiniteAndPositiveOrOne)
{
    put("in/v.raw", "0123456789abcdef");
    LogCapture log;

    // the report's file: an extent of (nan, -4, inf) before
    ImagePtr image = load(put("in/v.dat", datHeader("v.raw") + "SliceThickness: nan -1 1e300\n"));
    ASSERT_NE(image, NullFC);
    EXPECT_TRUE(contains(log.take(), "DAT: SliceThickness 'nan -1 1e300' is not three finite "
                                     "positive numbers; 1 1 1 is used"));
    ASSERT_NE(image->findAttachmentField("SliceThickness"), nullptr);
    EXPECT_EQ(*image->findAttachmentField("SliceThickness"), "1 1 1");

    image = load(put("in/g.dat", datHeader("v.raw") + "SliceThickness: 0.5 2 1e-40\n"));
    ASSERT_NE(image, NullFC);
    ASSERT_NE(image->findAttachmentField("SliceThickness"), nullptr);
    EXPECT_EQ(*image->findAttachmentField("SliceThickness"), "0.5 2 1");
    EXPECT_TRUE(contains(log.take(), "'0.5 2 1e-40' is not three finite positive numbers"));

    // what is fine stays as it was written
    image = load(put("in/f.dat", datHeader("v.raw") + "SliceThickness: 0.50 2.0 3\n"));
    ASSERT_NE(image, NullFC);
    ASSERT_NE(image->findAttachmentField("SliceThickness"), nullptr);
    EXPECT_EQ(*image->findAttachmentField("SliceThickness"), "0.50 2.0 3");
    const std::string quiet = log.take();
    EXPECT_TRUE(quiet.empty()) << quiet;

    for(const char *spacing : {"1e300 0 -2", "nan inf -inf"})
    {
        image = load(put("in/v.mhd", MetaHead + "DimSize = 4 2 2\nElementSpacing = " + spacing +
                                         "\nElementDataFile = v.raw\n"));
        ASSERT_NE(image, NullFC) << spacing;
        ASSERT_NE(image->findAttachmentField("SliceThickness"), nullptr) << spacing;
        EXPECT_EQ(*image->findAttachmentField("SliceThickness"), "1 1 1") << spacing;
        EXPECT_TRUE(contains(log.take(), std::string("MetaImage: voxel spacing")))
            << spacing;
    }

    image = load(put("in/s.nhdr", NrrdHead + "sizes: 4 2 2\nencoding: raw\n"
                                             "spacings: 1e300 0.5 -2\ndata file: v.raw\n"));
    ASSERT_NE(image, NullFC);
    ASSERT_NE(image->findAttachmentField("SliceThickness"), nullptr);
    EXPECT_EQ(*image->findAttachmentField("SliceThickness"), "1 0.5 2");
    EXPECT_TRUE(contains(log.take(), "NRRD: voxel spacing 1e+300 0.5 2 is not three finite "
                                     "positive numbers; 1 0.5 2 is used"));

    // sizes are not repaired: a header without a positive size is refused
    expectRefused(refuse(put("in/z.dat", "ObjectFileName: v.raw\nResolution: 4 0 4\n"
                                         "Format: UCHAR\n")),
                  "Invalid/Missing DAT Resolution", "DAT size 0");
    expectRefused(refuse(put("in/z.mhd", MetaHead + "DimSize = 4 -2 2\n"
                                                    "ElementDataFile = v.raw\n")),
                  "DimSize needs 3 positive sizes", "MetaImage size -2");
    expectRefused(refuse(put("in/z.nhdr", NrrdHead + "sizes: 4 0 2\nencoding: raw\n"
                                                     "data file: v.raw\n")),
                  "NRRD: ", "NRRD size 0");
}
