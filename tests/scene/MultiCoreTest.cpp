// MultiCore: the core list keeps one reference per entry; drawing and
// rendering play the cores' functors on a stand-in node, enter in order and
// leave in reverse, with the pictures of the equivalent stacked nodes;
// picking passes the cores by; lists that lead back to themselves or hold
// NullFC neither crash nor recurse.
#include "CoresTestSupport.h"
#include "OSGCoreProbe.h"

#include <OpenSG/OSGIntersectActor.h>
#include <OpenSG/OSGMultiCore.h>

#include <sstream>

using namespace osg;
using namespace corestest;

namespace
{

MultiCorePtr multiCore(std::initializer_list<NodeCorePtr> cores)
{
    MultiCorePtr mc = MultiCore::create();
    beginEditCP(mc, MultiCore::CoresFieldMask);
    for(const NodeCorePtr &core : cores)
        mc->addCore(core);
    endEditCP(mc, MultiCore::CoresFieldMask);
    return mc;
}

CoreProbePtr probe(const std::string &label, Action::ResultE enterResult = Action::Continue)
{
    CoreProbePtr p = CoreProbe::create();
    beginEditCP(p);
    p->setLabel(label);
    p->setEnterResult(enterResult);
    endEditCP(p);
    return p;
}

std::vector<NodeCorePtr> entries(const MultiCorePtr &mc)
{
    std::vector<NodeCorePtr> v;
    for(UInt32 i = 0; i < mc->getMFCores()->size(); ++i)
        v.push_back(mc->getCore(i));
    return v;
}

/// Counted groups that the test holds one reference to each.
class CoreListTest : public ::testing::Test
{
  protected:
    void SetUp(void) override
    {
        mc = MultiCore::create();
        addRefCP(mc);
        for(GroupPtr &g : group)
        {
            g = Group::create();
            addRefCP(g);
        }
    }

    void TearDown(void) override
    {
        subRefCP(mc);
        for(GroupPtr &g : group)
        {
            EXPECT_EQ(g.getRefCount(), 1) << "the list let go of every reference";
            subRefCP(g);
        }
    }

    MultiCorePtr mc;
    GroupPtr     group[4];
};

} // namespace

TEST_F(CoreListTest, AddAndInsertTakeAReferenceAndIgnoreNullFC)
{
    GroupPtr a = group[0], b = group[1], c = group[2];

    beginEditCP(mc, MultiCore::CoresFieldMask);
    mc->addCore(a);
    mc->addCore(NullFC);
    mc->insertCore(0, b);
    mc->insertCore(1, NullFC);
    mc->insertCore(7, c); // past the end: appended
    endEditCP(mc, MultiCore::CoresFieldMask);

    EXPECT_EQ(entries(mc), (std::vector<NodeCorePtr>{b, a, c}));
    EXPECT_EQ(a.getRefCount(), 2);
    EXPECT_EQ(b.getRefCount(), 2);
    EXPECT_EQ(c.getRefCount(), 2);

    EXPECT_EQ(mc->findCore(a), 1);
    EXPECT_EQ(mc->findCore(c), 2);
    EXPECT_EQ(mc->findCore(group[3]), -1);
    EXPECT_EQ(mc->findCore(NullFC), -1);
    EXPECT_TRUE(mc->getCore(3) == NullFC);

    // the same core twice holds two references
    beginEditCP(mc, MultiCore::CoresFieldMask);
    mc->addCore(a);
    endEditCP(mc, MultiCore::CoresFieldMask);
    EXPECT_EQ(a.getRefCount(), 3);
    EXPECT_EQ(mc->findCore(a), 1);
}

