#include <OpenSG/OSGDATImageFileType.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGVolumeHeaders.h>
#include <OpenSG/OSGVolumeImageSupport.h>

#include <cstdio>
#include <fstream>
#include <vector>

OSG_BEGIN_NAMESPACE

namespace
{

const Char8 *datSuffixes[] = {"dat"};

/// The raw file beside the header, as named or with ".gz" appended; ""
/// when there is none or the header may not name it (warned).
std::string findRawFile(const std::string &datFile,
                        const std::string &objectFileName)
{
    std::string path;

    for(const char *suffix : {"", ".gz"})
    {
        switch(volumeDataFilePath(datFile, objectFileName + suffix, path, "DAT"))
        {
            case VolumeDataFileFound:   return path;
            case VolumeDataFileRefused: return std::string();
            case VolumeDataFileMissing: break;
        }
    }
    return std::string();
}

} // namespace

DATImageFileType DATImageFileType::_the("image/x-dat", datSuffixes,
                                        sizeof(datSuffixes),
                                        OSG_READ_SUPPORTED |
                                            OSG_NAMES_OTHER_FILES);

DATImageFileType &DATImageFileType::the(void)
{
    return _the;
}

DATImageFileType::DATImageFileType(const Char8 *mimeType,
                                   const Char8 *suffixArray[],
                                   UInt16       suffixByteCount,
                                   UInt32       flags)
    : ImageFileType(mimeType, suffixArray, suffixByteCount, flags)
{
}

DATImageFileType::~DATImageFileType(void)
{
}

bool DATImageFileType::read(ImagePtr &image, const Char8 *fileName)
{
    if(image == NullFC || fileName == NULL)
        return false;

    // A header that can not be opened has no lines, and so no
    // ObjectFileName: that is the message the caller gets.
    std::vector<UInt8> text;
    volumeReadFile(fileName, 0, MaxVolumeHeaderBytes, false, text);

    VolumeHeaderEntries entries;
    splitDATHeader(reinterpret_cast<const char *>(text.data()), text.size(),
                   entries);

    // every line goes to the image, whether it is understood or not
    for(size_t i = 0; i < entries.size(); ++i)
        image->setAttachmentField(entries[i].first, entries[i].second);

    DATHeader header;

    if(!interpretDATHeader(entries, header))
        return false;

    // what the volume code will read must be the spacing that was checked
    const std::string *thickness = image->findAttachmentField("SliceThickness");
    Real64             spacing[3];

    if(thickness != NULL && !parseSliceThickness(*thickness, spacing))
        image->setAttachmentField("SliceThickness",
                                  formatSliceThickness(header.layout.spacing));

    const std::string rawName = findRawFile(fileName, header.objectFileName);

    if(rawName.empty())
    {
        FWARNING(("Can not open %s image data\n",
                  header.objectFileName.c_str()));
        return false;
    }

    VolumeLayout &layout     = header.layout;
    UInt64        fileBytes  = 0;
    UInt64        imageBytes = 0;

    if(!volumeByteCounts(layout, fileBytes, imageBytes, "DAT"))
        return false;

    // One byte more than needed tells a long file from an exact one.
    std::vector<UInt8> raw;

    if(!volumeReadFile(rawName, header.fileOffset, fileBytes + 1, true, raw))
    {
        FWARNING(("Can not open %s image data\n", rawName.c_str()));
        return false;
    }

    if(header.formatDouble && raw.size() < fileBytes)
    {
        // Files of 4-byte values labelled DOUBLE were written by tools
        // that took DOUBLE for "floating point"; their length tells.
        layout.element = VolumeFloat32;

        if(!volumeByteCounts(layout, fileBytes, imageBytes, "DAT"))
            return false;
    }

    if(raw.size() < fileBytes)
    {
        FWARNING(("RAW file length to small!\n"));
        FWARNING(("DAT: %s holds %llu of the %llu bytes of a %u x %u x %u "
                  "volume\n", rawName.c_str(),
                  static_cast<unsigned long long>(raw.size()),
                  static_cast<unsigned long long>(fileBytes),
                  layout.width, layout.height, layout.depth));
        return false;
    }
    if(raw.size() > fileBytes)
        FWARNING(("RAW file length to big!\n"));

    // converted in place: the voxels never take more room than the file's
    if(!decodeVolumeData(layout, raw.data(), raw.size(), raw.data(),
                         raw.size()))
        return false;

    raw.resize(static_cast<size_t>(imageBytes));

    // the header's SliceThickness line is already stored verbatim
    layout.hasSpacing = false;

    return volumeStoreInImage(image, layout, raw, "DAT");
}

bool DATImageFileType::write(const ImagePtr &image, const Char8 *fileName)
{
    if(fileName == NULL)
        return false;

    VolumeLayout layout;
    const UInt8 *data = NULL;
    UInt64       size = 0;

    if(!volumeLayoutOfImage(image, layout, data, size, "DATImageFileType::write"))
        return false;

    layout.bigEndian = volumeOption(getOptions() ? getOptions() : "",
                                    "endian") != "little";

    const std::string rawName = volumeReplaceSuffix(fileName, ".raw");
    const std::string header  = formatDATHeader(volumeBaseNameOf(rawName),
                                                layout);

    std::vector<UInt8> encoded;

    if(header.empty() || !encodeVolumeData(layout, data, size, encoded))
        return false;

    std::ofstream out(fileName, std::ios::out | std::ios::binary);

    if(!out)
    {
        SWARNING << "DATImageFileType::write : Can not open output stream "
                 << "for file '" << fileName << "'!" << std::endl;
        return false;
    }
    out << header;
    out.close();

    std::ofstream rawOut(rawName.c_str(), std::ios::out | std::ios::binary);

    if(!rawOut)
    {
        SWARNING << "DATImageFileType::write : Can not open output stream "
                 << "for file '" << rawName << "'!" << std::endl;
        return false;
    }
    rawOut.write(reinterpret_cast<const char *>(encoded.data()),
                 std::streamsize(encoded.size()));
    rawOut.close();

    if(!out || !rawOut)
    {
        SWARNING << "DATImageFileType::write : error writing '" << fileName
                 << "'" << std::endl;
        return false;
    }
    return true;
}

OSG_END_NAMESPACE
