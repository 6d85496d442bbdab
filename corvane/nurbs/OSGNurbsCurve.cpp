#include <OpenSG/OSGNurbsCurve.h>
#include <OpenSG/OSGDrawActionBase.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGWindow.h>

#include "NurbsSupport.h"

#include <cstdint>

OSG_BEGIN_NAMESPACE

namespace
{

/// The curve being tessellated, for GLU's callbacks: one at a time.
NurbsCurvePtr currentCurve;

/// Every field whose change makes the GL-side result out of date.
const BitVector CurveFieldsMask =
    NurbsCurve::ControlPointFieldMask | NurbsCurve::OrderFieldMask | NurbsCurve::KnotFieldMask |
    NurbsCurve::TessellationFieldMask | NurbsCurve::PolylineFieldMask |
    NurbsCurve::ControlCurveFieldMask | NurbsCurve::FillGeoFieldMask;

void nurbsCError(GLenum code)
{
    FWARNING(("Nurbs Curve error: %d/ %s\n", Int32(code),
              reinterpret_cast<const char *>(gluErrorString(code))));
}

/// Where the callbacks write while currentCurve is tessellated.
NurbsTessellationSink curveSink;

void nurbsCBegin(GLenum type)
{
    curveSink.begin(type);
}

void nurbsCEnd(void)
{
    curveSink.end();
}

void nurbsCVertex(GLfloat *v)
{
    curveSink.vertex(v);
}

} // namespace

NurbsCurve::NurbsCurve(void) : Inherited(), _nurbsRenderer(NULL)
{
}

NurbsCurve::NurbsCurve(const NurbsCurve &source) : Inherited(source), _nurbsRenderer(NULL)
{
}

NurbsCurve::~NurbsCurve(void)
{
    if(_nurbsRenderer != NULL)
        gluDeleteNurbsRenderer(_nurbsRenderer);
}

// No intersect handlers: a curve is not picked.
void NurbsCurve::initMethod(void)
{
    nurbsRegisterDrawHandlers(getClassType());
}

void NurbsCurve::onCreate(const NurbsCurve *source)
{
    nurbsRegisterGLObject(this);
    // a copy gives the points back when it goes: it takes its own hold
    nurbsRepairProperty(FieldContainerPtr(getPtr()), ControlPointFieldId, _sfControlPoint,
                        ChangedOrigin::Abstract);
    Inherited::onCreate(source);
}

// The reference goes here and not in the destructor, which runs once per
// aspect.
void NurbsCurve::onDestroy(void)
{
    nurbsReleaseProperty(FieldContainerPtr(getPtr()), _sfControlPoint);
    nurbsDestroyGLObject(this);

    Inherited::onDestroy();
}

void NurbsCurve::setControlPoint(const GeoPositionsPtr &value)
{
    nurbsSetProperty(getPtr(), ControlPointFieldId, _sfControlPoint, value);
}

void NurbsCurve::changed(BitVector whichField, UInt32 origin)
{
    if(whichField & ControlPointFieldMask)
    {
        for(UInt32 i = 0; i < getParents().size(); ++i)
            getParents()[i]->invalidateVolume();
        nurbsRepairProperty(getPtr(), ControlPointFieldId, _sfControlPoint, origin);
    }

    if(whichField & CurveFieldsMask)
        nurbsMarkDirty(this);

    Inherited::changed(whichField, origin);
}

void NurbsCurve::dump(UInt32, const BitVector) const
{
    SLOG << "Dump NurbsCurve NI" << std::endl;
}

void NurbsCurve::adjustVolume(Volume &volume)
{
    nurbsControlHull(volume, getControlPoint());
}

// --- trimming --------------------------------------------------------------------------

Action::ResultE NurbsCurve::trim(DrawActionBase *, GLUnurbs *renderer)
{
    GeoPositionsPtr points = getControlPoint();

    if(!getControlCurve() || renderer == NULL)
        return Action::Continue;

    // a missing piece leaves a gap in the contour, which GLU reports too
    if(points == NullFC)
    {
        nurbsCError(GLU_NURBS_ERROR36);
        return Action::Continue;
    }

    const UInt32 dim  = points->getDimension();
    const GLenum type = dim == 3 ? GLU_MAP1_TRIM_3 : GLU_MAP1_TRIM_2;

    if(getPolyline())
    {
        // GLU takes every point; an empty polyline would make it crash
        GLenum error = nurbsCheckNet(points.getCPtr(), 2, 1);
        if(error != 0)
        {
            nurbsCError(error);
            return Action::Continue;
        }
        gluPwlCurve(renderer, GLint(points->getSize()), nurbsControlData(points.getCPtr()),
                    GLint(dim), type);
        return Action::Continue;
    }

    GLenum error = nurbsCheckKnots(getKnot(), getOrder());
    if(error == 0)
        error = nurbsCheckNet(points.getCPtr(), 2, getKnot().size() - getOrder());
    if(error != 0)
    {
        nurbsCError(error);
        return Action::Continue;
    }
    gluNurbsCurve(renderer, GLint(getKnot().size()), nurbsKnotData(getKnot()), GLint(dim),
                  nurbsControlData(points.getCPtr()), GLint(getOrder()), type);
    return Action::Continue;
}

// --- tessellation ----------------------------------------------------------------------

