/// Numeric facts and text conversion of the scalar base types.
#ifndef _OSGBASETYPETRAITS_H_
#define _OSGBASETYPETRAITS_H_

#include <OpenSG/OSGBaseTypes.h>
#include <OpenSG/OSGReal16.h>

#include <cfloat>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>

OSG_BEGIN_NAMESPACE

template <class T>
struct TypeTraits
{
    static const bool IsPOD = false;
};

template <>
struct TypeTraits<bool>
{
    static const bool IsPOD = true;
    static const MathTypeProperties MathProp = BoolValue;
    static const bool BitsSet   = true;
    static const bool BitsClear = false;

    static bool getZeroElement(void) { return false; }
    static bool getOneElement(void) { return true; }
    static bool getMax(void) { return true; }
    static bool getMin(void) { return false; }
};

/// Integer traits: one template instantiated for each integer width.
template <class T>
struct IntTypeTraitsBase
{
    static const bool IsPOD = true;
    static const MathTypeProperties MathProp = IntValue;
    typedef Real32 RealReturnType;

    static const T BitsSet   = T(~T(0));
    static const T BitsClear = T(0);

    static T getZeroElement(void) { return T(0); }
    static T getOneElement(void) { return T(1); }
    static T getMax(void) { return std::numeric_limits<T>::max(); }
    static T getMin(void) { return std::numeric_limits<T>::min(); }

    static Real32 getFraction(T val) { return Real32(val) / Real32(getMax()); }
    static T getPortion(Real32 val) { return T(val * Real32(getMax())); }

    static T getFromString(const Char8 *szString)
    {
        if(szString == NULL)
            return T(0);
        if(std::numeric_limits<T>::is_signed)
            return T(strtoll(szString, NULL, 0));
        return T(strtoull(szString, NULL, 0));
    }

    static std::string putToString(const T val)
    {
        char buf[32];
        if(std::numeric_limits<T>::is_signed)
            snprintf(buf, sizeof(buf), "%lli", (long long)val);
        else
            snprintf(buf, sizeof(buf), "%llu", (unsigned long long)val);
        return buf;
    }
};

template <> struct TypeTraits<Int8>   : IntTypeTraitsBase<Int8>   {};
template <> struct TypeTraits<UInt8>  : IntTypeTraitsBase<UInt8>  {};
template <> struct TypeTraits<Int16>  : IntTypeTraitsBase<Int16>  {};
template <> struct TypeTraits<UInt16> : IntTypeTraitsBase<UInt16> {};
template <> struct TypeTraits<Int32>  : IntTypeTraitsBase<Int32>  {};
template <> struct TypeTraits<UInt32> : IntTypeTraitsBase<UInt32> {};
template <> struct TypeTraits<Int64>  : IntTypeTraitsBase<Int64>  {};
template <> struct TypeTraits<UInt64> : IntTypeTraitsBase<UInt64>
{
    // BitVector is UInt64; generated code forms field masks from One.
    static const UInt64 Zero = 0;
    static const UInt64 One  = 1;
};

/// Floating-point traits; getMin is the smallest positive normal value.
template <class T>
struct RealTypeTraitsBase
{
    static const bool IsPOD = true;
    static const MathTypeProperties MathProp = RealValue;
    typedef T RealReturnType;

    static T getZeroElement(void) { return T(0); }
    static T getOneElement(void) { return T(1); }
    static T getMax(void) { return std::numeric_limits<T>::max(); }
    static T getMin(void) { return std::numeric_limits<T>::min(); }

    static T getFraction(T val) { return val; }
    static T getPortion(T val) { return val; }

    static T getFromString(const Char8 *szString)
    {
        if(szString == NULL)
            return T(0);
        return T(strtod(szString, NULL));
    }

    static std::string putToString(const T val)
    {
        char buf[64];
        snprintf(buf, sizeof(buf), "%e", double(val));
        return buf;
    }
};

template <> struct TypeTraits<Real32> : RealTypeTraitsBase<Real32>
{
    static Real32 getFromString(const Char8 *szString)
    {
        return szString != NULL ? strtof(szString, NULL) : 0.f;
    }
};
template <> struct TypeTraits<Real64> : RealTypeTraitsBase<Real64> {};

template <>
struct TypeTraits<Real16>
{
    static const bool IsPOD = true;
    static const MathTypeProperties MathProp = RealValue;
    typedef Real16 RealReturnType;

    static Real16 getZeroElement(void) { return Real16(0.f); }
    static Real16 getOneElement(void) { return Real16(1.f); }
    static Real16 getMax(void) { return Real16(65504.f); }
    static Real16 getMin(void) { return Real16(5.96046448e-08f); }

    static Real16 getFraction(Real16 val) { return val; }
    static Real16 getPortion(Real16 val) { return val; }

    static Real16 getFromString(const Char8 *szString)
    {
        return Real16(szString != NULL ? strtof(szString, NULL) : 0.f);
    }

    static std::string putToString(const Real16 val)
    {
        char buf[64];
        snprintf(buf, sizeof(buf), "%e", double(float(val)));
        return buf;
    }
};

OSG_END_NAMESPACE

#endif
