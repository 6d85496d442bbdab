#include "NurbsSupport.h"

#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGRenderAction.h>

#include <cmath>
#include <locale>
#include <sstream>

OSG_BEGIN_NAMESPACE

bool nurbsGluHasTessellator(void)
{
    const char *version = reinterpret_cast<const char *>(gluGetString(GLU_VERSION));

    // read as a C number whatever locale the application has set, so that
    // "1.3" never stops at the full stop
    double             parsed = 0.0;
    std::istringstream in(version != NULL ? version : "");
    in.imbue(std::locale::classic());
    in >> parsed;

    if(Real32(parsed) < 1.3f)
    {
        FWARNING(("Can't create static geometry with glu version %s. "
                  "Version 1.3 and above is needed!\n",
                  version != NULL ? version : "(none)"));
        return false;
    }
    return true;
}

void nurbsRegisterDrawHandlers(FieldContainerType &type)
{
    DrawAction::registerEnterDefault(
        type, osgTypedMethodFunctor2BaseCPtrRef<Action::ResultE, MaterialDrawablePtr, CNodePtr,
                                                Action *>(&MaterialDrawable::drawActionEnterHandler));
    DrawAction::registerLeaveDefault(
        type, osgTypedMethodFunctor2BaseCPtrRef<Action::ResultE, MaterialDrawablePtr, CNodePtr,
                                                Action *>(&MaterialDrawable::drawActionLeaveHandler));
    RenderAction::registerEnterDefault(
        type,
        osgTypedMethodFunctor2BaseCPtrRef<Action::ResultE, MaterialDrawablePtr, CNodePtr,
                                          Action *>(&MaterialDrawable::renderActionEnterHandler));
    RenderAction::registerLeaveDefault(
        type,
        osgTypedMethodFunctor2BaseCPtrRef<Action::ResultE, MaterialDrawablePtr, CNodePtr,
                                          Action *>(&MaterialDrawable::renderActionLeaveHandler));
}

GLenum nurbsCheckKnots(const MFReal32 &knots, UInt32 order)
{
    const UInt32 n = knots.size();
    for(UInt32 i = 0; i < n; ++i)
    {
        if(!std::isfinite(knots[i]))
            return GLU_NURBS_ERROR32;
    }

    // the order of GLU's own checks, so the same data gets the same code
    if(order < 1 || order > NurbsMaxOrder)
        return GLU_NURBS_ERROR1;
    if(n < 2 * order)
        return GLU_NURBS_ERROR2;
    if(!(knots[order - 1] < knots[n - order]))
        return GLU_NURBS_ERROR3;

    for(UInt32 i = 0; i + 1 < n; ++i)
    {
        if(knots[i] > knots[i + 1])
            return GLU_NURBS_ERROR4;
    }
    UInt32 run = 1;
    for(UInt32 i = 0; i + 1 < n; ++i)
    {
        run = knots[i] == knots[i + 1] ? run + 1 : 1;
        if(run > order)
            return GLU_NURBS_ERROR5;
    }
    return 0;
}

GLenum nurbsCheckNet(GeoPropertyArrayInterface *prop, UInt32 minDim, UInt64 needed)
{
    if(prop->getFormat() != GL_FLOAT || prop->getDimension() < minDim)
        return GLU_NURBS_ERROR35;

    if(UInt64(prop->getSize()) < needed)
        return GLU_NURBS_ERROR8;

    const GLfloat *values = nurbsControlData(prop);
    const UInt64   count  = UInt64(prop->getSize()) * prop->getDimension();
    for(UInt64 i = 0; i < count; ++i)
    {
        if(!std::isfinite(values[i]))
            return GLU_NURBS_ERROR8;
    }
    return 0;
}

