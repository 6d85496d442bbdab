// DICOM series: folders of slices the test writes itself as Part 10 files
// (explicit VR little endian, element by element), read through
// Image::read(folder): order along the slice normal, spacing, values,
// mixed series, missing slices, differing slices and broken files.
#include <OpenSG/OSGDICOMImageFileType.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGImageFileHandler.h>
#include <OpenSG/OSGLog.h>

#include "../support/ScratchDir.h"
#include "../support/TextSupport.h"
#include "VolumeTransformSupport.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

using namespace osg;
using corvanetest::contains;
using corvanetest::scratchPath;

namespace
{

/// One slice of a series as the test writes it.
struct DicomSlice
{
    std::string series      = "1.2.826.0.1.3680043.2.1125.1";
    int         instance    = 1;
    double      position[3] = {0, 0, 0};
    std::string orientation = "1\\0\\0\\0\\1\\0";
    std::string spacing     = "0.5\\0.8"; // between rows, between columns
    int         rows        = 4;
    int         columns     = 3;
    bool        isSigned    = false;
    std::vector<Int16> values; // rows * columns, row by row
};

std::string dicomU16(UInt16 v)
{
    return std::string{char(v & 0xff), char(v >> 8)};
}

std::string dicomU32(UInt32 v)
{
    return dicomU16(UInt16(v & 0xffff)) + dicomU16(UInt16(v >> 16));
}

/// An element with a short (2-byte) length: UI, CS, DS, IS, US, UL.
std::string dicomElement(UInt16 group, UInt16 number, const char *vr, std::string value)
{
    if(value.size() % 2 != 0)
        value += std::strcmp(vr, "UI") == 0 ? '\0' : ' ';
    return dicomU16(group) + dicomU16(number) + vr + dicomU16(UInt16(value.size())) + value;
}

/// An element with a long length: OB, OW.
std::string dicomLongElement(UInt16 group, UInt16 number, const char *vr, const std::string &value)
{
    return dicomU16(group) + dicomU16(number) + vr + std::string(2, '\0') + dicomU32(UInt32(value.size())) +
           value;
}

std::string dicomNumbers(const double *v, int n)
{
    std::string out;
    for(int i = 0; i < n; ++i)
    {
        char text[32];
        std::snprintf(text, sizeof(text), "%g", v[i]);
        out += (i ? "\\" : "") + std::string(text);
    }
    return out;
}

std::string dicomFile(const DicomSlice &s)
{
    const std::string sopClass = "1.2.840.10008.5.1.4.1.1.4";
    const std::string instance = s.series + "." + std::to_string(s.instance);

    std::string meta = dicomLongElement(0x0002, 0x0001, "OB", std::string("\0\1", 2)) +
                       dicomElement(0x0002, 0x0002, "UI", sopClass) +
                       dicomElement(0x0002, 0x0003, "UI", instance) +
                       dicomElement(0x0002, 0x0010, "UI", "1.2.840.10008.1.2.1") +
                       dicomElement(0x0002, 0x0012, "UI", "1.2.826.0.1.3680043.2.1125.9");
    meta = dicomElement(0x0002, 0x0000, "UL", dicomU32(UInt32(meta.size()))) + meta;

    std::string pixels;
    for(Int16 v : s.values)
        pixels += dicomU16(UInt16(v));

    const std::string data =
        dicomElement(0x0008, 0x0016, "UI", sopClass) + dicomElement(0x0008, 0x0018, "UI", instance) +
        dicomElement(0x0008, 0x0060, "CS", "MR") + dicomElement(0x0018, 0x0050, "DS", "1") +
        dicomElement(0x0020, 0x000d, "UI", "1.2.826.0.1.3680043.2.1125.7") +
        dicomElement(0x0020, 0x000e, "UI", s.series) +
        dicomElement(0x0020, 0x0013, "IS", std::to_string(s.instance)) +
        dicomElement(0x0020, 0x0032, "DS", dicomNumbers(s.position, 3)) +
        dicomElement(0x0020, 0x0037, "DS", s.orientation) + dicomElement(0x0028, 0x0002, "US", dicomU16(1)) +
        dicomElement(0x0028, 0x0004, "CS", "MONOCHROME2") +
        dicomElement(0x0028, 0x0010, "US", dicomU16(UInt16(s.rows))) +
        dicomElement(0x0028, 0x0011, "US", dicomU16(UInt16(s.columns))) +
        dicomElement(0x0028, 0x0030, "DS", s.spacing) + dicomElement(0x0028, 0x0100, "US", dicomU16(16)) +
        dicomElement(0x0028, 0x0101, "US", dicomU16(16)) + dicomElement(0x0028, 0x0102, "US", dicomU16(15)) +
        dicomElement(0x0028, 0x0103, "US", dicomU16(s.isSigned ? 1 : 0)) +
        dicomLongElement(0x7fe0, 0x0010, "OW", pixels);

    return std::string(128, '\0') + "DICM" + meta + data;
}

/// A value that tells column, row and slice apart.
Int16 dicomValue(int x, int y, int k)
{
    return Int16(x + 10 * y + 100 * k);
}

void dicomFill(DicomSlice &s, int k, int sign = 1)
{
    s.values.clear();
    for(int y = 0; y < s.rows; ++y)
        for(int x = 0; x < s.columns; ++x)
            s.values.push_back(Int16(sign * dicomValue(x, y, k)));
}

void writeDicom(const std::string &path, const std::string &bytes)
{
    std::ofstream out(path, std::ios::binary);
    out << bytes;
}

class DICOMSeries : public ::testing::Test
{
  protected:
    void TearDown(void) override
    {
        for(ImagePtr image : _images)
            subRefCP(image);
    }

