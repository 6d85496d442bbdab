/// An image in memory: 1-D, 2-D or 3-D pixels with mip levels, cube sides
/// and animation frames, in the layout OpenGL uploads.
///
/// Layout of the `pixel` block, outermost first: frame, side, mip level,
/// slice, row, pixel, component. Row 0 is the bottom row; rows and slices
/// are tightly packed; multi-byte components are in host byte order.
///
/// `bpp` and `dimension` are derived only by set() and setData(); changing
/// `pixelFormat` or `dataType` through the field setters keeps the old
/// bytes per pixel until the next set(). Any finished edit of an image is
/// passed on to the texture chunks listed in `parents`: an edit of `pixel`
/// alone re-uploads their texels, every other edit re-creates the texture.
#ifndef _OSGIMAGE_H_
#define _OSGIMAGE_H_

#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGImageBase.h>
#include <OpenSG/OSGReal16.h>

#include <string>
#include <vector>

OSG_BEGIN_NAMESPACE

class Image : public ImageBase
{
  private:
    typedef ImageBase Inherited;

  public:
    /// Pixel formats; the values are the GL enumerants stored in pixelFormat.
    enum PixelFormat
    {
        OSG_INVALID_PF                 = 0,
        OSG_A_PF                       = GL_ALPHA,
        OSG_I_PF                       = GL_INTENSITY,
        OSG_L_PF                       = GL_LUMINANCE,
        OSG_LA_PF                      = GL_LUMINANCE_ALPHA,
        OSG_BGR_PF                     = GL_BGR,
        OSG_BGRA_PF                    = GL_BGRA,
        OSG_RGB_DXT1                   = GL_COMPRESSED_RGB_S3TC_DXT1_EXT,
        OSG_RGBA_DXT1                  = GL_COMPRESSED_RGBA_S3TC_DXT1_EXT,
        OSG_RGBA_DXT3                  = GL_COMPRESSED_RGBA_S3TC_DXT3_EXT,
        OSG_RGBA_DXT5                  = GL_COMPRESSED_RGBA_S3TC_DXT5_EXT,
        OSG_RGB_PF                     = GL_RGB,
        OSG_RGBA_PF                    = GL_RGBA,
        OSG_ALPHA_INTEGER_PF           = GL_ALPHA_INTEGER_EXT,
        OSG_RGB_INTEGER_PF             = GL_RGB_INTEGER_EXT,
        OSG_RGBA_INTEGER_PF            = GL_RGBA_INTEGER_EXT,
        OSG_BGR_INTEGER_PF             = GL_BGR_INTEGER_EXT,
        OSG_BGRA_INTEGER_PF            = GL_BGRA_INTEGER_EXT,
        OSG_LUMINANCE_INTEGER_PF       = GL_LUMINANCE_INTEGER_EXT,
        OSG_LUMINANCE_ALPHA_INTEGER_PF = GL_LUMINANCE_ALPHA_INTEGER_EXT
    };

    /// Component types; the values are the GL enumerants stored in dataType.
    enum Type
    {
        OSG_INVALID_IMAGEDATATYPE = GL_NONE,
        OSG_UINT8_IMAGEDATA       = GL_UNSIGNED_BYTE,
        OSG_UINT16_IMAGEDATA      = GL_UNSIGNED_SHORT,
        OSG_UINT32_IMAGEDATA      = GL_UNSIGNED_INT,
        OSG_FLOAT16_IMAGEDATA     = GL_HALF_FLOAT_NV,
        OSG_FLOAT32_IMAGEDATA     = GL_FLOAT,
        OSG_INT16_IMAGEDATA       = GL_SHORT,
        OSG_INT32_IMAGEDATA       = GL_INT
    };

    enum ResUnit
    {
        OSG_RESUNIT_INVALID = 0,
        OSG_RESUNIT_NONE    = 1,
        OSG_RESUNIT_INCH    = 2
    };

    virtual void changed(BitVector whichField, UInt32 origin);

    /// Logs one line at LOG_LOG level; the arguments are not used.
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    // --- construction ------------------------------------------------------

