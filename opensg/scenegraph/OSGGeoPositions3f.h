/// GeoPositions stored as Pnt3f (3 x GL_FLOAT).
#ifndef _OSGGEOPOSITIONS3F_H_
#define _OSGGEOPOSITIONS3F_H_

#include <OpenSG/OSGGeoPositions3fBase.h>
#include <OpenSG/OSGGeoPropertyBase.h>

OSG_BEGIN_NAMESPACE

struct GeoPositions3fPropertyDesc
{
    typedef MFPnt3f      StoredFieldType;
    typedef Pnt3f        GenericType;
    typedef GeoPositionsPtr InheritedPtr;

    static const Char8 *getTypeName(void) { return "GeoPositions3f"; }
    static UInt32 getFormat(void) { return GL_FLOAT; }
    static UInt32 getFormatSize(void) { return 4; }
    static UInt32 getDimension(void) { return 3; }
};

class GeoPositions3f : public GeoProperty<GeoPositions3fBase, GeoPositions3fPropertyDesc>
{
  private:
    typedef GeoProperty<GeoPositions3fBase, GeoPositions3fPropertyDesc> Inherited;

  protected:
    GeoPositions3f(void) : Inherited() {}
    GeoPositions3f(const GeoPositions3f &source) : Inherited(source) {}
    virtual ~GeoPositions3f(void) {}

  private:
    friend class FieldContainer;
    friend class GeoPositions3fBase;

    static void initMethod(void) {}

    void operator=(const GeoPositions3f &source);
};

typedef GeoPositions3f *GeoPositions3fP;

OSG_END_NAMESPACE

#endif
