/// The visit bits of the block grid: 255 for a block whose value range
/// holds anything visible under the current transfer function, 0 for one
/// the ray caster may skip. Cheap to rebuild on every change of the
/// transfer function: one lookup pair a block.
#ifndef _BITVOLUME_H_
#define _BITVOLUME_H_

#include <OpenSG/OSGTextureChunk.h>

class BitVolume
{
  public:
    BitVolume(void);
    /// Shares the image and the texture of source.
    BitVolume(const BitVolume &source);
    ~BitVolume(void);

    /// Marks the cells of the block grid from the prefix sum of opacity
    /// (the image of the transfer function's summed area table). False,
    /// with a warning, when either image is missing.
    bool calcBitVolumen(const osg::ImagePtr &blockImage, const osg::ImagePtr &saImage);

    /// One byte a block, 255 where the block holds anything visible, as an
    /// image and as the texture the traversal reads; NullFC before the
    /// first calcBitVolumen.
    /// @{
    osg::ImagePtr getBitVolumeImage(void) const { return _bitVolumeImage; }
    osg::TextureChunkPtr getBitVolumeTexture(void) const { return _bitVolumeTexture; }
    /// @}

  private:
    BitVolume &operator=(const BitVolume &source);

    osg::ImagePtr        _bitVolumeImage;
    osg::TextureChunkPtr _bitVolumeTexture;
};

#endif
