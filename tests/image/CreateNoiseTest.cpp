// createNoise: the bytes equal, one for one, those of a separate rendition
// of the noise steps written here (Perlin's lattice from glibc's rand()
// after srand(30757), octaves of doubling frequency and halving amplitude,
// sample coordinates kept as running sums), for several pixel formats,
// octave counts, sizes and dimensions; and the failure rules.
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGImageFunctions.h>
#include <OpenSG/OSGLog.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

using namespace osg;

namespace noisetest
{

#define NT_S_CURVE(t) (t * t * (3. - 2. * t))
#define NT_LERP(t, a, b) (a + t * (b - a))

/// The lattice of one octave, laid out as in Perlin's reference code.
struct Lattice
{
    int                               B;
    std::vector<int>                  p;
    std::vector<float>                g1;
    std::vector<std::array<float, 2>> g2;
    std::vector<std::array<float, 3>> g3;

    explicit Lattice(int b) : B(b), p(b + b + 2), g1(b + b + 2), g2(b + b + 2), g3(b + b + 2)
    {
        srand(30757);
        int i, j, k;
        for(i = 0; i < B; i++)
        {
            p[i]  = i;
            g1[i] = (float)((rand() % (B + B)) - B) / B;
            for(j = 0; j < 2; j++)
                g2[i][j] = (float)((rand() % (B + B)) - B) / B;
            float s = sqrt(g2[i][0] * g2[i][0] + g2[i][1] * g2[i][1]);
            if(s > 0)
            {
                g2[i][0] = g2[i][0] / s;
                g2[i][1] = g2[i][1] / s;
            }
            for(j = 0; j < 3; j++)
                g3[i][j] = (float)((rand() % (B + B)) - B) / B;
            s = sqrt(g3[i][0] * g3[i][0] + g3[i][1] * g3[i][1] + g3[i][2] * g3[i][2]);
            if(s > 0)
            {
                g3[i][0] = g3[i][0] / s;
                g3[i][1] = g3[i][1] / s;
                g3[i][2] = g3[i][2] / s;
            }
        }
        while(--i)
        {
            k    = p[i];
            p[i] = p[j = rand() % B];
            p[j] = k;
        }
        for(i = 0; i < B + 2; i++)
        {
            p[B + i]  = p[i];
            g1[B + i] = g1[i];
            g2[B + i] = g2[i];
            g3[B + i] = g3[i];
        }
    }

    void setup(float v, int &b0, int &b1, float &r0, float &r1) const
    {
        float t = v + 0x1000;
        b0      = ((int)t) & (B - 1);
        b1      = (b0 + 1) & (B - 1);
        r0      = t - (int)t;
        r1      = r0 - 1.f;
    }

    float noise(const float *vec, int dim) const
    {
        int   bx0, bx1, by0, by1, bz0, bz1;
        float rx0, rx1, ry0, ry1, rz0, rz1, sx, sy, sz, a, b, c, d, u, v;
        setup(vec[0], bx0, bx1, rx0, rx1);
        sx = NT_S_CURVE(rx0);
        if(dim == 1)
        {
            u = rx0 * g1[p[bx0]];
            v = rx1 * g1[p[bx1]];
            return NT_LERP(sx, u, v);
        }
        setup(vec[1], by0, by1, ry0, ry1);
        sy      = NT_S_CURVE(ry0);
        int i   = p[bx0], j = p[bx1];
        int b00 = p[i + by0], b10 = p[j + by0], b01 = p[i + by1], b11 = p[j + by1];
        if(dim == 2)
        {
            u = rx0 * g2[b00][0] + ry0 * g2[b00][1];
            v = rx1 * g2[b10][0] + ry0 * g2[b10][1];
            a = NT_LERP(sx, u, v);
            u = rx0 * g2[b01][0] + ry1 * g2[b01][1];
            v = rx1 * g2[b11][0] + ry1 * g2[b11][1];
            b = NT_LERP(sx, u, v);
            return NT_LERP(sy, a, b);
        }
        setup(vec[2], bz0, bz1, rz0, rz1);
        sz     = NT_S_CURVE(rz0);
        auto q = [&](int n, float x, float y, float z) {
            return x * g3[n][0] + y * g3[n][1] + z * g3[n][2];
        };
        a = NT_LERP(sx, q(b00 + bz0, rx0, ry0, rz0), q(b10 + bz0, rx1, ry0, rz0));
        b = NT_LERP(sx, q(b01 + bz0, rx0, ry1, rz0), q(b11 + bz0, rx1, ry1, rz0));
        c = NT_LERP(sy, a, b);
        a = NT_LERP(sx, q(b00 + bz1, rx0, ry0, rz1), q(b10 + bz1, rx1, ry0, rz1));
        b = NT_LERP(sx, q(b01 + bz1, rx0, ry1, rz1), q(b11 + bz1, rx1, ry1, rz1));
        d = NT_LERP(sy, a, b);
        return NT_LERP(sz, c, d);
    }
};

#undef NT_S_CURVE
#undef NT_LERP

/// The noise bytes for components per pixel, every octave computed.
std::vector<UInt8> expectedNoise(int comps, int octaves, int size, int dim, bool split)
{
    const int w = dim == 1 ? 1 : size, h = dim == 3 ? size : 1;
    if(split && octaves > comps)
        octaves = comps;
    std::vector<UInt8> out(size_t(size) * w * h * comps, 0);

    int   freq = 4;
    float amp  = 0.5f;
    for(int f = 0; f < octaves; f++)
    {
        Lattice lat(freq);
        float   ni[3] = {0, 0, 0};
        float   inc   = 1.f / ((float)size / (float)freq);
        size_t  at    = 0;
        for(int i = 0; i < size; i++)
        {
            for(int j = 0; j < w; j++)
            {
                for(int k = 0; k < h; k++)
                {
                    if(split)
                    {
                        out[at + f] = (UInt8)(int)(((double)lat.noise(ni, dim) + 1) * amp * 128.0);
                    }
                    else
                    {
                        for(int c = 0; c < comps; c++)
                        {
                            out[at + c] += (UInt8)(int)(((double)lat.noise(ni, dim) + 1) * amp * 128.0);
                            ni[0] += 1;
                        }
                        ni[0] -= comps;
                    }
                    at += comps;
                    ni[2] += inc;
                }
                ni[1] += inc;
            }
            ni[0] += inc;
        }
        freq *= 2;
        amp *= 0.5f;
    }
    return out;
}

struct NoiseCase
{
    Image::PixelFormat format;
    int                comps, octaves, size, dim;
    bool               split;
};

} // namespace noisetest

