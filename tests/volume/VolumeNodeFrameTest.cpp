// The volume node and viewport in the situations an application runs into:
// voxels that come late, are flat, too large or replaced while running,
// field edits that must rebuild only what they touch, odd scene shapes
// (two parents, a foreign core in the list), window resizes down to zero
// and the debugging tiles.
#include "VolumeFrameSupport.h"

#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGVolume.h>
#include <OpenSG/RayGeneration.h>
#include <OpenSG/ShadingFunctions.h>
#include <OpenSG/VolumeNodeHandler.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>

#include <unistd.h>

using namespace voltest;

namespace
{

UInt8 full(Int32, Int32, Int32)
{
    return 255;
}

size_t count(const std::string &text, const std::string &what)
{
    size_t n = 0;
    for(size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1))
        ++n;
    return n;
}

} // namespace

class VolumeFrameEdges : public VolumeFrame
{
  protected:
    void setVoxels(const TextureChunkPtr &voxels)
    {
        beginEditCP(volume, VolumeNode::VoxelsFieldMask);
        volume->setVoxels(voxels);
        endEditCP(volume, VolumeNode::VoxelsFieldMask);
    }

    /// Red of the frame buffer at the window's centre.
    Real32 centre(void) { return frame()[(H / 2) * W + W / 2][0]; }

    void expectNoGLError(void) { EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR)); }

    /// Two volume viewports ahead of the port with DEBUG_VOLUME set; ends
    /// the process with 0 when both sets of tiles show where they belong.
    void showTilesOfTwoViewports(void)
    {
        setenv("DEBUG_VOLUME", "1", 1);
        setVoxels(makeVoxels(N, N, N, ball));
        // a second viewport, with a volume of its own, after the first
        VolumeNodePtr other = VolumeNode::create();
        beginEditCP(other, VolumeNode::VoxelsFieldMask);
        other->setVoxels(makeVoxels(N, N, N, ball));
        endEditCP(other, VolumeNode::VoxelsFieldMask);
        addChild(root, makeNode(other));
        VolumeViewportPtr next = VolumeViewport::create();
        beginEditCP(next);
        next->setCamera(camera);
        next->setRoot(root);
        next->setBackground(background);
        next->getVolumeNodes().push_back(other);
        endEditCP(next);
        win->insertPort(1, next);
        render();
        render();
        render();
        // the scene-depth tiles are the top ones: depth 1 where the
        // background shows, white over the black scene
        std::vector<Vec4f> shown = frame();
        const Vec4f right = shown[(H - 4) * W + W - 4], left = shown[(H - 4) * W + 4];
        const Vec4f middle = shown[(H - 4) * W + W / 2];
        const bool  ok = port->getForegrounds().size() == 8 && right[0] > 0.9f &&
                        left[0] > 0.9f && middle[0] < 0.1f;
        std::fprintf(stderr, "tiles %u, right %f, left %f, middle %f\n",
                     unsigned(port->getForegrounds().size()), right[0], left[0],
                     middle[0]);
        // no leak check in the child: its scene is never released
        std::fflush(stderr);
        _exit(ok ? 0 : 1);
    }
};

TEST_F(VolumeFrameEdges, FlatVoxelsWaitForAVolumeAndEachFrameRetries)
{
    LogCapture log(LOG_WARNING);
    setVoxels(makeVoxels(N, N, 1, ball));
    EXPECT_EQ(volume->getVolume(), nullptr);
    render();
    render();
    EXPECT_EQ(count(log.take(), "Error setting volume, image too small! Retrying..."), 3u)
        << "once on the edit, once in each frame";
    EXPECT_LT(centre(), 0.01f);
    expectNoGLError();

    setVoxels(makeVoxels(N, N, N, ball));
    ASSERT_NE(volume->getVolume(), nullptr);
    render();
    render();
    EXPECT_GT(centre(), 0.1f);
    EXPECT_EQ(log.take().find("WARNING"), std::string::npos);
}

TEST_F(VolumeFrameEdges, StepSizeEditRebuildsNothingAndReachesTheShader)
{
    setVoxels(makeVoxels(N, N, N, ball));
    render();
    render();
    VolumeNodeHandler *handler  = volume->getVolume();
    SHLChunkPtr        shader   = handler->getRaycastingShader();
    const std::string  program  = shader->getFragmentProgram();
    RayGeneration     *rays     = handler->getRayGeneration();
    ShadingFunctions  *shading  = handler->getShadingfunction();
    NormalVolume      *normals  = handler->getNormalfunction();
    Transferfunction  *transfer = handler->getTransferfunction();
    const Real32       before   = centre();

    beginEditCP(volume, VolumeNode::StepSizeFieldMask);
    volume->setStepSize(0.02f);
    endEditCP(volume, VolumeNode::StepSizeFieldMask);
    render();

    EXPECT_EQ(volume->getVolume(), handler);
    EXPECT_EQ(handler->getRaycastingShader(), shader);
    EXPECT_EQ(shader->getFragmentProgram(), program);
    EXPECT_EQ(handler->getRayGeneration(), rays);
    EXPECT_EQ(handler->getShadingfunction(), shading);
    EXPECT_EQ(handler->getNormalfunction(), normals);
    EXPECT_EQ(handler->getTransferfunction(), transfer);
    Real32 step = 0.f;
    ASSERT_TRUE(shader->getUniformParameter("stepSize", step));
    EXPECT_FLOAT_EQ(step, 0.02f);
    // fewer, larger steps through the same ball: the opacity correction
    // keeps the picture
    EXPECT_NEAR(centre(), before, 0.03f);
}

