/// PNG files ("image/png", suffix "png"): 8- and 16-bit grey, grey+alpha,
/// RGB and RGBA, through libpng.
///
/// Reading gives an image with the file's channels (palettes become RGB, a
/// tRNS chunk an alpha channel) and its pHYs resolution in dots per inch.
/// Writing takes level 0 of frame 0, side 0 of a 1-D or 2-D image with 8-
/// or 16-bit unsigned components; BGR and BGRA are written as RGB and RGBA.
#ifndef _OSGPNGIMAGEFILETYPE_H_
#define _OSGPNGIMAGEFILETYPE_H_

#include <OpenSG/OSGImageFileType.h>

OSG_BEGIN_NAMESPACE

class PNGImageFileType : public ImageFileType
{
  public:
    static PNGImageFileType &the(void);

    virtual ~PNGImageFileType(void);

    using ImageFileType::read;
    using ImageFileType::write;

    virtual bool read(ImagePtr &image, std::istream &is,
                      const std::string &mimetype);
    virtual bool write(const ImagePtr &image, std::ostream &os,
                       const std::string &mimetype);

    /// True when the file starts with the PNG signature's first four bytes.
    virtual bool validateHeader(const Char8 *fileName, bool &implemented);

    virtual std::string determineMimetypeFromStream(std::istream &is);

  protected:
    PNGImageFileType(const Char8 *mimeType,
                     const Char8 *suffixArray[],
                     UInt16       suffixByteCount,
                     UInt32       flags);

  private:
    static PNGImageFileType _the;
};

typedef PNGImageFileType *PNGImageFileTypeP;

OSG_END_NAMESPACE

#endif
