#include <OpenSG/OSGNurbsSurface.h>
#include <OpenSG/OSGNurbsTrimmingLoop.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGIntersectActor.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGDrawActionBase.h>
#include <OpenSG/OSGWindow.h>

#include "NurbsSupport.h"

#include <cstdint>

OSG_BEGIN_NAMESPACE

namespace
{

/// The surface being tessellated, for GLU's callbacks, which carry no user
/// data: one tessellation at a time.
NurbsSurfacePtr currentSurface;

/// Every field whose change makes the GL-side result out of date.
const BitVector SurfaceFieldsMask =
    NurbsSurface::ControlPointFieldMask | NurbsSurface::UOrderFieldMask |
    NurbsSurface::VOrderFieldMask | NurbsSurface::UKnotFieldMask |
    NurbsSurface::VKnotFieldMask | NurbsSurface::UTessellationFieldMask |
    NurbsSurface::VTessellationFieldMask | NurbsSurface::UDimFieldMask |
    NurbsSurface::VDimFieldMask | NurbsSurface::ControlTexCoordFieldMask |
    NurbsSurface::TrimmingLoopFieldMask | NurbsSurface::FillGeoFieldMask;

void nurbsError(GLenum code)
{
    FWARNING(("Nurbs Surface error: %d/ %s\n", Int32(code),
              reinterpret_cast<const char *>(gluErrorString(code))));
}

/// Where the callbacks write while currentSurface is tessellated.
NurbsTessellationSink surfaceSink;

void nurbsBegin(GLenum type)
{
    surfaceSink.begin(type);
}

void nurbsEnd(void)
{
    surfaceSink.end();
}

void nurbsVertex(GLfloat *v)
{
    surfaceSink.vertex(v);
}

void nurbsNormal(GLfloat *n)
{
    surfaceSink.normal(n);
}

void nurbsTexCoord(GLfloat *t)
{
    surfaceSink.texCoord(t);
}

/// GLU's step for a sampling setting: a positive setting is a number of
/// spans, 0 two steps per control point, a negative one a multiple of the
/// control-point count.
Real64 surfaceStep(Int32 setting, UInt32 dim)
{
    if(setting > 0)
        return Real64(setting) + 1.0;
    if(setting == 0)
        return 2.0 * Real64(dim) + 1.0;
    return 1.0 - Real64(setting) * Real64(dim);
}

} // namespace

NurbsSurface::NurbsSurface(void) : Inherited(), _nurbsRenderer(NULL)
{
}

NurbsSurface::NurbsSurface(const NurbsSurface &source) : Inherited(source), _nurbsRenderer(NULL)
{
}

NurbsSurface::~NurbsSurface(void)
{
    if(_nurbsRenderer != NULL)
        gluDeleteNurbsRenderer(_nurbsRenderer);
}

void NurbsSurface::initMethod(void)
{
    nurbsRegisterDrawHandlers(getClassType());

    // picking sees the inherited properties: only static geometry is hit
    IntersectAction::registerEnterDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<Action::ResultE, GeometryPtr, CNodePtr, Action *>(
            &Geometry::intersect));

    IntersectActor::regClassEnter(
        osgTypedMethodFunctor2BaseCPtr<NewActionTypes::ResultE, GeometryPtr, NodeCorePtr,
                                       ActorBase::FunctorArgumentType &>(
            &Geometry::intersectActor),
        getClassType());
}

void NurbsSurface::onCreate(const NurbsSurface *source)
{
    nurbsRegisterGLObject(this);

    // a copy holds the nets of its source: with references and links of
    // its own, since it gives them back when it goes
    FieldContainerPtr thisP = getPtr();
    nurbsRepairProperty(thisP, ControlPointFieldId, _sfControlPoint, ChangedOrigin::Abstract);
    nurbsRepairProperty(thisP, ControlTexCoordFieldId, _sfControlTexCoord,
                        ChangedOrigin::Abstract);

    Inherited::onCreate(source);
}

// References go here and not in the destructor, which runs once per aspect.
void NurbsSurface::onDestroy(void)
{
    FieldContainerPtr thisP = getPtr();
    nurbsReleaseProperty(thisP, _sfControlPoint);
    nurbsReleaseProperty(thisP, _sfControlTexCoord);
    nurbsDestroyGLObject(this);

    Inherited::onDestroy();
}

void NurbsSurface::setControlPoint(const GeoPositionsPtr &value)
{
    nurbsSetProperty(getPtr(), ControlPointFieldId, _sfControlPoint, value);
}

void NurbsSurface::setControlTexCoord(const GeoTexCoordsPtr &value)
{
    nurbsSetProperty(getPtr(), ControlTexCoordFieldId, _sfControlTexCoord, value);
}

