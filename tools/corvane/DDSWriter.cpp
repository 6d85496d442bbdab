#include "DDSWriter.h"

#include <OpenSG/OSGLog.h>

#include <cstring>
#include <ostream>

namespace corvane
{

namespace
{

void putU32(std::ostream &out, osg::UInt32 v)
{
    const char bytes[4] = {char(v & 0xFF), char((v >> 8) & 0xFF), char((v >> 16) & 0xFF),
                           char((v >> 24) & 0xFF)};
    out.write(bytes, 4);
}

// DDS header flags
const osg::UInt32 DDSD_CAPS        = 0x1;
const osg::UInt32 DDSD_HEIGHT      = 0x2;
const osg::UInt32 DDSD_WIDTH       = 0x4;
const osg::UInt32 DDSD_PIXELFORMAT = 0x1000;
const osg::UInt32 DDSD_LINEARSIZE  = 0x80000;
const osg::UInt32 DDPF_FOURCC      = 0x4;
const osg::UInt32 DDSCAPS_TEXTURE  = 0x1000;

} // namespace

bool writeDDS(const osg::ImagePtr &image, std::ostream &out)
{
    if(image == osg::NullFC)
        return false;

    const char *fourCC;
    switch(image->getPixelFormat())
    {
        case GL_COMPRESSED_RGB_S3TC_DXT1_EXT:
        case GL_COMPRESSED_RGBA_S3TC_DXT1_EXT:
            fourCC = "DXT1";
            break;
        case GL_COMPRESSED_RGBA_S3TC_DXT5_EXT:
            fourCC = "DXT5";
            break;
        default:
            FWARNING(("writeDDS: the image is not DXT1 or DXT5 compressed\n"));
            return false;
    }

    const osg::UInt32 size = image->getSize();
    out.write("DDS ", 4);
    putU32(out, 124);
    putU32(out, DDSD_CAPS | DDSD_HEIGHT | DDSD_WIDTH | DDSD_PIXELFORMAT | DDSD_LINEARSIZE);
    putU32(out, osg::UInt32(image->getHeight()));
    putU32(out, osg::UInt32(image->getWidth()));
    putU32(out, size); // linear size of the top level
    putU32(out, 0);    // depth
    putU32(out, 0);    // mipmap count
    for(int i = 0; i < 11; ++i)
        putU32(out, 0);
    // pixel format: 32 bytes
    putU32(out, 32);
    putU32(out, DDPF_FOURCC);
    out.write(fourCC, 4);
    for(int i = 0; i < 5; ++i)
        putU32(out, 0);
    putU32(out, DDSCAPS_TEXTURE);
    for(int i = 0; i < 4; ++i)
        putU32(out, 0);

    out.write(reinterpret_cast<const char *>(image->getData()), std::streamsize(size));
    return bool(out);
}

osg::ImagePtr flipRows(const osg::ImagePtr &image)
{
    osg::ImagePtr flipped = osg::Image::create();
    osg::beginEditCP(flipped);
    flipped->set(image->getPixelFormat(), image->getWidth(), image->getHeight(), 1, 1, 1, 0.0,
                 NULL, image->getDataType());
    const size_t row    = size_t(image->getWidth()) * image->getBpp();
    const size_t height = size_t(image->getHeight());
    const osg::UInt8 *src = image->getData();
    osg::UInt8 *dst       = flipped->editData();
    for(size_t y = 0; y < height && src != NULL && dst != NULL; ++y)
        std::memcpy(dst + y * row, src + (height - 1 - y) * row, row);
    osg::endEditCP(flipped);
    return flipped;
}

} // namespace corvane