    /// A fresh folder in the scratch directory.
    std::string folder(const std::string &name)
    {
        const std::string path = scratchPath(name);
        std::filesystem::remove_all(path);
        std::filesystem::create_directories(path);
        return path;
    }

    ImagePtr load(const std::string &path)
    {
        ImagePtr image = Image::create();
        addRefCP(image);
        _images.push_back(image);
        return image->read(path.c_str()) ? image : NullFC;
    }

    std::vector<ImagePtr> _images;
};

UInt16 dicomVoxel(ImagePtr image, int x, int y, int z)
{
    UInt16 v;
    const size_t index = size_t(x + image->getWidth() * (y + image->getHeight() * z));
    std::memcpy(&v, image->getData() + 2 * index, 2);
    return v;
}

/// DICOM writes positions with six digits.
void expectDicomMatrix(const std::vector<double> &got, const std::vector<double> &want)
{
    voltest::expectTransform(got, want, 1e-6);
}

/// Writes `text` as a file.
void writeText(const std::string &path, const std::string &text)
{
    std::ofstream out(path, std::ios::binary);
    out << text;
}

} // namespace

TEST_F(DICOMSeries, SlicesAreOrderedAlongTheNormalWithTheirSpacingAndValues)
{
    // coronal slices: rows along +x, columns along -z, so the normal is +y;
    // file names and instance dicomNumbers both run against the positions
    for(bool isSigned : {false, true})
    {
        SCOPED_TRACE(isSigned ? "signed" : "unsigned");
        const std::string dir = folder(isSigned ? "coronal-signed" : "coronal");
        const int         n   = 5;

        for(int k = 0; k < n; ++k)
        {
            DicomSlice s;
            s.orientation = "1\\0\\0\\0\\0\\-1";
            s.position[0] = -20;
            s.position[1] = 10 + 2.5 * k;
            s.position[2] = 7;
            s.instance    = n - k;
            s.isSigned    = isSigned;
            dicomFill(s, k, isSigned ? -1 : 1);
            writeDicom(dir + "/IM" + std::to_string((k * 3) % n), dicomFile(s));
        }

        ImagePtr image = load(dir);
        ASSERT_NE(image, NullFC);
        EXPECT_EQ(image->getWidth(), 3);
        EXPECT_EQ(image->getHeight(), 4);
        EXPECT_EQ(image->getDepth(), n);
        EXPECT_EQ(image->getDataType(), GL_UNSIGNED_SHORT);
        ASSERT_NE(image->findAttachmentField("SliceThickness"), nullptr);
        EXPECT_EQ(*image->findAttachmentField("SliceThickness"), "0.8 0.5 2.5");

        for(int k = 0; k < n; ++k)
            for(int y = 0; y < 4; ++y)
                for(int x = 0; x < 3; ++x)
                {
                    const int v = isSigned ? -dicomValue(x, y, k) + 32768 : dicomValue(x, y, k);
                    ASSERT_EQ(dicomVoxel(image, x, y, k), v) << x << " " << y << " " << k;
                }
        if(isSigned)
        {
            EXPECT_EQ(*image->findAttachmentField("ValueOffset"), "32768");
        }
    }

    // a normal pointing the other way orders the same positions downwards
    const std::string dir = folder("flipped");
    for(int k = 0; k < 3; ++k)
    {
        DicomSlice s;
        s.orientation = "0\\1\\0\\1\\0\\0"; // normal -z
        s.position[2] = 5.0 * k;
        dicomFill(s, k);
        writeDicom(dir + "/s" + std::to_string(k) + ".dcm", dicomFile(s));
    }
    ImagePtr image = load(dir);
    ASSERT_NE(image, NullFC);
    EXPECT_EQ(dicomVoxel(image, 0, 0, 0), dicomValue(0, 0, 2));
    EXPECT_EQ(dicomVoxel(image, 0, 0, 2), dicomValue(0, 0, 0));
    EXPECT_EQ(*image->findAttachmentField("SliceThickness"), "0.8 0.5 5");

    // one file alone is one slice
    image = load(dir + "/s1.dcm");
    ASSERT_NE(image, NullFC);
    EXPECT_EQ(image->getDepth(), 1);
    EXPECT_EQ(dicomVoxel(image, 2, 3, 0), dicomValue(2, 3, 1));
}