Real32 nurbsLimitStep(Real64 step, const MFReal32 &knots, UInt32 order, Real32 maxSamples,
                      const char *who)
{
    if(nurbsCheckKnots(knots, order) != 0)
        return Real32(step);

    const UInt32 count = knots.size() - order;
    Real64 range = Real64(knots[count]) - Real64(knots[order - 1]);
    if(!(range > 0.0) || !std::isfinite(range) || step * range <= maxSamples)
        return Real32(step);

    Real32 limited = Real32(maxSamples / range);
    FWARNING(("%s: %g samples per parameter unit over a range of %g lowered to %g\n", who,
              step, range, limited));
    return limited;
}

void nurbsControlHull(Volume &volume, const GeoPositionsPtr &points)
{
    volume.setValid();
    volume.setEmpty();
    if(points == NullFC)
        return;

    GeoPositions4fPtr homogeneous = GeoPositions4fPtr::dcast(points);
    for(UInt32 i = 0; i < points->getSize(); ++i)
    {
        if(homogeneous == NullFC)
        {
            volume.extendBy(points->getValue(i));
            continue;
        }
        const Pnt4f &p = homogeneous->getField()[i];
        Real32       w = p[3] != 0.f ? p[3] : 1.f;
        volume.extendBy(Pnt3f(p[0] / w, p[1] / w, p[2] / w));
    }
}

// --- static geometry ------------------------------------------------------------------

namespace
{

/// prop if it has the concrete type, else a new one of that type.
template <class ConcretePtrT, class PropPtrT>
ConcretePtrT reuseOrCreate(const PropPtrT &prop)
{
    ConcretePtrT concrete = ConcretePtrT::dcast(prop);
    if(concrete == NullFC)
        concrete = ConcretePtrT::StoredObjectType::create();
    return concrete;
}

template <class PropPtrT>
void beginClear(const PropPtrT &prop)
{
    beginEditCP(prop);
    prop->clear();
}

template <class PropPtrT>
void endAll(const PropPtrT &prop)
{
    if(prop != NullFC)
        endEditCP(prop, FieldBits::AllFields);
}

} // namespace

NurbsGeometryTarget::NurbsGeometryTarget(Geometry *geo, bool withShading)
    : _withShading(withShading),
      _types(reuseOrCreate<GeoPTypesUI8Ptr>(geo->getTypes())),
      _lengths(reuseOrCreate<GeoPLengthsUI32Ptr>(geo->getLengths())),
      _indices(reuseOrCreate<GeoIndicesUI32Ptr>(geo->getIndices())),
      _positions(reuseOrCreate<GeoPositions3fPtr>(geo->getPositions()))
{
    if(withShading)
    {
        _normals   = reuseOrCreate<GeoNormals3fPtr>(geo->getNormals());
        _texCoords = reuseOrCreate<GeoTexCoords2fPtr>(geo->getTexCoords());
    }
}

BitVector NurbsGeometryTarget::installMask(void) const
{
    BitVector mask = Geometry::TypesFieldMask | Geometry::LengthsFieldMask |
                     Geometry::IndicesFieldMask | Geometry::PositionsFieldMask |
                     Geometry::IndexMappingFieldMask;
    if(_withShading)
        mask |= Geometry::NormalsFieldMask | Geometry::TexCoordsFieldMask;
    return mask;
}

namespace
{

/// Puts prop into geo through set, unless geo holds it already: setting
/// the same property again would only drop and add the same reference
/// and parent link, at the price of a change notification each.
template <class PropPtrT, class HeldPtrT>
void installProperty(Geometry *geo, void (Geometry::*set)(const HeldPtrT &),
                     const HeldPtrT &held, const PropPtrT &prop)
{
    if(held != prop)
        (geo->*set)(prop);
}

} // namespace

