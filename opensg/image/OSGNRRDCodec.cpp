/// NRRD reading and writing on Teem.
///
/// Teem parses headers, always from memory and never with a "data file"
/// field in them: with one it would open that file itself, even to read
/// the header alone (a FIFO there blocks). The voxels of the binary
/// encodings (raw, gzip, bzip2) are taken from the bytes after the header
/// here, decompressed into memory that grows with the data; Teem, which
/// allocates what the header announces before it reads a byte, decodes
/// only the text encodings (ascii, hex), and only once the text is long
/// enough to hold them. Teem's gzip decoder, which loses its zlib stream
/// on corrupt data, is never used for reading.
///
/// Teem reports errors through its "biff" message store; every failing
/// call is followed by biffGetDone, which hands us the text and frees
/// Teem's copy. Nrrd structs are released with nrrdNuke (Teem's data) or
/// nrrdNix (our data wrapped for writing) on every path.

#include <OpenSG/OSGNRRDCodec.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGVolumeHeaders.h>

#include <teem/nrrd.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <string>

OSG_BEGIN_NAMESPACE

namespace
{

const char Magic[] = "NRRD000";

/// Releases Teem's objects on every way out.
struct NrrdHolder
{
    Nrrd        *nrrd;
    NrrdIoState *nio;
    bool         ownsData;

    explicit NrrdHolder(bool owns = true)
        : nrrd(nrrdNew()), nio(nrrdIoStateNew()), ownsData(owns)
    {
    }

    ~NrrdHolder(void)
    {
        if(ownsData)
            nrrdNuke(nrrd);
        else
            nrrdNix(nrrd);
        nrrdIoStateNix(nio);
    }

    NrrdHolder(const NrrdHolder &) = delete;
    NrrdHolder &operator=(const NrrdHolder &) = delete;
};

/// A FILE on a memory block, closed on every way out.
struct MemoryFile
{
    FILE *file;

    MemoryFile(const UInt8 *data, UInt64 size)
        : file(size ? fmemopen(const_cast<UInt8 *>(data), size_t(size), "rb")
                    : NULL)
    {
    }

    ~MemoryFile(void)
    {
        if(file != NULL)
            fclose(file);
    }

    MemoryFile(const MemoryFile &) = delete;
    MemoryFile &operator=(const MemoryFile &) = delete;
};

/// Logs Teem's last (innermost) message and clears its store.
void logTeemError(const char *what)
{
    char       *text    = biffGetDone(NRRD);
    std::string message = text != NULL ? text : "";

    free(text);

    while(!message.empty() &&
          std::isspace(static_cast<unsigned char>(message.back())))
        message.erase(message.size() - 1);

    std::string::size_type nl = message.find_last_of('\n');
    if(nl != std::string::npos)
        message = message.substr(nl + 1);

    FWARNING(("NRRD: %s: %s\n", what, message.c_str()));
}

void quietTeem(void)
{
    // Teem would otherwise print progress lines to stderr
    nrrdStateVerboseIO = 0;
}

/// True when the first line is a NRRD magic ("NRRD0001" to "NRRD0009" or
/// "NRRD00.01", optionally ended by CR LF). Only then does Teem take the
/// file for a NRRD; with anything else it would try its other formats.
bool hasMagic(const UInt8 *data, UInt64 size)
{
    if(data == NULL || size < sizeof(Magic))
        return false;

    UInt64 end = 0;
    while(end < size && end < 16 && data[end] != '\n')
        ++end;
    if(end == size || data[end] != '\n')
        return false;
    if(end > 0 && data[end - 1] == '\r')
        --end;

    const std::string line(reinterpret_cast<const char *>(data), size_t(end));

    return (line.size() == 8 && line.compare(0, 7, Magic) == 0 &&
            line[7] >= '1' && line[7] <= '9') ||
           line == "NRRD00.01";
}

/// The end of the line that starts at pos, and where the next one starts:
/// lines end with LF, CR LF or a lone CR, as Teem reads them.
void lineAt(const UInt8 *data, UInt64 size, UInt64 pos, UInt64 &end,
            UInt64 &next)
{
    end = pos;
    while(end < size && data[end] != '\n' && data[end] != '\r')
        ++end;

    next = end;
    if(next < size && data[next] == '\r')
        ++next;
    if(next < size && data[next] == '\n' && (next == end || data[end] == '\r'))
        ++next;
}

/// A header line that may be one of the fields that point into other
/// files or other bytes: [begin, next).
struct HeaderLine
{
    enum Field
    {
        DataFile,
        LineSkip,
        ByteSkip
    };

