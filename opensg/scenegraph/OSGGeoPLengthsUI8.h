/// GeoPLengths stored as UInt8 (1 x GL_UNSIGNED_BYTE).
#ifndef _OSGGEOPLENGTHSUI8_H_
#define _OSGGEOPLENGTHSUI8_H_

#include <OpenSG/OSGGeoPLengthsUI8Base.h>
#include <OpenSG/OSGGeoPropertyBase.h>

OSG_BEGIN_NAMESPACE

struct GeoPLengthsUI8PropertyDesc
{
    typedef MFUInt8      StoredFieldType;
    typedef UInt32       GenericType;
    typedef GeoPLengthsPtr InheritedPtr;

    static const Char8 *getTypeName(void) { return "GeoPLengthsUI8"; }
    static UInt32 getFormat(void) { return GL_UNSIGNED_BYTE; }
    static UInt32 getFormatSize(void) { return 1; }
    static UInt32 getDimension(void) { return 1; }
};

class GeoPLengthsUI8 : public GeoProperty<GeoPLengthsUI8Base, GeoPLengthsUI8PropertyDesc>
{
  private:
    typedef GeoProperty<GeoPLengthsUI8Base, GeoPLengthsUI8PropertyDesc> Inherited;

  protected:
    GeoPLengthsUI8(void) : Inherited() {}
    GeoPLengthsUI8(const GeoPLengthsUI8 &source) : Inherited(source) {}
    virtual ~GeoPLengthsUI8(void) {}

  private:
    friend class FieldContainer;
    friend class GeoPLengthsUI8Base;

    static void initMethod(void) {}

    void operator=(const GeoPLengthsUI8 &source);
};

typedef GeoPLengthsUI8 *GeoPLengthsUI8P;

OSG_END_NAMESPACE

#endif
