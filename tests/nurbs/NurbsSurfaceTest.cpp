// NurbsSurface: known surfaces cover exactly the expected pixels through
// static geometry, through a display list and drawn afresh each frame, and
// the paths agree; static geometry holds the points, normals and texture
// coordinates of the surface's formula, in the counts the sampling settings
// ask for; it picks and bounds like any geometry.
#include "NurbsTestSupport.h"

#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGPolygonChunk.h>

#include <memory>

using namespace nurbstest;

namespace
{

/// Bernstein polynomial i of degree 3 at t, and its derivative.
Real64 bern3(int i, Real64 t)
{
    const Real64 c[4] = {1, 3, 3, 1};
    return c[i] * std::pow(t, i) * std::pow(1 - t, 3 - i);
}

Real64 dbern3(int i, Real64 t)
{
    const Real64 c[4] = {1, 3, 3, 1};
    Real64       a    = i > 0 ? i * std::pow(t, i - 1) * std::pow(1 - t, 3 - i) : 0;
    Real64       b    = i < 3 ? (3 - i) * std::pow(t, i) * std::pow(1 - t, 2 - i) : 0;
    return c[i] * (a - b);
}

/// A bicubic Bezier net, row-major with u fastest: u runs along y, v
/// along x (so the surface faces +z), with an uneven height field.
std::vector<Pnt3f> bicubicNet(void)
{
    std::vector<Pnt3f> net;
    const Real32       h[4][4] = {{0, 12, 6, 0}, {9, 27, 21, 3}, {3, 18, 24, 6}, {0, 6, 9, 0}};
    for(int j = 0; j < 4; ++j)
        for(int i = 0; i < 4; ++i)
            net.push_back(Pnt3f(16.f + 32.f * j / 3.f + (i == 1 ? 2.f : 0.f),
                                16.f + 32.f * i / 3.f + (j == 2 ? -1.5f : 0.f), h[j][i]));
    return net;
}

/// The Bezier surface of net at (u, v) and its unit normal, which points
/// along dS/dv x dS/du (GLU's s runs along v, its t along u).
void evalBicubic(const std::vector<Pnt3f> &net, Real64 u, Real64 v, Vec3f &p, Vec3f &n)
{
    Real64 s[3] = {0, 0, 0}, su[3] = {0, 0, 0}, sv[3] = {0, 0, 0};
    for(int j = 0; j < 4; ++j)
        for(int i = 0; i < 4; ++i)
            for(int c = 0; c < 3; ++c)
            {
                Real64 q = net[j * 4 + i][c];
                s[c] += bern3(i, u) * bern3(j, v) * q;
                su[c] += dbern3(i, u) * bern3(j, v) * q;
                sv[c] += bern3(i, u) * dbern3(j, v) * q;
            }
    p = Vec3f(s[0], s[1], s[2]);
    n = Vec3f(sv[1] * su[2] - sv[2] * su[1], sv[2] * su[0] - sv[0] * su[2],
              sv[0] * su[1] - sv[1] * su[0]);
    n.normalize();
}

/// A flat bicubic patch in z = 0, u along x and v along y, over the square
/// 16..48, whose lower edge (v = 0) bulges: the two inner points of the
/// bottom row are pulled down by `bulge`, so the edge is the cubic
/// y = 16 - bulge * 3 u (1 - u) over x = 16 + 32 u.
NurbsSurfacePtr bulgedSquare(Real32 bulge)
{
    std::vector<Pnt3f> net;
    for(int j = 0; j < 4; ++j)
        for(int i = 0; i < 4; ++i)
            net.push_back(Pnt3f(16.f + 32.f * i / 3.f,
                                16.f + 32.f * j / 3.f - (j == 0 && (i == 1 || i == 2) ? bulge : 0.f),
                                0.f));
    return makeSurface(points3(net), gridTexCoords(4, 4), 4, 4, 4, 4, bezierKnots(4),
                       bezierKnots(4));
}

class NurbsSurfaceFrame : public PixelFrame
{
};

} // namespace

