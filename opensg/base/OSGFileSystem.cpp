#include <OpenSG/OSGFileSystem.h>

#include <dirent.h>
#include <fnmatch.h>
#include <sys/stat.h>
#include <unistd.h>

OSG_BEGIN_NAMESPACE

namespace
{
bool fileSystemAccess(const Char8 *name, UInt32 flags, bool wantDir)
{
    struct stat st;
    if(name == NULL || stat(name, &st) != 0)
        return false;
    if(S_ISDIR(st.st_mode) != wantDir)
        return false;
    int mode = F_OK;
    if(flags & AccessFlags::IsReadable)
        mode |= R_OK;
    if(flags & AccessFlags::IsWriteable)
        mode |= W_OK;
    if(flags & AccessFlags::IsExecutable)
        mode |= X_OK;
    return ::access(name, mode) == 0;
}
} // namespace

bool File::tstAttr(const Char8 *szFilename, UInt32 uiAccessFlags)
{
    return fileSystemAccess(szFilename, uiAccessFlags, false);
}

bool Directory::tstAttr(const Char8 *szDirname, UInt32 uiAccessFlags)
{
    return fileSystemAccess(szDirname, uiAccessFlags, true);
}

Char8 *Directory::getCurrent(void)
{
    Char8 *dir = ::getcwd(NULL, 0);
    if(dir == NULL)
        return NULL;
    Char8 *copy = stringDup(dir);
    ::free(dir);
    return copy;
}

bool Directory::setCurrent(const Char8 *szDirname)
{
    return szDirname != NULL && ::chdir(szDirname) == 0;
}

std::vector<Char8 *> *Directory::getEntries(const Char8 *szDirname, const Char8 *szPattern)
{
    if(szDirname == NULL)
        return NULL;
    DIR *dir = ::opendir(szDirname);
    if(dir == NULL)
        return NULL;
    std::vector<Char8 *> *entries = new std::vector<Char8 *>;
    while(struct dirent *entry = ::readdir(dir))
    {
        if(szPattern == NULL || ::fnmatch(szPattern, entry->d_name, 0) == 0)
            entries->push_back(stringDup(entry->d_name));
    }
    ::closedir(dir);
    return entries;
}

OSG_END_NAMESPACE
