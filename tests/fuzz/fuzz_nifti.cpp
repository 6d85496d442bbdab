// libFuzzer target: arbitrary bytes as a .nii or .nii.gz stream through the
// NIfTI-1 reader (ImageFileHandler::read from a stream): the 348-byte
// header in either byte order, gzip inflation that must stop where the
// voxels end, decoding and scaling into the image. A volume it accepts must
// be the size its header announced.
#include <OpenSG/OSGBaseInitFunctions.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGImageFileHandler.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGNIfTIImageFileType.h>

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

    if(ImageFileHandler::the().read(image, in, "image/x-nifti"))
    {
        const bool gzip = size >= 2 && data[0] == 0x1f && data[1] == 0x8b;

        // a plain file's header must be what the image was made from
        NIfTIHeader header;
        if(!gzip)
        {
            UInt64 fileBytes = 0, imageBytes = 0;
            if(!parseNIfTIHeader(data, size, header) ||
               !volumeByteCounts(header.layout, fileBytes, imageBytes, "fuzz") ||
               image->getWidth() != Int32(header.layout.width) ||
               image->getHeight() != Int32(header.layout.height) ||
               image->getDepth() != Int32(header.layout.depth))
                std::abort();
        }
        if(image->getData() == NULL || image->getSize() == 0)
            std::abort();
    }
    subRefCP(image);
    return 0;
}
