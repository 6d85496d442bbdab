/// Speed (MPix/s) and error (RMSE) of the DXT compressor on a 2048 x 2048
/// photo-like image, beside stb_dxt, libsquish and a plain memcpy, one core.

#include "compression/DXTTestSupport.h"

#include <OpenSG/DXTBlocks.h>
#include <OpenSG/DXTCompressor.h>

#include <benchmark/benchmark.h>
#include <squish.h>

#include <cstring>
#include <vector>

#define STB_DXT_IMPLEMENTATION
#include <stb/stb_dxt.h>

// libsquish parallelises CompressImage with OpenMP; every codec gets one core.
extern "C" void omp_set_num_threads(int);

namespace
{

const int         kEdge   = 2048;
const std::size_t kPixels = std::size_t(kEdge) * kEdge;
const osg::Image::PixelFormat kRGBA = osg::Image::OSG_RGBA_PF;

// The picture, and an opaque copy for DXT1, whose codecs differ in how they
// treat alpha (libsquish makes alpha < 128 transparent black).
struct Pictures
{
    osg::DXTAlignedBuffer rgba, opaque;

    Pictures(void)
    {
        const std::vector<osg::UInt8> picture = dxttest::makePhotoImage(kEdge, kEdge);
        rgba.allocate(picture.size());
        opaque.allocate(picture.size());
        std::memcpy(rgba.data(), picture.data(), picture.size());
        std::memcpy(opaque.data(), picture.data(), picture.size());
        for(std::size_t i = 3; i < picture.size(); i += 4)
            opaque.data()[i] = 255;
    }
};

const Pictures &pictures(void)
{
    static const Pictures p;
    return p;
}

const osg::UInt8 *source(bool dxt5)
{
    return dxt5 ? pictures().rgba.data() : pictures().opaque.data();
}

// Speed as MPix/s, and the error of the last result after a plain decode.
void report(benchmark::State &state, const osg::UInt8 *blocks, bool dxt5)
{
    const std::vector<osg::UInt8> decoded = dxttest::decodeImage(blocks, kEdge, kEdge, dxt5);

    state.counters["MPix/s"] = benchmark::Counter(
        double(kPixels) / 1e6, benchmark::Counter::kIsIterationInvariantRate);
    state.counters["RMSE_rgb"] = dxttest::rmse(source(dxt5), decoded.data(), kPixels, 0, 3);
    if(dxt5)
        state.counters["RMSE_a"] = dxttest::rmse(source(dxt5), decoded.data(), kPixels, 3, 1);
    state.SetBytesProcessed(std::int64_t(state.iterations()) * std::int64_t(kPixels) * 4);
}

void BM_Memcpy(benchmark::State &state)
{
    osg::DXTAlignedBuffer out;
    out.allocate(kPixels * 4);
    for(auto _ : state)
    {
        std::memcpy(out.data(), source(true), kPixels * 4);
        benchmark::ClobberMemory();
    }
    state.counters["MPix/s"] = benchmark::Counter(
        double(kPixels) / 1e6, benchmark::Counter::kIsIterationInvariantRate);
    state.SetBytesProcessed(std::int64_t(state.iterations()) * std::int64_t(kPixels) * 4);
}

void BM_Corvane(benchmark::State &state, bool dxt5)
{
    osg::DXTAlignedBuffer out;
    out.allocate(dxt5 ? kPixels : kPixels / 2);
    const DXTCompressor::CompressedFormat format = dxt5 ? DXTCompressor::DXT5
                                                        : DXTCompressor::DXT1;
    for(auto _ : state)
    {
        DXTCompressor::the().compressPixels(out.data(), source(dxt5), kEdge, kEdge,
                                            kRGBA, format);
        benchmark::ClobberMemory();
    }
    report(state, out.data(), dxt5);
}

void BM_Stb(benchmark::State &state, bool dxt5)
{
    std::vector<osg::UInt8> out(dxt5 ? kPixels : kPixels / 2);
    const osg::UInt8       *in = source(dxt5);
    for(auto _ : state)
    {
        osg::UInt8 *dest = out.data();
        for(int y = 0; y < kEdge; y += 4)
        {
            for(int x = 0; x < kEdge; x += 4, dest += dxt5 ? 16 : 8)
            {
                unsigned char block[64];
                for(int r = 0; r < 4; ++r)
                    std::memcpy(block + 16 * r, in + ((std::size_t(y) + r) * kEdge + x) * 4, 16);
                stb_compress_dxt_block(dest, block, dxt5 ? 1 : 0, STB_DXT_NORMAL);
            }
        }
        benchmark::ClobberMemory();
    }
    report(state, out.data(), dxt5);
}

void BM_Squish(benchmark::State &state, bool dxt5, int fit)
{
    std::vector<osg::UInt8> out(dxt5 ? kPixels : kPixels / 2);
    const int               flags = (dxt5 ? squish::kDxt5 : squish::kDxt1) | fit;
    for(auto _ : state)
    {
        squish::CompressImage(source(dxt5), kEdge, kEdge, out.data(), flags);
        benchmark::ClobberMemory();
    }
    report(state, out.data(), dxt5);
}

} // namespace

BENCHMARK(BM_Memcpy)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Corvane, DXT1, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Corvane, DXT5, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Stb, DXT1, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Stb, DXT5, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Squish, DXT1_RangeFit, false, squish::kColourRangeFit)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Squish, DXT5_RangeFit, true, squish::kColourRangeFit)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Squish, DXT1_Default, false, 0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Squish, DXT5_Default, true, 0)->Unit(benchmark::kMillisecond);

int main(int argc, char **argv)
{
    omp_set_num_threads(1);
    pictures();   // outside every timing

    benchmark::Initialize(&argc, argv);
    if(benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
