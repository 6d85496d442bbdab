#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGImageFileHandler.h>
#include <OpenSG/OSGImageGenericAtt.h>
#include <OpenSG/OSGBaseFunctions.h>
#include <OpenSG/OSGFieldDescription.h>
#include <OpenSG/OSGLog.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <new>
#include <type_traits>

OSG_BEGIN_NAMESPACE

namespace
{

// --- format and type tables ---------------------------------------------------

UInt32 componentsOf(UInt32 pixelFormat)
{
    switch(pixelFormat)
    {
        case Image::OSG_A_PF:
        case Image::OSG_I_PF:
        case Image::OSG_L_PF:
        case Image::OSG_ALPHA_INTEGER_PF:
        case Image::OSG_LUMINANCE_INTEGER_PF:
            return 1;
        case Image::OSG_LA_PF:
        case Image::OSG_LUMINANCE_ALPHA_INTEGER_PF:
            return 2;
        case Image::OSG_RGB_PF:
        case Image::OSG_BGR_PF:
        case Image::OSG_RGB_DXT1:
        case Image::OSG_RGB_INTEGER_PF:
        case Image::OSG_BGR_INTEGER_PF:
            return 3;
        case Image::OSG_RGBA_PF:
        case Image::OSG_BGRA_PF:
        case Image::OSG_RGBA_DXT1:
        case Image::OSG_RGBA_DXT3:
        case Image::OSG_RGBA_DXT5:
        case Image::OSG_RGBA_INTEGER_PF:
        case Image::OSG_BGRA_INTEGER_PF:
            return 4;
        default:
            return 0;
    }
}

UInt32 componentSizeOf(Int32 dataType)
{
    switch(dataType)
    {
        case Image::OSG_UINT8_IMAGEDATA:
            return 1;
        case Image::OSG_UINT16_IMAGEDATA:
        case Image::OSG_FLOAT16_IMAGEDATA:
        case Image::OSG_INT16_IMAGEDATA:
            return 2;
        case Image::OSG_UINT32_IMAGEDATA:
        case Image::OSG_FLOAT32_IMAGEDATA:
        case Image::OSG_INT32_IMAGEDATA:
            return 4;
        default:
            return 0;
    }
}

bool isCompressedFormat(UInt32 pixelFormat)
{
    return pixelFormat == Image::OSG_RGB_DXT1 ||
           pixelFormat == Image::OSG_RGBA_DXT1 ||
           pixelFormat == Image::OSG_RGBA_DXT3 ||
           pixelFormat == Image::OSG_RGBA_DXT5;
}

const Char8 *pixelFormatName(UInt32 pixelFormat)
{
    switch(pixelFormat)
    {
        case Image::OSG_A_PF:                       return "ALPHA";
        case Image::OSG_I_PF:                       return "INTENSITY";
        case Image::OSG_L_PF:                       return "LUMINANCE";
        case Image::OSG_LA_PF:                      return "LUMINANCE_ALPHA";
        case Image::OSG_BGR_PF:                     return "BGR";
        case Image::OSG_BGRA_PF:                    return "BGRA";
        case Image::OSG_RGB_PF:                     return "RGB";
        case Image::OSG_RGBA_PF:                    return "RGBA";
        case Image::OSG_RGB_DXT1:                   return "RGB_DXT1";
        case Image::OSG_RGBA_DXT1:                  return "RGBA_DXT1";
        case Image::OSG_RGBA_DXT3:                  return "RGBA_DXT3";
        case Image::OSG_RGBA_DXT5:                  return "RGBA_DXT5";
        case Image::OSG_ALPHA_INTEGER_PF:           return "ALPHA_INTEGER";
        case Image::OSG_RGB_INTEGER_PF:             return "RGB_INTEGER";
        case Image::OSG_RGBA_INTEGER_PF:            return "RGBA_INTEGER";
        case Image::OSG_BGR_INTEGER_PF:             return "BGR_INTEGER";
        case Image::OSG_BGRA_INTEGER_PF:            return "BGRA_INTEGER";
        case Image::OSG_LUMINANCE_INTEGER_PF:       return "LUMINANCE_INTEGER";
        case Image::OSG_LUMINANCE_ALPHA_INTEGER_PF: return "LUMINANCE_ALPHA_INTEGER";
        default:                                    return "UNKNOWN_PIXEL_FORMAT";
    }
}

const Char8 *dataTypeName(Int32 dataType)
{
    switch(dataType)
    {
        case Image::OSG_UINT8_IMAGEDATA:   return "IMAGEDATA_TYPE UCHAR8";
        case Image::OSG_UINT16_IMAGEDATA:  return "IMAGEDATA_TYPE UCHAR16";
        case Image::OSG_UINT32_IMAGEDATA:  return "IMAGEDATA_TYPE UCHAR32";
        case Image::OSG_FLOAT16_IMAGEDATA: return "IMAGEDATA_TYPE FLOAT16";
        case Image::OSG_FLOAT32_IMAGEDATA: return "IMAGEDATA_TYPE FLOAT32";
        case Image::OSG_INT16_IMAGEDATA:   return "IMAGEDATA_TYPE INT16";
        case Image::OSG_INT32_IMAGEDATA:   return "IMAGEDATA_TYPE INT32";
        default:                           return "UNKNOWN_IMAGEDATA_TYPE";
    }
}

UInt32 edgeOf(Int32 edge)
{
    return edge > 0 ? UInt32(edge) : 0;
}

// Components are read and written through memcpy: the block is bytes, and
// this keeps the compiler's aliasing rules out of the way at no cost.
template <class T>
inline T load(const UInt8 *p)
{
    T v;
    std::memcpy(&v, p, sizeof(T));
    return v;
}

template <class T>
inline void store(UInt8 *p, T v)
{
    std::memcpy(p, &v, sizeof(T));
}

// --- reformat -------------------------------------------------------------------

// How a pixel format lays out its channels. A, I and L read alike; only as a
// target does alpha differ from the grey formats.
enum Layout
{
    LayoutNone,
    LayoutAlpha,
    LayoutGrey,
    LayoutGreyAlpha,
    LayoutRGB,
    LayoutRGBA,
    LayoutBGR,
    LayoutBGRA
};

Layout layoutOf(UInt32 pixelFormat)
{
    switch(pixelFormat)
    {
        case Image::OSG_A_PF:    return LayoutAlpha;
        case Image::OSG_I_PF:
        case Image::OSG_L_PF:    return LayoutGrey;
        case Image::OSG_LA_PF:   return LayoutGreyAlpha;
        case Image::OSG_RGB_PF:  return LayoutRGB;
        case Image::OSG_RGBA_PF: return LayoutRGBA;
        case Image::OSG_BGR_PF:  return LayoutBGR;
        case Image::OSG_BGRA_PF: return LayoutBGRA;
        default:                 return LayoutNone;
    }
}

UInt32 channelsOf(Layout layout)
{
    static const UInt32 channels[] = {0, 1, 1, 2, 3, 4, 3, 4};
    return channels[layout];
}

// Average of three channels: integers summed wide and truncated, floats in
// double.
template <class T>
inline T average(T r, T g, T b)
{
    if constexpr(std::is_integral<T>::value)
    {
        typedef typename std::conditional<std::is_signed<T>::value, Int64,
                                          UInt64>::type Wide;
        return T((Wide(r) + Wide(g) + Wide(b)) / 3);
    }
    else
    {
        return T(float((double(r) + double(g) + double(b)) / 3.0));
    }
}

// One stream of pixels from one layout to another. Grey sources feed every
// channel, alpha included; colour sources give their average as grey, and
// as alpha when they have none.
template <class T>
void reformatPixels(const UInt8 *src, UInt8 *dst, size_t count, Layout from,
                    Layout to)
{
    const size_t cs = sizeof(T);
    const size_t ss = channelsOf(from) * cs;
    const size_t ds = channelsOf(to) * cs;

    for(size_t i = 0; i < count; ++i, src += ss, dst += ds)
    {
        T r, g, b, a, l;

        switch(from)
        {
            case LayoutAlpha:
            case LayoutGrey:
                r = g = b = a = l = load<T>(src);
                break;
            case LayoutGreyAlpha:
                r = g = b = l = load<T>(src);
                a             = load<T>(src + cs);
                break;
            case LayoutRGB:
            case LayoutBGR:
                r = load<T>(src + (from == LayoutRGB ? 0 : 2 * cs));
                g = load<T>(src + cs);
                b = load<T>(src + (from == LayoutRGB ? 2 * cs : 0));
                a = l = average(r, g, b);
                break;
            default: // RGBA, BGRA
                r = load<T>(src + (from == LayoutRGBA ? 0 : 2 * cs));
                g = load<T>(src + cs);
                b = load<T>(src + (from == LayoutRGBA ? 2 * cs : 0));
                a = load<T>(src + 3 * cs);
                l = average(r, g, b);
                break;
        }

        switch(to)
        {
            case LayoutAlpha:
                store(dst, a);
                break;
            case LayoutGrey:
                store(dst, l);
                break;
            case LayoutGreyAlpha:
                store(dst, l);
                store(dst + cs, a);
                break;
            case LayoutRGB:
            case LayoutRGBA:
                store(dst, r);
                store(dst + cs, g);
                store(dst + 2 * cs, b);
                if(to == LayoutRGBA)
                    store(dst + 3 * cs, a);
                break;
            default: // BGR, BGRA
                store(dst, b);
                store(dst + cs, g);
                store(dst + 2 * cs, r);
                if(to == LayoutBGRA)
                    store(dst + 3 * cs, a);
                break;
        }
    }
}

// --- convertDataTypeTo ------------------------------------------------------------

template <class T>
struct IsFloatComponent
{
    enum { value = std::is_same<T, Real32>::value || std::is_same<T, Real16>::value };
};

template <class T>
inline double maxOfType(void)
{
    return double(std::numeric_limits<T>::max());
}

// Unsigned integers going to a narrower unsigned integer are stretched over
// the value range actually present, not shifted.
struct Stretch
{
    UInt64 min;
    UInt64 max;
};

template <class S>
Stretch findRange(const UInt8 *src, size_t count)
{
    Stretch s = {0, 0};

    if(count == 0)
        return s;

    s.min = s.max = load<S>(src);

    for(size_t i = 1; i < count; ++i)
    {
        const UInt64 v = load<S>(src + i * sizeof(S));
        s.min          = std::min(s.min, v);
        s.max          = std::max(s.max, v);
    }

    return s;
}

template <class S, class D>
inline D convertComponent(S v, const Stretch &range)
{
    if constexpr(!IsFloatComponent<S>::value && !IsFloatComponent<D>::value)
    {
        if constexpr(sizeof(D) > sizeof(S))
        {
            return D(UInt64(v) << (8 * (sizeof(D) - sizeof(S))));
        }
        else
        {
            const float span = float(range.max - range.min);

            if(span <= 0.f)
                return D(0);

            return D(maxOfType<D>() * double(float(UInt64(v) - range.min)) /
                     double(span));
        }
    }
    else if constexpr(!IsFloatComponent<S>::value)
    {
        return D(float(double(v) / maxOfType<S>()));
    }
    else if constexpr(!IsFloatComponent<D>::value)
    {
        double f = double(float(v));

        // 0..1 maps onto the full range; anything outside saturates.
        if(!(f > 0.0))
            f = 0.0;
        else if(f > 1.0)
            f = 1.0;

        return D(f * maxOfType<D>());
    }
    else
    {
        return D(float(v));
    }
}

template <class S, class D>
void convertComponents(const UInt8 *src, UInt8 *dst, size_t count)
{
    Stretch range = {0, 0};

    if constexpr(!IsFloatComponent<S>::value && !IsFloatComponent<D>::value &&
                 sizeof(D) < sizeof(S))
    {
        range = findRange<S>(src, count);
    }

    for(size_t i = 0; i < count; ++i)
        store(dst + i * sizeof(D),
              convertComponent<S, D>(load<S>(src + i * sizeof(S)), range));
}

template <class S>
bool convertFrom(Int32 destType, const UInt8 *src, UInt8 *dst, size_t count)
{
    switch(destType)
    {
        case Image::OSG_UINT8_IMAGEDATA:
            convertComponents<S, UInt8>(src, dst, count);
            return true;
        case Image::OSG_UINT16_IMAGEDATA:
            convertComponents<S, UInt16>(src, dst, count);
            return true;
        case Image::OSG_UINT32_IMAGEDATA:
            convertComponents<S, UInt32>(src, dst, count);
            return true;
        case Image::OSG_FLOAT32_IMAGEDATA:
            convertComponents<S, Real32>(src, dst, count);
            return true;
        case Image::OSG_FLOAT16_IMAGEDATA:
            convertComponents<S, Real16>(src, dst, count);
            return true;
        default:
            return false;
    }
}

bool isConvertibleType(Int32 dataType)
{
    return dataType == Image::OSG_UINT8_IMAGEDATA ||
           dataType == Image::OSG_UINT16_IMAGEDATA ||
           dataType == Image::OSG_UINT32_IMAGEDATA ||
           dataType == Image::OSG_FLOAT32_IMAGEDATA ||
           dataType == Image::OSG_FLOAT16_IMAGEDATA;
}

// --- texture chunks among the parents ---------------------------------------------

// The image tells the texture chunks that use it about changes. It reaches
// them through the type system, by the names the chunk class registers, so
// that images do not depend on the state classes being built.
const FieldContainerType *textureChunkType(void)
{
    return FieldContainerFactory::the()->findType("TextureChunk");
}

bool isTextureChunk(const FieldContainerPtr &parent,
                    const FieldContainerType *chunkType)
{
    return chunkType != NULL && parent->getType().isDerivedFrom(*chunkType);
}

// What TextureChunk::imageContentChanged does: one edit of exactly the six
// dirty-box fields, which asks the chunk for a re-upload of those texels.
void markTexelsDirty(const FieldContainerPtr &chunk, const Int32 box[6])
{
    static const Char8 *names[6] = {"dirtyMinX", "dirtyMaxX", "dirtyMinY",
                                    "dirtyMaxY", "dirtyMinZ", "dirtyMaxZ"};
    SFInt32  *fields[6];
    BitVector mask = FieldBits::NoField;

    for(UInt32 i = 0; i < 6; ++i)
    {
        const FieldDescription *desc =
            chunk->getType().findFieldDescription(names[i]);

        if(desc == NULL || desc->getTypeId() != SFInt32::getClassType().getId())
        {
            FWARNING(("Image: texture chunk without the field %s\n",
                      names[i]));
            return;
        }

        fields[i] = static_cast<SFInt32 *>(chunk->getField(desc->getFieldId()));
        mask |= desc->getFieldMask();
    }

    beginEditCP(chunk, mask);

    for(UInt32 i = 0; i < 6; ++i)
        fields[i]->setValue(box[i]);

    endEditCP(chunk, mask);
}

// The mask a parent receives for any other change of the image: that of its
// field called "image" where it has one.
BitVector imageMaskOf(const FieldContainerPtr &parent)
{
    const FieldDescription *desc =
        parent->getType().findFieldDescription("image");

    return desc != NULL ? desc->getFieldMask() : FieldBits::AllFields;
}

} // namespace

