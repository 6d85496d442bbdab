/// Vertex colours of a geometry (primary or secondary). The abstract kind: users hold a GeoColorsPtr and
/// read or write elements as Color3f through the interface, whatever the
/// concrete class stores.
#ifndef _OSGGEOCOLORS_H_
#define _OSGGEOCOLORS_H_

#include <OpenSG/OSGGeoColorsBase.h>
#include <OpenSG/OSGGeoPropertyBase.h>

OSG_BEGIN_NAMESPACE

class GeoColors : public AbstractGeoProperty<GeoColorsBase, Color3f>
{
  private:
    typedef AbstractGeoProperty<GeoColorsBase, Color3f> Inherited;

  protected:
    GeoColors(void) : Inherited() {}
    GeoColors(const GeoColors &source) : Inherited(source) {}
    virtual ~GeoColors(void) {}

  private:
    friend class FieldContainer;
    friend class GeoColorsBase;

    static void initMethod(void) {}

    void operator=(const GeoColors &source);
};

typedef GeoColors *GeoColorsP;

OSG_END_NAMESPACE

#endif
