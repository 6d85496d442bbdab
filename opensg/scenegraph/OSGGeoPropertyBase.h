/// The shared bodies of the geometry properties.
///
/// Each kind (positions, normals, ...) has an abstract container class
/// derived from AbstractGeoProperty<Base, Generic>, and each stored type a
/// concrete class derived from GeoProperty<Base, Desc>. The generated Base
/// classes provide the fields; the concrete Base names its one data field
/// `_field`, which is what GeoProperty works on.
#ifndef _OSGGEOPROPERTYBASE_H_
#define _OSGGEOPROPERTYBASE_H_

#include <OpenSG/OSGConfig.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGBaseFields.h>
#include <OpenSG/OSGAttachment.h>
#include <OpenSG/OSGGeoPropertyInterface.h>

#include <cstring>
#include <vector>

OSG_BEGIN_NAMESPACE

/// The parent-field position a container pointer carries along: a property
/// stores its users with the id of the field that holds it, so that a change
/// of the property tells each user which of its fields changed.
struct GeoParentFieldPos : private FieldContainerPtrBase
{
    static UInt16 get(const FieldContainerPtrBase &ptr)
    {
        return ptr.*(&GeoParentFieldPos::_uiParentEPos);
    }
    static void set(FieldContainerPtrBase &ptr, UInt16 pos)
    {
        ptr.*(&GeoParentFieldPos::_uiParentEPos) = pos;
    }
};

// --- conversion between stored and generic element types -------------------

/// Points and vectors: the shared components are copied, the rest is 0.
template <class T1, UInt32 N, class T2, UInt32 M>
inline void geoConvert(Point<T1, N> &dst, const Point<T2, M> &src)
{
    dst = Point<T1, N>(src);
}

inline void geoConvert(UInt32 &dst, const UInt32 &src) { dst = src; }
inline void geoConvert(UInt16 &dst, const UInt32 &src) { dst = UInt16(src); }
inline void geoConvert(UInt32 &dst, const UInt16 &src) { dst = src; }
inline void geoConvert(UInt8 &dst, const UInt32 &src) { dst = UInt8(src); }
inline void geoConvert(UInt32 &dst, const UInt8 &src) { dst = src; }
inline void geoConvert(UInt8 &dst, const UInt8 &src) { dst = src; }

inline void geoConvert(Real32 &dst, const Vec2f &src) { dst = src[0]; }
inline void geoConvert(Vec2f &dst, const Real32 &src) { dst.setValues(src, 0.f); }

/// Colours: an added alpha is opaque; bytes span 0..255 for 0..1.
inline void geoConvert(Color3f &dst, const Color3f &src) { dst = src; }
inline void geoConvert(Color4f &dst, const Color3f &src)
{
    dst.setValuesRGBA(src[0], src[1], src[2], 1.f);
}
inline void geoConvert(Color3f &dst, const Color4f &src)
{
    dst.setValuesRGB(src[0], src[1], src[2]);
}
inline void geoConvert(Color3ub &dst, const Color3f &src)
{
    dst.setValuesRGB(ColorComponent<Real32>::toByte(src[0]),
                     ColorComponent<Real32>::toByte(src[1]),
                     ColorComponent<Real32>::toByte(src[2]));
}
inline void geoConvert(Color3f &dst, const Color3ub &src)
{
    dst.setValuesRGB(ColorComponent<Real32>::fromByte(src[0]),
                     ColorComponent<Real32>::fromByte(src[1]),
                     ColorComponent<Real32>::fromByte(src[2]));
}
inline void geoConvert(Color4ub &dst, const Color3f &src)
{
    dst.setValuesRGBA(ColorComponent<Real32>::toByte(src[0]),
                      ColorComponent<Real32>::toByte(src[1]),
                      ColorComponent<Real32>::toByte(src[2]), 255);
}
inline void geoConvert(Color3f &dst, const Color4ub &src)
{
    dst.setValuesRGB(ColorComponent<Real32>::fromByte(src[0]),
                     ColorComponent<Real32>::fromByte(src[1]),
                     ColorComponent<Real32>::fromByte(src[2]));
}

// --- the abstract kind ---------------------------------------------------------

/// Base of GeoPositions, GeoNormals, ...: the generated container base plus
/// the typed interface of the kind.
template <class BaseT, class GenericTypeT>
class AbstractGeoProperty : public BaseT, public GeoPropertyInterface<GenericTypeT>
{
  private:
    typedef BaseT Inherited;

  public:
    typedef GenericTypeT        GenericType;
    typedef typename BaseT::Ptr PtrType;

    /// A new property of the same class holding a copy of the data.
    virtual PtrType clone(void) = 0;

  protected:
    AbstractGeoProperty(void) : Inherited() {}
    AbstractGeoProperty(const AbstractGeoProperty &source) : Inherited(source) {}
    virtual ~AbstractGeoProperty(void) {}
};

// --- the concrete property -------------------------------------------------------

