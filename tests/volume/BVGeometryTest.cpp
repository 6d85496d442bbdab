// The proxy geometries of the ray caster: the box, and the boundary of the
// visited blocks. Face counts and lattices are checked on the CPU, the
// winding both on the CPU (every quad faces away from its visited cell) and
// by rendering with culling on: back-face culling must leave the entry side
// of the proxy, front-face culling the exit side.
#include <OpenSG/BVGeometry.h>
#include <OpenSG/BitVolume.h>
#include <OpenSG/BlockVolume.h>
#include <OpenSG/VolumeData.h>
#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGGeoProperty.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGPolygonChunk.h>
#include <OpenSG/OSGSHLChunk.h>

#include "window/WindowTestSupport.h"

#include <array>
#include <cstdio>
#include <string>
#include <vector>

using namespace osg;

namespace bvgeometrytest
{

/// A block grid and its visit bits, made the way the handler makes them,
/// with the cells' value ranges written by hand: a visited cell holds
/// value 100 alone, which is opaque, a skipped one value 50, which isn't.
class Grid
{
  public:
    Grid(int w, int h, int d) : _w(w), _h(h), _d(d)
    {
        ImagePtr image = Image::create();
        image->set(GL_LUMINANCE, 8 * w, 8 * h, 8 * d, 1, 1, 0.0, NULL, GL_UNSIGNED_BYTE, true, 1);
        TextureChunkPtr chunk = TextureChunk::create();
        beginEditCP(chunk);
        chunk->setImage(image);
        endEditCP(chunk);
        LogCapture quiet;
        testing::internal::CaptureStdout();
        volume.setVolume(chunk, false);
        volume.setBlockVolume(new BlockVolume);
        volume.getBlockVolume()->calcBlockVolumen(volume, 8);
        std::fflush(stdout);
        testing::internal::GetCapturedStdout();
        volume.setBitVolume(new BitVolume);

        // the opacity summed up to each value: all of it sits at 100
        _sum = Image::create();
        addRefCP(_sum);
        _sum->set(GL_LUMINANCE, 256, 1, 1, 1, 1, 0.0, NULL, GL_FLOAT, true, 1);
        Real32 *s = reinterpret_cast<Real32 *>(_sum->getData());
        for(int i = 0; i < 256; ++i)
            s[i] = i >= 100 ? 1.f : 0.f;
    }

    ~Grid(void) { subRefCP(_sum); }

    /// Marks the cells whose character in cells ('#' visited, '.' skipped,
    /// x fastest, then y, then z) and rebuilds the bit grid.
    void set(const std::string &cells)
    {
        ASSERT_EQ(cells.size(), size_t(_w * _h * _d));
        UInt8 *ranges = volume.getBlockVolume()->getBlockVolumeImage()->getData();
        for(size_t i = 0; i < cells.size(); ++i)
            ranges[2 * i] = ranges[2 * i + 1] = cells[i] == '#' ? 100 : 50;
        ASSERT_TRUE(volume.getBitVolume()->calcBitVolumen(
            volume.getBlockVolume()->getBlockVolumeImage(), _sum));
        const UInt8 *bits = volume.getBitVolume()->getBitVolumeImage()->getData();
        for(size_t i = 0; i < cells.size(); ++i)
            ASSERT_EQ(bits[i] != 0, cells[i] == '#') << "cell " << i;
    }

    /// Every cell visited, or every cell but the ones listed skipped.
    void fill(char c) { set(std::string(size_t(_w * _h * _d), c)); }

    bool visited(int x, int y, int z) const
    {
        if(x < 0 || y < 0 || z < 0 || x >= _w || y >= _h || z >= _d)
            return false;
        return volume.getBitVolume()->getBitVolumeImage()->getData()[(z * _h + y) * _w + x] != 0;
    }

    VolumeData volume;

