/// Vertex normals of a geometry. The abstract kind: users hold a GeoNormalsPtr and
/// read or write elements as Vec3f through the interface, whatever the
/// concrete class stores.
#ifndef _OSGGEONORMALS_H_
#define _OSGGEONORMALS_H_

#include <OpenSG/OSGGeoNormalsBase.h>
#include <OpenSG/OSGGeoPropertyBase.h>

OSG_BEGIN_NAMESPACE

class GeoNormals : public AbstractGeoProperty<GeoNormalsBase, Vec3f>
{
  private:
    typedef AbstractGeoProperty<GeoNormalsBase, Vec3f> Inherited;

  protected:
    GeoNormals(void) : Inherited() {}
    GeoNormals(const GeoNormals &source) : Inherited(source) {}
    virtual ~GeoNormals(void) {}

  private:
    friend class FieldContainer;
    friend class GeoNormalsBase;

    static void initMethod(void) {}

    void operator=(const GeoNormals &source);
};

typedef GeoNormals *GeoNormalsP;

OSG_END_NAMESPACE

#endif
