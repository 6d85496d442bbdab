/// NRRD reading and writing on Teem.
///
/// Teem reports errors through its "biff" message store; every failing
/// call is followed by biffGetDone, which hands us the text and frees
/// Teem's copy. Nrrd structs are released with nrrdNuke (Teem's data) or
/// nrrdNix (our data wrapped for writing) on every path.

#include <OpenSG/OSGNRRDCodec.h>
#include <OpenSG/OSGLog.h>

#include <teem/nrrd.h>

#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
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

/// True when a header line (up to the first empty line) could be a "data
/// file" field. Errs on the side of refusing: case, white space and
/// everything after a NUL are ignored, so whatever Teem would take for
/// that field is found.
bool namesDataFile(const UInt8 *data, UInt64 size)
{
    UInt64 pos = 0;

    while(pos < size)
    {
        UInt64 end = pos;
        while(end < size && data[end] != '\n')
            ++end;

        if(end == pos)
            break; // the empty line that ends the header

        std::string squeezed;
        for(UInt64 i = pos; i < end && data[i] != '\0'; ++i)
        {
            if(!std::isspace(data[i]))
                squeezed += char(std::tolower(data[i]));
        }
        if(squeezed.compare(0, 8, "datafile") == 0)
            return true;

        pos = end + 1;
    }
    return false;
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

        if((status == nrrdSpacingStatusScalarNoSpace ||
            status == nrrdSpacingStatusScalarWithSpace ||
            status == nrrdSpacingStatusDirection) &&
           std::isfinite(spacing) && spacing != 0.0)
        {
            layout.spacing[i] = std::fabs(spacing);
            layout.hasSpacing = true;
        }
    }

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

bool readFromMemory(const UInt8 *data, UInt64 size, bool withData,
                    VolumeLayout &layout, std::vector<UInt8> *voxels,
                    UInt64 maxImageBytes)
{
    quietTeem();

    if(data == NULL || !hasMagic(data, size))
    {
        FWARNING(("NRRD: not a NRRD file (no NRRD000x magic)\n"));
        return false;
    }
    if(namesDataFile(data, size))
    {
        FWARNING(("NRRD: detached data files can only be read from a "
                  "file\n"));
        return false;
    }

    {
        NrrdHolder header;
        MemoryFile file(data, size);

        if(file.file == NULL)
        {
            FWARNING(("NRRD: can not open the data in memory\n"));
            return false;
        }

        header.nio->skipData = AIR_TRUE;

        if(nrrdRead(header.nrrd, file.file, header.nio) != 0)
        {
            logTeemError("reading the header");
            return false;
        }
        if(!layoutOf(header.nrrd, layout, maxImageBytes))
            return false;
    }

    if(!withData)
        return true;

    NrrdHolder full;
    MemoryFile file(data, size);

    if(file.file == NULL)
    {
        FWARNING(("NRRD: can not open the data in memory\n"));
        return false;
    }
    if(nrrdRead(full.nrrd, file.file, full.nio) != 0)
    {
        logTeemError("reading the data");
        return false;
    }
    return layoutOf(full.nrrd, layout, maxImageBytes) &&
           takeData(full.nrrd, layout, *voxels);
}

} // namespace

bool readNRRDHeader(const UInt8 *data, UInt64 size, VolumeLayout &layout)
{
    return readFromMemory(data, size, false, layout, NULL, MaxVolumeBytes);
}

bool readNRRD(const UInt8 *data, UInt64 size, VolumeLayout &layout,
              std::vector<UInt8> &voxels, UInt64 maxImageBytes)
{
    voxels.clear();
    return readFromMemory(data, size, true, layout, &voxels, maxImageBytes);
}

bool readNRRDFile(const char *fileName, VolumeLayout &layout,
                  std::vector<UInt8> &voxels)
{
    voxels.clear();
    quietTeem();

    FILE *probe = fileName != NULL ? std::fopen(fileName, "rb") : NULL;

    if(probe == NULL)
    {
        FWARNING(("NRRD: can not open %s\n", fileName ? fileName : "(null)"));
        return false;
    }

    UInt8  start[16];
    size_t got = std::fread(start, 1, sizeof(start), probe);
    std::fclose(probe);

    if(!hasMagic(start, got))
    {
        FWARNING(("NRRD: %s is not a NRRD file (no NRRD000x magic)\n",
                  fileName));
        return false;
    }

    {
        // first the header alone: the size is checked before Teem
        // allocates the voxels
        NrrdHolder header;

        header.nio->skipData = AIR_TRUE;

        if(nrrdLoad(header.nrrd, fileName, header.nio) != 0)
        {
            logTeemError(fileName);
            return false;
        }
        if(!layoutOf(header.nrrd, layout, MaxVolumeBytes))
            return false;
    }

    NrrdHolder full;

    if(nrrdLoad(full.nrrd, fileName, full.nio) != 0)
    {
        logTeemError(fileName);
        return false;
    }
    return layoutOf(full.nrrd, layout, MaxVolumeBytes) &&
           takeData(full.nrrd, layout, voxels);
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
