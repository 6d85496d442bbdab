#include <OpenSG/OSGPrimitivesDrawer.h>
#include <OpenSG/OSGSortedPrimitives.h>
#include <OpenSG/OSGDrawActionBase.h>
#include <OpenSG/OSGDrawable.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGStatCollector.h>
#include <OpenSG/OSGWindow.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

OSG_BEGIN_NAMESPACE

namespace
{

unsigned long primsAddress(const SortedPrimitives *prims)
{
    return static_cast<unsigned long>(reinterpret_cast<std::uintptr_t>(prims));
}

/// glClientActiveTextureARB where the action's window has multitexture,
/// else NULL: init and exit decide alike from it.
PFNGLCLIENTACTIVETEXTUREARBPROC primsClientActiveTexture(DrawActionBase *action)
{
    if(action == NULL || action->getWindow() == NULL ||
       !action->getWindow()->hasExtension(SortedPrimitives::_arbMultitexture))
        return NULL;
    return reinterpret_cast<PFNGLCLIENTACTIVETEXTUREARBPROC>(
        action->getWindow()->getFunction(SortedPrimitives::_funcClientActiveTextureARB));
}

const GLvoid *primsArrayData(GeoPropertyArrayInterface *prop)
{
    return prop != NULL ? prop->getData() : NULL;
}

/// How many elements of elementBytes each GL reads from the property.
UInt32 primsElementsFor(GeoPropertyArrayInterface *prop, UInt32 elementBytes)
{
    if(prop == NULL)
        return 0;
    return UInt32(UInt64(prop->getSize()) * prop->getDimension() * prop->getFormatSize() /
                  elementBytes);
}

/// The number of vertices that every enabled array holds: positions,
/// normals and tangents are read as three floats, texture coordinates as
/// two, colours as their property declares.
UInt32 primsVertexLimit(SortedPrimitives *prims, bool multitexture)
{
    UInt32 limit = primsElementsFor(getCPtr(prims->getPositions()), 12);
    limit        = std::min(limit, primsElementsFor(getCPtr(prims->getNormals()), 12));
    limit        = std::min(limit, primsElementsFor(getCPtr(prims->getTexCoords()), 8));
    GeoColorsPtr colors = prims->getColors();
    limit = std::min(limit, colors != NullFC ? colors->getSize() : 0u);
    if(multitexture)
        limit = std::min(limit, primsElementsFor(getCPtr(prims->getTangents()), 12));
    return limit;
}

/// The largest of the first count entries of indices.
template <class IndexT>
UInt32 primsLargestIndex(const UInt8 *data, UInt32 count)
{
    const IndexT *entries = reinterpret_cast<const IndexT *>(data);
    UInt32        largest = 0;
    for(UInt32 i = 0; i < count; ++i)
        largest = std::max(largest, UInt32(entries[i]));
    return largest;
}

/// Statistics, the draw call and the client state taken down. The element
/// list is checked against what the arrays hold before GL reads it.
void primsDrawElements(SortedPrimitives *prims, DrawActionBase *action, GLenum primitive,
                       UInt32 count, unsigned char &flag)
{
    GeoPositionsPtr positions = prims->getPositions();
    const UInt32    vertices  = positions != NullFC ? positions->getSize() : 0;

    if(StatCollector *stats = action != NULL ? action->getStatistics() : NULL)
    {
        if(StatIntElem *tris = stats->getElem(Drawable::statNTriangles, false))
            tris->add(Int32(count / 4));
        if(StatIntElem *verts = stats->getElem(Drawable::statNVertices, false))
            verts->add(Int32(vertices));
    }

    GeoIndicesPtr indices = prims->getIndices();
    if(count > 0 && indices != NullFC)
    {
        const UInt32 type    = indices->getFormat();
        UInt32       largest = 0;
        if(count > indices->getSize())
        {
            FWARNING(("SortedPrimitives 0x%lx: %u elements to draw, but indices holds %u\n",
                      primsAddress(prims), count, indices->getSize()));
            count = indices->getSize();
        }
        if(type == GL_UNSIGNED_INT)
            largest = primsLargestIndex<UInt32>(indices->getData(), count);
        else if(type == GL_UNSIGNED_SHORT)
            largest = primsLargestIndex<UInt16>(indices->getData(), count);
        else
            count = 0;

        const UInt32 limit = primsVertexLimit(prims, primsClientActiveTexture(action) != NULL);
        if(count > 0 && largest >= limit)
        {
            FWARNING(("SortedPrimitives 0x%lx: index %u lies past the %u vertices "
                      "that every array holds; nothing drawn\n",
                      primsAddress(prims), largest, limit));
            count = 0;
        }

        if(count > 0)
        {
            Window *win = action != NULL ? action->getWindow() : NULL;
            PFNGLDRAWRANGEELEMENTSEXTPROC drawRange = NULL;
            if(win != NULL && win->hasExtension(SortedPrimitives::_extDrawRangeElements))
                drawRange = reinterpret_cast<PFNGLDRAWRANGEELEMENTSEXTPROC>(
                    win->getFunction(SortedPrimitives::_funcDrawRangeElementsEXT));
            if(drawRange != NULL)
                drawRange(primitive, 0, vertices - 1, GLsizei(count), type, indices->getData());
            else
                glDrawElements(primitive, GLsizei(count), type, indices->getData());
        }
    }

    SortedPrimitivesTraits::exit(prims, action, flag);
}

/// Writes one group, entries begin to end of indexArray, into indices from
/// element c on; false when the group runs past indexArray or indices.
template <class TraitT>
struct SortedGroupWriter;

template <>
struct SortedGroupWriter<GeoTraitTriSet>
{
    static bool write(GeoIndices *indices, const MFInt32 &entries, UInt32 begin, UInt32 end,
                      UInt32 &c)
    {
        const UInt32 room = indices->getSize();
        for(UInt32 k = 0; k < end - begin; k += 3)
        {
            if(begin + k + 2 >= entries.size() || c + 2 >= room)
                return false;
            indices->setValue(UInt32(entries[begin + k]), c);
            indices->setValue(UInt32(entries[begin + k + 1]), c + 1);
            indices->setValue(UInt32(entries[begin + k + 2]), c + 2);
            c += 3;
        }
        return true;
    }
};

template <>
struct SortedGroupWriter<GeoTraitQuadSet>
{
    static bool write(GeoIndices *indices, const MFInt32 &entries, UInt32 begin, UInt32 end,
                      UInt32 &c)
    {
        const UInt32 length = end - begin;
        if(end > entries.size() || c + length > indices->getSize())
            return false;
        if(length == 0)
            return true;
        if(indices->getFormatSize() == sizeof(Int32))
        {
            std::memcpy(indices->getData() + c * sizeof(Int32), &entries[begin],
                        length * sizeof(Int32));
        }
        else
        {
            for(UInt32 k = 0; k < length; ++k)
                indices->setValue(UInt32(entries[begin + k]), c + k);
        }
        c += length;
        return true;
    }
};

} // namespace

