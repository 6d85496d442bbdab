#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGeoPump.h>
#include <OpenSG/OSGGeoFunctions.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGMaterial.h>
#include <OpenSG/OSGWindow.h>
#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGIntersectActor.h>
#include <OpenSG/OSGStatCollector.h>
#include <OpenSG/OSGTypedFunctors.h>

#include <algorithm>
#include <limits>

OSG_BEGIN_NAMESPACE

namespace
{

/// Every field that changes what the geometry draws; vbo is not one of
/// them (switching it alone does not rebuild anything).
const BitVector DrawableFieldsMask =
    Geometry::MaterialFieldMask | Geometry::TypesFieldMask | Geometry::LengthsFieldMask |
    Geometry::PositionsFieldMask | Geometry::NormalsFieldMask | Geometry::ColorsFieldMask |
    Geometry::SecondaryColorsFieldMask | Geometry::TexCoordsFieldMask |
    Geometry::TexCoords1FieldMask | Geometry::TexCoords2FieldMask |
    Geometry::TexCoords3FieldMask | Geometry::TexCoords4FieldMask |
    Geometry::TexCoords5FieldMask | Geometry::TexCoords6FieldMask |
    Geometry::TexCoords7FieldMask | Geometry::IndicesFieldMask |
    Geometry::IndexMappingFieldMask | Geometry::DlistCacheFieldMask;

} // namespace

// --- construction ------------------------------------------------------------------

Geometry::Geometry(void)
    : Inherited(), _volumeCache(), _numTriangles(0), _numLines(0), _numPoints(0),
      _numVertices(0), _numPrimitives(0), _numBytesOnGfxCard(0)
{
    _volumeCache.setValid();
    _volumeCache.setEmpty();
}

Geometry::Geometry(const Geometry &source)
    : Inherited(source), _volumeCache(source._volumeCache), _numTriangles(0),
      _numLines(0), _numPoints(0), _numVertices(0), _numPrimitives(0),
      _numBytesOnGfxCard(0)
{
}

Geometry::~Geometry(void)
{
}

void Geometry::initMethod(void)
{
    DrawAction::registerEnterDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<Action::ResultE, MaterialDrawablePtr, CNodePtr,
                                          Action *>(&MaterialDrawable::drawActionEnterHandler));
    DrawAction::registerLeaveDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<Action::ResultE, MaterialDrawablePtr, CNodePtr,
                                          Action *>(&MaterialDrawable::drawActionLeaveHandler));

    RenderAction::registerEnterDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<Action::ResultE, MaterialDrawablePtr, CNodePtr,
                                          Action *>(&MaterialDrawable::renderActionEnterHandler));
    RenderAction::registerLeaveDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<Action::ResultE, MaterialDrawablePtr, CNodePtr,
                                          Action *>(&MaterialDrawable::renderActionLeaveHandler));

    IntersectAction::registerEnterDefault(
        getClassType(),
        osgTypedMethodFunctor2BaseCPtrRef<Action::ResultE, GeometryPtr, CNodePtr, Action *>(
            &Geometry::intersect));

    IntersectActor::regClassEnter(
        osgTypedMethodFunctor2BaseCPtr<NewActionTypes::ResultE, GeometryPtr, NodeCorePtr,
                                       ActorBase::FunctorArgumentType &>(
            &Geometry::intersectActor),
        getClassType());

    GeoVBO::registerExtensions();
}

void Geometry::onCreate(const Geometry *)
{
    // the prototype made while the types are initialised gets no GL object
    if(GlobalSystemState == Startup)
        return;

    if(getIgnoreGLForAspect() == Int32(Thread::getAspect()))
        return;

    GeometryPtr thisP = getPtr();
    UInt32      id    = Window::registerGLObject(makeGLFunctor(thisP), 2);

    beginEditCP(thisP, GLIdFieldMask);
    setGLId(Int32(id));
    endEditCP(thisP, GLIdFieldMask);
}

void Geometry::releaseProperty(AttachmentPtr att)
{
    if(att == NullFC)
        return;
    beginEditCP(att, Attachment::ParentsFieldMask);
    att->subParent(getPtr());
    endEditCP(att, Attachment::ParentsFieldMask);
    subRefCP(att);
}

