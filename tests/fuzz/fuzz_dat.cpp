// libFuzzer target: arbitrary bytes as a DAT header, then (when the header
// is accepted and small) the same bytes as its raw voxel data. Nothing is
// read from the files a header names. A header that is accepted must
// describe a volume within the limits, decode into exactly the announced
// size, and survive being written out and parsed again.
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

    DATHeader header;

    if(!parseDATHeader(reinterpret_cast<const char *>(data), size, header))
        return 0;

    const VolumeLayout &layout = header.layout;
    UInt64              fileBytes = 0, imageBytes = 0;

    if(header.objectFileName.empty() ||
       !volumeByteCounts(layout, fileBytes, imageBytes, "fuzz") ||
       fileBytes == 0 || fileBytes > volumeMaxBytes() ||
       imageBytes > volumeMaxBytes() || layout.channels < 1 ||
       layout.channels > 4)
        std::abort();

    // the input itself as raw data, padded with zeros when it is short
    if(fileBytes <= (1u << 20))
    {
        std::vector<UInt8> raw(data, data + std::min<size_t>(size, fileBytes));
        raw.resize(size_t(fileBytes), 0);
        std::vector<UInt8> voxels(static_cast<size_t>(imageBytes));

        if(!decodeVolumeData(layout, raw.data(), raw.size(), voxels.data(),
                             voxels.size()))
            std::abort();
        // too little data must be refused, not read past
        if(fileBytes > 0 &&
           decodeVolumeData(layout, raw.data(), raw.size() - 1, voxels.data(),
                            voxels.size()))
            std::abort();
    }

    // what our writer makes of the layout parses back to the same layout
    const std::string text = formatDATHeader("x.raw", layout);

    if(!text.empty())
    {
        DATHeader back;

        if(!parseDATHeader(text.data(), text.size(), back) ||
           back.layout.width != layout.width ||
           back.layout.height != layout.height ||
           back.layout.depth != layout.depth ||
           back.layout.element != layout.element ||
           back.layout.channels != layout.channels ||
           (volumeElementSize(layout.element) > 1 &&
            back.layout.bigEndian != layout.bigEndian))
            std::abort();
    }
    return 0;
}
