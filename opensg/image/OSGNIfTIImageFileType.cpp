#include <OpenSG/OSGNIfTIImageFileType.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGVolumeImageSupport.h>

#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <istream>

OSG_BEGIN_NAMESPACE

namespace
{

const Char8 *niftiSuffixes[] = {"nii", "nii.gz"};

// datatype codes of the NIfTI-1 header
enum
{
    NIfTIUInt8   = 2,
    NIfTIInt16   = 4,
    NIfTIInt32   = 8,
    NIfTIFloat32 = 16,
    NIfTIFloat64 = 64,
    NIfTIRGB24   = 128,
    NIfTIInt8    = 256,
    NIfTIUInt16  = 512,
    NIfTIUInt32  = 768,
    NIfTIRGBA32  = 2304
};

// byte offsets of the header fields the reader and writer use
enum
{
    NIfTIOffSizeofHdr = 0,
    NIfTIOffDim       = 40,
    NIfTIOffDatatype  = 70,
    NIfTIOffBitpix    = 72,
    NIfTIOffPixdim    = 76,
    NIfTIOffVoxOffset = 108,
    NIfTIOffSclSlope  = 112,
    NIfTIOffSclInter  = 116,
    NIfTIOffXyztUnits = 123,
    NIfTIOffQformCode = 252,
    NIfTIOffSformCode = 254,
    NIfTIOffQuatern   = 256, // b, c, d, then the offsets x, y, z
    NIfTIOffSrowX     = 280, // srow_x, srow_y, srow_z, four each
    NIfTIOffMagic     = 344
};

/// Extension flags and data start no earlier than this in a .nii.
const UInt64 NIfTIMinVoxOffset = 352;

struct NIfTIBytes
{
    const UInt8 *data;
    bool         swap;

    void get(UInt32 offset, void *out, UInt32 size) const
    {
        UInt8 *o = static_cast<UInt8 *>(out);

        for(UInt32 i = 0; i < size; ++i)
            o[i] = data[offset + (swap ? size - 1 - i : i)];
    }

    Int16 i16(UInt32 offset) const
    {
        Int16 v;
        get(offset, &v, 2);
        return v;
    }

    Int32 i32(UInt32 offset) const
    {
        Int32 v;
        get(offset, &v, 4);
        return v;
    }

