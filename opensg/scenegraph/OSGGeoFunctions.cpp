#include <OpenSG/OSGGeoFunctions.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGSimpleGeometry.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <utility>
#include <vector>

OSG_BEGIN_NAMESPACE

namespace
{

/// The setter of a texture coordinate field, by its Geometry field id.
bool setTexCoordsById(GeometryPtr geo, Int32 fieldId, const GeoTexCoordsPtr &tc)
{
    switch(fieldId)
    {
        case Geometry::TexCoordsFieldId:  geo->setTexCoords(tc); return true;
        case Geometry::TexCoords1FieldId: geo->setTexCoords1(tc); return true;
        case Geometry::TexCoords2FieldId: geo->setTexCoords2(tc); return true;
        case Geometry::TexCoords3FieldId: geo->setTexCoords3(tc); return true;
        case Geometry::TexCoords4FieldId: geo->setTexCoords4(tc); return true;
        case Geometry::TexCoords5FieldId: geo->setTexCoords5(tc); return true;
        case Geometry::TexCoords6FieldId: geo->setTexCoords6(tc); return true;
        case Geometry::TexCoords7FieldId: geo->setTexCoords7(tc); return true;
    }
    return false;
}

bool isTexCoordsFieldId(Int32 id)
{
    return id >= Int32(Geometry::TexCoordsFieldId) && id <= Int32(Geometry::TexCoords7FieldId);
}

/// The mapping bit of a texture coordinate field id (0 for anything else).
UInt16 mapBitOfFieldId(Int32 id)
{
    if(!isTexCoordsFieldId(id))
        return 0;
    return UInt16(Geometry::MapTexCoords << (id - Int32(Geometry::TexCoordsFieldId)));
}

/// Checks a destination field id for calcVertexTangents: a texture
/// coordinate field gets a new GeoTexCoords4f, anything else means none.
GeoTexCoords4fPtr installDestination(GeometryPtr geo, Int32 &fieldId)
{
    if(fieldId == -1)
        return NullFC;

    if(!isTexCoordsFieldId(fieldId))
    {
        FWARNING(("calcVertexTangents: field id %d is no texture coordinate field, "
                  "the result is not stored\n",
                  fieldId));
        fieldId = -1;
        return NullFC;
    }

    GeoTexCoords4fPtr prop = GeoTexCoords4f::create();
    beginEditCP(geo);
    setTexCoordsById(geo, fieldId, prop);
    endEditCP(geo);
    return prop;
}

/// The attribute bits of every property the geometry has.
UInt16 presentAttributes(GeometryPtr geo)
{
    UInt16 bits = 0;
    for(UInt32 a = 0; a < PrimitiveIterator::NumAttributes; ++a)
    {
        if(geo->getProperty(1 << a) != NULL)
            bits |= UInt16(1 << a);
    }
    return bits;
}

/// Rewrites the index tuples of a geometry: the bits of `remove` leave
/// every mapping entry (an entry left without bits goes, with its index
/// column), and a new last entry `add` gets the index addIndex[tuple].
/// A single-indexed geometry first becomes a one-entry mapping of all its
/// attributes. The caller holds the edit of the mapping and the indices.
void appendIndexColumn(GeometryPtr geo, UInt16 remove, UInt16 add,
                       const std::vector<UInt32> &addIndex)
{
    GeoIndicesPtr ind     = geo->getIndices();
    MFUInt16     &mapping = *geo->getMFIndexMapping();

    std::vector<UInt16> oldMap(mapping.begin(), mapping.end());
    if(oldMap.empty())
        oldMap.push_back(UInt16(presentAttributes(geo) | Geometry::MapPosition));

    UInt32 n       = UInt32(oldMap.size());
    UInt32 nTuples = ind->getSize() / n;

    std::vector<bool>   keep(n);
    std::vector<UInt16> newMap;
    for(UInt32 j = 0; j < n; ++j)
    {
        UInt16 bits = UInt16(oldMap[j] & ~remove);
        keep[j]     = bits != 0;
        if(keep[j])
            newMap.push_back(bits);
    }
    newMap.push_back(add);

    std::vector<UInt32> newInd;
    newInd.reserve(size_t(nTuples) * newMap.size());
    for(UInt32 t = 0; t < nTuples; ++t)
    {
        for(UInt32 j = 0; j < n; ++j)
        {
            if(keep[j])
                newInd.push_back(ind->getValue(t * n + j));
        }
        newInd.push_back(t < addIndex.size() ? addIndex[t] : 0);
    }

    ind->clear();
    for(size_t i = 0; i < newInd.size(); ++i)
        ind->push_back(newInd[i]);

    mapping.clear();
    for(size_t j = 0; j < newMap.size(); ++j)
        mapping.push_back(newMap[j]);
}

/// Index entries per vertex of an indexed geometry (at least 1).
UInt32 indexTupleSize(GeometryPtr geo)
{
    return std::max<UInt32>(1, geo->getMFIndexMapping()->size());
}

/// Gives a non-indexed geometry one index per vertex, so that every
/// attribute keeps the value it had. The caller holds the edit of the
/// indices and the mapping.
void makeIndexed(GeometryPtr geo)
{
    UInt32 vertices = 0;
    for(PrimitiveIterator it = geo->beginPrimitives(); !it.isAtEnd(); ++it)
        vertices = std::max(vertices, UInt32(it.getVertexIndex(0)) + it.getLength());

    GeoIndicesUI32Ptr ind = GeoIndicesUI32::create();
    beginEditCP(ind);
    for(UInt32 v = 0; v < vertices; ++v)
        ind->push_back(v);
    endEditCP(ind);
    geo->setIndices(ind);
    geo->getMFIndexMapping()->clear();
}

/// Unit normal of a face: edges of a triangle, diagonals of a quad.
Vec3f faceNormal(const FaceIterator &it)
{
    Vec3f n = it.getLength() == 4
                  ? (it.getPosition(2) - it.getPosition(0)).cross(it.getPosition(3) - it.getPosition(1))
                  : (it.getPosition(1) - it.getPosition(0)).cross(it.getPosition(2) - it.getPosition(0));
    n.normalize();
    return n;
}

/// A node with a GL_LINES geometry from the pairs of points, unlit.
NodePtr makeLinesNode(const std::vector<Pnt3f> &points)
{
    GeoPositions3fPtr pos = GeoPositions3f::create();
    beginEditCP(pos);
    for(size_t i = 0; i < points.size(); ++i)
        pos->push_back(points[i]);
    endEditCP(pos);

    GeoPTypesUI8Ptr types = GeoPTypesUI8::create();
    beginEditCP(types);
    types->push_back(GL_LINES);
    endEditCP(types);

    GeoPLengthsUI32Ptr lens = GeoPLengthsUI32::create();
    beginEditCP(lens);
    lens->push_back(UInt32(points.size()));
    endEditCP(lens);

    GeometryPtr lines = Geometry::create();
    beginEditCP(lines);
    lines->setPositions(pos);
    lines->setTypes(types);
    lines->setLengths(lens);
    lines->setMaterial(getDefaultUnlitMaterial());
    endEditCP(lines);
    return makeNodeFor(lines);
}

} // namespace