TEST_F(CoreListTest, SubAndReplaceGiveBackWhatTheyTook)
{
    GroupPtr a = group[0], b = group[1], c = group[2], d = group[3];
    beginEditCP(mc, MultiCore::CoresFieldMask);
    mc->addCore(a);
    mc->addCore(b);
    mc->addCore(c);

    mc->subCore(3u); // at the size: nothing
    mc->subCore(9u); // past it: nothing
    EXPECT_EQ(entries(mc), (std::vector<NodeCorePtr>{a, b, c}));

    mc->subCore(1u);
    EXPECT_EQ(entries(mc), (std::vector<NodeCorePtr>{a, c}));
    EXPECT_EQ(b.getRefCount(), 1);

    mc->subCore(c);
    EXPECT_EQ(entries(mc), (std::vector<NodeCorePtr>{a}));
    EXPECT_EQ(c.getRefCount(), 1);

    mc->replaceCore(0, d);
    EXPECT_EQ(entries(mc), (std::vector<NodeCorePtr>{d}));
    EXPECT_EQ(a.getRefCount(), 1);
    EXPECT_EQ(d.getRefCount(), 2);

    mc->replaceCore(0, d); // by itself: still one reference
    mc->replaceCore(1, a); // out of range: ignored
    mc->replaceCore(0, NullFC);
    EXPECT_EQ(entries(mc), (std::vector<NodeCorePtr>{d}));
    EXPECT_EQ(d.getRefCount(), 2);
    EXPECT_EQ(a.getRefCount(), 1);

    EXPECT_FALSE(mc->replaceCoreBy(a, b)); // a isn't there
    EXPECT_FALSE(mc->replaceCoreBy(d, NullFC));
    EXPECT_EQ(entries(mc), (std::vector<NodeCorePtr>{d}));
    EXPECT_TRUE(mc->replaceCoreBy(d, b));
    EXPECT_EQ(entries(mc), (std::vector<NodeCorePtr>{b}));
    EXPECT_EQ(d.getRefCount(), 1);
    EXPECT_EQ(b.getRefCount(), 2);
    endEditCP(mc, MultiCore::CoresFieldMask);
    // TearDown: the last entry goes with the multi core
}

TEST_F(CoreListTest, SubtractingAForeignCoreWarnsAndKeepsTheList)
{
    beginEditCP(mc, MultiCore::CoresFieldMask);
    mc->addCore(group[0]);

    std::ostringstream self;
    self << "MultiCore(" << mc.getCPtr() << ")::subCcore: FCPtr 0x";
    for(const NodeCorePtr &foreign : {NodeCorePtr(group[1]), NodeCorePtr(NullFC)})
    {
        LogCapture        log(LOG_WARNING);
        mc->subCore(foreign);
        const std::string said = log.take();
        EXPECT_NE(said.find(self.str()), std::string::npos) << said;
        EXPECT_NE(said.find(foreign == NullFC ? ":NullFC is not one of my cores!\n"
                                              : ":GroupPtr(0x"),
                  std::string::npos)
            << said;
        EXPECT_NE(said.find(" is not one of my cores!\n"), std::string::npos) << said;
    }
    endEditCP(mc, MultiCore::CoresFieldMask);

    EXPECT_EQ(entries(mc), (std::vector<NodeCorePtr>{group[0]}));
    EXPECT_EQ(group[1].getRefCount(), 1);
}

TEST_F(CoreListTest, ACopyHoldsItsOwnReferences)
{
    beginEditCP(mc, MultiCore::CoresFieldMask);
    mc->addCore(group[0]);
    endEditCP(mc, MultiCore::CoresFieldMask);

    FieldContainerPtr copy = mc->shallowCopy();
    addRefCP(copy);
    EXPECT_EQ(group[0].getRefCount(), 3);
    subRefCP(copy);
    EXPECT_EQ(group[0].getRefCount(), 2);
}

TEST(MultiCoreEdits, AnEditOfTheCoresInvalidatesTheVolumeAndItDumpsAsAGroup)
{
    MultiCorePtr mc = multiCore({});
    NodePtr      n  = node(mc, {square(Red)});
    addRefCP(n);

    n->updateVolume();
    ASSERT_TRUE(n->getVolume().isValid());
    beginEditCP(mc, MultiCore::CoresFieldMask);
    mc->addCore(Group::create());
    endEditCP(mc, MultiCore::CoresFieldMask);
    EXPECT_FALSE(n->getVolume().isValid());

    LogCapture log(LOG_DEBUG);
    mc->dump();
    const std::string said = log.take();
    EXPECT_NE(said.find("MultiCore"), std::string::npos) << said;
    EXPECT_EQ(said.find("NI"), std::string::npos) << said;

    subRefCP(n);
}

// --- playing the cores -----------------------------------------------------------------

namespace
{

class PlayTest : public ::testing::Test
{
  protected:
    void SetUp(void) override { coreProbeCalls().clear(); }

    void TearDown(void) override
    {
        for(UInt32 i = UInt32(held.size()); i > 0; --i)
            subRefCP(held[i - 1]);
        coreProbeCalls().clear();
    }