TEST_F(DICOMSeries, MixedSeriesMissingSlicesAndOddFilesInTheFolder)
{
    // three slices of one series, two of another, a text file, a FIFO and a
    // subfolder: the largest series is read, with a warning
    const std::string dir = folder("mixed");
    for(int k = 0; k < 5; ++k)
    {
        DicomSlice s;
        s.series      = k < 3 ? "1.2.3.100" : "1.2.3.200";
        s.position[2] = k;
        s.rows        = k < 3 ? 4 : 6;
        dicomFill(s, k);
        writeDicom(dir + "/f" + std::to_string(k), dicomFile(s));
    }
    writeDicom(dir + "/notes.txt", "not a slice\n");
    ASSERT_EQ(mkfifo((dir + "/pipe").c_str(), 0600), 0);
    std::filesystem::create_directories(dir + "/sub");
    {
        LogCapture log;
        ImagePtr   image = load(dir);
        ASSERT_NE(image, NullFC);
        EXPECT_EQ(image->getDepth(), 3);
        EXPECT_EQ(image->getHeight(), 4);
        EXPECT_TRUE(contains(log.take(),
                             "DICOM: the files hold 2 series; reading the largest, 1.2.3.100 "
                             "(3 slices)"));
    }

    // a missing slice makes the spacing uneven: read, with a warning
    const std::string gap = folder("gap");
    for(double z : {0.0, 2.0, 4.0, 8.0})
    {
        DicomSlice s;
        s.position[2] = z;
        dicomFill(s, int(z));
        writeDicom(gap + "/z" + std::to_string(int(z)), dicomFile(s));
    }
    {
        LogCapture log;
        ImagePtr   image = load(gap);
        ASSERT_NE(image, NullFC);
        EXPECT_EQ(image->getDepth(), 4);
        EXPECT_EQ(dicomVoxel(image, 0, 0, 3), dicomValue(0, 0, 8));
        EXPECT_TRUE(contains(log.take(), "DICOM: uneven slice spacing (from 2 to 4); slices may "
                                         "be missing; taking 2"));
        EXPECT_EQ(*image->findAttachmentField("SliceThickness"), "0.8 0.5 2");
    }
}

