/// Colour correction of a calibrated display: the grabbed image is
/// linearised with `gamma`, multiplied by the colour `matrix` and each
/// channel is looked up in a 3-D shading table (width x height positions
/// across the screen, depth steps along the value). Works in the group
/// "ColorDisplayFilter", which other filters of that name share (the
/// table is texture unit 1 of the group's material).
///
/// The fields are read in createFilter; an edit afterwards changes nothing
/// until the foreground builds its filters again.
#ifndef _OSGCOLORDISPLAYFILTER_H_
#define _OSGCOLORDISPLAYFILTER_H_

#include <OpenSG/OSGColorDisplayFilterBase.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGSHLChunk.h>

OSG_BEGIN_NAMESPACE

class ColorDisplayFilter : public ColorDisplayFilterBase
{
  private:
    typedef ColorDisplayFilterBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    virtual void createFilter(DisplayFilterForeground *fg, Viewport *port);

  protected:
    ColorDisplayFilter(void);
    ColorDisplayFilter(const ColorDisplayFilter &source);
    virtual ~ColorDisplayFilter(void);

    /// Moves the fields into the table image and the uniforms.
    void updateFilterValues(void);

  private:
    friend class FieldContainer;
    friend class ColorDisplayFilterBase;

    static void initMethod(void);

    /// Both live in the group's material (which holds their references).
    ImagePtr    _shadingImage;
    SHLChunkPtr _shlChunk;

    void operator=(const ColorDisplayFilter &source);
};

typedef ColorDisplayFilter *ColorDisplayFilterP;

OSG_END_NAMESPACE

#endif
