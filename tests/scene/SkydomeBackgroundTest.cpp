// SkydomeBackground: a latitude-longitude texture of known colour bands
// shows the right band in each viewing direction, goes along with the
// camera but turns with it and with the beacon, stays behind everything the
// scene draws, follows sphereRes, and owns the materials it makes for its
// textures without leaking them.
#include "window/WindowTestSupport.h"

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGSkydomeBackground.h>
#include <OpenSG/OSGTextureChunk.h>

#include <algorithm>
#include <string>
#include <vector>

using namespace osg;
using namespace wintest;

namespace
{

const RGBA Sky     = {0, 255, 255, 255};  // above 45 degrees
const RGBA Ground  = {128, 64, 0, 255};   // below -45 degrees
const RGBA Magenta = {255, 0, 255, 255};

/// 8 x 8 texels, nearest filtered. Rows 0-1 (the bottom) are Ground, rows
/// 6-7 Sky; between them each longitude quarter has its colour, centred on
/// one axis: the dome puts s = 0 at +x, 0.25 at +z, 0.5 at -x and 0.75 at -z,
/// and the band edges fall on the meridians of an 8 x 8 sphere.
TextureChunkPtr bandTexture(void)
{
    const RGBA quarter[4] = {Red, Green, Blue, Yellow};

    std::vector<UInt8> texels;
    for(UInt32 row = 0; row < 8; ++row)
    {
        for(UInt32 col = 0; col < 8; ++col)
        {
            RGBA c = row < 2 ? Ground : row >= 6 ? Sky : quarter[((col + 1) / 2) % 4];
            texels.insert(texels.end(), {c.r, c.g, c.b});
        }
    }

    ImagePtr img = Image::create();
    img->set(GL_RGB, 8, 8, 1, 1, 1, 0.0, texels.data());

    TextureChunkPtr tex = nearestTexture(img);
    return tex;
}

/// Rotation about y (yaw, to the left) after one about x (pitch, upwards),
/// both in degrees, then a translation.
Matrix turn(Real32 yaw, Real32 pitch, const Vec3f &at = Vec3f(0, 0, 0))
{
    Matrix m, p;
    m.setTransform(at, Quaternion(Vec3f(0, 1, 0), osgdegree2rad(yaw)));
    p.setTransform(Quaternion(Vec3f(1, 0, 0), osgdegree2rad(pitch)));
    m.mult(p);
    return m;
}

void setMatrix(const NodePtr &node, const Matrix &m)
{
    TransformPtr xf = TransformPtr::dcast(node->getCore());
    beginEditCP(xf, Transform::MatrixFieldMask);
    xf->setMatrix(m);
    endEditCP(xf, Transform::MatrixFieldMask);
}

void setTexture(const SkydomeBackgroundPtr &sky, const TextureChunkPtr &tex)
{
    beginEditCP(sky, SkydomeBackground::LatlongTextureFieldMask);
    sky->setLatlongTexture(tex);
    endEditCP(sky, SkydomeBackground::LatlongTextureFieldMask);
}

bool alive(UInt32 id)
{
    return FieldContainerFactory::the()->getContainer(id) != NullFC;
}

class SkydomeTest : public FrameFixture
{
  protected:
    void SetUp(void) override
    {
        FrameFixture::SetUp();
        if(win == NullFC)
            return;

        texture = bandTexture();
        keep(texture);
        sky = SkydomeBackground::create();
        setTexture(sky, texture);
        port(0.f, 1.f, 0.f, 1.f, sky);
    }

    std::vector<RGBA> render(const std::string &name)
    {
        frame();
        std::vector<RGBA> px = readAll(win);
        writePNG("skydome_" + name, px, winW, winH);
        return px;
    }

    RGBA at(const std::vector<RGBA> &px, UInt32 x, UInt32 y) const { return px[y * winW + x]; }

