#ifndef _OSGOCULUSRIFTFILTER_H_
#define _OSGOCULUSRIFTFILTER_H_

#include <OpenSG/OSGOculusRiftFilterBase.h>
#include <OpenSG/OSGSHLChunk.h>

#include <string>

OSG_BEGIN_NAMESPACE

/// A display filter that warps one eye's image for the lenses of an Oculus Rift.
///
/// Works in the read-back group "ColorDisplayFilter" on coordinates from -1
/// to 1 around the lens; what the lens would show from outside the image is
/// black. Chromatic aberration is corrected by a second fragment program,
/// set only while `chromaAbCorrection` differs from (1, 0, 1, 0). Field
/// edits after the filter was built update its uniforms (and its program).
class OculusRiftFilter : public OculusRiftFilterBase
{
  private:
    typedef OculusRiftFilterBase Inherited;

  public:
    /// Edits of the lens fields update the warp shader's parameters.
    virtual void changed(BitVector whichField, UInt32 origin);
    /// Logs "Dump <class> NI": the fields are not listed.
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    /// Puts the lens shader into the read-back group "ColorDisplayFilter"
    /// of fg, with uniforms from the fields.
    virtual void createFilter(DisplayFilterForeground *fg, Viewport *port);

    /// Computes the uniforms from the fields and picks the fragment
    /// program; nothing before createFilter.
    virtual void updateShaderParameters(void);

  protected:
    OculusRiftFilter(void);
    /// Copies the fields; the factory clones the prototype through it.
    OculusRiftFilter(const OculusRiftFilter &source);
    virtual ~OculusRiftFilter(void);

  private:
    friend class FieldContainer;
    friend class OculusRiftFilterBase;

    static void initMethod(void);

    /// Whether chromaAbCorrection asks for the chromatic program.
    bool wantsChroma(void) const;

    static const char *const _vertexProgram;
    static const std::string _fragmentProgram;
    static const std::string _chromaFragmentProgram;

    /// Also lives in the group's material; the reference held here keeps it
    /// valid for later edits when the foreground drops its groups first.
    SHLChunkPtr _shlChunk;
    /// Whether the chromatic program is the one set.
    bool _chromaActive;

    void operator=(const OculusRiftFilter &source);
};

typedef OculusRiftFilter *OculusRiftFilterP;

OSG_END_NAMESPACE

#endif