// --- life cycle -------------------------------------------------------------------

Image::Image(void) : Inherited(), _mipmapOffset()
{
    setPixelFormat(OSG_INVALID_PF);
}

Image::Image(const Image &source)
    : Inherited(source), _mipmapOffset(source._mipmapOffset)
{
}

Image::~Image(void)
{
}

void Image::initMethod(void)
{
}

void Image::changed(BitVector whichField, UInt32 origin)
{
    const FieldContainerType *chunkType = NULL;
    bool                      lookedUp  = false;

    for(UInt32 i = 0; i < _mfParents.size(); ++i)
    {
        FieldContainerPtr parent = _mfParents[i];

        if(parent == NullFC)
            continue;

        if(!lookedUp)
        {
            chunkType = textureChunkType();
            lookedUp  = true;
        }

        if(isTextureChunk(parent, chunkType) &&
           (whichField & ~PixelFieldMask) == FieldBits::NoField)
        {
            static const Int32 wholeImage[6] = {-1, -1, -1, -1, -1, -1};

            markTexelsDirty(parent, wholeImage);
        }
        else
        {
            parent->changed(imageMaskOf(parent), ChangedOrigin::Child);
        }
    }

    setComponentSize(Int32(componentSizeOf(getDataType())));
    setSideSize(Int32(calcMipmapSumSize(UInt32(osgMax(getMipMapCount(), 1)))));
    setFrameSize(getSideSize() * getSideCount());
    calcMipmapOffsets();

    Inherited::changed(whichField, origin);
}

