/// The block routines of the DXT compressor: 4x4 blocks of RGBA bytes to S3TC (DXT1, DXT5).
#ifndef _DXTBLOCKS_H_
#define _DXTBLOCKS_H_

#include <OpenSG/OSGBaseTypes.h>

#include <cstddef>

OSG_BEGIN_NAMESPACE

// A block is 64 bytes of RGBA, 16 pixels row by row. Blocks, images and the
// 16-byte endpoint buffers are meant to start at multiples of 16; the routines
// tolerate other addresses, at no cost on the aligned ones.
//
// Emit* and the block routines write little-endian through `out` and advance it.
// Colour endpoints are RGBA bytes; min and max of the alpha routines are bytes.

/// width and height are multiples of 4; the input has width*4 bytes a row,
/// top row first. outputBytes = bytes written (0 if height < 1). DXT5YCoCg
/// expects pixels already converted by RGBAtoYCoCg.
/// @{
void CompressImageDXT1      (const UInt8 *in, UInt8 *out,
                             Int32 width, Int32 height, Int32 &outputBytes);
void CompressImageDXT5      (const UInt8 *in, UInt8 *out,
                             Int32 width, Int32 height, Int32 &outputBytes);
void CompressImageDXT5YCoCg (const UInt8 *in, UInt8 *out,
                             Int32 width, Int32 height, Int32 &outputBytes);
/// @}

/// Four rows of 16 bytes, stride width*4; _Intrinsics is the SSE2 form.
/// @{
void ExtractBlock_Intrinsics(const UInt8 *in, Int32 width, UInt8 *block);
void ExtractBlock           (const UInt8 *in, Int32 width, UInt8 *block);
/// @}

/// The _Intrinsics form writes 16 bytes to each of minColor and maxColor
/// (the colour in all four double words); the others write 4 bytes,
/// GetMinMaxColorsByBBox only r, g and b.
/// @{
void GetMinMaxColors_Intrinsics(const UInt8 *block, UInt8 *minColor, UInt8 *maxColor);
void GetMinMaxColors           (const UInt8 *block, UInt8 *minColor, UInt8 *maxColor);
void GetMinMaxColorsByLuminance(const UInt8 *block, UInt8 *minColor, UInt8 *maxColor);
void GetMinMaxColorsByBBox     (const UInt8 *block, UInt8 *minColor, UInt8 *maxColor);
void GetMinMaxColorsAlpha      (UInt8 *block,       UInt8 *minColor, UInt8 *maxColor);
/// @}

/// One double word, pixel k in bits 2k and 2k+1.
/// @{
void EmitColorIndices_Intrinsics(const UInt8 *block, const UInt8 *minColor,
                                 const UInt8 *maxColor, UInt8 *&out);
void EmitColorIndices           (const UInt8 *block, const UInt8 *minColor,
                                 const UInt8 *maxColor, UInt8 *&out);
void EmitColorIndicesFast       (const UInt8 *block, const UInt8 *minColor,
                                 const UInt8 *maxColor, UInt8 *&out);
/// @}

/// For minAlpha <= maxAlpha: six bytes, 16 three-bit indices. _Intrinsics
/// emits nothing.
/// @{
void EmitAlphaIndicesFast       (const UInt8 *block, UInt8 minAlpha, UInt8 maxAlpha,
                                 UInt8 *&out);
void EmitAlphaIndices           (const UInt8 *block, UInt8 minAlpha, UInt8 maxAlpha,
                                 UInt8 *&out);
void EmitAlphaIndices_Intrinsics(const UInt8 *block, UInt8 minAlpha, UInt8 maxAlpha,
                                 UInt8 *&out);
/// @}

/// Each pixel to clamp(Co + 128), clamp(Cg + 96), 0, Y; in and out may be the same.
void RGBAtoYCoCg(const UInt8 *in, UInt8 *out, Int32 width, Int32 height);

/// RMS error over r, g, b between `image` (RGBA, top row first) and `other`
/// (RGB, bottom row first, as read back from GL); 0 for an empty image.
Real64 ComputeError(const UInt8 *image, const UInt8 *other, Int32 width, Int32 height);

/// One little-endian value at `out`, which moves past it.
/// @{
void   EmitByte      (UInt8  value, UInt8 *&out);
void   EmitWord      (UInt16 value, UInt8 *&out);
void   EmitDoubleWord(UInt32 value, UInt8 *&out);
/// @}
/// (r >> 3) << 11 | (g >> 2) << 5 | b >> 3.
UInt16 ColorTo565    (const UInt8 *color);
/// Sum of the squared differences of r, g and b.
Int32  ColorDistance (const UInt8 *c1, const UInt8 *c2);
/// r + 2g + b.
Int32  ColorLuminance(const UInt8 *color);
/// Exchanges the four bytes of two colours.
void   SwapColors    (UInt8 *c1, UInt8 *c2);

/// Whether the address is a multiple of 16.
inline bool isAligned16(const void *pointer)
{
    return (reinterpret_cast<std::size_t>(pointer) & 15) == 0;
}

/// Zeroed scratch bytes that start at a multiple of 16, for the block routines.
class DXTAlignedBuffer
{
  public:
    DXTAlignedBuffer(void);
    ~DXTAlignedBuffer(void);

    /// Replaces the contents by `size` zero bytes; false if memory is short.
    bool   allocate(std::size_t size);
    /// The first byte; NULL before allocate.
    UInt8 *data    (void) const { return _data; }

    DXTAlignedBuffer(const DXTAlignedBuffer &)            = delete;
    DXTAlignedBuffer &operator=(const DXTAlignedBuffer &) = delete;

  private:
    UInt8 *_storage;
    UInt8 *_data;
};

OSG_END_NAMESPACE

#endif
