// DropletFlowViewport in a window's frame: the simulation is created, then
// started, then driven by the `time` field (one step per frame however far
// the clock moved, none while paused, the wall clock after a `dirty`
// pulse); sources add fluid and an empty list wipes it; a new map size
// rebuilds; `enabled` false holds changes back; DEBUG_DROPFLOW hangs six
// inspection planes into the scene; and bad field values log a line and
// leave the window rendering without a GL error.
#include "DropletTestSupport.h"

#include <OpenSG/OSGDropletFlowViewport.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGTransform.h>

#include <sys/time.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <string>

using namespace droplettest;

namespace
{

class DropletViewportTest : public DropletFixture
{
  protected:
    void SetUp(void) override
    {
        DropletFixture::SetUp();
        if(win == NullFC)
            return;

        plane = wetPlane();
        beginEditCP(root, Node::ChildrenFieldMask);
        root->addChild(plane);
        endEditCP(root, Node::ChildrenFieldMask);

        dfv = DropletFlowViewport::create();
        keep(dfv);
        beginEditCP(dfv);
        dfv->setRoot(plane);
        dfv->setMaterial(material());
        dfv->setMatMode(1);
        dfv->setSurfaceMapSize(Vec2f(16.f, 16.f));
        endEditCP(dfv);
        win->addPort(dfv);

        // a port of the application behind it, which must keep rendering
        port(0.f, 1.f, 0.f, 1.f, solid(Grey));
    }

    DropletFlow *flow(void) const { return dfv->getDropletFlow(); }

    /// Frames until the simulation runs and has taken the fields set
    /// before it existed.
    void settle(void)
    {
        for(int i = 0; i < 5; ++i)
            frame();
        ASSERT_NE(flow(), nullptr);
        ASSERT_TRUE(flow()->getTimer()->isActive());
    }

    template <class EditT>
    void edit(BitVector mask, EditT change)
    {
        beginEditCP(dfv, mask);
        change();
        endEditCP(dfv, mask);
    }

    /// One frame with the clock moved by dt.
    void tick(double dt)
    {
        edit(DropletFlowViewport::TimeFieldMask, [&] { dfv->setTime(dfv->getTime() + dt); });
        frame();
    }

    void setSources(const std::vector<Vec3f> &sources)
    {
        edit(DropletFlowViewport::SourcesFieldMask, [&] {
            dfv->getSources().clear();
            for(const Vec3f &s : sources)
                dfv->getSources().push_back(s);
        });
    }

    Map state(void) { return read(flow()->getSurfaceMap(1)); }

    /// The application's port still shows its background.
    void expectWindowRenders(void)
    {
        std::vector<RGBA> px = readAll(win);
        EXPECT_EQ(px[0], Grey);
        EXPECT_EQ(px[px.size() - 1], Grey);
    }

    FlowParams fieldParams(void) const
    {
        FlowParams p;
        p.force         = dfv->getForce();
        p.timeStep      = Real32(dfv->getTimeStep());
        p.density       = dfv->getFluidDensity();
        p.viscosity     = dfv->getFluidViscosity();
        p.frictionN     = dfv->getFrictionN();
        p.frictionSigma = dfv->getFrictionSigma();
        return p;
    }

    NodePtr                plane;
    DropletFlowViewportPtr dfv;
};

double wallClock(void)
{
    struct timeval now;
    gettimeofday(&now, NULL);
    return double(now.tv_sec) + double(now.tv_usec) / 1e6;
}

} // namespace

TEST_F(DropletViewportTest, TheFirstFrameCreatesTheNextStartsAndFieldsSetBeforeApplyLater)
{
    setSources({Vec3f(0.5f, 0.5f, 0.5f)});

    frame();
    ASSERT_NE(flow(), nullptr);
    EXPECT_FALSE(flow()->getTimer()->isActive());

    frame();
    EXPECT_TRUE(flow()->getTimer()->isActive());
    // the object has been projected: the plane's normal is (0, 0, 1)
    EXPECT_GT(read(flow()->getNormalMap()).at(8, 8)[2], 0.8f);

    settle();
    EXPECT_GT(state().volume(), 1.f);
    EXPECT_EQ(flow()->getWidth(), 16);
    // nothing is drawn into the window by this port
    expectWindowRenders();
}

