#include <OpenSG/OSGBaseFields.h>

OSG_BEGIN_NAMESPACE

DataType FieldDataTraits<Int8>::_type("Int8", "IntegralType");
DataType FieldDataTraits<UInt8>::_type("UInt8", "IntegralType");
DataType FieldDataTraits<Int16>::_type("Int16", "IntegralType");
DataType FieldDataTraits<UInt16>::_type("UInt16", "IntegralType");
DataType FieldDataTraits<Int32>::_type("Int32", "IntegralType");
DataType FieldDataTraits<UInt32>::_type("UInt32", "IntegralType");
DataType FieldDataTraits<Int64>::_type("Int64", "IntegralType");
DataType FieldDataTraits<UInt64>::_type("UInt64", "IntegralType");
DataType FieldDataTraits<Real16>::_type("Real16", "IntegralType");
DataType FieldDataTraits<Real32>::_type("Real32", "IntegralType");
DataType FieldDataTraits<Real64>::_type("Real64", "IntegralType");
DataType FieldDataTraits1<Time>::_type("Time", "BaseType");
DataType FieldDataTraits1<BitVector>::_type("BitVector", "BaseType");
DataType FieldDataTraits1<GLenum>::_type("GLenum", "BaseType");
DataType FieldDataTraits2<bool>::_type("bool", "IntegralType");
DataType FieldDataTraits<std::string>::_type("string", "BaseType");
DataType FieldDataTraits<void *>::_type("VoidP", "IntegralType");
DataType FieldDataTraits<Vec2f>::_type("Vec2f", "BaseType");
DataType FieldDataTraits<Vec3f>::_type("Vec3f", "BaseType");
DataType FieldDataTraits<Vec4f>::_type("Vec4f", "BaseType");
DataType FieldDataTraits<Pnt2f>::_type("Pnt2f", "BaseType");
DataType FieldDataTraits<Pnt3f>::_type("Pnt3f", "BaseType");
DataType FieldDataTraits<Pnt4f>::_type("Pnt4f", "BaseType");
DataType FieldDataTraits<Vec2s>::_type("Vec2s", "BaseType");
DataType FieldDataTraits<Color3f>::_type("Color3f", "BaseType");
DataType FieldDataTraits<Color4f>::_type("Color4f", "BaseType");
DataType FieldDataTraits<Color3ub>::_type("Color3ub", "BaseType");
DataType FieldDataTraits<Color4ub>::_type("Color4ub", "BaseType");
DataType FieldDataTraits<Quaternion>::_type("Quaternion", "BaseType");
DataType FieldDataTraits<Matrix>::_type("Matrix", "BaseType");
DataType FieldDataTraits<DynamicVolume>::_type("DynamicVolume", "BaseType");

#define OSG_FIELD_TYPE_DEF(T, NS, TRAITS)                                        \
    template <>                                                                  \
    const FieldType SField<T, NS>::_fieldType(TRAITS<T>::getSName(), "Field",    \
                                              TRAITS<T>::getType(),              \
                                              SField<T, NS>::create,             \
                                              FieldType::SINGLE_FIELD);          \
    template <>                                                                  \
    const FieldType MField<T, NS>::_fieldType(TRAITS<T>::getMName(), "Field",    \
                                              TRAITS<T>::getType(),              \
                                              MField<T, NS>::create,             \
                                              FieldType::MULTI_FIELD)

