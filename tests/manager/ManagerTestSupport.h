// Helpers of the SimpleSceneManager tests: the scenes, and the camera
// arithmetic written out independently of the navigator classes (plain
// float formulas, rotations by Rodrigues' formula instead of quaternions).
#ifndef _MANAGERTESTSUPPORT_H_
#define _MANAGERTESTSUPPORT_H_

#include "window/WindowTestSupport.h"

#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSimpleSceneManager.h>

#include <gtest/gtest.h>

#include <cmath>

namespace mgrtest
{

using namespace osg;

/// OpenSG's first tutorial's scene.
inline NodePtr makeTutorialTorus(void)
{
    return makeTorus(.5f, 2.f, 16, 16);
}

/// The bounds of every position of every geometry below node (no
/// transforms in these scenes), read straight from the properties.
inline void positionBounds(const NodePtr &node, Pnt3f &min, Pnt3f &max)
{
    GeometryPtr geo = GeometryPtr::dcast(node->getCore());
    if(geo != NullFC)
    {
        GeoPositions3fPtr pos = GeoPositions3fPtr::dcast(geo->getPositions());
        for(UInt32 i = 0; i < pos->getField().size(); ++i)
        {
            const Pnt3f &p = pos->getField()[i];
            for(UInt32 k = 0; k < 3; ++k)
            {
                min[k] = std::min(min[k], p[k]);
                max[k] = std::max(max[k], p[k]);
            }
        }
    }
    for(UInt32 c = 0; c < node->getNChildren(); ++c)
        positionBounds(node->getChild(c), min, max);
}

/// Camera to world of an eye at from looking at at: columns right, up,
/// back (from - at), from.
inline Matrix lookAt(const Vec3f &from, const Vec3f &at, const Vec3f &up)
{
    Vec3f back = from - at;
    back.normalize();
    Vec3f right = up.cross(back);
    right.normalize();
    const Vec3f newUp = back.cross(right);

    Matrix m;
    m.setValue(right, newUp, back, from);
    return m;
}

/// The rotation by angle (radians) about axis, Rodrigues' formula.
inline Matrix axisRotation(Vec3f axis, Real32 angle)
{
    Matrix m;
    if(axis.length() < 1e-6f)
        return m;
    axis.normalize();
    const Real32 c = std::cos(angle), s = std::sin(angle), t = 1.f - c;
    const Real32 x = axis[0], y = axis[1], z = axis[2];
    m.setValue(Vec3f(t * x * x + c, t * x * y + s * z, t * x * z - s * y),
               Vec3f(t * x * y - s * z, t * y * y + c, t * y * z + s * x),
               Vec3f(t * x * z + s * y, t * y * z - s * x, t * z * z + c),
               Vec3f(0.f, 0.f, 0.f));
    return m;
}

inline Vec3f rotatePoint(const Vec3f &p, const Vec3f &centre, const Vec3f &axis,
                         Real32 angle)
{
    Vec3f r;
    axisRotation(axis, angle).mult(p - centre, r);
    return centre + r;
}

/// Window pixel (y from the top) to the trackball's coordinates of a
/// w x h viewport filling the window.
inline void normalised(Int16 x, Int16 y, Real32 w, Real32 h, Real32 &nx, Real32 &ny)
{
    nx = (2.f * x - w) / w;
    ny = (2.f * (h - y) - h) / h;
}

/// The virtual trackball's rotation from one normalised position to
/// another, for a sphere of radius r.
inline Matrix trackballRotation(Real32 fx, Real32 fy, Real32 tx, Real32 ty,
                                Real32 r = 0.8f)
{
    auto sheet = [r](Real32 x, Real32 y) {
        const Real32 d = std::sqrt(x * x + y * y);
        return d < r * 0.70710678f ? std::sqrt(r * r - d * d)
                                   : (r / 1.41421356f) * (r / 1.41421356f) / d;
    };
    const Vec3f p1(fx, fy, sheet(fx, fy)), p2(tx, ty, sheet(tx, ty));
    const Real32 t     = std::min(1.f, std::max(-1.f, (p1 - p2).length() / (2.f * r)));
    return axisRotation(p2.cross(p1), 2.f * std::asin(t));
}

inline Matrix translation(Real32 x, Real32 y, Real32 z)
{
    Matrix m;
    m.setTranslate(x, y, z);
    return m;
}

inline Matrix product(Matrix a, const Matrix &b)
{
    a.mult(b);
    return a;
}

/// The matrix of the camera beacon's Transform.
inline Matrix beaconMatrix(SimpleSceneManager &mgr)
{
    TransformPtr t = TransformPtr::dcast(mgr.getCamera()->getBeacon()->getCore());
    return t->getMatrix();
}

/// Every element within tol (absolute) of the expected one.
inline ::testing::AssertionResult matrixNear(const Matrix &got, const Matrix &want,
                                             Real32 tol = 2e-6f)
{
    for(UInt32 c = 0; c < 4; ++c)
        for(UInt32 r = 0; r < 4; ++r)
            if(!(std::fabs(got[c][r] - want[c][r]) <= tol))
                return ::testing::AssertionFailure()
                       << "element [" << c << "][" << r << "] is " << got[c][r]
                       << ", expected " << want[c][r] << "\n got " << got
                       << "\n want " << want;
    return ::testing::AssertionSuccess();
}

/// Renders the tutorial scene with a fresh manager on a headless window of
/// w x h and returns its pixels (bottom row first); empty without EGL.
inline std::vector<wintest::RGBA> headlessTutorialFrame(UInt16 w, UInt16 h)
{
    EGLWindowPtr win = wintest::makeWindow(w, h);
    if(win == NullFC)
        return {};

    std::vector<wintest::RGBA> px;
    {
        SimpleSceneManager mgr;
        mgr.setWindow(win);
        mgr.setRoot(makeTutorialTorus());
        mgr.showAll();
        mgr.redraw();
        px = wintest::readAll(win);
    }
    win->deactivate();
    subRefCP(win);
    return px;
}

} // namespace mgrtest

#endif
