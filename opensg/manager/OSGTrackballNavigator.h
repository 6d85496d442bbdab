/// The trackball of the Navigator: the camera orbits a centre of interest.
///
/// A frame T has its origin at the centre (at) and the camera's axes; the
/// camera's to-world matrix is F = T * translation(0, 0, distance), so the
/// eye sits distance units along T's +z axis and looks down -z.
#ifndef _OSGTRACKBALLNAVIGATOR_H_
#define _OSGTRACKBALLNAVIGATOR_H_

#include <OpenSG/OSGBaseTypes.h>
#include <OpenSG/OSGMatrix.h>
#include <OpenSG/OSGVector.h>

OSG_BEGIN_NAMESPACE

class TrackballNavigator
{
  public:
    explicit TrackballNavigator(Real32 rSize = 0.8f);
    virtual ~TrackballNavigator(void);

    /// F = T * translation(0, 0, distance), recomputed.
    Matrix &getMatrix(void);
    /// From F as of the last getMatrix, setDistance or set.
    Pnt3f  &getFrom(void);
    Pnt3f  &getAt(void);
    Vec3f  &getUp(void);
    Real32  getDistance(void);

    /// T = look-at frame at 'at'; a failed look-at (up along the view
    /// direction) logs and changes nothing.
    void set(Pnt3f new_from, Pnt3f new_at, Vec3f new_up);
    /// Distance = the length of m's translation (the eye's distance from
    /// the world origin), then set(from, from - distance * z, y).
    void set(const Matrix &new_matrix);
    void setFrom(Pnt3f new_from);
    void setAt(Pnt3f new_at);
    void setUp(Vec3f new_up);
    void setDistance(Real32 new_distance);

    /// Virtual trackball between two normalised positions (viewport centre
    /// 0, edges +-1, y up); T is post-multiplied by the rotation.
    void rotate(Real32 fromX, Real32 fromY, Real32 toX, Real32 toY);
    /// Moves the centre (and the eye) in camera axes.
    void translateXY(Real32 distanceX, Real32 distanceY);
    /// Adds to the eye's distance from the centre.
    void translateZ(Real32 distance);

  private:
    Real32 projectToSphere(Real32 rRadius, Real32 rX, Real32 rY);
    void   updateFinalMatrix(void);

    Real32 _rRadius;
    Real32 _rDistance;
    Matrix _tMatrix;
    Matrix _finalMatrix;
    Pnt3f  _pFrom;
    Pnt3f  _pAt;
    Vec3f  _vUp;
};

OSG_END_NAMESPACE

#endif
