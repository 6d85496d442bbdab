#include "../DemoScene.h"
#include "../DemoSupport.h"

#include <OpenSG/CommonSurfaceShader.h>
#include <OpenSG/OSGCommonSurfaceShaderMaterial.h>
#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGFogChunk.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGPermutationSHLChunk.h>
#include <OpenSG/OSGPointLight.h>
#include <OpenSG/OSGShearedStereoCameraDecorator.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGTextureChunk.h>

OSG_USING_NAMESPACE

using namespace corvane;

namespace
{

/// A tangent-space normal map of round dimples, cells x cells of them.
ImagePtr makeDimples(UInt32 edge, UInt32 cells)
{
    ImagePtr image = Image::create();
    beginEditCP(image);
    image->set(Image::OSG_RGB_PF, Int32(edge), Int32(edge));
    UInt8 *p = image->editData();
    for(UInt32 y = 0; y < edge; ++y)
        for(UInt32 x = 0; x < edge; ++x, p += 3)
        {
            // a dimple in the middle of each cell: the normal leans to its centre
            Real32 cu = Real32(x * cells % edge) / edge - 0.5f;
            Real32 cv = Real32(y * cells % edge) / edge - 0.5f;
            Real32 r  = osgsqrt(cu * cu + cv * cv);
            Vec3f  n(0.f, 0.f, 1.f);
            if(r < 0.4f && r > 0.f)
            {
                Real32 slope = 1.6f * osgsin(r / 0.4f * Pi);
                n            = Vec3f(-cu / r * slope, -cv / r * slope, 1.f);
                n.normalize();
            }
            p[0] = UInt8((n[0] * 0.5f + 0.5f) * 255.f + 0.5f);
            p[1] = UInt8((n[1] * 0.5f + 0.5f) * 255.f + 0.5f);
            p[2] = UInt8((n[2] * 0.5f + 0.5f) * 255.f + 0.5f);
        }
    endEditCP(image);
    return image;
}

TextureChunkPtr makeTexture(ImagePtr image)
{
    TextureChunkPtr tex = TextureChunk::create();
    beginEditCP(tex);
    tex->setImage(image);
    tex->setMinFilter(GL_LINEAR_MIPMAP_LINEAR);
    tex->setMagFilter(GL_LINEAR);
    tex->setWrapS(GL_REPEAT);
    tex->setWrapT(GL_REPEAT);
    endEditCP(tex);
    return tex;
}

/// A dimpled, checkered, glossy surface: the diffuse colour from unit 0,
/// the normal map from unit 1, both through the ready shader.
CommonSurfaceShaderMaterialPtr makeSurface(Holder &h)
{
    CommonSurfaceShaderMaterialPtr m = h.keep(CommonSurfaceShaderMaterial::create());
    Matrix                         tiles;
    tiles.setScale(3.f, 2.f, 1.f);
    beginEditCP(m);
    m->addChunk(makeTexture(makeChecker(128, 8, Color3f(0.95f, 0.75f, 0.35f),
                                        Color3f(0.85f, 0.85f, 0.85f))));
    m->addChunk(makeTexture(makeDimples(256, 8)));
    m->setAmbientFactor(Vec3f(0.3f, 0.3f, 0.3f));
    m->setDiffuseFactor(Vec3f(0.9f, 0.9f, 0.9f));
    m->setDiffuseTextureId(0);
    m->setDiffuseTextureCoordinateTransform(tiles);
    m->setSpecularFactor(Vec3f(0.6f, 0.6f, 0.6f));
    m->setShininessFactor(0.25f);
    m->setNormalTextureId(1);
    m->setNormalTextureCoordinateTransform(tiles);
    // the diffuse (2) and normal (6) families repeat their maps
    Int32 enabled[] = {0, 0, 1, 0, 0, 0, 1};
    for(Int32 e : enabled)
        m->getTextureTransformEnabled().push_back(e);
    endEditCP(m);
    CommonSurfaceShader::apply(m);
    return m;
}

/// The same chunks (the one shader chunk among them) under fog.
ChunkMaterialPtr withFog(Holder &h, const ChunkMaterialPtr &surface)
{
    FogChunkPtr fog = FogChunk::create();
    beginEditCP(fog);
    fog->setMode(GL_LINEAR);
    fog->setStart(5.f);
    fog->setEnd(16.f);
    fog->setColor(Color4f(0.55f, 0.6f, 0.68f, 1.f));
    endEditCP(fog);

    ChunkMaterialPtr foggy = h.keep(ChunkMaterial::create());
    beginEditCP(foggy);
    foggy->addChunk(fog);
    for(UInt32 i = 0; i < surface->getChunks().size(); ++i)
        foggy->addChunk(surface->getChunks()[i]);
    endEditCP(foggy);
    return foggy;
}

GeometryPtr withMaterial(GeometryPtr geo, const MaterialPtr &material)
{
    beginEditCP(geo, Geometry::MaterialFieldMask);
    geo->setMaterial(material);
    endEditCP(geo, Geometry::MaterialFieldMask);
    return geo;
}

/// Puts the lights above objects: each light lights what lies below it.
NodePtr underLights(const std::vector<LightPtr> &lights, NodePtr objects,
                    const NodePtr &beacon)
{
    for(const LightPtr &light : lights)
    {
        beginEditCP(light, Light::BeaconFieldMask);
        light->setBeacon(beacon);
        endEditCP(light, Light::BeaconFieldMask);
        NodePtr n = makeNodeFor(light);
        beginEditCP(n);
        n->addChild(objects);
        endEditCP(n);
        objects = n;
    }
    return objects;
}

LightPtr sun(const Vec3f &towards, const Color3f &c)
{
    DirectionalLightPtr l = DirectionalLight::create();
    beginEditCP(l);
    l->setDirection(towards);
    l->setDiffuse(Color4f(c.red(), c.green(), c.blue(), 1.f));
    l->setSpecular(Color4f(c.red(), c.green(), c.blue(), 1.f));
    l->setAmbient(Color4f(0.04f, 0.04f, 0.05f, 1.f));
    endEditCP(l);
    return l;
}

LightPtr lamp(const Vec3f &at, const Color3f &c)
{
    PointLightPtr l = PointLight::create();
    beginEditCP(l);
    l->setPosition(Pnt3f(at[0], at[1], at[2]));
    l->setDiffuse(Color4f(c.red(), c.green(), c.blue(), 1.f));
    l->setSpecular(Color4f(c.red(), c.green(), c.blue(), 1.f));
    l->setLinearAttenuation(0.15f);
    endEditCP(l);
    return l;
}

/// The lights of one top port: the first count of a warm key light, a blue
/// rim light, a red lamp low on the left and a green lamp high on the right.
std::vector<LightPtr> lightSet(UInt32 count)
{
    std::vector<LightPtr> set;
    set.push_back(sun(Vec3f(-0.6f, 0.7f, 0.6f), Color3f(1.f, 0.92f, 0.8f)));
    if(count > 1)
        set.push_back(sun(Vec3f(1.f, 0.15f, 0.25f), Color3f(0.25f, 0.45f, 1.f)));
    if(count > 2)
    {
        set.push_back(lamp(Vec3f(-2.2f, -1.2f, 1.5f), Color3f(1.f, 0.25f, 0.2f)));
        set.push_back(lamp(Vec3f(2.f, 1.8f, 1.2f), Color3f(0.3f, 1.f, 0.35f)));
    }
    return set;
}

/// A sphere and a torus around the origin, the geometries shared.
NodePtr pair(Holder &h, const GeometryPtr &sphere, const GeometryPtr &torus)
{
    Quaternion tilt;
    tilt.setValueAsAxisDeg(1.f, 0.f, 0.f, 70.f);
    NodePtr group = makeNodeFor(Group::create());
    beginEditCP(group);
    group->addChild(placed(h, makeNodeFor(sphere), Vec3f(0.f, 0.35f, 0.f), Quaternion()));
    group->addChild(placed(h, makeNodeFor(torus), Vec3f(0.f, -0.55f, 0.f), tilt));
    endEditCP(group);
    return group;
}

/// Spheres receding into the fog, in a row on either side.
NodePtr avenue(Holder &h, const GeometryPtr &sphere)
{
    NodePtr group = makeNodeFor(Group::create());
    beginEditCP(group);
    for(int i = 0; i < 6; ++i)
        for(int side = -1; side <= 1; side += 2)
            group->addChild(placed(h, makeNodeFor(sphere),
                                   Vec3f(side * 1.3f, 0.f, 2.f - 3.f * Real32(i)), Quaternion()));
    endEditCP(group);
    return group;
}

/// Top row: one source lit by 1, 2 and 4 lights. Bottom row: a stereo pair
/// of a foggy avenue under 2 lights. Each light set, eye and fog mode runs
/// its own permutation of the one shader chunk.
bool renderPermutation(const char *fileName, UInt32 width, UInt32 height)
{
    Holder       h;
    EGLWindowPtr win = openWindow(h, width, height);
    if(win == NullFC)
        return false;

    CommonSurfaceShaderMaterialPtr surface = makeSurface(h);
    ChunkMaterialPtr               foggy   = withFog(h, surface);

    GeometryPtr sphere      = h.keep(withMaterial(makeSphereGeo(4, 0.75f), surface));
    GeometryPtr torus       = h.keep(withMaterial(makeTorusGeo(0.18f, 0.75f, 24, 48), surface));
    GeometryPtr foggySphere = h.keep(withMaterial(makeSphereGeo(4, 0.8f), foggy));

    BackgroundPtr dark = makeSolid(h, Color3f(0.08f, 0.09f, 0.12f));
    const UInt32  counts[3] = {1, 2, 4};
    for(UInt32 i = 0; i < 3; ++i)
    {
        NodePtr root = h.keep(makeNodeFor(Group::create()));
        CameraPtr camera = makeCamera(h, root, Pnt3f(0.f, 0.4f, 4.2f), Pnt3f(0.f, 0.f, 0.f), 40.f);
        beginEditCP(root);
        root->addChild(underLights(lightSet(counts[i]), pair(h, sphere, torus), root));
        endEditCP(root);
        ViewportPtr port = addPort(h, win, camera, root, dark, i / 3.f, (i + 1) / 3.f);
        beginEditCP(port);
        port->setSize(i / 3.f, 0.5f, (i + 1) / 3.f, 1.f);
        endEditCP(port);
    }

    NodePtr root = h.keep(makeNodeFor(Group::create()));
    PerspectiveCameraPtr camera =
        makeCamera(h, root, Pnt3f(0.f, 1.8f, 6.5f), Pnt3f(0.f, 0.f, -5.f), 45.f);
    beginEditCP(root);
    root->addChild(underLights(lightSet(2), avenue(h, foggySphere), root));
    endEditCP(root);
    BackgroundPtr haze = makeSolid(h, Color3f(0.55f, 0.6f, 0.68f));
    for(int eye = 0; eye < 2; ++eye)
    {
        ShearedStereoCameraDecoratorPtr stereo = h.keep(ShearedStereoCameraDecorator::create());
        beginEditCP(stereo);
        stereo->setDecoratee(camera);
        stereo->setLeftEye(eye == 0);
        stereo->setEyeSeparation(0.25f);
        stereo->setZeroParallaxDistance(5.f);
        endEditCP(stereo);
        ViewportPtr port = addPort(h, win, stereo, root, haze, eye * 0.5f, eye * 0.5f + 0.5f);
        beginEditCP(port);
        port->setSize(eye * 0.5f, 0.f, eye * 0.5f + 0.5f, 0.5f);
        endEditCP(port);
    }

    return renderToFile(h, win, fileName);
}

const DemoSceneRegistration permutationScene(
    "permutation",
    "one shader source compiled per light set (1, 2, 4 lights), per stereo eye and with fog",
    renderPermutation);

} // namespace
