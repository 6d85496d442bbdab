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

// TEMPORARY until OSGImage.h exists: the Image::PixelFormat values (GL
// enumerants) and the data type the compressor deals with.
enum GLValue : UInt32
{
    PF_RGB           = 0x1907,
    PF_RGBA          = 0x1908,
    PF_BGR           = 0x80E0,
    PF_BGRA          = 0x80E1,
    PF_RGB_DXT1      = 33776,
    PF_RGBA_DXT1     = 33777,
    PF_RGBA_DXT3     = 33778,
    PF_RGBA_DXT5     = 33779,
    DT_UNSIGNED_BYTE = 0x1401
};

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
                                   PixelFormat       inFormat,
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

UInt32 DXTCompressor::resolveFormat(bool hasAlpha, CompressedFormat &format)
{
    switch(format)
    {
        case Auto:
            format = hasAlpha ? DXT5 : DXT1;
            return hasAlpha ? PF_RGBA_DXT5 : PF_RGB_DXT1;
        case DXT1:
            return hasAlpha ? PF_RGBA_DXT1 : PF_RGB_DXT1;
        default:
            // DXT5, and values that compressPixels will refuse.
            return PF_RGBA_DXT5;
    }
}

UInt32 DXTCompressor::blockEdge(UInt32 edge)
{
    return (edge + 3) & ~UInt32(3);
}

bool DXTCompressor::isDXTFormat(UInt32 pixelFormat)
{
    return pixelFormat == PF_RGB_DXT1  || pixelFormat == PF_RGBA_DXT1 ||
           pixelFormat == PF_RGBA_DXT3 || pixelFormat == PF_RGBA_DXT5;
}

bool DXTCompressor::isDXT1Format(UInt32 pixelFormat)
{
    // Narrower than isDXTFormat on purpose: an image already in DXT3 or DXT5
    // goes on in compressImage and meets the pixel-format check.
    return pixelFormat == PF_RGB_DXT1 || pixelFormat == PF_RGBA_DXT1;
}

bool DXTCompressor::checkImage(bool exists, UInt32 depth)
{
    if(exists && depth < 2)
        return true;

    FWARNING(("DXTCompressor::compressImage: Invalid image. Boldly refusing "
               "to compress it.\n"));
    return false;
}

bool DXTCompressor::checkSize(UInt32 width, UInt32 height)
{
    if((width & 3) == 0 && (height & 3) == 0)
        return true;

    FWARNING(("DXTCompressor::compressImage: Invalid image size (%i x %i -- "
               "must be a multiple of 4). Boldly refusing to compress it.\n",
               int(width), int(height)));
    return false;
}

bool DXTCompressor::checkDataType(UInt32 dataType)
{
    if(dataType == DT_UNSIGNED_BYTE)
        return true;

    FWARNING(("DXTCompressor::compressImage: Invalid data type (%i -- must "
               "be uint8). Boldly refusing to compress it.\n", int(dataType)));
    return false;
}

bool DXTCompressor::checkPixelFormat(UInt32 pixelFormat)
{
    if(pixelFormat == PF_RGBA)
        return true;

    FWARNING(("DXTCompressor::compressImage: Invalid pixel format (%i -- "
               "must be rgba). Boldly refusing to compress it.\n",
               int(pixelFormat)));
    return false;
}
