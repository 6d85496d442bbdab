/// A field holding a list of values.
#ifndef _OSGMFIELD_H_
#define _OSGMFIELD_H_

#include <OpenSG/OSGFieldDataType.h>

#include <algorithm>
#include <type_traits>
#include <vector>

OSG_BEGIN_NAMESPACE

template <class FieldTypeT, Int32 fieldNameSpace = 0>
class MField : public Field
{
  public:
    typedef typename FieldTraitsSelect<FieldTypeT, fieldNameSpace>::Traits MFieldTraits;
    typedef MField<FieldTypeT, fieldNameSpace> Self;
    /// A std::vector, std::vector<bool> for MFBool: its elements are bits,
    /// handed out through the vector's own reference types.
    typedef std::vector<FieldTypeT> StorageType;
    typedef StorageType MFieldVector;
    typedef FieldTypeT StoredType;
    typedef typename StorageType::iterator               iterator;
    typedef typename StorageType::const_iterator         const_iterator;
    typedef typename StorageType::reverse_iterator       reverse_iterator;
    typedef typename StorageType::const_reverse_iterator const_reverse_iterator;
    typedef typename StorageType::reference       reference;
    typedef typename StorageType::const_reference const_reference;
    typedef const FieldTypeT &ArgumentType;

    static const FieldType _fieldType;

    static const FieldType &getClassType(void) { return _fieldType; }
    static Field *create(void) { return new Self; }

    MField(void) : Field(), _values(), _uiSharedWith(0) {}
    MField(const MField &obj) : Field(obj), _values(obj._values), _uiSharedWith(0) {}
    explicit MField(UInt32 size) : Field(), _values(), _uiSharedWith(0) { _values.resize(size); }
    virtual ~MField(void) {}

    StorageType &getValues(void) { return _values; }
    const StorageType &getValues(void) const { return _values; }
    void setValues(const StorageType &values) { _values = values; }
    void setValues(const Self &obj) { _values = obj._values; }

    iterator begin(void) { return _values.begin(); }
    iterator end(void) { return _values.end(); }
    const_iterator begin(void) const { return _values.begin(); }
    const_iterator end(void) const { return _values.end(); }
    reverse_iterator rbegin(void) { return _values.rbegin(); }
    reverse_iterator rend(void) { return _values.rend(); }
    const_reverse_iterator rbegin(void) const { return _values.rbegin(); }
    const_reverse_iterator rend(void) const { return _values.rend(); }

    reference front(void) { return _values.front(); }
    const_reference front(void) const { return _values.front(); }
    reference back(void) { return _values.back(); }
    const_reference back(void) const { return _values.back(); }

    reference operator[](UInt32 index) { return _values[index]; }
    const_reference operator[](UInt32 index) const { return _values[index]; }

    UInt32 size(void) const { return UInt32(_values.size()); }
    bool empty(void) const { return _values.empty(); }
    UInt32 capacity(void) const { return UInt32(_values.capacity()); }
    void clear(void) { _values.clear(); }
    void push_back(ArgumentType value) { _values.push_back(value); }
    iterator insert(iterator pos, ArgumentType value) { return _values.insert(pos, value); }
    iterator erase(iterator pos) { return _values.erase(pos); }
    iterator erase(iterator first, iterator last) { return _values.erase(first, last); }
    iterator find(ArgumentType value) { return std::find(begin(), end(), value); }
    const_iterator find(ArgumentType value) const { return std::find(begin(), end(), value); }
    void resize(size_t newSize, FieldTypeT t = FieldTypeT()) { _values.resize(newSize, t); }
    void reserve(size_t newSize) { _values.reserve(newSize); }
    void swap(Self &right) { _values.swap(right._values); }

    Self &operator=(const Self &obj)
    {
        if(this != &obj)
            _values = obj._values;
        return *this;
    }

    // older names, still part of the interface
    reference getValue(const UInt32 index) { return _values[index]; }
    const_reference getValue(const UInt32 index) const { return _values[index]; }
    void setValue(ArgumentType value, const UInt32 index) { _values[index] = value; }
    void addValue(ArgumentType value) { _values.push_back(value); }

    virtual const FieldType &getType(void) const { return _fieldType; }
    virtual bool isEmpty(void) const { return _values.empty(); }
    virtual UInt32 getSize(void) const { return UInt32(_values.size()); }

