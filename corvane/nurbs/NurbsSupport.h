/// What the NURBS surface and curve share: the GLU version test, the table
/// that routes the window's GL-object callbacks to living objects, the
/// checks that keep GLU inside the data it is handed, the sampling limit,
/// and the static-geometry properties the tessellator callbacks fill.
#ifndef _NURBSSUPPORT_H_
#define _NURBSSUPPORT_H_

#include <OpenSG/OSGDrawActionBase.h>
#include <OpenSG/OSGGLU.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGeoPropIndices.h>
#include <OpenSG/OSGGeoPropLengths.h>
#include <OpenSG/OSGGeoPropNormals.h>
#include <OpenSG/OSGGeoPropPTypes.h>
#include <OpenSG/OSGGeoPropPositions.h>
#include <OpenSG/OSGGeoPropTexCoords.h>
#include <OpenSG/OSGThread.h>
#include <OpenSG/OSGWindow.h>

#include <map>

OSG_BEGIN_NAMESPACE

/// The highest spline order GLU's NURBS renderer takes.
const UInt32 NurbsMaxOrder = 24;

/// Samples GLU may take along one parameter direction of a surface, and
/// along a visible curve: the bound on what one tessellation allocates.
/// @{
const Real32 NurbsMaxSurfaceSamples = 1024.f;
const Real32 NurbsMaxCurveSamples   = 65536.f;
/// @}

/// Registers MaterialDrawable's draw and render handlers for the type.
void nurbsRegisterDrawHandlers(FieldContainerType &type);

/// Whether GLU can tessellate into callbacks (version 1.3 and up). Logs
/// the warning both classes give when it can't.
bool nurbsGluHasTessellator(void);

/// 0 if GLU takes knots with order, else the GLU error code GLU gives
/// (or, for knots that are not finite numbers, which GLU silently draws
/// nothing for, "unknown knot error"). Checked before GLU sees them, so
/// that every way of drawing reports them, the uncached one too, which
/// has no error callback.
GLenum nurbsCheckKnots(const MFReal32 &knots, UInt32 order);

/// 0 if GLU may read `needed` elements of minDim floats from prop, at the
/// property's own stride, and every value in it is finite; else the GLU
/// error code that says why not.
GLenum nurbsCheckNet(GeoPropertyArrayInterface *prop, UInt32 minDim, UInt64 needed);

/// The domain-distance step GLU gets for setting, lowered so that the
/// valid range of knots (for order) gets at most maxSamples samples. Logs
/// a warning naming who when it lowers it.
Real32 nurbsLimitStep(Real64 step, const MFReal32 &knots, UInt32 order, Real32 maxSamples,
                      const char *who);

/// GLU's knot data: NULL for an empty vector.
inline GLfloat *nurbsKnotData(const MFReal32 &knots)
{
    return knots.size() > 0 ? const_cast<GLfloat *>(&knots[0]) : NULL;
}

/// GLU's control data of a property.
inline GLfloat *nurbsControlData(GeoPropertyArrayInterface *prop)
{
    return reinterpret_cast<GLfloat *>(prop->getData());
}

/// Hands a GLU callback to gluNurbsCallback.
template <class FunctionT>
inline void nurbsCallback(GLUnurbs *renderer, GLenum which, FunctionT function)
{
    gluNurbsCallback(renderer, which, reinterpret_cast<_GLUfuncptr>(function));
}

/// Stores value in the holder's field fieldId with a reference and a
/// parent link, dropping those of the old value, as Geometry's property
/// setters do: an edit of the property's data then reaches the holder as a
/// change of that field.
template <class PropPtrT>
void nurbsSetProperty(FieldContainerPtr holder, UInt32 fieldId, SField<PropPtrT> &field,
                      const PropPtrT &value)
{
    holder.setParentFieldPos(UInt16(fieldId));
    addRefCP(value);

    // the field takes the new value first: the edits below may look at it
    PropPtrT old = field.getValue();
    field.setValue(value);

    if(old != NullFC)
    {
        beginEditCP(old, Attachment::ParentsFieldMask);
        old->subParent(holder);
        endEditCP(old, Attachment::ParentsFieldMask);
        subRefCP(old);
    }
    if(value != NullFC)
    {
        beginEditCP(value, Attachment::ParentsFieldMask);
        value->addParent(holder);
        endEditCP(value, Attachment::ParentsFieldMask);
    }
}

/// After a change from elsewhere (origin with the abstract bit) the field
/// may hold a pointer without this holder's reference or parent link:
/// repairs them as Geometry does for its properties.
template <class PropPtrT>
void nurbsRepairProperty(FieldContainerPtr holder, UInt32 fieldId, SField<PropPtrT> &field,
                         UInt32 origin)
{
    if(!(origin & ChangedOrigin::Abstract))
        return;

    PropPtrT prop = field.getValue();
    if(origin & ChangedOrigin::AbstrCheckValid)
    {
        if(prop == NullFC || prop->findParent(holder) != -1)
            return;
    }
    else if(origin & ChangedOrigin::AbstrIncRefCount)
    {
        addRefCP(prop);
        return;
    }
    field.setValue(NullFC);
    nurbsSetProperty(holder, fieldId, field, prop);
}