void Image::dump(UInt32, const BitVector) const
{
    FLOG(("ImageDump: %s; %d/%d/%d; #mm: %d, #side: %d, #frame: %d, "
          "frameDelay %g, dataType %s, size: %lu\n",
          pixelFormatName(getPixelFormat()), getWidth(), getHeight(),
          getDepth(), getMipMapCount(), getSideCount(), getFrameCount(),
          getFrameDelay(), dataTypeName(getDataType()), getSize()));
}

// --- construction -------------------------------------------------------------------

bool Image::set(UInt32       pixelFormat,
                Int32        width,
                Int32        height,
                Int32        depth,
                Int32        mipmapCount,
                Int32        frameCount,
                Time         frameDelay,
                const UInt8 *data,
                Int32        type,
                bool         allocMem,
                Int32        sideCount)
{
    ImagePtr        self(this);
    const BitVector mask = PixelFormatFieldMask | WidthFieldMask |
                           HeightFieldMask | DepthFieldMask |
                           MipMapCountFieldMask | SideCountFieldMask |
                           FrameCountFieldMask | FrameDelayFieldMask |
                           DataTypeFieldMask;

    beginEditCP(self, mask);

    setPixelFormat(pixelFormat);

    // An edge of 0 makes an empty image instead of being raised to 1.
    setWidth(Int32(edgeOf(width)));
    setHeight(Int32(edgeOf(height)));
    setDepth(Int32(edgeOf(depth)));

    setMipMapCount(osgMax(1, mipmapCount));
    setSideCount(osgMax(1, sideCount));
    setFrameCount(osgMax(1, frameCount));

    setFrameDelay(frameDelay);
    setDataType(type);

    endEditCP(self, mask);

    calcMipmapOffsets();

    return createData(data, allocMem);
}

