/// The registry of scene file formats: finds the format for a file name or
/// suffix and reads or writes scenes through it.
///
/// Suffixes are kept in lower case; a compressed file "x.obj.gz" counts as
/// its inner suffix. The first format registered for a suffix keeps it,
/// unless a later one asks to override it with a higher priority.
///
/// The handler also holds what every reader obeys on hostile files: a
/// budget of triangles (setMaxTriangles) and of bytes (setMaxFileBytes,
/// counted after decompression). Files that a scene file names (material
/// libraries, buffers, textures) follow ImageFileHandler's rule for files
/// outside the scene file's folder.
#ifndef _OSGSCENEFILEHANDLER_H_
#define _OSGSCENEFILEHANDLER_H_

#include <OpenSG/OSGGraphOpSeq.h>
#include <OpenSG/OSGPathHandler.h>
#include <OpenSG/OSGSceneFileType.h>

#include <iosfwd>
#include <list>
#include <map>
#include <string>

OSG_BEGIN_NAMESPACE

class SceneFileHandler
{
  public:
    typedef SceneFileType::FCPtrStore FCPtrStore;
    typedef void (*progresscbfp)(UInt32 percent);
    typedef void (*filenamecbfp)(const Char8 *fileName);

    /// Created on first use, never destroyed.
    static SceneFileHandler &the(void);

    virtual ~SceneFileHandler(void);

    /// The type for the text after the last '.' (the whole text when there
    /// is none; the text before ".gz" for a compressed file), or NULL.
    virtual SceneFileType *getFileType(const Char8 *fileNameOrExtension);

    /// Clears the list, then appends every registered suffix (in sorted
    /// order) whose type has all the flags; answers the count.
    virtual Int32 getSuffixList(std::list<const Char8 *> &suffixList,
                                UInt32 flags =
                                    SceneFileType::OSG_READ_SUPPORTED |
                                    SceneFileType::OSG_WRITE_SUPPORTED);

    /// Reads a scene from a stream; a gzip stream is decompressed on the
    /// fly. fileNameOrExtension chooses the type (see SceneFileType::read).
    /// The graph operations run on the result. NullFC, with a warning, on
    /// failure.
    virtual NodePtr read(std::istream &is, const Char8 *fileNameOrExtension,
                         GraphOpSeq *graphOpSeq = _defaultgraphOpSeq);
    virtual FCPtrStore readTopNodes(std::istream &is,
                                    const Char8  *fileNameOrExtension,
                                    GraphOpSeq   *graphOpSeq = _defaultgraphOpSeq);

    /// Reads a scene file found through the path handler (the current
    /// folder when none is set); the type comes from the suffix, a gzip
    /// file is decompressed on the fly. NullFC, with a warning, on failure.
    virtual NodePtr read(const Char8 *fileName,
                         GraphOpSeq  *graphOpSeq = _defaultgraphOpSeq);
    virtual FCPtrStore readTopNodes(const Char8 *fileName,
                                    GraphOpSeq  *graphOpSeq = _defaultgraphOpSeq);

    /// Writes the scene under node; compress (or a name ending in ".gz")
    /// writes a gzip file in the format's single-file form.
    virtual bool write(const NodePtr &node, std::ostream &os,
                       const Char8 *fileNameOrExtension, bool compress = false);
    virtual bool write(const NodePtr &node, const Char8 *fileName,
                       bool compress = false);

    /// Relative names given to read() are looked up through this path
    /// handler; the caller keeps it. NULL: the current folder.
    virtual PathHandler *getPathHandler(void);
    virtual void         setPathHandler(PathHandler *pathHandler);

    /// The sequence read() runs when the caller names none, initially
    /// "Stripe() SharePtr(includes=Material,StateChunk)". The handler
    /// keeps the one it is given.
    static GraphOpSeq *getDefaultGraphOp(void);
    static void        setDefaultGraphOp(GraphOpSeq *graphOpSeq);

    /// Options of the type found for suffix.
    virtual bool         setOptions(const Char8 *suffix, const Char8 *options);
    virtual const Char8 *getOptions(const Char8 *suffix);

    /// Called with 0 and 100 around each read.
    void setReadProgressCB(progresscbfp fp);
    progresscbfp getReadProgressCB(void);
    /// Called with the file name before and after each file read.
    void setReadBeginCB(filenamecbfp fp);
    void setReadEndCB(filenamecbfp fp);

    /// Logs every suffix with its type.
    virtual void print(void);

    // --- limits on what files may cost ----------------------------------------

    /// The most triangles (faces) a scene may hold, all its meshes
    /// together; a file announcing or holding more is refused with one
    /// warning. Vertices may number three times as many. 0 restores the
    /// default, DefaultMaxTriangles.
    void   setMaxTriangles(UInt64 triangles);
    UInt64 getMaxTriangles(void) const;

    /// The most bytes a scene file may hold once decompressed (side files
    /// count each on its own); a larger one is refused with one warning,
    /// and a gzip stream is never inflated beyond it. 0 restores the
    /// default, DefaultMaxFileBytes.
    void   setMaxFileBytes(UInt64 bytes);
    UInt64 getMaxFileBytes(void) const;

    static constexpr UInt64 DefaultMaxTriangles = UInt64(1) << 24;
    static constexpr UInt64 DefaultMaxFileBytes = UInt64(1) << 30;

  protected:
    SceneFileHandler(void);

    static GraphOpSeq *_defaultgraphOpSeq;

  private:
    friend class SceneFileType;

    typedef std::map<std::string, std::list<SceneFileType *> > FileTypeMap;

    /// Called by every SceneFileType constructor.
    static bool addSceneFileType(SceneFileType &fileType);

    /// Reads `data` (gunzipped already) through type, runs the operations.
    NodePtr readData(SceneFileType *type, const std::vector<UInt8> &data,
                     const Char8 *fileNameOrExtension, const std::string &what,
                     GraphOpSeq *graphOpSeq);

    static SceneFileHandler *_the;

    FileTypeMap  _suffixTypeMap;
    PathHandler *_pathHandler;
    PathHandler  _defaultPathHandler;
    progresscbfp _progressFP;
    filenamecbfp _beginFP;
    filenamecbfp _endFP;
    UInt64       _maxTriangles;
    UInt64       _maxFileBytes;

    SceneFileHandler(const SceneFileHandler &);
    void operator=(const SceneFileHandler &);
};

typedef SceneFileHandler *SceneFileHandlerP;

OSG_END_NAMESPACE

#endif
