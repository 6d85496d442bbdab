// The scene file handler's demo scene: a trefoil knot read from a
// gzip-compressed OBJ file with its material library (data/knot.obj.gz and
// data/knot.mtl, written by data/make-meshes.py), lit by a sun that moves
// with the camera.
#include "../DemoScene.h"
#include "../DemoSupport.h"
#include "../VolumeRenderer.h"

#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGSceneFileHandler.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGTransform.h>

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

    // a sun from the upper left, carried by the camera's beacon
    NodePtr             root   = h.keep(makeNodeFor(Group::create()));
    PerspectiveCameraPtr camera = makeCamera(h, root, Pnt3f(0.f, -2.f, 10.f), Pnt3f(0.f, 0.f, 0.f),
                                            50.f);
    DirectionalLightPtr sun    = DirectionalLight::create();
    beginEditCP(sun);
    sun->setDirection(Vec3f(-0.5f, 0.6f, 0.7f));
    sun->setAmbient(Color4f(0.25f, 0.25f, 0.27f, 1.f));
    sun->setBeacon(camera->getBeacon());
    endEditCP(sun);

    NodePtr lit = makeNodeFor(sun);
    beginEditCP(lit, Node::ChildrenFieldMask);
    lit->addChild(placed(h, knot, Vec3f(0.f, 0.f, 0.f),
                         Quaternion(Vec3f(1.f, 0.f, 0.f), osgdegree2rad(-25.f))));
    endEditCP(lit, Node::ChildrenFieldMask);
    beginEditCP(root, Node::ChildrenFieldMask);
    root->addChild(lit);
    endEditCP(root, Node::ChildrenFieldMask);

    addPort(h, win, camera, root, makeSolid(h, Color3f(0.12f, 0.13f, 0.16f)), 0.f, 1.f);

    return renderToFile(h, win, fileName);
}

const DemoSceneRegistration meshScene(
    "mesh", "a trefoil knot read from a gzip-compressed OBJ file with its material library",
    renderMesh);

} // namespace
