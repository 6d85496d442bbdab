#include <OpenSG/OSGNavigator.h>

#include <OpenSG/OSGBaseFunctions.h>
#include <OpenSG/OSGCamera.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGPlane.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGWindow.h>

#include <memory>

OSG_BEGIN_NAMESPACE

Navigator::Navigator(void) :
    _rRotationAngle(0.04908739f),
    _rMotionFactor(1.f),
    _currentState(IDLE),
    _currentMode(TRACKBALL),
    _absolute(true),
    _moved(false),
    _clickCenter(true),
    _clickNoIntersect(false),
    _trackball(0.8f),
    _flyer(),
    _walker(),
    _vp(NullFC),
    _cartN(NullFC),
    _lastX(0),
    _lastY(0),
    _ip(0.f, 0.f, 0.f),
    _dir(0.f, 0.f, 0.f),
    _noneMatrix(),
    _result(),
    _pntResult(),
    _vecResult()
{
}

Navigator::~Navigator(void)
{
}

// --- events --------------------------------------------------------------------

void Navigator::buttonPress(Int16 button, Int16 x, Int16 y)
{
    _lastX = x;
    _lastY = y;
    _moved = false;

    if(button < LEFT_MOUSE || button > DOWN_MOUSE)
    {
        FNOTICE(("Navigator: buttonPress, unknown button\n"));
        return;
    }

    switch(_currentMode)
    {
        case TRACKBALL:
            switch(button)
            {
                case LEFT_MOUSE:
                    _currentState = ROTATING;
                    break;
                case MIDDLE_MOUSE:
                    _currentState = TRANSLATING_XY;
                    getIntersectionPoint(x, y);
                    break;
                case RIGHT_MOUSE:
                    _currentState = TRANSLATING_Z;
                    break;
                case UP_MOUSE:
                    _currentState = IDLE;
                    _trackball.translateZ(-_rMotionFactor);
                    break;
                case DOWN_MOUSE:
                    _currentState = IDLE;
                    _trackball.translateZ(_rMotionFactor);
                    break;
            }
            break;

        case FLY:
        case WALK:
        {
            FlyNavigator &nav = (_currentMode == FLY) ? _flyer : _walker;
            switch(button)
            {
                case LEFT_MOUSE:
                    _currentState = TRANSLATING_ZPLUS;
                    break;
                case MIDDLE_MOUSE:
                    _currentState = ROTATING;
                    break;
                case RIGHT_MOUSE:
                    _currentState = TRANSLATING_ZMINUS;
                    break;
                case UP_MOUSE:
                    _currentState = IDLE;
                    nav.forward(-_rMotionFactor);
                    break;
                case DOWN_MOUSE:
                    _currentState = IDLE;
                    nav.forward(_rMotionFactor);
                    break;
            }
            break;
        }

        case NONE:
            _currentState = IDLE;
            break;
    }
}

void Navigator::buttonRelease(Int16, Int16 x, Int16 y)
{
    if(_currentMode == TRACKBALL && !_moved && _clickCenter && _vp != NullFC &&
       _vp->getCamera() != NullFC && _vp->getRoot() != NullFC)
    {
        Line line;
        if(_vp->getCamera()->calcViewRay(line, x, y, *_vp.getCPtr()))
        {
            std::unique_ptr<IntersectAction> act(IntersectAction::create());
            act->setLine(line);
            act->apply(_vp->getRoot());

            if(act->didHit())
                _trackball.setAt(act->getHitPoint());
        }
    }

    _currentState = IDLE;
}

void Navigator::keyPress(Int16 key, Int16, Int16)
{
    if(_currentMode == NONE)
        return;

    if(_currentMode == TRACKBALL)
    {
        switch(key)
        {
            case LEFT:
            case RIGHT:
                break;
            case FORWARDS:
                _trackball.translateZ(-_rMotionFactor);
                break;
            case BACKWARDS:
                _trackball.translateZ(_rMotionFactor);
                break;
            default:
                FNOTICE(("Navigator: keyPress, unknown key\n"));
                break;
        }
        return;
    }

    FlyNavigator &nav = (_currentMode == FLY) ? _flyer : _walker;
    switch(key)
    {
        case LEFT:
            nav.right(_rMotionFactor);
            break;
        case RIGHT:
            nav.right(-_rMotionFactor);
            break;
        case FORWARDS:
            nav.forward(-_rMotionFactor);
            break;
        case BACKWARDS:
            nav.forward(_rMotionFactor);
            break;
        case LEFTROT:
            nav.rotate(-_rRotationAngle, 0.f);
            break;
        case RIGHTROT:
            nav.rotate(_rRotationAngle, 0.f);
            break;
        default:
            FNOTICE(("Navigator: keyPress, unknown key\n"));
            break;
    }
}

