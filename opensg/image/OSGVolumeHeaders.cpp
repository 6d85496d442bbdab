/// Volume header parsing and voxel conversion from memory.
///
/// Every number in a header is parsed with strtoll/strtod (defined on
/// overflow, unlike sscanf's %d), every size is multiplied with an
/// overflow check against volumeMaxBytes(), and raw elements are assembled
/// byte by byte, so nothing here depends on the host's byte order or
/// alignment and no header can make the caller allocate or read more than
/// it announced and was allowed.

#include <OpenSG/OSGVolumeHeaders.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGLog.h>

#include <OpenSG/OSGImageFileHandler.h>

#include <bzlib.h>
#include <zlib.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <climits>
#include <cstring>
#include <limits>
#include <new>
#include <sstream>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

OSG_BEGIN_NAMESPACE

namespace
{

const char *const WhiteSpace = " \t\r\n\v\f";

std::string trim(const std::string &text)
{
    std::string::size_type first = text.find_first_not_of(WhiteSpace);

    if(first == std::string::npos)
        return std::string();

    std::string::size_type last = text.find_last_not_of(WhiteSpace);

    return text.substr(first, last - first + 1);
}

std::string lower(std::string text)
{
    for(std::string::size_type i = 0; i < text.size(); ++i)
        text[i] = char(std::tolower(static_cast<unsigned char>(text[i])));

    return text;
}

bool equalsNoCase(const std::string &a, const char *b)
{
    return lower(a) == lower(b);
}

/// Up to maxCount integers separated by white space, read the way scanf's
/// "%d %d ..." reads them: a number followed by other text is taken and
/// ends the list; a number out of range ends it untaken. Returns how many
/// were read.
int parseIntegers(const std::string &text, Int64 *values, int maxCount)
{
    const char *pos   = text.c_str();
    int         count = 0;

    while(count < maxCount)
    {
        while(*pos != '\0' && std::strchr(WhiteSpace, *pos) != NULL)
            ++pos;
        if(*pos == '\0')
            break;

        char *end = NULL;

        errno = 0;
        long long value = std::strtoll(pos, &end, 10);

        if(end == pos || errno == ERANGE)
            break;

        values[count++] = Int64(value);
        pos             = end;

        // like scanf's "%d %d": text glued to a number ends the list
        if(*end != '\0' && std::strchr(WhiteSpace, *end) == NULL)
            break;
    }
    return count;
}

/// As parseIntegers, for floating-point numbers (whatever strtod reads,
/// infinities and NaN included: the caller judges the values).
int parseReals(const std::string &text, Real64 *values, int maxCount)
{
    const char *pos   = text.c_str();
    int         count = 0;

    while(count < maxCount)
    {
        while(*pos != '\0' && std::strchr(WhiteSpace, *pos) != NULL)
            ++pos;
        if(*pos == '\0')
            break;

        char  *end   = NULL;
        double value = std::strtod(pos, &end);

        if(end == pos)
            break;

        values[count++] = value;
        pos             = end;

        if(*end != '\0' && std::strchr(WhiteSpace, *end) == NULL)
            break;
    }
    return count;
}

bool parseBool(const std::string &text, bool &value)
{
    std::string t = lower(trim(text));

    if(t == "true" || t == "1" || t == "yes")
    {
        value = true;
        return true;
    }
    if(t == "false" || t == "0" || t == "no")
    {
        value = false;
        return true;
    }
    return false;
}

/// a * b without overflow, refused above limit.
bool multiplyChecked(UInt64 a, UInt64 b, UInt64 limit, UInt64 &result)
{
    if(a != 0 && b > limit / a)
        return false;

    result = a * b;
    return result <= limit;
}

UInt64 loadElement(const UInt8 *p, UInt32 size, bool bigEndian)
{
    UInt64 value = 0;

    if(bigEndian)
    {
        for(UInt32 i = 0; i < size; ++i)
            value = (value << 8) | p[i];
    }
    else
    {
        for(UInt32 i = size; i > 0; --i)
            value = (value << 8) | p[i - 1];
    }
    return value;
}

void storeElement(UInt8 *p, UInt64 value, UInt32 size, bool bigEndian)
{
    for(UInt32 i = 0; i < size; ++i)
    {
        UInt32 byte = bigEndian ? size - 1 - i : i;

        p[byte] = UInt8(value & 0xFF);
        value >>= 8;
    }
}

/// A key/value line split at the first `separator`, both sides trimmed.
bool splitLine(const std::string &line, char separator,
               std::string &key, std::string &value)
{
    std::string::size_type sep = line.find(separator);

    if(sep == std::string::npos)
        return false;

    key   = trim(line.substr(0, sep));
    value = trim(line.substr(sep + 1));
    return true;
}

const struct
{
    const char   *name;
    VolumeElement element;
}
DATFormats[] =
{
    { "UCHAR",  VolumeUInt8   },
    { "USHORT", VolumeUInt16  },
    { "UINT",   VolumeUInt32  },
    { "ULONG",  VolumeUInt32  }, // 4-byte values, whatever "long" is here
    { "FLOAT",  VolumeFloat32 },
    { "DOUBLE", VolumeFloat64 }
};

const struct
{
    const char   *name;
    VolumeElement element;
}
MetaTypes[] =
{
    { "MET_UCHAR",  VolumeUInt8   },
    { "MET_CHAR",   VolumeInt8    },
    { "MET_USHORT", VolumeUInt16  },
    { "MET_SHORT",  VolumeInt16   },
    { "MET_UINT",   VolumeUInt32  },
    { "MET_FLOAT",  VolumeFloat32 },
    { "MET_DOUBLE", VolumeFloat64 }
};

} // namespace

