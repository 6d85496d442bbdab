#include <OpenSG/OSGImageFileType.h>
#include <OpenSG/OSGImageFileHandler.h>
#include <OpenSG/OSGBinaryDataHandler.h>
#include <OpenSG/OSGLog.h>

#include <cstdio>
#include <fstream>

OSG_BEGIN_NAMESPACE

static_assert(sizeof(ImageFileType::Head) == 32,
              "the image head is a 32-byte file structure");

namespace
{

void swapHead(ImageFileType::Head &head)
{
    UInt16 *numbers[] = {&head.pixelFormat, &head.width,       &head.height,
                         &head.depth,       &head.mipmapCount, &head.frameCount,
                         &head.frameDelay,  &head.sideCount,   &head.dataType,
                         &head._reserved3,  &head._reserved4,
                         &head.attachmentSize};

    for(UInt16 *n : numbers)
        *n = osgntohs(*n);
}

} // namespace

bool ImageFileType::Head::netToHost(void)
{
    swapHead(*this);
    return true;
}

bool ImageFileType::Head::hostToNet(void)
{
    swapHead(*this);
    return true;
}

ImageFileType::ImageFileType(const Char8 *mimeType,
                             const Char8 *suffixArray[],
                             UInt16       suffixByteCount,
                             UInt32       flags)
    : _suffixList(), _mimeType(mimeType), _flags(flags), _options()
{
    if(mimeType == NULL)
        FFATAL(("ImageFileType without valid mimeType\n"));

    const UInt32 count = suffixByteCount / sizeof(const Char8 *);

    for(UInt32 i = 0; i < count; ++i)
    {
        if(suffixArray[i] == NULL)
            continue;

        _suffixList.push_back(IDString(suffixArray[i]));
        SINFO << "add image suffix: " << suffixArray[i] << std::endl;
    }

    ImageFileHandler::addImageFileType(*this);
}

ImageFileType::~ImageFileType(void)
{
}

const Char8 *ImageFileType::getMimeType(void) const
{
    return _mimeType.str();
}

const std::list<IDString> &ImageFileType::getSuffixList(void) const
{
    return _suffixList;
}

UInt32 ImageFileType::getFlags(void) const
{
    return _flags;
}

void ImageFileType::setOptions(const Char8 *options)
{
    _options = options != NULL ? options : "";
}

const Char8 *ImageFileType::getOptions(void) const
{
    return _options.c_str();
}

bool ImageFileType::read(ImagePtr &image, const Char8 *fileName)
{
    if(fileName == NULL)
        return false;

    std::ifstream is(fileName, std::ios::in | std::ios::binary);

    if(!is.good())
    {
        SWARNING << getMimeType() << ": can not open '" << fileName
                 << "' for reading" << std::endl;
        return false;
    }

    return read(image, is, "");
}

bool ImageFileType::write(const ImagePtr &image, const Char8 *fileName)
{
    if(fileName == NULL)
        return false;

    std::ofstream os(fileName,
                     std::ios::out | std::ios::binary | std::ios::trunc);

    if(!os.good())
    {
        SWARNING << getMimeType() << ": can not open '" << fileName
                 << "' for writing" << std::endl;
        return false;
    }

    bool ok = write(image, os, "");

    os.close();

    if(ok && os.fail())
    {
        SWARNING << getMimeType() << ": could not finish writing '"
                 << fileName << "'" << std::endl;
        ok = false;
    }

    // A refused or half-written file would only be mistaken for a good one.
    if(!ok)
        std::remove(fileName);

    return ok;
}

bool ImageFileType::validateHeader(const Char8 *, bool &implemented)
{
    implemented = false;
    return true;
}

bool ImageFileType::read(ImagePtr &, std::istream &, const std::string &)
{
    SWARNING << getMimeType() << " read from stream is not implemented"
             << std::endl;
    return false;
}

bool ImageFileType::write(const ImagePtr &, std::ostream &,
                          const std::string &)
{
    SWARNING << getMimeType() << " write to stream is not implemented"
             << std::endl;
    return false;
}

std::string ImageFileType::determineMimetypeFromStream(std::istream &)
{
    return std::string();
}

void ImageFileType::dump(void)
{
    std::string suffixes;

    for(const IDString &s : _suffixList)
        suffixes.append(" ").append(s.str() != NULL ? s.str() : "");

    SLOG << "ImageFileType: " << getMimeType() << ", suffixes:" << suffixes
         << std::endl;
}

OSG_END_NAMESPACE
