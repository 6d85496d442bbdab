/// A plain CPU decoder for DXT1 and DXT5 and a photo-like synthetic image,
/// shared by the compressor's tests and its benchmark.
#ifndef _DXTTESTSUPPORT_H_
#define _DXTTESTSUPPORT_H_

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace dxttest
{

// Palette by the book: 5:6:5 widened by repeating the top bits, thirds and
// halves rounded down, DXT1 in its three-colour kind when colour0 <= colour1.
inline void decodeColorBlock(const uint8_t *src, bool allowThreeColor, uint8_t pixels[16][4])
{
    const unsigned c[2] = { unsigned(src[0] | src[1] << 8), unsigned(src[2] | src[3] << 8) };
    int palette[4][4];
    for(int e = 0; e < 2; ++e)
    {
        const int r = c[e] >> 11, g = (c[e] >> 5) & 63, b = c[e] & 31;
        palette[e][0] = (r << 3) | (r >> 2);
        palette[e][1] = (g << 2) | (g >> 4);
        palette[e][2] = (b << 3) | (b >> 2);
        palette[e][3] = 255;
    }
    const bool four = !allowThreeColor || c[0] > c[1];
    for(int k = 0; k < 4; ++k)
    {
        const int p0 = palette[0][k], p1 = palette[1][k];
        palette[2][k] = four ? (2 * p0 + p1) / 3 : (p0 + p1) / 2;
        palette[3][k] = four ? (p0 + 2 * p1) / 3 : 0;
    }
    palette[2][3] = 255;
    palette[3][3] = four ? 255 : 0;

    const uint32_t indices = src[4] | src[5] << 8 | src[6] << 16 | uint32_t(src[7]) << 24;
    for(int i = 0; i < 16; ++i)
        for(int k = 0; k < 4; ++k)
            pixels[i][k] = uint8_t(palette[(indices >> (2 * i)) & 3][k]);
}

inline void decodeAlphaBlock(const uint8_t *src, uint8_t pixels[16][4])
{
    const int a0 = src[0], a1 = src[1];
    int alphas[8] = { a0, a1 };
    for(int k = 2; k < 8; ++k)
    {
        if(a0 > a1)
            alphas[k] = ((8 - k) * a0 + (k - 1) * a1) / 7;
        else
            alphas[k] = k < 6 ? ((6 - k) * a0 + (k - 1) * a1) / 5 : (k == 6 ? 0 : 255);
    }
    uint64_t bits = 0;
    for(int i = 0; i < 6; ++i)
        bits |= uint64_t(src[2 + i]) << (8 * i);
    for(int i = 0; i < 16; ++i)
        pixels[i][3] = uint8_t(alphas[(bits >> (3 * i)) & 7]);
}

/// RGBA pixels, top row first, of a DXT1 or DXT5 image.
inline std::vector<uint8_t> decodeImage(const uint8_t *data, int width, int height, bool dxt5)
{
    std::vector<uint8_t> rgba(std::size_t(width) * height * 4);
    for(int by = 0; by < height; by += 4)
    {
        for(int bx = 0; bx < width; bx += 4, data += dxt5 ? 16 : 8)
        {
            uint8_t pixels[16][4];
            decodeColorBlock(dxt5 ? data + 8 : data, !dxt5, pixels);
            if(dxt5)
                decodeAlphaBlock(data, pixels);
            for(int i = 0; i < 16; ++i)
                for(int k = 0; k < 4; ++k)
                    rgba[((std::size_t(by) + i / 4) * width + bx + i % 4) * 4 + k] = pixels[i][k];
        }
    }
    return rgba;
}

/// RMS difference over `channels` channels from `first`, four bytes a pixel.
inline double rmse(const uint8_t *a, const uint8_t *b, std::size_t pixels, int first, int channels)
{
    double sum = 0.0;
    for(std::size_t i = 0; i < pixels; ++i)
        for(int c = first; c < first + channels; ++c)
        {
            const double d = double(a[4 * i + c]) - double(b[4 * i + c]);
            sum += d * d;
        }
    return pixels ? std::sqrt(sum / double(pixels * channels)) : 0.0;
}

/// Deterministic RGBA picture: smooth gradients, +-8 of noise and hard-edged
/// discs and boxes; alpha is a gradient with discs of its own.
inline std::vector<uint8_t> makePhotoImage(int width, int height, uint32_t seed = 1)
{
    uint32_t state = seed * 2654435761u + 1;
    auto next = [&state]() {
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        return state;
    };

    struct Shape { int x, y, r; bool disc; uint8_t color[4]; };
    std::vector<Shape> shapes(24);
    const int size = width < height ? width : height;
    for(Shape &s : shapes)
    {
        s.x = int(next() % uint32_t(width));
        s.y = int(next() % uint32_t(height));
        s.r = size / 40 + int(next() % uint32_t(size / 10 + 1));
        s.disc = (next() & 1) != 0;
        for(uint8_t &c : s.color)
            c = uint8_t(next());
    }

    std::vector<uint8_t> rgba(std::size_t(width) * height * 4);
    for(int y = 0; y < height; ++y)
    {
        for(int x = 0; x < width; ++x)
        {
            const double u = double(x) / width, v = double(y) / height;
            double c[4] = { 128 + 100 * std::sin(6.0 * u + 2.0 * v),
                            128 + 90 * std::cos(4.0 * u - 5.0 * v),
                            128 + 80 * std::sin(3.0 * (u + v) + 1.0),
                            40 + 200 * u * v };
            for(const Shape &s : shapes)
            {
                const int dx = x - s.x, dy = y - s.y;
                const bool inside = s.disc ? dx * dx + dy * dy < s.r * s.r
                                           : std::abs(dx) < s.r && std::abs(dy) < s.r / 2;
                if(inside)
                    for(int k = 0; k < 4; ++k)
                        c[k] = 0.3 * c[k] + 0.7 * s.color[k];
            }
            uint8_t *p = &rgba[(std::size_t(y) * width + x) * 4];
            for(int k = 0; k < 4; ++k)
            {
                const double value = c[k] + int(next() % 17) - 8;
                p[k] = uint8_t(value < 0 ? 0 : value > 255 ? 255 : value);
            }
        }
    }
    return rgba;
}

} // namespace dxttest

#endif
