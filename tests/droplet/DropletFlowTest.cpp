// DropletFlow: every shader compiles and links with the uniforms the class
// sets; the projected normal and tangent maps of a flat plane against the
// perturbation formula; the two passes of a time step against the same
// formulas on the CPU, after one and after several steps (velocity, flow
// direction, volume); the gather's one-texel limit; conservation of volume
// away from the borders; friction; the noise map.
#include "DropletTestSupport.h"

#include <cmath>
#include <memory>

using namespace droplettest;

namespace
{

class DropletFlowTest : public DropletFixture
{
  protected:
    /// A flow of w x h maps over a flat plane, material mode matMode, with
    /// the parameters p and the projected maps of angle perturb.
    std::unique_ptr<DropletFlow> flow(int w, int h, const FlowParams &p, int matMode = 1,
                                      Real32 perturb = 0.f)
    {
        std::unique_ptr<DropletFlow> f(
            new DropletFlow(wetPlane(), material(), w, h, matMode, NullFC));
        // the flow's framebuffer objects are new to the window
        win->frameInit();
        f->setFlowParams(0.01f, p.timeStep, p.density, p.viscosity, p.frictionN,
                         p.frictionSigma);
        f->setForce(p.force);
        f->updateSceneTransform();
        f->updateProjectedMaps(perturb);
        return f;
    }

    /// One droplet of a right contact angle, placed into the state at rest.
    void place(DropletFlow &f, Real32 x, Real32 y, Real32 size)
    {
        f.getPlacer()->rebuildShapeMap(Pi / 2.f);
        f.getPlacer()->addSource(DropletSource(x, y, size, 1.f));
        f.getPlacer()->render(false);
    }

    GLuint program(const SHLChunkPtr &shader)
    {
        win->validateGLObject(shader->getGLId());
        return win->getGLObjectId(shader->getGLId());
    }

    GLint location(GLuint prog, const char *name)
    {
        typedef GLint(OSG_APIENTRY * F)(GLuint, const char *);
        F f = reinterpret_cast<F>(win->getFunction(SHLChunk::getFuncGetUniformLocation()));
        return f(prog, name);
    }
};

void expectMapsNear(const Map &gpu, const Map &cpu, Real32 relTol, Real32 absTol,
                    const char *what)
{
    ASSERT_EQ(gpu.t.size(), cpu.t.size());
    for(int y = 0; y < gpu.h; ++y)
        for(int x = 0; x < gpu.w; ++x)
            for(int c = 0; c < 3; ++c)
            {
                const Real32 want = cpu.at(x, y)[c];
                EXPECT_NEAR(gpu.at(x, y)[c], want, absTol + relTol * std::fabs(want))
                    << what << " texel " << x << "," << y << " channel " << c;
            }
}

/// The mean map row of the fluid, weighted by volume.
Real32 centroidY(const Map &m)
{
    Real32 sum = 0.f, weighted = 0.f;
    for(int y = 0; y < m.h; ++y)
        for(int x = 0; x < m.w; ++x)
        {
            sum += m.at(x, y)[2];
            weighted += m.at(x, y)[2] * Real32(y);
        }
    return weighted / sum;
}

Map emptyMap(int w, int h)
{
    Map m;
    m.w = w;
    m.h = h;
    m.t.assign(w * h, Vec4f(0.f, 0.f, 0.f, 0.f));
    return m;
}

} // namespace

