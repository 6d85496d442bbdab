/// GeoPLengths stored as UInt32 (1 x GL_UNSIGNED_INT).
#ifndef _OSGGEOPLENGTHSUI32_H_
#define _OSGGEOPLENGTHSUI32_H_

#include <OpenSG/OSGGeoPLengthsUI32Base.h>
#include <OpenSG/OSGGeoPropertyBase.h>

OSG_BEGIN_NAMESPACE

struct GeoPLengthsUI32PropertyDesc
{
    typedef MFUInt32     StoredFieldType;
    typedef UInt32       GenericType;
    typedef GeoPLengthsPtr InheritedPtr;

    static const Char8 *getTypeName(void) { return "GeoPLengthsUI32"; }
    static UInt32 getFormat(void) { return GL_UNSIGNED_INT; }
    static UInt32 getFormatSize(void) { return 4; }
    static UInt32 getDimension(void) { return 1; }
};

class GeoPLengthsUI32 : public GeoProperty<GeoPLengthsUI32Base, GeoPLengthsUI32PropertyDesc>
{
  private:
    typedef GeoProperty<GeoPLengthsUI32Base, GeoPLengthsUI32PropertyDesc> Inherited;

  protected:
    GeoPLengthsUI32(void) : Inherited() {}
    GeoPLengthsUI32(const GeoPLengthsUI32 &source) : Inherited(source) {}
    virtual ~GeoPLengthsUI32(void) {}

  private:
    friend class FieldContainer;
    friend class GeoPLengthsUI32Base;

    static void initMethod(void) {}

    void operator=(const GeoPLengthsUI32 &source);
};

typedef GeoPLengthsUI32 *GeoPLengthsUI32P;

OSG_END_NAMESPACE

#endif