    Field  field;
    UInt64 begin;
    UInt64 next;
};

/// Where a header ends and what it holds.
struct HeaderScan
{
    UInt64                  end = 0;       ///< after its empty line, or size
    bool                    ended = false; ///< an empty line ends it
    UInt64                  longest = 0;   ///< the longest line but comments
    std::vector<HeaderLine> lines;
};

/// Teem writes a field's text into fixed buffers of its error messages
/// (1025 bytes, sometimes twice over) and of some parsers (257 bytes): a
/// longer line smashes its stack. Header lines are refused beyond this.
const UInt64 MaxHeaderLine = 256;

/// Scans the header: where it ends (after its first empty line, or at the
/// end of the data) and every line that Teem could take for a "data file",
/// "line skip" or "byte skip" field. Errs on the side of finding too many:
/// case, white space and everything after a NUL are ignored.
HeaderScan scanHeader(const UInt8 *data, UInt64 size)
{
    static const struct
    {
        const char       *squeezed;
        HeaderLine::Field field;
    } fields[] = {{"datafile", HeaderLine::DataFile},
                  {"lineskip", HeaderLine::LineSkip},
                  {"byteskip", HeaderLine::ByteSkip}};

    HeaderScan scan;
    UInt64     pos = 0;

    while(pos < size)
    {
        UInt64 end = 0, next = 0;
        lineAt(data, size, pos, end, next);

        if(end == pos)
        {
            scan.end   = next;
            scan.ended = true;
            return scan;
        }

        if(data[pos] != '#')
            scan.longest = std::max(scan.longest, end - pos);

        std::string squeezed;
        for(UInt64 i = pos; i < end && data[i] != '\0' && squeezed.size() < 8;
            ++i)
        {
            if(!std::isspace(data[i]))
                squeezed += char(std::tolower(data[i]));
        }
        for(const auto &f : fields)
        {
            if(squeezed == f.squeezed)
                scan.lines.push_back(HeaderLine{f.field, pos, next});
        }

        pos = next;
    }
    scan.end = size;
    return scan;
}

/// The lines of one field.
std::vector<HeaderLine> linesOf(const std::vector<HeaderLine> &lines,
                                HeaderLine::Field           field)
{
    std::vector<HeaderLine> found;

    for(const HeaderLine &line : lines)
    {
        if(line.field == field)
            found.push_back(line);
    }
    return found;
}

/// The scanned header without the given lines, ended by an empty line.
std::vector<UInt8> headerWithout(const UInt8 *data, const HeaderScan &scan,
                                 const std::vector<HeaderLine> &drop)
{
    std::vector<UInt8> text;
    UInt64             pos = 0;

    for(const HeaderLine &line : drop)
    {
        text.insert(text.end(), data + pos, data + line.begin);
        pos = line.next;
    }
    text.insert(text.end(), data + pos, data + scan.end);

    // a header that ran to the end of its file gets its empty line
    if(!scan.ended)
    {
        if(!text.empty() && text.back() != '\n' && text.back() != '\r')
            text.push_back('\n');
        text.push_back('\n');
    }
    return text;
}

VolumeElement elementOf(int nrrdType)
{
    switch(nrrdType)
    {
        case nrrdTypeChar:   return VolumeInt8;
        case nrrdTypeUChar:  return VolumeUInt8;
        case nrrdTypeShort:  return VolumeInt16;
        case nrrdTypeUShort: return VolumeUInt16;
        case nrrdTypeUInt:   return VolumeUInt32;
        case nrrdTypeFloat:  return VolumeFloat32;
        case nrrdTypeDouble: return VolumeFloat64;
        default:             return VolumeElementInvalid;
    }
}

int nrrdTypeOf(VolumeElement element)
{
    switch(element)
    {
        case VolumeUInt8:   return nrrdTypeUChar;
        case VolumeUInt16:  return nrrdTypeUShort;
        case VolumeUInt32:  return nrrdTypeUInt;
        case VolumeFloat32: return nrrdTypeFloat;
        default:            return nrrdTypeUnknown;
    }
}

/// The layout a parsed nrrd describes; checks type, axes and size limit.
bool layoutOf(const Nrrd *nrrd, VolumeLayout &layout, UInt64 maxImageBytes)
{
    layout = VolumeLayout();

    layout.element = elementOf(nrrd->type);
    if(layout.element == VolumeElementInvalid)
    {
        FWARNING(("NRRD: voxel type %d is not supported (char, uchar, short, "
                  "ushort, uint, float, double are)\n", nrrd->type));
        return false;
    }

    const unsigned int dim = nrrd->dim;

    if(dim < 1 || dim > 4)
    {
        FWARNING(("NRRD: dimension %u, 1 to 4 are supported\n", dim));
        return false;
    }

    for(unsigned int a = 0; a < dim; ++a)
    {
        if(nrrd->axis[a].size < 1 ||
           nrrd->axis[a].size > size_t(std::numeric_limits<Int32>::max()))
        {
            FWARNING(("NRRD: axis %u has size %zu\n", a, nrrd->axis[a].size));
            return false;
        }
    }

    const int    kind0        = nrrd->axis[0].kind;
    const bool   channelKind  = kind0 != nrrdKindUnknown &&
                                !nrrdKindIsDomain(kind0);
    unsigned int first        = 0;

    if(dim == 4 || (dim >= 2 && channelKind && nrrd->axis[0].size <= 4))
    {
        layout.channels = UInt32(nrrd->axis[0].size);
        first           = 1;
    }

    UInt32 *edges[3] = { &layout.width, &layout.height, &layout.depth };

    for(unsigned int i = 0; i < 3; ++i)
    {
        const unsigned int a = first + i;

        *edges[i] = a < dim ? UInt32(nrrd->axis[a].size) : 1;

        if(a >= dim)
            continue;

        double spacing = 0.0;
        double vector[NRRD_SPACE_DIM_MAX];
        int    status  = nrrdSpacingCalculate(nrrd, a, &spacing, vector);

        // NaN is how Teem says "not given"; 0, infinities and absurd
        // values are checked (and replaced) below
        if((status == nrrdSpacingStatusScalarNoSpace ||
            status == nrrdSpacingStatusScalarWithSpace ||
            status == nrrdSpacingStatusDirection) &&
           !std::isnan(spacing))
        {
            layout.spacing[i] = std::fabs(spacing);
            layout.hasSpacing = true;
        }
    }

    if(layout.hasSpacing)
        volumeCheckSpacing(layout.spacing, "NRRD");

    layout.bigEndian = !volumeHostIsLittleEndian();

    UInt64 fileBytes  = 0;
    UInt64 imageBytes = 0;

    if(!volumeByteCounts(layout, fileBytes, imageBytes, "NRRD"))
        return false;

    if(imageBytes > maxImageBytes)
    {
        FWARNING(("NRRD: volume of %llu bytes is larger than the %llu "
                  "allowed here\n",
                  static_cast<unsigned long long>(imageBytes),
                  static_cast<unsigned long long>(maxImageBytes)));
        return false;
    }
    return true;
}

/// Copies Teem's (host order) data into Image's form.
bool takeData(const Nrrd *nrrd, const VolumeLayout &layout,
              std::vector<UInt8> &voxels)
{
    UInt64 fileBytes  = 0;
    UInt64 imageBytes = 0;

    if(!volumeByteCounts(layout, fileBytes, imageBytes, "NRRD"))
        return false;

    const UInt64 have = UInt64(nrrdElementNumber(nrrd)) * nrrdElementSize(nrrd);

    if(nrrd->data == NULL || have != fileBytes)
    {
        FWARNING(("NRRD: read %llu bytes of voxels, expected %llu\n",
                  static_cast<unsigned long long>(have),
                  static_cast<unsigned long long>(fileBytes)));
        return false;
    }

    voxels.resize(size_t(imageBytes));
    return decodeVolumeData(layout, static_cast<const UInt8 *>(nrrd->data),
                            fileBytes, voxels.data(), imageBytes);
}

/// The voxels of the binary encodings, from the bytes after the header:
/// `start` is where Teem left the data (after line skip, and for raw
/// data after byte skip), headerEnd where the header ended.
bool readBinaryData(const UInt8 *data, UInt64 size, UInt64 headerEnd,
                    UInt64 start, const NrrdIoState *nio,
                    VolumeLayout &layout, std::vector<UInt8> &voxels)
{
    UInt64 fileBytes  = 0;
    UInt64 imageBytes = 0;

    if(!volumeByteCounts(layout, fileBytes, imageBytes, "NRRD"))
        return false;

    if(volumeElementSize(layout.element) > 1 &&
       nio->endian != airEndianBig && nio->endian != airEndianLittle)
    {
        FWARNING(("NRRD: the byte order (endian) of %u-byte voxels is not "
                  "given\n", volumeElementSize(layout.element)));
        return false;
    }
    layout.bigEndian = nio->endian == airEndianBig;

    std::vector<UInt8> inflated;
    const UInt8       *block = data + start;

    if(nio->encoding == nrrdEncodingRaw)
    {
        // byte skip -1 puts the data at the end, which must not reach
        // back into the header
        if(start < headerEnd || start > size || size - start < fileBytes)
        {
            FWARNING(("NRRD: the data holds %llu of the %llu bytes of a %u x "
                      "%u x %u volume\n",
                      static_cast<unsigned long long>(
                          start <= size ? size - start : 0),
                      static_cast<unsigned long long>(fileBytes),
                      layout.width, layout.height, layout.depth));
            return false;
        }
    }
    else
    {
        if(nio->byteSkip < 0)
        {
            FWARNING(("NRRD: byte skip -1 needs raw encoding\n"));
            return false;
        }

        const VolumeCompression kind = nio->encoding == nrrdEncodingGzip
                                           ? VolumeZlib
                                           : VolumeBzip2;

        if(start > size ||
           !decompressVolumeData(kind, block, size - start,
                                 UInt64(nio->byteSkip), fileBytes, inflated))
        {
            FWARNING(("NRRD: the %s data is corrupt or short\n",
                      nio->encoding->name));
            return false;
        }
        block = inflated.data();
    }

    try
    {
        voxels.resize(size_t(imageBytes));
    }
    catch(const std::bad_alloc &)
    {
        FWARNING(("NRRD: no memory for %llu bytes of voxels\n",
                  static_cast<unsigned long long>(imageBytes)));
        return false;
    }
    return decodeVolumeData(layout, block, fileBytes, voxels.data(),
                            imageBytes);
}

/// Teem's read of a NRRD in memory, of its header alone or of everything;
/// `end` is where Teem stopped reading.
bool teemRead(const UInt8 *data, UInt64 size, bool headerOnly,
              NrrdHolder &holder, UInt64 &end)
{
    MemoryFile file(data, size);

    if(file.file == NULL)
    {
        FWARNING(("NRRD: can not open the data in memory\n"));
        return false;
    }

    holder.nio->skipData = headerOnly ? AIR_TRUE : AIR_FALSE;

    if(nrrdRead(holder.nrrd, file.file, holder.nio) != 0)
    {
        logTeemError(headerOnly ? "reading the header" : "reading the data");
        return false;
    }

    const long position = std::ftell(file.file);

    end = position > 0 ? UInt64(position) : 0;
    return true;
}

/// Parses the header of a NRRD held in memory that names no data file,
/// and with withData reads its voxels.
bool readFromMemory(const UInt8 *data, UInt64 size, bool withData,
                    VolumeLayout &layout, std::vector<UInt8> *voxels,
                    UInt64 maxImageBytes)
{
    quietTeem();

    const HeaderScan scan = scanHeader(data, size);

    if(!linesOf(scan.lines, HeaderLine::DataFile).empty())
    {
        FWARNING(("NRRD: detached data files can only be read from a "
                  "file\n"));
        return false;
    }
    if(scan.longest > MaxHeaderLine)
    {
        FWARNING(("NRRD: a header line of %llu characters; at most %llu are "
                  "read\n", static_cast<unsigned long long>(scan.longest),
                  static_cast<unsigned long long>(MaxHeaderLine)));
        return false;
    }

    // only the header: Teem allocates nothing for the voxels, but does
    // the line skip and, for raw data, the byte skip
    NrrdHolder header;
    UInt64     start = 0;

    if(!teemRead(data, size, true, header, start) ||
       !layoutOf(header.nrrd, layout, maxImageBytes))
        return false;

    if(!withData)
        return true;

    const NrrdEncoding *encoding = header.nio->encoding;

    if(encoding == nrrdEncodingRaw || encoding == nrrdEncodingGzip ||
       encoding == nrrdEncodingBzip2)
    {
        return readBinaryData(data, size, scan.end, start, header.nio, layout,
                              *voxels);
    }

    if(encoding != nrrdEncodingAscii && encoding != nrrdEncodingHex)
    {
        FWARNING(("NRRD: encoding %s is not supported\n",
                  encoding != NULL ? encoding->name : "(none)"));
        return false;
    }

    // Teem allocates the whole volume before it parses a number: the
    // text must be long enough for every value first (two hex digits a
    // byte; a digit and a separator a value)
    UInt64 fileBytes = 0, imageBytes = 0;
    volumeByteCounts(layout, fileBytes, imageBytes, "NRRD");

    const UInt64 values = fileBytes / volumeElementSize(layout.element);
    const UInt64 needed = encoding == nrrdEncodingHex ? 2 * fileBytes
                                                      : 2 * values - 1;

    if(start > size || size - start < needed)
    {
        FWARNING(("NRRD: %llu bytes of %s text can not hold %llu values\n",
                  static_cast<unsigned long long>(start <= size ? size - start : 0),
                  encoding->name, static_cast<unsigned long long>(values)));
        return false;
    }

    NrrdHolder full;

    return teemRead(data, size, false, full, start) &&
           layoutOf(full.nrrd, layout, maxImageBytes) &&
           takeData(full.nrrd, layout, *voxels);
}

/// Largest NRRD file read into memory: text encodings take a few bytes
/// a value, so a file may be a few times its volume.
UInt64 maxFileBytes(void)
{
    return 4 * volumeMaxBytes() + (UInt64(1) << 20);
}

/// A detached header with its data file behind it, as one attached NRRD
/// in memory: the "data file" line goes, an empty line ends the header.
bool attachDataFile(const char *headerPath, const std::vector<UInt8> &header,
                    const HeaderScan &scan, std::vector<UInt8> &attached)
{
    const std::vector<HeaderLine> dataFileLines =
        linesOf(scan.lines, HeaderLine::DataFile);

    if(dataFileLines.size() != 1)
    {
        FWARNING(("NRRD: %s has %zu data file fields\n", headerPath,
                  dataFileLines.size()));
        return false;
    }

    const HeaderLine &line = dataFileLines[0];
    std::string       text(reinterpret_cast<const char *>(header.data()) +
                               line.begin,
                           size_t(line.next - line.begin));
    text = text.substr(0, text.find('\0'));

    const std::string::size_type colon  = text.find(':');
    const char *const            blanks = " \t\r\n\v\f";
    std::string                  name;

    if(colon != std::string::npos)
    {
        name = text.substr(colon + 1);
        name.erase(0, name.find_first_not_of(blanks));
        name.erase(name.find_last_not_of(blanks) + 1);
    }

    // a list or a numbered series of files: each could be anything
    std::string lowered;
    for(char c : name)
        lowered += char(std::tolower(static_cast<unsigned char>(c)));

    if(name.empty() || lowered.compare(0, 4, "list") == 0 ||
       lowered.compare(0, 8, "skiplist") == 0 ||
       name.find('%') != std::string::npos)
    {
        FWARNING(("NRRD: %s: data file '%s' is not supported (one detached "
                  "data file is)\n", headerPath, name.c_str()));
        return false;
    }

    std::string dataPath;

    if(volumeDataFilePath(headerPath, name, dataPath, "NRRD") !=
       VolumeDataFileFound)
    {
        FWARNING(("NRRD: can not open the data file %s\n", name.c_str()));
        return false;
    }

    attached = headerWithout(header.data(), scan, dataFileLines);

    if(!volumeReadFile(dataPath, 0, maxFileBytes(), false, attached))
    {
        FWARNING(("NRRD: can not read the data file %s\n", name.c_str()));
        return false;
    }
    return true;
}

} // namespace