UInt64 volumeMaxBytes(void)
{
    return ImageFileHandler::the().getMaxImageBytes();
}

// --- element types -----------------------------------------------------------

UInt32 volumeElementSize(VolumeElement element)
{
    switch(element)
    {
        case VolumeInt8:
        case VolumeUInt8:   return 1;
        case VolumeInt16:
        case VolumeUInt16:  return 2;
        case VolumeUInt32:
        case VolumeFloat32: return 4;
        case VolumeFloat64: return 8;
        default:            return 0;
    }
}

UInt32 volumeImageType(VolumeElement element)
{
    switch(element)
    {
        case VolumeInt8:
        case VolumeUInt8:   return GL_UNSIGNED_BYTE;
        case VolumeInt16:
        case VolumeUInt16:  return GL_UNSIGNED_SHORT;
        case VolumeUInt32:  return GL_UNSIGNED_INT;
        case VolumeFloat32:
        case VolumeFloat64: return GL_FLOAT;
        default:            return 0;
    }
}

UInt32 volumeImageComponentSize(VolumeElement element)
{
    switch(element)
    {
        case VolumeInt8:
        case VolumeUInt8:   return 1;
        case VolumeInt16:
        case VolumeUInt16:  return 2;
        case VolumeUInt32:
        case VolumeFloat32:
        case VolumeFloat64: return 4;
        default:            return 0;
    }
}

VolumeElement volumeElementForImageType(UInt32 glType)
{
    switch(glType)
    {
        case GL_UNSIGNED_BYTE:  return VolumeUInt8;
        case GL_UNSIGNED_SHORT: return VolumeUInt16;
        case GL_UNSIGNED_INT:   return VolumeUInt32;
        case GL_FLOAT:          return VolumeFloat32;
        default:                return VolumeElementInvalid;
    }
}

UInt32 volumePixelFormat(UInt32 channels)
{
    switch(channels)
    {
        case 2:  return GL_LUMINANCE_ALPHA;
        case 3:  return GL_RGB;
        case 4:  return GL_RGBA;
        default: return GL_LUMINANCE;
    }
}

UInt32 volumeChannelsOfFormat(UInt32 pixelFormat)
{
    switch(pixelFormat)
    {
        case GL_ALPHA:
        case GL_INTENSITY:
        case GL_LUMINANCE:       return 1;
        case GL_LUMINANCE_ALPHA: return 2;
        case GL_RGB:             return 3;
        case GL_RGBA:            return 4;
        default:                 return 0;
    }
}

Int32 volumeValueOffset(VolumeElement element)
{
    switch(element)
    {
        case VolumeInt8:  return 128;
        case VolumeInt16: return 32768;
        default:          return 0;
    }
}

bool volumeByteCounts(const VolumeLayout &layout,
                      UInt64             &fileBytes,
                      UInt64             &imageBytes,
                      const char         *what)
{
    fileBytes  = 0;
    imageBytes = 0;

    if(layout.width == 0 || layout.height == 0 || layout.depth == 0)
    {
        FWARNING(("%s: volume edge of 0 (%u x %u x %u)\n", what,
                  layout.width, layout.height, layout.depth));
        return false;
    }
    if(layout.channels < 1 || layout.channels > 4)
    {
        FWARNING(("%s: %u channels, 1 to 4 are supported\n", what,
                  layout.channels));
        return false;
    }
    if(volumeElementSize(layout.element) == 0)
    {
        FWARNING(("%s: invalid voxel type\n", what));
        return false;
    }

    UInt64       voxels     = 0;
    UInt64       components = 0;
    const UInt64 limit      = volumeMaxBytes();

    if(!multiplyChecked(layout.width, layout.height, limit, voxels) ||
       !multiplyChecked(voxels, layout.depth, limit, voxels) ||
       !multiplyChecked(voxels, layout.channels, limit, components) ||
       !multiplyChecked(components, volumeElementSize(layout.element),
                        limit, fileBytes) ||
       !multiplyChecked(components, volumeImageComponentSize(layout.element),
                        limit, imageBytes))
    {
        FWARNING(("%s: volume of %u x %u x %u voxels with %u channels is "
                  "larger than the %llu bytes allowed\n", what,
                  layout.width, layout.height, layout.depth, layout.channels,
                  static_cast<unsigned long long>(limit)));
        fileBytes  = 0;
        imageBytes = 0;
        return false;
    }
    return true;
}

// --- voxel conversion ----------------------------------------------------------

