/// DAT volumes ("image/x-dat", suffix "dat"): a small text header that
/// names a raw voxel file, "Key: value" per line.
///
/// Reading stores every header line as an attachment field of the image
/// (so "SliceThickness" reaches the volume code verbatim; one that is not
/// three finite positive numbers is replaced, bad values by 1, with a
/// warning) and reads the raw file relative to the .dat file, as named or
/// with ".gz" appended (gzip files are decompressed on the fly). The raw
/// file must be a regular file in the header's folder tree unless
/// ImageFileHandler allows outside data files. Keys: ObjectFileName,
/// Resolution (x y z), Format (UCHAR, USHORT, UINT, ULONG, FLOAT, DOUBLE),
/// Channel, Endian (LITTLE; anything else and the default is big endian),
/// FileOffset, SliceThickness. FileOffset is skipped by seeking (in a gzip file by
/// decompressing). A raw file shorter than the header announces is
/// refused; a longer one is read and the rest ignored, with a warning.
///
/// Writing produces name.dat and name.raw. The data is big endian unless
/// the options say "endian=little"; the Channel line carries the number
/// of channels. 8-, 16-, 32-bit unsigned and float images can be written.
#ifndef _OSGDATIMAGEFILETYPE_H_
#define _OSGDATIMAGEFILETYPE_H_

#include <OpenSG/OSGImageFileType.h>

OSG_BEGIN_NAMESPACE

class DATImageFileType : public ImageFileType
{
  public:
    static DATImageFileType &the(void);

    virtual ~DATImageFileType(void);

    using ImageFileType::read;
    using ImageFileType::write;

    virtual bool read(ImagePtr &image, const Char8 *fileName);
    virtual bool write(const ImagePtr &image, const Char8 *fileName);

  protected:
    DATImageFileType(const Char8 *mimeType,
                     const Char8 *suffixArray[],
                     UInt16       suffixByteCount,
                     UInt32       flags);

  private:
    static DATImageFileType _the;
};

typedef DATImageFileType *DATImageFileTypeP;

OSG_END_NAMESPACE

#endif
