/// The voxel arithmetic of volume loading and empty-space skipping on plain
/// buffers: the normalisation of 16-bit voxels, padding, the min/max grid
/// of blocks and the visit bits of that grid. VolumeData, BlockVolume and
/// BitVolume feed these from their images; keeping them apart lets them be
/// measured and checked without GL.
///
/// Volumes are single-channel, x fastest, then y, then z.
#ifndef _VOLUMEGRIDS_H_
#define _VOLUMEGRIDS_H_

#include <OpenSG/OSGBaseTypes.h>

class VolumeGrids
{
  public:
    /// Swaps the bytes of every voxel when asked, and returns the largest
    /// value after the swap: one pass, vectorised.
    static osg::UInt16 swapAndMax(osg::UInt16 *voxels, osg::UInt64 count, bool swapBytes);

    /// Multiplies every voxel by 16.
    static void expand12Bit(osg::UInt16 *voxels, osg::UInt64 count);

    /// swapAndMax, then expand12Bit when the largest value is below 4096:
    /// such data is taken to be 12-bit. True when it was expanded.
    static bool normalise16(osg::UInt16 *voxels, osg::UInt64 count, bool swapBytes);

    /// The edge raised to the next multiple (unchanged when it is one).
    static osg::UInt32 paddedEdge(osg::UInt32 edge, osg::UInt32 multiple);

    /// Copies a w x h x d volume to the same indices of a zero-filled
    /// pw x ph x pd one (each edge at least as long).
    static void padVolume(const osg::UInt8 *src,
                          osg::UInt32       w,
                          osg::UInt32       h,
                          osg::UInt32       d,
                          osg::UInt8       *dst,
                          osg::UInt32       pw,
                          osg::UInt32       ph,
                          osg::UInt32       pd,
                          osg::UInt32       bytesPerVoxel);

    /// The min/max grid: for each block of blockSize^3 voxels (edges
    /// w / blockSize and so on, x fastest) the smallest and the largest
    /// voxel of the block grown by one voxel on each side, clipped to the
    /// volume, stored as the pair (min, max).
    /// @{
    static void blockMinMax(const osg::UInt8 *voxels,
                            osg::UInt32       w,
                            osg::UInt32       h,
                            osg::UInt32       d,
                            osg::UInt32       blockSize,
                            osg::UInt8       *cells);
    static void blockMinMax(const osg::UInt16 *voxels,
                            osg::UInt32        w,
                            osg::UInt32        h,
                            osg::UInt32        d,
                            osg::UInt32        blockSize,
                            osg::UInt16       *cells);
    /// @}

    /// Whether a block with the value range m to M holds anything visible,
    /// from the prefix sum of opacity (sum[i]: all opacity up to and
    /// including value i; indices past its end read its last entry). A
    /// range of 0 alone is always visited; a single value counts its own
    /// opacity; a range counts the opacity above m. A 16-bit range without
    /// opacity is still visited when anything below it is opaque.
    static bool visitBlock(osg::UInt32        m,
                           osg::UInt32        M,
                           const osg::Real32 *sum,
                           osg::UInt64        sumCount,
                           bool               sixteenBit);

    /// visitBlock for each (min, max) pair of a grid: 255 or 0 per cell.
    /// @{
    static void bitGrid(const osg::UInt8  *cells,
                        osg::UInt64        cellCount,
                        const osg::Real32 *sum,
                        osg::UInt64        sumCount,
                        osg::UInt8        *bits);
    static void bitGrid(const osg::UInt16 *cells,
                        osg::UInt64        cellCount,
                        const osg::Real32 *sum,
                        osg::UInt64        sumCount,
                        osg::UInt8        *bits);
    /// @}
};

#endif
