/// PNG encoding and decoding on libpng, for the PNG image file type and the
/// screen dump.
///
/// Pixel rows are kept the way Image keeps them: row 0 is the bottom row,
/// so the first (top) row of a PNG file is the last row in `data`. Rows are
/// tightly packed, components interleaved, 16-bit samples in host byte
/// order.
///
/// Nothing here throws: every failure returns false and logs one line
/// ("PNG: <libpng's message>" for errors reported by libpng).
#ifndef _OSGPNGCODEC_H_
#define _OSGPNGCODEC_H_

#include <OpenSG/OSGBaseTypes.h>

#include <iosfwd>
#include <vector>

OSG_BEGIN_NAMESPACE

struct PNGPixels
{
    UInt32 width    = 0;
    UInt32 height   = 0;
    UInt32 channels = 0; ///< 1 grey, 2 grey+alpha, 3 RGB, 4 RGBA
    UInt32 bitDepth = 0; ///< 8 or 16

    /// Resolution from/for the pHYs chunk, in pixels per metre. Reading sets
    /// both to 0 when the file has no pHYs chunk in metres; writing always
    /// stores them. The default is 72 dpi, Image's default resolution.
    UInt32 pixelsPerMeterX = 2835;
    UInt32 pixelsPerMeterY = 2835;

    /// width * height * channels * bitDepth / 8 bytes, bottom row first.
    std::vector<UInt8> data;
};

/// Decodes a PNG. Palettes become RGB, 1/2/4-bit grey becomes 8-bit, a tRNS
/// chunk becomes a full alpha channel; gamma is ignored; interlaced files
/// are de-interlaced. On failure `out` is left empty.
bool readPNG(std::istream &in, PNGPixels &out);

/// Encodes `in` (not interlaced, default compression) as IHDR, pHYs, IDAT,
/// IEND. Bytes in `data` beyond the first image (further mip levels or
/// frames of the caller's image) are ignored.
bool writePNG(std::ostream &out, const PNGPixels &in);

bool readPNGFile(const char *fileName, PNGPixels &out);
bool writePNGFile(const char *fileName, const PNGPixels &in);

/// Conversions between pHYs pixels per metre and Image's dots per inch,
/// rounded to the nearest whole number as the PNG file type does.
Real32 pngPixelsPerMeterToDpi(UInt32 pixelsPerMeter);
UInt32 pngDpiToPixelsPerMeter(Real32 dpi);

OSG_END_NAMESPACE

#endif