  private:
    int      _w, _h, _d;
    ImagePtr _sum;
};

GeometryPtr geometryOf(const BVGeometry &proxy)
{
    return proxy.getBoundingGeometry() == NullFC
               ? GeometryPtr(NullFC)
               : GeometryPtr::dcast(proxy.getBoundingGeometry()->getCore());
}

typedef std::array<Pnt3f, 4> Quad;

/// The quads of a geometry of one GL_QUADS primitive, as corner positions.
std::vector<Quad> quadsOf(const GeometryPtr &geo)
{
    std::vector<Quad> quads;
    const MFUInt32 &indices   = GeoIndicesUI32Ptr::dcast(geo->getIndices())->getField();
    const MFPnt3f  &positions = GeoPositions3fPtr::dcast(geo->getPositions())->getField();
    EXPECT_EQ(indices.size() % 4, 0u);
    for(UInt32 i = 0; i + 3 < indices.size(); i += 4)
    {
        Quad q;
        for(UInt32 c = 0; c < 4; ++c)
        {
            EXPECT_LT(indices[i + c], positions.size());
            q[c] = positions[indices[i + c]];
        }
        quads.push_back(q);
    }
    return quads;
}

/// True when every quad is planar, axis aligned, one cell in size, wound
/// counter-clockwise as seen from the skipped side, and separates a visited
/// cell (behind it) from a skipped one (in front of it).
void expectFacesAwayFromVisitedCells(const std::vector<Quad> &quads, const Grid &grid,
                                     int w, int h, int d)
{
    const Vec3f cell(1.f / w, 1.f / h, 1.f / d);
    for(size_t i = 0; i < quads.size(); ++i)
    {
        const Quad &q      = quads[i];
        Vec3f       normal = (q[1] - q[0]).cross(q[2] - q[1]);
        Pnt3f       centre = q[0] + ((q[2] - q[0]) * 0.5f);
        normal.normalize();
        // half a cell along the normal lands in the cells on either side
        Pnt3f front = centre, back = centre;
        for(int a = 0; a < 3; ++a)
        {
            front[a] += normal[a] * cell[a] * 0.5f;
            back[a] -= normal[a] * cell[a] * 0.5f;
        }
        auto cellOf = [&](const Pnt3f &p, int a) { return int(std::floor(p[a] / cell[a])); };
        EXPECT_TRUE(grid.visited(cellOf(back, 0), cellOf(back, 1), cellOf(back, 2)))
            << "quad " << i << " has no visited cell behind it";
        EXPECT_FALSE(grid.visited(cellOf(front, 0), cellOf(front, 1), cellOf(front, 2)))
            << "quad " << i << " has a visited cell in front of it";
        EXPECT_NEAR(std::fabs(normal[0]) + std::fabs(normal[1]) + std::fabs(normal[2]), 1.f, 1e-5f)
            << "quad " << i << " isn't axis aligned";
        EXPECT_NEAR((q[3] - q[0]).dot(normal), 0.f, 1e-6f) << "quad " << i << " isn't planar";
    }
}

/// The quads of a geometry as a set of corner lists, each list rotated so
/// that it starts at its smallest corner: equal sets mean equal surfaces
/// with equal winding.
std::vector<std::array<Real32, 12>> surfaceOf(const std::vector<Quad> &quads)
{
    std::vector<std::array<Real32, 12>> surface;
    for(const Quad &q : quads)
    {
        size_t first = 0;
        for(size_t c = 1; c < 4; ++c)
            if(std::lexicographical_compare(q[c].getValues(), q[c].getValues() + 3,
                                            q[first].getValues(), q[first].getValues() + 3))
                first = c;
        std::array<Real32, 12> flat;
        for(size_t c = 0; c < 4; ++c)
            for(size_t a = 0; a < 3; ++a)
                flat[c * 3 + a] = q[(first + c) % 4][a];
        surface.push_back(flat);
    }
    std::sort(surface.begin(), surface.end());
    return surface;
}

UInt32 lengthOf(const GeometryPtr &geo)
{
    const MFUInt32 &lengths = GeoPLengthsUI32Ptr::dcast(geo->getLengths())->getField();
    EXPECT_EQ(lengths.size(), 1u);
    return lengths.empty() ? 0 : lengths[0];
}

} // namespace bvgeometrytest

using namespace bvgeometrytest;

// --- the box ---------------------------------------------------------------------------