TEST_F(DropletFlowTest, EveryShaderCompilesAndLinksWithTheUniformsItIsGiven)
{
    LogCapture log(LOG_WARNING);
    FlowParams p;

    for(int matMode = 1; matMode <= 2; ++matMode)
    {
        std::unique_ptr<DropletFlow> f = flow(8, 8, p, matMode);

        struct Expect
        {
            SHLChunkPtr                shader;
            std::vector<const char *> uniforms;
        } expected[] = {
            {f->getNormalShader(), {"noiseMap", "perturbAngle"}},
            {f->getTangentShader(), {"noiseMap", "perturbAngle"}},
            {f->getFlowShader(), {"timeStep", "offset", "surfaceMap"}},
            {f->getVelocityShader(),
             {"force", "density", "timeStep", "frictionN", "frictionSigma", "viscosity",
              "invViewMatrix", "surfaceMap", "normalMap", "tangentMap"}},
            {f->getDisplayShader(), {"surfaceMap", "fluidColor", "offset"}},
        };

        for(const Expect &e : expected)
        {
            ASSERT_NE(e.shader, NullFC);
            GLuint prog = program(e.shader);
            ASSERT_NE(prog, 0u) << "matMode " << matMode;
            for(const char *name : e.uniforms)
                EXPECT_GE(location(prog, name), 0) << name << " matMode " << matMode;
        }
        if(matMode == 2)
        {
            EXPECT_GE(location(program(f->getDisplayShader()), "diffuseMap"), 0);
        }
    }
    EXPECT_EQ(log.take(), "");
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

TEST_F(DropletFlowTest, ProjectedMapsHoldThePerturbedNormalAndTangentOfEachTexel)
{
    FlowParams                   p;
    const Real32                 angle = 0.52f;
    std::unique_ptr<DropletFlow> f     = flow(8, 8, p, 1, angle);

    Map normals  = read(f->getNormalMap());
    Map tangents = read(f->getTangentMap());
    Map noise    = read(f->getNoiseMap());

    // the noise map (32 x 32) sampled linearly at the texel centres of the
    // 8 x 8 maps: halfway between two noise texels each way. Where the
    // averaged directions nearly cancel, the 8-bit filter's rounding turns
    // the axis noticeably, so the tolerance grows as the axis shortens.
    auto noiseAt = [&](int x, int y) {
        Vec4f sum(0.f, 0.f, 0.f, 0.f);
        for(int dy = 0; dy < 2; ++dy)
            for(int dx = 0; dx < 2; ++dx)
                sum += noise.at(4 * x + 1 + dx, 4 * y + 1 + dy) * 0.25f;
        return Vec3f(sum[0] * 2.f - 1.f, sum[1] * 2.f - 1.f, sum[2] * 2.f - 1.f);
    };

    const Real32 c = std::cos(angle), s = std::sin(angle), k = 1.f - c;
    auto perturbed = [&](const Vec3f &axis, const Vec3f &in) {
        Vec3f v = axis;
        v.normalize();
        // the columns of the rotation, as the shader builds them
        Vec3f col[3] = {Vec3f(v[0] * v[0] * k + c, v[0] * v[1] * k - v[2] * s,
                              v[0] * v[2] * k + v[1] * s),
                        Vec3f(v[1] * v[0] * k + v[2] * s, v[1] * v[1] * k + c,
                              v[1] * v[2] * k - v[0] * s),
                        Vec3f(v[2] * v[0] * k - v[1] * s, v[2] * v[1] * k + v[0] * s,
                              v[2] * v[2] * k + c)};
        Vec3f out = col[0] * in[0] + col[1] * in[1] + col[2] * in[2];
        out.normalize();
        return out * 0.5f + Vec3f(0.5f, 0.5f, 0.5f);
    };

    for(int y = 0; y < 8; ++y)
        for(int x = 0; x < 8; ++x)
        {
            Vec3f        axis = noiseAt(x, y);
            Vec3f        n    = perturbed(axis, Vec3f(0.f, 0.f, 1.f));
            Vec3f        t    = perturbed(axis, Vec3f(1.f, 0.f, 0.f));
            const Real32 tol  = (1.5f + 1.5f / axis.length()) / 255.f;
            for(int i = 0; i < 3; ++i)
            {
                EXPECT_NEAR(normals.at(x, y)[i], n[i], tol) << x << "," << y;
                EXPECT_NEAR(tangents.at(x, y)[i], t[i], tol) << x << "," << y;
            }
        }

    // without perturbation the plane's own vectors, encoded
    f->updateProjectedMaps(0.f);
    normals  = read(f->getNormalMap());
    tangents = read(f->getTangentMap());
    for(const Vec4f &n : normals.t)
        EXPECT_TRUE(std::fabs(n[0] - 0.5f) < 0.003f && std::fabs(n[1] - 0.5f) < 0.003f &&
                    n[2] == 1.f)
            << n;
    for(const Vec4f &t : tangents.t)
        EXPECT_TRUE(t[0] == 1.f && std::fabs(t[1] - 0.5f) < 0.003f &&
                    std::fabs(t[2] - 0.5f) < 0.003f)
            << t;
}

TEST_F(DropletFlowTest, NewNoiseChangesNothingUntilTheMapsAreProjectedAgain)
{
    FlowParams                   p;
    std::unique_ptr<DropletFlow> f = flow(8, 8, p, 1, 0.52f);

    Map before = read(f->getNormalMap());
    f->rebuildNoiseMap(16, 16);
    EXPECT_EQ(f->getNoiseMap()->getImage()->getWidth(), 16);
    Map same = read(f->getNormalMap());
    EXPECT_TRUE(before.t == same.t);

    f->updateProjectedMaps(0.52f);
    Map after = read(f->getNormalMap());
    EXPECT_FALSE(before.t == after.t);
}

TEST_F(DropletFlowTest, OneStepMatchesTheFormulasOnTheCPU)
{
    FlowParams                   p;
    std::unique_ptr<DropletFlow> f = flow(8, 8, p);
    place(*f, 0.5f, 0.6f, 0.5f);

    const Map start    = read(f->getSurfaceMap(1));
    const Map normals  = read(f->getNormalMap());
    const Map tangents = read(f->getTangentMap());
    ASSERT_GT(start.volume(), 1.f);

    Map velocity = velocityPass(start, normals, tangents, p);
    Map moved    = advectionPass(velocity, p.timeStep);

    f->renderNextFrame();
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));

    // the first map carries the new velocities with the old volume, the
    // second the moved volume with the new velocities
    expectMapsNear(read(f->getSurfaceMap(0)), velocity, 2e-3f, 2e-3f, "velocity pass");
    expectMapsNear(read(f->getSurfaceMap(1)), moved, 2e-3f, 2e-3f, "advection pass");

    // gravity along -y of the object is -y of the map: the fluid runs down
    // the plane and not sideways; dry texels get velocity too
    EXPECT_LT(velocity.at(3, 4)[1], 0.f);
    EXPECT_NEAR(velocity.at(3, 4)[0], 0.f, 0.05f);
    EXPECT_LT(velocity.at(0, 7)[1], -1.f);
    EXPECT_EQ(moved.at(0, 7)[2], 0.f);
}

