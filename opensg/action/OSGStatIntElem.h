/// An integer statistic (counts).
#ifndef _OSGSTATINTELEM_H_
#define _OSGSTATINTELEM_H_

#include <OpenSG/OSGStatElem.h>

OSG_BEGIN_NAMESPACE

class StatIntElem : public StatElem
{
  public:
    explicit StatIntElem(StatElemDescBase *desc);

    void  set(Int32 value) { _value = value; }
    Int32 get(void) const { return _value; }
    void  add(Int32 v) { _value += v; }
    void  sub(Int32 v) { _value -= v; }
    void  inc(void) { ++_value; }
    void  dec(void) { --_value; }

    virtual void   reset(void) { _value = 0; }
    virtual Real64 getValue(void) const { return Real64(_value); }
    virtual void putToString(std::string &str, const Char8 *format = NULL) const;
    virtual bool getFromString(const Char8 *&inVal);
    virtual StatElem *clone(void) const;
    virtual StatElem &operator+=(const StatElem &other);

  private:
    Int32 _value;
};

OSG_END_NAMESPACE

#endif