// --- normals -------------------------------------------------------------------------

void calcVertexNormals(GeometryPtr geo)
{
    if(geo == NullFC || geo->getPositions() == NullFC)
    {
        FWARNING(("calcVertexNormals: no geometry or no positions\n"));
        return;
    }

    // the geometry's own normals are reused
    GeoNormalsPtr norms = geo->getNormals();
    if(norms == NullFC)
        norms = GeoNormals3f::create();
    const UInt32 count = geo->getPositions()->getSize();

    beginEditCP(norms);
    norms->resize(count);

    // normals shared with another geometry keep the entries this one
    // does not use
    std::vector<bool> mine(count, norms->getParents().size() <= 1);
    if(norms->getParents().size() > 1)
    {
        for(TriangleIterator it = geo->beginTriangles(); !it.isAtEnd(); ++it)
        {
            for(Int32 c = 0; c < 3; ++c)
            {
                Int32 pi = it.getPositionIndex(c);
                if(pi >= 0 && UInt32(pi) < count)
                    mine[pi] = true;
            }
        }
    }

    std::vector<Vec3f> sum(count, Vec3f(0.f, 0.f, 0.f));
    for(TriangleIterator it = geo->beginTriangles(); !it.isAtEnd(); ++it)
    {
        // every face counts once, whatever its area
        Pnt3f p0 = it.getPosition(0);
        Vec3f n  = (it.getPosition(1) - p0).cross(it.getPosition(2) - p0);
        n.normalize();
        for(Int32 c = 0; c < 3; ++c)
        {
            Int32 pi = it.getPositionIndex(c);
            if(pi >= 0 && UInt32(pi) < count)
                sum[pi] += n;
        }
    }
    for(UInt32 i = 0; i < count; ++i)
    {
        if(!mine[i])
            continue;
        sum[i].normalize();
        norms->setValue(sum[i], i);
    }
    endEditCP(norms);

    // the normals follow the position index
    beginEditCP(geo);
    geo->setNormals(norms);
    MFUInt16 &mapping = *geo->getMFIndexMapping();
    if(!mapping.empty())
    {
        Int32 normalEntry = geo->calcMappingIndex(Geometry::MapNormal);
        if(normalEntry >= 0)
            mapping[normalEntry] &= UInt16(~Geometry::MapNormal);
        Int32 positionEntry = geo->calcMappingIndex(Geometry::MapPosition);
        if(positionEntry >= 0)
            mapping[positionEntry] |= Geometry::MapNormal;
    }
    endEditCP(geo);
}

