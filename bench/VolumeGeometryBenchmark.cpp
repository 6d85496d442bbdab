// The CPU side of the ray caster's geometry: the precomputed normal volume
// of a 256^3 volume next to a memcpy of the voxels it reads (and of the
// normals it writes), and the boundary proxy of a 64^3 block grid, built
// and updated.
#include <OpenSG/BVGeometry.h>
#include <OpenSG/PreCentralDiffNormal.h>
#include <OpenSG/OSGImage.h>

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstring>
#include <random>
#include <vector>

using namespace osg;

namespace
{

const int Edge = 256;
const int Grid = 64;

/// A scanned-looking volume: a soft ball whose value falls off with the
/// distance from a point off the centre, with two bits of noise, so that
/// nearly every voxel has a gradient.
std::vector<UInt8> softBall(void)
{
    std::vector<UInt8> v(size_t(Edge) * Edge * Edge);
    std::mt19937       random(1);
    for(int z = 0; z < Edge; ++z)
        for(int y = 0; y < Edge; ++y)
            for(int x = 0; x < Edge; ++x)
            {
                const float dx = x - 128.f, dy = y - 100.f, dz = z - 140.f;
                const float r  = std::sqrt(dx * dx + dy * dy + dz * dz);
                v[(size_t(z) * Edge + y) * Edge + x] =
                    UInt8(std::max(0.f, 255.f - 1.5f * r)) ^ UInt8(random() & 3);
            }
    return v;
}

// --- normals of 256^3 ------------------------------------------------------------------

/// Real time, as the caller waits for it; the CPU column is the whole
/// process's, so it shows the work of every thread the call used.
void BM_PrecomputedNormals_256(benchmark::State &state)
{
    std::vector<UInt8> voxels = softBall();
    ImagePtr           volume = Image::create();
    addRefCP(volume);
    volume->set(GL_LUMINANCE, Edge, Edge, Edge, 1, 1, 0.0, voxels.data(), GL_UNSIGNED_BYTE, true, 1);
    ImagePtr normals = Image::create();
    addRefCP(normals);

    PreCentralDiffNormal strategy;
    const std::string    format = state.range(0) == 0 ? "xyz" : "sxyz";
    for(auto _ : state)
    {
        ImagePtr in = volume;
        benchmark::DoNotOptimize(strategy.createPrecomputedNormals(in, normals, format));
    }
    state.SetBytesProcessed(Int64(state.iterations() * voxels.size()));
    subRefCP(normals);
    subRefCP(volume);
}
BENCHMARK(BM_PrecomputedNormals_256)
    ->Arg(0)
    ->Arg(1)
    ->ArgNames({"sxyz"})
    ->UseRealTime()
    ->MeasureProcessCPUTime()
    ->Unit(benchmark::kMillisecond);

/// A copy of the bytes the normals read (one a voxel) or write (three).
void BM_Memcpy_256(benchmark::State &state)
{
    const size_t       bytes = size_t(Edge) * Edge * Edge * size_t(state.range(0));
    std::vector<UInt8> from(bytes, 1), to(bytes);
    for(auto _ : state)
    {
        std::memcpy(to.data(), from.data(), bytes);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(Int64(state.iterations() * Edge * Edge * Edge));
}
BENCHMARK(BM_Memcpy_256)->Arg(1)->Arg(3)->ArgNames({"bytesPerVoxel"})->Unit(benchmark::kMillisecond);

// --- boundary proxy of a 64^3 block grid ---------------------------------------------------

/// The visit bits of a 64^3 grid: a ball of radius 28 cells (range 0), or
/// every other cell (range 1), the worst case where every cell face is a
/// boundary.
ImagePtr visitBits(int pattern)
{
    ImagePtr bits = Image::create();
    addRefCP(bits);
    bits->set(GL_ALPHA, Grid, Grid, Grid, 1, 1, 0.0, NULL, GL_UNSIGNED_BYTE, true, 1);
    UInt8 *b = bits->getData();
    for(int z = 0; z < Grid; ++z)
        for(int y = 0; y < Grid; ++y)
            for(int x = 0; x < Grid; ++x)
            {
                const int dx = x - 32, dy = y - 32, dz = z - 32;
                const bool visited =
                    pattern == 0 ? dx * dx + dy * dy + dz * dz <= 28 * 28 : (x + y + z) % 2 == 0;
                *b++ = visited ? 255 : 0;
            }
    return bits;
}

/// What createBoundingGeometry does for a 64^3 grid: node, lattice,
/// texture coordinates, faces.
void BM_BoundaryGeometryCreate_64(benchmark::State &state)
{
    ImagePtr bits = visitBits(int(state.range(0)));
    for(auto _ : state)
    {
        BoundaryGeometry boundary;
        boundary.createGeometry();
        boundary.createVertices(Grid, Grid, Grid);
        boundary.createTexCoords(Grid, Grid, Grid);
        benchmark::DoNotOptimize(boundary.createIndices(bits, Grid, Grid, Grid));
    }
    subRefCP(bits);
}
BENCHMARK(BM_BoundaryGeometryCreate_64)
    ->Arg(0)
    ->Arg(1)
    ->ArgNames({"checkerboard"})
    ->Unit(benchmark::kMillisecond);

/// What update does for a 64^3 grid: the faces alone.
void BM_BoundaryGeometryUpdate_64(benchmark::State &state)
{
    ImagePtr         bits = visitBits(int(state.range(0)));
    BoundaryGeometry boundary;
    boundary.createGeometry();
    boundary.createVertices(Grid, Grid, Grid);
    boundary.createTexCoords(Grid, Grid, Grid);
    for(auto _ : state)
        benchmark::DoNotOptimize(boundary.createIndices(bits, Grid, Grid, Grid));
    subRefCP(bits);
}
BENCHMARK(BM_BoundaryGeometryUpdate_64)
    ->Arg(0)
    ->Arg(1)
    ->ArgNames({"checkerboard"})
    ->Unit(benchmark::kMillisecond);

} // namespace
