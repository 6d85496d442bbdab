#include <OpenSG/OSGStatElemTypes.h>
#include <OpenSG/OSGLog.h>

#include <cstdio>
#include <cstdlib>

OSG_BEGIN_NAMESPACE

// --- descriptors -------------------------------------------------------------------

std::vector<StatElemDescBase *> &StatElemDescBase::descs(void)
{
    // Descriptors are static objects in many translation units; the list
    // must exist before the first of them registers.
    static std::vector<StatElemDescBase *> list;
    return list;
}

StatElemDescBase::StatElemDescBase(const Char8 *name, const Char8 *description)
    : _id(-1), _name(name != NULL ? name : ""), _description(description != NULL ? description : "")
{
    if(findDescByName(_name.c_str()) != NULL)
    {
        FFATAL(("Try to register the StatElemDescBase name %s a second time\n", _name.c_str()));
        return;
    }

    _id = Int32(descs().size());
    descs().push_back(this);
}

StatElemDescBase::~StatElemDescBase(void)
{
    if(_id >= 0 && _id < Int32(descs().size()) && descs()[_id] == this)
        descs()[_id] = NULL;
}

Int32 StatElemDescBase::getNumOfDescs(void)
{
    return Int32(descs().size());
}

bool StatElemDescBase::isValidID(Int32 descId)
{
    return descId >= 0 && descId < Int32(descs().size());
}

StatElemDescBase *StatElemDescBase::getDesc(Int32 descId)
{
    return isValidID(descId) ? descs()[descId] : NULL;
}

StatElemDescBase *StatElemDescBase::findDescByName(const Char8 *name)
{
    if(name == NULL)
        return NULL;
    for(StatElemDescBase *d : descs())
    {
        if(d != NULL && d->_name == name)
            return d;
    }
    return NULL;
}

void StatElemDescBase::printAll(void)
{
    for(StatElemDescBase *d : descs())
    {
        if(d != NULL)
            SLOG << "StatElemDesc " << d->_id << ": " << d->_name << " (" << d->_description
                 << ")" << std::endl;
    }
}

// --- elements -------------------------------------------------------------------------

StatElem::StatElem(StatElemDescBase *desc) : _on(true), _desc(desc)
{
}

StatElem::~StatElem(void)
{
}

namespace
{

std::string formatValue(const Char8 *format, const Char8 *fallback, Real64 value, bool integer)
{
    char buf[128];
    const Char8 *fmt = format != NULL ? format : fallback;
    if(integer)
        std::snprintf(buf, sizeof(buf), fmt, int(value));
    else
        std::snprintf(buf, sizeof(buf), fmt, value);
    return buf;
}

/// Reads an integer at inVal into value and moves inVal past it; false,
/// with both untouched, when no number starts there.
template <class T>
bool parseInt(const Char8 *&inVal, T &value)
{
    char *end = NULL;
    long  v   = std::strtol(inVal, &end, 10);
    if(end == inVal)
        return false;
    value = T(v);
    inVal = end;
    return true;
}

/// The same for a floating-point number.
template <class T>
bool parseReal(const Char8 *&inVal, T &value)
{
    char  *end = NULL;
    double v   = std::strtod(inVal, &end);
    if(end == inVal)
        return false;
    value = T(v);
    inVal = end;
    return true;
}

} // namespace

// StatIntElem

StatIntElem::StatIntElem(StatElemDescBase *desc) : StatElem(desc), _value(0)
{
}

void StatIntElem::putToString(std::string &str, const Char8 *format) const
{
    str = formatValue(format, "%d", _value, true);
}

bool StatIntElem::getFromString(const Char8 *&inVal)
{
    return parseInt(inVal, _value);
}

StatElem *StatIntElem::clone(void) const
{
    return new StatIntElem(*this);
}

StatElem &StatIntElem::operator+=(const StatElem &other)
{
    const StatIntElem *o = dynamic_cast<const StatIntElem *>(&other);
    if(o != NULL)
        _value += o->_value;
    return *this;
}

// StatIntOnceElem

StatIntOnceElem::StatIntOnceElem(StatElemDescBase *desc) : StatElem(desc), _value(0), _ids()
{
}

void StatIntOnceElem::add(Int32 contributorId, Int32 v)
{
    if(_ids.insert(contributorId).second)
        _value += v;
}

void StatIntOnceElem::reset(void)
{
    _value = 0;
    _ids.clear();
}

void StatIntOnceElem::putToString(std::string &str, const Char8 *format) const
{
    str = formatValue(format, "%d", _value, true);
}

bool StatIntOnceElem::getFromString(const Char8 *&inVal)
{
    return parseInt(inVal, _value);
}

StatElem *StatIntOnceElem::clone(void) const
{
    return new StatIntOnceElem(*this);
}

StatElem &StatIntOnceElem::operator+=(const StatElem &other)
{
    const StatIntOnceElem *o = dynamic_cast<const StatIntOnceElem *>(&other);
    if(o != NULL)
        _value += o->_value;
    return *this;
}

// StatTimeElem

StatTimeElem::StatTimeElem(StatElemDescBase *desc) : StatElem(desc), _time(0), _startTime(0)
{
}

const Time &StatTimeElem::start(void)
{
    _startTime = getSystemTime();
    return _startTime;
}

const Time &StatTimeElem::stop(void)
{
    _time = getSystemTime() - _startTime;
    return _time;
}

void StatTimeElem::putToString(std::string &str, const Char8 *format) const
{
    // seconds by default; a format with "ms" shows milliseconds
    if(format != NULL && std::string(format).find("ms") != std::string::npos)
        str = formatValue(format, "%.2f ms", _time * 1000.0, false);
    else
        str = formatValue(format, "%.6f", _time, false);
}

bool StatTimeElem::getFromString(const Char8 *&inVal)
{
    return parseReal(inVal, _time);
}

StatElem *StatTimeElem::clone(void) const
{
    return new StatTimeElem(*this);
}

StatElem &StatTimeElem::operator+=(const StatElem &other)
{
    const StatTimeElem *o = dynamic_cast<const StatTimeElem *>(&other);
    if(o != NULL)
        _time += o->_time;
    return *this;
}

// StatRealElem

StatRealElem::StatRealElem(StatElemDescBase *desc) : StatElem(desc), _value(0.f)
{
}

void StatRealElem::putToString(std::string &str, const Char8 *format) const
{
    str = formatValue(format, "%f", _value, false);
}

bool StatRealElem::getFromString(const Char8 *&inVal)
{
    return parseReal(inVal, _value);
}

StatElem *StatRealElem::clone(void) const
{
    return new StatRealElem(*this);
}

StatElem &StatRealElem::operator+=(const StatElem &other)
{
    const StatRealElem *o = dynamic_cast<const StatRealElem *>(&other);
    if(o != NULL)
        _value += o->_value;
    return *this;
}

// StatStringElem

StatStringElem::StatStringElem(StatElemDescBase *desc) : StatElem(desc), _value()
{
}

void StatStringElem::putToString(std::string &str, const Char8 *format) const
{
    if(format == NULL)
    {
        str = _value;
        return;
    }
    char buf[256];
    std::snprintf(buf, sizeof(buf), format, _value.c_str());
    str = buf;
}

bool StatStringElem::getFromString(const Char8 *&inVal)
{
    _value = inVal;
    inVal += _value.size();
    return true;
}

StatElem *StatStringElem::clone(void) const
{
    return new StatStringElem(*this);
}

StatElem &StatStringElem::operator+=(const StatElem &)
{
    return *this;
}

OSG_END_NAMESPACE
