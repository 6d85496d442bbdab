/// DICOM series ("application/dicom", suffixes "dcm" and "dcmlist"),
/// through DCMTK: a folder of slices becomes one volume, and so does a
/// list of slice files (a text file named *.dcmlist: one file name a line,
/// relative names relative to the list's folder, empty lines and lines
/// starting with '#' skipped); a .dcm file is read alone (one slice, or
/// the frames of a multi-frame file).
///
/// Reading a folder: its regular files (not its subfolders; symbolic links
/// only when ImageFileHandler allows outside data files) that hold a DICOM
/// image are grouped by Series Instance UID. A folder with more than one
/// series gives the series with the most slices, with a warning naming how
/// many there were. The slices are ordered by Image Position (Patient)
/// along the normal of Image Orientation (Patient) (the cross product of
/// its row and column directions), so x runs along a row, y down the
/// columns and z along the normal, ascending; without positions they are
/// ordered by Instance Number. Slices of differing rows, columns, pixel
/// type or orientation, or two at one position, are refused. Uneven
/// distances between positions (a missing slice) give a warning; the
/// spacing along z is then their median.
///
/// A list goes through the same grouping, ordering and checks as a
/// folder. Its files must exist and be regular files; without outside
/// data files allowed they must lie inside the list's folder (links and
/// ".." resolved), as the data files of a volume header must.
///
/// Pixel Spacing (row, column) and that distance become the attachment
/// field "SliceThickness" as "column-spacing row-spacing distance". The
/// first slice's position, the row and column directions and the step
/// from slice to slice become "Transform" (see VolumeTransformKey; the
/// spacing alone for slices without position or orientation). Pixel
/// types: 8- and 16-bit, one sample a pixel; signed values are shifted into
/// the unsigned range (offset in the attachment field "ValueOffset").
/// The stored values are kept: Rescale Slope and Intercept are not applied.
/// Uncompressed, RLE, JPEG and JPEG-LS transfer syntaxes are read. A single
/// file without positions takes its Slice Thickness as the z spacing.
///
/// Hostile folders: at most MaxDICOMSlices files are looked at, every file
/// must fit the image budget, and the volume's size is checked against the
/// budget (ImageFileHandler::getMaxImageBytes) before any pixel data is
/// read.
#ifndef _OSGDICOMIMAGEFILETYPE_H_
#define _OSGDICOMIMAGEFILETYPE_H_

#include <OpenSG/OSGImageFileType.h>

#include <string>
#include <vector>

OSG_BEGIN_NAMESPACE

/// Most files of a folder that are looked at for a series, and most names
/// of a list.
const UInt32 MaxDICOMSlices = 8192;

/// Largest list of slice files read.
const UInt64 MaxDICOMListBytes = UInt64(1) << 20;

class DICOMImageFileType : public ImageFileType
{
  public:
    static DICOMImageFileType &the(void);

    virtual ~DICOMImageFileType(void);

    using ImageFileType::read;

    /// A folder (the series in it), a .dcmlist list of slice files or a
    /// single .dcm file.
    virtual bool read(ImagePtr &image, const Char8 *fileName);

    /// The series the given files hold, as for a folder.
    bool readSeries(ImagePtr &image, const std::vector<std::string> &files);

    /// Refused with a warning: a series lives in files.
    virtual bool read(ImagePtr &image, std::istream &is,
                      const std::string &mimetype);

    virtual bool validateHeader(const Char8 *fileName, bool &implemented);

  protected:
    DICOMImageFileType(const Char8 *mimeType,
                       const Char8 *suffixArray[],
                       UInt16       suffixByteCount,
                       UInt32       flags);

  private:
    static DICOMImageFileType _the;
};

typedef DICOMImageFileType *DICOMImageFileTypeP;

OSG_END_NAMESPACE

#endif
