#include <OpenSG/BVGeometry.h>
#include <OpenSG/BitVolume.h>
#include <OpenSG/BlockVolume.h>
#include <OpenSG/VolumeData.h>
#include <OpenSG/OSGGeoProperty.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGLog.h>

OSG_USING_NAMESPACE

namespace
{

/// The cube's corners and its quads, each wound counter-clockwise from
/// outside.
const Real32 BoxCorners[8][3] = {{0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1},
                                 {0, 0, 0}, {0, 1, 0}, {1, 1, 0}, {1, 0, 0}};
const UInt32 BoxQuads[24]     = {0, 1, 2, 3, 1, 7, 6, 2, 4, 5, 6, 7,
                                 4, 0, 3, 5, 3, 2, 6, 5, 0, 4, 7, 1};

/// Whether 32-bit indices reach every corner of the lattice of a
/// w x h x d grid.
bool latticeFits(int w, int h, int d)
{
    return w >= 0 && h >= 0 && d >= 0 &&
           (UInt64(w) + 1) * (UInt64(h) + 1) * (UInt64(d) + 1) <= (UInt64(1) << 32);
}

GeometryPtr geometryOf(const NodePtr &node)
{
    if(node == NullFC)
        return NullFC;
    return GeometryPtr::dcast(node->getCore());
}

GeoPLengthsUI32Ptr lengthsOf(UInt32 count)
{
    GeoPLengthsUI32Ptr lengths = GeoPLengthsUI32::create();
    beginEditCP(lengths);
    lengths->getField().push_back(count);
    endEditCP(lengths);
    return lengths;
}

GeoPTypesUI8Ptr quadType(void)
{
    GeoPTypesUI8Ptr types = GeoPTypesUI8::create();
    beginEditCP(types);
    types->getField().push_back(GL_QUADS);
    endEditCP(types);
    return types;
}

/// The edges of the volume's block grid, read as 16-bit values as the
/// grid's image stores them; zeros without a grid.
void blockGridSize(VolumeData *volumeData, int &w, int &h, int &d)
{
    w = h = d = 0;
    if(volumeData == NULL || volumeData->getBlockVolume() == NULL)
        return;
    ImagePtr grid = volumeData->getBlockVolume()->getBlockVolumeImage();
    if(grid == NullFC)
        return;
    w = UInt16(grid->getWidth());
    h = UInt16(grid->getHeight());
    d = UInt16(grid->getDepth());
}

ImagePtr bitImageOf(VolumeData *volumeData)
{
    if(volumeData == NULL || volumeData->getBitVolume() == NULL)
        return NullFC;
    return volumeData->getBitVolume()->getBitVolumeImage();
}

/// One lattice step per cell; an empty axis gets no step, so its single
/// corner sits at 0 instead of at 0 times infinity.
Real32 latticeStep(double span, int cells)
{
    return cells > 0 ? Real32(span / cells) : 0.f;
}

/// Appends the corners of a w x h x d lattice, x fastest, each coordinate
/// the index times the step, times scale.
template <class Field>
void fillLattice(Field &field, int w, int h, int d, double span, Real32 scale)
{
    const Real32 sx = latticeStep(span, w);
    const Real32 sy = latticeStep(span, h);
    const Real32 sz = latticeStep(span, d);
    field.reserve(size_t(w + 1) * size_t(h + 1) * size_t(d + 1));
    for(int k = 0; k <= d; ++k)
        for(int j = 0; j <= h; ++j)
            for(int i = 0; i <= w; ++i)
                field.push_back(typename Field::StoredType(
                    Real32(i) * sx * scale, Real32(j) * sy * scale, Real32(k) * sz * scale));
}

/// A new Property with the corners of a w x h x d lattice, handed to
/// attach inside an edit of geometry with mask. False without a geometry
/// or for a lattice that indices can't reach.
template <class Property, class Attach>
bool attachLattice(const GeometryPtr &geometry,
                   int                w,
                   int                h,
                   int                d,
                   double             span,
                   Real32             scale,
                   BitVector          mask,
                   Attach             attach)
{
    if(geometry == NullFC || !latticeFits(w, h, d))
        return false;

    typename Property::PtrType property = Property::create();
    beginEditCP(property);
    fillLattice(property->getField(), w, h, d, span, scale);
    endEditCP(property);

    beginEditCP(geometry, mask);
    attach(geometry, property);
    endEditCP(geometry, mask);
    return true;
}

/// The faces of a bit grid as quads of lattice indices.
class FaceWriter
{
  public:
    FaceWriter(const UInt8 *bits, UInt32 w, UInt32 h, UInt32 d, MFUInt32 &out)
        : _bits(bits), _w(w), _h(h), _d(d), _r(w + 1), _s((w + 1) * (h + 1)), _out(out)
    {
    }

