// Builds SortedPrimitives clouds the way an application does: one square
// group per reference point, facing +z, coloured per group.
#ifndef _PRIMITIVESTESTSUPPORT_H_
#define _PRIMITIVESTESTSUPPORT_H_

#include <OpenSG/OSGBlendChunk.h>
#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGGeoProperty.h>
#include <OpenSG/OSGSortedPrimitives.h>

#include <vector>

namespace primtest
{

using namespace osg;

struct Square
{
    Pnt3f   ref;
    Color4f color;
    Real32  half; ///< half the square's edge
};

/// A cloud of square groups: mode 1 draws each as one quad (4 entries),
/// mode 0 as two triangles (6 entries). Vertices 4g to 4g + 3 belong to
/// group g. Sorting by view (drawOrder 1), nothing left out (lowerBound 0)
/// and ordered wholly by distance (thresholdVal -1).
inline SortedPrimitivesPtr makeCloud(const std::vector<Square> &groups, UInt32 mode = 1)
{
    GeoPositions3fPtr  refs      = GeoPositions3f::create();
    GeoPositions3fPtr  positions = GeoPositions3f::create();
    GeoNormals3fPtr    normals   = GeoNormals3f::create();
    GeoNormals3fPtr    tangents  = GeoNormals3f::create();
    GeoColors4fPtr     colors    = GeoColors4f::create();
    GeoTexCoords2fPtr  texCoords = GeoTexCoords2f::create();
    std::vector<int>   entries, offsets;

    beginEditCP(refs);
    beginEditCP(positions);
    beginEditCP(normals);
    beginEditCP(tangents);
    beginEditCP(colors);
    beginEditCP(texCoords);
    const Real32 corner[4][2] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}};
    for(UInt32 g = 0; g < groups.size(); ++g)
    {
        const Square &grp = groups[g];
        refs->push_back(grp.ref);
        offsets.push_back(int(entries.size()));
        for(UInt32 k = 0; k < 4; ++k)
        {
            positions->push_back(grp.ref + Vec3f(corner[k][0] * grp.half,
                                                 corner[k][1] * grp.half, 0.f));
            normals->push_back(Vec3f(0, 0, 1));
            tangents->push_back(Vec3f(1, 0, 0));
            colors->getField().push_back(grp.color);
            texCoords->push_back(Vec2f(corner[k][0] * 0.5f + 0.5f, corner[k][1] * 0.5f + 0.5f));
        }
        const int v = int(4 * g);
        if(mode == 1)
            entries.insert(entries.end(), {v, v + 1, v + 2, v + 3});
        else
            entries.insert(entries.end(), {v, v + 1, v + 2, v, v + 2, v + 3});
    }
    offsets.push_back(int(entries.size()));
    endEditCP(texCoords);
    endEditCP(colors);
    endEditCP(tangents);
    endEditCP(normals);
    endEditCP(positions);
    endEditCP(refs);

    SortedPrimitivesPtr cloud = SortedPrimitives::create();
    beginEditCP(cloud);
    cloud->setRefPoints(refs);
    cloud->setPositions(positions);
    cloud->setNormals(normals);
    cloud->setTangents(tangents);
    cloud->setColors(colors);
    cloud->setTexCoords(texCoords);
    cloud->setIndexArray(&entries);
    cloud->setOffsetArray(&offsets);
    cloud->setMode(mode);
    cloud->setDrawOrder(1);
    cloud->setLowerBound(0.f);
    cloud->setThresholdVal(-1.f);
    endEditCP(cloud);
    return cloud;
}

/// Unlit, blended with the source's alpha over what is there.
inline ChunkMaterialPtr blendedMaterial(void)
{
    BlendChunkPtr blend = BlendChunk::create();
    beginEditCP(blend);
    blend->setSrcFactor(GL_SRC_ALPHA);
    blend->setDestFactor(GL_ONE_MINUS_SRC_ALPHA);
    endEditCP(blend);

    ChunkMaterialPtr material = ChunkMaterial::create();
    beginEditCP(material);
    material->addChunk(blend);
    endEditCP(material);
    return material;
}

/// The group order in the element list: the group of the first vertex of
/// each square (4 entries a quad, 6 a triangle pair).
inline std::vector<int> drawnGroups(const SortedPrimitivesPtr &cloud)
{
    const UInt32     step = cloud->getMode() == 1 ? 4 : 6;
    std::vector<int> order;
    for(UInt32 i = 0; i + step <= cloud->getIndicesSize(); i += step)
        order.push_back(int(cloud->getIndices()->getValue(i) / 4));
    return order;
}

} // namespace primtest

#endif