bool Image::set(ImagePtr image)
{
    if(image == NullFC)
    {
        FWARNING(("Image::set: no source image\n"));
        return false;
    }

    if(image == ImagePtr(this))
        return true;

    set(image->getPixelFormat(), image->getWidth(), image->getHeight(),
        image->getDepth(), image->getMipMapCount(), image->getFrameCount(),
        image->getFrameDelay(), image->getData(), image->getDataType(), true,
        image->getSideCount());

    return true;
}

bool Image::setData(const UInt8 *data)
{
    if(data == NULL)
    {
        FWARNING(("Image::setData(Null) call\n"));
        return false;
    }

    return createData(data, true);
}

void Image::clearData(void)
{
    _mfPixel.clear();
}

bool Image::createData(const UInt8 *data, bool allocMem)
{
    ImagePtr        self(this);
    const BitVector mask = BppFieldMask | DimensionFieldMask |
                           FrameSizeFieldMask | SideSizeFieldMask |
                           ComponentSizeFieldMask | PixelFieldMask;

    beginEditCP(self, mask);

    const UInt32 compSize = componentSizeOf(getDataType());

    setComponentSize(Int32(compSize));
    setBpp(Int32(componentsOf(getPixelFormat()) * compSize));

    if(getWidth() == 0 || getHeight() == 0 || getDepth() == 0)
        setDimension(0);
    else if(getDepth() > 1)
        setDimension(3);
    else if(getHeight() > 1)
        setDimension(2);
    else
        setDimension(1);

    const UInt64 sideSize  = mipmapSumSize64(UInt32(getMipMapCount()),
                                             UInt32(getWidth()),
                                             UInt32(getHeight()),
                                             UInt32(getDepth()));
    const UInt64 frameSize = sideSize * UInt64(getSideCount());
    const UInt64 size      = frameSize * UInt64(getFrameCount());

    setSideSize(Int32(sideSize));
    setFrameSize(Int32(frameSize));

    std::vector<UInt8> &pixel = _mfPixel.getValues();
    bool                ok    = true;

    // Data taken from this image's own block must survive the resize.
    std::vector<UInt8> aliased;

    if(data != NULL && !pixel.empty() && data >= pixel.data() &&
       data < pixel.data() + pixel.size())
    {
        const size_t available = size_t(pixel.data() + pixel.size() - data);

        aliased.assign(data, data + size_t(std::min<UInt64>(size, available)));
        data = aliased.data();
    }

    // One budget for every image, the one the file loaders check their
    // headers against; it never exceeds what the 32-bit size fields hold.
    const UInt64 budget = ImageFileHandler::the().getMaxImageBytes();

    if(allocMem && size > budget)
    {
        FWARNING(("Image::createData : %llu bytes are more than the %llu "
                  "an image may hold\n",
                  static_cast<unsigned long long>(size),
                  static_cast<unsigned long long>(budget)));
        std::vector<UInt8>().swap(pixel);
        ok = false;
    }
    else if(allocMem && size != 0)
    {
        // The size fields are 32-bit, as is the layout's offset arithmetic.
        if(frameSize > UInt64(std::numeric_limits<Int32>::max()) ||
           size > UInt64(std::numeric_limits<size_t>::max() / 2))
        {
            ok = false;
        }
        else
        {
            try
            {
                // Same size: the bytes stay. Growing: the old bytes stay in
                // front of a zeroed tail. Shrinking: a new zeroed block.
                if(size < pixel.size())
                    std::vector<UInt8>().swap(pixel);

                pixel.resize(size_t(size), 0);
            }
            catch(const std::bad_alloc &)
            {
                ok = false;
            }
        }

        if(!ok)
        {
            FFATAL(("Image::createData : Couldn't allocate %llu bytes!\n",
                    static_cast<unsigned long long>(size)));
            std::vector<UInt8>().swap(pixel);
        }
        else if(data != NULL)
        {
            const size_t n = aliased.empty() ? size_t(size) : aliased.size();

            std::memcpy(pixel.data(), data, n);
        }
    }
    else
    {
        std::vector<UInt8>().swap(pixel);
    }

    endEditCP(self, mask);

    return ok && getData() != NULL;
}

