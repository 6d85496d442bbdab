#include <OpenSG/OSGFieldType.h>
#include <OpenSG/OSGFieldFactory.h>
#include <OpenSG/OSGField.h>

#include <cstring>

OSG_BEGIN_NAMESPACE

FieldType::FieldType(const Char8 *szName, const Char8 *szParentName,
                     const DataType &contentType, CreateFieldMethod createMethod,
                     Cardinality cardinality) :
    DataType(szName, szParentName),
    _contentType(contentType),
    _createMethod(createMethod),
    _cardinality(cardinality)
{
    FieldFactory::the().addType(this);
}

FieldType::~FieldType(void)
{
    FieldFactory::the().subType(this);
}

FieldFactory::FieldFactory(void)
{
}

FieldFactory &FieldFactory::the(void)
{
    // outlives every field type, whichever library unloads last
    static FieldFactory *factory = new FieldFactory;
    return *factory;
}

void FieldFactory::addType(FieldType *pType)
{
    if(pType->getId() != 0 && _fieldTypeM.count(pType->getId()) == 0)
        _fieldTypeM[pType->getId()] = pType;
}

void FieldFactory::subType(FieldType *pType)
{
    std::map<UInt32, FieldType *>::iterator it = _fieldTypeM.find(pType->getId());
    if(it != _fieldTypeM.end() && it->second == pType)
        _fieldTypeM.erase(it);
}

Field *FieldFactory::createField(UInt32 typeId)
{
    FieldType *type = getFieldType(typeId);
    return type != NULL ? type->createField() : NULL;
}

Field *FieldFactory::createField(const Char8 *szName)
{
    FieldType *type = getFieldType(szName);
    return type != NULL ? type->createField() : NULL;
}

FieldType *FieldFactory::getFieldType(UInt32 typeId)
{
    std::map<UInt32, FieldType *>::iterator it = _fieldTypeM.find(typeId);
    return it != _fieldTypeM.end() ? it->second : NULL;
}

FieldType *FieldFactory::getFieldType(const Char8 *szName)
{
    if(szName == NULL)
        return NULL;
    for(std::map<UInt32, FieldType *>::iterator it = _fieldTypeM.begin();
        it != _fieldTypeM.end(); ++it)
    {
        if(strcmp(it->second->getCName(), szName) == 0)
            return it->second;
    }
    return NULL;
}

UInt32 FieldFactory::getNFieldTypes(void)
{
    return UInt32(_fieldTypeM.size());
}

const Char8 *FieldFactory::getFieldTypeName(UInt32 typeId)
{
    FieldType *type = getFieldType(typeId);
    return type != NULL ? type->getCName() : NULL;
}

OSG_END_NAMESPACE