    void run(void)
    {
        if(_bits == NULL)
            return;
        for(UInt32 z = 0; z < _d; ++z)
        {
            for(UInt32 y = 0; y < _h; ++y)
            {
                const UInt8 *row    = _bits + (UInt64(z) * _h + y) * _w;
                const UInt8 *above  = y + 1 < _h ? row + _w : NULL;
                const UInt8 *behind = z + 1 < _d ? row + UInt64(_w) * _h : NULL;
                for(UInt32 x = 0; x < _w; ++x)
                {
                    const bool c  = row[x] != 0;
                    const bool ox = x + 1 < _w && row[x + 1] != 0;
                    const bool oy = above != NULL && above[x] != 0;
                    const bool oz = behind != NULL && behind[x] != 0;
                    // a skipped cell among skipped neighbours has no face
                    if(c || ox || oy || oz)
                        cell(x, y, z, c, ox, oy, oz);
                }
            }
        }
    }

  private:
    UInt32 corner(UInt32 x, UInt32 y, UInt32 z) const { return z * _s + y * _r + x; }

    void quad(UInt32 a, UInt32 b, UInt32 c, UInt32 d)
    {
        _out.push_back(a);
        _out.push_back(b);
        _out.push_back(c);
        _out.push_back(d);
    }

    /// The low faces of the grid are wound from outside; a face towards a
    /// skipped neighbour belongs to the visited cell and faces away from
    /// it, whichever of the two the loop is at. ox, oy, oz: the neighbour
    /// on the high side is visited (outside the grid it never is).
    void cell(UInt32 x, UInt32 y, UInt32 z, bool c, bool ox, bool oy, bool oz)
    {
        const bool   nx = ox && !c, ny = oy && !c, nz = oz && !c;
        const bool   ex = !ox, ey = !oy, ez = !oz;
        const UInt32 x1 = x + 1, y1 = y + 1, z1 = z + 1;
        if(c && x == 0)
            quad(corner(0, y, z), corner(0, y, z1), corner(0, y1, z1), corner(0, y1, z));
        if(c && y == 0)
            quad(corner(x, 0, z), corner(x1, 0, z), corner(x1, 0, z1), corner(x, 0, z1));
        if(c && z == 0)
            quad(corner(x, y, 0), corner(x, y1, 0), corner(x1, y1, 0), corner(x1, y, 0));
        if(nz)
            quad(corner(x, y, z1), corner(x, y1, z1), corner(x1, y1, z1), corner(x1, y, z1));
        if(nx)
            quad(corner(x1, y, z), corner(x1, y, z1), corner(x1, y1, z1), corner(x1, y1, z));
        if(ny)
            quad(corner(x, y1, z), corner(x1, y1, z), corner(x1, y1, z1), corner(x, y1, z1));
        if(c && ez)
            quad(corner(x, y, z1), corner(x1, y, z1), corner(x1, y1, z1), corner(x, y1, z1));
        if(c && ex)
            quad(corner(x1, y, z), corner(x1, y1, z), corner(x1, y1, z1), corner(x1, y, z1));
        if(c && ey)
            quad(corner(x, y1, z), corner(x, y1, z1), corner(x1, y1, z1), corner(x1, y1, z));
    }

    const UInt8 *_bits;
    UInt32       _w, _h, _d, _r, _s;
    MFUInt32    &_out;
};

} // namespace

// --- BVGeometry ------------------------------------------------------------------------

BVGeometry::BVGeometry(void) : _boundingGeometry(NullFC)
{
}

BVGeometry::~BVGeometry(void)
{
    releaseBoundingGeometry();
}

void BVGeometry::init(VolumeData *)
{
}

void BVGeometry::releaseBoundingGeometry(void)
{
    if(_boundingGeometry != NullFC)
        subRefCP(_boundingGeometry);
    _boundingGeometry = NullFC;
}

void BVGeometry::setBoundingGeometry(const NodePtr &node)
{
    addRefCP(node);
    releaseBoundingGeometry();
    _boundingGeometry = node;
}

// --- BoxGeometry -----------------------------------------------------------------------

bool BoxGeometry::createBoundingGeometry(VolumeData *)
{
    releaseBoundingGeometry();
    createBox();
    return _boundingGeometry != NullFC;
}

bool BoxGeometry::update(VolumeData *)
{
    return true;
}

