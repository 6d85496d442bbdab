// libFuzzer target: headers that name data files, read through Image::read
// from a folder of real files. The first byte picks the format (DAT,
// MetaImage .mhd, NRRD .nhdr, and the attached .mha and .nrrd), the rest
// is the header; '@' in it stands for the fixture's root folder, so that
// absolute names can be tried too.
//
// The fixture, made once: root/in/ holds the header and good data files
// (plain, gzip, in a subfolder, a link that stays inside), and the things a
// header must not reach: a FIFO (must not block: a hang is a finding), a
// folder, a link to root/outside/. root/outside/ holds files that must
// never be opened (inotify watches the folder) and whose bytes (a canary)
// must never show up in an image: any data file outside the header's
// folder is refused by default.
#include <OpenSG/OSGBaseInitFunctions.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGImageFileHandler.h>
#include <OpenSG/OSGLog.h>

#include <zlib.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

std::string root;
int         watch = -1; ///< inotify on root/outside

/// 16 bytes that no data file inside the folder holds.
const char Canary[] = "\xC5\x3A\x17\xE9 canary \x5B\xA2\x6D";

void put(const std::string &name, const std::string &bytes)
{
    std::ofstream out(root + "/" + name, std::ios::binary | std::ios::trunc);
    out << bytes;
}

void putGzip(const std::string &name, const std::string &bytes)
{
    gzFile file = gzopen((root + "/" + name).c_str(), "wb");
    gzwrite(file, bytes.data(), unsigned(bytes.size()));
    gzclose(file);
}

void removeFixture(void)
{
    const std::string command = "rm -rf '" + root + "'";
    if(std::system(command.c_str()) != 0)
        std::fprintf(stderr, "fuzz_detached: could not remove %s\n", root.c_str());
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    osg::osgInit(0, NULL);
    osg::osgLog().setLogType(osg::LOG_NONE, true);

    char pattern[] = "/tmp/corvane-fuzz-detached-XXXXXX";
    if(mkdtemp(pattern) == NULL)
        std::abort();
    root = pattern;
    std::atexit(removeFixture);

    mkdir((root + "/in").c_str(), 0700);
    mkdir((root + "/in/sub").c_str(), 0700);
    mkdir((root + "/in/dir").c_str(), 0700);
    mkdir((root + "/outside").c_str(), 0700);

    std::string data, canary;
    for(int i = 0; i < 4096; ++i)
        data += char((i * 7 + i / 13) & 0x7F);
    for(int i = 0; i < 256; ++i)
        canary += std::string(Canary, 16);

    put("in/data.raw", data);
    putGzip("in/data.gz", data);
    put("in/sub/data.raw", data.substr(100));
    put("outside/secret.raw", canary);
    putGzip("outside/secret.gz", canary);
    if(symlink("data.raw", (root + "/in/inside.raw").c_str()) != 0 ||
       symlink("../outside/secret.raw", (root + "/in/link.raw").c_str()) != 0 ||
       mkfifo((root + "/in/fifo").c_str(), 0600) != 0)
        std::abort();

    watch = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if(watch < 0 || inotify_add_watch(watch, (root + "/outside").c_str(),
                                      IN_OPEN | IN_ACCESS) < 0)
        std::abort();

    // small volumes only: the fuzzer looks for paths, not for memory
    osg::ImageFileHandler::the().setMaxImageBytes(1 << 20);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const char *const suffixes[] = {"dat", "mhd", "nhdr", "mha", "nrrd"};

    if(size < 1)
        return 0;

    std::string header;
    for(size_t i = 1; i < size; ++i)
    {
        if(data[i] == '@')
            header += root;
        else
            header += char(data[i]);
    }

    const std::string name = std::string("in/h.") + suffixes[data[0] % 5];
    put(name, header);

    osg::ImagePtr image = osg::Image::create();
    osg::addRefCP(image);

    if(image->read((root + "/" + name).c_str()) && image->getData() != NULL)
    {
        // nothing from outside the header's folder may have been read
        const void *found = memmem(image->getData(), image->getSize(), Canary, 16);
        if(found != NULL)
            std::abort();
    }
    osg::subRefCP(image);

    // nor opened
    char event[4096];
    if(read(watch, event, sizeof(event)) > 0)
        std::abort();
    return 0;
}