TEST(BoxGeometry, IsTheUnitCubeWithEqualPositionsAndTextureCoordinates)
{
    BoxGeometry box;
    EXPECT_EQ(box.getBoundingGeometry(), NullFC);
    ASSERT_TRUE(box.createBoundingGeometry(NULL)) << "the box doesn't look at the volume";
    EXPECT_EQ(box.getBox(), box.getBoundingGeometry());

    GeometryPtr geo = geometryOf(box);
    ASSERT_NE(geo, NullFC);
    const MFPnt3f &positions = GeoPositions3fPtr::dcast(geo->getPositions())->getField();
    const MFVec3f &texCoords = GeoTexCoords3fPtr::dcast(geo->getTexCoords())->getField();
    ASSERT_EQ(positions.size(), 8u);
    ASSERT_EQ(texCoords.size(), 8u);
    const Real32 corners[8][3] = {{0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1},
                                  {0, 0, 0}, {0, 1, 0}, {1, 1, 0}, {1, 0, 0}};
    for(int v = 0; v < 8; ++v)
    {
        EXPECT_EQ(positions[v], Pnt3f(corners[v][0], corners[v][1], corners[v][2])) << v;
        EXPECT_EQ(texCoords[v], Vec3f(corners[v][0], corners[v][1], corners[v][2])) << v;
    }
    const UInt32 expected[24] = {0, 1, 2, 3, 1, 7, 6, 2, 4, 5, 6, 7,
                                 4, 0, 3, 5, 3, 2, 6, 5, 0, 4, 7, 1};
    const MFUInt32 &indices = GeoIndicesUI32Ptr::dcast(geo->getIndices())->getField();
    ASSERT_EQ(indices.size(), 24u);
    for(int i = 0; i < 24; ++i)
        EXPECT_EQ(indices[i], expected[i]) << i;
    const MFUInt8 &types = GeoPTypesUI8Ptr::dcast(geo->getTypes())->getField();
    ASSERT_EQ(types.size(), 1u);
    EXPECT_EQ(types[0], UInt8(GL_QUADS));
    EXPECT_EQ(lengthOf(geo), 24u);
    EXPECT_EQ(geo->getNormals(), NullFC);
    EXPECT_EQ(geo->getMaterial(), NullFC);
    EXPECT_FALSE(geo->getVbo());
}

TEST(BoxGeometry, UpdateChangesNothingAndCreateReplacesTheNode)
{
    BoxGeometry box;
    ASSERT_TRUE(box.createBoundingGeometry(NULL));
    NodePtr     first   = box.getBox();
    GeometryPtr geo     = geometryOf(box);
    GeoIndicesPtr index = geo->getIndices();

    Grid grid(2, 1, 1);
    grid.set("#.");
    EXPECT_TRUE(box.update(&grid.volume));
    EXPECT_TRUE(box.update(NULL));
    EXPECT_EQ(box.getBox(), first);
    EXPECT_EQ(geo->getIndices(), index);

    addRefCP(first);
    ASSERT_TRUE(box.createBoundingGeometry(&grid.volume));
    EXPECT_NE(box.getBox(), first);
    EXPECT_EQ(first.getRefCount(), 1) << "the box let go of its former node";
    subRefCP(first);
}

// --- the boundary: faces -----------------------------------------------------------------

TEST(BoundaryGeometry, OneVisitedCellIsTheBoxSurface)
{
    Grid grid(1, 1, 1);
    grid.fill('#');
    BoundaryGeometry boundary;
    ASSERT_TRUE(boundary.createBoundingGeometry(&grid.volume));
    GeometryPtr geo = geometryOf(boundary);
    ASSERT_NE(geo, NullFC);
    EXPECT_TRUE(geo->getVbo());
    EXPECT_EQ(GeoPositions3fPtr::dcast(geo->getPositions())->getField().size(), 8u);
    EXPECT_EQ(lengthOf(geo), 24u);

    BoxGeometry box;
    box.createBoundingGeometry(NULL);
    EXPECT_EQ(surfaceOf(quadsOf(geo)), surfaceOf(quadsOf(geometryOf(box))))
        << "the same six faces with the same winding";
}

TEST(BoundaryGeometry, FullGridGivesOnlyTheHull)
{
    const int w = 3, h = 2, d = 4;
    Grid      grid(w, h, d);
    grid.fill('#');
    BoundaryGeometry boundary;
    ASSERT_TRUE(boundary.createBoundingGeometry(&grid.volume));
    std::vector<Quad> quads = quadsOf(geometryOf(boundary));
    EXPECT_EQ(quads.size(), size_t(2 * (w * h + h * d + w * d)));
    EXPECT_EQ(lengthOf(geometryOf(boundary)), quads.size() * 4);
    expectFacesAwayFromVisitedCells(quads, grid, w, h, d);
}

