// The helpers OpenSG programs build and walk scenes with: makeNodeFor,
// makeCoredNode and the cored-node pointers, counted RefPtrs, deep copies
// with shared types, traverse, and the lights' convenience setters.
#include <OpenSG/OSGAction.h>
#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGSimpleAttachments.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGSpotLight.h>
#include <OpenSG/OSGTransform.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace osg;

TEST(NodeHelpers, MakeNodeForAndMakeCoredNode)
{
    TransformPtr t = Transform::create();
    NodePtr      n = makeNodeFor(t);
    addRefCP(n);
    EXPECT_EQ(n->getCore(), t);
    EXPECT_EQ(t->getParents().size(), 1u);
    subRefCP(n);

    TransformPtr core;
    NodePtr      m = makeCoredNode<Transform>(&core);
    addRefCP(m);
    ASSERT_NE(core, NullFC);
    EXPECT_EQ(m->getCore(), core);
    NodePtr g = makeCoredNode<Group>();
    addRefCP(g);
    EXPECT_NE(GroupPtr::dcast(g->getCore()), NullFC);
    subRefCP(g);
    subRefCP(m);
}

TEST(NodeHelpers, CoredNodePtrHoldsNodeAndCore)
{
    NodePtr node;
    {
        TransformNodePtr tn = TransformNodePtr::create();
        ASSERT_NE(tn.node(), NullFC);
        ASSERT_NE(tn.core(), NullFC);
        EXPECT_EQ(tn.node()->getCore(), tn.core());
        EXPECT_EQ(getRefCount(tn.node()), 1);

        Matrix m;
        m.setTranslate(1, 2, 3);
        tn->setMatrix(m); // -> reaches the core
        node = tn;
        addRefCP(node);

        // from a node: its core, if of the type
        TransformNodePtr again(node);
        EXPECT_EQ(again.core(), tn.core());
        MaterialGroupNodePtr asOther(node);
        EXPECT_EQ(asOther.core(), NullFC);

        // a new core goes into the same node
        TransformPtr other = Transform::create();
        tn                 = other;
        EXPECT_EQ(node->getCore(), other);
        EXPECT_EQ(getRefCount(other), 2); // node and pointer
    }
    EXPECT_EQ(getRefCount(node), 1);
    subRefCP(node);
}

TEST(NodeHelpers, RefPtrCountsWhileItPoints)
{
    NodePtr raw = Node::create();
    addRefCP(raw);
    {
        NodeRefPtr ref(raw);
        EXPECT_EQ(getRefCount(raw), 2);
        NodeRefPtr copy = ref;
        EXPECT_EQ(getRefCount(raw), 3);
        EXPECT_EQ(copy->getNChildren(), 0u);
        EXPECT_TRUE(copy == raw);
        copy = NullFC;
        EXPECT_TRUE(!copy);
        EXPECT_EQ(getRefCount(raw), 2);
        NodePtr back = ref;
        EXPECT_EQ(back, raw);
    }
    EXPECT_EQ(getRefCount(raw), 1);
    subRefCP(raw);

    // the last reference going away destroys the container
    GroupRefPtr group(Group::create());
    UInt32      id = group.get().getFieldContainerId();
    group          = NullFC;
    EXPECT_EQ(FieldContainerFactory::the()->getContainer(id), NullFC);
}

