#ifndef _OSGNURBSCURVE_H_
#define _OSGNURBSCURVE_H_

#include <OpenSG/OSGNurbsCurveBase.h>
#include <OpenSG/OSGGLU.h>

OSG_BEGIN_NAMESPACE

class DrawActionBase;
class NurbsTessellationSink;
class Window;

/// A NURBS curve: drawn through GLU, or a trimming curve of a surface.
///
/// A visible curve (controlCurve false) reaches the screen as the surface
/// does: tessellated once into the inherited Geometry properties (fillGeo),
/// or evaluated by GLU at draw time, into a display list with dlistCache.
/// A trimming curve (controlCurve true) lies in a surface's parameter space,
/// is never drawn, and only feeds GLU when a NurbsTrimmingLoop calls trim.
class NurbsCurve : public NurbsCurveBase
{
  private:
    typedef NurbsCurveBase Inherited;

  public:
    /// Counted setter with the parent link, as Geometry's property setters.
    void setControlPoint(const GeoPositionsPtr &value);

    /// The GL-object callback, as the surface's.
    void handleGL(Window *win, UInt32 idstatus);

    /// A new control-point property invalidates the parents' volumes; edits of the curve's
    /// fields mark it for tessellation.
    virtual void changed(BitVector whichField, UInt32 origin);
    /// Logs "Dump <class> NI": the fields are not listed.
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    /// Draws the tessellated curve (tessellating first when it is dirty);
    /// a trimming curve (controlCurve) draws nothing.
    virtual Action::ResultE drawPrimitives(DrawActionBase *action);

    /// Hands a trimming curve to renderer, the live GLU renderer of the
    /// surface being trimmed (between its gluBeginTrim and gluEndTrim): a
    /// piecewise linear curve with polyline, else a NURBS curve. A visible
    /// curve gives nothing. action is not used.
    virtual Action::ResultE trim(DrawActionBase *action, GLUnurbs *renderer);

  protected:
    NurbsCurve(void);
    /// Copies the fields; the factory clones the prototype through it.
    NurbsCurve(const NurbsCurve &source);
    virtual ~NurbsCurve(void);

    /// Registers the curve's own GL object, then Geometry's.
    void onCreate(const NurbsCurve *source = NULL);
    /// Gives back the control points and the GL object.
    virtual void onDestroy(void);

    /// The control points, in both modes.
    virtual void adjustVolume(Volume &volume);

    // The steps of a tessellation; they need _nurbsRenderer live.

    /// GLU's sampling from tessellation.
    void setTessProps(void);
    /// Hands the curve to GLU; nothing without control points or with
    /// points GLU would read past.
    void renderGeometry(void);
    /// GLU tessellates into the display list `list`, or into the geometry
    /// of the drawable.
    /// @{
    void createDList(UInt32 list);
    void createGeometry(void);
    /// @}

  private:
    friend class FieldContainer;
    friend class NurbsCurveBase;
    template <class ObjectT>
    friend void nurbsHandleGL(ObjectT *obj, Window *win, UInt32 idstatus);
    template <class ObjectT>
    friend void nurbsFillStaticGeometry(ObjectT *obj, typename ObjectT::Ptr &current,
                                        NurbsTessellationSink &sink, bool withShading,
                                        bool project);

    static void initMethod(void);

    void operator=(const NurbsCurve &source);

    GLUnurbs *_nurbsRenderer;
};

typedef NurbsCurve *NurbsCurveP;

OSG_END_NAMESPACE

#endif