    /// A MultiCore node over one probe child "c"; the test holds it.
    NodePtr scene(const MultiCorePtr &mc)
    {
        NodePtr n = node(mc, {node(probe("c"))});
        addRefCP(n);
        held.push_back(n);
        return n;
    }

    /// Applies a draw action (no window is needed: nothing below draws).
    Action::ResultE draw(const NodePtr &root, bool culling = true)
    {
        std::unique_ptr<DrawAction> da(DrawAction::create());
        da->setFrustumCulling(culling);
        Action::ResultE r = da->apply(root);
        EXPECT_EQ(da->getFrustumCulling(), culling);
        return r;
    }

    std::vector<FieldContainerPtr> held;
};

} // namespace

TEST_F(PlayTest, EntersInOrderLeavesInReverseOnAStandInNodeWithoutCulling)
{
    NodePtr root = scene(multiCore({probe("1"), probe("2"), probe("3")}));

    EXPECT_EQ(draw(root), Action::Continue);
    EXPECT_EQ(coreProbeLog(), "E:1 E:2 E:3 E:c L:c L:3 L:2 L:1");

    const std::vector<CoreProbeCall> &calls = coreProbeCalls();
    Node *standIn = calls[0].node;
    ASSERT_NE(standIn, static_cast<Node *>(NULL));
    EXPECT_NE(standIn, root.getCPtr());
    for(const CoreProbeCall &c : calls)
    {
        // the action stays on the real node, so the cores' functors work on
        // its children
        EXPECT_TRUE(c.actNode == (c.what[2] == 'c' ? root->getChild(0) : root)) << c.what;
        if(c.what[2] == 'c')
        {
            EXPECT_TRUE(c.culling) << "culling is back on for the children";
            continue;
        }
        EXPECT_EQ(c.node, standIn) << c.what;
        EXPECT_FALSE(c.culling) << c.what;
    }

    // culling that was off stays off
    coreProbeCalls().clear();
    draw(root, false);
    EXPECT_EQ(coreProbeLog(), "E:1 E:2 E:3 E:c L:c L:3 L:2 L:1");
}

TEST_F(PlayTest, TheStandInNodeKeepsNoCore)
{
    CoreProbePtr p    = probe("1");
    NodePtr      root = scene(multiCore({p}));
    const Int32  refs = p.getRefCount();

    draw(root);
    EXPECT_EQ(p.getRefCount(), refs);
    EXPECT_EQ(p->getParents().size(), 0u);
}

TEST_F(PlayTest, AnEmptyListGoesOnToTheChildren)
{
    NodePtr root = scene(multiCore({}));
    EXPECT_EQ(draw(root), Action::Continue);
    EXPECT_EQ(coreProbeLog(), "E:c L:c");
}

TEST_F(PlayTest, ASkippingCoreEndsThePlayingButNotTheChildren)
{
    NodePtr root = scene(multiCore({probe("1"), probe("2", Action::Skip), probe("3")}));

    EXPECT_EQ(draw(root), Action::Continue);
    // every core's leave functor runs, the skipped ones' too
    EXPECT_EQ(coreProbeLog(), "E:1 E:2 E:c L:c L:3 L:2 L:1");
}

TEST_F(PlayTest, AQuittingCoreEndsTheTraversal)
{
    NodePtr root = scene(multiCore({probe("1", Action::Quit), probe("2")}));

    EXPECT_EQ(draw(root), Action::Quit);
    EXPECT_EQ(coreProbeLog(), "E:1");
}

TEST_F(PlayTest, AnActionWithoutCullingIsServed)
{
    MultiCorePtr mc   = multiCore({probe("1"), probe("2")});
    NodePtr      root = scene(mc);

    // MultiCore registers nothing with the plain action: call it as a
    // host's own action would
    std::unique_ptr<Action> plain(Action::create());
    plain->registerEnterFunction(
        MultiCore::getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<Action::ResultE, MultiCorePtr, CNodePtr, Action *>(
            &MultiCore::renderEnter));
    plain->registerLeaveFunction(
        MultiCore::getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<Action::ResultE, MultiCorePtr, CNodePtr, Action *>(
            &MultiCore::renderLeave));

    EXPECT_EQ(plain->apply(root), Action::Continue);
    EXPECT_EQ(coreProbeLog(), "E:1 E:2 E:c L:c L:2 L:1");
}