TEST_F(DropletFlowTest, SeveralStepsFollowTheFormulasAndRunDownhill)
{
    FlowParams                   p;
    std::unique_ptr<DropletFlow> f = flow(8, 8, p);
    place(*f, 0.5f, 0.6f, 0.5f);

    const Map normals  = read(f->getNormalMap());
    const Map tangents = read(f->getTangentMap());
    Map       cpu      = read(f->getSurfaceMap(1));
    Map       velocity;

    std::vector<Real32> centroid(1, centroidY(cpu));
    for(int step = 0; step < 4; ++step)
    {
        velocity = velocityPass(cpu, normals, tangents, p);
        cpu      = advectionPass(velocity, p.timeStep);
        f->renderNextFrame();
        centroid.push_back(centroidY(read(f->getSurfaceMap(1))));
    }

    expectMapsNear(read(f->getSurfaceMap(0)), velocity, 5e-3f, 5e-3f, "velocity, step 4");
    expectMapsNear(read(f->getSurfaceMap(1)), cpu, 5e-3f, 5e-3f, "volume, step 4");

    for(size_t i = 1; i < centroid.size(); ++i)
        EXPECT_LT(centroid[i], centroid[i - 1]) << "step " << i;
}

TEST_F(DropletFlowTest, VolumeIsConservedAwayFromTheBordersAndLostAtTheLowOnes)
{
    FlowParams p;
    p.force = Vec3f(0.f, -0.02f, 0.f);
    std::unique_ptr<DropletFlow> f = flow(16, 16, p);
    place(*f, 0.5f, 0.5f, 0.375f);

    const Real32 start = read(f->getSurfaceMap(1)).volume();
    for(int step = 0; step < 3; ++step)
        f->renderNextFrame();
    Map after = read(f->getSurfaceMap(1));

    for(int i = 0; i < 16; ++i)
    {
        EXPECT_EQ(after.at(i, 0)[2], 0.f);
        EXPECT_EQ(after.at(0, i)[2], 0.f);
    }
    EXPECT_NEAR(after.volume(), start, 0.005f * start);

    // a film that runs over the lower border drains away there
    Map edge = emptyMap(16, 16);
    for(int x = 4; x < 12; ++x)
        edge.at(x, 1) = Vec4f(0.f, -100.f, 1.f, 0.f);
    write(f->getSurfaceMap(1), edge);
    f->renderNextFrame();
    EXPECT_EQ(read(f->getSurfaceMap(1)).volume(), 0.f);
}

