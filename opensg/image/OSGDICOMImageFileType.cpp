#include <OpenSG/OSGDICOMImageFileType.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGImageFileHandler.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGVolumeHeaders.h>
#include <OpenSG/OSGVolumeImageSupport.h>

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dcdeftag.h>
#include <dcmtk/dcmdata/dcfilefo.h>
#include <dcmtk/dcmdata/dcrledrg.h>
#include <dcmtk/dcmjpeg/djdecode.h>
#include <dcmtk/dcmjpls/djdecode.h>
#include <dcmtk/oflog/oflog.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <sstream>

#include <dirent.h>
#include <sys/stat.h>

OSG_BEGIN_NAMESPACE

namespace
{

const Char8 *dicomSuffixes[] = {"dcm", "dcmlist"};

/// Relative difference of slice distances beyond which the spacing counts
/// as uneven.
const Real64 DicomSpacingTolerance = 0.01;

/// What one file's header says about its image.
struct DicomHeader
{
    std::string file;
    std::string series;
    std::string orientation;  ///< as written, compared between slices
    std::string pixelSpacing; ///< as written, compared between slices
    UInt32      rows       = 0;
    UInt32      columns    = 0;
    UInt32      bits       = 0; ///< Bits Allocated
    UInt32      isSigned   = 0; ///< Pixel Representation
    UInt32      samples    = 1;
    UInt32      frames     = 1;
    Real64      position[3] = {0, 0, 0};
    bool        hasPosition = false;
    Int64       instance    = 0;
    Real64      thickness   = 0; ///< Slice Thickness; 0 when absent
    Real64      along       = 0; ///< position along the slice normal
};

/// DCMTK's own logging stays quiet (failures reach our log with their
/// reason), and its decoders of compressed pixel data are registered once.
void dicomPrepareLibrary(void)
{
    static std::once_flag once;

    std::call_once(once, [] {
        for(const char *name : {"dcmtk.dcmdata", "dcmtk.dcmjpeg", "dcmtk.dcmjpls",
                                "dcmtk.dcmimgle"})
            OFLog::getLogger(name).setLogLevel(OFLogger::OFF_LOG_LEVEL);

        DcmRLEDecoderRegistration::registerCodecs();
        DJDecoderRegistration::registerCodecs();
        DJLSDecoderRegistration::registerCodecs();
    });
}

/// The backslash-separated numbers of a DICOM value; true when exactly
/// `count` finite ones were read.
bool dicomNumbers(const std::string &text, Real64 *out, UInt32 count)
{
    std::string value(text);
    std::replace(value.begin(), value.end(), '\\', ' ');

    std::istringstream in(value);
    in.imbue(std::locale::classic());

    for(UInt32 i = 0; i < count; ++i)
    {
        if(!(in >> out[i]) || !std::isfinite(out[i]))
            return false;
    }

    std::string rest;
    return !(in >> rest);
}

std::string dicomString(DcmDataset *ds, const DcmTagKey &tag)
{
    OFString value;

    if(ds->findAndGetOFStringArray(tag, value).bad())
        return std::string();

    std::string out(value.c_str(), value.length());
    const size_t end = out.find_last_not_of(" \t\r\n");

    return end == std::string::npos ? std::string() : out.substr(0, end + 1);
}

UInt32 dicomUInt16(DcmDataset *ds, const DcmTagKey &tag, UInt32 absent)
{
    Uint16 value = 0;

    return ds->findAndGetUint16(tag, value).good() ? UInt32(value) : absent;
}

/// The volume element of a header's pixels; invalid for what we do not read.
VolumeElement dicomElement(const DicomHeader &h)
{
    if(h.samples != 1)
        return VolumeElementInvalid;
    if(h.bits == 8)
        return h.isSigned ? VolumeInt8 : VolumeUInt8;
    if(h.bits == 16)
        return h.isSigned ? VolumeInt16 : VolumeUInt16;
    return VolumeElementInvalid;
}

/// Whether the file may be handed to the parser at all.
bool dicomFileFits(const std::string &file)
{
    UInt64 size = 0;

    if(!volumeFileSize(file, size))
        return false;

    if(size > volumeMaxBytes() + MaxVolumeHeaderBytes)
    {
        FWARNING(("DICOM: %s is larger than the image budget\n", file.c_str()));
        return false;
    }
    return true;
}

/// Reads the header of a file, up to its pixel data. False when the file
/// is no DICOM image (with a warning only when `warn`).
bool dicomLoadHeader(const std::string &file, DicomHeader &h, bool warn)
{
    if(!dicomFileFits(file))
        return false;

    DcmFileFormat     format;
    const OFCondition status =
        format.loadFileUntilTag(file.c_str(), EXS_Unknown, EGL_noChange,
                                DCM_MaxReadLength, ERM_autoDetect, DCM_PixelData);

    if(status.bad())
    {
        if(warn)
            FWARNING(("DICOM: %s is no readable DICOM file (%s)\n", file.c_str(),
                      status.text()));
        return false;
    }

    DcmDataset *ds = format.getDataset();

    h.file    = file;
    h.rows    = dicomUInt16(ds, DCM_Rows, 0);
    h.columns = dicomUInt16(ds, DCM_Columns, 0);

    if(h.rows == 0 || h.columns == 0)
    {
        if(warn)
            FWARNING(("DICOM: %s holds no image\n", file.c_str()));
        return false;
    }

    h.series       = dicomString(ds, DCM_SeriesInstanceUID);
    h.orientation  = dicomString(ds, DCM_ImageOrientationPatient);
    h.pixelSpacing = dicomString(ds, DCM_PixelSpacing);
    h.bits         = dicomUInt16(ds, DCM_BitsAllocated, 0);
    h.isSigned     = dicomUInt16(ds, DCM_PixelRepresentation, 0);
    h.samples      = dicomUInt16(ds, DCM_SamplesPerPixel, 1);
    h.hasPosition  = dicomNumbers(dicomString(ds, DCM_ImagePositionPatient),
                                  h.position, 3);

    Real64 number = 0;

    if(dicomNumbers(dicomString(ds, DCM_NumberOfFrames), &number, 1) &&
       number >= 1 && number <= 65535)
        h.frames = UInt32(number);
    if(dicomNumbers(dicomString(ds, DCM_InstanceNumber), &number, 1) &&
       std::fabs(number) < 1e15)
        h.instance = Int64(number);
    if(!dicomNumbers(dicomString(ds, DCM_SliceThickness), &h.thickness, 1))
        h.thickness = 0;

    if(dicomElement(h) == VolumeElementInvalid)
    {
        if(warn)
            FWARNING(("DICOM: %s holds %u samples of %u bits a pixel; 8- or "
                      "16-bit single-sample pixels are read\n", file.c_str(),
                      h.samples, h.bits));
        return false;
    }
    return true;
}

/// Reads one file's pixels, decompressed, into `dst` (exactly `bytes`).
bool dicomLoadPixels(const DicomHeader &h, UInt8 *dst, UInt64 bytes)
{
    if(!dicomFileFits(h.file))
        return false;

    DcmFileFormat format;
    OFCondition   status = format.loadFile(h.file.c_str());

    if(status.bad())
    {
        FWARNING(("DICOM: can not read %s (%s)\n", h.file.c_str(), status.text()));
        return false;
    }

    DcmDataset *ds = format.getDataset();

    // the header read first must still be what the file holds
    if(dicomUInt16(ds, DCM_Rows, 0) != h.rows ||
       dicomUInt16(ds, DCM_Columns, 0) != h.columns ||
       dicomUInt16(ds, DCM_BitsAllocated, 0) != h.bits)
    {
        FWARNING(("DICOM: %s changed while it was read\n", h.file.c_str()));
        return false;
    }

    status = ds->chooseRepresentation(EXS_LittleEndianExplicit, NULL);

    DcmElement *pixels = NULL;

    if(status.bad() || ds->findAndGetElement(DCM_PixelData, pixels).bad() ||
       pixels == NULL)
    {
        FWARNING(("DICOM: can not decode the pixels of %s (%s)\n",
                  h.file.c_str(), status.bad() ? status.text() : "no Pixel Data"));
        return false;
    }

    if(pixels->getLength() < bytes)
    {
        FWARNING(("DICOM: %s holds %llu pixel bytes, not %llu\n", h.file.c_str(),
                  static_cast<unsigned long long>(pixels->getLength()),
                  static_cast<unsigned long long>(bytes)));
        return false;
    }

    // in memory, DCMTK keeps 16-bit words in host order
    const UInt8 *data = NULL;

    if(pixels->getVR() == EVR_OW)
    {
        Uint16 *words = NULL;
        status        = pixels->getUint16Array(words);
        data          = reinterpret_cast<const UInt8 *>(words);
    }
    else
    {
        Uint8 *octets = NULL;
        status        = pixels->getUint8Array(octets);
        data          = octets;
    }

    if(status.bad() || data == NULL)
    {
        FWARNING(("DICOM: can not read the pixels of %s (%s)\n", h.file.c_str(),
                  status.bad() ? status.text() : "no data"));
        return false;
    }

    std::memcpy(dst, data, size_t(bytes));
    return true;
}

/// Regular files of a folder (not its subfolders), sorted by name; false
/// with a warning when the folder can not be listed.
bool dicomFolderFiles(const std::string &folder, std::vector<std::string> &files)
{
    DIR *dir = ::opendir(folder.c_str());

    if(dir == NULL)
    {
        FWARNING(("DICOM: can not list the folder %s\n", folder.c_str()));
        return false;
    }

    const bool        followLinks = ImageFileHandler::the().getAllowOutsideDataFiles();
    const std::string prefix      = folder.empty() || folder.back() == '/'
                                        ? folder
                                        : folder + "/";
    UInt32            skipped     = 0;

    while(dirent *entry = ::readdir(dir))
    {
        if(entry->d_name[0] == '.')
            continue;

        const std::string path = prefix + entry->d_name;
        struct stat       info;

        if(::lstat(path.c_str(), &info) != 0)
            continue;

        if(S_ISLNK(info.st_mode))
        {
            if(!followLinks || ::stat(path.c_str(), &info) != 0)
            {
                ++skipped;
                continue;
            }
        }

        if(!S_ISREG(info.st_mode))
            continue;

        if(files.size() >= MaxDICOMSlices)
        {
            FWARNING(("DICOM: %s holds more than %u files; the rest are not "
                      "looked at\n", folder.c_str(), MaxDICOMSlices));
            break;
        }

        files.push_back(path);
    }
    ::closedir(dir);

    if(skipped != 0)
        FWARNING(("DICOM: %u symbolic links in %s skipped (outside data files "
                  "are not allowed)\n", skipped, folder.c_str()));

    std::sort(files.begin(), files.end());
    return true;
}

bool dicomIsList(const std::string &path)
{
    return volumeEndsWithNoCase(path, ".dcmlist");
}

/// The slice files a list names, one a line; false with a warning for a
/// list that is too long, not text, names no file, or names a file that
/// is missing, no regular file, or (without outside data files allowed)
/// outside the list's folder.
bool dicomListFiles(const std::string &list, std::vector<std::string> &files)
{
    UInt64 size = 0;

    if(!volumeFileSize(list, size))
        return false;

    if(size > MaxDICOMListBytes)
    {
        FWARNING(("DICOM: the list %s is larger than %llu bytes\n", list.c_str(),
                  static_cast<unsigned long long>(MaxDICOMListBytes)));
        return false;
    }

    std::vector<UInt8> bytes;

    if(!volumeReadFile(list, 0, MaxDICOMListBytes, false, bytes))
        return false;

    const std::string text(bytes.begin(), bytes.end());

    if(text.find('\0') != std::string::npos)
    {
        FWARNING(("DICOM: the list %s is no text\n", list.c_str()));
        return false;
    }

    size_t start = 0;

    while(start < text.size())
    {
        size_t end = text.find('\n', start);
        if(end == std::string::npos)
            end = text.size();

        std::string name = text.substr(start, end - start);
        start            = end + 1;

        const size_t first = name.find_first_not_of(" \t\r");
        if(first == std::string::npos || name[first] == '#')
            continue;
        name = name.substr(first, name.find_last_not_of(" \t\r") + 1 - first);

        if(files.size() >= MaxDICOMSlices)
        {
            FWARNING(("DICOM: the list %s names more than %u files; not read\n",
                      list.c_str(), MaxDICOMSlices));
            return false;
        }

        std::string       path;
        const VolumeDataFileResult found =
            volumeDataFilePath(list, name, path, "DICOM list");
        struct stat       info;

        if(found == VolumeDataFileRefused)
            return false;

        if(found != VolumeDataFileFound || ::stat(path.c_str(), &info) != 0 ||
           !S_ISREG(info.st_mode))
        {
            FWARNING(("DICOM: the list %s names %s, which is no regular file\n",
                      list.c_str(), name.c_str()));
            return false;
        }
        files.push_back(path);
    }

    if(files.empty())
    {
        FWARNING(("DICOM: the list %s names no files\n", list.c_str()));
        return false;
    }
    return true;
}

/// Median of the distances between neighbouring slices; warns when they
/// differ (a slice missing) and refuses two slices at one place.
bool dicomSliceDistance(const std::vector<DicomHeader> &slices, Real64 &distance)
{
    std::vector<Real64> gaps;

    for(size_t i = 1; i < slices.size(); ++i)
        gaps.push_back(slices[i].along - slices[i - 1].along);

    if(gaps.empty())
        return true;

    std::sort(gaps.begin(), gaps.end());

    distance = gaps[gaps.size() / 2];

    if(!(gaps.front() > 0.0) || !(distance > 0.0))
    {
        FWARNING(("DICOM: two slices of the series lie at one position; not "
                  "read\n"));
        return false;
    }

    if(gaps.back() - gaps.front() > DicomSpacingTolerance * distance)
        FWARNING(("DICOM: uneven slice spacing (from %g to %g); slices may be "
                  "missing; taking %g\n", gaps.front(), gaps.back(), distance));
    return true;
}

/// Where a series lies, in DICOM's patient frame (x to the patient's left,
/// y to the back, z up).
struct DicomGeometry
{
    bool   known          = false;
    Real64 orientation[6] = {1, 0, 0, 0, 1, 0}; ///< row, then column direction
    Real64 origin[3]      = {0, 0, 0};          ///< the first voxel's centre
    Real64 stack[3]       = {0, 0, 1}; ///< from slice to slice per unit of spacing
};

/// The voxel-to-world matrix of "Transform" (NIfTI's frame: DICOM's x and
/// y turned over); the spacing alone without a geometry.
void dicomTransform(const DicomGeometry &g, const Real64 spacing[3],
                    Real64 m[12])
{
    const Real64 identity[12] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0};
    std::copy(identity, identity + 12, m);