TEST_F(DICOMSeries, SeriesThatCanNotMakeOneVolumeAreRefusedWithALogLine)
{
    struct Bad
    {
        const char *name;
        std::function<void(DicomSlice &, int)> change;
        const char *message;
    };
    const Bad bad[] = {
        {"sizes", [](DicomSlice &s, int k) { if(k == 1) { s.rows = 5; dicomFill(s, k); } },
         "in rows, columns, pixel type, orientation or pixel spacing; not read"},
        {"orientations", [](DicomSlice &s, int k) { if(k == 2) s.orientation = "0\\1\\0\\1\\0\\0"; },
         "in rows, columns, pixel type, orientation or pixel spacing; not read"},
        {"twice", [](DicomSlice &s, int k) { s.position[2] = k == 2 ? 1 : k; },
         "DICOM: two slices of the series lie at one position; not read"},
        {"normal", [](DicomSlice &s, int) { s.orientation = "1\\0\\0\\1\\0\\0"; },
         "has no normal; not read"},
    };
    for(const Bad &b : bad)
    {
        SCOPED_TRACE(b.name);
        const std::string dir = folder(b.name);
        for(int k = 0; k < 3; ++k)
        {
            DicomSlice s;
            s.position[2] = k;
            dicomFill(s, k);
            b.change(s, k);
            writeDicom(dir + "/" + std::to_string(k), dicomFile(s));
        }
        LogCapture log;
        EXPECT_EQ(load(dir), NullFC);
        const std::string text = log.take();
        EXPECT_TRUE(contains(text, b.message)) << text;
    }

    // broken files
    DicomSlice s;
    dicomFill(s, 0);
    const std::string whole = dicomFile(s);
    const std::string dir   = folder("broken");
    writeDicom(dir + "/cut.dcm", whole.substr(0, whole.size() - 10));
    writeDicom(dir + "/head.dcm", whole.substr(0, 140));
    writeDicom(dir + "/garbage.dcm", std::string(128, '\0') + "DICM" + std::string(300, '\xff'));
    for(const char *name : {"cut.dcm", "head.dcm", "garbage.dcm"})
    {
        SCOPED_TRACE(name);
        LogCapture log;
        EXPECT_EQ(load(dir + "/" + name), NullFC);
        EXPECT_TRUE(contains(log.take(), "DICOM: ")) << name;
    }

    // a truncated slice spoils its series
    const std::string cut = folder("cut-series");
    for(int k = 0; k < 3; ++k)
    {
        DicomSlice t;
        t.position[2] = k;
        dicomFill(t, k);
        const std::string bytes = dicomFile(t);
        writeDicom(cut + "/" + std::to_string(k), k == 1 ? bytes.substr(0, bytes.size() - 7) : bytes);
    }
    {
        LogCapture log;
        EXPECT_EQ(load(cut), NullFC);
        EXPECT_TRUE(contains(log.take(), "DICOM: ")) << cut;
    }

    // nothing to read
    const std::string empty = folder("empty");
    writeDicom(empty + "/readme", "hello\n");
    LogCapture log;
    EXPECT_EQ(load(empty), NullFC);
    EXPECT_TRUE(contains(log.take(), "DICOM: no DICOM images among the 1 files"));
    EXPECT_EQ(load(folder("nothing")), NullFC);
    EXPECT_TRUE(contains(log.take(), "DICOM: the folder"));
}

TEST_F(DICOMSeries, TheBudgetAndLinksOutOfTheFolderAreObeyed)
{
    const std::string dir = folder("budget");
    for(int k = 0; k < 4; ++k)
    {
        DicomSlice s;
        s.rows = s.columns = 64;
        s.position[2]      = k;
        dicomFill(s, k);
        writeDicom(dir + "/" + std::to_string(k), dicomFile(s));
    }

    ImageFileHandler &handler = ImageFileHandler::the();
    handler.setMaxImageBytes(64 * 64 * 2 * 3);
    {
        LogCapture log;
        EXPECT_EQ(load(dir), NullFC);
        EXPECT_TRUE(contains(log.take(), "larger than the 24576 bytes allowed"));
    }
    handler.setMaxImageBytes(0);
    EXPECT_NE(load(dir), NullFC);

    // a link to a slice elsewhere is not followed by default
    const std::string elsewhere = folder("elsewhere");
    DicomSlice             s;
    s.rows = s.columns = 64;
    s.position[2]      = 4;
    dicomFill(s, 4);
    writeDicom(elsewhere + "/outside", dicomFile(s));
    ASSERT_EQ(symlink((elsewhere + "/outside").c_str(), (dir + "/link").c_str()), 0);

    LogCapture log;
    ImagePtr   image = load(dir);
    ASSERT_NE(image, NullFC);
    EXPECT_EQ(image->getDepth(), 4);
    EXPECT_TRUE(contains(log.take(), "symbolic links in"));

    handler.setAllowOutsideDataFiles(true);
    image = load(dir);
    handler.setAllowOutsideDataFiles(false);
    ASSERT_NE(image, NullFC);
    EXPECT_EQ(image->getDepth(), 5);
}

