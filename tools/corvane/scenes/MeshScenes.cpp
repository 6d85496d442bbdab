// The scene file handler's demo scene: a trefoil knot read from a
// gzip-compressed OBJ file with its material library (data/knot.obj.gz and
// data/knot.mtl, written by data/make-meshes.py), lit by a sun above a
// checkered floor.
#include "../DemoScene.h"
#include "../DemoSupport.h"
#include "../VolumeRenderer.h"

#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGSceneFileHandler.h>
#include <OpenSG/OSGSimpleGeometry.h>

OSG_USING_NAMESPACE

using namespace corvane;

namespace
{

bool renderMesh(const char *fileName, UInt32 width, UInt32 height)
{
    Holder      h;
    std::string knotFile = dataDirectory() + "/knot.obj.gz";
    NodePtr     knot     = SceneFileHandler::the().read(knotFile.c_str());
    if(knot == NullFC)
        return false;
    h.keep(knot);

    EGLWindowPtr win = openWindow(h, width, height);
    if(win == NullFC)
        return false;

    NodePtr             lightBeacon = makeNodeFor(Group::create());
    DirectionalLightPtr sun         = DirectionalLight::create();
    beginEditCP(sun);
    sun->setDirection(Vec3f(-0.3f, 0.8f, 0.6f));
    sun->setAmbient(Color4f(0.3f, 0.3f, 0.32f, 1.f));
    sun->setBeacon(lightBeacon);
    endEditCP(sun);

    NodePtr floor = makePlane(16.f, 16.f, 4, 4);
    setMaterial(floor, texturedMaterial(makeChecker(256, 16, Color3f(0.85f, 0.85f, 0.8f),
                                                    Color3f(0.35f, 0.38f, 0.42f)),
                                        Color3f(1.f, 1.f, 1.f)));

    NodePtr root = h.keep(makeNodeFor(sun));
    beginEditCP(root, Node::ChildrenFieldMask);
    root->addChild(lightBeacon);
    root->addChild(placed(h, floor, Vec3f(0.f, 0.f, 0.f),
                          Quaternion(Vec3f(1.f, 0.f, 0.f), osgdegree2rad(-90.f))));
    // the knot lies in its x-y plane: stood up, above the floor
    root->addChild(placed(h, knot, Vec3f(0.f, 3.6f, 0.f),
                          Quaternion(Vec3f(0.f, 1.f, 0.f), osgdegree2rad(20.f))));
    endEditCP(root, Node::ChildrenFieldMask);

    CameraPtr camera = makeCamera(h, root, Pnt3f(0.f, 4.5f, 11.f), Pnt3f(0.f, 3.f, 0.f));
    addPort(h, win, camera, root, makeSolid(h, Color3f(0.12f, 0.13f, 0.16f)), 0.f, 1.f);

    return renderToFile(h, win, fileName);
}

const DemoSceneRegistration meshScene(
    "mesh", "a trefoil knot read from a gzip-compressed OBJ file with its material library",
    renderMesh);

} // namespace
