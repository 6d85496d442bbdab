// Camera matrices against values worked out by hand, the decorator
// forwarding rules, and picking rays.
#include <OpenSG/OSGCameraDecorator.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGMatrixCamera.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPassiveWindow.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGShearedStereoCameraDecorator.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>

#include <gtest/gtest.h>

#include <cmath>

using namespace osg;

namespace
{

void expectMatrixNear(const Matrix &m, const Matrix &expected,
                      Real32 tol = 1e-5f)
{
    for(UInt32 c = 0; c < 4; ++c)
        for(UInt32 r = 0; r < 4; ++r)
            EXPECT_NEAR(m[c][r], expected[c][r], tol)
                << "column " << c << " row " << r;
}

// glFrustum(-x, x, -y, y, n, f), written out.
Matrix frustum(Real32 x, Real32 y, Real32 n, Real32 f)
{
    return Matrix(n / x, 0, 0, 0,                       //
                  0, n / y, 0, 0,                       //
                  0, 0, -(f + n) / (f - n), -2 * f * n / (f - n), //
                  0, 0, -1, 0);
}

NodePtr transformNode(const Matrix &m)
{
    TransformPtr t = Transform::create();
    beginEditCP(t);
    t->setMatrix(m);
    endEditCP(t);

    NodePtr n = Node::create();
    beginEditCP(n);
    n->setCore(t);
    endEditCP(n);
    return n;
}

PerspectiveCameraPtr perspective(Real32 fov, Real32 n, Real32 f)
{
    PerspectiveCameraPtr cam = PerspectiveCamera::create();
    beginEditCP(cam);
    cam->setFov(fov);
    cam->setNear(n);
    cam->setFar(f);
    endEditCP(cam);
    return cam;
}

// clip = P * (p, 1), returned divided by w.
Pnt3f project(const Matrix &m, const Pnt3f &p)
{
    Pnt3f r;
    m.multFull(p, r);
    return r;
}

} // namespace

TEST(PerspectiveCameraTest, ProjectionForEachFovMode)
{
    PerspectiveCameraPtr cam = perspective(Pi / 2.f, 1.f, 10.f);
    addRefCP(cam);

    // 200 x 100: effective aspect 2, vertical fov 90 degrees.
    Matrix m;
    cam->getProjection(m, 200, 100);
    expectMatrixNear(m, frustum(2.f, 1.f, 1.f, 10.f));

    // The same angle given in degrees.
    beginEditCP(cam);
    cam->setFov(90.f);
    endEditCP(cam);
    cam->getProjection(m, 200, 100);
    expectMatrixNear(m, frustum(2.f, 1.f, 1.f, 10.f));

    beginEditCP(cam);
    cam->setFovMode(PerspectiveCamera::FOV_horizontal);
    endEditCP(cam);
    cam->getProjection(m, 200, 100);
    expectMatrixNear(m, frustum(1.f, 0.5f, 1.f, 10.f));

    // Smaller extent: the height here, the width in a tall viewport.
    beginEditCP(cam);
    cam->setFovMode(PerspectiveCamera::FOV_smaller);
    endEditCP(cam);
    cam->getProjection(m, 200, 100);
    expectMatrixNear(m, frustum(2.f, 1.f, 1.f, 10.f));
    cam->getProjection(m, 100, 200);
    expectMatrixNear(m, frustum(1.f, 2.f, 1.f, 10.f));

    // The pixel aspect multiplies the viewport's.
    beginEditCP(cam);
    cam->setFovMode(PerspectiveCamera::FOV_vertical);
    cam->setAspect(0.5f);
    endEditCP(cam);
    cam->getProjection(m, 200, 100);
    expectMatrixNear(m, frustum(1.f, 1.f, 1.f, 10.f));

    // Projection translation is the identity for a plain camera.
    Matrix pt;
    pt.setTranslate(1.f, 2.f, 3.f);
    cam->getProjectionTranslation(pt, 200, 100);
    expectMatrixNear(pt, Matrix());

    subRefCP(cam);
}