void NurbsGeometryTarget::install(Geometry *geo)
{
    installProperty(geo, &Geometry::setTypes, geo->getTypes(), _types);
    installProperty(geo, &Geometry::setLengths, geo->getLengths(), _lengths);
    installProperty(geo, &Geometry::setIndices, geo->getIndices(), _indices);
    installProperty(geo, &Geometry::setPositions, geo->getPositions(), _positions);

    UInt16 mapping = Geometry::MapPosition;
    if(_withShading)
    {
        installProperty(geo, &Geometry::setNormals, geo->getNormals(), _normals);
        installProperty(geo, &Geometry::setTexCoords, geo->getTexCoords(), _texCoords);
        mapping |= Geometry::MapNormal | Geometry::MapTexCoords;
    }

    geo->getMFIndexMapping()->clear();
    geo->getMFIndexMapping()->push_back(mapping);
}

void NurbsGeometryTarget::clearForFilling(void)
{
    beginClear(_types);
    beginClear(_lengths);
    beginClear(_indices);
    beginClear(_positions);
    if(_withShading)
    {
        beginClear(_normals);
        beginClear(_texCoords);
    }
}

void NurbsGeometryTarget::endFilling(void)
{
    endAll(_types);
    endAll(_lengths);
    endAll(_indices);
    endAll(_positions);
    endAll(_normals);
    endAll(_texCoords);
}

namespace
{

/// The data field of prop if it has the concrete type, else NULL.
template <class ConcretePtrT, class PropPtrT>
typename ConcretePtrT::StoredObjectType::StoredFieldType *dataOf(const PropPtrT &prop)
{
    ConcretePtrT concrete = ConcretePtrT::dcast(prop);
    return concrete != NullFC ? &concrete->getField() : NULL;
}

} // namespace

NurbsTessellationSink::NurbsTessellationSink(void)
    : _types(NULL), _lengths(NULL), _indices(NULL), _positions(NULL), _normals(NULL),
      _texCoords(NULL), _numVertices(NULL), _project(false)
{
}

void NurbsTessellationSink::attach(Geometry *geo, UInt32 *numVertices, bool project)
{
    _types       = dataOf<GeoPTypesUI8Ptr>(geo->getTypes());
    _lengths     = dataOf<GeoPLengthsUI32Ptr>(geo->getLengths());
    _indices     = dataOf<GeoIndicesUI32Ptr>(geo->getIndices());
    _positions   = dataOf<GeoPositions3fPtr>(geo->getPositions());
    _normals     = dataOf<GeoNormals3fPtr>(geo->getNormals());
    _texCoords   = dataOf<GeoTexCoords2fPtr>(geo->getTexCoords());
    _numVertices = numVertices;
    _project     = project;
}

void NurbsTessellationSink::detach(void)
{
    *this = NurbsTessellationSink();
}

void NurbsTessellationSink::begin(GLenum type)
{
    if(_types != NULL)
        _types->push_back(UInt8(type));
    if(_numVertices != NULL)
        *_numVertices = 0;
}

void NurbsTessellationSink::end(void)
{
    if(_lengths != NULL && _numVertices != NULL)
        _lengths->push_back(*_numVertices);
}

void NurbsTessellationSink::vertex(const GLfloat *v)
{
    if(_positions == NULL || _indices == NULL)
        return;

    Pnt3f p(0, 0, 0);
    if(v != NULL)
    {
        Real32 w = _project && v[3] != 0.f ? v[3] : 1.f;
        p.setValues(v[0] / w, v[1] / w, v[2] / w);
    }
    _positions->push_back(p);
    _indices->push_back(_indices->size());
    if(_numVertices != NULL)
        ++*_numVertices;
}

void NurbsTessellationSink::normal(const GLfloat *n)
{
    if(_normals != NULL)
        _normals->push_back(n != NULL ? Vec3f(n[0], n[1], n[2]) : Vec3f(0, 0, 0));
}

void NurbsTessellationSink::texCoord(const GLfloat *t)
{
    if(_texCoords != NULL)
        _texCoords->push_back(t != NULL ? Vec2f(t[0], t[1]) : Vec2f(0, 0));
}

OSG_END_NAMESPACE