TEST_F(DropletViewportTest, TheClockDrivesOneStepPerFrameAndPauseStopsIt)
{
    edit(DropletFlowViewport::ForceFieldMask,
         [&] { dfv->setForce(Vec3f(0.f, -1.f, 0.f)); });
    setSources({Vec3f(0.5f, 0.7f, 0.4f)});
    settle();

    const Map normals  = read(flow()->getNormalMap());
    const Map tangents = read(flow()->getTangentMap());
    const FlowParams p = fieldParams();

    // a clock ten seconds on (a thousand tick delays) is still one step
    Map before = state();
    tick(10.0);
    Map want = advectionPass(velocityPass(before, normals, tangents, p), p.timeStep);
    Map got  = state();
    for(size_t i = 0; i < got.t.size(); ++i)
        EXPECT_NEAR(got.t[i][2], want.t[i][2], 5e-3f) << i;

    // less than a tick delay: no step
    tick(0.004);
    EXPECT_TRUE(state().t == got.t);
    tick(0.008);
    EXPECT_FALSE(state().t == got.t);

    // paused, the clock runs on without steps
    edit(DropletFlowViewport::PauseFieldMask, [&] { dfv->setPause(true); });
    frame();
    Map paused = state();
    for(int i = 0; i < 3; ++i)
        tick(0.05);
    EXPECT_TRUE(state().t == paused.t);

    edit(DropletFlowViewport::PauseFieldMask, [&] { dfv->setPause(false); });
    tick(0.05);
    EXPECT_FALSE(state().t == paused.t);
}

TEST_F(DropletViewportTest, SourcesAddEachTimeTheyAreSetAndAnEmptyListWipes)
{
    // no force and a still clock: the fluid stays where it is put
    edit(DropletFlowViewport::ForceFieldMask, [&] { dfv->setForce(Vec3f(0.f, 0.f, 0.f)); });
    settle();
    EXPECT_EQ(state().volume(), 0.f);

    setSources({Vec3f(0.5f, 0.5f, 0.5f)});
    frame();
    const Real32 once = state().volume();
    EXPECT_GT(once, 5.f);

    setSources({Vec3f(0.5f, 0.5f, 0.5f)});
    frame();
    EXPECT_NEAR(state().volume(), 2.f * once, 0.01f * once);

    setSources({});
    frame();
    EXPECT_EQ(state().volume(), 0.f);
}

TEST_F(DropletViewportTest, FieldChangesReachTheSimulation)
{
    settle();
    edit(DropletFlowViewport::ForceFieldMask | DropletFlowViewport::TimeStepFieldMask |
             DropletFlowViewport::FluidColorFieldMask,
         [&] {
             dfv->setForce(Vec3f(1.f, 2.f, 3.f));
             dfv->setTimeStep(0.25);
             dfv->setFluidColor(Color4f(1.f, 0.5f, 0.25f, 0.75f));
         });
    frame();

    Vec3f force;
    EXPECT_TRUE(flow()->getVelocityShader()->getUniformParameter("force", force));
    EXPECT_EQ(force, Vec3f(1.f, 2.f, 3.f));
    Real32 step = 0.f;
    EXPECT_TRUE(flow()->getFlowShader()->getUniformParameter("timeStep", step));
    EXPECT_EQ(step, 0.25f);
    Vec4f colour;
    EXPECT_TRUE(flow()->getDisplayShader()->getUniformParameter("fluidColor", colour));
    EXPECT_EQ(colour, Vec4f(1.f, 0.5f, 0.25f, 0.75f));

    // the object's place in the world turns the force into its coordinates
    TransformPtr xform = Transform::create();
    Matrix       m;
    m.setTranslate(5.f, 0.f, 0.f);
    m.setScale(2.f);
    beginEditCP(xform);
    xform->setMatrix(m);
    endEditCP(xform);
    beginEditCP(root, Node::CoreFieldMask);
    root->setCore(xform);
    endEditCP(root, Node::CoreFieldMask);
    frame();
    Matrix inverse;
    EXPECT_TRUE(flow()->getVelocityShader()->getUniformParameter("invViewMatrix", inverse));
    EXPECT_NEAR(inverse[0][0], 0.5f, 1e-6f);
    EXPECT_NEAR(inverse[3][0], -2.5f, 1e-6f);
}