/// A property storing DescT::StoredFieldType. DescT supplies the field type,
/// the generic type, the abstract pointer type and the GL format.
template <class BaseT, class DescT>
class GeoProperty : public BaseT
{
  private:
    typedef BaseT Inherited;

  public:
    typedef typename DescT::StoredFieldType      StoredFieldType;
    typedef typename StoredFieldType::StoredType StoredType;
    typedef typename DescT::GenericType          GenericType;
    typedef typename DescT::InheritedPtr         InheritedPtr;
    typedef typename BaseT::Ptr                  PtrType;

    enum { GeoPropDataFieldId = Attachment::NextFieldId };

    static constexpr BitVector GeoPropDataFieldMask = BitVector(1) << GeoPropDataFieldId;

    // typed access to the data field
    StoredFieldType       *getFieldPtr(void) { return &this->_field; }
    const StoredFieldType *getFieldPtr(void) const { return &this->_field; }
    StoredFieldType       *editFieldPtr(void) { return &this->_field; }
    StoredFieldType       &getField(void) { return this->_field; }
    const StoredFieldType &getField(void) const { return this->_field; }
    StoredFieldType       &editField(void) { return this->_field; }

    // the array interface
    virtual UInt32 getFormat(void) const { return DescT::getFormat(); }
    virtual UInt32 getFormatSize(void) const { return DescT::getFormatSize(); }
    virtual UInt32 getStride(void) const { return 0; }
    virtual UInt32 getDimension(void) const { return DescT::getDimension(); }
    virtual UInt32 getSize(void) const { return this->_field.size(); }
    virtual UInt32 size(void) const { return this->_field.size(); }
    virtual UInt8 *getData(void) const
    {
        if(this->_field.empty())
            return NULL;
        return reinterpret_cast<UInt8 *>(const_cast<StoredType *>(&this->_field[0]));
    }
    virtual UInt8 *editData(void) { return getData(); }
    virtual void   clear(void) { this->_field.clear(); }
    virtual void   resize(size_t newsize) { this->_field.resize(newsize, zero()); }
    virtual void   shrink(void) { this->_field.getValues().shrink_to_fit(); }

    // the generic interface
    virtual GenericType getValue(const UInt32 index)
    {
        GenericType val;
        geoConvert(val, this->_field[index]);
        return val;
    }
    virtual GenericType getValue(const UInt32 index) const
    {
        GenericType val;
        geoConvert(val, this->_field[index]);
        return val;
    }
    virtual void getValue(GenericType &val, const UInt32 index)
    {
        geoConvert(val, this->_field[index]);
    }
    virtual void getValue(GenericType &val, const UInt32 index) const
    {
        geoConvert(val, this->_field[index]);
    }
    virtual void setValue(const GenericType &val, const UInt32 index)
    {
        geoConvert(this->_field[index], val);
    }
    virtual void addValue(const GenericType &val)
    {
        StoredType stored = zero();
        geoConvert(stored, val);
        this->_field.push_back(stored);
    }
    virtual bool insertValue(const GenericType &val, const UInt32 index)
    {
        if(index > this->_field.size())
            return false;
        StoredType stored = zero();
        geoConvert(stored, val);
        this->_field.insert(this->_field.begin() + index, stored);
        return true;
    }
    virtual void push_back(const GenericType &val) { addValue(val); }

    virtual InheritedPtr clone(void)
    {
        PtrType copy = BaseT::create();
        if(copy != NullFC)
        {
            beginEditCP(copy, GeoPropDataFieldMask);
            copy->getField().setValues(this->_field);
            endEditCP(copy, GeoPropDataFieldMask);
        }
        return copy;
    }

    /// Every change, whatever field, tells each user through the field
    /// that holds this property, so a geometry drops its cached volume and
    /// display list when its data is edited.
    virtual void changed(BitVector whichField, UInt32 origin)
    {
        std::vector<FieldContainerPtr> parents(this->_mfParents.begin(),
                                               this->_mfParents.end());
        for(size_t i = 0; i < parents.size(); ++i)
        {
            if(parents[i] == NullFC)
                continue;
            UInt16    pos  = GeoParentFieldPos::get(parents[i]);
            BitVector mask = pos < 64 ? (BitVector(1) << pos) : FieldBits::AllFields;
            parents[i]->changed(mask, ChangedOrigin::Child);
        }
        Inherited::changed(whichField, origin);
    }

    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const
    {
        SLOG << "Dump " << this->getType().getCName() << " NI" << std::endl;
    }

  protected:
    GeoProperty(void) : Inherited() {}
    GeoProperty(const GeoProperty &source) : Inherited(source) {}
    virtual ~GeoProperty(void) {}

    /// The element value new slots get: all bits zero (the colour classes do
    /// not initialise themselves).
    static StoredType zero(void)
    {
        StoredType value;
        std::memset(static_cast<void *>(&value), 0, sizeof(value));
        return value;
    }
};

OSG_END_NAMESPACE

#endif
