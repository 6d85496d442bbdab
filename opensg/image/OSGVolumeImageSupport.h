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