TEST_F(DropletViewportTest, ANewMapSizeRebuildsTheSimulationAndLosesTheFluid)
{
    setSources({Vec3f(0.5f, 0.5f, 0.5f)});
    settle();
    ASSERT_GT(state().volume(), 1.f);

    edit(DropletFlowViewport::SurfaceMapSizeFieldMask,
         [&] { dfv->setSurfaceMapSize(Vec2f(8.f, 8.f)); });
    frame();
    ASSERT_NE(flow(), nullptr);
    EXPECT_EQ(flow()->getWidth(), 8);
    frame();
    EXPECT_EQ(state().volume(), 0.f);
}

TEST_F(DropletViewportTest, WhileDisabledNoChangeIsAppliedAndNothingRuns)
{
    settle();
    edit(DropletFlowViewport::EnabledFieldMask, [&] { dfv->setEnabled(false); });
    edit(DropletFlowViewport::ForceFieldMask, [&] { dfv->setForce(Vec3f(0.f, 0.f, 7.f)); });
    frame();
    Vec3f force;
    flow()->getVelocityShader()->getUniformParameter("force", force);
    EXPECT_EQ(force, Vec3f(0.f, -0.1f, 0.f));

    edit(DropletFlowViewport::EnabledFieldMask, [&] { dfv->setEnabled(true); });
    frame();
    flow()->getVelocityShader()->getUniformParameter("force", force);
    EXPECT_EQ(force, Vec3f(0.f, 0.f, 7.f));
}

TEST_F(DropletViewportTest, ADirtyPulseWithoutANewTimeMovesOntoTheWallClock)
{
    settle();
    edit(DropletFlowViewport::DirtyFieldMask, [&] { dfv->setDirty(true); });
    frame();
    EXPECT_NEAR(flow()->getTimer()->getCurrentTime(), wallClock(), 5.0);
    EXPECT_FALSE(dfv->getDirty());
}

TEST_F(DropletViewportTest, DebugPlanesShowTheSixMapsBesideTheScene)
{
    setenv("DEBUG_DROPFLOW", "", 1); // only its presence counts
    frame();
    unsetenv("DEBUG_DROPFLOW");
    ASSERT_NE(flow(), nullptr);

    // the scene's top node got six planes after the object
    ASSERT_EQ(root->getNChildren(), 7u);
    TextureChunkPtr shown[6] = {flow()->getSurfaceMap(0), flow()->getSurfaceMap(1),
                                flow()->getPlacer()->getShapeMap(), flow()->getNormalMap(),
                                flow()->getTangentMap(), flow()->getNoiseMap()};
    for(UInt32 i = 0; i < 6; ++i)
    {
        NodePtr      xformNode = root->getChild(1 + i)->getChild(0);
        TransformPtr xform     = TransformPtr::dcast(xformNode->getCore());
        ASSERT_NE(xform, NullFC);
        EXPECT_EQ(xform->getMatrix()[3], Vec4f(-10.f + 5.f * i, -10.f, 10.f, 1.f));
        GeometryPtr      geo = GeometryPtr::dcast(xformNode->getChild(0)->getCore());
        ChunkMaterialPtr mat = ChunkMaterialPtr::dcast(geo->getMaterial());
        ASSERT_NE(mat, NullFC);
        EXPECT_EQ(mat->getChunks(0), shown[i]) << i;
    }
    frame();
}

// --- bad field values ------------------------------------------------------------------

TEST_F(DropletViewportTest, MapSizesOutOfRangeAreRefusedOnceUntilFixed)
{
    const Real32 nan   = std::numeric_limits<Real32>::quiet_NaN();
    const Vec2f  bad[] = {Vec2f(0.f, 0.f), Vec2f(-4.f, 16.f), Vec2f(1e6f, 1e6f),
                          Vec2f(1e12f, 8.f), Vec2f(nan, 16.f)};
    for(const Vec2f &size : bad)
    {
        edit(DropletFlowViewport::SurfaceMapSizeFieldMask,
             [&] { dfv->setSurfaceMapSize(size); });
        EXPECT_NE(frameLog().find("out of range"), std::string::npos) << size;
        EXPECT_EQ(frameLog(), "") << size; // said once
        EXPECT_EQ(flow(), nullptr);
        expectWindowRenders();
    }
    edit(DropletFlowViewport::SurfaceMapSizeFieldMask,
         [&] { dfv->setSurfaceMapSize(Vec2f(16.f, 8.f)); });
    settle();
    EXPECT_EQ(flow()->getHeight(), 8);
}