TEST_F(VolumeFrameEdges, UnknownRayGenerationKeepsTheFormerOne)
{
    setVoxels(makeVoxels(N, N, N, ball));
    beginEditCP(volume, VolumeNode::RayGenTypeFieldMask);
    volume->setRayGenType(2);
    endEditCP(volume, VolumeNode::RayGenTypeFieldMask);
    render();
    render();
    RayGeneration *interleaved = volume->getVolume()->getRayGeneration();
    ASSERT_NE(dynamic_cast<InterleavedRay *>(interleaved), nullptr);

    beginEditCP(volume, VolumeNode::RayGenTypeFieldMask);
    volume->setRayGenType(3);
    endEditCP(volume, VolumeNode::RayGenTypeFieldMask);
    render();
    EXPECT_EQ(volume->getVolume()->getRayGeneration(), interleaved);
    EXPECT_GT(centre(), 0.1f);
    expectNoGLError();
}

TEST_F(VolumeFrameEdges, NewSliceThicknessReappliesTheFieldsToTheNewHandler)
{
    setVoxels(makeVoxels(N, N, N, ball));
    beginEditCP(volume, VolumeNode::StepSizeFieldMask | VolumeNode::RayGenTypeFieldMask);
    volume->setStepSize(0.01f);
    volume->setRayGenType(2);
    endEditCP(volume, VolumeNode::StepSizeFieldMask | VolumeNode::RayGenTypeFieldMask);
    render();
    render();
    const VolumeNodeHandler *former = volume->getVolume();

    beginEditCP(volume, VolumeNode::SliceThicknessFieldMask);
    volume->setSliceThickness(Vec3f(1.f, 1.f, 2.f));
    endEditCP(volume, VolumeNode::SliceThicknessFieldMask);
    ASSERT_NE(volume->getVolume(), nullptr);
    EXPECT_NE(volume->getVolume(), former);
    render();
    VolumeNodeHandler *handler = volume->getVolume();
    EXPECT_FLOAT_EQ(handler->getStepSize(), 0.01f) << "the field's, not the default";
    EXPECT_NE(dynamic_cast<InterleavedRay *>(handler->getRayGeneration()), nullptr);
    // the new ray caster has taken the place of the former one
    ASSERT_EQ(volumeNode->getNChildren(), 1u);
    EXPECT_EQ(volumeNode->getChild(0), handler->getRaycasterNode());
    EXPECT_GT(centre(), 0.1f);
}

TEST_F(VolumeFrameEdges, VoxelsReplacedWhileRunningAreShown)
{
    setVoxels(makeVoxels(N, N, N, ball));
    render();
    render();
    const Real32 soft = centre();
    setVoxels(makeVoxels(N, N, N, full));
    render();
    EXPECT_EQ(volumeNode->getChild(0), volume->getVolume()->getRaycasterNode());
    EXPECT_GT(centre(), soft + 0.05f) << "the opaque cube is brighter than the soft ball";
    expectNoGLError();
}

TEST_F(VolumeFrameEdges, HandlerWithAStrategyMissingDrawsNoVolume)
{
    setVoxels(makeVoxels(N, N, N, ball));
    render();
    render();
    ASSERT_GT(centre(), 0.1f);
    volume->getVolume()->setShadingfunction(NULL);
    render();
    render();
    EXPECT_LT(centre(), 0.01f) << "the scene alone, black here";
    expectNoGLError();

    volume->getVolume()->setShadingfunction(new DVRShading);
    render();
    EXPECT_GT(centre(), 0.1f) << "whole again";
}

TEST_F(VolumeFrameEdges, TwoParentsLoseTheirChildrenAndTheLastShowsTheVolume)
{
    setVoxels(makeVoxels(N, N, N, ball));
    // a second node of the same core, with a child of its own, beside the first
    NodePtr second = makeNode(volume);
    addChild(second, makeBox(0.1f, 0.1f, 0.1f, 1, 1, 1));
    addChild(volumeNode, makeBox(0.1f, 0.1f, 0.1f, 1, 1, 1));
    addChild(root, second);

    LogCapture log(LOG_NOTICE);
    render();
    render();
    NodePtr raycaster = volume->getVolume()->getRaycasterNode();
    EXPECT_EQ(volumeNode->getNChildren(), 0u);
    ASSERT_EQ(second->getNChildren(), 1u);
    EXPECT_EQ(second->getChild(0), raycaster);
    EXPECT_EQ(raycaster->getParent(), second);
    EXPECT_NE(log.take().find("VolumeNode::attachVolume() -> Parent OK!"), std::string::npos);
    EXPECT_GT(centre(), 0.1f) << "the volume shows once, under the last parent";
    expectNoGLError();
}