void calcVertexNormals(GeometryPtr geo, Real32 creaseAngle)
{
    if(creaseAngle >= Pi)
    {
        calcVertexNormals(geo);
        return;
    }
    if(geo == NullFC || geo->getPositions() == NullFC)
    {
        FWARNING(("calcVertexNormals: no geometry or no positions\n"));
        return;
    }

    struct Tri
    {
        Vec3f  unit;
        Int32  vertex[3];
        Int32  position[3];
    };

    std::vector<Tri> tris;
    UInt32           numVertices = 0;
    for(TriangleIterator it = geo->beginTriangles(); !it.isAtEnd(); ++it)
    {
        Tri   t;
        Pnt3f p0   = it.getPosition(0);
        t.unit     = (it.getPosition(1) - p0).cross(it.getPosition(2) - p0);
        t.unit.normalize();
        for(Int32 c = 0; c < 3; ++c)
        {
            t.vertex[c]   = it.getIndex(c);
            t.position[c] = it.getPositionIndex(c);
            numVertices   = std::max(numVertices, UInt32(t.vertex[c]) + 1);
        }
        tris.push_back(t);
    }

    std::map<Int32, std::vector<UInt32> > byPosition;
    std::vector<Int32>                    firstTri(numVertices, -1);
    std::vector<Int32>                    vertexPos(numVertices, -1);
    for(UInt32 t = 0; t < tris.size(); ++t)
    {
        for(Int32 c = 0; c < 3; ++c)
        {
            byPosition[tris[t].position[c]].push_back(t);
            if(firstTri[tris[t].vertex[c]] < 0)
            {
                firstTri[tris[t].vertex[c]]  = Int32(t);
                vertexPos[tris[t].vertex[c]] = tris[t].position[c];
            }
        }
    }

    Real32             cosCrease = std::cos(creaseAngle);
    std::vector<Vec3f> vertexNormal(numVertices, Vec3f(0.f, 0.f, 1.f));
    for(UInt32 v = 0; v < numVertices; ++v)
    {
        if(firstTri[v] < 0)
            continue;
        const Vec3f              &ref = tris[firstTri[v]].unit;
        const std::vector<UInt32> &around = byPosition[vertexPos[v]];
        Vec3f                     sum(0.f, 0.f, 0.f);
        std::vector<Vec3f>        used;
        for(size_t i = 0; i < around.size(); ++i)
        {
            // equal face normals (coplanar neighbours, a triangle using
            // the position twice) count once
            const Vec3f &n = tris[around[i]].unit;
            if(n.dot(ref) < cosCrease - 1e-6f ||
               std::find(used.begin(), used.end(), n) != used.end())
                continue;
            used.push_back(n);
            sum += n;
        }
        sum.normalize();
        vertexNormal[v] = sum;
    }

    GeoNormals3fPtr norms = GeoNormals3f::create();
    const BitVector mask  = Geometry::NormalsFieldMask | Geometry::IndexMappingFieldMask |
                           Geometry::IndicesFieldMask;

    if(geo->getIndices() == NullFC)
    {
        // non-indexed: one normal per vertex, in vertex order
        beginEditCP(norms);
        for(UInt32 v = 0; v < numVertices; ++v)
            norms->getField().push_back(vertexNormal[v]);
        endEditCP(norms);

        beginEditCP(geo, mask);
        geo->setNormals(norms);
        endEditCP(geo, mask);
        return;
    }

    // indexed: equal normals at one position share an entry; every index
    // tuple gets a normal index of its own
    std::map<std::pair<Int32, std::vector<UInt32> >, UInt32> unique;
    std::vector<UInt32> normalIndex(numVertices, 0);
    beginEditCP(norms);
    for(UInt32 v = 0; v < numVertices; ++v)
    {
        std::vector<UInt32> bits(3);
        std::memcpy(&bits[0], vertexNormal[v].getValues(), sizeof(Real32) * 3);
        std::pair<Int32, std::vector<UInt32> > key(vertexPos[v], bits);
        std::map<std::pair<Int32, std::vector<UInt32> >, UInt32>::iterator f = unique.find(key);
        if(f == unique.end())
        {
            UInt32 index = norms->getField().size();
            norms->getField().push_back(vertexNormal[v]);
            f = unique.insert(std::make_pair(key, index)).first;
        }
        normalIndex[v] = f->second;
    }
    endEditCP(norms);

    beginEditCP(geo, mask);
    geo->setNormals(norms);
    appendIndexColumn(geo, Geometry::MapNormal, Geometry::MapNormal, normalIndex);
    endEditCP(geo, mask);
}