bool readNRRDHeader(const UInt8 *data, UInt64 size, VolumeLayout &layout)
{
    if(data == NULL || !hasMagic(data, size))
    {
        FWARNING(("NRRD: not a NRRD file (no NRRD000x magic)\n"));
        return false;
    }
    return readFromMemory(data, size, false, layout, NULL, volumeMaxBytes());
}

bool readNRRD(const UInt8 *data, UInt64 size, VolumeLayout &layout,
              std::vector<UInt8> &voxels, UInt64 maxImageBytes)
{
    voxels.clear();

    if(data == NULL || !hasMagic(data, size))
    {
        FWARNING(("NRRD: not a NRRD file (no NRRD000x magic)\n"));
        return false;
    }
    return readFromMemory(data, size, true, layout, &voxels, maxImageBytes);
}

bool readNRRDFile(const char *fileName, VolumeLayout &layout,
                  std::vector<UInt8> &voxels)
{
    voxels.clear();

    std::vector<UInt8> bytes;
    UInt64             fileSize = 0;

    if(fileName == NULL || !volumeFileSize(fileName, fileSize) ||
       !volumeReadFile(fileName, 0, MaxVolumeHeaderBytes, false, bytes))
    {
        FWARNING(("NRRD: can not open %s\n", fileName ? fileName : "(null)"));
        return false;
    }
    if(!hasMagic(bytes.data(), bytes.size()))
    {
        FWARNING(("NRRD: %s is not a NRRD file (no NRRD000x magic)\n",
                  fileName));
        return false;
    }

    const HeaderScan head = scanHeader(bytes.data(), bytes.size());

    if(!head.ended && fileSize > bytes.size())
    {
        FWARNING(("NRRD: the header of %s does not end within %llu bytes\n",
                  fileName,
                  static_cast<unsigned long long>(MaxVolumeHeaderBytes)));
        return false;
    }

    // The sizes are checked on the header alone, before the data is read:
    // the fields that point at other bytes or files are left out of it.
    const std::vector<UInt8> header = headerWithout(bytes.data(), head,
                                                    head.lines);

    if(!readFromMemory(header.data(), header.size(), false, layout, NULL,
                       volumeMaxBytes()))
        return false;

    bytes.clear();
    if(!volumeReadFile(fileName, 0, maxFileBytes(), false, bytes))
    {
        FWARNING(("NRRD: can not read %s\n", fileName));
        return false;
    }

    const HeaderScan scan = scanHeader(bytes.data(), bytes.size());

    if(!linesOf(scan.lines, HeaderLine::DataFile).empty())
    {
        std::vector<UInt8> attached;

        if(!attachDataFile(fileName, bytes, scan, attached))
            return false;
        bytes.swap(attached);
    }

    return readNRRD(bytes.data(), bytes.size(), layout, voxels,
                    volumeMaxBytes());
}

