#include <OpenSG/OSGSortedPrimitives.h>
#include <OpenSG/PrimitivesRegistration.h>
#include <OpenSG/OSGPrimitivesDrawer.h>
#include <OpenSG/OSGLine.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSphereVolume.h>
#include <OpenSG/OSGWindow.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

OSG_BEGIN_NAMESPACE

namespace
{

UInt32 renderParamsWord = 0;

/// The float's bits as an unsigned number of the same order.
inline UInt32 sorterBits(Real32 value)
{
    UInt32 bits;
    std::memcpy(&bits, &value, sizeof(bits));
    return (bits & 0x80000000u) != 0 ? ~bits : (bits | 0x80000000u);
}

/// Sorts n records ascending by one of their floats, least significant
/// digit first in three passes of 11 bits; a pass whose digit is the same
/// for every record is skipped. scratch holds n records. Equal values keep
/// their order, which the ordering leaves free.
void radixSortSorters(Real32 SortedPrimitives::Sorter::*field, SortedPrimitives::Sorter *records,
                      SortedPrimitives::Sorter *scratch, UInt32 n)
{
    const UInt32 Digits = 2048;
    UInt32 counts[3 * Digits] = {};
    for(UInt32 i = 0; i < n; ++i)
    {
        const UInt32 bits = sorterBits(records[i].*field);
        ++counts[bits & (Digits - 1)];
        ++counts[Digits + ((bits >> 11) & (Digits - 1))];
        ++counts[2 * Digits + (bits >> 22)];
    }

    SortedPrimitives::Sorter *from = records, *to = scratch;
    for(UInt32 pass = 0; pass < 3; ++pass)
    {
        UInt32 *count = &counts[pass * Digits];
        if(std::find(count, count + Digits, n) != count + Digits)
            continue;

        UInt32 start = 0;
        for(UInt32 d = 0; d < Digits; ++d)
        {
            const UInt32 c = count[d];
            count[d]       = start;
            start += c;
        }
        const UInt32 shift = 11 * pass;
        for(UInt32 i = 0; i < n; ++i)
            to[count[(sorterBits(from[i].*field) >> shift) & (Digits - 1)]++] = from[i];
        std::swap(from, to);
    }
    if(from != records)
        std::copy(from, from + n, records);
}

} // namespace

void setRenderParams(UInt32 params)
{
    renderParamsWord = params;
}

UInt32 getRenderParams(void)
{
    return renderParamsWord;
}

UInt32 SortedPrimitives::_arbMultitexture            = 0;
UInt32 SortedPrimitives::_extDrawRangeElements       = 0;
UInt32 SortedPrimitives::_funcClientActiveTextureARB = 0;
UInt32 SortedPrimitives::_funcDrawRangeElementsEXT   = 0;

SortedPrimitives::SortedPrimitives(void) : Inherited()
{
    // registering a known name again gives its id back, so every instance
    // may do this
    _arbMultitexture      = Window::registerExtension("GL_ARB_multitexture");
    _extDrawRangeElements = Window::registerExtension("GL_EXT_draw_range_elements");
    _funcClientActiveTextureARB =
        Window::registerFunction("glClientActiveTextureARB", Int32(_arbMultitexture), 65535);
    _funcDrawRangeElementsEXT =
        Window::registerFunction("glDrawRangeElementsEXT", Int32(_extDrawRangeElements), 65535);
}

SortedPrimitives::SortedPrimitives(const SortedPrimitives &source) : Inherited(source)
{
}

SortedPrimitives::~SortedPrimitives(void)
{
}

void SortedPrimitives::initMethod(void)
{
    registerPrimitivesHandlers<SortedPrimitivesPtr>(getClassType(), &SortedPrimitives::intersect);
}

SortedPrimitivesPtr SortedPrimitives::getPtr(void) const
{
    return SortedPrimitivesPtr(this);
}

// --- drawing -----------------------------------------------------------------------

PrimitivesDrawerBase *SortedPrimitives::findDrawer(void)
{
    if(getRefPoints() == NullFC || getPositions() == NullFC || getTangents() == NullFC ||
       getNormals() == NullFC || getTexCoords() == NullFC || getColors() == NullFC)
        return NULL;

    if(getRefPoints()->getSize() > getOffsetArray().size())
        return NULL;

    if(getIndices() == NullFC)
    {
        FFATAL(("getIndices() NullFC\n"));
        return NULL;
    }

    switch(getMode())
    {
        case 0:
        {
            static PrimitivesDrawer<GeoTraitTriSet> *triangles =
                new PrimitivesDrawer<GeoTraitTriSet>;
            return triangles;
        }
        case 1:
        {
            static PrimitivesDrawer<GeoTraitQuadSet> *quads =
                new PrimitivesDrawer<GeoTraitQuadSet>;
            return quads;
        }
        default:
            return NULL;
    }
}

