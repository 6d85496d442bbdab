/// Compresses images to S3TC (DXT1, DXT5) at load time, fast rather than well.
#ifndef _DXTCOMPRESSOR_H_
#define _DXTCOMPRESSOR_H_

#include <OpenSG/OSGBaseTypes.h>
#include <OpenSG/OSGImage.h>

class DXTCompressor
{
  public:

    /// What compressImage makes: Auto picks DXT5 for images with alpha,
    /// DXT1 for the others.
    // A fixed underlying type keeps other values well defined: they are
    // refused by compressPixels, not undefined behaviour.
    enum CompressedFormat : osg::Int32
    {
        Auto = 0,
        DXT1 = 1,
        DXT5 = 2
    };

    /// The one compressor of the process.
    static DXTCompressor &the(void);

    /// True if the image's pixel format is one of the four S3TC formats.
    /// The image must not be null.
    bool isDXTCompressed(osg::ImagePtr image);

    /// Compresses the image in place: its edges are raised to multiples of
    /// 4, its data converted to bytes and RGBA, and it takes a compressed
    /// pixel format (Auto: DXT5 with alpha, DXT1 without). False, with a log
    /// line, for a null or 3-D image, one that can't be scaled or converted
    /// (no memory) or that holds no pixels.
    bool compressImage(osg::ImagePtr image, CompressedFormat format = Auto);

    /// Compresses width x height pixels of `in` (GL_RGB, GL_RGBA, GL_BGR or
    /// GL_BGRA bytes, top row first) into `out`: width * height / 2 bytes for
    /// DXT1, width * height for DXT5. Auto is DXT5 for the formats with alpha.
    /// Both edges must be multiples of 4. On false nothing was written.
    bool compressPixels(osg::UInt8              *out,
                        const osg::UInt8        *in,
                        osg::UInt32              width,
                        osg::UInt32              height,
                        osg::Image::PixelFormat  inFormat,
                        CompressedFormat         format);

  private:

    DXTCompressor(void);
    DXTCompressor(const DXTCompressor &)            = delete;
    DXTCompressor &operator=(const DXTCompressor &) = delete;
};

#endif