    for(UInt32 row = 0; row < 3; ++row)
    {
        const Real64 flip = g.known && row < 2 ? -1.0 : 1.0;

        if(!g.known)
        {
            m[5 * row] = spacing[row];
            continue;
        }
        m[4 * row + 0] = flip * g.orientation[row] * spacing[0];
        m[4 * row + 1] = flip * g.orientation[3 + row] * spacing[1];
        m[4 * row + 2] = flip * g.stack[row] * spacing[2];
        m[4 * row + 3] = flip * g.origin[row];
    }
}

/// Edges, element and spacing of the slices in `slices` (ordered), read
/// into an image, with the matrix of `geometry` in "Transform".
bool dicomStore(ImagePtr &image, const std::vector<DicomHeader> &slices,
                VolumeLayout &layout, const DicomGeometry &geometry)
{
    const DicomHeader &first = slices.front();

    layout.width   = first.columns;
    layout.height  = first.rows;
    layout.depth   = UInt32(slices.size()) * first.frames;
    layout.element = dicomElement(first);
    layout.hasSpacing = true;

    Real64 pixelSpacing[2] = {1, 1};

    if(dicomNumbers(first.pixelSpacing, pixelSpacing, 2))
    {
        layout.spacing[0] = pixelSpacing[1]; // between columns
        layout.spacing[1] = pixelSpacing[0]; // between rows
    }

    volumeCheckSpacing(layout.spacing, "DICOM: spacing");

    UInt64 fileBytes  = 0;
    UInt64 imageBytes = 0;

    if(!volumeByteCounts(layout, fileBytes, imageBytes, "DICOM"))
        return false;

    const UInt64 sliceBytes = fileBytes / slices.size();

    // grows slice by slice: a series that fails half-way costs only what
    // it held
    std::vector<UInt8> voxels;

    for(const DicomHeader &s : slices)
    {
        const size_t old = voxels.size();

        voxels.resize(old + size_t(sliceBytes));

        if(!dicomLoadPixels(s, voxels.data() + old, sliceBytes))
            return false;
    }

    layout.bigEndian = !volumeHostIsLittleEndian();

    if(!decodeVolumeData(layout, voxels.data(), voxels.size(), voxels.data(),
                         voxels.size()))
        return false;

    voxels.resize(size_t(imageBytes));

    if(!volumeStoreInImage(image, layout, voxels, "DICOM"))
        return false;

    Real64 transform[12];
    dicomTransform(geometry, layout.spacing, transform);
    image->setAttachmentField(VolumeTransformKey,
                              formatVolumeTransform(transform));
    return true;
}