TEST(DeepClone, CopiesCoresAndWhatTheyPointToUnlessShared)
{
    // root (Transform, named) -> child (MaterialGroup with a material)
    NodePtr root = makeCoredNode<Transform>();
    addRefCP(root);
    setName(root, "root");
    MaterialGroupPtr mg;
    NodePtr          child = makeCoredNode<MaterialGroup>(&mg);
    SimpleMaterialPtr mat  = SimpleMaterial::create();
    beginEditCP(mat);
    mat->setDiffuse(Color3f(1, 0, 0));
    endEditCP(mat);
    beginEditCP(mg);
    mg->setMaterial(mat);
    endEditCP(mg);
    beginEditCP(root, Node::ChildrenFieldMask);
    root->addChild(child);
    endEditCP(root, Node::ChildrenFieldMask);
    Matrix m;
    m.setTranslate(4, 5, 6);
    beginEditCP(root->getCore());
    TransformPtr::dcast(root->getCore())->setMatrix(m);
    endEditCP(root->getCore());

    NodePtr copy = deepCloneTree(root);
    addRefCP(copy);
    ASSERT_NE(copy, root);
    EXPECT_STREQ(getName(copy), "root");
    EXPECT_NE(copy->getCore(), root->getCore());
    EXPECT_EQ(TransformPtr::dcast(copy->getCore())->getMatrix(), m);
    ASSERT_EQ(copy->getNChildren(), 1u);
    MaterialGroupPtr mg2 = MaterialGroupPtr::dcast(copy->getChild(0)->getCore());
    ASSERT_NE(mg2, NullFC);
    EXPECT_NE(mg2, mg);
    ASSERT_NE(mg2->getMaterial(), NullFC);
    EXPECT_NE(mg2->getMaterial(), mg->getMaterial());
    EXPECT_EQ(SimpleMaterialPtr::dcast(mg2->getMaterial())->getDiffuse(), Color3f(1, 0, 0));
    EXPECT_EQ(copy->getChild(0)->getParent(), copy);

    // shared by type name: the same material; unknown names are ignored
    NodePtr shared = deepCloneTree(root, "GenericAtt, Material");
    addRefCP(shared);
    EXPECT_EQ(MaterialGroupPtr::dcast(shared->getChild(0)->getCore())->getMaterial(),
              mg->getMaterial());
    // the list applies to what a container points to, not to itself
    std::vector<std::string> names(1, "SimpleMaterial");
    MaterialGroupPtr byName = MaterialGroupPtr::dcast(deepClone(mg, names));
    addRefCP(byName);
    EXPECT_NE(byName, mg);
    EXPECT_EQ(byName->getMaterial(), mg->getMaterial());
    std::vector<UInt16> groups(1, SimpleMaterial::getClassType().getGroupId());
    MaterialGroupPtr byGroup = MaterialGroupPtr::dcast(deepClone(mg, groups));
    addRefCP(byGroup);
    EXPECT_EQ(byGroup->getMaterial(), mg->getMaterial());
    subRefCP(byGroup);
    subRefCP(byName);

    EXPECT_EQ(deepCloneTree(NullFC), NullFC);
    subRefCP(shared);
    subRefCP(copy);
    subRefCP(root);
}

TEST(DeepClone, ACycleThroughABeaconEnds)
{
    // a light whose beacon lies below the light's own node
    NodePtr           lightNode = makeCoredNode<DirectionalLight>();
    DirectionalLightPtr light   = DirectionalLightPtr::dcast(lightNode->getCore());
    addRefCP(lightNode);
    NodePtr beacon = makeNodeFor(light); // the same core again
    beginEditCP(lightNode, Node::ChildrenFieldMask);
    lightNode->addChild(beacon);
    endEditCP(lightNode, Node::ChildrenFieldMask);
    beginEditCP(light, Light::BeaconFieldMask);
    light->setBeacon(beacon);
    endEditCP(light, Light::BeaconFieldMask);

    FieldContainerPtr copy = deepClone(light);
    ASSERT_NE(copy, NullFC);
    addRefCP(copy);
    DirectionalLightPtr lightCopy = DirectionalLightPtr::dcast(copy);
    ASSERT_NE(lightCopy->getBeacon(), NullFC);
    EXPECT_NE(lightCopy->getBeacon(), beacon);
    // the copied beacon's core is the copy under construction, not a third one
    EXPECT_EQ(lightCopy->getBeacon()->getCore(), copy);

    // the copies hold each other: undo that before letting go
    beginEditCP(lightCopy, Light::BeaconFieldMask);
    lightCopy->setBeacon(NullFC);
    endEditCP(lightCopy, Light::BeaconFieldMask);
    subRefCP(copy);

    beginEditCP(light, Light::BeaconFieldMask);
    light->setBeacon(NullFC);
    endEditCP(light, Light::BeaconFieldMask);
    subRefCP(lightNode);
}

namespace
{

Action::ResultE countEnter(NodePtr &node, std::vector<std::string> *log, const char *skip)
{
    const Char8 *name = node != NullFC ? getName(node) : NULL;
    log->push_back(name != NULL ? name : "-");
    if(name != NULL && std::string(name) == skip)
        return Action::Skip;
    if(name != NULL && std::string(name) == "quit")
        return Action::Quit;
    return Action::Continue;
}

struct Walker
{
    std::vector<std::string> log;
    const char              *skip = "";

