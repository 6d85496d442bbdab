// SimpleSceneManager on a headless window: the internal graph, showAll's
// camera, the navigators driven by mouse and key events, picking rays,
// the highlight box, the headlight and resizing, each checked against the
// formulas evaluated here or against rendered pixels.
#include "ManagerTestSupport.h"

#include <OpenSG/OSGIntersectAction.h>

#include <memory>

using namespace osg;
using namespace mgrtest;
using wintest::RGBA;

namespace
{

class ManagerTest : public ::testing::Test
{
  protected:
    static constexpr UInt16 W = 300, H = 300;

    void SetUp(void) override
    {
        win = wintest::makeWindow(W, H);
        if(win == NullFC)
            GTEST_SKIP() << "no EGL context on this machine";
        mgr.reset(new SimpleSceneManager);
        mgr->setWindow(win);
    }

    void TearDown(void) override
    {
        if(win == NullFC)
            return;
        mgr.reset();
        subRefCP(win);
    }

    RGBA pixel(Int32 x, Int32 yFromTop)
    {
        RGBA c;
        EXPECT_TRUE(win->readPixels(x, win->getHeight() - 1 - yFromTop, 1, 1,
                                    GL_RGBA, GL_UNSIGNED_BYTE, &c));
        return c;
    }

    /// The eye of showAll on the tutorial torus.
    static Matrix tutorialStart(void)
    {
        return translation(0.f, 0.f, 4.8301272f);
    }

