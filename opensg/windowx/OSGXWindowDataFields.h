/// Fields of the X11 handle types an XWindow keeps: the display connection
/// (DisplayP), the X window (X11Window) and the GLX context. They are
/// process-local handles: nothing of them is written to a binary stream or
/// converted to text.
#ifndef _OSGXWINDOWDATAFIELDS_H_
#define _OSGXWINDOWDATAFIELDS_H_

#include <OpenSG/OSGWindowXDef.h>
#include <OpenSG/OSGSField.h>
#include <OpenSG/OSGMField.h>

#include <X11/Xlib.h>
#include <GL/glx.h>

// X11's headers define names that clash with OpenSG's (None, Bool, Status,
// Always, ...) as macros; the handles below are all we need of them.
#undef None
#undef Bool
#undef Status
#undef Always
#undef Success

OSG_BEGIN_NAMESPACE

typedef ::Display *DisplayP;
typedef ::Window   X11Window;

/// Traits of a handle that lives only in this process.
template <class T>
struct XHandleFieldTraits : public FieldTraits
{
    enum { StringConvertable = 0x00 };
    enum { bHasParent        = 0x00 };

    static T getDefault(void) { return T(0); }

    static UInt32 getBinSize(const T &) { return 0; }
    static UInt32 getBinSize(const T *, UInt32) { return 0; }
    static void copyToBin(BinaryDataHandler &, const T &) {}
    static void copyToBin(BinaryDataHandler &, const T *, UInt32) {}
    static void copyFromBin(BinaryDataHandler &, T &) {}
    static void copyFromBin(BinaryDataHandler &, T *, UInt32) {}
};

template <>
struct FieldDataTraits<DisplayP> : public XHandleFieldTraits<DisplayP>
{
    static DataType _type;
    static DataType &getType(void) { return _type; }
    static const Char8 *getSName(void) { return "SFDisplayP"; }
    static const Char8 *getMName(void) { return "MFDisplayP"; }
};

// X11Window is an unsigned long, the same type as UInt64 and BitVector, so
// its traits live in field namespace 2.
template <>
struct FieldDataTraits2<X11Window> : public XHandleFieldTraits<X11Window>
{
    static DataType _type;
    static DataType &getType(void) { return _type; }
    static const Char8 *getSName(void) { return "SFX11Window"; }
    static const Char8 *getMName(void) { return "MFX11Window"; }
};

template <>
struct FieldDataTraits<GLXContext> : public XHandleFieldTraits<GLXContext>
{
    static DataType _type;
    static DataType &getType(void) { return _type; }
    static const Char8 *getSName(void) { return "SFGLXContext"; }
    static const Char8 *getMName(void) { return "MFGLXContext"; }
};

typedef SField<DisplayP>      SFDisplayP;
typedef SField<X11Window, 2>  SFX11Window;
typedef SField<GLXContext>    SFGLXContext;

template <> const FieldType SField<DisplayP, 0>::_fieldType;
template <> const FieldType SField<X11Window, 2>::_fieldType;
template <> const FieldType SField<GLXContext, 0>::_fieldType;

OSG_END_NAMESPACE

#endif
