#include "DemoSupport.h"

#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGPassiveBackground.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGScreenDumpForeground.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGTransform.h>

#include <fstream>
#include <memory>

OSG_USING_NAMESPACE

namespace corvane
{

ImagePtr makeChecker(UInt32 edge, UInt32 cells, Color3f a, Color3f b)
{
    ImagePtr image = Image::create();
    beginEditCP(image);
    image->set(Image::OSG_RGB_PF, Int32(edge), Int32(edge));
    UInt8 *p = image->editData();
    for(UInt32 y = 0; y < edge; ++y)
        for(UInt32 x = 0; x < edge; ++x, p += 3)
        {
            const Color3f &c = (((x * cells / edge) + (y * cells / edge)) & 1) ? a : b;
            p[0] = UInt8(c.red() * 255.f);
            p[1] = UInt8(c.green() * 255.f);
            p[2] = UInt8(c.blue() * 255.f);
        }
    endEditCP(image);
    return image;
}

NodePtr placed(Holder &h, NodePtr child, const Vec3f &at, const Quaternion &rotation)
{
    TransformPtr t = Transform::create();
    Matrix m;
    m.setTransform(at, rotation);
    beginEditCP(t);
    t->setMatrix(m);
    endEditCP(t);
    NodePtr n = Node::create();
    beginEditCP(n);
    n->setCore(t);
    n->addChild(child);
    endEditCP(n);
    return n;
}

void setMaterial(NodePtr node, MaterialPtr material)
{
    GeometryPtr geo = GeometryPtr::dcast(node->getCore());
    beginEditCP(geo, Geometry::MaterialFieldMask);
    geo->setMaterial(material);
    endEditCP(geo, Geometry::MaterialFieldMask);
}

SimpleMaterialPtr texturedMaterial(ImagePtr image, Color3f diffuse)
{
    TextureChunkPtr tex = TextureChunk::create();
    beginEditCP(tex);
    tex->setImage(image);
    tex->setEnvMode(GL_MODULATE);
    tex->setMinFilter(GL_LINEAR_MIPMAP_LINEAR);
    endEditCP(tex);

    SimpleMaterialPtr mat = SimpleMaterial::create();
    beginEditCP(mat);
    mat->setAmbient(Color3f(0.2f, 0.2f, 0.2f));
    mat->setDiffuse(diffuse);
    mat->setSpecular(Color3f(0.4f, 0.4f, 0.4f));
    mat->setShininess(30.f);
    mat->addChunk(tex);
    endEditCP(mat);
    return mat;
}

BackgroundPtr makeSolid(Holder &h, const Color3f &c)
{
    SolidBackgroundPtr background = h.keep(SolidBackground::create());
    beginEditCP(background);
    background->setColor(c);
    endEditCP(background);
    return background;
}

/// A camera on its own beacon under root, at `from` looking at `at`, with a
/// vertical field of view of fovDeg degrees.
PerspectiveCameraPtr makeCamera(Holder &h, const NodePtr &root, const Pnt3f &from,
                                const Pnt3f &at, Real32 fovDeg)
{
    TransformPtr xform = Transform::create();
    Matrix       m;
    MatrixLookAt(m, from, at, Vec3f(0.f, 1.f, 0.f));
    beginEditCP(xform);
    xform->setMatrix(m);
    endEditCP(xform);

    NodePtr beacon = makeNodeFor(xform);
    beginEditCP(root, Node::ChildrenFieldMask);
    root->addChild(beacon);
    endEditCP(root, Node::ChildrenFieldMask);

    PerspectiveCameraPtr camera = h.keep(PerspectiveCamera::create());
    beginEditCP(camera);
    camera->setBeacon(beacon);
    camera->setFov(osgdegree2rad(fovDeg));
    camera->setNear(0.5f);
    camera->setFar(50.f);
    endEditCP(camera);
    return camera;
}

ViewportPtr addPort(Holder &h, const WindowPtr &win, const CameraPtr &camera,
                    const NodePtr &root, const BackgroundPtr &background, Real32 left,
                    Real32 right)
{
    ViewportPtr port = h.keep(Viewport::create());
    beginEditCP(port);
    port->setSize(left, 0.f, right, 1.f);
    port->setCamera(camera);
    port->setRoot(root);
    port->setBackground(background);
    endEditCP(port);
    win->addPort(port);
    return port;
}

EGLWindowPtr openWindow(Holder &h, UInt32 width, UInt32 height)
{
    EGLWindowPtr win = h.keep(EGLWindow::create());
    beginEditCP(win);
    win->setSize(UInt16(width), UInt16(height));
    endEditCP(win);
    win->init();
    if(!win->isInitialized())
    {
        FWARNING(("openWindow: no OpenGL context\n"));
        return NullFC;
    }
    return win;
}

ScreenDumpForegroundPtr addDumpPort(Holder &h, const WindowPtr &win)
{
    NodePtr  empty = h.keep(makeNodeFor(Group::create()));
    ImagePtr shot  = h.keep(Image::create());
    shot->set(Image::OSG_RGB_PF, Int32(win->getWidth()), Int32(win->getHeight()));
    ScreenDumpForegroundPtr dump = h.keep(ScreenDumpForeground::create());
    beginEditCP(dump);
    dump->setImage(shot);
    dump->setAutoResize(true);
    dump->setActive(false);
    endEditCP(dump);
    ViewportPtr grabber = addPort(h, win, makeCamera(h, empty, Pnt3f(0.f, 0.f, 1.f), Pnt3f(0.f, 0.f, 0.f)),
                                  empty, h.keep(PassiveBackground::create()), 0.f, 1.f);
    beginEditCP(grabber, Viewport::ForegroundsFieldMask);
    grabber->getForegrounds().push_back(dump);
    endEditCP(grabber, Viewport::ForegroundsFieldMask);
    return dump;
}

bool renderFrameToFile(const WindowPtr &win, RenderAction *action,
                       const ScreenDumpForegroundPtr &dump, const char *fileName)
{
    beginEditCP(dump);
    dump->setActive(true);
    dump->getFilenames().push_back(fileName);
    endEditCP(dump);
    win->render(action);
    beginEditCP(dump);
    dump->setActive(false);
    endEditCP(dump);

    // the dump takes its file name off the queue whether or not it could write
    std::ifstream written(fileName, std::ios::binary | std::ios::ate);
    return dump->getFilenames().empty() && written.good() && written.tellg() > 0;
}

bool renderToFile(Holder &h, const WindowPtr &win, const char *fileName, UInt32 frames)
{
    ScreenDumpForegroundPtr       dump = addDumpPort(h, win);
    std::unique_ptr<RenderAction> action(RenderAction::create());
    // earlier frames only run; the last one is written
    for(UInt32 i = 1; i < frames; ++i)
        win->render(action.get());
    bool ok = renderFrameToFile(win, action.get(), dump, fileName);
    while(!win->getPort().empty())
        win->subPort(UInt32(0));
    if(!ok)
        FWARNING(("renderToFile: can't write %s\n", fileName));
    return ok;
}

} // namespace corvane
