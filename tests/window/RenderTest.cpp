// Whole frames into an EGL window: which pixels each viewport's background
// reaches, what the solid background clears, the order of foregrounds,
// resizing, and a passive window on a context the test owns.
#include "WindowTestSupport.h"

#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGMatrixCamera.h>
#include <OpenSG/OSGPassiveBackground.h>
#include <OpenSG/OSGPassiveWindow.h>
#include <OpenSG/OSGRecordingTestForeground.h>

using namespace osg;
using namespace wintest;

namespace
{


// A scene, camera and everything a viewport needs, kept alive by the test.
class SceneFixture : public FrameFixture
{
  protected:
    void SetUp(void) override
    {
        FrameFixture::SetUp();
        RecordingTestForeground::drawLog().clear();
    }

    void TearDown(void) override
    {
        if(win != NullFC)
        {
            win->activate();
            EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
        }
        FrameFixture::TearDown();
    }
};

// What the edge rules make of the viewports below in a 64 x 48 window,
// worked out by hand.
RGBA expectedColour(UInt32 x, UInt32 y)
{
    if(x >= 32 && x <= 35 && y >= 36) // mixed: 0.5 -> 32, 35 px, 0.75 -> 36, 47 px
        return Blue;
    if(x >= 40 && x <= 59 && y >= 10 && y <= 29) // pixels 40..59, 10..29
        return Green;
    if(x <= 31) // fractions 0 .. 0.5 of the width
        return Red;
    return Grey;
}

} // namespace

TEST_F(SceneFixture, ViewportsCoverExactlyTheirPixels)
{
    port(0.f, 1.f, 0.f, 1.f, solid(Grey));
    port(0.f, 0.5f, 0.f, 1.f, solid(Red));
    port(40.f, 59.f, 10.f, 29.f, solid(Green));
    ViewportPtr blue  = port(0.5f, 35.f, 0.75f, 47.f, solid(Blue));

    frame();

    std::vector<RGBA> px = readAll(win);
    writePNG("viewports", px, 64, 48);

    UInt32 wrong = 0;
    for(UInt32 y = 0; y < 48; ++y)
        for(UInt32 x = 0; x < 64; ++x)
            if(px[y * 64 + x] != expectedColour(x, y) && ++wrong <= 5)
                ADD_FAILURE() << "pixel " << x << "," << y << " is "
                              << px[y * 64 + x] << ", expected "
                              << expectedColour(x, y);
    EXPECT_EQ(wrong, 0u);

    // The action keeps what the last port handed it.
    EXPECT_EQ(action->getWindow(), win.getCPtr());
    EXPECT_EQ(action->getViewport(), blue.getCPtr());
    EXPECT_EQ(action->getCamera(), camera.getCPtr());
}

TEST_F(SceneFixture, ForegroundsFollowTheSceneInListOrder)
{
    ViewportPtr full = port(0.f, 1.f, 0.f, 1.f, solid(Grey));
    ViewportPtr part = port(8.f, 23.f, 4.f, 19.f, solid(Red));

    for(UInt32 tag : {1u, 2u, 3u})
    {
        RecordingTestForegroundPtr fg = RecordingTestForeground::create();
        beginEditCP(fg);
        fg->setTag(tag);
        fg->setActive(tag != 2);
        endEditCP(fg);
        (tag == 1 ? full : part)->addForeground(fg);
    }
    // An inactive one is skipped by its own draw; one listed twice draws
    // twice.
    part->addForeground(part->getForegrounds(1));

    frame();

    const std::vector<RecordingTestForeground::DrawCall> &log =
        RecordingTestForeground::drawLog();
    ASSERT_EQ(log.size(), 3u);

    EXPECT_EQ(log[0].tag, 1u);
    EXPECT_EQ(log[0].port, full.getCPtr());
    EXPECT_FALSE(log[0].scissor); // the whole window needs no scissor

    EXPECT_EQ(log[1].tag, 3u);
    EXPECT_EQ(log[1].port, part.getCPtr());
    EXPECT_EQ(log[1].action, static_cast<DrawActionBase *>(action.get()));
    EXPECT_TRUE(log[1].scissor);
    EXPECT_EQ(log[1].scissorBox[0], 8);
    EXPECT_EQ(log[1].scissorBox[1], 4);
    EXPECT_EQ(log[1].scissorBox[2], 16);
    EXPECT_EQ(log[1].scissorBox[3], 16);

    EXPECT_EQ(log[2].tag, 3u);
    EXPECT_EQ(log[2].port, part.getCPtr());

    for(ViewportPtr vp : {full, part})
        vp->clearForegrounds();
}

