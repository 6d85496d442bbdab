// Traversal semantics of Action: results, node lists, masks, functor tables.
#include "OSGActionTestCore.h"
#include "OSGActionTestPlainCore.h"

#include <OpenSG/OSGAction.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGLog.h>

#include <gtest/gtest.h>

#include <map>
#include <memory>

using namespace osg;

namespace
{

/// Builds trees of recording cores, addressed by label.
class Tree
{
  public:
    ~Tree(void)
    {
        for(auto &r : _roots)
            subRefCP(r);
    }

    NodePtr node(const std::string &label, std::initializer_list<NodePtr> children = {})
    {
        ActionTestCorePtr core = ActionTestCore::create();
        beginEditCP(core);
        core->setLabel(label);
        endEditCP(core);

        NodePtr n = Node::create();
        beginEditCP(n);
        n->setCore(core);
        for(const NodePtr &c : children)
            n->addChild(c);
        endEditCP(n);

        _cores[label] = core;
        _nodes[label] = n;
        return n;
    }

    NodePtr root(NodePtr n)
    {
        addRefCP(n);
        _roots.push_back(n);
        return n;
    }

    ActionTestCorePtr core(const std::string &label) { return _cores[label]; }
    NodePtr           operator[](const std::string &label) { return _nodes[label]; }

    void setResults(const std::string &label, Action::ResultE enter,
                    Action::ResultE leave = Action::Continue)
    {
        ActionTestCorePtr c = _cores[label];
        beginEditCP(c);
        c->setEnterResult(enter);
        c->setLeaveResult(leave);
        endEditCP(c);
    }

  private:
    std::map<std::string, ActionTestCorePtr> _cores;
    std::map<std::string, NodePtr>           _nodes;
    std::vector<NodePtr>                     _roots;
};

/// Exposes the instance tables.
class TableAction : public Action
{
  public:
    size_t enterTableSize(void) const { return _enterFunctors.size(); }
};

Action::ResultE recordGroupEnter(CNodePtr &, Action *)
{
    actionTestLog().push_back("group");
    return Action::Continue;
}

class ActionTraversal : public ::testing::Test
{
  protected:
    void SetUp(void) override
    {
        clearActionTestLog();
        // a(b(c, d), e)
        root = tree.root(tree.node("a", {tree.node("b", {tree.node("c"), tree.node("d")}),
                                         tree.node("e")}));
        action.reset(Action::create());
    }

    Action::ResultE run(void) { return action->apply(root); }

    Tree                    tree;
    NodePtr                 root;
    std::unique_ptr<Action> action;
};

} // namespace

TEST_F(ActionTraversal, ContinueVisitsDepthFirstWithLeaves)
{
    EXPECT_EQ(Action::Continue, run());
    EXPECT_EQ("E:a E:b E:c L:c E:d L:d L:b E:e L:e L:a", actionTestLogString());
}

TEST_F(ActionTraversal, SkipLeavesOutChildrenAndOwnLeave)
{
    tree.setResults("b", Action::Skip);
    EXPECT_EQ(Action::Continue, run());
    EXPECT_EQ("E:a E:b E:e L:e L:a", actionTestLogString());
}

TEST_F(ActionTraversal, SkipFromLeaveActsAsContinue)
{
    tree.setResults("c", Action::Continue, Action::Skip);
    EXPECT_EQ(Action::Continue, run());
    EXPECT_EQ("E:a E:b E:c L:c E:d L:d L:b E:e L:e L:a", actionTestLogString());
}

TEST_F(ActionTraversal, QuitInEnterStopsButAncestorsLeave)
{
    tree.setResults("c", Action::Quit);
    EXPECT_EQ(Action::Quit, run());
    // c's own leave is not called, d and e are never entered
    EXPECT_EQ("E:a E:b E:c L:b L:a", actionTestLogString());
}

TEST_F(ActionTraversal, QuitInLeaveStopsTheSiblings)
{
    tree.setResults("b", Action::Continue, Action::Quit);
    EXPECT_EQ(Action::Quit, run());
    EXPECT_EQ("E:a E:b E:c L:c E:d L:d L:b L:a", actionTestLogString());
}

TEST_F(ActionTraversal, UseNodeListWithoutNodesTraversesNoChild)
{
    beginEditCP(tree.core("a"));
    tree.core("a")->setUseList(true);
    endEditCP(tree.core("a"));

    run();
    EXPECT_EQ("E:a L:a", actionTestLogString());
}

TEST_F(ActionTraversal, AddedNodesReplaceTheChildrenInTheirOrder)
{
    // without useNodeList: a non-empty list replaces the children anyway
    beginEditCP(tree.core("a"));
    tree.core("a")->getPick().push_back(1);
    tree.core("a")->getPick().push_back(0);
    endEditCP(tree.core("a"));
    beginEditCP(tree.core("b"));
    tree.core("b")->setUseList(true);
    tree.core("b")->getPick().push_back(1);
    endEditCP(tree.core("b"));

    run();
    EXPECT_EQ("E:a E:e L:e E:b E:d L:d L:b L:a", actionTestLogString());
}

