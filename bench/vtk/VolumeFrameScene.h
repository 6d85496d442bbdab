/// The one volume frame that the corvane benchmark and the VTK benchmark
/// both render: the voxels, the transfer function, the opaque sphere, the
/// camera and the window; and the clock both read. Plain C++ with no graphics types, so that both
/// programs take every number from here and draw the same picture.
///
/// World layout: the volume fills the cube [-1, 1]^3 (voxel centres as in
/// VolumeShapes.h), the camera looks at the origin.
#ifndef CORVANE_VOLUMEFRAMESCENE_H
#define CORVANE_VOLUMEFRAMESCENE_H

#include "../../tools/makevolumes/VolumeShapes.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <ctime>
#include <vector>

namespace volframe
{

const int    Edge   = 256; ///< voxels along each axis
const int    Width  = 512; ///< window
const int    Height = 512;
const double Cube   = 2.0; ///< world edge of the volume

/// Ray step in unit-cube coordinates: one voxel.
const double StepUnit = 1.0 / Edge;
/// The same step in world units.
const double StepWorld = StepUnit * Cube;
/// The distance over which a table opacity holds unchanged: 1/200 of the
/// unit cube, the ray caster's reference for opacity correction
/// (alpha' = 1 - (1 - alpha)^(step / reference)).
const double OpacityUnitWorld = Cube / 200.0;

/// Camera: perspective, vertical field of view in degrees, up is +y.
const double Eye[3]    = {1.2, 0.9, 2.4};
const double At[3]     = {0.0, 0.0, 0.0};
const double FovYDeg   = 40.0;
const double NearPlane = 0.1;
const double FarPlane  = 50.0;

/// Background colour.
const double BackgroundColour[3] = {0.08, 0.09, 0.12};

/// The opaque sphere that cuts into the volume, lit by a head light.
const double SphereCentre[3] = {0.35, 0.05, -0.35};
const double SphereRadius    = 0.42;
const double SphereDiffuse[3] = {0.9, 0.45, 0.15};

/// Transfer function: piecewise-linear control points over the value
/// range 0..1 (voxel byte / 255).
struct OpacityPoint
{
    double value, opacity;
};
struct ColourPoint
{
    double value, r, g, b;
};
const OpacityPoint Opacity[] = {{0.0, 0.0}, {0.1, 0.0}, {0.6, 0.05}, {1.0, 0.3}};
const ColourPoint  Colour[]  = {{0.0, 0.1, 0.2, 0.8}, {0.5, 0.9, 0.6, 0.3}, {1.0, 1.0, 1.0, 1.0}};

/// Linear interpolation over a list of points sorted by value, clamped at
/// both ends. get(i) returns the i-th point's channel.
template <class P, class Get>
double piecewise(const P *points, int count, double value, Get get)
{
    if(value <= points[0].value)
        return get(points[0]);
    for(int i = 1; i < count; ++i)
    {
        if(value <= points[i].value)
        {
            const double span = points[i].value - points[i - 1].value;
            const double f    = span > 0.0 ? (value - points[i - 1].value) / span : 1.0;
            return get(points[i - 1]) + f * (get(points[i]) - get(points[i - 1]));
        }
    }
    return get(points[count - 1]);
}

/// The 8-bit RGBA table of 256 texels that the points give, texel i for
/// value i / 255.
inline std::vector<uint8_t> transferTable(void)
{
    const int            nO = sizeof(Opacity) / sizeof(Opacity[0]);
    const int            nC = sizeof(Colour) / sizeof(Colour[0]);
    std::vector<uint8_t> table(256 * 4);
    for(int i = 0; i < 256; ++i)
    {
        const double v = i / 255.0;
        const double c[4] = {
            piecewise(Colour, nC, v, [](const ColourPoint &p) { return p.r; }),
            piecewise(Colour, nC, v, [](const ColourPoint &p) { return p.g; }),
            piecewise(Colour, nC, v, [](const ColourPoint &p) { return p.b; }),
            piecewise(Opacity, nO, v, [](const OpacityPoint &p) { return p.opacity; })};
        for(int k = 0; k < 4; ++k)
            table[4 * i + k] = uint8_t(std::floor(c[k] * 255.0 + 0.5));
    }
    return table;
}

/// The dense volume: a smooth ball, 255 at the centre falling to 0 at
/// radius 0.8 (VolumeShapes' sphere).
inline std::vector<uint8_t> denseVolume(void)
{
    return volshapes::makeVolume(volshapes::Sphere, Edge, Edge, Edge, 8);
}

/// Value of the empty space around the blobs of the sparse volume: a low
/// noise floor, as scanned data has, that the transfer function makes
/// fully transparent. (The ray caster treats a block that holds only value
/// 0 as one to visit, so a floor of exact zeros would hide what block
/// skipping does.)
const uint8_t SparseFloor = 8;

/// The sparse volume: six small balls (radius 0.1, about 13 voxels) in an
/// otherwise empty cube; under 1% of the voxels are above the floor.
inline std::vector<uint8_t> sparseVolume(void)
{
    static const double blobs[6][3] = {{-0.6, -0.5, -0.4}, {0.5, -0.6, 0.2},  {-0.3, 0.6, 0.5},
                                       {0.6, 0.5, -0.5},   {0.0, 0.0, -0.7}, {-0.7, 0.1, 0.7}};
    const double         radius = 0.1;
    std::vector<uint8_t> out(size_t(Edge) * Edge * Edge, SparseFloor);
    for(const double *b : blobs)
    {
        // only the voxels of the blob's bounding box
        int lo[3], hi[3];
        for(int a = 0; a < 3; ++a)
        {
            lo[a] = std::max(0, int(std::floor(((b[a] - radius) + 1.0) * Edge / 2.0)) - 1);
            hi[a] = std::min(Edge - 1, int(std::ceil(((b[a] + radius) + 1.0) * Edge / 2.0)) + 1);
        }
        for(int k = lo[2]; k <= hi[2]; ++k)
            for(int j = lo[1]; j <= hi[1]; ++j)
                for(int i = lo[0]; i <= hi[0]; ++i)
                {
                    const double x = (2.0 * i + 1.0) / Edge - 1.0 - b[0];
                    const double y = (2.0 * j + 1.0) / Edge - 1.0 - b[1];
                    const double z = (2.0 * k + 1.0) / Edge - 1.0 - b[2];
                    const double d = std::sqrt(x * x + y * y + z * z);
                    if(d >= radius)
                        continue;
                    const uint8_t v = uint8_t(std::floor((1.0 - d / radius) * 255.0 + 0.5));
                    uint8_t      &o = out[(size_t(k) * Edge + j) * Edge + i];
                    o               = std::max(o, v);
                }
    }
    return out;
}

/// CPU time of the whole process, all threads: the rasteriser's work per
/// frame, which, unlike the wall clock, does not grow when other programs
/// share the cores.
inline double processSeconds(void)
{
    timespec now;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return double(now.tv_sec) + 1e-9 * double(now.tv_nsec);
}

} // namespace volframe

#endif
