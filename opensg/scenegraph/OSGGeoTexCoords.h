/// Texture coordinates of a geometry, one property per texture unit. The abstract kind: users hold a GeoTexCoordsPtr and
/// read or write elements as Vec2f through the interface, whatever the
/// concrete class stores.
#ifndef _OSGGEOTEXCOORDS_H_
#define _OSGGEOTEXCOORDS_H_

#include <OpenSG/OSGGeoTexCoordsBase.h>
#include <OpenSG/OSGGeoPropertyBase.h>

OSG_BEGIN_NAMESPACE

class GeoTexCoords : public AbstractGeoProperty<GeoTexCoordsBase, Vec2f>
{
  private:
    typedef AbstractGeoProperty<GeoTexCoordsBase, Vec2f> Inherited;

  protected:
    GeoTexCoords(void) : Inherited() {}
    GeoTexCoords(const GeoTexCoords &source) : Inherited(source) {}
    virtual ~GeoTexCoords(void) {}

  private:
    friend class FieldContainer;
    friend class GeoTexCoordsBase;

    static void initMethod(void) {}

    void operator=(const GeoTexCoords &source);
};

typedef GeoTexCoords *GeoTexCoordsP;

OSG_END_NAMESPACE

#endif
