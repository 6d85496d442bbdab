/// Single and multi fields of the base and math types (SFReal32, MFVec3f, ...).
#ifndef _OSGBASEFIELDS_H_
#define _OSGBASEFIELDS_H_

#include <OpenSG/OSGSField.h>
#include <OpenSG/OSGMField.h>
#include <OpenSG/OSGVector.h>
#include <OpenSG/OSGColor.h>
#include <OpenSG/OSGMatrix.h>
#include <OpenSG/OSGQuaternion.h>
#include <OpenSG/OSGDynamicVolume.h>

#include <cstdint>
#include <cstring>
#include <strings.h>

OSG_BEGIN_NAMESPACE

// --- scalars ---------------------------------------------------------------

/// Traits of the integer and real scalars.
#define OSG_SCALAR_FIELD_TRAITS(TRAITS, T, NAME, PARENT)                       \
    template <>                                                                \
    struct TRAITS<T> : public FieldTraitsIntegralRecurseMapper<T>              \
    {                                                                          \
        static DataType _type;                                                 \
        enum { StringConvertable = ToStringConvertable | FromStringConvertable }; \
        static DataType &getType(void) { return _type; }                       \
        static const Char8 *getSName(void) { return "SF" NAME; }               \
        static const Char8 *getMName(void) { return "MF" NAME; }               \
        static T getDefault(void) { return T(0); }                             \
        static bool getFromString(T &out, const Char8 *&in)                    \
        {                                                                      \
            out = TypeTraits<T>::getFromString(in);                            \
            return true;                                                       \
        }                                                                      \
        static void putToString(const T &in, std::string &out)                 \
        {                                                                      \
            out = TypeTraits<T>::putToString(in);                              \
        }                                                                      \
    }

OSG_SCALAR_FIELD_TRAITS(FieldDataTraits, Int8, "Int8", "IntegralType");
OSG_SCALAR_FIELD_TRAITS(FieldDataTraits, UInt8, "UInt8", "IntegralType");
OSG_SCALAR_FIELD_TRAITS(FieldDataTraits, Int16, "Int16", "IntegralType");
OSG_SCALAR_FIELD_TRAITS(FieldDataTraits, UInt16, "UInt16", "IntegralType");
OSG_SCALAR_FIELD_TRAITS(FieldDataTraits, Int32, "Int32", "IntegralType");
OSG_SCALAR_FIELD_TRAITS(FieldDataTraits, UInt32, "UInt32", "IntegralType");
OSG_SCALAR_FIELD_TRAITS(FieldDataTraits, Int64, "Int64", "IntegralType");
OSG_SCALAR_FIELD_TRAITS(FieldDataTraits, UInt64, "UInt64", "IntegralType");
OSG_SCALAR_FIELD_TRAITS(FieldDataTraits, Real16, "Real16", "IntegralType");
OSG_SCALAR_FIELD_TRAITS(FieldDataTraits, Real32, "Real32", "IntegralType");
OSG_SCALAR_FIELD_TRAITS(FieldDataTraits, Real64, "Real64", "IntegralType");
// Time, BitVector and GLenum are typedefs of scalars: their own namespace 1
OSG_SCALAR_FIELD_TRAITS(FieldDataTraits1, Time, "Time", "BaseType");
OSG_SCALAR_FIELD_TRAITS(FieldDataTraits1, BitVector, "BitVector", "BaseType");
OSG_SCALAR_FIELD_TRAITS(FieldDataTraits1, GLenum, "GLenum", "BaseType");

#undef OSG_SCALAR_FIELD_TRAITS

template <>
struct FieldDataTraits2<bool> : public FieldTraitsIntegralRecurseMapper<bool>
{
    static DataType _type;
    enum { StringConvertable = ToStringConvertable | FromStringConvertable };
    static DataType &getType(void) { return _type; }
    static const Char8 *getSName(void) { return "SFBool"; }
    static const Char8 *getMName(void) { return "MFBool"; }
    static bool getDefault(void) { return false; }

