#include <OpenSG/OSGMatrixUtility.h>

#include <OpenSG/OSGBaseFunctions.h>
#include <OpenSG/OSGLog.h>

OSG_BEGIN_NAMESPACE

bool MatrixPerspective(Matrix &result, Real32 rFovy, Real32 rAspect,
                       Real32 rNear, Real32 rFar)
{
    bool error = false;

    if(rNear > rFar)
    {
        SWARNING << "MatrixPerspective: near " << rNear << " > far " << rFar
                 << "!" << std::endl;
        error = true;
    }
    if(rFovy <= Eps)
    {
        SWARNING << "MatrixPerspective: fov " << rFovy << " very small!"
                 << std::endl;
        error = true;
    }
    if(osgabs(rNear - rFar) < Eps)
    {
        SWARNING << "MatrixPerspective: near " << rNear << " ~= far " << rFar
                 << "!" << std::endl;
        error = true;
    }
    if(rAspect < Eps)
    {
        SWARNING << "MatrixPerspective: aspect ratio " << rAspect
                 << " very small!" << std::endl;
        error = true;
    }
    if(error)
    {
        result.setIdentity();
        return false;
    }

    Real32 y = osgtan(rFovy) * rNear;
    Real32 x = y * rAspect;
    return MatrixFrustum(result, -x, x, -y, y, rNear, rFar);
}

bool MatrixFrustum(Matrix &result, Real32 rLeft, Real32 rRight,
                   Real32 rBottom, Real32 rTop, Real32 rNear, Real32 rFar)
{
    Real32 w = rRight - rLeft;
    Real32 h = rTop - rBottom;
    Real32 d = rFar - rNear;
    if(w == 0.f || h == 0.f || d == 0.f)
    {
        result.setIdentity();
        return false;
    }

    Real32 n2 = 2.f * rNear;
    result.setValue(n2 / w, 0.f,    (rRight + rLeft) / w,  0.f,
                    0.f,    n2 / h, (rTop + rBottom) / h,  0.f,
                    0.f,    0.f,    -(rFar + rNear) / d,   -n2 * rFar / d,
                    0.f,    0.f,    -1.f,                  0.f);
    return true;
}

bool MatrixOrthogonal(Matrix &result, Real32 rLeft, Real32 rRight,
                      Real32 rBottom, Real32 rTop, Real32 rNear, Real32 rFar)
{
    Real32 w = rRight - rLeft;
    Real32 h = rTop - rBottom;
    Real32 d = rFar - rNear;
    if(w == 0.f || h == 0.f || d == 0.f)
    {
        result.setIdentity();
        return false;
    }

    result.setValue(2.f / w, 0.f,     0.f,      -(rRight + rLeft) / w,
                    0.f,     2.f / h, 0.f,      -(rTop + rBottom) / h,
                    0.f,     0.f,     -2.f / d, -(rFar + rNear) / d,
                    0.f,     0.f,     0.f,      1.f);
    return true;
}

bool MatrixLookAt(Matrix &result, Pnt3f from, Pnt3f at, Vec3f up)
{
    // true means failure: up along the view direction (or from == at)
    // leaves the matrix as it was
    Vec3f view = from - at;
    view.normalize();
    Vec3f right = up.cross(view);
    if(right.dot(right) < Eps)
        return true;
    right.normalize();
    Vec3f newUp = view.cross(right);

    result.setIdentity();
    result.setValue(right, newUp, view, from.subZero());
    return false;
}

bool MatrixLookAt(Matrix &result, Real32 fromx, Real32 fromy, Real32 fromz,
                  Real32 atx, Real32 aty, Real32 atz, Real32 upx, Real32 upy,
                  Real32 upz)
{
    return MatrixLookAt(result, Pnt3f(fromx, fromy, fromz),
                        Pnt3f(atx, aty, atz), Vec3f(upx, upy, upz));
}

OSG_END_NAMESPACE
