/// Points and vectors of any size and value type: Point<T, N> holds the
/// values, Vector<T, N> derives from it and adds the vector algebra.
#ifndef _OSGVECTOR_H_
#define _OSGVECTOR_H_

#include <OpenSG/OSGBaseFunctions.h>
#include <OpenSG/OSGBaseTypes.h>

#include <cstdio>
#include <cstdlib>
#include <ostream>
#include <type_traits>

OSG_BEGIN_NAMESPACE

template <class ValueTypeT, UInt32 SizeI>
class Vector;

/// A position. Every component defaults to 0. Conversions between sizes and
/// value types are implicit: min(N, M) components are copied, the rest are 0.
template <class ValueTypeT, UInt32 SizeI>
class Point
{
    template <class PtrT>
    using IfValuePtr = typename std::enable_if<
        std::is_same<PtrT, const ValueTypeT *>::value ||
            std::is_same<PtrT, ValueTypeT *>::value,
        int>::type;

  public:
    typedef ValueTypeT                                  ValueType;
    typedef typename osgRealTypeOf<ValueTypeT>::type    RealReturnType;
    typedef Point<ValueTypeT, SizeI>                    PointType;
    typedef Vector<ValueTypeT, SizeI>                   VectorType;

    static const UInt32 _iSize = SizeI;
    static const Point  Null;

    constexpr Point(void) : _values{} {}

    constexpr explicit Point(ValueType v1) : _values{} { _values[0] = v1; }

    constexpr Point(ValueType v1, ValueType v2, ValueType v3 = ValueType(0),
                    ValueType v4 = ValueType(0))
        : _values{}
    {
        const ValueType v[4] = {v1, v2, v3, v4};
        for(UInt32 i = 0; i < SizeI && i < 4; ++i)
            _values[i] = v[i];
    }

    /// From an array of SizeI values. A template so that a literal 0 picks
    /// the scalar constructor instead of being ambiguous.
    template <class PtrT, IfValuePtr<PtrT> = 0>
    explicit Point(PtrT pValues) : _values{}
    {
        setValue(static_cast<const ValueType *>(pValues));
    }

    template <class T2, UInt32 S2>
    constexpr Point(const Point<T2, S2> &src) : _values{}
    {
        for(UInt32 i = 0; i < SizeI && i < S2; ++i)
            _values[i] = ValueType(src[i]);
    }

    // --- setting -----------------------------------------------------------

    void setNull(void)
    {
        for(UInt32 i = 0; i < SizeI; ++i)
            _values[i] = ValueType(0);
    }

    /// Copies min(N, M) components and leaves the others unchanged.
    template <class T2, UInt32 S2>
    void setValue(const Point<T2, S2> &src)
    {
        for(UInt32 i = 0; i < SizeI && i < S2; ++i)
            _values[i] = ValueType(src[i]);
    }

    void setValue(const ValueType *pValues)
    {
        if(pValues == NULL)
            return;
        for(UInt32 i = 0; i < SizeI; ++i)
            _values[i] = pValues[i];
    }

    void setValue(const Char8 *szString) { setValueFromCString(szString); }

    /// Reads up to SizeI numbers separated by blanks or commas; components
    /// without a number become 0.
    void setValueFromCString(const Char8 *szString)
    {
        setNull();
        if(szString == NULL)
            return;
        const Char8 *p = szString;
        for(UInt32 i = 0; i < SizeI; ++i)
        {
            while(*p == ' ' || *p == '\t' || *p == '\n' || *p == '\r' ||
                  *p == ',')
                ++p;
            Char8 *end = NULL;
            double v   = std::strtod(p, &end);
            if(end == p)
                break;
            _values[i] = ValueType(v);
            p          = end;
        }
    }

    /// Sets the given components and zeroes the rest.
    void setValues(ValueType v1, ValueType v2, ValueType v3 = ValueType(0),
                   ValueType v4 = ValueType(0))
    {
        *this = Point(v1, v2, v3, v4);
    }

