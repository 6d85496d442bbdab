/// GeoTexCoords stored as Vec4f (4 x GL_FLOAT).
#ifndef _OSGGEOTEXCOORDS4F_H_
#define _OSGGEOTEXCOORDS4F_H_

#include <OpenSG/OSGGeoTexCoords4fBase.h>
#include <OpenSG/OSGGeoPropertyBase.h>

OSG_BEGIN_NAMESPACE

struct GeoTexCoords4fPropertyDesc
{
    typedef MFVec4f      StoredFieldType;
    typedef Vec2f        GenericType;
    typedef GeoTexCoordsPtr InheritedPtr;

    static const Char8 *getTypeName(void) { return "GeoTexCoords4f"; }
    static UInt32 getFormat(void) { return GL_FLOAT; }
    static UInt32 getFormatSize(void) { return 4; }
    static UInt32 getDimension(void) { return 4; }
};

class GeoTexCoords4f : public GeoProperty<GeoTexCoords4fBase, GeoTexCoords4fPropertyDesc>
{
  private:
    typedef GeoProperty<GeoTexCoords4fBase, GeoTexCoords4fPropertyDesc> Inherited;

  protected:
    GeoTexCoords4f(void) : Inherited() {}
    GeoTexCoords4f(const GeoTexCoords4f &source) : Inherited(source) {}
    virtual ~GeoTexCoords4f(void) {}

  private:
    friend class FieldContainer;
    friend class GeoTexCoords4fBase;

    static void initMethod(void) {}

    void operator=(const GeoTexCoords4f &source);
};

typedef GeoTexCoords4f *GeoTexCoords4fP;

OSG_END_NAMESPACE

#endif
