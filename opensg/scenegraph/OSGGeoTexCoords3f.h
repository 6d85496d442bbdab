/// GeoTexCoords stored as Vec3f (3 x GL_FLOAT).
#ifndef _OSGGEOTEXCOORDS3F_H_
#define _OSGGEOTEXCOORDS3F_H_

#include <OpenSG/OSGGeoTexCoords3fBase.h>
#include <OpenSG/OSGGeoPropertyBase.h>

OSG_BEGIN_NAMESPACE

struct GeoTexCoords3fPropertyDesc
{
    typedef MFVec3f      StoredFieldType;
    typedef Vec2f        GenericType;
    typedef GeoTexCoordsPtr InheritedPtr;

    static const Char8 *getTypeName(void) { return "GeoTexCoords3f"; }
    static UInt32 getFormat(void) { return GL_FLOAT; }
    static UInt32 getFormatSize(void) { return 4; }
    static UInt32 getDimension(void) { return 3; }
};

class GeoTexCoords3f : public GeoProperty<GeoTexCoords3fBase, GeoTexCoords3fPropertyDesc>
{
  private:
    typedef GeoProperty<GeoTexCoords3fBase, GeoTexCoords3fPropertyDesc> Inherited;

  protected:
    GeoTexCoords3f(void) : Inherited() {}
    GeoTexCoords3f(const GeoTexCoords3f &source) : Inherited(source) {}
    virtual ~GeoTexCoords3f(void) {}

  private:
    friend class FieldContainer;
    friend class GeoTexCoords3fBase;

    static void initMethod(void) {}

    void operator=(const GeoTexCoords3f &source);
};

typedef GeoTexCoords3f *GeoTexCoords3fP;

OSG_END_NAMESPACE

#endif
