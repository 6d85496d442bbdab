/// Turns mouse and key events into a camera matrix. The Navigator owns one
/// navigator of each kind (trackball, fly, walk), forwards every event to
/// the one of its mode, and writes the result into the Transform core of
/// the camera-beacon node it is given (updateCameraTransformation).
///
/// Mouse positions are window pixels with the origin at the upper-left
/// corner (GLUT's convention); the navigator flips y itself and measures
/// them against its viewport's pixel rectangle.
#ifndef _OSGNAVIGATOR_H_
#define _OSGNAVIGATOR_H_

#include <OpenSG/OSGBaseTypes.h>
#include <OpenSG/OSGViewport.h>
#include <OpenSG/OSGLine.h>
#include <OpenSG/OSGVector.h>
#include <OpenSG/OSGQuaternion.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGTrackballNavigator.h>
#include <OpenSG/OSGFlyNavigator.h>
#include <OpenSG/OSGWalkNavigator.h>

OSG_BEGIN_NAMESPACE

class Navigator
{
  public:
    enum Mode
    {
        TRACKBALL = 0,
        FLY,
        WALK,
        NONE
    };

    enum State
    {
        IDLE = 0,
        ROTATING,
        TRANSLATING_XY,
        TRANSLATING_Z,
        TRANSLATING_ZPLUS = 10,
        TRANSLATING_ZMINUS
    };

    enum MouseButton
    {
        LEFT_MOUSE = 0,
        MIDDLE_MOUSE,
        RIGHT_MOUSE,
        UP_MOUSE,
        DOWN_MOUSE
    };

    enum Key
    {
        LEFT = 0,
        RIGHT,
        FORWARDS,
        BACKWARDS,
        LEFTROT,
        RIGHTROT
    };

    Navigator(void);
    virtual ~Navigator(void);

    // --- events ------------------------------------------------------------------

    virtual void buttonPress(Int16 button, Int16 x, Int16 y);
    /// In trackball mode a release without motion since the press re-centres
    /// on the picked point (click-centre); then the state goes idle.
    virtual void buttonRelease(Int16 button, Int16 x, Int16 y);
    virtual void keyPress(Int16 key, Int16 x, Int16 y);
    virtual void moveTo(Int16 x, Int16 y);
    /// Fly and walk: with a button held, repeats the last motion's step.
    virtual void idle(Int16 buttons, Int16 x, Int16 y);

    /// Writes the current navigator's matrix into the beacon's Transform
    /// (only if it changed by more than Eps).
    void updateCameraTransformation(void);

    // --- set ---------------------------------------------------------------------

    /// Only stores the mode; the new navigator keeps its own state.
    void setMode(Mode new_mode);
    /// Also makes the viewport's root the walk navigator's ground and world.
    void setViewport(ViewportPtr new_viewport);
    void setRotationAngle(Real32 new_angle);
    void setMotionFactor(Real32 new_factor);
    void setFrom(Pnt3f new_from);
    void setAt(Pnt3f new_at);
    void setDistance(Real32 new_distance);
    void setUp(Vec3f new_up);
    void set(Pnt3f new_from, Pnt3f new_at, Vec3f new_up);
    void set(const Matrix &new_matrix);
    /// The three return the previous value.
    bool setAbsolute(bool state);
    bool setClickCenter(bool state);
    bool setClickNoIntersect(bool state);
    void setCameraTransformation(const NodePtr &new_cartn);

    // --- get ---------------------------------------------------------------------

    const Matrix &getMatrix(void);
    const Pnt3f  &getFrom(void);
    const Pnt3f  &getAt(void);
    const Vec3f  &getUp(void);
    Real32        getDistance(void);
    State         getState(void);
    Mode          getMode(void);
    Real32        getRotationAngle(void);
    Real32        getMotionFactor(void);
    bool          getAbsolute(void);
    bool          getClickCenter(void);
    bool          getClickNoIntersect(void);

    WalkNavigator *getWalkNavigator(void);

  private:
    /// The grab point of a pan: the picked point, or the point on the plane
    /// through the world origin facing the camera.
    void getIntersectionPoint(Int16 x, Int16 y);
    /// The pan in camera axes that brings the grab point under (x, y).
    void calcDeltas(Int16 fromX, Int16 fromY, Int16 toX, Int16 toY,
                    Real32 &distanceX, Real32 &distanceY);
    /// Pixel size of the viewport, false if there is none or it is empty.
    bool viewportSize(Real32 &width, Real32 &height);
    void noneFromFrame(Pnt3f &from, Pnt3f &at, Vec3f &up);
    void setNone(const Pnt3f *new_from, const Pnt3f *new_at, const Vec3f *new_up);

    Real32 _rRotationAngle;
    Real32 _rMotionFactor;
    State  _currentState;
    Mode   _currentMode;
    bool   _absolute;
    bool   _moved;
    bool   _clickCenter;
    bool   _clickNoIntersect;

    TrackballNavigator _trackball;
    FlyNavigator       _flyer;
    WalkNavigator      _walker;

    ViewportPtr _vp;
    NodePtr     _cartN;

    Int16  _lastX;
    Int16  _lastY;
    Pnt3f  _ip;
    Vec3f  _dir;
    Matrix _noneMatrix;
    Matrix _result;
    Pnt3f  _pntResult;
    Vec3f  _vecResult;

    Navigator(const Navigator &);
    void operator=(const Navigator &);
};

OSG_END_NAMESPACE

#endif
