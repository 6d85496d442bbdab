/// GeoColors stored as Color4f (4 x GL_FLOAT).
#ifndef _OSGGEOCOLORS4F_H_
#define _OSGGEOCOLORS4F_H_

#include <OpenSG/OSGGeoColors4fBase.h>
#include <OpenSG/OSGGeoPropertyBase.h>

OSG_BEGIN_NAMESPACE

struct GeoColors4fPropertyDesc
{
    typedef MFColor4f    StoredFieldType;
    typedef Color3f      GenericType;
    typedef GeoColorsPtr InheritedPtr;

    static const Char8 *getTypeName(void) { return "GeoColors4f"; }
    static UInt32 getFormat(void) { return GL_FLOAT; }
    static UInt32 getFormatSize(void) { return 4; }
    static UInt32 getDimension(void) { return 4; }
};

class GeoColors4f : public GeoProperty<GeoColors4fBase, GeoColors4fPropertyDesc>
{
  private:
    typedef GeoProperty<GeoColors4fBase, GeoColors4fPropertyDesc> Inherited;

  protected:
    GeoColors4f(void) : Inherited() {}
    GeoColors4f(const GeoColors4f &source) : Inherited(source) {}
    virtual ~GeoColors4f(void) {}

  private:
    friend class FieldContainer;
    friend class GeoColors4fBase;

    static void initMethod(void) {}

    void operator=(const GeoColors4f &source);
};

typedef GeoColors4f *GeoColors4fP;

OSG_END_NAMESPACE

#endif
