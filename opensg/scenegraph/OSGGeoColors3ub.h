/// GeoColors stored as Color3ub (3 x GL_UNSIGNED_BYTE).
#ifndef _OSGGEOCOLORS3UB_H_
#define _OSGGEOCOLORS3UB_H_

#include <OpenSG/OSGGeoColors3ubBase.h>
#include <OpenSG/OSGGeoPropertyBase.h>

OSG_BEGIN_NAMESPACE

struct GeoColors3ubPropertyDesc
{
    typedef MFColor3ub   StoredFieldType;
    typedef Color3f      GenericType;
    typedef GeoColorsPtr InheritedPtr;

    static const Char8 *getTypeName(void) { return "GeoColors3ub"; }
    static UInt32 getFormat(void) { return GL_UNSIGNED_BYTE; }
    static UInt32 getFormatSize(void) { return 1; }
    static UInt32 getDimension(void) { return 3; }
};

class GeoColors3ub : public GeoProperty<GeoColors3ubBase, GeoColors3ubPropertyDesc>
{
  private:
    typedef GeoProperty<GeoColors3ubBase, GeoColors3ubPropertyDesc> Inherited;

  protected:
    GeoColors3ub(void) : Inherited() {}
    GeoColors3ub(const GeoColors3ub &source) : Inherited(source) {}
    virtual ~GeoColors3ub(void) {}

  private:
    friend class FieldContainer;
    friend class GeoColors3ubBase;

    static void initMethod(void) {}

    void operator=(const GeoColors3ub &source);
};

typedef GeoColors3ub *GeoColors3ubP;

OSG_END_NAMESPACE

#endif
