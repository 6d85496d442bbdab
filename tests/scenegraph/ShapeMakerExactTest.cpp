// The shape makers vertex for vertex: every maker's positions, normals,
// texture coordinates, indices, primitive types, lengths and index mapping
// against an evaluation of OpenSG's tessellation written out here (same
// loops, same single-precision operations in the same order, running sums
// where OpenSG accumulates angles), compared with exact float equality for
// several parameter sets; illegal and oversized parameters; and
// calcVertexNormals' face averaging, property reuse and mapping rules.
#include <OpenSG/OSGGeoFunctions.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGMatrix.h>
#include <OpenSG/OSGQuaternion.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

using namespace osg;

namespace
{

/// What a maker must produce.
struct Shape
{
    std::vector<Pnt3f>  pos;
    std::vector<Vec3f>  norm;
    std::vector<Vec2f>  tex;
    std::vector<UInt32> index;
    std::vector<UInt8>  types;
    std::vector<UInt32> lens;
    std::vector<UInt16> mapping{
        UInt16(Geometry::MapPosition | Geometry::MapNormal | Geometry::MapTexCoords)};

    void vertex(const Pnt3f &p, const Vec3f &n, const Vec2f &t)
    {
        pos.push_back(p);
        norm.push_back(n);
        tex.push_back(t);
    }
};

const UInt16 All = UInt16(Geometry::MapPosition | Geometry::MapNormal | Geometry::MapTexCoords);

template <class V>
std::string show(const V &v, UInt32 n)
{
    std::ostringstream s;
    s.precision(9);
    s << "(";
    for(UInt32 c = 0; c < n; ++c)
        s << (c ? ", " : "") << v[c];
    return s.str() + ")";
}

/// Bitwise-equal floats (exactly the same arithmetic), -0 == +0 allowed.
template <class V>
void expectSameVectors(const char *what, const std::vector<V> &want, const std::vector<V> &got,
                       UInt32 n)
{
    ASSERT_EQ(got.size(), want.size()) << what;
    UInt32 bad = 0;
    for(size_t i = 0; i < want.size(); ++i)
    {
        bool same = true;
        for(UInt32 c = 0; c < n; ++c)
            same = same && want[i][c] == got[i][c];
        if(!same && bad++ < 5)
            ADD_FAILURE() << what << " " << i << ": want " << show(want[i], n) << " got "
                          << show(got[i], n);
    }
    EXPECT_EQ(bad, 0u) << what << " differ";
}

template <class T, class P>
std::vector<T> valuesOf(const P &prop)
{
    return std::vector<T>(prop->getField().begin(), prop->getField().end());
}

void expectShape(GeometryPtr geo, const Shape &want)
{
    ASSERT_NE(geo, NullFC);
    GeoPositions3fPtr  pos = GeoPositions3fPtr::dcast(geo->getPositions());
    GeoNormals3fPtr    nrm = GeoNormals3fPtr::dcast(geo->getNormals());
    GeoTexCoords2fPtr  tex = GeoTexCoords2fPtr::dcast(geo->getTexCoords());
    GeoIndicesUI32Ptr  ind = GeoIndicesUI32Ptr::dcast(geo->getIndices());
    GeoPTypesUI8Ptr    typ = GeoPTypesUI8Ptr::dcast(geo->getTypes());
    GeoPLengthsUI32Ptr len = GeoPLengthsUI32Ptr::dcast(geo->getLengths());
    ASSERT_TRUE(pos != NullFC && nrm != NullFC && tex != NullFC && ind != NullFC &&
                typ != NullFC && len != NullFC)
        << "property types";
    EXPECT_EQ(geo->getMaterial(), getDefaultMaterial());

    expectSameVectors("position", want.pos, valuesOf<Pnt3f>(pos), 3);
    expectSameVectors("normal", want.norm, valuesOf<Vec3f>(nrm), 3);
    expectSameVectors("texcoord", want.tex, valuesOf<Vec2f>(tex), 2);
    EXPECT_EQ(valuesOf<UInt32>(ind), want.index);
    EXPECT_EQ(valuesOf<UInt8>(typ), want.types);
    EXPECT_EQ(valuesOf<UInt32>(len), want.lens);
    EXPECT_EQ(std::vector<UInt16>(geo->getMFIndexMapping()->begin(),
                                  geo->getMFIndexMapping()->end()),
              want.mapping);
}

/// Runs a maker, compares, drops the geometry.
void check(GeometryPtr geo, const Shape &want)
{
    ASSERT_NE(geo, NullFC);
    addRefCP(geo);
    expectShape(geo, want);
    subRefCP(geo);
}

/// One strip per row of a grid of (nu + 1) x (nv + 1) vertices from base.
void rowStrips(Shape &s, UInt32 base, UInt32 nu, UInt32 nv)
{
    for(UInt32 j = 0; j < nv; ++j)
    {
        for(UInt32 i = 0; i <= nu; ++i)
        {
            s.index.push_back(base + (j + 1) * (nu + 1) + i);
            s.index.push_back(base + j * (nu + 1) + i);
        }
        s.types.push_back(GL_TRIANGLE_STRIP);
        s.lens.push_back(2 * (nu + 1));
    }
}

// --- the formulas ------------------------------------------------------------------------

Shape planeShape(Real32 xsize, Real32 ysize, UInt16 hor, UInt16 vert)
{
    Shape        s;
    const Real32 xstep = xsize / hor, ystep = ysize / vert;
    for(UInt32 y = 0; y <= vert; ++y)
        for(UInt32 x = 0; x <= hor; ++x)
            s.vertex(Pnt3f(x * xstep - xsize / 2, y * ystep - ysize / 2, 0), Vec3f(0, 0, 1),
                     Vec2f(x / Real32(hor), y / Real32(vert)));
    rowStrips(s, 0, hor, vert);
    return s;
}

Shape boxShape(Real32 xsize, Real32 ysize, Real32 zsize, UInt16 hor, UInt16 vert, UInt16 depth)
{
    const Real32 size[3] = {xsize, ysize, zsize};
    const Real32 res[3]  = {Real32(hor), Real32(vert), Real32(depth)};
    const Real32 step[3] = {xsize / res[0], ysize / res[1], zsize / res[2]};
    // face: a, b, n, sign a, sign b, sign n
    const Int32 face[6][6] = {{0, 1, 2, 1, 1, 1},  {0, 1, 2, -1, 1, -1}, {2, 1, 0, -1, 1, 1},
                              {2, 1, 0, 1, 1, -1}, {0, 2, 1, 1, -1, 1},  {0, 2, 1, 1, 1, -1}};
    Shape s;
    for(UInt32 f = 0; f < 6; ++f)
    {
        const Int32 a = face[f][0], b = face[f][1], n = face[f][2];
        Vec3f       normal(0, 0, 0);
        normal[n]   = Real32(face[f][5]);
        UInt32 base = UInt32(s.pos.size());
        for(UInt32 j = 0; j <= UInt32(res[b]); ++j)
        {
            for(UInt32 i = 0; i <= UInt32(res[a]); ++i)
            {
                Pnt3f p;
                p[a] = (Real32(i) * step[a] - size[a] / 2) * Real32(face[f][3]);
                p[b] = (Real32(j) * step[b] - size[b] / 2) * Real32(face[f][4]);
                p[n] = (size[n] * Real32(face[f][5])) / 2;
                s.vertex(p, normal, Vec2f(Real32(i) / res[a], Real32(j) / res[b]));
            }
        }
        rowStrips(s, base, UInt32(res[a]), UInt32(res[b]));
    }
    return s;
}

Shape frustumShape(Real32 height, Real32 topradius, Real32 botradius, UInt16 sides, bool doSide,
                   bool doTop, bool doBottom)
{
    Shape        s;
    const Real32 delta = (2 * Pi) / Real32(sides);
    const Real32 incl  = (botradius - topradius) / height;
    const Real32 k     = 1 / std::sqrt(1 + incl * incl);
    if(doSide)
    {
        UInt32 base = UInt32(s.pos.size());
        for(UInt32 j = 0; j <= sides; ++j)
        {
            Real32 beta = Real32(j) * delta, sn = std::sin(beta), c = -std::cos(beta);
            s.vertex(Pnt3f(sn * topradius, height / 2, c * topradius),
                     Vec3f(sn / k, incl / k, c / k), Vec2f(1 - Real32(j) / Real32(sides), 1));
        }
        for(UInt32 j = 0; j <= sides; ++j)
        {
            Real32 beta = Real32(j) * delta, sn = std::sin(beta), c = -std::cos(beta);
            s.vertex(Pnt3f(sn * botradius, -height / 2, c * botradius),
                     Vec3f(sn / k, incl / k, c / k), Vec2f(1 - Real32(j) / Real32(sides), 0));
        }
        for(UInt32 j = 0; j <= sides; ++j)
        {
            s.index.push_back(base + sides + 1 + j);
            s.index.push_back(base + j);
        }
        s.types.push_back(GL_TRIANGLE_STRIP);
        s.lens.push_back(2 * (sides + 1));
    }
    if(doTop && topradius > 0)
    {
        UInt32 base = UInt32(s.pos.size());
        for(Int32 j = sides - 1; j >= 0; --j)
        {
            Real32 beta = Real32(j) * delta;
            Real32 x = topradius * std::sin(beta), z = -topradius * std::cos(beta);
            s.vertex(Pnt3f(x, height / 2, z), Vec3f(0, 1, 0),
                     Vec2f(x / topradius / 2 + 0.5f, -z / topradius / 2 + 0.5f));
        }
        for(UInt32 i = 0; i < sides; ++i)
            s.index.push_back(base + i);
        s.types.push_back(GL_POLYGON);
        s.lens.push_back(sides);
    }
    if(doBottom && botradius > 0)
    {
        UInt32 base = UInt32(s.pos.size());
        for(Int32 j = sides - 1; j >= 0; --j)
        {
            Real32 beta = Real32(j) * delta;
            Real32 x = botradius * std::sin(beta), z = -botradius * std::cos(beta);
            s.vertex(Pnt3f(x, -height / 2, z), Vec3f(0, -1, 0),
                     Vec2f(x / botradius / 2 + 0.5f, z / botradius / 2 + 0.5f));
        }
        for(Int32 i = sides - 1; i >= 0; --i)
            s.index.push_back(base + UInt32(i));
        s.types.push_back(GL_POLYGON);
        s.lens.push_back(sides);
    }
    return s;
}

/// Strips along the columns of a (nu + 1)-wide grid, nv rows high.
void columnStrips(Shape &s, UInt32 nu, UInt32 nv)
{
    for(UInt32 a = 0; a < nu; ++a)
    {
        for(UInt32 b = 0; b <= nv; ++b)
        {
            s.index.push_back(b * (nu + 1) + a);
            s.index.push_back(b * (nu + 1) + a + 1);
        }
        s.types.push_back(GL_TRIANGLE_STRIP);
        s.lens.push_back(2 * (nv + 1));
    }
}

Shape torusShape(Real32 innerRadius, Real32 outerRadius, UInt16 sides, UInt16 rings)
{
    Shape        s;
    const Real32 ringDelta = (2 * Pi) / Real32(rings);
    const Real32 sideDelta = (2 * Pi) / Real32(sides);
    Real32       theta     = 0;
    for(UInt32 a = 0; a <= rings; ++a)
    {
        Real32 phi = 0;
        for(UInt32 b = 0; b <= sides; ++b)
        {
            Real32 r = outerRadius + innerRadius * std::cos(phi);
            s.vertex(Pnt3f(std::cos(theta) * r, -std::sin(theta) * r,
                           innerRadius * std::sin(phi)),
                     Vec3f(std::cos(theta) * std::cos(phi), -std::sin(theta) * std::cos(phi),
                           std::sin(phi)),
                     Vec2f(-Real32(a) / Real32(rings), Real32(b) / Real32(sides)));
            phi += sideDelta;
        }
        theta += ringDelta;
    }
    columnStrips(s, sides, rings);
    return s;
}

Shape latLongShape(UInt16 latres, UInt16 longres, Real32 radius)
{
    Shape        s;
    const Real32 latDelta  = Pi / Real32(latres);
    const Real32 longDelta = (2 * Pi) / Real32(longres);
    Real32       theta     = -Pi / 2;
    for(UInt32 a = 0; a <= latres; ++a)
    {
        Real32 phi = -Pi;
        for(UInt32 b = 0; b <= longres; ++b)
        {
            Real32 ct = std::cos(theta), st = std::sin(theta);
            Real32 cp = std::cos(phi), sp = std::sin(phi);
            s.vertex(Pnt3f(ct * sp * radius, st * radius, ct * cp * radius),
                     Vec3f(ct * sp, st, ct * cp),
                     Vec2f(Real32(b) / Real32(longres), Real32(a) / Real32(latres)));
            phi += longDelta;
        }
        theta += latDelta;
    }
    columnStrips(s, longres, latres);
    return s;
}

const Real32 HalfPi = 1.570796326794897f;
const Real32 TwoPi  = 6.283185307179586f;

Vec2f icoTex(const Vec3f &n)
{
    // the clamp only matters for a normal rounded past the pole
    Real32 t   = (Pi - std::acos(std::min(1.f, std::max(-1.f, n[1])))) / Pi;
    Real32 phi = std::atan2(-n[2], n[0]) - HalfPi;
    if(phi <= -Eps)
        phi += TwoPi;
    return Vec2f(phi / TwoPi, t);
}

struct Ico
{
    Shape &s;
    Real32 radius;

