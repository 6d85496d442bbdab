/// Walks the faces of a geometry: quads stay quads (GL_QUADS, quad strips
/// and four-sided polygons), everything else polygonal is split into
/// triangles as TriangleIterator does; points and lines are skipped.
/// getLength() is 3 or 4, getIndex() the running face number.
// Geometry includes the iterators at its end, so it comes first, outside
// the guard: whichever header is included first, the classes are complete
// in the right order.
#include <OpenSG/OSGGeometry.h>

#ifndef _OSGFACEITERATOR_H_
#define _OSGFACEITERATOR_H_

#include <OpenSG/OSGTriangleIterator.h>

OSG_BEGIN_NAMESPACE

class FaceIterator : public PrimitiveCornerIterator<FaceIterator>
{
  public:
    FaceIterator(void) : _length(0) {}
    explicit FaceIterator(const GeometryPtr &geo) : _length(0) { setGeo(geo); }
    explicit FaceIterator(const NodePtr &geo) : _length(0) { setGeo(geo); }

    /// 3 for a triangle, 4 for a quad.
    UInt32 getLength(void) const { return _length; }

  private:
    friend class PrimitiveCornerIterator<FaceIterator>;

    /// Finds the next face at or after the current position in the current
    /// primitive, moving on to later primitives as needed.
    void findNext(void);
    /// Corners of face step in the current primitive; false when the
    /// primitive has no more faces.
    bool setCorners(UInt32 step);

    UInt32 _length; // corners of the current face
};

OSG_END_NAMESPACE

#endif
