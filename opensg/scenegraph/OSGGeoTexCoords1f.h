/// GeoTexCoords stored as Real32 (1 x GL_FLOAT).
#ifndef _OSGGEOTEXCOORDS1F_H_
#define _OSGGEOTEXCOORDS1F_H_

#include <OpenSG/OSGGeoTexCoords1fBase.h>
#include <OpenSG/OSGGeoPropertyBase.h>

OSG_BEGIN_NAMESPACE

struct GeoTexCoords1fPropertyDesc
{
    typedef MFReal32     StoredFieldType;
    typedef Vec2f        GenericType;
    typedef GeoTexCoordsPtr InheritedPtr;

    static const Char8 *getTypeName(void) { return "GeoTexCoords1f"; }
    static UInt32 getFormat(void) { return GL_FLOAT; }
    static UInt32 getFormatSize(void) { return 4; }
    static UInt32 getDimension(void) { return 1; }
};

class GeoTexCoords1f : public GeoProperty<GeoTexCoords1fBase, GeoTexCoords1fPropertyDesc>
{
  private:
    typedef GeoProperty<GeoTexCoords1fBase, GeoTexCoords1fPropertyDesc> Inherited;

  protected:
    GeoTexCoords1f(void) : Inherited() {}
    GeoTexCoords1f(const GeoTexCoords1f &source) : Inherited(source) {}
    virtual ~GeoTexCoords1f(void) {}

  private:
    friend class FieldContainer;
    friend class GeoTexCoords1fBase;

    static void initMethod(void) {}

    void operator=(const GeoTexCoords1f &source);
};

typedef GeoTexCoords1f *GeoTexCoords1fP;

OSG_END_NAMESPACE

#endif
