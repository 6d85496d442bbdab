/// Scalar math helpers and small string helpers of the base layer.
#ifndef _OSGBASEFUNCTIONS_H_
#define _OSGBASEFUNCTIONS_H_

#include <OpenSG/OSGBaseTypes.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <strings.h>
#include <type_traits>

OSG_BEGIN_NAMESPACE

/// The floating type math on T is done in: T itself for floating types,
/// Real32 for everything else (integers, Real16).
template <class T>
struct osgRealTypeOf
{
    typedef typename std::conditional<std::is_floating_point<T>::value, T,
                                      Real32>::type type;
};

/// Keeps the second argument of a two-argument helper out of deduction, so
/// that osgpow(2.f, 3) compiles, as OpenSG's overloads for Real32 and Real64
/// allow.
template <class T>
struct osgNonDeduced
{
    typedef T type;
};

// --- trigonometry and powers --------------------------------------------

/// (degree / 360) * 2 * 3.1415926535, left to right in the result type, as
/// OpenSG computes it: one unit in the last place off degree * pi / 180 for
/// some inputs (1 and 16.66 degrees, for example).
template <class T>
inline typename osgRealTypeOf<T>::type osgdegree2rad(T degree)
{
    typedef typename osgRealTypeOf<T>::type R;
    return R(degree) / R(360) * R(2) * R(3.1415926535);
}

/// (rad / (2 * 3.1415926535)) * 360 in the result type.
template <class T>
inline typename osgRealTypeOf<T>::type osgrad2degree(T rad)
{
    typedef typename osgRealTypeOf<T>::type R;
    return R(rad) / (R(2) * R(3.1415926535)) * R(360);
}

template <class T>
inline typename osgRealTypeOf<T>::type deg2rad(const T &degree)
{
    return osgdegree2rad(degree);
}

template <class T>
inline typename osgRealTypeOf<T>::type rad2deg(const T &rad)
{
    return osgrad2degree(rad);
}

template <class T>
inline typename osgRealTypeOf<T>::type osgsqrt(T v)
{
    return std::sqrt(typename osgRealTypeOf<T>::type(v));
}

template <class T>
inline typename osgRealTypeOf<T>::type osgsin(T v)
{
    return std::sin(typename osgRealTypeOf<T>::type(v));
}

template <class T>
inline typename osgRealTypeOf<T>::type osgcos(T v)
{
    return std::cos(typename osgRealTypeOf<T>::type(v));
}

template <class T>
inline typename osgRealTypeOf<T>::type osgtan(T v)
{
    return std::tan(typename osgRealTypeOf<T>::type(v));
}

template <class T>
inline typename osgRealTypeOf<T>::type osgasin(T v)
{
    return std::asin(typename osgRealTypeOf<T>::type(v));
}

template <class T>
inline typename osgRealTypeOf<T>::type osgacos(T v)
{
    return std::acos(typename osgRealTypeOf<T>::type(v));
}

template <class T>
inline typename osgRealTypeOf<T>::type osgatan(T v)
{
    return std::atan(typename osgRealTypeOf<T>::type(v));
}

template <class T>
inline typename osgRealTypeOf<T>::type
osgatan2(T y, typename osgNonDeduced<T>::type x)
{
    typedef typename osgRealTypeOf<T>::type R;
    return std::atan2(R(y), R(x));
}

template <class T>
inline typename osgRealTypeOf<T>::type
osgpow(T base, typename osgNonDeduced<T>::type exponent)
{
    typedef typename osgRealTypeOf<T>::type R;
    return std::pow(R(base), R(exponent));
}

template <class T>
inline typename osgRealTypeOf<T>::type osgexp(T v)
{
    return std::exp(typename osgRealTypeOf<T>::type(v));
}

template <class T>
inline typename osgRealTypeOf<T>::type osglog(T v)
{
    return std::log(typename osgRealTypeOf<T>::type(v));
}

