/// Real16: a 16-bit IEEE half float (sign bit 15, 5-bit exponent with bias
/// 15, 10-bit mantissa), stored as its raw bit pattern.
#ifndef _OSGREAL16_H_
#define _OSGREAL16_H_

#include <OpenSG/OSGConfig.h>

#include <cstdint>
#include <cstring>
#include <iosfwd>

// Limits of the half format. Plain double literals, like <cfloat>'s.
#define REAL16_MIN        5.96046448e-08 // smallest positive denormal
#define REAL16_NRM_MIN    6.10351562e-05 // smallest positive normal
#define REAL16_MAX        65504.0        // largest finite value
#define REAL16_EPSILON    0.00097656     // 1.0 to the next value up
#define REAL16_MANT_DIG   11
#define REAL16_DIG        2
#define REAL16_RADIX      2
#define REAL16_MIN_EXP    -13
#define REAL16_MAX_EXP    16
#define REAL16_MIN_10_EXP -4
#define REAL16_MAX_10_EXP 4

OSG_BEGIN_NAMESPACE

/// Half float. Exactly two bytes and trivially copyable, because image data
/// is reinterpreted as arrays of it. It has no comparison operators: values
/// compare through the implicit conversion to float.
class Real16
{
  public:
    /// Bit patterns of all 65536 halves as float bits, filled at compile
    /// time so that conversions are usable from any static initialiser.
    struct FloatTable
    {
        std::uint32_t bits[65536];
    };

    /// Leaves the bits uninitialised, like a built-in float.
    Real16(void) = default;

    /// Rounds to nearest, ties away from zero; see convert().
    Real16(float f) : _h(fromFloat(f)) {}

    operator float(void) const
    {
        float f;
        std::memcpy(&f, &_toFloat.bits[_h], sizeof(f));
        return f;
    }

    Real16 operator-(void) const
    {
        Real16 h;
        h._h = static_cast<unsigned short>(_h ^ 0x8000);
        return h;
    }

    Real16 &operator=(float f)
    {
        _h = fromFloat(f);
        return *this;
    }

    Real16 &operator+=(Real16 h) { return *this = float(*this) + float(h); }
    Real16 &operator+=(float f) { return *this = float(*this) + f; }
    Real16 &operator-=(Real16 h) { return *this = float(*this) - float(h); }
    Real16 &operator-=(float f) { return *this = float(*this) - f; }
    Real16 &operator*=(Real16 h) { return *this = float(*this) * float(h); }
    Real16 &operator*=(float f) { return *this = float(*this) * f; }
    Real16 &operator/=(Real16 h) { return *this = float(*this) / float(h); }
    Real16 &operator/=(float f) { return *this = float(*this) / f; }

    /// Keeps n mantissa bits, rounding to nearest (ties away from zero).
    /// n >= 10 changes nothing; a result that would overflow to infinity is
    /// truncated instead, and infinities and NaNs are returned unchanged.
    Real16 round(unsigned int n) const;

    bool isFinite(void) const { return (_h & 0x7C00) != 0x7C00; }
    bool isNormalized(void) const
    {
        unsigned int e = (_h >> 10) & 0x1F;
        return e > 0 && e < 31;
    }
    bool isDenormalized(void) const
    {
        return (_h & 0x7C00) == 0 && (_h & 0x03FF) != 0;
    }
    bool isZero(void) const { return (_h & 0x7FFF) == 0; }
    bool isNan(void) const
    {
        return (_h & 0x7C00) == 0x7C00 && (_h & 0x03FF) != 0;
    }
    bool isInfinity(void) const { return (_h & 0x7FFF) == 0x7C00; }
    bool isNegative(void) const { return (_h & 0x8000) != 0; }

    static Real16 posInf(void) { return fromBits(0x7C00); }
    static Real16 negInf(void) { return fromBits(0xFC00); }
    static Real16 qNan(void) { return fromBits(0x7FFF); }
    static Real16 sNan(void) { return fromBits(0x7DFF); }

    unsigned short bits(void) const { return _h; }
    void setBits(unsigned short bits) { _h = bits; }

    /// Float-to-half bit conversion. The common case (|f| in [2^-14, 32768))
    /// is inline; everything else goes through convert().
    static unsigned short fromFloat(float f)
    {
        std::uint32_t x;
        std::memcpy(&x, &f, sizeof(x));
        std::uint32_t exp = (x >> 23) & 0xFF;
        if(exp - 113u <= 28u)
        {
            // Adding 0x1000 before the shift rounds ties away from zero; a
            // carry out of the mantissa bumps the exponent, which stays <= 30.
            return static_cast<unsigned short>(
                ((x >> 16) & 0x8000) + ((exp - 112u) << 10) +
                (((x & 0x7FFFFF) + 0x1000) >> 13));
        }
        return convert(x);
    }

    /// The general path: zeros, denormals, infinities, NaNs, overflow.
    static unsigned short convert(std::uint32_t floatBits);

  private:
    static Real16 fromBits(unsigned short bits)
    {
        Real16 h;
        h._h = bits;
        return h;
    }

    static const FloatTable _toFloat;

    unsigned short _h;
};

std::ostream &operator<<(std::ostream &os, Real16 h);
std::istream &operator>>(std::istream &is, Real16 &h);

OSG_END_NAMESPACE

#endif
