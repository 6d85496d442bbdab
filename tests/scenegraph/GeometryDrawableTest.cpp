// MaterialDrawable's handlers as a library drawable registers them: the
// virtual drawPrimitives of the most derived class is what gets called,
// with the override material of a MaterialGroup, the own material or the
// default one; children of a drawable are traversed; the material is a
// counted reference.
#include "GeometryRenderScene.h"

#include <OpenSG/OSGGeometryTestDrawable.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGLog.h>

using namespace osg;
using namespace geometrytest;

namespace
{

GeometryTestDrawablePtr makeDrawable(Real32 x0, Real32 y0, Real32 x1, Real32 y1)
{
    GeometryTestDrawablePtr d = GeometryTestDrawable::create();
    beginEditCP(d);
    d->setRect(Vec4f(x0, y0, x1, y1));
    endEditCP(d);
    return d;
}

} // namespace

TEST(GeometryDrawable, MaterialIsACountedReference)
{
    GeometryTestDrawablePtr d = makeDrawable(0, 0, 1, 1);
    addRefCP(d);
    SimpleMaterialPtr a = unlit(Color3f(1, 0, 0)), b = unlit(Color3f(0, 1, 0));
    addRefCP(a);
    addRefCP(b);

    beginEditCP(d, MaterialDrawable::MaterialFieldMask);
    d->setMaterial(a);
    endEditCP(d, MaterialDrawable::MaterialFieldMask);
    EXPECT_EQ(a.getRefCount(), 2);

    beginEditCP(d, MaterialDrawable::MaterialFieldMask);
    d->setMaterial(b);
    endEditCP(d, MaterialDrawable::MaterialFieldMask);
    EXPECT_EQ(a.getRefCount(), 1);
    EXPECT_EQ(b.getRefCount(), 2);

    // the same value again changes nothing
    d->setMaterial(b);
    EXPECT_EQ(b.getRefCount(), 2);

    subRefCP(d);
    subRefCP(a);
    subRefCP(b);
}

TEST(GeometryDrawable, BaseDrawPrimitivesOnlyWarns)
{
    GeometryTestDrawablePtr d = makeDrawable(0, 0, 1, 1);
    addRefCP(d);
    LogCapture log(LOG_WARNING);
    EXPECT_EQ(d->MaterialDrawable::drawPrimitives(NULL), Action::Continue);
    EXPECT_NE(log.take().find("You should overload drawPrimitives in your code"),
              std::string::npos);
    subRefCP(d);
}

TEST(GeometryDrawable, RenderAndDrawActionsCallTheDerivedDrawPrimitives)
{
    RenderScene s;
    NEED_GL(s);

    GeometryTestDrawablePtr d    = makeDrawable(-.5f, -.5f, .5f, .5f);
    NodePtr                 node = s.add(d);

    {
        // no material anywhere: the default material, with a notice
        LogCapture         log(LOG_NOTICE);
        std::vector<UInt8> img = s.render();
        EXPECT_EQ(d->drawCalls, 1u);
        EXPECT_EQ(d->lastNode, node);
        EXPECT_NE(log.take().find("MaterialDrawable::render: no Material!?!"), std::string::npos);
        UInt32 box[4];
        EXPECT_EQ(countColor(img, 0, 0, 0, box), W * H - 32 * 32);
    }
    {
        LogCapture log(LOG_WARNING);
        s.render(true);
        EXPECT_EQ(d->drawCalls, 2u);
        EXPECT_NE(log.take().find("MaterialDrawable::draw:: no material!"), std::string::npos);
    }

    // with a material of its own, both actions draw it green
    beginEditCP(d, MaterialDrawable::MaterialFieldMask);
    d->setMaterial(unlit(Color3f(0, 1, 0)));
    endEditCP(d, MaterialDrawable::MaterialFieldMask);
    expectQuad(s.render(), 16, 47, "render action");
    expectQuad(s.render(true), 16, 47, "draw action");
    EXPECT_EQ(d->drawCalls, 4u);
}

TEST(GeometryDrawable, OutermostMaterialGroupWinsAndChildrenAreDrawn)
{
    RenderScene s;
    NEED_GL(s);

    // MaterialGroup(red) -> MaterialGroup(blue) -> drawable(green) -> child drawable
    MaterialGroupPtr outer = MaterialGroup::create(), inner = MaterialGroup::create();
    beginEditCP(outer);
    outer->setMaterial(unlit(Color3f(1, 0, 0)));
    endEditCP(outer);
    beginEditCP(inner);
    inner->setMaterial(unlit(Color3f(0, 0, 1)));
    endEditCP(inner);

    GeometryTestDrawablePtr d = makeDrawable(-1, -1, 0, 0);
    beginEditCP(d, MaterialDrawable::MaterialFieldMask);
    d->setMaterial(unlit(Color3f(0, 1, 0)));
    endEditCP(d, MaterialDrawable::MaterialFieldMask);
    GeometryTestDrawablePtr child = makeDrawable(0, 0, 1, 1);

    NodePtr outerNode = s.add(outer);
    NodePtr innerNode = Node::create(), dNode = Node::create(), childNode = Node::create();
    beginEditCP(innerNode);
    innerNode->setCore(inner);
    innerNode->addChild(dNode);
    endEditCP(innerNode);
    beginEditCP(dNode);
    dNode->setCore(d);
    dNode->addChild(childNode);
    endEditCP(dNode);
    beginEditCP(childNode);
    childNode->setCore(child);
    endEditCP(childNode);
    beginEditCP(outerNode, Node::ChildrenFieldMask);
    outerNode->addChild(innerNode);
    endEditCP(outerNode, Node::ChildrenFieldMask);

    for(int drawAction = 0; drawAction < 2; ++drawAction)
    {
        std::vector<UInt8> img = s.render(drawAction != 0);
        if(!drawAction)
            savePNG(img, "materialgroup");
        UInt32 box[4];
        // both drawables red: lower left and upper right quarter
        EXPECT_EQ(countColor(img, 255, 0, 0, box), 2 * 32 * 32u) << drawAction;
        EXPECT_EQ(box[0], 0u);
        EXPECT_EQ(box[3], 63u);
        EXPECT_EQ(countColor(img, 0, 255, 0, box), 0u);
        EXPECT_EQ(countColor(img, 0, 0, 255, box), 0u);
    }
    EXPECT_EQ(d->drawCalls, 2u);
    EXPECT_EQ(child->drawCalls, 2u);
    EXPECT_EQ(child->lastNode, childNode);
}
