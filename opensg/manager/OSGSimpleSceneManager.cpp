#include <OpenSG/OSGSimpleSceneManager.h>

#include <OpenSG/OSGBaseFunctions.h>
#include <OpenSG/OSGGeoPTypesUI8.h>
#include <OpenSG/OSGGeoPLengthsUI32.h>
#include <OpenSG/OSGGeoIndicesUI32.h>
#include <OpenSG/OSGGeoPositions3f.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGViewport.h>

OSG_BEGIN_NAMESPACE

SimpleMaterialPtr SimpleSceneManager::_highlightMaterial;

SimpleSceneManager::SimpleSceneManager(void) :
    _win(NullFC),
    _root(NullFC),
    _foreground(NullFC),
    _statstate(false),
    _statCollector(),
    _highlight(),
    _highlightNode(NullFC),
    _highlightPoints(NullFC),
    _internalRoot(NullFC),
    _headlight(NullFC),
    _action(NULL),
    _ownAction(NULL),
    _cart(NullFC),
    _camera(NullFC),
    _navigator(),
    _lastx(TypeTraits<Int16>::getMax()),
    _lasty(TypeTraits<Int16>::getMax()),
    _mousebuttons(0)
{
}

SimpleSceneManager::~SimpleSceneManager(void)
{
    if(_ownAction != NULL && _statstate)
        _ownAction->setStatistics(NULL);
    delete _ownAction;

    if(_internalRoot != NullFC)
        setRoot(NullFC);

    _highlight = NullFC;
    if(_highlightNode != NullFC)
    {
        if(_highlightNode->getParent() != NullFC)
        {
            NodePtr parent = _highlightNode->getParent();
            beginEditCP(parent, Node::ChildrenFieldMask);
            parent->subChild(_highlightNode);
            endEditCP(parent, Node::ChildrenFieldMask);
        }
        NodeCorePtr core = _highlightNode->getCore();
        subRefCP(_highlightNode);
        subRefCP(core);
    }

    if(_internalRoot != NullFC)
        subRefCP(_internalRoot);
    if(_camera != NullFC)
        subRefCP(_camera);
}

SimpleSceneManager *SimpleSceneManager::create(void)
{
    return new SimpleSceneManager;
}

// --- get -------------------------------------------------------------------------

NodePtr SimpleSceneManager::getRoot(void)
{
    return _root;
}

WindowPtr SimpleSceneManager::getWindow(void)
{
    return _win;
}

NodePtr SimpleSceneManager::getHighlight(void)
{
    return _highlight.get();
}

DrawActionBase *SimpleSceneManager::getAction(void)
{
    return _action;
}

Navigator *SimpleSceneManager::getNavigator(void)
{
    return &_navigator;
}

bool SimpleSceneManager::getHeadlightState(void)
{
    return _headlight != NullFC && _headlight->getOn();
}

DirectionalLightPtr SimpleSceneManager::getHeadlight(void)
{
    return _headlight;
}

PerspectiveCameraPtr SimpleSceneManager::getCamera(void)
{
    return _camera;
}

// --- set -------------------------------------------------------------------------

void SimpleSceneManager::setAction(RenderAction *action)
{
    const bool statstate = _statstate;
    if(statstate)
        setStatistics(false);

    _action = (action != NULL) ? action : _ownAction;

    if(statstate)
        setStatistics(true);
}

void SimpleSceneManager::setRoot(NodePtr root)
{
    if(_internalRoot == NullFC)
    {
        initialize();
        if(_internalRoot == NullFC)
            return;
    }

    if(_root == root)
        return;

    if(_root != NullFC)
    {
        beginEditCP(_internalRoot, Node::ChildrenFieldMask);
        _internalRoot->subChild(_root);
        endEditCP(_internalRoot, Node::ChildrenFieldMask);
    }

    _root = root;

    if(_root != NullFC)
    {
        beginEditCP(_internalRoot, Node::ChildrenFieldMask);
        _internalRoot->addChild(_root);
        endEditCP(_internalRoot, Node::ChildrenFieldMask);
    }
}

void SimpleSceneManager::setWindow(WindowPtr win)
{
    _win = win;

    if(_win != NullFC && _win->getMFPort()->size() > 0 && _win->getPort(0) != NullFC)
        _navigator.setViewport(_win->getPort(0));
}

