// Volume classification at load time and at each change of the transfer
// function, each next to a memcpy of the bytes it reads: the 16-bit
// normalisation of a 512^3 volume, the block grid and the bit grid of a
// 256^3 volume, the 8-bit pre-integration table and the dependent table.
#include "QuietStdout.h"
#include <OpenSG/BitVolume.h>
#include <OpenSG/BlockVolume.h>
#include <OpenSG/SimpleTransferfunction.h>
#include <OpenSG/TransferTables.h>
#include <OpenSG/VolumeData.h>
#include <OpenSG/VolumeGrids.h>
#include <OpenSG/OSGBaseInitFunctions.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <random>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

using namespace osg;
using corvanebench::QuietStdout;

namespace
{

const UInt64 Edge512 = 512;
const UInt64 Edge256 = 256;

/// Smooth-ish random voxels: runs of one value, as in scanned data, so
/// that the block grid is not all full ranges.
template <class T>
std::vector<T> makeVoxels(UInt64 count, UInt32 maxValue, UInt32 seed)
{
    std::vector<T> v(count);
    std::mt19937   random(seed);
    T              value = 0;
    for(UInt64 i = 0; i < count; ++i)
    {
        if((i & 63) == 0)
            value = T(random() % (maxValue + 1));
        v[i] = value;
    }
    return v;
}

void bytesProcessed(benchmark::State &state, UInt64 bytes)
{
    state.SetBytesProcessed(Int64(state.iterations() * bytes));
}

// --- 16-bit normalisation, 512^3 ------------------------------------------------------

void BM_Normalise16_512(benchmark::State &state)
{
    const bool          swap = state.range(0) != 0;
    std::vector<UInt16> voxels =
        makeVoxels<UInt16>(Edge512 * Edge512 * Edge512, 65535, 1);
    for(auto _ : state)
    {
        bool expanded = VolumeGrids::normalise16(voxels.data(), voxels.size(), swap);
        benchmark::DoNotOptimize(expanded);
    }
    bytesProcessed(state, voxels.size() * 2);
}
BENCHMARK(BM_Normalise16_512)->Arg(0)->Arg(1)->ArgNames({"swap"})->Unit(benchmark::kMillisecond);

// 12-bit data: the scan and then the multiplication by 16 (zeros stay
// below 4096, so every round takes both passes)
void BM_Normalise16_512_12Bit(benchmark::State &state)
{
    std::vector<UInt16> voxels(Edge512 * Edge512 * Edge512, 0);
    for(auto _ : state)
    {
        bool expanded = VolumeGrids::normalise16(voxels.data(), voxels.size(), false);
        benchmark::DoNotOptimize(expanded);
    }
    bytesProcessed(state, voxels.size() * 2);
}
BENCHMARK(BM_Normalise16_512_12Bit)->Unit(benchmark::kMillisecond);

void BM_Memcpy_512Cube16(benchmark::State &state)
{
    std::vector<UInt16> from(Edge512 * Edge512 * Edge512, 1), to(from.size());
    for(auto _ : state)
    {
        std::memcpy(to.data(), from.data(), from.size() * 2);
        benchmark::ClobberMemory();
    }
    bytesProcessed(state, from.size() * 2);
}
BENCHMARK(BM_Memcpy_512Cube16)->Unit(benchmark::kMillisecond);

// --- block grid, 256^3 --------------------------------------------------------------------

template <class T>
void BM_BlockMinMax_256(benchmark::State &state)
{
    const UInt64   count  = Edge256 * Edge256 * Edge256;
    std::vector<T> voxels = makeVoxels<T>(count, sizeof(T) == 1 ? 255 : 65535, 2);
    std::vector<T> cells(32 * 32 * 32 * 2);
    for(auto _ : state)
    {
        VolumeGrids::blockMinMax(voxels.data(), 256, 256, 256, 8, cells.data());
        benchmark::ClobberMemory();
    }
    bytesProcessed(state, count * sizeof(T));
}
BENCHMARK_TEMPLATE(BM_BlockMinMax_256, UInt8)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_BlockMinMax_256, UInt16)->Unit(benchmark::kMillisecond);

template <class T>
void BM_Memcpy_256Cube(benchmark::State &state)
{
    std::vector<T> from(Edge256 * Edge256 * Edge256, 1), to(from.size());
    for(auto _ : state)
    {
        std::memcpy(to.data(), from.data(), from.size() * sizeof(T));
        benchmark::ClobberMemory();
    }
    bytesProcessed(state, from.size() * sizeof(T));
}
BENCHMARK_TEMPLATE(BM_Memcpy_256Cube, UInt8)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Memcpy_256Cube, UInt16)->Unit(benchmark::kMillisecond);