void Image::calcMipmapOffsets(void)
{
    const UInt32 count = UInt32(osgMax(getMipMapCount(), 1));

    _mipmapOffset.resize(count);

    UInt32 w = UInt32(getWidth()), h = UInt32(getHeight()),
           d = UInt32(getDepth());
    UInt64 offset = 0;

    for(UInt32 i = 0; i < count; ++i)
    {
        _mipmapOffset[i] = offset;

        offset += mipmapLevelSize64(w, h, d);

        w = osgMax(w >> 1, 1u);
        h = osgMax(h >> 1, 1u);
        d = osgMax(d >> 1, 1u);
    }
}

// --- sizes -------------------------------------------------------------------------------

UInt64 Image::mipmapLevelSize64(UInt32 w, UInt32 h, UInt32 d) const
{
    const UInt64 sw = osgMax(w, 1u), sh = osgMax(h, 1u), sd = osgMax(d, 1u);

    switch(getPixelFormat())
    {
        case OSG_RGB_DXT1:
        case OSG_RGBA_DXT1:
            return ((sw + 3) / 4) * ((sh + 3) / 4) * 8 * sd;
        case OSG_RGBA_DXT3:
        case OSG_RGBA_DXT5:
            return ((sw + 3) / 4) * ((sh + 3) / 4) * 16 * sd;
        default:
            return sw * sh * sd * UInt64(osgMax(getBpp(), 0));
    }
}

UInt64 Image::mipmapSumSize64(UInt32 mipmapNum, UInt32 w, UInt32 h,
                              UInt32 d) const
{
    if(w == 0 || h == 0 || d == 0)
        return 0;

    UInt64 sum = 0;

    for(UInt32 i = 0; i < mipmapNum; ++i)
    {
        sum += mipmapLevelSize64(w, h, d);

        w = osgMax(w >> 1, 1u);
        h = osgMax(h >> 1, 1u);
        d = osgMax(d >> 1, 1u);
    }

    return sum;
}

UInt32 Image::calcMipmapLevelSize(UInt32, UInt32 w, UInt32 h, UInt32 d) const
{
    return UInt32(mipmapLevelSize64(w, h, d));
}

UInt32 Image::calcMipmapLevelSize(UInt32 mipmapNum) const
{
    UInt32 w, h, d;

    calcMipmapGeometry(mipmapNum, w, h, d);

    return calcMipmapLevelSize(mipmapNum, w, h, d);
}

UInt32 Image::calcMipmapSumSize(UInt32 mipmapNum, UInt32 w, UInt32 h,
                                UInt32 d) const
{
    return UInt32(mipmapSumSize64(mipmapNum, w, h, d));
}

UInt32 Image::calcMipmapSumSize(UInt32 mipmapNum) const
{
    return calcMipmapSumSize(mipmapNum, UInt32(edgeOf(getWidth())),
                             UInt32(edgeOf(getHeight())),
                             UInt32(edgeOf(getDepth())));
}

void Image::calcMipmapGeometry(UInt32  mipmapNum,
                               UInt32 &width,
                               UInt32 &height,
                               UInt32 &depth) const
{
    const UInt32 shift = osgMin(mipmapNum, 31u);

    width  = getWidth() > 0 ? osgMax(UInt32(getWidth()) >> shift, 1u) : 0;
    height = getHeight() > 0 ? osgMax(UInt32(getHeight()) >> shift, 1u) : 0;
    depth  = getDepth() > 0 ? osgMax(UInt32(getDepth()) >> shift, 1u) : 0;
}

UInt32 Image::calcMipmapLevelCount(void) const
{
    UInt32 w = edgeOf(getWidth()), h = edgeOf(getHeight()),
           d = edgeOf(getDepth());

    if(w == 0 || h == 0 || d == 0)
        return 0;

    UInt32 levels = 1;

    while(w > 1 || h > 1 || d > 1)
    {
        w >>= 1;
        h >>= 1;
        d >>= 1;
        ++levels;
    }

    return levels;
}

UInt32 Image::calcFrameNum(Time time, bool loop) const
{
    if(getFrameCount() <= 1 || !(getFrameDelay() > 0.0) || !(time > 0.0))
        return 0;

    const double frame = time / getFrameDelay();
    const UInt32 count = UInt32(getFrameCount());

    if(loop)
        return UInt32(std::fmod(frame, double(count)));

    return frame >= double(count - 1) ? count - 1 : UInt32(frame);
}

unsigned long Image::getSize(bool withMipmap, bool withFrames,
                             bool withSides) const
{
    const UInt64 levels = mipmapSumSize64(
        withMipmap ? UInt32(osgMax(getMipMapCount(), 1)) : 1,
        edgeOf(getWidth()), edgeOf(getHeight()), edgeOf(getDepth()));

    return (unsigned long)(levels *
                           (withSides ? UInt64(osgMax(getSideCount(), 1)) : 1) *
                           (withFrames ? UInt64(osgMax(getFrameCount(), 1)) : 1));
}

// --- data access ----------------------------------------------------------------------

const UInt8 *Image::getData(UInt32 mipmapNum, UInt32 frameNum,
                            UInt32 sideNum) const
{
    if(_mfPixel.empty())
        return NULL;

    const UInt8 *data = &_mfPixel[0] +
                        size_t(sideNum) * size_t(getSideSize()) +
                        size_t(frameNum) * size_t(getFrameSize());

    if(mipmapNum != 0)
        data += size_t(mipmapSumSize64(mipmapNum, edgeOf(getWidth()),
                                       edgeOf(getHeight()),
                                       edgeOf(getDepth())));

    return data;
}

