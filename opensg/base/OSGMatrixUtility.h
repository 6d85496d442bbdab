/// Builders for projection and camera matrices.
#ifndef _OSGMATRIXUTILITY_H_
#define _OSGMATRIXUTILITY_H_

#include <OpenSG/OSGBaseTypes.h>
#include <OpenSG/OSGMatrix.h>
#include <OpenSG/OSGVector.h>

OSG_BEGIN_NAMESPACE

/// OpenGL perspective projection. As in OpenSG, rFovy is HALF the vertical
/// field of view in radians (a camera passes fov / 2). near > far, fovy <=
/// Eps, near ~= far or aspect < Eps: warning, identity, false.
bool MatrixPerspective(Matrix &result, Real32 rFovy, Real32 rAspect,
                       Real32 rNear, Real32 rFar);

/// glFrustum. An empty extent on any axis: identity, false.
bool MatrixFrustum(Matrix &result, Real32 rLeft, Real32 rRight,
                   Real32 rBottom, Real32 rTop, Real32 rNear, Real32 rFar);

/// glOrtho. An empty extent on any axis: identity, false.
bool MatrixOrthogonal(Matrix &result, Real32 rLeft, Real32 rRight,
                      Real32 rBottom, Real32 rTop, Real32 rNear, Real32 rFar);

/// The camera-to-world matrix of a camera at from looking at at: columns
/// x, y, z (z = normalised from - at, the camera looks down -z) and the
/// position from. Its inverse is the view matrix. Returns false on
/// success; from == at or up parallel to the view direction: true, and
/// result is left as it was.
bool MatrixLookAt(Matrix &result, Pnt3f from, Pnt3f at, Vec3f up);
bool MatrixLookAt(Matrix &result, Real32 fromx, Real32 fromy, Real32 fromz,
                  Real32 atx, Real32 aty, Real32 atz, Real32 upx, Real32 upy,
                  Real32 upz);

OSG_END_NAMESPACE

#endif
