/// Vertex indices of a geometry. The abstract kind: users hold a GeoIndicesPtr and
/// read or write elements as UInt32 through the interface, whatever the
/// concrete class stores.
#ifndef _OSGGEOINDICES_H_
#define _OSGGEOINDICES_H_

#include <OpenSG/OSGGeoIndicesBase.h>
#include <OpenSG/OSGGeoPropertyBase.h>

OSG_BEGIN_NAMESPACE

class GeoIndices : public AbstractGeoProperty<GeoIndicesBase, UInt32>
{
  private:
    typedef AbstractGeoProperty<GeoIndicesBase, UInt32> Inherited;

  protected:
    GeoIndices(void) : Inherited() {}
    GeoIndices(const GeoIndices &source) : Inherited(source) {}
    virtual ~GeoIndices(void) {}

  private:
    friend class FieldContainer;
    friend class GeoIndicesBase;

    static void initMethod(void) {}

    void operator=(const GeoIndices &source);
};

typedef GeoIndices *GeoIndicesP;

OSG_END_NAMESPACE

#endif