UInt8 *Image::getData(UInt32 mipmapNum, UInt32 frameNum, UInt32 sideNum)
{
    return const_cast<UInt8 *>(
        static_cast<const Image *>(this)->getData(mipmapNum, frameNum, sideNum));
}

UInt8 *Image::editData(UInt32 mipmapNum, UInt32 frameNum, UInt32 sideNum)
{
    return getData(mipmapNum, frameNum, sideNum);
}

const UInt8 *Image::getDataFast(UInt32 mipmapNum, UInt32 frameNum,
                                UInt32 sideNum) const
{
    const UInt64 mipOffset = mipmapNum < _mipmapOffset.size()
                                 ? _mipmapOffset[mipmapNum]
                                 : mipmapSumSize64(mipmapNum,
                                                   edgeOf(getWidth()),
                                                   edgeOf(getHeight()),
                                                   edgeOf(getDepth()));

    return _mfPixel.getValues().data() +
           size_t(sideNum) * size_t(getSideSize()) +
           size_t(frameNum) * size_t(getFrameSize()) + size_t(mipOffset);
}

UInt8 *Image::editDataFast(UInt32 mipmapNum, UInt32 frameNum, UInt32 sideNum)
{
    return const_cast<UInt8 *>(static_cast<const Image *>(this)->getDataFast(
        mipmapNum, frameNum, sideNum));
}

UInt8 *Image::getDataByTime(Time time, UInt32 mipmapNum)
{
    return getData(mipmapNum, calcFrameNum(time));
}

// --- queries ----------------------------------------------------------------------------

bool Image::isValid(void) const
{
    return !_mfPixel.empty();
}

bool Image::hasAlphaChannel(void) const
{
    if(getForceAlphaChannel())
        return true;

    switch(getPixelFormat())
    {
        case OSG_RGBA_PF:
        case OSG_BGRA_PF:
        case OSG_RGBA_DXT1:
        case OSG_RGBA_DXT3:
        case OSG_RGBA_DXT5:
        case OSG_A_PF:
        case OSG_I_PF:
        case OSG_LA_PF:
        case OSG_ALPHA_INTEGER_PF:
        case OSG_RGBA_INTEGER_PF:
        case OSG_BGRA_INTEGER_PF:
        case OSG_LUMINANCE_ALPHA_INTEGER_PF:
            return true;
        default:
            return false;
    }
}

bool Image::hasColorChannel(void) const
{
    if(getForceColorChannel())
        return true;

    switch(getPixelFormat())
    {
        case OSG_A_PF:
        case OSG_I_PF:
        case OSG_L_PF:
        case OSG_LA_PF:
        case OSG_ALPHA_INTEGER_PF:
        case OSG_LUMINANCE_INTEGER_PF:
        case OSG_LUMINANCE_ALPHA_INTEGER_PF:
            return false;
        default:
            return true;
    }
}

bool Image::hasCompressedData(void) const
{
    return getForceCompressedData() || isCompressedFormat(getPixelFormat());
}

bool Image::isAlphaBinary(void) const
{
    return getForceAlphaBinary() || getPixelFormat() == OSG_RGBA_DXT1;
}

UInt8 Image::getComponents(void) const
{
    const UInt32 components = componentsOf(getPixelFormat());

    if(components == 0)
    {
        FWARNING(("Image::getComponents: image %p has unknown pixel "
                  "format 0x%x!\n",
                  static_cast<const void *>(this), getPixelFormat()));
    }

    return UInt8(components);
}

// --- processing --------------------------------------------------------------------------

bool Image::reformat(const PixelFormat pixelFormat, ImagePtr destination)
{
    if(hasCompressedData())
    {
        FFATAL(("Invalid Image::reformat for compressed image\n"));
        return false;
    }

    FINFO(("Try to reformat image from pixelDepth %d to %d\n",
           getPixelFormat(), pixelFormat));

    if(getData() == NULL || getSize() == 0 || pixelFormat == OSG_INVALID_PF ||
       (destination == NullFC && UInt32(pixelFormat) == getPixelFormat()))
    {
        return false;
    }

    const Layout from     = layoutOf(getPixelFormat());
    const Layout to       = layoutOf(pixelFormat);
    const Int32  dataType = getDataType();
    const UInt32 compSize = componentSizeOf(dataType);

    // Refused before anything is touched: an unsupported conversion leaves
    // both images as they were.
    if(from == LayoutNone)
    {
        FWARNING(("Image::reformat(): Invalid pixeldepth (%d)!\n",
                  getPixelFormat()));
        return false;
    }

    if(to == LayoutNone)
    {
        FFATAL(("Image: 'reformat' NYI\n"));
        return false;
    }

    if(compSize == 0)
    {
        FWARNING(("Invalid IMAGE_DATA_TYPE\n"));
        return false;
    }

    // Every level, side and frame has the same pixel count in both formats,
    // so the whole block converts as one stream.
    const size_t count = getSize() / (channelsOf(from) * compSize);

    if(count * channelsOf(from) * compSize > _mfPixel.size())
    {
        FWARNING(("Image::reformat(): pixel data does not match the "
                  "format\n"));
        return false;
    }

    ImagePtr target = destination;

    if(destination == NullFC)
    {
        target = Image::create();
        addRefCP(target);
    }

    // Snapshot first: the destination may be this image.
    const std::vector<UInt8> source = _mfPixel.getValues();

    target->set(pixelFormat, getWidth(), getHeight(), getDepth(),
                getMipMapCount(), getFrameCount(), getFrameDelay(), NULL,
                dataType, true, getSideCount());

    UInt8 *dst = target->editData();

    if(dst != NULL && count * channelsOf(to) * compSize <= target->getSize())
    {
        beginEditCP(target, PixelFieldMask);

        switch(dataType)
        {
            case OSG_UINT8_IMAGEDATA:
                reformatPixels<UInt8>(source.data(), dst, count, from, to);
                break;
            case OSG_UINT16_IMAGEDATA:
                reformatPixels<UInt16>(source.data(), dst, count, from, to);
                break;
            case OSG_UINT32_IMAGEDATA:
                reformatPixels<UInt32>(source.data(), dst, count, from, to);
                break;
            case OSG_FLOAT32_IMAGEDATA:
                reformatPixels<Real32>(source.data(), dst, count, from, to);
                break;
            case OSG_FLOAT16_IMAGEDATA:
                reformatPixels<Real16>(source.data(), dst, count, from, to);
                break;
            case OSG_INT16_IMAGEDATA:
                reformatPixels<Int16>(source.data(), dst, count, from, to);
                break;
            default: // OSG_INT32_IMAGEDATA
                reformatPixels<Int32>(source.data(), dst, count, from, to);
                break;
        }

        endEditCP(target, PixelFieldMask);
    }

    const bool valid = target->getData() != NULL;

    if(destination == NullFC)
    {
        if(valid)
            set(target);

        subRefCP(target);
    }

    return valid;
}