bool decodeVolumeData(const VolumeLayout &layout,
                      const UInt8 *src, UInt64 srcSize,
                      UInt8 *dst, UInt64 dstSize)
{
    UInt64 fileBytes  = 0;
    UInt64 imageBytes = 0;

    if(!volumeByteCounts(layout, fileBytes, imageBytes, "decodeVolumeData"))
        return false;

    if(srcSize < fileBytes || dstSize < imageBytes ||
       (fileBytes != 0 && (src == NULL || dst == NULL)))
    {
        FWARNING(("decodeVolumeData: %llu bytes given, %llu needed\n",
                  static_cast<unsigned long long>(srcSize),
                  static_cast<unsigned long long>(fileBytes)));
        return false;
    }

    const UInt32 inSize  = volumeElementSize(layout.element);
    const UInt64 count   = fileBytes / inSize;
    const bool   big     = layout.bigEndian;
    const bool   hostBig = !volumeHostIsLittleEndian();

    switch(layout.element)
    {
        case VolumeUInt8:
            if(dst != src)
                std::memcpy(dst, src, count);
            break;

        case VolumeInt8:
            for(UInt64 i = 0; i < count; ++i)
                dst[i] = UInt8(src[i] ^ 0x80);
            break;

        case VolumeUInt16:
        case VolumeInt16:
        {
            const UInt16 flip = layout.element == VolumeInt16 ? 0x8000 : 0;

            if(big == hostBig && flip == 0)
            {
                if(dst != src)
                    std::memcpy(dst, src, fileBytes);
                break;
            }
            for(UInt64 i = 0; i < count; ++i)
            {
                UInt16 v = UInt16(loadElement(src + 2 * i, 2, big) ^ flip);
                std::memcpy(dst + 2 * i, &v, 2);
            }
            break;
        }

        case VolumeUInt32:
        case VolumeFloat32:
            if(big == hostBig)
            {
                if(dst != src)
                    std::memcpy(dst, src, fileBytes);
                break;
            }
            for(UInt64 i = 0; i < count; ++i)
            {
                UInt32 v = UInt32(loadElement(src + 4 * i, 4, big));
                std::memcpy(dst + 4 * i, &v, 4);
            }
            break;

        case VolumeFloat64:
            for(UInt64 i = 0; i < count; ++i)
            {
                UInt64 bits = loadElement(src + 8 * i, 8, big);
                double d;
                std::memcpy(&d, &bits, 8);

                // out-of-range narrowing is undefined; saturate to infinity
                float f;
                if(d > double(FLT_MAX))
                    f = std::numeric_limits<float>::infinity();
                else if(d < -double(FLT_MAX))
                    f = -std::numeric_limits<float>::infinity();
                else
                    f = float(d);

                std::memcpy(dst + 4 * i, &f, 4);
            }
            break;

        default:
            return false;
    }
    return true;
}

bool encodeVolumeData(const VolumeLayout &layout,
                      const UInt8 *src, UInt64 srcSize,
                      std::vector<UInt8> &out)
{
    out.clear();

    UInt64 fileBytes  = 0;
    UInt64 imageBytes = 0;

    if(!volumeByteCounts(layout, fileBytes, imageBytes, "encodeVolumeData"))
        return false;

    const UInt32 size = volumeElementSize(layout.element);

    if(size != volumeImageComponentSize(layout.element) ||
       layout.element == VolumeInt8 || layout.element == VolumeInt16)
    {
        FWARNING(("encodeVolumeData: voxel type can not be written\n"));
        return false;
    }
    if(srcSize < imageBytes || src == NULL)
    {
        FWARNING(("encodeVolumeData: %llu bytes given, %llu needed\n",
                  static_cast<unsigned long long>(srcSize),
                  static_cast<unsigned long long>(imageBytes)));
        return false;
    }

    out.resize(size_t(fileBytes));

    if(size == 1 || layout.bigEndian == !volumeHostIsLittleEndian())
    {
        std::memcpy(out.data(), src, size_t(fileBytes));
        return true;
    }

    const UInt64 count = fileBytes / size;

    for(UInt64 i = 0; i < count; ++i)
    {
        // read the host-order component, store it in the file's order
        UInt64 v = loadElement(src + size * i, size, !volumeHostIsLittleEndian());
        storeElement(out.data() + size * i, v, size, layout.bigEndian);
    }
    return true;
}

namespace
{

/// One zlib or bzip2 stream behind one interface, ended on every way out.
class Decompressor
{
  public:
    enum Status
    {
        More,  ///< needs more input or room (possibly nothing happened)
        End,   ///< the stream ended cleanly
        Failed ///< corrupt data or no memory
    };

    explicit Decompressor(VolumeCompression kind)
        : _kind(kind), _ready(false)
    {
        std::memset(&_zs, 0, sizeof(_zs));
        std::memset(&_bz, 0, sizeof(_bz));
        begin();
    }

    ~Decompressor(void)
    {
        end();
    }

    Decompressor(const Decompressor &) = delete;
    Decompressor &operator=(const Decompressor &) = delete;

    bool ready(void) const
    {
        return _ready;
    }

    /// For the next stream after one that ended (gzip members).
    bool restart(void)
    {
        end();
        return begin();
    }

    /// Consumes what it can of [in, in + inLeft), writes at most room
    /// bytes to out; moves in and inLeft on, tells how much came out.
    Status run(const UInt8 *&in, UInt64 &inLeft, UInt8 *out, UInt64 room,
               UInt64 &produced)
    {
        // both libraries count in 32 bits
        const unsigned int Step = 1u << 30;
        const unsigned int give = unsigned(std::min<UInt64>(inLeft, Step));
        const unsigned int take = unsigned(std::min<UInt64>(room, Step));
        int                code = 0;
        unsigned int       inAfter = 0, outAfter = 0;

        if(_kind == VolumeZlib)
        {
            _zs.next_in   = const_cast<Bytef *>(in);
            _zs.avail_in  = give;
            _zs.next_out  = out;
            _zs.avail_out = take;
            code          = inflate(&_zs, Z_NO_FLUSH);
            inAfter       = _zs.avail_in;
            outAfter      = _zs.avail_out;
        }
        else
        {
            _bz.next_in   = reinterpret_cast<char *>(const_cast<UInt8 *>(in));
            _bz.avail_in  = give;
            _bz.next_out  = reinterpret_cast<char *>(out);
            _bz.avail_out = take;
            code          = BZ2_bzDecompress(&_bz);
            inAfter       = _bz.avail_in;
            outAfter      = _bz.avail_out;
        }

        in       += give - inAfter;
        inLeft   -= give - inAfter;
        produced  = take - outAfter;

        if(_kind == VolumeZlib)
        {
            if(code == Z_STREAM_END)
                return End;
            return code == Z_OK || code == Z_BUF_ERROR ? More : Failed;
        }
        if(code == BZ_STREAM_END)
            return End;
        return code == BZ_OK ? More : Failed;
    }

