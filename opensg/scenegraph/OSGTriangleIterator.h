/// Walks the triangles of a geometry. Points and lines are skipped;
/// triangles, strips, fans, quads, quad strips and polygons are split into
/// triangles (strips keep a consistent winding and drop triangles with two
/// equal position indices). getIndex() is the running triangle number, the
/// number picking reports as the hit triangle.
// Geometry includes the iterators at its end, so it comes first, outside
// the guard: whichever header is included first, the classes are complete
// in the right order.
#include <OpenSG/OSGGeometry.h>

#ifndef _OSGTRIANGLEITERATOR_H_
#define _OSGTRIANGLEITERATOR_H_

#include <OpenSG/OSGPrimitiveIterator.h>
#include <OpenSG/OSGGL.h>

OSG_BEGIN_NAMESPACE

class TriangleIterator : public PrimitiveCornerIterator<TriangleIterator>
{
  public:
    TriangleIterator(void) {}
    explicit TriangleIterator(const GeometryPtr &geo) { setGeo(geo); }
    explicit TriangleIterator(const NodePtr &geo) { setGeo(geo); }

    using PrimitiveCornerIterator<TriangleIterator>::getIndex;
    /// Vertex number (position in the index tuples) of corner which (0..2).
    Int32 getIndex(Int32 which) const { return _primIt.getVertexIndex(_corner[which]); }

  private:
    friend class PrimitiveCornerIterator<TriangleIterator>;
    friend class FaceIterator;

    /// Corners of triangle step of a primitive of the given GL type and
    /// length; false when it has no more triangles.
    static bool triangleCorners(UInt32 type, UInt32 length, UInt32 step, Int32 corner[3]);
    /// Whether two corners share a position: strips repeat vertices to
    /// restart, and such triangles are empty.
    static bool isDegenerate(const PrimitiveIterator &primIt, const Int32 corner[3]);

    /// Finds the next triangle at or after the current position in the
    /// current primitive, moving on to later primitives as needed.
    void findNext(void);
};

OSG_END_NAMESPACE

#endif
