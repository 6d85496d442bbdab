/// Walks the primitives of a geometry: the GL mode and length of each, and
/// for each of its vertices the index and value of every attribute, with
/// the index mapping resolved (no indices, single indices, or one index per
/// attribute group).
// Geometry includes the iterators at its end, so it comes first, outside
// the guard: whichever header is included first, the classes are complete
// in the right order.
#include <OpenSG/OSGGeometry.h>

#ifndef _OSGPRIMITIVEITERATOR_H_
#define _OSGPRIMITIVEITERATOR_H_

OSG_BEGIN_NAMESPACE

class PrimitiveIterator
{
  public:
    /// The attributes in index-mapping bit order (bit = 1 << attribute).
    enum Attribute
    {
        Positions       = 0,
        Normals         = 1,
        Colors          = 2,
        SecondaryColors = 3,
        TexCoords       = 4, // units 0..7 follow
        NumAttributes   = 12
    };

    PrimitiveIterator(void);
    explicit PrimitiveIterator(const GeometryPtr &geo);
    /// The geometry of the node's core (none if it is not a geometry).
    explicit PrimitiveIterator(const NodePtr &geo);

    void setGeo(const GeometryPtr &geo);
    void setGeo(const NodePtr &geo);

    void setToBegin(void);
    void setToEnd(void);
    /// Moves to primitive index (to the end if there is no such primitive).
    void seek(Int32 index);

    PrimitiveIterator &operator++(void);

    bool isAtEnd(void) const;

    /// The running number of the current primitive.
    Int32  getIndex(void) const { return _primIndex; }
    UInt32 getType(void) const { return _type; }
    UInt32 getLength(void) const { return _length; }

    /// Vertex number of the which-th vertex of this primitive within the
    /// whole geometry (the position in the index tuples).
    Int32 getVertexIndex(Int32 which) const { return Int32(_actPointIndex) + which; }

    /// Where the which-th vertex's index tuple starts in the index array
    /// (vertex number times the index-mapping entries); -1 without indices.
    Int32 getIndexIndex(Int32 which) const;

    /// The index of an attribute for the which-th vertex; -1 where the
    /// geometry has no such attribute or the mapping leaves it out.
    Int32 getAttribIndex(UInt32 attribute, Int32 which) const;

    Int32 getPositionIndex(Int32 which) const { return getAttribIndex(Positions, which); }
    Int32 getNormalIndex(Int32 which) const { return getAttribIndex(Normals, which); }
    Int32 getColorIndex(Int32 which) const { return getAttribIndex(Colors, which); }
    Int32 getSecondaryColorIndex(Int32 which) const
    {
        return getAttribIndex(SecondaryColors, which);
    }
    Int32 getTexCoordsIndex(Int32 which) const { return getAttribIndex(TexCoords, which); }
    Int32 getTexCoordsIndex1(Int32 which) const { return getAttribIndex(TexCoords + 1, which); }
    Int32 getTexCoordsIndex2(Int32 which) const { return getAttribIndex(TexCoords + 2, which); }
    Int32 getTexCoordsIndex3(Int32 which) const { return getAttribIndex(TexCoords + 3, which); }

    /// Attribute values; zero where the index is -1 or out of range.
    Pnt3f   getPosition(Int32 which) const;
    Vec3f   getNormal(Int32 which) const;
    Color3f getColor(Int32 which) const;
    Color3f getSecondaryColor(Int32 which) const;
    Vec2f   getTexCoords(Int32 which) const { return getTexCoordsN(0, which); }
    Vec2f   getTexCoords1(Int32 which) const { return getTexCoordsN(1, which); }
    Vec2f   getTexCoords2(Int32 which) const { return getTexCoordsN(2, which); }
    Vec2f   getTexCoords3(Int32 which) const { return getTexCoordsN(3, which); }
    Vec2f   getTexCoordsN(UInt32 unit, Int32 which) const;

    GeometryPtr getGeometry(void) const { return _geo; }

    bool operator==(const PrimitiveIterator &other) const;
    bool operator!=(const PrimitiveIterator &other) const { return !(*this == other); }
    bool operator<(const PrimitiveIterator &other) const;

  private:
    void startPrimitive(void);
    Int32 vertexIndex(UInt32 attribute, UInt32 vertex) const;

    GeometryPtr _geo;
    Int32       _primIndex;
    UInt32      _numPrimitives;
    UInt32      _actPointIndex;
    UInt32      _type;
    UInt32      _length;
    UInt32      _numVertices; // vertices the indices or positions provide
    bool        _haveBound;   // whether _numVertices limits the primitives
    UInt32      _numMappings; // index entries per vertex (at least 1)
    Int16       _mapIndex[NumAttributes];
};

/// What the triangle and face iterators share: a primitive iterator, the
/// running number of the current triangle or face, and its corners as
/// vertices of the current primitive. DerivedT finds the next triangle or
/// face (findNext) from _primIt and _step.
template <class DerivedT>
class PrimitiveCornerIterator
{
  public:
    void setGeo(const GeometryPtr &geo)
    {
        _primIt.setGeo(geo);
        setToBegin();
    }
    void setGeo(const NodePtr &geo)
    {
        _primIt.setGeo(geo);
        setToBegin();
    }

    void setToBegin(void)
    {
        _primIt.setToBegin();
        _index = 0;
        _step  = 0;
        derived().findNext();
    }
    void setToEnd(void)
    {
        _primIt.setToEnd();
        _index = 0;
        _step  = 0;
    }
    /// Moves to number index (to the end if there is none).
    void seek(Int32 index)
    {
        setToBegin();
        while(!isAtEnd() && _index < index)
            ++(*this);
    }

    DerivedT &operator++(void)
    {
        if(!isAtEnd())
        {
            ++_index;
            ++_step;
            derived().findNext();
        }
        return derived();
    }

    bool isAtEnd(void) const { return _primIt.isAtEnd(); }

    /// The running number of the current triangle or face.
    Int32 getIndex(void) const { return _index; }
    /// The GL type of the primitive it comes from.
    UInt32 getType(void) const { return _primIt.getType(); }
    const PrimitiveIterator &getPrimitiveIterator(void) const { return _primIt; }
    GeometryPtr getGeometry(void) const { return _primIt.getGeometry(); }

    /// Where corner which's index tuple starts in the index array; -1
    /// without indices.
    Int32 getIndexIndex(Int32 which) const { return _primIt.getIndexIndex(_corner[which]); }

    Int32 getAttribIndex(UInt32 attribute, Int32 which) const
    {
        return _primIt.getAttribIndex(attribute, _corner[which]);
    }
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
    Vec2f getTexCoordsN(UInt32 unit, Int32 which) const
    {
        return _primIt.getTexCoordsN(unit, _corner[which]);
    }

    bool operator==(const DerivedT &other) const
    {
        if(getGeometry() != other.getGeometry() || isAtEnd() != other.isAtEnd())
            return false;
        return isAtEnd() || _index == other._index;
    }
    bool operator!=(const DerivedT &other) const { return !(*this == other); }
    bool operator<(const DerivedT &other) const
    {
        if(getGeometry() != other.getGeometry() || isAtEnd())
            return false;
        return other.isAtEnd() || _index < other._index;
    }

  protected:
    PrimitiveCornerIterator(void) : _primIt(), _index(0), _step(0), _corner{0, 0, 0, 0} {}

    DerivedT &derived(void) { return static_cast<DerivedT &>(*this); }

    PrimitiveIterator _primIt;
    Int32             _index;
    UInt32            _step;      // number within the current primitive
    Int32             _corner[4]; // vertices within the current primitive
};

OSG_END_NAMESPACE

#endif
