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

void NurbsGeometryTarget::install(Geometry *geo)
{
    geo->setTypes(_types);
    geo->setLengths(_lengths);
    geo->setIndices(_indices);
    geo->setPositions(_positions);

    UInt16 mapping = Geometry::MapPosition;
    if(_withShading)
    {
        geo->setNormals(_normals);
        geo->setTexCoords(_texCoords);
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

void nurbsAppendType(Geometry *geo, GLenum type)
{
    GeoPTypesUI8Ptr types = GeoPTypesUI8Ptr::dcast(geo->getTypes());
    if(types != NullFC)
        types->getField().push_back(UInt8(type));
}

void nurbsAppendLength(Geometry *geo, UInt32 length)
{
    GeoPLengthsUI32Ptr lengths = GeoPLengthsUI32Ptr::dcast(geo->getLengths());
    if(lengths != NullFC)
        lengths->getField().push_back(length);
}

bool nurbsAppendVertex(Geometry *geo, const GLfloat *v)
{
    GeoPositions3fPtr positions = GeoPositions3fPtr::dcast(geo->getPositions());
    GeoIndicesUI32Ptr indices   = GeoIndicesUI32Ptr::dcast(geo->getIndices());
    if(positions == NullFC || indices == NullFC)
        return false;

    positions->getField().push_back(v != NULL ? Pnt3f(v[0], v[1], v[2]) : Pnt3f(0, 0, 0));
    indices->getField().push_back(indices->getField().size());
    return true;
}

void nurbsAppendNormal(Geometry *geo, const GLfloat *n)
{
    GeoNormals3fPtr normals = GeoNormals3fPtr::dcast(geo->getNormals());
    if(normals != NullFC)
        normals->getField().push_back(n != NULL ? Vec3f(n[0], n[1], n[2]) : Vec3f(0, 0, 0));
}

void nurbsAppendTexCoord(Geometry *geo, const GLfloat *t)
{
    GeoTexCoords2fPtr texCoords = GeoTexCoords2fPtr::dcast(geo->getTexCoords());
    if(texCoords != NullFC)
        texCoords->getField().push_back(t != NULL ? Vec2f(t[0], t[1]) : Vec2f(0, 0));
}

OSG_END_NAMESPACE