    Real32 f32(UInt32 offset) const
    {
        Real32 v;
        get(offset, &v, 4);
        return v;
    }
};

bool niftiIsGzip(const UInt8 *data, UInt64 size)
{
    return size >= 2 && data[0] == 0x1f && data[1] == 0x8b;
}

/// One stored element as a double (host order taken care of).
Real64 niftiElementValue(const UInt8 *p, VolumeElement element, bool swap)
{
    UInt8 b[8];
    const UInt32 n = volumeElementSize(element);

    for(UInt32 i = 0; i < n; ++i)
        b[i] = p[swap ? n - 1 - i : i];

    switch(element)
    {
        case VolumeInt8:    { Int8   v; std::memcpy(&v, b, 1); return v; }
        case VolumeUInt8:   { UInt8  v; std::memcpy(&v, b, 1); return v; }
        case VolumeInt16:   { Int16  v; std::memcpy(&v, b, 2); return v; }
        case VolumeUInt16:  { UInt16 v; std::memcpy(&v, b, 2); return v; }
        case VolumeUInt32:  { UInt32 v; std::memcpy(&v, b, 4); return v; }
        case VolumeFloat32: { Real32 v; std::memcpy(&v, b, 4); return v; }
        case VolumeFloat64: { Real64 v; std::memcpy(&v, b, 8); return v; }
        default:            return 0.0;
    }
}

/// Narrows to float without the undefined behaviour of an out-of-range cast.
Real32 niftiToFloat(Real64 v)
{
    if(std::isnan(v))
        return v;
    if(v > 3.4028234663852886e38)
        return HUGE_VALF;
    if(v < -3.4028234663852886e38)
        return -HUGE_VALF;
    return Real32(v);
}

/// `count` floats from `offset` on; true when all are finite.
bool niftiFiniteFloats(const NIfTIBytes &b, UInt32 offset, UInt32 count, Real64 *out)
{
    bool finite = true;

    for(UInt32 i = 0; i < count; ++i)
    {
        out[i] = b.f32(offset + 4 * i);
        finite = finite && std::isfinite(out[i]);
    }
    return finite;
}

/// The voxel-to-world matrix of a header whose spacing is known: the
/// sform when sform_code > 0, else the qform when qform_code > 0, else the
/// pixdim scaling. A form with values that are not finite is passed over
/// with a warning.
void niftiTransform(const NIfTIBytes &b, NIfTIHeader &header)
{
    const Real64 *spacing = header.layout.spacing;
    Real64       *m       = header.transform;

    const Real64 scaling[12] = {spacing[0], 0, 0, 0, 0, spacing[1], 0, 0,
                                0, 0, spacing[2], 0};
    std::copy(scaling, scaling + 12, m);
    header.transformSource = 0;

    if(b.i16(NIfTIOffSformCode) > 0)
    {
        Real64 rows[12];

        if(niftiFiniteFloats(b, NIfTIOffSrowX, 12, rows))
        {
            std::copy(rows, rows + 12, m);
            header.transformSource = 2;
            return;
        }
        FWARNING(("NIfTI: the sform holds values that are not finite; it is "
                  "not used\n"));
    }

    if(b.i16(NIfTIOffQformCode) > 0)
    {
        Real64 q[6];

        if(!niftiFiniteFloats(b, NIfTIOffQuatern, 6, q))
        {
            FWARNING(("NIfTI: the qform holds values that are not finite; it "
                      "is not used\n"));
            return;
        }

        // a unit quaternion (a, b, c, d) with a >= 0 computed from the rest
        Real64 qb = q[0], qc = q[1], qd = q[2];
        Real64 qa = 1.0 - (qb * qb + qc * qc + qd * qd);

        if(qa < 1e-7)
        {
            // a 180-degree turn: (b, c, d) is the axis, normalised
            const Real64 n = std::sqrt(qb * qb + qc * qc + qd * qd);
            qa = 0.0;
            if(n > 0.0)
            {
                qb /= n;
                qc /= n;
                qd /= n;
            }
        }
        else
        {
            qa = std::sqrt(qa);
        }

        const Real64 r[9] = {
            qa * qa + qb * qb - qc * qc - qd * qd, 2 * (qb * qc - qa * qd),
            2 * (qb * qd + qa * qc),
            2 * (qb * qc + qa * qd), qa * qa + qc * qc - qb * qb - qd * qd,
            2 * (qc * qd - qa * qb),
            2 * (qb * qd - qa * qc), 2 * (qc * qd + qa * qb),
            qa * qa + qd * qd - qb * qb - qc * qc};

        // qfac (pixdim[0]) -1 turns the slice axis over; 0 counts as 1
        const Real64 qfac  = b.f32(NIfTIOffPixdim) < 0.f ? -1.0 : 1.0;
        const Real64 d[3]  = {spacing[0], spacing[1], spacing[2] * qfac};

        for(UInt32 row = 0; row < 3; ++row)
        {
            for(UInt32 col = 0; col < 3; ++col)
                m[4 * row + col] = r[3 * row + col] * d[col];
            m[4 * row + 3] = q[3 + row];
        }
        header.transformSource = 1;
    }
}

/// Reads the whole of a (possibly gzip-compressed) NIfTI held in memory.
bool readNIfTIMemory(const UInt8 *data, UInt64 size, VolumeLayout &layout,
                     std::vector<UInt8> &voxels, NIfTIHeader &header)
{
    std::vector<UInt8> inflated;

    const UInt8 *head     = data;
    UInt64       headSize = size;

    std::vector<UInt8> headBytes;

    if(niftiIsGzip(data, size))
    {
        // decompressVolumeData insists on the stream's end; a header-only
        // inflate goes through zlib directly
        z_stream zs;
        std::memset(&zs, 0, sizeof(zs));

        if(inflateInit2(&zs, 15 + 32) != Z_OK)
            return false;

        headBytes.resize(NIfTIHeaderBytes);
        zs.next_in   = const_cast<Bytef *>(data);
        zs.avail_in  = uInt(std::min<UInt64>(size, 0x7fffffff));
        zs.next_out  = headBytes.data();
        zs.avail_out = NIfTIHeaderBytes;

        int rc = Z_OK;
        while(zs.avail_out > 0 && rc == Z_OK)
            rc = inflate(&zs, Z_NO_FLUSH);

        headBytes.resize(NIfTIHeaderBytes - zs.avail_out);
        inflateEnd(&zs);

        head     = headBytes.data();
        headSize = headBytes.size();
    }

    if(!parseNIfTIHeader(head, headSize, header))
        return false;

    UInt64 fileBytes  = 0;
    UInt64 imageBytes = 0;

    if(!volumeByteCounts(header.layout, fileBytes, imageBytes, "NIfTI"))
        return false;

    if(niftiIsGzip(data, size))
    {
        if(!decompressVolumeData(VolumeZlib, data, size, header.voxOffset,
                                 fileBytes, inflated))
        {
            FWARNING(("NIfTI: the compressed data is corrupt or short\n"));
            return false;
        }
        return decodeNIfTIVoxels(header, inflated.data(), inflated.size(),
                                 layout, voxels);
    }

    if(header.voxOffset >= size)
    {
        FWARNING(("NIfTI: no voxels after the header\n"));
        return false;
    }

    return decodeNIfTIVoxels(header, data + header.voxOffset,
                             size - header.voxOffset, layout, voxels);
}

/// The voxels into the image, the header's transform into "Transform".
bool niftiStore(ImagePtr &image, const NIfTIHeader &header,
                const VolumeLayout &layout, const std::vector<UInt8> &voxels)
{
    if(!volumeStoreInImage(image, layout, voxels, "NIfTI"))
        return false;

    image->setAttachmentField(VolumeTransformKey,
                              formatVolumeTransform(header.transform));
    return true;
}

} // namespace

