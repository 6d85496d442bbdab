/// GeoIndices stored as UInt32 (1 x GL_UNSIGNED_INT).
#ifndef _OSGGEOINDICESUI32_H_
#define _OSGGEOINDICESUI32_H_

#include <OpenSG/OSGGeoIndicesUI32Base.h>
#include <OpenSG/OSGGeoPropertyBase.h>

OSG_BEGIN_NAMESPACE

struct GeoIndicesUI32PropertyDesc
{
    typedef MFUInt32     StoredFieldType;
    typedef UInt32       GenericType;
    typedef GeoIndicesPtr InheritedPtr;

    static const Char8 *getTypeName(void) { return "GeoIndicesUI32"; }
    static UInt32 getFormat(void) { return GL_UNSIGNED_INT; }
    static UInt32 getFormatSize(void) { return 4; }
    static UInt32 getDimension(void) { return 1; }
};

class GeoIndicesUI32 : public GeoProperty<GeoIndicesUI32Base, GeoIndicesUI32PropertyDesc>
{
  private:
    typedef GeoProperty<GeoIndicesUI32Base, GeoIndicesUI32PropertyDesc> Inherited;

  protected:
    GeoIndicesUI32(void) : Inherited() {}
    GeoIndicesUI32(const GeoIndicesUI32 &source) : Inherited(source) {}
    virtual ~GeoIndicesUI32(void) {}

  private:
    friend class FieldContainer;
    friend class GeoIndicesUI32Base;

    static void initMethod(void) {}

    void operator=(const GeoIndicesUI32 &source);
};

typedef GeoIndicesUI32 *GeoIndicesUI32P;

OSG_END_NAMESPACE

#endif
