#include <OpenSG/OSGStatCollector.h>

OSG_BEGIN_NAMESPACE

StatCollector *StatCollector::create(void)
{
    return new StatCollector;
}

StatCollector::StatCollector(void) : _elemVec()
{
    refitElemNum();
}

StatCollector::StatCollector(const StatCollector &source) : _elemVec()
{
    *this = source;
}

StatCollector &StatCollector::operator=(const StatCollector &source)
{
    if(this == &source)
        return *this;

    clearElems();
    _elemVec.resize(source._elemVec.size(), NULL);
    for(size_t i = 0; i < source._elemVec.size(); ++i)
    {
        if(source._elemVec[i] != NULL)
            _elemVec[i] = source._elemVec[i]->clone();
    }
    return *this;
}

StatCollector::~StatCollector(void)
{
    clearElems();
}

void StatCollector::refitElemNum(void)
{
    Int32 n = StatElemDescBase::getNumOfDescs();
    if(Int32(_elemVec.size()) < n)
        _elemVec.resize(n, NULL);
}

void StatCollector::clearElems(void)
{
    for(StatElem *&e : _elemVec)
    {
        delete e;
        e = NULL;
    }
}

void StatCollector::reset(void)
{
    for(StatElem *e : _elemVec)
    {
        if(e != NULL)
            e->reset();
    }
}

StatElem *StatCollector::getElem(Int32 id, bool create)
{
    if(id < 0)
        return NULL;

    if(id >= Int32(_elemVec.size()))
    {
        if(!create)
            return NULL;
        refitElemNum();
        if(id >= Int32(_elemVec.size()))
            _elemVec.resize(id + 1, NULL);
    }

    StatElem *&elem = _elemVec[id];
    if(elem == NULL && create)
    {
        StatElemDescBase *desc = StatElemDescBase::getDesc(id);
        if(desc != NULL)
            elem = desc->createElem();
    }
    return elem;
}

void StatCollector::putToString(std::string &outVal) const
{
    outVal.clear();
    for(StatElem *e : _elemVec)
    {
        if(e == NULL)
            continue;
        std::string value;
        e->putToString(value);
        if(!outVal.empty())
            outVal += '|';
        outVal += e->getDesc()->getName();
        outVal += '=';
        outVal += value;
    }
}

StatCollector &StatCollector::operator+=(const StatCollector &other)
{
    for(size_t i = 0; i < other._elemVec.size(); ++i)
    {
        if(other._elemVec[i] == NULL)
            continue;
        StatElem *mine = getElem(Int32(i), true);
        if(mine != NULL)
            *mine += *other._elemVec[i];
    }
    return *this;
}

OSG_END_NAMESPACE
