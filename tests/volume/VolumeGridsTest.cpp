// The voxel arithmetic on plain buffers: the vectorised scan of 16-bit
// normalisation, the block grid against its definition, the visit bits.
#include <OpenSG/VolumeGrids.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

using namespace osg;

// --- 16-bit normalisation ------------------------------------------------------------

TEST(VolumeNormalise16, MaximumFoundInEveryLaneAndInTheTail)
{
    for(UInt32 at : {0u, 17u, 31u, 32u, 95u, 96u, 100u})
    {
        std::vector<UInt16> voxels(101, 1);
        voxels[at] = 5000;
        EXPECT_EQ(VolumeGrids::swapAndMax(voxels.data(), voxels.size(), false), 5000) << at;
        EXPECT_EQ(VolumeGrids::swapAndMax(voxels.data(), voxels.size(), true), 0x8813) << at;
    }
    EXPECT_FALSE(VolumeGrids::normalise16(NULL, 0, true));
}

// --- the block grid ----------------------------------------------------------------------

namespace
{

/// The grid as its definition reads: every voxel of every grown block.
template <class T>
std::vector<T> referenceGrid(const std::vector<T> &v, int w, int h, int d, int bs)
{
    const int      bw = w / bs, bh = h / bs, bd = d / bs;
    std::vector<T> cells(size_t(bw) * bh * bd * 2);
    for(int bz = 0; bz < bd; ++bz)
        for(int by = 0; by < bh; ++by)
            for(int bx = 0; bx < bw; ++bx)
            {
                T lo = std::numeric_limits<T>::max(), hi = 0;
                for(int z = bz * bs - 1; z <= bz * bs + bs; ++z)
                    for(int y = by * bs - 1; y <= by * bs + bs; ++y)
                        for(int x = bx * bs - 1; x <= bx * bs + bs; ++x)
                        {
                            if(x < 0 || y < 0 || z < 0 || x >= w || y >= h || z >= d)
                                continue;
                            T value = v[(size_t(z) * h + y) * w + x];
                            lo      = std::min(lo, value);
                            hi      = std::max(hi, value);
                        }
                size_t cell       = (size_t(bz) * bh + by) * bw + bx;
                cells[cell * 2]     = lo;
                cells[cell * 2 + 1] = hi;
            }
    return cells;
}

} // namespace

TEST(VolumeBlockGrid, BordersReachOneVoxelIntoTheNeighbours)
{
    // 16^3 of 100: the low cell along x sees up to index 8, the high one
    // from index 7
    std::vector<UInt8> v(16 * 16 * 16, 100);
    auto at = [&](int x, int y, int z) -> UInt8 & { return v[(z * 16 + y) * 16 + x]; };
    at(8, 2, 2)  = 5;   // both cells along x
    at(9, 3, 3)  = 200; // the high cell only
    at(6, 4, 4)  = 150; // the low cell only
    at(1, 1, 7)  = 1;   // both cells along z
    std::vector<UInt8> cells(2 * 2 * 2 * 2);
    VolumeGrids::blockMinMax(v.data(), 16, 16, 16, 8, cells.data());

    auto cell = [&](int bx, int by, int bz) { return ((bz * 2 + by) * 2 + bx) * 2; };
    EXPECT_EQ(cells[cell(0, 0, 0)], 1);
    EXPECT_EQ(cells[cell(0, 0, 0) + 1], 150);
    EXPECT_EQ(cells[cell(1, 0, 0)], 5);
    EXPECT_EQ(cells[cell(1, 0, 0) + 1], 200);
    EXPECT_EQ(cells[cell(0, 0, 1)], 1) << "z = 7 borders the upper slab";
    EXPECT_EQ(cells[cell(1, 1, 1)], 100);
    EXPECT_EQ(cells[cell(1, 1, 1) + 1], 100);
}

TEST(VolumeBlockGrid, MatchesTheDefinitionOnRandomVolumes)
{
    std::mt19937 random(11);
    {
        const int          w = 24, h = 16, d = 8;
        std::vector<UInt8> v(w * h * d);
        for(UInt8 &x : v)
            x = UInt8(random());
        std::vector<UInt8> cells(3 * 2 * 1 * 2);
        VolumeGrids::blockMinMax(v.data(), w, h, d, 8, cells.data());
        EXPECT_EQ(cells, referenceGrid(v, w, h, d, 8));
    }
    {
        const int           w = 12, h = 20, d = 16;
        std::vector<UInt16> v(w * h * d);
        for(UInt16 &x : v)
            x = UInt16(random());
        std::vector<UInt16> cells(3 * 5 * 4 * 2);
        VolumeGrids::blockMinMax(v.data(), w, h, d, 4, cells.data());
        EXPECT_EQ(cells, referenceGrid(v, w, h, d, 4));
    }
}

// --- visit bits ----------------------------------------------------------------------------

namespace
{

std::vector<Real32> prefixSum(const std::vector<Real32> &opacity)
{
    std::vector<Real32> sum(opacity.size());
    Real32              s = 0.f;
    for(size_t i = 0; i < opacity.size(); ++i)
        sum[i] = s += opacity[i];
    return sum;
}

} // namespace

TEST(VolumeVisitBits, ConstantBlockOfZeroIsAlwaysVisited)
{
    std::vector<Real32> sum(256, 0.f);
    EXPECT_TRUE(VolumeGrids::visitBlock(0, 0, sum.data(), sum.size(), false));
    EXPECT_TRUE(VolumeGrids::visitBlock(0, 0, sum.data(), sum.size(), true));
    EXPECT_TRUE(VolumeGrids::visitBlock(0, 0, NULL, 0, false));
}

TEST(VolumeVisitBits, ConstantBlockCountsItsOwnOpacityAboveThreshold)
{
    std::vector<Real32> opacity(256, 0.f);
    opacity[40] = 0.0002f;
    opacity[41] = 0.00005f;
    opacity[39] = 1.f; // below: must not count
    std::vector<Real32> sum = prefixSum(opacity);
    EXPECT_TRUE(VolumeGrids::visitBlock(40, 40, sum.data(), sum.size(), false));
    EXPECT_FALSE(VolumeGrids::visitBlock(41, 41, sum.data(), sum.size(), false));
    EXPECT_FALSE(VolumeGrids::visitBlock(41, 41, sum.data(), sum.size(), true));
}

TEST(VolumeVisitBits, RangeLeavesOutTheOpacityOfItsMinimum)
{
    std::vector<Real32> opacity(256, 0.f);
    opacity[10] = 1.f;
    std::vector<Real32> sum = prefixSum(opacity);
    EXPECT_FALSE(VolumeGrids::visitBlock(10, 20, sum.data(), sum.size(), false));
    EXPECT_TRUE(VolumeGrids::visitBlock(9, 20, sum.data(), sum.size(), false));
    EXPECT_TRUE(VolumeGrids::visitBlock(5, 10, sum.data(), sum.size(), false));
}

TEST(VolumeVisitBits, ValuesPastTheSumReadItsTotal)
{
    // a 16-bit grid against a 256-entry sum must not read past it
    std::vector<Real32> opacity(256, 0.f);
    opacity[255] = 1.f;
    std::vector<Real32> sum = prefixSum(opacity);
    EXPECT_FALSE(VolumeGrids::visitBlock(300, 60000, sum.data(), sum.size(), false));
    EXPECT_TRUE(VolumeGrids::visitBlock(300, 60000, sum.data(), sum.size(), true));
    EXPECT_TRUE(VolumeGrids::visitBlock(200, 60000, sum.data(), sum.size(), false));
}

