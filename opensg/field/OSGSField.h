/// A field holding one value.
#ifndef _OSGSFIELD_H_
#define _OSGSFIELD_H_

#include <OpenSG/OSGFieldDataType.h>

OSG_BEGIN_NAMESPACE

template <class FieldTypeT, Int32 fieldNameSpace = 0>
class SField : public Field
{
  public:
    typedef typename FieldTraitsSelect<FieldTypeT, fieldNameSpace>::Traits SFieldTraits;
    typedef SField<FieldTypeT, fieldNameSpace> Self;
    typedef FieldTypeT        StoredType;
    typedef FieldTypeT       &reference;
    typedef const FieldTypeT &const_reference;
    typedef const FieldTypeT &ArgumentType;

    static const FieldType _fieldType;

    static const FieldType &getClassType(void) { return _fieldType; }
    static Field *create(void) { return new Self; }

    SField(void) : Field(), _value() {}
    SField(const SField &obj) : Field(obj), _value(obj._value) {}
    explicit SField(ArgumentType value) : Field(), _value(value) {}
    virtual ~SField(void) {}

    reference getValue(void) { return _value; }
    const_reference getValue(void) const { return _value; }

    void setValue(ArgumentType value) { _value = value; }
    void setValue(const Self &obj) { _value = obj._value; }

    Self &operator=(const Self &obj)
    {
        if(this != &obj)
            _value = obj._value;
        return *this;
    }

    virtual const FieldType &getType(void) const { return _fieldType; }
    virtual bool isEmpty(void) const { return false; }
    virtual UInt32 getSize(void) const { return 1; }

    virtual void pushValueByStr(const Char8 *str)
    {
        if constexpr((SFieldTraits::StringConvertable & FieldTraits::FromStringConvertable) != 0)
        {
            const Char8 *in = str;
            SFieldTraits::getFromString(_value, in);
        }
        else
        {
            fieldStringConversionError(false);
        }
    }

    virtual std::string &getValueByStr(std::string &str) const
    {
        if constexpr((SFieldTraits::StringConvertable & FieldTraits::ToStringConvertable) != 0)
            SFieldTraits::putToString(_value, str);
        else
            fieldStringConversionError(true);
        return str;
    }

    virtual std::string &getValueByStr(std::string &str, UInt32) const
    {
        return getValueByStr(str);
    }

    virtual void setAbstrValue(const Field &obj)
    {
        if(getType() == obj.getType())
            setValue(static_cast<const Self &>(obj));
    }

    void syncWith(Self &source) { setValue(source); }

    UInt32 getBinSize(void) { return SFieldTraits::getBinSize(_value); }
    void copyToBin(BinaryDataHandler &pMem) { SFieldTraits::copyToBin(pMem, _value); }
    void copyFromBin(BinaryDataHandler &pMem) { SFieldTraits::copyFromBin(pMem, _value); }

  protected:
    FieldTypeT _value;
};

OSG_END_NAMESPACE

/// Define the field type of SField<T1> or SField<T1, T2> (inside namespace
/// osg), as OpenSG's generated container code does for its pointer fields.
/// LIBMAP is the export decoration (empty on Linux).
#define OSG_DLLEXPORT_SFIELD_DEF2(T1, T2, LIBMAP)                                  \
    template <>                                                                    \
    LIBMAP const OSG::FieldType OSG::SField<T1, T2>::_fieldType(                   \
        OSG::SField<T1, T2>::SFieldTraits::getSName(), "Field",                    \
        OSG::SField<T1, T2>::SFieldTraits::getType(), OSG::SField<T1, T2>::create, \
        OSG::FieldType::SINGLE_FIELD)
#define OSG_DLLEXPORT_SFIELD_DEF1(T1, LIBMAP) OSG_DLLEXPORT_SFIELD_DEF2(T1, 0, LIBMAP)

#endif
