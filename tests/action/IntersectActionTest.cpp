// IntersectAction: nearest hit, distances through scaling transforms,
// volume culling of subtrees, maximum distance; the intersect actor registry.
#include "ActionTestSupport.h"

#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGIntersectActor.h>
#include <OpenSG/OSGQuaternion.h>

using namespace osg;
using namespace actiontest;

namespace
{

class IntersectActionTest : public ::testing::Test
{
  protected:
    void SetUp(void) override { clearActionTestLog(); }
    void TearDown(void) override { scene.clear(); }

    /// A ray straight down the z axis from z = 10.
    static Line downZ(Real32 x = 0.f, Real32 y = 0.f)
    {
        return Line(Pnt3f(x, y, 10.f), Vec3f(0.f, 0.f, -1.f));
    }

    NodePtr square(const std::string &label) { return scene.draw(label, NullFC); }

    Scene scene;
};

} // namespace

TEST_F(IntersectActionTest, NoHitGivesTheNullValues)
{
    std::unique_ptr<IntersectAction> ia(IntersectAction::create(downZ(3.f, 0.f)));
    NodePtr root = scene.root(scene.group({square("s")}));

    EXPECT_EQ(Action::Continue, ia->apply(root));
    EXPECT_FALSE(ia->didHit());
    EXPECT_EQ(-1.f, ia->getHitT());
    EXPECT_TRUE(ia->getHitObject() == NullFC);
    EXPECT_EQ(-1, ia->getHitTriangle());
    EXPECT_EQ(Vec3f(0.f, 0.f, 0.f), ia->getHitNormal());
}

TEST_F(IntersectActionTest, NearestHitWinsWhateverTheOrder)
{
    NodePtr back  = square("back");
    NodePtr front = scene.translate(0, 0, 2, {square("front")});
    NodePtr root  = scene.root(scene.group({front, scene.translate(0, 0, -3, {square("far")}), back}));

    std::unique_ptr<IntersectAction> ia(IntersectAction::create(downZ(0.25f, 0.1f)));
    ia->apply(root);

    ASSERT_TRUE(ia->didHit());
    EXPECT_NEAR(8.f, ia->getHitT(), 1e-5f);
    EXPECT_TRUE(ia->getHitObject() == front->getChild(0));
    EXPECT_EQ(0, ia->getHitTriangle());
    EXPECT_NEAR(1.f, ia->getHitNormal()[2], 1e-5f);
    EXPECT_NEAR(2.f, ia->getHitPoint()[2], 1e-5f);
    EXPECT_NEAR(0.25f, ia->getHitPoint()[0], 1e-5f);

    // the line is restored after the transforms
    EXPECT_NEAR(10.f, ia->getLine().getPosition()[2], 1e-5f);
    EXPECT_NEAR(-1.f, ia->getLine().getDirection()[2], 1e-5f);

    // a second run starts afresh
    ia->setLine(downZ(-0.25f, 0.1f));
    ia->apply(root);
    EXPECT_NEAR(8.f, ia->getHitT(), 1e-5f);
    EXPECT_EQ(1, ia->getHitTriangle());
}

TEST_F(IntersectActionTest, DistancesStayInWorldUnitsThroughScaling)
{
    // a square scaled by 4 and turned, 4 below the origin: the ray hits it
    // at x = 1.5, outside the unscaled square
    Matrix m;
    m.setTransform(Vec3f(0.f, 0.f, -4.f), Quaternion(Vec3f(0.f, 0.f, 1.f), 0.3f),
                   Vec3f(4.f, 4.f, 4.f));
    NodePtr root = scene.root(scene.group({scene.transform(m, {square("big")})}));

    std::unique_ptr<IntersectAction> ia(IntersectAction::create(downZ(1.5f, 0.f)));
    ia->apply(root);

    ASSERT_TRUE(ia->didHit());
    EXPECT_NEAR(14.f, ia->getHitT(), 1e-4f);
    EXPECT_NEAR(-4.f, ia->getHitPoint()[2], 1e-4f);
    EXPECT_EQ(Inf, ia->getMaxDist());
}