void NurbsCurve::setTessProps(void)
{
    const Int32 t = getTessellation();
    if(t > 0)
    {
        gluNurbsProperty(_nurbsRenderer, GLU_SAMPLING_METHOD, GLU_DOMAIN_DISTANCE);
        gluNurbsProperty(_nurbsRenderer, GLU_U_STEP,
                         nurbsLimitStep(Real64(t), getKnot(), getOrder(), NurbsMaxCurveSamples,
                                        "NurbsCurve"));
    }
    else
    {
        gluNurbsProperty(_nurbsRenderer, GLU_SAMPLING_METHOD, GLU_PARAMETRIC_ERROR);
        gluNurbsProperty(_nurbsRenderer, GLU_PARAMETRIC_TOLERANCE, Real32(-Int64(t)));
    }
}

void NurbsCurve::renderGeometry(void)
{
    GeoPositionsPtr points = getControlPoint();
    if(points == NullFC)
    {
        if(!getControlCurve())
            nurbsCError(GLU_NURBS_ERROR36);
        return;
    }

    // GLU takes three coordinates per point at least: a trimming curve
    // of two, which a surface's loop hands GLU, is not for drawing
    const UInt32 dim = points->getDimension();
    if(getControlCurve() && dim < 3)
        return;

    GLenum error = nurbsCheckKnots(getKnot(), getOrder());
    if(error == 0)
        error = nurbsCheckNet(points.getCPtr(), 3, getKnot().size() - getOrder());
    if(error != 0)
    {
        nurbsCError(error);
        return;
    }

    gluBeginCurve(_nurbsRenderer);
    gluNurbsCurve(_nurbsRenderer, GLint(getKnot().size()), nurbsKnotData(getKnot()), GLint(dim),
                  nurbsControlData(points.getCPtr()), GLint(getOrder()),
                  dim == 4 ? GL_MAP1_VERTEX_4 : GL_MAP1_VERTEX_3);
    gluEndCurve(_nurbsRenderer);
}

void NurbsCurve::createDList(UInt32 list)
{
    // the pointer shows in the %d and the list in the %p, as ever
    FINFO(("NurbsCurve::createDList(%d) called (%p)\n",
           Int32(UInt32(reinterpret_cast<std::uintptr_t>(this))),
           reinterpret_cast<void *>(std::uintptr_t(list))));

    gluNurbsProperty(_nurbsRenderer, GLU_DISPLAY_MODE, GLU_OUTLINE_PATCH);
    gluNurbsProperty(_nurbsRenderer, GLU_CULLING, 0);
    setTessProps();
    gluNurbsProperty(_nurbsRenderer, GLU_NURBS_MODE, GLU_NURBS_RENDERER);
    nurbsCallback(_nurbsRenderer, GLU_NURBS_ERROR, nurbsCError);

    NurbsCurvePtr thisP(this);
    beginEditCP(thisP, NumVerticesFieldMask);
    setNumVertices(0);
    currentCurve = thisP;
    endEditCP(thisP, NumVerticesFieldMask);

    glNewList(list, GL_COMPILE);
    renderGeometry();
    glEndList();
}

void NurbsCurve::createGeometry(void)
{
    FINFO(("NurbsCurve::createGeometry() called (%p)\n", static_cast<void *>(this)));

    gluNurbsProperty(_nurbsRenderer, GLU_CULLING, 0);
    setTessProps();
    gluNurbsProperty(_nurbsRenderer, GLU_NURBS_MODE, GLU_NURBS_TESSELLATOR);

    nurbsCallback(_nurbsRenderer, GLU_NURBS_ERROR, nurbsCError);
    nurbsCallback(_nurbsRenderer, GLU_NURBS_BEGIN, nurbsCBegin);
    nurbsCallback(_nurbsRenderer, GLU_NURBS_END, nurbsCEnd);
    nurbsCallback(_nurbsRenderer, GLU_NURBS_VERTEX, nurbsCVertex);

    // normals and texture coordinates stay as they are; GLU hands a
    // rational curve's points on homogeneous, unlike a surface's, so they
    // are projected as they come
    nurbsFillStaticGeometry(this, currentCurve, curveSink, false,
                            getControlPoint() != NullFC &&
                                getControlPoint()->getDimension() == 4);

    nurbsCallback(_nurbsRenderer, GLU_NURBS_BEGIN, NULL);
    nurbsCallback(_nurbsRenderer, GLU_NURBS_END, NULL);
    nurbsCallback(_nurbsRenderer, GLU_NURBS_VERTEX, NULL);
}

// --- GL object and drawing ------------------------------------------------------------------

void NurbsCurve::handleGL(Window *win, UInt32 idstatus)
{
    nurbsHandleGL(this, win, idstatus);
}

Action::ResultE NurbsCurve::drawPrimitives(DrawActionBase *action)
{
    Window *win = nurbsValidate(this, action);
    if(win == NULL)
        return Action::Continue;

    if(getControlCurve())
        return Action::Continue;

    if(getPolyline())
    {
        FWARNING(("NurbsCurve::drawPrimitives NYI for linear segments!\n"));
        return Action::Continue;
    }

    if(getFillGeo())
    {
        Inherited::drawPrimitives(action);
        return Action::Continue;
    }

    _nurbsRenderer = gluNewNurbsRenderer();

    if(getDlistCache())
    {
        nurbsCallList(win, UInt32(getSurfaceGLId()));
    }
    else
    {
        gluNurbsProperty(_nurbsRenderer, GLU_DISPLAY_MODE, GLU_OUTLINE_PATCH);
        gluNurbsProperty(_nurbsRenderer, GLU_CULLING, 0);
        setTessProps();
        gluNurbsProperty(_nurbsRenderer, GLU_NURBS_MODE, GLU_NURBS_RENDERER);
        renderGeometry();
    }

    gluDeleteNurbsRenderer(_nurbsRenderer);
    _nurbsRenderer = NULL;

    return Action::Continue;
}

OSG_END_NAMESPACE
