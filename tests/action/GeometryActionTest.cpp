// The actions with real geometry: picking, drawing with simple materials,
// material groups and lights, the drawable statistics.
#include "FrameFixture.h"

#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGDrawable.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSimpleMaterial.h>

using namespace osg;
using namespace actiontest;

namespace
{

typedef FrameFixture GeometryFrameTest;

SimpleMaterialPtr simpleMaterial(Scene &scene, Color3f diffuse, bool lit)
{
    SimpleMaterialPtr m = SimpleMaterial::create();
    beginEditCP(m);
    m->setDiffuse(diffuse);
    m->setAmbient(Color3f(0.f, 0.f, 0.f));
    m->setSpecular(Color3f(0.f, 0.f, 0.f));
    m->setLit(lit);
    endEditCP(m);
    scene.hold(m);
    return m;
}

NodePtr withMaterial(NodePtr geoNode, MaterialPtr mat)
{
    GeometryPtr geo = GeometryPtr::dcast(geoNode->getCore());
    beginEditCP(geo, Geometry::MaterialFieldMask);
    geo->setMaterial(mat);
    endEditCP(geo, Geometry::MaterialFieldMask);
    return geoNode;
}

} // namespace

TEST(GeometryIntersect, PicksTheNearestGeometryThroughTransforms)
{
    Scene   scene;
    NodePtr box   = makeBox(2.f, 2.f, 2.f, 1, 1, 1);
    NodePtr plane = makePlane(1.f, 1.f, 1, 1);

    Matrix scaled;
    scaled.setTransform(Vec3f(0.f, 0.f, -6.f), Quaternion(), Vec3f(10.f, 10.f, 10.f));

    NodePtr root = scene.root(scene.group({scene.transform(scaled, {plane}),
                                           scene.translate(0, 0, -3, {box})}));

    std::unique_ptr<IntersectAction> ia(
        IntersectAction::create(Line(Pnt3f(0.2f, 0.3f, 10.f), Vec3f(0.f, 0.f, -1.f))));
    EXPECT_EQ(Action::Continue, ia->apply(root));

    ASSERT_TRUE(ia->didHit());
    EXPECT_NEAR(12.f, ia->getHitT(), 1e-4f);
    EXPECT_TRUE(ia->getHitObject() == box);
    EXPECT_NEAR(1.f, ia->getHitNormal()[2], 1e-4f);

    // beside the box only the large plane is hit, in world distances
    ia->setLine(Line(Pnt3f(3.f, 0.f, 10.f), Vec3f(0.f, 0.f, -1.f)));
    ia->apply(root);
    ASSERT_TRUE(ia->didHit());
    EXPECT_NEAR(16.f, ia->getHitT(), 1e-4f);
    EXPECT_TRUE(ia->getHitObject() == plane);

    ia->setLine(Line(Pnt3f(30.f, 0.f, 10.f), Vec3f(0.f, 0.f, -1.f)));
    ia->apply(root);
    EXPECT_FALSE(ia->didHit());
}

TEST_F(GeometryFrameTest, SimpleMaterialsAndMaterialGroups)
{
    SimpleMaterialPtr red  = simpleMaterial(scene, Color3f(1.f, 0.f, 0.f), false);
    SimpleMaterialPtr blue = simpleMaterial(scene, Color3f(0.f, 0.f, 1.f), false);

    MaterialGroupPtr mg = MaterialGroup::create();
    beginEditCP(mg);
    mg->setMaterial(blue);
    endEditCP(mg);

    // left plane with its own red material, right one under the blue group
    NodePtr root = scene.root(scene.group({
        scene.translate(-2.5f, 0.f, 0.f, {withMaterial(makePlane(4.f, 4.f, 1, 1), red)}),
        scene.node(mg, {scene.translate(2.5f, 0.f, 0.f,
                                        {withMaterial(makePlane(4.f, 4.f, 1, 1), red)})}),
    }));

    StatCollector stats;
    stats.getElem(Drawable::statNTriangles);
    action->setStatistics(&stats);
    render(root);
    action->setStatistics(NULL);
    save("action_geometry.png");

    EXPECT_PIXEL(at(16, 32), 255, 0, 0, 1);
    EXPECT_PIXEL(at(48, 32), 0, 0, 255, 1);
    EXPECT_PIXEL(at(32, 60), 0, 0, 51, 1);
    EXPECT_EQ(GLenum(GL_NO_ERROR), glError);

    // two planes of two triangles each
    EXPECT_EQ(4, stats.getElem(Drawable::statNTriangles)->get());
    EXPECT_EQ(2, stats.getElem(RenderAction::statNGeometries)->get());
}

TEST_F(GeometryFrameTest, DirectionalLightShadesASphere)
{
    SimpleMaterialPtr white = simpleMaterial(scene, Color3f(1.f, 1.f, 1.f), true);

    NodePtr beacon = scene.root(scene.group());

    DirectionalLightPtr light = DirectionalLight::create();
    beginEditCP(light);
    light->setDirection(Vec3f(0.f, 0.f, 1.f));
    light->setAmbient(Color4f(0.f, 0.f, 0.f, 1.f));
    light->setSpecular(Color4f(0.f, 0.f, 0.f, 1.f));
    light->setBeacon(beacon);
    endEditCP(light);

    NodePtr root =
        scene.root(scene.group({scene.node(light, {withMaterial(makeSphere(4, 3.f), white)})}));

    render(root);
    save("action_sphere.png");

    // facing the light: full diffuse. Near the silhouette (22 pixels up of
    // 24) the visible surface turns away by about 38 degrees: N.L = 0.78
    Pixel centre = at(32, 32);
    EXPECT_GE(centre.r, 245);
    EXPECT_EQ(centre.r, centre.g);
    EXPECT_EQ(centre.r, centre.b);

    Pixel rim = at(32, 32 + 22);
    EXPECT_GT(rim.r, 170);
    EXPECT_LT(rim.r, 225);
    EXPECT_PIXEL(at(32, 60), 0, 0, 51, 1);
    EXPECT_EQ(GLenum(GL_NO_ERROR), glError);
}
