// libFuzzer target: a DICOM series read through Image::read(folder). The
// input is cut at every "DCMSPLIT" into up to eight files, written into a
// folder of the target's own, which is then read as one series: DCMTK's
// parsing of each file, grouping by series, ordering by position, the
// checks between slices and the assembly of the volume. A volume it
// accepts must hold the bytes its edges and type say. An input that starts
// with "DCMLIST" makes its first piece a list of slice files
// ("series.dcmlist", read instead of the folder): names of the pieces,
// missing files, paths out of the folder, comments and binary junk.
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

    std::string       input(reinterpret_cast<const char *>(data), size);
    const std::string cut = "DCMSPLIT";
    const std::string tag = "DCMLIST";
    const bool        list = input.compare(0, tag.size(), tag) == 0;
    size_t            start = 0;

    if(list)
        input.erase(0, tag.size());

    for(int n = 0; n < 8 && start <= input.size(); ++n)
    {
        size_t end = input.find(cut, start);
        if(end == std::string::npos || n == 7)
            end = input.size();

        const std::string name = list && n == 0 ? "series.dcmlist" : "f" + std::to_string(n);
        std::ofstream     out(folder + "/" + name, std::ios::binary);
        out << input.substr(start, end - start);
        start = end + cut.size();
    }

    ImagePtr image = Image::create();
    addRefCP(image);

    const std::string source = list ? folder + "/series.dcmlist" : folder;

    if(image->read(source.c_str()))
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
