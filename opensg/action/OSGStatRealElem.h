/// A real-valued statistic.
#ifndef _OSGSTATREALELEM_H_
#define _OSGSTATREALELEM_H_

#include <OpenSG/OSGStatElem.h>

OSG_BEGIN_NAMESPACE

class StatRealElem : public StatElem
{
  public:
    explicit StatRealElem(StatElemDescBase *desc);

    void   set(Real32 value) { _value = value; }
    Real32 get(void) const { return _value; }
    void   add(Real32 v) { _value += v; }
    void   sub(Real32 v) { _value -= v; }

    virtual void   reset(void) { _value = 0.f; }
    virtual Real64 getValue(void) const { return _value; }
    virtual void putToString(std::string &str, const Char8 *format = NULL) const;
    virtual bool getFromString(const Char8 *&inVal);
    virtual StatElem *clone(void) const;
    virtual StatElem &operator+=(const StatElem &other);

  private:
    Real32 _value;
};

OSG_END_NAMESPACE

#endif