    /// Parses one value and appends it; without a text form a default
    /// element is appended after the error line.
    virtual void pushValueByStr(const Char8 *str)
    {
        FieldTypeT tmp = FieldTypeT();
        if constexpr((MFieldTraits::StringConvertable & FieldTraits::FromStringConvertable) != 0)
        {
            const Char8 *in = str;
            MFieldTraits::getFromString(tmp, in);
        }
        else
        {
            fieldStringConversionError(false);
        }
        _values.push_back(tmp);
    }

    /// Appends the text of every element, separated by ", ".
    virtual std::string &getValueByStr(std::string &str) const
    {
        for(UInt32 i = 0; i < _values.size(); ++i)
        {
            if(i != 0)
                str.append(", ");
            appendElement(str, i);
        }
        return str;
    }

    virtual std::string &getValueByStr(std::string &str, UInt32 index) const
    {
        if(index < _values.size())
            appendElement(str, index);
        return str;
    }

    virtual void setAbstrValue(const Field &obj)
    {
        if(getType() == obj.getType())
            setValues(static_cast<const Self &>(obj));
    }

    void syncWith(Self &source) { setValues(source); }

    // The elements of an MFBool are bits, so it goes element by element,
    // one byte each; all other types in one array call.

    UInt32 getBinSize(void)
    {
        if constexpr(std::is_same<FieldTypeT, bool>::value)
            return UInt32(sizeof(UInt32)) + size();
        else
            return UInt32(sizeof(UInt32)) +
                   (_values.empty() ? 0 : MFieldTraits::getBinSize(&_values[0], size()));
    }

    void copyToBin(BinaryDataHandler &pMem)
    {
        UInt32 n = size();
        pMem.putValue(n);
        if constexpr(std::is_same<FieldTypeT, bool>::value)
        {
            for(UInt32 i = 0; i < n; ++i)
                pMem.putValue(bool(_values[i]));
        }
        else if(n != 0)
        {
            MFieldTraits::copyToBin(pMem, &_values[0], n);
        }
    }

    /// Reads the count, then the elements; a list that claims more elements
    /// than the source holds stops where the data ends.
    void copyFromBin(BinaryDataHandler &pMem)
    {
        UInt32 n = 0;
        pMem.getValue(n);
        _values.clear();
        const UInt32 chunk = 1u << 16;
        UInt32 done        = 0;
        while(done < n && !pMem.hasReadError())
        {
            UInt32 count = std::min(chunk, n - done);
            _values.resize(done + count);
            if constexpr(std::is_same<FieldTypeT, bool>::value)
            {
                for(UInt32 i = 0; i < count; ++i)
                {
                    bool b = false;
                    pMem.getValue(b);
                    _values[done + i] = b;
                }
            }
            else
            {
                MFieldTraits::copyFromBin(pMem, &_values[done], count);
            }
            done += count;
        }
        if(pMem.hasReadError())
            _values.clear();
    }

  protected:
    void appendElement(std::string &str, UInt32 index) const
    {
        if constexpr((MFieldTraits::StringConvertable & FieldTraits::ToStringConvertable) != 0)
        {
            std::string tmp;
            MFieldTraits::putToString(_values[index], tmp);
            str.append(tmp);
        }
        else
        {
            fieldStringConversionError(true);
        }
    }

    StorageType _values;
    UInt32      _uiSharedWith;
};

OSG_END_NAMESPACE

/// The same for MField<T1> and MField<T1, T2>.
#define OSG_DLLEXPORT_MFIELD_DEF2(T1, T2, LIBMAP)                                  \
    template <>                                                                    \
    LIBMAP const OSG::FieldType OSG::MField<T1, T2>::_fieldType(                   \
        OSG::MField<T1, T2>::MFieldTraits::getMName(), "Field",                    \
        OSG::MField<T1, T2>::MFieldTraits::getType(), OSG::MField<T1, T2>::create, \
        OSG::FieldType::MULTI_FIELD)
#define OSG_DLLEXPORT_MFIELD_DEF1(T1, LIBMAP) OSG_DLLEXPORT_MFIELD_DEF2(T1, 0, LIBMAP)

#endif