    UInt32 add(const Vec3f &point)
    {
        Vec3f n = point;
        n.normalize();
        s.vertex(Pnt3f(n * radius), n, icoTex(n));
        return UInt32(s.pos.size() - 1);
    }

    Vec3f mid(UInt32 i, UInt32 j)
    {
        Pnt3f p = s.pos[i], q = s.pos[j];
        return Vec3f((p[0] + (q[0] - p[0]) * 0.5f) / 2, (p[1] + (q[1] - p[1]) * 0.5f) / 2,
                     (p[2] + (q[2] - p[2]) * 0.5f) / 2);
    }

    void subdivide(UInt32 i1, UInt32 i2, UInt32 i3, UInt32 depth)
    {
        if(depth == 0)
        {
            for(UInt32 i : {i1, i2, i3})
            {
                s.index.push_back(i);
                s.index.push_back(i);
            }
            return;
        }
        Vec3f  m12 = mid(i1, i2), m23 = mid(i2, i3), m31 = mid(i3, i1);
        UInt32 i12 = add(m12), i23 = add(m23), i31 = add(m31);
        subdivide(i1, i12, i31, depth - 1);
        subdivide(i2, i23, i12, depth - 1);
        subdivide(i3, i31, i23, depth - 1);
        subdivide(i12, i23, i31, depth - 1);
    }
};

Shape icoShape(UInt16 depth, Real32 radius)
{
    const Real32 X = 0.525731112119133606f, Z = 0.850650808352039932f;
    Vec3f v[12] = {Vec3f(-X, 0, Z), Vec3f(X, 0, Z),   Vec3f(-X, 0, -Z), Vec3f(X, 0, -Z),
                   Vec3f(0, Z, X),  Vec3f(0, Z, -X),  Vec3f(0, -Z, X),  Vec3f(0, -Z, -X),
                   Vec3f(Z, X, 0),  Vec3f(-Z, X, 0),  Vec3f(Z, -X, 0),  Vec3f(-Z, -X, 0)};
    const UInt32 tri[20][3] = {{1, 4, 0},  {4, 9, 0},  {4, 5, 9},  {8, 5, 4},  {1, 8, 4},
                               {1, 10, 8}, {10, 3, 8}, {8, 3, 5},  {3, 2, 5},  {3, 7, 2},
                               {3, 10, 7}, {10, 6, 7}, {6, 11, 7}, {6, 0, 11}, {6, 1, 0},
                               {10, 1, 6}, {11, 0, 9}, {2, 11, 9}, {5, 2, 9},  {11, 2, 7}};
    Matrix rot;
    rot.setTransform(Quaternion(Vec3f(0, 1, 0), std::acos(Z) + HalfPi));

    Shape s;
    s.mapping = {UInt16(Geometry::MapPosition | Geometry::MapNormal),
                 UInt16(Geometry::MapTexCoords)};
    for(UInt32 j = 0; j < 12; ++j)
    {
        Vec3f r;
        rot.mult3x3(v[j], r);
        Real32 len = r.length();
        Vec3f  n   = r;
        n.normalize();
        s.vertex(Pnt3f(r * (len != 0 ? radius / len : 1.f)), n, icoTex(n));
    }
    Ico ico = {s, radius};
    for(UInt32 f = 0; f < 20; ++f)
        ico.subdivide(tri[f][0], tri[f][1], tri[f][2], depth);
    s.types.push_back(GL_TRIANGLES);
    s.lens.push_back(UInt32(s.index.size() / 2));

    // the seam: triangles in index order, (position/normal, texture) pairs
    for(size_t t = 0; t + 6 <= s.index.size(); t += 6)
    {
        Vec3f q[3] = {s.norm[s.index[t]], s.norm[s.index[t + 2]], s.norm[s.index[t + 4]]};
        bool  touches = false, west = false;
        for(const Vec3f &n : q)
        {
            touches = touches || (std::fabs(n[0]) <= 0.01f && n[2] <= Eps);
            west    = west || n[0] <= -Eps;
        }
        if(!touches)
            continue;
        for(UInt32 c = 0; c < 3; ++c)
        {
            if(std::fabs(q[c][0]) > Eps || q[c][2] > Eps)
                continue;
            Real32 sCoord = std::fabs(std::fabs(q[c][1]) - 1) <= Eps ? 0.5f : (west ? 0.f : 1.f);
            s.tex.push_back(Vec2f(sCoord, s.tex[s.index[t + 2 * c + 1]][1]));
            s.index[t + 2 * c + 1] = UInt32(s.tex.size() - 1);
        }
    }
    return s;
}

/// The warning a call logs (empty if none).
template <class F>
std::string warningOf(F call, GeometryPtr &result)
{
    LogCapture log(LOG_WARNING);
    result = call();
    return log.take();
}

bool contains(const std::string &text, const std::string &part)
{
    return text.find(part) != std::string::npos;
}

} // namespace