bool Navigator::viewportSize(Real32 &width, Real32 &height)
{
    if(_vp == NullFC)
        return false;

    width  = Real32(_vp->getPixelWidth());
    height = Real32(_vp->getPixelHeight());

    return width > 0.f && height > 0.f;
}

void Navigator::moveTo(Int16 x, Int16 y)
{
    _moved = true;

    Real32 width, height;
    if(!viewportSize(width, height))
        return;

    const Int32 winHeight = (_vp->getParent() != NullFC)
                                ? Int32(_vp->getParent()->getHeight())
                                : Int32(height);
    const Int32 left   = _vp->getPixelLeft();
    const Int32 bottom = _vp->getPixelBottom();

    // the viewport's centre is (0, 0), its edges +-1, y up
    const Real32 fromX = (2.f * Real32(_lastX - left) - width) / width;
    const Real32 fromY = (2.f * Real32(winHeight - _lastY - bottom) - height) / height;
    const Real32 toX   = (2.f * Real32(x - left) - width) / width;
    const Real32 toY   = (2.f * Real32(winHeight - y - bottom) - height) / height;

    switch(_currentMode)
    {
        case TRACKBALL:
            switch(_currentState)
            {
                case ROTATING:
                    _trackball.rotate(fromX, fromY, toX, toY);
                    break;
                case TRANSLATING_XY:
                {
                    Real32 distanceX = 0.f, distanceY = 0.f;
                    calcDeltas(_lastX, _lastY, x, y, distanceX, distanceY);
                    _trackball.translateXY(distanceX, distanceY);
                    break;
                }
                case TRANSLATING_Z:
                {
                    const Real32 d = osgabs(toY - fromY);
                    _trackball.translateZ(Real32(osgSgn(toY - fromY)) * 100.f *
                                          (d * d) * _rMotionFactor);
                    break;
                }
                default:
                    break;
            }
            break;

        case FLY:
        case WALK:
        {
            FlyNavigator &nav = (_currentMode == FLY) ? _flyer : _walker;
            nav.rotate(toX - fromX, fromY - toY);

            if(_currentState == TRANSLATING_ZPLUS)
                nav.forward(-_rMotionFactor);
            else if(_currentState == TRANSLATING_ZMINUS)
                nav.forward(_rMotionFactor);
            break;
        }

        case NONE:
            FNOTICE(("Navigator: moveTo NONE mode\n"));
            break;
    }

    _lastX = x;
    _lastY = y;
}

void Navigator::idle(Int16 buttons, Int16 x, Int16 y)
{
    if((_currentMode == FLY || _currentMode == WALK) && buttons != 0)
        moveTo(x, y);
}

// --- panning -----------------------------------------------------------------------

void Navigator::getIntersectionPoint(Int16 x, Int16 y)
{
    Real32 width, height;
    if(!viewportSize(width, height) || _vp->getCamera() == NullFC)
        return;

    CameraPtr cam = _vp->getCamera();

    Line line;
    if(!cam->calcViewRay(line, x, y, *_vp.getCPtr()))
        return;

    if(_clickNoIntersect)
    {
        // through the world origin, facing the direction of the last grab
        Plane plane(_dir, Pnt3f(0.f, 0.f, 0.f));
        plane.intersectInfinite(line, _ip);
        return;
    }

    std::unique_ptr<IntersectAction> act(IntersectAction::create());
    act->setLine(line);
    if(_vp->getRoot() != NullFC)
        act->apply(_vp->getRoot());

    Matrix proj, projTrans, view;
    cam->getProjection(proj, UInt32(width), UInt32(height));
    cam->getProjectionTranslation(projTrans, UInt32(width), UInt32(height));
    cam->getViewing(view, UInt32(width), UInt32(height));

    Matrix m = proj;
    m.mult(projTrans);
    m.mult(view);
    m.invert();

    Pnt3f to, at;
    m.multFull(Pnt3f(0.f, 0.f, 0.5f), to);
    m.multFull(Pnt3f(0.f, 0.f, 1.f), at);
    _dir = to - at;

    if(act->didHit())
    {
        _ip = act->getHitPoint();
    }
    else
    {
        Plane plane(_dir, Pnt3f(0.f, 0.f, 0.f));
        plane.intersectInfinite(line, _ip);
    }
}