  private:
    bool begin(void)
    {
        if(_kind == VolumeZlib)
        {
            std::memset(&_zs, 0, sizeof(_zs));
            // 15 window bits + 32: zlib and gzip headers alike
            _ready = inflateInit2(&_zs, 15 + 32) == Z_OK;
        }
        else
        {
            std::memset(&_bz, 0, sizeof(_bz));
            _ready = BZ2_bzDecompressInit(&_bz, 0, 0) == BZ_OK;
        }
        return _ready;
    }

    void end(void)
    {
        if(!_ready)
            return;
        if(_kind == VolumeZlib)
            inflateEnd(&_zs);
        else
            BZ2_bzDecompressEnd(&_bz);
        _ready = false;
    }

    VolumeCompression _kind;
    bool              _ready;
    z_stream          _zs;
    bz_stream         _bz;
};

} // namespace

bool decompressVolumeData(VolumeCompression kind,
                          const UInt8 *src, UInt64 srcSize,
                          UInt64 skip, UInt64 wanted,
                          std::vector<UInt8> &out)
{
    out.clear();

    const char *name = kind == VolumeZlib ? "zlib" : "bzip2";

    Decompressor stream(kind);

    if(!stream.ready())
    {
        FWARNING(("decompressVolumeData: %s initialisation failed\n", name));
        return false;
    }

    // After the wanted bytes the stream is read on to its end, for its
    // checksum, but no further than this: a stream that runs on and on
    // past what was asked for only costs time.
    const UInt64 MaxTail = UInt64(1) << 20;

    const UInt8 *in      = src;
    UInt64       inLeft  = src != NULL ? srcSize : 0;
    UInt64       skipped = 0, kept = 0, tail = 0;
    UInt8        scratch[1 << 16];
    bool         ended   = false, failed = false;

    while(!failed)
    {
        UInt8 *dst  = scratch;
        UInt64 room = sizeof(scratch);

        if(skipped < skip)
        {
            room = std::min<UInt64>(room, skip - skipped);
        }
        else if(kept < wanted)
        {
            if(kept == out.size())
            {
                // grow by what has arrived so far: at most twice the data
                const UInt64 grow = std::min<UInt64>(
                    wanted - kept, std::max<UInt64>(kept, sizeof(scratch)));
                try
                {
                    out.resize(size_t(kept + grow));
                }
                catch(const std::bad_alloc &)
                {
                    failed = true;
                    break;
                }
            }
            dst  = out.data() + kept;
            room = out.size() - kept;
        }
        else if(tail >= MaxTail)
        {
            ended = true;
            break;
        }

        UInt64                   produced = 0;
        const UInt64             before   = inLeft;
        const Decompressor::Status status =
            stream.run(in, inLeft, dst, room, produced);

        if(skipped < skip)
            skipped += produced;
        else if(kept < wanted)
            kept += produced;
        else
            tail += produced;

        if(status == Decompressor::Failed)
        {
            failed = true;
        }
        else if(status == Decompressor::End)
        {
            // another stream may follow, as gzip members do
            const bool needMore = skipped < skip || kept < wanted;

            if(inLeft == 0 || !needMore)
            {
                ended = true;
                break;
            }
            failed = !stream.restart();
        }
        else if(produced == 0 && inLeft == before)
        {
            break; // the input ends inside the stream
        }
    }

    if(failed || !ended || kept < wanted)
    {
        FWARNING(("decompressVolumeData: %s data gave %llu of %llu bytes "
                  "(%s)\n", name, static_cast<unsigned long long>(kept),
                  static_cast<unsigned long long>(wanted),
                  failed ? "corrupt data" : "too short"));
        std::vector<UInt8>().swap(out);
        return false;
    }

    out.resize(size_t(kept));
    return true;
}

bool deflateVolumeData(const UInt8 *src, UInt64 srcSize,
                       std::vector<UInt8> &out)
{
    out.clear();

    uLong bound = compressBound(uLong(srcSize));
    out.resize(bound);

    uLongf length = bound;
    if(compress2(out.data(), &length, src, uLong(srcSize),
                 Z_DEFAULT_COMPRESSION) != Z_OK)
    {
        FWARNING(("deflateVolumeData: zlib compression failed\n"));
        out.clear();
        return false;
    }
    out.resize(length);
    return true;
}

// --- slice thickness -------------------------------------------------------------

std::string formatSliceThickness(const Real64 spacing[3])
{
    std::ostringstream text;

    text << spacing[0] << " " << spacing[1] << " " << spacing[2];
    return text.str();
}

namespace
{

bool usableSpacing(double value)
{
    return std::isfinite(value) && value >= MinVolumeSpacing &&
           value <= MaxVolumeSpacing;
}

} // namespace

bool parseSliceThickness(const std::string &text, Real64 spacing[3])
{
    double values[3] = { 1.0, 1.0, 1.0 };
    int    read      = std::sscanf(text.c_str(), "%lf %lf %lf",
                                   &values[0], &values[1], &values[2]);
    bool   usable    = read == 3;

    for(int i = 0; i < 3; ++i)
    {
        if(i >= read || !usableSpacing(values[i]))
        {
            spacing[i] = 1.0;
            usable     = false;
        }
        else
        {
            spacing[i] = values[i];
        }
    }
    return usable;
}

bool volumeCheckSpacing(Real64 spacing[3], const char *what)
{
    const std::string given = formatSliceThickness(spacing);
    bool              usable = true;

    for(int i = 0; i < 3; ++i)
    {
        if(!usableSpacing(spacing[i]))
        {
            spacing[i] = 1.0;
            usable     = false;
        }
    }
    if(!usable)
    {
        FWARNING(("%s: voxel spacing %s is not three finite positive "
                  "numbers; %s is used\n", what, given.c_str(),
                  formatSliceThickness(spacing).c_str()));
    }
    return usable;
}

