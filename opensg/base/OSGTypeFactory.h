/// Registry of every run-time type; ids are shared by all kinds of type.
#ifndef _OSGTYPEFACTORY_H_
#define _OSGTYPEFACTORY_H_

#include <OpenSG/OSGTypeBase.h>

#include <map>
#include <string>
#include <vector>

OSG_BEGIN_NAMESPACE

class TypeFactory
{
  public:
    static TypeFactory *the(void);

    UInt32 registerType(TypeBase *pType);

    TypeBase *findType(UInt32 uiTypeId) const;
    TypeBase *findType(const Char8 *szName, UInt32 uiNameSpace = 0) const;
    UInt32 findTypeId(const Char8 *szName, UInt32 uiNameSpace = 0) const;
    UInt32 getNumTypes(void) const;

    /// Drops a type that goes away (library unload); its id is not reused.
    void unregisterType(TypeBase *pType);

  private:
    TypeFactory(void);

    std::vector<TypeBase *>       _vTypeStore;
    std::map<std::string, UInt32> _mTypeNameMap;
};

OSG_END_NAMESPACE

#endif
