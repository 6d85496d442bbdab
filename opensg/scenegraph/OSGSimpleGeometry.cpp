#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGGL.h>

#include <cmath>
#include <map>
#include <utility>
#include <vector>

OSG_BEGIN_NAMESPACE

// --- default materials -------------------------------------------------------------

namespace
{
SimpleMaterialPtr _defaultMaterial;
SimpleMaterialPtr _defaultUnlitMaterial;
} // namespace

MaterialPtr getDefaultMaterial(void)
{
    if(_defaultMaterial == NullFC)
    {
        _defaultMaterial = SimpleMaterial::create();
        if(_defaultMaterial == NullFC)
            return NullFC;
        beginEditCP(_defaultMaterial);
        _defaultMaterial->setDiffuse(Color3f(.7f, .7f, .5f));
        _defaultMaterial->setAmbient(Color3f(.1f, .1f, .1f));
        _defaultMaterial->setSpecular(Color3f(1.f, 1.f, 1.f));
        _defaultMaterial->setShininess(20.f);
        endEditCP(_defaultMaterial);
        // one reference of its own: it lives as long as the process
        addRefCP(_defaultMaterial);
    }
    return _defaultMaterial;
}

MaterialPtr getDefaultUnlitMaterial(void)
{
    if(_defaultUnlitMaterial == NullFC)
    {
        _defaultUnlitMaterial = SimpleMaterial::create();
        if(_defaultUnlitMaterial == NullFC)
            return NullFC;
        beginEditCP(_defaultUnlitMaterial);
        _defaultUnlitMaterial->setDiffuse(Color3f(1.f, 1.f, .5f));
        _defaultUnlitMaterial->setLit(false);
        endEditCP(_defaultUnlitMaterial);
        addRefCP(_defaultUnlitMaterial);
    }
    return _defaultUnlitMaterial;
}

// --- shared construction -----------------------------------------------------------

namespace
{

/// Vertex data of a shape under construction: single-indexed positions,
/// normals and texture coordinates, and the primitive list.
struct ShapeData
{
    GeoPositions3fPtr  pnts;
    GeoNormals3fPtr    norms;
    GeoTexCoords2fPtr  tex;
    GeoIndicesUI32Ptr  index;
    GeoPTypesUI8Ptr    types;
    GeoPLengthsUI32Ptr lens;

    ShapeData(void)
        : pnts(GeoPositions3f::create()), norms(GeoNormals3f::create()),
          tex(GeoTexCoords2f::create()), index(GeoIndicesUI32::create()),
          types(GeoPTypesUI8::create()), lens(GeoPLengthsUI32::create())
    {
        beginEditCP(pnts);
        beginEditCP(norms);
        beginEditCP(tex);
        beginEditCP(index);
        beginEditCP(types);
        beginEditCP(lens);
    }

    UInt32 vertex(const Pnt3f &p, const Vec3f &n, const Vec2f &t)
    {
        pnts->getField().push_back(p);
        norms->getField().push_back(n);
        tex->getField().push_back(t);
        return pnts->getField().size() - 1;
    }

    void primitive(UInt8 type, UInt32 length)
    {
        types->getField().push_back(type);
        lens->getField().push_back(length);
    }

    /// Strips over a grid of (nu + 1) x (nv + 1) vertices laid out row by
    /// row from `base`: one strip per row, upper vertex first, so that the
    /// front face is the side u x v points to.
    void gridStrips(UInt32 base, UInt32 nu, UInt32 nv)
    {
        for(UInt32 y = 0; y < nv; ++y)
        {
            for(UInt32 x = 0; x <= nu; ++x)
            {
                index->getField().push_back(base + (y + 1) * (nu + 1) + x);
                index->getField().push_back(base + y * (nu + 1) + x);
            }
            primitive(GL_TRIANGLE_STRIP, 2 * (nu + 1));
        }
    }

