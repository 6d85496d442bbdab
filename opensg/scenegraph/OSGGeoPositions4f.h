/// GeoPositions stored as Pnt4f (4 x GL_FLOAT).
#ifndef _OSGGEOPOSITIONS4F_H_
#define _OSGGEOPOSITIONS4F_H_

#include <OpenSG/OSGGeoPositions4fBase.h>
#include <OpenSG/OSGGeoPropertyBase.h>

OSG_BEGIN_NAMESPACE

struct GeoPositions4fPropertyDesc
{
    typedef MFPnt4f      StoredFieldType;
    typedef Pnt3f        GenericType;
    typedef GeoPositionsPtr InheritedPtr;

    static const Char8 *getTypeName(void) { return "GeoPositions4f"; }
    static UInt32 getFormat(void) { return GL_FLOAT; }
    static UInt32 getFormatSize(void) { return 4; }
    static UInt32 getDimension(void) { return 4; }
};

class GeoPositions4f : public GeoProperty<GeoPositions4fBase, GeoPositions4fPropertyDesc>
{
  private:
    typedef GeoProperty<GeoPositions4fBase, GeoPositions4fPropertyDesc> Inherited;

  protected:
    GeoPositions4f(void) : Inherited() {}
    GeoPositions4f(const GeoPositions4f &source) : Inherited(source) {}
    virtual ~GeoPositions4f(void) {}

  private:
    friend class FieldContainer;
    friend class GeoPositions4fBase;

    static void initMethod(void) {}

    void operator=(const GeoPositions4f &source);
};

typedef GeoPositions4f *GeoPositions4fP;

OSG_END_NAMESPACE

#endif