// --- exact layouts ----------------------------------------------------------------------

TEST(ShapeMakersExact, PlaneAndBox)
{
    check(makePlaneGeo(1, 1, 1, 1), planeShape(1, 1, 1, 1));
    check(makePlaneGeo(3, 2, 4, 5), planeShape(3, 2, 4, 5));
    check(makePlaneGeo(0.7f, 11, 13, 1), planeShape(0.7f, 11, 13, 1));
    // the largest count in one direction
    check(makePlaneGeo(2, 1, 65535, 1), planeShape(2, 1, 65535, 1));

    check(makeBoxGeo(2.5f, 2.5f, 2.5f, 1, 1, 1), boxShape(2.5f, 2.5f, 2.5f, 1, 1, 1));
    check(makeBoxGeo(2, 4, 6, 2, 3, 1), boxShape(2, 4, 6, 2, 3, 1));
    check(makeBoxGeo(1, 0.3f, 7, 5, 1, 9), boxShape(1, 0.3f, 7, 5, 1, 9));
    check(makeBoxGeo(0, 1, 0.1f, 3, 7, 3), boxShape(0, 1, 0.1f, 3, 7, 3));

    // the worked example: 24 vertices, six strips of four, face 0 first
    GeometryPtr box = makeBoxGeo(2.5f, 2.5f, 2.5f, 1, 1, 1);
    addRefCP(box);
    EXPECT_EQ(box->getPositions()->getSize(), 24u);
    const Pnt3f face0[4] = {Pnt3f(-1.25f, 1.25f, 1.25f), Pnt3f(-1.25f, -1.25f, 1.25f),
                            Pnt3f(1.25f, 1.25f, 1.25f), Pnt3f(1.25f, -1.25f, 1.25f)};
    for(UInt32 i = 0; i < 4; ++i)
        EXPECT_EQ(box->getPositions()->getValue(box->getIndices()->getValue(i)), face0[i]);
    subRefCP(box);
}