// A flat bilinear square from pixel edge 16 to 48 covers exactly those
// pixels, and its texture coordinates put each texel of a 2 x 2 texture on
// its quarter, in all three ways of drawing.
TEST_F(NurbsSurfaceFrame, FlatSquareCoversItsPixelsWithItsTextureInEveryMode)
{
    NurbsSurfacePtr s = flatSquare(16, 16, 48, 48);
    setMaterialOf(s, quadrantTexture());
    add(s);

    std::vector<RGBA> first;
    inEveryMode(s, [&](const std::vector<RGBA> &img) {
        for(UInt32 y = 0; y < Size; ++y)
            for(UInt32 x = 0; x < Size; ++x)
            {
                RGBA want = Grey;
                if(x >= 16 && x < 48 && y >= 16 && y < 48)
                    want = y < 32 ? (x < 32 ? Red : Green) : (x < 32 ? Blue : Yellow);
                ASSERT_EQ(px(img, x, y), want) << "pixel " << x << ", " << y;
            }
        if(first.empty())
            first = img;
        EXPECT_TRUE(img == first);
    });
}

// The lower edge of a bicubic patch is a cubic curve: every pixel whose
// centre lies more than half a pixel inside the exact outline is covered,
// every one more than half a pixel outside is not, in every mode.
TEST_F(NurbsSurfaceFrame, BicubicOutlineFollowsTheCurveInEveryMode)
{
    const Real32    bulge = 9.f;
    NurbsSurfacePtr s     = bulgedSquare(bulge);
    setMaterialOf(s, flatColour(Red));
    add(s);

    auto inside = [bulge](Real32 x, Real32 y) -> int {
        if(x < 15.5f || x > 48.5f || y > 48.5f)
            return 0;
        if(x < 16.5f || x > 47.5f || y > 47.5f)
            return -1;
        Real32 t = (x - 16.f) / 32.f;
        Real32 edge = 16.f - bulge * 3.f * t * (1.f - t);
        // the edge is steep at the ends: judge by the distance in y,
        // scaled down by the slope
        Real32 slope = bulge * 3.f * (1.f - 2.f * t) / 32.f;
        Real32 dist  = (y - edge) / std::sqrt(1.f + slope * slope);
        return dist > 0.5f ? 1 : dist < -0.5f ? 0 : -1;
    };

    inEveryMode(s, [&](const std::vector<RGBA> &img) {
        EXPECT_EQ(mismatches(img, Red, inside), 0u);
        // the bulge really is there: below y = 16 in the middle columns
        EXPECT_EQ(px(img, 32, 10), Red);
    });
}

// Every vertex GLU put into the static geometry lies on the bicubic
// surface of the formula at the (u, v) its texture coordinate carries, and
// its normal is the formula's; the counts of the three attributes agree.
TEST_F(NurbsSurfaceFrame, StaticGeometryHoldsThePointsAndNormalsOfTheFormula)
{
    const std::vector<Pnt3f> net = bicubicNet();
    NurbsSurfacePtr          s   = makeSurface(points3(net), gridTexCoords(4, 4), 4, 4, 4, 4,
                                               bezierKnots(4), bezierKnots(4));
    setMaterialOf(s, flatColour(Red));
    add(s);
    frame();

    GeoPositions3fPtr pos = GeoPositions3fPtr::dcast(s->getPositions());
    GeoNormals3fPtr   nrm = GeoNormals3fPtr::dcast(s->getNormals());
    GeoTexCoords2fPtr tex = GeoTexCoords2fPtr::dcast(s->getTexCoords());
    ASSERT_NE(pos, NullFC);
    ASSERT_NE(nrm, NullFC);
    ASSERT_NE(tex, NullFC);
    ASSERT_GT(pos->getSize(), 50u);
    ASSERT_EQ(nrm->getSize(), pos->getSize());
    ASSERT_EQ(tex->getSize(), pos->getSize());

    for(UInt32 k = 0; k < pos->getSize(); ++k)
    {
        Vec2f uv = tex->getField()[k];
        Vec3f want, wantN;
        evalBicubic(net, uv[0], uv[1], want, wantN);
        Vec3f got = Vec3f(pos->getField()[k]);
        ASSERT_LT((got - want).length(), 1e-3f) << "vertex " << k << " at " << uv;
        Vec3f n = nrm->getField()[k];
        n.normalize();
        ASSERT_GT(n.dot(wantN), 0.999f) << "normal " << k << " at " << uv;
    }

    // the corners of the parameter domain are all there
    UInt32 corners = 0;
    for(UInt32 k = 0; k < tex->getSize(); ++k)
    {
        Vec2f uv = tex->getField()[k];
        if((uv[0] == 0.f || uv[0] == 1.f) && (uv[1] == 0.f || uv[1] == 1.f))
            ++corners;
    }
    EXPECT_GE(corners, 4u);
}

