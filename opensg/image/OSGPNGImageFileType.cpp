#include <OpenSG/OSGPNGImageFileType.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGPNGCodec.h>
#include <OpenSG/OSGLog.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <istream>

OSG_BEGIN_NAMESPACE

namespace
{

const Char8 *pngSuffixes[] = {"png"};

const Char8 Signature[4] = {'\x89', 'P', 'N', 'G'};

UInt32 channelsToWrite(UInt32 pixelFormat)
{
    switch(pixelFormat)
    {
        case Image::OSG_L_PF:    return 1;
        case Image::OSG_LA_PF:   return 2;
        case Image::OSG_RGB_PF:
        case Image::OSG_BGR_PF:  return 3;
        case Image::OSG_RGBA_PF:
        case Image::OSG_BGRA_PF: return 4;
        default:                 return 0;
    }
}

UInt32 pixelsPerMeter(Real32 res, UInt16 resUnit)
{
    if(resUnit == Image::OSG_RESUNIT_INCH)
        return pngDpiToPixelsPerMeter(res);

    // Other units are taken as pixels per metre already.
    return res > 0.f ? UInt32(std::min(res, 2147483647.f)) : 0;
}

} // namespace

PNGImageFileType PNGImageFileType::_the("image/png", pngSuffixes,
                                        sizeof(pngSuffixes),
                                        OSG_READ_SUPPORTED |
                                            OSG_WRITE_SUPPORTED);

PNGImageFileType &PNGImageFileType::the(void)
{
    return _the;
}

PNGImageFileType::PNGImageFileType(const Char8 *mimeType,
                                   const Char8 *suffixArray[],
                                   UInt16       suffixByteCount,
                                   UInt32       flags)
    : ImageFileType(mimeType, suffixArray, suffixByteCount, flags)
{
}

PNGImageFileType::~PNGImageFileType(void)
{
}

bool PNGImageFileType::read(ImagePtr &image, std::istream &is,
                            const std::string &)
{
    static const UInt32 formats[5] = {Image::OSG_INVALID_PF, Image::OSG_L_PF,
                                      Image::OSG_LA_PF, Image::OSG_RGB_PF,
                                      Image::OSG_RGBA_PF};

    if(image == NullFC)
        return false;

    PNGPixels pixels;

    if(!readPNG(is, pixels))
        return false;

    const Int32 type = pixels.bitDepth == 16 ? Image::OSG_UINT16_IMAGEDATA
                                             : Image::OSG_UINT8_IMAGEDATA;

    if(!image->set(formats[pixels.channels], Int32(pixels.width),
                   Int32(pixels.height), 1, 1, 1, 0.0, pixels.data.data(),
                   type))
    {
        FWARNING(("PNGImageFileType::read: no storage for a %ux%u image\n",
                  pixels.width, pixels.height));
        return false;
    }

    const BitVector resMask =
        Image::ResXFieldMask | Image::ResYFieldMask | Image::ResUnitFieldMask;

    beginEditCP(image, resMask);
    image->setResX(pngPixelsPerMeterToDpi(pixels.pixelsPerMeterX));
    image->setResY(pngPixelsPerMeterToDpi(pixels.pixelsPerMeterY));
    image->setResUnit(Image::OSG_RESUNIT_INCH);
    endEditCP(image, resMask);

    return true;
}

bool PNGImageFileType::write(const ImagePtr &image, std::ostream &os,
                             const std::string &)
{
    if(image == NullFC)
        return false;

    if(image->getDimension() < 1 || image->getDimension() > 2)
    {
        FWARNING(("PNGImageFileType::write: invalid dimension %d!\n",
                  image->getDimension()));
        return false;
    }

    const UInt32 channels = channelsToWrite(image->getPixelFormat());

    if(channels == 0)
    {
        FWARNING(("PNGImageFileType::write: unknown pixel format %d!\n",
                  image->getPixelFormat()));
        return false;
    }

    UInt32 bitDepth = 0;

    if(image->getDataType() == Image::OSG_UINT8_IMAGEDATA)
        bitDepth = 8;
    else if(image->getDataType() == Image::OSG_UINT16_IMAGEDATA)
        bitDepth = 16;

    if(bitDepth == 0)
    {
        FWARNING(("Invalid pixeldepth, cannot store data\n"));
        return false;
    }

    PNGPixels pixels;

    pixels.width           = UInt32(image->getWidth());
    pixels.height          = UInt32(image->getHeight());
    pixels.channels        = channels;
    pixels.bitDepth        = bitDepth;
    pixels.pixelsPerMeterX = pixelsPerMeter(image->getResX(), image->getResUnit());
    pixels.pixelsPerMeterY = pixelsPerMeter(image->getResY(), image->getResUnit());

    const size_t pixelBytes = channels * bitDepth / 8;
    const size_t size = size_t(pixels.width) * pixels.height * pixelBytes;
    const UInt8 *data = image->getData();

    // A pixel format set without set() leaves the block in its old layout.
    if(data == NULL || UInt32(image->getBpp()) != pixelBytes ||
       image->getSize(false, false, false) < size)
    {
        FWARNING(("PNGImageFileType::write: the image holds no %u-channel "
                  "pixel data of %u bits\n",
                  channels, bitDepth));
        return false;
    }

    pixels.data.assign(data, data + size);

    if(image->getPixelFormat() == Image::OSG_BGR_PF ||
       image->getPixelFormat() == Image::OSG_BGRA_PF)
    {
        const size_t cs = bitDepth / 8;

        for(size_t p = 0; p < size; p += pixelBytes)
            std::swap_ranges(&pixels.data[p], &pixels.data[p] + cs,
                             &pixels.data[p + 2 * cs]);
    }

    return writePNG(os, pixels);
}

bool PNGImageFileType::validateHeader(const Char8 *fileName, bool &implemented)
{
    implemented = true;

    if(fileName == NULL)
        return false;

    std::ifstream is(fileName, std::ios::in | std::ios::binary);
    Char8         head[sizeof(Signature)];

    if(!is.read(head, sizeof(head)))
        return false;

    return std::memcmp(head, Signature, sizeof(Signature)) == 0;
}

std::string PNGImageFileType::determineMimetypeFromStream(std::istream &is)
{
    const std::streampos start = is.tellg();
    Char8                head[sizeof(Signature)];

    is.read(head, sizeof(head));

    const bool isPNG = is.gcount() == std::streamsize(sizeof(head)) &&
                       std::memcmp(head, Signature, sizeof(Signature)) == 0;

    is.clear();
    is.seekg(start);

    return isPNG ? std::string(getMimeType()) : std::string();
}

OSG_END_NAMESPACE