void Navigator::calcDeltas(Int16, Int16, Int16 toX, Int16 toY,
                           Real32 &distanceX, Real32 &distanceY)
{
    distanceX = distanceY = 0.f;

    Real32 width, height;
    if(!viewportSize(width, height) || _vp->getCamera() == NullFC)
        return;

    CameraPtr cam = _vp->getCamera();

    Matrix view = _trackball.getMatrix();
    const Pnt3f eye(view[3][0], view[3][1], view[3][2]);
    view.invert();

    Matrix proj, projTrans;
    cam->getProjection(proj, UInt32(width), UInt32(height));
    cam->getProjectionTranslation(projTrans, UInt32(width), UInt32(height));

    Matrix m = proj;
    m.mult(projTrans);
    m.mult(view);
    m.invert();

    // the panning formula assumes a full-window viewport
    const Real32 rx = (Real32(toX) / width) * 2.f - 1.f;
    const Real32 ry = 1.f - (Real32(toY) / height) * 2.f;

    Pnt3f far;
    m.multFull(Pnt3f(rx, ry, 1.f), far);

    Vec3f lineDir = far - eye;
    lineDir.normalize();

    const Real32 denom = _dir.dot(lineDir);
    if(osgabs(denom) < Eps)
        return;

    const Real32 u = _dir.dot(_ip - eye) / denom;
    const Pnt3f  q = eye + lineDir * u;

    Vec3f t = _ip - q;
    Vec3f tc;
    view.mult(t, tc);

    distanceX = tc[0];
    distanceY = tc[1];
}

// --- camera ---------------------------------------------------------------------

void Navigator::updateCameraTransformation(void)
{
    Matrix m;

    if(_absolute && _cartN != NullFC && _cartN->getParent() != NullFC)
    {
        _cartN->getParent()->getToWorld(m);
        m.invert();
    }

    m.mult(getMatrix());

    if(_cartN == NullFC)
    {
        FFATAL(("!_cartN in Navigator::updateCameraTrans\n"));
        return;
    }

    TransformPtr t = TransformPtr::dcast(_cartN->getCore());
    if(t == NullFC)
    {
        FWARNING(("Navigator: updateCamTrans, core is not TransformPtr\n"));
        return;
    }

    if(t->getMatrix() != m)
    {
        beginEditCP(t);
        t->setMatrix(m);
        endEditCP(t);
    }
}

// --- set -------------------------------------------------------------------------

void Navigator::setMode(Mode new_mode)
{
    _currentMode = new_mode;
}

void Navigator::setViewport(ViewportPtr new_viewport)
{
    _vp = new_viewport;

    NodePtr root = (_vp != NullFC) ? _vp->getRoot() : NodePtr(NullFC);
    _walker.setGround(root);
    _walker.setWorld(root);
}

void Navigator::setRotationAngle(Real32 new_angle)
{
    _rRotationAngle = new_angle;
}

void Navigator::setMotionFactor(Real32 new_factor)
{
    _rMotionFactor = new_factor;
}

// The camera of the NONE matrix: at its origin, looking down its -z axis.
void Navigator::noneFromFrame(Pnt3f &from, Pnt3f &at, Vec3f &up)
{
    from = Pnt3f(_noneMatrix[3][0], _noneMatrix[3][1], _noneMatrix[3][2]);
    at   = from - Vec3f(_noneMatrix[2][0], _noneMatrix[2][1], _noneMatrix[2][2]);
    up   = Vec3f(_noneMatrix[1][0], _noneMatrix[1][1], _noneMatrix[1][2]);
}

// Replaces one of the NONE camera's from, at and up.
void Navigator::setNone(const Pnt3f *new_from, const Pnt3f *new_at, const Vec3f *new_up)
{
    Pnt3f from, at;
    Vec3f up;
    noneFromFrame(from, at, up);
    MatrixLookAt(_noneMatrix, new_from ? *new_from : from, new_at ? *new_at : at,
                          new_up ? *new_up : up);
}

void Navigator::setFrom(Pnt3f new_from)
{
    switch(_currentMode)
    {
        case TRACKBALL: _trackball.setFrom(new_from); break;
        case FLY:       _flyer.setFrom(new_from);     break;
        case WALK:      _walker.setFrom(new_from);    break;
        case NONE:      setNone(&new_from, NULL, NULL); break;
    }
}

void Navigator::setAt(Pnt3f new_at)
{
    switch(_currentMode)
    {
        case TRACKBALL: _trackball.setAt(new_at); break;
        case FLY:       _flyer.setAt(new_at);     break;
        case WALK:      _walker.setAt(new_at);    break;
        case NONE:      setNone(NULL, &new_at, NULL); break;
    }
}

void Navigator::setUp(Vec3f new_up)
{
    switch(_currentMode)
    {
        case TRACKBALL: _trackball.setUp(new_up); break;
        case FLY:       _flyer.setUp(new_up);     break;
        case WALK:      _walker.setUp(new_up);    break;
        case NONE:      setNone(NULL, NULL, &new_up); break;
    }
}

