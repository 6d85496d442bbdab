#ifndef _OSGVOLUMENODE_H_
#define _OSGVOLUMENODE_H_

#include <OpenSG/OSGVolumeNodeBase.h>
#include <OpenSG/OSGAction.h>

class VolumeNodeHandler;

OSG_BEGIN_NAMESPACE

/// The group core that puts a ray-cast volume into the scene.
///
/// It holds the voxels, the choice of each ray-casting strategy as a small
/// number, and the shading styles, and owns one VolumeNodeHandler that
/// assembles the shader. VolumeViewport drives it: createVolume builds the
/// handler, initVolume brings it in step with edited fields, attachVolume
/// hangs the handler's ray-caster node under this core's node.
class VolumeNode : public VolumeNodeBase
{
  private:
    typedef VolumeNodeBase Inherited;

  public:
    /// New voxels, swapped or sliceThickness load the volume again; every edit is applied
    /// to the strategies at the next initVolume.
    virtual void changed(BitVector whichField, UInt32 origin);
    /// Logs "Dump <class> NI": the fields are not listed.
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    /// Builds a new handler from voxels with the default strategies; the
    /// next initVolume applies the strategy fields. False, with a log line,
    /// for an image too small in any direction (the former handler stays)
    /// or voxels that can't be used (the former handler goes too).
    bool createVolume(void);
    /// Applies the fields edited since the last call to the handler; true
    /// when anything was applied.
    bool initVolume(void);
    /// Makes the ray-caster node the only child of every parent of this
    /// core.
    bool attachVolume(void);

    /// The handler; NULL before the first createVolume.
    VolumeNodeHandler *getVolume(void) const { return _volume; }
    /// Takes ownership; deletes the handler it replaces.
    void setVolume(VolumeNodeHandler *volume);

    /// The handlers registered for the render and intersect actions: the
    /// core draws nothing itself (the ray-caster node below it does), and
    /// rays pass through it.
    /// @{
    Action::ResultE renderEnter(Action *action);
    Action::ResultE renderLeave(Action *action);
    Action::ResultE intersect(Action *action);
    /// @}

  protected:
    VolumeNode(void);
    /// Copies the fields; the factory clones the prototype through it.
    VolumeNode(const VolumeNode &source);
    virtual ~VolumeNode(void);

    /// A box of the voxel counts around the origin, when there are voxels.
    virtual void adjustVolume(Volume &volume);

  private:
    friend class FieldContainer;
    friend class VolumeNodeBase;

    static void initMethod(void);

    void operator=(const VolumeNode &source);

    VolumeNodeHandler *_volume              = NULL;
    BitVector          _pendingChanges      = 0;
    bool               _savedFrustumCulling = true;
};

typedef VolumeNode *VolumeNodeP;

OSG_END_NAMESPACE

#endif
