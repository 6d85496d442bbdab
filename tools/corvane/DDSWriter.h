/// Writes S3TC-compressed images as DirectDraw Surface (.dds) files.
#ifndef _CORVANE_DDSWRITER_H_
#define _CORVANE_DDSWRITER_H_

#include <OpenSG/OSGImage.h>

#include <iosfwd>

namespace corvane
{

/// Writes a DXT1 or DXT5 image (one level) as a DDS file: the "DDS " magic,
/// the 124-byte header with the FourCC, then the blocks. DDS keeps the top
/// row first; OpenSG images keep the bottom row first, so the caller
/// compresses a vertically flipped image. False for other pixel formats.
bool writeDDS(const osg::ImagePtr &image, std::ostream &out);

/// A copy of an uncompressed 2-D image with its rows in reverse order.
osg::ImagePtr flipRows(const osg::ImagePtr &image);

} // namespace corvane

#endif
