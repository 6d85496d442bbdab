// TwoSidedLightingChunk: a quad showing its back face to the viewer, lit
// from the viewer's side, stays dark with one-sided lighting and is lit
// fully with the chunk in its material; the chunk's change rules.
#include "GeometryRenderScene.h"

#include <OpenSG/OSGTwoSidedLightingChunk.h>
#include <OpenSG/OSGColorMaskChunk.h>
#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGTransform.h>

using namespace osg;
using namespace geometrytest;

TEST(TwoSidedLightingChunk, LightsBackFacesFromTheirOtherSide)
{
    RenderScene s;
    NEED_GL(s);

    // white, diffuse only
    SimpleMaterialPtr mat = SimpleMaterial::create();
    beginEditCP(mat);
    mat->setDiffuse(Color3f(1, 1, 1));
    mat->setAmbient(Color3f(0, 0, 0));
    mat->setSpecular(Color3f(0, 0, 0));
    endEditCP(mat);

    GeometryPtr geo = makePlaneGeo(1, 1, 1, 1);
    beginEditCP(geo, Geometry::MaterialFieldMask);
    geo->setMaterial(mat);
    endEditCP(geo, Geometry::MaterialFieldMask);

    // turned half around y: the back face, normal -z, faces the viewer
    TransformPtr turn = Transform::create();
    Matrix       m;
    m.setRotate(Quaternion(Vec3f(0, 1, 0), Pi));
    beginEditCP(turn, Transform::MatrixFieldMask);
    turn->setMatrix(m);
    endEditCP(turn, Transform::MatrixFieldMask);
    NodePtr turned = makeNodeFor(turn);
    beginEditCP(turned, Node::ChildrenFieldMask);
    turned->addChild(makeNodeFor(geo));
    endEditCP(turned, Node::ChildrenFieldMask);

    // light from +z, the viewer's side
    DirectionalLightPtr light = DirectionalLight::create();
    beginEditCP(light);
    light->setDirection(0, 0, 1);
    light->setDiffuse(1, 1, 1, 1);
    light->setAmbient(0, 0, 0, 1);
    light->setBeacon(s.root);
    endEditCP(light);
    NodePtr lit = makeNodeFor(light);
    beginEditCP(lit, Node::ChildrenFieldMask);
    lit->addChild(turned);
    endEditCP(lit, Node::ChildrenFieldMask);
    beginEditCP(s.root, Node::ChildrenFieldMask);
    s.root->addChild(lit);
    endEditCP(s.root, Node::ChildrenFieldMask);

    std::vector<UInt8> img = s.render();
    EXPECT_LE(pixel(img, 32, 32)[0], 1) << "one-sided: the back face gets no light";

    TwoSidedLightingChunkPtr two = TwoSidedLightingChunk::create();
    beginEditCP(mat);
    mat->addChunk(two);
    endEditCP(mat);
    img = s.render();
    savePNG(img, "twosided");
    EXPECT_GE(pixel(img, 32, 32)[0], 254) << "two-sided: lit as its reversed normal says";
    EXPECT_GE(pixel(img, 32, 32)[2], 254);
    // the quad only
    EXPECT_EQ(pixel(img, 4, 4)[0], 0);

    // changing between two such chunks keeps it on; another chunk class
    // is refused with a warning
    TwoSidedLightingChunkPtr other = TwoSidedLightingChunk::create();
    addRefCP(other);
    EXPECT_EQ(*two.getCPtr(), *other.getCPtr());
    EXPECT_EQ(two->getClass()->getId(), TwoSidedLightingChunk::getStaticClassId());
    EXPECT_EQ(std::string(two->getClass()->getName()), "TwoSidedLighting");
    other->activate(s.ra);
    two->changeFrom(s.ra, other.getCPtr());
    GLint on = 0;
    glGetIntegerv(GL_LIGHT_MODEL_TWO_SIDE, &on);
    EXPECT_EQ(on, GL_TRUE);
    two->deactivate(s.ra);
    glGetIntegerv(GL_LIGHT_MODEL_TWO_SIDE, &on);
    EXPECT_EQ(on, GL_FALSE);
    {
        ColorMaskChunkPtr mask = ColorMaskChunk::create();
        addRefCP(mask);
        LogCapture log(LOG_WARNING);
        two->changeFrom(s.ra, mask.getCPtr());
        EXPECT_NE(log.take().find("TwoSidedLightingChunk::changeFrom: caught "
                                  "non-TwoSidedLightingChunk!"),
                  std::string::npos);
        subRefCP(mask);
    }
    subRefCP(other);
}