void SimpleSceneManager::setHighlight(NodePtr obj)
{
    _highlight = obj;
    highlightChanged();
}

void SimpleSceneManager::setHeadlight(bool on)
{
    if(_internalRoot == NullFC)
    {
        initialize();
        if(_internalRoot == NullFC)
            return;
    }

    beginEditCP(_headlight, Light::OnFieldMask);
    _headlight->setOn(on);
    endEditCP(_headlight, Light::OnFieldMask);
}

void SimpleSceneManager::turnHeadlightOn(void)
{
    setHeadlight(true);
}

void SimpleSceneManager::turnHeadlightOff(void)
{
    setHeadlight(false);
}

void SimpleSceneManager::setCamera(PerspectiveCameraPtr camera)
{
    if(camera == NullFC)
        return;

    if(_camera != NullFC)
    {
        beginEditCP(camera);
        camera->setBeacon(_camera->getBeacon());
        camera->setFov(_camera->getFov());
        camera->setNear(_camera->getNear());
        camera->setFar(_camera->getFar());
        endEditCP(camera);
    }

    if(_win != NullFC)
    {
        for(UInt32 i = 0; i < _win->getMFPort()->size(); ++i)
        {
            ViewportPtr vp = _win->getPort(i);
            if(vp == NullFC)
                continue;

            beginEditCP(vp, Viewport::CameraFieldMask);
            vp->setCamera(camera);
            endEditCP(vp, Viewport::CameraFieldMask);
        }
    }

    addRefCP(camera);
    if(_camera != NullFC)
        subRefCP(_camera);
    _camera = camera;
}

// --- the manager's graph ------------------------------------------------------------

void SimpleSceneManager::initialize(void)
{
    if(_win == NullFC)
    {
        FWARNING(("SimpleSceneManager::initialize: window not set, "
                  "ignoring!\n"));
        return;
    }

    _ownAction = RenderAction::create();
    _action    = _ownAction;

    // the camera beacon, driven by the navigator
    NodePtr cartN = Node::create();
    _cart         = Transform::create();
    beginEditCP(cartN);
    cartN->setCore(_cart);
    endEditCP(cartN);

    // the internal root, whose core is the headlight
    _internalRoot = Node::create();
    _headlight    = DirectionalLight::create();
    addRefCP(_internalRoot);
    beginEditCP(_internalRoot);
    _internalRoot->setCore(_headlight);
    _internalRoot->addChild(cartN);
    endEditCP(_internalRoot);

    beginEditCP(_headlight);
    _headlight->setAmbient(.3f, .3f, .3f, 1.f);
    _headlight->setDiffuse(1.f, 1.f, 1.f, 1.f);
    _headlight->setSpecular(1.f, 1.f, 1.f, 1.f);
    _headlight->setDirection(0.f, 0.f, 1.f);
    _headlight->setBeacon(cartN);
    endEditCP(_headlight);

    _camera = PerspectiveCamera::create();
    addRefCP(_camera);
    beginEditCP(_camera);
    _camera->setBeacon(cartN);
    _camera->setFov(deg2rad(60.f));
    _camera->setNear(0.1f);
    _camera->setFar(10000.f);
    endEditCP(_camera);

    if(_win->getMFPort()->size() == 0)
    {
        SolidBackgroundPtr bg = SolidBackground::create();
        beginEditCP(bg);
        bg->setColor(Color3f(0.f, 0.f, 0.f));
        endEditCP(bg);

        _foreground = ImageForeground::create();

        ViewportPtr vp = Viewport::create();
        beginEditCP(vp);
        vp->setCamera(_camera);
        vp->setRoot(_internalRoot);
        vp->setSize(0.f, 0.f, 1.f, 1.f);
        vp->setBackground(bg);
        vp->editMFForegrounds()->push_back(_foreground);
        endEditCP(vp);

        beginEditCP(_win, Window::PortFieldMask);
        _win->addPort(vp);
        endEditCP(_win, Window::PortFieldMask);
    }

    _navigator.setMode(Navigator::TRACKBALL);
    _navigator.setViewport(_win->getPort(0));
    _navigator.setCameraTransformation(cartN);
}