    /// Only words beginning with TRUE or FALSE, in any case, are read.
    static bool getFromString(bool &out, const Char8 *&in)
    {
        if(in == NULL)
            return false;
        if(strncasecmp(in, "TRUE", 4) == 0)
        {
            out = true;
            in += 4;
            return true;
        }
        if(strncasecmp(in, "FALSE", 5) == 0)
        {
            out = false;
            in += 5;
            return true;
        }
        return false;
    }
    static void putToString(const bool &in, std::string &out) { out = in ? "TRUE" : "FALSE"; }
};

template <>
struct FieldDataTraits<std::string> : public FieldTraits
{
    static DataType _type;
    enum { StringConvertable = ToStringConvertable | FromStringConvertable };
    enum { bHasParent = 0x00 };
    static DataType &getType(void) { return _type; }
    static const Char8 *getSName(void) { return "SFString"; }
    static const Char8 *getMName(void) { return "MFString"; }
    static std::string getDefault(void) { return std::string(); }

    static bool getFromString(std::string &out, const Char8 *&in)
    {
        out.assign(in != NULL ? in : "");
        return true;
    }
    static void putToString(const std::string &in, std::string &out)
    {
        out.assign("\"");
        out.append(in);
        out.append("\"");
    }

    static UInt32 getBinSize(const std::string &v) { return UInt32(strlen(v.c_str())) + 1 + 4; }
    static UInt32 getBinSize(const std::string *v, UInt32 n)
    {
        UInt32 s = 0;
        for(UInt32 i = 0; i < n; ++i)
            s += getBinSize(v[i]);
        return s;
    }
    static void copyToBin(BinaryDataHandler &mem, const std::string &v) { mem.putValue(v); }
    static void copyToBin(BinaryDataHandler &mem, const std::string *v, UInt32 n) { mem.putValues(v, n); }
    static void copyFromBin(BinaryDataHandler &mem, std::string &v) { mem.getValue(v); }
    static void copyFromBin(BinaryDataHandler &mem, std::string *v, UInt32 n) { mem.getValues(v, n); }
};

/// A pointer into the application's memory: meaningful only in the process
/// that set it, so it has no text form and travels as a 64-bit number.
template <>
struct FieldDataTraits<void *> : public FieldTraits
{
    static DataType _type;
    enum { StringConvertable = 0x00 };
    enum { bHasParent = 0x00 };
    static DataType &getType(void) { return _type; }
    static const Char8 *getSName(void) { return "SFVoidP"; }
    static const Char8 *getMName(void) { return "MFVoidP"; }
    static void *getDefault(void) { return NULL; }

    static UInt32 getBinSize(void *const &) { return 8; }
    static UInt32 getBinSize(void *const *, UInt32 n) { return 8 * n; }
    static void copyToBin(BinaryDataHandler &mem, void *const &v)
    {
        mem.putValue(UInt64(reinterpret_cast<uintptr_t>(v)));
    }
    static void copyToBin(BinaryDataHandler &mem, void *const *v, UInt32 n)
    {
        for(UInt32 i = 0; i < n; ++i)
            copyToBin(mem, v[i]);
    }
    static void copyFromBin(BinaryDataHandler &mem, void *&v)
    {
        UInt64 value = 0;
        mem.getValue(value);
        v = reinterpret_cast<void *>(uintptr_t(value));
    }
    static void copyFromBin(BinaryDataHandler &mem, void **v, UInt32 n)
    {
        for(UInt32 i = 0; i < n; ++i)
            copyFromBin(mem, v[i]);
    }
};

// --- math types ------------------------------------------------------------

