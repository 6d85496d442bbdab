/// GeoPositions stored as Pnt2f (2 x GL_FLOAT).
#ifndef _OSGGEOPOSITIONS2F_H_
#define _OSGGEOPOSITIONS2F_H_

#include <OpenSG/OSGGeoPositions2fBase.h>
#include <OpenSG/OSGGeoPropertyBase.h>

OSG_BEGIN_NAMESPACE

struct GeoPositions2fPropertyDesc
{
    typedef MFPnt2f      StoredFieldType;
    typedef Pnt3f        GenericType;
    typedef GeoPositionsPtr InheritedPtr;

    static const Char8 *getTypeName(void) { return "GeoPositions2f"; }
    static UInt32 getFormat(void) { return GL_FLOAT; }
    static UInt32 getFormatSize(void) { return 4; }
    static UInt32 getDimension(void) { return 2; }
};

class GeoPositions2f : public GeoProperty<GeoPositions2fBase, GeoPositions2fPropertyDesc>
{
  private:
    typedef GeoProperty<GeoPositions2fBase, GeoPositions2fPropertyDesc> Inherited;

  protected:
    GeoPositions2f(void) : Inherited() {}
    GeoPositions2f(const GeoPositions2f &source) : Inherited(source) {}
    virtual ~GeoPositions2f(void) {}

  private:
    friend class FieldContainer;
    friend class GeoPositions2fBase;

    static void initMethod(void) {}

    void operator=(const GeoPositions2f &source);
};

typedef GeoPositions2f *GeoPositions2fP;

OSG_END_NAMESPACE

#endif
