/// Plain parsers and voxel conversions behind the volume file types (DAT,
/// MetaImage; NRRD lives in OSGNRRDCodec.h).
///
/// Nothing here knows Image: headers are parsed from memory into a
/// VolumeLayout, raw voxel bytes are converted from memory into the form
/// Image keeps (host byte order, unsigned integers or 32-bit floats). So
/// every step can be fed arbitrary bytes. Only the file helpers at the end
/// open files; the parsers never do.
///
/// Nothing throws. A header that is refused logs one warning and gives
/// false; the caller's output is then unspecified and must not be used.
///
/// Hostile files: every size a header announces is checked against
/// volumeMaxBytes() before anything is allocated or read; memory is sized
/// by the data actually present (read or decompressed so far); data files
/// a header names are regular files inside the header's folder tree unless
/// the application allows more (ImageFileHandler).
#ifndef _OSGVOLUMEHEADERS_H_
#define _OSGVOLUMEHEADERS_H_

#include <OpenSG/OSGBaseTypes.h>

#include <istream>
#include <string>
#include <utility>
#include <vector>

OSG_BEGIN_NAMESPACE

/// Element types a volume file may hold. Signed integers are shifted into
/// the unsigned range on reading (value + 128 or + 32768, so the order of
/// values survives), 64-bit floats are narrowed to 32 bits.
enum VolumeElement
{
    VolumeElementInvalid = 0,
    VolumeInt8,
    VolumeUInt8,
    VolumeInt16,
    VolumeUInt16,
    VolumeUInt32,
    VolumeFloat32,
    VolumeFloat64
};

/// The geometry and encoding of the voxels that follow a header.
/// Voxels run x fastest, then y, then z; the channels of a voxel are
/// interleaved.
struct VolumeLayout
{
    UInt32        width     = 0;
    UInt32        height    = 0;
    UInt32        depth     = 0;
    UInt32        channels  = 1; ///< 1 to 4
    VolumeElement element   = VolumeElementInvalid; ///< as stored in the file
    bool          bigEndian = false; ///< byte order of the stored elements

    /// Voxel spacing along x, y, z; 1 where the header gives none.
    Real64 spacing[3] = {1.0, 1.0, 1.0};
    /// Whether the header gave a spacing at all.
    bool hasSpacing = false;
};

/// Largest voxel block (as stored in the file and as kept in memory) that
/// a header may announce: the image budget of ImageFileHandler
/// (getMaxImageBytes), which Image::set obeys as well and an application
/// may lower.
UInt64 volumeMaxBytes(void);

/// Voxel spacings outside this range (or not finite) fall back to 1 with a
/// warning: the volume code works in 32-bit floats, where such values make
/// extents of 0 or infinity.
const Real64 MinVolumeSpacing = 1e-30;
const Real64 MaxVolumeSpacing = 1e30;

/// A text header (DAT, MetaImage) is a few lines; one that does not end
/// within this many bytes is not taken for one.
const UInt64 MaxVolumeHeaderBytes = UInt64(1) << 20;

/// Bytes of one element as stored; 0 for VolumeElementInvalid.
UInt32 volumeElementSize(VolumeElement element);

/// The image data type an element is read into (GL_UNSIGNED_BYTE,
/// GL_UNSIGNED_SHORT, GL_UNSIGNED_INT or GL_FLOAT); 0 for invalid.
UInt32 volumeImageType(VolumeElement element);

/// Bytes of one component of volumeImageType(element).
UInt32 volumeImageComponentSize(VolumeElement element);

/// The element type that stores an image data type unchanged;
/// VolumeElementInvalid for types no volume file here can hold.
VolumeElement volumeElementForImageType(UInt32 glType);

/// GL_LUMINANCE, GL_LUMINANCE_ALPHA, GL_RGB or GL_RGBA for 1 to 4 channels.
UInt32 volumePixelFormat(UInt32 channels);

/// Channels of a pixel format as a volume stores it: 1 for alpha,
/// intensity and luminance, 2, 3, 4 for LA, RGB, RGBA; 0 for other formats.
UInt32 volumeChannelsOfFormat(UInt32 pixelFormat);

/// What reading added to each stored value, so that stored = file + offset:
/// 128 for VolumeInt8, 32768 for VolumeInt16, else 0.
Int32 volumeValueOffset(VolumeElement element);

/// The byte counts of the voxel block in the file and in memory. False,
/// with a warning that starts with `what`, when an edge is 0, the channel
/// count is not 1 to 4, the element type is invalid, or either count
/// exceeds volumeMaxBytes() (checked without overflow).
bool volumeByteCounts(const VolumeLayout &layout,
                      UInt64             &fileBytes,
                      UInt64             &imageBytes,
                      const char         *what);