TEST(ShapeMakersExact, ConicalFrustumCylinderAndCone)
{
    check(makeCylinderGeo(1, .3f, 8, true, true, true),
          frustumShape(1, .3f, .3f, 8, true, true, true));
    check(makeConeGeo(3, 1, 10, true, true), frustumShape(3, 0, 1, 10, true, false, true));
    check(makeConicalFrustumGeo(2, .5f, 1.5f, 3, true, true, true),
          frustumShape(2, .5f, 1.5f, 3, true, true, true));
    // a frustum standing on its tip: no bottom cap
    check(makeConicalFrustumGeo(1, 1, 0, 5, true, true, true),
          frustumShape(1, 1, 0, 5, true, true, true));
    check(makeConicalFrustumGeo(4, 2, .25f, 200, false, true, false),
          frustumShape(4, 2, .25f, 200, false, true, false));
    check(makeCylinderGeo(.1f, 7, 31, true, false, true),
          frustumShape(.1f, 7, 7, 31, true, false, true));
    // a cone asked for a top cap has none; nothing asked: an empty geometry
    check(makeConicalFrustumGeo(2, 0, 1, 6, true, true, false),
          frustumShape(2, 0, 1, 6, true, true, false));
    check(makeCylinderGeo(1, 1, 4, false, false, false),
          frustumShape(1, 1, 1, 4, false, false, false));

    // the worked example's counts, and the cone's side normal length 1 + incl^2
    GeometryPtr cyl = makeCylinderGeo(1, .3f, 8, true, true, true);
    addRefCP(cyl);
    EXPECT_EQ(cyl->getPositions()->getSize(), 18u + 8 + 8);
    EXPECT_EQ(valuesOf<UInt32>(GeoPLengthsUI32Ptr::dcast(cyl->getLengths())),
              (std::vector<UInt32>{18, 8, 8}));
    subRefCP(cyl);
    GeometryPtr cone = makeConeGeo(2, 1, 8, true, false);
    addRefCP(cone);
    EXPECT_NEAR(cone->getNormals()->getValue(3).length(), 1.25f, 1e-6f);
    subRefCP(cone);
}

