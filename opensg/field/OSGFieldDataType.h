/// Field data traits: names, text form and binary form of field values.
#ifndef _OSGFIELDDATATYPE_H_
#define _OSGFIELDDATATYPE_H_

#include <OpenSG/OSGField.h>
#include <OpenSG/OSGDataType.h>
#include <OpenSG/OSGBinaryDataHandler.h>
#include <OpenSG/OSGBaseTypeTraits.h>

#include <cstdio>
#include <cstdlib>
#include <string>

OSG_BEGIN_NAMESPACE

/// Traits of a value type; specialised for every type a field can hold.
template <class T>
struct FieldDataTraits : public FieldTraits
{
};

/// Traits for types that are typedefs of others (Time, BitVector, GLenum).
template <class T>
struct FieldDataTraits1 : public FieldTraits
{
};

/// Traits for bool.
template <class T>
struct FieldDataTraits2 : public FieldTraits
{
};

template <class T, Int32 ns>
struct FieldTraitsSelect
{
    typedef FieldDataTraits<T> Traits;
};

template <class T>
struct FieldTraitsSelect<T, 1>
{
    typedef FieldDataTraits1<T> Traits;
};

template <class T>
struct FieldTraitsSelect<T, 2>
{
    typedef FieldDataTraits2<T> Traits;
};

/// Binary form of scalars: the handler's typed values, big-endian.
template <class T>
struct FieldTraitsIntegralRecurseMapper : public FieldTraits
{
    enum { bHasParent = 0x00 };

    static UInt32 getBinSize(const T &) { return UInt32(sizeof(T)); }
    static UInt32 getBinSize(const T *, UInt32 n) { return UInt32(sizeof(T)) * n; }

    static void copyToBin(BinaryDataHandler &mem, const T &v) { mem.putValue(v); }
    static void copyToBin(BinaryDataHandler &mem, const T *v, UInt32 n) { mem.putValues(v, n); }
    static void copyFromBin(BinaryDataHandler &mem, T &v) { mem.getValue(v); }
    static void copyFromBin(BinaryDataHandler &mem, T *v, UInt32 n) { mem.getValues(v, n); }
};

/// Binary form of types that are a plain array of N scalars (vectors,
/// points, colours, matrices in storage order).
template <class T, class ElemT, UInt32 N>
struct FieldTraitsArrayMapper : public FieldTraits
{
    enum { bHasParent = 0x00 };

    static UInt32 getBinSize(const T &) { return UInt32(sizeof(ElemT)) * N; }
    static UInt32 getBinSize(const T *, UInt32 n) { return UInt32(sizeof(ElemT)) * N * n; }

    static void copyToBin(BinaryDataHandler &mem, const T &v)
    {
        static_assert(sizeof(T) == sizeof(ElemT) * N, "T must be a plain array");
        mem.putValues(reinterpret_cast<const ElemT *>(&v), N);
    }
    static void copyToBin(BinaryDataHandler &mem, const T *v, UInt32 n)
    {
        mem.putValues(reinterpret_cast<const ElemT *>(v), N * n);
    }
    static void copyFromBin(BinaryDataHandler &mem, T &v)
    {
        mem.getValues(reinterpret_cast<ElemT *>(&v), N);
    }
    static void copyFromBin(BinaryDataHandler &mem, T *v, UInt32 n)
    {
        mem.getValues(reinterpret_cast<ElemT *>(v), N * n);
    }
};

/// Text helpers shared by the traits.
namespace FieldText
{
/// Appends the N numbers of a value with "%e", separated by sep.
template <class ElemT>
void putNumbers(const ElemT *v, UInt32 n, const Char8 *sep, std::string &out)
{
    char buf[64];
    out.erase();
    for(UInt32 i = 0; i < n; ++i)
    {
        if(i != 0)
            out.append(sep);
        snprintf(buf, sizeof(buf), "%e", double(v[i]));
        out.append(buf);
    }
}

/// Reads up to n numbers separated by blanks or commas; missing ones are 0.
template <class ElemT>
bool getNumbers(ElemT *v, UInt32 n, const Char8 *&in)
{
    for(UInt32 i = 0; i < n; ++i)
    {
        v[i] = ElemT(0);
        if(in == NULL)
            continue;
        while(*in == ' ' || *in == '\t' || *in == ',' || *in == '\n' || *in == '\r')
            ++in;
        char *end = NULL;
        double d  = strtod(in, &end);
        if(end != in)
        {
            v[i] = ElemT(d);
            in   = end;
        }
    }
    return true;
}
} // namespace FieldText

OSG_END_NAMESPACE

#endif
