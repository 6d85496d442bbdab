#include <OpenSG/OSGFieldContainerFields.h>

OSG_BEGIN_NAMESPACE

DataType FieldDataTraits<FieldContainerPtr>::_type("FieldContainerPtr", NULL);

template <>
const FieldType SField<FieldContainerPtr, 0>::_fieldType(
    "SFFieldContainerPtr", "Field", FieldDataTraits<FieldContainerPtr>::getType(),
    SField<FieldContainerPtr, 0>::create, FieldType::SINGLE_FIELD);

template <>
const FieldType MField<FieldContainerPtr, 0>::_fieldType(
    "MFFieldContainerPtr", "Field", FieldDataTraits<FieldContainerPtr>::getType(),
    MField<FieldContainerPtr, 0>::create, FieldType::MULTI_FIELD);

OSG_END_NAMESPACE