    /// Strips over a grid of (nu + 1) x (nv + 1) vertices laid out row by
    /// row from 0: one strip per column u, running along v, so that the
    /// front face is the side u x v points to.
    void columnStrips(UInt32 nu, UInt32 nv)
    {
        for(UInt32 u = 0; u < nu; ++u)
        {
            for(UInt32 v = 0; v <= nv; ++v)
            {
                index->getField().push_back(v * (nu + 1) + u);
                index->getField().push_back(v * (nu + 1) + u + 1);
            }
            primitive(GL_TRIANGLE_STRIP, 2 * (nv + 1));
        }
    }

    GeometryPtr finish(void)
    {
        endEditCP(pnts);
        endEditCP(norms);
        endEditCP(tex);
        endEditCP(index);
        endEditCP(types);
        endEditCP(lens);

        GeometryPtr geo = Geometry::create();
        beginEditCP(geo);
        geo->setMaterial(getDefaultMaterial());
        geo->setPositions(pnts);
        geo->setNormals(norms);
        geo->setTexCoords(tex);
        geo->setIndices(index);
        geo->getMFIndexMapping()->push_back(Geometry::MapPosition | Geometry::MapNormal |
                                            Geometry::MapTexCoords);
        geo->setTypes(types);
        geo->setLengths(lens);
        endEditCP(geo);
        return geo;
    }
};

/// Shapes stay below this many vertices (about 270 MB of vertex data):
/// a bigger one is refused with a warning instead of being allocated.
const UInt64 MaxShapeVertices = UInt64(1) << 23;

bool vertexCountBounded(const char *maker, UInt64 vertices)
{
    if(vertices <= MaxShapeVertices)
        return true;
    SWARNING << maker << ": " << vertices << " vertices are too many, at most "
             << MaxShapeVertices << std::endl;
    return false;
}

NodePtr makeNodeFor(GeometryPtr geo)
{
    if(geo == NullFC)
        return NullFC;
    NodePtr node = Node::create();
    beginEditCP(node, Node::CoreFieldMask);
    node->setCore(geo);
    endEditCP(node, Node::CoreFieldMask);
    return node;
}

} // namespace

// --- plane ---------------------------------------------------------------------------

GeometryPtr makePlaneGeo(Real32 xsize, Real32 ysize, UInt16 hor, UInt16 vert)
{
    if(!hor || !vert)
    {
        SWARNING << "makePlane: illegal parameters hor=" << hor << ", vert=" << vert
                 << std::endl;
        return NullFC;
    }
    if(!vertexCountBounded("makePlane", UInt64(hor + 1) * (vert + 1)))
        return NullFC;

    ShapeData d;
    Real32    xstep = xsize / hor;
    Real32    ystep = ysize / vert;

    for(UInt32 y = 0; y <= vert; ++y)
    {
        for(UInt32 x = 0; x <= hor; ++x)
        {
            d.vertex(Pnt3f(x * xstep - xsize / 2, y * ystep - ysize / 2, 0),
                     Vec3f(0, 0, 1),
                     Vec2f(x / Real32(hor), y / Real32(vert)));
        }
    }
    d.gridStrips(0, hor, vert);
    return d.finish();
}

NodePtr makePlane(Real32 xsize, Real32 ysize, UInt16 hor, UInt16 vert)
{
    return makeNodeFor(makePlaneGeo(xsize, ysize, hor, vert));
}

// --- box -----------------------------------------------------------------------------

