// libFuzzer target: arbitrary bytes as a MetaImage file (.mha). The header
// is parsed from memory; for small accepted volumes with LOCAL data the
// rest of the input is decoded (inflated first when compressed). Files the
// header names are never opened. Accepted headers must be within the
// limits, and our writer's header for the same layout must parse back.
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGVolumeHeaders.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    osg::osgLog().setLogType(osg::LOG_NONE, true);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    using namespace osg;

    MetaImageHeader header;

    if(!parseMetaImageHeader(reinterpret_cast<const char *>(data), size, header))
        return 0;

    const VolumeLayout &layout = header.layout;
    UInt64              fileBytes = 0, imageBytes = 0;

    if(!volumeByteCounts(layout, fileBytes, imageBytes, "fuzz") ||
       header.headerLength > size || header.headerSize < -1 ||
       header.dataFile.empty())
        std::abort();

    if(header.local && fileBytes <= (1u << 20))
    {
        const UInt8 *block = data + header.headerLength;
        UInt64       have  = size - header.headerLength;

        std::vector<UInt8> inflated;
        if(header.compressed)
        {
            if(!decompressVolumeData(VolumeZlib, block, have, 0, fileBytes, inflated))
                return 0;
            if(inflated.size() != fileBytes)
                std::abort();
            block = inflated.data();
            have  = fileBytes;
        }

        std::vector<UInt8> voxels(static_cast<size_t>(imageBytes));
        const bool ok = decodeVolumeData(layout, block, have, voxels.data(),
                                         voxels.size());
        if(ok != (have >= fileBytes))
            std::abort();
    }

    const std::string text = formatMetaImageHeader(layout, "LOCAL", false, 0);
    MetaImageHeader   back;

    if(text.empty() || !parseMetaImageHeader(text.data(), text.size(), back) ||
       back.layout.width != layout.width ||
       back.layout.height != layout.height ||
       back.layout.depth != layout.depth ||
       back.layout.element != layout.element ||
       back.layout.channels != layout.channels ||
       back.layout.bigEndian != layout.bigEndian || !back.local ||
       back.headerLength != text.size())
        std::abort();

    return 0;
}