TEST(PerspectiveCameraTest, BadParametersGiveIdentity)
{
    PerspectiveCameraPtr cam = perspective(Pi / 2.f, 10.f, 1.f);
    addRefCP(cam);

    Matrix m;
    m.setScale(3.f);

    {
        LogCapture log(LOG_WARNING);
        cam->getProjection(m, 64, 64);
        EXPECT_NE(log.take().find("MatrixPerspective: near 10 > far 1!"),
                  std::string::npos);
    }
    expectMatrixNear(m, Matrix());

    // An empty viewport: identity without a word.
    beginEditCP(cam);
    cam->setNear(1.f);
    cam->setFar(10.f);
    endEditCP(cam);
    m.setScale(3.f);
    {
        LogCapture log(LOG_WARNING);
        cam->getProjection(m, 0, 64);
        EXPECT_EQ(log.take(), "");
    }
    expectMatrixNear(m, Matrix());

    beginEditCP(cam);
    cam->setFovMode(7);
    endEditCP(cam);
    m.setScale(3.f);
    cam->getProjection(m, 64, 64);
    expectMatrixNear(m, Matrix());

    subRefCP(cam);
}

TEST(CameraTest, ViewingIsTheInverseOfTheBeacon)
{
    // Camera at (1, 2, 3), turned 90 degrees about y: it looks down -x.
    Matrix toWorld;
    toWorld.setTransform(Vec3f(1, 2, 3), Quaternion(Vec3f(0, 1, 0), Pi / 2.f));

    NodePtr beacon = transformNode(toWorld);
    addRefCP(beacon);

    PerspectiveCameraPtr cam = perspective(Pi / 2.f, 1.f, 10.f);
    addRefCP(cam);
    beginEditCP(cam);
    cam->setBeacon(beacon);
    endEditCP(cam);

    Matrix v;
    cam->getViewing(v, 100, 100);

    Pnt3f eye = project(v, Pnt3f(1, 2, 3));
    Pnt3f ahead = project(v, Pnt3f(-4, 2, 3)); // 5 units down -x
    for(int k = 0; k < 3; ++k)
        EXPECT_NEAR(eye[k], 0.f, 1e-5f);
    EXPECT_NEAR(ahead[0], 0.f, 1e-5f);
    EXPECT_NEAR(ahead[1], 0.f, 1e-5f);
    EXPECT_NEAR(ahead[2], -5.f, 1e-5f);

    // Without a beacon: a warning and the matrix as it was.
    beginEditCP(cam);
    cam->setBeacon(NullFC);
    endEditCP(cam);
    Matrix keep;
    keep.setScale(2.f);
    {
        LogCapture log(LOG_WARNING);
        cam->getViewing(keep, 100, 100);
        EXPECT_NE(log.take().find("Camera::setup: no beacon!"),
                  std::string::npos);
    }
    EXPECT_FLOAT_EQ(keep[0][0], 2.f);

    subRefCP(cam);
    subRefCP(beacon);
}

