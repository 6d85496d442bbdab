/// Compresses images to S3TC (DXT1, DXT5) at load time, fast rather than well.
#ifndef _DXTCOMPRESSOR_H_
#define _DXTCOMPRESSOR_H_

#include <OpenSG/OSGBaseTypes.h>

class DXTCompressor
{
  public:

    // A fixed underlying type keeps other values well defined: they are
    // refused by compressPixels, not undefined behaviour.
    enum CompressedFormat : osg::Int32
    {
        Auto = 0,
        DXT1 = 1,
        DXT5 = 2
    };

    // TEMPORARY until OSGImage.h exists: pixel formats are GL enumerants, the
    // values of Image::PixelFormat, which takes this typedef's place.
    typedef osg::UInt32 PixelFormat;

    static DXTCompressor &the(void);

    /// Compresses width x height pixels of `in` (GL_RGB, GL_RGBA, GL_BGR or
    /// GL_BGRA bytes, top row first) into `out`: width * height / 2 bytes for
    /// DXT1, width * height for DXT5. Auto is DXT5 for the formats with alpha.
    /// Both edges must be multiples of 4. On false nothing was written.
    bool compressPixels(osg::UInt8       *out,
                        const osg::UInt8 *in,
                        osg::UInt32       width,
                        osg::UInt32       height,
                        PixelFormat       inFormat,
                        CompressedFormat  format);

    // What compressImage decides and checks besides the Image calls.

    /// The pixel format an image takes: Auto becomes DXT5 (33779) with alpha
    /// and DXT1 (33776) without, DXT1 gives 33777 with alpha, anything else
    /// 33779. `format` becomes what compressPixels is to get.
    static osg::UInt32 resolveFormat(bool hasAlpha, CompressedFormat &format);

    /// An edge raised to the next multiple of 4.
    static osg::UInt32 blockEdge(osg::UInt32 edge);

    /// One of the four S3TC formats (isDXTCompressed).
    static bool isDXTFormat (osg::UInt32 pixelFormat);
    /// DXT1 with or without alpha: compressImage has nothing to do.
    static bool isDXT1Format(osg::UInt32 pixelFormat);

    // Each check logs compressImage's refusal and returns false.
    static bool checkImage      (bool exists, osg::UInt32 depth);
    static bool checkSize       (osg::UInt32 width, osg::UInt32 height);
    static bool checkDataType   (osg::UInt32 dataType);
    static bool checkPixelFormat(osg::UInt32 pixelFormat);

  private:

    DXTCompressor(void);
    DXTCompressor(const DXTCompressor &)            = delete;
    DXTCompressor &operator=(const DXTCompressor &) = delete;
};

#endif