bool parseNIfTIHeader(const UInt8 *data, UInt64 size, NIfTIHeader &header)
{
    header = NIfTIHeader();

    if(data == NULL || size < NIfTIHeaderBytes)
    {
        FWARNING(("NIfTI: the header is short (%llu of %u bytes)\n",
                  static_cast<unsigned long long>(size), NIfTIHeaderBytes));
        return false;
    }

    NIfTIBytes b = {data, false};

    if(b.i32(NIfTIOffSizeofHdr) != Int32(NIfTIHeaderBytes))
    {
        b.swap = true;
        if(b.i32(NIfTIOffSizeofHdr) != Int32(NIfTIHeaderBytes))
        {
            FWARNING(("NIfTI: not a NIfTI-1 header (sizeof_hdr is not 348)\n"));
            return false;
        }
    }

    const bool hostLittle = volumeHostIsLittleEndian();

    header.layout.bigEndian = b.swap ? hostLittle : !hostLittle;

    if(std::memcmp(data + NIfTIOffMagic, "ni1\0", 4) == 0)
    {
        FWARNING(("NIfTI: a header with its voxels in a separate .img file "
                  "is not read; convert it to a single .nii\n"));
        return false;
    }
    if(std::memcmp(data + NIfTIOffMagic, "n+1\0", 4) != 0)
    {
        FWARNING(("NIfTI: the magic is not \"n+1\"\n"));
        return false;
    }

    Int16 dim[8];
    for(UInt32 i = 0; i < 8; ++i)
        dim[i] = b.i16(NIfTIOffDim + 2 * i);

    if(dim[0] < 1 || dim[0] > 7)
    {
        FWARNING(("NIfTI: dim[0] is %d, not 1 to 7\n", int(dim[0])));
        return false;
    }

    Int32 edges[3] = {1, 1, 1};

    for(Int32 i = 1; i <= dim[0]; ++i)
    {
        if(dim[i] < 1)
        {
            FWARNING(("NIfTI: dim[%d] is %d; edges must be positive\n", int(i),
                      int(dim[i])));
            return false;
        }
        if(i <= 3)
            edges[i - 1] = dim[i];
        else if(dim[i] > 1)
            header.moreVolumes = true;
    }

    header.layout.width  = UInt32(edges[0]);
    header.layout.height = UInt32(edges[1]);
    header.layout.depth  = UInt32(edges[2]);

    header.datatype = b.i16(NIfTIOffDatatype);

    UInt32 channels = 1;

    switch(header.datatype)
    {
        case NIfTIUInt8:   header.layout.element = VolumeUInt8;   break;
        case NIfTIInt8:    header.layout.element = VolumeInt8;    break;
        case NIfTIInt16:   header.layout.element = VolumeInt16;   break;
        case NIfTIUInt16:  header.layout.element = VolumeUInt16;  break;
        case NIfTIUInt32:  header.layout.element = VolumeUInt32;  break;
        case NIfTIFloat32: header.layout.element = VolumeFloat32; break;
        case NIfTIFloat64: header.layout.element = VolumeFloat64; break;
        case NIfTIRGB24:
            header.layout.element = VolumeUInt8;
            channels              = 3;
            break;
        case NIfTIRGBA32:
            header.layout.element = VolumeUInt8;
            channels              = 4;
            break;
        default:
            FWARNING(("NIfTI: datatype %d is not read (supported: UINT8, "
                      "INT8, INT16, UINT16, UINT32, FLOAT32, FLOAT64, RGB24, "
                      "RGBA32)\n", int(header.datatype)));
            return false;
    }
    header.layout.channels = channels;

    const Real32 voxOffset = b.f32(NIfTIOffVoxOffset);

    // 0 in old writers' files means "right after the extension flags"
    if(voxOffset == 0.f)
    {
        header.voxOffset = NIfTIMinVoxOffset;
    }
    else if(!(voxOffset >= Real32(NIfTIHeaderBytes) &&
              voxOffset <= Real32(MaxVolumeHeaderBytes)) ||
            voxOffset != std::floor(voxOffset))
    {
        FWARNING(("NIfTI: vox_offset %g is no byte offset from %u to %llu\n",
                  double(voxOffset), NIfTIHeaderBytes,
                  static_cast<unsigned long long>(MaxVolumeHeaderBytes)));
        return false;
    }
    else
    {
        header.voxOffset = UInt64(voxOffset);
    }

    for(UInt32 i = 0; i < 3; ++i)
        header.layout.spacing[i] = std::fabs(Real64(b.f32(NIfTIOffPixdim + 4 * (i + 1))));
    header.layout.hasSpacing = true;

    // a single slice or line has no thickness to speak of
    for(UInt32 i = 0; i < 3; ++i)
    {
        if(edges[i] == 1 && !(header.layout.spacing[i] > 0.0))
            header.layout.spacing[i] = 1.0;
    }
    volumeCheckSpacing(header.layout.spacing, "NIfTI: pixdim");
    niftiTransform(b, header);

    const Real64 slope = b.f32(NIfTIOffSclSlope);
    const Real64 inter = b.f32(NIfTIOffSclInter);

    if(std::isfinite(slope) && std::isfinite(inter) && slope != 0.0 &&
       (slope != 1.0 || inter != 0.0))
    {
        header.sclSlope = slope;
        header.sclInter = inter;
        header.scaled   = true;
    }

    UInt64 fileBytes  = 0;
    UInt64 imageBytes = 0;

    if(!volumeByteCounts(header.layout, fileBytes, imageBytes, "NIfTI"))
        return false;

    if(header.scaled)
    {
        VolumeLayout scaled = header.layout;
        scaled.element      = VolumeFloat32;

        if(!volumeByteCounts(scaled, fileBytes, imageBytes, "NIfTI (scaled)"))
            return false;
    }

    return true;
}

