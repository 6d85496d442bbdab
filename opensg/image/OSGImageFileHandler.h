/// The registry of image file formats: finds the format for a mime type or a
/// file name and reads or writes images through it.
///
/// Mime types and suffixes are kept normalised (trimmed, lower case; mime
/// parameters after ';' dropped). The first format registered for a name
/// keeps it.
///
/// The handler also holds what every loader obeys on hostile files: one
/// size budget (setMaxImageBytes) and the rule for data files that a header
/// names (setAllowOutsideDataFiles).
#ifndef _OSGIMAGEFILEHANDLER_H_
#define _OSGIMAGEFILEHANDLER_H_

#include <OpenSG/OSGImageFileType.h>
#include <OpenSG/OSGPathHandler.h>

#include <iosfwd>
#include <list>
#include <map>
#include <string>

OSG_BEGIN_NAMESPACE

class ImageFileHandler
{
  public:
    typedef ImagePtr (*readcbfp)(const Char8 *fileName, const Char8 *mimeType);

    /// Created on first use, never destroyed.
    static ImageFileHandler &the(void);

    virtual ~ImageFileHandler(void);

    /// A new image read from fileName, or NullFC. The caller takes the
    /// reference. A read callback, when set, answers instead.
    virtual ImagePtr read(const Char8 *fileName, const Char8 *mimeType = 0);

    /// Reads into image. The type comes from mimeType, else from the suffix;
    /// the file's first bytes are checked and may choose another type. Only
    /// regular files are read (a FIFO or device is refused without
    /// blocking), or a folder, which the format that reads folders (DICOM
    /// series) reads as one volume. On success the image's attachment fields "fileName" and
    /// "fullFilePath" and its name field (absolute path) are set.
    virtual bool read(ImagePtr &image, const Char8 *fileName,
                      const Char8 *mimeType = 0);

    /// Writes image; without a file name the image's "fileName" attachment
    /// field names the file. The type comes from mimeType, else the suffix.
    virtual bool write(const ImagePtr &image, const Char8 *fileName = 0,
                       const Char8 *mimeType = 0);

    virtual ImagePtr read(std::istream &is, const std::string &mimeType);
    virtual bool read(ImagePtr &image, std::istream &is,
                      const std::string &mimeType);
    virtual bool write(const ImagePtr &image, std::ostream &os,
                       const std::string &mimeType);

    /// The type for mimeType (a bare word means "image/<word>"), else for
    /// the suffix of fileName. With validateHeader the file's first bytes
    /// are checked; when they do not fit, the first registered type (in
    /// suffix order) that recognises them is taken, or none. A type whose
    /// headers name other files (OSG_NAMES_OTHER_FILES) is never taken this
    /// way: such a file is refused.
    ImageFileType *getFileType(const Char8 *mimeType,
                               const Char8 *fileName       = 0,
                               bool         validateHeader = false);

    /// The type registered for the suffix "opensg".
    ImageFileType *getDefaultType(void);

    /// Every registered suffix whose type has one of the flags, in
    /// alphabetical order; answers the count.
    virtual Int32 getSuffixList(std::list<const Char8 *> &suffixList,
                                UInt32 flags =
                                    ImageFileType::OSG_READ_SUPPORTED |
                                    ImageFileType::OSG_WRITE_SUPPORTED);

    std::string determineMimetypeFromName(const std::string &fileName);
    std::string determineMimetypeFromSuffix(const std::string &suffix);
    std::string determineMimetypeFromStream(std::istream &is);

    void setReadCB(readcbfp fp);
    readcbfp getReadCB(void);

    /// Options of the type found for suffix (taken as a mime type).
    virtual bool setOptions(const Char8 *suffix, const Char8 *options);
    virtual const Char8 *getOptions(const Char8 *suffix);

    /// Relative names given to read() are looked up through the path
    /// handler when one is set (NULL by default); the caller keeps it.
    virtual PathHandler *getPathHandler(void);
    virtual void         setPathHandler(PathHandler *pathHandler);

    /// Logs every suffix with its mime type.
    void dump(void);

    // --- limits on what files may cost ----------------------------------------

    /// The largest pixel block in bytes: Image::set and setData refuse a
    /// larger image, and every loader checks the sizes its header announces
    /// against it before it allocates or reads anything. The ceiling, and
    /// the default, is MaxImageBytesCeiling (what Image's 32-bit size
    /// fields can address); an application may lower it, values above the
    /// ceiling (and 0) are taken as the ceiling.
    void   setMaxImageBytes(UInt64 bytes);
    UInt64 getMaxImageBytes(void) const;

    static constexpr UInt64 MaxImageBytesCeiling = 0x7FFFFFFF;

    /// Whether a header may name a data file (DAT ObjectFileName, MetaImage
    /// ElementDataFile, NRRD data file) outside the header's own folder
    /// tree: an absolute path, or a relative one that leads out through
    /// ".." or a symbolic link. Off by default; the environment variable
    /// OSG_ALLOW_OUTSIDE_DATA_FILES set to 1 when the handler is created
    /// switches it on. Data files must be regular files either way.
    void setAllowOutsideDataFiles(bool allow);
    bool getAllowOutsideDataFiles(void) const;

  protected:
    ImageFileHandler(void);

  private:
    friend class ImageFileType;

    /// Reads a folder through the type that reads folders (the one of
    /// mimeType when it does).
    bool readFolder(ImagePtr &image, const Char8 *fileName,
                    const std::string &fullPath, const Char8 *mimeType);

    /// Sets "fileName", "fullFilePath" and the name after a read.
    void noteSource(ImagePtr &image, const Char8 *fileName,
                    const std::string &fullPath);

    typedef std::map<std::string, ImageFileType *> TypeMap;

    /// Called by every ImageFileType constructor; true if at least one
    /// suffix was added.
    static bool addImageFileType(ImageFileType &fileType);

    static ImageFileHandler *_the;

    TypeMap  _suffixTypeMap;
    TypeMap  _mimeTypeMap;
    readcbfp _readFP;
    UInt64   _maxImageBytes;
    bool     _allowOutsideDataFiles;
    PathHandler *_pathHandler;

    ImageFileHandler(const ImageFileHandler &);
    void operator=(const ImageFileHandler &);
};

typedef ImageFileHandler *ImageFileHandlerP;

OSG_END_NAMESPACE

#endif