// --- tangents ------------------------------------------------------------------------

void calcVertexTangents(GeometryPtr geo, Int32 srcTexIndex, Int32 dstAttribTan,
                        Int32 dstAttribBin)
{
    if(geo == NullFC)
        return;

    if(dstAttribTan == dstAttribBin)
        dstAttribBin = -1;

    if(srcTexIndex < 0 || srcTexIndex > 7)
        FWARNING(("calcVertexTangents: no texture coordinates %d\n", srcTexIndex));

    GeoTexCoords4fPtr tangent  = installDestination(geo, dstAttribTan);
    GeoTexCoords4fPtr binormal = installDestination(geo, dstAttribBin);

    if(srcTexIndex < 0 || srcTexIndex > 3 || (dstAttribTan == -1 && dstAttribBin == -1))
    {
        FFATAL(("Index set not supported in calcVertexTangents()\n"));
        return;
    }

    GeoIndicesPtr ind = geo->getIndices();
    if(ind == NullFC || ind->getSize() == 0)
    {
        FFATAL(("Geo without indices in calcVertexTangents()\n"));
        return;
    }
    if(geo->getPositions() == NullFC)
    {
        FFATAL(("Geo without positions in calcVertexTangents()\n"));
        return;
    }

    UInt16 dstBits = UInt16(mapBitOfFieldId(dstAttribTan) | mapBitOfFieldId(dstAttribBin));
    bool   single  = geo->isSingleIndex();

    {
        const BitVector mask = Geometry::IndexMappingFieldMask | Geometry::IndicesFieldMask;
        beginEditCP(geo, mask);
        if(single)
        {
            // an empty mapping already means one index for everything
            if(geo->getMFIndexMapping()->size() == 1)
                (*geo->getMFIndexMapping())[0] |= dstBits;
        }
        else
        {
            // every vertex gets a slot of its own: its tuple number
            UInt32              nTuples = ind->getSize() / geo->getMFIndexMapping()->size();
            std::vector<UInt32> tupleIndex(nTuples);
            for(UInt32 t = 0; t < nTuples; ++t)
                tupleIndex[t] = t;
            appendIndexColumn(geo, dstBits, dstBits, tupleIndex);
        }
        endEditCP(geo, mask);
    }

    std::vector<Vec3f> tan, bin, nrm;
    for(TriangleIterator it = geo->beginTriangles(); !it.isAtEnd(); ++it)
    {
        Vec2f t0 = it.getTexCoordsN(UInt32(srcTexIndex), 0);
        Vec2f t1 = it.getTexCoordsN(UInt32(srcTexIndex), 1);
        Vec2f t2 = it.getTexCoordsN(UInt32(srcTexIndex), 2);
        Pnt3f p0 = it.getPosition(0);
        Vec3f e1 = it.getPosition(1) - p0;
        Vec3f e2 = it.getPosition(2) - p0;
        Vec2f d1 = t1 - t0;
        Vec2f d2 = t2 - t0;

        Real32 det = d1[0] * d2[1] - d2[0] * d1[1];
        Real32 r   = det != 0.f ? 1.f / det : 0.f;
        Vec3f  T   = (e1 * d2[1] - e2 * d1[1]) * r;
        Vec3f  B   = (e2 * d1[0] - e1 * d2[0]) * r;

        for(Int32 c = 0; c < 3; ++c)
        {
            Int32 slot = single ? it.getPositionIndex(c) : it.getIndex(c);
            if(slot < 0)
                continue;
            if(UInt32(slot) >= tan.size())
            {
                tan.resize(slot + 1, Vec3f(0.f, 0.f, 0.f));
                bin.resize(slot + 1, Vec3f(0.f, 0.f, 0.f));
                nrm.resize(slot + 1, Vec3f(0.f, 0.f, 0.f));
            }
            tan[slot] += T;
            bin[slot] += B;
            nrm[slot] = it.getNormal(c);
        }
    }

    std::vector<Vec4f> outTan(tan.size()), outBin(tan.size());
    for(size_t i = 0; i < tan.size(); ++i)
    {
        const Vec3f &N = nrm[i];
        Vec3f        T = tan[i];
        Vec3f        B = bin[i];

        Real32 sign = N.cross(T).dot(B) < 0.f ? -1.f : 1.f;

        T = T - N * N.dot(T);
        T.normalize();
        B = B - N * N.dot(B) - T * T.dot(B);
        B.normalize();

        outTan[i].setValues(T[0], T[1], T[2], sign);
        outBin[i].setValues(B[0], B[1], B[2], sign);
    }

    if(tangent != NullFC)
    {
        beginEditCP(tangent);
        tangent->getField().setValues(outTan);
        endEditCP(tangent);
    }
    if(binormal != NullFC)
    {
        beginEditCP(binormal);
        binormal->getField().setValues(outBin);
        endEditCP(binormal);
    }
}

