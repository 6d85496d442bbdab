// Writes a volume as a DICOM series through DCMTK: one MR image file a
// slice, explicit VR little endian, axial (rows along +x, columns along
// +y), slice k at z = k * spacing[2]. The UIDs are made from the series
// name, so the same arguments give the same files.
#ifndef _MAKEVOLUMES_DICOMSERIESWRITER_H_
#define _MAKEVOLUMES_DICOMSERIESWRITER_H_

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dcdeftag.h>
#include <dcmtk/dcmdata/dcfilefo.h>
#include <dcmtk/dcmdata/dcuid.h>

#include <cstdint>
#include <cstdio>
#include <string>

#include <sys/stat.h>

inline std::string dicomUid(const std::string &name, unsigned part)
{
    // a "2.25." UID: a number below 2^128, here from a hash of the name
    uint64_t hash = 1469598103934665603ull;
    for(unsigned char c : name)
        hash = (hash ^ c) * 1099511628211ull;
    return "2.25." + std::to_string(hash) + std::to_string(1000 + part);
}

inline bool writeDicomSeries(const std::string &folder, const uint8_t *voxels,
                             const unsigned size[3], int bits,
                             const double spacing[3], const std::string &name)
{
    ::mkdir(folder.c_str(), 0777);

    const unsigned    bytes      = bits == 8 ? 1 : 2;
    const size_t      sliceBytes = size_t(size[0]) * size[1] * bytes;
    const std::string study      = dicomUid(name, 1);
    const std::string series     = dicomUid(name, 2);

    char pixelSpacing[64];
    std::snprintf(pixelSpacing, sizeof(pixelSpacing), "%g\\%g", spacing[1], spacing[0]);
    char thickness[32];
    std::snprintf(thickness, sizeof(thickness), "%g", spacing[2]);

    for(unsigned k = 0; k < size[2]; ++k)
    {
        DcmFileFormat file;
        DcmDataset   *ds = file.getDataset();

        char position[64];
        std::snprintf(position, sizeof(position), "0\\0\\%g", k * spacing[2]);

        const std::string instance = dicomUid(name, 100 + k);
        bool              ok =
            ds->putAndInsertString(DCM_SOPClassUID, UID_MRImageStorage).good() &&
            ds->putAndInsertString(DCM_SOPInstanceUID, instance.c_str()).good() &&
            ds->putAndInsertString(DCM_Modality, "MR").good() &&
            ds->putAndInsertString(DCM_PatientName, ("Phantom^" + name).c_str()).good() &&
            ds->putAndInsertString(DCM_StudyInstanceUID, study.c_str()).good() &&
            ds->putAndInsertString(DCM_SeriesInstanceUID, series.c_str()).good() &&
            ds->putAndInsertString(DCM_InstanceNumber, std::to_string(k + 1).c_str()).good() &&
            ds->putAndInsertString(DCM_ImagePositionPatient, position).good() &&
            ds->putAndInsertString(DCM_ImageOrientationPatient, "1\\0\\0\\0\\1\\0").good() &&
            ds->putAndInsertString(DCM_SliceThickness, thickness).good() &&
            ds->putAndInsertString(DCM_PixelSpacing, pixelSpacing).good() &&
            ds->putAndInsertUint16(DCM_SamplesPerPixel, 1).good() &&
            ds->putAndInsertString(DCM_PhotometricInterpretation, "MONOCHROME2").good() &&
            ds->putAndInsertUint16(DCM_Rows, uint16_t(size[1])).good() &&
            ds->putAndInsertUint16(DCM_Columns, uint16_t(size[0])).good() &&
            ds->putAndInsertUint16(DCM_BitsAllocated, uint16_t(bits)).good() &&
            ds->putAndInsertUint16(DCM_BitsStored, uint16_t(bits)).good() &&
            ds->putAndInsertUint16(DCM_HighBit, uint16_t(bits - 1)).good() &&
            ds->putAndInsertUint16(DCM_PixelRepresentation, 0).good();

        const uint8_t *slice = voxels + k * sliceBytes;
        if(bits == 8)
            ok = ok && ds->putAndInsertUint8Array(DCM_PixelData, slice,
                                                  static_cast<unsigned long>(sliceBytes)).good();
        else
            ok = ok && ds->putAndInsertUint16Array(
                           DCM_PixelData, reinterpret_cast<const Uint16 *>(slice),
                           static_cast<unsigned long>(sliceBytes / 2)).good();

        char fileName[32];
        std::snprintf(fileName, sizeof(fileName), "/slice%04u.dcm", k);
        if(!ok || file.saveFile((folder + fileName).c_str(), EXS_LittleEndianExplicit).bad())
            return false;
    }
    return true;
}

#endif
