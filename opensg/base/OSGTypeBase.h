/// Root of every run-time type: data types, field types and container types.
#ifndef _OSGTYPEBASE_H_
#define _OSGTYPEBASE_H_

#include <OpenSG/OSGBaseTypes.h>

#include <iosfwd>
#include <string>

OSG_BEGIN_NAMESPACE

/// A small string with OpenSG's comparison and stream behaviour.
class IDString
{
  public:
    IDString(const Char8 *str = NULL);
    IDString(const IDString &obj);
    ~IDString(void);

    IDString &operator=(const IDString &obj);

    const Char8 *str(void) const { return _str; }
    UInt32 getLength(void) const;
    bool isEmpty(void) const { return _str == NULL || *_str == '\0'; }
    void set(const Char8 *str);

    bool operator==(const IDString &other) const;
    bool operator!=(const IDString &other) const { return !(*this == other); }
    bool operator<(const IDString &other) const;

  private:
    Char8 *_str;
};

std::ostream &operator<<(std::ostream &os, const IDString &obj);

class TypeBase
{
  public:
    TypeBase(const Char8 *szName, const Char8 *szParentName, UInt32 uiNameSpace = 0);
    virtual ~TypeBase(void);

    UInt32 getId(void) const { return _uiTypeId; }
    const IDString &getName(void) const { return _szName; }
    const Char8 *getCName(void) const { return _szName.str(); }
    const IDString &getParentName(void) const { return _szParentName; }
    const Char8 *getCParentName(void) const { return _szParentName.str(); }
    UInt32 getNameSpace(void) const { return _uiNameSpace; }

    virtual bool isDerivedFrom(const TypeBase &other) const;

    bool operator==(const TypeBase &other) const { return _uiTypeId == other._uiTypeId; }
    bool operator!=(const TypeBase &other) const { return _uiTypeId != other._uiTypeId; }

  protected:
    UInt32   _uiTypeId;
    UInt32   _uiNameSpace;
    IDString _szName;
    IDString _szParentName;

  private:
    TypeBase(const TypeBase &);
    void operator=(const TypeBase &);
};

OSG_END_NAMESPACE

#endif