    /// Every pixel of the 9 x 9 block around the centre has colour c.
    void expectCentre(const std::vector<RGBA> &px, const RGBA &c, const char *what) const
    {
        for(UInt32 y = winH / 2 - 4; y <= winH / 2 + 4u; ++y)
            for(UInt32 x = winW / 2 - 4; x <= winW / 2 + 4u; ++x)
                ASSERT_EQ(at(px, x, y), c) << what << " at " << x << "," << y;
    }

    /// Number of primitives one frame draws.
    GLuint primitives(void)
    {
        GLuint query = 0, count = 0;
        glGenQueries(1, &query);
        glBeginQuery(GL_PRIMITIVES_GENERATED, query);
        frame();
        glEndQuery(GL_PRIMITIVES_GENERATED);
        glGetQueryObjectuiv(query, GL_QUERY_RESULT, &count);
        glDeleteQueries(1, &query);
        return count;
    }

    TextureChunkPtr      texture;
    SkydomeBackgroundPtr sky;
};

} // namespace

TEST_F(SkydomeTest, EachDirectionShowsItsBand)
{
    const struct
    {
        Real32      yaw, pitch;
        RGBA        colour;
        const char *name;
    } views[] = {{0, 0, Yellow, "minus_z"}, {90, 0, Blue, "minus_x"},  {180, 0, Green, "plus_z"},
                 {270, 0, Red, "plus_x"},   {0, 80, Sky, "up"},       {0, -80, Ground, "down"}};

    for(const auto &v : views)
    {
        setMatrix(beacon, turn(v.yaw, v.pitch));
        std::vector<RGBA> px = render(v.name);
        expectCentre(px, v.colour, v.name);

        // the sphere covers the whole port: nothing but band colours
        for(const RGBA &c : px)
            ASSERT_TRUE(c == Red || c == Green || c == Blue || c == Yellow || c == Sky ||
                        c == Ground)
                << v.name << ": " << c;
    }

    // Half-way between -z and -x the band edge splits the picture in the
    // middle, with -x on the left: the image isn't mirrored from inside.
    // Looking 45 degrees up puts the sky edge on the middle row.
    setMatrix(beacon, turn(45, 0));
    std::vector<RGBA> px = render("edge_longitude");
    EXPECT_EQ(at(px, winW / 2 - 3, winH / 2), Blue);
    EXPECT_EQ(at(px, winW / 2 + 3, winH / 2), Yellow);

    setMatrix(beacon, turn(0, 45));
    px = render("edge_latitude");
    EXPECT_EQ(at(px, winW / 2, winH / 2 + 3), Sky);
    EXPECT_EQ(at(px, winW / 2, winH / 2 - 3), Yellow);
}

TEST_F(SkydomeTest, MovingTheCameraKeepsThePicture)
{
    setMatrix(beacon, turn(30, 20));
    const std::vector<RGBA> still = render("turned");

    setMatrix(beacon, turn(30, 20, Vec3f(3, -2, 5)));
    EXPECT_TRUE(render("turned_moved") == still);

    // however far the camera goes, and whatever its clipping range
    setMatrix(beacon, turn(30, 20, Vec3f(-400, 250, 900)));
    beginEditCP(camera);
    camera->setNear(2.f);
    camera->setFar(3.f);
    endEditCP(camera);
    EXPECT_TRUE(render("turned_far") == still);
}

