/// GeoColors stored as Color3f (3 x GL_FLOAT).
#ifndef _OSGGEOCOLORS3F_H_
#define _OSGGEOCOLORS3F_H_

#include <OpenSG/OSGGeoColors3fBase.h>
#include <OpenSG/OSGGeoPropertyBase.h>

OSG_BEGIN_NAMESPACE

struct GeoColors3fPropertyDesc
{
    typedef MFColor3f    StoredFieldType;
    typedef Color3f      GenericType;
    typedef GeoColorsPtr InheritedPtr;

    static const Char8 *getTypeName(void) { return "GeoColors3f"; }
    static UInt32 getFormat(void) { return GL_FLOAT; }
    static UInt32 getFormatSize(void) { return 4; }
    static UInt32 getDimension(void) { return 3; }
};

class GeoColors3f : public GeoProperty<GeoColors3fBase, GeoColors3fPropertyDesc>
{
  private:
    typedef GeoProperty<GeoColors3fBase, GeoColors3fPropertyDesc> Inherited;

  protected:
    GeoColors3f(void) : Inherited() {}
    GeoColors3f(const GeoColors3f &source) : Inherited(source) {}
    virtual ~GeoColors3f(void) {}

  private:
    friend class FieldContainer;
    friend class GeoColors3fBase;

    static void initMethod(void) {}

    void operator=(const GeoColors3f &source);
};

typedef GeoColors3f *GeoColors3fP;

OSG_END_NAMESPACE

#endif
