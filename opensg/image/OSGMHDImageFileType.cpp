#include <OpenSG/OSGMHDImageFileType.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGVolumeHeaders.h>
#include <OpenSG/OSGVolumeImageSupport.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <fstream>
#include <istream>
#include <vector>

OSG_BEGIN_NAMESPACE

namespace
{

const Char8 *mhdSuffixes[] = {"mhd", "mha"};

/// Largest compressed block we read: zlib makes data at most a little
/// bigger than it was.
UInt64 maxCompressedBytes(void)
{
    const UInt64 limit = volumeMaxBytes();

    return limit + limit / 64 + (UInt64(1) << 20);
}

bool optionIsTrue(const std::string &value)
{
    std::string v;
    for(size_t i = 0; i < value.size(); ++i)
        v += char(std::tolower(static_cast<unsigned char>(value[i])));

    return v == "true" || v == "1" || v == "yes";
}

/// Where the data block starts in a file or buffer of `total` bytes whose
/// header ends at `headerEnd` (0 for a separate data file); false when
/// it can not be placed.
bool dataStart(const MetaImageHeader &header, UInt64 headerEnd, UInt64 total,
               UInt64 blockBytes, UInt64 &start)
{
    if(header.headerSize >= 0)
    {
        start = headerEnd + UInt64(header.headerSize);
        return true;
    }

    // HeaderSize -1: the data block is the end of the file
    if(blockBytes == 0 || total < headerEnd + blockBytes)
    {
        FWARNING(("MetaImage: HeaderSize -1 with a data block of unknown or "
                  "too large size\n"));
        return false;
    }
    start = total - blockBytes;
    return true;
}

/// The voxels from the data block (raw or zlib) into Image's form, in
/// place: `block` ends up holding exactly the image's bytes.
bool decodeBlock(const MetaImageHeader &header, std::vector<UInt8> &block,
                 const char *source)
{
    UInt64 fileBytes  = 0;
    UInt64 imageBytes = 0;

    if(!volumeByteCounts(header.layout, fileBytes, imageBytes, "MetaImage"))
        return false;

    if(header.compressed)
    {
        // grows with what the data yields, not with what the header says
        std::vector<UInt8> inflated;

        if(!decompressVolumeData(VolumeZlib, block.data(), block.size(), 0,
                                 fileBytes, inflated))
        {
            FWARNING(("MetaImage: compressed data in %s is corrupt or short\n",
                      source));
            return false;
        }
        block.swap(inflated);
    }

    if(block.size() < fileBytes)
    {
        FWARNING(("MetaImage: %s holds %llu of the %llu bytes of a %u x %u x "
                  "%u volume\n", source,
                  static_cast<unsigned long long>(block.size()),
                  static_cast<unsigned long long>(fileBytes),
                  header.layout.width, header.layout.height,
                  header.layout.depth));
        return false;
    }

    if(!decodeVolumeData(header.layout, block.data(), block.size(),
                         block.data(), block.size()))
        return false;

    block.resize(static_cast<size_t>(imageBytes));
    return true;
}

} // namespace

MHDImageFileType MHDImageFileType::_the("image/x-metaimage", mhdSuffixes,
                                        sizeof(mhdSuffixes),
                                        OSG_READ_SUPPORTED |
                                            OSG_WRITE_SUPPORTED |
                                            OSG_NAMES_OTHER_FILES);

MHDImageFileType &MHDImageFileType::the(void)
{
    return _the;
}

MHDImageFileType::MHDImageFileType(const Char8 *mimeType,
                                   const Char8 *suffixArray[],
                                   UInt16       suffixByteCount,
                                   UInt32       flags)
    : ImageFileType(mimeType, suffixArray, suffixByteCount, flags)
{
}

MHDImageFileType::~MHDImageFileType(void)
{
}

bool MHDImageFileType::read(ImagePtr &image, const Char8 *fileName)
{
    if(image == NullFC || fileName == NULL)
        return false;

    std::vector<UInt8> head;

    if(!volumeReadFile(fileName, 0, MaxVolumeHeaderBytes, false, head))
    {
        FWARNING(("MetaImage: can not open %s\n", fileName));
        return false;
    }

    MetaImageHeader header;

    if(!parseMetaImageHeader(reinterpret_cast<const char *>(head.data()),
                             head.size(), header))
        return false;

    head.clear();

    std::string dataName = fileName;

    if(!header.local &&
       volumeDataFilePath(fileName, header.dataFile, dataName, "MetaImage") !=
           VolumeDataFileFound)
        dataName.clear();

    UInt64 total = 0;

    if(dataName.empty() || !volumeFileSize(dataName, total))
    {
        FWARNING(("MetaImage: can not open the data file %s\n",
                  header.dataFile.c_str()));
        return false;
    }

    UInt64 fileBytes  = 0;
    UInt64 imageBytes = 0;

    if(!volumeByteCounts(header.layout, fileBytes, imageBytes, "MetaImage"))
        return false;

    const UInt64 blockBytes = header.compressed ? header.compressedSize
                                                : fileBytes;
    UInt64       start      = 0;

    if(!dataStart(header, header.local ? header.headerLength : 0, total,
                  blockBytes, start))
        return false;

    std::vector<UInt8> block;

    if(!volumeReadFile(dataName, start,
                       blockBytes != 0 ? blockBytes : maxCompressedBytes(),
                       false, block))
    {
        FWARNING(("MetaImage: can not read the data file %s\n",
                  dataName.c_str()));
        return false;
    }

    if(!decodeBlock(header, block, dataName.c_str()))
        return false;

    return volumeStoreInImage(image, header.layout, block, "MetaImage");
}

