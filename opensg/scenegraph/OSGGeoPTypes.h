/// Primitive types (GL_TRIANGLES, ...) of a geometry, one per primitive. The abstract kind: users hold a GeoPTypesPtr and
/// read or write elements as UInt8 through the interface, whatever the
/// concrete class stores.
#ifndef _OSGGEOPTYPES_H_
#define _OSGGEOPTYPES_H_

#include <OpenSG/OSGGeoPTypesBase.h>
#include <OpenSG/OSGGeoPropertyBase.h>

OSG_BEGIN_NAMESPACE

class GeoPTypes : public AbstractGeoProperty<GeoPTypesBase, UInt8>
{
  private:
    typedef AbstractGeoProperty<GeoPTypesBase, UInt8> Inherited;

  protected:
    GeoPTypes(void) : Inherited() {}
    GeoPTypes(const GeoPTypes &source) : Inherited(source) {}
    virtual ~GeoPTypes(void) {}

  private:
    friend class FieldContainer;
    friend class GeoPTypesBase;

    static void initMethod(void) {}

    void operator=(const GeoPTypes &source);
};

typedef GeoPTypes *GeoPTypesP;

OSG_END_NAMESPACE

#endif
