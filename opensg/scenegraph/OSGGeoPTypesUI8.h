/// GeoPTypes stored as UInt8 (1 x GL_UNSIGNED_BYTE).
#ifndef _OSGGEOPTYPESUI8_H_
#define _OSGGEOPTYPESUI8_H_

#include <OpenSG/OSGGeoPTypesUI8Base.h>
#include <OpenSG/OSGGeoPropertyBase.h>

OSG_BEGIN_NAMESPACE

struct GeoPTypesUI8PropertyDesc
{
    typedef MFUInt8      StoredFieldType;
    typedef UInt8        GenericType;
    typedef GeoPTypesPtr InheritedPtr;

    static const Char8 *getTypeName(void) { return "GeoPTypesUI8"; }
    static UInt32 getFormat(void) { return GL_UNSIGNED_BYTE; }
    static UInt32 getFormatSize(void) { return 1; }
    static UInt32 getDimension(void) { return 1; }
};

class GeoPTypesUI8 : public GeoProperty<GeoPTypesUI8Base, GeoPTypesUI8PropertyDesc>
{
  private:
    typedef GeoProperty<GeoPTypesUI8Base, GeoPTypesUI8PropertyDesc> Inherited;

  protected:
    GeoPTypesUI8(void) : Inherited() {}
    GeoPTypesUI8(const GeoPTypesUI8 &source) : Inherited(source) {}
    virtual ~GeoPTypesUI8(void) {}

  private:
    friend class FieldContainer;
    friend class GeoPTypesUI8Base;

    static void initMethod(void) {}

    void operator=(const GeoPTypesUI8 &source);
};

typedef GeoPTypesUI8 *GeoPTypesUI8P;

OSG_END_NAMESPACE

#endif
