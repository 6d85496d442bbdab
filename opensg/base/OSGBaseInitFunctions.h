/// osgInit/osgExit and the registries of init and exit functions.
#ifndef _OSGBASEINITFUNCTIONS_H_
#define _OSGBASEINITFUNCTIONS_H_

#include <OpenSG/OSGBaseTypes.h>

OSG_BEGIN_NAMESPACE

typedef bool (*InitFuncF)(void);
typedef bool (*ExitFuncF)(void);

void addPreMPInitFunction(InitFuncF initFunc);
void addInitFunction(InitFuncF initFunc);
void addSystemExitFunction(ExitFuncF exitFunc);
void addPostMPExitFunction(ExitFuncF exitFunc);
void preloadSharedObject(const Char8 *szName);

/// Registers an init function from a static object's constructor.
struct InitFuncWrapper
{
    InitFuncWrapper(const InitFuncF func) { addInitFunction(func); }
};

/// Runs a function at once from a static object's constructor.
struct StaticInitFuncWrapper
{
    StaticInitFuncWrapper(const InitFuncF func) { func(); }
};

bool osgInit(Int32 argc, Char8 **argv,
             UInt16 major   = OSG_MAJOR_VERSION,
             UInt16 minor   = OSG_MINOR_VERSION,
             UInt16 release = OSG_RELEASE_VERSION,
             bool debug = false, bool dll = true, bool mt = true);

/// Runs the init functions added after osgInit (late-loaded libraries).
bool osgPostLoadInit(void);

bool osgExit(void);

OSG_END_NAMESPACE

#endif
