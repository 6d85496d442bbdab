/// A text statistic (e.g. a mode name).
#ifndef _OSGSTATSTRINGELEM_H_
#define _OSGSTATSTRINGELEM_H_

#include <OpenSG/OSGStatElem.h>

OSG_BEGIN_NAMESPACE

class StatStringElem : public StatElem
{
  public:
    explicit StatStringElem(StatElemDescBase *desc);

    void               set(const std::string &value) { _value = value; }
    const std::string &get(void) const { return _value; }

    virtual void   reset(void) { _value.clear(); }
    virtual Real64 getValue(void) const { return 0.0; }
    virtual void putToString(std::string &str, const Char8 *format = NULL) const;
    virtual bool getFromString(const Char8 *&inVal);
    virtual StatElem *clone(void) const;
    /// Text does not add up; the value stays.
    virtual StatElem &operator+=(const StatElem &other);

  private:
    std::string _value;
};

OSG_END_NAMESPACE

#endif