/// Converts stored elements into image components: swaps to host order,
/// shifts signed integers, narrows doubles. `src` must hold the layout's
/// fileBytes and `dst` its imageBytes; false (nothing written) otherwise.
/// dst may be src (conversion in place; the block then keeps its size and
/// the voxels are its first imageBytes); other overlaps are not allowed.
bool decodeVolumeData(const VolumeLayout &layout,
                      const UInt8 *src, UInt64 srcSize,
                      UInt8 *dst, UInt64 dstSize);

/// Image components to stored elements in the layout's byte order. Only
/// element types that are image types (UInt8, UInt16, UInt32, Float32)
/// can be encoded. `src` must hold the layout's imageBytes.
bool encodeVolumeData(const VolumeLayout &layout,
                      const UInt8 *src, UInt64 srcSize,
                      std::vector<UInt8> &out);

/// The compressions a voxel block may come in.
enum VolumeCompression
{
    VolumeZlib,  ///< zlib or gzip (the stream's header decides)
    VolumeBzip2
};

/// Decompresses src: drops the first `skip` bytes the stream yields, keeps
/// the next `wanted` bytes in `out`, and reads on to the stream's end so
/// that its checksum is verified (more data after the kept bytes is
/// ignored; streams that follow one another, as gzip members do, count as
/// one). `out` grows with what the stream actually yields, never to
/// `wanted` on the promise of a header. False, with a warning, when the
/// data is corrupt or yields fewer bytes; `out` is then empty.
bool decompressVolumeData(VolumeCompression kind,
                          const UInt8 *src, UInt64 srcSize,
                          UInt64 skip, UInt64 wanted,
                          std::vector<UInt8> &out);

/// zlib-compresses (deflate with a zlib header, as MetaImage expects).
bool deflateVolumeData(const UInt8 *src, UInt64 srcSize,
                       std::vector<UInt8> &out);

/// The "SliceThickness" text: three numbers as a C++ stream prints them by
/// default (6 significant digits), e.g. "1 1 2.5".
std::string formatSliceThickness(const Real64 spacing[3]);

/// Reads "x y z" the way the volume code does ("%lf %lf %lf"); values that
/// are missing, not finite or outside [MinVolumeSpacing, MaxVolumeSpacing]
/// become 1. True iff three usable numbers were read.
bool parseSliceThickness(const std::string &text, Real64 spacing[3]);

/// Sets every spacing that is not finite or outside [MinVolumeSpacing,
/// MaxVolumeSpacing] to 1, with one warning that starts with `what`. True
/// when all three were usable.
bool volumeCheckSpacing(Real64 spacing[3], const char *what);

/// Every "key: value" (DAT) or "key = value" (MetaImage) line of a header,
/// in file order.
typedef std::vector<std::pair<std::string, std::string> > VolumeHeaderEntries;

// --- DAT: a text header naming a raw voxel file ------------------------------

struct DATHeader
{
    VolumeHeaderEntries entries;        ///< every line with a ':'
    std::string         objectFileName; ///< the raw file as written
    VolumeLayout        layout;
    UInt64              fileOffset = 0; ///< bytes to skip in the raw file

    /// "Format: DOUBLE". Such files exist with 8-byte and, written by older
    /// tools, with 4-byte floats; the length of the raw data decides.
    /// layout.element is VolumeFloat64 then.
    bool formatDouble = false;
};

/// Splits DAT text into entries: key = the text before the first ':',
/// verbatim (not trimmed, case kept); value = the rest with surrounding
/// white space removed. Lines without ':' are skipped; a line longer than
/// 1023 characters ends the header. Never fails.
void splitDATHeader(const char *text, UInt64 size, VolumeHeaderEntries &entries);

/// Interprets the entries (a later key overrides an earlier one); unknown
/// keys are noted in the log. Recognised: ObjectFileName, Resolution,
/// Format (UCHAR USHORT UINT ULONG FLOAT DOUBLE), Channel, Endian (LITTLE,
/// anything else big), FileOffset, SliceThickness; the others are kept as
/// entries only.
bool interpretDATHeader(const VolumeHeaderEntries &entries, DATHeader &header);

/// splitDATHeader, then interpretDATHeader.
bool parseDATHeader(const char *text, UInt64 size, DATHeader &header);

/// The header text our writer produces for a raw file named
/// objectFileName (no folder). Layouts the format cannot express (signed or
/// 64-bit elements) give an empty string.
std::string formatDATHeader(const std::string  &objectFileName,
                            const VolumeLayout &layout);

