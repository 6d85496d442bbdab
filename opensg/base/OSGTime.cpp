#include <OpenSG/OSGTime.h>

#include <ctime>

OSG_BEGIN_NAMESPACE

// Stamps count nanoseconds of the monotonic clock, so differences never run
// backwards when the wall clock is set.
TimeStamp getTimeStamp(void)
{
    struct timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return TimeStamp(ts.tv_sec) * 1000000000 + TimeStamp(ts.tv_nsec);
}

TimeStamp getTimeStampFreq(void)
{
    return 1000000000;
}

Time getTimeStampMsecs(TimeStamp ts)
{
    return Time(ts) / (Time(getTimeStampFreq()) / 1000.0);
}

OSG_END_NAMESPACE
