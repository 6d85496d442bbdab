/// Registry of the field types: creates fields by type id or name.
#ifndef _OSGFIELDFACTORY_H_
#define _OSGFIELDFACTORY_H_

#include <OpenSG/OSGFieldType.h>

#include <map>

OSG_BEGIN_NAMESPACE

class FieldFactory
{
  public:
    static FieldFactory &the(void);

    Field *createField(UInt32 typeId);
    Field *createField(const Char8 *szName);

    FieldType *getFieldType(UInt32 typeId);
    FieldType *getFieldType(const Char8 *szName);
    UInt32 getNFieldTypes(void);
    const Char8 *getFieldTypeName(UInt32 typeId);

    void addType(FieldType *pType);
    void subType(FieldType *pType);

  private:
    FieldFactory(void);

    std::map<UInt32, FieldType *> _fieldTypeM;
};

OSG_END_NAMESPACE

#endif
