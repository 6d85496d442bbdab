#include <OpenSG/OSGTypeBase.h>
#include <OpenSG/OSGTypeFactory.h>
#include <OpenSG/OSGDataType.h>
#include <OpenSG/OSGLog.h>

#include <cstring>
#include <ostream>

OSG_BEGIN_NAMESPACE

IDString::IDString(const Char8 *str) : _str(NULL) { set(str); }

IDString::IDString(const IDString &obj) : _str(NULL) { set(obj._str); }

IDString::~IDString(void) { delete[] _str; }

IDString &IDString::operator=(const IDString &obj)
{
    if(this != &obj)
        set(obj._str);
    return *this;
}

void IDString::set(const Char8 *str)
{
    if(str == _str)
        return;
    Char8 *copy = NULL;
    if(str != NULL)
    {
        size_t n = strlen(str);
        copy = new Char8[n + 1];
        memcpy(copy, str, n + 1);
    }
    delete[] _str;
    _str = copy;
}

UInt32 IDString::getLength(void) const
{
    return _str ? UInt32(strlen(_str)) : 0;
}

bool IDString::operator==(const IDString &other) const
{
    if(_str == NULL || other._str == NULL)
        return _str == other._str;
    return strcmp(_str, other._str) == 0;
}

bool IDString::operator<(const IDString &other) const
{
    if(_str == NULL || other._str == NULL)
        return _str == NULL && other._str != NULL;
    return strcmp(_str, other._str) < 0;
}

std::ostream &operator<<(std::ostream &os, const IDString &obj)
{
    if(obj.str() != NULL)
        os << obj.str();
    else
        os << "0 IDString";
    return os;
}

TypeBase::TypeBase(const Char8 *szName, const Char8 *szParentName, UInt32) :
    _uiTypeId(0), _uiNameSpace(0), _szName(szName), _szParentName(szParentName)
{
    _uiTypeId = TypeFactory::the()->registerType(this);
}

TypeBase::~TypeBase(void)
{
    if(_uiTypeId != 0)
        TypeFactory::the()->unregisterType(this);
}

bool TypeBase::isDerivedFrom(const TypeBase &) const
{
    return false;
}

DataType::DataType(const Char8 *szName, const Char8 *szParentName, UInt32 uiNameSpace) :
    TypeBase(szName, szParentName, uiNameSpace)
{
}

DataType::~DataType(void)
{
}

TypeFactory::TypeFactory(void)
{
    _vTypeStore.push_back(NULL); // slot 0 stays empty: ids start at 1
}

TypeFactory *TypeFactory::the(void)
{
    // Types register from static initialisers of several libraries and go
    // away at unload in any order, so the registry itself is never destroyed.
    static TypeFactory *factory = new TypeFactory;
    return factory;
}

UInt32 TypeFactory::registerType(TypeBase *pType)
{
    if(pType == NULL)
        return 0;
    if(pType->getName().isEmpty())
    {
        SWARNING << "DataElementType without name" << std::endl;
        return 0;
    }
    if(_mTypeNameMap.count(pType->getCName()) != 0)
    {
        SWARNING << "ERROR: Can't add a second type with the name "
                 << pType->getCName() << std::endl;
        return 0;
    }
    UInt32 id = UInt32(_vTypeStore.size());
    _vTypeStore.push_back(pType);
    _mTypeNameMap[pType->getCName()] = id;
    return id;
}

void TypeFactory::unregisterType(TypeBase *pType)
{
    UInt32 id = pType->getId();
    if(id < _vTypeStore.size() && _vTypeStore[id] == pType)
    {
        _vTypeStore[id] = NULL;
        _mTypeNameMap.erase(pType->getCName());
    }
}

TypeBase *TypeFactory::findType(UInt32 uiTypeId) const
{
    return uiTypeId < _vTypeStore.size() ? _vTypeStore[uiTypeId] : NULL;
}

TypeBase *TypeFactory::findType(const Char8 *szName, UInt32) const
{
    return findType(findTypeId(szName));
}

UInt32 TypeFactory::findTypeId(const Char8 *szName, UInt32) const
{
    if(szName == NULL)
        return 0;
    std::map<std::string, UInt32>::const_iterator it = _mTypeNameMap.find(szName);
    return it != _mTypeNameMap.end() ? it->second : 0;
}

UInt32 TypeFactory::getNumTypes(void) const
{
    return UInt32(_mTypeNameMap.size());
}

OSG_END_NAMESPACE