TEST(CameraTest, WorldToScreenFrustumAndViewRay)
{
    // Camera at z = 5 looking down -z, 90 degrees, square 100 x 100 port
    // in the upper right quarter of a 200 x 200 window.
    Matrix toWorld;
    toWorld.setTranslate(0.f, 0.f, 5.f);
    NodePtr beacon = transformNode(toWorld);
    addRefCP(beacon);

    PerspectiveCameraPtr cam = perspective(Pi / 2.f, 1.f, 10.f);
    addRefCP(cam);
    beginEditCP(cam);
    cam->setBeacon(beacon);
    endEditCP(cam);

    PassiveWindowPtr win = PassiveWindow::create();
    addRefCP(win);
    win->setSize(200, 200);

    ViewportPtr port = Viewport::create();
    addRefCP(port);
    beginEditCP(port);
    port->setSize(0.5f, 0.5f, 1.f, 1.f);
    endEditCP(port);
    win->addPort(port);

    Matrix w2s;
    cam->getWorldToScreen(w2s, *port);
    Pnt3f c = project(w2s, Pnt3f(5, -5, 0)); // 5 in front, at 45 degrees
    EXPECT_NEAR(c[0], 1.f, 1e-5f);
    EXPECT_NEAR(c[1], -1.f, 1e-5f);

    FrustumVolume f;
    cam->getFrustum(f, *port);
    EXPECT_TRUE(f.intersect(Pnt3f(0, 0, 0)));
    EXPECT_TRUE(f.intersect(Pnt3f(4.9f, 4.9f, 0)));
    EXPECT_FALSE(f.intersect(Pnt3f(5.1f, 0, 0)));
    EXPECT_FALSE(f.intersect(Pnt3f(0, 0, 6)));    // behind the camera
    EXPECT_FALSE(f.intersect(Pnt3f(0, 0, -5.5f))); // beyond far

    // The port's centre is window pixel (150, 50) counted from the top.
    Line   ray;
    Real32 t = 0.f;
    ASSERT_TRUE(cam->calcViewRay(ray, 150, 50, *port, &t));
    EXPECT_NEAR(ray.getPosition()[2], 4.f, 1e-4f); // on the near plane
    EXPECT_NEAR(ray.getDirection()[2], -1.f, 1e-5f);
    EXPECT_NEAR(t, 9.f, 1e-3f);

    // The port's upper left corner: through (-1, 1) on the near plane.
    ASSERT_TRUE(cam->calcViewRay(ray, 100, 0, *port));
    EXPECT_NEAR(ray.getPosition()[0], -1.f, 1e-4f);
    EXPECT_NEAR(ray.getPosition()[1], 1.f, 1e-4f);
    EXPECT_NEAR(ray.getDirection()[0], ray.getDirection()[2], 1e-5f);

    win->subPort(port);
    {
        LogCapture log(LOG_WARNING);
        EXPECT_FALSE(cam->calcViewRay(ray, 0, 0, *port));
        EXPECT_NE(log.take().find("Camera::calcViewRay: viewport has no "
                                  "parent window!"),
                  std::string::npos);
    }

    subRefCP(port);
    subRefCP(win);
    subRefCP(cam);
    subRefCP(beacon);
}

TEST(CameraTest, MatrixCameraIgnoresSizeAndBeacon)
{
    MatrixCameraPtr cam = MatrixCamera::create();
    addRefCP(cam);

    Matrix p, v;
    MatrixOrthogonal(p, 0.f, 1.f, 0.f, 1.f, -1.f, 1.f);
    v.setTranslate(1.f, 2.f, 3.f);

    beginEditCP(cam);
    cam->setProjectionMatrix(p);
    cam->setModelviewMatrix(v);
    cam->setBeacon(transformNode(Matrix()));
    endEditCP(cam);

    Matrix m;
    cam->getProjection(m, 7, 900);
    expectMatrixNear(m, p);
    cam->getViewing(m, 300, 2);
    expectMatrixNear(m, v);

    NodePtr beacon = cam->getBeacon();
    subRefCP(cam);
    subRefCP(beacon);
}