bool Image::convertDataTypeTo(Int32 destDataType)
{
    if(hasCompressedData())
    {
        FFATAL(("Invalid Image::convertDataTypeTo for compressed image\n"));
        return false;
    }

    if(destDataType == getDataType())
    {
        FWARNING(("source image and destination image have same data "
                  "types: no conversion possible\n"));
        return true;
    }

    FINFO(("Try to convert image from dataType %d to %d\n", getDataType(),
           destDataType));

    if(!isConvertibleType(getDataType()))
    {
        FWARNING(("invalid source data type \n"));
        return false;
    }

    if(!isConvertibleType(destDataType))
    {
        FWARNING(("invalid destination data type \n"));
        return false;
    }

    if(getData() == NULL)
        return false;

    ImagePtr dest = Image::create();

    addRefCP(dest);

    dest->set(getPixelFormat(), getWidth(), getHeight(), getDepth(),
              getMipMapCount(), getFrameCount(), 0.0, NULL, destDataType,
              true, getSideCount());

    const UInt8 *src   = getData();
    UInt8       *dst   = dest->editData();
    const size_t count = getSize() / componentSizeOf(getDataType());

    if(dst != NULL && count * componentSizeOf(destDataType) <= dest->getSize())
    {
        switch(getDataType())
        {
            case OSG_UINT8_IMAGEDATA:
                convertFrom<UInt8>(destDataType, src, dst, count);
                break;
            case OSG_UINT16_IMAGEDATA:
                convertFrom<UInt16>(destDataType, src, dst, count);
                break;
            case OSG_UINT32_IMAGEDATA:
                convertFrom<UInt32>(destDataType, src, dst, count);
                break;
            case OSG_FLOAT32_IMAGEDATA:
                convertFrom<Real32>(destDataType, src, dst, count);
                break;
            default: // OSG_FLOAT16_IMAGEDATA
                convertFrom<Real16>(destDataType, src, dst, count);
                break;
        }

        set(dest);
    }

    subRefCP(dest);

    return getData() != NULL && getDataType() == destDataType;
}

bool Image::scale(Int32 width, Int32 height, Int32 depth, ImagePtr destination)
{
    if(width == getWidth() && height == getHeight() && depth == getDepth())
    {
        if(destination != NullFC)
            destination->set(ImagePtr(this));

        return true;
    }

    if(hasCompressedData())
    {
        FFATAL(("Invalid Image::scale for compressed image\n"));
        return false;
    }

    ImagePtr target = destination != NullFC ? destination : ImagePtr(this);

    // The old layout, kept for reading: the target may be this image.
    const std::vector<UInt8> source    = _mfPixel.getValues();
    const UInt32             oldW      = edgeOf(getWidth());
    const UInt32             oldH      = edgeOf(getHeight());
    const UInt32             oldD      = edgeOf(getDepth());
    const UInt32             mipCount  = UInt32(osgMax(getMipMapCount(), 1));
    const UInt32             sides     = UInt32(osgMax(getSideCount(), 1));
    const UInt32             frames    = UInt32(osgMax(getFrameCount(), 1));
    const UInt32             bpp       = UInt32(osgMax(getBpp(), 0));
    const UInt64             oldSide   = mipmapSumSize64(mipCount, oldW, oldH, oldD);
    const UInt64             oldFrame  = oldSide * sides;

    target->set(getPixelFormat(), width, height, depth, Int32(mipCount),
                Int32(frames), getFrameDelay(), NULL, getDataType(), true,
                Int32(sides));

    if(target->getData() == NULL)
        return false;

    if(source.size() < oldFrame * frames)
        return true; // nothing to resample: the target stays zeroed

    beginEditCP(target, PixelFieldMask);

    for(UInt32 frame = 0; frame < frames; ++frame)
    {
        for(UInt32 side = 0; side < sides; ++side)
        {
            UInt64 srcOffset = frame * oldFrame + side * oldSide;

            for(UInt32 mip = 0; mip < mipCount; ++mip)
            {
                const UInt32 sw = osgMax(oldW >> mip, 1u);
                const UInt32 sh = osgMax(oldH >> mip, 1u);
                const UInt32 sd = osgMax(oldD >> mip, 1u);

                UInt32 dw, dh, dd;
                target->calcMipmapGeometry(mip, dw, dh, dd);

                const UInt8 *src = source.data() + srcOffset;
                UInt8       *dst = target->editData(mip, frame, side);

                if(sw == dw && sh == dh && sd == dd)
                {
                    std::memcpy(dst, src, size_t(sw) * sh * sd * bpp);
                }
                else
                {
                    const float sx = float(sw) / float(dw);
                    const float sy = float(sh) / float(dh);
                    const float sz = float(sd) / float(dd);

                    for(UInt32 z = 0; z < dd; ++z)
                    {
                        const UInt32 zs = osgMin(UInt32(float(z) * sz), sd - 1);

                        for(UInt32 y = 0; y < dh; ++y)
                        {
                            const UInt32 ys = osgMin(UInt32(float(y) * sy), sh - 1);
                            const UInt8 *row =
                                src + (size_t(zs) * sh + ys) * sw * bpp;

                            for(UInt32 x = 0; x < dw; ++x, dst += bpp)
                            {
                                const UInt32 xs =
                                    osgMin(UInt32(float(x) * sx), sw - 1);

                                std::memcpy(dst, row + size_t(xs) * bpp, bpp);
                            }
                        }
                    }
                }

                srcOffset += mipmapLevelSize64(sw, sh, sd);
            }
        }
    }

    endEditCP(target, PixelFieldMask);

    return true;
}

