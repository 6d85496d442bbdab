/// DXTCompressor: formats, checks and the copies around the block routines.

#include <OpenSG/DXTCompressor.h>
#include <OpenSG/DXTBlocks.h>

#include <OpenSG/OSGLog.h>

#include <cstring>

using osg::Int32;
using osg::UInt8;
using osg::UInt32;

namespace
{

using osg::Image;

const UInt32 PF_RGB       = Image::OSG_RGB_PF;
const UInt32 PF_RGBA      = Image::OSG_RGBA_PF;
const UInt32 PF_BGR       = Image::OSG_BGR_PF;
const UInt32 PF_BGRA      = Image::OSG_BGRA_PF;
const UInt32 PF_RGB_DXT1  = GL_COMPRESSED_RGB_S3TC_DXT1_EXT;
const UInt32 PF_RGBA_DXT1 = GL_COMPRESSED_RGBA_S3TC_DXT1_EXT;
const UInt32 PF_RGBA_DXT3 = GL_COMPRESSED_RGBA_S3TC_DXT3_EXT;
const UInt32 PF_RGBA_DXT5 = GL_COMPRESSED_RGBA_S3TC_DXT5_EXT;

typedef void (*ImageRoutine)(const UInt8 *, UInt8 *, Int32, Int32, Int32 &);

// RGB and BGR get alpha 255. BGRA's alpha is not carried over and stays as
// the fresh buffer has it (0): feed GL_RGBA when alpha matters.
void convertToRGBA(const UInt8 *in, UInt8 *out, std::size_t pixels, UInt32 inFormat)
{
    const bool        swap   = inFormat == PF_BGR || inFormat == PF_BGRA;
    const std::size_t stride = (inFormat == PF_BGRA) ? 4 : 3;
    const bool        opaque = inFormat != PF_BGRA;

    for(std::size_t i = 0; i < pixels; ++i, in += stride, out += 4)
    {
        out[0] = in[swap ? 2 : 0];
        out[1] = in[1];
        out[2] = in[swap ? 0 : 2];
        if(opaque)
            out[3] = 255;
    }
}

/// The pixel format an image takes; `format` becomes what compressPixels gets.
UInt32 resolveFormat(bool hasAlpha, DXTCompressor::CompressedFormat &format)
{
    switch(format)
    {
        case DXTCompressor::Auto:
            format = hasAlpha ? DXTCompressor::DXT5 : DXTCompressor::DXT1;
            return hasAlpha ? PF_RGBA_DXT5 : PF_RGB_DXT1;
        case DXTCompressor::DXT1:
            return hasAlpha ? PF_RGBA_DXT1 : PF_RGB_DXT1;
        default:
            // DXT5, and values that compressPixels will refuse.
            return PF_RGBA_DXT5;
    }
}

/// An edge raised to the next multiple of 4.
UInt32 blockEdge(UInt32 edge)
{
    return (edge + 3) & ~UInt32(3);
}

bool isDXTFormat(UInt32 pixelFormat)
{
    return pixelFormat == PF_RGB_DXT1  || pixelFormat == PF_RGBA_DXT1 ||
           pixelFormat == PF_RGBA_DXT3 || pixelFormat == PF_RGBA_DXT5;
}

bool isDXT1Format(UInt32 pixelFormat)
{
    // Narrower than isDXTFormat on purpose: an image already in DXT3 or DXT5
    // goes on in compressImage and meets the pixel-format check.
    return pixelFormat == PF_RGB_DXT1 || pixelFormat == PF_RGBA_DXT1;
}

bool checkImage(bool exists, UInt32 depth)
{
    if(exists && depth < 2)
        return true;

    FWARNING(("DXTCompressor::compressImage: Invalid image. Boldly refusing "
               "to compress it.\n"));
    return false;
}

bool checkSize(UInt32 width, UInt32 height)
{
    if((width & 3) == 0 && (height & 3) == 0)
        return true;

    FWARNING(("DXTCompressor::compressImage: Invalid image size (%i x %i -- "
               "must be a multiple of 4). Boldly refusing to compress it.\n",
               int(width), int(height)));
    return false;
}

bool checkDataType(UInt32 dataType)
{
    if(dataType == GL_UNSIGNED_BYTE)
        return true;

    FWARNING(("DXTCompressor::compressImage: Invalid data type (%i -- must "
               "be uint8). Boldly refusing to compress it.\n", int(dataType)));
    return false;
}

bool checkPixelFormat(UInt32 pixelFormat)
{
    if(pixelFormat == PF_RGBA)
        return true;

    FWARNING(("DXTCompressor::compressImage: Invalid pixel format (%i -- "
               "must be rgba). Boldly refusing to compress it.\n",
               int(pixelFormat)));
    return false;
}

} // namespace

DXTCompressor::DXTCompressor(void)
{
}

DXTCompressor &DXTCompressor::the(void)
{
    static DXTCompressor instance;
    return instance;
}