    /// Sets format, edges, counts and type, sizes the pixel block and copies
    /// getSize() bytes from data when it is given (new storage is zeroed).
    /// Counts below 1 become 1; an edge of 0 or less gives an empty image
    /// (edge 0, no pixels). Note that type falls back to GL_UNSIGNED_BYTE
    /// when it is not passed. True iff the image has pixel storage after the
    /// call, so allocMem false always answers false.
    bool set(UInt32       pixelFormat,
             Int32        width,
             Int32        height      = 1,
             Int32        depth       = 1,
             Int32        mipmapCount = 1,
             Int32        frameCount  = 1,
             Time         frameDelay  = 0.0,
             const UInt8 *data        = 0,
             Int32        type        = OSG_UINT8_IMAGEDATA,
             bool         allocMem    = true,
             Int32        sideCount   = 1);

    /// Copies format, geometry, type and pixels of another image.
    bool set(ImagePtr image);

    /// Re-derives the sizes, makes sure the block fits and copies getSize()
    /// bytes from data. A null data pointer is refused.
    bool setData(const UInt8 *data = 0);

    /// Drops the pixel block (no edit is opened).
    void clearData(void);

    // --- processing ----------------------------------------------------------

    /// Converts every pixel to another format (A, I, L, LA, RGB, RGBA, BGR,
    /// BGRA), into destination or, without one, into this image. Reformatting
    /// this image to the format it already has does nothing and answers
    /// false.
    bool reformat(const PixelFormat pixelFormat,
                  ImagePtr          destination = NullFC);
    /// The same for a GL enumerant, e.g. reformat(GL_RGBA).
    bool reformat(UInt32 pixelFormat, ImagePtr destination = NullFC);

    /// Converts the components to another data type in place. Unsigned
    /// integer to narrower unsigned integer stretches the actual value range
    /// to the full target range; floats are taken as 0..1.
    bool convertDataTypeTo(Int32 destDataType = OSG_UINT8_IMAGEDATA);

    /// Nearest-neighbour resampling of every level, side and frame to the new
    /// edges, into destination or into this image. Compressed images are
    /// refused.
    bool scale(Int32    width,
               Int32    height      = 1,
               Int32    depth       = 1,
               ImagePtr destination = NullFC);

    /// Scales every edge up to the next power of two.
    bool scaleNextPower2(ImagePtr destination = NullFC);

    /// Swaps the byte order of every component (an edit of PixelFieldMask).
    void swapDataEndian(void);

    /// Every byte of the block becomes pixelValue (no edit is opened).
    virtual void clear(UChar8 pixelValue = 0);
    /// Every 4-byte component becomes value (no edit is opened).
    virtual void clearFloat(Real32 value = 0.0);
    /// Every 2-byte component becomes value (no edit is opened).
    virtual void clearHalf(Real16 value = Real16(0.0f));

    // --- files -----------------------------------------------------------------

    /// Reads through ImageFileHandler; the type comes from the suffix.
    bool read(const Char8 *fileName);
    /// Writes through ImageFileHandler; the type comes from the suffix.
    bool write(const Char8 *fileName);

    // --- queries -----------------------------------------------------------------

    bool isValid(void) const;
    bool hasAlphaChannel(void) const;
    bool hasColorChannel(void) const;
    bool hasCompressedData(void) const;
    bool isAlphaBinary(void) const;

    /// Components per pixel of the pixel format; 0 (and a warning) when the
    /// format is unknown.
    UInt8 getComponents(void) const;

    /// Bytes of the first (or all) mip levels times sides times frames.
    unsigned long getSize(bool withMipmap = true,
                          bool withFrames = true,
                          bool withSides  = true) const;

    /// The block of one mip level of one side of one frame; NULL while the
    /// image has no pixels. Indices are not checked.
    const UInt8 *getData(UInt32 mipmapNum = 0,
                         UInt32 frameNum  = 0,
                         UInt32 sideNum   = 0) const;
    UInt8 *getData(UInt32 mipmapNum = 0,
                   UInt32 frameNum  = 0,
                   UInt32 sideNum   = 0);
    UInt8 *editData(UInt32 mipmapNum = 0,
                    UInt32 frameNum  = 0,
                    UInt32 sideNum   = 0);

    /// As getData, without the check for an empty block.
    const UInt8 *getDataFast(UInt32 mipmapNum = 0,
                             UInt32 frameNum  = 0,
                             UInt32 sideNum   = 0) const;
    UInt8 *editDataFast(UInt32 mipmapNum = 0,
                        UInt32 frameNum  = 0,
                        UInt32 sideNum   = 0);

