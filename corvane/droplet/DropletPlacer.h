#ifndef _DROPLETPLACER_H_
#define _DROPLETPLACER_H_

#include <OpenSG/OSGFBOViewport.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGTextureChunk.h>

#include <vector>

/// One droplet of the next placement: position in the 0..1 map space, edge
/// length of its quad in map units, and the peak it adds to the volume.
struct DropletSource
{
    /// A source at (x, y) with that quad size and volume.
    DropletSource(float x, float y, float size, float volume)
        : x(x), y(y), size(size), volume(volume)
    {
    }

    float x;      ///< position in the map, 0..1
    float y;      ///< position in the map, 0..1
    float size;   ///< edge length of the quad in map units
    float volume; ///< peak added to the fluid volume
};

/// Adds fluid to the droplet simulation: draws one textured quad per
/// droplet source additively into a surface map, so that the map's blue
/// channel (the fluid volume) gains a droplet-shaped bump. The shape is a
/// spherical cap for the fluid's contact angle, kept in a small texture.
class DropletPlacer
{
  public:
    /// Edge of the square droplet shape map in texels.
    static const int ShapeMapSize = 128;

    /// Writes into target, whose image gives the size of the placement
    /// pass. Starts with a shape for a contact angle just below a right
    /// angle and no sources.
    explicit DropletPlacer(osg::TextureChunkPtr target);
    ~DropletPlacer(void);

    /// The droplets of the next placement; render adds them to the map.
    /// @{
    void clear(void);
    void addSource(DropletSource source);
    const std::vector<DropletSource> &getSources(void) const { return _sources; }
    /// @}

    /// Height of the droplet cap at distance radius from its centre (1 is
    /// its foot), for y = -cos(contact angle).
    float calcDropletHeight(float radius, float y);

    /// Recomputes the shape map for a contact angle in radians.
    void rebuildShapeMap(float contactAngle);

    /// A group of one transformed, coloured unit quad per source.
    osg::NodePtr buildGeoFromSources(void);

    /// Builds the placement scene for the current sources; clear chooses
    /// whether the pass wipes the map first.
    void rebuildScene(bool clear);

    /// Adds the sources to the map (see the .cpp for when it rebuilds).
    void render(bool clear);

    /// The droplet shape, ShapeMapSize texels square.
    osg::TextureChunkPtr getShapeMap(void) const { return _shapeMap; }
    /// The viewport of the placement pass; NullFC before the first scene.
    osg::FBOViewportPtr  getFBOViewport(void) const { return _fboViewport; }

  private:
    DropletPlacer(const DropletPlacer &);
    void operator=(const DropletPlacer &);

    osg::FBOViewportPtr        _fboViewport;
    osg::TextureChunkPtr       _target;
    osg::TextureChunkPtr       _shapeMap;
    std::vector<DropletSource> _sources;
    bool                       _dirty;
};

#endif