// Lit, with the normals each path gets from GLU (through the tessellator
// callbacks into static geometry, through GL calls into the display list),
// the two images agree: at most 1% of the pixels differ by more than 2
// levels in a channel (Mesa's GLU gives the very same pixels).
TEST_F(NurbsSurfaceFrame, LitStaticGeometryAndDisplayListAgree)
{
    NodePtr lightBeacon = Node::create();
    keep(lightBeacon);
    beginEditCP(lightBeacon);
    lightBeacon->setCore(Group::create());
    endEditCP(lightBeacon);
    DirectionalLightPtr light = DirectionalLight::create();
    beginEditCP(light);
    light->setDirection(Vec3f(0.3f, 0.4f, 1.f));
    light->setDiffuse(Color4f(1, 1, 1, 1));
    light->setAmbient(Color4f(0.1f, 0.1f, 0.1f, 1));
    light->setBeacon(lightBeacon);
    endEditCP(light);
    beginEditCP(root);
    root->setCore(light);
    root->addChild(lightBeacon);
    endEditCP(root);

    NurbsSurfacePtr s = makeSurface(points3(bicubicNet()), gridTexCoords(4, 4), 4, 4, 4, 4,
                                    bezierKnots(4), bezierKnots(4));
    SimpleMaterialPtr lit = SimpleMaterial::create();
    beginEditCP(lit);
    lit->setDiffuse(Color3f(0.9f, 0.8f, 0.7f));
    lit->setAmbient(Color3f(0.2f, 0.2f, 0.2f));
    endEditCP(lit);
    setMaterialOf(s, lit);
    add(s);

    setMode(s, true, true);
    std::vector<RGBA> statik = shot();
    setMode(s, false, true);
    std::vector<RGBA> dlist = shot();

    UInt32 covered = 0, differ = 0, worst = 0;
    for(size_t i = 0; i < statik.size(); ++i)
    {
        if(statik[i] != Grey)
            ++covered;
        UInt32 d = std::max({std::abs(statik[i].r - dlist[i].r), std::abs(statik[i].g - dlist[i].g),
                             std::abs(statik[i].b - dlist[i].b)});
        if(d > 2)
            ++differ;
        worst = std::max(worst, d);
    }
    EXPECT_GT(covered, 900u);
    EXPECT_LE(differ, statik.size() / 100) << "worst " << worst;
    // the lit surface is shaded, not flat
    EXPECT_NE(px(statik, 24, 24), px(statik, 40, 40));
}

