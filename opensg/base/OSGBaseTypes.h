/// Scalar typedefs, constants and the system state of the host core.
#ifndef _OSGBASETYPES_H_
#define _OSGBASETYPES_H_

#include <OpenSG/OSGConfig.h>

#include <cstddef>
#include <cstdint>
#include <string>

typedef unsigned int GLenum;

OSG_BEGIN_NAMESPACE

typedef char          Char8;
typedef unsigned char UChar8;
typedef signed char   SChar8;

typedef int8_t   Int8;
typedef uint8_t  UInt8;
typedef int16_t  Int16;
typedef uint16_t UInt16;
typedef int32_t  Int32;
typedef uint32_t UInt32;
typedef int64_t  Int64;
typedef uint64_t UInt64;

typedef float       Real32;
typedef double      Real64;
typedef long double Real128;

typedef UInt64 BitVector;
typedef UInt8 *MemoryHandle;
typedef Real64 Time;
typedef Int64  TimeStamp;

extern const Real32 Eps;
extern const Real32 Pi;
extern const Real32 Sqrt2;
extern const Real32 Inf;
extern const Real32 NegInf;

extern const Char8 *PluginExt;
extern const Char8 *PluginPattern;
const Char8 DirSep = '/';

enum MathTypeProperties
{
    RealValue = 0,
    IntValue  = 1,
    BoolValue = 2
};

enum SystemState
{
    Startup  = 0x01,
    Running  = 0x02,
    Shutdown = 0x03
};

extern SystemState GlobalSystemState;

/// Seconds since the epoch, from gettimeofday.
Time getSystemTime(void);

// Compile-time selection helper used by generated code.
template <bool IConditionV, class IThenT, class IElseT>
struct osgIF
{
    typedef IThenT _IRet;
};

template <class IThenT, class IElseT>
struct osgIF<false, IThenT, IElseT>
{
    typedef IElseT _IRet;
};

#define OSG_GL_UNUSED 0xffff

OSG_END_NAMESPACE

#endif
