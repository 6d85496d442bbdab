// The primitives scene: a fountain of soft, blended particles, a
// SortedPrimitives cloud that keeps them back to front, and beside it a
// flower drawn by the sample plug-in through a PrimitiveDrawer.
#include "../DemoScene.h"
#include "../DemoSupport.h"
#include "PrimitiveScenes.h"

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGPrimitiveDrawer.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSortedPrimitives.h>
#include <OpenSG/OSGTextureChunk.h>

#include <cmath>
#include <string>
#include <unistd.h>
#include <vector>

OSG_USING_NAMESPACE

using namespace corvane;

namespace
{

const UInt32 FountainParticles = 8000;


/// A white texture whose alpha falls off smoothly from the centre: each
/// particle is a soft round puff.
ImagePtr makePuff(UInt32 edge)
{
    ImagePtr image = Image::create();
    beginEditCP(image);
    image->set(Image::OSG_RGBA_PF, Int32(edge), Int32(edge));
    UInt8 *p = image->editData();
    for(UInt32 y = 0; y < edge; ++y)
        for(UInt32 x = 0; x < edge; ++x, p += 4)
        {
            const Real32 u = (Real32(x) + 0.5f) / edge * 2.f - 1.f;
            const Real32 v = (Real32(y) + 0.5f) / edge * 2.f - 1.f;
            const Real32 r = osgMin(osgsqrt(u * u + v * v), 1.f);
            p[0] = p[1] = p[2] = 255;
            p[3] = UInt8(255.f * (1.f - r * r) * (1.f - r * r));
        }
    endEditCP(image);
    return image;
}

/// Blended by the particles' alpha, textured with the puff, unlit.
MaterialPtr fountainMaterial(void)
{
    TextureChunkPtr puff = TextureChunk::create();
    beginEditCP(puff);
    puff->setImage(makePuff(64));
    puff->setMinFilter(GL_LINEAR);
    puff->setMagFilter(GL_LINEAR);
    puff->setEnvMode(GL_MODULATE);
    endEditCP(puff);

    ChunkMaterialPtr material = ChunkMaterial::create();
    beginEditCP(material);
    material->addChunk(alphaBlending());
    material->addChunk(puff);
    endEditCP(material);
    return material;
}

/// A small deterministic generator, so every run draws the same fountain.
struct FountainRandom
{
    UInt32 state = 12345u;
    Real32 next(void)
    {
        state = state * 1664525u + 1013904223u;
        return Real32(state >> 8) / Real32(1u << 24);
    }
};

/// Particles thrown up from a nozzle at the origin and falling back: hot
/// and small when young, cooling to violet, growing and fading as they age.
SortedPrimitivesPtr makeFountain(void)
{
    FountainRandom           random;
    std::vector<CloudSquare> particles(FountainParticles);
    for(CloudSquare &particle : particles)
    {
        // a launch velocity in a narrow cone round +y, and a time along the
        // arc up to the landing
        const Real32 around = 2.f * Pi * random.next();
        const Real32 spread = 0.14f * osgsqrt(random.next());
        const Real32 speed  = 6.6f + 0.5f * random.next();
        const Vec3f  v(speed * spread * osgcos(around), speed * (1.f - 0.5f * spread * spread),
                       speed * spread * osgsin(around));
        const Real32 landing = 2.f * v[1] / 9.81f;
        const Real32 age     = random.next();
        const Real32 t       = age * landing;
        particle.ref         = Pnt3f(v[0] * t, v[1] * t - 4.905f * t * t, v[2] * t);

        const Real32 fade = 0.85f * osgpow(1.f - age, 1.5f) + 0.1f;
        if(age < 0.3f)
        {
            const Real32 s = age / 0.3f;
            particle.color.setValuesRGBA(1.f, 1.f - 0.4f * s, 0.8f - 0.7f * s, fade);
        }
        else
        {
            const Real32 s = (age - 0.3f) / 0.7f;
            particle.color.setValuesRGBA(1.f - 0.6f * s, 0.6f - 0.4f * s, 0.1f + 0.85f * s, fade);
        }
        particle.half = 0.04f + 0.1f * age;
    }

    SortedPrimitivesPtr fountain = makeSquareCloud(particles);
    beginEditCP(fountain, SortedPrimitives::SizeFieldMask | SortedPrimitives::MaterialFieldMask);
    fountain->setSize(Vec3f(0.14f, 0.14f, 0.f));
    fountain->setMaterial(fountainMaterial());
    endEditCP(fountain, SortedPrimitives::SizeFieldMask | SortedPrimitives::MaterialFieldMask);
    return fountain;
}

/// The sample plug-in: beside this program's folder in ../lib (the build
/// tree and an installation alike) or in the same folder, else by name on
/// the library search path.
std::string flowerLibName(void)
{
    char        self[4096];
    ssize_t     n = readlink("/proc/self/exe", self, sizeof(self) - 1);
    std::string dir;
    if(n > 0)
    {
        self[n] = 0;
        dir     = self;
        dir     = dir.substr(0, dir.rfind('/'));
    }
    for(const char *where : {"/../lib/", "/"})
    {
        const std::string file = dir + where + "libcorvaneflower.so";
        if(!dir.empty() && access(file.c_str(), R_OK) == 0)
            return file + "#flower";
    }
    return "corvaneflower#flower";
}

PrimitiveDrawerPtr makeFlower(void)
{
    SimpleMaterialPtr plain = SimpleMaterial::create();
    beginEditCP(plain);
    plain->setLit(false);
    endEditCP(plain);

    PrimitiveDrawerPtr flower = PrimitiveDrawer::create();
    beginEditCP(flower);
    flower->setMaterial(plain);
    flower->editLibName() = flowerLibName();
    const char *params[] = {"petals",     "9",           "radius",     "0.8",
                            "stemHeight", "1.7",         "petalColor", "0.95 0.35 0.55",
                            "centerColor", "1 0.78 0.1", "stemColor",  "0.25 0.6 0.2"};
    flower->editMFParamDic()->getValues().assign(std::begin(params), std::end(params));
    endEditCP(flower);
    return flower;
}

bool renderPrimitives(const char *fileName, UInt32 width, UInt32 height)
{
    Holder       h;
    EGLWindowPtr win = openWindow(h, width, height);
    if(win == NullFC)
        return false;

    NodePtr floor = makePlane(24.f, 24.f, 1, 1);
    setMaterial(floor, texturedMaterial(makeChecker(512, 48, Color3f(0.45f, 0.46f, 0.5f),
                                                    Color3f(0.3f, 0.31f, 0.35f)),
                                        Color3f(1.f, 1.f, 1.f)));
    Quaternion flat;
    flat.setValueAsAxisDeg(1.f, 0.f, 0.f, -90.f);

    // a dim light from above for the floor; the particles and the flower
    // are unlit
    NodePtr lightBeacon = makeNodeFor(Group::create());
    DirectionalLightPtr light = DirectionalLight::create();
    beginEditCP(light);
    light->setDirection(Vec3f(0.2f, 1.f, 0.5f));
    light->setDiffuse(Color4f(0.8f, 0.8f, 0.85f, 1.f));
    light->setAmbient(Color4f(0.2f, 0.2f, 0.25f, 1.f));
    light->setBeacon(lightBeacon);
    endEditCP(light);

    NodePtr root = h.keep(makeNodeFor(light));
    beginEditCP(root);
    root->addChild(lightBeacon);
    root->addChild(placed(h, floor, Vec3f(0.f, 0.f, 0.f), flat));
    root->addChild(placed(h, makeNodeFor(makeFountain()), Vec3f(-1.1f, 0.f, 0.f), Quaternion()));
    root->addChild(placed(h, makeNodeFor(makeFlower()), Vec3f(2.f, 0.f, 0.5f), Quaternion()));
    endEditCP(root);

    CameraPtr camera = makeCamera(h, root, Pnt3f(0.3f, 1.6f, 7.f), Pnt3f(0.3f, 1.3f, 0.f), 45.f);
    addPort(h, win, camera, root, makeSolid(h, Color3f(0.05f, 0.06f, 0.1f)), 0.f, 1.f);
    return renderToFile(h, win, fileName);
}

const DemoSceneRegistration primitivesScene(
    "primitives", "a blended fountain of 8000 view-sorted particles beside a plug-in flower",
    renderPrimitives);

} // namespace
