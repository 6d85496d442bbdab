/// Abstract base of every single and multi field.
#ifndef _OSGFIELD_H_
#define _OSGFIELD_H_

#include <OpenSG/OSGFieldType.h>

#include <string>

OSG_BEGIN_NAMESPACE

class Field
{
  public:
    virtual ~Field(void);

    virtual const FieldType &getType(void) const = 0;

    const DataType &getContentType(void) const { return getType().getContentType(); }
    FieldType::Cardinality getCardinality(void) const { return getType().getCardinality(); }

    virtual bool isEmpty(void) const = 0;
    virtual UInt32 getSize(void) const = 0;

    /// Parses a value from text; pointer fields have no text form.
    virtual void pushValueByStr(const Char8 *str) = 0;
    virtual std::string &getValueByStr(std::string &str) const = 0;
    virtual std::string &getValueByStr(std::string &str, UInt32 index) const = 0;

    /// Copies the value only when both fields are of the same type.
    virtual void setAbstrValue(const Field &obj) = 0;

    virtual void dump(void) const;

  protected:
    Field(void) {}
    Field(const Field &) {}
};

struct FieldTraits
{
    enum
    {
        ToStringConvertable   = 0x01,
        FromStringConvertable = 0x02
    };

    static const Char8 *getPName(void) { return "Field"; }
};

/// Writes the line that a field without a text form reports.
void fieldStringConversionError(bool toString);

OSG_END_NAMESPACE

#endif