// Releasing references happens here and not in the destructor: the
// destructor runs once per aspect copy, this once per container.
void Geometry::onDestroy(void)
{
    Inherited::onDestroy();

    if(getGLId() > 0)
        Window::destroyGLObject(UInt32(getGLId()), 2);

    releaseProperty(_sfTypes.getValue());
    releaseProperty(_sfLengths.getValue());
    releaseProperty(_sfPositions.getValue());
    releaseProperty(_sfNormals.getValue());
    releaseProperty(_sfColors.getValue());
    releaseProperty(_sfSecondaryColors.getValue());
    releaseProperty(_sfTexCoords.getValue());
    releaseProperty(_sfTexCoords1.getValue());
    releaseProperty(_sfTexCoords2.getValue());
    releaseProperty(_sfTexCoords3.getValue());
    releaseProperty(_sfTexCoords4.getValue());
    releaseProperty(_sfTexCoords5.getValue());
    releaseProperty(_sfTexCoords6.getValue());
    releaseProperty(_sfTexCoords7.getValue());
    releaseProperty(_sfIndices.getValue());

    _sfTypes.setValue(NullFC);
    _sfLengths.setValue(NullFC);
    _sfPositions.setValue(NullFC);
    _sfNormals.setValue(NullFC);
    _sfColors.setValue(NullFC);
    _sfSecondaryColors.setValue(NullFC);
    _sfTexCoords.setValue(NullFC);
    _sfTexCoords1.setValue(NullFC);
    _sfTexCoords2.setValue(NullFC);
    _sfTexCoords3.setValue(NullFC);
    _sfTexCoords4.setValue(NullFC);
    _sfTexCoords5.setValue(NullFC);
    _sfTexCoords6.setValue(NullFC);
    _sfTexCoords7.setValue(NullFC);
    _sfIndices.setValue(NullFC);

    MaterialPtr mat = _sfMaterial.getValue();
    _sfMaterial.setValue(NullFC);
    subRefCP(mat);
}

GeometryPtr Geometry::getPtr(void) const
{
    return GeometryPtr(this);
}

// --- properties --------------------------------------------------------------------

template <class PropPtrT>
void Geometry::setProperty(SField<PropPtrT> &field, const PropPtrT &value, UInt32 fieldId)
{
    GeometryPtr thisP = getPtr();
    GeoParentFieldPos::set(thisP, UInt16(fieldId));

    addRefCP(value);

    // The field takes the new property before the old one is released: the
    // edits below make this geometry look at its properties, and a solely
    // owned old one is gone after its subRefCP.
    PropPtrT old = field.getValue();
    field.setValue(value);

    if(old != NullFC)
    {
        beginEditCP(old, Attachment::ParentsFieldMask);
        old->subParent(thisP);
        endEditCP(old, Attachment::ParentsFieldMask);
        subRefCP(old);
    }

    if(value != NullFC)
    {
        beginEditCP(value, Attachment::ParentsFieldMask);
        value->addParent(thisP);
        endEditCP(value, Attachment::ParentsFieldMask);
    }
}

void Geometry::setTypes(const GeoPTypesPtr &value)
{
    setProperty(_sfTypes, value, TypesFieldId);
}

void Geometry::setLengths(const GeoPLengthsPtr &value)
{
    setProperty(_sfLengths, value, LengthsFieldId);
}

void Geometry::setPositions(const GeoPositionsPtr &value)
{
    setProperty(_sfPositions, value, PositionsFieldId);
}

void Geometry::setNormals(const GeoNormalsPtr &value)
{
    setProperty(_sfNormals, value, NormalsFieldId);
}

void Geometry::setColors(const GeoColorsPtr &value)
{
    setProperty(_sfColors, value, ColorsFieldId);
}

void Geometry::setSecondaryColors(const GeoColorsPtr &value)
{
    setProperty(_sfSecondaryColors, value, SecondaryColorsFieldId);
}

void Geometry::setTexCoords(const GeoTexCoordsPtr &value)
{
    setProperty(_sfTexCoords, value, TexCoordsFieldId);
}

void Geometry::setTexCoords1(const GeoTexCoordsPtr &value)
{
    setProperty(_sfTexCoords1, value, TexCoords1FieldId);
}

void Geometry::setTexCoords2(const GeoTexCoordsPtr &value)
{
    setProperty(_sfTexCoords2, value, TexCoords2FieldId);
}

