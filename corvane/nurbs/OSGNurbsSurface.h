#ifndef _OSGNURBSSURFACE_H_
#define _OSGNURBSSURFACE_H_

#include <OpenSG/OSGNurbsSurfaceBase.h>
#include <OpenSG/OSGGLU.h>

OSG_BEGIN_NAMESPACE

class DrawActionBase;
class NurbsTessellationSink;
class Window;

/// A trimmable NURBS surface tessellated by GLU into geometry or a display list.
///
/// With fillGeo (the default) GLU tessellates the surface once into the
/// Geometry properties it inherits, so it draws, picks and bounds like any
/// geometry. Without it GLU evaluates the surface at draw time: compiled
/// into a display list with dlistCache, afresh each frame without. All GLU
/// work that builds something runs in handleGL, with a context current;
/// changed only marks the surface dirty.
class NurbsSurface : public NurbsSurfaceBase
{
  private:
    typedef NurbsSurfaceBase Inherited;

  public:
    /// Counted setters with the parent link, as Geometry's property setters.
    /// @{
    void setControlPoint(const GeoPositionsPtr &value);
    void setControlTexCoord(const GeoTexCoordsPtr &value);
    /// @}

    /// The GL-object callback: builds the static geometry or the display
    /// list of a dirty surface (initialize, reinitialize, needrefresh);
    /// every other status returns at once.
    void handleGL(Window *win, UInt32 idstatus);

    /// A new control-point property invalidates the parents' volumes; edits of the
    /// surface's fields mark it for tessellation.
    virtual void changed(BitVector whichField, UInt32 origin);
    /// Logs "Dump <class> NI": the fields are not listed.
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    /// Draws the tessellated surface (tessellating first when it is dirty).
    virtual Action::ResultE drawPrimitives(DrawActionBase *action);

  protected:
    NurbsSurface(void);
    /// Copies the fields; the factory clones the prototype through it.
    NurbsSurface(const NurbsSurface &source);
    virtual ~NurbsSurface(void);

    /// Registers the surface's own GL object, then Geometry's.
    void onCreate(const NurbsSurface *source = NULL);
    /// Gives back the control nets and the GL object.
    virtual void onDestroy(void);

    /// The control hull, in both modes.
    virtual void adjustVolume(Volume &volume);

    // The steps of a tessellation; they need _nurbsRenderer live.

    /// GLU's sampling from uTessellation and vTessellation.
    void setTessProps(bool domainDistance);
    /// Hands the control nets and the trimming loops to GLU; nothing
    /// without both nets or with nets GLU would read past.
    void renderGeometry(void);
    /// GLU tessellates into the display list `list`, or into the geometry
    /// of the drawable.
    /// @{
    void createDList(UInt32 list);
    void createGeometry(void);
    /// @}

  private:
    friend class FieldContainer;
    friend class NurbsSurfaceBase;
    template <class ObjectT>
    friend void nurbsHandleGL(ObjectT *obj, Window *win, UInt32 idstatus);
    template <class ObjectT>
    friend void nurbsFillStaticGeometry(ObjectT *obj, typename ObjectT::Ptr &current,
                                        NurbsTessellationSink &sink, bool withShading,
                                        bool project);

    static void initMethod(void);

    void operator=(const NurbsSurface &source);

    GLUnurbs *_nurbsRenderer;
};

typedef NurbsSurface *NurbsSurfaceP;

OSG_END_NAMESPACE

#endif
