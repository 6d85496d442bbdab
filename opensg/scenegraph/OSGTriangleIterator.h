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

class TriangleIterator
{
  public:
    TriangleIterator(void);
    explicit TriangleIterator(const GeometryPtr &geo);
    explicit TriangleIterator(const NodePtr &geo);

    void setGeo(const GeometryPtr &geo);
    void setGeo(const NodePtr &geo);

    void setToBegin(void);
    void setToEnd(void);
    /// Moves to triangle number index (to the end if there is none).
    void seek(Int32 index);

    TriangleIterator &operator++(void);

    bool isAtEnd(void) const;

    /// The running number of the current triangle.
    Int32 getIndex(void) const { return _triIndex; }
    /// Vertex number (position in the index tuples) of corner which (0..2).
    Int32 getIndex(Int32 which) const { return _primIt.getVertexIndex(_corner[which]); }
    /// Where corner which's index tuple starts in the index array; -1
    /// without indices.
    Int32 getIndexIndex(Int32 which) const { return _primIt.getIndexIndex(_corner[which]); }

    UInt32 getType(void) const { return _primIt.getType(); }
    const PrimitiveIterator &getPrimitiveIterator(void) const { return _primIt; }

    Int32 getPositionIndex(Int32 which) const { return _primIt.getPositionIndex(_corner[which]); }
    Int32 getNormalIndex(Int32 which) const { return _primIt.getNormalIndex(_corner[which]); }
    Int32 getColorIndex(Int32 which) const { return _primIt.getColorIndex(_corner[which]); }
    Int32 getSecondaryColorIndex(Int32 which) const
    {
        return _primIt.getSecondaryColorIndex(_corner[which]);
    }
    Int32 getTexCoordsIndex(Int32 which) const { return _primIt.getTexCoordsIndex(_corner[which]); }
    Int32 getTexCoordsIndex1(Int32 which) const { return _primIt.getTexCoordsIndex1(_corner[which]); }
    Int32 getTexCoordsIndex2(Int32 which) const { return _primIt.getTexCoordsIndex2(_corner[which]); }
    Int32 getTexCoordsIndex3(Int32 which) const { return _primIt.getTexCoordsIndex3(_corner[which]); }
    Int32 getAttribIndex(UInt32 attribute, Int32 which) const
    {
        return _primIt.getAttribIndex(attribute, _corner[which]);
    }

    Pnt3f   getPosition(Int32 which) const { return _primIt.getPosition(_corner[which]); }
    Vec3f   getNormal(Int32 which) const { return _primIt.getNormal(_corner[which]); }
    Color3f getColor(Int32 which) const { return _primIt.getColor(_corner[which]); }
    Color3f getSecondaryColor(Int32 which) const
    {
        return _primIt.getSecondaryColor(_corner[which]);
    }
    Vec2f getTexCoords(Int32 which) const { return _primIt.getTexCoords(_corner[which]); }
    Vec2f getTexCoords1(Int32 which) const { return _primIt.getTexCoords1(_corner[which]); }
    Vec2f getTexCoords2(Int32 which) const { return _primIt.getTexCoords2(_corner[which]); }
    Vec2f getTexCoords3(Int32 which) const { return _primIt.getTexCoords3(_corner[which]); }
    Vec2f getTexCoordsN(UInt32 unit, Int32 which) const
    {
        return _primIt.getTexCoordsN(unit, _corner[which]);
    }

    GeometryPtr getGeometry(void) const { return _primIt.getGeometry(); }

    bool operator==(const TriangleIterator &other) const;
    bool operator!=(const TriangleIterator &other) const { return !(*this == other); }
    bool operator<(const TriangleIterator &other) const;

  private:
    friend class FaceIterator;

    /// Corners of triangle step of a primitive of the given GL type and
    /// length; false when it has no more triangles.
    static bool triangleCorners(UInt32 type, UInt32 length, UInt32 step, Int32 corner[3]);
    /// Whether two corners share a position: strips repeat vertices to
    /// restart, and such triangles are empty.
    static bool isDegenerate(const PrimitiveIterator &primIt, const Int32 corner[3]);

    /// Finds the next triangle at or after the current position in the
    /// current primitive, moving on to later primitives as needed.
    void findTriangle(void);
    PrimitiveIterator _primIt;
    Int32             _triIndex;
    UInt32            _step;      // triangle number within the primitive
    Int32             _corner[3]; // vertices of the triangle within the primitive
};

OSG_END_NAMESPACE

#endif