GeometryPtr makeBoxGeo(Real32 xsize, Real32 ysize, Real32 zsize,
                       UInt16 hor, UInt16 vert, UInt16 depth)
{
    if(!hor || !vert || !depth)
    {
        SWARNING << "makeBox: illegal parameters hor=" << hor << ", vert=" << vert
                 << ", depth=" << depth << std::endl;
        return NullFC;
    }
    const UInt64 vertices = 2 * (UInt64(hor + 1) * (vert + 1) + UInt64(depth + 1) * (vert + 1) +
                                 UInt64(hor + 1) * (depth + 1));
    if(!vertexCountBounded("makeBox", vertices))
        return NullFC;

    const Real32 size[3] = {xsize, ysize, zsize};
    const Real32 res[3]  = {Real32(hor), Real32(vert), Real32(depth)};
    const Real32 step[3] = {xsize / hor, ysize / vert, zsize / depth};

    // per face: the two parameter axes, the normal axis and their signs
    static const struct
    {
        Int32  a, b, n;
        Real32 sa, sb, sn;
    } faces[6] = {{0, 1, 2, 1, 1, 1},  {0, 1, 2, -1, 1, -1}, {2, 1, 0, -1, 1, 1},
                  {2, 1, 0, 1, 1, -1}, {0, 2, 1, 1, -1, 1},  {0, 2, 1, 1, 1, -1}};

    ShapeData d;
    for(UInt32 f = 0; f < 6; ++f)
    {
        const Int32 a = faces[f].a, b = faces[f].b, n = faces[f].n;
        const UInt32 na = UInt32(res[a]), nb = UInt32(res[b]);
        Vec3f normal(0, 0, 0);
        normal[n] = faces[f].sn;

        UInt32 base = d.pnts->getField().size();
        for(UInt32 j = 0; j <= nb; ++j)
        {
            for(UInt32 i = 0; i <= na; ++i)
            {
                Pnt3f p;
                p[a] = (i * step[a] - size[a] / 2) * faces[f].sa;
                p[b] = (j * step[b] - size[b] / 2) * faces[f].sb;
                p[n] = (size[n] * faces[f].sn) / 2;
                d.vertex(p, normal, Vec2f(i / res[a], j / res[b]));
            }
        }
        d.gridStrips(base, na, nb);
    }
    return d.finish();
}

NodePtr makeBox(Real32 xsize, Real32 ysize, Real32 zsize, UInt16 hor, UInt16 vert, UInt16 depth)
{
    return makeNodeFor(makeBoxGeo(xsize, ysize, zsize, hor, vert, depth));
}

// --- spheres -------------------------------------------------------------------------

namespace
{

const Real32 SphereHalfPi = Real32(1.570796326794897);
const Real32 SphereTwoPi  = Real32(6.283185307179586);

/// Longitude/latitude texture coordinate of a unit normal: s = 0 at -z,
/// growing towards -x, +z, +x; t = 0 at the south pole.
Vec2f sphereTexCoord(const Vec3f &n)
{
    Real32 t   = (Pi - osgacos(osgClamp(-1.f, n[1], 1.f))) / Pi;
    Real32 phi = osgatan2(-n[2], n[0]) - SphereHalfPi;
    if(phi <= -Eps)
        phi += SphereTwoPi;
    return Vec2f(phi / SphereTwoPi, t);
}

/// The icosahedron's subdivision: every split appends its own three edge
/// midpoints (they are not shared with the neighbours) and writes index
/// pairs (position/normal, texture coordinate).
struct IcoBuilder
{
    ShapeData &d;
    Real32     radius;

    UInt32 midpoint(UInt32 i, UInt32 j)
    {
        const Pnt3f &p = d.pnts->getField()[i];
        const Pnt3f &q = d.pnts->getField()[j];
        Vec3f        n;
        for(UInt32 c = 0; c < 3; ++c)
            n[c] = (p[c] + (q[c] - p[c]) * 0.5f) / 2;
        n.normalize();
        return d.vertex(Pnt3f(n * radius), n, sphereTexCoord(n));
    }

