#ifndef _VOLUMEDATA_H_
#define _VOLUMEDATA_H_

#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGVector.h>

#include <string>

class BlockVolume;
class BitVolume;

/// One loaded scalar volume: the 3-D texture whose image holds the voxels,
/// the slice thickness, the extent in world units, and the block and bit
/// grids that empty-space skipping builds from it.
///
/// Whatever is loaded or adopted is brought into the one form the ray
/// caster expects: a single-channel luminance image, filtered linearly,
/// clamped at the border, 16-bit voxels stretched over the whole 16-bit
/// range (data whose largest value is below 4096 is taken to be 12-bit and
/// multiplied by 16). The longest edge of a volume with unit slice
/// thickness measures 4 world units.
///
/// Progress of a load goes to standard output; failures are a false result
/// and a warning in the log.
class VolumeData
{
  public:
    VolumeData(void);
    /// Copies the extent only: the copy has no texture, a zero slice
    /// thickness and no grids.
    VolumeData(const VolumeData &source);
    ~VolumeData(void);

    /// Reads a volume file through Image::read (any format the image
    /// loaders know) into the texture, swapping the bytes of 16-bit voxels
    /// when asked. False, with a warning, when the file can't be read.
    bool loadVolume(std::string fileName, bool swapBytes);

    /// Adopts a texture chunk that already holds an image and normalises
    /// it in place. False, with a warning, for a null chunk (nothing
    /// changes) or a chunk without image (the chunk is kept).
    bool setVolume(osg::TextureChunkPtr texture, bool swapBytes);

    /// Pads the volume with zeros at the high end of each axis until every
    /// edge is a multiple of `multiple`; the voxels keep their indices and
    /// the extent keeps describing the unpadded volume. A negative multiple
    /// asks for nothing and succeeds.
    bool resizeVolume(int multiple);

    /// Recomputes the extent from the image's edges and the thickness.
    void calcVolumeSize(void);

    /// The 3-D texture of the voxels; NullFC before a load.
    osg::TextureChunkPtr getVolumeTextureChunk(void) const { return _volumeTexture; }

    /// The volume's image, NullFC without chunk or image.
    osg::ImagePtr getVolumeImage(void) const;

    /// The extent in world units.
    const osg::Vec3f &getVolumeSize(void) const { return _volumeSize; }
    /// The voxel spacing, x y z, from the image's "SliceThickness".
    const osg::Vec3f &getSliceThickness(void) const { return _sliceThickness; }

    /// The grids of empty-space skipping; NULL until they are built.
    /// @{
    BitVolume   *getBitVolume(void) const { return _bitVolume; }
    BlockVolume *getBlockVolume(void) const { return _blockVolume; }
    /// @}

    /// The grids are owned: setting another one deletes the former.
    /// @{
    void setBitVolume(BitVolume *bitVolume);
    void setBlockVolume(BlockVolume *blockVolume);
    /// @}

  private:
    VolumeData &operator=(const VolumeData &source);

    /// Byte swap and 12-bit expansion of 16-bit voxels, then one edit of
    /// the image with all fields.
    void normalise(const osg::ImagePtr &image, bool swapBytes);

    /// Reads "SliceThickness"; without it the thickness is (1, 1, 1) and
    /// the report goes out at warning or at notice level.
    void readSliceThickness(const osg::ImagePtr &image, bool warnIfMissing);

    /// "Resolution of Volume ..." and "Size of Volume ..." on standard
    /// output, then the image's dump.
    void reportLoad(const osg::ImagePtr &image) const;

    BitVolume           *_bitVolume;
    BlockVolume         *_blockVolume;
    osg::Vec3f           _volumeSize;
    osg::Vec3f           _sliceThickness;
    osg::TextureChunkPtr _volumeTexture;
};

#endif