    // --- access ------------------------------------------------------------

    ValueType       *getValues(void) { return _values; }
    const ValueType *getValues(void) const { return _values; }

    ValueType       &operator[](UInt32 i) { return _values[i]; }
    constexpr const ValueType &operator[](UInt32 i) const
    {
        return _values[i];
    }

    ValueType       &x(void) { return _values[0]; }
    const ValueType &x(void) const { return _values[0]; }
    ValueType       &y(void) { return _values[1]; }
    const ValueType &y(void) const { return _values[1]; }
    ValueType       &z(void) { return _values[2]; }
    const ValueType &z(void) const { return _values[2]; }
    ValueType       &w(void) { return _values[3]; }
    const ValueType &w(void) const { return _values[3]; }

    void getSeparateValues(ValueType &v1, ValueType &v2) const
    {
        v1 = _values[0];
        v2 = SizeI > 1 ? _values[SizeI > 1 ? 1 : 0] : ValueType(0);
    }
    void getSeparateValues(ValueType &v1, ValueType &v2, ValueType &v3) const
    {
        getSeparateValues(v1, v2);
        v3 = SizeI > 2 ? _values[SizeI > 2 ? 2 : 0] : ValueType(0);
    }
    void getSeparateValues(ValueType &v1, ValueType &v2, ValueType &v3,
                           ValueType &v4) const
    {
        getSeparateValues(v1, v2, v3);
        v4 = SizeI > 3 ? _values[SizeI > 3 ? 3 : 0] : ValueType(0);
    }

    // --- queries -------------------------------------------------------------

    /// True when every component lies within +-Eps of 0.
    bool isZero(void) const
    {
        for(UInt32 i = 0; i < SizeI; ++i)
            if(_values[i] > Eps || _values[i] < -Eps)
                return false;
        return true;
    }

    ValueType maxValue(void) const
    {
        ValueType m = _values[0];
        for(UInt32 i = 1; i < SizeI; ++i)
            if(m < _values[i])
                m = _values[i];
        return m;
    }

    RealReturnType dist2(const Point &p) const
    {
        RealReturnType s = 0;
        for(UInt32 i = 0; i < SizeI; ++i)
        {
            RealReturnType d = RealReturnType(_values[i]) - RealReturnType(p[i]);
            s += d * d;
        }
        return s;
    }

    RealReturnType dist(const Point &p) const { return std::sqrt(dist2(p)); }

    /// Component-wise comparison with an explicit tolerance.
    bool equals(const Point &p, ValueType tolerance) const
    {
        for(UInt32 i = 0; i < SizeI; ++i)
            if(_values[i] - p[i] > tolerance || p[i] - _values[i] > tolerance)
                return false;
        return true;
    }

    /// The same values seen as a vector (this minus the origin).
    VectorType subZero(void) const { return VectorType(*this); }

    // --- arithmetic ------------------------------------------------------------

    void negate(void)
    {
        for(UInt32 i = 0; i < SizeI; ++i)
            _values[i] = -_values[i];
    }

    VectorType operator-(const Point &p) const
    {
        VectorType r;
        for(UInt32 i = 0; i < SizeI; ++i)
            r[i] = _values[i] - p[i];
        return r;
    }

    Point operator+(const VectorType &v) const
    {
        Point r;
        for(UInt32 i = 0; i < SizeI; ++i)
            r[i] = _values[i] + v[i];
        return r;
    }

    Point operator-(const VectorType &v) const
    {
        Point r;
        for(UInt32 i = 0; i < SizeI; ++i)
            r[i] = _values[i] - v[i];
        return r;
    }

    Point operator*(ValueType s) const
    {
        Point r;
        for(UInt32 i = 0; i < SizeI; ++i)
            r[i] = _values[i] * s;
        return r;
    }

