#ifndef _OSGVOLUMEVIEWPORT_H_
#define _OSGVOLUMEVIEWPORT_H_

#include <OpenSG/OSGVolumeViewportBase.h>
#include <OpenSG/OSGFBOViewport.h>
#include <OpenSG/OSGPolygonForeground.h>
#include <OpenSG/OSGTextureChunk.h>

#include <vector>

OSG_BEGIN_NAMESPACE

class RenderAction;
class VolumeNode;

/// A viewport that draws nothing to the screen: standing ahead of the
/// ordinary viewport, it renders the scene's colour and depth and the ray
/// start and direction images of its volume nodes into textures, which the
/// ray-caster quad in the scene then reads.
class VolumeViewport : public VolumeViewportBase
{
  private:
    typedef VolumeViewportBase Inherited;

  public:
    /// Notes the edited fields; the next frame applies them.
    virtual void changed(BitVector whichField, UInt32 origin);
    /// Logs "Dump <class> NI": the fields are not listed.
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    /// One frame: initialize on the first, then renderVolumes; draws
    /// nothing into the window itself.
    virtual void render(RenderActionBase *action);

    /// Builds the handlers, textures and render targets; true when every
    /// volume node could be served. Does the work only on the first call
    /// and after a change of volume nodes, camera, background or root.
    bool initialize(void);
    /// The four debugging tiles that show the internal textures.
    void initPolygonForegrounds(void);
    /// Re-sizes the textures and targets to width x height.
    void resize(int width, int height);
    /// One frame: keeps the volumes in step, then the scene, start and
    /// back passes.
    void renderVolumes(RenderActionBase *action);

  protected:
    VolumeViewport(void);
    /// Copies the fields; the factory clones the prototype through it.
    VolumeViewport(const VolumeViewport &source);
    virtual ~VolumeViewport(void);

  private:
    friend class FieldContainer;
    friend class VolumeViewportBase;

    static void initMethod(void);

    void operator=(const VolumeViewport &source);

    /// The scene pass, or a position pass with its own action.
    void renderTarget(const FBOViewportPtr &target, RenderActionBase *action);
    /// Gives a node's handler the viewport's textures and hangs its ray
    /// caster into the scene.
    bool serveVolume(VolumeNode *node);
    /// Whether the node's voxels fit the current context's 3-D textures;
    /// a volume that doesn't is said once and never drawn.
    bool fitsTextureLimit(VolumeNode *node);

    RenderAction *_frontAction = NULL;
    RenderAction *_backAction  = NULL;

    FBOViewportPtr _frontFBO = NullFC;
    FBOViewportPtr _backFBO  = NullFC;
    FBOViewportPtr _sceneFBO = NullFC;

    TextureChunkPtr _frontTexture      = NullFC;
    TextureChunkPtr _backTexture       = NullFC;
    TextureChunkPtr _sceneColorTexture = NullFC;
    TextureChunkPtr _sceneDepthTexture = NullFC;

    PolygonForegroundPtr _frontForeground      = NullFC;
    PolygonForegroundPtr _backForeground       = NullFC;
    PolygonForegroundPtr _sceneColorForeground = NullFC;
    PolygonForegroundPtr _sceneDepthForeground = NullFC;

    BitVector _changes     = 0;
    bool      _initialized = false;
    std::vector<NodePtr> _refused;
};

typedef VolumeViewport *VolumeViewportP;

OSG_END_NAMESPACE

#endif
