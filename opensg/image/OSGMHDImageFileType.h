/// MetaImage volumes ("image/x-metaimage", suffixes "mhd" and "mha"): a
/// "Key = Value" text header followed by the voxels (.mha, ElementDataFile
/// = LOCAL) or naming a raw file (.mhd; relative to the header, a regular
/// file in the header's folder tree unless ImageFileHandler allows outside
/// data files).
///
/// Reading: NDims 1 to 3, element types MET_UCHAR, MET_USHORT, MET_UINT,
/// MET_FLOAT as they are; MET_CHAR and MET_SHORT shifted into the unsigned
/// range (offset in the attachment field "ValueOffset"); MET_DOUBLE
/// narrowed to float; 1 to 4 channels; either byte order; zlib-compressed
/// data (inflated into memory that grows with the data, never sized by
/// the header first); HeaderSize (-1: the data ends the file; skipped by
/// seeking). ElementSpacing becomes the attachment field "SliceThickness"
/// (values that are not finite and positive become 1, with a warning). A
/// stream holds a .mha.
///
/// Writing: a .mha with the data inline, or a .mhd plus name.raw (name.zraw
/// when compressed). Options: "msb=true" for big-endian data,
/// "compress=true" for zlib compression.
#ifndef _OSGMHDIMAGEFILETYPE_H_
#define _OSGMHDIMAGEFILETYPE_H_

#include <OpenSG/OSGImageFileType.h>

OSG_BEGIN_NAMESPACE

class MHDImageFileType : public ImageFileType
{
  public:
    static MHDImageFileType &the(void);

    virtual ~MHDImageFileType(void);

    using ImageFileType::read;
    using ImageFileType::write;

    virtual bool read(ImagePtr &image, const Char8 *fileName);
    virtual bool write(const ImagePtr &image, const Char8 *fileName);

    virtual bool read(ImagePtr &image, std::istream &is,
                      const std::string &mimetype);

  protected:
    MHDImageFileType(const Char8 *mimeType,
                     const Char8 *suffixArray[],
                     UInt16       suffixByteCount,
                     UInt32       flags);

  private:
    static MHDImageFileType _the;
};

typedef MHDImageFileType *MHDImageFileTypeP;

OSG_END_NAMESPACE

#endif