    Action::ResultE enter(NodePtr &node) { return countEnter(node, &log, skip); }
    Action::ResultE leave(NodePtr &node, Action::ResultE res)
    {
        log.push_back(std::string("/") + getName(node));
        return res;
    }
};

NodePtr namedGroup(const char *name)
{
    NodePtr n = makeCoredNode<Group>();
    setName(n, name);
    return n;
}

} // namespace

TEST(Traverse, EnterLeaveSkipAndQuit)
{
    // a -> (b -> (c), d); e beside a
    NodePtr a = namedGroup("a"), b = namedGroup("b"), c = namedGroup("c"), d = namedGroup("d");
    NodePtr e = namedGroup("e");
    addRefCP(a);
    addRefCP(e);
    beginEditCP(a);
    a->addChild(b);
    a->addChild(d);
    endEditCP(a);
    beginEditCP(b);
    b->addChild(c);
    endEditCP(b);

    Walker w;
    EXPECT_EQ(traverse(a, osgTypedMethodFunctor1ObjPtrCPtrRef<Action::ResultE, Walker, NodePtr>(
                              &w, &Walker::enter)),
              Action::Continue);
    EXPECT_EQ(w.log, (std::vector<std::string>{"a", "b", "c", "d"}));

    w.log.clear();
    w.skip = "b";
    traverse(a, osgTypedMethodFunctor1ObjPtrCPtrRef(&w, &Walker::enter),
             osgTypedMethodFunctor2ObjPtrCPtrRef(&w, &Walker::leave));
    EXPECT_EQ(w.log, (std::vector<std::string>{"a", "b", "/b", "d", "/d", "/a"}));

    // Quit ends the walk, over a const list too; leave still runs on the way up
    setName(c, "quit");
    w.log.clear();
    w.skip                          = "";
    const std::vector<NodePtr> list = {a, e};
    EXPECT_EQ(traverse(list, osgTypedMethodFunctor1ObjPtrCPtrRef(&w, &Walker::enter),
                       osgTypedMethodFunctor2ObjPtrCPtrRef(&w, &Walker::leave)),
              Action::Quit);
    EXPECT_EQ(w.log, (std::vector<std::string>{"a", "b", "quit", "/quit", "/b", "/a"}));

    // the enter functor sees a null node too
    w.log.clear();
    EXPECT_EQ(traverse(NodePtr(), osgTypedMethodFunctor1ObjPtrCPtrRef(&w, &Walker::enter)),
              Action::Continue);
    EXPECT_EQ(w.log, (std::vector<std::string>{"-"}));

    subRefCP(e);
    subRefCP(a);
}

TEST(Lights, ConvenienceSetters)
{
    SpotLightPtr spot = SpotLight::create();
    addRefCP(spot);
    beginEditCP(spot);
    spot->setAmbient(0.1f, 0.2f, 0.3f, 0.4f);
    spot->setDiffuse(0.5f, 0.6f, 0.7f, 0.8f);
    spot->setSpecular(Color4f(1, 1, 0, 1)); // the generated form still works
    spot->setPosition(1, 2, 3);
    spot->setAttenuation(1, 0.5f, 0.25f);
    spot->setSpotDirection(0, -1, 0);
    spot->setSpotCutOffDeg(45);
    endEditCP(spot);

    EXPECT_EQ(spot->getAmbient(), Color4f(0.1f, 0.2f, 0.3f, 0.4f));
    EXPECT_EQ(spot->getDiffuse(), Color4f(0.5f, 0.6f, 0.7f, 0.8f));
    EXPECT_EQ(spot->getSpecular(), Color4f(1, 1, 0, 1));
    EXPECT_EQ(spot->getPosition(), Pnt3f(1, 2, 3));
    EXPECT_EQ(spot->getConstantAttenuation(), 1.f);
    EXPECT_EQ(spot->getLinearAttenuation(), 0.5f);
    EXPECT_EQ(spot->getQuadraticAttenuation(), 0.25f);
    EXPECT_EQ(spot->getDirection(), Vec3f(0, -1, 0));
    EXPECT_EQ(spot->getSpotCutOff(), osgdegree2rad(45.f));
    EXPECT_FLOAT_EQ(spot->getSpotCutOffDeg(), 45.f);
    subRefCP(spot);

    DirectionalLightPtr dir = DirectionalLight::create();
    addRefCP(dir);
    dir->setDirection(0, 0, -1);
    EXPECT_EQ(dir->getDirection(), Vec3f(0, 0, -1));
    subRefCP(dir);
}