void BoxGeometry::createBox(void)
{
    GeoPositions3fPtr positions = GeoPositions3f::create();
    GeoTexCoords3fPtr texCoords = GeoTexCoords3f::create();
    beginEditCP(positions);
    beginEditCP(texCoords);
    for(const Real32 *c : BoxCorners)
    {
        positions->getField().push_back(Pnt3f(c[0], c[1], c[2]));
        texCoords->getField().push_back(Vec3f(c[0], c[1], c[2]));
    }
    endEditCP(texCoords);
    endEditCP(positions);

    GeoIndicesUI32Ptr indices = GeoIndicesUI32::create();
    beginEditCP(indices);
    indices->getField().getValues().assign(BoxQuads, BoxQuads + 24);
    endEditCP(indices);

    GeometryPtr geometry = Geometry::create();
    beginEditCP(geometry);
    geometry->setPositions(positions);
    geometry->setTexCoords(texCoords);
    geometry->setIndices(indices);
    geometry->setTypes(quadType());
    geometry->setLengths(lengthsOf(24));
    endEditCP(geometry);

    setBoundingGeometry(makeNodeFor(geometry));
}

// --- BoundaryGeometry ------------------------------------------------------------------

BoundaryGeometry::BoundaryGeometry(void) : BVGeometry()
{
}

BoundaryGeometry::BoundaryGeometry(const BoundaryGeometry &source) : BVGeometry()
{
    if(source._boundingGeometry != NullFC)
        setBoundingGeometry(source._boundingGeometry);
}

bool BoundaryGeometry::createBoundingGeometry(VolumeData *volumeData)
{
    int w, h, d;
    blockGridSize(volumeData, w, h, d);
    if(!latticeFits(w, h, d))
    {
        FWARNING(("BoundaryGeometry: a block grid of %d x %d x %d is too large for a proxy\n",
                  w, h, d));
        return false;
    }

    createGeometry();
    createVertices(w, h, d);
    createTexCoords(w, h, d);
    createIndices(bitImageOf(volumeData), w, h, d);
    return true;
}

bool BoundaryGeometry::update(VolumeData *volumeData)
{
    if(geometryOf(_boundingGeometry) == NullFC)
        return false;

    int w, h, d;
    blockGridSize(volumeData, w, h, d);
    // faces of a grid larger than the lattice would index past its corners
    GeoPositions3fPtr positions =
        GeoPositions3fPtr::dcast(geometryOf(_boundingGeometry)->getPositions());
    if(positions == NullFC ||
       (UInt64(w) + 1) * (UInt64(h) + 1) * (UInt64(d) + 1) != positions->getField().size())
    {
        w = h = d = 0;
    }
    return createIndices(bitImageOf(volumeData), w, h, d);
}

void BoundaryGeometry::createGeometry(void)
{
    GeometryPtr geometry = Geometry::create();
    beginEditCP(geometry);
    geometry->setVbo(true);
    geometry->setTypes(quadType());
    endEditCP(geometry);

    setBoundingGeometry(makeNodeFor(geometry));
}

bool BoundaryGeometry::createVertices(int w, int h, int d)
{
    return attachLattice<GeoPositions3f>(
        geometryOf(_boundingGeometry), w, h, d, 1.0, 1.f, Geometry::PositionsFieldMask,
        [](const GeometryPtr &geometry, const GeoPositions3fPtr &p) { geometry->setPositions(p); });
}

bool BoundaryGeometry::createTexCoords(int w, int h, int d)
{
    // steps over twice the span, halved again: the same corners as the
    // positions up to rounding
    return attachLattice<GeoTexCoords3f>(
        geometryOf(_boundingGeometry), w, h, d, 2.0, 0.5f, Geometry::TexCoordsFieldMask,
        [](const GeometryPtr &geometry, const GeoTexCoords3fPtr &t) { geometry->setTexCoords(t); });
}

bool BoundaryGeometry::createIndices(ImagePtr bitImage, int w, int h, int d)
{
    GeometryPtr geometry = geometryOf(_boundingGeometry);
    if(geometry == NullFC)
        return false;
    if(!latticeFits(w, h, d))
        w = h = d = 0;

    // a bit grid smaller than it claims to be counts as all skipped
    const UInt64 cells = UInt64(w) * UInt64(h) * UInt64(d);
    const UInt8 *bits  = NULL;
    if(bitImage != NullFC && bitImage->getSize() >= cells)
        bits = bitImage->getData();

    GeoIndicesUI32Ptr indices = GeoIndicesUI32::create();
    beginEditCP(indices);
    FaceWriter(bits, UInt32(w), UInt32(h), UInt32(d), indices->getField()).run();
    endEditCP(indices);

    // The old properties lose their parent and their reference here. The
    // positions stay, but their mask goes with the edit: the geometry
    // bounds only the corners its faces use, and a proxy that was empty
    // (or smaller) would otherwise keep its old bounds and be culled.
    const BitVector mask = Geometry::LengthsFieldMask | Geometry::IndicesFieldMask |
                           Geometry::VboFieldMask | Geometry::PositionsFieldMask;
    beginEditCP(geometry, mask);
    geometry->setLengths(lengthsOf(indices->getField().size()));
    geometry->setIndices(indices);
    endEditCP(geometry, mask);
    return true;
}