void Geometry::setTexCoords3(const GeoTexCoordsPtr &value)
{
    setProperty(_sfTexCoords3, value, TexCoords3FieldId);
}

void Geometry::setTexCoords4(const GeoTexCoordsPtr &value)
{
    setProperty(_sfTexCoords4, value, TexCoords4FieldId);
}

void Geometry::setTexCoords5(const GeoTexCoordsPtr &value)
{
    setProperty(_sfTexCoords5, value, TexCoords5FieldId);
}

void Geometry::setTexCoords6(const GeoTexCoordsPtr &value)
{
    setProperty(_sfTexCoords6, value, TexCoords6FieldId);
}

void Geometry::setTexCoords7(const GeoTexCoordsPtr &value)
{
    setProperty(_sfTexCoords7, value, TexCoords7FieldId);
}

void Geometry::setIndices(const GeoIndicesPtr &value)
{
    setProperty(_sfIndices, value, IndicesFieldId);
}

// --- index mapping -------------------------------------------------------------------

const char *Geometry::mapType(UInt8 type)
{
    switch(type)
    {
        case GL_POINTS:         return "Points";
        case GL_LINES:          return "Lines";
        case GL_LINE_LOOP:      return "LineLoop";
        case GL_LINE_STRIP:     return "LineStrip";
        case GL_TRIANGLES:      return "Triangles";
        case GL_TRIANGLE_STRIP: return "TriangleStrip";
        case GL_TRIANGLE_FAN:   return "TriangleFan";
        case GL_QUADS:          return "Quads";
        case GL_QUAD_STRIP:     return "QuadStrip";
        case GL_POLYGON:        return "Polygon";
    }
    return "Unknown Primitive";
}

Int16 Geometry::calcMappingIndex(UInt16 attrib) const
{
    const MFUInt16 &mapping = _mfIndexMapping;
    for(Int32 i = Int32(mapping.size()) - 1; i >= 0; --i)
    {
        if(mapping[i] & attrib)
            return Int16(i);
    }
    return -1;
}

bool Geometry::isSingleIndex(void) const
{
    return _mfIndexMapping.size() < 2;
}

GeoPropertyArrayInterface *Geometry::getProperty(Int32 mapID)
{
    switch(mapID)
    {
        case 0:                 return NULL;
        case MapPosition:       return getPositions().getCPtr();
        case MapNormal:         return getNormals().getCPtr();
        case MapColor:          return getColors().getCPtr();
        case MapSecondaryColor: return getSecondaryColors().getCPtr();
        case MapTexCoords:      return getTexCoords().getCPtr();
        case MapTexCoords1:     return getTexCoords1().getCPtr();
        case MapTexCoords2:     return getTexCoords2().getCPtr();
        case MapTexCoords3:     return getTexCoords3().getCPtr();
        case MapTexCoords4:     return getTexCoords4().getCPtr();
        case MapTexCoords5:     return getTexCoords5().getCPtr();
        case MapTexCoords6:     return getTexCoords6().getCPtr();
        case MapTexCoords7:     return getTexCoords7().getCPtr();
    }
    FFATAL(("Geometry::getProperty: illegal mapID %d\n", mapID));
    return NULL;
}

// --- changes ---------------------------------------------------------------------

template <class PropPtrT>
void Geometry::repairProperty(SField<PropPtrT> &field, BitVector fieldMask, UInt32 fieldId,
                              BitVector whichField, UInt32 origin)
{
    if(!(whichField & fieldMask) || !(origin & ChangedOrigin::Abstract))
        return;

    PropPtrT prop = field.getValue();
    if(origin & ChangedOrigin::AbstrCheckValid)
    {
        if(prop != NullFC && prop->findParent(getPtr()) == -1)
        {
            field.setValue(NullFC);
            setProperty(field, prop, fieldId);
        }
    }
    else if(origin & ChangedOrigin::AbstrIncRefCount)
    {
        addRefCP(prop);
    }
    else
    {
        field.setValue(NullFC);
        setProperty(field, prop, fieldId);
    }
}

