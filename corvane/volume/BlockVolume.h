#ifndef _BLOCKVOLUME_H_
#define _BLOCKVOLUME_H_

#include <OpenSG/OSGTextureChunk.h>

class VolumeData;

/// The min/max grid of a volume for empty-space skipping: one cell for each
/// block of voxels, holding the smallest and the largest value of the block
/// and of the voxels that border it.
class BlockVolume
{
  public:
    BlockVolume(void);
    /// Shares the texture of source.
    BlockVolume(const BlockVolume &source);
    ~BlockVolume(void);

    /// Builds the grid for blocks of blockSize^3 voxels, padding the volume
    /// first when an edge isn't a multiple of it. The cells form a
    /// GL_LUMINANCE_ALPHA image of the voxels' type, minimum then maximum.
    /// False, with a warning, when the volume has no image.
    bool calcBlockVolumen(VolumeData &volume, int blockSize);

    /// The (min, max) grid as a texture; NullFC before the first
    /// calcBlockVolumen.
    osg::TextureChunkPtr getBlockVolumeTexture(void) const { return _blockVolumeTexture; }

    /// The grid's image, NullFC before the first calcBlockVolumen.
    osg::ImagePtr getBlockVolumeImage(void) const;

  private:
    BlockVolume &operator=(const BlockVolume &source);

    osg::TextureChunkPtr _blockVolumeTexture;
};

#endif