void calcFaceNormals(GeometryPtr geo)
{
    if(geo == NullFC || geo->getPositions() == NullFC)
    {
        FWARNING(("calcFaceNormals: no geometry or no positions\n"));
        return;
    }

    // vertex number of every face corner, and the faces' normals
    std::vector<Vec3f>  faceNormals;
    std::vector<UInt32> vertexFace;
    const bool          indexed = geo->getIndices() != NullFC;
    const UInt32        nmap    = indexTupleSize(geo);
    for(FaceIterator it = geo->beginFaces(); !it.isAtEnd(); ++it)
    {
        for(UInt32 c = 0; c < it.getLength(); ++c)
        {
            Int32 v = indexed ? it.getIndexIndex(c) / Int32(nmap) : it.getPositionIndex(c);
            if(v < 0)
                continue;
            if(UInt32(v) >= vertexFace.size())
                vertexFace.resize(v + 1, 0);
            vertexFace[v] = UInt32(faceNormals.size());
        }
        faceNormals.push_back(faceNormal(it));
    }

    GeoNormals3fPtr norms = GeoNormals3f::create();
    beginEditCP(norms);
    if(indexed)
    {
        for(size_t f = 0; f < faceNormals.size(); ++f)
            norms->push_back(faceNormals[f]);
    }
    else
    {
        for(size_t v = 0; v < vertexFace.size(); ++v)
            norms->push_back(faceNormals.empty() ? Vec3f(0.f, 0.f, 1.f)
                                                 : faceNormals[vertexFace[v]]);
    }
    endEditCP(norms);

    const BitVector mask = Geometry::NormalsFieldMask | Geometry::IndexMappingFieldMask |
                           Geometry::IndicesFieldMask;
    beginEditCP(geo, mask);
    geo->setNormals(norms);
    if(indexed)
        appendIndexColumn(geo, Geometry::MapNormal, Geometry::MapNormal, vertexFace);
    endEditCP(geo, mask);
}