bool decodeNIfTIVoxels(const NIfTIHeader &header,
                       const UInt8 *voxels, UInt64 size,
                       VolumeLayout &layout, std::vector<UInt8> &out)
{
    layout = header.layout;

    UInt64 fileBytes  = 0;
    UInt64 imageBytes = 0;

    if(!volumeByteCounts(layout, fileBytes, imageBytes, "NIfTI"))
        return false;

    if(voxels == NULL || size < fileBytes)
    {
        FWARNING(("NIfTI: the file holds %llu of the %llu voxel bytes of a "
                  "%u x %u x %u volume\n",
                  static_cast<unsigned long long>(voxels ? size : 0),
                  static_cast<unsigned long long>(fileBytes), layout.width,
                  layout.height, layout.depth));
        return false;
    }

    if(header.moreVolumes)
        FWARNING(("NIfTI: the file holds more than one volume; reading the "
                  "first\n"));

    if(!header.scaled)
    {
        out.resize(size_t(imageBytes));
        return decodeVolumeData(layout, voxels, fileBytes, out.data(),
                                out.size());
    }

    const UInt32 elementSize = volumeElementSize(layout.element);
    const UInt64 count       = fileBytes / elementSize;
    const bool   swap = layout.bigEndian == volumeHostIsLittleEndian();

    out.resize(size_t(count * sizeof(Real32)));

    Real32 *dst = reinterpret_cast<Real32 *>(out.data());

    for(UInt64 i = 0; i < count; ++i)
    {
        const Real64 v = niftiElementValue(voxels + i * elementSize, layout.element,
                                      swap);
        const Real32 f = niftiToFloat(v * header.sclSlope + header.sclInter);

        std::memcpy(dst + i, &f, sizeof(f));
    }

    layout.element   = VolumeFloat32;
    layout.bigEndian = !volumeHostIsLittleEndian();
    return true;
}