TEST(ShapeMakersExact, Torus)
{
    check(makeTorusGeo(.5f, 2, 16, 16), torusShape(.5f, 2, 16, 16));
    check(makeTorusGeo(.3f, 1, 3, 3), torusShape(.3f, 1, 3, 3));
    check(makeTorusGeo(1, 1, 7, 40), torusShape(1, 1, 7, 40));
    check(makeTorusGeo(2, .5f, 100, 5), torusShape(2, .5f, 100, 5));

    // the running sum really differs from index x step somewhere
    Shape  s         = torusShape(.5f, 2, 16, 16);
    bool   differs   = false;
    Real32 ringDelta = (2 * Pi) / 16.f;
    Real32 theta     = 0;
    for(UInt32 a = 0; a <= 16; ++a, theta += ringDelta)
        differs = differs || theta != Real32(a) * ringDelta;
    EXPECT_TRUE(differs);
    EXPECT_EQ(s.tex[17 * 16][0], -1.f);
}

TEST(ShapeMakersExact, LatLongSphere)
{
    check(makeLatLongSphereGeo(4, 4, 1), latLongShape(4, 4, 1));
    check(makeLatLongSphereGeo(8, 12, 1.5f), latLongShape(8, 12, 1.5f));
    check(makeLatLongSphereGeo(16, 32, 2), latLongShape(16, 32, 2));
    check(makeLatLongSphereGeo(33, 7, .25f), latLongShape(33, 7, .25f));

    // south pole first, b = 0 at -z
    GeometryPtr geo = makeLatLongSphereGeo(4, 4, 1);
    addRefCP(geo);
    Pnt3f p = geo->getPositions()->getValue(0);
    EXPECT_NEAR(p[1], -1.f, 1e-6f);
    Pnt3f equator = geo->getPositions()->getValue(2 * 5);
    EXPECT_NEAR(equator[2], -1.f, 1e-6f);
    subRefCP(geo);
}

