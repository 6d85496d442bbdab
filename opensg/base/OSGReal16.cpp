#include <OpenSG/OSGReal16.h>

#include <istream>
#include <ostream>

OSG_BEGIN_NAMESPACE

namespace
{

constexpr std::uint32_t halfToFloatBits(std::uint32_t h)
{
    std::uint32_t sign = (h & 0x8000u) << 16;
    std::int32_t  exp  = std::int32_t((h >> 10) & 0x1F);
    std::uint32_t mant = h & 0x3FFu;

    if(exp == 0)
    {
        if(mant == 0)
            return sign;

        // Denormal: every one is a normal float, so shift the leading one
        // into the hidden-bit position and lower the exponent to match.
        while((mant & 0x400u) == 0)
        {
            mant <<= 1;
            --exp;
        }
        ++exp;
        mant &= 0x3FFu;
    }
    else if(exp == 31)
    {
        // Infinity stays infinity; a NaN keeps its payload.
        return sign | 0x7F800000u | (mant << 13);
    }

    return sign | (std::uint32_t(exp + (127 - 15)) << 23) | (mant << 13);
}

constexpr Real16::FloatTable makeFloatTable(void)
{
    Real16::FloatTable table{};
    for(std::uint32_t i = 0; i < 65536; ++i)
        table.bits[i] = halfToFloatBits(i);
    return table;
}

} // namespace

namespace
{
// constexpr, so the table is computed by the compiler or not at all.
constexpr Real16::FloatTable FloatTableInit = makeFloatTable();
} // namespace

// Constant-initialised: ready before any dynamic initialiser can run.
const Real16::FloatTable Real16::_toFloat = FloatTableInit;

unsigned short Real16::convert(std::uint32_t x)
{
    // A zero of either sign gives +0: the sign of zero is not kept.
    if((x & 0x7FFFFFFFu) == 0)
        return 0;

    std::uint32_t sign = (x >> 16) & 0x8000u;
    std::int32_t  e    = std::int32_t((x >> 23) & 0xFF) - (127 - 15);
    std::uint32_t m    = x & 0x7FFFFFu;

    if(e <= 0)
    {
        // Below 2^-25 the value rounds to zero, again without its sign.
        if(e < -10)
            return 0;

        // Denormal half: make the hidden bit explicit and shift it into the
        // denormal position. Rounding may carry into the exponent field,
        // which correctly yields the smallest normal half.
        m = (m | 0x800000u) >> (1 - e);
        if(m & 0x1000u)
            m += 0x2000u;
        return static_cast<unsigned short>(sign | (m >> 13));
    }

    if(e == 0xFF - (127 - 15))
    {
        if(m == 0)
            return static_cast<unsigned short>(sign | 0x7C00u);

        // NaN: keep the top mantissa bits, but never let it turn into an
        // infinity by losing them all.
        m >>= 13;
        return static_cast<unsigned short>(sign | 0x7C00u | m | (m == 0));
    }

    if(m & 0x1000u)
    {
        m += 0x2000u;
        if(m & 0x800000u)
        {
            m = 0;
            e += 1;
        }
    }

    // Too large for a half (65520 and up): signed infinity.
    if(e > 30)
        return static_cast<unsigned short>(sign | 0x7C00u);

    return static_cast<unsigned short>(sign | (std::uint32_t(e) << 10) |
                                       (m >> 13));
}

Real16 Real16::round(unsigned int n) const
{
    if(n >= 10 || !isFinite())
        return *this;

    unsigned int sign  = _h & 0x8000u;
    unsigned int mag   = _h & 0x7FFFu;
    unsigned int shift = 10 - n;

    // Rounding the magnitude may carry into the exponent, which is exactly
    // what a rounded mantissa needs; only a carry into infinity is refused.
    unsigned int r = ((mag + (1u << (shift - 1))) >> shift) << shift;
    if(r >= 0x7C00u)
        r = (mag >> shift) << shift;

    return fromBits(static_cast<unsigned short>(sign | r));
}

std::ostream &operator<<(std::ostream &os, Real16 h)
{
    return os << float(h);
}

std::istream &operator>>(std::istream &is, Real16 &h)
{
    float f;
    if(is >> f)
        h = f;
    return is;
}

OSG_END_NAMESPACE
