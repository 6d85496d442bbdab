/// DrawActionBase: what the drawing actions share: camera, viewport, window,
/// background, statistics, the override material and frustum culling.
#ifndef _OSGDRAWACTIONBASE_H_
#define _OSGDRAWACTIONBASE_H_

#include <OpenSG/OSGAction.h>
#include <OpenSG/OSGMatrix.h>
#include <OpenSG/OSGStatCollector.h>

OSG_BEGIN_NAMESPACE

class Camera;
class Background;
class Window;
class Viewport;
class Material;
class FrustumVolume;

class DrawActionBase : public Action
{
  public:
    static StatElemDesc<StatTimeElem> statTravTime;
    static StatElemDesc<StatIntElem>  statCullTestedNodes;
    static StatElemDesc<StatIntElem>  statCulledNodes;

    virtual ~DrawActionBase(void);

    // The raw pointers are set by Window::render / Viewport::render (or the
    // application) before apply; the action does not own them.
    Camera *getCamera(void) const { return _camera; }
    void    setCamera(Camera *cam) { _camera = cam; }

    Background *getBackground(void) const { return _background; }
    void        setBackground(Background *background) { _background = background; }

    Window *getWindow(void) const { return _window; }
    void    setWindow(Window *window) { _window = window; }

    Viewport *getViewport(void) const { return _viewport; }
    void      setViewport(Viewport *viewport) { _viewport = viewport; }

    /// The collector; without one, a new one is made and marked as the
    /// action's own (deleted at the end of the traversal).
    StatCollector *getStatistics(void);
    /// The caller keeps ownership of statistics; an own collector is deleted.
    void setStatistics(StatCollector *statistics);
    bool hasOwnStat(void) const { return _ownStat; }

    bool getResetStatistics(void) const { return _resetStat; }
    void setResetStatistics(bool reset) { _resetStat = reset; }

    /// The override material (MaterialGroup) and the node that set it.
    Material *getMaterial(void) const { return _pMaterial; }
    NodePtr   getMaterialNode(void) const { return _pMaterialNode; }
    void      setMaterial(Material *material, NodePtr node);

    bool getFrustumCulling(void) const { return _frustumCulling; }
    void setFrustumCulling(bool frustumCulling = true) { _frustumCulling = frustumCulling; }

    bool getVolumeDrawing(void) const { return _volumeDrawing; }
    void setVolumeDrawing(bool volumeDrawing = false) { _volumeDrawing = volumeDrawing; }

    bool getAutoFrustum(void) const { return _autoFrustum; }
    void setAutoFrustum(bool autoFrustum = true) { _autoFrustum = autoFrustum; }

    const FrustumVolume &getFrustum(void) const { return *_frustum; }
    void                 setFrustum(FrustumVolume &frustum);

    /// Eye to world, from the camera, computed in start().
    const Matrix &getCameraToWorld(void) const { return _mCameraToWorld; }

    /// Frustum test of one node.
    virtual bool isVisible(Node *node) = 0;

    /// Replaces the children of the current node by its visible ones;
    /// returns their number (with culling off: all, nothing changed).
    UInt32 selectVisibles(void);

  protected:
    DrawActionBase(void);
    DrawActionBase(const DrawActionBase &source);

    virtual ResultE start(void);
    virtual ResultE stop(ResultE res);

    Camera        *_camera;
    Background    *_background;
    Window        *_window;
    Viewport      *_viewport;
    StatCollector *_statistics;
    bool           _ownStat;
    bool           _resetStat;

    Material *_pMaterial;
    NodePtr   _pMaterialNode;

    bool _frustumCulling;
    bool _volumeDrawing;
    bool _autoFrustum;

    /// Held apart so that this header needs no frustum class.
    FrustumVolume *_frustum;
    Matrix         _mCameraToWorld;

    /// Volumes tested while volume drawing is on, drawn at the end (world
    /// space boxes as min/max pairs).
    std::vector<Pnt3f> _drawnVolumes;

    void queueVolume(const Volume &worldVolume);
    void drawQueuedVolumes(void);

  private:
    void operator=(const DrawActionBase &source);
};

OSG_END_NAMESPACE

#endif
