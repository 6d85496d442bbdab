#include <OpenSG/VolumeData.h>
#include <OpenSG/BitVolume.h>
#include <OpenSG/BlockVolume.h>
#include <OpenSG/VolumeGrids.h>
#include <OpenSG/VolumeTextureUtils.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>

#include <algorithm>
#include <cfloat>
#include <cstdio>

OSG_USING_NAMESPACE

namespace
{

const char *bitText(Int32 dataType)
{
    switch(dataType)
    {
        case GL_UNSIGNED_BYTE:  return "8Bit";
        case GL_UNSIGNED_SHORT: return "16Bit";
        case GL_UNSIGNED_INT:   return "32Bit";
        default:                return NULL;
    }
}

} // namespace

VolumeData::VolumeData(void)
    : _bitVolume(NULL),
      _blockVolume(NULL),
      _volumeSize(0.f, 0.f, 0.f),
      _sliceThickness(0.f, 0.f, 0.f),
      _volumeTexture(NullFC)
{
}

VolumeData::VolumeData(const VolumeData &source)
    : _bitVolume(NULL),
      _blockVolume(NULL),
      _volumeSize(source._volumeSize),
      _sliceThickness(0.f, 0.f, 0.f),
      _volumeTexture(NullFC)
{
}

VolumeData::~VolumeData(void)
{
    VolumeTextureUtils::release(_volumeTexture);
    delete _bitVolume;
    delete _blockVolume;
}

ImagePtr VolumeData::getVolumeImage(void) const
{
    if(_volumeTexture == NullFC)
        return NullFC;
    return _volumeTexture->getImage();
}

void VolumeData::setBitVolume(BitVolume *bitVolume)
{
    if(bitVolume != _bitVolume)
    {
        delete _bitVolume;
        _bitVolume = bitVolume;
    }
}

void VolumeData::setBlockVolume(BlockVolume *blockVolume)
{
    if(blockVolume != _blockVolume)
    {
        delete _blockVolume;
        _blockVolume = blockVolume;
    }
}

void VolumeData::normalise(const ImagePtr &image, bool swapBytes)
{
    if(image->getDataType() != GL_UNSIGNED_SHORT)
        return;

    UInt64 count = UInt64(std::max(image->getWidth(), 0)) *
                   UInt64(std::max(image->getHeight(), 0)) *
                   UInt64(std::max(image->getDepth(), 0));
    // never beyond the pixels the image really has
    count        = std::min<UInt64>(count, image->getSize() / sizeof(UInt16));
    UInt8 *data  = image->getData();
    if(count == 0 || data == NULL)
        return;

    beginEditCP(image);
    VolumeGrids::normalise16(reinterpret_cast<UInt16 *>(data), count, swapBytes);
    endEditCP(image);
}

void VolumeData::readSliceThickness(const ImagePtr &image, bool warnIfMissing)
{
    const std::string *text = image->findAttachmentField("SliceThickness");
    if(text != NULL)
    {
        // what doesn't parse keeps the unit thickness
        double x = 1.0, y = 1.0, z = 1.0;
        std::sscanf(text->c_str(), "%lf %lf %lf", &x, &y, &z);
        _sliceThickness.setValues(Real32(x), Real32(y), Real32(z));
        return;
    }

    // loading warns, adopting a texture only notes it
    if(warnIfMissing)
    {
        FWARNING(("No Slice Thickness found, set to default\n"));
    }
    else
    {
        FNOTICE(("No Slice Thickness found, set to default\n"));
    }
    _sliceThickness.setValues(1.f, 1.f, 1.f);
}

