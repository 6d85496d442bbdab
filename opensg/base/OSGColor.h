/// RGB and RGBA colours over float or byte components.
#ifndef _OSGCOLOR_H_
#define _OSGCOLOR_H_

#include <OpenSG/OSGBaseFunctions.h>
#include <OpenSG/OSGBaseTypes.h>

#include <cstdlib>
#include <ostream>
#include <type_traits>

OSG_BEGIN_NAMESPACE

/// Conversion between a colour component and its 8-bit packed form: float
/// components span 0..1 (clamped and rounded when packed, so that packing
/// what was unpacked gives the same bytes), UInt8 ones 0..255.
template <class ValueTypeT>
struct ColorComponent
{
    static UInt8 toByte(ValueTypeT v)
    {
        if(!(v > ValueTypeT(0)))
            return 0;
        if(v >= ValueTypeT(1))
            return 255;
        return UInt8(v * ValueTypeT(255) + ValueTypeT(0.5));
    }
    static ValueTypeT fromByte(UInt8 b) { return ValueTypeT(b) / ValueTypeT(255); }
    static ValueTypeT one(void) { return ValueTypeT(1); }
};

template <>
struct ColorComponent<UInt8>
{
    static UInt8 toByte(UInt8 v) { return v; }
    static UInt8 fromByte(UInt8 b) { return b; }
    static UInt8 one(void) { return 255; }
};

/// Shared body of Color3 and Color4: N components in _values, with the
/// component-wise arithmetic.
template <class ValueTypeT, UInt32 SizeI, class DerivedT>
class ColorBase
{
  public:
    typedef ValueTypeT ValueType;

    ValueType       &operator[](UInt32 i) { return _values[i]; }
    const ValueType &operator[](UInt32 i) const { return _values[i]; }

    ValueType red(void) const { return _values[0]; }
    ValueType green(void) const { return _values[1]; }
    ValueType blue(void) const { return _values[2]; }

    ValueType       *getValuesRGB(void) { return _values; }
    const ValueType *getValuesRGB(void) const { return _values; }

    void setValuesRGB(ValueType r, ValueType g, ValueType b)
    {
        _values[0] = r;
        _values[1] = g;
        _values[2] = b;
    }

    /// h in degrees (any value, taken modulo 360), s and v in 0..1; for byte
    /// colours s and v are fractions of 255.
    void setValuesHSV(Real32 h, Real32 s, Real32 v)
    {
        Real32 r, g, b;
        hsvToRgb(h, s, v, r, g, b);
        _values[0] = fromUnit(r);
        _values[1] = fromUnit(g);
        _values[2] = fromUnit(b);
    }

    /// Packs the colour as 0x00RRGGBB.
    UInt32 getRGB(void) const
    {
        return (UInt32(ColorComponent<ValueType>::toByte(_values[0])) << 16) |
               (UInt32(ColorComponent<ValueType>::toByte(_values[1])) << 8) |
               UInt32(ColorComponent<ValueType>::toByte(_values[2]));
    }

    /// Unpacks 0x00RRGGBB.
    void setRGB(UInt32 rgb)
    {
        _values[0] = ColorComponent<ValueType>::fromByte(UInt8(rgb >> 16));
        _values[1] = ColorComponent<ValueType>::fromByte(UInt8(rgb >> 8));
        _values[2] = ColorComponent<ValueType>::fromByte(UInt8(rgb));
    }

    /// Reads up to SizeI numbers separated by blanks or commas; missing
    /// components become 0.
    void setValue(const Char8 *szString)
    {
        for(UInt32 i = 0; i < SizeI; ++i)
            _values[i] = ValueType(0);
        if(szString == NULL)
            return;
        const Char8 *p = szString;
        for(UInt32 i = 0; i < SizeI; ++i)
        {
            while(*p == ' ' || *p == '\t' || *p == '\n' || *p == ',')
                ++p;
            Char8 *end = NULL;
            double v   = std::strtod(p, &end);
            if(end == p)
                break;
            _values[i] = ValueType(v);
            p          = end;
        }
    }

    bool equals(const DerivedT &c, ValueType tolerance) const
    {
        for(UInt32 i = 0; i < SizeI; ++i)
            if(_values[i] - c[i] > tolerance || c[i] - _values[i] > tolerance)
                return false;
        return true;
    }

    /// Not exact: components may differ by up to Eps.
    bool operator==(const DerivedT &c) const { return equals(c, ValueType(Eps)); }
    bool operator!=(const DerivedT &c) const { return !(*this == c); }

#define OSG_COLOR_OP(OP)                                                      \
    DerivedT operator OP(const DerivedT &c) const                             \
    {                                                                         \
        DerivedT r;                                                           \
        for(UInt32 i = 0; i < SizeI; ++i)                                     \
            r[i] = ValueType(_values[i] OP c[i]);                             \
        return r;                                                             \
    }                                                                         \
    DerivedT operator OP(ValueType s) const                                   \
    {                                                                         \
        DerivedT r;                                                           \
        for(UInt32 i = 0; i < SizeI; ++i)                                     \
            r[i] = ValueType(_values[i] OP s);                                \
        return r;                                                             \
    }                                                                         \
    DerivedT &operator OP##=(const DerivedT &c)                               \
    {                                                                         \
        for(UInt32 i = 0; i < SizeI; ++i)                                     \
            _values[i] = ValueType(_values[i] OP c[i]);                       \
        return self();                                                        \
    }                                                                         \
    DerivedT &operator OP##=(ValueType s)                                     \
    {                                                                         \
        for(UInt32 i = 0; i < SizeI; ++i)                                     \
            _values[i] = ValueType(_values[i] OP s);                          \
        return self();                                                        \
    }