TEST_F(SkydomeTest, TheBeaconTurnsTheDome)
{
    const std::vector<RGBA> plain = render("plain");

    NodePtr domeBeacon = Node::create();
    keep(domeBeacon);
    beginEditCP(domeBeacon);
    domeBeacon->setCore(Transform::create());
    endEditCP(domeBeacon);
    beginEditCP(sky, SkydomeBackground::BeaconFieldMask);
    sky->setBeacon(domeBeacon);
    endEditCP(sky, SkydomeBackground::BeaconFieldMask);

    // the dome's -z turned to the left: +x is now straight ahead
    setMatrix(domeBeacon, turn(90, 0));
    expectCentre(render("beacon_turned"), Red, "dome turned by 90 degrees");

    // the beacon's translation is no part of it
    setMatrix(domeBeacon, turn(0, 0, Vec3f(0, 0, -7)));
    EXPECT_TRUE(render("beacon_moved") == plain);

    // turning camera and dome alike leaves the picture as it was (but for
    // rounding at band edges)
    setMatrix(domeBeacon, turn(-60, 25));
    setMatrix(beacon, turn(-60, 25));
    const std::vector<RGBA> both = render("beacon_and_camera");
    UInt32                  differ = 0;
    for(size_t i = 0; i < both.size(); ++i)
        differ += both[i] != plain[i];
    EXPECT_LE(differ, UInt32(winW / 4));
}

TEST_F(SkydomeTest, TheSceneDrawsOverTheDome)
{
    SimpleMaterialPtr mat = SimpleMaterial::create();
    beginEditCP(mat);
    mat->setLit(false);
    mat->setDiffuse(Color3f(1, 0, 1));
    endEditCP(mat);

    GeometryPtr geo = makePlaneGeo(4.f, 4.f, 1, 1);
    beginEditCP(geo);
    geo->setMaterial(mat);
    endEditCP(geo);

    NodePtr geoNode = Node::create(), xfNode = Node::create();
    beginEditCP(geoNode);
    geoNode->setCore(geo);
    endEditCP(geoNode);
    beginEditCP(xfNode);
    xfNode->setCore(Transform::create());
    xfNode->addChild(geoNode);
    endEditCP(xfNode);
    beginEditCP(root);
    root->addChild(xfNode);
    endEditCP(root);

    // far behind the unit sphere, and deeper than the dome's fragments
    setMatrix(xfNode, turn(0, 0, Vec3f(0, 0, -8)));
    beginEditCP(camera);
    camera->setNear(2.f);
    endEditCP(camera);

    std::vector<RGBA> px = render("scene_in_front");
    expectCentre(px, Magenta, "the plane");
    EXPECT_EQ(at(px, 0, 0), Yellow);
    EXPECT_EQ(at(px, winW - 1, winH - 1), Yellow);
}

TEST_F(SkydomeTest, SphereResSetsTheTessellation)
{
    // gluSphere with texture coordinates: one quad strip of sphereRes quads
    // per stack, so the count grows with the square
    const GLuint at8 = primitives();
    EXPECT_TRUE(at8 == 64u || at8 == 128u) << at8;

    const std::vector<RGBA> fine8 = render("res8");
    for(UInt32 res : {3u, 16u, 32u})
    {
        beginEditCP(sky, SkydomeBackground::SphereResFieldMask);
        sky->setSphereRes(res);
        endEditCP(sky, SkydomeBackground::SphereResFieldMask);
        EXPECT_EQ(primitives(), at8 / 64 * res * res) << "sphereRes " << res;
    }

    // the picture follows: a coarse sphere bends the band edges differently
    setMatrix(beacon, turn(20, 30));
    const std::vector<RGBA> res32 = render("res32");
    beginEditCP(sky, SkydomeBackground::SphereResFieldMask);
    sky->setSphereRes(3);
    endEditCP(sky, SkydomeBackground::SphereResFieldMask);
    EXPECT_FALSE(render("res3") == res32);

    // not clamped: 0 is no sphere at all, and no error
    beginEditCP(sky, SkydomeBackground::SphereResFieldMask);
    sky->setSphereRes(0);
    endEditCP(sky, SkydomeBackground::SphereResFieldMask);
    EXPECT_EQ(primitives(), 0u);
}

