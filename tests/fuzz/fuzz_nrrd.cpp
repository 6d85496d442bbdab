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

// Teem's header parser loses a small array of strings on some malformed
// headers (allocated by airArrayNew, airArrayLenSet and airStrdup inside
// Teem, before any object of ours exists). Only those are let pass: the
// zlib stream Teem's gzip decoder loses on corrupt data would still be
// found, but the reader never hands compressed data to Teem (see
// fuzz_nrrd_gzip, which runs without any suppression).
extern "C" const char *__lsan_default_suppressions(void)
{
    return "leak:airArrayNew\n"
           "leak:airArrayLenSet\n"
           "leak:airStrdup\n";
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