    void subdivide(UInt32 i1, UInt32 i2, UInt32 i3, UInt32 depth)
    {
        if(depth == 0)
        {
            const UInt32 tri[3] = {i1, i2, i3};
            for(UInt32 c = 0; c < 3; ++c)
            {
                d.index->getField().push_back(tri[c]);
                d.index->getField().push_back(tri[c]);
            }
            return;
        }
        UInt32 i12 = midpoint(i1, i2);
        UInt32 i23 = midpoint(i2, i3);
        UInt32 i31 = midpoint(i3, i1);
        subdivide(i1, i12, i31, depth - 1);
        subdivide(i2, i23, i12, depth - 1);
        subdivide(i3, i31, i23, depth - 1);
        subdivide(i12, i23, i31, depth - 1);
    }
};

/// Gives the vertices on the texture seam (x = 0, z <= 0) of the
/// triangles that cross it their own texture coordinate: s = 1 for a
/// triangle on the +x side, 0 on the -x side, 0.5 at the poles.
void fixSphereSeam(GeometryPtr geo)
{
    GeoTexCoords2fPtr tex   = GeoTexCoords2fPtr::dcast(geo->getTexCoords());
    GeoIndicesUI32Ptr index = GeoIndicesUI32Ptr::dcast(geo->getIndices());

    beginEditCP(geo);
    beginEditCP(tex);
    beginEditCP(index);
    for(TriangleIterator it = geo->beginTriangles(); !it.isAtEnd(); ++it)
    {
        Vec3f q[3] = {it.getNormal(0), it.getNormal(1), it.getNormal(2)};
        bool  nearSeam = false, westward = false;
        for(UInt32 c = 0; c < 3; ++c)
        {
            if(osgabs(q[c][0]) <= 0.01f && q[c][2] <= Eps)
                nearSeam = true;
            if(q[c][0] <= -Eps)
                westward = true;
        }
        if(!nearSeam)
            continue;
        for(Int32 c = 0; c < 3; ++c)
        {
            const Vec3f &n = q[c];
            if(osgabs(n[0]) > Eps || n[2] > Eps)
                continue;
            Real32 s = westward ? 0.f : 1.f;
            if(osgabs(osgabs(n[1]) - 1) <= Eps)
                s = 0.5f;
            Vec2f t = it.getTexCoords(c);
            tex->getField().push_back(Vec2f(s, t[1]));
            index->getField()[it.getIndexIndex(c) + 1] = tex->getField().size() - 1;
        }
    }
    endEditCP(index);
    endEditCP(tex);
    endEditCP(geo);
}

} // namespace

GeometryPtr makeSphereGeo(UInt16 depth, Real32 radius)
{
    // 12 + 20 * (4^depth - 1) vertices
    const UInt64 vertices = 12 + 20 * ((UInt64(1) << (2 * std::min<UInt32>(depth, 16))) - 1);
    if(!vertexCountBounded("makeSphere", vertices))
        return NullFC;

    const Real32 X = Real32(0.525731112119133606), Z = Real32(0.850650808352039932);
    Vec3f        v[12] = {Vec3f(-X, 0, Z), Vec3f(X, 0, Z),   Vec3f(-X, 0, -Z),
                          Vec3f(X, 0, -Z), Vec3f(0, Z, X),   Vec3f(0, Z, -X),
                          Vec3f(0, -Z, X), Vec3f(0, -Z, -X), Vec3f(Z, X, 0),
                          Vec3f(-Z, X, 0), Vec3f(Z, -X, 0),  Vec3f(-Z, -X, 0)};
    const UInt32 faces[20][3] = {{1, 4, 0},  {4, 9, 0},  {4, 5, 9},  {8, 5, 4},  {1, 8, 4},
                                 {1, 10, 8}, {10, 3, 8}, {8, 3, 5},  {3, 2, 5},  {3, 7, 2},
                                 {3, 10, 7}, {10, 6, 7}, {6, 11, 7}, {6, 0, 11}, {6, 1, 0},
                                 {10, 1, 6}, {11, 0, 9}, {2, 11, 9}, {5, 2, 9},  {11, 2, 7}};

    // turn v0 onto +x
    Quaternion q(Vec3f(0, 1, 0), osgacos(Z) + SphereHalfPi);
    Matrix     m;
    m.setTransform(q);

    ShapeData d;
    for(UInt32 j = 0; j < 12; ++j)
    {
        m.mult3x3(Vec3f(v[j]), v[j]);
        Real32 len    = v[j].length();
        Real32 factor = len != 0 ? radius / len : 1.f;
        Vec3f  n      = v[j];
        n.normalize();
        d.vertex(Pnt3f(v[j] * factor), n, sphereTexCoord(n));
    }

    IcoBuilder build = {d, radius};
    for(UInt32 f = 0; f < 20; ++f)
        build.subdivide(faces[f][0], faces[f][1], faces[f][2], depth);
    d.primitive(GL_TRIANGLES, d.index->getField().size() / 2);

    GeometryPtr geo = d.finish();
    beginEditCP(geo, Geometry::IndexMappingFieldMask);
    geo->getMFIndexMapping()->clear();
    geo->getMFIndexMapping()->push_back(Geometry::MapPosition | Geometry::MapNormal);
    geo->getMFIndexMapping()->push_back(Geometry::MapTexCoords);
    endEditCP(geo, Geometry::IndexMappingFieldMask);

    fixSphereSeam(geo);
    return geo;
}

