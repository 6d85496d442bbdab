// libFuzzer target: arbitrary bytes as a .mha stream through the whole
// MetaImage reader (ImageFileHandler::read from a stream): header, data
// block, zlib or gzip decompression into memory that grows with the data,
// decoding into the image. A volume it accepts must be the size its
// header announced; a compressed block may never cost more memory than it
// yields (-rss_limit_mb catches the rest).
#include <OpenSG/OSGBaseInitFunctions.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGImageFileHandler.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGVolumeHeaders.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    osg::osgInit(0, NULL);
    osg::osgLog().setLogType(osg::LOG_NONE, true);
    // announcements beyond this are refused from the header
    osg::ImageFileHandler::the().setMaxImageBytes(16 << 20);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    using namespace osg;

    std::istringstream in(std::string(reinterpret_cast<const char *>(data), size));
    ImagePtr           image = Image::create();
    addRefCP(image);

    if(ImageFileHandler::the().read(image, in, "image/x-metaimage"))
    {
        MetaImageHeader header;
        UInt64          fileBytes = 0, imageBytes = 0;

        if(!parseMetaImageHeader(reinterpret_cast<const char *>(data), size, header) ||
           !volumeByteCounts(header.layout, fileBytes, imageBytes, "fuzz") ||
           image->getData() == NULL || image->getSize() != imageBytes)
            std::abort();
    }
    subRefCP(image);
    return 0;
}