    /// The data of the frame shown at time t (see calcFrameNum).
    UInt8 *getDataByTime(Time time, UInt32 mipmapNum = 0);

    /// Edges of mip level mipmapNum: halved per level, at least 1, but an
    /// edge of 0 stays 0.
    void calcMipmapGeometry(UInt32  mipmapNum,
                            UInt32 &width,
                            UInt32 &height,
                            UInt32 &depth) const;

    /// Levels from the full size down to 1x1x1; 0 for an empty image.
    UInt32 calcMipmapLevelCount(void) const;

    /// (time / frameDelay) modulo frameCount, or clamped when not looping;
    /// 0 without a delay.
    UInt32 calcFrameNum(Time time, bool loop = true) const;

    /// Bytes of one level with the (already reduced) edges w, h, d; edges of
    /// 0 count as 1. DXT formats take 8 or 16 bytes per 4x4 block.
    UInt32 calcMipmapLevelSize(UInt32 mipmapNum,
                               UInt32 w, UInt32 h, UInt32 d) const;
    UInt32 calcMipmapLevelSize(UInt32 mipmapNum) const;

    /// Bytes of the first mipmapNum levels, starting from edges w, h, d; 0
    /// when an edge is 0.
    UInt32 calcMipmapSumSize(UInt32 mipmapNum,
                             UInt32 w, UInt32 h, UInt32 d) const;
    UInt32 calcMipmapSumSize(UInt32 mipmapNum) const;

    /// Marks a box of texels as changed in every texture chunk that uses
    /// this image; -1 means the full extent of that axis.
    void imageContentChanged(Int32 minX = -1, Int32 maxX = -1,
                             Int32 minY = -1, Int32 maxY = -1,
                             Int32 minZ = -1, Int32 maxZ = -1);

    // --- key/value store ---------------------------------------------------------

    /// Stores text under key in the image's ImageGenericAtt attachment,
    /// creating the attachment and the key as needed. Opens no edit of the
    /// image.
    void setAttachmentField(const std::string &key, const std::string &data);

    /// The text stored under key, or NULL. Valid until the value is replaced
    /// or the attachment goes.
    const std::string *findAttachmentField(const std::string &key) const;

    bool hasAttachment(void) const;

    // --- parents -------------------------------------------------------------------

    /// Appends a user of this image (no reference is taken, no edit opened).
    void addParent(const FieldContainerPtr &parent);
    /// Removes the first entry equal to parent, if any.
    void subParent(const FieldContainerPtr &parent);

  protected:
    Image(void);
    Image(const Image &source);
    virtual ~Image(void);

    // internal field, accessible to the image only
    using Inherited::getComponentSize;
    using Inherited::setComponentSize;
    using Inherited::editComponentSize;

    /// The second half of set/setData: derives componentSize, bpp,
    /// dimension, sideSize and frameSize, sizes the block and copies data.
    bool createData(const UInt8 *data, bool allocMem = true);

    void calcMipmapOffsets(void);

    /// 64-bit sizes, so that huge volumes are refused instead of wrapping.
    UInt64 mipmapSumSize64(UInt32 mipmapNum, UInt32 w, UInt32 h,
                           UInt32 d) const;
    UInt64 mipmapLevelSize64(UInt32 w, UInt32 h, UInt32 d) const;

    /// Byte offsets of the mip levels within one side.
    std::vector<UInt64> _mipmapOffset;

  private:
    friend class FieldContainer;
    friend class ImageBase;

    static void initMethod(void);

    void operator=(const Image &source);
};

typedef Image *ImageP;

inline bool Image::reformat(UInt32 pixelFormat, ImagePtr destination)
{
    return reformat(PixelFormat(pixelFormat), destination);
}

inline void Image::addParent(const FieldContainerPtr &parent)
{
    _mfParents.push_back(parent);
}

inline void Image::subParent(const FieldContainerPtr &parent)
{
    MFFieldContainerPtr::iterator it = _mfParents.find(parent);

    if(it != _mfParents.end())
        _mfParents.erase(it);
}

OSG_END_NAMESPACE

#endif