TEST_F(ActionTraversal, NodeListsNestAndUnwind)
{
    // a picks b, b picks c and d: lists at two levels at once, then a's
    // remaining entry after b's list is done
    beginEditCP(tree.core("a"));
    tree.core("a")->getPick().push_back(0);
    tree.core("a")->getPick().push_back(1);
    endEditCP(tree.core("a"));
    beginEditCP(tree.core("b"));
    tree.core("b")->getPick().push_back(1);
    tree.core("b")->getPick().push_back(0);
    endEditCP(tree.core("b"));

    for(int frame = 0; frame < 2; ++frame)
    {
        clearActionTestLog();
        run();
        EXPECT_EQ("E:a E:b E:d L:d E:c L:c L:b E:e L:e L:a", actionTestLogString());
    }
}

TEST_F(ActionTraversal, TravMaskLeavesOutWholeSubtrees)
{
    beginEditCP(tree["b"], Node::TravMaskFieldMask);
    tree["b"]->setTravMask(0x2);
    endEditCP(tree["b"], Node::TravMaskFieldMask);

    action->setTravMask(0x1);
    run();
    EXPECT_EQ("E:a E:e L:e L:a", actionTestLogString());

    clearActionTestLog();
    action->setTravMask(0x3);
    run();
    EXPECT_EQ("E:a E:b E:c L:c E:d L:d L:b E:e L:e L:a", actionTestLogString());

    // a mask of 0 on the node hides it from every action
    clearActionTestLog();
    beginEditCP(tree["e"], Node::TravMaskFieldMask);
    tree["e"]->setTravMask(0);
    endEditCP(tree["e"], Node::TravMaskFieldMask);
    action->setTravMask(0xFFFFFFFF);
    run();
    EXPECT_EQ("E:a E:b E:c L:c E:d L:d L:b L:a", actionTestLogString());
}

TEST_F(ActionTraversal, OcclusionBitSkipsNode)
{
    tree["c"]->setOcclusionMask(1);
    run();
    EXPECT_EQ("E:a E:b E:d L:d L:b E:e L:e L:a", actionTestLogString());
    tree["c"]->setOcclusionMask(0);
}

TEST_F(ActionTraversal, NullNodesAndCoresQuitWithWarnings)
{
    LogCapture log(LOG_WARNING);

    EXPECT_EQ(Action::Quit, action->apply(NodePtr()));
    EXPECT_NE(std::string::npos, log.take().find("apply: node is Null!"));

    std::vector<NodePtr> list;
    list.push_back(tree["c"]);
    list.push_back(NodePtr());
    list.push_back(tree["e"]);
    EXPECT_EQ(Action::Quit, action->apply(list.begin(), list.end()));
    EXPECT_NE(std::string::npos, log.take().find("apply: encountered NullNode!"));
    EXPECT_EQ("E:c L:c", actionTestLogString());

    // a node without core below d: the traversal ends there
    clearActionTestLog();
    NodePtr bare = Node::create();
    beginEditCP(tree["d"], Node::ChildrenFieldMask);
    tree["d"]->addChild(bare);
    endEditCP(tree["d"], Node::ChildrenFieldMask);

    EXPECT_EQ(Action::Quit, run());
    EXPECT_NE(std::string::npos, log.take().find("recurse: core is Null,  don't know what to do!"));
    EXPECT_EQ("E:a E:b E:c L:c E:d L:d L:b L:a", actionTestLogString());
}

TEST_F(ActionTraversal, CoresWithoutFunctorsPassEverythingOn)
{
    // a plain core between recording ones: its children are traversed
    ActionTestPlainCorePtr plain = ActionTestPlainCore::create();
    NodePtr                mid   = Node::create();
    beginEditCP(mid);
    mid->setCore(plain);
    mid->addChild(tree.node("x"));
    endEditCP(mid);
    beginEditCP(tree["e"], Node::ChildrenFieldMask);
    tree["e"]->addChild(mid);
    endEditCP(tree["e"], Node::ChildrenFieldMask);

    run();
    EXPECT_EQ("E:a E:b E:c L:c E:d L:d L:b E:e E:x L:x L:e L:a", actionTestLogString());
}

TEST_F(ActionTraversal, ActNodeAndCallEnterLeave)
{
    // callEnter/callLeave call the functors directly without moving getActNode
    EXPECT_EQ(Action::Continue, action->callEnter(tree["d"]));
    EXPECT_EQ(Action::Continue, action->callLeave(tree["d"]));
    EXPECT_EQ("E:d L:d", actionTestLogString());
    EXPECT_TRUE(action->getActNode() == NullFC);

    tree.setResults("d", Action::Quit, Action::Skip);
    EXPECT_EQ(Action::Quit, action->callEnter(tree["d"]));
    EXPECT_EQ(Action::Skip, action->callLeave(tree["d"]));
}