// The counts follow the sampling settings. A positive setting is a number
// of spans (U + 1 steps), 0 is two steps per control point (2 uDim + 1),
// a negative one a multiple of the control-point count (1 - U uDim): on a
// one-span bicubic net of 4 x 4 (uDim 4) U = 0 and U = -2 both give 9
// steps, U = 5 gives 6. GLU lays the unit domain out as max(a, b) quad
// strips of 2 (min(a, b) + 1) vertices for steps a and b.
TEST_F(NurbsSurfaceFrame, VertexCountsFollowTheTessellationSettings)
{
    NurbsSurfacePtr s = makeSurface(points3(bicubicNet()), gridTexCoords(4, 4), 4, 4, 4, 4,
                                    bezierKnots(4), bezierKnots(4));
    add(s);

    struct Case
    {
        Int32  u, v;
        UInt32 uSteps, vSteps;
    };
    const Case cases[] = {{0, 5, 9, 6}, {-2, 5, 9, 6}, {5, 5, 6, 6}, {2, 0, 3, 9}, {1, 1, 2, 2}};
    for(const Case &c : cases)
    {
        SCOPED_TRACE(testing::Message() << "u " << c.u << " v " << c.v);
        beginEditCP(s, NurbsSurface::UTessellationFieldMask | NurbsSurface::VTessellationFieldMask);
        s->setUTessellation(c.u);
        s->setVTessellation(c.v);
        endEditCP(s, NurbsSurface::UTessellationFieldMask | NurbsSurface::VTessellationFieldMask);
        frame();

        UInt32 a = std::max(c.uSteps, c.vSteps), b = std::min(c.uSteps, c.vSteps);
        UInt32 want = a * 2 * (b + 1);
        EXPECT_EQ(s->getPositions()->getSize(), want);
        EXPECT_EQ(s->getNormals()->getSize(), want);
        EXPECT_EQ(s->getTexCoords()->getSize(), want);
        EXPECT_EQ(s->getIndices()->getSize(), want);
        ASSERT_EQ(s->getTypes()->getSize(), a);
        ASSERT_EQ(s->getLengths()->getSize(), a);

        // one running index per vertex, one (type, length) per strip, and
        // numVertices the length of the last strip, not a total
        for(UInt32 k = 0; k < want; ++k)
            ASSERT_EQ(s->getIndices()->getValue(k), k);
        UInt32 sum = 0;
        for(UInt32 p = 0; p < a; ++p)
        {
            EXPECT_EQ(s->getTypes()->getValue(p), UInt8(GL_QUAD_STRIP));
            sum += s->getLengths()->getValue(p);
        }
        EXPECT_EQ(sum, want);
        EXPECT_EQ(s->getNumVertices(), s->getLengths()->getValue(a - 1));
        ASSERT_EQ(s->getMFIndexMapping()->size(), 1u);
        EXPECT_EQ((*s->getMFIndexMapping())[0],
                  UInt16(Geometry::MapPosition | Geometry::MapNormal | Geometry::MapTexCoords));
    }
}

// The bound is the control hull in both modes, and it encloses every
// vertex of the tessellated surface.
TEST_F(NurbsSurfaceFrame, VolumeIsTheControlHullAndEnclosesTheSurface)
{
    const std::vector<Pnt3f> net = bicubicNet();
    NurbsSurfacePtr          s   = makeSurface(points3(net), gridTexCoords(4, 4), 4, 4, 4, 4,
                                               bezierKnots(4), bezierKnots(4));
    NodePtr n = add(s);

    for(bool fillGeo : {false, true})
    {
        setMode(s, fillGeo, true);
        frame();
        n->invalidateVolume();
        Pnt3f lo, hi;
        n->getVolume(true).getBounds(lo, hi);
        Pnt3f wantLo = net[0], wantHi = net[0];
        for(const Pnt3f &p : net)
            for(int c = 0; c < 3; ++c)
            {
                wantLo[c] = std::min(wantLo[c], p[c]);
                wantHi[c] = std::max(wantHi[c], p[c]);
            }
        EXPECT_EQ(lo, wantLo);
        EXPECT_EQ(hi, wantHi);
    }

    Pnt3f lo, hi;
    n->getVolume(false).getBounds(lo, hi);
    for(UInt32 k = 0; k < s->getPositions()->getSize(); ++k)
    {
        Pnt3f p = s->getPositions()->getValue(k);
        for(int c = 0; c < 3; ++c)
        {
            EXPECT_LE(lo[c], p[c]) << p;
            EXPECT_LE(p[c], hi[c]) << p;
        }
    }

    // a homogeneous net bounds the surface by its projected points
    GeoPositions4fPtr h = GeoPositions4f::create();
    beginEditCP(h);
    h->getField().push_back(Pnt4f(2, 2, 0, 2));
    h->getField().push_back(Pnt4f(60, 4, 0, 2));
    h->getField().push_back(Pnt4f(4, 60, 2, 2));
    h->getField().push_back(Pnt4f(30, 30, 0, 1));
    endEditCP(h);
    beginEditCP(s, NurbsSurface::ControlPointFieldMask);
    s->setControlPoint(h);
    endEditCP(s, NurbsSurface::ControlPointFieldMask);
    n->getVolume(true).getBounds(lo, hi);
    EXPECT_EQ(lo, Pnt3f(1, 1, 0));
    EXPECT_EQ(hi, Pnt3f(30, 30, 1));
}