TEST_F(VolumeFrameEdges, ForeignCoreInTheListStopsTheViewportForGood)
{
    setVoxels(makeVoxels(N, N, N, ball));
    GroupPtr group = Group::create();
    NodePtr  holder = makeNode(group);
    addChild(root, holder);
    beginEditCP(volumePort, VolumeViewport::VolumeNodesFieldMask);
    volumePort->getVolumeNodes().push_back(group);
    endEditCP(volumePort, VolumeViewport::VolumeNodesFieldMask);
    for(int i = 0; i < 3; ++i)
        render();
    EXPECT_FALSE(volumePort->initialize());
    EXPECT_EQ(volumeNode->getNChildren(), 0u) << "the ray caster was never attached";
    EXPECT_LT(centre(), 0.01f);
    expectNoGLError();
}

TEST_F(VolumeFrameEdges, VolumeBeyondTheTextureLimitIsRefusedOnce)
{
    GLint limit = 0;
    glGetIntegerv(GL_MAX_3D_TEXTURE_SIZE, &limit);
    ASSERT_GT(limit, 0);
    LogCapture log(LOG_WARNING);
    setVoxels(makeVoxels(limit + 1, 2, 2, full));
    ASSERT_NE(volume->getVolume(), nullptr) << "the volume itself is fine on the CPU side";
    for(int i = 0; i < 3; ++i)
        render();
    const std::string said = log.take();
    EXPECT_EQ(count(said, "larger than the 3-D texture limit of " + std::to_string(limit)), 1u)
        << said;
    EXPECT_EQ(volumeNode->getNChildren(), 0u);
    EXPECT_LT(centre(), 0.01f);
    expectNoGLError();
}

TEST_F(VolumeFrameEdges, ResizeIsSaidOnceAndTheNextFrameHasTheNewSize)
{
    setVoxels(makeVoxels(N, N, N, ball));
    render();
    render();
    LogCapture log(LOG_NOTICE);
    const UInt16 w = 96, h = 48;
    win->resize(w, h);
    render();
    render();
    EXPECT_EQ(count(log.take(), "VolumeViewport::resize(96, 48)"), 1u);
    ImagePtr start = volume->getVolume()->getFrontTexture()->getImage();
    EXPECT_EQ(start->getWidth(), w);
    EXPECT_EQ(start->getHeight(), h);

    // the ball, in the middle of the wider window, still round: as high as
    // the window allows and centred left to right
    std::vector<Vec4f> pixels(size_t(w) * h);
    glReadPixels(0, 0, w, h, GL_RGBA, GL_FLOAT, &pixels[0]);
    EXPECT_GT(pixels[(h / 2) * w + w / 2][0], 0.1f);
    EXPECT_LT(pixels[(h / 2) * w + 4][0], 0.01f);
    EXPECT_LT(pixels[(h / 2) * w + w - 4][0], 0.01f);
    expectNoGLError();
}

TEST_F(VolumeFrameEdges, ZeroSizedWindowDrawsNothingAndRecovers)
{
    setVoxels(makeVoxels(N, N, N, ball));
    render();
    render();
    win->resize(0, 0);
    render();
    render();
    expectNoGLError();
    win->resize(W, H);
    render();
    render();
    EXPECT_GT(centre(), 0.1f);
    expectNoGLError();
}

TEST_F(VolumeFrameEdges, DebugTilesStandRightForTheFirstViewportAndLeftForTheNext)
{
    // which side a viewport's tiles take depends on whether it is the first
    // of the process: a fresh child process answers
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(showTilesOfTwoViewports(), testing::ExitedWithCode(0), "");
}

TEST(VolumeNodeBox, IsTheVoxelBoxAroundTheOriginOrTheChildrensWithoutVoxels)
{
    VolumeNodePtr volume = VolumeNode::create();
    NodePtr       node   = makeNode(volume);
    addRefCP(node);
    addChild(node, makeBox(2.f, 2.f, 2.f, 1, 1, 1));
    node->invalidateVolume();
    node->updateVolume();
    Pnt3f low, high;
    node->getVolume().getBounds(low, high);
    EXPECT_EQ(low, Pnt3f(-1.f, -1.f, -1.f));
    EXPECT_EQ(high, Pnt3f(1.f, 1.f, 1.f));

    // in voxels, whatever the thickness says
    beginEditCP(volume);
    volume->setVoxels(makeVoxels(32, 16, 8, full));
    volume->setSliceThickness(Vec3f(3.f, 3.f, 3.f));
    endEditCP(volume);
    node->invalidateVolume();
    node->updateVolume();
    node->getVolume().getBounds(low, high);
    EXPECT_EQ(low, Pnt3f(-16.f, -8.f, -4.f));
    EXPECT_EQ(high, Pnt3f(16.f, 8.f, 4.f));
    subRefCP(node);
}
