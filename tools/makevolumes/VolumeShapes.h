/// Synthetic volumes for tests, demos and benchmarks: the 3-D Shepp-Logan
/// head phantom and a few smooth shapes, computed deterministically (pure
/// double arithmetic and an integer hash; no random generator, no clock).
///
/// Voxel (i, j, k) of a w x h x d volume samples the point
/// x = (2i + 1) / w - 1, y = (2j + 1) / h - 1, z = (2k + 1) / d - 1, so the
/// volume covers the cube [-1, 1]^3 and voxel centres never lie on the
/// axes' zero for even edges. Voxels run x fastest, then y, then z, the
/// layout of Image and of the raw files.
///
/// Header-only, so that the generator and the tests share one definition.
#ifndef CORVANE_VOLUMESHAPES_H
#define CORVANE_VOLUMESHAPES_H

#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace volshapes
{

/// One ellipsoid: centre, semi-axes, rotation about the z axis (degrees,
/// counter-clockwise from x) and the density it adds.
struct Ellipsoid
{
    double x0, y0, z0;
    double a, b, c;
    double phi;
    double rho;
};

/// The ten ellipsoids of the 3-D Shepp-Logan head phantom in Kak and
/// Slaney's form, with the original densities: skull 2.0, brain 1.02,
/// features 0.01 to 0.04 above or below it.
static const Ellipsoid SheppLogan3D[10] =
{
    //   x0      y0      z0       a       b       c      phi     rho
    {  0.00,   0.000,  0.000,  0.6900, 0.920, 0.900,   0.0,  2.00 }, // a skull
    {  0.00,   0.000,  0.000,  0.6624, 0.874, 0.880,   0.0, -0.98 }, // b brain
    { -0.22,   0.000, -0.250,  0.4100, 0.160, 0.210, 108.0, -0.02 }, // c
    {  0.22,   0.000, -0.250,  0.3100, 0.110, 0.220,  72.0, -0.02 }, // d
    {  0.00,   0.350, -0.250,  0.2100, 0.250, 0.500,   0.0,  0.02 }, // e
    {  0.00,   0.100, -0.250,  0.0460, 0.046, 0.046,   0.0,  0.02 }, // f
    { -0.08,  -0.650, -0.250,  0.0460, 0.023, 0.020,   0.0,  0.01 }, // g
    {  0.06,  -0.650, -0.250,  0.0460, 0.023, 0.020,  90.0,  0.01 }, // h
    {  0.06,  -0.105,  0.625,  0.0560, 0.040, 0.100,  90.0,  0.02 }, // i
    {  0.00,   0.100,  0.625,  0.0560, 0.056, 0.100,   0.0, -0.02 }  // j
};

/// Density of the phantom at a point: the sum of rho over the ellipsoids
/// that contain it (boundary included). 0 outside the head, 2 in the skull.
inline double sheppLoganDensity(double x, double y, double z)
{
    const double Pi = 3.14159265358979323846;
    double       density = 0.0;

    for(const Ellipsoid &e : SheppLogan3D)
    {
        const double phi = e.phi * Pi / 180.0;
        const double cp  = std::cos(phi);
        const double sp  = std::sin(phi);
        const double dx  = x - e.x0;
        const double dy  = y - e.y0;
        const double dz  = z - e.z0;
        const double u   = ( dx * cp + dy * sp) / e.a;
        const double v   = (-dx * sp + dy * cp) / e.b;
        const double w   = dz / e.c;

        if(u * u + v * v + w * w <= 1.0)
            density += e.rho;
    }
    return density;
}

/// 32-bit integer hash (a fixed mix of multiplies and shifts), the only
/// source of "randomness" in the noise volume.
inline uint32_t hash3(int32_t x, int32_t y, int32_t z, uint32_t seed)
{
    uint32_t h = seed * 0x9E3779B9u;
    h ^= uint32_t(x) * 0x85EBCA6Bu;
    h  = (h << 13) | (h >> 19);
    h ^= uint32_t(y) * 0xC2B2AE35u;
    h  = (h << 17) | (h >> 15);
    h ^= uint32_t(z) * 0x27D4EB2Fu;
    h ^= h >> 16;
    h *= 0x7FEB352Du;
    h ^= h >> 15;
    h *= 0x846CA68Bu;
    h ^= h >> 16;
    return h;
}

/// Smooth value noise in [0, 1]: lattice values from hash3, blended with
/// the smoothstep weight.
inline double valueNoise(double x, double y, double z, uint32_t seed)
{
    const double fx = std::floor(x), fy = std::floor(y), fz = std::floor(z);
    const int32_t ix = int32_t(fx), iy = int32_t(fy), iz = int32_t(fz);
    double tx = x - fx, ty = y - fy, tz = z - fz;

    tx = tx * tx * (3.0 - 2.0 * tx);
    ty = ty * ty * (3.0 - 2.0 * ty);
    tz = tz * tz * (3.0 - 2.0 * tz);

    double corner[8];
    for(int c = 0; c < 8; ++c)
    {
        corner[c] = hash3(ix + (c & 1), iy + ((c >> 1) & 1),
                          iz + ((c >> 2) & 1), seed) / 4294967295.0;
    }

    const double x00 = corner[0] + (corner[1] - corner[0]) * tx;
    const double x10 = corner[2] + (corner[3] - corner[2]) * tx;
    const double x01 = corner[4] + (corner[5] - corner[4]) * tx;
    const double x11 = corner[6] + (corner[7] - corner[6]) * tx;
    const double y0  = x00 + (x10 - x00) * ty;
    const double y1  = x01 + (x11 - x01) * ty;

    return y0 + (y1 - y0) * tz;
}

enum Shape
{
    Phantom, ///< Shepp-Logan densities 0 to 2
    Sphere,  ///< 1 at the centre falling linearly to 0 at radius 0.8
    Torus,   ///< ring of radius 0.55 around z, tube radius 0.3, 1 on its core
    Noise    ///< four octaves of value noise, 0 to 1
};

inline const char *shapeName(Shape shape)
{
    switch(shape)
    {
        case Phantom: return "phantom";
        case Sphere:  return "sphere";
        case Torus:   return "torus";
        default:      return "noise";
    }
}

inline bool shapeFromName(const std::string &name, Shape &shape)
{
    for(int s = Phantom; s <= Noise; ++s)
    {
        if(name == shapeName(Shape(s)))
        {
            shape = Shape(s);
            return true;
        }
    }
    return false;
}

/// The value of a shape at a point, before quantisation.
inline double shapeValue(Shape shape, double x, double y, double z)
{
    switch(shape)
    {
        case Phantom:
            return sheppLoganDensity(x, y, z);

        case Sphere:
        {
            const double r = std::sqrt(x * x + y * y + z * z);
            return r >= 0.8 ? 0.0 : 1.0 - r / 0.8;
        }

        case Torus:
        {
            const double q = std::sqrt(x * x + y * y) - 0.55;
            const double d = std::sqrt(q * q + z * z);
            return d >= 0.3 ? 0.0 : 1.0 - d / 0.3;
        }

        default:
        {
            double sum = 0.0, weight = 0.0, amplitude = 1.0, frequency = 2.0;
            for(uint32_t octave = 0; octave < 4; ++octave)
            {
                sum       += amplitude * valueNoise((x + 1.0) * frequency,
                                                    (y + 1.0) * frequency,
                                                    (z + 1.0) * frequency,
                                                    octave + 1);
                weight    += amplitude;
                amplitude *= 0.5;
                frequency *= 2.0;
            }
            return sum / weight;
        }
    }
}

/// Stored value for a shape value: the phantom's density times 100 (8 bit)
/// or 30000 (16 bit), so its levels are exact integers (brain 102 / 30600,
/// skull 200 / 60000); the other shapes' 0..1 times 255 or 65535.
inline uint32_t quantise(Shape shape, double value, int bits)
{
    const double scale = shape == Phantom ? (bits == 8 ? 100.0 : 30000.0)
                                          : (bits == 8 ? 255.0 : 65535.0);
    const double top   = bits == 8 ? 255.0 : 65535.0;
    double       v     = std::floor(value * scale + 0.5);

    if(v < 0.0)
        v = 0.0;
    if(v > top)
        v = top;
    return uint32_t(v);
}

/// The voxels of a shape, 8- or 16-bit, 16-bit ones in host byte order.
inline std::vector<uint8_t> makeVolume(Shape shape, uint32_t w, uint32_t h,
                                       uint32_t d, int bits)
{
    const size_t bytes = bits == 8 ? 1 : 2;
    std::vector<uint8_t> out(size_t(w) * h * d * bytes);
    size_t n = 0;

    for(uint32_t k = 0; k < d; ++k)
    {
        const double z = (2.0 * k + 1.0) / d - 1.0;
        for(uint32_t j = 0; j < h; ++j)
        {
            const double y = (2.0 * j + 1.0) / h - 1.0;
            for(uint32_t i = 0; i < w; ++i, ++n)
            {
                const double   x = (2.0 * i + 1.0) / w - 1.0;
                const uint32_t v = quantise(shape, shapeValue(shape, x, y, z),
                                            bits);
                if(bits == 8)
                {
                    out[n] = uint8_t(v);
                }
                else
                {
                    const uint16_t s = uint16_t(v);
                    std::memcpy(&out[2 * n], &s, 2);
                }
            }
        }
    }
    return out;
}

/// 64-bit FNV-1a of a byte block, for checking volumes.
inline uint64_t fnv1a(const uint8_t *data, size_t size)
{
    uint64_t h = 0xCBF29CE484222325ull;
    for(size_t i = 0; i < size; ++i)
    {
        h ^= data[i];
        h *= 0x100000001B3ull;
    }
    return h;
}

} // namespace volshapes

#endif