TEST_F(DropletViewportTest, WithoutAMaterialTheViewportWaitsForOne)
{
    ChunkMaterialPtr mat = dfv->getMaterial();
    edit(DropletFlowViewport::MaterialFieldMask, [&] { dfv->setMaterial(NullFC); });
    EXPECT_NE(frameLog().find("no material"), std::string::npos);
    EXPECT_EQ(flow(), nullptr);
    expectWindowRenders();

    edit(DropletFlowViewport::MaterialFieldMask, [&] { dfv->setMaterial(mat); });
    settle();
}

TEST_F(DropletViewportTest, ModeZeroWithoutAUsableTexture)
{
    edit(DropletFlowViewport::MatModeFieldMask, [&] { dfv->setMatMode(0); });

    // no texture, or a NullFC entry: the surface map is made here and
    // added to the material (each new simulation adds its own)
    settle();
    const MFStateChunkPtr &chunks = dfv->getMaterial()->getChunks();
    EXPECT_EQ(chunks[chunks.size() - 1], flow()->getSurfaceMap(0));

    edit(DropletFlowViewport::TexturesFieldMask,
         [&] { dfv->getTextures().push_back(NullFC); });
    settle();

    // a texture without an image gives no size to work with
    TextureChunkPtr bare = TextureChunk::create();
    keep(bare);
    edit(DropletFlowViewport::TexturesFieldMask, [&] { dfv->getTextures()[0] = bare; });
    EXPECT_NE(frameLog().find("no image"), std::string::npos);
    EXPECT_EQ(frameLog(), "");
    EXPECT_EQ(flow(), nullptr);
    expectWindowRenders();
}

TEST_F(DropletViewportTest, SourcesOutsideTheMapAddOnlyWhatOverlaps)
{
    settle();
    setSources({Vec3f(1.2f, 0.5f, 0.2f), Vec3f(-0.05f, 0.5f, 0.2f)});
    EXPECT_NE(frameLog().find("outside"), std::string::npos);
    const Real32 overlap = state().volume();
    EXPECT_GT(overlap, 0.f);
    expectWindowRenders();
}

TEST_F(DropletViewportTest, AnObjectWithoutTextureCoordinatesIsReported)
{
    GeometryPtr geo = GeometryPtr::dcast(plane->getCore());
    beginEditCP(geo);
    geo->setTexCoords(NullFC);
    geo->setTexCoords1(NullFC);
    endEditCP(geo);

    std::string log;
    for(int i = 0; i < 5; ++i)
        log += frameLog();
    EXPECT_NE(log.find("no geometry below root has texture coordinates"), std::string::npos);
    for(int i = 0; i < 4; ++i)
        tick(0.05);
    expectWindowRenders();
}

TEST_F(DropletViewportTest, OddSimulationFieldsNeitherHangNorBreakTheFrame)
{
    settle();
    edit(DropletFlowViewport::NoiseMapSizeFieldMask,
         [&] { dfv->setNoiseMapSize(Vec2f(0.f, 0.f)); });
    EXPECT_NE(frameLog().find("out of range"), std::string::npos);
    EXPECT_EQ(flow()->getNoiseMap()->getImage()->getWidth(), 32);

    // a flat contact angle, or none at all, makes no droplet
    for(Real32 angle : {0.f, std::numeric_limits<Real32>::quiet_NaN()})
    {
        edit(DropletFlowViewport::ContactAngleFieldMask, [&] { dfv->setContactAngle(angle); });
        frame();
        ImagePtr     shape = flow()->getPlacer()->getShapeMap()->getImage();
        const UInt8 *p     = shape->getData();
        EXPECT_TRUE(std::all_of(p, p + shape->getSize(), [](UInt8 b) { return b == 0; }));
    }

    // no delay: a step for each frame whose clock moved
    edit(DropletFlowViewport::TimeDelayFieldMask | DropletFlowViewport::FrictionSigmaFieldMask |
             DropletFlowViewport::FluidDensityFieldMask | DropletFlowViewport::MatModeFieldMask,
         [&] {
             dfv->setTimeDelay(0.0);
             dfv->setFrictionSigma(0.f);
             dfv->setFluidDensity(0.f);
             dfv->setMatMode(-3);
         });
    setSources({Vec3f(0.5f, 0.5f, 0.5f)});
    for(int i = 0; i < 3; ++i)
        tick(1e-9);
    expectWindowRenders();
}
