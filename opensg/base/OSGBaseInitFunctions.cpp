#include <OpenSG/OSGBaseInitFunctions.h>
#include <OpenSG/OSGSharedLibrary.h>

#include <clocale>
#include <cstdlib>
#include <vector>

OSG_BEGIN_NAMESPACE

namespace
{
struct InitRegistry
{
    std::vector<InitFuncF> preMP;
    std::vector<InitFuncF> init;
    size_t                 initDone = 0; // init functions already run
    std::vector<ExitFuncF> systemExit;
    std::vector<ExitFuncF> postMPExit;
};

// Registrations arrive from static initialisers of several libraries, so
// the registry is made on first use and lives until the process ends.
InitRegistry &registry(void)
{
    static InitRegistry *reg = new InitRegistry;
    return *reg;
}

bool runPendingInitFunctions(void)
{
    InitRegistry &reg = registry();
    while(reg.initDone < reg.init.size())
    {
        InitFuncF f = reg.init[reg.initDone++];
        if(!f())
            return false;
    }
    return true;
}

void atexitOsgExit(void)
{
    osgExit();
}
} // namespace

void addPreMPInitFunction(InitFuncF initFunc)
{
    registry().preMP.push_back(initFunc);
}

void addInitFunction(InitFuncF initFunc)
{
    registry().init.push_back(initFunc);
}

void addSystemExitFunction(ExitFuncF exitFunc)
{
    registry().systemExit.push_back(exitFunc);
}

void addPostMPExitFunction(ExitFuncF exitFunc)
{
    registry().postMPExit.push_back(exitFunc);
}

void preloadSharedObject(const Char8 *szName)
{
    if(szName == NULL)
        return;
    // the library stays loaded for the life of the process
    SharedLibrary *lib = new SharedLibrary(szName);
    if(!lib->isOpen())
        delete lib;
}

bool osgInit(Int32, Char8 **, UInt16, UInt16, UInt16, bool, bool, bool)
{
    if(GlobalSystemState == Running)
        return true;

    setlocale(LC_NUMERIC, "C");

    InitRegistry &reg = registry();
    for(size_t i = 0; i < reg.preMP.size(); ++i)
        if(!reg.preMP[i]())
            return false;

    if(!runPendingInitFunctions())
        return false;

    GlobalSystemState = Running;

    static bool registeredAtExit = false;
    if(!registeredAtExit)
    {
        atexit(atexitOsgExit);
        registeredAtExit = true;
    }
    return true;
}

bool osgPostLoadInit(void)
{
    if(GlobalSystemState != Running)
        return false;
    return runPendingInitFunctions();
}

bool osgExit(void)
{
    if(GlobalSystemState != Running)
        return true;

    GlobalSystemState = Shutdown;

    InitRegistry &reg = registry();
    bool ok = true;
    for(size_t i = reg.systemExit.size(); i-- > 0;)
        ok = reg.systemExit[i]() && ok;
    for(size_t i = reg.postMPExit.size(); i-- > 0;)
        ok = reg.postMPExit[i]() && ok;
    return ok;
}

OSG_END_NAMESPACE