// --- DAT -----------------------------------------------------------------------------

void splitDATHeader(const char *text, UInt64 size, VolumeHeaderEntries &entries)
{
    entries.clear();

    // one line buffer of 1024 characters, as DAT readers have always had
    const UInt64 MaxLine = 1023;
    UInt64       pos     = 0;

    while(pos < size)
    {
        const char *begin = text + pos;
        const void *nl    = std::memchr(begin, '\n', size_t(size - pos));
        UInt64      len   = nl ? UInt64(static_cast<const char *>(nl) - begin)
                               : size - pos;

        if(len > MaxLine)
            break;

        std::string line(begin, size_t(len));
        pos += len + 1;

        std::string::size_type colon = line.find(':');

        if(colon == std::string::npos)
        {
            FINFO(("Skip DAT line\n"));
            continue;
        }

        entries.push_back(std::make_pair(line.substr(0, colon),
                                         trim(line.substr(colon + 1))));
    }
}

bool interpretDATHeader(const VolumeHeaderEntries &entries, DATHeader &header)
{
    header              = DATHeader();
    header.entries      = entries;
    header.layout.bigEndian = true; // the format's default byte order

    bool   haveResolution = false;
    Int64  resolution[3]  = { 0, 0, 0 };
    bool   formatValid    = false;
    Int64  channel        = 1;
    Int64  offset         = 0;

    for(VolumeHeaderEntries::const_iterator it = entries.begin();
        it != entries.end(); ++it)
    {
        const std::string &key   = it->first;
        const std::string &value = it->second;

        if(key == "ObjectFileName")
        {
            header.objectFileName = value;
        }
        else if(key == "Resolution")
        {
            Int64 r[3] = { 0, 0, 0 };
            haveResolution = parseIntegers(value, r, 3) == 3;
            for(int i = 0; i < 3; ++i)
                resolution[i] = haveResolution ? r[i] : 0;
        }
        else if(key == "Format")
        {
            formatValid = false;
            for(size_t i = 0; i < sizeof(DATFormats) / sizeof(DATFormats[0]); ++i)
            {
                if(value == DATFormats[i].name)
                {
                    header.layout.element = DATFormats[i].element;
                    formatValid           = true;
                }
            }
            header.formatDouble = formatValid &&
                                  header.layout.element == VolumeFloat64;
        }
        else if(key == "Channel")
        {
            Int64 c = 1;
            channel = parseIntegers(value, &c, 1) == 1 ? c : 1;
        }
        else if(key == "Endian")
        {
            header.layout.bigEndian = value != "LITTLE";
        }
        else if(key == "FileOffset")
        {
            Int64 o = 0;
            offset = parseIntegers(value, &o, 1) == 1 ? o : 0;
        }
        else if(key == "SliceThickness")
        {
            if(!parseSliceThickness(value, header.layout.spacing))
            {
                FWARNING(("DAT: SliceThickness '%s' is not three finite "
                          "positive numbers; %s is used\n", value.c_str(),
                          formatSliceThickness(header.layout.spacing).c_str()));
            }
            header.layout.hasSpacing = true;
        }
        else
        {
            FNOTICE(("Uknown DAT file key: >%s<\n", key.c_str()));
        }
    }

    if(header.objectFileName.empty())
    {
        FWARNING(("Invalid/Missing DAT ObjectFileName\n"));
        return false;
    }

    // edges beyond 32-bit ints are as invalid as 0 or negative ones
    for(int i = 0; i < 3; ++i)
    {
        if(!haveResolution || resolution[i] <= 0 ||
           resolution[i] > std::numeric_limits<Int32>::max())
        {
            FWARNING(("Invalid/Missing DAT Resolution\n"));
            return false;
        }
    }
    header.layout.width  = UInt32(resolution[0]);
    header.layout.height = UInt32(resolution[1]);
    header.layout.depth  = UInt32(resolution[2]);

    if(!formatValid)
    {
        FWARNING(("Invalid/Missing DAT Format\n"));
        return false;
    }

    header.layout.channels = (channel >= 2 && channel <= 4) ? UInt32(channel) : 1;

    if(offset < 0)
    {
        FWARNING(("Invalid DAT FileOffset %lld\n",
                  static_cast<long long>(offset)));
        return false;
    }
    header.fileOffset = UInt64(offset);

    UInt64 fileBytes  = 0;
    UInt64 imageBytes = 0;

    return volumeByteCounts(header.layout, fileBytes, imageBytes, "DAT");
}

bool parseDATHeader(const char *text, UInt64 size, DATHeader &header)
{
    VolumeHeaderEntries entries;

    splitDATHeader(text, size, entries);
    return interpretDATHeader(entries, header);
}

std::string formatDATHeader(const std::string  &objectFileName,
                            const VolumeLayout &layout)
{
    const char *format = NULL;

    switch(layout.element)
    {
        case VolumeUInt8:   format = "UCHAR";  break;
        case VolumeUInt16:  format = "USHORT"; break;
        case VolumeUInt32:  format = "UINT";   break;
        case VolumeFloat32: format = "FLOAT";  break;
        default:            return std::string();
    }

    std::ostringstream text;

    text << "ObjectFileName: " << objectFileName << "\n"
         << "TaggedFileName: ---\n"
         << "Resolution:     " << layout.width << " " << layout.height << " "
         << layout.depth << "\n"
         << "SliceThickness: " << formatSliceThickness(layout.spacing) << "\n"
         << "Format:         " << format << "\n";

    // big endian is what a header without this line means
    if(!layout.bigEndian && volumeElementSize(layout.element) > 1)
        text << "Endian:         LITTLE\n";

    text << "NbrTags:        0\n"
         << "ObjectType:     TEXTURE_VOLUME_OBJECT\n"
         << "ObjectModel:    DENSITY\n"
         << "GridType:       EQUIDISTANT\n";

    if(layout.channels > 1)
        text << "Channel: " << layout.channels << "\n";

    return text.str();
}