TEST_F(SceneFixture, SolidBackgroundClearsWhatItsFlagsSay)
{
    SolidBackgroundPtr bg = SolidBackgroundPtr::dcast(solid(Blue));
    beginEditCP(bg);
    bg->setAlpha(0.f);
    bg->setDepth(0.25f);
    bg->setClearStencilBit(5);
    endEditCP(bg);
    port(0.f, 1.f, 0.f, 1.f, bg);

    frame();

    win->activate();
    Real32 depth = 0.f;
    UInt8  stencil = 0;
    glReadPixels(3, 3, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &depth);
    glReadPixels(3, 3, 1, 1, GL_STENCIL_INDEX, GL_UNSIGNED_BYTE, &stencil);
    EXPECT_NEAR(depth, 0.25f, 1e-6f);
    EXPECT_EQ(stencil, 5);
    EXPECT_EQ(readAll(win)[0], (RGBA{0, 0, 255, 0}));

    // Colour off, depth off, stencil off: everything stays.
    beginEditCP(bg);
    bg->setColor(Color3f(1.f, 1.f, 1.f));
    bg->setClearColor(false);
    bg->setDepth(0.75f);
    bg->setClearDepth(false);
    bg->setClearStencilBit(-1);
    endEditCP(bg);

    frame();

    win->activate();
    glReadPixels(3, 3, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &depth);
    glReadPixels(3, 3, 1, 1, GL_STENCIL_INDEX, GL_UNSIGNED_BYTE, &stencil);
    EXPECT_NEAR(depth, 0.25f, 1e-6f);
    EXPECT_EQ(stencil, 5);
    EXPECT_EQ(readAll(win)[0], (RGBA{0, 0, 255, 0}));

    // Depth alone.
    beginEditCP(bg);
    bg->setClearDepth(true);
    endEditCP(bg);
    frame();
    win->activate();
    glReadPixels(3, 3, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &depth);
    EXPECT_NEAR(depth, 0.75f, 1e-6f);
    EXPECT_EQ(readAll(win)[0], (RGBA{0, 0, 255, 0}));
}

TEST_F(SceneFixture, PassiveBackgroundKeepsThePicture)
{
    ViewportPtr vp = port(0.f, 1.f, 0.f, 1.f, solid(Red));
    frame();

    PassiveBackgroundPtr passive = PassiveBackground::create();
    keep(passive);
    beginEditCP(vp);
    vp->setBackground(passive);
    endEditCP(vp);
    port(0.f, 0.25f, 0.f, 0.25f, solid(Green));

    frame();

    std::vector<RGBA> px = readAll(win);
    EXPECT_EQ(px[0], Green);
    EXPECT_EQ(px[15], Green);
    EXPECT_EQ(px[16], Red);
    EXPECT_EQ(px[47 * 64 + 63], Red);
}

TEST_F(SceneFixture, ResizeReallocatesAndRefitsFractions)
{
    port(0.f, 1.f, 0.f, 1.f, solid(Grey));
    port(0.f, 0.5f, 0.f, 1.f, solid(Red));

    win->resize(20, 10);
    EXPECT_TRUE(win->isResizePending());

    frame();

    // The render action applies the pending resize at its start.
    EXPECT_FALSE(win->isResizePending());
    EXPECT_EQ(win->getContext()->getWidth(), 20u);
    EXPECT_EQ(win->getContext()->getHeight(), 10u);

    std::vector<RGBA> px = readAll(win);
    ASSERT_EQ(px.size(), 200u);
    for(UInt32 y = 0; y < 10; ++y)
        for(UInt32 x = 0; x < 20; ++x)
            EXPECT_EQ(px[y * 20 + x], x < 10 ? Red : Grey) << x << "," << y;
}