void Geometry::changed(BitVector whichField, UInt32 origin)
{
    repairProperty(_sfTypes, TypesFieldMask, TypesFieldId, whichField, origin);
    repairProperty(_sfLengths, LengthsFieldMask, LengthsFieldId, whichField, origin);

    if(whichField & PositionsFieldMask)
    {
        for(UInt32 i = 0; i < _parents.size(); ++i)
        {
            _volumeCache.setValid();
            _volumeCache.setEmpty();
            _parents[i]->invalidateVolume();
        }
    }
    repairProperty(_sfPositions, PositionsFieldMask, PositionsFieldId, whichField, origin);

    repairProperty(_sfNormals, NormalsFieldMask, NormalsFieldId, whichField, origin);
    repairProperty(_sfColors, ColorsFieldMask, ColorsFieldId, whichField, origin);
    repairProperty(_sfSecondaryColors, SecondaryColorsFieldMask, SecondaryColorsFieldId,
                   whichField, origin);
    repairProperty(_sfTexCoords, TexCoordsFieldMask, TexCoordsFieldId, whichField, origin);
    repairProperty(_sfTexCoords1, TexCoords1FieldMask, TexCoords1FieldId, whichField, origin);
    repairProperty(_sfTexCoords2, TexCoords2FieldMask, TexCoords2FieldId, whichField, origin);
    repairProperty(_sfTexCoords3, TexCoords3FieldMask, TexCoords3FieldId, whichField, origin);
    repairProperty(_sfTexCoords4, TexCoords4FieldMask, TexCoords4FieldId, whichField, origin);
    repairProperty(_sfTexCoords5, TexCoords5FieldMask, TexCoords5FieldId, whichField, origin);
    repairProperty(_sfTexCoords6, TexCoords6FieldMask, TexCoords6FieldId, whichField, origin);
    repairProperty(_sfTexCoords7, TexCoords7FieldMask, TexCoords7FieldId, whichField, origin);
    repairProperty(_sfIndices, IndicesFieldMask, IndicesFieldId, whichField, origin);

    if((whichField & MaterialFieldMask) && (origin & ChangedOrigin::Abstract))
    {
        if(origin & ChangedOrigin::AbstrIncRefCount)
        {
            addRefCP(_sfMaterial.getValue());
        }
        else
        {
            MaterialPtr mat = _sfMaterial.getValue();
            _sfMaterial.setValue(NullFC);
            setMaterial(mat);
        }
    }

    if(whichField & (IndicesFieldMask | LengthsFieldMask | TypesFieldMask | IndexMappingFieldMask))
        updateIndexRanges();

    if((whichField & DrawableFieldsMask) && getIgnoreGLForAspect() != Int32(Thread::getAspect()))
    {
        if(getDlistCache() || getVbo())
        {
            if(getGLId() == 0)
            {
                GeometryPtr thisP = getPtr();
                UInt32      id    = Window::registerGLObject(makeGLFunctor(thisP), 2);
                beginEditCP(thisP, GLIdFieldMask);
                setGLId(Int32(id));
                endEditCP(thisP, GLIdFieldMask);
            }
            // a new material changes no vertex data
            if((whichField & DrawableFieldsMask) != MaterialFieldMask)
                Window::refreshGLObject(UInt32(getGLId()));
        }
        else
        {
            if(getGLId() != 0)
                Window::destroyGLObject(UInt32(getGLId()), 2);
            setGLId(0);
        }
    }

    Inherited::changed(whichField, origin);
}

/// Smallest and largest index, overall and per primitive, for range drawing.
void Geometry::updateIndexRanges(void)
{
    _mfLowindices.clear();
    _mfHighindices.clear();
    _sfMinindex.setValue(0);
    _sfMaxindex.setValue(0);

    GeoIndicesPtr ind = getIndices();
    if(ind == NullFC || ind->getSize() == 0)
        return;

    UInt32 nmap   = std::max<UInt32>(1, _mfIndexMapping.size());
    UInt32 nInd   = ind->getSize();
    UInt32 gmin   = std::numeric_limits<UInt32>::max();
    UInt32 gmax   = 0;

    for(PrimitiveIterator it = beginPrimitives(); !it.isAtEnd(); ++it)
    {
        UInt32 lo    = std::numeric_limits<UInt32>::max();
        UInt32 hi    = 0;
        UInt32 first = UInt32(it.getVertexIndex(0)) * nmap;
        UInt32 last  = std::min(nInd, first + it.getLength() * nmap);
        for(UInt32 i = first; i < last; ++i)
        {
            UInt32 v = ind->getValue(i);
            lo       = std::min(lo, v);
            hi       = std::max(hi, v);
        }
        if(lo > hi)
            lo = hi = 0;
        _mfLowindices.push_back(lo);
        _mfHighindices.push_back(hi);
        gmin = std::min(gmin, lo);
        gmax = std::max(gmax, hi);
    }
    if(gmin > gmax)
        gmin = gmax = 0;
    _sfMinindex.setValue(gmin);
    _sfMaxindex.setValue(gmax);
}