/// Traits of types that are N Real32 values; the text separator differs:
/// vectors and points use two blanks, colours and matrices one.
#define OSG_ARRAY_FIELD_TRAITS(T, ELEM, N, NAME, SEP, DEFAULT)                 \
    template <>                                                                \
    struct FieldDataTraits<T> : public FieldTraitsArrayMapper<T, ELEM, N>      \
    {                                                                          \
        static DataType _type;                                                 \
        enum { StringConvertable = ToStringConvertable | FromStringConvertable }; \
        static DataType &getType(void) { return _type; }                       \
        static const Char8 *getSName(void) { return "SF" NAME; }               \
        static const Char8 *getMName(void) { return "MF" NAME; }               \
        static T getDefault(void) { return DEFAULT; }                          \
        static bool getFromString(T &out, const Char8 *&in)                    \
        {                                                                      \
            return FieldText::getNumbers(reinterpret_cast<ELEM *>(&out), N, in); \
        }                                                                      \
        static void putToString(const T &in, std::string &out)                 \
        {                                                                      \
            FieldText::putNumbers(reinterpret_cast<const ELEM *>(&in), N, SEP, out); \
        }                                                                      \
    }

OSG_ARRAY_FIELD_TRAITS(Vec2f, Real32, 2, "Vec2f", "  ", Vec2f());
OSG_ARRAY_FIELD_TRAITS(Vec3f, Real32, 3, "Vec3f", "  ", Vec3f());
OSG_ARRAY_FIELD_TRAITS(Vec4f, Real32, 4, "Vec4f", "  ", Vec4f());
OSG_ARRAY_FIELD_TRAITS(Pnt2f, Real32, 2, "Pnt2f", "  ", Pnt2f());
OSG_ARRAY_FIELD_TRAITS(Pnt3f, Real32, 3, "Pnt3f", "  ", Pnt3f());
OSG_ARRAY_FIELD_TRAITS(Pnt4f, Real32, 4, "Pnt4f", "  ", Pnt4f());
OSG_ARRAY_FIELD_TRAITS(Vec2s, Int16, 2, "Vec2s", "  ", Vec2s());
OSG_ARRAY_FIELD_TRAITS(Color3f, Real32, 3, "Color3f", " ", Color3f());
OSG_ARRAY_FIELD_TRAITS(Color4f, Real32, 4, "Color4f", " ", Color4f());
OSG_ARRAY_FIELD_TRAITS(Color3ub, UInt8, 3, "Color3ub", " ", Color3ub());
OSG_ARRAY_FIELD_TRAITS(Color4ub, UInt8, 4, "Color4ub", " ", Color4ub());
OSG_ARRAY_FIELD_TRAITS(Quaternion, Real32, 4, "Quaternion", " ", Quaternion());

#undef OSG_ARRAY_FIELD_TRAITS

/// Matrices go over the wire in storage (column) order, but their text is
/// written and read row by row.
template <>
struct FieldDataTraits<Matrix> : public FieldTraitsArrayMapper<Matrix, Real32, 16>
{
    static DataType _type;
    enum { StringConvertable = ToStringConvertable | FromStringConvertable };
    static DataType &getType(void) { return _type; }
    static const Char8 *getSName(void) { return "SFMatrix"; }
    static const Char8 *getMName(void) { return "MFMatrix"; }
    static Matrix getDefault(void) { return Matrix(); }

    static bool getFromString(Matrix &out, const Char8 *&in)
    {
        Real32 v[16];
        FieldText::getNumbers(v, 16, in);
        out.setValue(v, false);
        return true;
    }
    static void putToString(const Matrix &in, std::string &out)
    {
        Real32 v[16];
        for(UInt32 r = 0; r < 4; ++r)
            for(UInt32 c = 0; c < 4; ++c)
                v[r * 4 + c] = in[c][r];
        FieldText::putNumbers(v, 16, " ", out);
    }
};

/// Bounding volumes: kind, state bits, then the box corners or the sphere.
template <>
struct FieldDataTraits<DynamicVolume> : public FieldTraits
{
    static DataType _type;
    enum { StringConvertable = 0x00 };
    enum { bHasParent = 0x00 };
    static DataType &getType(void) { return _type; }
    static const Char8 *getSName(void) { return "SFDynamicVolume"; }
    static const Char8 *getMName(void) { return "MFDynamicVolume"; }
    static DynamicVolume getDefault(void) { return DynamicVolume(); }