    Point operator-(void) const
    {
        Point r;
        for(UInt32 i = 0; i < SizeI; ++i)
            r[i] = -_values[i];
        return r;
    }

    Point &operator+=(const VectorType &v)
    {
        for(UInt32 i = 0; i < SizeI; ++i)
            _values[i] += v[i];
        return *this;
    }

    Point &operator-=(const VectorType &v)
    {
        for(UInt32 i = 0; i < SizeI; ++i)
            _values[i] -= v[i];
        return *this;
    }

    Point &operator*=(ValueType s)
    {
        for(UInt32 i = 0; i < SizeI; ++i)
            _values[i] *= s;
        return *this;
    }

    Point &operator/=(ValueType s)
    {
        for(UInt32 i = 0; i < SizeI; ++i)
            _values[i] /= s;
        return *this;
    }

    // --- comparison ---------------------------------------------------------------

    /// Lexicographic, so points can key ordered containers.
    bool operator<(const Point &p) const
    {
        for(UInt32 i = 0; i < SizeI; ++i)
        {
            if(_values[i] < p[i])
                return true;
            if(p[i] < _values[i])
                return false;
        }
        return false;
    }

    /// Not exact: components may differ by up to Eps.
    bool operator==(const Point &p) const { return equals(p, ValueType(Eps)); }
    bool operator!=(const Point &p) const { return !(*this == p); }

  protected:
    ValueType _values[SizeI];
};

template <class ValueTypeT, UInt32 SizeI>
const Point<ValueTypeT, SizeI> Point<ValueTypeT, SizeI>::Null;

/// A direction or offset: a Point with the vector algebra added.
template <class ValueTypeT, UInt32 SizeI>
class Vector : public Point<ValueTypeT, SizeI>
{
    typedef Point<ValueTypeT, SizeI> Inherited;

    template <class PtrT>
    using IfValuePtr = typename std::enable_if<
        std::is_same<PtrT, const ValueTypeT *>::value ||
            std::is_same<PtrT, ValueTypeT *>::value,
        int>::type;

  public:
    typedef ValueTypeT                               ValueType;
    typedef typename Inherited::RealReturnType       RealReturnType;
    typedef Point<ValueTypeT, SizeI>                 PointType;
    typedef Vector<ValueTypeT, SizeI>                VectorType;

    static const Vector Null;

    constexpr Vector(void) : Inherited() {}
    constexpr explicit Vector(ValueType v1) : Inherited(v1) {}
    constexpr Vector(ValueType v1, ValueType v2, ValueType v3 = ValueType(0),
                     ValueType v4 = ValueType(0))
        : Inherited(v1, v2, v3, v4)
    {
    }

    template <class PtrT, IfValuePtr<PtrT> = 0>
    explicit Vector(PtrT pValues) : Inherited(pValues)
    {
    }

    template <class T2, UInt32 S2>
    constexpr Vector(const Point<T2, S2> &src) : Inherited(src)
    {
    }

    // --- vector algebra ----------------------------------------------------

    RealReturnType squareLength(void) const
    {
        RealReturnType s = 0;
        for(UInt32 i = 0; i < SizeI; ++i)
            s += RealReturnType(this->_values[i]) *
                 RealReturnType(this->_values[i]);
        return s;
    }

    RealReturnType length(void) const { return std::sqrt(squareLength()); }

    /// Scales to unit length. Shorter than Eps: left unchanged, so a zero
    /// vector stays zero instead of turning into NaNs.
    void normalize(void)
    {
        RealReturnType len = length();
        if(len < RealReturnType(Eps))
            return;
        RealReturnType inv = RealReturnType(1) / len;
        for(UInt32 i = 0; i < SizeI; ++i)
            this->_values[i] = ValueType(this->_values[i] * inv);
    }

