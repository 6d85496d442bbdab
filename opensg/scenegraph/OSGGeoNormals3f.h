/// GeoNormals stored as Vec3f (3 x GL_FLOAT).
#ifndef _OSGGEONORMALS3F_H_
#define _OSGGEONORMALS3F_H_

#include <OpenSG/OSGGeoNormals3fBase.h>
#include <OpenSG/OSGGeoPropertyBase.h>

OSG_BEGIN_NAMESPACE

struct GeoNormals3fPropertyDesc
{
    typedef MFVec3f      StoredFieldType;
    typedef Vec3f        GenericType;
    typedef GeoNormalsPtr InheritedPtr;

    static const Char8 *getTypeName(void) { return "GeoNormals3f"; }
    static UInt32 getFormat(void) { return GL_FLOAT; }
    static UInt32 getFormatSize(void) { return 4; }
    static UInt32 getDimension(void) { return 3; }
};

class GeoNormals3f : public GeoProperty<GeoNormals3fBase, GeoNormals3fPropertyDesc>
{
  private:
    typedef GeoProperty<GeoNormals3fBase, GeoNormals3fPropertyDesc> Inherited;

  protected:
    GeoNormals3f(void) : Inherited() {}
    GeoNormals3f(const GeoNormals3f &source) : Inherited(source) {}
    virtual ~GeoNormals3f(void) {}

  private:
    friend class FieldContainer;
    friend class GeoNormals3fBase;

    static void initMethod(void) {}

    void operator=(const GeoNormals3f &source);
};

typedef GeoNormals3f *GeoNormals3fP;

OSG_END_NAMESPACE

#endif
