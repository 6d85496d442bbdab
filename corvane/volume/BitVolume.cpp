#include <OpenSG/BitVolume.h>
#include <OpenSG/VolumeGrids.h>
#include <OpenSG/VolumeTextureUtils.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>

#include <algorithm>
#include <cstdio>

OSG_USING_NAMESPACE

BitVolume::BitVolume(void) : _bitVolumeImage(NullFC), _bitVolumeTexture(NullFC)
{
}

BitVolume::BitVolume(const BitVolume &source)
    : _bitVolumeImage(source._bitVolumeImage), _bitVolumeTexture(source._bitVolumeTexture)
{
    // both objects release them when they go, so each holds them
    if(_bitVolumeImage != NullFC)
        addRefCP(_bitVolumeImage);
    if(_bitVolumeTexture != NullFC)
        addRefCP(_bitVolumeTexture);
}

BitVolume::~BitVolume(void)
{
    if(_bitVolumeImage != NullFC)
        subRefCP(_bitVolumeImage);
    VolumeTextureUtils::release(_bitVolumeTexture);
}

bool BitVolume::calcBitVolumen(const ImagePtr &blockImage, const ImagePtr &saImage)
{
    if(blockImage == NullFC)
    {
        FWARNING(("Blockvolume is empty\n"));
        return false;
    }
    if(saImage == NullFC)
    {
        FWARNING(("Summed Area Table is empty\n"));
        return false;
    }
    if(_bitVolumeImage == NullFC)
    {
        _bitVolumeImage = Image::create();
        addRefCP(_bitVolumeImage);
    }

    const Int32 w        = std::max(blockImage->getWidth(), 0);
    const Int32 h        = std::max(blockImage->getHeight(), 0);
    const Int32 d        = std::max(blockImage->getDepth(), 0);
    const Int32 dataType = blockImage->getDataType();
    if(dataType == GL_UNSIGNED_BYTE || dataType == GL_UNSIGNED_SHORT)
    {
        beginEditCP(_bitVolumeImage);
        _bitVolumeImage->set(GL_ALPHA, w, h, d, 1, 1, 0.0, NULL, GL_UNSIGNED_BYTE, true, 1);

        const UInt64  cells     = UInt64(w) * h * d;
        const UInt32  cellBytes = dataType == GL_UNSIGNED_SHORT ? 4 : 2;
        const UInt8  *grid      = blockImage->getData();
        UInt8        *bits      = _bitVolumeImage->getData();
        // the sum is read as floats, whatever made it
        const Real32 *sum      = reinterpret_cast<const Real32 *>(saImage->getData());
        const UInt64  sumCount = sum != NULL ? saImage->getSize() / sizeof(Real32) : 0;
        if(grid != NULL && bits != NULL && blockImage->getSize() >= cells * cellBytes &&
           _bitVolumeImage->getSize() >= cells)
        {
            if(dataType == GL_UNSIGNED_SHORT)
            {
                VolumeGrids::bitGrid(reinterpret_cast<const UInt16 *>(grid), cells, sum,
                                     sumCount, bits);
            }
            else
            {
                VolumeGrids::bitGrid(grid, cells, sum, sumCount, bits);
            }
        }
        endEditCP(_bitVolumeImage);
    }
    else
    {
        std::printf("Unknown Volume Format");
    }

    VolumeTextureUtils::ensure(_bitVolumeTexture);
    beginEditCP(_bitVolumeTexture);
    _bitVolumeTexture->setImage(_bitVolumeImage);
    _bitVolumeTexture->setInternalFormat(GL_ALPHA16);
    VolumeTextureUtils::setSampling(_bitVolumeTexture, GL_CLAMP_TO_EDGE, GL_NEAREST);
    endEditCP(_bitVolumeTexture);
    return true;
}
