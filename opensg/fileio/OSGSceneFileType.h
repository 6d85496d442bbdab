/// Base of the scene file formats: each format is one static instance of a
/// subclass, which registers its suffixes with SceneFileHandler when it is
/// constructed.
///
/// A format reads a whole file from memory (readMemory), which the stream
/// form feeds; the handler hands it the file's bytes, decompressed when the
/// file was gzip-compressed. Formats whose files name other files (material
/// libraries, buffers, textures) look for them beside the file read, when
/// there is one, within ImageFileHandler's rule for files outside its
/// folder.
#ifndef _OSGSCENEFILETYPE_H_
#define _OSGSCENEFILETYPE_H_

#include <OpenSG/OSGBaseTypes.h>
#include <OpenSG/OSGTypeBase.h>
#include <OpenSG/OSGNode.h>

#include <iosfwd>
#include <list>
#include <string>
#include <vector>

OSG_BEGIN_NAMESPACE

class SceneFileHandler;

class SceneFileType
{
  public:
    typedef std::vector<FieldContainerPtr> FCPtrStore;

    enum
    {
        OSG_READ_SUPPORTED  = 1,
        OSG_WRITE_SUPPORTED = 2
    };

    virtual ~SceneFileType(void);

    /// The format's name for lists and logs.
    virtual const Char8 *getName(void) const = 0;

    /// The suffixes as registered (lower case).
    std::list<IDString> &suffixList(void);
    /// Whether this type takes its suffixes over from one registered
    /// earlier, and with which priority.
    bool   doOverride(void);
    UInt32 getOverridePriority(void);
    /// OSG_READ_SUPPORTED and/or OSG_WRITE_SUPPORTED.
    UInt32 getFlags(void);

    /// Free-form options some formats interpret.
    void         setOptions(const Char8 *options);
    const Char8 *getOptions(void);

    /// Reads the scene in `is` (to its end). fileNameOrExtension is the
    /// file's path, beside which other files it names are looked for, or
    /// only a suffix, when the stream has no file (nothing else is read
    /// then). NullFC, with one warning, when the data is refused.
    virtual NodePtr read(std::istream &is,
                         const Char8  *fileNameOrExtension) const;
    /// The scene's top nodes: the children of what read() gives.
    virtual FCPtrStore readTopNodes(std::istream &is,
                                    const Char8  *fileNameOrExtension) const;

    /// Writes the scene under node in the format to a stream (the format's
    /// single-file form); false, with a warning, when that fails.
    virtual bool write(const NodePtr &node, std::ostream &os,
                       const Char8 *fileNameOrExtension) const;
    /// Writes the scene to a file; formats that keep parts in files of
    /// their own (material libraries, buffers) write those beside it.
    virtual bool writeFile(const NodePtr &node, const Char8 *fileName) const;

    /// Logs the name, suffixes and flags.
    void print(void);

  protected:
    /// suffixByteCount is sizeof(suffixArray).
    SceneFileType(const Char8 *suffixArray[],
                  UInt16       suffixByteCount,
                  bool         override         = false,
                  UInt32       overridePriority = 0,
                  UInt32       flags            = OSG_READ_SUPPORTED);

    /// Reads a scene from size bytes at data: what read() does once it
    /// has the bytes. The default refuses.
    virtual NodePtr readMemory(const UInt8 *data, UInt64 size,
                               const Char8 *fileNameOrExtension) const;

  private:
    friend class SceneFileHandler;

    SceneFileType(const SceneFileType &);
    void operator=(const SceneFileType &);

    std::list<IDString> _suffixList;
    bool                _override;
    UInt32              _overridePriority;
    UInt32              _flags;
    std::string         _options;
};

typedef SceneFileType *SceneFileTypeP;

OSG_END_NAMESPACE

#endif