void NurbsSurface::changed(BitVector whichField, UInt32 origin)
{
    if(whichField & ControlPointFieldMask)
    {
        for(UInt32 i = 0; i < getParents().size(); ++i)
            getParents()[i]->invalidateVolume();
        nurbsRepairProperty(getPtr(), ControlPointFieldId, _sfControlPoint, origin);
    }
    if(whichField & ControlTexCoordFieldMask)
        nurbsRepairProperty(getPtr(), ControlTexCoordFieldId, _sfControlTexCoord, origin);

    // dirty itself is not in the mask, so clearing it does not re-arm it
    if(whichField & SurfaceFieldsMask)
        nurbsMarkDirty(this);

    Inherited::changed(whichField, origin);
}

void NurbsSurface::dump(UInt32, const BitVector) const
{
    SLOG << "Dump NurbsSurface NI" << std::endl;
}

void NurbsSurface::adjustVolume(Volume &volume)
{
    nurbsControlHull(volume, getControlPoint());
}

// --- tessellation ----------------------------------------------------------------------

void NurbsSurface::setTessProps(bool domainDistance)
{
    const Int32 u = getUTessellation();
    const Int32 v = getVTessellation();

    if(!domainDistance && (u <= 0 || v <= 0))
    {
        Int64 tolerance = (Int64(u < 0 ? -Int64(u) : u) + (v < 0 ? -Int64(v) : v)) >> 1;
        gluNurbsProperty(_nurbsRenderer, GLU_SAMPLING_METHOD, GLU_PARAMETRIC_ERROR);
        gluNurbsProperty(_nurbsRenderer, GLU_PARAMETRIC_TOLERANCE, Real32(tolerance));
        return;
    }

    Real64 uStep = domainDistance ? surfaceStep(u, getUDim()) : Real64(u);
    Real64 vStep = domainDistance ? surfaceStep(v, getVDim()) : Real64(v);

    // GLU's u runs along the first knot vector it is given, which is v
    gluNurbsProperty(_nurbsRenderer, GLU_SAMPLING_METHOD, GLU_DOMAIN_DISTANCE);
    gluNurbsProperty(_nurbsRenderer, GLU_U_STEP,
                     nurbsLimitStep(uStep, getVKnot(), getVOrder(), NurbsMaxSurfaceSamples,
                                    "NurbsSurface"));
    gluNurbsProperty(_nurbsRenderer, GLU_V_STEP,
                     nurbsLimitStep(vStep, getUKnot(), getUOrder(), NurbsMaxSurfaceSamples,
                                    "NurbsSurface"));
}

void NurbsSurface::renderGeometry(void)
{
    GeoPositionsPtr points    = getControlPoint();
    GeoTexCoordsPtr texCoords = getControlTexCoord();
    // both nets are needed: without either nothing is emitted, and the
    // log says why the surface stays invisible
    if(points == NullFC || texCoords == NullFC)
    {
        nurbsError(GLU_NURBS_ERROR36);
        return;
    }

    // GLU reads as many control points as the knots and orders ask for and
    // never looks at the net's size, so a net that is too small, of another
    // number type or with values that are no numbers goes no further
    GLenum error = nurbsCheckKnots(getUKnot(), getUOrder());
    if(error == 0)
        error = nurbsCheckKnots(getVKnot(), getVOrder());
    if(error == 0)
    {
        // GLU takes a row of as many points as the u knots ask for, and
        // as many rows as the v knots ask for, uDim points apart
        const UInt32 uCount = getUKnot().size() - getUOrder();
        const UInt32 vCount = getVKnot().size() - getVOrder();
        const UInt64 needed = UInt64(getUDim()) * getVDim();
        if(uCount > getUDim() || vCount > getVDim())
            error = GLU_NURBS_ERROR8;
        if(error == 0)
            error = nurbsCheckNet(points.getCPtr(), 3, needed);
        if(error == 0)
            error = nurbsCheckNet(texCoords.getCPtr(), 2, needed);
    }
    if(error != 0)
    {
        nurbsError(error);
        return;
    }

    const GLint pointDim = GLint(points->getDimension());
    const GLint texDim   = GLint(texCoords->getDimension());
    const GLint uDim     = GLint(getUDim());

    gluBeginSurface(_nurbsRenderer);

    gluNurbsSurface(_nurbsRenderer, GLint(getVKnot().size()), nurbsKnotData(getVKnot()),
                    GLint(getUKnot().size()), nurbsKnotData(getUKnot()), uDim * pointDim,
                    pointDim, nurbsControlData(points.getCPtr()), GLint(getVOrder()),
                    GLint(getUOrder()), pointDim == 4 ? GL_MAP2_VERTEX_4 : GL_MAP2_VERTEX_3);

    gluNurbsSurface(_nurbsRenderer, GLint(getVKnot().size()), nurbsKnotData(getVKnot()),
                    GLint(getUKnot().size()), nurbsKnotData(getUKnot()), uDim * texDim, texDim,
                    nurbsControlData(texCoords.getCPtr()), GLint(getVOrder()),
                    GLint(getUOrder()), GL_MAP2_TEXTURE_COORD_2);

    for(UInt32 i = 0; i < getTrimmingLoop().size(); ++i)
    {
        NurbsTrimmingLoopPtr loop = NurbsTrimmingLoopPtr::dcast(getTrimmingLoop()[i]);
        if(loop == NullFC)
            continue;
        gluBeginTrim(_nurbsRenderer);
        loop->trim(NULL, _nurbsRenderer);
        gluEndTrim(_nurbsRenderer);
    }

    gluEndSurface(_nurbsRenderer);
}

