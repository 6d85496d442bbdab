#include <OpenSG/OSGBaseFunctions.h>

#include <cerrno>
#include <ctime>

OSG_BEGIN_NAMESPACE

void osgsleep(UInt32 millisecs)
{
    struct timespec rest;
    rest.tv_sec  = time_t(millisecs / 1000);
    rest.tv_nsec = long(millisecs % 1000) * 1000000L;
    // a signal cuts the sleep short; sleep what is left
    while(nanosleep(&rest, &rest) != 0 && errno == EINTR)
    {
    }
}

OSG_END_NAMESPACE