NodePtr makeSphere(UInt16 depth, Real32 radius)
{
    return makeNodeFor(makeSphereGeo(depth, radius));
}

GeometryPtr makeLatLongSphereGeo(UInt16 latres, UInt16 longres, Real32 radius)
{
    if(radius <= 0 || latres < 4 || longres < 4)
    {
        SWARNING << "makeLatLongSphere: illegal parameters latres=" << latres
                 << ", longres=" << longres << ", radius=" << radius << std::endl;
        return NullFC;
    }
    if(!vertexCountBounded("makeLatLongSphere", UInt64(latres + 1) * (longres + 1)))
        return NullFC;

    const Real32 latDelta  = Pi / latres;
    const Real32 longDelta = (2 * Pi) / longres;

    ShapeData d;
    Real32    theta = -Pi / 2;
    for(UInt32 a = 0; a <= latres; ++a, theta += latDelta)
    {
        const Real32 cosTheta = osgcos(theta), sinTheta = osgsin(theta);
        Real32       phi      = -Pi;
        for(UInt32 b = 0; b <= longres; ++b, phi += longDelta)
        {
            const Real32 cosPhi = osgcos(phi), sinPhi = osgsin(phi);
            d.vertex(Pnt3f(cosTheta * sinPhi * radius, sinTheta * radius,
                           cosTheta * cosPhi * radius),
                     Vec3f(cosTheta * sinPhi, sinTheta, cosTheta * cosPhi),
                     Vec2f(b / Real32(longres), a / Real32(latres)));
        }
    }
    d.columnStrips(longres, latres);
    return d.finish();
}

NodePtr makeLatLongSphere(UInt16 latres, UInt16 longres, Real32 radius)
{
    return makeNodeFor(makeLatLongSphereGeo(latres, longres, radius));
}

// --- torus -----------------------------------------------------------------------------

GeometryPtr makeTorusGeo(Real32 innerRadius, Real32 outerRadius, UInt16 sides, UInt16 rings)
{
    if(innerRadius <= 0 || outerRadius <= 0 || sides < 3 || rings < 3)
    {
        SWARNING << "makeTorus: illegal parameters innerRadius=" << innerRadius
                 << ", outerRadius=" << outerRadius << ", sides=" << sides
                 << ", rings=" << rings << std::endl;
        return NullFC;
    }
    if(!vertexCountBounded("makeTorus", UInt64(sides + 1) * (rings + 1)))
        return NullFC;

    const Real32 ringDelta = (2 * Pi) / rings;
    const Real32 sideDelta = (2 * Pi) / sides;

    ShapeData d;
    Real32    theta = 0;
    for(UInt32 a = 0; a <= rings; ++a, theta += ringDelta)
    {
        const Real32 cosTheta = osgcos(theta), sinTheta = osgsin(theta);
        Real32       phi      = 0;
        for(UInt32 b = 0; b <= sides; ++b, phi += sideDelta)
        {
            const Real32 cosPhi = osgcos(phi), sinPhi = osgsin(phi);
            const Real32 r      = outerRadius + innerRadius * cosPhi;
            d.vertex(Pnt3f(cosTheta * r, -sinTheta * r, innerRadius * sinPhi),
                     Vec3f(cosTheta * cosPhi, -sinTheta * cosPhi, sinPhi),
                     Vec2f(-Real32(a) / rings, b / Real32(sides)));
        }
    }
    d.columnStrips(sides, rings);
    return d.finish();
}

NodePtr makeTorus(Real32 innerRadius, Real32 outerRadius, UInt16 sides, UInt16 rings)
{
    return makeNodeFor(makeTorusGeo(innerRadius, outerRadius, sides, rings));
}

// --- cones and cylinders ----------------------------------------------------------------

