#ifndef _OSGIMPROVEDCOLORDISPLAYFILTER_H_
#define _OSGIMPROVEDCOLORDISPLAYFILTER_H_

#include <OpenSG/OSGImprovedColorDisplayFilterBase.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGSHLChunk.h>

#include <string>

OSG_BEGIN_NAMESPACE

/// A display filter that calibrates colour with a gamma, a matrix and a per-region shading
/// table.
///
/// Works in the read-back group "ImprovedColorDisplayFilter": the grabbed
/// image is texture unit 0 of the group's material, the shading table (a
/// 3-D texture of width x height positions across the screen and depth
/// steps along the colour value) unit 1. The fields are read when the
/// foreground builds the filter; an edit afterwards changes nothing on a
/// filter already built.
class ImprovedColorDisplayFilter : public ImprovedColorDisplayFilterBase
{
  private:
    typedef ImprovedColorDisplayFilterBase Inherited;

  public:
    /// Passes the edit on to the base class; no field needs more.
    virtual void changed(BitVector whichField, UInt32 origin);
    /// Logs "Dump <class> NI": the fields are not listed.
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    /// Puts the calibration shader and its textures into the read-back
    /// group "ImprovedColorDisplayFilter" of fg.
    virtual void createFilter(DisplayFilterForeground *fg, Viewport *port);

    /// Moves the fields into the table image and the uniforms; nothing
    /// before createFilter.
    void updateFilterValues(void);

  protected:
    ImprovedColorDisplayFilter(void);
    /// Copies the fields; the factory clones the prototype through it.
    ImprovedColorDisplayFilter(const ImprovedColorDisplayFilter &source);
    virtual ~ImprovedColorDisplayFilter(void);

  private:
    friend class FieldContainer;
    friend class ImprovedColorDisplayFilterBase;

    static void initMethod(void);

    /// Drops the references held on the image and the shader.
    void releaseChunks(void);

    static const char *const _vertexProgram;
    static const std::string _fragmentProgram;
    static const std::string _debugFragmentProgram;

    /// Both also live in the group's material; the references held here
    /// keep them valid when the foreground drops its groups first.
    ImagePtr    _shadingImage;
    SHLChunkPtr _shlChunk;

    void operator=(const ImprovedColorDisplayFilter &source);
};

typedef ImprovedColorDisplayFilter *ImprovedColorDisplayFilterP;

OSG_END_NAMESPACE

#endif