NIfTIImageFileType NIfTIImageFileType::_the("image/x-nifti", niftiSuffixes,
                                            sizeof(niftiSuffixes),
                                            OSG_READ_SUPPORTED |
                                                OSG_WRITE_SUPPORTED);

NIfTIImageFileType &NIfTIImageFileType::the(void)
{
    return _the;
}

NIfTIImageFileType::NIfTIImageFileType(const Char8 *mimeType,
                                       const Char8 *suffixArray[],
                                       UInt16       suffixByteCount,
                                       UInt32       flags)
    : ImageFileType(mimeType, suffixArray, suffixByteCount, flags)
{
}

NIfTIImageFileType::~NIfTIImageFileType(void)
{
}

bool NIfTIImageFileType::read(ImagePtr &image, const Char8 *fileName)
{
    if(image == NullFC || fileName == NULL)
        return false;

    std::vector<UInt8> head;

    if(!volumeReadFile(fileName, 0, NIfTIHeaderBytes, true, head))
    {
        FWARNING(("NIfTI: can not open %s\n", fileName));
        return false;
    }

    NIfTIHeader header;

    if(!parseNIfTIHeader(head.data(), head.size(), header))
        return false;

    UInt64 fileBytes  = 0;
    UInt64 imageBytes = 0;

    if(!volumeByteCounts(header.layout, fileBytes, imageBytes, "NIfTI"))
        return false;

    // gzip data is inflated up to the last voxel and no further
    std::vector<UInt8> block;

    if(!volumeReadFile(fileName, header.voxOffset, fileBytes, true, block))
    {
        FWARNING(("NIfTI: can not read the voxels of %s\n", fileName));
        return false;
    }

    VolumeLayout       layout;
    std::vector<UInt8> voxels;

    if(!decodeNIfTIVoxels(header, block.data(), block.size(), layout, voxels))
        return false;

    block.clear();
    block.shrink_to_fit();

    return niftiStore(image, header, layout, voxels);
}

bool NIfTIImageFileType::read(ImagePtr &image, std::istream &is,
                              const std::string &)
{
    if(image == NullFC)
        return false;

    std::vector<UInt8> bytes;

    // gzip shrinks voxels a great deal; a stream larger than the budget
    // plus a header is not a volume we could keep anyway
    if(!volumeReadStream(is, volumeMaxBytes() + MaxVolumeHeaderBytes, bytes))
    {
        FWARNING(("NIfTI: error reading the stream\n"));
        return false;
    }

    NIfTIHeader        header;
    VolumeLayout       layout;
    std::vector<UInt8> voxels;

    if(!readNIfTIMemory(bytes.data(), bytes.size(), layout, voxels, header))
        return false;

    bytes.clear();
    bytes.shrink_to_fit();

    return niftiStore(image, header, layout, voxels);
}

bool NIfTIImageFileType::validateHeader(const Char8 *fileName,
                                        bool        &implemented)
{
    implemented = true;

    if(fileName == NULL)
        return false;

    std::vector<UInt8> head;

    if(!volumeReadFile(fileName, 0, NIfTIHeaderBytes, true, head) ||
       head.size() < NIfTIHeaderBytes)
        return false;

    Int32 sizeofHdr = 0;
    std::memcpy(&sizeofHdr, head.data(), 4);

    const bool sizeOk = sizeofHdr == Int32(NIfTIHeaderBytes) ||
                        sizeofHdr == Int32(0x5C010000); // 348 swapped

    return sizeOk && (std::memcmp(head.data() + NIfTIOffMagic, "n+1\0", 4) == 0 ||
                      std::memcmp(head.data() + NIfTIOffMagic, "ni1\0", 4) == 0);
}

