// libFuzzer target: a DICOM series read through Image::read(folder). The
// input is cut at every "DCMSPLIT" into up to eight files, written into a
// folder of the target's own, which is then read as one series: DCMTK's
// parsing of each file, grouping by series, ordering by position, the
// checks between slices and the assembly of the volume. A volume it
// accepts must hold the bytes its edges and type say.
#include <OpenSG/OSGBaseInitFunctions.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGImageFileHandler.h>
#include <OpenSG/OSGLog.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

std::string folder;

void clearFolder(void)
{
    if(DIR *dir = opendir(folder.c_str()))
    {
        while(dirent *entry = readdir(dir))
        {
            if(entry->d_name[0] != '.')
                unlink((folder + "/" + entry->d_name).c_str());
        }
        closedir(dir);
    }
}

void removeFolder(void)
{
    clearFolder();
    rmdir(folder.c_str());
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    osg::osgInit(0, NULL);
    osg::osgLog().setLogType(osg::LOG_NONE, true);
    osg::ImageFileHandler::the().setMaxImageBytes(16 << 20);

    char pattern[] = "/tmp/corvane-fuzz-dicom-XXXXXX";
    if(mkdtemp(pattern) == NULL)
        std::abort();
    folder = pattern;
    std::atexit(removeFolder);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    using namespace osg;

    clearFolder();

    const std::string input(reinterpret_cast<const char *>(data), size);
    const std::string cut = "DCMSPLIT";
    size_t            start = 0;

    for(int n = 0; n < 8 && start <= input.size(); ++n)
    {
        size_t end = input.find(cut, start);
        if(end == std::string::npos || n == 7)
            end = input.size();

        std::ofstream out(folder + "/f" + std::to_string(n), std::ios::binary);
        out << input.substr(start, end - start);
        start = end + cut.size();
    }

    ImagePtr image = Image::create();
    addRefCP(image);

    if(image->read(folder.c_str()))
    {
        const UInt64 voxels = UInt64(image->getWidth()) * image->getHeight() *
                              image->getDepth();
        const UInt64 bytes  = image->getDataType() == GL_UNSIGNED_BYTE ? 1 : 2;

        if(image->getData() == NULL || image->getSize() != voxels * bytes)
            std::abort();
    }
    subRefCP(image);
    return 0;
}
