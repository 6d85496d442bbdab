/// What the volume file types (DAT, NRRD, MetaImage) share between a
/// parsed VolumeLayout and an Image.
#ifndef _OSGVOLUMEIMAGESUPPORT_H_
#define _OSGVOLUMEIMAGESUPPORT_H_

#include <OpenSG/OSGImageFields.h>
#include <OpenSG/OSGVolumeHeaders.h>

#include <string>
#include <vector>

OSG_BEGIN_NAMESPACE

/// Attachment field that records the offset added to signed voxels when
/// they were read (stored value = file value + offset), e.g. "32768".
extern const char *const VolumeValueOffsetKey;

/// Attachment field "Transform": the voxel-to-world matrix of a volume
/// whose file says where it lies (NIfTI, DICOM), twelve numbers, the three
/// rows of a 3 x 4 matrix. World = M (i, j, k, 1) with i the voxel's
/// column (fastest in memory), j its row, k its slice; world coordinates
/// are millimetres in NIfTI's patient frame (x to the right, y to the
/// front, z up; DICOM's left and back axes are turned over). The voxels
/// themselves keep the file's order.
extern const char *const VolumeTransformKey;

/// The twelve numbers of a transform as the attachment field holds them.
std::string formatVolumeTransform(const Real64 matrix[12]);

/// Reads "Transform" from an image: true when it holds twelve finite
/// numbers.
bool volumeTransformOfImage(const ImagePtr &image, Real64 matrix[12]);

/// Sets image to the volume, in one edit with all fields: pixel format by
/// channels, edges, the image type of the layout's element, voxels given
/// in Image's form (decodeVolumeData). Adds "SliceThickness" when the
/// layout has a spacing and VolumeValueOffsetKey for signed elements.
/// False, with a warning that starts with `what`, if the image gets no
/// storage.
bool volumeStoreInImage(ImagePtr                 &image,
                        const VolumeLayout       &layout,
                        const std::vector<UInt8> &voxels,
                        const char               *what);

/// The layout of an image for writing: level 0 of frame 0, side 0. The
/// element is the image's data type, the channels come from its pixel
/// format, the spacing from its "SliceThickness" field (1 1 1 without
/// one). The byte order is left to the caller. False, with a warning, for
/// images without data, with a data type or pixel format no volume file
/// can hold, or whose bytes per pixel do not match their format (a format
/// changed without set()).
bool volumeLayoutOfImage(const ImagePtr &image,
                         VolumeLayout   &layout,
                         const UInt8   *&data,
                         UInt64         &size,
                         const char     *what);

OSG_END_NAMESPACE

#endif