void SimpleSceneManager::showAll(void)
{
    if(_root == NullFC || _camera == NullFC)
        return;

    _root->updateVolume();

    const DynamicVolume &vol = _root->getVolume();
    Pnt3f min, max;
    vol.getBounds(min, max);
    Vec3f d = max - min;

    // nothing there: show the unit cube around the origin
    if(vol.isEmpty() || d.length() < Eps)
    {
        min.setValues(-1.f, -1.f, -1.f);
        max.setValues(1.f, 1.f, 1.f);
        d = max - min;
    }

    const Real32 dist = osgMax(d[0], d[1]) / (2.f * osgtan(_camera->getFov() / 2.f));

    const Pnt3f at((min[0] + max[0]) * .5f, (min[1] + max[1]) * .5f,
                   (min[2] + max[2]) * .5f);
    Pnt3f from = at;
    from[2] += dist + osgabs(max[2] - min[2]) * .5f;

    _navigator.set(from, at, Vec3f(0.f, 1.f, 0.f));
    _navigator.setMotionFactor((d[0] + d[1] + d[2]) / 100.f);

    const Real32 diag = osgMax(osgMax(d[0], d[1]), d[2]);
    beginEditCP(_camera, Camera::NearFieldMask | Camera::FarFieldMask);
    _camera->setNear(diag / 100.f);
    _camera->setFar(10.f * diag);
    endEditCP(_camera, Camera::NearFieldMask | Camera::FarFieldMask);
}

void SimpleSceneManager::useOpenSGLogo(void)
{
}

void SimpleSceneManager::setNavigationMode(Navigator::Mode new_mode)
{
    const Matrix m = _navigator.getMatrix();
    _navigator.setMode(new_mode);
    _navigator.set(m);
}

void SimpleSceneManager::setStatistics(bool on)
{
    if(on == _statstate || _action == NULL)
        return;

    _action->setStatistics(on ? &_statCollector : NULL);
    _statstate = on;
}

// --- highlight ---------------------------------------------------------------------

void SimpleSceneManager::highlightChanged(void)
{
    if(_highlightMaterial == NullFC)
    {
        _highlightMaterial = SimpleMaterial::create();
        addRefCP(_highlightMaterial);
        beginEditCP(_highlightMaterial);
        _highlightMaterial->setDiffuse(Color3f(0.f, 1.f, 0.f));
        _highlightMaterial->setLit(false);
        endEditCP(_highlightMaterial);
    }

    if(_highlightNode == NullFC)
    {
        GeoPTypesUI8Ptr types = GeoPTypesUI8::create();
        beginEditCP(types);
        types->getField().push_back(GL_LINE_STRIP);
        types->getField().push_back(GL_LINES);
        endEditCP(types);

        GeoPLengthsUI32Ptr lens = GeoPLengthsUI32::create();
        beginEditCP(lens);
        lens->getField().push_back(10);
        lens->getField().push_back(6);
        endEditCP(lens);

        // the bottom and top rings as one strip, then the four uprights
        static const UInt32 corners[] = {0, 1, 3, 2, 0, 4, 5, 7, 6, 4,
                                         1, 5, 2, 6, 3, 7};
        GeoIndicesUI32Ptr index = GeoIndicesUI32::create();
        beginEditCP(index);
        for(UInt32 c : corners)
            index->getField().push_back(c);
        endEditCP(index);

        _highlightPoints = GeoPositions3f::create();
        beginEditCP(_highlightPoints);
        for(UInt32 k = 0; k < 8; ++k)
            _highlightPoints->getField().push_back(
                Pnt3f((k & 1) ? 1.f : -1.f, (k & 2) ? 1.f : -1.f, (k & 4) ? 1.f : -1.f));
        endEditCP(_highlightPoints);

        GeometryPtr geo = Geometry::create();
        addRefCP(geo);
        beginEditCP(geo);
        geo->setTypes(types);
        geo->setLengths(lens);
        geo->setIndices(index);
        geo->setPositions(_highlightPoints);
        geo->setMaterial(_highlightMaterial);
        endEditCP(geo);

        _highlightNode = Node::create();
        addRefCP(_highlightNode);
        beginEditCP(_highlightNode);
        _highlightNode->setCore(geo);
        endEditCP(_highlightNode);
    }

    if(_internalRoot == NullFC)
        initialize();

    if(_internalRoot != NullFC)
    {
        if(_highlight != NullFC && _highlightNode->getParent() == NullFC)
        {
            beginEditCP(_internalRoot, Node::ChildrenFieldMask);
            _internalRoot->addChild(_highlightNode);
            endEditCP(_internalRoot, Node::ChildrenFieldMask);
        }
        else if(_highlight == NullFC && _highlightNode->getParent() != NullFC)
        {
            beginEditCP(_internalRoot, Node::ChildrenFieldMask);
            _internalRoot->subChild(_highlightNode);
            endEditCP(_internalRoot, Node::ChildrenFieldMask);
        }
    }

    updateHighlight();
}