TEST(BoundaryGeometry, OneSkippedCellInsideGetsSixFacesTowardsIt)
{
    Grid grid(3, 3, 3);
    std::string cells(27, '#');
    cells[13] = '.'; // (1, 1, 1)
    grid.set(cells);
    BoundaryGeometry boundary;
    ASSERT_TRUE(boundary.createBoundingGeometry(&grid.volume));
    std::vector<Quad> quads = quadsOf(geometryOf(boundary));
    EXPECT_EQ(quads.size(), 54u + 6u);
    expectFacesAwayFromVisitedCells(quads, grid, 3, 3, 3);
}

TEST(BoundaryGeometry, ScatteredCellsAreEnclosedOnce)
{
    // every pattern of a 2 x 2 x 2 grid: each face between a visited and a
    // skipped cell (the outside counting as skipped) exactly once
    for(int pattern = 0; pattern < 256; ++pattern)
    {
        Grid        grid(2, 2, 2);
        std::string cells;
        for(int c = 0; c < 8; ++c)
            cells += (pattern >> c) & 1 ? '#' : '.';
        grid.set(cells);
        size_t boundaryFaces = 0;
        for(int z = 0; z < 2; ++z)
            for(int y = 0; y < 2; ++y)
                for(int x = 0; x < 2; ++x)
                    if(grid.visited(x, y, z))
                        boundaryFaces += !grid.visited(x - 1, y, z) + !grid.visited(x + 1, y, z) +
                                         !grid.visited(x, y - 1, z) + !grid.visited(x, y + 1, z) +
                                         !grid.visited(x, y, z - 1) + !grid.visited(x, y, z + 1);
        BoundaryGeometry boundary;
        ASSERT_TRUE(boundary.createBoundingGeometry(&grid.volume));
        std::vector<Quad> quads = quadsOf(geometryOf(boundary));
        EXPECT_EQ(quads.size(), boundaryFaces) << cells;
        expectFacesAwayFromVisitedCells(quads, grid, 2, 2, 2);
        std::vector<std::array<Real32, 12>> surface = surfaceOf(quads);
        EXPECT_EQ(std::adjacent_find(surface.begin(), surface.end()), surface.end())
            << cells << ": a face came out twice";
    }
}

TEST(BoundaryGeometry, EmptyGridGivesNoFace)
{
    Grid grid(4, 3, 2);
    grid.fill('.');
    BoundaryGeometry boundary;
    ASSERT_TRUE(boundary.createBoundingGeometry(&grid.volume));
    GeometryPtr geo = geometryOf(boundary);
    EXPECT_EQ(GeoIndicesUI32Ptr::dcast(geo->getIndices())->getField().size(), 0u);
    EXPECT_EQ(lengthOf(geo), 0u);
}

// --- the boundary: lattice and updates -----------------------------------------------------

TEST(BoundaryGeometry, LatticeSpansTheUnitCubeWithTextureCoordinatesEqualToPositions)
{
    const int w = 3, h = 5, d = 7;
    Grid      grid(w, h, d);
    grid.fill('#');
    BoundaryGeometry boundary;
    ASSERT_TRUE(boundary.createBoundingGeometry(&grid.volume));
    GeometryPtr    geo       = geometryOf(boundary);
    const MFPnt3f &positions = GeoPositions3fPtr::dcast(geo->getPositions())->getField();
    const MFVec3f &texCoords = GeoTexCoords3fPtr::dcast(geo->getTexCoords())->getField();
    ASSERT_EQ(positions.size(), size_t((w + 1) * (h + 1) * (d + 1)));
    ASSERT_EQ(texCoords.size(), positions.size());
    const Real32 sx = Real32(1.0 / w), sy = Real32(1.0 / h), sz = Real32(1.0 / d);
    for(int k = 0; k <= d; ++k)
        for(int j = 0; j <= h; ++j)
            for(int i = 0; i <= w; ++i)
            {
                const size_t v = size_t(k * (w + 1) * (h + 1) + j * (w + 1) + i);
                EXPECT_EQ(positions[v], Pnt3f(i * sx, j * sy, k * sz)) << i << ' ' << j << ' ' << k;
                for(int a = 0; a < 3; ++a)
                    EXPECT_NEAR(texCoords[v][a], positions[v][a], 1e-6f);
            }
    EXPECT_NEAR(positions[positions.size() - 1][0], 1.f, 1e-6f);
    EXPECT_NEAR(positions[positions.size() - 1][2], 1.f, 1e-6f);
}