void Navigator::setDistance(Real32 new_distance)
{
    switch(_currentMode)
    {
        case TRACKBALL: _trackball.setDistance(new_distance); break;
        case FLY:       _flyer.forward(new_distance);         break;
        case WALK:      _walker.forward(new_distance);        break;
        case NONE:      break;
    }
}

void Navigator::set(Pnt3f new_from, Pnt3f new_at, Vec3f new_up)
{
    switch(_currentMode)
    {
        case TRACKBALL: _trackball.set(new_from, new_at, new_up); break;
        case FLY:       _flyer.set(new_from, new_at, new_up);     break;
        case WALK:      _walker.set(new_from, new_at, new_up);    break;
        case NONE:
            if(MatrixLookAt(_noneMatrix, new_at, new_at + (new_at - new_from), new_up))
                FNOTICE(("Navigator: set(.,.,.) failed\n"));
            break;
    }
}

void Navigator::set(const Matrix &new_matrix)
{
    switch(_currentMode)
    {
        case TRACKBALL: _trackball.set(new_matrix); break;
        case FLY:       _flyer.set(new_matrix);     break;
        case WALK:      _walker.set(new_matrix);    break;
        case NONE:      _noneMatrix = new_matrix;   break;
    }
}

bool Navigator::setAbsolute(bool state)
{
    const bool old = _absolute;
    _absolute = state;
    return old;
}

bool Navigator::setClickCenter(bool state)
{
    const bool old = _clickCenter;
    _clickCenter = state;
    return old;
}

bool Navigator::setClickNoIntersect(bool state)
{
    const bool old = _clickNoIntersect;
    _clickNoIntersect = state;
    return old;
}

void Navigator::setCameraTransformation(const NodePtr &new_cartn)
{
    if(new_cartn == NullFC)
        FWARNING(("Set _cartN in Navigator to NullFC\n"));

    _cartN = new_cartn;
}

// --- get -------------------------------------------------------------------------

const Matrix &Navigator::getMatrix(void)
{
    switch(_currentMode)
    {
        case TRACKBALL: _result = _trackball.getMatrix(); break;
        case FLY:       _result = _flyer.getMatrix();     break;
        case WALK:      _result = _walker.getMatrix();    break;
        case NONE:      _result = _noneMatrix;            break;
    }
    return _result;
}

const Pnt3f &Navigator::getFrom(void)
{
    switch(_currentMode)
    {
        case TRACKBALL: _pntResult = _trackball.getFrom(); break;
        case FLY:       _pntResult = _flyer.getFrom();     break;
        case WALK:      _pntResult = _walker.getFrom();    break;
        case NONE:
        {
            Pnt3f at;
            Vec3f up;
            noneFromFrame(_pntResult, at, up);
            break;
        }
    }
    return _pntResult;
}

const Pnt3f &Navigator::getAt(void)
{
    switch(_currentMode)
    {
        case TRACKBALL: _pntResult = _trackball.getAt(); break;
        case FLY:       _pntResult = _flyer.getAt();     break;
        case WALK:      _pntResult = _walker.getAt();    break;
        case NONE:
        {
            Pnt3f from;
            Vec3f up;
            noneFromFrame(from, _pntResult, up);
            break;
        }
    }
    return _pntResult;
}

const Vec3f &Navigator::getUp(void)
{
    switch(_currentMode)
    {
        case TRACKBALL: _vecResult = _trackball.getUp(); break;
        case FLY:       _vecResult = _flyer.getUp();     break;
        case WALK:      _vecResult = _walker.getUp();    break;
        case NONE:
        {
            Pnt3f from, at;
            noneFromFrame(from, at, _vecResult);
            break;
        }
    }
    return _vecResult;
}

Real32 Navigator::getDistance(void)
{
    return _currentMode == TRACKBALL ? _trackball.getDistance() : 0.f;
}

Navigator::State Navigator::getState(void)
{
    return _currentState;
}

Navigator::Mode Navigator::getMode(void)
{
    return _currentMode;
}

Real32 Navigator::getRotationAngle(void)
{
    return _rRotationAngle;
}

Real32 Navigator::getMotionFactor(void)
{
    return _rMotionFactor;
}

bool Navigator::getAbsolute(void)
{
    return _absolute;
}

bool Navigator::getClickCenter(void)
{
    return _clickCenter;
}

bool Navigator::getClickNoIntersect(void)
{
    return _clickNoIntersect;
}

WalkNavigator *Navigator::getWalkNavigator(void)
{
    return &_walker;
}

OSG_END_NAMESPACE
