/// Describes one field of a container type: type, name, id, mask, accessor.
#ifndef _OSGFIELDDESCRIPTION_H_
#define _OSGFIELDDESCRIPTION_H_

#include <OpenSG/OSGTypeBase.h>

OSG_BEGIN_NAMESPACE

class Field;
class FieldContainer;

typedef Field *(FieldContainer::*FieldAccessMethod)(void);
typedef Field *(FieldContainer::*FieldIndexAccessMethod)(UInt32);

class FieldDescription
{
  public:
    typedef osg::FieldAccessMethod      FieldAccessMethod;
    typedef osg::FieldIndexAccessMethod FieldIndexAccessMethod;

    FieldDescription(const TypeBase &elementType, const Char8 *szName,
                     const UInt32 uiFieldId, const BitVector vFieldMask,
                     const bool bInternal, FieldAccessMethod fAccessMethod,
                     const Char8 *defaultValue = NULL, const Char8 *unused = NULL);
    FieldDescription(const TypeBase &elementType, const Char8 *szName,
                     const UInt32 uiFieldId, const BitVector vFieldMask,
                     const bool bInternal, FieldIndexAccessMethod fIndexedAccessMethod,
                     const Char8 *defaultValue = NULL, const Char8 *unused = NULL);
    FieldDescription(const FieldDescription &source);
    ~FieldDescription(void);

    const Char8 *getCName(void) const { return _szName.str(); }
    const IDString &getName(void) const { return _szName; }
    UInt32 getTypeId(void) const { return _fieldType.getId(); }
    BitVector getFieldMask(void) const { return _vFieldMask; }
    void setFieldMask(BitVector vFieldMask) { _vFieldMask = vFieldMask; }
    UInt32 getFieldId(void) const { return _uiFieldId; }
    void setFieldId(UInt32 uiFieldId) { _uiFieldId = uiFieldId; }
    const Char8 *getDefaultValue(void) const { return _defaultValue.str(); }
    const TypeBase &getFieldType(void) const { return _fieldType; }
    bool isInternal(void) const { return _bInternal; }
    bool isValid(void) const { return !_szName.isEmpty(); }

    void setAccessMethod(FieldAccessMethod fAccessMethod) { _fAccessMethod = fAccessMethod; }
    void setIndexAccessMethod(FieldIndexAccessMethod fIndexedAccessMethod)
    {
        _fIndexedAccessMethod = fIndexedAccessMethod;
    }

  protected:
    /// Calls the accessor on fc; the only generic way to reach a field.
    Field *getField(FieldContainer &fc) const;

    friend class FieldContainer;

  private:
    IDString               _szName;
    const TypeBase        &_fieldType;
    UInt32                 _uiFieldId;
    BitVector              _vFieldMask;
    bool                   _bInternal;
    FieldAccessMethod      _fAccessMethod;
    FieldIndexAccessMethod _fIndexedAccessMethod;
    IDString               _defaultValue;

    void operator=(const FieldDescription &);
};

/// Orders descriptions by field id.
struct FieldDescriptionPLT
{
    bool operator()(const FieldDescription *a, const FieldDescription *b) const
    {
        return a->getFieldId() < b->getFieldId();
    }
};

OSG_END_NAMESPACE

#endif
