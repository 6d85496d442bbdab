/// NIfTI-1 volumes ("image/x-nifti", suffixes "nii" and "nii.gz"): the
/// fixed 348-byte binary header, a few bytes of extension flags and the
/// voxels from vox_offset on, in one file, plain or gzip-compressed.
///
/// Reading: dim[0] 1 to 7 with edges dim[1..3] (a file with more than
/// three dimensions gives its first 3-D volume, with a warning); datatypes
/// UINT8, UINT16, UINT32, FLOAT32 as they are, INT8 and INT16 shifted into
/// the unsigned range (offset in the attachment field "ValueOffset"),
/// FLOAT64 narrowed to float, RGB24 and RGBA32 as 3 and 4 channels; other
/// datatypes (INT32, 64-bit integers, complex) are refused. Either byte
/// order (told by sizeof_hdr). pixdim[1..3] become "SliceThickness"
/// (absolute values; not finite or not positive: 1, with a warning). A
/// scl_slope other than 0 or 1 (or a scl_inter other than 0) maps the
/// values to value * scl_slope + scl_inter in 32-bit floats. The voxels
/// keep the file's index order (i fastest, then j, then k: the slices in
/// file order); the voxel-to-world matrix goes into the attachment field
/// "Transform" (VolumeTransformKey): the sform when sform_code > 0, else
/// the qform (quaternion, offsets and qfac) when qform_code > 0, else the
/// pixdim scaling.
///
/// Hostile files: sizes are checked against the image budget
/// (ImageFileHandler::getMaxImageBytes) before anything is read; gzip data
/// is inflated only as far as the voxels reach, into memory that grows
/// with what the stream yields.
///
/// Writing: ".nii" plain, ".nii.gz" gzip-compressed; host byte order,
/// pixdim from "SliceThickness", the sform from "Transform" (the pixdim
/// scaling without one).
#ifndef _OSGNIFTIIMAGEFILETYPE_H_
#define _OSGNIFTIIMAGEFILETYPE_H_

#include <OpenSG/OSGImageFileType.h>
#include <OpenSG/OSGVolumeHeaders.h>

#include <vector>

OSG_BEGIN_NAMESPACE

/// Bytes of the NIfTI-1 header.
const UInt32 NIfTIHeaderBytes = 348;

/// What the reader takes from a NIfTI-1 header.
struct NIfTIHeader
{
    VolumeLayout layout;             ///< element, edges, byte order, spacing
    Int16        datatype   = 0;     ///< as stored
    UInt64       voxOffset  = 352;   ///< where the voxels start
    Real64       sclSlope   = 0.0;   ///< 0: no scaling
    Real64       sclInter   = 0.0;
    bool         scaled     = false; ///< values go through slope and intercept
    bool         moreVolumes = false; ///< dim[4..7] hold more than one volume
    /// Voxel index (i, j, k) to world millimetres, rows of 4 (see
    /// VolumeTransformKey): from the sform, the qform or the pixdim scaling.
    Real64       transform[12] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0};
    /// 2 from the sform, 1 from the qform, 0 from the pixdim scaling.
    Int32        transformSource = 0;
};

/// Parses the first NIfTIHeaderBytes of `data` (a single-file "n+1"
/// header). False, with a warning, on short data, a wrong sizeof_hdr or
/// magic, edges below 1 or a volume beyond the image budget, or a datatype
/// the reader does not take.
bool parseNIfTIHeader(const UInt8 *data, UInt64 size, NIfTIHeader &header);

/// Voxels of a parsed header from the bytes that follow vox_offset, into
/// Image's form (`out`, resized to the image bytes) and the layout to
/// store them with. False, with a warning, when `voxels` is short.
bool decodeNIfTIVoxels(const NIfTIHeader &header,
                       const UInt8 *voxels, UInt64 size,
                       VolumeLayout &layout, std::vector<UInt8> &out);

class NIfTIImageFileType : public ImageFileType
{
  public:
    static NIfTIImageFileType &the(void);

    virtual ~NIfTIImageFileType(void);

    using ImageFileType::read;
    using ImageFileType::write;

    virtual bool read(ImagePtr &image, const Char8 *fileName);
    virtual bool write(const ImagePtr &image, const Char8 *fileName);

    /// A plain or gzip-compressed .nii in the stream.
    virtual bool read(ImagePtr &image, std::istream &is,
                      const std::string &mimetype);

    virtual bool validateHeader(const Char8 *fileName, bool &implemented);

  protected:
    NIfTIImageFileType(const Char8 *mimeType,
                       const Char8 *suffixArray[],
                       UInt16       suffixByteCount,
                       UInt32       flags);

  private:
    static NIfTIImageFileType _the;
};

typedef NIfTIImageFileType *NIfTIImageFileTypeP;

OSG_END_NAMESPACE

#endif
