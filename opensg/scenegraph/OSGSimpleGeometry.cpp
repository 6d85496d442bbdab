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

    ShapeData d;
    Real32    xstep = xsize / hor;
    Real32    ystep = ysize / vert;

    for(UInt16 y = 0; y <= vert; ++y)
    {
        for(UInt16 x = 0; x <= hor; ++x)
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

    Real32 hx = xsize / 2, hy = ysize / 2, hz = zsize / 2;

    // per face: corner, u edge, v edge (u x v points out), resolution
    struct Face
    {
        Pnt3f  origin;
        Vec3f  u;
        Vec3f  v;
        UInt16 nu;
        UInt16 nv;
    } faces[6] = {
        {Pnt3f(-hx, -hy, hz), Vec3f(xsize, 0, 0), Vec3f(0, ysize, 0), hor, vert},    // +z
        {Pnt3f(hx, -hy, -hz), Vec3f(-xsize, 0, 0), Vec3f(0, ysize, 0), hor, vert},   // -z
        {Pnt3f(hx, -hy, hz), Vec3f(0, 0, -zsize), Vec3f(0, ysize, 0), depth, vert},  // +x
        {Pnt3f(-hx, -hy, -hz), Vec3f(0, 0, zsize), Vec3f(0, ysize, 0), depth, vert}, // -x
        {Pnt3f(-hx, hy, hz), Vec3f(xsize, 0, 0), Vec3f(0, 0, -zsize), hor, depth},   // +y
        {Pnt3f(-hx, -hy, -hz), Vec3f(xsize, 0, 0), Vec3f(0, 0, zsize), hor, depth},  // -y
    };

    ShapeData d;
    for(UInt32 f = 0; f < 6; ++f)
    {
        const Face &face = faces[f];
        Vec3f       n    = face.u.cross(face.v);
        n.normalize();
        UInt32 base = d.pnts->getField().size();
        for(UInt16 y = 0; y <= face.nv; ++y)
        {
            for(UInt16 x = 0; x <= face.nu; ++x)
            {
                Real32 s = x / Real32(face.nu), t = y / Real32(face.nv);
                d.vertex(face.origin + face.u * s + face.v * t, n, Vec2f(s, t));
            }
        }
        d.gridStrips(base, face.nu, face.nv);
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

Vec2f sphereTexCoord(const Vec3f &n)
{
    Real32 u = std::atan2(n[0], n[2]) / (2 * Pi) + 0.5f;
    Real32 v = std::asin(osgClamp(-1.f, n[1], 1.f)) / Pi + 0.5f;
    return Vec2f(u, v);
}

} // namespace

GeometryPtr makeSphereGeo(UInt16 depth, Real32 radius)
{
    // the icosahedron: 12 vertices on three golden rectangles
    const Real32 a = 0.525731112119133606f, b = 0.850650808352039932f;
    const Vec3f  ico[12] = {Vec3f(-a, 0, b), Vec3f(a, 0, b),   Vec3f(-a, 0, -b),
                            Vec3f(a, 0, -b), Vec3f(0, b, a),   Vec3f(0, b, -a),
                            Vec3f(0, -b, a), Vec3f(0, -b, -a), Vec3f(b, a, 0),
                            Vec3f(-b, a, 0), Vec3f(b, -a, 0),  Vec3f(-b, -a, 0)};
    const UInt32 faces[20][3] = {{1, 4, 0},  {4, 9, 0},  {4, 5, 9},  {8, 5, 4},  {1, 8, 4},
                                 {1, 10, 8}, {10, 3, 8}, {8, 3, 5},  {3, 2, 5},  {3, 7, 2},
                                 {3, 10, 7}, {10, 6, 7}, {6, 11, 7}, {6, 0, 11}, {6, 1, 0},
                                 {10, 1, 6}, {11, 0, 9}, {2, 11, 9}, {5, 2, 9},  {11, 2, 7}};

    std::vector<Vec3f>  dirs(ico, ico + 12);
    std::vector<UInt32> tris;
    for(UInt32 f = 0; f < 20; ++f)
        tris.insert(tris.end(), faces[f], faces[f] + 3);

    // each step splits every triangle in four; edge midpoints are shared
    for(UInt16 level = 0; level < depth; ++level)
    {
        std::map<std::pair<UInt32, UInt32>, UInt32> mid;
        std::vector<UInt32>                         next;
        next.reserve(tris.size() * 4);

        auto midpoint = [&](UInt32 i, UInt32 j) -> UInt32 {
            std::pair<UInt32, UInt32> key(std::min(i, j), std::max(i, j));
            std::map<std::pair<UInt32, UInt32>, UInt32>::iterator it = mid.find(key);
            if(it != mid.end())
                return it->second;
            Vec3f m = dirs[i] + dirs[j];
            m.normalize();
            dirs.push_back(m);
            mid[key] = UInt32(dirs.size() - 1);
            return UInt32(dirs.size() - 1);
        };

        for(size_t t = 0; t < tris.size(); t += 3)
        {
            UInt32 v0 = tris[t], v1 = tris[t + 1], v2 = tris[t + 2];
            UInt32 m01 = midpoint(v0, v1), m12 = midpoint(v1, v2), m20 = midpoint(v2, v0);
            UInt32 sub[12] = {v0, m01, m20, m01, v1, m12, m20, m12, v2, m01, m12, m20};
            next.insert(next.end(), sub, sub + 12);
        }
        tris.swap(next);
    }

    ShapeData d;
    for(size_t i = 0; i < dirs.size(); ++i)
        d.vertex(Pnt3f(dirs[i] * radius), dirs[i], sphereTexCoord(dirs[i]));
    for(size_t t = 0; t < tris.size(); ++t)
        d.index->getField().push_back(tris[t]);
    d.primitive(GL_TRIANGLES, UInt32(tris.size()));
    return d.finish();
}

NodePtr makeSphere(UInt16 depth, Real32 radius)
{
    return makeNodeFor(makeSphereGeo(depth, radius));
}

GeometryPtr makeLatLongSphereGeo(UInt16 latres, UInt16 longres, Real32 radius)
{
    if(latres < 2 || longres < 3)
    {
        SWARNING << "makeLatLongSphere: illegal parameters latres=" << latres
                 << ", longres=" << longres << std::endl;
        return NullFC;
    }

    ShapeData d;
    for(UInt16 i = 0; i <= latres; ++i)
    {
        Real32 theta = Pi * i / latres - Pi / 2;
        for(UInt16 j = 0; j <= longres; ++j)
        {
            Real32 phi = 2 * Pi * j / longres;
            Vec3f  n(std::cos(theta) * std::sin(phi), std::sin(theta),
                     std::cos(theta) * std::cos(phi));
            d.vertex(Pnt3f(n * radius), n, Vec2f(j / Real32(longres), i / Real32(latres)));
        }
    }
    d.gridStrips(0, longres, latres);
    return d.finish();
}

NodePtr makeLatLongSphere(UInt16 latres, UInt16 longres, Real32 radius)
{
    return makeNodeFor(makeLatLongSphereGeo(latres, longres, radius));
}

// --- torus -----------------------------------------------------------------------------

GeometryPtr makeTorusGeo(Real32 innerRadius, Real32 outerRadius, UInt16 sides, UInt16 rings)
{
    if(sides < 3 || rings < 3)
    {
        SWARNING << "makeTorus: illegal parameters sides=" << sides << ", rings=" << rings
                 << std::endl;
        return NullFC;
    }

    ShapeData d;
    // rows run around the tube, columns around the ring: ring direction x
    // tube direction points out of the surface
    for(UInt16 b = 0; b <= sides; ++b)
    {
        Real32 phi = 2 * Pi * b / sides;
        for(UInt16 a = 0; a <= rings; ++a)
        {
            Real32 theta = 2 * Pi * a / rings;
            Vec3f  n(std::cos(phi) * std::cos(theta), std::cos(phi) * std::sin(theta),
                     std::sin(phi));
            Pnt3f  c(outerRadius * std::cos(theta), outerRadius * std::sin(theta), 0);
            d.vertex(c + n * innerRadius, n, Vec2f(a / Real32(rings), b / Real32(sides)));
        }
    }
    d.gridStrips(0, rings, sides);
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
    if(sides < 3 || height <= 0 || topradius < 0 || botradius < 0)
    {
        SWARNING << "makeConicalFrustum: illegal parameters height=" << height
                 << ", topradius=" << topradius << ", botradius=" << botradius
                 << ", sides=" << sides << std::endl;
        return NullFC;
    }

    ShapeData d;
    Real32    hh = height / 2;

    if(doSide)
    {
        UInt32 first = d.pnts->getField().size();
        for(UInt16 j = 0; j <= sides; ++j)
        {
            Real32 phi = 2 * Pi * j / sides;
            Real32 s = std::sin(phi), c = std::cos(phi);
            Vec3f  n(height * s, botradius - topradius, height * c);
            n.normalize();
            d.vertex(Pnt3f(topradius * s, hh, topradius * c), n, Vec2f(j / Real32(sides), 1));
            d.vertex(Pnt3f(botradius * s, -hh, botradius * c), n, Vec2f(j / Real32(sides), 0));
        }
        for(UInt32 i = 0; i < 2 * (sides + 1u); ++i)
            d.index->getField().push_back(first + i);
        d.primitive(GL_TRIANGLE_STRIP, 2 * (sides + 1));
    }

    // caps: fans seen counter-clockwise from outside
    for(UInt32 cap = 0; cap < 2; ++cap)
    {
        bool   top = cap == 0;
        Real32 r   = top ? topradius : botradius;
        if((top && !doTop) || (!top && !doBottom) || r <= 0)
            continue;
        Real32 y     = top ? hh : -hh;
        Vec3f  n(0, top ? 1.f : -1.f, 0);
        UInt32 first = d.vertex(Pnt3f(0, y, 0), n, Vec2f(.5f, .5f));
        for(UInt16 j = 0; j <= sides; ++j)
        {
            Real32 phi = 2 * Pi * (top ? j : sides - j) / sides;
            Real32 s = std::sin(phi), c = std::cos(phi);
            d.vertex(Pnt3f(r * s, y, r * c), n, Vec2f(.5f + .5f * s, .5f + .5f * c));
        }
        for(UInt32 i = 0; i < sides + 2u; ++i)
            d.index->getField().push_back(first + i);
        d.primitive(GL_TRIANGLE_FAN, sides + 2);
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
