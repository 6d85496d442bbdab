/// GeoPLengths stored as UInt16 (1 x GL_UNSIGNED_SHORT).
#ifndef _OSGGEOPLENGTHSUI16_H_
#define _OSGGEOPLENGTHSUI16_H_

#include <OpenSG/OSGGeoPLengthsUI16Base.h>
#include <OpenSG/OSGGeoPropertyBase.h>

OSG_BEGIN_NAMESPACE

struct GeoPLengthsUI16PropertyDesc
{
    typedef MFUInt16     StoredFieldType;
    typedef UInt32       GenericType;
    typedef GeoPLengthsPtr InheritedPtr;

    static const Char8 *getTypeName(void) { return "GeoPLengthsUI16"; }
    static UInt32 getFormat(void) { return GL_UNSIGNED_SHORT; }
    static UInt32 getFormatSize(void) { return 2; }
    static UInt32 getDimension(void) { return 1; }
};

class GeoPLengthsUI16 : public GeoProperty<GeoPLengthsUI16Base, GeoPLengthsUI16PropertyDesc>
{
  private:
    typedef GeoProperty<GeoPLengthsUI16Base, GeoPLengthsUI16PropertyDesc> Inherited;

  protected:
    GeoPLengthsUI16(void) : Inherited() {}
    GeoPLengthsUI16(const GeoPLengthsUI16 &source) : Inherited(source) {}
    virtual ~GeoPLengthsUI16(void) {}

  private:
    friend class FieldContainer;
    friend class GeoPLengthsUI16Base;

    static void initMethod(void) {}

    void operator=(const GeoPLengthsUI16 &source);
};

typedef GeoPLengthsUI16 *GeoPLengthsUI16P;

OSG_END_NAMESPACE

#endif
