#include "OutputFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace corvane
{

bool writeOutputFile(const std::string &name,
                     const std::function<bool(const std::string &tempName)> &write)
{
    struct stat info;

    if(::lstat(name.c_str(), &info) == 0)
    {
        if(S_ISLNK(info.st_mode))
        {
            fprintf(stderr, "corvane: %s is a symbolic link; not written through it\n",
                    name.c_str());
            return false;
        }
        if(!S_ISREG(info.st_mode))
        {
            fprintf(stderr, "corvane: %s is not a regular file\n", name.c_str());
            return false;
        }
    }

    // the temporary name keeps the suffix, which writers read the format from
    const size_t      slash   = name.rfind('/');
    const size_t      dot     = name.rfind('.');
    const bool        suffix  = dot != std::string::npos && (slash == std::string::npos || dot > slash);
    const std::string tail    = suffix ? name.substr(dot) : std::string();
    std::string       pattern = (suffix ? name.substr(0, dot) : name) + ".XXXXXX" + tail;
    std::vector<char> temp(pattern.begin(), pattern.end());
    temp.push_back('\0');

    const int fd = ::mkstemps(temp.data(), int(tail.size()));
    if(fd < 0)
    {
        fprintf(stderr, "corvane: can't create a file beside %s: %s\n", name.c_str(),
                std::strerror(errno));
        return false;
    }

    // mkstemp makes the file private; an output gets the usual permissions
    const mode_t mask = ::umask(0);
    ::umask(mask);
    ::fchmod(fd, 0666 & ~mask);
    ::close(fd);

    const std::string tempName(temp.data());
    bool              ok = write(tempName);

    if(ok)
    {
        ok = ::stat(tempName.c_str(), &info) == 0 && S_ISREG(info.st_mode) &&
             info.st_size > 0;
        if(!ok)
            fprintf(stderr, "corvane: nothing was written for %s\n", name.c_str());
    }
    if(ok && ::rename(tempName.c_str(), name.c_str()) != 0)
    {
        fprintf(stderr, "corvane: can't write %s: %s\n", name.c_str(), std::strerror(errno));
        ok = false;
    }
    if(!ok)
        ::unlink(tempName.c_str());
    return ok;
}

} // namespace corvane
