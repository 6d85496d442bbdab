/// Base of the image file formats: each format is one static instance of a
/// subclass, which registers its mime type and suffixes with
/// ImageFileHandler when it is constructed.
///
/// A format overrides the stream read/write (the file-name versions open a
/// binary stream and call them), or the file-name versions when it needs
/// the name itself (formats with side files). validateHeader takes part in
/// recognising a file by its first bytes.
#ifndef _OSGIMAGEFILETYPE_H_
#define _OSGIMAGEFILETYPE_H_

#include <OpenSG/OSGBaseTypes.h>
#include <OpenSG/OSGImageFields.h>
#include <OpenSG/OSGTypeBase.h>

#include <iosfwd>
#include <list>
#include <string>

OSG_BEGIN_NAMESPACE

class ImageFileType
{
  public:
    enum
    {
        OSG_READ_SUPPORTED  = 1,
        OSG_WRITE_SUPPORTED = 2,
        /// The format's headers may name other files to read (detached
        /// voxel data): such a type is never taken for a file whose name
        /// says another format, whatever its first bytes look like.
        OSG_NAMES_OTHER_FILES = 4,
        /// The format reads a folder as one image (a series of slices):
        /// ImageFileHandler::read gives it the folders it is asked to read.
        OSG_READS_FOLDERS = 8
    };

    /// The 32-byte header of MTD files and of images stored in memory. The
    /// 16-bit numbers are kept in network (big-endian) order while the head
    /// is in a file or buffer.
    struct Head
    {
        Char8  suffix[8];
        UInt16 pixelFormat;
        UInt16 width;
        UInt16 height;
        UInt16 depth;
        UInt16 mipmapCount;
        UInt16 frameCount;
        UInt16 frameDelay;     ///< milliseconds
        UInt16 sideCount;
        UInt16 dataType;
        UInt16 _reserved3;
        UInt16 _reserved4;
        UInt16 attachmentSize;

        /// Converts the numbers between network and host order in place.
        bool netToHost(void);
        bool hostToNet(void);
    };

    virtual ~ImageFileType(void);

    /// The mime type as registered (not normalised).
    const Char8 *getMimeType(void) const;
    /// The suffixes as registered.
    const std::list<IDString> &getSuffixList(void) const;
    /// OSG_READ_SUPPORTED and/or OSG_WRITE_SUPPORTED. Informational: read and
    /// write do not consult it.
    virtual UInt32 getFlags(void) const;

    /// Free-form options some formats interpret.
    void setOptions(const Char8 *options);
    const Char8 *getOptions(void) const;

    /// Opens fileName as a binary stream and reads it.
    virtual bool read(ImagePtr &image, const Char8 *fileName);
    /// Opens fileName as a binary stream and writes to it.
    virtual bool write(const ImagePtr &image, const Char8 *fileName);

    /// Whether fileName starts like a file of this format; formats without
    /// such a check leave implemented false and accept everything.
    virtual bool validateHeader(const Char8 *fileName, bool &implemented);

    virtual bool read(ImagePtr &image, std::istream &is,
                      const std::string &mimetype);
    virtual bool write(const ImagePtr &image, std::ostream &os,
                       const std::string &mimetype);

    /// This type's mime type when the stream starts like one of its files,
    /// otherwise "". The stream position is left where it was.
    virtual std::string determineMimetypeFromStream(std::istream &is);

    /// Logs the mime type and suffixes.
    void dump(void);

  protected:
    /// suffixByteCount is sizeof(suffixArray): the number of entries times
    /// the size of a pointer.
    ImageFileType(const Char8 *mimeType,
                  const Char8 *suffixArray[],
                  UInt16       suffixByteCount,
                  UInt32       flags = OSG_READ_SUPPORTED);

  private:
    ImageFileType(const ImageFileType &);
    void operator=(const ImageFileType &);

    std::list<IDString> _suffixList;
    IDString            _mimeType;
    UInt32              _flags;
    std::string         _options;
};

typedef ImageFileType *ImageFileTypeP;

OSG_END_NAMESPACE

#endif
