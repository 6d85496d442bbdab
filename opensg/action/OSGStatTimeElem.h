/// A time statistic: start()/stop() measure one interval in seconds.
#ifndef _OSGSTATTIMEELEM_H_
#define _OSGSTATTIMEELEM_H_

#include <OpenSG/OSGStatElem.h>

OSG_BEGIN_NAMESPACE

class StatTimeElem : public StatElem
{
  public:
    explicit StatTimeElem(StatElemDescBase *desc);

    /// Remembers the current time (a reset in between does not lose it).
    const Time &start(void);
    /// The time since start() becomes the value.
    const Time &stop(void);

    const Time &getTime(void) const { return _time; }

    virtual void   reset(void) { _time = 0; }
    virtual Real64 getValue(void) const { return _time; }
    virtual void putToString(std::string &str, const Char8 *format = NULL) const;
    virtual bool getFromString(const Char8 *&inVal);
    virtual StatElem *clone(void) const;
    virtual StatElem &operator+=(const StatElem &other);

  private:
    Time _time;
    Time _startTime;
};

OSG_END_NAMESPACE

#endif