bool writeNRRDFile(const char *fileName, const VolumeLayout &layout,
                   const UInt8 *voxels, UInt64 size, bool gzip)
{
    quietTeem();

    const int type = nrrdTypeOf(layout.element);

    if(type == nrrdTypeUnknown)
    {
        FWARNING(("NRRD: can not write this voxel type\n"));
        return false;
    }

    UInt64 fileBytes  = 0;
    UInt64 imageBytes = 0;

    if(!volumeByteCounts(layout, fileBytes, imageBytes, "NRRD") ||
       fileName == NULL || voxels == NULL || size < imageBytes)
    {
        FWARNING(("NRRD: nothing to write to %s\n",
                  fileName ? fileName : "(null)"));
        return false;
    }

    // Teem only reads the wrapped block; nrrdNix leaves it to us
    NrrdHolder out(false);

    size_t       sizes[4];
    unsigned int dim   = 0;
    int          kinds[4];
    double       space[4];

    if(layout.channels > 1)
    {
        sizes[dim] = layout.channels;
        kinds[dim] = layout.channels == 2 ? nrrdKind2Vector
                   : layout.channels == 3 ? nrrdKindRGBColor
                                          : nrrdKindRGBAColor;
        space[dim] = AIR_NAN;
        ++dim;
    }

    const UInt32 edges[3] = { layout.width, layout.height, layout.depth };

    for(int i = 0; i < 3; ++i, ++dim)
    {
        sizes[dim] = edges[i];
        kinds[dim] = nrrdKindDomain;
        space[dim] = layout.spacing[i];
    }

    if(nrrdWrap_nva(out.nrrd, const_cast<UInt8 *>(voxels), type, dim,
                    sizes) != 0)
    {
        logTeemError(fileName);
        return false;
    }
    nrrdAxisInfoSet_nva(out.nrrd, nrrdAxisInfoKind, kinds);
    nrrdAxisInfoSet_nva(out.nrrd, nrrdAxisInfoSpacing, space);

    out.nio->skipFormatURL = AIR_TRUE;
    if(gzip)
    {
        if(!nrrdEncodingGzip->available())
        {
            FWARNING(("NRRD: this Teem has no gzip encoding\n"));
            return false;
        }
        nrrdIoStateEncodingSet(out.nio, nrrdEncodingGzip);
    }

    if(nrrdSave(fileName, out.nrrd, out.nio) != 0)
    {
        logTeemError(fileName);
        return false;
    }
    return true;
}

OSG_END_NAMESPACE