bool Image::scaleNextPower2(ImagePtr destination)
{
    return scale(Int32(osgnextpower2(edgeOf(getWidth()))),
                 Int32(osgnextpower2(edgeOf(getHeight()))),
                 Int32(osgnextpower2(edgeOf(getDepth()))), destination);
}

void Image::swapDataEndian(void)
{
    ImagePtr     self(this);
    const UInt32 cs = componentSizeOf(getDataType());

    beginEditCP(self, PixelFieldMask);

    if(cs > 1)
    {
        std::vector<UInt8> &pixel = _mfPixel.getValues();
        const size_t        n     = pixel.size() / cs * cs;

        for(size_t i = 0; i < n; i += cs)
            std::reverse(pixel.begin() + i, pixel.begin() + i + cs);
    }
    else if(cs == 0)
    {
        FWARNING(("invalid source data type \n"));
    }

    endEditCP(self, PixelFieldMask);
}

void Image::clear(UChar8 pixelValue)
{
    std::vector<UInt8> &pixel = _mfPixel.getValues();

    std::fill(pixel.begin(), pixel.end(), pixelValue);
}

void Image::clearFloat(Real32 value)
{
    std::vector<UInt8> &pixel = _mfPixel.getValues();

    for(size_t i = 0; i + sizeof(Real32) <= pixel.size(); i += sizeof(Real32))
        store(&pixel[i], value);
}

void Image::clearHalf(Real16 value)
{
    std::vector<UInt8> &pixel = _mfPixel.getValues();

    for(size_t i = 0; i + sizeof(Real16) <= pixel.size(); i += sizeof(Real16))
        store(&pixel[i], value);
}

// --- files ---------------------------------------------------------------------------------

bool Image::read(const Char8 *fileName)
{
    ImagePtr self(this);

    return ImageFileHandler::the().read(self, fileName);
}

bool Image::write(const Char8 *fileName)
{
    ImagePtr self(this);

    return ImageFileHandler::the().write(self, fileName);
}

// --- parents -------------------------------------------------------------------------------

void Image::imageContentChanged(Int32 minX, Int32 maxX, Int32 minY,
                                Int32 maxY, Int32 minZ, Int32 maxZ)
{
    const FieldContainerType *chunkType = textureChunkType();
    const Int32               box[6]    = {minX, maxX, minY, maxY, minZ, maxZ};

    for(UInt32 i = 0; i < _mfParents.size(); ++i)
    {
        FieldContainerPtr parent = _mfParents[i];

        if(parent != NullFC && isTextureChunk(parent, chunkType))
            markTexelsDirty(parent, box);
    }
}

// --- key/value store --------------------------------------------------------------------

void Image::setAttachmentField(const std::string &key, const std::string &data)
{
    AttachmentPtr      att = findAttachment(ImageGenericAtt::getClassType());
    ImageGenericAttPtr gen = ImageGenericAttPtr::dcast(att);

    if(gen == NullFC)
    {
        gen = ImageGenericAtt::create();

        if(gen == NullFC)
        {
            FWARNING(("Image::setAttachmentField: could not create the "
                      "attachment\n"));
            return;
        }

        // The image itself is not marked changed: its pixels did not change.
        // The change list still learns of the new attachment.
        addAttachment(gen);
        endEditNotChangedCP(ImagePtr(this), AttachmentsFieldMask);
    }

    const UInt32    id   = gen->addField(key);
    const BitVector mask = ImageGenericAtt::dynamicFieldMask(id);

    if(id == 0)
        return;

    beginEditCP(gen, mask);
    gen->getDynamicField(id)->setValue(data);
    endEditCP(gen, mask);
}

const std::string *Image::findAttachmentField(const std::string &key) const
{
    ImageGenericAttPtr gen = ImageGenericAttPtr::dcast(
        const_cast<Image *>(this)->findAttachment(
            ImageGenericAtt::getClassType()));

    if(gen == NullFC)
        return NULL;

    const SFString *field = gen->getDynamicField(gen->findFieldId(key));

    return field != NULL ? &field->getValue() : NULL;
}

bool Image::hasAttachment(void) const
{
    ImageGenericAttPtr gen = ImageGenericAttPtr::dcast(
        const_cast<Image *>(this)->findAttachment(
            ImageGenericAtt::getClassType()));

    return gen != NullFC && gen->getNumDynamicFields() != 0;
}

OSG_END_NAMESPACE
