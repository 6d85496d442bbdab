// A scratch directory of the test process's own.
#ifndef CORVANE_TEST_SCRATCHDIR_H
#define CORVANE_TEST_SCRATCHDIR_H

#include <gtest/gtest.h>

#include <stdlib.h>

#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

namespace corvanetest
{

/// A fresh directory under the system's temporary folder, made on first use
/// and removed when the process ends: test processes running side by side
/// (two filters of one binary, the normal and the sanitizer build, two
/// checkouts on one machine) never read each other's files. Ends in '/'.
inline const std::string &scratchDir()
{
    struct Dir
    {
        std::string path;

        Dir()
        {
            const std::string pattern = ::testing::TempDir() + "corvane-test-XXXXXX";
            std::vector<char> name(pattern.begin(), pattern.end());
            name.push_back('\0');
            if(mkdtemp(name.data()) != nullptr)
                path = std::string(name.data()) + "/";
        }

        ~Dir()
        {
            std::error_code ignored;
            if(!path.empty())
                std::filesystem::remove_all(path, ignored);
        }
    };
    static Dir dir;
    if(dir.path.empty())
        ADD_FAILURE() << "no scratch directory under " << ::testing::TempDir();
    return dir.path;
}

/// A file name inside scratchDir().
inline std::string scratchPath(const std::string &name)
{
    return scratchDir() + name;
}

} // namespace corvanetest

#endif
