/// GeoTexCoords stored as Vec2f (2 x GL_FLOAT).
#ifndef _OSGGEOTEXCOORDS2F_H_
#define _OSGGEOTEXCOORDS2F_H_

#include <OpenSG/OSGGeoTexCoords2fBase.h>
#include <OpenSG/OSGGeoPropertyBase.h>

OSG_BEGIN_NAMESPACE

struct GeoTexCoords2fPropertyDesc
{
    typedef MFVec2f      StoredFieldType;
    typedef Vec2f        GenericType;
    typedef GeoTexCoordsPtr InheritedPtr;

    static const Char8 *getTypeName(void) { return "GeoTexCoords2f"; }
    static UInt32 getFormat(void) { return GL_FLOAT; }
    static UInt32 getFormatSize(void) { return 4; }
    static UInt32 getDimension(void) { return 2; }
};

class GeoTexCoords2f : public GeoProperty<GeoTexCoords2fBase, GeoTexCoords2fPropertyDesc>
{
  private:
    typedef GeoProperty<GeoTexCoords2fBase, GeoTexCoords2fPropertyDesc> Inherited;

  protected:
    GeoTexCoords2f(void) : Inherited() {}
    GeoTexCoords2f(const GeoTexCoords2f &source) : Inherited(source) {}
    virtual ~GeoTexCoords2f(void) {}

  private:
    friend class FieldContainer;
    friend class GeoTexCoords2fBase;

    static void initMethod(void) {}

    void operator=(const GeoTexCoords2f &source);
};

typedef GeoTexCoords2f *GeoTexCoords2fP;

OSG_END_NAMESPACE

#endif
