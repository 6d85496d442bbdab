#ifndef _OSGSORTEDPRIMITIVES_H_
#define _OSGSORTEDPRIMITIVES_H_

#include <OpenSG/OSGSortedPrimitivesBase.h>
#include <OpenSG/OSGAction.h>
#include <OpenSG/OSGGeoProperty.h>

#include <vector>

OSG_BEGIN_NAMESPACE

class DrawActionBase;
class PrimitivesDrawerBase;

/// The library-wide render-parameter word, 0 at start. Bit 0 set: sorted
/// primitives draw without re-ordering. The other bits are the application's.
/// @{
void   setRenderParams(UInt32 params);
UInt32 getRenderParams(void);
/// @}

/// A cloud of small primitive groups that re-orders itself by distance to
/// the viewer, so that blended groups come out back to front.
///
/// The vertex data of all groups lies in shared properties; each group has
/// one reference point and a span of indexArray (offsetArray[g] up to
/// offsetArray[g + 1]). Every fourth render pass the core sorts the groups
/// by their distance to the viewer, sorts the nearest part of that list a
/// second time by height, and the drawer writes their indices into the
/// indices property in that order, leaving out the farthest lowerBound
/// fraction. The other three passes draw indices as it stands.
class SortedPrimitives : public SortedPrimitivesBase
{
  private:
    typedef SortedPrimitivesBase Inherited;

  public:
    /// One group while the order is computed.
    struct Sorter
    {
        Real32 key;    ///< minus the squared distance to the viewer
        UInt32 index;  ///< the group
        Real32 height; ///< what the second sort orders by

        /// Ascending keys: the farthest group first.
        bool operator<(const Sorter &other) const { return key < other.key; }
        /// Lowest height first.
        static bool compareFunc(const Sorter &a, const Sorter &b) { return a.height < b.height; }
    };

    /// Ids of the extensions and functions the drawers use, registered by
    /// the first instance and shared by all.
    /// @{
    static UInt32 _arbMultitexture;
    static UInt32 _extDrawRangeElements;
    static UInt32 _funcClientActiveTextureARB;
    static UInt32 _funcDrawRangeElementsEXT;
    /// @}

    /// Refreshes the order in one pass of four, otherwise draws indices as
    /// it stands. Always continues.
    virtual Action::ResultE drawPrimitives(DrawActionBase *action);

    /// Rays pass through the cloud.
    Action::ResultE intersect(Action *action);

    /// The drawer for mode; NULL when a property is missing, offsetArray is
    /// too short (FFATAL for a missing indices) or mode is unknown.
    PrimitivesDrawerBase *findDrawer(void);

    /// The groups in drawing order (farthest first, then the nearest part by
    /// height); count receives their number. The caller owns the result when
    /// out is NULL (delete[]); otherwise out, which must hold as many ints
    /// as there are reference points, is filled and returned.
    int *calcIndex(DrawActionBase *action, UInt32 &count, int *out = NULL);

    /// Copies array into indexArray and sizes indices (made as a
    /// GeoIndicesUI32 if there is none) to match.
    void setIndexArray(const std::vector<int> *array);
    /// Copies array into offsetArray: group g spans indexArray from
    /// offsetArray[g] up to offsetArray[g + 1].
    void setOffsetArray(const std::vector<int> *array);

    /// Counted setters with the parent link, as Geometry's; the caller
    /// brackets them with the field's mask.
    /// @{
    void setRefPoints(const GeoPositionsPtr &value);
    void setPositions(const GeoPositionsPtr &value);
    void setColors(const GeoColorsPtr &value);
    void setNormals(const GeoNormalsPtr &value);
    void setTangents(const GeoNormalsPtr &value);
    void setTexCoords(const GeoTexCoordsPtr &value);
    void setIndices(const GeoIndicesPtr &value);
    /// @}

    /// New reference points invalidate the parents' volumes; edited properties are checked
    /// and the drawer is rebuilt as needed.
    virtual void changed(BitVector whichField, UInt32 origin);
    /// Logs "Dump <class> NI": the fields are not listed.
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    SortedPrimitives(void);
    /// Copies the fields; the factory clones the prototype through it.
    SortedPrimitives(const SortedPrimitives &source);
    virtual ~SortedPrimitives(void);

    /// Gives back the properties and the material.
    virtual void onDestroy(void);

    /// A sphere of the length of size around every reference point.
    virtual void adjustVolume(Volume &volume);

  private:
    friend class FieldContainer;
    friend class SortedPrimitivesBase;

    static void initMethod(void);

    SortedPrimitivesPtr getPtr(void) const;

    template <class PropPtrT>
    void setProperty(SField<PropPtrT> &field, const PropPtrT &value, UInt32 fieldId);
    template <class PropPtrT>
    void repairProperty(SField<PropPtrT> &field, BitVector fieldMask, UInt32 fieldId,
                        BitVector whichField, UInt32 origin);
    void releaseProperty(const AttachmentPtr &prop);

    void operator=(const SortedPrimitives &source);
};

typedef SortedPrimitives *SortedPrimitivesP;

OSG_END_NAMESPACE

#endif