/// The geometry of one slice from its orientation and position; unknown
/// when either is missing or the orientation has no normal.
DicomGeometry dicomSliceGeometry(const DicomHeader &h)
{
    DicomGeometry g;

    if(!h.hasPosition || !dicomNumbers(h.orientation, g.orientation, 6))
        return DicomGeometry();

    const Real64 *o = g.orientation;
    const Real64  n[3] = {o[1] * o[5] - o[2] * o[4], o[2] * o[3] - o[0] * o[5],
                          o[0] * o[4] - o[1] * o[3]};
    const Real64  length = std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);

    if(!(length > 1e-6))
        return DicomGeometry();

    for(UInt32 i = 0; i < 3; ++i)
    {
        g.origin[i] = h.position[i];
        g.stack[i]  = n[i] / length;
    }
    g.known = true;
    return g;
}

} // namespace

DICOMImageFileType DICOMImageFileType::_the("application/dicom", dicomSuffixes,
                                            sizeof(dicomSuffixes),
                                            OSG_READ_SUPPORTED |
                                                OSG_READS_FOLDERS);

DICOMImageFileType &DICOMImageFileType::the(void)
{
    return _the;
}

DICOMImageFileType::DICOMImageFileType(const Char8 *mimeType,
                                       const Char8 *suffixArray[],
                                       UInt16       suffixByteCount,
                                       UInt32       flags)
    : ImageFileType(mimeType, suffixArray, suffixByteCount, flags)
{
}

