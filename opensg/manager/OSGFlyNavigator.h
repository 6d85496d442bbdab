/// The fly navigator of the Navigator: the camera sits at 'from', looks at
/// 'at', and 'up' never changes. Rotations turn 'at' about the eye.
#ifndef _OSGFLYNAVIGATOR_H_
#define _OSGFLYNAVIGATOR_H_

#include <OpenSG/OSGBaseTypes.h>
#include <OpenSG/OSGMatrix.h>
#include <OpenSG/OSGVector.h>

OSG_BEGIN_NAMESPACE

class FlyNavigator
{
  public:
    FlyNavigator(void);
    virtual ~FlyNavigator(void);

    /// The look-at matrix of from, at, up (the previous one if that fails).
    Matrix &getMatrix(void);
    Pnt3f  &getFrom(void);
    Pnt3f  &getAt(void);
    Vec3f  &getUp(void);

    void setFrom(Pnt3f new_from);
    void setAt(Pnt3f new_at);
    void setUp(Vec3f new_up);
    void set(Pnt3f new_from, Pnt3f new_at, Vec3f new_up);
    /// from = m's translation, at one unit down m's -z, up = m's y axis.
    void set(const Matrix &new_matrix);

    /// Turns the view by -deltaX about up, then by -deltaY about the side
    /// axis, both through the eye (radians).
    void rotate(Real32 deltaX, Real32 deltaY);
    /// Moves eye and target by step along the backward view direction (a
    /// negative step flies forward). Returns 0.
    virtual Real32 forward(Real32 step);
    /// Moves eye and target by step along (from - at) x up (a positive step
    /// moves to the viewer's left). Returns 0.
    virtual Real32 right(Real32 step);

  protected:
    Pnt3f  _rFrom;
    Pnt3f  _rAt;
    Vec3f  _vUp;
    Matrix _tMatrix;
};

OSG_END_NAMESPACE

#endif
