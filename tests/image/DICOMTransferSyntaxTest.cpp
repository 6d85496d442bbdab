// DICOM series written through DCMTK in the transfer syntaxes scanners
// produce (implicit and explicit VR, big endian, RLE-compressed) read back
// through Image::read(folder) with the same voxels, order and spacing.
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>

#include "../support/ScratchDir.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dcdeftag.h>
#include <dcmtk/dcmdata/dcfilefo.h>
#include <dcmtk/dcmdata/dcrleerg.h>
#include <dcmtk/dcmdata/dcuid.h>

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

using namespace osg;
using corvanetest::scratchPath;

namespace
{

const int SyntaxColumns = 5, SyntaxRows = 4, SyntaxSlices = 3;

/// A signed value that tells column, row and slice apart.
Sint16 syntaxValue(int x, int y, int k)
{
    return Sint16((x + 7 * y + 50 * k) * (k % 2 ? -37 : 41));
}

/// Writes slice k of the series into folder in the given transfer syntax.
bool writeSyntaxSlice(const std::string &folder, int k, E_TransferSyntax syntax)
{
    DcmFileFormat file;
    DcmDataset   *ds = file.getDataset();

    std::vector<Sint16> pixels;
    for(int y = 0; y < SyntaxRows; ++y)
        for(int x = 0; x < SyntaxColumns; ++x)
            pixels.push_back(syntaxValue(x, y, k));

    const std::string position = "-3\\4\\" + std::to_string(10 - 1.5 * k);
    const std::string instance = "1.2.826.0.1.3680043.10.77.2." + std::to_string(k + 1);
    bool ok = ds->putAndInsertString(DCM_SOPClassUID, UID_CTImageStorage).good() &&
              ds->putAndInsertString(DCM_SOPInstanceUID, instance.c_str()).good() &&
              ds->putAndInsertString(DCM_SeriesInstanceUID, "1.2.826.0.1.3680043.10.77.1").good() &&
              ds->putAndInsertString(DCM_InstanceNumber, std::to_string(k + 1).c_str()).good() &&
              ds->putAndInsertString(DCM_ImagePositionPatient, position.c_str()).good() &&
              ds->putAndInsertString(DCM_ImageOrientationPatient, "1\\0\\0\\0\\1\\0").good() &&
              ds->putAndInsertString(DCM_PixelSpacing, "0.7\\0.6").good() &&
              ds->putAndInsertUint16(DCM_SamplesPerPixel, 1).good() &&
              ds->putAndInsertString(DCM_PhotometricInterpretation, "MONOCHROME2").good() &&
              ds->putAndInsertUint16(DCM_Rows, SyntaxRows).good() &&
              ds->putAndInsertUint16(DCM_Columns, SyntaxColumns).good() &&
              ds->putAndInsertUint16(DCM_BitsAllocated, 16).good() &&
              ds->putAndInsertUint16(DCM_BitsStored, 16).good() &&
              ds->putAndInsertUint16(DCM_HighBit, 15).good() &&
              ds->putAndInsertUint16(DCM_PixelRepresentation, 1).good() &&
              ds->putAndInsertUint16Array(DCM_PixelData,
                                          reinterpret_cast<const Uint16 *>(pixels.data()),
                                          static_cast<unsigned long>(pixels.size()))
                  .good();

    if(ok && DcmXfer(syntax).isEncapsulated())
        ok = ds->chooseRepresentation(syntax, NULL).good() && ds->canWriteXfer(syntax);

    const std::string name = folder + "/" + std::to_string((k + 2) % SyntaxSlices);
    return ok && file.saveFile(name.c_str(), syntax).good();
}

} // namespace

TEST(DICOMTransferSyntax, SeriesInEverySyntaxReadBackTheSame)
{
    DcmRLEEncoderRegistration::registerCodecs();

    const struct
    {
        const char      *name;
        E_TransferSyntax syntax;
    } syntaxes[] = {
        {"implicit", EXS_LittleEndianImplicit},
        {"explicit", EXS_LittleEndianExplicit},
        {"bigendian", EXS_BigEndianExplicit},
        {"rle", EXS_RLELossless},
    };

    for(const auto &s : syntaxes)
    {
        SCOPED_TRACE(s.name);
        const std::string folder = scratchPath(std::string("syntax-") + s.name);
        std::filesystem::create_directories(folder);
        for(int k = 0; k < SyntaxSlices; ++k)
            ASSERT_TRUE(writeSyntaxSlice(folder, k, s.syntax));

        ImagePtr image = Image::create();
        addRefCP(image);
        ASSERT_TRUE(image->read(folder.c_str()));
        EXPECT_EQ(image->getWidth(), SyntaxColumns);
        EXPECT_EQ(image->getHeight(), SyntaxRows);
        EXPECT_EQ(image->getDepth(), SyntaxSlices);
        EXPECT_EQ(image->getDataType(), GL_UNSIGNED_SHORT);
        ASSERT_NE(image->findAttachmentField("SliceThickness"), nullptr);
        EXPECT_EQ(*image->findAttachmentField("SliceThickness"), "0.6 0.7 1.5");

        // z ascends: the slice written last (lowest z) comes first
        for(int z = 0; z < SyntaxSlices; ++z)
            for(int y = 0; y < SyntaxRows; ++y)
                for(int x = 0; x < SyntaxColumns; ++x)
                {
                    UInt16 v;
                    std::memcpy(&v,
                                image->getData() +
                                    2 * (x + SyntaxColumns * (y + SyntaxRows * z)),
                                2);
                    ASSERT_EQ(v, UInt16(syntaxValue(x, y, SyntaxSlices - 1 - z) + 32768))
                        << x << " " << y << " " << z;
                }
        subRefCP(image);
    }
    DcmRLEEncoderRegistration::cleanup();
}
