/// GeoColors stored as Color4ub (4 x GL_UNSIGNED_BYTE).
#ifndef _OSGGEOCOLORS4UB_H_
#define _OSGGEOCOLORS4UB_H_

#include <OpenSG/OSGGeoColors4ubBase.h>
#include <OpenSG/OSGGeoPropertyBase.h>

OSG_BEGIN_NAMESPACE

struct GeoColors4ubPropertyDesc
{
    typedef MFColor4ub   StoredFieldType;
    typedef Color3f      GenericType;
    typedef GeoColorsPtr InheritedPtr;

    static const Char8 *getTypeName(void) { return "GeoColors4ub"; }
    static UInt32 getFormat(void) { return GL_UNSIGNED_BYTE; }
    static UInt32 getFormatSize(void) { return 1; }
    static UInt32 getDimension(void) { return 4; }
};

class GeoColors4ub : public GeoProperty<GeoColors4ubBase, GeoColors4ubPropertyDesc>
{
  private:
    typedef GeoProperty<GeoColors4ubBase, GeoColors4ubPropertyDesc> Inherited;

  protected:
    GeoColors4ub(void) : Inherited() {}
    GeoColors4ub(const GeoColors4ub &source) : Inherited(source) {}
    virtual ~GeoColors4ub(void) {}

  private:
    friend class FieldContainer;
    friend class GeoColors4ubBase;

    static void initMethod(void) {}

    void operator=(const GeoColors4ub &source);
};

typedef GeoColors4ub *GeoColors4ubP;

OSG_END_NAMESPACE

#endif