TEST(ShapeMakersExact, IcosahedralSphere)
{
    for(UInt16 depth = 0; depth <= 3; ++depth)
    {
        SCOPED_TRACE(depth);
        check(makeSphereGeo(depth, 1), icoShape(depth, 1));
        check(makeSphereGeo(depth, 2.5f), icoShape(depth, 2.5f));
    }
    // a zero radius: every point at the origin, still a full layout
    check(makeSphereGeo(1, 0), icoShape(1, 0));

    GeometryPtr geo = makeSphereGeo(2, 1);
    addRefCP(geo);
    EXPECT_EQ(geo->getPositions()->getSize(), 12u + 20 * 15);
    EXPECT_EQ(geo->getLengths()->getValue(0), 3u * 20 * 16);
    // v0 turned onto +x, v3 onto -x
    EXPECT_NEAR(geo->getPositions()->getValue(0)[0], 1.f, 1e-6f);
    EXPECT_NEAR(geo->getPositions()->getValue(3)[0], -1.f, 1e-6f);
    // the seam got texture coordinates of its own
    EXPECT_GT(geo->getTexCoords()->getSize(), geo->getPositions()->getSize());
    subRefCP(geo);
}

TEST(ShapeMakersExact, NodeVersionsWrapTheGeometry)
{
    std::vector<NodePtr> nodes = {makePlane(1, 1, 2, 2),
                                  makeBox(1, 1, 1, 1, 1, 1),
                                  makeCylinder(1, 1, 8, true, true, true),
                                  makeCone(1, 1, 8, true, true),
                                  makeConicalFrustum(1, .5f, 1, 8, true, true, true),
                                  makeTorus(.5f, 2, 8, 8),
                                  makeLatLongSphere(4, 8, 1),
                                  makeSphere(1, 1)};
    for(NodePtr n : nodes)
    {
        ASSERT_NE(n, NullFC);
        addRefCP(n);
        EXPECT_NE(GeometryPtr::dcast(n->getCore()), NullFC);
        subRefCP(n);
    }
}

// --- illegal and oversized parameters ----------------------------------------------------