    OSG_COLOR_OP(+)
    OSG_COLOR_OP(-)
    OSG_COLOR_OP(*)
    OSG_COLOR_OP(/)
#undef OSG_COLOR_OP

  protected:
    ColorBase(void) : _values{} {}

    DerivedT &self(void) { return static_cast<DerivedT &>(*this); }

    static ValueType fromUnit(Real32 u)
    {
        if(std::is_floating_point<ValueType>::value)
            return ValueType(u);
        return ValueType(u * Real32(ColorComponent<ValueType>::one()) + 0.5f);
    }

    static void hsvToRgb(Real32 h, Real32 s, Real32 v, Real32 &r, Real32 &g,
                         Real32 &b)
    {
        if(!std::is_floating_point<ValueType>::value)
        {
            s /= Real32(ColorComponent<ValueType>::one());
            v /= Real32(ColorComponent<ValueType>::one());
        }
        if(s <= 0.f)
        {
            r = g = b = v;
            return;
        }
        h = std::fmod(h, 360.f);
        if(h < 0.f)
            h += 360.f;
        h /= 60.f;
        Int32  sector = Int32(h);
        Real32 f      = h - Real32(sector);
        Real32 p      = v * (1.f - s);
        Real32 q      = v * (1.f - s * f);
        Real32 t      = v * (1.f - s * (1.f - f));
        switch(sector)
        {
            case 0:  r = v; g = t; b = p; break;
            case 1:  r = q; g = v; b = p; break;
            case 2:  r = p; g = v; b = t; break;
            case 3:  r = p; g = q; b = v; break;
            case 4:  r = t; g = p; b = v; break;
            default: r = v; g = p; b = q; break;
        }
    }

    ValueType _values[SizeI];
};

/// RGB colour; the default is black.
template <class ValueTypeT>
class Color3 : public ColorBase<ValueTypeT, 3, Color3<ValueTypeT> >
{
  public:
    typedef ValueTypeT ValueType;

    Color3(void) {}
    Color3(ValueType r, ValueType g, ValueType b)
    {
        this->setValuesRGB(r, g, b);
    }
};

/// RGBA colour; the default is all zero, alpha included.
template <class ValueTypeT>
class Color4 : public ColorBase<ValueTypeT, 4, Color4<ValueTypeT> >
{
  public:
    typedef ValueTypeT ValueType;

    Color4(void) {}
    Color4(ValueType r, ValueType g, ValueType b, ValueType a)
    {
        setValuesRGBA(r, g, b, a);
    }

    ValueType alpha(void) const { return this->_values[3]; }

    ValueType       *getValuesRGBA(void) { return this->_values; }
    const ValueType *getValuesRGBA(void) const { return this->_values; }

    void setValuesRGBA(ValueType r, ValueType g, ValueType b, ValueType a)
    {
        this->setValuesRGB(r, g, b);
        this->_values[3] = a;
    }

    /// Packs the colour as 0xRRGGBBAA.
    UInt32 getRGBA(void) const
    {
        return (this->getRGB() << 8) |
               UInt32(ColorComponent<ValueType>::toByte(this->_values[3]));
    }

    /// Unpacks 0xRRGGBBAA.
    void setRGBA(UInt32 rgba)
    {
        this->setRGB(rgba >> 8);
        this->_values[3] = ColorComponent<ValueType>::fromByte(UInt8(rgba));
    }
};

template <class ValueTypeT>
inline Color3<ValueTypeT>
operator*(const typename osgNonDeduced<ValueTypeT>::type s,
          const Color3<ValueTypeT>                       &c)
{
    return c * s;
}

template <class ValueTypeT>
inline Color4<ValueTypeT>
operator*(const typename osgNonDeduced<ValueTypeT>::type s,
          const Color4<ValueTypeT>                       &c)
{
    return c * s;
}

/// Components separated by ", "; byte components print as numbers.
template <class ValueTypeT>
std::ostream &operator<<(std::ostream &os, const Color3<ValueTypeT> &c)
{
    return os << +c[0] << ", " << +c[1] << ", " << +c[2];
}

template <class ValueTypeT>
std::ostream &operator<<(std::ostream &os, const Color4<ValueTypeT> &c)
{
    return os << +c[0] << ", " << +c[1] << ", " << +c[2] << ", " << +c[3];
}

typedef Color3<Real32> Color3f;
typedef Color4<Real32> Color4f;
typedef Color3<UInt8>  Color3ub;
typedef Color4<UInt8>  Color4ub;

OSG_END_NAMESPACE

#endif