// --- client state ------------------------------------------------------------------

void SortedPrimitivesTraits::init(SortedPrimitives *prims, DrawActionBase *action,
                                  unsigned char &)
{
    PFNGLCLIENTACTIVETEXTUREARBPROC activeTexture = primsClientActiveTexture(action);

    glVertexPointer(3, GL_FLOAT, 0, primsArrayData(getCPtr(prims->getPositions())));
    glEnableClientState(GL_VERTEX_ARRAY);
    glNormalPointer(GL_FLOAT, 0, primsArrayData(getCPtr(prims->getNormals())));
    glEnableClientState(GL_NORMAL_ARRAY);
    GeoColorsPtr colors = prims->getColors();
    if(colors != NullFC)
        glColorPointer(GLint(colors->getDimension()), colors->getFormat(), 0, colors->getData());
    glEnableClientState(GL_COLOR_ARRAY);

    if(activeTexture != NULL)
    {
        activeTexture(GL_TEXTURE0_ARB);
        glTexCoordPointer(2, GL_FLOAT, 0, primsArrayData(getCPtr(prims->getTexCoords())));
        glEnableClientState(GL_TEXTURE_COORD_ARRAY);
        activeTexture(GL_TEXTURE1_ARB);
        glTexCoordPointer(3, GL_FLOAT, 0, primsArrayData(getCPtr(prims->getTangents())));
        glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    }
    else
    {
        glTexCoordPointer(2, GL_FLOAT, 0, primsArrayData(getCPtr(prims->getTexCoords())));
        glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    }
}

