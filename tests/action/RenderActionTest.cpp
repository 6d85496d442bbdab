// RenderAction: draw order by sort key, material and depth, state switching,
// depth writes of transparent objects, matrices, lights, culling, overrides.
#include "ActionTestSupport.h"

#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGFrustumVolume.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGQuaternion.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGStatCollector.h>

#include <map>

using namespace osg;
using namespace actiontest;

namespace
{

class RenderActionTest : public ::testing::Test
{
  protected:
    void SetUp(void) override
    {
        clearActionTestLog();
        action.reset(RenderAction::create());
        // without a camera there is no frustum to cull against
        action->setFrustumCulling(false);
    }

    void TearDown(void) override
    {
        action.reset();
        scene.clear();
    }

    std::vector<std::string> drawOrder(void)
    {
        std::vector<std::string> order;
        for(const ActionTestDraw &d : actionTestDraws())
            order.push_back(d.label);
        return order;
    }

    Scene                         scene;
    std::unique_ptr<RenderAction> action;
};

typedef std::vector<std::string> Labels;

} // namespace

TEST_F(RenderActionTest, DefaultsOfTheSettings)
{
    EXPECT_FALSE(action->getEffectsPass());
    EXPECT_FALSE(action->getZWriteTrans());
    EXPECT_TRUE(action->getSortTrans());
    EXPECT_FALSE(action->getLocalLights());
    EXPECT_TRUE(action->getStateSorting());
    EXPECT_TRUE(action->getUseGLFinish());
    EXPECT_FALSE(action->getOcclusionCulling());
    EXPECT_TRUE(action->getResetStatistics());
    EXPECT_TRUE(std::unique_ptr<RenderAction>(RenderAction::create())->getFrustumCulling());
    EXPECT_EQ(0u, action->getActiveLightsMask());
}

TEST_F(RenderActionTest, SortKeysMaterialsAndDepthOrderTheDrawing)
{
    REQUIRE_GL();

    RecordMaterialPtr a   = scene.material("A");
    RecordMaterialPtr b   = scene.material("B");
    RecordMaterialPtr k1  = scene.material("K1", 1);
    RecordMaterialPtr km1 = scene.material("Km1", -1);
    RecordMaterialPtr t1  = scene.material("T1", 0, true);
    RecordMaterialPtr t2  = scene.material("T2", 1, true);
    RecordMaterialPtr ns  = scene.material("NS", Material::NoStateSorting);
    RecordMaterialPtr nst = scene.material("NST", Material::NoStateSorting, true);

    NodePtr root = scene.root(scene.group({
        scene.draw("d1", a),
        scene.draw("d2", b),
        scene.draw("d3", a),
        scene.draw("d4", k1),
        scene.translate(0, 0, -1, {scene.draw("d5", t1)}),
        scene.translate(0, 0, -5, {scene.draw("d6", t1)}),
        scene.draw("d7", km1),
        scene.draw("d8", ns),
        scene.translate(0, 0, -2, {scene.draw("d9", t2)}),
        // transparent and sorted: NoStateSorting counts as key 0
        scene.translate(0, 0, -3, {scene.draw("d10", nst)}),
    }));

    EXPECT_EQ(Action::Continue, action->apply(root));

    // unsorted first, then per key: opaque by material (first appearance),
    // then transparent back to front
    EXPECT_EQ(Labels({"d8", "d7", "d1", "d3", "d2", "d6", "d10", "d5", "d4", "d9"}), drawOrder());
    EXPECT_EQ("act:NS D:d8 chg:Km1<NS D:d7 chg:A<Km1 D:d1 D:d3 chg:B<A D:d2 "
              "chg:T1<B D:d6 chg:NST<T1 D:d10 chg:T1<NST D:d5 chg:K1<T1 D:d4 "
              "chg:T2<K1 D:d9 deact:T2",
              drawLog());

    // the draw phase sets the drawn node as the active one
    for(const ActionTestDraw &d : actionTestDraws())
    {
        ASSERT_TRUE(d.actNode != NullFC);
        ActionTestCorePtr core = ActionTestCorePtr::dcast(d.actNode->getCore());
        ASSERT_TRUE(core != NullFC);
        EXPECT_EQ(d.label, core->getLabel());
    }

    // a second frame reuses the storage and draws the same
    clearActionTestLog();
    action->apply(root);
    EXPECT_EQ(Labels({"d8", "d7", "d1", "d3", "d2", "d6", "d10", "d5", "d4", "d9"}), drawOrder());
}

