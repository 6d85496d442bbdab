/// Time in seconds and high-resolution time stamps.
#ifndef _OSGTIME_H_
#define _OSGTIME_H_

#include <OpenSG/OSGBaseTypes.h>

OSG_BEGIN_NAMESPACE

// Time (seconds as Real64) and TimeStamp (Int64) are declared with the other
// scalar types; getSystemTime() too.

/// A time stamp in ticks of getTimeStampFreq() per second.
TimeStamp getTimeStamp(void);

/// The ticks of getTimeStamp() per second.
TimeStamp getTimeStampFreq(void);

/// A time stamp, or a difference of two, in milliseconds.
Time getTimeStampMsecs(TimeStamp ts);

OSG_END_NAMESPACE

#endif