bool NIfTIImageFileType::write(const ImagePtr &image, const Char8 *fileName)
{
    if(fileName == NULL)
        return false;

    VolumeLayout layout;
    const UInt8 *data = NULL;
    UInt64       size = 0;

    if(!volumeLayoutOfImage(image, layout, data, size,
                            "NIfTIImageFileType::write"))
        return false;

    layout.bigEndian = !volumeHostIsLittleEndian();

    Int16 datatype = 0;
    Int16 bitpix   = 0;

    if(layout.channels == 1)
    {
        switch(layout.element)
        {
            case VolumeUInt8:   datatype = NIfTIUInt8;   bitpix = 8;  break;
            case VolumeUInt16:  datatype = NIfTIUInt16;  bitpix = 16; break;
            case VolumeUInt32:  datatype = NIfTIUInt32;  bitpix = 32; break;
            case VolumeFloat32: datatype = NIfTIFloat32; bitpix = 32; break;
            default: break;
        }
    }
    else if(layout.element == VolumeUInt8 && layout.channels >= 3)
    {
        datatype = layout.channels == 3 ? NIfTIRGB24 : NIfTIRGBA32;
        bitpix   = Int16(8 * layout.channels);
    }

    if(datatype == 0 || layout.width > 32767 || layout.height > 32767 ||
       layout.depth > 32767)
    {
        SWARNING << "NIfTIImageFileType::write : NIfTI-1 can not hold this "
                 << "image (" << layout.channels << " channels, edges up to "
                 << "32767)" << std::endl;
        return false;
    }

    UInt8 head[NIfTIMinVoxOffset];
    std::memset(head, 0, sizeof(head));

    const Int32  sizeofHdr = Int32(NIfTIHeaderBytes);
    const Int16  dim[8]    = {3, Int16(layout.width), Int16(layout.height),
                              Int16(layout.depth), 1, 1, 1, 1};
    const Real32 pixdim[8] = {1.f, Real32(layout.spacing[0]),
                              Real32(layout.spacing[1]),
                              Real32(layout.spacing[2]), 1.f, 1.f, 1.f, 1.f};
    const Real32 voxOffset = Real32(NIfTIMinVoxOffset);
    const Real32 slope     = 1.f;
    const Int16  qform     = 0;
    const Int16  sform     = 1; // scanner: the rows below
    Real32       srow[12]  = {pixdim[1], 0, 0, 0,  0, pixdim[2], 0, 0,
                              0, 0, pixdim[3], 0};
    Real64       transform[12];

    if(volumeTransformOfImage(image, transform))
    {
        for(UInt32 i = 0; i < 12; ++i)
            srow[i] = niftiToFloat(transform[i]);
    }

    std::memcpy(head + NIfTIOffSizeofHdr, &sizeofHdr, 4);
    std::memcpy(head + NIfTIOffDim, dim, sizeof(dim));
    std::memcpy(head + NIfTIOffDatatype, &datatype, 2);
    std::memcpy(head + NIfTIOffBitpix, &bitpix, 2);
    std::memcpy(head + NIfTIOffPixdim, pixdim, sizeof(pixdim));
    std::memcpy(head + NIfTIOffVoxOffset, &voxOffset, 4);
    std::memcpy(head + NIfTIOffSclSlope, &slope, 4);
    head[NIfTIOffXyztUnits] = 2; // millimetres
    std::memcpy(head + NIfTIOffQformCode, &qform, 2);
    std::memcpy(head + NIfTIOffSformCode, &sform, 2);
    std::memcpy(head + NIfTIOffSrowX, srow, sizeof(srow));
    std::memcpy(head + NIfTIOffMagic, "n+1\0", 4);

    std::vector<UInt8> block;

    if(!encodeVolumeData(layout, data, size, block))
        return false;

    if(volumeEndsWithNoCase(fileName, ".gz"))
    {
        gzFile file = gzopen(fileName, "wb");

        bool ok = file != NULL &&
                  gzwrite(file, head, sizeof(head)) == int(sizeof(head));

        for(UInt64 done = 0; ok && done < block.size();)
        {
            const unsigned chunk =
                unsigned(std::min<UInt64>(block.size() - done, 1u << 24));

            ok = gzwrite(file, block.data() + done, chunk) == int(chunk);
            done += chunk;
        }

        if(file != NULL && gzclose(file) != Z_OK)
            ok = false;

        if(!ok)
            SWARNING << "NIfTIImageFileType::write : error writing '"
                     << fileName << "'" << std::endl;
        return ok;
    }

    std::ofstream out(fileName, std::ios::out | std::ios::binary);

    if(!out)
    {
        SWARNING << "NIfTIImageFileType::write : Can not open output stream "
                 << "for file '" << fileName << "'!" << std::endl;
        return false;
    }
    out.write(reinterpret_cast<const char *>(head), sizeof(head));
    out.write(reinterpret_cast<const char *>(block.data()),
              std::streamsize(block.size()));

    if(!out)
    {
        SWARNING << "NIfTIImageFileType::write : error writing '" << fileName
                 << "'" << std::endl;
        return false;
    }
    return true;
}

OSG_END_NAMESPACE
