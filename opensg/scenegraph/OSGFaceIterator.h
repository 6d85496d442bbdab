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

#include <OpenSG/OSGPrimitiveIterator.h>

OSG_BEGIN_NAMESPACE

class FaceIterator
{
  public:
    FaceIterator(void);
    explicit FaceIterator(const GeometryPtr &geo);
    explicit FaceIterator(const NodePtr &geo);

    void setGeo(const GeometryPtr &geo);
    void setGeo(const NodePtr &geo);

    void setToBegin(void);
    void setToEnd(void);
    /// Moves to face number index (to the end if there is none).
    void seek(Int32 index);

    FaceIterator &operator++(void);

    bool isAtEnd(void) const;

    /// The running number of the current face.
    Int32 getIndex(void) const { return _faceIndex; }
    /// 3 for a triangle, 4 for a quad.
    UInt32 getLength(void) const { return _length; }
    /// The GL type of the primitive the face comes from.
    UInt32 getType(void) const { return _primIt.getType(); }

    /// Where corner which's index tuple starts in the index array; -1
    /// without indices.
    Int32 getIndexIndex(Int32 which) const { return _primIt.getIndexIndex(_corner[which]); }

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

    GeometryPtr getGeometry(void) const { return _primIt.getGeometry(); }

    bool operator==(const FaceIterator &other) const;
    bool operator!=(const FaceIterator &other) const { return !(*this == other); }
    bool operator<(const FaceIterator &other) const;

  private:
    /// Finds the next face at or after the current position in the current
    /// primitive, moving on to later primitives as needed.
    void findFace(void);
    /// Corners of face step in the current primitive; false when the
    /// primitive has no more faces.
    bool setCorners(UInt32 step);

    PrimitiveIterator _primIt;
    Int32             _faceIndex;
    UInt32            _step;      // face number within the primitive
    UInt32            _length;    // corners of the current face
    Int32             _corner[4]; // vertices of the face within the primitive
};

OSG_END_NAMESPACE

#endif
