#include "../DemoScene.h"
#include "../DemoSupport.h"

#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGLayer.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGMultiCore.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGTransform.h>

OSG_USING_NAMESPACE

using namespace corvane;

namespace
{

SimpleMaterialPtr plastic(const Color3f &diffuse)
{
    SimpleMaterialPtr mat = SimpleMaterial::create();
    beginEditCP(mat);
    mat->setAmbient(diffuse * 0.25f);
    mat->setDiffuse(diffuse);
    mat->setSpecular(Color3f(0.5f, 0.5f, 0.5f));
    mat->setShininess(40.f);
    endEditCP(mat);
    return mat;
}

/// A torus in plain grey, lifted, tilted and drawn in copper by one
/// MultiCore that carries both a transform and a material group.
NodePtr carriedTorus(void)
{
    NodePtr torus = makeTorus(0.3f, 0.9f, 24, 48);
    setMaterial(torus, plastic(Color3f(0.5f, 0.5f, 0.5f)));

    Matrix m;
    m.setTransform(Vec3f(-2.2f, 1.3f, 0.f), Quaternion(Vec3f(1.f, 0.2f, 0.f), osgdegree2rad(55.f)));
    TransformPtr lift = Transform::create();
    beginEditCP(lift);
    lift->setMatrix(m);
    endEditCP(lift);

    MaterialGroupPtr copper = MaterialGroup::create();
    beginEditCP(copper);
    copper->setMaterial(plastic(Color3f(0.85f, 0.45f, 0.2f)));
    endEditCP(copper);

    MultiCorePtr both = MultiCore::create();
    beginEditCP(both, MultiCore::CoresFieldMask);
    both->addCore(lift);
    both->addCore(copper);
    endEditCP(both, MultiCore::CoresFieldMask);

    NodePtr node = makeNodeFor(both);
    beginEditCP(node, Node::ChildrenFieldMask);
    node->addChild(torus);
    endEditCP(node, Node::ChildrenFieldMask);
    return node;
}

/// A sphere, a box and a cone in a row on a Layer that hides the box.
NodePtr layerOfThree(Holder &h)
{
    NodePtr sphere = makeSphere(3, 0.6f);
    setMaterial(sphere, plastic(Color3f(0.2f, 0.45f, 0.9f)));
    NodePtr box = makeBox(1.f, 1.f, 1.f, 1, 1, 1);
    setMaterial(box, plastic(Color3f(0.3f, 0.8f, 0.3f)));
    NodePtr cone = makeCone(1.3f, 0.6f, 32, true, true);
    setMaterial(cone, plastic(Color3f(0.9f, 0.25f, 0.2f)));

    LayerPtr layer = Layer::create();
    beginEditCP(layer, Layer::VisibleFieldMask);
    layer->getMFVisible()->push_back(true);
    layer->getMFVisible()->push_back(false);
    layer->getMFVisible()->push_back(true);
    endEditCP(layer, Layer::VisibleFieldMask);

    NodePtr node = makeNodeFor(layer);
    beginEditCP(node, Node::ChildrenFieldMask);
    node->addChild(placed(h, sphere, Vec3f(-1.3f, 0.6f, 0.f), Quaternion()));
    node->addChild(placed(h, box, Vec3f(0.f, 0.5f, 0.f), Quaternion()));
    node->addChild(placed(h, cone, Vec3f(1.3f, 0.65f, 0.f), Quaternion()));
    endEditCP(node, Node::ChildrenFieldMask);
    return node;
}

bool renderCores(const char *fileName, UInt32 width, UInt32 height)
{
    Holder       h;
    EGLWindowPtr win = openWindow(h, width, height);
    if(win == NullFC)
        return false;

    NodePtr lightBeacon = makeNodeFor(Group::create());
    DirectionalLightPtr sun = DirectionalLight::create();
    beginEditCP(sun);
    sun->setDirection(Vec3f(-0.4f, 0.8f, 0.6f));
    sun->setAmbient(Color4f(0.3f, 0.3f, 0.32f, 1.f));
    sun->setBeacon(lightBeacon);
    endEditCP(sun);

    NodePtr floor = makePlane(12.f, 12.f, 4, 4);
    setMaterial(floor, texturedMaterial(makeChecker(256, 16, Color3f(0.85f, 0.85f, 0.8f),
                                                    Color3f(0.35f, 0.38f, 0.42f)),
                                        Color3f(1.f, 1.f, 1.f)));
    Quaternion flat(Vec3f(1.f, 0.f, 0.f), osgdegree2rad(-90.f));

    NodePtr root = h.keep(makeNodeFor(sun));
    beginEditCP(root, Node::ChildrenFieldMask);
    root->addChild(lightBeacon);
    root->addChild(placed(h, floor, Vec3f(0.f, 0.f, 0.f), flat));
    root->addChild(carriedTorus());
    root->addChild(placed(h, layerOfThree(h), Vec3f(1.6f, 0.f, 0.f), Quaternion()));
    endEditCP(root, Node::ChildrenFieldMask);

    CameraPtr camera = makeCamera(h, root, Pnt3f(0.f, 3.f, 8.f), Pnt3f(0.f, 0.8f, 0.f));
    addPort(h, win, camera, root, makeSolid(h, Color3f(0.12f, 0.13f, 0.16f)), 0.f, 1.f);

    return renderToFile(h, win, fileName);
}

const DemoSceneRegistration coresScene(
    "cores", "a MultiCore moving and colouring a torus; a Layer hiding the middle one of three",
    renderCores);

} // namespace