NodePtr calcVertexNormalsGeo(GeometryPtr geo, Real32 length)
{
    if(geo == NullFC || geo->getPositions() == NullFC || geo->getNormals() == NullFC)
    {
        FWARNING(("calcVertexNormalsGeo: no geometry, positions or normals\n"));
        return NullFC;
    }

    std::vector<Pnt3f> points;
    for(PrimitiveIterator it = geo->beginPrimitives(); !it.isAtEnd(); ++it)
    {
        for(UInt32 v = 0; v < it.getLength(); ++v)
        {
            Pnt3f p = it.getPosition(v);
            points.push_back(p);
            points.push_back(p + it.getNormal(v) * length);
        }
    }
    return makeLinesNode(points);
}

NodePtr calcFaceNormalsGeo(GeometryPtr geo, Real32 length)
{
    if(geo == NullFC || geo->getPositions() == NullFC)
    {
        FWARNING(("calcFaceNormalsGeo: no geometry or no positions\n"));
        return NullFC;
    }

    std::vector<Pnt3f> points;
    for(FaceIterator it = geo->beginFaces(); !it.isAtEnd(); ++it)
    {
        Vec3f sum(0.f, 0.f, 0.f);
        for(UInt32 c = 0; c < it.getLength(); ++c)
            sum += it.getPosition(c).subZero();
        Pnt3f centre = (sum / Real32(it.getLength())).addToZero();
        points.push_back(centre);
        points.push_back(centre + faceNormal(it) * length);
    }
    return makeLinesNode(points);
}

Int32 createSharedIndex(GeometryPtr geo)
{
    if(geo == NullFC || geo->getPositions() == NullFC)
    {
        FWARNING(("createSharedIndex: no geometry or no positions\n"));
        return -1;
    }

    const BitVector mask = Geometry::IndexMappingFieldMask | Geometry::IndicesFieldMask;
    beginEditCP(geo, mask);
    if(geo->getIndices() == NullFC)
        makeIndexed(geo);

    GeoIndicesPtr ind     = geo->getIndices();
    MFUInt16     &mapping = *geo->getMFIndexMapping();
    const UInt32  n       = indexTupleSize(geo);
    const UInt32  tuples  = ind->getSize() / n;
    Int32         changed = 0;

    beginEditCP(ind);
    for(UInt32 j = 0; j < n; ++j)
    {
        // the attributes of this index column, and their element sizes
        UInt16 bits = mapping.empty() ? UInt16(presentAttributes(geo) | Geometry::MapPosition)
                                      : mapping[j];
        std::vector<GeoPropertyArrayInterface *> props;
        for(UInt32 a = 0; a < PrimitiveIterator::NumAttributes; ++a)
        {
            GeoPropertyArrayInterface *p = (bits & (1 << a)) ? geo->getProperty(1 << a) : NULL;
            if(p != NULL)
                props.push_back(p);
        }

        // the bytes of every attribute an index selects are its key; an
        // attribute too short for the index adds a mark of its own
        std::map<std::string, UInt32> first;
        for(UInt32 t = 0; t < tuples; ++t)
        {
            UInt32      index = ind->getValue(t * n + j);
            std::string key;
            for(size_t p = 0; p < props.size(); ++p)
            {
                UInt32 elem = props[p]->getFormatSize() * props[p]->getDimension();
                if(index >= props[p]->getSize())
                    key.append(1, '\0');
                else
                    key.append(1, '\1')
                        .append(reinterpret_cast<const char *>(props[p]->getData()) +
                                    size_t(index) * elem,
                                elem);
            }
            std::pair<std::map<std::string, UInt32>::iterator, bool> ins =
                first.insert(std::make_pair(key, index));
            if(!ins.second && ins.first->second != index)
            {
                ind->setValue(ins.first->second, t * n + j);
                ++changed;
            }
        }
    }
    endEditCP(ind);
    endEditCP(geo, mask);
    return changed;
}

