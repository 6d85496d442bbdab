/// Vertex positions of a geometry. The abstract kind: users hold a GeoPositionsPtr and
/// read or write elements as Pnt3f through the interface, whatever the
/// concrete class stores.
#ifndef _OSGGEOPOSITIONS_H_
#define _OSGGEOPOSITIONS_H_

#include <OpenSG/OSGGeoPositionsBase.h>
#include <OpenSG/OSGGeoPropertyBase.h>

OSG_BEGIN_NAMESPACE

class GeoPositions : public AbstractGeoProperty<GeoPositionsBase, Pnt3f>
{
  private:
    typedef AbstractGeoProperty<GeoPositionsBase, Pnt3f> Inherited;

  protected:
    GeoPositions(void) : Inherited() {}
    GeoPositions(const GeoPositions &source) : Inherited(source) {}
    virtual ~GeoPositions(void) {}

  private:
    friend class FieldContainer;
    friend class GeoPositionsBase;

    static void initMethod(void) {}

    void operator=(const GeoPositions &source);
};

typedef GeoPositions *GeoPositionsP;

OSG_END_NAMESPACE

#endif
