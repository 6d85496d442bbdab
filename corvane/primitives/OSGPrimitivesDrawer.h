#ifndef _OSGPRIMITIVESDRAWER_H_
#define _OSGPRIMITIVESDRAWER_H_

#include <OpenSG/OSGBaseTypes.h>
#include <OpenSG/OSGGL.h>

OSG_BEGIN_NAMESPACE

class DrawActionBase;
class SortedPrimitives;

/// The drawers of SortedPrimitives: they turn the core's vertex arrays into
/// OpenGL draw calls and, in the passes that refresh the order, rewrite its
/// element list from the group table. One template, instantiated for
/// triangle groups and quad groups; process-wide singletons without members.
class PrimitivesDrawerBase
{
  public:
    virtual ~PrimitivesDrawerBase(void) {}

    /// Writes groups 0 to num - 1 (less the lowerBound fraction) into
    /// indices and draws them; the number of elements written.
    virtual UInt32 draw(SortedPrimitives *prims, DrawActionBase *action, UInt32 num) = 0;
    /// The same for the groups order[0] to order[num - 1].
    virtual UInt32 drawIndexed(SortedPrimitives *prims, DrawActionBase *action, int *order,
                               UInt32 num) = 0;
    /// Draws the first indicesSize elements of indices as they stand.
    virtual UInt32 drawIndexed(SortedPrimitives *prims, DrawActionBase *action) = 0;
};

/// Triangle groups: written three entries a step through the property's
/// setValue; a group that is no multiple of three runs on into the next.
struct GeoTraitTriSet
{
    static const GLenum Primitive = GL_TRIANGLES; ///< what is drawn
};

/// Quad groups: each group is copied into indices in one block.
struct GeoTraitQuadSet
{
    static const GLenum Primitive = GL_QUADS; ///< what is drawn
};

/// The client-array state that both drawers set up and take down.
struct SortedPrimitivesTraits
{
    /// Enables the arrays of the core's properties (flag records which)
    /// and disables them again.
    /// @{
    static void init(SortedPrimitives *prims, DrawActionBase *action, unsigned char &flag);
    static void exit(SortedPrimitives *prims, DrawActionBase *action, unsigned char &flag);
    /// @}
};

/// The drawer of one group shape (GeoTraitTriSet or GeoTraitQuadSet).
template <class TraitT>
class PrimitivesDrawer : public PrimitivesDrawerBase
{
  public:
    virtual UInt32 draw(SortedPrimitives *prims, DrawActionBase *action, UInt32 num);
    virtual UInt32 drawIndexed(SortedPrimitives *prims, DrawActionBase *action, int *order,
                               UInt32 num);
    virtual UInt32 drawIndexed(SortedPrimitives *prims, DrawActionBase *action);

  private:
    /// Writes the groups into indices; order NULL means the stored order.
    static UInt32 rebuild(SortedPrimitives *prims, const int *order, UInt32 num);
};

OSG_END_NAMESPACE

#endif
