#include <OpenSG/OSGBaseTypes.h>

#include <sys/time.h>

OSG_BEGIN_NAMESPACE

const Real32 Eps    = 1e-6f;
const Real32 Pi     = 3.141592653589793f;
const Real32 Sqrt2  = 1.41421356237309504f;
const Real32 Inf    = 1e30f;
const Real32 NegInf = -1e30f;

const Char8 *PluginExt     = ".so";
const Char8 *PluginPattern = "*.so";

SystemState GlobalSystemState = Startup;

Time getSystemTime(void)
{
    struct timeval tv;
    gettimeofday(&tv, NULL);
    return Time(tv.tv_sec) + Time(tv.tv_usec) / 1e6;
}

OSG_END_NAMESPACE