// Picking sees the static geometry: a line onto the surface hits it at its
// height, one beside it misses.
TEST_F(NurbsSurfaceFrame, IntersectActionPicksStaticGeometry)
{
    NurbsSurfacePtr s = flatSquare(16, 16, 48, 48);
    add(s);
    frame();

    std::unique_ptr<IntersectAction> ia(IntersectAction::create());
    ia->setLine(Line(Pnt3f(20, 30, 10), Vec3f(0, 0, -1)));
    ia->apply(root);
    ASSERT_TRUE(ia->didHit());
    EXPECT_NEAR(ia->getHitT(), 10.f, 1e-4f);

    ia->setLine(Line(Pnt3f(50, 30, 10), Vec3f(0, 0, -1)));
    ia->apply(root);
    EXPECT_FALSE(ia->didHit());

}

// Under glPolygonMode(GL_LINE) an uncached dynamic surface draws as the
// outline of its patch, while a cached one keeps drawing filled.
TEST_F(NurbsSurfaceFrame, LinePolygonModeOutlinesOnlyTheUncachedSurface)
{
    NurbsSurfacePtr s = flatSquare(16, 16, 48, 48);
    PolygonChunkPtr lines = PolygonChunk::create();
    beginEditCP(lines);
    lines->setFrontMode(GL_LINE);
    lines->setBackMode(GL_LINE);
    endEditCP(lines);
    SimpleMaterialPtr m = SimpleMaterial::create();
    beginEditCP(m);
    m->setLit(false);
    m->setDiffuse(Color3f(1, 0, 0));
    m->addChunk(lines);
    endEditCP(m);
    setMaterialOf(s, m);
    add(s);

    // the list holds the filled surface: under GL_LINE its quads show
    // as lines inside the square too; the uncached surface draws only the
    // outline of its patch
    auto insideLines = [](const std::vector<RGBA> &img) {
        UInt32 n = 0;
        for(UInt32 y = 19; y < 45; ++y)
            for(UInt32 x = 19; x < 45; ++x)
                n += px(img, x, y) == Red;
        return n;
    };
    auto outlineLines = [](const std::vector<RGBA> &img) {
        UInt32 n = 0;
        for(UInt32 y = 18; y < 46; ++y)
            n += (px(img, 15, y) == Red || px(img, 16, y) == Red) &&
                 (px(img, 47, y) == Red || px(img, 48, y) == Red);
        return n;
    };

    setMode(s, false, true);
    std::vector<RGBA> cached = shot();
    EXPECT_GT(insideLines(cached), 40u);
    EXPECT_EQ(outlineLines(cached), 28u);

    setMode(s, false, false);
    std::vector<RGBA> uncached = shot();
    EXPECT_EQ(insideLines(uncached), 0u);
    EXPECT_EQ(outlineLines(uncached), 28u);
}

