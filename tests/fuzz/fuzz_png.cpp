// libFuzzer target: arbitrary bytes through the PNG reader. Whatever the
// input, readPNG must return (true or false) without crashing, leaking or
// touching memory it does not own; a successful read must be consistent.
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGPNGCodec.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    // Every rejected input logs a line; that only slows the fuzzer down.
    osg::osgLog().setLogType(osg::LOG_NONE, true);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    std::istringstream in(
        std::string(reinterpret_cast<const char *>(data), size));
    osg::PNGPixels pixels;

    if(osg::readPNG(in, pixels))
    {
        const size_t expected = size_t(pixels.width) * pixels.height *
                                pixels.channels * (pixels.bitDepth / 8);
        if(pixels.data.size() != expected || pixels.channels < 1 ||
           pixels.channels > 4 ||
           (pixels.bitDepth != 8 && pixels.bitDepth != 16))
            std::abort();
    }
    return 0;
}