TEST_F(RenderActionTest, TransparentObjectsDoNotWriteDepthUnlessAsked)
{
    REQUIRE_GL();

    RecordMaterialPtr o = scene.material("O");
    RecordMaterialPtr t = scene.material("T", 0, true);
    NodePtr           root =
        scene.root(scene.group({scene.draw("opaque", o), scene.draw("trans", t),
                                scene.draw("later", scene.material("K", 2))}));

    action->apply(root);
    ASSERT_EQ(3u, actionTestDraws().size());
    EXPECT_TRUE(actionTestDraws()[0].depthWrite);
    EXPECT_FALSE(actionTestDraws()[1].depthWrite);
    // the mask comes back on after the transparent bucket
    EXPECT_TRUE(actionTestDraws()[2].depthWrite);

    GLboolean mask = GL_FALSE;
    glGetBooleanv(GL_DEPTH_WRITEMASK, &mask);
    EXPECT_EQ(GL_TRUE, mask);

    clearActionTestLog();
    action->setZWriteTrans(true);
    action->apply(root);
    ASSERT_EQ(3u, actionTestDraws().size());
    EXPECT_TRUE(actionTestDraws()[1].depthWrite);
}

TEST_F(RenderActionTest, UnsortedItemsForceAStateChange)
{
    REQUIRE_GL();

    RecordMaterialPtr ns = scene.material("NS", Material::NoStateSorting);
    RecordMaterialPtr a  = scene.material("A");
    NodePtr           root =
        scene.root(scene.group({scene.draw("u1", ns), scene.draw("s1", a), scene.draw("u2", ns),
                                scene.draw("s2", a)}));

    action->apply(root);
    // sorted items of one material share one activation; unsorted ones
    // switch even to the same state
    EXPECT_EQ("act:NS D:u1 chg:NS<NS D:u2 chg:A<NS D:s1 D:s2 deact:A", drawLog());
}

TEST_F(RenderActionTest, SortTransOffGroupsTransparentByMaterial)
{
    REQUIRE_GL();

    RecordMaterialPtr t = scene.material("T", 0, true);
    RecordMaterialPtr a = scene.material("A");
    NodePtr root = scene.root(scene.group({scene.translate(0, 0, -1, {scene.draw("near", t)}),
                                           scene.draw("x", a),
                                           scene.translate(0, 0, -9, {scene.draw("far", t)})}));

    action->setSortTrans(false);
    action->apply(root);
    EXPECT_EQ(Labels({"near", "far", "x"}), drawOrder());
    EXPECT_TRUE(actionTestDraws()[0].depthWrite);
}

TEST_F(RenderActionTest, MultiPassMaterialDrawsEveryPassAndDeactivates)
{
    REQUIRE_GL();

    RecordMaterialPtr mp = scene.material("MP", 0, false, 2);
    RecordMaterialPtr z  = scene.material("Z", 5);
    NodePtr root = scene.root(scene.group({scene.draw("p", mp), scene.draw("q", mp),
                                           scene.draw("z", z)}));

    action->apply(root);
    EXPECT_EQ("act:MP D:p D:q chg:MP/1<MP D:p D:q deact:MP/1 act:Z D:z deact:Z", drawLog());
}

TEST_F(RenderActionTest, MaterialGroupOverridesAndOutermostWins)
{
    REQUIRE_GL();

    RecordMaterialPtr own   = scene.material("own");
    RecordMaterialPtr outer = scene.material("outer");
    RecordMaterialPtr inner = scene.material("inner");

    MaterialGroupPtr mgOuter = MaterialGroup::create();
    MaterialGroupPtr mgInner = MaterialGroup::create();
    beginEditCP(mgOuter);
    mgOuter->setMaterial(outer);
    endEditCP(mgOuter);
    beginEditCP(mgInner);
    mgInner->setMaterial(inner);
    endEditCP(mgInner);
    EXPECT_EQ(2, outer.getRefCount()); // the test's and the group's

    NodePtr root = scene.root(scene.group({
        scene.node(mgOuter, {scene.draw("a", own),
                             scene.node(mgInner, {scene.draw("b", own)})}),
        scene.node(mgInner, {scene.draw("c", own)}),
        scene.draw("d", own),
    }));

    action->apply(root);
    // a and b take the outer material (one entry), c the inner, d its own
    EXPECT_EQ("act:outer D:a D:b chg:inner<outer D:c chg:own<inner D:d deact:own", drawLog());
    EXPECT_TRUE(action->getMaterial() == NULL);
}