TEST_F(SceneFixture, DrawActionPathClearsToo)
{
    port(0.f, 1.f, 0.f, 1.f, solid(Grey));
    port(0.f, 31.f, 0.f, 23.f, solid(Blue));

    std::unique_ptr<DrawAction> draw(DrawAction::create());

    LogCapture log(LOG_WARNING);
    win->draw(draw.get());
    EXPECT_EQ(log.take().find("stray OpenGL error"), std::string::npos);

    std::vector<RGBA> px = readAll(win);
    EXPECT_EQ(px[0], Blue);
    EXPECT_EQ(px[23 * 64 + 31], Blue);
    EXPECT_EQ(px[24 * 64 + 31], Grey);
    EXPECT_EQ(px[23 * 64 + 32], Grey);
    EXPECT_EQ(draw->getWindow(), win.getCPtr());
}

TEST_F(SceneFixture, IncompletePortsAndMissingActionsWarn)
{
    ViewportPtr vp = port(0.f, 1.f, 0.f, 1.f, solid(Red));
    frame();

    beginEditCP(vp);
    vp->setCamera(NullFC);
    endEditCP(vp);
    port(0.f, 0.5f, 0.f, 0.5f, solid(Green));

    {
        LogCapture log(LOG_WARNING);
        win->render(action.get());
        EXPECT_NE(log.take().find("Viewport::render: no camera!"),
                  std::string::npos);

        win->renderAllViewports(NULL);
        EXPECT_NE(log.take().find("Window::renderAllViewports: no action!"),
                  std::string::npos);
        win->drawAllViewports(NULL);
        EXPECT_NE(log.take().find("Window::drawAllViewports: no action!"),
                  std::string::npos);
    }

    // The complete port still rendered.
    std::vector<RGBA> px = readAll(win);
    EXPECT_EQ(px[0], Green);
    EXPECT_EQ(px[47 * 64 + 63], Red);
}

TEST(PassiveWindowTest, RendersInTheApplicationsContext)
{
    if(!HeadlessGLContext::isAvailable())
        GTEST_SKIP() << "no EGL context on this machine";

    // The "application" owns the context and keeps it current.
    HeadlessGLContext ctx;
    ASSERT_TRUE(ctx.init(16, 8));

    PassiveWindowPtr win = PassiveWindow::create();
    addRefCP(win);
    win->setSize(16, 8);
    win->init();

    GLint func = 0, align = 0;
    glGetIntegerv(GL_DEPTH_FUNC, &func);
    glGetIntegerv(GL_PACK_ALIGNMENT, &align);
    EXPECT_EQ(func, GL_LEQUAL);
    EXPECT_EQ(align, 1);
    EXPECT_TRUE(glIsEnabled(GL_DEPTH_TEST));
    EXPECT_TRUE(glIsEnabled(GL_NORMALIZE));
    EXPECT_GE(win->getGLVersion(), 0x0201u);

    NodePtr root = Node::create();
    addRefCP(root);
    beginEditCP(root);
    root->setCore(Group::create());
    endEditCP(root);

    MatrixCameraPtr cam = MatrixCamera::create();
    addRefCP(cam);
    SolidBackgroundPtr bg = SolidBackground::create();
    addRefCP(bg);
    beginEditCP(bg);
    bg->setColor(Color3f(0.f, 1.f, 0.f));
    endEditCP(bg);

    ViewportPtr vp = Viewport::create();
    addRefCP(vp);
    beginEditCP(vp);
    vp->setSize(0.f, 0.f, 0.5f, 1.f);
    vp->setCamera(cam);
    vp->setRoot(root);
    vp->setBackground(bg);
    endEditCP(vp);
    win->addPort(vp);

    glClearColor(1.f, 0.f, 0.f, 1.f);
    glClear(GL_COLOR_BUFFER_BIT);

    std::unique_ptr<RenderAction> action(RenderAction::create());
    win->render(action.get());
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));

    std::vector<RGBA> px(16 * 8);
    ASSERT_TRUE(ctx.readPixels(0, 0, 16, 8, GL_RGBA, GL_UNSIGNED_BYTE, px.data()));
    EXPECT_EQ(px[0], Green);
    EXPECT_EQ(px[7 * 16 + 7], Green);
    EXPECT_EQ(px[7 * 16 + 8], Red);

    win->subPort(vp);
    subRefCP(vp);
    subRefCP(bg);
    subRefCP(cam);
    subRefCP(root);
    subRefCP(win);
}