TEST_F(DICOMSeries, ATiltedSeriesGivesItsVoxelToWorldMatrix)
{
    // rows along (0.8, 0.6, 0), columns along -z: the normal is (-0.6, 0.8, 0);
    // slices 2.5 apart along it, written in shuffled order. Sheared: every
    // slice also moves half a millimetre along the rows (a tilted gantry).
    const double row[3] = {0.8, 0.6, 0}, normal[3] = {-0.6, 0.8, 0};
    for(bool sheared : {false, true})
    {
        SCOPED_TRACE(sheared ? "sheared" : "straight");
        const std::string dir = folder(sheared ? "tilted-sheared" : "tilted");
        for(int k : {2, 0, 3, 1})
        {
            DicomSlice s;
            s.orientation = "0.8\\0.6\\0\\0\\0\\-1";
            for(int i = 0; i < 3; ++i)
                s.position[i] = (i == 0 ? 10 : i == 1 ? 20 : 30) + k * 2.5 * normal[i] +
                                (sheared ? k * 0.5 * row[i] : 0);
            dicomFill(s, k);
            writeDicom(dir + "/" + std::to_string(k * 7 % 4) + ".dcm", dicomFile(s));
        }

        LogCapture log;
        ImagePtr   image = load(dir);
        ASSERT_NE(image, NullFC);
        EXPECT_EQ(log.take(), "");
        EXPECT_EQ(dicomVoxel(image, 1, 2, 3), dicomValue(1, 2, 3));
        EXPECT_EQ(*image->findAttachmentField("SliceThickness"), "0.8 0.5 2.5");

        // columns: the row direction times the column spacing (0.8), the
        // column direction times the row spacing (0.5), the step from slice
        // to slice, the first slice's position; x and y turned over from
        // the patient's left and back to right and front
        const double step[3] = {2.5 * normal[0] + (sheared ? 0.5 * row[0] : 0),
                                2.5 * normal[1] + (sheared ? 0.5 * row[1] : 0), 0};
        expectDicomMatrix(voltest::transformOf(image), {-0.64, 0, -step[0], -10,  //
                                               -0.48, 0, -step[1], -20,  //
                                               0, -0.5, 0, 30});
    }

    // one slice alone: the normal times its Slice Thickness (1)
    ImagePtr image = load(scratchPath("tilted") + "/0.dcm");
    ASSERT_NE(image, NullFC);
    expectDicomMatrix(voltest::transformOf(image), {-0.64, 0, 0.6, -10, -0.48, 0, -0.8, -20, 0, -0.5, 0, 30});

    // slices without orientation: ordered by number, the spacing alone
    const std::string plain = folder("unplaced");
    for(int k = 0; k < 2; ++k)
    {
        DicomSlice s;
        s.orientation = "";
        s.instance    = k + 1;
        dicomFill(s, k);
        writeDicom(plain + "/" + std::to_string(k), dicomFile(s));
    }
    LogCapture log;
    image = load(plain);
    ASSERT_NE(image, NullFC);
    EXPECT_TRUE(contains(log.take(), "ordered by Instance Number"));
    expectDicomMatrix(voltest::transformOf(image), {0.8, 0, 0, 0, 0, 0.5, 0, 0, 0, 0, 1, 0});
}