/// Drops the holder's reference and parent link of the field's property.
template <class PropPtrT>
void nurbsReleaseProperty(FieldContainerPtr holder, SField<PropPtrT> &field)
{
    PropPtrT value = NullFC;
    nurbsSetProperty(holder, 0, field, value);
}

/// The properties a tessellation into static geometry writes: each of the
/// geometry's own is kept when it already has the concrete type, otherwise
/// a new one is made. A curve takes the first four, a surface all six.
class NurbsGeometryTarget
{
  public:
    /// Takes geo's properties or makes new ones; normals and texture
    /// coordinates only withShading.
    NurbsGeometryTarget(Geometry *geo, bool withShading);

    /// The Geometry masks of what install changes.
    BitVector installMask(void) const;
    /// Puts the properties into the geometry through its setters and makes
    /// the index mapping one shared index per vertex. The caller holds the
    /// geometry's edit of installMask().
    void install(Geometry *geo);
    /// Opens an edit of each property and empties it.
    void clearForFilling(void);
    /// Ends the edit of each property with all field bits.
    void endFilling(void);

  private:
    bool               _withShading;
    GeoPTypesUI8Ptr    _types;
    GeoPLengthsUI32Ptr _lengths;
    GeoIndicesUI32Ptr  _indices;
    GeoPositions3fPtr  _positions;
    GeoNormals3fPtr    _normals;
    GeoTexCoords2fPtr  _texCoords;
};

/// Where GLU's tessellator callbacks write while one tessellation runs:
/// the data fields of the geometry's properties and its numVertices,
/// looked up once when attached (GLU calls back within renderGeometry,
/// so nothing can swap them meanwhile). A field is NULL where the
/// property is absent or of another concrete type, and its callback then
/// does nothing.
class NurbsTessellationSink
{
  public:
    NurbsTessellationSink(void);

    /// Writes into geo's properties from now on; project makes vertices
    /// homogeneous points to divide by their w (GLU hands a rational
    /// curve's points on so, a surface's already divided).
    void attach(Geometry *geo, UInt32 *numVertices, bool project);
    /// Writes nowhere from now on.
    void detach(void);

    /// A new primitive of GL type: its type is recorded, the vertex count
    /// starts at 0.
    void begin(GLenum type);
    /// The primitive's vertex count goes into the lengths.
    void end(void);
    /// A position and the next running index, counted; only with both
    /// properties.
    void vertex(const GLfloat *v);
    /// The normal or texture coordinate of the next vertex, appended.
    /// @{
    void normal(const GLfloat *n);
    void texCoord(const GLfloat *t);
    /// @}

  private:
    MFUInt8  *_types;
    MFUInt32 *_lengths;
    MFUInt32 *_indices;
    MFPnt3f  *_positions;
    MFVec3f  *_normals;
    MFVec2f  *_texCoords;
    UInt32   *_numVertices;
    bool      _project;
};

/// What both createGeometry do once GLU is set up for the tessellator: in
/// one notification the properties go into obj, current points at it and
/// numVertices starts at 0; then obj's renderGeometry has GLU call back
/// into sink, which writes into those properties.
template <class ObjectT>
void nurbsFillStaticGeometry(ObjectT *obj, typename ObjectT::Ptr &current,
                             NurbsTessellationSink &sink, bool withShading, bool project)
{
    NurbsGeometryTarget   target(obj, withShading);
    typename ObjectT::Ptr thisP(obj);
    const BitVector       mask = ObjectT::NumVerticesFieldMask | target.installMask();

    beginEditCP(thisP, mask);
    obj->setNumVertices(0);
    current = thisP;
    target.install(obj);
    // emptied before the notification, so that what it sets off in the
    // geometry has no stale data to go through
    target.clearForFilling();
    endEditCP(thisP, mask);

    sink.attach(obj, &obj->getNumVertices(), project);
    obj->renderGeometry();
    sink.detach();
    target.endFilling();
}

/// Validates obj's GL object in the action's window, which runs handleGL
/// there when needed; returns the window, NULL without one.
template <class ObjectT>
Window *nurbsValidate(ObjectT *obj, DrawActionBase *action)
{
    Window *win = action != NULL ? action->getWindow() : NULL;
    // an object made in the aspect that does no GL work has no id
    if(win != NULL && obj->getSurfaceGLId() != 0)
        win->validateGLObject(UInt32(obj->getSurfaceGLId()));
    return win;
}

/// Calls the display list win keeps under id; list 0 (nothing) for an id
/// beyond the window's table.
inline void nurbsCallList(Window *win, UInt32 id)
{
    glCallList(id < Window::getGLObjectsSize() ? win->getGLObjectId(id) : 0);
}