GeometryPtr makeConicalFrustumGeo(Real32 height, Real32 topradius, Real32 botradius,
                                  UInt16 sides, bool doSide, bool doTop, bool doBottom)
{
    if(height <= 0 || topradius < 0 || botradius < 0 || sides < 3)
    {
        SWARNING << "makeConicalFrustum: illegal parameters height=" << height
                 << ", topradius=" << topradius << ", botradius=" << botradius
                 << ", sides=" << sides << std::endl;
        return NullFC;
    }

    ShapeData    d;
    const Real32 delta = (2 * Pi) / sides;
    const Real32 incl  = (botradius - topradius) / height;
    const Real32 k     = 1 / osgsqrt(1 + incl * incl);

    if(doSide)
    {
        UInt32 base = d.pnts->getField().size();
        // the top ring, then the bottom ring; the seam vertex repeats
        for(UInt32 ring = 0; ring < 2; ++ring)
        {
            const Real32 r = ring == 0 ? topradius : botradius;
            const Real32 y = ring == 0 ? height / 2 : -height / 2;
            for(UInt32 j = 0; j <= sides; ++j)
            {
                const Real32 beta = Real32(j) * delta;
                const Real32 s = osgsin(beta), c = -osgcos(beta);
                d.vertex(Pnt3f(s * r, y, c * r), Vec3f(s / k, incl / k, c / k),
                         Vec2f(1 - j / Real32(sides), ring == 0 ? 1.f : 0.f));
            }
        }
        for(UInt32 j = 0; j <= sides; ++j)
        {
            d.index->getField().push_back(base + sides + 1 + j);
            d.index->getField().push_back(base + j);
        }
        d.primitive(GL_TRIANGLE_STRIP, 2 * (sides + 1));
    }

    // the caps are polygons without a centre vertex, counter-clockwise
    // seen from outside
    for(UInt32 cap = 0; cap < 2; ++cap)
    {
        const bool   top = cap == 0;
        const Real32 r   = top ? topradius : botradius;
        if(!(top ? doTop : doBottom) || r <= 0)
            continue;
        const Real32 y    = top ? height / 2 : -height / 2;
        UInt32       base = d.pnts->getField().size();
        for(Int32 j = Int32(sides) - 1; j >= 0; --j)
        {
            const Real32 beta = Real32(j) * delta;
            const Real32 x = r * osgsin(beta), z = -r * osgcos(beta);
            d.vertex(Pnt3f(x, y, z), Vec3f(0, top ? 1.f : -1.f, 0),
                     top ? Vec2f(x / r / 2 + 0.5f, -z / r / 2 + 0.5f)
                         : Vec2f(x / r / 2 + 0.5f, z / r / 2 + 0.5f));
        }
        for(UInt32 i = 0; i < sides; ++i)
            d.index->getField().push_back(top ? base + i : base + sides - 1 - i);
        d.primitive(GL_POLYGON, sides);
    }

    return d.finish();
}

NodePtr makeConicalFrustum(Real32 height, Real32 topradius, Real32 botradius, UInt16 sides,
                           bool doSide, bool doTop, bool doBottom)
{
    return makeNodeFor(
        makeConicalFrustumGeo(height, topradius, botradius, sides, doSide, doTop, doBottom));
}

GeometryPtr makeConeGeo(Real32 height, Real32 botradius, UInt16 sides, bool doSide, bool doBottom)
{
    return makeConicalFrustumGeo(height, 0, botradius, sides, doSide, false, doBottom);
}

NodePtr makeCone(Real32 height, Real32 botradius, UInt16 sides, bool doSide, bool doBottom)
{
    return makeNodeFor(makeConeGeo(height, botradius, sides, doSide, doBottom));
}

GeometryPtr makeCylinderGeo(Real32 height, Real32 radius, UInt16 sides, bool doSide, bool doTop,
                            bool doBottom)
{
    return makeConicalFrustumGeo(height, radius, radius, sides, doSide, doTop, doBottom);
}

NodePtr makeCylinder(Real32 height, Real32 radius, UInt16 sides, bool doSide, bool doTop,
                     bool doBottom)
{
    return makeNodeFor(makeCylinderGeo(height, radius, sides, doSide, doTop, doBottom));
}

OSG_END_NAMESPACE
