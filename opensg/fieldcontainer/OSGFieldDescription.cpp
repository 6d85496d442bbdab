#include <OpenSG/OSGFieldDescription.h>
#include <OpenSG/OSGFieldContainer.h>
#include <OpenSG/OSGLog.h>

OSG_BEGIN_NAMESPACE

FieldDescription::FieldDescription(const TypeBase &elementType, const Char8 *szName,
                                   const UInt32 uiFieldId, const BitVector vFieldMask,
                                   const bool bInternal, FieldAccessMethod fAccessMethod,
                                   const Char8 *defaultValue, const Char8 *) :
    _szName(szName),
    _fieldType(elementType),
    _uiFieldId(uiFieldId),
    _vFieldMask(vFieldMask),
    _bInternal(bInternal),
    _fAccessMethod(fAccessMethod),
    _fIndexedAccessMethod(NULL),
    _defaultValue(defaultValue)
{
}

FieldDescription::FieldDescription(const TypeBase &elementType, const Char8 *szName,
                                   const UInt32 uiFieldId, const BitVector vFieldMask,
                                   const bool bInternal,
                                   FieldIndexAccessMethod fIndexedAccessMethod,
                                   const Char8 *defaultValue, const Char8 *) :
    _szName(szName),
    _fieldType(elementType),
    _uiFieldId(uiFieldId),
    _vFieldMask(vFieldMask),
    _bInternal(bInternal),
    _fAccessMethod(NULL),
    _fIndexedAccessMethod(fIndexedAccessMethod),
    _defaultValue(defaultValue)
{
}

FieldDescription::FieldDescription(const FieldDescription &source) :
    _szName(source._szName),
    _fieldType(source._fieldType),
    _uiFieldId(source._uiFieldId),
    _vFieldMask(source._vFieldMask),
    _bInternal(source._bInternal),
    _fAccessMethod(source._fAccessMethod),
    _fIndexedAccessMethod(source._fIndexedAccessMethod),
    _defaultValue(source._defaultValue)
{
}

FieldDescription::~FieldDescription(void)
{
}

Field *FieldDescription::getField(FieldContainer &fc) const
{
    if(_fAccessMethod != NULL)
        return (fc.*_fAccessMethod)();
    if(_fIndexedAccessMethod != NULL)
        return (fc.*_fIndexedAccessMethod)(_uiFieldId);
    SWARNING << "No accessMethod for " << _szName << std::endl;
    return NULL;
}

OSG_END_NAMESPACE
