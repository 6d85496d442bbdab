/// Runs display filters over the viewport's finished image.
///
/// Each filter, in createFilter, asks for a group by name. A read-back group
/// (findReadbackGroup) first grabs the viewport's current image into a
/// texture (texture unit 0 of its material) and then draws a grid over the
/// whole viewport with that material; a filter adds its shader and further
/// textures (units 1, 2, ... when added with the default slot) to
/// getMaterial(). An overlay group (findOverlayGroup) grabs nothing and
/// draws over the image. Groups draw in the order they were first asked
/// for, each over the output of the ones before it.
///
/// The groups are built once: at the first draw, and again when `filter`
/// changes or a filter is enabled or disabled (which also releases all
/// chunks the filters added). updateFilter runs at every draw.
///
/// A filter's vertex stage sees gl_Vertex.xy in 0..1 across the viewport,
/// texture coordinate 0 in 0..1 through texture matrix 0, and ftransform()
/// maps the grid onto the viewport.
#ifndef _OSGDISPLAYFILTERFOREGROUND_H_
#define _OSGDISPLAYFILTERFOREGROUND_H_

#include <OpenSG/OSGDisplayFilterForegroundBase.h>
#include <OpenSG/OSGDisplayFilter.h>
#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>

#include <map>
#include <string>
#include <vector>

OSG_BEGIN_NAMESPACE

class DisplayFilterForeground : public DisplayFilterForegroundBase
{
  private:
    typedef DisplayFilterForegroundBase Inherited;

  public:
    /// What one group name stands for: a viewport over the filtered port
    /// whose scene is one grid with one material.
    class DisplayFilterGroup
    {
      public:
        /// Builds the viewport (referenced), its camera, scene and
        /// material, and appends the viewport to ports.
        DisplayFilterGroup(bool readback, std::vector<ViewportPtr> &ports);
        /// Releases the viewport and its scene, and with them everything
        /// the filters added.
        virtual ~DisplayFilterGroup(void);

        /// The grab texture (NullFC for an overlay group).
        TextureChunkPtr getTexture(void);
        GeometryPtr     getGeometry(void);
        /// Where filters add their chunks.
        ChunkMaterialPtr getMaterial(void);
        /// Transform above the grid (identity; filters may scale it).
        TransformPtr getTransform(void);
        ViewportPtr  getViewport(void);

        /// Replaces the grid by width x height vertices (each at least 2)
        /// over 0..1, row-major from the bottom row, with equal texture
        /// coordinates, as height - 1 triangle strips.
        void createGrid(UInt32 width, UInt32 height);

      private:
        DisplayFilterGroup(const DisplayFilterGroup &);
        void operator=(const DisplayFilterGroup &);

        ViewportPtr      _port;
        NodePtr          _root;
        TransformPtr     _transform;
        GeometryPtr      _geometry;
        ChunkMaterialPtr _material;
        TextureChunkPtr  _texture;
    };

    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    /// (Re)builds the groups if needed, updates the filters and renders the
    /// groups over port, with the action's window as their parent.
    virtual void draw(DrawActionBase *action, Viewport *port);

    /// The read-back group of that name, made at the first request.
    DisplayFilterGroup *findReadbackGroup(const std::string &name);
    /// The overlay group of that name (kept apart from read-back groups).
    DisplayFilterGroup *findOverlayGroup(const std::string &name);

  protected:
    DisplayFilterForeground(void);
    DisplayFilterForeground(const DisplayFilterForeground &source);
    virtual ~DisplayFilterForeground(void);

    virtual void onDestroy(void);

    /// Deletes every group.
    void clearGroups(void);

  private:
    friend class FieldContainer;
    friend class DisplayFilterForegroundBase;

    static void initMethod(void);

    /// The filters and their enabled flags as of the last build.
    bool buildIsCurrent(void) const;

    std::vector<ViewportPtr>                    _port;
    std::map<std::string, DisplayFilterGroup *> _group;
    std::vector<UInt32>                         _changedState;
    std::vector<DisplayFilter *>                _builtFilters;
    std::vector<bool>                           _builtEnabled;
    bool                                        _built;
    bool                                        _hasNonPowTwoTex;

    void operator=(const DisplayFilterForeground &source);
};

typedef DisplayFilterForeground *DisplayFilterForegroundP;

OSG_END_NAMESPACE

#endif