TEST_F(DropletFlowTest, NoElementMovesMoreThanOneTexelAStep)
{
    // With a full texel and no force, friction leaves the velocity alone
    // (attenuation 1 at volume 1), so the state decides the displacement.
    FlowParams p;
    p.force = Vec3f(0.f, 0.f, 0.f);
    std::unique_ptr<DropletFlow> f = flow(8, 8, p);

    Map state = emptyMap(8, 8);
    state.at(4, 4) = Vec4f(100.f, 0.f, 1.f, 0.f);
    write(f->getSurfaceMap(1), state);
    f->renderNextFrame();
    Map moved = read(f->getSurfaceMap(1));
    EXPECT_EQ(moved.at(5, 4)[2], 1.f);
    EXPECT_EQ(moved.at(4, 4)[2], 0.f);
    EXPECT_FLOAT_EQ(moved.volume(), 1.f);
    // the velocity stays with the texel it belongs to
    EXPECT_EQ(moved.at(4, 4)[0], 100.f);
    EXPECT_EQ(moved.at(5, 4)[0], 0.f);

    // diagonally, the unit displacement splits the volume four ways
    state.at(4, 4) = Vec4f(100.f, 100.f, 1.f, 0.f);
    write(f->getSurfaceMap(1), state);
    f->renderNextFrame();
    moved           = read(f->getSurfaceMap(1));
    const Real32 d  = std::sqrt(0.5f);
    EXPECT_NEAR(moved.at(5, 5)[2], d * d, 1e-3f);
    EXPECT_NEAR(moved.at(5, 4)[2], d * (1.f - d), 1e-3f);
    EXPECT_NEAR(moved.at(4, 5)[2], d * (1.f - d), 1e-3f);
    EXPECT_NEAR(moved.at(4, 4)[2], (1.f - d) * (1.f - d), 1e-3f);
    EXPECT_NEAR(moved.volume(), 1.f, 2e-3f);
}

TEST_F(DropletFlowTest, WithoutViscosityTheFluidNeverMoves)
{
    FlowParams p;
    p.viscosity = 0.f;
    std::unique_ptr<DropletFlow> f = flow(8, 8, p);
    place(*f, 0.5f, 0.5f, 0.5f);

    const Map start = read(f->getSurfaceMap(1));
    for(int step = 0; step < 3; ++step)
        f->renderNextFrame();

    Map velocity = read(f->getSurfaceMap(0));
    Map after    = read(f->getSurfaceMap(1));
    for(size_t i = 0; i < after.t.size(); ++i)
    {
        EXPECT_EQ(velocity.t[i][0], 0.f);
        EXPECT_EQ(velocity.t[i][1], 0.f);
        // the pass clamps the placed volume to 0..1, nothing else changes it
        Real32 x = Real32(i % 8), y = Real32(i / 8);
        if(x > 0 && y > 0)
        {
            EXPECT_EQ(after.t[i][2], std::min(start.t[i][2], 1.f));
        }
    }
}

TEST_F(DropletFlowTest, AStepIsOneTickAndTheTimerTakesOnlyOne)
{
    FlowParams                   p;
    std::unique_ptr<DropletFlow> f = flow(8, 8, p);
    place(*f, 0.5f, 0.6f, 0.5f);

    Map start = read(f->getSurfaceMap(1));
    EXPECT_FALSE(f->onTick(f->getTimer(), 0.0, 5));
    Map once = read(f->getSurfaceMap(1));
    EXPECT_FALSE(start.t == once.t);

    // however far the clock jumped, one update is one step
    Timer *timer = f->getTimer();
    timer->setCurrentTime(1.0);
    timer->setActive(true); // a start is a step of its own
    Map started = read(f->getSurfaceMap(1));
    timer->setCurrentTime(100.0);
    f->update();

    Map oneStep = advectionPass(velocityPass(started, read(f->getNormalMap()),
                                             read(f->getTangentMap()), p),
                                p.timeStep);
    expectMapsNear(read(f->getSurfaceMap(1)), oneStep, 5e-3f, 5e-3f, "one update");
}

TEST_F(DropletFlowTest, MapsWithoutTexelsDrawNothingAndBreakNothing)
{
    FlowParams p;
    for(int edge : {0, -3})
    {
        LogCapture                   log(LOG_WARNING);
        std::unique_ptr<DropletFlow> f = flow(edge, edge, p);
        place(*f, 0.5f, 0.5f, 0.5f);
        f->renderNextFrame();
        EXPECT_EQ(f->getSurfaceMap(1)->getImage()->getWidth(), 0);
        EXPECT_EQ(log.take(), "") << edge;
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR)) << edge;
    }
}