TEST_F(RenderActionTest, MatricesFollowTheTransforms)
{
    REQUIRE_GL();

    Matrix t1, t2;
    t1.setTranslate(1.f, 2.f, 3.f);
    t2.setTransform(Vec3f(0.f, -1.f, 0.f), Quaternion(Vec3f(0.f, 1.f, 0.f), 0.5f),
                    Vec3f(2.f, 2.f, 2.f));
    Matrix both = t1;
    both.mult(t2);

    RecordMaterialPtr m = scene.material("M");
    NodePtr root = scene.root(scene.group({scene.transform(t1, {scene.draw("one", m),
                                                                scene.transform(t2, {scene.draw("two", m)})}),
                                           scene.draw("none", m)}));

    action->apply(root);
    ASSERT_EQ(3u, actionTestDraws().size());

    // without a camera the viewing matrix is the identity: model-view and
    // object-to-world agree
    EXPECT_TRUE(matrixNear(t1, actionTestDraws()[0].topMatrix));
    EXPECT_TRUE(matrixNear(t1, actionTestDraws()[0].glModelView));
    EXPECT_TRUE(matrixNear(both, actionTestDraws()[1].topMatrix));
    EXPECT_TRUE(matrixNear(both, actionTestDraws()[1].glModelView));
    EXPECT_TRUE(matrixNear(Matrix(), actionTestDraws()[2].topMatrix));
    EXPECT_TRUE(matrixNear(Matrix(), actionTestDraws()[2].glModelView));
}

TEST_F(RenderActionTest, PushPopAndTopMatrix)
{
    Matrix a, b;
    a.setTranslate(0.f, 0.f, 4.f);
    b.setScale(3.f);

    Matrix ab = a;
    ab.mult(b);

    action->push_matrix(a);
    EXPECT_TRUE(matrixNear(a, action->top_matrix()));
    action->push_matrix(b);
    EXPECT_TRUE(matrixNear(ab, action->top_matrix()));
    action->pop_matrix();
    EXPECT_TRUE(matrixNear(a, action->top_matrix()));
    action->pop_matrix();
    EXPECT_TRUE(matrixNear(Matrix(), action->top_matrix()));

    LogCapture log(LOG_WARNING);
    action->pop_matrix();
    EXPECT_NE(std::string::npos, log.take().find("pop_matrix"));
}

TEST_F(RenderActionTest, ActiveLightsMaskCountsTheDroppedLights)
{
    REQUIRE_GL();

    for(UInt32 n : {0u, 1u, 3u})
    {
        clearActionTestLog();
        scene.clear();

        RecordMaterialPtr m      = scene.material("M");
        NodePtr           lit    = scene.draw("lit", m);
        NodePtr           root   = scene.root(scene.group());
        NodePtr           beacon = scene.root(scene.group());

        // lights nest; the drawable sits below the innermost, and one more
        // drawable beside them is lit too (the lights are not local)
        NodePtr parent = root;
        for(UInt32 i = 0; i < n; ++i)
        {
            DirectionalLightPtr l = DirectionalLight::create();
            beginEditCP(l);
            l->setDirection(Vec3f(0.f, 0.f, 1.f));
            l->setBeacon(beacon);
            endEditCP(l);
            NodePtr ln = scene.node(l);
            beginEditCP(parent, Node::ChildrenFieldMask);
            parent->addChild(ln);
            endEditCP(parent, Node::ChildrenFieldMask);
            parent = ln;
        }
        beginEditCP(parent, Node::ChildrenFieldMask);
        parent->addChild(lit);
        endEditCP(parent, Node::ChildrenFieldMask);
        beginEditCP(root, Node::ChildrenFieldMask);
        root->addChild(scene.draw("beside", m));
        endEditCP(root, Node::ChildrenFieldMask);

        StatCollector stats;
        action->setStatistics(&stats);
        EXPECT_EQ(0u, action->getActiveLightsMask());
        action->apply(root);
        action->setStatistics(NULL);

        ASSERT_EQ(2u, actionTestDraws().size()) << n << " lights";
        UInt32 expected = (1u << n) - 1u;
        for(const ActionTestDraw &d : actionTestDraws())
        {
            EXPECT_EQ(expected, d.lightsMask) << n << " lights, " << d.label;
            EXPECT_EQ(expected, d.glLightsOn) << n << " lights, " << d.label;
        }
        EXPECT_EQ(0u, action->getActiveLightsMask());
        EXPECT_EQ(Int32(n), stats.getElem(RenderAction::statNLights)->get());
        EXPECT_EQ(Int32(n), stats.getElem(DirectionalLight::statNDirectionalLights)->get());

        // the lights are switched off again
        for(UInt32 i = 0; i < 8; ++i)
            EXPECT_FALSE(glIsEnabled(GL_LIGHT0 + i));
    }
}