// --- MetaImage ---------------------------------------------------------------------

bool parseMetaImageHeader(const char *text, UInt64 size, MetaImageHeader &header)
{
    header = MetaImageHeader();

    UInt64 pos          = 0;
    bool   foundDataKey = false;

    while(pos < size && !foundDataKey)
    {
        const char *begin = text + pos;
        const void *nl    = std::memchr(begin, '\n', size_t(size - pos));
        UInt64      len   = nl ? UInt64(static_cast<const char *>(nl) - begin)
                               : size - pos;
        std::string line(begin, size_t(len));

        pos = nl ? pos + len + 1 : size;

        if(trim(line).empty())
            continue;

        std::string key, value;

        if(!splitLine(line, '=', key, value) || key.empty())
        {
            FWARNING(("MetaImage: header line without '=': >%.40s<\n",
                      trim(line).c_str()));
            return false;
        }

        header.entries.push_back(std::make_pair(key, value));

        if(equalsNoCase(key, "ElementDataFile"))
            foundDataKey = true;
    }

    if(!foundDataKey)
    {
        FWARNING(("MetaImage: no ElementDataFile in the header\n"));
        return false;
    }
    header.headerLength = pos;

    VolumeLayout &layout      = header.layout;
    Int64         nDims       = 0;
    Int64         dims[3]     = { 0, 0, 0 };
    int           dimCount    = 0;
    Real64        spacing[3]  = { 1.0, 1.0, 1.0 };
    int           spaceCount  = 0;
    bool          haveSpacing = false;
    Int64         channels    = 1;
    bool          binary      = true;

    for(VolumeHeaderEntries::const_iterator it = header.entries.begin();
        it != header.entries.end(); ++it)
    {
        const std::string key   = lower(it->first);
        const std::string value = it->second;

        if(key == "objecttype")
        {
            if(!equalsNoCase(value, "Image"))
            {
                FWARNING(("MetaImage: ObjectType %s is not an image\n",
                          value.c_str()));
                return false;
            }
        }
        else if(key == "ndims")
        {
            if(parseIntegers(value, &nDims, 1) != 1 || nDims < 1 || nDims > 3)
            {
                FWARNING(("MetaImage: NDims %s, 1 to 3 are supported\n",
                          value.c_str()));
                return false;
            }
        }
        else if(key == "dimsize")
        {
            dimCount = parseIntegers(value, dims, 3);
        }
        else if(key == "elementspacing" ||
                (key == "elementsize" && !haveSpacing))
        {
            // ElementSpacing wins over ElementSize, whatever the order
            spaceCount  = parseReals(value, spacing, 3);
            haveSpacing = key == "elementspacing";
            layout.hasSpacing = true;
        }
        else if(key == "elementtype")
        {
            layout.element = VolumeElementInvalid;
            for(size_t i = 0; i < sizeof(MetaTypes) / sizeof(MetaTypes[0]); ++i)
            {
                if(equalsNoCase(value, MetaTypes[i].name))
                    layout.element = MetaTypes[i].element;
            }
            if(layout.element == VolumeElementInvalid)
            {
                FWARNING(("MetaImage: ElementType %s is not supported\n",
                          value.c_str()));
                return false;
            }
        }
        else if(key == "elementnumberofchannels")
        {
            if(parseIntegers(value, &channels, 1) != 1 ||
               channels < 1 || channels > 4)
            {
                FWARNING(("MetaImage: ElementNumberOfChannels %s, 1 to 4 "
                          "are supported\n", value.c_str()));
                return false;
            }
        }
        else if(key == "elementbyteordermsb" || key == "binarydatabyteordermsb")
        {
            if(!parseBool(value, layout.bigEndian))
            {
                FWARNING(("MetaImage: bad %s value %s\n",
                          it->first.c_str(), value.c_str()));
                return false;
            }
        }
        else if(key == "binarydata")
        {
            if(!parseBool(value, binary))
            {
                FWARNING(("MetaImage: bad BinaryData value %s\n", value.c_str()));
                return false;
            }
        }
        else if(key == "compresseddata")
        {
            if(!parseBool(value, header.compressed))
            {
                FWARNING(("MetaImage: bad CompressedData value %s\n",
                          value.c_str()));
                return false;
            }
        }
        else if(key == "compresseddatasize")
        {
            Int64 s = 0;
            if(parseIntegers(value, &s, 1) != 1 || s < 0)
            {
                FWARNING(("MetaImage: bad CompressedDataSize %s\n",
                          value.c_str()));
                return false;
            }
            header.compressedSize = UInt64(s);
        }
        else if(key == "headersize")
        {
            if(parseIntegers(value, &header.headerSize, 1) != 1 ||
               header.headerSize < -1)
            {
                FWARNING(("MetaImage: bad HeaderSize %s\n", value.c_str()));
                return false;
            }
        }
        else if(key == "elementdatafile")
        {
            header.dataFile = value;
        }
        // everything else (Offset, TransformMatrix, AnatomicalOrientation,
        // ElementMin/Max ...) does not change how the voxels are read
    }

    if(nDims == 0)
    {
        FWARNING(("MetaImage: NDims missing\n"));
        return false;
    }
    if(dimCount != nDims)
    {
        FWARNING(("MetaImage: DimSize needs %d positive sizes\n", int(nDims)));
        return false;
    }
    for(int i = 0; i < dimCount; ++i)
    {
        if(dims[i] <= 0 || dims[i] > std::numeric_limits<Int32>::max())
        {
            FWARNING(("MetaImage: DimSize needs %d positive sizes\n",
                      int(nDims)));
            return false;
        }
    }
    if(layout.hasSpacing && spaceCount < nDims)
    {
        FWARNING(("MetaImage: ElementSpacing needs %d numbers\n", int(nDims)));
        return false;
    }
    if(layout.element == VolumeElementInvalid)
    {
        FWARNING(("MetaImage: ElementType missing\n"));
        return false;
    }
    if(!binary)
    {
        FWARNING(("MetaImage: text (BinaryData = False) data is not "
                  "supported\n"));
        return false;
    }

    const std::string &file = header.dataFile;

    if(file.empty() || equalsNoCase(file, "LIST") ||
       file.find('%') != std::string::npos)
    {
        FWARNING(("MetaImage: ElementDataFile %s is not supported (LOCAL or "
                  "one file name)\n", file.c_str()));
        return false;
    }
    header.local = equalsNoCase(file, "LOCAL");

    layout.width    = UInt32(dims[0]);
    layout.height   = nDims > 1 ? UInt32(dims[1]) : 1;
    layout.depth    = nDims > 2 ? UInt32(dims[2]) : 1;
    layout.channels = UInt32(channels);

    for(int i = 0; i < 3; ++i)
        layout.spacing[i] = i < spaceCount ? spacing[i] : 1.0;

    if(layout.hasSpacing)
        volumeCheckSpacing(layout.spacing, "MetaImage");

    UInt64 fileBytes  = 0;
    UInt64 imageBytes = 0;

    return volumeByteCounts(layout, fileBytes, imageBytes, "MetaImage");
}

