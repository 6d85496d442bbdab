// The clouds of the tests are the primitives scene's square clouds; the
// element list read back as groups, and the test camera aimed.
#ifndef _PRIMITIVESTESTSUPPORT_H_
#define _PRIMITIVESTESTSUPPORT_H_

#include "../../tools/corvane/scenes/PrimitiveScenes.h"

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGSortedPrimitives.h>
#include <OpenSG/OSGTransform.h>

#include <vector>

namespace primtest
{

using namespace osg;

typedef corvane::CloudSquare Square;

/// Unlit, blended with the source's alpha over what is there.
inline ChunkMaterialPtr blendedMaterial(void)
{
    ChunkMaterialPtr material = ChunkMaterial::create();
    beginEditCP(material);
    material->addChunk(corvane::alphaBlending());
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

/// Points the camera on the transform beacon from `from` at `at`, y up.
inline void lookFrom(const NodePtr &beacon, const Pnt3f &from, const Pnt3f &at)
{
    Matrix m;
    MatrixLookAt(m, from, at, Vec3f(0, 1, 0));
    TransformPtr xf = TransformPtr::dcast(beacon->getCore());
    beginEditCP(xf, Transform::MatrixFieldMask);
    xf->setMatrix(m);
    endEditCP(xf, Transform::MatrixFieldMask);
}

} // namespace primtest

#endif
