/// NRRD volumes through Teem's nrrd library, for the NRRD image file type
/// and for tools that make volumes.
///
/// Only files that start with the NRRD magic ("NRRD000x") are accepted, so
/// Teem's other readers (PNG, PNM, VTK, plain text) are never reached.
/// Every read looks at the header first, without voxel memory, and refuses
/// volumes beyond MaxVolumeBytes before Teem allocates anything. Teem
/// handles encodings (raw, gzip, bzip2, ascii, hex), byte order, detached
/// data files (relative to the header's folder) and spacing.
///
/// The voxels returned are in the form Image keeps (see
/// decodeVolumeData): host order, signed integers shifted to unsigned,
/// doubles narrowed to floats. The layout describes the file (its
/// element type), with bigEndian set to the host's order. Axes: a 4-D
/// NRRD, or a 2-D/3-D one whose first axis has a non-spatial kind (a
/// colour, vector or list) of size 1 to 4, keeps channels on its first
/// axis; the remaining (up to three) axes are x, y, z.
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
/// maxImageBytes lowers the size limit for callers that must stay small.
bool readNRRD(const UInt8 *data, UInt64 size, VolumeLayout &layout,
              std::vector<UInt8> &voxels,
              UInt64 maxImageBytes = MaxVolumeBytes);

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