bool VolumeData::loadVolume(std::string fileName, bool swapBytes)
{
    VolumeTextureUtils::ensure(_volumeTexture);

    ImagePtr image    = _volumeTexture->getImage();
    bool     newImage = (image == NullFC);
    if(newImage)
    {
        image = Image::create();
        addRefCP(image);
    }

    if(!image->read(fileName.c_str()))
    {
        FWARNING(("Couldn't load file %s!\n", fileName.c_str()));
        if(newImage)
            subRefCP(image);
        return false;
    }
    std::puts("Volume loaded");

    normalise(image, swapBytes);

    if(const char *bits = bitText(image->getDataType()))
        std::printf("%s", bits);

    readSliceThickness(image, true);

    // whatever the file said, the ray caster reads one channel
    beginEditCP(image);
    image->setPixelFormat(GL_LUMINANCE);
    endEditCP(image);
    SNOTICE << "PixelFormat: " << image->getPixelFormat() << std::endl;

    beginEditCP(_volumeTexture);
    _volumeTexture->setImage(image);
    VolumeTextureUtils::setSampling(_volumeTexture, GL_CLAMP_TO_BORDER, GL_LINEAR);
    _volumeTexture->setInternalFormat(GL_LUMINANCE16);
    endEditCP(_volumeTexture);
    if(newImage)
        subRefCP(image);

    calcVolumeSize();
    reportLoad(image);
    return true;
}

bool VolumeData::setVolume(TextureChunkPtr texture, bool swapBytes)
{
    if(texture == NullFC)
    {
        FWARNING(("VolumeData::setVolume() Couldn't set empty volume!\n"));
        return false;
    }

    addRefCP(texture);
    if(_volumeTexture != NullFC)
        subRefCP(_volumeTexture);
    _volumeTexture = texture;

    ImagePtr image = _volumeTexture->getImage();
    if(image == NullFC)
    {
        FWARNING(("VolumeData::setVolume() Volume texture without image!\n"));
        return false;
    }

    normalise(image, swapBytes);

    const char *bits = bitText(image->getDataType());
    std::puts(bits != NULL ? bits : "?Bit");

    readSliceThickness(image, false);

    const Int32  dataType    = image->getDataType();
    const UInt32 pixelFormat = image->getPixelFormat();
    const bool   singleChannel =
        pixelFormat == GL_LUMINANCE || pixelFormat == GL_INTENSITY || pixelFormat == GL_ALPHA;
    if(dataType == GL_UNSIGNED_SHORT || !singleChannel)
    {
        beginEditCP(image, Image::PixelFormatFieldMask);
        image->setPixelFormat(GL_LUMINANCE);
        endEditCP(image, Image::PixelFormatFieldMask);
        SNOTICE << "PixelFormat: " << image->getPixelFormat() << std::endl;
    }

    const BitVector samplingMask =
        TextureChunk::InternalFormatFieldMask | TextureChunk::MinFilterFieldMask |
        TextureChunk::MagFilterFieldMask | TextureChunk::WrapSFieldMask |
        TextureChunk::WrapTFieldMask | TextureChunk::WrapRFieldMask;
    beginEditCP(_volumeTexture, samplingMask);
    VolumeTextureUtils::setSampling(_volumeTexture, GL_CLAMP_TO_BORDER, GL_LINEAR);
    if(dataType == GL_UNSIGNED_SHORT)
    {
        // the voxels were rewritten: upload all of them again
        _volumeTexture->setInternalFormat(GL_LUMINANCE16);
        const BitVector dirtyMask =
            TextureChunk::DirtyMinXFieldMask | TextureChunk::DirtyMaxXFieldMask |
            TextureChunk::DirtyMinYFieldMask | TextureChunk::DirtyMaxYFieldMask |
            TextureChunk::DirtyMinZFieldMask | TextureChunk::DirtyMaxZFieldMask;
        beginEditCP(_volumeTexture, dirtyMask);
        _volumeTexture->setDirtyMinX(-1);
        _volumeTexture->setDirtyMaxX(-1);
        _volumeTexture->setDirtyMinY(-1);
        _volumeTexture->setDirtyMaxY(-1);
        _volumeTexture->setDirtyMinZ(-1);
        _volumeTexture->setDirtyMaxZ(-1);
        endEditCP(_volumeTexture, dirtyMask);
    }
    endEditCP(_volumeTexture, samplingMask);

    calcVolumeSize();
    reportLoad(image);
    return true;
}