OSG_FIELD_TYPE_DEF(bool, 2, FieldDataTraits2);
OSG_FIELD_TYPE_DEF(Int8, 0, FieldDataTraits);
OSG_FIELD_TYPE_DEF(UInt8, 0, FieldDataTraits);
OSG_FIELD_TYPE_DEF(Int16, 0, FieldDataTraits);
OSG_FIELD_TYPE_DEF(UInt16, 0, FieldDataTraits);
OSG_FIELD_TYPE_DEF(Int32, 0, FieldDataTraits);
OSG_FIELD_TYPE_DEF(UInt32, 0, FieldDataTraits);
OSG_FIELD_TYPE_DEF(Int64, 0, FieldDataTraits);
OSG_FIELD_TYPE_DEF(UInt64, 0, FieldDataTraits);
OSG_FIELD_TYPE_DEF(Real16, 0, FieldDataTraits);
OSG_FIELD_TYPE_DEF(Real32, 0, FieldDataTraits);
OSG_FIELD_TYPE_DEF(Real64, 0, FieldDataTraits);
OSG_FIELD_TYPE_DEF(Time, 1, FieldDataTraits1);
OSG_FIELD_TYPE_DEF(BitVector, 1, FieldDataTraits1);
OSG_FIELD_TYPE_DEF(GLenum, 1, FieldDataTraits1);
OSG_FIELD_TYPE_DEF(std::string, 0, FieldDataTraits);
OSG_FIELD_TYPE_DEF(void *, 0, FieldDataTraits);
OSG_FIELD_TYPE_DEF(Vec2f, 0, FieldDataTraits);
OSG_FIELD_TYPE_DEF(Vec3f, 0, FieldDataTraits);
OSG_FIELD_TYPE_DEF(Vec4f, 0, FieldDataTraits);
OSG_FIELD_TYPE_DEF(Pnt2f, 0, FieldDataTraits);
OSG_FIELD_TYPE_DEF(Pnt3f, 0, FieldDataTraits);
OSG_FIELD_TYPE_DEF(Pnt4f, 0, FieldDataTraits);
OSG_FIELD_TYPE_DEF(Vec2s, 0, FieldDataTraits);
OSG_FIELD_TYPE_DEF(Color3f, 0, FieldDataTraits);
OSG_FIELD_TYPE_DEF(Color4f, 0, FieldDataTraits);
OSG_FIELD_TYPE_DEF(Color3ub, 0, FieldDataTraits);
OSG_FIELD_TYPE_DEF(Color4ub, 0, FieldDataTraits);
OSG_FIELD_TYPE_DEF(Quaternion, 0, FieldDataTraits);
OSG_FIELD_TYPE_DEF(Matrix, 0, FieldDataTraits);
OSG_FIELD_TYPE_DEF(DynamicVolume, 0, FieldDataTraits);

#undef OSG_FIELD_TYPE_DEF

void FieldDataTraits<DynamicVolume>::copyToBin(BinaryDataHandler &mem, const DynamicVolume &v)
{
    mem.putValue(UInt32(v.getType()));
    mem.putValue(UInt16(v.getState()));
    Pnt3f lo, hi;
    v.getBounds(lo, hi);
    mem.putValues(lo.getValues(), 3);
    mem.putValues(hi.getValues(), 3);
}

void FieldDataTraits<DynamicVolume>::copyFromBin(BinaryDataHandler &mem, DynamicVolume &v)
{
    UInt32 type  = 0;
    UInt16 state = 0;
    Pnt3f lo, hi;
    mem.getValue(type);
    mem.getValue(state);
    mem.getValues(lo.getValues(), 3);
    mem.getValues(hi.getValues(), 3);
    v.setVolumeType(type == DynamicVolume::SPHERE_VOLUME ? DynamicVolume::SPHERE_VOLUME
                                                         : DynamicVolume::BOX_VOLUME);
    // a sphere is rebuilt from its bounding box, which it fills exactly
    if(v.getType() == DynamicVolume::BOX_VOLUME)
        static_cast<BoxVolume &>(v.getInstance()).setBounds(lo, hi);
    else
        static_cast<SphereVolume &>(v.getInstance()).setValue(
            lo + (hi - lo) * 0.5f, (hi[0] - lo[0]) * 0.5f);
    v.instanceChanged();
    v.setState(state);
    v.updateInstanceState();
}

OSG_END_NAMESPACE
