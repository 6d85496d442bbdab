// Scenes for the texture-coordinate tests: a texture whose texel (x, y)
// has red x and green y, so every pixel tells which texel it shows, quads
// placed under a transform, and the check of every pixel against texture
// coordinates the CPU computes.
#ifndef _TEXTURECOORDINATESCENE_H_
#define _TEXTURECOORDINATESCENE_H_

#include "GeometryRenderScene.h"

#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGTransform.h>

#include <cmath>
#include <functional>
#include <sstream>

namespace texcoordtest
{

using namespace osg;
using namespace geometrytest;

/// 256 x 256 RGB: texel (x, y) is (x, y, 0).
inline ImagePtr coordinateImage(void)
{
    std::vector<UInt8> px(256 * 256 * 3);
    for(UInt32 y = 0; y < 256; ++y)
    {
        for(UInt32 x = 0; x < 256; ++x)
        {
            px[(y * 256 + x) * 3 + 0] = UInt8(x);
            px[(y * 256 + x) * 3 + 1] = UInt8(y);
            px[(y * 256 + x) * 3 + 2] = 0;
        }
    }
    ImagePtr img = Image::create();
    beginEditCP(img);
    img->set(Image::OSG_RGB_PF, 256, 256, 1, 1, 1, 0, &px[0]);
    endEditCP(img);
    return img;
}

inline TextureChunkPtr coordinateTexture(void)
{
    TextureChunkPtr tex = TextureChunk::create();
    ImagePtr        img = coordinateImage();
    beginEditCP(tex);
    tex->setImage(img);
    tex->setMinFilter(GL_NEAREST);
    tex->setMagFilter(GL_NEAREST);
    tex->setEnvMode(GL_REPLACE);
    endEditCP(tex);
    return tex;
}

inline SimpleMaterialPtr texturedMaterial(StateChunkPtr a, StateChunkPtr b = NullFC)
{
    SimpleMaterialPtr m = SimpleMaterial::create();
    beginEditCP(m);
    m->setDiffuse(Color3f(1, 1, 1));
    m->setLit(false);
    m->addChunk(a);
    if(b != NullFC)
        m->addChunk(b);
    endEditCP(m);
    return m;
}

/// The quad of size w x h at its centre (cx, cy, cz), 16 x 16 cells, with
/// the material; under a transform node that places it.
inline NodePtr placedQuad(Real32 w, Real32 h, const Vec3f &centre, Real32 scale, MaterialPtr mat,
                   GeometryPtr *geoOut = NULL)
{
    GeometryPtr geo = makePlaneGeo(w, h, 16, 16);
    beginEditCP(geo, Geometry::MaterialFieldMask);
    geo->setMaterial(mat);
    endEditCP(geo, Geometry::MaterialFieldMask);
    if(geoOut != NULL)
        *geoOut = geo;

    TransformPtr tr = Transform::create();
    Matrix       m;
    m.setTranslate(centre);
    m.setScale(scale);
    beginEditCP(tr, Transform::MatrixFieldMask);
    tr->setMatrix(m);
    endEditCP(tr, Transform::MatrixFieldMask);
    NodePtr n = makeNodeFor(tr);
    beginEditCP(n, Node::ChildrenFieldMask);
    n->addChild(makeNodeFor(geo));
    endEditCP(n, Node::ChildrenFieldMask);
    return n;
}

/// The whole window half a unit in front of the eye, every vertex normal
/// set to normal (a unit vector).
inline NodePtr tiltedQuad(const Vec3f &normal, MaterialPtr mat)
{
    GeometryPtr geo;
    NodePtr     n     = placedQuad(2, 2, Vec3f(0, 0, -0.5f), 1, mat, &geo);
    GeoNormalsPtr norms = geo->getNormals();
    beginEditCP(norms);
    for(UInt32 i = 0; i < norms->getSize(); ++i)
        norms->setValue(normal, i);
    endEditCP(norms);
    return n;
}

inline void addToRoot(RenderScene &s, NodePtr n)
{
    beginEditCP(s.root, Node::ChildrenFieldMask);
    s.root->addChild(n);
    endEditCP(s.root, Node::ChildrenFieldMask);
}

/// The window position of a pixel centre.
inline Real32 clipX(UInt32 px) { return (px + 0.5f) / (W / 2) - 1; }
inline Real32 clipY(UInt32 py) { return (py + 0.5f) / (H / 2) - 1; }

/// The texel index a nearest-filtered, repeating 256-texel axis shows.
inline int texel(Real32 s)
{
    const double f = s - std::floor(s);
    return int(std::floor(f * 256)) & 255;
}

/// Distance of two texel indices on the repeating axis.
inline int texelDistance(int a, int b)
{
    const int d = std::abs(a - b);
    return std::min(d, 256 - d);
}

typedef std::function<bool(Real32 x, Real32 y, Real32 &s, Real32 &t)> Expectation;

/// Every pixel the expectation covers shows texel (s, t), within tolerance
/// texels; returns the number of pixels checked.
inline UInt32 expectTexels(const std::vector<UInt8> &img, const Expectation &want, int tolerance,
                    const char *what)
{
    UInt32            checked = 0, bad = 0;
    std::stringstream first;
    for(UInt32 py = 0; py < H; ++py)
    {
        for(UInt32 px = 0; px < W; ++px)
        {
            Real32 s, t;
            if(!want(clipX(px), clipY(py), s, t))
                continue;
            ++checked;
            const UInt8 *p = pixel(img, px, py);
            if(texelDistance(p[0], texel(s)) > tolerance || texelDistance(p[1], texel(t)) > tolerance)
            {
                if(bad++ == 0)
                    first << " first at (" << px << ", " << py << "): " << int(p[0]) << ","
                          << int(p[1]) << " want " << texel(s) << "," << texel(t);
            }
        }
    }
    EXPECT_EQ(bad, 0u) << what << first.str();
    return checked;
}

/// Inside the rectangle lo..hi, one pixel away from its edges.
inline bool inside(Real32 x, Real32 y, Real32 x0, Real32 y0, Real32 x1, Real32 y1)
{
    const Real32 m = 1.5f / (W / 2);
    return x > x0 + m && x < x1 - m && y > y0 + m && y < y1 - m;
}

/// The sphere-map coordinates OpenGL computes for an eye position and a
/// unit eye normal.
inline void sphereMap(const Vec3f &eye, const Vec3f &n, Real32 &s, Real32 &t)
{
    Vec3f u = eye;
    u.normalize();
    const Vec3f  r = u - n * (2 * n.dot(u));
    const Real32 m = 2 * std::sqrt(r[0] * r[0] + r[1] * r[1] + (r[2] + 1) * (r[2] + 1));
    s              = r[0] / m + 0.5f;
    t              = r[1] / m + 0.5f;
}

} // namespace texcoordtest

#endif