bool DXTCompressor::compressPixels(UInt8            *out,
                                   const UInt8      *in,
                                   UInt32            width,
                                   UInt32            height,
                                   Image::PixelFormat inFormat,
                                   CompressedFormat  format)
{
    if((width & 3) != 0 || (height & 3) != 0)
    {
        FWARNING(("DXTCompressor::compressPixels: Width and height no "
                   "multiple of 4. Doing nothing.\n"));
        return false;
    }

    if(inFormat != PF_RGB && inFormat != PF_RGBA &&
       inFormat != PF_BGR && inFormat != PF_BGRA)
    {
        FWARNING(("DXTCompressor::compressPixels: Unsupported "
                   "inPixelFormat. Doing nothing.\n"));
        return false;
    }

    // divisor: four bytes a pixel in, 4 / divisor bytes a pixel out.
    const bool   withAlpha = inFormat == PF_RGBA || inFormat == PF_BGRA;
    ImageRoutine routine   = NULL;
    UInt32       divisor   = 0;
    switch(format)
    {
        case DXT1:
            routine = &osg::CompressImageDXT1;
            divisor = 8;
            break;
        case DXT5:
            routine = &osg::CompressImageDXT5;
            divisor = 4;
            break;
        case Auto:
            routine = withAlpha ? &osg::CompressImageDXT5 : &osg::CompressImageDXT1;
            divisor = withAlpha ? 4 : 8;
            break;
        default:
            FWARNING(("DXTCompressor::compressPixels: Unsupported "
                       "targetFormat. Doing nothing.\n"));
            return false;
    }

    const std::size_t pixels = std::size_t(width) * std::size_t(height);

    // The block routines want their input and output at multiples of 16.
    osg::DXTAlignedBuffer input;
    const UInt8          *source = in;
    if(inFormat != PF_RGBA || !osg::isAligned16(in))
    {
        if(!input.allocate(pixels * 4))
        {
            FWARNING(("DXTCompressor::compressPixels: Out of memory. "
                       "Doing nothing.\n"));
            return false;
        }
        if(inFormat == PF_RGBA)
            std::memcpy(input.data(), in, pixels * 4);
        else
            convertToRGBA(in, input.data(), pixels, inFormat);
        source = input.data();
    }

    osg::DXTAlignedBuffer output;
    UInt8                *target = out;
    if(!osg::isAligned16(out))
    {
        if(!output.allocate(pixels * 4 / divisor))
        {
            FWARNING(("DXTCompressor::compressPixels: Out of memory. "
                       "Doing nothing.\n"));
            return false;
        }
        target = output.data();
    }

    Int32 written = 0;
    routine(source, target, Int32(width), Int32(height), written);

    if(target != out)
        std::memcpy(out, target, std::size_t(written));

    return true;
}


bool DXTCompressor::isDXTCompressed(osg::ImagePtr image)
{
    return isDXTFormat(image->getPixelFormat());
}

bool DXTCompressor::compressImage(osg::ImagePtr image, CompressedFormat format)
{
    // The format is resolved first, from the alpha channel of an image that
    // may still turn out to be refused.
    const UInt32 target = resolveFormat(image != osg::NullFC && image->hasAlphaChannel(), format);

    if(!checkImage(image != osg::NullFC, image != osg::NullFC ? image->getDepth() : 0))
        return false;

    UInt32 width  = image->getWidth();
    UInt32 height = image->getHeight();
    if((width & 3) != 0 || (height & 3) != 0)
    {
        image->scale(Int32(blockEdge(width)), Int32(blockEdge(height)), 1, osg::NullFC);
        width  = image->getWidth();
        height = image->getHeight();
    }
    if(!checkSize(width, height))
        return false;

    if(image->getDataType() != GL_UNSIGNED_BYTE)
        image->convertDataTypeTo(GL_UNSIGNED_BYTE);
    if(!checkDataType(image->getDataType()))
        return false;

    if(isDXT1Format(image->getPixelFormat()))
        return true;

    if(image->getPixelFormat() != PF_RGBA)
        image->reformat(Image::OSG_RGBA_PF, osg::NullFC);
    if(!checkPixelFormat(image->getPixelFormat()))
        return false;

    const std::size_t bytes = std::size_t(width) * height * 4;
    osg::DXTAlignedBuffer pixels;
    if(!pixels.allocate(bytes))
    {
        FWARNING(("DXTCompressor::compressImage: Out of memory. Boldly refusing to "
                  "compress it.\n"));
        return false;
    }
    std::memcpy(pixels.data(), image->getData(), bytes);

    osg::beginEditCP(image, Image::PixelFieldMask);
    image->set(target, Int32(width), Int32(height), 1, 1, 1, 0.0, NULL, GL_UNSIGNED_BYTE, true,
               1);
    compressPixels(image->getData(), pixels.data(), width, height, Image::OSG_RGBA_PF, format);
    osg::endEditCP(image, Image::PixelFieldMask);
    return true;
}