// --- volume ------------------------------------------------------------------------

void Geometry::adjustVolume(Volume &volume)
{
    if(!_volumeCache.isEmpty())
    {
        volume.setValid();
        volume.extendBy(_volumeCache);
        return;
    }

    _volumeCache.setValid();

    if(getPositions() == NullFC)
        return;

    for(PrimitiveIterator it = beginPrimitives(); !it.isAtEnd(); ++it)
    {
        for(UInt32 v = 0; v < it.getLength(); ++v)
        {
            if(it.getPositionIndex(Int32(v)) < 0 ||
               UInt32(it.getPositionIndex(Int32(v))) >= getPositions()->getSize())
                continue;
            _volumeCache.extendBy(it.getPosition(Int32(v)));
        }
    }

    volume.setValid();
    volume.extendBy(_volumeCache);
}

// --- GL objects ----------------------------------------------------------------------

void Geometry::invalidateDlistCache(void)
{
    Window::refreshGLObject(UInt32(getGLId()));
}

GeoVBO *Geometry::getVboObject(Window *win)
{
    if(win == NULL || getGLId() <= 0)
        return NULL;
    return GeoVBO::get(win->getGLObjectId(UInt32(getGLId()) + 1));
}

void Geometry::updateCachedGeoStat(void)
{
    _numTriangles = _numLines = _numPoints = 0;
    _numVertices = _numPrimitives = 0;

    for(PrimitiveIterator it = beginPrimitives(); !it.isAtEnd(); ++it)
    {
        _numVertices += it.getLength();
        ++_numPrimitives;
    }
    calcPrimitiveCount(getPtr(), _numTriangles, _numLines, _numPoints);

    _numBytesOnGfxCard = 0;
    for(UInt32 slot = 0; slot < PrimitiveIterator::NumAttributes; ++slot)
    {
        GeoPropertyArrayInterface *p = getProperty(1 << slot);
        if(p != NULL)
            _numBytesOnGfxCard += p->getSize() * p->getDimension() * p->getFormatSize();
    }
    if(getIndices() != NullFC)
        _numBytesOnGfxCard += getIndices()->getSize() * getIndices()->getFormatSize();
}

void Geometry::handleGL(Window *win, UInt32 idstatus)
{
    Window::GLObjectStatusE mode;
    UInt32                  id;
    Window::unpackIdStatus(idstatus, id, mode);

    if(mode == Window::initialize || mode == Window::needrefresh ||
       mode == Window::reinitialize)
    {
        updateCachedGeoStat();

        bool useVBO = getVbo() && isSingleIndex() &&
                      win->hasExtension(GeoVBO::getExtensionId());

        if(mode == Window::initialize)
        {
            if(useVBO)
            {
                win->setGLObjectId(id, 0);
                win->setGLObjectId(id + 1, GeoVBO::add(new GeoVBO(win)));
            }
            else
            {
                win->setGLObjectId(id, glGenLists(1));
                win->setGLObjectId(id + 1, 0);
            }
        }

        if(useVBO)
        {
            UInt32 list = win->getGLObjectId(id);
            if(list != 0)
            {
                glDeleteLists(list, 1);
                win->setGLObjectId(id, 0);
            }
            GeoVBO *vbo = GeoVBO::get(win->getGLObjectId(id + 1));
            if(vbo == NULL)
            {
                vbo = new GeoVBO(win);
                win->setGLObjectId(id + 1, GeoVBO::add(vbo));
            }
            // data the buffers cannot hold goes to a display list instead
            if(vbo->update(this))
                return;
        }

        UInt32 slot = win->getGLObjectId(id + 1);
        if(slot != 0)
        {
            GeoVBO *vbo = GeoVBO::get(slot);
            if(vbo != NULL)
                vbo->release();
            GeoVBO::remove(slot);
            win->setGLObjectId(id + 1, 0);
        }

        UInt32 list = win->getGLObjectId(id);
        if(list == 0)
        {
            list = glGenLists(1);
            win->setGLObjectId(id, list);
        }

        glNewList(list, GL_COMPILE);
        geoPumpDraw(this);
        glEndList();

        if(glGetError() == GL_OUT_OF_MEMORY)
        {
            SFATAL << "Geometry::handleGL: out of memory compiling the display list of "
                   << static_cast<void *>(this) << std::endl;
            glDeleteLists(list, 1);
            win->setGLObjectId(id, 0);
        }
    }
    else if(mode == Window::destroy || mode == Window::finaldestroy)
    {
        handleDestroyGL(win, idstatus);
    }
    else
    {
        SWARNING << "Geometry(" << static_cast<void *>(this) << ")::handleGL: illegal mode "
                 << mode << " for id " << id << std::endl;
    }
}

