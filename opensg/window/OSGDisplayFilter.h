/// A post-processing step of a DisplayFilterForeground.
///
/// The foreground calls createFilter(fg, port) once, when it builds its
/// filter groups (at its first draw, and again when its list of filters
/// changes or a filter is enabled or disabled), and updateFilter(port) at
/// every draw; both only for enabled filters, in list order, with the GL
/// context current. In createFilter a filter asks the foreground for a
/// group by name (fg->findReadbackGroup("...")) and adds its chunks to the
/// group's material. Filters asking for the same name share one group.
///
/// Editing a filter's fields does not rebuild it: a filter that wants its
/// fields to act after createFilter handles that in its own changed().
/// changed() counts the edits (getChanged()); subclasses that override it
/// must call DisplayFilter::changed.
#ifndef _OSGDISPLAYFILTER_H_
#define _OSGDISPLAYFILTER_H_

#include <OpenSG/OSGDisplayFilterBase.h>

OSG_BEGIN_NAMESPACE

class DisplayFilterForeground;
class Viewport;

class DisplayFilter : public DisplayFilterBase
{
  private:
    typedef DisplayFilterBase Inherited;

  public:
    /// Counts the edit, then forwards.
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    virtual void createFilter(DisplayFilterForeground *fg, Viewport *port) = 0;
    /// Nothing by default.
    virtual void updateFilter(Viewport *port);

    /// Number of changed() calls so far.
    UInt32 getChanged(void) const;

  protected:
    DisplayFilter(void);
    DisplayFilter(const DisplayFilter &source);
    virtual ~DisplayFilter(void);

    UInt32 _changed;

  private:
    friend class FieldContainer;
    friend class DisplayFilterBase;

    static void initMethod(void);

    void operator=(const DisplayFilter &source);
};

typedef DisplayFilter *DisplayFilterP;

OSG_END_NAMESPACE

#endif