/// Extends volume, made valid and empty first, by every control point;
/// homogeneous points count where they project to.
void nurbsControlHull(Volume &volume, const GeoPositionsPtr &points);

/// The GL-object callback of a surface or a curve (obj). Only initialize,
/// reinitialize and needrefresh are handled. A GLU too old for the
/// tessellator turns fillGeo off; initialize makes a display list; a dirty
/// object is then built: static geometry with fillGeo, else the display
/// list with dlistCache, else nothing; then it is clean.
template <class ObjectT>
void nurbsHandleGL(ObjectT *obj, Window *win, UInt32 idstatus)
{
    UInt32                  id;
    Window::GLObjectStatusE mode;
    Window::unpackIdStatus(idstatus, id, mode);

    // destroy and final destroy included: no display list is ever deleted
    if(mode != Window::initialize && mode != Window::reinitialize &&
       mode != Window::needrefresh)
        return;

    typename ObjectT::Ptr thisP(obj);
    if(!nurbsGluHasTessellator())
    {
        beginEditCP(thisP, ObjectT::FillGeoFieldMask);
        obj->setFillGeo(false);
        endEditCP(thisP, ObjectT::FillGeoFieldMask);
    }

    if(mode == Window::initialize)
        win->setGLObjectId(id, glGenLists(1));

    if(!obj->getDirty())
        return;

    obj->_nurbsRenderer = gluNewNurbsRenderer();

    if(obj->getFillGeo())
    {
        obj->createGeometry();
    }
    else if(obj->getDlistCache())
    {
        UInt32 list = id < Window::getGLObjectsSize() ? win->getGLObjectId(id) : 0;
        if(list == 0)
        {
            list = glGenLists(1);
            win->setGLObjectId(id, list);
        }
        obj->createDList(list);
    }

    gluDeleteNurbsRenderer(obj->_nurbsRenderer);
    obj->_nurbsRenderer = NULL;

    beginEditCP(thisP, ObjectT::DirtyFieldMask);
    obj->setDirty(false);
    endEditCP(thisP, ObjectT::DirtyFieldMask);
}

/// Sets dirty inside an edit of its mask and asks every window to refresh
/// the object's GL side.
template <class ObjectT>
void nurbsMarkDirty(ObjectT *obj)
{
    typename ObjectT::Ptr thisP(obj);
    beginEditCP(thisP, ObjectT::DirtyFieldMask);
    obj->setDirty(true);
    endEditCP(thisP, ObjectT::DirtyFieldMask);

    if(obj->getSurfaceGLId() > 0)
        Window::refreshGLObject(UInt32(obj->getSurfaceGLId()));
}

template <class PtrT>
class NurbsGLObjects;

/// Registers the object's own GL object and keeps its id in SurfaceGLId;
/// not for the prototype made at startup, nor in the aspect that the
/// inherited Geometry state keeps away from GL work.
template <class ObjectT>
void nurbsRegisterGLObject(ObjectT *obj)
{
    if(GlobalSystemState == Startup || obj->getIgnoreGLForAspect() == Int32(Thread::getAspect()))
        return;

    typename ObjectT::Ptr thisP(obj);
    UInt32                id = NurbsGLObjects<typename ObjectT::Ptr>::add(thisP);

    beginEditCP(thisP, ObjectT::SurfaceGLIdFieldMask);
    obj->setSurfaceGLId(Int32(id));
    endEditCP(thisP, ObjectT::SurfaceGLIdFieldMask);
}

/// Gives the object's GL object back to the windows.
template <class ObjectT>
void nurbsDestroyGLObject(ObjectT *obj)
{
    if(obj->getSurfaceGLId() > 0)
        NurbsGLObjects<typename ObjectT::Ptr>::remove(UInt32(obj->getSurfaceGLId()));
}

/// Routes the window's GL-object callbacks to the object registered under
/// the id. The window calls destroy and finaldestroy at the end of a frame,
/// when the object may be gone: by then it has left the table, so those
/// calls reach nothing.
template <class PtrT>
class NurbsGLObjects
{
  public:
    /// Registers one GL-object id for obj.
    static UInt32 add(const PtrT &obj)
    {
        UInt32 id =
            Window::registerGLObject(osgTypedFunctionVoidFunctor2Ptr<Window, UInt32>(&dispatch), 1);
        table()[id] = obj;
        return id;
    }

    /// Forgets the object and gives the id back to the windows.
    static void remove(UInt32 id)
    {
        table().erase(id);
        Window::destroyGLObject(id, 1);
    }

  private:
    static std::map<UInt32, PtrT> &table(void)
    {
        static std::map<UInt32, PtrT> objects;
        return objects;
    }

    static void dispatch(Window *win, UInt32 idstatus)
    {
        typename std::map<UInt32, PtrT>::iterator it =
            table().find(idstatus >> Window::statusShift);
        if(it != table().end())
            it->second->handleGL(win, idstatus);
    }
};

OSG_END_NAMESPACE

#endif
