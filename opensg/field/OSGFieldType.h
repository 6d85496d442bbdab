/// The run-time type of a field: its content type and cardinality.
#ifndef _OSGFIELDTYPE_H_
#define _OSGFIELDTYPE_H_

#include <OpenSG/OSGDataType.h>

OSG_BEGIN_NAMESPACE

class Field;

class FieldType : public DataType
{
  public:
    enum Cardinality
    {
        SINGLE_FIELD = 0,
        MULTI_FIELD  = 1
    };

    typedef Field *(*CreateFieldMethod)(void);

    FieldType(const Char8 *szName, const Char8 *szParentName,
              const DataType &contentType, CreateFieldMethod createMethod,
              Cardinality cardinality);
    virtual ~FieldType(void);

    const DataType &getContentType(void) const { return _contentType; }
    Cardinality getCardinality(void) const { return _cardinality; }
    UInt32 getScanTypeId(void) const { return getId(); }
    Field *createField(void) const { return _createMethod ? _createMethod() : NULL; }

  private:
    const DataType   &_contentType;
    CreateFieldMethod _createMethod;
    Cardinality       _cardinality;
};

OSG_END_NAMESPACE

#endif
