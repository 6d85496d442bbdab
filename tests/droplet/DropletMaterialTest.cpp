// The display material of each matMode: the chunks the simulation adds to
// the application's material, their slots and uniforms; and the wet object
// on screen in modes 1 (the fluid alone, blended over what is behind) and
// 2 (the object's texture under the fluid), pixel for pixel against the
// display shaders' formulas.
#include "DropletTestSupport.h"

#include <OpenSG/OSGBlendChunk.h>
#include <OpenSG/OSGDepthChunk.h>
#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGMaterialChunk.h>
#include <OpenSG/OSGPolygonChunk.h>
#include <OpenSG/OSGTransform.h>

#include <cmath>
#include <memory>

using namespace droplettest;

namespace
{

const Vec4f  Fluid(0.1f, 0.2f, 0.9f, 1.f);
const Vec3f  Paint(0.8f, 0.6f, 0.2f);    // the object's own texture
const Vec3f  LightPoint(3.f, 0.f, 1.f);  // the light's direction, as the shader reads it
const Real32 PlaneDistance = 2.f;

class DropletMaterialTest : public DropletFixture
{
  protected:
    /// A flow of 16 x 16 maps whose object is a finely divided 2 x 2 plane
    /// two units in front of the camera, under a directional light.
    std::unique_ptr<DropletFlow> flowOnScreen(int matMode, ChunkMaterialPtr mat)
    {
        NodePtr plane = wetPlane(2.f, 16);
        GeometryPtr geo = GeometryPtr::dcast(plane->getCore());
        beginEditCP(geo, Geometry::MaterialFieldMask);
        geo->setMaterial(mat);
        endEditCP(geo, Geometry::MaterialFieldMask);

        TransformPtr xform = Transform::create();
        Matrix       m;
        m.setTranslate(0.f, 0.f, -PlaneDistance);
        beginEditCP(xform);
        xform->setMatrix(m);
        endEditCP(xform);
        NodePtr placed = Node::create();
        beginEditCP(placed);
        placed->setCore(xform);
        placed->addChild(plane);
        endEditCP(placed);

        NodePtr lightBeacon = Node::create();
        beginEditCP(lightBeacon);
        lightBeacon->setCore(Group::create());
        endEditCP(lightBeacon);
        DirectionalLightPtr light = DirectionalLight::create();
        beginEditCP(light);
        light->setDirection(LightPoint);
        light->setAmbient(Color4f(0.2f, 0.2f, 0.2f, 1.f));
        light->setBeacon(lightBeacon);
        endEditCP(light);
        NodePtr lit = Node::create();
        beginEditCP(lit);
        lit->setCore(light);
        lit->addChild(lightBeacon);
        lit->addChild(placed);
        endEditCP(lit);

        beginEditCP(root, Node::ChildrenFieldMask);
        root->addChild(lit);
        endEditCP(root, Node::ChildrenFieldMask);

        std::unique_ptr<DropletFlow> f(new DropletFlow(plane, mat, 16, 16, matMode, NullFC));
        f->setDisplayParams(Fluid);

        // the left half of the map is wet, the right half dry
        Map state;
        state.w = state.h = 16;
        state.t.assign(256, Vec4f(0.f, 0.f, 0.f, 0.f));
        for(int y = 0; y < 16; ++y)
            for(int x = 0; x < 8; ++x)
                state.at(x, y)[2] = 1.f;
        write(f->getSurfaceMap(0), state);
        return f;
    }

    TextureChunkPtr paint(void)
    {
        ImagePtr img = Image::create();
        img->set(GL_RGB, 4, 4);
        for(UInt32 i = 0; i < 16; ++i)
        {
            img->getData()[3 * i + 0] = UInt8(Paint[0] * 255.f);
            img->getData()[3 * i + 1] = UInt8(Paint[1] * 255.f);
            img->getData()[3 * i + 2] = UInt8(Paint[2] * 255.f);
        }
        TextureChunkPtr tex = TextureChunk::create();
        beginEditCP(tex);
        tex->setImage(img);
        tex->setMinFilter(GL_NEAREST);
        tex->setMagFilter(GL_NEAREST);
        endEditCP(tex);
        return tex;
    }

    /// Renders a frame and compares pixels of the wet left half and of the
    /// dry right half of the plane with the display formulas, the dry ones
    /// within dryTolerance.
    void expectFilm(int matMode, int dryTolerance);