TEST(CameraDecoratorTest, ForwardsToTheDecoratee)
{
    NodePtr beacon = transformNode(Matrix());
    addRefCP(beacon);

    PerspectiveCameraPtr cam = perspective(Pi / 3.f, 0.5f, 50.f);
    addRefCP(cam);

    ShearedStereoCameraDecoratorPtr deco = ShearedStereoCameraDecorator::create();
    addRefCP(deco);
    beginEditCP(deco);
    deco->setDecoratee(cam);
    endEditCP(deco);

    // Through the decorator: the decoratee's fields, edited there.
    EXPECT_FLOAT_EQ(deco->getNear(), 0.5f);
    EXPECT_FLOAT_EQ(deco->getFar(), 50.f);
    deco->setNear(0.25f);
    deco->setBeacon(beacon);
    EXPECT_FLOAT_EQ(cam->getNear(), 0.25f);
    EXPECT_EQ(cam->getBeacon(), beacon);

    // Through a plain camera pointer: the decorator's own, unused fields.
    CameraPtr plain = deco;
    EXPECT_FLOAT_EQ(plain->getNear(), 0.f);
    EXPECT_EQ(plain->getBeacon(), NullFC);

    // The library's walk from the action's raw camera pointer.
    Camera *raw = plain.getCPtr();
    bool    leftEye = true;
    while(CameraDecorator *d = dynamic_cast<CameraDecorator *>(raw))
    {
        if(StereoCameraDecorator *s = dynamic_cast<StereoCameraDecorator *>(d))
        {
            leftEye = s->getLeftEye();
            break;
        }
        raw = d->getDecoratee().getCPtr();
    }
    EXPECT_FALSE(leftEye);

    // No separation: exactly the decoratee's matrices.
    Matrix a, b;
    deco->getProjection(a, 64, 48);
    cam->getProjection(b, 64, 48);
    expectMatrixNear(a, b);
    deco->getViewing(a, 64, 48);
    cam->getViewing(b, 64, 48);
    expectMatrixNear(a, b);

    // Without a decoratee: a warning and identity.
    beginEditCP(deco);
    deco->setDecoratee(NullFC);
    endEditCP(deco);
    {
        LogCapture log(LOG_WARNING);
        a.setScale(4.f);
        deco->getViewing(a, 64, 48);
        EXPECT_NE(log.take().find("CameraDecorator::getViewing: no decoratee!"),
                  std::string::npos);
    }
    expectMatrixNear(a, Matrix());

    // Only perspective cameras can be sheared.
    MatrixCameraPtr other = MatrixCamera::create();
    addRefCP(other);
    beginEditCP(deco);
    deco->setDecoratee(other);
    deco->setEyeSeparation(0.1f);
    endEditCP(deco);
    {
        LogCapture log(LOG_WARNING);
        a.setScale(4.f);
        deco->getProjection(a, 64, 48);
        EXPECT_NE(log.take().find("can only decorate PerspectiveCameras!"),
                  std::string::npos);
    }
    expectMatrixNear(a, Matrix());

    subRefCP(deco);
    subRefCP(other);
    subRefCP(cam);
    subRefCP(beacon);
}

TEST(CameraDecoratorTest, ShearedStereoMeetsAtZeroParallax)
{
    PerspectiveCameraPtr cam = perspective(Pi / 2.f, 1.f, 100.f);
    addRefCP(cam);

    ShearedStereoCameraDecoratorPtr left  = ShearedStereoCameraDecorator::create();
    ShearedStereoCameraDecoratorPtr right = ShearedStereoCameraDecorator::create();
    addRefCP(left);
    addRefCP(right);

    for(ShearedStereoCameraDecoratorPtr d : {left, right})
    {
        beginEditCP(d);
        d->setDecoratee(cam);
        d->setEyeSeparation(0.5f);
        d->setZeroParallaxDistance(5.f);
        d->setLeftEye(d == left);
        endEditCP(d);
    }

    Matrix pl, pr;
    left->getProjection(pl, 100, 100);
    right->getProjection(pr, 100, 100);

    // On the zero-parallax plane both eyes see a point at the same spot.
    for(const Pnt3f &p : {Pnt3f(0, 0, -5), Pnt3f(2, 1, -5)})
    {
        Pnt3f l = project(pl, p), r = project(pr, p);
        EXPECT_NEAR(l[0], r[0], 1e-5f);
        EXPECT_NEAR(l[1], r[1], 1e-5f);
    }

    // Far behind it the left eye sees the point further left than the
    // right eye does (uncrossed parallax), symmetrically.
    Pnt3f l = project(pl, Pnt3f(0, 0, -50)), r = project(pr, Pnt3f(0, 0, -50));
    EXPECT_LT(l[0], 0.f);
    EXPECT_NEAR(l[0], -r[0], 1e-5f);

    // The left eye's frustum: the scene moved by +sep/2, the window on the
    // near plane by sep/2 * near / zpd. Worked out: x in [-0.95, 1.05].
    Matrix expected;
    MatrixFrustum(expected, -1.f + 0.05f, 1.f + 0.05f, -1.f, 1.f, 1.f, 100.f);
    Matrix shift;
    shift.setTranslate(0.25f, 0.f, 0.f);
    expected.mult(shift);
    expectMatrixNear(pl, expected);

    subRefCP(left);
    subRefCP(right);
    subRefCP(cam);
}
