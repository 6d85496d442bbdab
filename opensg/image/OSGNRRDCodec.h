/// NRRD volumes through Teem's nrrd library, for the NRRD image file type
/// and for tools that make volumes.
///
/// Only files that start with the NRRD magic ("NRRD000x") are accepted, so
/// Teem's other readers (PNG, PNM, VTK, plain text) are never reached.
/// Every read parses the header first, without voxel memory, and refuses
/// volumes beyond volumeMaxBytes() before anything is allocated for them;
/// reading a file checks the header before the data is read. Teem parses
/// headers and the text encodings (ascii, hex, once the text is long
/// enough for the values); the binary encodings (raw, gzip, bzip2) are
/// read here, into memory that grows with the data. A .nhdr may name one
/// detached data file, relative to itself and, unless ImageFileHandler
/// allows outside data files, inside its folder tree; lists and numbered
/// series of data files are refused. The file names in a header never
/// reach Teem, so it opens no file. Byte skip -1 is for raw data only.
/// Header lines (but comments) longer than 256 characters are refused:
/// Teem copies them into fixed buffers.
///
/// The voxels returned are in the form Image keeps (see
/// decodeVolumeData): host order, signed integers shifted to unsigned,
/// doubles narrowed to floats. The layout describes the file (its
/// element type), with bigEndian set to the host's order. Axes: a 4-D
/// NRRD, or a 2-D/3-D one whose first axis has a non-spatial kind (a
/// colour, vector or list) of size 1 to 4, keeps channels on its first
/// axis; the remaining (up to three) axes are x, y, z. Spacings that are
/// not finite and positive become 1, with a warning.
///
/// Nothing throws; a failure logs one warning ("NRRD: ..." with Teem's
/// message where Teem failed) and answers false.
#ifndef _OSGNRRDCODEC_H_
#define _OSGNRRDCODEC_H_

#include <OpenSG/OSGVolumeHeaders.h>

#include <vector>

OSG_BEGIN_NAMESPACE

/// Parses a NRRD header held in memory. Touches no other file: a header
/// that names detached data files is refused. Allocates no voxel memory.
bool readNRRDHeader(const UInt8 *data, UInt64 size, VolumeLayout &layout);

/// Reads a NRRD with attached data from memory (detached data refused).
/// maxImageBytes lowers the size limit (volumeMaxBytes()) for callers that
/// must stay small.
bool readNRRD(const UInt8 *data, UInt64 size, VolumeLayout &layout,
              std::vector<UInt8> &voxels, UInt64 maxImageBytes = ~UInt64(0));

/// Reads a .nrrd file, or a .nhdr with its detached data.
bool readNRRDFile(const char *fileName, VolumeLayout &layout,
                  std::vector<UInt8> &voxels);

/// Writes voxels in Image's form (element UInt8, UInt16, UInt32 or Float32;
/// host order) with the layout's spacing. A name ending in ".nhdr" gets
/// a detached data file beside it. gzip selects the gzip encoding.
bool writeNRRDFile(const char *fileName, const VolumeLayout &layout,
                   const UInt8 *voxels, UInt64 size, bool gzip = false);

OSG_END_NAMESPACE

#endif
