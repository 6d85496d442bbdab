// DrawAction: immediate drawing through the material, the GL matrix stack
// of transforms, lights on GL_LIGHT0 + count; Transform's own behaviour.
#include "ActionTestSupport.h"

#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGFrustumVolume.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGLightChunk.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGPointLight.h>
#include <OpenSG/OSGSpotLight.h>

using namespace osg;
using namespace actiontest;

namespace
{

class DrawActionTest : public ::testing::Test
{
  protected:
    void SetUp(void) override
    {
        clearActionTestLog();
        action.reset(DrawAction::create());
        action->setFrustumCulling(false);
    }

    void TearDown(void) override
    {
        action.reset();
        scene.clear();
    }

    Scene                       scene;
    std::unique_ptr<DrawAction> action;
};

} // namespace

TEST_F(DrawActionTest, DrawsImmediatelyInTraversalOrder)
{
    REQUIRE_GL();

    RecordMaterialPtr a = scene.material("A");
    RecordMaterialPtr b = scene.material("B", -5);
    NodePtr root = scene.root(scene.group({scene.draw("1", a), scene.draw("2", b), scene.draw("3", a)}));

    action->apply(root);
    // no sorting: each object activates and deactivates its own state
    EXPECT_EQ("act:A D:1 deact:A act:B D:2 deact:B act:A D:3 deact:A", actionTestLogString());
}

TEST_F(DrawActionTest, TransformsUseTheGLMatrixStack)
{
    REQUIRE_GL();

    Matrix t1, t2;
    t1.setTranslate(1.f, 0.f, -2.f);
    t2.setScale(2.f);
    Matrix both = t1;
    both.mult(t2);

    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();

    RecordMaterialPtr m = scene.material("M");
    NodePtr root = scene.root(scene.group({scene.transform(t1, {scene.transform(t2, {scene.draw("in", m)})}),
                                           scene.draw("out", m)}));
    action->apply(root);

    ASSERT_EQ(2u, actionTestDraws().size());
    EXPECT_TRUE(matrixNear(both, actionTestDraws()[0].glModelView));
    EXPECT_TRUE(matrixNear(Matrix(), actionTestDraws()[1].glModelView));
}

TEST_F(DrawActionTest, LightsTakeConsecutiveGLLightsWhileInScope)
{
    REQUIRE_GL();

    RecordMaterialPtr   m  = scene.material("M");
    DirectionalLightPtr l0 = DirectionalLight::create();
    PointLightPtr       l1 = PointLight::create();
    NodePtr root = scene.root(scene.group({scene.node(l0, {scene.draw("one", m),
                                                           scene.node(l1, {scene.draw("two", m)})}),
                                           scene.draw("none", m)}));

    LogCapture log; // no beacons: an info line each
    action->apply(root);

    ASSERT_EQ(3u, actionTestDraws().size());
    EXPECT_EQ(0x1u, actionTestDraws()[0].glLightsOn);
    EXPECT_EQ(0x3u, actionTestDraws()[1].glLightsOn);
    EXPECT_EQ(0x0u, actionTestDraws()[2].glLightsOn);
    EXPECT_EQ(0u, action->getLightCount());
}

TEST_F(DrawActionTest, MaterialGroupOverridesInDrawActionToo)
{
    REQUIRE_GL();

    MaterialGroupPtr mg = MaterialGroup::create();
    beginEditCP(mg);
    mg->setMaterial(scene.material("G"));
    endEditCP(mg);

    NodePtr root = scene.root(scene.group({scene.node(mg, {scene.draw("in", scene.material("own"))}),
                                           scene.draw("out", scene.material("own2"))}));
    action->apply(root);
    EXPECT_EQ("act:G D:in deact:G act:own2 D:out deact:own2", actionTestLogString());
}

TEST_F(DrawActionTest, CulledMaterialGroupStillTakesItsMaterialBack)
{
    REQUIRE_GL();

    Matrix proj;
    MatrixOrthogonal(proj, -2.f, 2.f, -2.f, 2.f, -10.f, 10.f);
    FrustumVolume frustum;
    frustum.setPlanes(proj);

    MaterialGroupPtr mg = MaterialGroup::create();
    beginEditCP(mg);
    mg->setMaterial(scene.material("G"));
    endEditCP(mg);

    NodePtr root = scene.root(scene.group({
        // the group's volume spans the frustum, each of its children misses it
        scene.node(mg, {scene.translate(-9, 0, 0, {scene.draw("left", scene.material("own"))}),
                        scene.translate(9, 0, 0, {scene.draw("right", scene.material("own"))})}),
        scene.draw("after", scene.material("own2")),
    }));
    root->updateVolume();

    action->setFrustumCulling(true);
    action->setFrustum(frustum);
    action->apply(root);
    EXPECT_EQ("act:own2 D:after deact:own2", actionTestLogString());
    EXPECT_TRUE(action->getMaterial() == NULL);
}

