#include <OpenSG/OSGFlyNavigator.h>

#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGQuaternion.h>

OSG_BEGIN_NAMESPACE

FlyNavigator::FlyNavigator(void) :
    _rFrom(0.f, 0.f, 0.f),
    _rAt(0.f, 0.f, 1.f),
    _vUp(0.f, 1.f, 0.f),
    _tMatrix()
{
}

FlyNavigator::~FlyNavigator(void)
{
}

Matrix &FlyNavigator::getMatrix(void)
{
    MatrixLookAt(_tMatrix, _rFrom, _rAt, _vUp);
    return _tMatrix;
}

Pnt3f &FlyNavigator::getFrom(void)
{
    return _rFrom;
}

Pnt3f &FlyNavigator::getAt(void)
{
    return _rAt;
}

Vec3f &FlyNavigator::getUp(void)
{
    return _vUp;
}

void FlyNavigator::setFrom(Pnt3f new_from)
{
    _rFrom = new_from;
}

void FlyNavigator::setAt(Pnt3f new_at)
{
    _rAt = new_at;
}

void FlyNavigator::setUp(Vec3f new_up)
{
    _vUp = new_up;
}

void FlyNavigator::set(Pnt3f new_from, Pnt3f new_at, Vec3f new_up)
{
    _rFrom = new_from;
    _rAt   = new_at;
    _vUp   = new_up;
}

void FlyNavigator::set(const Matrix &new_matrix)
{
    _rFrom = Pnt3f(new_matrix[3][0], new_matrix[3][1], new_matrix[3][2]);
    _rAt   = _rFrom - Vec3f(new_matrix[2][0], new_matrix[2][1], new_matrix[2][2]);
    _vUp   = Vec3f(new_matrix[1][0], new_matrix[1][1], new_matrix[1][2]);
}

namespace
{

// Turns p about the axis through centre by angle (radians), as
// translate(centre) * rotation * translate(-centre) applied to p.
Pnt3f turnAbout(const Pnt3f &p, const Pnt3f &centre, const Vec3f &axis,
                Real32 angle)
{
    Matrix to, rot, back;
    to.setTranslate(centre[0], centre[1], centre[2]);
    Quaternion(axis, angle).getValue(rot);
    back.setTranslate(-centre[0], -centre[1], -centre[2]);

    Matrix m = to;
    m.mult(rot);
    m.mult(back);

    Pnt3f r;
    m.mult(p, r);
    return r;
}

} // namespace

void FlyNavigator::rotate(Real32 deltaX, Real32 deltaY)
{
    _rAt = turnAbout(_rAt, _rFrom, _vUp, -deltaX);

    Vec3f view = _rAt - _rFrom;
    view.normalize();
    Vec3f side = view.cross(_vUp);
    side.normalize();

    _rAt = turnAbout(_rAt, _rFrom, side, -deltaY);
}

Real32 FlyNavigator::forward(Real32 step)
{
    Vec3f v = _rFrom - _rAt;
    v.normalize();
    v *= step;

    _rFrom += v;
    _rAt += v;
    return 0.f;
}

Real32 FlyNavigator::right(Real32 step)
{
    Vec3f v = (_rFrom - _rAt).cross(_vUp);
    v.normalize();
    v *= step;

    _rFrom += v;
    _rAt += v;
    return 0.f;
}

OSG_END_NAMESPACE