TEST(BoundaryGeometry, UpdateReplacesOnlyIndicesAndLengths)
{
    Grid grid(3, 3, 3);
    grid.fill('#');
    BoundaryGeometry boundary;
    EXPECT_FALSE(boundary.update(&grid.volume)) << "nothing to update yet";
    ASSERT_TRUE(boundary.createBoundingGeometry(&grid.volume));

    NodePtr          node      = boundary.getBoundingGeometry();
    GeometryPtr      geo       = geometryOf(boundary);
    GeoPositionsPtr  positions = geo->getPositions();
    GeoTexCoordsPtr  texCoords = geo->getTexCoords();
    GeoPTypesPtr     types     = geo->getTypes();
    GeoIndicesPtr    indices   = geo->getIndices();
    GeoPLengthsPtr   lengths   = geo->getLengths();
    addRefCP(indices);
    addRefCP(lengths);

    std::string cells(27, '.');
    cells[0] = '#';
    grid.set(cells);
    ASSERT_TRUE(boundary.update(&grid.volume));

    EXPECT_EQ(boundary.getBoundingGeometry(), node);
    EXPECT_EQ(geometryOf(boundary), geo);
    EXPECT_EQ(geo->getPositions(), positions);
    EXPECT_EQ(geo->getTexCoords(), texCoords);
    EXPECT_EQ(geo->getTypes(), types);
    EXPECT_NE(geo->getIndices(), indices);
    EXPECT_NE(geo->getLengths(), lengths);
    EXPECT_EQ(indices.getRefCount(), 1) << "the geometry let go of the old indices";
    EXPECT_EQ(indices->findParent(geo), -1);
    EXPECT_EQ(lengths.getRefCount(), 1);
    subRefCP(indices);
    subRefCP(lengths);

    std::vector<Quad> quads = quadsOf(geo);
    EXPECT_EQ(quads.size(), 6u);
    expectFacesAwayFromVisitedCells(quads, grid, 3, 3, 3);
}

TEST(BoundaryGeometry, CopySharesTheNode)
{
    Grid grid(1, 1, 1);
    grid.fill('#');
    BoundaryGeometry *original = new BoundaryGeometry;
    ASSERT_TRUE(original->createBoundingGeometry(&grid.volume));
    BoundaryGeometry copy(*original);
    EXPECT_EQ(copy.getBoundingGeometry(), original->getBoundingGeometry());
    delete original;
    ASSERT_NE(geometryOf(copy), NullFC) << "the copy holds its own reference";
    EXPECT_EQ(copy.getBoundingGeometry().getRefCount(), 1);
}

TEST(BoundaryGeometry, MissingGridsGiveAnEmptyProxy)
{
    BoundaryGeometry noVolume;
    EXPECT_TRUE(noVolume.createBoundingGeometry(NULL));
    EXPECT_EQ(lengthOf(geometryOf(noVolume)), 0u);
    for(const Pnt3f &p : GeoPositions3fPtr::dcast(geometryOf(noVolume)->getPositions())->getField())
        EXPECT_EQ(p, Pnt3f(0.f, 0.f, 0.f)) << "no infinite steps";
    EXPECT_TRUE(noVolume.update(NULL));

    // a block grid without visit bits: nothing is visited
    Grid grid(2, 2, 2);
    grid.volume.setBitVolume(NULL);
    BoundaryGeometry noBits;
    EXPECT_TRUE(noBits.createBoundingGeometry(&grid.volume));
    EXPECT_EQ(GeoPositions3fPtr::dcast(geometryOf(noBits)->getPositions())->getField().size(), 27u);
    EXPECT_EQ(lengthOf(geometryOf(noBits)), 0u);

    // visit bits of another size than the lattice: no face may index past it
    Grid larger(3, 3, 3);
    larger.fill('#');
    EXPECT_TRUE(noBits.update(&larger.volume));
    EXPECT_EQ(lengthOf(geometryOf(noBits)), 0u);

    // a bit grid that holds fewer cells than the edges say counts as empty
    BoundaryGeometry direct;
    direct.createGeometry();
    ImagePtr tiny = Image::create();
    addRefCP(tiny);
    tiny->set(GL_ALPHA, 1, 1, 1, 1, 1, 0.0, NULL, GL_UNSIGNED_BYTE, true, 1);
    tiny->getData()[0] = 255;
    EXPECT_TRUE(direct.createVertices(4, 4, 4));
    EXPECT_TRUE(direct.createIndices(tiny, 4, 4, 4));
    EXPECT_EQ(lengthOf(geometryOf(direct)), 0u);
    subRefCP(tiny);

    BoundaryGeometry nothing;
    EXPECT_FALSE(nothing.createVertices(1, 1, 1)) << "no node yet";
    EXPECT_FALSE(nothing.createTexCoords(1, 1, 1));
    EXPECT_FALSE(nothing.createIndices(NullFC, 1, 1, 1));
}