void NurbsSurface::createDList(UInt32 list)
{
    // the pointer shows in the %d and the list in the %p: that order is
    // what the log has always said
    FINFO(("NurbsSurface::createDList(%d) called (%p)\n",
           Int32(UInt32(reinterpret_cast<std::uintptr_t>(this))),
           reinterpret_cast<void *>(std::uintptr_t(list))));

    gluNurbsProperty(_nurbsRenderer, GLU_CULLING, 0);
    setTessProps(true);
    gluNurbsProperty(_nurbsRenderer, GLU_NURBS_MODE, GLU_NURBS_RENDERER);
    nurbsCallback(_nurbsRenderer, GLU_NURBS_ERROR, nurbsError);

    NurbsSurfacePtr thisP(this);
    beginEditCP(thisP, NumVerticesFieldMask);
    setNumVertices(0);
    currentSurface = thisP;
    endEditCP(thisP, NumVerticesFieldMask);

    // no display mode here: the list holds the filled surface whatever the
    // polygon mode it is called under
    glNewList(list, GL_COMPILE);
    glEnable(GL_AUTO_NORMAL);
    glEnable(GL_NORMALIZE);
    renderGeometry();
    glDisable(GL_NORMALIZE);
    glDisable(GL_AUTO_NORMAL);
    glEndList();
}

void NurbsSurface::createGeometry(void)
{
    FINFO(("NurbsSurface::createGeometry() called (%p)\n", static_cast<void *>(this)));

    gluNurbsProperty(_nurbsRenderer, GLU_CULLING, 0);
    setTessProps(true);
    gluNurbsProperty(_nurbsRenderer, GLU_NURBS_MODE, GLU_NURBS_TESSELLATOR);

    nurbsCallback(_nurbsRenderer, GLU_NURBS_ERROR, nurbsError);
    nurbsCallback(_nurbsRenderer, GLU_NURBS_BEGIN, nurbsBegin);
    nurbsCallback(_nurbsRenderer, GLU_NURBS_END, nurbsEnd);
    nurbsCallback(_nurbsRenderer, GLU_NURBS_VERTEX, nurbsVertex);
    nurbsCallback(_nurbsRenderer, GLU_NURBS_NORMAL, nurbsNormal);
    nurbsCallback(_nurbsRenderer, GLU_NURBS_TEXTURE_COORD, nurbsTexCoord);

    nurbsFillStaticGeometry(this, currentSurface, surfaceSink, true, false);

    // the error callback stays until the renderer goes
    nurbsCallback(_nurbsRenderer, GLU_NURBS_BEGIN, NULL);
    nurbsCallback(_nurbsRenderer, GLU_NURBS_END, NULL);
    nurbsCallback(_nurbsRenderer, GLU_NURBS_VERTEX, NULL);
    nurbsCallback(_nurbsRenderer, GLU_NURBS_NORMAL, NULL);
    nurbsCallback(_nurbsRenderer, GLU_NURBS_TEXTURE_COORD, NULL);
}

// --- GL object and drawing ------------------------------------------------------------------

void NurbsSurface::handleGL(Window *win, UInt32 idstatus)
{
    nurbsHandleGL(this, win, idstatus);
}

Action::ResultE NurbsSurface::drawPrimitives(DrawActionBase *action)
{
    Window *win = nurbsValidate(this, action);
    if(win == NULL)
        return Action::Continue;

    if(getFillGeo())
    {
        Inherited::drawPrimitives(action);
        return Action::Continue;
    }

    _nurbsRenderer = gluNewNurbsRenderer();

    GLint polygonMode[2] = {GL_FILL, GL_FILL};
    glGetIntegerv(GL_POLYGON_MODE, polygonMode);
    gluNurbsProperty(_nurbsRenderer, GLU_DISPLAY_MODE,
                     polygonMode[0] == GL_FILL   ? GLU_FILL
                     : polygonMode[0] == GL_LINE ? GLU_OUTLINE_PATCH
                                                 : GLU_OUTLINE_POLYGON);

    if(getDlistCache())
    {
        nurbsCallList(win, UInt32(getSurfaceGLId()));
    }
    else
    {
        gluNurbsProperty(_nurbsRenderer, GLU_CULLING, 0);
        setTessProps(true);
        gluNurbsProperty(_nurbsRenderer, GLU_NURBS_MODE, GLU_NURBS_RENDERER);

        // current, pixel mode, fog, depth, accum, stencil and viewport:
        // neither the enable nor the eval bit, so the two enables outlive
        // the pop
        glPushAttrib(0x0FA1);
        glEnable(GL_AUTO_NORMAL);
        glEnable(GL_NORMALIZE);
        renderGeometry();
        glPopAttrib();
    }

    gluDeleteNurbsRenderer(_nurbsRenderer);
    _nurbsRenderer = NULL;

    return Action::Continue;
}

OSG_END_NAMESPACE