    ValueType dot(const Vector &v) const
    {
        ValueType s = ValueType(0);
        for(UInt32 i = 0; i < SizeI; ++i)
            s += this->_values[i] * v[i];
        return s;
    }

    /// Right-handed cross product of the first three components; any 4th
    /// component of the result is 0. Needs at least three components.
    Vector cross(const Vector &v) const
    {
        Vector r;
        if(SizeI < 3)
        {
            std::fprintf(stderr, "Vector::cross: needs at least three "
                                 "components\n");
            return r;
        }
        const ValueType *a = this->_values;
        const ValueType *b = v._values;
        // The index arithmetic stays in range for every SizeI that gets here.
        const UInt32 i1 = SizeI > 1 ? 1 : 0, i2 = SizeI > 2 ? 2 : 0;
        r[0]  = a[i1] * b[i2] - a[i2] * b[i1];
        r[i1] = a[i2] * b[0] - a[0] * b[i2];
        r[i2] = a[0] * b[i1] - a[i1] * b[0];
        return r;
    }

    /// In place: only x, y and z change, so a 4th component keeps its
    /// value; a vector of fewer than three components stays as it is.
    void crossThis(const Vector &v)
    {
        if(SizeI < 3)
        {
            std::fprintf(stderr, "Vector::crossThis: needs at least three "
                                 "components\n");
            return;
        }
        Vector r = cross(v);
        for(UInt32 i = 0; i < 3 && i < SizeI; ++i)
            this->_values[i] = r[i];
    }

    /// Angle between the two vectors in radians; 0 when either is ~zero.
    RealReturnType enclosedAngle(const Vector &v) const
    {
        RealReturnType l = length() * v.length();
        if(l < RealReturnType(Eps))
            return RealReturnType(0);
        RealReturnType c = RealReturnType(dot(v)) / l;
        c = c > RealReturnType(1) ? RealReturnType(1)
                                  : (c < RealReturnType(-1) ? RealReturnType(-1)
                                                            : c);
        return std::acos(c);
    }

    /// Replaces this by its projection onto v and returns the factor f with
    /// projection = f * v. A ~zero v gives 0 and a zero vector.
    RealReturnType projectTo(const Vector &v)
    {
        RealReturnType l2 = v.squareLength();
        if(l2 < RealReturnType(Eps))
        {
            this->setNull();
            return RealReturnType(0);
        }
        RealReturnType f = RealReturnType(dot(v)) / l2;
        for(UInt32 i = 0; i < SizeI; ++i)
            this->_values[i] = ValueType(v[i] * f);
        return f;
    }

    /// The same values seen as a point (the origin plus this).
    PointType       &addToZero(void) { return *this; }
    const PointType &addToZero(void) const { return *this; }

    // --- operators ---------------------------------------------------------

    Vector operator+(const Vector &v) const
    {
        Vector r;
        for(UInt32 i = 0; i < SizeI; ++i)
            r[i] = this->_values[i] + v[i];
        return r;
    }

    Vector operator-(const Vector &v) const
    {
        Vector r;
        for(UInt32 i = 0; i < SizeI; ++i)
            r[i] = this->_values[i] - v[i];
        return r;
    }

    Vector operator*(ValueType s) const
    {
        Vector r;
        for(UInt32 i = 0; i < SizeI; ++i)
            r[i] = this->_values[i] * s;
        return r;
    }

    Vector operator/(ValueType s) const
    {
        Vector r;
        for(UInt32 i = 0; i < SizeI; ++i)
            r[i] = this->_values[i] / s;
        return r;
    }

    /// Dot product.
    ValueType operator*(const Vector &v) const { return dot(v); }

    /// Cross product.
    Vector operator%(const Vector &v) const { return cross(v); }

    Vector operator-(void) const
    {
        Vector r;
        for(UInt32 i = 0; i < SizeI; ++i)
            r[i] = -this->_values[i];
        return r;
    }

    Vector &operator+=(const Vector &v)
    {
        Inherited::operator+=(v);
        return *this;
    }

