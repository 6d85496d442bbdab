#include "BVGeometry.h"

#include <OpenSG/OSGGeometry.h>

OSG_USING_NAMESPACE

BVGeometry::BVGeometry(void) : _boundingGeometry(NullFC)
{
}

BVGeometry::~BVGeometry(void)
{
    if(_boundingGeometry != NullFC)
        subRefCP(_boundingGeometry);
}

void BVGeometry::init(VolumeData *)
{
}

bool BoxGeometry::createBoundingGeometry(VolumeData *)
{
    // six faces, counter-clockwise seen from outside
    static const int faces[6][4] = {{0, 2, 6, 4}, {1, 5, 7, 3}, {0, 4, 5, 1},
                                    {2, 3, 7, 6}, {0, 1, 3, 2}, {4, 6, 7, 5}};
    GeoPTypesUI8Ptr   types     = GeoPTypesUI8::create();
    GeoPLengthsUI32Ptr lengths  = GeoPLengthsUI32::create();
    GeoIndicesUI32Ptr indices   = GeoIndicesUI32::create();
    GeoPositions3fPtr positions = GeoPositions3f::create();
    GeoTexCoords3fPtr texCoords = GeoTexCoords3f::create();
    beginEditCP(types);
    beginEditCP(lengths);
    beginEditCP(indices);
    beginEditCP(positions);
    beginEditCP(texCoords);
    for(int i = 0; i < 8; ++i)
    {
        Pnt3f p(Real32(i & 1), Real32((i >> 1) & 1), Real32((i >> 2) & 1));
        positions->push_back(p);
        texCoords->push_back(Vec3f(p[0], p[1], p[2]));
    }
    types->push_back(GL_QUADS);
    lengths->push_back(24);
    for(int f = 0; f < 6; ++f)
        for(int k = 0; k < 4; ++k)
            indices->push_back(faces[f][3 - k]);
    endEditCP(texCoords);
    endEditCP(positions);
    endEditCP(indices);
    endEditCP(lengths);
    endEditCP(types);
    GeometryPtr geo = Geometry::create();
    beginEditCP(geo);
    geo->setTypes(types);
    geo->setLengths(lengths);
    geo->setIndices(indices);
    geo->setPositions(positions);
    geo->setTexCoords(texCoords);
    endEditCP(geo);
    _boundingGeometry = Node::create();
    addRefCP(_boundingGeometry);
    beginEditCP(_boundingGeometry);
    _boundingGeometry->setCore(geo);
    endEditCP(_boundingGeometry);
    return true;
}

bool BoxGeometry::update(VolumeData *)
{
    return true;
}
