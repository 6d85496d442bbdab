#include "../DemoScene.h"
#include "../DemoSupport.h"

#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSimpleSceneManager.h>

OSG_USING_NAMESPACE

using namespace corvane;

namespace
{

/// OpenSG's first tutorial, as its user sees it after a drag: the torus
/// framed by the SimpleSceneManager's showAll and lit by its headlight,
/// turned by a left-button drag on the trackball, with a box in the hole
/// highlighted.
bool renderManager(const char *fileName, UInt32 width, UInt32 height)
{
    Holder       h;
    EGLWindowPtr win = openWindow(h, width, height);
    if(win == NullFC)
        return false;

    NodePtr box   = makeBox(1.f, 1.f, 1.f, 1, 1, 1);
    NodePtr scene = h.keep(makeNodeFor(Group::create()));
    beginEditCP(scene, Node::ChildrenFieldMask);
    scene->addChild(makeTorus(.5f, 2.f, 16, 16));
    scene->addChild(box);
    endEditCP(scene, Node::ChildrenFieldMask);

    SimpleSceneManager mgr;
    mgr.setWindow(win);
    mgr.setRoot(scene);
    mgr.showAll();

    const Int16 x = Int16(width / 2), y = Int16(height / 2);
    mgr.mouseButtonPress(SimpleSceneManager::MouseLeft, x, y);
    mgr.mouseMove(Int16(x + width / 5), Int16(y - height / 6));
    mgr.mouseButtonRelease(SimpleSceneManager::MouseLeft, Int16(x + width / 5),
                           Int16(y - height / 6));
    mgr.setHighlight(box);
    mgr.redraw();

    return renderToFile(h, win, fileName);
}

const DemoSceneRegistration managerScene(
    "manager",
    "OpenSG's first tutorial through the SimpleSceneManager: showAll, a trackball drag, "
    "a highlighted box",
    renderManager);

} // namespace