    Vector &operator-=(const Vector &v)
    {
        Inherited::operator-=(v);
        return *this;
    }

    Vector &operator*=(ValueType s)
    {
        Inherited::operator*=(s);
        return *this;
    }

    Vector &operator/=(ValueType s)
    {
        Inherited::operator/=(s);
        return *this;
    }
};

template <class ValueTypeT, UInt32 SizeI>
const Vector<ValueTypeT, SizeI> Vector<ValueTypeT, SizeI>::Null;

template <class ValueTypeT, UInt32 SizeI>
inline Vector<ValueTypeT, SizeI>
operator*(const typename osgNonDeduced<ValueTypeT>::type s,
          const Vector<ValueTypeT, SizeI>                &v)
{
    return v * s;
}

template <class ValueTypeT, UInt32 SizeI>
inline Point<ValueTypeT, SizeI>
operator*(const typename osgNonDeduced<ValueTypeT>::type s,
          const Point<ValueTypeT, SizeI>                 &p)
{
    return p * s;
}

/// Writes the components separated by ", ", for example "1, 2, 3". Byte
/// components print as numbers, not characters.
template <class ValueTypeT, UInt32 SizeI>
std::ostream &operator<<(std::ostream &os, const Point<ValueTypeT, SizeI> &p)
{
    for(UInt32 i = 0; i < SizeI; ++i)
    {
        if(i > 0)
            os << ", ";
        os << +p[i];
    }
    return os;
}

typedef Point<Real32, 2> Pnt2f;
typedef Point<Real32, 3> Pnt3f;
typedef Point<Real32, 4> Pnt4f;
typedef Point<Real64, 2> Pnt2d;
typedef Point<Real64, 3> Pnt3d;
typedef Point<Real64, 4> Pnt4d;
typedef Point<Int16, 2>  Pnt2s;
typedef Point<Int16, 3>  Pnt3s;
typedef Point<Int16, 4>  Pnt4s;
typedef Point<UInt16, 2> Pnt2us;
typedef Point<UInt16, 3> Pnt3us;
typedef Point<UInt16, 4> Pnt4us;
typedef Point<Int8, 2>   Pnt2b;
typedef Point<Int8, 3>   Pnt3b;
typedef Point<Int8, 4>   Pnt4b;
typedef Point<UInt8, 2>  Pnt2ub;
typedef Point<UInt8, 3>  Pnt3ub;
typedef Point<UInt8, 4>  Pnt4ub;
typedef Point<Real128, 2> Pnt2ld;
typedef Point<Real128, 3> Pnt3ld;
typedef Point<Real128, 4> Pnt4ld;

typedef Vector<Real32, 2> Vec2f;
typedef Vector<Real32, 3> Vec3f;
typedef Vector<Real32, 4> Vec4f;
typedef Vector<Real64, 2> Vec2d;
typedef Vector<Real64, 3> Vec3d;
typedef Vector<Real64, 4> Vec4d;
typedef Vector<Int16, 2>  Vec2s;
typedef Vector<Int16, 3>  Vec3s;
typedef Vector<Int16, 4>  Vec4s;
typedef Vector<UInt16, 2> Vec2us;
typedef Vector<UInt16, 3> Vec3us;
typedef Vector<UInt16, 4> Vec4us;
typedef Vector<Int8, 2>   Vec2b;
typedef Vector<Int8, 3>   Vec3b;
typedef Vector<Int8, 4>   Vec4b;
typedef Vector<UInt8, 2>  Vec2ub;
typedef Vector<UInt8, 3>  Vec3ub;
typedef Vector<UInt8, 4>  Vec4ub;
typedef Vector<Real128, 2> Vec2ld;
typedef Vector<Real128, 3> Vec3ld;
typedef Vector<Real128, 4> Vec4ld;

OSG_END_NAMESPACE

#endif