bool MHDImageFileType::read(ImagePtr &image, std::istream &is,
                            const std::string &)
{
    if(image == NullFC)
        return false;

    std::vector<UInt8> bytes;

    if(!volumeReadStream(is, maxCompressedBytes() + MaxVolumeHeaderBytes, bytes))
    {
        FWARNING(("MetaImage: error reading the stream\n"));
        return false;
    }

    MetaImageHeader header;

    if(!parseMetaImageHeader(reinterpret_cast<const char *>(bytes.data()),
                             bytes.size(), header))
        return false;

    if(!header.local)
    {
        FWARNING(("MetaImage: a stream must hold its data (ElementDataFile "
                  "= LOCAL)\n"));
        return false;
    }

    UInt64 fileBytes  = 0;
    UInt64 imageBytes = 0;

    if(!volumeByteCounts(header.layout, fileBytes, imageBytes, "MetaImage"))
        return false;

    UInt64 start = 0;

    if(!dataStart(header, header.headerLength, bytes.size(),
                  header.compressed ? header.compressedSize : fileBytes,
                  start))
        return false;

    // the block is the announced size; a compressed one without a size
    // runs to the end
    const UInt64 begin = std::min<UInt64>(start, bytes.size());
    const UInt64 rest  = bytes.size() - begin;
    const UInt64 size  = !header.compressed ? fileBytes
                       : header.compressedSize != 0 ? header.compressedSize
                                                    : rest;
    const UInt64 end   = begin + std::min<UInt64>(size, rest);

    std::vector<UInt8> block(bytes.begin() + begin, bytes.begin() + end);

    bytes.clear();
    bytes.shrink_to_fit();

    if(!decodeBlock(header, block, "the stream"))
        return false;

    return volumeStoreInImage(image, header.layout, block, "MetaImage");
}

bool MHDImageFileType::write(const ImagePtr &image, const Char8 *fileName)
{
    if(fileName == NULL)
        return false;

    VolumeLayout layout;
    const UInt8 *data = NULL;
    UInt64       size = 0;

    if(!volumeLayoutOfImage(image, layout, data, size,
                            "MHDImageFileType::write"))
        return false;

    const std::string options  = getOptions() ? getOptions() : "";
    const bool        compress = optionIsTrue(volumeOption(options, "compress"));

    layout.bigEndian = optionIsTrue(volumeOption(options, "msb"));

    std::vector<UInt8> block;

    if(!encodeVolumeData(layout, data, size, block))
        return false;

    if(compress)
    {
        std::vector<UInt8> packed;

        if(!deflateVolumeData(block.data(), block.size(), packed))
            return false;
        block.swap(packed);
    }

    const bool        local    = volumeEndsWithNoCase(fileName, ".mha");
    const std::string dataName = local ? std::string()
                                       : volumeReplaceSuffix(
                                             fileName,
                                             compress ? ".zraw" : ".raw");
    const std::string header   = formatMetaImageHeader(
        layout, local ? std::string("LOCAL") : volumeBaseNameOf(dataName),
        compress, block.size());

    if(header.empty())
        return false;

    std::ofstream out(fileName, std::ios::out | std::ios::binary);

    if(!out)
    {
        SWARNING << "MHDImageFileType::write : Can not open output stream "
                 << "for file '" << fileName << "'!" << std::endl;
        return false;
    }
    out << header;

    if(local)
    {
        out.write(reinterpret_cast<const char *>(block.data()),
                  std::streamsize(block.size()));
    }
    else
    {
        std::ofstream raw(dataName.c_str(), std::ios::out | std::ios::binary);

        if(!raw)
        {
            SWARNING << "MHDImageFileType::write : Can not open output stream "
                     << "for file '" << dataName << "'!" << std::endl;
            return false;
        }
        raw.write(reinterpret_cast<const char *>(block.data()),
                  std::streamsize(block.size()));
        if(!raw)
        {
            SWARNING << "MHDImageFileType::write : error writing '"
                     << dataName << "'" << std::endl;
            return false;
        }
    }

    if(!out)
    {
        SWARNING << "MHDImageFileType::write : error writing '" << fileName
                 << "'" << std::endl;
        return false;
    }
    return true;
}

OSG_END_NAMESPACE