template <class T>
inline typename osgRealTypeOf<T>::type osgfloor(T v)
{
    return std::floor(typename osgRealTypeOf<T>::type(v));
}

template <class T>
inline typename osgRealTypeOf<T>::type osgceil(T v)
{
    return std::ceil(typename osgRealTypeOf<T>::type(v));
}

// --- comparisons ----------------------------------------------------------

template <class T>
inline T osgabs(T v)
{
    return v < T(0) ? T(-v) : v;
}

// Both arguments of one type, as in OpenSG: osgMin(x, 0) with a float x
// does not compile there either.
template <class T>
inline T osgMin(const T &a, const T &b)
{
    return b < a ? b : a;
}

template <class T>
inline T osgMax(const T &a, const T &b)
{
    return a < b ? b : a;
}

/// Argument order as in OpenSG: (minimum, value, maximum).
template <class T>
inline T osgClamp(const T &minVal, const T &val, const T &maxVal)
{
    return val < minVal ? minVal : (maxVal < val ? maxVal : val);
}

/// -1, 0 or 1 by the sign of v.
template <class T>
inline Int8 osgSgn(T v)
{
    return v < T(0) ? Int8(-1) : (T(0) < v ? Int8(1) : Int8(0));
}

template <class T>
inline void osgSwap(T &a, T &b)
{
    T t(a);
    a = b;
    b = t;
}

// --- powers of two (integer types) ----------------------------------------

template <class T>
inline bool osgIsPower2(T n)
{
    static_assert(std::is_integral<T>::value, "integer types only");
    return n > T(0) && (n & T(n - 1)) == T(0);
}

/// Older spelling of osgIsPower2.
template <class T>
inline bool osgispower2(T n)
{
    return osgIsPower2(n);
}

/// The smallest power of two >= n; 1 for n <= 1, and 0 when that power does
/// not fit into T.
template <class T>
inline T osgnextpower2(T n)
{
    static_assert(std::is_integral<T>::value, "integer types only");
    if(n <= T(1))
        return T(1);

    typedef typename std::make_unsigned<T>::type U;
    U v = U(n) - 1;
    for(unsigned int s = 1; s < sizeof(U) * 8; s <<= 1)
        v = U(v | (v >> s));
    v = U(v + 1);

    // Signed types: the next power may only be representable as unsigned.
    if(v == 0 || v > U(std::numeric_limits<T>::max()))
        return T(0);
    return T(v);
}

// --- C string helpers (NULL-safe where OpenSG's are) ----------------------

/// Copies src into a new[]-allocated string; NULL for NULL.
inline Char8 *stringDup(const Char8 *src)
{
    if(src == NULL)
        return NULL;
    size_t  len = std::strlen(src) + 1;
    Char8  *dst = new Char8[len];
    std::memcpy(dst, src, len);
    return dst;
}

inline Int32 stringcmp(const Char8 *a, const Char8 *b)
{
    return std::strcmp(a, b);
}

inline Int32 stringncmp(const Char8 *a, const Char8 *b, size_t count)
{
    return std::strncmp(a, b, count);
}

inline Int32 stringcasecmp(const Char8 *a, const Char8 *b)
{
    return ::strcasecmp(a, b);
}

inline Int32 stringlen(const Char8 *s)
{
    return s != NULL ? Int32(std::strlen(s)) : 0;
}

OSG_END_NAMESPACE

// --- random numbers and sleeping -------------------------------------------

OSG_BEGIN_NAMESPACE

/// A pseudo-random number in [0, 1] from rand().
inline Real32 osgrand(void)
{
    return Real32(std::rand()) / Real32(RAND_MAX);
}

/// Sleeps for the given number of milliseconds.
void osgsleep(UInt32 millisecs);

OSG_END_NAMESPACE

// Initialisation and exit (osgInit, osgExit, addInitFunction, ...) live in
// their own header; every OpenSG program reaches them through this one.
#include <OpenSG/OSGBaseInitFunctions.h>

#endif