// --- winding, by rendering -------------------------------------------------------------------

namespace bvgeometrytest
{

/// Draws a proxy coloured by its texture coordinates, with one face side
/// culled, from a camera looking along an axis.
class ProxyRender : public wintest::FrameFixture
{
  protected:
    ProxyRender(void) : FrameFixture(32, 32) {}

    void SetUp(void) override
    {
        FrameFixture::SetUp();
        if(win == NullFC)
            return;
        port(0, 1, 0, 1, solid(wintest::Grey));
        camera->setNear(0.05f);

        SHLChunkPtr shader = SHLChunk::create();
        beginEditCP(shader);
        shader->setVertexProgram("#version 110\n"
                                 "void main()\n"
                                 "{\n"
                                 "    gl_TexCoord[0] = gl_MultiTexCoord0;\n"
                                 "    gl_Position = ftransform();\n"
                                 "}\n");
        shader->setFragmentProgram("#version 110\n"
                                   "void main()\n"
                                   "{\n"
                                   "    gl_FragColor = vec4(gl_TexCoord[0].xyz, 1.0);\n"
                                   "}\n");
        endEditCP(shader);
        _culling = PolygonChunk::create();
        ChunkMaterialPtr material = ChunkMaterial::create();
        beginEditCP(material, ChunkMaterial::ChunksFieldMask);
        material->addChunk(shader);
        material->addChunk(_culling);
        endEditCP(material, ChunkMaterial::ChunksFieldMask);

        MaterialGroupPtr group = MaterialGroup::create();
        beginEditCP(group);
        group->setMaterial(material);
        endEditCP(group);
        _proxyParent = Node::create();
        beginEditCP(_proxyParent, Node::CoreFieldMask);
        _proxyParent->setCore(group);
        endEditCP(_proxyParent, Node::CoreFieldMask);
        beginEditCP(root, Node::ChildrenFieldMask);
        root->addChild(_proxyParent);
        endEditCP(root, Node::ChildrenFieldMask);
    }

    void show(const BVGeometry &proxy)
    {
        // the proxy's node stays with its owner; the scene shows its core
        NodePtr shown = Node::create();
        beginEditCP(shown, Node::CoreFieldMask);
        shown->setCore(proxy.getBoundingGeometry()->getCore());
        endEditCP(shown, Node::CoreFieldMask);
        beginEditCP(_proxyParent, Node::ChildrenFieldMask);
        _proxyParent->addChild(shown);
        endEditCP(_proxyParent, Node::ChildrenFieldMask);
    }

    /// Builds the boundary proxy of grid and shows it.
    void showBoundary(Grid &grid)
    {
        ASSERT_TRUE(boundary.createBoundingGeometry(&grid.volume));
        show(boundary);
    }

