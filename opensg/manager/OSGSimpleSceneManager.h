/// The small application helper of OpenSG programs: give it a window and a
/// scene, and it adds a camera, a headlight and a viewport, places the
/// camera so that the whole scene is in view, turns mouse and key events
/// into camera motion through its Navigator, and renders.
///
///     SimpleSceneManager *mgr = new SimpleSceneManager;
///     mgr->setWindow(gwin);
///     mgr->setRoot(scene);
///     mgr->showAll();
///     ...
///     mgr->redraw();                                  // display callback
///     mgr->resize(w, h);                              // reshape callback
///     mgr->mouseButtonPress(button, x, y);            // mouse callback
///     mgr->mouseMove(x, y);                           // motion callback
///
/// The manager's own graph: an internal root whose core is the headlight
/// (a DirectionalLight shining along the view), holding the camera beacon
/// (a Transform the navigator drives), the application's root, and, while
/// one is set, the highlight box. It is not a field container: create it
/// with new and delete it.
#ifndef _OSGSIMPLESCENEMANAGER_H_
#define _OSGSIMPLESCENEMANAGER_H_

#include <OpenSG/OSGBaseTypes.h>
#include <OpenSG/OSGWindow.h>
#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGImageForeground.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGeoPropPtrs.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGStatCollector.h>
#include <OpenSG/OSGNavigator.h>

OSG_BEGIN_NAMESPACE

class SimpleSceneManager
{
  public:
    /// Mouse buttons, numbered as GLUT numbers them (freeglut reports the
    /// wheel as buttons 3 and 4).
    enum
    {
        MouseLeft   = 0,
        MouseMiddle = 1,
        MouseRight  = 2,
        MouseUp     = 3,
        MouseDown   = 4,
        NoButton    = -1
    };

    SimpleSceneManager(void);
    /// Releases the manager's graph and camera; the viewport, background
    /// and foreground it made stay in the window.
    virtual ~SimpleSceneManager(void);

    /// A new manager (a member function, as OpenSG has it).
    SimpleSceneManager *create(void);

    // --- get ---------------------------------------------------------------------

    virtual NodePtr              getRoot(void);
    virtual WindowPtr            getWindow(void);
    virtual NodePtr              getHighlight(void);
    virtual DrawActionBase      *getAction(void);
    virtual Navigator           *getNavigator(void);
    virtual bool                 getHeadlightState(void);
    virtual DirectionalLightPtr  getHeadlight(void);
    virtual PerspectiveCameraPtr getCamera(void);

    // --- set ---------------------------------------------------------------------

    /// Renders with action from now on (NULL: the manager's own).
    virtual void setAction(RenderAction *action);
    /// Builds the manager's graph on first use, then hangs root under the
    /// internal root in place of the previous one (NullFC detaches it).
    virtual void setRoot(NodePtr root);
    /// Stores the window; its port 0, if it has one, becomes the
    /// navigator's viewport. Call it before setRoot.
    virtual void setWindow(WindowPtr win);
    /// Draws a green box around the node's world bounds (NullFC: none).
    virtual void setHighlight(NodePtr obj);
    virtual void setHeadlight(bool on);
    virtual void turnHeadlightOn(void);
    virtual void turnHeadlightOff(void);
    /// Takes over beacon, fov, near and far of the current camera and
    /// puts the camera into every port of the window. NullFC is ignored.
    virtual void setCamera(PerspectiveCameraPtr camera);

    /// Looks down -z at the centre of the root's bounding box from where
    /// the larger of its x and y extents fills the vertical field of view,
    /// and sets near and far from the box's largest extent.
    virtual void showAll(void);
    /// OpenSG's logo bitmap is not part of this library: the call is
    /// accepted and draws nothing.
    virtual void useOpenSGLogo(void);

    /// Keeps the camera where it is and drives it with another navigator.
    void setNavigationMode(Navigator::Mode new_mode);
    /// Re-centring on a click; returns the previous value.
    bool setClickCenter(bool mode) { return _navigator.setClickCenter(mode); }
    /// Collects statistics in the action; no text is drawn.
    virtual void setStatistics(bool on);

    // --- events (window pixels, origin upper left) --------------------------------

    virtual void resize(UInt16 width, UInt16 height);
    virtual void mouseMove(Int16 x, Int16 y);
    virtual void mouseButtonPress(UInt16 button, Int16 x, Int16 y);
    virtual void mouseButtonRelease(UInt16 button, Int16 x, Int16 y);
    /// 'j' left, 'g' right, 'u' and 't' turn, 'y' forwards, 'h' backwards.
    virtual void key(UChar8 key, Int16 x, Int16 y);

    /// The picking ray through pixel (x, y) of the window's port 0.
    Line calcViewRay(Int16 x, Int16 y);

    /// Moves the camera beacon to the navigator's matrix, updates the
    /// highlight and renders the window (building the graph and calling
    /// showAll first if setRoot never ran).
    virtual void redraw(void);
    /// Lets fly and walk modes go on moving while a button is held.
    virtual void idle(void);

    bool operator<(const SimpleSceneManager &other) const;

  protected:
    void initialize(void);

    virtual void highlightChanged(void);
    virtual void updateHighlight(void);

    WindowPtr            _win;
    NodePtr              _root;
    ImageForegroundPtr   _foreground;
    bool                 _statstate;
    StatCollector        _statCollector;

    NodeRefPtr           _highlight;
    NodePtr              _highlightNode;
    GeoPositions3fPtr    _highlightPoints;

    NodePtr              _internalRoot;
    DirectionalLightPtr  _headlight;
    RenderAction        *_action;
    RenderAction        *_ownAction;
    TransformPtr         _cart;
    PerspectiveCameraPtr _camera;

    Navigator            _navigator;

    Int16                _lastx;
    Int16                _lasty;
    UInt16               _mousebuttons;

    static SimpleMaterialPtr _highlightMaterial;

  private:
    SimpleSceneManager(const SimpleSceneManager &source);
    void operator=(const SimpleSceneManager &source);
};

OSG_END_NAMESPACE

#endif