TEST(ShapeMakersExact, IllegalParametersWarnAndReturnNull)
{
    struct Case
    {
        std::function<GeometryPtr()> make;
        const char                  *warning;
    } cases[] = {
        {[] { return makePlaneGeo(1, 1, 0, 3); }, "makePlane: illegal parameters hor=0"},
        {[] { return makeBoxGeo(1, 1, 1, 2, 2, 0); },
         "makeBox: illegal parameters hor=2, vert=2, depth=0"},
        {[] { return makeTorusGeo(0, 2, 8, 8); },
         "makeTorus: illegal parameters innerRadius=0, outerRadius=2, sides=8, rings=8"},
        {[] { return makeTorusGeo(.5f, -1, 8, 8); }, "makeTorus: illegal parameters"},
        {[] { return makeTorusGeo(.5f, 2, 2, 8); }, "makeTorus: illegal parameters"},
        {[] { return makeTorusGeo(.5f, 2, 8, 1); }, "makeTorus: illegal parameters"},
        {[] { return makeLatLongSphereGeo(3, 8, 1); },
         "makeLatLongSphere: illegal parameters latres=3, longres=8, radius=1"},
        {[] { return makeLatLongSphereGeo(8, 3, 1); }, "makeLatLongSphere: illegal parameters"},
        {[] { return makeLatLongSphereGeo(8, 8, 0); }, "makeLatLongSphere: illegal parameters"},
        {[] { return makeConicalFrustumGeo(0, 1, 1, 8, true, true, true); },
         "makeConicalFrustum: illegal parameters height=0, topradius=1, botradius=1, sides=8"},
        {[] { return makeCylinderGeo(1, 1, 2, true, true, true); },
         "makeConicalFrustum: illegal parameters"},
        {[] { return makeConeGeo(1, -1, 8, true, true); }, "makeConicalFrustum: illegal parameters"},
        {[] { return makeCylinderGeo(1, 1, 0, true, true, true); },
         "makeConicalFrustum: illegal parameters"},
        // sizes that would need gigabytes are refused before anything is allocated
        {[] { return makeTorusGeo(.5f, 2, 65535, 65535); }, "makeTorus: 4294967296 vertices are too many"},
        {[] { return makeLatLongSphereGeo(65535, 65535, 1); }, "makeLatLongSphere: "},
        {[] { return makePlaneGeo(1, 1, 65535, 65535); }, "makePlane: "},
        {[] { return makeBoxGeo(1, 1, 1, 65535, 65535, 65535); }, "makeBox: "},
        {[] { return makeSphereGeo(12, 1); }, "makeSphere: "},
        {[] { return makeSphereGeo(65535, 1); }, "makeSphere: "},
    };
    for(const Case &c : cases)
    {
        GeometryPtr geo;
        std::string log = warningOf(c.make, geo);
        EXPECT_EQ(geo, NullFC) << c.warning;
        EXPECT_TRUE(contains(log, c.warning)) << "want \"" << c.warning << "\" got \"" << log
                                              << "\"";
    }

    // the node versions pass the refusal on
    LogCapture log(LOG_WARNING);
    EXPECT_EQ(makeTorus(.5f, 2, 2, 2), NullFC);
    EXPECT_EQ(makeLatLongSphere(1, 1, 1), NullFC);
    EXPECT_EQ(makeCone(1, 1, 1, true, true), NullFC);
    EXPECT_EQ(makeSphere(20, 1), NullFC);
}

// --- calcVertexNormals --------------------------------------------------------------------

namespace
{

/// Unit face normals of the geometry's triangles summed per position index
/// (strip triangles alternate their first two corners, triangles with a
/// repeated position index are skipped), then normalised.
void averagedFaceNormals(const std::vector<Pnt3f> &pos, const Shape &s, std::vector<Vec3f> &out)
{
    out = std::vector<Vec3f>(pos.size(), Vec3f(0, 0, 0));
    UInt32 start = 0;
    for(size_t p = 0; p < s.types.size(); start += s.lens[p], ++p)
    {
        for(UInt32 k = 0; k + 2 < s.lens[p]; ++k)
        {
            UInt32 c[3] = {s.index[start + k], s.index[start + k + 1], s.index[start + k + 2]};
            if(k & 1)
                std::swap(c[0], c[1]);
            if(c[0] == c[1] || c[1] == c[2] || c[0] == c[2])
                continue;
            Vec3f n = (pos[c[1]] - pos[c[0]]).cross(pos[c[2]] - pos[c[0]]);
            n.normalize();
            for(UInt32 i : c)
                out[i] += n;
        }
    }
    for(Vec3f &n : out)
        n.normalize();
}

} // namespace

