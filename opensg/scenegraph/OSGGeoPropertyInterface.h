/// The abstract interfaces of the geometry properties: an untyped array view
/// (what OpenGL needs to draw from the data) and a typed view that reads and
/// writes elements as the kind's generic type (Pnt3f for positions, Vec3f for
/// normals, ...), whatever type a concrete property stores.
#ifndef _OSGGEOPROPERTYINTERFACE_H_
#define _OSGGEOPROPERTYINTERFACE_H_

#include <OpenSG/OSGBaseTypes.h>

#include <cstddef>

OSG_BEGIN_NAMESPACE

/// What a property looks like as a plain array: GL component type, size of
/// a component, components per element, element count and the raw bytes.
class GeoPropertyArrayInterface
{
  public:
    virtual ~GeoPropertyArrayInterface(void) {}

    /// The GL component type (GL_FLOAT, GL_UNSIGNED_INT, ...).
    virtual UInt32 getFormat(void) const = 0;
    /// Bytes per component.
    virtual UInt32 getFormatSize(void) const = 0;
    /// Elements are always tightly packed.
    virtual UInt32 getStride(void) const = 0;
    /// Components per element.
    virtual UInt32 getDimension(void) const = 0;
    /// Number of elements.
    virtual UInt32 getSize(void) const = 0;
    virtual UInt32 size(void) const    = 0;
    /// Element 0, NULL when the property is empty.
    virtual UInt8 *getData(void) const = 0;
    virtual UInt8 *editData(void)      = 0;

    virtual void clear(void)           = 0;
    /// New elements are value-initialised.
    virtual void resize(size_t newsize) = 0;
    /// Gives back capacity that is not used.
    virtual void shrink(void) = 0;
};

/// Element access through the kind's generic type. Fewer components than
/// stored are padded with zeros, more are cut off.
template <class GenericTypeT>
class GeoPropertyInterface : public GeoPropertyArrayInterface
{
  public:
    typedef GenericTypeT GenericType;

    virtual ~GeoPropertyInterface(void) {}

    virtual GenericType getValue(const UInt32 index)                    = 0;
    virtual GenericType getValue(const UInt32 index) const              = 0;
    virtual void        getValue(GenericType &val, const UInt32 index)  = 0;
    virtual void        getValue(GenericType &val, const UInt32 index) const = 0;

    virtual void setValue(const GenericType &val, const UInt32 index) = 0;
    virtual void addValue(const GenericType &val)                      = 0;
    /// Inserts before index; index == size appends, beyond it nothing
    /// happens and the result is false.
    virtual bool insertValue(const GenericType &val, const UInt32 index) = 0;
    virtual void push_back(const GenericType &val)                         = 0;
};

OSG_END_NAMESPACE

#endif