// Texture unit 1 stays the active client unit after a multitexture pass.
void SortedPrimitivesTraits::exit(SortedPrimitives *, DrawActionBase *action, unsigned char &)
{
    glDisableClientState(GL_VERTEX_ARRAY);
    glDisableClientState(GL_NORMAL_ARRAY);
    glDisableClientState(GL_COLOR_ARRAY);

    if(PFNGLCLIENTACTIVETEXTUREARBPROC activeTexture = primsClientActiveTexture(action))
    {
        activeTexture(GL_TEXTURE0_ARB);
        glDisableClientState(GL_TEXTURE_COORD_ARRAY);
        activeTexture(GL_TEXTURE1_ARB);
        glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    }
    else
    {
        glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    }
}

// --- the drawers -------------------------------------------------------------------

template <class TraitT>
UInt32 PrimitivesDrawer<TraitT>::rebuild(SortedPrimitives *prims, const int *order, UInt32 num)
{
    GeoIndicesPtr indices = prims->getIndices();
    if(indices == NullFC)
        return 0;

    const MFInt32 &entries = prims->getIndexArray();
    const MFInt32 &offsets = prims->getOffsetArray();

    // the farthest lowerBound fraction is left out
    const Real32 skip  = Real32(num) * prims->getLowerBound();
    const UInt32 start = skip >= Real32(num) ? num : skip > 0.f ? UInt32(skip) : 0;

    UInt32 c = 0, broken = 0;
    bool   full = false;
    for(UInt32 i = start; i < num && !full; ++i)
    {
        const Int64 g = order != NULL ? order[i] : Int64(i);
        if(g < 0 || UInt64(g) + 1 >= offsets.size() || offsets[g] < 0 ||
           offsets[g + 1] < offsets[g])
        {
            ++broken;
            continue;
        }
        full = !SortedGroupWriter<TraitT>::write(getCPtr(indices), entries, UInt32(offsets[g]),
                                                 UInt32(offsets[g + 1]), c);
    }

    beginEditCP(indices);
    endEditCP(indices);

    if(broken > 0)
        FWARNING(("SortedPrimitives 0x%lx: %u groups have no valid span in offsetArray "
                  "and are left out\n",
                  primsAddress(prims), broken));
    if(full)
        FWARNING(("SortedPrimitives 0x%lx: the groups run past indexArray or indices; "
                  "the element list stops at %u\n",
                  primsAddress(prims), c));
    return c;
}

template <class TraitT>
UInt32 PrimitivesDrawer<TraitT>::draw(SortedPrimitives *prims, DrawActionBase *action,
                                      UInt32 num)
{
    return drawIndexed(prims, action, NULL, num);
}

template <class TraitT>
UInt32 PrimitivesDrawer<TraitT>::drawIndexed(SortedPrimitives *prims, DrawActionBase *action,
                                             int *order, UInt32 num)
{
    unsigned char flag = 1;
    SortedPrimitivesTraits::init(prims, action, flag);
    const UInt32 count = rebuild(prims, order, num);
    primsDrawElements(prims, action, TraitT::Primitive, count, flag);
    return count;
}

template <class TraitT>
UInt32 PrimitivesDrawer<TraitT>::drawIndexed(SortedPrimitives *prims, DrawActionBase *action)
{
    unsigned char flag = 1;
    SortedPrimitivesTraits::init(prims, action, flag);
    primsDrawElements(prims, action, TraitT::Primitive, prims->getIndicesSize(), flag);
    return prims->getIndicesSize();
}

template class PrimitivesDrawer<GeoTraitTriSet>;
template class PrimitivesDrawer<GeoTraitQuadSet>;

OSG_END_NAMESPACE
