/// Finds files along a list of folders (and beside a base file), as the
/// image and scene loaders do for names that are not absolute.
#ifndef _OSGPATHHANDLER_H_
#define _OSGPATHHANDLER_H_

#include <OpenSG/OSGBaseTypes.h>

#include <list>
#include <string>

OSG_BEGIN_NAMESPACE

class PathHandler
{
  public:
    PathHandler(void);
    /// Starts with the folders of a path list (':'-separated).
    explicit PathHandler(const Char8 *initialPathList);
    virtual ~PathHandler(void);

    /// An absolute name if that file is readable; a relative one is looked
    /// for beside the base file, then in each folder in order. "" when it
    /// is nowhere.
    std::string findFile(const Char8 *fileName);

    /// Path lists: ':'-separated on Unix, ';'-separated on Windows;
    /// push_backPath and push_frontPath take the platform's form.
    void push_backPath(const Char8 *pathList);
    void push_backCurrentDir(void);
    void push_backUnixPath(const Char8 *pathList);
    void push_backWin32Path(const Char8 *pathList);

    void push_frontPath(const Char8 *pathList);
    void push_frontCurrentDir(void);
    void push_frontUnixPath(const Char8 *pathList);
    void push_frontWin32Path(const Char8 *pathList);

    void subUnixPath(const Char8 *pathList);
    void subWin32Path(const Char8 *pathList);

    void clearPathList(void);

    /// Relative names are looked for in the folder of this file first.
    void setBaseFile(const Char8 *fileName);
    void clearBaseFile(void);

    /// The folder part of a file name, with its trailing separator ("" for
    /// none).
    static std::string extractPath(const Char8 *szFilename);

    /// Logs the folders.
    void dump(void);

  private:
    typedef std::list<std::string> PathList;

    static PathList splitPathList(const Char8 *pathList, Char8 separator);
    void            removePaths(const PathList &gone);

    PathList    _pathList;    // each with a trailing '/'
    std::string _baseFilePath;

    PathHandler(const PathHandler &);
    void operator=(const PathHandler &);
};

OSG_END_NAMESPACE

#endif