TEST_F(IntersectActionTest, MaxDistanceLimitsTheHits)
{
    NodePtr root = scene.root(scene.group({scene.translate(0, 0, -2, {square("s")})}));

    std::unique_ptr<IntersectAction> ia(IntersectAction::create(downZ(), 11.f));
    ia->apply(root);
    EXPECT_FALSE(ia->didHit());

    ia->setLine(downZ(), 12.5f);
    ia->apply(root);
    EXPECT_TRUE(ia->didHit());
    EXPECT_NEAR(12.f, ia->getHitT(), 1e-5f);
}

TEST_F(IntersectActionTest, MissedVolumesLeaveOutTheirSubtrees)
{
    NodePtr root = scene.root(scene.group({
        scene.translate(5, 0, 0, {square("away")}),
        scene.translate(0, 0, 1, {square("under")}),
    }));
    root->updateVolume();

    std::unique_ptr<IntersectAction> ia(IntersectAction::create(downZ()));
    ia->apply(root);

    // the translated group's volume misses the ray: its square is not asked
    EXPECT_EQ("I:under", actionTestLogString());
}

TEST_F(IntersectActionTest, SetHitAndEnterLeaveRules)
{
    std::unique_ptr<IntersectAction> ia(IntersectAction::create(downZ(), 20.f));
    NodePtr root = scene.root(scene.group());
    ia->apply(root); // start() resets the hit

    Vec3f n(0.f, 0.f, 1.f);
    ia->setHit(-1.f, root, 0, n);
    EXPECT_FALSE(ia->didHit());
    ia->setHit(25.f, root, 0, n);
    EXPECT_FALSE(ia->didHit());
    ia->setHit(7.f, root, 3, n);
    ia->setHit(9.f, root, 4, n);
    EXPECT_EQ(7.f, ia->getHitT());
    EXPECT_EQ(3, ia->getHitTriangle());

    EXPECT_EQ(Action::Skip, ia->setEnterLeave(1.f, -0.5f));
    EXPECT_EQ(Action::Skip, ia->setEnterLeave(21.f, 30.f));
    EXPECT_EQ(Action::Skip, ia->setEnterLeave(8.f, 30.f));
    EXPECT_EQ(Action::Continue, ia->setEnterLeave(6.f, 30.f));

    ia->scale(2.f);
    EXPECT_EQ(14.f, ia->getHitT());
    EXPECT_EQ(40.f, ia->getMaxDist());
}

namespace
{

NewActionTypes::ResultE recordActorEnter(NodeCorePtr core, ActorBase::FunctorArgumentType &arg)
{
    actionTestLog().push_back("actor:" + std::to_string(arg.getPass()));
    return NewActionTypes::Skip;
}

} // namespace

TEST_F(IntersectActionTest, ActorRegistryCallsByExactType)
{
    NodePtr t = scene.root(scene.translate(0, 0, 2));

    // Transform registers its actor functors: the ray moves into the
    // transform's system and the scale factor follows
    std::unique_ptr<IntersectActor> actor(IntersectActor::create());
    actor->setRay(downZ());
    ActorBase::FunctorArgumentType arg(actor.get(), t, 0);
    EXPECT_EQ(NewActionTypes::Continue, actor->enterNode(arg));
    EXPECT_NEAR(8.f, actor->getRay().getPosition()[2], 1e-5f);
    EXPECT_EQ(NewActionTypes::Continue, actor->leaveNode(arg));
    EXPECT_NEAR(10.f, actor->getRay().getPosition()[2], 1e-5f);
    EXPECT_NEAR(1.f, actor->getScaleFactor(), 1e-6f);

    // instance registrations come first, other types get the default
    actor->regEnter(TypedFunctor2Base<NewActionTypes::ResultE, CPtrCallArg<NodeCorePtr>,
                                      ArgsCollector<ActorBase::FunctorArgumentType &> >(
                        &recordActorEnter),
                    Transform::getClassType());
    arg.setPass(3);
    EXPECT_EQ(NewActionTypes::Skip, actor->enterNode(arg));
    EXPECT_EQ("actor:3", actionTestLogString());

    NodePtr g = scene.root(scene.group());
    ActorBase::FunctorArgumentType garg(actor.get(), g, 0);
    EXPECT_EQ(NewActionTypes::Continue, actor->enterNode(garg));
    EXPECT_TRUE(IntersectActorBase::hasClassEnter(Transform::getClassType().getId()));
    EXPECT_FALSE(IntersectActorBase::hasClassEnter(Group::getClassType().getId()));
}
