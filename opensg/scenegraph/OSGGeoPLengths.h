/// Primitive lengths of a geometry: vertices per primitive. The abstract kind: users hold a GeoPLengthsPtr and
/// read or write elements as UInt32 through the interface, whatever the
/// concrete class stores.
#ifndef _OSGGEOPLENGTHS_H_
#define _OSGGEOPLENGTHS_H_

#include <OpenSG/OSGGeoPLengthsBase.h>
#include <OpenSG/OSGGeoPropertyBase.h>

OSG_BEGIN_NAMESPACE

class GeoPLengths : public AbstractGeoProperty<GeoPLengthsBase, UInt32>
{
  private:
    typedef AbstractGeoProperty<GeoPLengthsBase, UInt32> Inherited;

  protected:
    GeoPLengths(void) : Inherited() {}
    GeoPLengths(const GeoPLengths &source) : Inherited(source) {}
    virtual ~GeoPLengths(void) {}

  private:
    friend class FieldContainer;
    friend class GeoPLengthsBase;

    static void initMethod(void) {}

    void operator=(const GeoPLengths &source);
};

typedef GeoPLengths *GeoPLengthsP;

OSG_END_NAMESPACE

#endif
