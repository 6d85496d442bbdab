// Whole frames through a window, viewport, camera and background: lit and
// material-coloured objects, sort keys and transparency seen in the pixels.
#include "FrameFixture.h"

#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGMaterialChunk.h>

using namespace osg;
using namespace actiontest;

namespace
{

typedef FrameFixture RenderFrameTest;

} // namespace

TEST_F(RenderFrameTest, LitAndMaterialColouredObjects)
{
    // left: unlit red; right: green lit head-on by a white directional light
    MaterialChunkPtr unlit = MaterialChunk::create();
    beginEditCP(unlit);
    unlit->setLit(false);
    unlit->setDiffuse(Color4f(1.f, 0.f, 0.f, 1.f));
    endEditCP(unlit);
    scene.hold(unlit);

    MaterialChunkPtr lit = MaterialChunk::create();
    beginEditCP(lit);
    lit->setDiffuse(Color4f(0.f, 1.f, 0.f, 1.f));
    lit->setAmbient(Color4f(0.f, 0.f, 0.f, 1.f));
    lit->setSpecular(Color4f(0.f, 0.f, 0.f, 1.f));
    endEditCP(lit);
    scene.hold(lit);

    RecordMaterialPtr red   = scene.material("red");
    RecordMaterialPtr green = scene.material("green");
    beginEditCP(red);
    red->getExtras().push_back(unlit);
    endEditCP(red);
    beginEditCP(green);
    green->getExtras().push_back(lit);
    endEditCP(green);

    NodePtr beacon = scene.root(scene.group());

    DirectionalLightPtr light = DirectionalLight::create();
    beginEditCP(light);
    light->setDirection(Vec3f(0.f, 0.f, 1.f));
    light->setAmbient(Color4f(0.f, 0.f, 0.f, 1.f));
    light->setSpecular(Color4f(0.f, 0.f, 0.f, 1.f));
    light->setBeacon(beacon);
    endEditCP(light);

    NodePtr root = scene.root(scene.group({
        square("left", red, -2.5f, 0.f, 0.f, 4.f),
        scene.node(light, {square("right", green, 2.5f, 0.f, 0.f, 4.f)}),
    }));

    render(root);
    save("action_lit.png");

    EXPECT_PIXEL(at(16, 32), 255, 0, 0, 1);
    EXPECT_PIXEL(at(48, 32), 0, 255, 0, 2);
    EXPECT_PIXEL(at(2, 2), 0, 0, 51, 1);
    EXPECT_EQ(GLenum(GL_NO_ERROR), glError);

    // the same light turned off: the lit square goes dark (only the global
    // ambient, times a black material ambient)
    beginEditCP(light);
    light->setOn(false);
    endEditCP(light);
    render(root);
    EXPECT_PIXEL(at(48, 32), 0, 0, 0, 1);
    EXPECT_PIXEL(at(16, 32), 255, 0, 0, 1);
}

TEST_F(RenderFrameTest, SortKeysDecideWhichCoplanarSquareStays)
{
    // equal depth: the depth test (GL_LEQUAL) lets the later one through
    RecordMaterialPtr a    = colour("a", Color4f(1.f, 0.f, 0.f, 1.f), 2);
    RecordMaterialPtr b    = colour("b", Color4f(0.f, 0.f, 1.f, 1.f), 1);
    NodePtr           root = scene.root(scene.group({square("A", a, 0.f, 0.f, 0.f, 6.f),
                                                     square("B", b, 0.f, 0.f, 0.f, 6.f)}));
    render(root);
    EXPECT_PIXEL(at(32, 32), 255, 0, 0, 1);

    beginEditCP(a);
    a->setSortKey(0);
    endEditCP(a);
    render(root);
    EXPECT_PIXEL(at(32, 32), 0, 0, 255, 1);
    EXPECT_EQ(GLenum(GL_NO_ERROR), glError);
}

TEST_F(RenderFrameTest, TransparentObjectsBlendBackToFront)
{
    // the near green square comes first in the graph; sorted, the far red
    // one is drawn first: green over red
    RecordMaterialPtr green = colour("g", Color4f(0.f, 1.f, 0.f, 0.5f), 0, true);
    RecordMaterialPtr red   = colour("r", Color4f(1.f, 0.f, 0.f, 0.5f), 0, true);
    beginEditCP(bg);
    bg->setColor(Color3f(0.f, 0.f, 0.f));
    endEditCP(bg);

    NodePtr root = scene.root(scene.group({square("near", green, 0.f, 0.f, 1.f, 6.f),
                                           square("far", red, 0.f, 0.f, -1.f, 6.f)}));
    render(root);
    save("action_trans.png");
    EXPECT_PIXEL(at(32, 32), 64, 128, 0, 2);

    // without transparency sorting they are drawn like opaque ones, grouped
    // by material in traversal order and writing depth: the far square
    // stays hidden
    action->setSortTrans(false);
    render(root);
    EXPECT_PIXEL(at(32, 32), 0, 128, 0, 2);
    EXPECT_EQ(GLenum(GL_NO_ERROR), glError);
}

TEST_F(RenderFrameTest, TransparentObjectsWriteDepthOnlyWhenAsked)
{
    // a transparent square in front, an opaque one behind it with a higher
    // sort key, so drawn after it
    RecordMaterialPtr green = colour("g", Color4f(0.f, 1.f, 0.f, 0.5f), 0, true);
    RecordMaterialPtr blue  = colour("b", Color4f(0.f, 0.f, 1.f, 1.f), 1);
    beginEditCP(bg);
    bg->setColor(Color3f(0.f, 0.f, 0.f));
    endEditCP(bg);

    NodePtr root = scene.root(scene.group({square("near", green, 0.f, 0.f, 1.f, 6.f),
                                           square("far", blue, 0.f, 0.f, -1.f, 6.f)}));
    render(root);
    EXPECT_PIXEL(at(32, 32), 0, 0, 255, 1);

    action->setZWriteTrans(true);
    render(root);
    EXPECT_PIXEL(at(32, 32), 0, 128, 0, 2);
    EXPECT_EQ(GLenum(GL_NO_ERROR), glError);
}

TEST_F(RenderFrameTest, CameraMatricesReachTheDrawPhase)
{
    RecordMaterialPtr m    = colour("w", Color4f(1.f, 1.f, 1.f, 1.f));
    NodePtr           root = scene.root(scene.group({square("s", m, 1.f, 2.f, 0.f, 1.f)}));

    render(root);

    // top_matrix is object-to-world whatever the camera; the GL model-view
    // adds the viewing matrix (world z = 0 lies 5 in front of the camera)
    ASSERT_EQ(1u, actionTestDraws().size());
    Matrix world;
    world.setTranslate(1.f, 2.f, 0.f);
    EXPECT_TRUE(matrixNear(world, actionTestDraws()[0].topMatrix));
    Matrix view;
    view.setTranslate(1.f, 2.f, -5.f);
    EXPECT_TRUE(matrixNear(view, actionTestDraws()[0].glModelView));
    EXPECT_TRUE(matrixNear(camBeacon->getToWorld(), action->getCameraToWorld()));

    // the square sits at pixel (32 + 1/10 * 64, 32 + 2/10 * 64)
    EXPECT_PIXEL(at(38, 44), 255, 255, 255, 1);
    EXPECT_PIXEL(at(32, 32), 0, 0, 51, 1);
}
