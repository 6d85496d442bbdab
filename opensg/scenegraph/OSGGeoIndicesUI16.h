/// GeoIndices stored as UInt16 (1 x GL_UNSIGNED_SHORT).
#ifndef _OSGGEOINDICESUI16_H_
#define _OSGGEOINDICESUI16_H_

#include <OpenSG/OSGGeoIndicesUI16Base.h>
#include <OpenSG/OSGGeoPropertyBase.h>

OSG_BEGIN_NAMESPACE

struct GeoIndicesUI16PropertyDesc
{
    typedef MFUInt16     StoredFieldType;
    typedef UInt32       GenericType;
    typedef GeoIndicesPtr InheritedPtr;

    static const Char8 *getTypeName(void) { return "GeoIndicesUI16"; }
    static UInt32 getFormat(void) { return GL_UNSIGNED_SHORT; }
    static UInt32 getFormatSize(void) { return 2; }
    static UInt32 getDimension(void) { return 1; }
};

class GeoIndicesUI16 : public GeoProperty<GeoIndicesUI16Base, GeoIndicesUI16PropertyDesc>
{
  private:
    typedef GeoProperty<GeoIndicesUI16Base, GeoIndicesUI16PropertyDesc> Inherited;

  protected:
    GeoIndicesUI16(void) : Inherited() {}
    GeoIndicesUI16(const GeoIndicesUI16 &source) : Inherited(source) {}
    virtual ~GeoIndicesUI16(void) {}

  private:
    friend class FieldContainer;
    friend class GeoIndicesUI16Base;

    static void initMethod(void) {}

    void operator=(const GeoIndicesUI16 &source);
};

typedef GeoIndicesUI16 *GeoIndicesUI16P;

OSG_END_NAMESPACE

#endif
