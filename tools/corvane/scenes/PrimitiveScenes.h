/// How the primitives scene builds its clouds, shared with the tests and the
/// benchmark of SortedPrimitives: square groups facing +z, one reference
/// point each, blended by their colours' alpha.
#ifndef _CORVANE_PRIMITIVESCENES_H_
#define _CORVANE_PRIMITIVESCENES_H_

#include <OpenSG/OSGBlendChunk.h>
#include <OpenSG/OSGGeoProperty.h>
#include <OpenSG/OSGSortedPrimitives.h>

#include <vector>

namespace corvane
{

struct CloudSquare
{
    osg::Pnt3f   ref;
    osg::Color4f color;
    osg::Real32  half; ///< half the square's edge
};

/// A cloud of square groups as an application builds one: mode 1 draws each
/// as one quad (4 entries), mode 0 as two triangles (6 entries); vertices 4g
/// to 4g + 3 belong to group g, with texture coordinates 0 to 1 across it.
/// Set for correct blending: sorted by view (drawOrder 1), wholly by
/// distance (thresholdVal -1), nothing left out (lowerBound 0).
inline osg::SortedPrimitivesPtr makeSquareCloud(const std::vector<CloudSquare> &squares,
                                                osg::UInt32                     mode = 1)
{
    using namespace osg;
    GeoPositions3fPtr refs      = GeoPositions3f::create();
    GeoPositions3fPtr positions = GeoPositions3f::create();
    GeoNormals3fPtr   normals   = GeoNormals3f::create();
    GeoNormals3fPtr   tangents  = GeoNormals3f::create();
    GeoColors4fPtr    colors    = GeoColors4f::create();
    GeoTexCoords2fPtr texCoords = GeoTexCoords2f::create();
    std::vector<int>  entries, offsets;

    beginEditCP(refs);
    beginEditCP(positions);
    beginEditCP(normals);
    beginEditCP(tangents);
    beginEditCP(colors);
    beginEditCP(texCoords);
    const Real32 corner[4][2] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}};
    for(UInt32 g = 0; g < squares.size(); ++g)
    {
        const CloudSquare &sq = squares[g];
        refs->push_back(sq.ref);
        offsets.push_back(int(entries.size()));
        for(UInt32 k = 0; k < 4; ++k)
        {
            positions->push_back(sq.ref + Vec3f(corner[k][0] * sq.half, corner[k][1] * sq.half, 0.f));
            normals->push_back(Vec3f(0, 0, 1));
            tangents->push_back(Vec3f(1, 0, 0));
            colors->getField().push_back(sq.color);
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

/// Blending by the source's alpha over what is there.
inline osg::BlendChunkPtr alphaBlending(void)
{
    osg::BlendChunkPtr blend = osg::BlendChunk::create();
    beginEditCP(blend);
    blend->setSrcFactor(GL_SRC_ALPHA);
    blend->setDestFactor(GL_ONE_MINUS_SRC_ALPHA);
    endEditCP(blend);
    return blend;
}

} // namespace corvane

#endif
