#include <OpenSG/OSGNRRDImageFileType.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGNRRDCodec.h>
#include <OpenSG/OSGVolumeImageSupport.h>

#include <cstring>
#include <fstream>
#include <istream>
#include <vector>

OSG_BEGIN_NAMESPACE

namespace
{

const Char8 *nrrdSuffixes[] = {"nrrd", "nhdr"};

const Char8 NRRDFilePrefix[7] = {'N', 'R', 'R', 'D', '0', '0', '0'};

/// Most of a stream that is read: text encodings take a few bytes a value.
UInt64 maxStreamBytes(void)
{
    return 4 * volumeMaxBytes() + (UInt64(1) << 20);
}

} // namespace

NRRDImageFileType NRRDImageFileType::_the("image/x-nrrd", nrrdSuffixes,
                                          sizeof(nrrdSuffixes),
                                          OSG_READ_SUPPORTED |
                                              OSG_WRITE_SUPPORTED |
                                              OSG_NAMES_OTHER_FILES);

NRRDImageFileType &NRRDImageFileType::the(void)
{
    return _the;
}

NRRDImageFileType::NRRDImageFileType(const Char8 *mimeType,
                                     const Char8 *suffixArray[],
                                     UInt16       suffixByteCount,
                                     UInt32       flags)
    : ImageFileType(mimeType, suffixArray, suffixByteCount, flags)
{
}

NRRDImageFileType::~NRRDImageFileType(void)
{
}

bool NRRDImageFileType::read(ImagePtr &image, const Char8 *fileName)
{
    if(image == NullFC || fileName == NULL)
        return false;

    VolumeLayout       layout;
    std::vector<UInt8> voxels;

    if(!readNRRDFile(fileName, layout, voxels))
        return false;

    return volumeStoreInImage(image, layout, voxels, "NRRD");
}

bool NRRDImageFileType::read(ImagePtr &image, std::istream &is,
                             const std::string &)
{
    if(image == NullFC)
        return false;

    std::vector<UInt8> bytes;

    if(!volumeReadStream(is, maxStreamBytes(), bytes))
    {
        FWARNING(("NRRD: error reading the stream\n"));
        return false;
    }

    VolumeLayout       layout;
    std::vector<UInt8> voxels;

    if(!readNRRD(bytes.data(), bytes.size(), layout, voxels))
        return false;

    bytes.clear();
    bytes.shrink_to_fit();

    return volumeStoreInImage(image, layout, voxels, "NRRD");
}

bool NRRDImageFileType::write(const ImagePtr &image, const Char8 *fileName)
{
    if(fileName == NULL)
        return false;

    VolumeLayout layout;
    const UInt8 *data = NULL;
    UInt64       size = 0;

    if(!volumeLayoutOfImage(image, layout, data, size,
                            "NRRDImageFileType::write"))
        return false;

    const bool gzip = volumeOption(getOptions() ? getOptions() : "",
                                   "encoding") == "gzip";

    return writeNRRDFile(fileName, layout, data, size, gzip);
}

bool NRRDImageFileType::validateHeader(const Char8 *fileName,
                                       bool        &implemented)
{
    implemented = true;

    if(fileName == NULL)
        return false;

    std::ifstream is(fileName, std::ios::in | std::ios::binary);
    Char8         head[sizeof(NRRDFilePrefix)];

    if(!is.read(head, sizeof(head)))
        return false;

    return std::memcmp(head, NRRDFilePrefix, sizeof(NRRDFilePrefix)) == 0;
}

std::string NRRDImageFileType::determineMimetypeFromStream(std::istream &is)
{
    const std::streampos start = is.tellg();
    Char8                head[sizeof(NRRDFilePrefix)];

    is.read(head, sizeof(head));

    const bool match =
        is.gcount() == std::streamsize(sizeof(head)) &&
        std::memcmp(head, NRRDFilePrefix, sizeof(NRRDFilePrefix)) == 0;

    is.clear();
    is.seekg(start);

    return match ? std::string(getMimeType()) : std::string();
}

OSG_END_NAMESPACE