Action::ResultE SortedPrimitives::drawPrimitives(DrawActionBase *action)
{
    PrimitivesDrawerBase *drawer = findDrawer();
    if(drawer == NULL)
    {
        FWARNING(("SortedPrimitives 0x%lx: couldn't find drawer!\n",
                  static_cast<unsigned long>(reinterpret_cast<std::uintptr_t>(this))));
        return Action::Continue;
    }

    RenderAction *renderAction = dynamic_cast<RenderAction *>(action);
    bool          keepOrder    = (getRenderParams() & 1) != 0 ||
                       (renderAction != NULL && renderAction->getEffectsPass());
    if(!keepOrder)
    {
        SortedPrimitivesPtr thisP = getPtr();
        const UInt32        turn  = getSort();
        beginEditCP(thisP, SortFieldMask);
        setSort((turn + 1) % 4);
        endEditCP(thisP, SortFieldMask);

        if(turn == 0)
        {
            UInt32 count = 0;
            int   *order = getDrawOrder() != 0 ? calcIndex(action, count, NULL) : NULL;
            UInt32 written =
                order != NULL ? drawer->drawIndexed(this, action, order, count)
                              : drawer->draw(this, action, getRefPoints()->getSize());

            beginEditCP(thisP, IndicesSizeFieldMask);
            setIndicesSize(written);
            endEditCP(thisP, IndicesSizeFieldMask);
            delete[] order;
            return Action::Continue;
        }
    }

    drawer->drawIndexed(this, action);
    return Action::Continue;
}

int *SortedPrimitives::calcIndex(DrawActionBase *action, UInt32 &count, int *out)
{
    count = 0;
    GeoPositionsPtr refPoints = getRefPoints();
    if(action == NULL || refPoints == NullFC)
        return NULL;

    // the viewer in object coordinates: world-to-object times camera-to-world
    Matrix toWorld;
    if(RenderAction *renderAction = dynamic_cast<RenderAction *>(action))
        toWorld = renderAction->top_matrix();
    else if(action->getActNode() != NullFC)
        toWorld = action->getActNode()->getToWorld();
    Matrix cameraToObject(toWorld);
    cameraToObject.invert();
    cameraToObject.mult(action->getCameraToWorld());
    const Pnt3f viewer(cameraToObject[3][0], cameraToObject[3][1], cameraToObject[3][2]);

    const UInt32          total     = refPoints->getSize();
    const Real32          threshold = getThresholdVal();
    const MFVec4f        &spheres   = getOccluderSpheres();
    std::vector<Sorter>   sorters(total);
    Real32                split;

    if(!(threshold > 0.f))
    {
        for(UInt32 i = 0; i < total; ++i, ++count)
        {
            const Pnt3f p = refPoints->getValue(i);
            sorters[i].index  = i;
            sorters[i].key    = -viewer.dist2(p);
            sorters[i].height = p[1];
        }
        split = -Real32(count) * threshold;
    }
    else
    {
        UInt32 visible = 0;
        for(UInt32 i = 0; i < total; ++i, ++count)
        {
            const Pnt3f p = refPoints->getValue(i);
            Pnt3f       inWorld;
            toWorld.mult(p, inWorld);
            sorters[i].index  = i;
            sorters[i].key    = -viewer.dist2(p);
            sorters[i].height = inWorld[1];

            // the viewer stays in object and the point in world coordinates
            bool hidden = false;
            if(!spheres.empty())
            {
                const Line sight(viewer, inWorld);
                for(UInt32 s = 0; s < spheres.size() && !hidden; ++s)
                {
                    const Vec4f &sphere = spheres[s];
                    hidden = sight.intersect(
                        SphereVolume(Pnt3f(sphere[0], sphere[1], sphere[2]), sphere[3]));
                }
            }
            if(!hidden)
                ++visible;
        }
        split = total > 0 ? (1.f - Real32(visible) / Real32(total) * threshold) * Real32(count)
                          : 0.f;
    }

    // the order of Sorter's operator< and compareFunc, by a radix sort:
    // a refresh of many groups stays well within a frame
    std::vector<Sorter> scratch(total);
    radixSortSorters(&Sorter::key, sorters.data(), scratch.data(), count);

    // a threshold above 1 puts the split before the list: all of it is then
    // ordered by height
    UInt32 first = 0;
    if(split >= Real32(count))
        first = count;
    else if(split > 0.f)
        first = UInt32(split);
    if(first < count)
        radixSortSorters(&Sorter::height, sorters.data() + first, scratch.data(), count - first);

    if(out == NULL)
        out = new int[count];
    for(UInt32 i = 0; i < count; ++i)
        out[i] = Int32(sorters[i].index);
    return out;
}

Action::ResultE SortedPrimitives::intersect(Action *)
{
    return Action::Continue;
}

void SortedPrimitives::adjustVolume(Volume &volume)
{
    GeoPositionsPtr refPoints = getRefPoints();
    if(refPoints == NullFC)
        return;

    volume.setValid();
    volume.setEmpty(false);

    const Real32 radius = getSize().length();
    for(UInt32 i = 0; i < refPoints->getSize(); ++i)
        volume.extendBy(SphereVolume(refPoints->getValue(i), radius));
}