TEST(CalcVertexNormalsExact, WavingFlagGetsEquallyWeightedFaceNormals)
{
    // a flag as 29FBOTexture waves it: a plane whose z values change, the
    // normals recomputed into the same property every frame
    GeometryPtr geo = makePlaneGeo(4, 3, 6, 5);
    addRefCP(geo);
    GeoPositions3fPtr pos  = GeoPositions3fPtr::dcast(geo->getPositions());
    GeoNormalsPtr     before = geo->getNormals();
    Shape             layout = planeShape(4, 3, 6, 5);

    for(UInt32 frame = 0; frame < 3; ++frame)
    {
        beginEditCP(pos);
        for(UInt32 i = 0; i < pos->getSize(); ++i)
        {
            Pnt3f &p = pos->getField()[i];
            // uneven triangle sizes: area weighting would give other normals
            p[2] = std::sin(p[0] * (1.5f + frame) + p[1] * p[1]) * .7f;
        }
        endEditCP(pos);

        calcVertexNormals(geo);

        std::vector<Vec3f> want;
        averagedFaceNormals(valuesOf<Pnt3f>(pos), layout, want);
        EXPECT_EQ(geo->getNormals(), before) << "the property is reused";
        expectSameVectors("normal", want,
                          valuesOf<Vec3f>(GeoNormals3fPtr::dcast(geo->getNormals())), 3);
        EXPECT_EQ(std::vector<UInt16>(geo->getMFIndexMapping()->begin(),
                                      geo->getMFIndexMapping()->end()),
                  std::vector<UInt16>{All});
    }
    subRefCP(geo);

    // a torus: the averaged normals come back close to the analytic ones
    GeometryPtr torus = makeTorusGeo(.5f, 2, 32, 48);
    addRefCP(torus);
    Shape exact = torusShape(.5f, 2, 32, 48);
    calcVertexNormals(torus);
    std::vector<Vec3f> want;
    averagedFaceNormals(exact.pos, exact, want);
    expectSameVectors("torus normal", want,
                      valuesOf<Vec3f>(GeoNormals3fPtr::dcast(torus->getNormals())), 3);
    for(UInt32 i = 0; i < exact.norm.size(); ++i)
        EXPECT_GT(want[i].dot(exact.norm[i]), 0.99f) << i;
    subRefCP(torus);
}

TEST(CalcVertexNormalsExact, GeometryWithoutNormalsGetsAGeoNormals3f)
{
    GeometryPtr geo = makePlaneGeo(1, 1, 2, 2);
    addRefCP(geo);
    beginEditCP(geo);
    geo->setNormals(NullFC);
    endEditCP(geo);
    calcVertexNormals(geo);
    GeoNormals3fPtr n = GeoNormals3fPtr::dcast(geo->getNormals());
    ASSERT_NE(n, NullFC);
    ASSERT_EQ(n->getSize(), 9u);
    for(UInt32 i = 0; i < 9; ++i)
        EXPECT_EQ(n->getValue(i), Vec3f(0, 0, 1));
    subRefCP(geo);
}

TEST(CalcVertexNormalsExact, SharedNormalsKeepTheEntriesOthersUse)
{
    // two planes share one normals property; the second one's strips use
    // only its first row of quads
    GeometryPtr a = makePlaneGeo(1, 1, 2, 2);
    GeometryPtr b = makePlaneGeo(1, 1, 2, 2);
    addRefCP(a);
    addRefCP(b);
    GeoNormalsPtr shared = a->getNormals();
    beginEditCP(shared);
    for(UInt32 i = 0; i < shared->getSize(); ++i)
        shared->setValue(Vec3f(1, 0, 0), i);
    endEditCP(shared);
    beginEditCP(b);
    b->setNormals(shared);
    b->getLengths()->setValue(6, 0);
    b->getLengths()->resize(1);
    b->getTypes()->resize(1);
    endEditCP(b);

    calcVertexNormals(b);
    // row 0 and 1 (indices 0..5) are b's, row 2 is only a's
    for(UInt32 i = 0; i < 9; ++i)
        EXPECT_EQ(shared->getValue(i), i < 6 ? Vec3f(0, 0, 1) : Vec3f(1, 0, 0)) << i;
    EXPECT_EQ(b->getNormals(), shared);
    subRefCP(b);
    subRefCP(a);
}
