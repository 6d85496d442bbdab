#ifndef _OSGDROPLETFLOWVIEWPORT_H_
#define _OSGDROPLETFLOWVIEWPORT_H_

#include <OpenSG/OSGDropletFlowViewportBase.h>

class DropletFlow;
class DropletUtils;

OSG_BEGIN_NAMESPACE

/// The application-facing control panel of the droplet simulation.
///
/// It draws nothing into its window: it is a viewport only so that the
/// window calls its render once per frame. That call creates the
/// DropletFlow simulation over the scene under `root`, applies field
/// changes to it, and lets it advance by the `time` field (or, after a
/// `dirty` pulse without a new time, by the wall clock). The fluid shows
/// through the ChunkMaterial in `material`, which the application's own
/// viewports use on its object; put this viewport before them in the
/// window's port list so they see this frame's state.
///
///     dfv->setRoot(object);              // unwrap in unit 0, tangents in unit 1
///     dfv->setMaterial(wetMaterial);     // the simulation adds its chunks here
///     dfv->setMatMode(2);                // the material's texture under the fluid
///     dfv->getSources().push_back(Vec3f(0.5f, 0.9f, 0.05f));
///     window->insertPort(0, dfv);
///
/// The first frame creates the simulation, the next one projects the
/// object and starts the timer; field changes made before are applied from
/// then on. A change of `textures`, `material` or `surfaceMapSize` rebuilds
/// the simulation (the fluid is lost).
class DropletFlowViewport : public DropletFlowViewportBase
{
  private:
    typedef DropletFlowViewportBase Inherited;

  public:
    /// Notes the edited fields for the next frame, which applies them (and tries a refused
    /// setup again).
    virtual void changed(BitVector whichField, UInt32 origin);
    /// Logs "Dump <class> NI": the fields are not listed.
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    /// The frame's heartbeat; see the class comment.
    virtual void render(RenderActionBase *action);

    /// Sources are placed at the next frame; clear wipes the fluid first.
    void updateRenderMode(bool render, bool clear);

    /// Applies the field changes collected since the last call.
    void initialize(void);

    /// Creates the simulation over root from the current field values.
    /// False, with a log line, when the fields can't make one (no
    /// material, a surface map size of 0 or beyond the GL limit, a given
    /// texture without an image); the viewport then stays idle until a
    /// field changes.
    bool setupDropletFlow(NodePtr root);

    /// The simulation, null until set up.
    DropletFlow *getDropletFlow(void) const { return _flow; }

  protected:
    DropletFlowViewport(void);
    /// Copies the fields; the factory clones the prototype through it.
    DropletFlowViewport(const DropletFlowViewport &source);
    virtual ~DropletFlowViewport(void);

    /// Deletes the simulation with its textures and viewports.
    virtual void onDestroy(void);

  private:
    friend class FieldContainer;
    friend class DropletFlowViewportBase;

    static void initMethod(void);

    void deleteFlow(void);
    void addDebugPlanes(NodePtr root);

    void operator=(const DropletFlowViewport &source);

    DropletUtils *_utils         = NULL;
    DropletFlow  *_flow          = NULL;
    BitVector     _changedMask   = 0;
    bool          _started       = false;
    bool          _renderSources = false;
    bool          _clearSurface  = false;

    /// The last setup was refused; no new attempt before a field changes.
    bool _setupRefused = false;
};

typedef DropletFlowViewport *DropletFlowViewportP;

OSG_END_NAMESPACE

#endif
