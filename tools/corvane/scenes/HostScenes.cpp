#include "../DemoScene.h"
#include "../DemoSupport.h"

#include <OpenSG/OSGComponentTransform.h>
#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGGeoFunctions.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGradientBackground.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGImageFunctions.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGSimpleTexturedMaterial.h>
#include <OpenSG/OSGTexGenChunk.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGTextureTransformChunk.h>
#include <OpenSG/OSGTwoSidedLightingChunk.h>

OSG_USING_NAMESPACE

using namespace corvane;

namespace
{

/// A wooden pole: noise wood stretched along the pole by the texture matrix.
NodePtr woodenPole(void)
{
    ImagePtr wood = Image::create();
    createNoise(wood, Image::OSG_L_PF, 7, 64);

    TextureTransformChunkPtr stretch = TextureTransformChunk::create();
    Matrix                   m;
    m.setScale(Vec3f(2.f, 8.f, 2.f));
    beginEditCP(stretch);
    stretch->setMatrix(m);
    endEditCP(stretch);

    SimpleTexturedMaterialPtr mat = SimpleTexturedMaterial::create();
    beginEditCP(mat);
    mat->setImage(wood);
    mat->setEnvMode(GL_MODULATE);
    mat->setDiffuse(Color3f(0.9f, 0.57f, 0.1f));
    mat->setSpecular(Color3f(0.2f, 0.2f, 0.1f));
    mat->addChunk(stretch);
    endEditCP(mat);

    NodePtr pole = makeCylinder(24.f, 0.24f, 24, true, true, true);
    setMaterial(pole, mat);
    return pole;
}

/// A cloth in the wind: a checkered banner on unit 0, a glossy noise
/// reflection sphere-mapped on unit 1, lit on both sides.
NodePtr wavingFlag(void)
{
    GeometryPtr      geo = makePlaneGeo(16.f, 8.f, 48, 4);
    GeoPositionsPtr  pos = geo->getPositions();
    const Pnt3f      anchor(-8.f, 3.f, 0.f);
    const Real32     t   = 0.35f;
    beginEditCP(pos);
    for(UInt32 i = 0; i < pos->getSize(); ++i)
    {
        Pnt3f p = pos->getValue(i);
        p[2]    = (p[0] + 8.f) * 0.06f * osgsin((p - anchor).length() - 8.f * t);
        pos->setValue(p, i);
    }
    endEditCP(pos);
    calcVertexNormals(geo);

    TextureChunkPtr banner = TextureChunk::create();
    ImagePtr        check  = makeChecker(256, 8, Color3f(0.95f, 0.85f, 0.2f), Color3f(0.15f, 0.3f, 0.8f));
    beginEditCP(banner);
    banner->setImage(check);
    banner->setEnvMode(GL_MODULATE);
    endEditCP(banner);

    ImagePtr gloss = Image::create();
    createNoise(gloss, Image::OSG_I_PF, 5, 256);
    UInt8 *bytes = gloss->getData();
    for(UInt32 i = 0; i < gloss->getSize(); ++i)
        bytes[i] >>= 2;
    TextureChunkPtr shine = TextureChunk::create();
    beginEditCP(shine);
    shine->setImage(gloss);
    shine->setEnvMode(GL_ADD);
    endEditCP(shine);

    TexGenChunkPtr sphere = TexGenChunk::create();
    beginEditCP(sphere);
    sphere->setGenFuncS(GL_SPHERE_MAP);
    sphere->setGenFuncT(GL_SPHERE_MAP);
    endEditCP(sphere);

    SimpleMaterialPtr mat = SimpleMaterial::create();
    beginEditCP(mat);
    mat->setDiffuse(Color3f(0.9f, 0.85f, 0.85f));
    mat->setAmbient(Color3f(0.25f, 0.25f, 0.25f));
    mat->setSpecular(Color3f(0.7f, 0.7f, 0.7f));
    mat->setShininess(30.f);
    mat->addChunk(banner, 0);
    mat->addChunk(shine, 1);
    mat->addChunk(sphere, 1);
    mat->addChunk(TwoSidedLightingChunk::create());
    endEditCP(mat);

    beginEditCP(geo, Geometry::MaterialFieldMask);
    geo->setMaterial(mat);
    endEditCP(geo, Geometry::MaterialFieldMask);

    // hung from the top of the pole, and turned a little towards the viewer
    ComponentTransformPtr hang = ComponentTransform::create();
    beginEditCP(hang);
    hang->setTranslation(Vec3f(8.f, 7.8f, 0.f));
    hang->setCenter(Vec3f(-8.f, 0.f, 0.f));
    hang->setRotation(Quaternion(Vec3f(0.f, 1.f, 0.f), osgdegree2rad(-20.f)));
    endEditCP(hang);

    NodePtr node = makeNodeFor(hang);
    beginEditCP(node, Node::ChildrenFieldMask);
    node->addChild(makeNodeFor(geo));
    endEditCP(node, Node::ChildrenFieldMask);
    return node;
}

bool renderTutorialPieces(const char *fileName, UInt32 width, UInt32 height)
{
    Holder       h;
    EGLWindowPtr win = openWindow(h, width, height);
    if(win == NullFC)
        return false;

    NodePtr root = h.keep(makeNodeFor(Group::create()));
    CameraPtr camera = makeCamera(h, root, Pnt3f(5.f, 4.f, 25.f), Pnt3f(7.f, 5.f, 0.f), 45.f);

    // a headlight: from the camera, along its view
    DirectionalLightPtr head = DirectionalLight::create();
    beginEditCP(head);
    head->setDirection(0.f, 0.f, 1.f);
    head->setDiffuse(1.f, 1.f, 1.f, 1.f);
    head->setAmbient(0.2f, 0.2f, 0.2f, 1.f);
    head->setSpecular(1.f, 1.f, 1.f, 1.f);
    head->setBeacon(camera->getBeacon());
    endEditCP(head);
    NodePtr lit = makeNodeFor(head);
    beginEditCP(lit, Node::ChildrenFieldMask);
    lit->addChild(woodenPole());
    lit->addChild(wavingFlag());
    endEditCP(lit, Node::ChildrenFieldMask);

    beginEditCP(root, Node::ChildrenFieldMask);
    root->addChild(lit);
    endEditCP(root, Node::ChildrenFieldMask);

    GradientBackgroundPtr sky = GradientBackground::create();
    beginEditCP(sky);
    sky->addLine(Color3f(0.7f, 0.7f, 0.8f), 0.f);
    sky->addLine(Color3f(0.f, 0.1f, 0.3f), 1.f);
    endEditCP(sky);
    h.keep(sky);

    addPort(h, win, camera, root, sky, 0.f, 1.f);
    return renderToFile(h, win, fileName);
}

const DemoSceneRegistration tutorialPiecesScene(
    "tutorial-pieces",
    "a flag on a pole: noise wood stretched by a texture matrix, a sphere-mapped noise gloss, "
    "two-sided lighting, a ComponentTransform and a gradient sky",
    renderTutorialPieces);

} // namespace