// Runs after the geometry itself is gone (the window works off its destroy
// list at the end of a frame), so it may use nothing but the window and id.
void Geometry::handleDestroyGL(Window *win, UInt32 idstatus)
{
    Window::GLObjectStatusE mode;
    UInt32                  id;
    Window::unpackIdStatus(idstatus, id, mode);

    if(mode != Window::destroy && mode != Window::finaldestroy)
        return;

    // the buffer record is ours to free in either case; GL objects only go
    // while the context still exists (destroy)
    UInt32 slot = win->getGLObjectId(id + 1);
    if(slot != 0)
    {
        GeoVBO *vbo = GeoVBO::get(slot);
        if(vbo != NULL && mode == Window::destroy)
            vbo->release();
        GeoVBO::remove(slot);
        win->setGLObjectId(id + 1, 0);
    }
    if(mode != Window::destroy)
        return;

    UInt32 list = win->getGLObjectId(id);
    if(list != 0)
        glDeleteLists(list, 1);
    win->setGLObjectId(id, 0);
    win->setGLObjectId(id + 1, 0);
}

Window::GLObjectFunctor Geometry::makeGLFunctor(GeometryPtr geo)
{
    return osgGLObjectFunctor(geo, &Geometry::handleGL, &Geometry::handleDestroyGL);
}

bool Geometry::drawVBO(Window *win, UInt32 id)
{
    if(win == NULL || id == 0)
        return false;
    win->validateGLObject(id);
    GeoVBO *vbo = GeoVBO::get(win->getGLObjectId(id + 1));
    if(vbo == NULL)
        return false;
    vbo->draw();
    return true;
}

Action::ResultE Geometry::drawPrimitives(DrawActionBase *action)
{
    Window *win    = action != NULL ? action->getWindow() : NULL;
    UInt32  id     = UInt32(std::max<Int32>(0, getGLId()));
    bool    cached = false;

    if(getColors() != NullFC)
        glPushAttrib(GL_CURRENT_BIT);

    if(getVbo())
        cached = drawVBO(win, id);

    // without a window or an id there is nothing to cache in
    if(!cached && getDlistCache() && win != NULL && id != 0)
    {
        win->validateGLObject(id);
        UInt32 list = win->getGLObjectId(id);
        if(list != 0)
        {
            glCallList(list);
            cached = true;
        }
    }

    if(!cached)
        geoPumpDraw(this);

    if(getColors() != NullFC)
        glPopAttrib();

    StatCollector *coll = action != NULL ? action->getStatistics() : NULL;
    StatIntElem   *el   = coll != NULL ? coll->getElem(Drawable::statNTriangles, false) : NULL;
    if(el != NULL)
    {
        el->add(_numTriangles);
        coll->getElem(Drawable::statNLines)->add(_numLines);
        coll->getElem(Drawable::statNPoints)->add(_numPoints);
        coll->getElem(Drawable::statNVertices)->add(_numVertices);
        coll->getElem(Drawable::statNPrimitives)->add(_numPrimitives);
        if(cached)
        {
            StatIntOnceElem *bytes = coll->getElem(Drawable::statNGeoBytes, false);
            if(bytes != NULL)
                bytes->add(getGLId(), _numBytesOnGfxCard);
        }
    }

    return Action::Continue;
}

// --- picking -------------------------------------------------------------------------

