#ifndef _OSGBASICVOLUMESHADINGSTYLE_H_
#define _OSGBASICVOLUMESHADINGSTYLE_H_

#include <OpenSG/OSGBasicVolumeShadingStyleBase.h>

OSG_BEGIN_NAMESPACE

/// The shading style that selects the volume's shading strategy.
class BasicVolumeShadingStyle : public BasicVolumeShadingStyleBase
{
  private:
    typedef BasicVolumeShadingStyleBase Inherited;

  public:
    /// Passes the edit on to the base class; no field needs more.
    virtual void changed(BitVector whichField, UInt32 origin);
    /// Logs "Dump <class> NI": the fields are not listed.
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;
    /// Chooses the shading strategy from the fields and hands it to the handler.
    virtual void paramShading(VolumeNodeHandler *handler);

  protected:
    BasicVolumeShadingStyle(void);
    /// Copies the fields; the factory clones the prototype through it.
    BasicVolumeShadingStyle(const BasicVolumeShadingStyle &source);
    virtual ~BasicVolumeShadingStyle(void);

  private:
    friend class FieldContainer;
    friend class BasicVolumeShadingStyleBase;

    static void initMethod(void);

    void operator=(const BasicVolumeShadingStyle &source);
};

typedef BasicVolumeShadingStyle *BasicVolumeShadingStyleP;

OSG_END_NAMESPACE

#endif