TEST_F(PlayTest, PickingPlaysNoCore)
{
    NodePtr root = scene(multiCore({probe("1")}));

    std::unique_ptr<IntersectAction> ia(
        IntersectAction::create(Line(Pnt3f(0.f, 0.f, 5.f), Vec3f(0.f, 0.f, -1.f))));
    EXPECT_EQ(ia->apply(root), Action::Continue);
    EXPECT_EQ(coreProbeLog(), "E:c L:c");

    // the actor's functors are there and leave the ray alone
    std::unique_ptr<IntersectActor> actor(IntersectActor::create());
    const Line                      ray(Pnt3f(1.f, 2.f, 3.f), Vec3f(0.f, 0.f, -1.f));
    actor->setRay(ray);
    NewActionTypes::FunctorArgumentType arg(actor.get(), root);
    EXPECT_EQ(actor->enterNode(arg), NewActionTypes::Continue);
    EXPECT_EQ(actor->leaveNode(arg), NewActionTypes::Continue);
    EXPECT_TRUE(actor->getRay().getPosition() == ray.getPosition());
    EXPECT_TRUE(actor->getRay().getDirection() == ray.getDirection());
    EXPECT_TRUE(IntersectActorBase::hasClassEnter(MultiCore::getClassTypeId()));
    EXPECT_TRUE(IntersectActorBase::hasClassLeave(MultiCore::getClassTypeId()));
}

TEST_F(PlayTest, ANestedMultiCorePlaysItsCoresInItsPlace)
{
    NodePtr root = scene(multiCore({probe("1"), multiCore({probe("2"), probe("3")}), probe("4")}));

    draw(root);
    EXPECT_EQ(coreProbeLog(), "E:1 E:2 E:3 E:4 E:c L:c L:4 L:3 L:2 L:1");
}

// --- bad lists ------------------------------------------------------------------------

TEST_F(PlayTest, AListThatLeadsBackToItselfIsPlayedOnceAndWarnsOnce)
{
    MultiCorePtr mc   = multiCore({probe("1")});
    NodePtr      root = scene(mc);
    beginEditCP(mc, MultiCore::CoresFieldMask);
    mc->addCore(mc);
    mc->addCore(probe("2"));
    endEditCP(mc, MultiCore::CoresFieldMask);

    // and a cycle through a second one
    MultiCorePtr other = multiCore({probe("3")});
    beginEditCP(other, MultiCore::CoresFieldMask);
    other->addCore(mc);
    endEditCP(other, MultiCore::CoresFieldMask);
    beginEditCP(mc, MultiCore::CoresFieldMask);
    mc->addCore(other);
    endEditCP(mc, MultiCore::CoresFieldMask);

    for(UInt32 frame = 0; frame < 2; ++frame)
    {
        coreProbeCalls().clear();
        LogCapture log(LOG_WARNING);
        EXPECT_EQ(draw(root), Action::Continue);
        EXPECT_EQ(coreProbeLog(), "E:1 E:2 E:3 E:c L:c L:3 L:2 L:1");
        const std::string said = log.take();
        EXPECT_EQ(said.find("leads back to itself") != std::string::npos, frame == 0) << said;
    }

    // the lists hold each other: break the cycle so that both can go
    beginEditCP(mc, MultiCore::CoresFieldMask);
    mc->subCore(other);
    mc->subCore(mc);
    endEditCP(mc, MultiCore::CoresFieldMask);
}

TEST_F(PlayTest, ANullFCEntryIsLeftOutWithOneWarning)
{
    MultiCorePtr mc   = multiCore({probe("1")});
    NodePtr      root = scene(mc);
    beginEditCP(mc, MultiCore::CoresFieldMask);
    mc->editMFCores()->push_back(NullFC);
    mc->addCore(probe("2"));
    endEditCP(mc, MultiCore::CoresFieldMask);

    for(UInt32 frame = 0; frame < 2; ++frame)
    {
        coreProbeCalls().clear();
        LogCapture log(LOG_WARNING);
        draw(root);
        EXPECT_EQ(coreProbeLog(), "E:1 E:2 E:c L:c L:2 L:1");
        const std::string said = log.take();
        EXPECT_EQ(said.find("NullFC entry") != std::string::npos, frame == 0) << said;
    }
    EXPECT_EQ(mc->findCore(NullFC), 1);
    EXPECT_TRUE(mc->getCore(1) == NullFC);
}

// --- pictures ---------------------------------------------------------------------------