Int32 createOptimizedPrimitives(GeometryPtr geo, UInt32, bool, bool, UInt32, bool, bool)
{
    if(geo == NullFC || geo->getPositions() == NullFC)
    {
        FWARNING(("createOptimizedPrimitives: no geometry or no positions\n"));
        return -1;
    }

    const BitVector mask = Geometry::TypesFieldMask | Geometry::LengthsFieldMask |
                           Geometry::IndexMappingFieldMask | Geometry::IndicesFieldMask;
    beginEditCP(geo, mask);
    if(geo->getIndices() == NullFC)
        makeIndexed(geo);

    GeoIndicesPtr ind = geo->getIndices();
    const UInt32  n   = indexTupleSize(geo);

    std::vector<UInt32> newInd, triangles;
    GeoPTypesUI8Ptr     types = GeoPTypesUI8::create();
    GeoPLengthsUI32Ptr  lens  = GeoPLengthsUI32::create();
    beginEditCP(types);
    beginEditCP(lens);

    // points and lines keep their primitives
    for(PrimitiveIterator it = geo->beginPrimitives(); !it.isAtEnd(); ++it)
    {
        UInt32 type = it.getType();
        if(type != GL_POINTS && type != GL_LINES && type != GL_LINE_STRIP && type != GL_LINE_LOOP)
            continue;
        for(UInt32 v = 0; v < it.getLength(); ++v)
            for(UInt32 j = 0; j < n; ++j)
                newInd.push_back(ind->getValue((UInt32(it.getVertexIndex(v))) * n + j));
        types->push_back(UInt8(type));
        lens->push_back(it.getLength());
    }
    for(TriangleIterator it = geo->beginTriangles(); !it.isAtEnd(); ++it)
        for(Int32 c = 0; c < 3; ++c)
            for(UInt32 j = 0; j < n; ++j)
                triangles.push_back(ind->getValue(UInt32(it.getIndex(c)) * n + j));
    if(!triangles.empty())
    {
        types->push_back(GL_TRIANGLES);
        lens->push_back(UInt32(triangles.size() / n));
        newInd.insert(newInd.end(), triangles.begin(), triangles.end());
    }
    endEditCP(lens);
    endEditCP(types);

    beginEditCP(ind);
    ind->clear();
    for(size_t i = 0; i < newInd.size(); ++i)
        ind->push_back(newInd[i]);
    endEditCP(ind);

    geo->setTypes(types);
    geo->setLengths(lens);
    endEditCP(geo, mask);
    return Int32(newInd.size() / n);
}

// --- counting ------------------------------------------------------------------------

void calcPrimitiveCount(GeometryPtr geo, UInt32 &triangle, UInt32 &line, UInt32 &point)
{
    triangle = line = point = 0;
    if(geo == NullFC)
        return;

    for(PrimitiveIterator it = geo->beginPrimitives(); !it.isAtEnd(); ++it)
    {
        UInt32 len = it.getLength();
        switch(it.getType())
        {
            case GL_POINTS:         point += len; break;
            case GL_LINES:          line += len / 2; break;
            case GL_LINE_STRIP:     line += len >= 2 ? len - 1 : 0; break;
            case GL_LINE_LOOP:      line += len >= 2 ? len : 0; break;
            case GL_TRIANGLES:      triangle += len / 3; break;
            case GL_TRIANGLE_STRIP:
            case GL_TRIANGLE_FAN:
            case GL_POLYGON:        triangle += len >= 3 ? len - 2 : 0; break;
            case GL_QUADS:          triangle += (len / 4) * 2; break;
            case GL_QUAD_STRIP:     triangle += len >= 4 ? (len / 2 - 1) * 2 : 0; break;
        }
    }
}

OSG_END_NAMESPACE
