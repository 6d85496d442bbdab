#include <OpenSG/OSGTrackballNavigator.h>

#include <OpenSG/OSGBaseFunctions.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGQuaternion.h>

OSG_BEGIN_NAMESPACE

TrackballNavigator::TrackballNavigator(Real32 rSize) :
    _rRadius(rSize),
    _rDistance(1.f),
    _tMatrix(),
    _finalMatrix(),
    _pFrom(0.f, 0.f, 0.f),
    _pAt(0.f, 0.f, 1.f),
    _vUp(0.f, 1.f, 0.f)
{
    _rDistance = (_pAt - _pFrom).length();
}

TrackballNavigator::~TrackballNavigator(void)
{
}

void TrackballNavigator::updateFinalMatrix(void)
{
    Matrix dist;
    dist.setTranslate(0.f, 0.f, _rDistance);

    _finalMatrix = _tMatrix;
    _finalMatrix.mult(dist);
}

Matrix &TrackballNavigator::getMatrix(void)
{
    updateFinalMatrix();
    return _finalMatrix;
}

Pnt3f &TrackballNavigator::getFrom(void)
{
    _pFrom = Pnt3f(_finalMatrix[3][0], _finalMatrix[3][1], _finalMatrix[3][2]);
    return _pFrom;
}

Pnt3f &TrackballNavigator::getAt(void)
{
    const Vec3f z(_finalMatrix[2][0], _finalMatrix[2][1], _finalMatrix[2][2]);

    _pAt = Pnt3f(_finalMatrix[3][0], _finalMatrix[3][1], _finalMatrix[3][2]) -
           z * _rDistance;
    return _pAt;
}

Vec3f &TrackballNavigator::getUp(void)
{
    _vUp = Vec3f(_finalMatrix[1][0], _finalMatrix[1][1], _finalMatrix[1][2]);
    return _vUp;
}

Real32 TrackballNavigator::getDistance(void)
{
    return _rDistance;
}

void TrackballNavigator::set(Pnt3f new_from, Pnt3f new_at, Vec3f new_up)
{
    // the frame sits at the centre with its z axis pointing at the eye
    const Pnt3f behind = new_at + (new_at - new_from);

    if(MatrixLookAt(_tMatrix, new_at, behind, new_up))
    {
        FNOTICE(("TrackballNavigator: set(.,.,.), failed"));
        return;
    }

    _rDistance = (new_at - new_from).length();
    updateFinalMatrix();
}

void TrackballNavigator::set(const Matrix &new_matrix)
{
    const Pnt3f from(new_matrix[3][0], new_matrix[3][1], new_matrix[3][2]);
    const Vec3f z(new_matrix[2][0], new_matrix[2][1], new_matrix[2][2]);
    const Vec3f up(new_matrix[1][0], new_matrix[1][1], new_matrix[1][2]);

    _rDistance = from.subZero().length();

    set(from, from - z * _rDistance, up);
}

void TrackballNavigator::setFrom(Pnt3f new_from)
{
    set(new_from, getAt(), getUp());
}

void TrackballNavigator::setAt(Pnt3f new_at)
{
    set(getFrom(), new_at, getUp());
}

void TrackballNavigator::setUp(Vec3f new_up)
{
    set(getFrom(), getAt(), new_up);
}

void TrackballNavigator::setDistance(Real32 new_distance)
{
    _rDistance = new_distance;
    updateFinalMatrix();
}

// On the sphere near the centre, on a hyperbolic sheet further out, so the
// surface has no edge.
Real32 TrackballNavigator::projectToSphere(Real32 rRadius, Real32 rX, Real32 rY)
{
    const Real32 d = osgsqrt(rX * rX + rY * rY);

    if(d < rRadius * 0.70710678118654752440f)
        return osgsqrt(rRadius * rRadius - d * d);

    const Real32 t = rRadius / 1.41421356237309504880f;
    return t * t / d;
}

void TrackballNavigator::rotate(Real32 fromX, Real32 fromY, Real32 toX, Real32 toY)
{
    if(osgabs(fromX - toX) <= Eps && osgabs(fromY - toY) <= Eps)
        return;

    const Vec3f p1(fromX, fromY, projectToSphere(_rRadius, fromX, fromY));
    const Vec3f p2(toX, toY, projectToSphere(_rRadius, toX, toY));

    const Vec3f axis = p2.cross(p1);

    Real32 t = (p1 - p2).length() / (2.f * _rRadius);
    if(t > 1.f)
        t = 1.f;
    if(t < -1.f)
        t = -1.f;

    const Real32 phi = 2.f * osgasin(t);

    Quaternion q(axis, phi);
    Matrix     rot;
    q.getValue(rot);

    _tMatrix.mult(rot);
}

void TrackballNavigator::translateXY(Real32 distanceX, Real32 distanceY)
{
    Matrix t;
    t.setTranslate(distanceX, distanceY, 0.f);
    _tMatrix.mult(t);
}

void TrackballNavigator::translateZ(Real32 distance)
{
    _rDistance += distance;
}

OSG_END_NAMESPACE
