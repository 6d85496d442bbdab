/// NRRD volumes ("image/x-nrrd", suffixes "nrrd" and "nhdr"), through
/// Teem's nrrd library.
///
/// Reading accepts files that start with the NRRD magic: 1-D to 3-D
/// scalar data, or 2 to 4 channels on the first axis (a 4-D file, or a
/// first axis of colour/vector kind). Types uchar, ushort, uint and float
/// are kept; char and short are shifted into the unsigned range (the
/// offset is recorded in the attachment field "ValueOffset"), double is
/// narrowed to float. Any encoding and byte order Teem reads works; a .nhdr
/// finds its data files relative to itself. The axis spacings become the
/// attachment field "SliceThickness". Reading from a stream takes NRRDs
/// with attached data only.
///
/// Writing produces a .nrrd with attached data, or a .nhdr plus a .raw,
/// in host byte order with spacings from "SliceThickness". The options
/// "encoding=gzip" compress the data.
#ifndef _OSGNRRDIMAGEFILETYPE_H_
#define _OSGNRRDIMAGEFILETYPE_H_

#include <OpenSG/OSGImageFileType.h>

OSG_BEGIN_NAMESPACE

class NRRDImageFileType : public ImageFileType
{
  public:
    static NRRDImageFileType &the(void);

    virtual ~NRRDImageFileType(void);

    using ImageFileType::read;
    using ImageFileType::write;

    virtual bool read(ImagePtr &image, const Char8 *fileName);
    virtual bool write(const ImagePtr &image, const Char8 *fileName);

    virtual bool read(ImagePtr &image, std::istream &is,
                      const std::string &mimetype);

    /// True when the file starts with "NRRD000".
    virtual bool validateHeader(const Char8 *fileName, bool &implemented);

    virtual std::string determineMimetypeFromStream(std::istream &is);

  protected:
    NRRDImageFileType(const Char8 *mimeType,
                      const Char8 *suffixArray[],
                      UInt16       suffixByteCount,
                      UInt32       flags);

  private:
    static NRRDImageFileType _the;
};

typedef NRRDImageFileType *NRRDImageFileTypeP;

OSG_END_NAMESPACE

#endif