std::string formatMetaImageHeader(const VolumeLayout &layout,
                                  const std::string  &dataFile,
                                  bool                compressed,
                                  UInt64              compressedSize)
{
    const char *type = NULL;

    for(size_t i = 0; i < sizeof(MetaTypes) / sizeof(MetaTypes[0]); ++i)
    {
        if(MetaTypes[i].element == layout.element)
            type = MetaTypes[i].name;
    }
    if(type == NULL)
        return std::string();

    std::ostringstream text;

    text << "ObjectType = Image\n"
         << "NDims = 3\n"
         << "BinaryData = True\n"
         << "BinaryDataByteOrderMSB = " << (layout.bigEndian ? "True" : "False")
         << "\n"
         << "CompressedData = " << (compressed ? "True" : "False") << "\n";
    if(compressed)
        text << "CompressedDataSize = " << compressedSize << "\n";
    text << "ElementSpacing = " << formatSliceThickness(layout.spacing) << "\n"
         << "DimSize = " << layout.width << " " << layout.height << " "
         << layout.depth << "\n";
    if(layout.channels > 1)
        text << "ElementNumberOfChannels = " << layout.channels << "\n";
    text << "ElementType = " << type << "\n"
         << "ElementDataFile = " << dataFile << "\n";

    return text.str();
}

// --- helpers -------------------------------------------------------------------------

bool volumeReadStream(std::istream &is, UInt64 limit, std::vector<UInt8> &out)
{
    out.clear();

    const size_t Chunk = size_t(1) << 20;

    while(is.good() && out.size() < limit)
    {
        size_t old = out.size();

        out.resize(old + Chunk);
        is.read(reinterpret_cast<char *>(out.data() + old),
                std::streamsize(Chunk));
        out.resize(old + size_t(is.gcount()));
    }
    return !is.bad();
}

int volumeOpenRegularFile(const std::string &path, UInt64 &size,
                          const char *what)
{
    size = 0;

    // O_NONBLOCK: opening a FIFO must not wait for a writer
    const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);

    if(fd < 0)
    {
        FWARNING(("%s: can not open %s (%s)\n", what, path.c_str(),
                  std::strerror(errno)));
        return -1;
    }

    struct stat info;

    if(::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode))
    {
        FWARNING(("%s: %s is not a regular file\n", what, path.c_str()));
        ::close(fd);
        return -1;
    }

    // reads from a regular file never block; plain blocking reads from here
    const int flags = ::fcntl(fd, F_GETFL);
    if(flags != -1)
        ::fcntl(fd, F_SETFL, flags & ~O_NONBLOCK);

    size = UInt64(info.st_size);
    return fd;
}

void volumeCloseFile(int fd)
{
    if(fd >= 0)
        ::close(fd);
}

namespace
{

/// Appends up to maxBytes from fd to out, growing as data arrives.
bool readAppend(int fd, UInt64 maxBytes, std::vector<UInt8> &out)
{
    const size_t Chunk = size_t(1) << 24;
    const UInt64 limit = out.size() + maxBytes;

    while(out.size() < limit)
    {
        const size_t want = size_t(std::min<UInt64>(limit - out.size(), Chunk));
        const size_t old  = out.size();

        out.resize(old + want);

        const ssize_t got = ::read(fd, out.data() + old, want);

        if(got < 0 && errno == EINTR)
        {
            out.resize(old);
            continue;
        }
        out.resize(old + size_t(std::max<ssize_t>(got, 0)));
        if(got < 0)
            return false;
        if(got == 0)
            break;
    }
    return true;
}

bool isGzip(int fd)
{
    UInt8 magic[2] = { 0, 0 };

    return ::pread(fd, magic, 2, 0) == 2 && magic[0] == 0x1F &&
           magic[1] == 0x8B;
}

} // namespace

