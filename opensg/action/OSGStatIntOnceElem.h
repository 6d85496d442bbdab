/// An integer statistic to which every contributor adds only once per reset
/// (e.g. the bytes of a texture used by several objects).
#ifndef _OSGSTATINTONCEELEM_H_
#define _OSGSTATINTONCEELEM_H_

#include <OpenSG/OSGStatElem.h>

#include <set>

OSG_BEGIN_NAMESPACE

class StatIntOnceElem : public StatElem
{
  public:
    explicit StatIntOnceElem(StatElemDescBase *desc);

    /// Adds v unless contributorId has added since the last reset.
    void  add(Int32 contributorId, Int32 v);
    void  set(Int32 value) { _value = value; }
    Int32 get(void) const { return _value; }

    virtual void   reset(void);
    virtual Real64 getValue(void) const { return Real64(_value); }
    virtual void putToString(std::string &str, const Char8 *format = NULL) const;
    virtual bool getFromString(const Char8 *&inVal);
    virtual StatElem *clone(void) const;
    virtual StatElem &operator+=(const StatElem &other);

  private:
    Int32           _value;
    std::set<Int32> _ids;
};

OSG_END_NAMESPACE

#endif
