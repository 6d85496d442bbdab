#include <OpenSG/OSGImageFunctions.h>
#include <OpenSG/OSGLog.h>

#include <cmath>
#include <cstdlib>
#include <vector>

OSG_BEGIN_NAMESPACE

namespace
{

/// Ken Perlin's classic gradient noise over a lattice of b points per
/// axis (b a power of two), in single precision as his reference code.
class PerlinNoise
{
  public:
    explicit PerlinNoise(Int32 b)
        : _b(b), _p(2 * b + 2), _g1(2 * b + 2), _g2(2 * (2 * b + 2)), _g3(3 * (2 * b + 2))
    {
        srand(30757);

        Int32 i;
        for(i = 0; i < _b; ++i)
        {
            _p[i]  = i;
            _g1[i] = Real32((rand() % (_b + _b)) - _b) / _b;
            for(Int32 j = 0; j < 2; ++j)
                _g2[i * 2 + j] = Real32((rand() % (_b + _b)) - _b) / _b;
            normalize(&_g2[i * 2], 2);
            for(Int32 j = 0; j < 3; ++j)
                _g3[i * 3 + j] = Real32((rand() % (_b + _b)) - _b) / _b;
            normalize(&_g3[i * 3], 3);
        }

        while(--i)
        {
            const Int32 k = _p[i];
            const Int32 j = rand() % _b;
            _p[i]         = _p[j];
            _p[j]         = k;
        }

        for(i = 0; i < _b + 2; ++i)
        {
            _p[_b + i]  = _p[i];
            _g1[_b + i] = _g1[i];
            for(Int32 j = 0; j < 2; ++j)
                _g2[(_b + i) * 2 + j] = _g2[i * 2 + j];
            for(Int32 j = 0; j < 3; ++j)
                _g3[(_b + i) * 3 + j] = _g3[i * 3 + j];
        }
    }

    Real32 operator()(const Real32 *vec, UInt8 dim) const
    {
        if(dim == 1)
            return noise1(vec[0]);
        if(dim == 3)
            return noise3(vec);
        return noise2(vec);
    }

  private:
    static void normalize(Real32 *v, Int32 n)
    {
        Real32 sum = 0;
        for(Int32 i = 0; i < n; ++i)
            sum += v[i] * v[i];
        const Real32 s = Real32(std::sqrt(double(sum)));
        if(!(s > 0))
            return; // a zero gradient stays zero
        for(Int32 i = 0; i < n; ++i)
            v[i] = v[i] / s;
    }

    static Real32 sCurve(Real32 t) { return Real32(t * t * (3. - 2. * t)); }
    static Real32 lerp(Real32 t, Real32 a, Real32 b) { return a + t * (b - a); }

    /// Lattice cell and fractions of one coordinate.
    void setup(Real32 v, Int32 &b0, Int32 &b1, Real32 &r0, Real32 &r1) const
    {
        const Real32 t = v + 4096;
        const Int32  m = _b - 1;
        b0             = Int32(t) & m;
        b1             = (b0 + 1) & m;
        r0             = t - Int32(t);
        r1             = r0 - 1;
    }

    Real32 noise1(Real32 x) const
    {
        Int32  bx0, bx1;
        Real32 rx0, rx1;
        setup(x, bx0, bx1, rx0, rx1);
        const Real32 sx = sCurve(rx0);
        const Real32 u  = rx0 * _g1[_p[bx0]];
        const Real32 v  = rx1 * _g1[_p[bx1]];
        return lerp(sx, u, v);
    }

    /// The lattice square around (x, y): the four corner entries, the
    /// fractions to the corners and the blending weights.
    struct Square
    {
        Int32  b00, b10, b01, b11;
        Real32 rx0, rx1, ry0, ry1, sx, sy;
    };

    Square square(const Real32 *vec) const
    {
        Square q;
        Int32  bx0, bx1, by0, by1;
        setup(vec[0], bx0, bx1, q.rx0, q.rx1);
        setup(vec[1], by0, by1, q.ry0, q.ry1);

        const Int32 i = _p[bx0];
        const Int32 j = _p[bx1];
        q.b00         = _p[i + by0];
        q.b10         = _p[j + by0];
        q.b01         = _p[i + by1];
        q.b11         = _p[j + by1];
        q.sx          = sCurve(q.rx0);
        q.sy          = sCurve(q.ry0);
        return q;
    }

    Real32 at2(Int32 q, Real32 rx, Real32 ry) const
    {
        return rx * _g2[q * 2] + ry * _g2[q * 2 + 1];
    }