    /// The point of the plane (in its own coordinates) that pixel (px, py)
    /// sees through the fixture's camera.
    Vec3f pointAt(UInt32 px, UInt32 py) const
    {
        const Real32 t = std::tan(0.5f) * PlaneDistance;
        return Vec3f(((px + 0.5f) / winW * 2.f - 1.f) * t * winW / winH,
                     ((py + 0.5f) / winH * 2.f - 1.f) * t, 0.f);
    }
};

Real32 smoothstep(Real32 e0, Real32 e1, Real32 x)
{
    Real32 t = std::min(std::max((x - e0) / (e1 - e0), 0.f), 1.f);
    return t * t * (3.f - 2.f * t);
}

Real32 clamp01(Real32 v)
{
    return std::min(std::max(v, 0.f), 1.f);
}

/// The display shaders on a flat film at p: the plane's tangent space is
/// its own space, so the directions go in unchanged.
RGBA displayed(int matMode, const Vec3f &p, Real32 volume, const RGBA &behind)
{
    Vec3f view = Vec3f(0.f, 0.f, PlaneDistance) - p;
    Vec3f light = LightPoint + Vec3f(0.f, 0.f, PlaneDistance) - p;
    view.normalize();
    light.normalize();
    const Vec3f  n(0.f, 0.f, 1.f);
    Vec3f        h = light + view;
    h.normalize();
    const Real32 ndoth = std::max(0.2f, n.dot(h));

    Vec3f  colour;
    Real32 alpha;
    if(matMode == 1)
    {
        const Real32 ndotl    = std::max(0.2f, 0.1f + n.dot(light));
        const Real32 lrp      = 0.1f * std::pow(std::max(0.f, 1.f - view.dot(n)), 5.f);
        const Real32 specular = smoothstep(0.f, 0.05f, volume) * std::pow(ndoth, 30.f);
        for(int i = 0; i < 3; ++i)
            colour[i] = std::min(Fluid[i] * ndotl + Fluid[i] * lrp + specular, 1.f);
        alpha = clamp01((std::sqrt(volume) + specular) * Fluid[3]);
    }
    else
    {
        // light: ambient 0.2, diffuse and specular 1; material: ambient,
        // emission 0.05, diffuse 1, specular 0.2, shininess 80
        const Real32 ndotl    = std::max(0.2f, n.dot(light));
        const Real32 specular = std::pow(ndoth, 80.f);
        const Real32 w        = std::sqrt(volume) * Fluid[3];
        for(int i = 0; i < 3; ++i)
        {
            const Real32 base = Paint[i] * (1.f - w) + Fluid[i] * w;
            colour[i] = std::min(0.05f * 0.2f + ndotl * base +
                                     (smoothstep(0.f, 0.05f, volume) + 0.2f) * specular + 0.05f,
                                 1.f);
        }
        alpha = 1.f;
    }
    auto over = [&](Real32 c, UInt8 b) { return c * alpha + b / 255.f * (1.f - alpha); };
    return toRGBA(over(colour[0], behind.r), over(colour[1], behind.g),
                  over(colour[2], behind.b), 1.f);
}

void expectNear(const RGBA &got, const RGBA &want, int tol, const char *what)
{
    EXPECT_LE(std::abs(int(got.r) - int(want.r)), tol) << what << ": " << got << " vs " << want;
    EXPECT_LE(std::abs(int(got.g) - int(want.g)), tol) << what << ": " << got << " vs " << want;
    EXPECT_LE(std::abs(int(got.b) - int(want.b)), tol) << what << ": " << got << " vs " << want;
}

void DropletMaterialTest::expectFilm(int matMode, int dryTolerance)
{
    frame();
    std::vector<RGBA> px = readAll(win);
    for(UInt32 y : {10u, 24u, 36u})
    {
        for(UInt32 x : {14u, 16u, 20u, 26u})
            expectNear(px[y * winW + x], displayed(matMode, pointAt(x, y), 1.f, Grey), 3, "wet");
        for(UInt32 x : {40u, 44u, 48u})
            expectNear(px[y * winW + x], displayed(matMode, pointAt(x, y), 0.f, Grey),
                       dryTolerance, "dry");
    }
}

} // namespace

TEST_F(DropletMaterialTest, ModeZeroAddsOnlyTheSurfaceMap)
{
    ChunkMaterialPtr mat = material();
    DropletFlow      internal(wetPlane(), mat, 8, 8, 0, NullFC);
    ASSERT_EQ(mat->getChunks().size(), 1u);
    EXPECT_EQ(mat->getChunks(0), internal.getSurfaceMap(0));
    EXPECT_TRUE(mat->getSlots().empty());
    EXPECT_EQ(internal.getDisplayShader(), NullFC);
    EXPECT_EQ(internal.getSurfaceMap(0)->getInternalFormat(), GLenum(0x881A));

    // an application's texture takes the place of the first surface map
    TextureChunkPtr given = TextureChunk::create();
    keep(given);
    ImagePtr img = Image::create();
    img->set(GL_RGBA, 8, 8);
    beginEditCP(given);
    given->setImage(img);
    endEditCP(given);

    ChunkMaterialPtr other = material();
    DropletFlow      supplied(wetPlane(), other, 8, 8, 0, given);
    EXPECT_EQ(supplied.getSurfaceMap(0), given);
    ASSERT_EQ(other->getChunks().size(), 1u);
    EXPECT_EQ(other->getChunks(0), given);
}

