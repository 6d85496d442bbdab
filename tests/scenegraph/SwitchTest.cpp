// Switch: its field as declared, drawing only the chosen child (render and
// draw actions, off-screen), all of them or none, intersection through the
// chosen child only, and a bounding volume that holds every child.
#include "GeometryRenderScene.h"

#include <OpenSG/OSGSwitch.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGIntersectAction.h>

using namespace osg;
using namespace geometrytest;

namespace
{

/// A unlit half-size quad of one colour, centred at (x, 0).
NodePtr quadAt(Real32 x, const Color3f &colour)
{
    GeometryPtr geo = makePlaneGeo(.5f, .5f, 1, 1);
    beginEditCP(geo, Geometry::MaterialFieldMask);
    geo->setMaterial(unlit(colour));
    endEditCP(geo, Geometry::MaterialFieldMask);

    TransformPtr t = Transform::create();
    Matrix       m;
    m.setTranslate(x, 0, 0);
    beginEditCP(t, Transform::MatrixFieldMask);
    t->setMatrix(m);
    endEditCP(t, Transform::MatrixFieldMask);

    NodePtr n = makeNodeFor(t);
    beginEditCP(n, Node::ChildrenFieldMask);
    n->addChild(makeNodeFor(geo));
    endEditCP(n, Node::ChildrenFieldMask);
    return n;
}

void setChoice(SwitchPtr sw, Int32 choice)
{
    beginEditCP(sw, Switch::ChoiceFieldMask);
    sw->setChoice(choice);
    endEditCP(sw, Switch::ChoiceFieldMask);
}

} // namespace

TEST(Switch, FieldAndDefaults)
{
    EXPECT_EQ(Switch::ChoiceFieldId, 3u);
    EXPECT_EQ(Switch::ChoiceFieldMask, BitVector(0x8));
    EXPECT_EQ(Switch::NextFieldId, 4u);
    EXPECT_EQ(Int32(Switch::ALL), -2);
    EXPECT_EQ(Int32(Switch::NONE), -1);
    SwitchPtr sw = Switch::create();
    addRefCP(sw);
    EXPECT_EQ(sw->getChoice(), -1);
    EXPECT_NE(GroupPtr::dcast(sw), NullFC);
    subRefCP(sw);
}

TEST(Switch, DrawsTheChosenChildAllOrNone)
{
    RenderScene s;
    NEED_GL(s);

    SwitchPtr sw   = Switch::create();
    NodePtr   node = makeNodeFor(sw);
    beginEditCP(node, Node::ChildrenFieldMask);
    node->addChild(quadAt(-.5f, Color3f(1, 0, 0)));
    node->addChild(quadAt(.5f, Color3f(0, 0, 1)));
    endEditCP(node, Node::ChildrenFieldMask);
    beginEditCP(s.root, Node::ChildrenFieldMask);
    s.root->addChild(node);
    endEditCP(s.root, Node::ChildrenFieldMask);

    // each quad covers 16 x 16 pixels: red x 8..23, blue x 40..55
    struct Case
    {
        Int32  choice;
        UInt32 red, blue;
    } cases[] = {{0, 256, 0}, {1, 0, 256}, {Switch::ALL, 256, 256},
                 {Switch::NONE, 0, 0}, {2, 0, 0}, {-7, 0, 0}};
    for(const Case &c : cases)
    {
        setChoice(sw, c.choice);
        for(bool drawAction : {false, true})
        {
            std::vector<UInt8> img = s.render(drawAction);
            UInt32             box[4];
            EXPECT_EQ(countColor(img, 255, 0, 0, box), c.red) << c.choice << " " << drawAction;
            if(c.red)
            {
                EXPECT_EQ(box[0], 8u);
            }
            EXPECT_EQ(countColor(img, 0, 0, 255, box), c.blue) << c.choice << " " << drawAction;
            if(c.blue)
            {
                EXPECT_EQ(box[0], 40u);
            }
        }
    }

    // the volume holds both children whatever the choice
    setChoice(sw, 0);
    node->updateVolume();
    Pnt3f lo, hi;
    node->getVolume().getBounds(lo, hi);
    EXPECT_FLOAT_EQ(lo[0], -.75f);
    EXPECT_FLOAT_EQ(hi[0], .75f);

    // a ray through the blue quad hits only while it is chosen
    IntersectAction *ia = IntersectAction::create(Line(Pnt3f(.5f, 0, 5), Vec3f(0, 0, -1)));
    for(const Case &c : cases)
    {
        setChoice(sw, c.choice);
        ia->apply(node);
        EXPECT_EQ(ia->didHit(), c.blue != 0) << c.choice;
    }
    delete ia;
}