TEST(ActionTables, InstanceTableCatchesUpOnlyBeyondItsLength)
{
    clearActionTestLog();

    TableAction before;
    const size_t length = before.enterTableSize();

    const FieldContainerType &low  = Group::getClassType();
    const FieldContainerType &high = ActionTestPlainCore::getClassType();
    ASSERT_LT(low.getId(), length);
    if(high.getId() < length)
        GTEST_SKIP() << "the plain test core's type id is not beyond the table";

    Action::Functor record =
        osgTypedFunctionFunctor2CPtrRef<Action::ResultE, CNodePtr, Action *>(&recordGroupEnter);
    Action::registerEnterDefault(low, record);
    Action::registerEnterDefault(high, record);

    NodePtr groupNode = Node::create();
    NodePtr plainNode = Node::create();
    addRefCP(groupNode);
    addRefCP(plainNode);
    beginEditCP(groupNode);
    groupNode->setCore(Group::create());
    endEditCP(groupNode);
    beginEditCP(plainNode);
    plainNode->setCore(ActionTestPlainCore::create());
    endEditCP(plainNode);

    // the old instance keeps its copy for ids inside it, catches up beyond
    before.callEnter(groupNode);
    EXPECT_EQ("", actionTestLogString());
    before.callEnter(plainNode);
    EXPECT_EQ("group", actionTestLogString());
    EXPECT_GT(before.enterTableSize(), high.getId());

    clearActionTestLog();
    std::unique_ptr<Action> after(Action::create());
    after->callEnter(groupNode);
    EXPECT_EQ("group", actionTestLogString());

    // per-instance registration leaves the class table alone
    clearActionTestLog();
    Action::Functor dflt = osgTypedFunctionFunctor2CPtrRef<Action::ResultE, CNodePtr, Action *>(
        &Action::_defaultEnterFunction);
    after->registerEnterFunction(low, dflt);
    after->callEnter(groupNode);
    EXPECT_EQ("", actionTestLogString());
    std::unique_ptr<Action> third(Action::create());
    third->callEnter(groupNode);
    EXPECT_EQ("group", actionTestLogString());

    Action::registerEnterDefault(low, dflt);
    Action::registerEnterDefault(high, dflt);
    subRefCP(groupNode);
    subRefCP(plainNode);
}

TEST(ActionFunctors, MethodFunctorCallsMemberOfTheCore)
{
    clearActionTestLog();

    // the plain core derives from the recording one: a member of the base
    // class, registered through the derived pointer type
    ActionTestPlainCorePtr core = ActionTestPlainCore::create();
    beginEditCP(core);
    core->setLabel("p");
    endEditCP(core);
    NodePtr n = Node::create();
    addRefCP(n);
    beginEditCP(n);
    n->setCore(core);
    endEditCP(n);

    Action::Functor f = osgTypedMethodFunctor2BaseCPtrRef<Action::ResultE, ActionTestPlainCorePtr,
                                                         CNodePtr, Action *>(&ActionTestCore::enter);
    Action::Functor copy = f;
    f                    = Action::Functor();

    std::unique_ptr<Action> a(Action::create());
    CNodePtr                cn(n);
    EXPECT_EQ(Action::Continue, copy.call(cn, a.get()));
    EXPECT_EQ(1u, core->getEnterCount());
    EXPECT_EQ("E:p", actionTestLogString());

    // an empty functor answers Continue
    EXPECT_FALSE(f.isValid());
    EXPECT_EQ(Action::Continue, f.call(cn, a.get()));

    subRefCP(n);
}

TEST(ActionFunctors, BoundObjectFunctorDispatchesVirtually)
{
    struct Base
    {
        virtual ~Base(void) {}
        virtual Action::ResultE draw(DrawActionBase *) { return Action::Continue; }
    };
    struct Derived : Base
    {
        Action::ResultE draw(DrawActionBase *) override { return Action::Quit; }
    };

    Derived d;
    Base   *b = &d;
    // object and member of different (related) classes, as MaterialDrawable
    // binds its own virtual drawPrimitives
    TypedFunctor1Base<Action::ResultE, PtrCallArg<DrawActionBase> > f =
        osgTypedMethodFunctor1ObjPtr(&d, &Base::draw);
    TypedFunctor1Base<Action::ResultE, PtrCallArg<DrawActionBase> > g = f;
    EXPECT_EQ(Action::Quit, g.call(NULL));
    EXPECT_EQ(Action::Quit, osgTypedMethodFunctor1ObjPtr(b, &Base::draw).call(NULL));
}