using namespace noisetest;

TEST(CreateNoise, BytesMatchTheNoiseStepsForFormatsOctavesSizesAndDimensions)
{
    const NoiseCase cases[] = {
        {Image::OSG_L_PF, 1, 7, 64, 2, false},   // the wood of the demo
        {Image::OSG_I_PF, 1, 5, 32, 2, false},
        {Image::OSG_RGBA_PF, 4, 6, 16, 2, false},
        {Image::OSG_RGB_PF, 3, 3, 24, 2, false}, // not a power of two
        {Image::OSG_LA_PF, 2, 4, 40, 1, false},
        {Image::OSG_RGBA_PF, 4, 2, 8, 3, false},
        {Image::OSG_L_PF, 1, 10, 12, 3, false},  // octaves beyond a byte's resolution
        {Image::OSG_RGBA_PF, 4, 3, 16, 2, true}, // one octave per component
        {Image::OSG_RGB_PF, 3, 5, 16, 1, true},  // more octaves than components
    };
    for(const NoiseCase &c : cases)
    {
        SCOPED_TRACE(testing::Message() << "format 0x" << std::hex << c.format << std::dec
                                        << " octaves " << c.octaves << " size " << c.size
                                        << " dim " << c.dim << (c.split ? " split" : ""));
        ImagePtr img = Image::create();
        addRefCP(img);
        ASSERT_TRUE(createNoise(img, c.format, UInt16(c.octaves), UInt16(c.size), UInt8(c.dim),
                                c.split));
        EXPECT_EQ(img->getPixelFormat(), UInt32(c.format));
        EXPECT_EQ(img->getWidth(), c.size);
        EXPECT_EQ(img->getHeight(), c.dim == 1 ? 1 : c.size);
        EXPECT_EQ(img->getDepth(), c.dim == 3 ? c.size : 1);

        const std::vector<UInt8> want = expectedNoise(c.comps, c.octaves, c.size, c.dim, c.split);
        ASSERT_EQ(img->getSize(), want.size());
        const UInt8 *got      = img->getData();
        size_t       mismatch = 0, first = want.size();
        for(size_t i = 0; i < want.size(); ++i)
        {
            if(got[i] != want[i])
            {
                if(mismatch++ == 0)
                    first = i;
            }
        }
        EXPECT_EQ(mismatch, 0u) << "first at byte " << first;

        // noise, not a constant: the bytes spread
        UInt8 lo = 255, hi = 0;
        for(size_t i = 0; i < want.size(); ++i)
        {
            lo = std::min(lo, got[i]);
            hi = std::max(hi, got[i]);
        }
        EXPECT_GT(hi - lo, 20);
        subRefCP(img);
    }
}

TEST(CreateNoise, FailureRules)
{
    {
        LogCapture log(LOG_FATAL);
        EXPECT_FALSE(createNoise(NullFC));
        EXPECT_NE(log.take().find("No output image given"), std::string::npos);
    }

    // an unknown dimension makes a 2-D image, with a warning
    for(UInt8 dim : {UInt8(0), UInt8(4)})
    {
        ImagePtr img = Image::create();
        addRefCP(img);
        LogCapture log(LOG_WARNING);
        EXPECT_TRUE(createNoise(img, Image::OSG_L_PF, 2, 16, dim));
        EXPECT_NE(log.take().find("createNoise: Use [1|2|3] for image dimension (default 2)"),
                  std::string::npos);
        EXPECT_EQ(img->getWidth(), 16);
        EXPECT_EQ(img->getHeight(), 16);
        EXPECT_EQ(img->getDepth(), 1);
        const std::vector<UInt8> want = expectedNoise(1, 2, 16, 2, false);
        EXPECT_EQ(std::vector<UInt8>(img->getData(), img->getData() + want.size()), want);
        subRefCP(img);
    }

    ImagePtr img = Image::create();
    addRefCP(img);

    // nothing to make, or far too much: refused
    {
        LogCapture log(LOG_FATAL);
        EXPECT_FALSE(createNoise(img, Image::OSG_L_PF, 3, 0));
        EXPECT_NE(log.take().find("createNoise: Could not create image"), std::string::npos);
        EXPECT_FALSE(createNoise(img, Image::OSG_RGBA_PF, 3, 4096, 3));
        EXPECT_NE(log.take().find("createNoise: Could not create image"), std::string::npos);
    }
    subRefCP(img);
}
