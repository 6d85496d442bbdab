/// One statistics value in a collector.
#ifndef _OSGSTATELEM_H_
#define _OSGSTATELEM_H_

#include <OpenSG/OSGBaseTypes.h>
#include <OpenSG/OSGStatElemDesc.h>

#include <string>

OSG_BEGIN_NAMESPACE

class StatElem
{
  public:
    bool isOn(void) const { return _on; }
    void setOn(bool on) { _on = on; }

    StatElemDescBase *getDesc(void) const { return _desc; }

    virtual void   reset(void)          = 0;
    virtual Real64 getValue(void) const = 0;
    /// The value as text; format is a printf format for it (NULL: default).
    virtual void putToString(std::string &str, const Char8 *format = NULL) const = 0;
    virtual bool getFromString(const Char8 *&inVal) = 0;
    virtual StatElem *clone(void) const = 0;
    /// Adds a value of the same element type.
    virtual StatElem &operator+=(const StatElem &other) = 0;

    virtual ~StatElem(void);

  protected:
    explicit StatElem(StatElemDescBase *desc);

  private:
    bool              _on;
    StatElemDescBase *_desc;
};

OSG_END_NAMESPACE

#endif
