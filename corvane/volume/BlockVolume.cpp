#include <OpenSG/BlockVolume.h>
#include <OpenSG/VolumeData.h>
#include <OpenSG/VolumeGrids.h>
#include <OpenSG/VolumeTextureUtils.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>

#include <algorithm>
#include <cstdio>

OSG_USING_NAMESPACE

BlockVolume::BlockVolume(void) : _blockVolumeTexture(NullFC)
{
}

BlockVolume::BlockVolume(const BlockVolume &source)
    : _blockVolumeTexture(source._blockVolumeTexture)
{
    // both objects release the texture when they go, so each holds it
    if(_blockVolumeTexture != NullFC)
        addRefCP(_blockVolumeTexture);
}

BlockVolume::~BlockVolume(void)
{
    VolumeTextureUtils::release(_blockVolumeTexture);
}

ImagePtr BlockVolume::getBlockVolumeImage(void) const
{
    return _blockVolumeTexture != NullFC ? _blockVolumeTexture->getImage() : ImagePtr(NullFC);
}

bool BlockVolume::calcBlockVolumen(VolumeData &volume, int blockSize)
{
    ImagePtr image = volume.getVolumeImage();
    if(image == NullFC)
    {
        FWARNING(("Das Eingabevolumen ist leer\n"));
        return false;
    }
    if(blockSize < 1)
    {
        FWARNING(("BlockVolume::calcBlockVolumen: block size %d is not positive\n", blockSize));
        return false;
    }

    const UInt32 bs = UInt32(blockSize);
    if(UInt32(std::max(image->getWidth(), 0)) % bs + UInt32(std::max(image->getHeight(), 0)) % bs +
           UInt32(std::max(image->getDepth(), 0)) % bs != 0)
    {
        volume.resizeVolume(blockSize);
        image = volume.getVolumeImage();
    }
    else
    {
        volume.resizeVolume(-1);
    }

    const UInt32 w        = UInt32(std::max(image->getWidth(), 0));
    const UInt32 h        = UInt32(std::max(image->getHeight(), 0));
    const UInt32 d        = UInt32(std::max(image->getDepth(), 0));
    const Int32  dataType = image->getDataType();

    ImagePtr grid = Image::create();
    addRefCP(grid);
    if(dataType == GL_UNSIGNED_BYTE || dataType == GL_UNSIGNED_SHORT)
    {
        beginEditCP(grid);
        grid->set(GL_LUMINANCE_ALPHA, w / bs, h / bs, d / bs, 1, 1, 0.0, NULL, dataType, true, 1);
        const UInt32 voxelBytes = dataType == GL_UNSIGNED_SHORT ? 2 : 1;
        const UInt64 cells      = UInt64(w / bs) * (h / bs) * (d / bs);
        const UInt8 *voxels     = image->getData();
        UInt8       *out        = grid->getData();
        // the voxels are one channel of the type; both blocks must hold
        // what the grid walks over
        if(voxels != NULL && out != NULL &&
           image->getSize() >= UInt64(w) * h * d * voxelBytes &&
           grid->getSize() >= cells * 2 * voxelBytes)
        {
            if(dataType == GL_UNSIGNED_SHORT)
            {
                VolumeGrids::blockMinMax(reinterpret_cast<const UInt16 *>(voxels), w, h, d, bs,
                                         reinterpret_cast<UInt16 *>(out));
            }
            else
            {
                VolumeGrids::blockMinMax(voxels, w, h, d, bs, out);
            }
        }
        endEditCP(grid);
    }
    else
    {
        std::printf("Unknown Volume Format");
    }

    VolumeTextureUtils::ensure(_blockVolumeTexture);
    beginEditCP(_blockVolumeTexture);
    _blockVolumeTexture->setImage(grid);
    VolumeTextureUtils::setSampling(_blockVolumeTexture, GL_CLAMP_TO_EDGE, GL_NEAREST);
    endEditCP(_blockVolumeTexture);
    subRefCP(grid);
    return true;
}