// --- the arrays --------------------------------------------------------------------

void SortedPrimitives::setIndexArray(const std::vector<int> *array)
{
    if(array == NULL)
        return;

    if(getIndices() == NullFC)
    {
        GeoIndicesUI32Ptr fresh = GeoIndicesUI32::create();
        beginEditCP(fresh);
        fresh->resize(array->size());
        setIndices(fresh);
        endEditCP(fresh);
    }

    GeoIndicesPtr indices = getIndices();
    if(indices->getSize() != array->size())
    {
        beginEditCP(indices);
        indices->resize(array->size());
        endEditCP(indices);
    }

    getIndexArray().getValues().assign(array->begin(), array->end());
}

void SortedPrimitives::setOffsetArray(const std::vector<int> *array)
{
    if(array == NULL)
        return;

    getOffsetArray().getValues().assign(array->begin(), array->end());
}

// --- properties --------------------------------------------------------------------

template <class PropPtrT>
void SortedPrimitives::setProperty(SField<PropPtrT> &field, const PropPtrT &value,
                                   UInt32 fieldId)
{
    SortedPrimitivesPtr thisP = getPtr();
    thisP.setParentFieldPos(UInt16(fieldId));

    addRefCP(value);

    // the field holds the new value before the old one goes: the edit of the
    // old property reaches this core through its parent link
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

void SortedPrimitives::setRefPoints(const GeoPositionsPtr &value)
{
    setProperty(_sfRefPoints, value, RefPointsFieldId);
}

void SortedPrimitives::setPositions(const GeoPositionsPtr &value)
{
    setProperty(_sfPositions, value, PositionsFieldId);
}

void SortedPrimitives::setColors(const GeoColorsPtr &value)
{
    setProperty(_sfColors, value, ColorsFieldId);
}

void SortedPrimitives::setNormals(const GeoNormalsPtr &value)
{
    setProperty(_sfNormals, value, NormalsFieldId);
}

void SortedPrimitives::setTangents(const GeoNormalsPtr &value)
{
    setProperty(_sfTangents, value, TangentsFieldId);
}

void SortedPrimitives::setTexCoords(const GeoTexCoordsPtr &value)
{
    setProperty(_sfTexCoords, value, TexCoordsFieldId);
}

void SortedPrimitives::setIndices(const GeoIndicesPtr &value)
{
    setProperty(_sfIndices, value, IndicesFieldId);
}

void SortedPrimitives::releaseProperty(const AttachmentPtr &prop)
{
    if(prop == NullFC)
        return;
    beginEditCP(prop, Attachment::ParentsFieldMask);
    prop->subParent(getPtr());
    endEditCP(prop, Attachment::ParentsFieldMask);
    subRefCP(prop);
}

// References are given back once, from the aspect-0 copy, not per aspect.
void SortedPrimitives::onDestroy(void)
{
    Inherited::onDestroy();

    releaseProperty(_sfRefPoints.getValue());
    releaseProperty(_sfPositions.getValue());
    releaseProperty(_sfNormals.getValue());
    releaseProperty(_sfTangents.getValue());
    releaseProperty(_sfColors.getValue());
    releaseProperty(_sfTexCoords.getValue());
    releaseProperty(_sfIndices.getValue());

    MaterialPtr material = _sfMaterial.getValue();
    _sfMaterial.setValue(NullFC);
    subRefCP(material);
}

// --- changes -----------------------------------------------------------------------

template <class PropPtrT>
void SortedPrimitives::repairProperty(SField<PropPtrT> &field, BitVector fieldMask,
                                      UInt32 fieldId, BitVector whichField, UInt32 origin)
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

void SortedPrimitives::changed(BitVector whichField, UInt32 origin)
{
    if(whichField & RefPointsFieldMask)
    {
        MFNodePtr &parents = getParents();
        for(UInt32 i = 0; i < parents.size(); ++i)
            parents[i]->invalidateVolume();
    }

    repairProperty(_sfRefPoints, RefPointsFieldMask, RefPointsFieldId, whichField, origin);
    repairProperty(_sfPositions, PositionsFieldMask, PositionsFieldId, whichField, origin);
    repairProperty(_sfColors, ColorsFieldMask, ColorsFieldId, whichField, origin);
    repairProperty(_sfNormals, NormalsFieldMask, NormalsFieldId, whichField, origin);
    repairProperty(_sfTangents, TangentsFieldMask, TangentsFieldId, whichField, origin);
    repairProperty(_sfTexCoords, TexCoordsFieldMask, TexCoordsFieldId, whichField, origin);
    repairProperty(_sfIndices, IndicesFieldMask, IndicesFieldId, whichField, origin);

    if((whichField & MaterialFieldMask) && (origin & ChangedOrigin::Abstract))
        addRefCP(_sfMaterial.getValue());

    Inherited::changed(whichField, origin);
}

void SortedPrimitives::dump(UInt32, const BitVector) const
{
    SLOG << "Dump SortedPrimitives NI" << std::endl;
}

OSG_END_NAMESPACE