namespace
{

class MultiCoreFrame : public CoresFrame, public ::testing::WithParamInterface<Drawer>
{
  protected:
    /// The cores stacked one node each, from outermost to innermost, over child.
    static NodePtr stacked(std::initializer_list<NodeCorePtr> cores, const NodePtr &child)
    {
        NodePtr inner = child;
        for(auto it = std::rbegin(cores); it != std::rend(cores); ++it)
            inner = node(*it, {inner});
        return inner;
    }

    static NodePtr multi(std::initializer_list<NodeCorePtr> cores, const NodePtr &child)
    {
        return node(multiCore(cores), {child});
    }
};

} // namespace

TEST_P(MultiCoreFrame, ATransformAndAMaterialGroupDrawAsStackedNodes)
{
    TransformPtr     moved = transform(placement(0.8f, 0.4f, 30.f));
    MaterialGroupPtr red   = materialGroup(Red);

    const std::vector<RGBA> expected = show(stacked({moved, red}, square(Green)), GetParam());
    const std::vector<RGBA> got      = show(multi({moved, red}, square(Green)), GetParam());

    EXPECT_TRUE(got == expected);
    EXPECT_EQ(at(got, 0.8f, 0.4f), Red);
    EXPECT_EQ(at(got, 0.f, 0.f), Grey);
}

TEST_P(MultiCoreFrame, TheOrderOfTheCoresIsTheOrderOfStacking)
{
    // turned then moved differs from moved then turned
    TransformPtr turn = transform(placement(0.f, 0.f, 90.f));
    TransformPtr move = transform(translation(1.f, 0.f));

    const std::vector<RGBA> turnMove = show(multi({turn, move}, square(Green)), GetParam());
    EXPECT_TRUE(turnMove == show(stacked({turn, move}, square(Green)), GetParam()));
    EXPECT_EQ(at(turnMove, 0.f, 1.f), Green);

    const std::vector<RGBA> moveTurn = show(multi({move, turn}, square(Green)), GetParam());
    EXPECT_TRUE(moveTurn == show(stacked({move, turn}, square(Green)), GetParam()));
    EXPECT_EQ(at(moveTurn, 1.f, 0.f), Green);

    // the outermost material group wins
    MaterialGroupPtr red = materialGroup(Red), blue = materialGroup(Blue);
    EXPECT_EQ(at(show(multi({red, blue}, square(Green)), GetParam()), 0.f, 0.f), Red);
    EXPECT_EQ(at(show(multi({blue, red}, square(Green)), GetParam()), 0.f, 0.f), Blue);
}

TEST_P(MultiCoreFrame, WhatTheCoresSetEndsWithTheNode)
{
    TransformPtr     moved = transform(placement(0.8f, 0.4f, 30.f));
    MaterialGroupPtr red   = materialGroup(Red);

    // a sibling after the node is neither moved nor recoloured
    const std::vector<RGBA> expected = show(
        node(Group::create(), {stacked({moved, red}, square(Green)), square(Blue)}), GetParam());
    const std::vector<RGBA> got = show(
        node(Group::create(), {multi({moved, red}, square(Green)), square(Blue)}), GetParam());

    EXPECT_TRUE(got == expected);
    EXPECT_EQ(at(got, 0.8f, 0.4f), Red);
    EXPECT_EQ(at(got, 0.f, 0.f), Blue);
}

INSTANTIATE_TEST_SUITE_P(Drawers, MultiCoreFrame,
                         ::testing::Values(WithRenderAction, WithDrawAction),
                         [](const ::testing::TestParamInfo<Drawer> &info) {
                             return info.param == WithRenderAction ? "RenderAction"
                                                                   : "DrawAction";
                         });

TEST(MultiCorePick, PickingTestsTheChildrenWhereTheyLie)
{
    TransformPtr moved = transform(translation(2.f, 0.f));

    NodePtr viaMulti = node(multiCore({moved}), {square(Green, 1.f)});
    NodePtr viaStack = node(moved, {square(Green, 1.f)});
    addRefCP(viaMulti);
    addRefCP(viaStack);

    // the cores aren't played for picking: the child stays at the origin
    EXPECT_FLOAT_EQ(pick(viaMulti, 0.f, 0.f), 5.f);
    EXPECT_EQ(pick(viaMulti, 2.f, 0.f), -1.f);
    // where the stacked transform puts it
    EXPECT_EQ(pick(viaStack, 0.f, 0.f), -1.f);
    EXPECT_FLOAT_EQ(pick(viaStack, 2.f, 0.f), 5.f);

    subRefCP(viaStack);
    subRefCP(viaMulti);
}