    static UInt32 getBinSize(const DynamicVolume &) { return 4 + 2 + 6 * 4; }
    static UInt32 getBinSize(const DynamicVolume *v, UInt32 n) { return n * getBinSize(*v); }
    static void copyToBin(BinaryDataHandler &mem, const DynamicVolume &v);
    static void copyToBin(BinaryDataHandler &mem, const DynamicVolume *v, UInt32 n)
    {
        for(UInt32 i = 0; i < n; ++i)
            copyToBin(mem, v[i]);
    }
    static void copyFromBin(BinaryDataHandler &mem, DynamicVolume &v);
    static void copyFromBin(BinaryDataHandler &mem, DynamicVolume *v, UInt32 n)
    {
        for(UInt32 i = 0; i < n; ++i)
            copyFromBin(mem, v[i]);
    }
};

// --- the fields ------------------------------------------------------------

#define OSG_FIELD_TYPEDEFS(NAME, T, NS)                       \
    typedef SField<T, NS> SF##NAME;                           \
    typedef MField<T, NS> MF##NAME;                           \
    template <> const FieldType SField<T, NS>::_fieldType;    \
    template <> const FieldType MField<T, NS>::_fieldType

OSG_FIELD_TYPEDEFS(Bool, bool, 2);
OSG_FIELD_TYPEDEFS(Int8, Int8, 0);
OSG_FIELD_TYPEDEFS(UInt8, UInt8, 0);
OSG_FIELD_TYPEDEFS(Int16, Int16, 0);
OSG_FIELD_TYPEDEFS(UInt16, UInt16, 0);
OSG_FIELD_TYPEDEFS(Int32, Int32, 0);
OSG_FIELD_TYPEDEFS(UInt32, UInt32, 0);
OSG_FIELD_TYPEDEFS(Int64, Int64, 0);
OSG_FIELD_TYPEDEFS(UInt64, UInt64, 0);
OSG_FIELD_TYPEDEFS(Real16, Real16, 0);
OSG_FIELD_TYPEDEFS(Real32, Real32, 0);
OSG_FIELD_TYPEDEFS(Real64, Real64, 0);
OSG_FIELD_TYPEDEFS(Time, Time, 1);
OSG_FIELD_TYPEDEFS(BitVector, BitVector, 1);
OSG_FIELD_TYPEDEFS(GLenum, GLenum, 1);
OSG_FIELD_TYPEDEFS(String, std::string, 0);
OSG_FIELD_TYPEDEFS(VoidP, void *, 0);
OSG_FIELD_TYPEDEFS(Vec2f, Vec2f, 0);
OSG_FIELD_TYPEDEFS(Vec3f, Vec3f, 0);
OSG_FIELD_TYPEDEFS(Vec4f, Vec4f, 0);
OSG_FIELD_TYPEDEFS(Pnt2f, Pnt2f, 0);
OSG_FIELD_TYPEDEFS(Pnt3f, Pnt3f, 0);
OSG_FIELD_TYPEDEFS(Pnt4f, Pnt4f, 0);
OSG_FIELD_TYPEDEFS(Vec2s, Vec2s, 0);
OSG_FIELD_TYPEDEFS(Color3f, Color3f, 0);
OSG_FIELD_TYPEDEFS(Color4f, Color4f, 0);
OSG_FIELD_TYPEDEFS(Color3ub, Color3ub, 0);
OSG_FIELD_TYPEDEFS(Color4ub, Color4ub, 0);
OSG_FIELD_TYPEDEFS(Quaternion, Quaternion, 0);
OSG_FIELD_TYPEDEFS(Matrix, Matrix, 0);
OSG_FIELD_TYPEDEFS(DynamicVolume, DynamicVolume, 0);

#undef OSG_FIELD_TYPEDEFS

OSG_END_NAMESPACE

#endif