    Real32 noise2(const Real32 *vec) const
    {
        const Square q = square(vec);
        const Real32 a = lerp(q.sx, at2(q.b00, q.rx0, q.ry0), at2(q.b10, q.rx1, q.ry0));
        const Real32 b = lerp(q.sx, at2(q.b01, q.rx0, q.ry1), at2(q.b11, q.rx1, q.ry1));
        return lerp(q.sy, a, b);
    }

    Real32 at3(Int32 q, Real32 rx, Real32 ry, Real32 rz) const
    {
        return rx * _g3[q * 3] + ry * _g3[q * 3 + 1] + rz * _g3[q * 3 + 2];
    }

    /// One face of the lattice cube: the square's corners offset by bz.
    Real32 face(const Square &q, Int32 bz, Real32 rz) const
    {
        const Real32 a = lerp(q.sx, at3(q.b00 + bz, q.rx0, q.ry0, rz), at3(q.b10 + bz, q.rx1, q.ry0, rz));
        const Real32 b = lerp(q.sx, at3(q.b01 + bz, q.rx0, q.ry1, rz), at3(q.b11 + bz, q.rx1, q.ry1, rz));
        return lerp(q.sy, a, b);
    }

    Real32 noise3(const Real32 *vec) const
    {
        const Square q = square(vec);
        Int32        bz0, bz1;
        Real32       rz0, rz1;
        setup(vec[2], bz0, bz1, rz0, rz1);
        return lerp(sCurve(rz0), face(q, bz0, rz0), face(q, bz1, rz1));
    }

    Int32               _b;
    std::vector<Int32>  _p;
    std::vector<Real32> _g1, _g2, _g3;
};

/// Bytes createNoise may ask for: one gibibyte.
const UInt64 MaxNoiseBytes = UInt64(1) << 30;

/// From this octave on an added octave is below one step of a byte:
/// amplitude 1/512 times 128 times at most about 2.1 truncates to 0.
const UInt32 FirstSilentOctave = 8;

} // namespace

bool createNoise(ImagePtr image, Image::PixelFormat pixelformat, UInt16 numOctaves, UInt16 size,
                 UInt8 dim, bool splitOctaves)
{
    if(image == NullFC)
    {
        FFATAL(("No output image given\n"));
        return false;
    }

    if(dim < 1 || dim > 3)
    {
        FWARNING(("createNoise: Use [1|2|3] for image dimension (default 2)\n"));
        dim = 2;
    }

    // the loop extents besides the outer one over size
    const UInt32 w = dim == 1 ? 1 : size;
    const UInt32 h = dim == 3 ? size : 1;

    const UInt64 pixels = UInt64(size) * w * h;
    if(pixels * 4 > MaxNoiseBytes ||
       !image->set(pixelformat, size, dim == 1 ? 1 : size, dim == 3 ? size : 1) ||
       image->getData() == NULL || image->getSize() < pixels * image->getComponents())
    {
        FFATAL(("createNoise: Could not create image\n"));
        return false;
    }

    const UInt32 components = image->getComponents();
    if(splitOctaves && numOctaves > components)
    {
        FWARNING(("createNoise: %d octaves do not fit into %d components, using %d\n", numOctaves,
                  components, components));
        numOctaves = UInt16(components);
    }

    UInt8 *data = image->getData();

    Int32  frequency = 4;
    Real32 amplitude = 0.5f;
    for(UInt32 f = 0; f < numOctaves; ++f, frequency *= 2, amplitude *= 0.5f)
    {
        // octaves this fine add nothing to a sum of bytes
        if(!splitOctaves && f >= FirstSilentOctave)
            break;

        const PerlinNoise noise(frequency);

        Real32       ni[3] = {0, 0, 0};
        const Real32 inc   = 1.f / (Real32(size) / Real32(frequency));

        UInt8 *out = data;
        for(UInt32 i = 0; i < size; ++i, ni[0] += inc)
        {
            for(UInt32 j = 0; j < w; ++j, ni[1] += inc)
            {
                for(UInt32 k = 0; k < h; ++k, ni[2] += inc)
                {
                    if(splitOctaves)
                    {
                        out[f] = UInt8(Int32(((double(noise(ni, dim)) + 1) * amplitude) * 128.0));
                    }
                    else
                    {
                        for(UInt32 c = 0; c < components; ++c)
                        {
                            out[c] = UInt8(out[c] +
                                           Int32(((double(noise(ni, dim)) + 1) * amplitude) * 128.0));
                            ni[0] += 1;
                        }
                        ni[0] -= components;
                    }
                    out += components;
                }
            }
        }

        FNOTICE(("Generated %dD noise: octave %d/%d...\n", Int32(dim), Int32(f + 1),
                 Int32(numOctaves)));
    }

    return true;
}

OSG_END_NAMESPACE
