// libFuzzer target: arbitrary bytes as a NRRD file, through Teem, from
// memory. Headers that name detached data files are refused before Teem
// sees them, so nothing but the input is read. Accepted volumes are read
// in full when they are small; their voxels must have the announced size.
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGNRRDCodec.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

// Teem loses memory on some of its error paths: its gzip decoder keeps the
// zlib stream of corrupt data, and a header that fails Teem's final
// consistency check leaves an internal array behind. That memory is
// allocated and lost inside Teem (the unit tests check, without this
// suppression, that we release every Teem object we get), so leaks whose
// allocation happens in Teem, or in zlib on Teem's behalf, are not ours.
extern "C" const char *__lsan_default_suppressions(void)
{
    return "leak:libteem.so\n"
           "leak:inflateInit2_\n";
}

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    osg::osgLog().setLogType(osg::LOG_NONE, true);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    using namespace osg;

    VolumeLayout layout;

    if(!readNRRDHeader(data, size, layout))
        return 0;

    UInt64 fileBytes = 0, imageBytes = 0;

    if(!volumeByteCounts(layout, fileBytes, imageBytes, "fuzz"))
        std::abort();

    std::vector<UInt8> voxels;
    VolumeLayout       full;

    if(readNRRD(data, size, full, voxels, 1u << 20))
    {
        if(voxels.size() != imageBytes || full.width != layout.width ||
           full.height != layout.height || full.depth != layout.depth ||
           full.element != layout.element ||
           full.channels != layout.channels)
            std::abort();
    }
    return 0;
}