TEST_F(RenderActionTest, LocalLightsLightOnlyTheirSubtree)
{
    REQUIRE_GL();

    RecordMaterialPtr   m = scene.material("M");
    DirectionalLightPtr a = DirectionalLight::create();
    DirectionalLightPtr b = DirectionalLight::create();
    LogCapture          log; // no beacons

    NodePtr root = scene.root(scene.group({
        scene.node(a, {scene.draw("a", m), scene.node(b, {scene.draw("ab", m)})}),
        scene.draw("none", m),
        scene.node(b, {scene.draw("b", m)}),
    }));

    action->setLocalLights(true);
    action->apply(root);

    ASSERT_EQ(4u, actionTestDraws().size());
    std::map<std::string, UInt32> masks, enabled;
    for(const ActionTestDraw &d : actionTestDraws())
    {
        masks[d.label]   = d.lightsMask;
        enabled[d.label] = d.glLightsOn;
    }
    // the lights of the path take GL lights 0, 1, ...
    EXPECT_EQ(0x1u, masks["a"]);
    EXPECT_EQ(0x3u, masks["ab"]);
    EXPECT_EQ(0x0u, masks["none"]);
    EXPECT_EQ(0x1u, masks["b"]);
    EXPECT_EQ(0x1u, enabled["a"]);
    EXPECT_EQ(0x3u, enabled["ab"]);
    EXPECT_EQ(0x0u, enabled["none"]);
    EXPECT_EQ(0x1u, enabled["b"]);
}

TEST_F(RenderActionTest, LightsThatAreOffLightNothing)
{
    REQUIRE_GL();

    DirectionalLightPtr l = DirectionalLight::create();
    beginEditCP(l);
    l->setOn(false);
    endEditCP(l);

    NodePtr root =
        scene.root(scene.group({scene.node(l, {scene.draw("x", scene.material("M"))})}));

    action->apply(root);
    ASSERT_EQ(1u, actionTestDraws().size());
    EXPECT_EQ(0u, actionTestDraws()[0].lightsMask);
}

TEST_F(RenderActionTest, FrustumCullingLeavesOutInvisibleSubtrees)
{
    REQUIRE_GL();

    // a box frustum: x, y in [-2, 2], z in [-10, 10]
    Matrix proj;
    MatrixOrthogonal(proj, -2.f, 2.f, -2.f, 2.f, -10.f, 10.f);
    FrustumVolume frustum;
    frustum.setPlanes(proj);

    RecordMaterialPtr m    = scene.material("M");
    NodePtr           root = scene.root(scene.group({
        scene.translate(0, 0, 0, {scene.draw("in", m)}),
        scene.translate(5, 0, 0, {scene.draw("out", m)}),
        scene.group({scene.translate(0, 5, 0, {scene.draw("out2", m)}),
                     scene.translate(-1, 0, 0, {scene.draw("in2", m)})}),
    }));

    StatCollector stats;
    action->setStatistics(&stats);
    action->setFrustumCulling(true);
    action->setFrustum(frustum);
    action->apply(root);

    EXPECT_EQ(Labels({"in", "in2"}), drawOrder());
    EXPECT_GE(stats.getElem(DrawActionBase::statCulledNodes)->get(), 2);
    EXPECT_GE(stats.getElem(DrawActionBase::statCullTestedNodes)->get(), 4);

    // with culling off everything is drawn
    clearActionTestLog();
    action->setFrustumCulling(false);
    action->apply(root);
    EXPECT_EQ(4u, actionTestDraws().size());
    action->setStatistics(NULL);
}

TEST_F(RenderActionTest, StatisticsOfTheDrawPhase)
{
    REQUIRE_GL();

    RecordMaterialPtr a = scene.material("A");
    RecordMaterialPtr b = scene.material("B");
    RecordMaterialPtr t = scene.material("T", 0, true);
    NodePtr root = scene.root(scene.group({scene.draw("1", a), scene.draw("2", b),
                                           scene.translate(0, 0, 1, {scene.draw("3", a)}),
                                           scene.draw("4", t)}));

    StatCollector stats;
    action->setStatistics(&stats);
    action->apply(root);
    action->setStatistics(NULL);

    EXPECT_EQ(4, stats.getElem(RenderAction::statNGeometries)->get());
    EXPECT_EQ(1, stats.getElem(RenderAction::statNTransGeometries)->get());
    EXPECT_EQ(3, stats.getElem(RenderAction::statNMaterials)->get());
    EXPECT_EQ("Off", stats.getElem(RenderAction::statNOcclusionMode)->get());
    EXPECT_GE(stats.getElem(RenderAction::statDrawTime)->getTime(), 0.0);

    // an own collector lives only for one traversal
    EXPECT_FALSE(action->hasOwnStat());
    action->apply(root);
    EXPECT_FALSE(action->hasOwnStat());
}