// Without a texture net nothing is drawn in either mode and the log says
// why; static geometry still has its six (empty) properties, and the
// volume still covers the control points.
TEST_F(NurbsSurfaceFrame, WithoutTextureNetNothingIsDrawn)
{
    NurbsSurfacePtr s = flatSquare(16, 16, 48, 48);
    beginEditCP(s, NurbsSurface::ControlTexCoordFieldMask);
    s->setControlTexCoord(NullFC);
    endEditCP(s, NurbsSurface::ControlTexCoordFieldMask);
    setMaterialOf(s, flatColour(Red));
    NodePtr n = add(s);

    for(const Mode &m : Modes)
    {
        SCOPED_TRACE(m.name);
        setMode(s, m.fillGeo, m.dlistCache);
        std::string log = frameLog();
        EXPECT_NE(log.find("Nurbs Surface error: 100286/ null control point reference"),
                  std::string::npos)
            << log;
        std::vector<RGBA> img = readAll(win);
        EXPECT_EQ(std::count(img.begin(), img.end(), Red), 0);
    }

    setMode(s, true, true);
    frameLog();
    EXPECT_NE(s->getTypes(), NullFC);
    EXPECT_NE(s->getLengths(), NullFC);
    EXPECT_NE(s->getIndices(), NullFC);
    EXPECT_NE(s->getTexCoords(), NullFC);
    EXPECT_EQ(s->getPositions()->getSize(), 0u);
    EXPECT_EQ(s->getNormals()->getSize(), 0u);
    Pnt3f lo, hi;
    n->getVolume(true).getBounds(lo, hi);
    EXPECT_EQ(lo, Pnt3f(16, 16, 0));
    EXPECT_EQ(hi, Pnt3f(48, 48, 0));
}

// The counted setters hold one reference and a parent link; editing the
// net's data reaches the surface as a change of controlPoint; a copy holds
// the nets too; a surface lets go of both nets when it goes.
TEST_F(NurbsSurfaceFrame, ControlNetsAreCountedAndLinked)
{
    GeoPositionsPtr pts = points3({Pnt3f(16, 16, 0), Pnt3f(48, 16, 0), Pnt3f(16, 48, 0),
                                   Pnt3f(48, 48, 0)});
    GeoTexCoordsPtr tcs = gridTexCoords(2, 2);
    addRefCP(pts);
    addRefCP(tcs);

    NurbsSurfacePtr s = makeSurface(pts, tcs, 2, 2, 2, 2, bezierKnots(2), bezierKnots(2));
    addRefCP(s);
    EXPECT_EQ(getRefCount(pts), 2);
    EXPECT_EQ(getRefCount(tcs), 2);
    EXPECT_EQ(pts->findParent(s), 0);
    EXPECT_EQ(tcs->findParent(s), 0);

    // a copy takes a hold of its own, and gives it back (made while the
    // surface has no material or static geometry yet: Geometry's copies
    // share those without a reference)
    NurbsSurfacePtr copy = NurbsSurfacePtr::dcast(s->shallowCopy());
    addRefCP(copy);
    EXPECT_EQ(getRefCount(pts), 3);
    EXPECT_EQ(pts->findParent(copy), 1);
    subRefCP(copy);
    EXPECT_EQ(getRefCount(pts), 2);
    EXPECT_EQ(pts->findParent(s), 0);
    setMaterialOf(s, flatColour(Red));

    // the net is edited in place; the surface hears of it and rebuilds
    {
        NodePtr n = attach(s);
        frame();
        EXPECT_FALSE(s->getDirty());

        beginEditCP(pts);
        pts->setValue(Pnt3f(60, 60, 0), 3);
        endEditCP(pts);
        EXPECT_TRUE(s->getDirty());
        std::vector<RGBA> img = shot();
        EXPECT_EQ(px(img, 55, 55), Red);
        remove(n);
    }

    subRefCP(s);
    EXPECT_EQ(getRefCount(pts), 1);
    EXPECT_EQ(getRefCount(tcs), 1);
    EXPECT_EQ(pts->findParent(s), -1);
    subRefCP(pts);
    subRefCP(tcs);
}