TEST_F(SkydomeTest, DrawsWithTheMaterialAndClearsWithoutOne)
{
    // an application's material replaces the texture's until the texture
    // changes again
    SimpleMaterialPtr own = SimpleMaterial::create();
    keep(own);
    beginEditCP(own);
    own->setLit(false);
    own->setDiffuse(Color3f(1, 0, 1));
    endEditCP(own);
    beginEditCP(sky, SkydomeBackground::MaterialFieldMask);
    sky->setMaterial(own);
    endEditCP(sky, SkydomeBackground::MaterialFieldMask);

    std::vector<RGBA> px = render("application_material");
    EXPECT_EQ(std::count(px.begin(), px.end(), Magenta), Int32(px.size()));

    // without any material the port is only cleared, with one warning
    beginEditCP(sky, SkydomeBackground::MaterialFieldMask);
    sky->setMaterial(NullFC);
    endEditCP(sky, SkydomeBackground::MaterialFieldMask);

    glClearColor(0.f, 0.f, 1.f, 1.f);
    for(UInt32 i = 0; i < 2; ++i)
    {
        LogCapture log(LOG_WARNING);
        win->render(action.get());
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
        const std::string said = log.take();
        EXPECT_EQ(said.find("SkydomeBackground::clear: no material, the sky is not drawn") !=
                      std::string::npos,
                  i == 0)
            << said;
    }
    px = readAll(win);
    EXPECT_EQ(std::count(px.begin(), px.end(), Blue), Int32(px.size()));
}

// No window needed: what changed() does with the fields and references.
TEST(SkydomeMaterial, TextureChangesMakeMaterialsThatDoNotLeak)
{
    TextureChunkPtr tex = bandTexture(), other = bandTexture();
    addRefCP(tex);
    addRefCP(other);

    SkydomeBackgroundPtr sky = SkydomeBackground::create();
    addRefCP(sky);
    EXPECT_TRUE(sky->getMaterial() == NullFC);

    setTexture(sky, tex);
    ChunkMaterialPtr made = ChunkMaterialPtr::dcast(sky->getMaterial());
    ASSERT_TRUE(made != NullFC);
    ASSERT_EQ(made->getChunks().size(), 1u);
    EXPECT_TRUE(made->getChunks()[0] == tex);
    EXPECT_EQ(getRefCount(made), 0) << "the background takes no reference";
    EXPECT_GT(getRefCount(tex), 1);
    const UInt32 madeId = getContainerId(made);

    // NullFC leaves the material alone
    setTexture(sky, NullFC);
    EXPECT_TRUE(sky->getMaterial() == made);

    // the next texture's material replaces it, and the unclaimed one goes
    setTexture(sky, other);
    EXPECT_TRUE(sky->getMaterial() != made);
    EXPECT_FALSE(alive(madeId));
    EXPECT_EQ(getRefCount(tex), 1);

    // one that someone took a reference to is theirs and stays
    MaterialPtr adopted = sky->getMaterial();
    addRefCP(adopted);
    setTexture(sky, tex);
    EXPECT_TRUE(alive(getContainerId(adopted)));
    subRefCP(adopted);
    EXPECT_EQ(getRefCount(other), 1);

    // and one its holder destroyed is not touched again
    MaterialPtr gone = sky->getMaterial();
    addRefCP(gone);
    subRefCP(gone);
    beginEditCP(sky, SkydomeBackground::MaterialFieldMask);
    sky->setMaterial(NullFC);
    endEditCP(sky, SkydomeBackground::MaterialFieldMask);
    setTexture(sky, other);

    // a texture that only the old material held survives its replacement
    TextureChunkPtr lone   = bandTexture();
    const UInt32    loneId = getContainerId(lone);
    setTexture(sky, lone);
    setTexture(sky, lone);
    ASSERT_TRUE(alive(loneId));

    // the background's end takes its material along
    const UInt32 lastId = getContainerId(sky->getMaterial());
    subRefCP(sky);
    EXPECT_FALSE(alive(lastId));
    EXPECT_FALSE(alive(loneId));
    EXPECT_EQ(getRefCount(tex), 1);
    EXPECT_EQ(getRefCount(other), 1);

    subRefCP(tex);
    subRefCP(other);
}