TEST(LightChunks, LightsFillTheirChunks)
{
    SpotLightPtr spot = SpotLight::create();
    beginEditCP(spot);
    spot->setDiffuse(Color4f(0.5f, 0.25f, 1.f, 1.f));
    spot->setPosition(Pnt3f(1.f, 2.f, 3.f));
    spot->setDirection(Vec3f(0.f, -1.f, 0.f));
    spot->setSpotCutOff(osgdegree2rad(30.f));
    spot->setSpotExponent(2.f);
    spot->setLinearAttenuation(0.5f);
    endEditCP(spot);
    addRefCP(spot);

    EXPECT_TRUE(spot->getChunk() == NullFC);
    spot->makeChunk();
    LightChunkPtr c = spot->getChunk();
    ASSERT_TRUE(c != NullFC);
    EXPECT_EQ(Color4f(0.5f, 0.25f, 1.f, 1.f), c->getDiffuse());
    EXPECT_EQ(Vec4f(1.f, 2.f, 3.f, 1.f), c->getPosition());
    EXPECT_EQ(Vec3f(0.f, -1.f, 0.f), c->getDirection());
    EXPECT_NEAR(30.f, c->getCutoff(), 1e-4f);
    EXPECT_EQ(2.f, c->getExponent());
    EXPECT_EQ(0.5f, c->getLinearAttenuation());

    DirectionalLightPtr dir = DirectionalLight::create();
    addRefCP(dir);
    beginEditCP(dir);
    dir->setDirection(Vec3f(0.f, 1.f, 0.f));
    endEditCP(dir);
    dir->makeChunk();
    EXPECT_EQ(Vec4f(0.f, 1.f, 0.f, 0.f), dir->getChunk()->getPosition());

    // the beacon is a counted reference, released with the light
    NodePtr beacon = Node::create();
    addRefCP(beacon);
    beginEditCP(dir, Light::BeaconFieldMask);
    dir->setBeacon(beacon);
    endEditCP(dir, Light::BeaconFieldMask);
    EXPECT_EQ(2, beacon.getRefCount());
    subRefCP(dir);
    EXPECT_EQ(1, beacon.getRefCount());
    subRefCP(beacon);
    subRefCP(spot);
}

TEST(TransformCore, MatrixMovesVolumeAndWorldMatrix)
{
    Scene scene;

    Matrix m;
    m.setTransform(Vec3f(10.f, 0.f, 0.f), Quaternion(), Vec3f(2.f, 2.f, 2.f));

    NodePtr leaf  = scene.draw("leaf", NullFC);
    NodePtr xform = scene.transform(m, {leaf});
    NodePtr root  = scene.root(scene.group({xform}));

    // the leaf's world matrix includes the transform; the transform node's
    // volume is the leaf's unit cube moved into the root's system
    Matrix toWorld = leaf->getToWorld();
    EXPECT_TRUE(matrixNear(m, toWorld));

    root->updateVolume();
    Pnt3f mi, ma;
    xform->getVolume().getBounds(mi, ma);
    EXPECT_NEAR(9.f, mi[0], 1e-5f);
    EXPECT_NEAR(11.f, ma[0], 1e-5f);
    EXPECT_NEAR(-1.f, mi[1], 1e-5f);

    // a new matrix invalidates the volumes up to the root
    TransformPtr t = TransformPtr::dcast(xform->getCore());
    Matrix       moved;
    moved.setTranslate(0.f, 5.f, 0.f);
    beginEditCP(t, Transform::MatrixFieldMask);
    t->setMatrix(moved);
    endEditCP(t, Transform::MatrixFieldMask);
    EXPECT_FALSE(root->getVolume().isValid());

    root->getVolume(true).getBounds(mi, ma);
    EXPECT_NEAR(4.5f, mi[1], 1e-5f);
    EXPECT_NEAR(5.5f, ma[1], 1e-5f);

    EXPECT_EQ(3u, Transform::MatrixFieldId);
    EXPECT_EQ(0x8u, Transform::MatrixFieldMask);
}

TEST(SceneGraphCores, FieldIdsFollowTheParents)
{
    EXPECT_EQ(3u, MaterialGroup::MaterialFieldId);
    EXPECT_EQ(3u, Light::AmbientFieldId);
    EXPECT_EQ(6u, Light::BeaconFieldId);
    EXPECT_EQ(12u, Light::ShadowModeFieldId);
    EXPECT_EQ(13u, DirectionalLight::DirectionFieldId);
    EXPECT_EQ(13u, PointLight::PositionFieldId);
    EXPECT_EQ(16u, SpotLight::SpotCutOffFieldId);
    EXPECT_EQ(0x10000u, SpotLight::SpotCutOffFieldMask);
}