Action::ResultE Geometry::intersect(Action *action)
{
    IntersectAction *ia = dynamic_cast<IntersectAction *>(action);
    if(ia == NULL)
        return Action::Continue;

    const DynamicVolume &vol = ia->getActNode()->editVolume(true);
    if(vol.isValid() && !vol.intersect(ia->getLine()))
        return Action::Skip;

    Real32 t;
    Vec3f  norm;
    for(TriangleIterator it = beginTriangles(); !it.isAtEnd(); ++it)
    {
        if(ia->getLine().intersect(it.getPosition(0), it.getPosition(1), it.getPosition(2), t,
                                   &norm))
        {
            ia->setHit(t, ia->getActNode(), it.getIndex(), norm);
        }
    }
    return Action::Continue;
}

NewActionTypes::ResultE Geometry::intersectActor(ActorBase::FunctorArgumentType &funcArg)
{
    IntersectActor *actor = dynamic_cast<IntersectActor *>(funcArg.getActor());
    if(actor == NULL)
        return NewActionTypes::Continue;

    Real32 scale = actor->getScaleFactor();
    Real32 t;
    Vec3f  norm;
    for(TriangleIterator it = beginTriangles(); !it.isAtEnd(); ++it)
    {
        if(actor->getRay().intersect(it.getPosition(0), it.getPosition(1), it.getPosition(2),
                                     t, &norm))
        {
            actor->setHit(t * scale, funcArg.getNode(), it.getIndex(), norm);
        }
    }
    actor->setupChildrenPriorities();
    return NewActionTypes::Continue;
}

// --- iteration -----------------------------------------------------------------------

PrimitiveIterator Geometry::beginPrimitives(void) const
{
    PrimitiveIterator it(getPtr());
    it.setToBegin();
    return it;
}

PrimitiveIterator Geometry::endPrimitives(void) const
{
    PrimitiveIterator it(getPtr());
    it.setToEnd();
    return it;
}

TriangleIterator Geometry::beginTriangles(void) const
{
    TriangleIterator it(getPtr());
    it.setToBegin();
    return it;
}

TriangleIterator Geometry::endTriangles(void) const
{
    TriangleIterator it(getPtr());
    it.setToEnd();
    return it;
}

FaceIterator Geometry::beginFaces(void) const
{
    FaceIterator it(getPtr());
    it.setToBegin();
    return it;
}

FaceIterator Geometry::endFaces(void) const
{
    FaceIterator it(getPtr());
    it.setToEnd();
    return it;
}

// --- misc ----------------------------------------------------------------------------

GeometryPtr Geometry::clone(void)
{
    GeometryPtr geo = Geometry::create();
    if(geo == NullFC)
        return geo;

    beginEditCP(geo);
    if(getTypes() != NullFC)           geo->setTypes(getTypes()->clone());
    if(getLengths() != NullFC)         geo->setLengths(getLengths()->clone());
    if(getPositions() != NullFC)       geo->setPositions(getPositions()->clone());
    if(getNormals() != NullFC)         geo->setNormals(getNormals()->clone());
    if(getColors() != NullFC)          geo->setColors(getColors()->clone());
    if(getSecondaryColors() != NullFC) geo->setSecondaryColors(getSecondaryColors()->clone());
    if(getTexCoords() != NullFC)       geo->setTexCoords(getTexCoords()->clone());
    if(getTexCoords1() != NullFC)      geo->setTexCoords1(getTexCoords1()->clone());
    if(getTexCoords2() != NullFC)      geo->setTexCoords2(getTexCoords2()->clone());
    if(getTexCoords3() != NullFC)      geo->setTexCoords3(getTexCoords3()->clone());
    if(getTexCoords4() != NullFC)      geo->setTexCoords4(getTexCoords4()->clone());
    if(getTexCoords5() != NullFC)      geo->setTexCoords5(getTexCoords5()->clone());
    if(getTexCoords6() != NullFC)      geo->setTexCoords6(getTexCoords6()->clone());
    if(getTexCoords7() != NullFC)      geo->setTexCoords7(getTexCoords7()->clone());
    if(getIndices() != NullFC)         geo->setIndices(getIndices()->clone());
    geo->getMFIndexMapping()->setValues(_mfIndexMapping);
    geo->setMaterial(getMaterial());
    geo->setDlistCache(getDlistCache());
    geo->setVbo(getVbo());
    endEditCP(geo);

    return geo;
}

void Geometry::dump(UInt32, const BitVector) const
{
    SLOG << "Dump Geometry NI" << std::endl;
}

OSG_END_NAMESPACE