void SimpleSceneManager::updateHighlight(void)
{
    if(_highlight == NullFC || _highlightNode == NullFC)
        return;

    DynamicVolume vol;
    _highlight->getWorldVolume(vol);

    Pnt3f min, max;
    vol.getBounds(min, max);

    beginEditCP(_highlightPoints);
    for(UInt32 k = 0; k < 8; ++k)
        _highlightPoints->getField()[k] =
            Pnt3f((k & 1) ? max[0] : min[0], (k & 2) ? max[1] : min[1],
                  (k & 4) ? max[2] : min[2]);
    endEditCP(_highlightPoints);

    // refreshes the geometry's display list
    GeometryPtr geo = GeometryPtr::dcast(_highlightNode->getCore());
    beginEditCP(geo, Geometry::PositionsFieldMask);
    endEditCP(geo, Geometry::PositionsFieldMask);
}

// --- events -------------------------------------------------------------------------

void SimpleSceneManager::resize(UInt16 width, UInt16 height)
{
    if(_win != NullFC)
        _win->resize(width, height);
}

void SimpleSceneManager::mouseMove(Int16 x, Int16 y)
{
    if(_mousebuttons != 0)
        _navigator.moveTo(x, y);

    _lastx = x;
    _lasty = y;
}

void SimpleSceneManager::mouseButtonPress(UInt16 button, Int16 x, Int16 y)
{
    if(button <= MouseDown)
        _navigator.buttonPress(Int16(button), x, y);

    if(button < 16)
        _mousebuttons |= UInt16(1u << button);

    _lastx = x;
    _lasty = y;
}

void SimpleSceneManager::mouseButtonRelease(UInt16 button, Int16 x, Int16 y)
{
    if(button <= MouseDown)
        _navigator.buttonRelease(Int16(button), x, y);

    if(button < 16)
        _mousebuttons &= UInt16(~(1u << button));

    _lastx = x;
    _lasty = y;
}

void SimpleSceneManager::key(UChar8 key, Int16 x, Int16 y)
{
    switch(key)
    {
        case 'j': _navigator.keyPress(Navigator::LEFT, x, y);      break;
        case 'g': _navigator.keyPress(Navigator::RIGHT, x, y);     break;
        case 'u': _navigator.keyPress(Navigator::LEFTROT, x, y);   break;
        case 't': _navigator.keyPress(Navigator::RIGHTROT, x, y);  break;
        case 'y': _navigator.keyPress(Navigator::FORWARDS, x, y);  break;
        case 'h': _navigator.keyPress(Navigator::BACKWARDS, x, y); break;
        default: break;
    }
}

Line SimpleSceneManager::calcViewRay(Int16 x, Int16 y)
{
    Line line;

    if(_camera != NullFC && _win != NullFC && _win->getMFPort()->size() > 0 &&
       _win->getPort(0) != NullFC)
        _camera->calcViewRay(line, x, y, *_win->getPort(0).getCPtr());

    return line;
}

void SimpleSceneManager::redraw(void)
{
    if(_internalRoot == NullFC)
    {
        initialize();
        if(_internalRoot == NullFC)
            return;
        showAll();
    }

    _navigator.updateCameraTransformation();

    updateHighlight();

    _win->render(_action);
}

void SimpleSceneManager::idle(void)
{
    _navigator.idle(Int16(_mousebuttons), _lastx, _lasty);
}

bool SimpleSceneManager::operator<(const SimpleSceneManager &other) const
{
    return this < &other;
}

OSG_END_NAMESPACE
