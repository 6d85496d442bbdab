#include <OpenSG/OSGPathHandler.h>
#include <OpenSG/OSGLog.h>

#include <unistd.h>

OSG_BEGIN_NAMESPACE

PathHandler::PathHandler(void) : _pathList(), _baseFilePath()
{
}

PathHandler::PathHandler(const Char8 *initialPathList) : _pathList(), _baseFilePath()
{
    push_backPath(initialPathList);
}

PathHandler::~PathHandler(void)
{
}

std::string PathHandler::findFile(const Char8 *fileName)
{
    if(fileName == NULL || fileName[0] == '\0')
        return std::string();

    if(fileName[0] == '/')
        return ::access(fileName, R_OK) == 0 ? std::string(fileName) : std::string();

    if(!_baseFilePath.empty())
    {
        std::string candidate = _baseFilePath + fileName;
        if(::access(candidate.c_str(), R_OK) == 0)
            return candidate;
    }
    for(PathList::const_iterator it = _pathList.begin(); it != _pathList.end(); ++it)
    {
        std::string candidate = *it + fileName;
        if(::access(candidate.c_str(), R_OK) == 0)
            return candidate;
    }
    return std::string();
}

PathHandler::PathList PathHandler::splitPathList(const Char8 *pathList, Char8 separator)
{
    PathList    result;
    std::string list = pathList != NULL ? pathList : "";
    size_t      pos  = 0;
    while(pos <= list.size())
    {
        size_t end = list.find(separator, pos);
        if(end == std::string::npos)
            end = list.size();
        std::string dir = list.substr(pos, end - pos);
        for(size_t i = 0; i < dir.size(); ++i)
        {
            if(dir[i] == '\\')
                dir[i] = '/';
        }
        if(!dir.empty())
            result.push_back(dir[dir.size() - 1] == '/' ? dir : dir + '/');
        pos = end + 1;
    }
    return result;
}

void PathHandler::push_backPath(const Char8 *pathList)
{
    push_backUnixPath(pathList);
}

void PathHandler::push_backCurrentDir(void)
{
    _pathList.push_back("./");
}

void PathHandler::push_backUnixPath(const Char8 *pathList)
{
    _pathList.splice(_pathList.end(), splitPathList(pathList, ':'));
}

void PathHandler::push_backWin32Path(const Char8 *pathList)
{
    _pathList.splice(_pathList.end(), splitPathList(pathList, ';'));
}

void PathHandler::push_frontPath(const Char8 *pathList)
{
    push_frontUnixPath(pathList);
}

void PathHandler::push_frontCurrentDir(void)
{
    _pathList.push_front("./");
}

void PathHandler::push_frontUnixPath(const Char8 *pathList)
{
    _pathList.splice(_pathList.begin(), splitPathList(pathList, ':'));
}

void PathHandler::push_frontWin32Path(const Char8 *pathList)
{
    _pathList.splice(_pathList.begin(), splitPathList(pathList, ';'));
}

void PathHandler::subUnixPath(const Char8 *pathList)
{
    removePaths(splitPathList(pathList, ':'));
}

void PathHandler::subWin32Path(const Char8 *pathList)
{
    removePaths(splitPathList(pathList, ';'));
}

void PathHandler::removePaths(const PathList &gone)
{
    for(PathList::const_iterator it = gone.begin(); it != gone.end(); ++it)
        _pathList.remove(*it);
}

void PathHandler::clearPathList(void)
{
    _pathList.clear();
}

void PathHandler::setBaseFile(const Char8 *fileName)
{
    _baseFilePath = extractPath(fileName);
}

void PathHandler::clearBaseFile(void)
{
    _baseFilePath.clear();
}

std::string PathHandler::extractPath(const Char8 *szFilename)
{
    std::string name = szFilename != NULL ? szFilename : "";
    size_t      sep  = name.find_last_of("/\\");
    return sep == std::string::npos ? std::string() : name.substr(0, sep + 1);
}

void PathHandler::dump(void)
{
    if(!_baseFilePath.empty())
        SLOG << "PathHandler base: " << _baseFilePath << std::endl;
    for(PathList::const_iterator it = _pathList.begin(); it != _pathList.end(); ++it)
        SLOG << "PathHandler path: " << *it << std::endl;
}

OSG_END_NAMESPACE
