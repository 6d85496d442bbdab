#ifndef _BVGEOMETRY_H_
#define _BVGEOMETRY_H_

#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGNode.h>

class VolumeData;

/// The proxy geometry of the ray caster: the surface whose front and back
/// faces, drawn into position textures, give each ray its entry and exit
/// point.
///
/// Positions and texture coordinates run over the unit cube and are equal,
/// so every vertex carries its own place in the volume's 3-D texture; the
/// scene that holds the proxy scales it to the volume's size. Faces are
/// quads wound counter-clockwise as seen from outside the region they
/// enclose, so culling back faces keeps the entry side and culling front
/// faces the exit side.
///
/// BoxGeometry is the cube around the whole volume. BoundaryGeometry
/// follows the block grid of the volume and emits only the faces between a
/// block that is visited and one that is not, so rays start and stop at the
/// visible region.
class BVGeometry
{
  public:
    BVGeometry(void);
    /// Releases the proxy node.
    virtual ~BVGeometry(void);

    /// Builds the proxy for the volume into a new node.
    virtual bool createBoundingGeometry(VolumeData *volumeData) = 0;

    /// Makes the proxy follow a changed volume (the new visit bits) without
    /// rebuilding what stays.
    virtual bool update(VolumeData *volumeData) = 0;

    /// Nothing to prepare: the proxy is built by createBoundingGeometry.
    virtual void init(VolumeData *volumeData);

    /// The node whose core is the proxy's Geometry; NullFC before the first
    /// createBoundingGeometry.
    osg::NodePtr getBoundingGeometry(void) const { return _boundingGeometry; }

  protected:
    /// Drops the reference to the proxy node and leaves the pointer null.
    void releaseBoundingGeometry(void);

    /// Stores node (which holds a Geometry core) with one reference.
    void setBoundingGeometry(const osg::NodePtr &node);

    /// The proxy's node (a reference held).
    osg::NodePtr _boundingGeometry;

  private:
    BVGeometry(const BVGeometry &source);
    BVGeometry &operator=(const BVGeometry &source);
};

/// The unit cube: 8 vertices, 6 quads, one primitive of GL_QUADS.
class BoxGeometry : public BVGeometry
{
  public:
    /// Replaces the proxy by a new cube; the volume isn't looked at.
    bool createBoundingGeometry(VolumeData *volumeData) override;

    /// The cube fits every volume: true, nothing changes.
    bool update(VolumeData *volumeData) override;

    /// Builds the cube's node into the proxy.
    void createBox(void);

    /// The cube's node, as getBoundingGeometry.
    osg::NodePtr getBox(void) const { return _boundingGeometry; }
};

/// The boundary of the visited blocks: a lattice of the block corners,
/// built once for the size of the block grid, and quads between visited
/// and skipped blocks (and on the grid's outer faces), rebuilt whenever the
/// visit bits change.
class BoundaryGeometry : public BVGeometry
{
  public:
    BoundaryGeometry(void);
    /// Shares the proxy node of source.
    BoundaryGeometry(const BoundaryGeometry &source);

    /// A new node with the lattice for the volume's block grid and the
    /// faces of its bit grid. Without a block grid (or without a volume)
    /// the proxy is empty.
    bool createBoundingGeometry(VolumeData *volumeData) override;

    /// Replaces the faces (indices and lengths) from the volume's bit grid;
    /// the lattice stays, so the block grid must keep its size. False when
    /// there is no proxy yet.
    bool update(VolumeData *volumeData) override;

    /// A new node with a Geometry core (VBOs on) and one GL_QUADS type.
    void createGeometry(void);

    /// The (w+1) x (h+1) x (d+1) block corners, x fastest, as positions.
    /// False when the node has no Geometry core.
    bool createVertices(int w, int h, int d);

    /// The same lattice as texture coordinates.
    bool createTexCoords(int w, int h, int d);

    /// The quads between visited and skipped cells of the w x h x d bit
    /// grid (nonzero bytes are visited, anything outside is skipped), each
    /// facing away from its visited cell; they replace the indices and
    /// lengths of the Geometry. False when the node has no Geometry core.
    bool createIndices(osg::ImagePtr bitImage, int w, int h, int d);

  private:
    BoundaryGeometry &operator=(const BoundaryGeometry &source);
};

#endif