void VolumeData::calcVolumeSize(void)
{
    UInt16   w = 0, h = 0, d = 0;
    ImagePtr image = getVolumeImage();
    if(image != NullFC)
    {
        // read as 16 bits, as the extent always was
        w = UInt16(image->getWidth());
        h = UInt16(image->getHeight());
        d = UInt16(image->getDepth());
    }

    // the smallest normal float keeps an empty image from dividing by 0
    Real32 longest = std::max(std::max(FLT_MIN, Real32(w)), std::max(Real32(h), Real32(d)));

    std::printf("Volume Slice Thickness %f %f %f; ",
                double(_sliceThickness[0]), double(_sliceThickness[1]),
                double(_sliceThickness[2]));

    double f = 4.0 / longest;
    _volumeSize.setValues(Real32(_sliceThickness[0] * f * w),
                          Real32(_sliceThickness[1] * f * h),
                          Real32(_sliceThickness[2] * f * d));

    SNOTICE << "size: " << _volumeSize << std::endl;
}

void VolumeData::reportLoad(const ImagePtr &image) const
{
    std::printf("Resolution of Volume %f %f %f\n",
                double(image != NullFC ? image->getWidth() : 0),
                double(image != NullFC ? image->getHeight() : 0),
                double(image != NullFC ? image->getDepth() : 0));
    std::printf("Size of Volume %f %f %f\n", double(_volumeSize[0]),
                double(_volumeSize[1]), double(_volumeSize[2]));
    if(image != NullFC)
        image->dump(0, 0);
}

bool VolumeData::resizeVolume(int multiple)
{
    if(_volumeTexture == NullFC)
    {
        FWARNING(("The input volume is empty.\n"));
        return false;
    }
    ImagePtr image = _volumeTexture->getImage();
    if(image == NullFC)
    {
        FWARNING(("The input volume has no valid image.\n"));
        return false;
    }
    // -1 is how the block grid says that nothing needs padding
    if(multiple <= 0)
        return true;

    const UInt32 w  = UInt32(std::max(image->getWidth(), 0));
    const UInt32 h  = UInt32(std::max(image->getHeight(), 0));
    const UInt32 d  = UInt32(std::max(image->getDepth(), 0));
    const UInt32 pw = VolumeGrids::paddedEdge(w, UInt32(multiple));
    const UInt32 ph = VolumeGrids::paddedEdge(h, UInt32(multiple));
    const UInt32 pd = VolumeGrids::paddedEdge(d, UInt32(multiple));

    SNOTICE << "Resize Volume Res: " << pw << ", " << ph << ", " << pd << std::endl;

    const Int32 dataType = image->getDataType();
    if(dataType != GL_UNSIGNED_BYTE && dataType != GL_UNSIGNED_SHORT)
        return true;

    ImagePtr padded = Image::create();
    addRefCP(padded);
    padded->set(GL_LUMINANCE, pw, ph, pd, 1, 1, 0.0, NULL, dataType, true, 1);
    if(padded->getData() == NULL)
    {
        FWARNING(("The input volume could not be padded to %u x %u x %u.\n", pw, ph, pd));
        subRefCP(padded);
        return false;
    }
    beginEditCP(padded);
    padded->clear(0);
    // the old voxels are taken as one channel, as loading made them; a
    // block too short for them leaves the padding zero
    const UInt32 voxelBytes = dataType == GL_UNSIGNED_SHORT ? 2 : 1;
    const UInt8 *old        = image->getData();
    if(old != NULL && image->getSize() >= UInt64(w) * h * d * voxelBytes)
        VolumeGrids::padVolume(old, w, h, d, padded->getData(), pw, ph, pd, voxelBytes);
    endEditCP(padded);

    beginEditCP(_volumeTexture);
    _volumeTexture->setImage(padded);
    _volumeTexture->setInternalFormat(GL_LUMINANCE16);
    VolumeTextureUtils::setSampling(
        _volumeTexture, dataType == GL_UNSIGNED_BYTE ? GL_CLAMP_TO_EDGE : GL_CLAMP_TO_BORDER,
        GL_LINEAR);
    _volumeTexture->imageContentChanged(-1, -1, -1, -1, -1, -1);
    endEditCP(_volumeTexture);
    subRefCP(padded);
    return true;
}