    /// The centre pixel, seen from eye towards at, with cullFace culled.
    wintest::RGBA look(const Pnt3f &eye, const Pnt3f &at, GLenum cullFace, const std::string &name)
    {
        Vec3f view = at - eye;
        Vec3f up   = std::fabs(view[1]) > 0.5f ? Vec3f(0.f, 0.f, 1.f) : Vec3f(0.f, 1.f, 0.f);
        Matrix m;
        MatrixLookAt(m, eye, at, up);
        beginEditCP(beacon);
        TransformPtr::dcast(beacon->getCore())->setMatrix(m);
        endEditCP(beacon);
        beginEditCP(_culling);
        _culling->setCullFace(cullFace);
        endEditCP(_culling);

        frame();
        std::vector<wintest::RGBA> px = wintest::readAll(win);
        // one view of each kind is enough to look at
        if(name.find("zdown") != std::string::npos || name.find("_") == std::string::npos)
            wintest::writePNG("proxy_" + name, px, winW, winH);
        return px[(winH / 2) * winW + winW / 2];
    }

    /// Looks from eye along each axis, both ways (from eye moved by
    /// distance against the view), and reads the component of that axis:
    /// entry with back faces culled, exit with front faces culled, for the
    /// view towards -axis (down) and towards +axis (up).
    void expectSides(const Pnt3f &centre, Real32 distance, UInt8 entryDown, UInt8 exitDown,
                     UInt8 entryUp, UInt8 exitUp, const std::string &name)
    {
        for(int axis = 0; axis < 3; ++axis)
        {
            for(int sign = -1; sign <= 1; sign += 2)
            {
                Vec3f toward(0.f, 0.f, 0.f);
                toward[axis]            = Real32(-sign);
                const Pnt3f       eye   = centre - toward * distance;
                const std::string view  = name + "_" + "xyz"[axis] + (sign > 0 ? "down" : "up");
                wintest::RGBA     entry = look(eye, eye + toward, GL_BACK, view + "_cullback");
                wintest::RGBA     exit  = look(eye, eye + toward, GL_FRONT, view + "_cullfront");
                const UInt8      *e = &entry.r, *x = &exit.r;
                EXPECT_NEAR(e[axis], sign > 0 ? entryDown : entryUp, 1) << view;
                EXPECT_NEAR(x[axis], sign > 0 ? exitDown : exitUp, 1) << view;
            }
        }
    }

    BoundaryGeometry boundary;
    PolygonChunkPtr  _culling;
    NodePtr          _proxyParent;
};

} // namespace bvgeometrytest

TEST_F(ProxyRender, BoxShowsItsNearFacesWithBackFacesCulled)
{
    BoxGeometry box;
    ASSERT_TRUE(box.createBoundingGeometry(NULL));
    show(box);
    expectSides(Pnt3f(0.5f, 0.5f, 0.5f), 2.5f, 255, 0, 0, 255, "box");
}

TEST_F(ProxyRender, BoundaryOfAFullGridShowsItsNearFaces)
{
    Grid grid(2, 3, 2);
    grid.fill('#');
    showBoundary(grid);
    expectSides(Pnt3f(0.5f, 0.5f, 0.5f), 2.5f, 255, 0, 0, 255, "boundary");
}

TEST_F(ProxyRender, FromInsideASkippedCellItsWallsFaceTheCamera)
{
    // the camera in the skipped middle cell of a 3 x 3 x 3 grid: the walls
    // of that cell are front faces seen from there, the hull back faces
    Grid        grid(3, 3, 3);
    std::string cells(27, '#');
    cells[13] = '.';
    grid.set(cells);
    showBoundary(grid);
    // looking towards -axis the near wall is at 1/3, the hull at 0
    expectSides(Pnt3f(0.5f, 0.5f, 0.5f), 0.f, 85, 0, 170, 255, "hole");
}

TEST_F(ProxyRender, EmptyProxyDrawsNothingWithoutGLError)
{
    Grid grid(4, 4, 4);
    grid.fill('.');
    showBoundary(grid);
    EXPECT_EQ(look(Pnt3f(0.5f, 0.5f, 3.f), Pnt3f(0.5f, 0.5f, 0.5f), GL_BACK, "empty"),
              wintest::Grey);

    // the visit bits fill in later: the same proxy follows
    grid.fill('#');
    ASSERT_TRUE(boundary.update(&grid.volume));
    wintest::RGBA c = look(Pnt3f(0.5f, 0.5f, 3.f), Pnt3f(0.5f, 0.5f, 0.5f), GL_BACK, "filled");
    EXPECT_EQ(c.b, 255);
}