bool volumeReadFile(const std::string &path, UInt64 offset, UInt64 maxBytes,
                    bool gunzip, std::vector<UInt8> &out)
{
    UInt64    size = 0;
    const int fd   = volumeOpenRegularFile(path, size, "volumeReadFile");

    if(fd < 0)
        return false;

    bool ok = true;

    if(gunzip && isGzip(fd))
    {
        // gzdopen takes the descriptor and gzclose closes it
        gzFile file = gzdopen(fd, "rb");

        if(file == NULL)
        {
            volumeCloseFile(fd);
            return false;
        }

        // A compressed offset can only be skipped by decompressing: that
        // costs what the data holds, never what the header says.
        while(ok && offset > 0)
        {
            UInt8 scratch[65536];
            int   want = int(std::min<UInt64>(offset, sizeof(scratch)));
            int   got  = gzread(file, scratch, unsigned(want));

            if(got < 0)
                ok = false;
            else if(got == 0)
                break;
            offset -= UInt64(got);
        }

        const size_t Chunk = size_t(1) << 24;
        const UInt64 limit = out.size() + maxBytes;

        while(ok && offset == 0 && out.size() < limit)
        {
            size_t want = size_t(std::min<UInt64>(limit - out.size(), Chunk));
            size_t old  = out.size();

            out.resize(old + want);

            int got = gzread(file, out.data() + old, unsigned(want));

            if(got < 0)
            {
                ok  = false;
                got = 0;
            }
            out.resize(old + size_t(got));
            if(size_t(got) < want)
                break;
        }

        gzclose(file);
    }
    else
    {
        // an offset beyond the end leaves nothing to read: no seek needed
        if(offset < size &&
           ::lseek(fd, off_t(offset), SEEK_SET) == off_t(offset))
            ok = readAppend(fd, std::min(maxBytes, size - offset), out);
        volumeCloseFile(fd);
    }

    if(!ok)
        FWARNING(("volumeReadFile: read error in %s\n", path.c_str()));
    return ok;
}

bool volumeFileSize(const std::string &path, UInt64 &size)
{
    const int fd = volumeOpenRegularFile(path, size, "volumeFileSize");

    volumeCloseFile(fd);
    return fd >= 0;
}

bool volumeHostIsLittleEndian(void)
{
    const UInt16 probe = 1;
    UInt8        first = 0;

    std::memcpy(&first, &probe, 1);
    return first == 1;
}

VolumeDataFileResult volumeDataFilePath(const std::string &headerPath,
                                        const std::string &name,
                                        std::string       &path,
                                        const char        *what)
{
    path.clear();

    if(name.empty())
        return VolumeDataFileMissing;

    const bool        absolute = name[0] == '/';
    const std::string folder   = volumeDirectoryOf(headerPath);
    const std::string named    = absolute ? name : folder + name;

    if(ImageFileHandler::the().getAllowOutsideDataFiles())
    {
        path = named;
        return ::access(named.c_str(), F_OK) == 0 ? VolumeDataFileFound
                                                   : VolumeDataFileMissing;
    }

    if(absolute)
    {
        FWARNING(("%s: the data file %s is an absolute path; data files must "
                  "lie in the header's folder (see ImageFileHandler::"
                  "setAllowOutsideDataFiles)\n", what, name.c_str()));
        return VolumeDataFileRefused;
    }

    // compared with every link and ".." resolved
    char resolvedRoot[PATH_MAX];
    char resolvedFile[PATH_MAX];

    if(::realpath(folder.empty() ? "." : folder.c_str(), resolvedRoot) == NULL)
        return VolumeDataFileMissing;
    if(::realpath(named.c_str(), resolvedFile) == NULL)
        return VolumeDataFileMissing;

    std::string root(resolvedRoot);

    if(root.empty() || root[root.size() - 1] != '/')
        root += '/';

    if(std::strncmp(resolvedFile, root.c_str(), root.size()) != 0)
    {
        FWARNING(("%s: the data file %s lies outside the header's folder %s "
                  "(see ImageFileHandler::setAllowOutsideDataFiles)\n", what,
                  name.c_str(), root.c_str()));
        return VolumeDataFileRefused;
    }

    path = resolvedFile;
    return VolumeDataFileFound;
}

std::string volumeDirectoryOf(const std::string &path)
{
    std::string::size_type slash = path.find_last_of('/');

    return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

bool volumeEndsWithNoCase(const std::string &path, const std::string &suffix)
{
    if(path.size() < suffix.size())
        return false;

    for(size_t i = 0; i < suffix.size(); ++i)
    {
        if(std::tolower(static_cast<unsigned char>(
               path[path.size() - suffix.size() + i])) != suffix[i])
            return false;
    }
    return true;
}

std::string volumeBaseNameOf(const std::string &path)
{
    std::string::size_type slash = path.find_last_of('/');

    return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string volumeReplaceSuffix(const std::string &path,
                                const std::string &newSuffix)
{
    std::string::size_type slash = path.find_last_of('/');
    std::string::size_type start = slash == std::string::npos ? 0 : slash + 1;
    std::string::size_type dot   = path.find_last_of('.');

    if(dot == std::string::npos || dot <= start)
        return path + newSuffix;

    return path.substr(0, dot) + newSuffix;
}

std::string volumeOption(const std::string &options, const std::string &name)
{
    std::string::size_type pos    = 0;
    const std::string      wanted = lower(name);

    while(pos <= options.size())
    {
        std::string::size_type end = options.find_first_of(";,", pos);
        if(end == std::string::npos)
            end = options.size();

        std::string key, value;
        if(splitLine(options.substr(pos, end - pos), '=', key, value) &&
           lower(key) == wanted)
        {
            return value;
        }
        pos = end + 1;
    }
    return std::string();
}

OSG_END_NAMESPACE
