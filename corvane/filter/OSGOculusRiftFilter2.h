#ifndef _OSGOCULUSRIFTFILTER2_H_
#define _OSGOCULUSRIFTFILTER2_H_

#include <OpenSG/OSGOculusRiftFilter2Base.h>
#include <OpenSG/OSGSHLChunk.h>

OSG_BEGIN_NAMESPACE

/// A display filter that warps one eye's image for the Rift's lenses, with chromatic correction always on.
///
/// Works in the read-back group "ColorDisplayFilter" on coordinates from 0
/// to 1; what the lens would show from outside the image is discarded. The
/// green channel is filtered over the pixel's footprint. `width`, `height`
/// and `vScreenSize` take no part in the warp. Field edits after the filter
/// was built update its uniforms.
class OculusRiftFilter2 : public OculusRiftFilter2Base
{
  private:
    typedef OculusRiftFilter2Base Inherited;

  public:
    /// Edits of the lens fields update the warp shader's parameters.
    virtual void changed(BitVector whichField, UInt32 origin);
    /// Logs "Dump <class> NI": the fields are not listed.
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    /// Puts the lens shader into the read-back group "ColorDisplayFilter"
    /// of fg, with uniforms from the fields.
    virtual void createFilter(DisplayFilterForeground *fg, Viewport *port);

    /// Computes the uniforms from the fields; nothing before createFilter.
    virtual void updateShaderParameters(void);

  protected:
    OculusRiftFilter2(void);
    /// Copies the fields; the factory clones the prototype through it.
    OculusRiftFilter2(const OculusRiftFilter2 &source);
    virtual ~OculusRiftFilter2(void);

  private:
    friend class FieldContainer;
    friend class OculusRiftFilter2Base;

    static void initMethod(void);

    static const char *const _vertexProgram;
    static const char *const _fragmentProgram;

    /// Also lives in the group's material; the reference held here keeps it
    /// valid for later edits when the foreground drops its groups first.
    SHLChunkPtr _shlChunk;

    void operator=(const OculusRiftFilter2 &source);
};

typedef OculusRiftFilter2 *OculusRiftFilter2P;

OSG_END_NAMESPACE

#endif