DICOMImageFileType::~DICOMImageFileType(void)
{
}

bool DICOMImageFileType::read(ImagePtr &image, const Char8 *fileName)
{
    if(image == NullFC || fileName == NULL)
        return false;

    dicomPrepareLibrary();

    struct stat info;

    if(::stat(fileName, &info) == 0 && S_ISDIR(info.st_mode))
    {
        std::vector<std::string> files;

        if(!dicomFolderFiles(fileName, files))
            return false;

        if(files.empty())
        {
            FWARNING(("DICOM: the folder %s holds no files\n", fileName));
            return false;
        }
        return readSeries(image, files);
    }

    if(dicomIsList(fileName))
    {
        std::vector<std::string> files;

        return dicomListFiles(fileName, files) && readSeries(image, files);
    }

    // a single file: its frames make the volume, spaced by its thickness
    std::vector<DicomHeader> slices(1);

    if(!dicomLoadHeader(fileName, slices[0], true))
        return false;

    VolumeLayout layout;

    if(slices[0].thickness > 0)
        layout.spacing[2] = slices[0].thickness;

    return dicomStore(image, slices, layout, dicomSliceGeometry(slices[0]));
}

bool DICOMImageFileType::readSeries(ImagePtr                       &image,
                                    const std::vector<std::string> &files)
{
    if(image == NullFC)
        return false;

    dicomPrepareLibrary();

    if(files.size() > MaxDICOMSlices)
    {
        FWARNING(("DICOM: a series of more than %u files is not read\n",
                  MaxDICOMSlices));
        return false;
    }

    // every file's header, up to its pixel data; files that hold no DICOM
    // image (notes, DICOMDIR, reports) are passed over
    std::map<std::string, std::vector<DicomHeader> > series;

    for(const std::string &f : files)
    {
        DicomHeader h;

        if(dicomLoadHeader(f, h, false))
            series[h.series].push_back(h);
    }

    if(series.empty())
    {
        FWARNING(("DICOM: no DICOM images among the %u files\n",
                  UInt32(files.size())));
        return false;
    }

    auto chosen = series.begin();

    for(auto it = series.begin(); it != series.end(); ++it)
    {
        if(it->second.size() > chosen->second.size())
            chosen = it;
    }

    if(series.size() > 1)
        FWARNING(("DICOM: the files hold %u series; reading the largest, %s "
                  "(%u slices)\n", UInt32(series.size()),
                  chosen->first.c_str(), UInt32(chosen->second.size())));

    std::vector<DicomHeader> &slices = chosen->second;
    const DicomHeader        &first  = slices.front();

    // every slice must match the first in size, pixel type and orientation
    for(const DicomHeader &h : slices)
    {
        if(h.rows != first.rows || h.columns != first.columns ||
           h.bits != first.bits || h.isSigned != first.isSigned ||
           h.samples != first.samples || h.orientation != first.orientation ||
           h.pixelSpacing != first.pixelSpacing)
        {
            FWARNING(("DICOM: %s differs from %s in rows, columns, pixel "
                      "type, orientation or pixel spacing; not read\n",
                      h.file.c_str(), first.file.c_str()));
            return false;
        }
    }

    if(slices.size() > 1)
    {
        for(const DicomHeader &h : slices)
        {
            if(h.frames != 1)
            {
                FWARNING(("DICOM: a series of multi-frame files is not read\n"));
                return false;
            }
        }
    }

    // the slice normal from the row and column directions
    Real64     orientation[6] = {1, 0, 0, 0, 1, 0};
    const bool hasOrientation = dicomNumbers(first.orientation, orientation, 6);

    Real64 normal[3] = {
        orientation[1] * orientation[5] - orientation[2] * orientation[4],
        orientation[2] * orientation[3] - orientation[0] * orientation[5],
        orientation[0] * orientation[4] - orientation[1] * orientation[3]};

    const Real64 length = std::sqrt(normal[0] * normal[0] +
                                    normal[1] * normal[1] +
                                    normal[2] * normal[2]);

    if(!(length > 1e-6))
    {
        FWARNING(("DICOM: Image Orientation (Patient) of %s has no normal; "
                  "not read\n", first.file.c_str()));
        return false;
    }

    bool allPositions = true;

    for(DicomHeader &h : slices)
    {
        allPositions = allPositions && h.hasPosition;
        h.along      = (normal[0] * h.position[0] + normal[1] * h.position[1] +
                        normal[2] * h.position[2]) / length;
    }

    VolumeLayout  layout;
    DicomGeometry geometry;
    Real64        distance = first.thickness > 0 ? first.thickness : 1.0;

    if(allPositions && hasOrientation)
    {
        std::stable_sort(slices.begin(), slices.end(),
                         [](const DicomHeader &a, const DicomHeader &b) {
                             return a.along < b.along;
                         });

        if(!dicomSliceDistance(slices, distance))
            return false;

        // the stack runs from the first slice to the last, which is the
        // normal unless the slices are sheared (a tilted gantry); per unit
        // of the spacing along the normal
        geometry = dicomSliceGeometry(slices.front());

        const DicomHeader &last = slices.back();
        const Real64       span = last.along - slices.front().along;

        if(geometry.known && span > 0.0)
        {
            for(UInt32 i = 0; i < 3; ++i)
                geometry.stack[i] =
                    (last.position[i] - slices.front().position[i]) / span;
        }
    }
    else
    {
        if(slices.size() > 1)
            FWARNING(("DICOM: slices without Image Position or Orientation "
                      "(Patient); ordered by Instance Number\n"));

        std::stable_sort(slices.begin(), slices.end(),
                         [](const DicomHeader &a, const DicomHeader &b) {
                             return a.instance < b.instance;
                         });
    }

    layout.spacing[2] = distance;
    return dicomStore(image, slices, layout, geometry);
}

bool DICOMImageFileType::read(ImagePtr &, std::istream &, const std::string &)
{
    FWARNING(("DICOM: a series is read from its folder or files, not from a "
              "stream\n"));
    return false;
}

bool DICOMImageFileType::validateHeader(const Char8 *fileName,
                                        bool        &implemented)
{
    implemented = true;

    if(fileName == NULL)
        return false;

    struct stat info;

    if(::stat(fileName, &info) == 0 && S_ISDIR(info.st_mode))
        return true;

    // a list is text and known by its name alone
    if(dicomIsList(fileName))
        return true;

    // a Part 10 file: 128 bytes of preamble, then "DICM"
    std::vector<UInt8> head;

    return volumeReadFile(fileName, 0, 132, false, head) && head.size() == 132 &&
           std::memcmp(head.data() + 128, "DICM", 4) == 0;
}

OSG_END_NAMESPACE