TEST_F(DropletMaterialTest, ModesOneAndTwoAddTheDisplayChunksInOrder)
{
    for(int matMode = 1; matMode <= 3; ++matMode)
    {
        ChunkMaterialPtr mat = material();
        DropletFlow      f(wetPlane(), mat, 8, 8, matMode, NullFC);

        ASSERT_EQ(mat->getChunks().size(), 6u);
        EXPECT_EQ(mat->getChunks(0), f.getDisplayShader());
        EXPECT_EQ(mat->getChunks(1), f.getSurfaceMap(0));
        // the surface map goes to texture unit 1, everything else to the
        // first free slot
        ASSERT_EQ(mat->getSlots().size(), 2u);
        EXPECT_EQ(mat->getSlots(0), -2);
        EXPECT_EQ(mat->getSlots(1), 1);

        MaterialChunkPtr colours = MaterialChunkPtr::dcast(mat->getChunks(2));
        ASSERT_NE(colours, NullFC);
        EXPECT_EQ(colours->getAmbient(), Color4f(0.05f, 0.05f, 0.05f, 1.f));
        EXPECT_EQ(colours->getSpecular(), Color4f(0.2f, 0.2f, 0.2f, 1.f));
        EXPECT_EQ(colours->getEmission(), Color4f(0.05f, 0.05f, 0.05f, 1.f));
        EXPECT_EQ(colours->getShininess(), 80.f);

        PolygonChunkPtr cull = PolygonChunkPtr::dcast(mat->getChunks(3));
        ASSERT_NE(cull, NullFC);
        EXPECT_EQ(cull->getCullFace(), GLenum(GL_BACK));

        BlendChunkPtr blend = BlendChunkPtr::dcast(mat->getChunks(4));
        ASSERT_NE(blend, NullFC);
        EXPECT_EQ(blend->getSrcFactor(), GLenum(GL_SRC_ALPHA));
        EXPECT_EQ(blend->getDestFactor(), GLenum(GL_ONE_MINUS_SRC_ALPHA));

        DepthChunkPtr depth = DepthChunkPtr::dcast(mat->getChunks(5));
        ASSERT_NE(depth, NullFC);
        EXPECT_TRUE(depth->getEnable());
        EXPECT_EQ(depth->getFunc(), GLenum(GL_LEQUAL));
        EXPECT_EQ(depth->getNear(), -1.f);
        EXPECT_EQ(depth->getFar(), -1.f);
        EXPECT_FALSE(depth->getReadOnly());

        Int32 unit = -1;
        EXPECT_TRUE(f.getDisplayShader()->getUniformParameter("surfaceMap", unit));
        EXPECT_EQ(unit, 1);
        Vec4f colour;
        EXPECT_TRUE(f.getDisplayShader()->getUniformParameter("fluidColor", colour));
        EXPECT_EQ(colour, Vec4f(0.f, 0.3f, 1.f, 1.f));
        Vec2f offset;
        EXPECT_TRUE(f.getDisplayShader()->getUniformParameter("offset", offset));
        EXPECT_EQ(offset, Vec2f(0.125f, 0.125f));
        // the diffuse program reads the object's own texture from unit 0
        unit = -1;
        EXPECT_EQ(f.getDisplayShader()->getUniformParameter("diffuseMap", unit), matMode > 1);
        EXPECT_EQ(unit, matMode > 1 ? 0 : -1);
        EXPECT_EQ(f.getDisplayShader()->getFragmentProgram().find("diffuseMap") !=
                      std::string::npos,
                  matMode > 1);
    }
}

TEST_F(DropletMaterialTest, NegativeModesAddNothing)
{
    ChunkMaterialPtr mat = material();
    DropletFlow      f(wetPlane(), mat, 8, 8, -1, NullFC);
    EXPECT_TRUE(mat->getChunks().empty());
    EXPECT_EQ(f.getDisplayShader(), NullFC);
    f.setDisplayParams(Vec4f(1.f, 1.f, 1.f, 1.f)); // no shader, no harm
}

TEST_F(DropletMaterialTest, OverlayShowsTheFluidAloneOverWhatIsBehind)
{
    port(0.f, 1.f, 0.f, 1.f, solid(Grey));
    std::unique_ptr<DropletFlow> f = flowOnScreen(1, material());
    // wet: the fluid's colour, opaque at full volume; dry: nothing of the
    // fluid, the background shows unchanged
    expectFilm(1, 0);
}

TEST_F(DropletMaterialTest, DiffuseModeShowsTheObjectsTextureUnderTheFluid)
{
    port(0.f, 1.f, 0.f, 1.f, solid(Grey));
    ChunkMaterialPtr mat = material();
    beginEditCP(mat, ChunkMaterial::ChunksFieldMask);
    mat->addChunk(paint());
    endEditCP(mat, ChunkMaterial::ChunksFieldMask);
    std::unique_ptr<DropletFlow> f = flowOnScreen(2, mat);
    expectFilm(2, 3);
}