// --- MetaImage: "Key = Value" lines, then the data or a data file name -------

struct MetaImageHeader
{
    VolumeHeaderEntries entries;
    VolumeLayout        layout;

    std::string dataFile;           ///< ElementDataFile as written
    bool        local      = false; ///< ElementDataFile = LOCAL
    Int64       headerSize = 0;     ///< bytes to skip; -1: data ends the file
    bool        compressed = false; ///< zlib-compressed data
    UInt64      compressedSize = 0; ///< CompressedDataSize, 0 if not given

    /// Bytes of header text, through the end of the ElementDataFile line:
    /// where LOCAL data starts.
    UInt64 headerLength = 0;
};

/// Parses a MetaImage header (.mhd, or the head of a .mha). Keys are matched
/// without regard to case; the header ends with the ElementDataFile line.
/// Supported: NDims 1 to 3, DimSize, ElementSpacing (or ElementSize),
/// ElementType MET_UCHAR MET_CHAR MET_USHORT MET_SHORT MET_UINT MET_FLOAT
/// MET_DOUBLE, ElementNumberOfChannels 1 to 4, ElementByteOrderMSB /
/// BinaryDataByteOrderMSB, BinaryData, CompressedData,
/// CompressedDataSize, HeaderSize, ElementDataFile LOCAL or one file name.
bool parseMetaImageHeader(const char *text, UInt64 size, MetaImageHeader &header);

/// Header text for our writer; dataFile is "LOCAL" or a bare file name.
std::string formatMetaImageHeader(const VolumeLayout &layout,
                                  const std::string  &dataFile,
                                  bool                compressed,
                                  UInt64              compressedSize);

// --- small helpers shared by the file types -----------------------------------

/// Opens path for reading without ever blocking (a FIFO opens at once) and
/// keeps it open only when it is a regular file, whose size goes to `size`.
/// Anything else (missing, a directory, FIFO or device) gives -1 with a
/// warning that starts with `what`.
int volumeOpenRegularFile(const std::string &path, UInt64 &size,
                          const char *what);

/// Closes what volumeOpenRegularFile opened.
void volumeCloseFile(int fd);

/// Reads at most maxBytes of the regular file path, starting offset bytes
/// in, and appends them to `out` as they arrive (a short file never costs
/// the memory its header claimed). The offset is skipped by seeking. With
/// gunzip, a gzip file is decompressed on the fly and the offset counts
/// decompressed bytes; other files are read as they are. False, with a
/// warning, when the file is no regular file or can not be read.
bool volumeReadFile(const std::string &path, UInt64 offset, UInt64 maxBytes,
                    bool gunzip, std::vector<UInt8> &out);

/// Reads `is` to its end, or up to about `limit` bytes, into `out` (which
/// is emptied first), growing by 1 MiB steps so that a stream never costs
/// more than it holds. False when the stream reports a read error.
bool volumeReadStream(std::istream &is, UInt64 limit, std::vector<UInt8> &out);

/// The size of a regular file in bytes; false, with a warning, otherwise.
bool volumeFileSize(const std::string &path, UInt64 &size);

/// What became of a data file that a header names.
enum VolumeDataFileResult
{
    VolumeDataFileFound,
    VolumeDataFileMissing, ///< no such file (no warning given)
    VolumeDataFileRefused  ///< outside what the header may name (warned)
};

/// Where the data file `name`, named by the header at headerPath, is:
/// relative names count from the header's folder. Unless ImageFileHandler
/// allows outside data files, absolute names are refused, and the file,
/// with ".." and symbolic links resolved, must lie inside the header's
/// folder tree. `path` is what to open. Whether it is a regular file is
/// checked when it is read.
VolumeDataFileResult volumeDataFilePath(const std::string &headerPath,
                                        const std::string &name,
                                        std::string       &path,
                                        const char        *what);

/// True on little-endian hosts.
bool volumeHostIsLittleEndian(void);

/// The folder part of a path including the trailing '/', or "" if none.
std::string volumeDirectoryOf(const std::string &path);

/// The last path component.
std::string volumeBaseNameOf(const std::string &path);

/// Whether path ends in suffix (given in lower case), ignoring case.
bool volumeEndsWithNoCase(const std::string &path, const std::string &suffix);

/// path with the suffix of its last component (from the last '.') replaced
/// by newSuffix (which includes the dot); appended when there is none.
std::string volumeReplaceSuffix(const std::string &path,
                                const std::string &newSuffix);

/// Value of "name=value" in a ';' or ',' separated option string (names
/// compared without regard to case), or "" when absent.
std::string volumeOption(const std::string &options, const std::string &name);

OSG_END_NAMESPACE

#endif