/// The whole class path: grid image, texture chunk, no padding needed.
void BM_CalcBlockVolumen_256(benchmark::State &state)
{
    std::vector<UInt8> voxels = makeVoxels<UInt8>(Edge256 * Edge256 * Edge256, 255, 3);
    ImagePtr           image  = Image::create();
    image->set(GL_LUMINANCE, 256, 256, 256, 1, 1, 0.0, voxels.data(), GL_UNSIGNED_BYTE, true, 1);
    TextureChunkPtr chunk = TextureChunk::create();
    beginEditCP(chunk);
    chunk->setImage(image);
    endEditCP(chunk);
    VolumeData volume;
    {
        QuietStdout quiet;
        volume.setVolume(chunk, false);
    }
    BlockVolume block;
    for(auto _ : state)
        benchmark::DoNotOptimize(block.calcBlockVolumen(volume, 8));
    bytesProcessed(state, voxels.size());
}
BENCHMARK(BM_CalcBlockVolumen_256)->Unit(benchmark::kMillisecond);

// --- bit grid of a 256^3 volume: 32^3 cells ------------------------------------------------

template <class T>
void BM_BitGrid_256(benchmark::State &state)
{
    const bool          sixteen = sizeof(T) == 2;
    const UInt32        values  = sixteen ? 65536 : 256;
    std::vector<T>      cells   = makeVoxels<T>(32 * 32 * 32 * 2, values - 1, 4);
    std::vector<Real32> sum(values);
    for(UInt32 i = 0; i < values; ++i)
        sum[i] = (i % 300 < 100) ? 0.f : float(i);
    std::vector<UInt8> bits(32 * 32 * 32);
    for(auto _ : state)
    {
        VolumeGrids::bitGrid(cells.data(), bits.size(), sum.data(), sum.size(), bits.data());
        benchmark::ClobberMemory();
    }
    bytesProcessed(state, cells.size() * sizeof(T));
}
BENCHMARK_TEMPLATE(BM_BitGrid_256, UInt8)->Unit(benchmark::kMicrosecond);
BENCHMARK_TEMPLATE(BM_BitGrid_256, UInt16)->Unit(benchmark::kMicrosecond);

template <class T>
void BM_Memcpy_256Grid(benchmark::State &state)
{
    std::vector<T> from(32 * 32 * 32 * 2, 1), to(from.size());
    for(auto _ : state)
    {
        std::memcpy(to.data(), from.data(), from.size() * sizeof(T));
        benchmark::ClobberMemory();
    }
    bytesProcessed(state, from.size() * sizeof(T));
}
BENCHMARK_TEMPLATE(BM_Memcpy_256Grid, UInt8)->Unit(benchmark::kMicrosecond);
BENCHMARK_TEMPLATE(BM_Memcpy_256Grid, UInt16)->Unit(benchmark::kMicrosecond);

// --- tables of an 8-bit transfer function -------------------------------------------------

std::vector<UInt8> ramp8Bit(void)
{
    std::vector<UInt8> table(256 * 4);
    for(UInt32 i = 0; i < table.size(); ++i)
        table[i] = UInt8((i * 37) & 0xFF);
    return table;
}

void BM_PreIntegrate8Bit(benchmark::State &state)
{
    std::vector<UInt8> table = ramp8Bit();
    std::vector<UInt8> out(256 * 256 * 8);
    for(auto _ : state)
    {
        TransferTables::preIntegrateBytes(table.data(), table.size(), out.data(), out.size());
        benchmark::ClobberMemory();
    }
    bytesProcessed(state, table.size());
}
BENCHMARK(BM_PreIntegrate8Bit)->Unit(benchmark::kMicrosecond);

void BM_MaxOpacityTable8Bit(benchmark::State &state)
{
    std::vector<UInt8> table = ramp8Bit();
    std::vector<UInt8> out(256 * 256);
    for(auto _ : state)
    {
        TransferTables::maxOpacityTable(table.data(), table.size(), 256, out.data());
        benchmark::ClobberMemory();
    }
    bytesProcessed(state, table.size());
}
BENCHMARK(BM_MaxOpacityTable8Bit)->Unit(benchmark::kMicrosecond);

/// The whole class path of the dependent table: image and chunk.
void BM_CalcDependTransferTextur(benchmark::State &state)
{
    SimpleTransferfunction tf;
    tf.createLinearTransfer(0);
    tf.calcSummedAreaTable();
    for(auto _ : state)
        benchmark::DoNotOptimize(tf.calcDependTransferTextur());
    bytesProcessed(state, 256 * 4);
}
BENCHMARK(BM_CalcDependTransferTextur)->Unit(benchmark::kMicrosecond);

void BM_Memcpy_8BitTable(benchmark::State &state)
{
    std::vector<UInt8> from = ramp8Bit(), to(from.size());
    for(auto _ : state)
    {
        std::memcpy(to.data(), from.data(), from.size());
        benchmark::ClobberMemory();
    }
    bytesProcessed(state, from.size());
}
BENCHMARK(BM_Memcpy_8BitTable)->Unit(benchmark::kMicrosecond);

} // namespace
