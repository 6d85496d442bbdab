#ifndef _OSGVOLUMESHADINGSTYLE_H_
#define _OSGVOLUMESHADINGSTYLE_H_

#include <OpenSG/OSGVolumeShadingStyleBase.h>

class ShadingFunctions;
class VolumeNodeHandler;

OSG_BEGIN_NAMESPACE

/// Shading parameters of a volume, turned into a shading strategy by its subclasses.
class VolumeShadingStyle : public VolumeShadingStyleBase
{
  private:
    typedef VolumeShadingStyleBase Inherited;

  public:
    /// Notes the edited fields; the volume's next initVolume applies them.
    virtual void changed(BitVector whichField, UInt32 origin);
    /// Logs "Dump <class> NI": the fields are not listed.
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    /// The strategy the style made last; not owned (the handler owns it),
    /// and it may be gone once the handler has replaced it.
    /// @{
    virtual void              setShadingFunction(ShadingFunctions *shadingFunction);
    virtual ShadingFunctions *getShadingFunction(void);
    /// @}
    /// Turns the fields into the handler's shading strategy and uniforms;
    /// nothing in this base class.
    virtual void paramShading(VolumeNodeHandler *handler);

    /// The masks of all edits since the last paramShading.
    BitVector hasChanged(void) const { return _changedFields; }

  protected:
    VolumeShadingStyle(void);
    /// Copies the fields; the factory clones the prototype through it.
    VolumeShadingStyle(const VolumeShadingStyle &source);
    virtual ~VolumeShadingStyle(void);

  private:
    friend class FieldContainer;
    friend class VolumeShadingStyleBase;

    static void initMethod(void);

    void operator=(const VolumeShadingStyle &source);

  protected:
    ShadingFunctions *_shadingFunction; ///< see getShadingFunction
    BitVector         _changedFields;   ///< see hasChanged
};

typedef VolumeShadingStyle *VolumeShadingStyleP;

OSG_END_NAMESPACE

#endif
