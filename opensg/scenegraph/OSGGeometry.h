/// Polygonal geometry: a list of primitives (GL mode and vertex count each),
/// vertex properties (positions, normals, colours, texture coordinates) and
/// optional indices, single or multi (one index per attribute group, as the
/// index mapping says).
///
/// Properties are shared containers. A geometry holds a counted reference
/// to each of its properties and is recorded in the property's parents with
/// the id of the field that holds it, so that editing a property's data
/// reaches the geometry as a change of that field: the cached volume and the
/// display list follow the data.
///
/// Drawing goes through the window's GL-object registry: one display list
/// per window (dlistCache), or vertex buffer objects (vbo) for
/// single-indexed geometry where the window has them.
#ifndef _OSGGEOMETRY_H_
#define _OSGGEOMETRY_H_

#include <OpenSG/OSGGeometryBase.h>
#include <OpenSG/OSGGeoProperty.h>
#include <OpenSG/OSGDynamicVolume.h>
#include <OpenSG/OSGAction.h>
#include <OpenSG/OSGActorBase.h>
#include <OpenSG/OSGTypedFunctors.h>

OSG_BEGIN_NAMESPACE

class DrawActionBase;
class Window;
class GeoVBO;
class PrimitiveIterator;
class TriangleIterator;
class FaceIterator;

class Geometry : public GeometryBase
{
  private:
    typedef GeometryBase Inherited;

  public:
    // bits of the index mapping: which attributes an index entry drives
    static constexpr UInt16 MapPosition       = 0x0001;
    static constexpr UInt16 MapNormal         = 0x0002;
    static constexpr UInt16 MapColor          = 0x0004;
    static constexpr UInt16 MapSecondaryColor = 0x0008;
    static constexpr UInt16 MapTexCoords      = 0x0010;
    static constexpr UInt16 MapTexCoords1     = 0x0020;
    static constexpr UInt16 MapTexCoords2     = 0x0040;
    static constexpr UInt16 MapTexCoords3     = 0x0080;
    static constexpr UInt16 MapTexCoords4     = 0x0100;
    static constexpr UInt16 MapTexCoords5     = 0x0200;
    static constexpr UInt16 MapTexCoords6     = 0x0400;
    static constexpr UInt16 MapTexCoords7     = 0x0800;
    static constexpr UInt16 MapEmpty          = 0x1000;

    /// "Triangles", "TriangleStrip", ... for a GL primitive mode.
    static const char *mapType(UInt8 type);

    GeometryPtr getPtr(void) const;

    // --- property setters: counted, with the parent link ---------------------
    // They open no edit on the geometry; the caller brackets them with the
    // field's mask.

    void setTypes(const GeoPTypesPtr &value);
    void setLengths(const GeoPLengthsPtr &value);
    void setPositions(const GeoPositionsPtr &value);
    void setNormals(const GeoNormalsPtr &value);
    void setColors(const GeoColorsPtr &value);
    void setSecondaryColors(const GeoColorsPtr &value);
    void setTexCoords(const GeoTexCoordsPtr &value);
    void setTexCoords1(const GeoTexCoordsPtr &value);
    void setTexCoords2(const GeoTexCoordsPtr &value);
    void setTexCoords3(const GeoTexCoordsPtr &value);
    void setTexCoords4(const GeoTexCoordsPtr &value);
    void setTexCoords5(const GeoTexCoordsPtr &value);
    void setTexCoords6(const GeoTexCoordsPtr &value);
    void setTexCoords7(const GeoTexCoordsPtr &value);
    void setIndices(const GeoIndicesPtr &value);

    // --- index mapping --------------------------------------------------------

    /// The highest index-tuple entry that drives any of the attribute bits,
    /// -1 if none does (always -1 for an empty mapping).
    Int16 calcMappingIndex(UInt16 attrib) const;
    /// True unless the mapping has two or more entries.
    bool isSingleIndex(void) const;

    // --- drawing ------------------------------------------------------------

    /// Draws from the VBO record, the display list or directly, and adds
    /// the cached counts to the action's statistics.
    virtual Action::ResultE drawPrimitives(DrawActionBase *action);

    /// The array view of the property a Map... constant names; NULL for an
    /// unset property and for 0.
    virtual GeoPropertyArrayInterface *getProperty(Int32 mapID);

    /// Asks every window to recompile this geometry.
    void invalidateDlistCache(void);

    /// The VBO record of this geometry in win, NULL if it has none.
    GeoVBO *getVboObject(Window *win);

    // --- picking -----------------------------------------------------------

    /// IntersectAction enter functor: tests the action's line against every
    /// triangle and reports the nearest hit.
    Action::ResultE intersect(Action *action);
    /// The same for the intersect actor.
    NewActionTypes::ResultE intersectActor(ActorBase::FunctorArgumentType &funcArg);

    // --- iteration ----------------------------------------------------------

    PrimitiveIterator beginPrimitives(void) const;
    PrimitiveIterator endPrimitives(void) const;
    TriangleIterator  beginTriangles(void) const;
    TriangleIterator  endTriangles(void) const;
    FaceIterator      beginFaces(void) const;
    FaceIterator      endFaces(void) const;

    /// A new geometry with copies of every property and the same material.
    GeometryPtr clone(void);

    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    Geometry(void);
    Geometry(const Geometry &source);
    virtual ~Geometry(void);

    /// Registers the two GL-object ids (display list, VBO record).
    void onCreate(const Geometry *source = NULL);
    /// Gives back the GL objects, the properties and the material.
    virtual void onDestroy(void);

    virtual void adjustVolume(Volume &volume);

    /// The GL-object callback: builds, rebuilds and frees the display list
    /// or the VBO record of one window.
    void handleGL(Window *win, UInt32 idstatus);
    /// What handleGL does for destroy: it needs only the window and the id,
    /// since the window calls it after the geometry has gone.
    static void handleDestroyGL(Window *win, UInt32 idstatus);

    /// Draws from this geometry's VBO record in win; false if it has none.
    bool drawVBO(Window *win, UInt32 id);

    /// Refreshes the counts the statistics get and the bytes on the card.
    void updateCachedGeoStat(void);

  private:
    friend class FieldContainer;
    friend class GeometryBase;

    static void initMethod(void);

    /// The callback registered with the window: destroy requests go to
    /// handleDestroyGL and never touch the (by then deleted) geometry.
    static TypedFunctor2Base<void, PtrCallArg<Window>, ArgsCollector<UInt32> >
    makeGLFunctor(GeometryPtr geo);

    /// The procedure shared by all property setters.
    template <class PropPtrT>
    void setProperty(SField<PropPtrT> &field, const PropPtrT &value, UInt32 fieldId);

    /// Re-links a property after a loader filled the field directly.
    template <class PropPtrT>
    void repairProperty(SField<PropPtrT> &field, BitVector fieldMask, UInt32 fieldId,
                        BitVector whichField, UInt32 origin);

    void releaseProperty(AttachmentPtr prop);
    void updateIndexRanges(void);

    DynamicVolume _volumeCache;

    UInt32 _numTriangles;
    UInt32 _numLines;
    UInt32 _numPoints;
    UInt32 _numVertices;
    UInt32 _numPrimitives;
    UInt32 _numBytesOnGfxCard;

    void operator=(const Geometry &source);
};

typedef Geometry *GeometryP;

OSG_END_NAMESPACE

#include <OpenSG/OSGPrimitiveIterator.h>
#include <OpenSG/OSGTriangleIterator.h>
#include <OpenSG/OSGFaceIterator.h>

#endif