TEST_F(DICOMSeries, AListOfSliceFilesReadsLikeAFolder)
{
    // five slices in the folder, 2 apart; the list names four of them (one
    // in a subfolder), skipping a comment, blank lines, CR LF ends and
    // spaces around names
    const std::string dir = folder("listed");
    for(int k = 0; k < 5; ++k)
    {
        DicomSlice s;
        s.position[2] = 2.0 * k;
        dicomFill(s, k);
        writeDicom(dir + "/s" + std::to_string(k) + ".dcm", dicomFile(s));
    }
    std::filesystem::create_directories(dir + "/sub");
    std::filesystem::rename(dir + "/s4.dcm", dir + "/sub/s4.dcm");
    writeText(dir + "/series.dcmlist",
              "# the series\r\n  s3.dcm \r\n\r\ns1.dcm\n./s0.dcm\nsub/s4.dcm");
    {
        LogCapture log;
        ImagePtr   image = load(dir + "/series.dcmlist");
        ASSERT_NE(image, NullFC);
        EXPECT_EQ(image->getDepth(), 4);
        EXPECT_EQ(dicomVoxel(image, 2, 3, 0), dicomValue(2, 3, 0));
        EXPECT_EQ(dicomVoxel(image, 2, 3, 2), dicomValue(2, 3, 3));
        EXPECT_EQ(dicomVoxel(image, 2, 3, 3), dicomValue(2, 3, 4));
        // s2 is not listed: the same missing-slice rule as for a folder
        EXPECT_TRUE(contains(log.take(), "DICOM: uneven slice spacing (from 2 to 4); slices may be "
                                         "missing; taking 2"));
        expectDicomMatrix(voltest::transformOf(image), {-0.8, 0, 0, 0, 0, -0.5, 0, 0, 0, 0, 2, 0});
    }

    // a second series among the named files: the larger one, with a warning
    DicomSlice other;
    other.series      = "1.2.3.999";
    other.position[2] = 9;
    dicomFill(other, 9);
    writeDicom(dir + "/other.dcm", dicomFile(other));
    writeText(dir + "/mixed.dcmlist", "s0.dcm\ns1.dcm\nother.dcm\n");
    {
        LogCapture log;
        ImagePtr   image = load(dir + "/mixed.dcmlist");
        ASSERT_NE(image, NullFC);
        EXPECT_EQ(image->getDepth(), 2);
        EXPECT_TRUE(contains(log.take(), "DICOM: the files hold 2 series; reading the largest"));
    }

    // lists that can not be read: each refused with its line
    const std::string elsewhere = folder("list-elsewhere");
    DicomSlice        outside;
    outside.position[2] = 20;
    dicomFill(outside, 0);
    writeDicom(elsewhere + "/outside.dcm", dicomFile(outside));
    ASSERT_EQ(mkfifo((dir + "/pipe").c_str(), 0600), 0);
    struct Bad
    {
        const char *name;
        std::string text;
        std::string message;
    };
    const Bad bad[] = {
        {"missing", "s0.dcm\nnot-there.dcm\n", "names not-there.dcm, which is no regular file"},
        {"fifo", "s0.dcm\npipe\n", "names pipe, which is no regular file"},
        {"folder", "sub\n", "names sub, which is no regular file"},
        {"up", "s0.dcm\n../list-elsewhere/outside.dcm\n", "lies outside the header's folder"},
        {"absolute", elsewhere + "/outside.dcm\n", "is an absolute path"},
        {"empty", "# nothing\n\n", "DICOM: the list " + dir + "/empty.dcmlist names no files"},
        {"binary", std::string("s0.dcm\n\0\1\2", 10), "is no text"},
        {"twice", "s0.dcm\ns1.dcm\ns1.dcm\n", "two slices of the series lie at one position"},
    };
    for(const Bad &b : bad)
    {
        SCOPED_TRACE(b.name);
        const std::string list = dir + "/" + b.name + ".dcmlist";
        writeText(list, b.text);
        LogCapture log;
        EXPECT_EQ(load(list), NullFC);
        const std::string text = log.take();
        EXPECT_TRUE(contains(text, b.message)) << text;
    }

    // outside files are read where the handler allows them
    ImageFileHandler::the().setAllowOutsideDataFiles(true);
    ImagePtr image = load(dir + "/up.dcmlist");
    ImageFileHandler::the().setAllowOutsideDataFiles(false);
    EXPECT_NE(image, NullFC);

    // a list too long to be one
    writeText(dir + "/long.dcmlist", std::string((1 << 20) + 1, '#'));
    LogCapture log;
    EXPECT_EQ(load(dir + "/long.dcmlist"), NullFC);
    EXPECT_TRUE(contains(log.take(), "is larger than 1048576 bytes"));
}
