#ifndef _OSGCOMPOSABLEVOLUMESHADINGSTYLE_H_
#define _OSGCOMPOSABLEVOLUMESHADINGSTYLE_H_

#include <OpenSG/OSGComposableVolumeShadingStyleBase.h>

OSG_BEGIN_NAMESPACE

/// The shading style that modifies the parameters of the current strategy.
class ComposableVolumeShadingStyle : public ComposableVolumeShadingStyleBase
{
  private:
    typedef ComposableVolumeShadingStyleBase Inherited;

  public:
    /// Passes the edit on to the base class; no field needs more.
    virtual void changed(BitVector whichField, UInt32 origin);
    /// Logs "Dump <class> NI": the fields are not listed.
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;
    /// Sets the uniforms of the handler's current shading strategy from the fields.
    virtual void paramShading(VolumeNodeHandler *handler);

  protected:
    ComposableVolumeShadingStyle(void);
    /// Copies the fields; the factory clones the prototype through it.
    ComposableVolumeShadingStyle(const ComposableVolumeShadingStyle &source);
    virtual ~ComposableVolumeShadingStyle(void);

  private:
    friend class FieldContainer;
    friend class ComposableVolumeShadingStyleBase;

    static void initMethod(void);

    void operator=(const ComposableVolumeShadingStyle &source);
};

typedef ComposableVolumeShadingStyle *ComposableVolumeShadingStyleP;

OSG_END_NAMESPACE

#endif