    EGLWindowPtr                        win;
    std::unique_ptr<SimpleSceneManager> mgr;
};

// The manager's own graph and the values it starts with.
TEST_F(ManagerTest, BuildsTheInternalGraphAndViewport)
{
    NodePtr torus = makeTutorialTorus();
    mgr->setRoot(torus);

    ASSERT_EQ(win->getMFPort()->size(), 1u);
    ViewportPtr vp = win->getPort(0);
    NodePtr     internal = vp->getRoot();
    ASSERT_NE(internal, NullFC);

    // internal root: the headlight, holding the beacon and the scene
    EXPECT_EQ(internal->getCore(), mgr->getHeadlight());
    ASSERT_EQ(internal->getNChildren(), 2u);
    NodePtr cart = internal->getChild(0);
    EXPECT_NE(TransformPtr::dcast(cart->getCore()), NullFC);
    EXPECT_EQ(internal->getChild(1), torus);
    EXPECT_EQ(mgr->getRoot(), torus);

    DirectionalLightPtr light = mgr->getHeadlight();
    EXPECT_EQ(light->getBeacon(), cart);
    EXPECT_EQ(light->getDirection(), Vec3f(0.f, 0.f, 1.f));
    EXPECT_EQ(light->getAmbient(), Color4f(.3f, .3f, .3f, 1.f));
    EXPECT_TRUE(mgr->getHeadlightState());

    PerspectiveCameraPtr cam = mgr->getCamera();
    EXPECT_EQ(vp->getCamera(), cam);
    EXPECT_EQ(cam->getBeacon(), cart);
    EXPECT_EQ(cam->getFov(), (60.f / 360.f) * 2.f * 3.1415926535f);
    EXPECT_EQ(cam->getNear(), 0.1f);
    EXPECT_EQ(cam->getFar(), 10000.f);

    ASSERT_EQ(vp->getMFForegrounds()->size(), 1u);
    EXPECT_NE(ImageForegroundPtr::dcast(vp->getForegrounds(0)), NullFC);
    EXPECT_NE(dynamic_cast<RenderAction *>(mgr->getAction()), nullptr);
    EXPECT_EQ(mgr->getNavigator()->getMode(), Navigator::TRACKBALL);

    // a new root replaces the old one, NullFC detaches it
    NodePtr other = makeTutorialTorus();
    mgr->setRoot(other);
    ASSERT_EQ(internal->getNChildren(), 2u);
    EXPECT_EQ(internal->getChild(1), other);
    mgr->setRoot(NullFC);
    EXPECT_EQ(internal->getNChildren(), 1u);
}

// showAll: the camera looks down -z at the box's centre from the distance
// at which the larger of the x and y extents fills the field of view,
// moved back by half the z extent; near and far follow the largest extent.
TEST_F(ManagerTest, ShowAllFramesTheBoundingBox)
{
    // OpenSG's tutorial numbers
    mgr->setRoot(makeTutorialTorus());
    mgr->showAll();
    mgr->redraw();
    EXPECT_TRUE(matrixNear(beaconMatrix(*mgr), tutorialStart()));
    EXPECT_FLOAT_EQ(mgr->getCamera()->getNear(), .05f);
    EXPECT_FLOAT_EQ(mgr->getCamera()->getFar(), 50.f);
    EXPECT_FLOAT_EQ(mgr->getNavigator()->getMotionFactor(), .11f);

    // an off-centre box with unequal extents, its bounds read from the
    // vertices
    NodePtr box = makeBox(3.f, 7.f, 2.f, 1, 1, 1);
    GeometryPtr geo = GeometryPtr::dcast(box->getCore());
    GeoPositions3fPtr pos = GeoPositions3fPtr::dcast(geo->getPositions());
    beginEditCP(pos);
    for(UInt32 i = 0; i < pos->getField().size(); ++i)
        pos->getField()[i] += Vec3f(4.f, -1.f, 2.5f);
    endEditCP(pos);
    beginEditCP(geo, Geometry::PositionsFieldMask);
    endEditCP(geo, Geometry::PositionsFieldMask);

    mgr->setRoot(box);
    mgr->showAll();
    mgr->redraw();

    Pnt3f min(1e9f, 1e9f, 1e9f), max(-1e9f, -1e9f, -1e9f);
    positionBounds(box, min, max);
    const Vec3f  d    = max - min;
    const Real32 fov  = mgr->getCamera()->getFov();
    const Real32 dist = std::max(d[0], d[1]) / (2.f * std::tan(fov / 2.f));
    const Vec3f  at((min[0] + max[0]) * .5f, (min[1] + max[1]) * .5f,
                    (min[2] + max[2]) * .5f);
    Vec3f from = at;
    from[2] += dist + std::fabs(max[2] - min[2]) * .5f;

    EXPECT_TRUE(matrixNear(beaconMatrix(*mgr), lookAt(from, at, Vec3f(0.f, 1.f, 0.f))));
    EXPECT_FLOAT_EQ(mgr->getCamera()->getNear(), 7.f / 100.f);
    EXPECT_FLOAT_EQ(mgr->getCamera()->getFar(), 70.f);
    EXPECT_FLOAT_EQ(mgr->getNavigator()->getMotionFactor(), (d[0] + d[1] + d[2]) / 100.f);

    // an empty scene shows the cube of +-1
    NodePtr empty = Node::create();
    beginEditCP(empty);
    empty->setCore(Group::create());
    endEditCP(empty);
    mgr->setRoot(empty);
    mgr->showAll();
    mgr->redraw();
    EXPECT_TRUE(matrixNear(beaconMatrix(*mgr),
                           translation(0.f, 0.f, 1.f / std::tan(fov / 2.f) + 1.f)));
}

// Trackball mode: a left drag turns the scene by the virtual trackball, a
// right drag dollies, a middle drag pans so that the grabbed point follows
// the cursor, the wheel steps by the motion factor.
TEST_F(ManagerTest, TrackballDragsGiveTheTrackballMatrices)
{
    mgr->setRoot(makeTutorialTorus());
    mgr->showAll();
    mgr->redraw();
    const Real32 dist = 4.8301272f;

    // rotate: OpenSG's worked example, about -y by 0.0834301 rad
    mgr->mouseButtonPress(SimpleSceneManager::MouseLeft, 150, 150);
    mgr->mouseMove(160, 150);
    mgr->mouseButtonRelease(SimpleSceneManager::MouseLeft, 160, 150);
    mgr->redraw();

    Real32 fx, fy, tx, ty;
    normalised(150, 150, W, H, fx, fy);
    normalised(160, 150, W, H, tx, ty);
    const Matrix rot = trackballRotation(fx, fy, tx, ty);
    Matrix T = rot;   // the centre is the origin
    EXPECT_TRUE(matrixNear(beaconMatrix(*mgr), product(T, translation(0.f, 0.f, dist))));
    EXPECT_TRUE(matrixNear(rot, axisRotation(Vec3f(0.f, -1.f, 0.f), 0.0834301f)));

    // dolly: dragging up by 30 pixels moves away by 100 * 0.2^2 * 0.11
    mgr->mouseButtonPress(SimpleSceneManager::MouseRight, 150, 150);
    mgr->mouseMove(150, 120);
    mgr->mouseButtonRelease(SimpleSceneManager::MouseRight, 150, 120);
    mgr->redraw();
    normalised(150, 150, W, H, fx, fy);
    normalised(150, 120, W, H, tx, ty);
    const Real32 dist2 = dist + 100.f * (ty - fy) * (ty - fy) * .11f;
    EXPECT_TRUE(matrixNear(beaconMatrix(*mgr), product(T, translation(0.f, 0.f, dist2)), 5e-6f));

    // the wheel: up comes closer by one motion factor (the release, without
    // motion, re-centres only on a hit: the ray through the middle passes
    // through the torus's hole)
    mgr->mouseButtonPress(SimpleSceneManager::MouseUp, 150, 150);
    mgr->mouseButtonRelease(SimpleSceneManager::MouseUp, 150, 150);
    mgr->redraw();
    const Real32 dist3 = dist2 - .11f;
    EXPECT_TRUE(matrixNear(beaconMatrix(*mgr), product(T, translation(0.f, 0.f, dist3)), 5e-6f));

    // pan: grab the middle (the hole: the plane through the origin facing
    // the camera), drag 12 pixels right and 9 down; the grabbed point stays
    // under the cursor
    mgr->mouseButtonPress(SimpleSceneManager::MouseMiddle, 150, 150);
    mgr->mouseMove(162, 159);
    mgr->mouseButtonRelease(SimpleSceneManager::MouseMiddle, 162, 159);
    mgr->redraw();

    const Matrix after  = beaconMatrix(*mgr);
    Matrix       toCam  = after;
    toCam.invert();
    Pnt3f origin;
    toCam.mult(Pnt3f(0.f, 0.f, 0.f), origin);
    // the origin's image, in pixels from the upper left
    const Real32 k  = std::tan(mgr->getCamera()->getFov() / 2.f);
    const Real32 px = (origin[0] / -origin[2] / k + 1.f) * W / 2.f;
    const Real32 py = (1.f - origin[1] / -origin[2] / k) * H / 2.f;
    EXPECT_NEAR(px, 162.f, 1e-3f);
    EXPECT_NEAR(py, 159.f, 1e-3f);
    // and the pan moved the eye within its own plane
    EXPECT_NEAR(origin[2], -dist3, 1e-5f);
}

// A click (press and release without motion) re-centres on the picked
// point: the eye stays, the centre becomes the hit point.
TEST_F(ManagerTest, ClickCentresOnThePickedPoint)
{
    mgr->setRoot(makeTutorialTorus());
    mgr->showAll();
    mgr->redraw();

    // the front of the tube on the +x side
    const Int16 x = 270, y = 150;
    Line ray = mgr->calcViewRay(x, y);
    std::unique_ptr<IntersectAction> act(IntersectAction::create());
    act->setLine(ray);
    act->apply(mgr->getRoot());
    ASSERT_TRUE(act->didHit());
    const Pnt3f hit = act->getHitPoint();

    mgr->mouseButtonPress(SimpleSceneManager::MouseLeft, x, y);
    mgr->mouseButtonRelease(SimpleSceneManager::MouseLeft, x, y);
    mgr->redraw();

    const Vec3f eye(0.f, 0.f, 4.8301272f);
    EXPECT_TRUE(matrixNear(beaconMatrix(*mgr), lookAt(eye, hit.subZero(), Vec3f(0.f, 1.f, 0.f)), 5e-6f));
    EXPECT_NEAR(mgr->getNavigator()->getDistance(), (hit.subZero() - eye).length(), 1e-5f);

    // with click-centre off a click changes nothing
    const Matrix before = beaconMatrix(*mgr);
    EXPECT_TRUE(mgr->setClickCenter(false));
    mgr->mouseButtonPress(SimpleSceneManager::MouseLeft, 200, 150);
    mgr->mouseButtonRelease(SimpleSceneManager::MouseLeft, 200, 150);
    mgr->redraw();
    EXPECT_TRUE(matrixNear(beaconMatrix(*mgr), before, 0.f));
}

// Fly mode: the camera keeps its place when the mode changes; a left drag
// turns the view by the normalised motion (radians) and flies one step
// forward per event; idle with the button held flies on; keys move
// sideways and turn.
TEST_F(ManagerTest, FlyModeTurnsAndFlies)
{
    mgr->setRoot(makeTutorialTorus());
    mgr->showAll();
    mgr->redraw();

    mgr->setNavigationMode(Navigator::FLY);
    mgr->redraw();
    EXPECT_TRUE(matrixNear(beaconMatrix(*mgr), tutorialStart()));

    const Vec3f up(0.f, 1.f, 0.f);
    Vec3f from(0.f, 0.f, 4.8301272f), at = from - Vec3f(0.f, 0.f, 1.f);
    const Real32 step = .11f;
    auto fly = [&](Real32 s) {
        Vec3f v = from - at;
        v.normalize();
        from += v * s;
        at += v * s;
    };

    mgr->mouseButtonPress(SimpleSceneManager::MouseLeft, 150, 150);
    mgr->mouseMove(165, 141);
    Real32 fx, fy, tx, ty;
    normalised(150, 150, W, H, fx, fy);
    normalised(165, 141, W, H, tx, ty);
    at = rotatePoint(at, from, up, -(tx - fx));
    {
        Vec3f view = at - from;
        view.normalize();
        Vec3f side = view.cross(up);
        side.normalize();
        at = rotatePoint(at, from, side, -(fy - ty));
    }
    fly(-step);
    mgr->redraw();
    EXPECT_TRUE(matrixNear(beaconMatrix(*mgr), lookAt(from, at, up), 5e-6f));

    // idle repeats the step without turning
    mgr->idle();
    fly(-step);
    mgr->redraw();
    EXPECT_TRUE(matrixNear(beaconMatrix(*mgr), lookAt(from, at, up), 5e-6f));
    mgr->mouseButtonRelease(SimpleSceneManager::MouseLeft, 165, 141);
    mgr->idle();
    mgr->redraw();
    EXPECT_TRUE(matrixNear(beaconMatrix(*mgr), lookAt(from, at, up), 5e-6f));

    // 'j' steps to the left, 'u' turns left by pi/64
    mgr->key('j', 0, 0);
    {
        Vec3f v = (from - at).cross(up);
        v.normalize();
        from += v * step;
        at += v * step;
    }
    mgr->key('u', 0, 0);
    at = rotatePoint(at, from, up, 0.04908739f);
    mgr->redraw();
    EXPECT_TRUE(matrixNear(beaconMatrix(*mgr), lookAt(from, at, up), 5e-6f));

    // back to the trackball: the camera stays where it is
    const Matrix here = beaconMatrix(*mgr);
    mgr->setNavigationMode(Navigator::TRACKBALL);
    mgr->redraw();
    EXPECT_TRUE(matrixNear(beaconMatrix(*mgr), here, 5e-6f));
}

// NONE mode: the mouse does nothing; set(from, at, up) puts the camera at
// 'at', looking away from 'from'; setFrom keeps the camera's target (one
// unit ahead) and its up axis.
TEST_F(ManagerTest, NoneModeHoldsTheCamera)
{
    mgr->setRoot(makeTutorialTorus());
    mgr->showAll();
    mgr->redraw();

    mgr->setNavigationMode(Navigator::NONE);
    mgr->mouseButtonPress(SimpleSceneManager::MouseLeft, 150, 150);
    mgr->mouseMove(200, 100);
    mgr->mouseButtonRelease(SimpleSceneManager::MouseLeft, 200, 100);
    mgr->key('y', 0, 0);
    mgr->redraw();
    EXPECT_TRUE(matrixNear(beaconMatrix(*mgr), tutorialStart()));

    Navigator *nav = mgr->getNavigator();
    nav->set(Pnt3f(0.f, 0.f, 5.f), Pnt3f(1.f, 2.f, 3.f), Vec3f(0.f, 1.f, 0.f));
    mgr->redraw();
    EXPECT_TRUE(matrixNear(beaconMatrix(*mgr),
                           lookAt(Vec3f(1.f, 2.f, 3.f), Vec3f(2.f, 4.f, 1.f), Vec3f(0.f, 1.f, 0.f))));

    const Pnt3f at = nav->getAt();
    const Vec3f up = nav->getUp();
    nav->setFrom(Pnt3f(4.f, 2.f, 3.f));
    mgr->redraw();
    EXPECT_TRUE(matrixNear(beaconMatrix(*mgr), lookAt(Vec3f(4.f, 2.f, 3.f), at.subZero(), up), 1e-5f));
}

// Walk mode keeps the eye at ground distance + height above the ground and
// refuses a step that comes too close to a wall.
TEST_F(ManagerTest, WalkModeFollowsTheGroundAndStopsAtWalls)
{
    NodePtr scene = Node::create();
    NodePtr ground = makeBox(20.f, 1.f, 20.f, 1, 1, 1);   // top at y = 0.5
    beginEditCP(scene);
    scene->setCore(Group::create());
    scene->addChild(ground);
    endEditCP(scene);
    mgr->setRoot(scene);
    mgr->showAll();
    mgr->redraw();

    Navigator *nav = mgr->getNavigator();
    mgr->setNavigationMode(Navigator::WALK);
    nav->setMotionFactor(1.f);
    nav->set(Pnt3f(0.f, 3.f, 5.f), Pnt3f(0.f, 3.f, 4.f), Vec3f(0.f, 1.f, 0.f));

    // one step forward ('y'), lifted onto 0.5 + 0.75 + 0.85
    mgr->key('y', 0, 0);
    mgr->redraw();
    EXPECT_TRUE(matrixNear(beaconMatrix(*mgr),
                           lookAt(Vec3f(0.f, 2.1f, 4.f), Vec3f(0.f, 2.1f, 3.f),
                                  Vec3f(0.f, 1.f, 0.f)), 5e-6f));

    // a wall 0.4 ahead of the next position: the step is refused
    NodePtr wall = makeBox(4.f, 4.f, 1.2f, 1, 1, 1);
    GeometryPtr geo = GeometryPtr::dcast(wall->getCore());
    GeoPositions3fPtr pos = GeoPositions3fPtr::dcast(geo->getPositions());
    beginEditCP(pos);
    for(UInt32 i = 0; i < pos->getField().size(); ++i)
        pos->getField()[i] += Vec3f(0.f, 2.f, 2.f);   // front face at z = 2.6
    endEditCP(pos);
    beginEditCP(scene, Node::ChildrenFieldMask);
    scene->addChild(wall);
    endEditCP(scene, Node::ChildrenFieldMask);

    const Matrix before = beaconMatrix(*mgr);
    mgr->key('y', 0, 0);
    mgr->redraw();
    EXPECT_TRUE(matrixNear(beaconMatrix(*mgr), before, 0.f));
    // backwards is free
    mgr->key('h', 0, 0);
    mgr->redraw();
    EXPECT_TRUE(matrixNear(beaconMatrix(*mgr),
                           lookAt(Vec3f(0.f, 2.1f, 5.f), Vec3f(0.f, 2.1f, 4.f),
                                  Vec3f(0.f, 1.f, 0.f)), 5e-6f));
}

// calcViewRay: from the near plane through the pixel, normalised.
TEST_F(ManagerTest, ViewRayStartsOnTheNearPlane)
{
    mgr->setRoot(makeTutorialTorus());
    mgr->showAll();
    mgr->redraw();

    const Line   ray = mgr->calcViewRay(150, 150);
    const Real32 k   = std::tan(mgr->getCamera()->getFov() / 2.f);
    EXPECT_NEAR(ray.getDirection().length(), 1.f, 1e-6f);
    EXPECT_NEAR(ray.getPosition()[2], 4.8301272f - .05f, 1e-5f);
    // within half a pixel of the axis
    EXPECT_NEAR(ray.getDirection()[0], 0.f, k / 150.f);
    EXPECT_NEAR(ray.getDirection()[1], 0.f, k / 150.f);
    EXPECT_LT(ray.getDirection()[2], -.99f);

    // the upper-left corner pixel: up and to the left, at the frustum's edge
    const Line corner = mgr->calcViewRay(0, 0);
    const Vec3f d     = corner.getDirection();
    EXPECT_NEAR(d[0] / -d[2], -k, 1.5f * k / 150.f);
    EXPECT_NEAR(d[1] / -d[2], k, 1.5f * k / 150.f);
}

// The highlight: a green, unlit wireframe of the node's world box, drawn
// over what it surrounds and gone when the highlight is cleared.
TEST_F(ManagerTest, HighlightDrawsTheBoundingBox)
{
    NodePtr scene = Node::create();
    NodePtr box   = makeBox(1.f, 1.f, 1.f, 1, 1, 1);
    beginEditCP(scene);
    scene->setCore(Group::create());
    scene->addChild(makeTutorialTorus());
    scene->addChild(box);
    endEditCP(scene);
    mgr->setRoot(scene);
    mgr->showAll();
    mgr->redraw();
    const std::vector<RGBA> plain = wintest::readAll(win);

    mgr->setHighlight(box);
    EXPECT_EQ(mgr->getHighlight(), box);
    mgr->redraw();
    const std::vector<RGBA> lit = wintest::readAll(win);

    // every changed pixel is the highlight's green; they lie on the
    // outline of the box's front face, 0.5 / (4.83 - 0.5) / tan(30 deg)
    // of the half width from the middle: pixels 120 to 180
    const RGBA green = {0, 255, 0, 255};
    Int32 minX = W, maxX = -1, minY = H, maxY = -1, changed = 0;
    for(Int32 y = 0; y < H; ++y)
        for(Int32 x = 0; x < W; ++x)
        {
            const UInt32 i = y * W + x;
            if(lit[i] == plain[i])
                continue;
            ++changed;
            EXPECT_EQ(lit[i], green) << "at " << x << ", " << y;
            minX = std::min(minX, x);
            maxX = std::max(maxX, x);
            minY = std::min(minY, y);
            maxY = std::max(maxY, y);
        }
    const Real32 half = .5f / (4.8301272f - .5f) / std::tan(mgr->getCamera()->getFov() / 2.f) * 150.f;
    EXPECT_GT(changed, 4 * Int32(half));
    EXPECT_NEAR(minX, 150.f - half, 1.5f);
    EXPECT_NEAR(maxX, 150.f + half, 1.5f);
    EXPECT_NEAR(minY, 150.f - half, 1.5f);
    EXPECT_NEAR(maxY, 150.f + half, 1.5f);

    // the box follows its node
    GeometryPtr geo = GeometryPtr::dcast(box->getCore());
    GeoPositions3fPtr pos = GeoPositions3fPtr::dcast(geo->getPositions());
    beginEditCP(pos);
    for(UInt32 i = 0; i < pos->getField().size(); ++i)
        pos->getField()[i] += Vec3f(.25f, 0.f, 0.f);
    endEditCP(pos);
    beginEditCP(geo, Geometry::PositionsFieldMask);
    endEditCP(geo, Geometry::PositionsFieldMask);
    mgr->redraw();
    const std::vector<RGBA> moved = wintest::readAll(win);
    Int32 movedMaxX = -1;
    for(Int32 y = 0; y < H; ++y)
        for(Int32 x = 0; x < W; ++x)
            if(moved[y * W + x] == green)
                movedMaxX = std::max(movedMaxX, x);
    EXPECT_NEAR(movedMaxX, 150.f + half * 1.5f, 1.5f);

    mgr->setHighlight(NullFC);
    mgr->redraw();
    const std::vector<RGBA> cleared = wintest::readAll(win);
    for(const RGBA &c : cleared)
        ASSERT_NE(c, green);
}

// The headlight shines along the view: a face looking at the eye gets
// ambient (GL's global 0.2 + the headlight's 0.3) * 0.1 + diffuse; without
// it only the global ambient remains.
TEST_F(ManagerTest, HeadlightOnAndOff)
{
    // showAll makes the cube's front face fill the window
    NodePtr box = makeBox(2.f, 2.f, 2.f, 1, 1, 1);
    SimpleMaterialPtr mat = SimpleMaterial::create();
    beginEditCP(mat);
    mat->setAmbient(Color3f(.1f, .1f, .1f));
    mat->setDiffuse(Color3f(.4f, .3f, .2f));
    mat->setSpecular(Color3f(0.f, 0.f, 0.f));
    endEditCP(mat);
    GeometryPtr geo = GeometryPtr::dcast(box->getCore());
    beginEditCP(geo, Geometry::MaterialFieldMask);
    geo->setMaterial(mat);
    endEditCP(geo, Geometry::MaterialFieldMask);

    mgr->setRoot(box);
    mgr->showAll();
    mgr->redraw();

    auto expectEverywhere = [&](Real32 r, Real32 g, Real32 b) {
        const std::vector<RGBA> px = wintest::readAll(win);
        const RGBA want = wintest::toRGBA(r, g, b);
        size_t off = 0;
        for(const RGBA &c : px)
            off += std::abs(c.r - want.r) > 1 || std::abs(c.g - want.g) > 1 ||
                   std::abs(c.b - want.b) > 1;
        EXPECT_EQ(off, 0u) << "want " << want << ", the middle is " << pixel(150, 150);
    };
    expectEverywhere(.05f + .4f, .05f + .3f, .05f + .2f);
    EXPECT_TRUE(mgr->getHeadlightState());

    mgr->turnHeadlightOff();
    EXPECT_FALSE(mgr->getHeadlightState());
    mgr->redraw();
    expectEverywhere(.02f, .02f, .02f);

    mgr->setHeadlight(true);
    mgr->redraw();
    expectEverywhere(.05f + .4f, .05f + .3f, .05f + .2f);
}

// Resizing goes through to the window; the view keeps its vertical field
// of view. A zero-sized window renders nothing and ignores mouse motion.
TEST_F(ManagerTest, ResizeAndZeroSize)
{
    mgr->setRoot(makeTutorialTorus());
    mgr->showAll();
    mgr->redraw();

    mgr->resize(200, 100);
    mgr->redraw();
    EXPECT_EQ(win->getWidth(), 200);
    EXPECT_EQ(win->getHeight(), 100);
    // the tube's lit front at 0.8 of the half height right of the middle
    EXPECT_GT(pixel(140, 50).r, 200);
    EXPECT_EQ(pixel(100, 50), (RGBA{0, 0, 0, 255}));

    const Matrix before = beaconMatrix(*mgr);
    mgr->resize(0, 0);
    {
        LogCapture log(LOG_WARNING);
        mgr->redraw();
        mgr->mouseButtonPress(SimpleSceneManager::MouseLeft, 10, 10);
        mgr->mouseMove(40, 20);
        mgr->mouseButtonRelease(SimpleSceneManager::MouseLeft, 40, 20);
        mgr->redraw();
        // nothing to draw and nothing to complain about
        EXPECT_EQ(log.take(), "");
    }
    EXPECT_TRUE(matrixNear(beaconMatrix(*mgr), before, 0.f));

    mgr->resize(300, 300);
    mgr->redraw();
    EXPECT_GT(pixel(270, 150).r, 200);
}

// Misuse: no window, unknown buttons, a highlight before anything else.
TEST(ManagerBadInput, NoWindowLogsAndDoesNothing)
{
    SimpleSceneManager mgr;
    LogCapture log(LOG_WARNING);
    NodePtr torus = makeTutorialTorus();
    addRefCP(torus);
    mgr.setRoot(torus);
    mgr.showAll();
    mgr.redraw();
    mgr.mouseButtonPress(SimpleSceneManager::MouseLeft, 1, 1);
    mgr.mouseMove(5, 5);
    mgr.mouseButtonRelease(SimpleSceneManager::MouseLeft, 5, 5);
    mgr.idle();
    EXPECT_EQ(mgr.getRoot(), NullFC);
    EXPECT_EQ(mgr.calcViewRay(1, 1).getDirection(), Vec3f(0.f, 0.f, 0.f));
    EXPECT_NE(log.str().find("SimpleSceneManager::initialize: window not set, ignoring!"),
              std::string::npos);
    subRefCP(torus);
}

TEST_F(ManagerTest, UnknownButtonsAndKeysAreIgnored)
{
    mgr->setRoot(makeTutorialTorus());
    mgr->showAll();
    mgr->redraw();
    const Matrix before = beaconMatrix(*mgr);

    mgr->mouseButtonPress(7, 100, 100);
    mgr->mouseMove(130, 120);
    mgr->mouseButtonRelease(7, 130, 120);
    mgr->mouseButtonPress(40000, 100, 100);
    mgr->mouseButtonRelease(40000, 100, 100);
    mgr->key('x', 0, 0);
    mgr->getNavigator()->keyPress(99, 0, 0);
    mgr->getNavigator()->buttonPress(-3, 0, 0);
    mgr->redraw();
    EXPECT_TRUE(matrixNear(beaconMatrix(*mgr), before, 0.f));
}

} // namespace
