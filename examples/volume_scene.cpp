// volume_scene: a small OpenSG application built against an installed
// libCorvane. It puts a ray-cast volume (a soft ball of voxels made in
// memory) and a torus that rings it into one scene, renders the scene
// headless through an EGL window, and writes the frame as a PNG file.
//
//     volume_scene OUT.png [WIDTH HEIGHT]
//
// The transfer function is the "ramp" preset that the package installs
// beside its other run-time data; the build passes the folder in
// VOLUME_SCENE_DATA_DIR (CORVANE_DATA_DIR in the environment overrides it).

#include <OpenSG/OSGConfig.h>
#include <OpenSG/OSGBaseInitFunctions.h>
#include <OpenSG/OSGBasicVolumeShadingStyle.h>
#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGScreenDumpForeground.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>
#include <OpenSG/OSGVolumeNode.h>
#include <OpenSG/OSGVolumeViewport.h>
#include <OpenSG/SimpleTransferfunction.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#ifndef VOLUME_SCENE_DATA_DIR
#define VOLUME_SCENE_DATA_DIR "."
#endif

OSG_USING_NAMESPACE

namespace
{

void addChild(NodePtr parent, NodePtr child)
{
    beginEditCP(parent, Node::ChildrenFieldMask);
    parent->addChild(child);
    endEditCP(parent, Node::ChildrenFieldMask);
}

/// An edge^3 volume of 8-bit voxels: a ball of 255 out to 60% of the half
/// edge, falling linearly to 0 at 85%.
ImagePtr makeBall(Int32 edge)
{
    std::vector<UInt8> voxels(size_t(edge) * edge * edge);
    size_t             i = 0;
    for(Int32 z = 0; z < edge; ++z)
        for(Int32 y = 0; y < edge; ++y)
            for(Int32 x = 0; x < edge; ++x, ++i)
            {
                const float u = (2.f * x + 1.f) / edge - 1.f;
                const float v = (2.f * y + 1.f) / edge - 1.f;
                const float w = (2.f * z + 1.f) / edge - 1.f;
                const float r = std::sqrt(u * u + v * v + w * w);
                const float d = std::min(1.f, std::max(0.f, (0.85f - r) / 0.25f));
                voxels[i]     = UInt8(d * 255.f + 0.5f);
            }
    ImagePtr image = Image::create();
    beginEditCP(image);
    image->set(Image::OSG_L_PF, edge, edge, edge, 1, 1, 0.0, &voxels[0],
               Image::OSG_UINT8_IMAGEDATA);
    endEditCP(image);
    return image;
}

/// A torus lying in the x-z plane around the volume, in a lit orange.
NodePtr makeRing(void)
{
    NodePtr           torus = makeTorus(0.12f, 1.45f, 16, 48);
    SimpleMaterialPtr mat   = SimpleMaterial::create();
    beginEditCP(mat);
    mat->setDiffuse(Color3f(0.95f, 0.45f, 0.1f));
    mat->setAmbient(Color3f(0.35f, 0.15f, 0.03f));
    mat->setSpecular(Color3f(0.4f, 0.4f, 0.4f));
    mat->setShininess(30.f);
    endEditCP(mat);
    GeometryPtr geo = GeometryPtr::dcast(torus->getCore());
    beginEditCP(geo, Geometry::MaterialFieldMask);
    geo->setMaterial(mat);
    endEditCP(geo, Geometry::MaterialFieldMask);

    TransformPtr lay = Transform::create();
    beginEditCP(lay, Transform::MatrixFieldMask);
    lay->editMatrix().setRotate(Quaternion(Vec3f(1.f, 0.f, 0.f), osgdegree2rad(90.f)));
    endEditCP(lay, Transform::MatrixFieldMask);
    NodePtr node = makeNodeFor(lay);
    addChild(node, torus);
    return node;
}

/// Renders the scene into fileName; false when the frame could not be
/// written.
bool render(const std::string &fileName, UInt16 width, UInt16 height, const std::string &tf)
{
    EGLWindowPtr win = EGLWindow::create();
    addRefCP(win);
    beginEditCP(win);
    win->setSize(width, height);
    endEditCP(win);
    win->init();
    if(!win->isInitialized())
    {
        fprintf(stderr, "volume_scene: no OpenGL context\n");
        subRefCP(win);
        return false;
    }

    // the transfer function: opacity and grey rise with the voxel value
    SimpleTransferfunction transfer;
    transfer.setMode(0);
    if(!transfer.load(tf))
    {
        fprintf(stderr, "volume_scene: can't read the transfer function %s\n", tf.c_str());
        subRefCP(win);
        return false;
    }

    // the scene: a sun over the volume, the ring and the camera's beacon
    NodePtr             sunBeacon = makeNodeFor(Transform::create());
    DirectionalLightPtr sun       = DirectionalLight::create();
    beginEditCP(sun);
    sun->setDirection(Vec3f(0.3f, 0.8f, 0.5f));
    sun->setAmbient(Color4f(0.2f, 0.2f, 0.2f, 1.f));
    sun->setBeacon(sunBeacon);
    endEditCP(sun);
    NodePtr root = makeNodeFor(sun);
    addRefCP(root);
    addChild(root, sunBeacon);

    TextureChunkPtr voxels = TextureChunk::create();
    beginEditCP(voxels);
    voxels->setImage(makeBall(48));
    endEditCP(voxels);

    BasicVolumeShadingStylePtr style = BasicVolumeShadingStyle::create();
    beginEditCP(style);
    style->setShadingFuncType(0);
    style->setLighting(true);
    endEditCP(style);

    VolumeNodePtr volume = VolumeNode::create();
    beginEditCP(volume);
    volume->setDimensions(Vec3f(2.f, 2.f, 2.f));
    volume->setTransferFunc(transfer.getTFTextureChunk());
    volume->setShadingStyle(style);
    volume->setVoxels(voxels);
    endEditCP(volume);
    addChild(root, makeNodeFor(volume));
    addChild(root, makeRing());

    TransformPtr view = Transform::create();
    beginEditCP(view, Transform::MatrixFieldMask);
    MatrixLookAt(view->editMatrix(), Pnt3f(0.f, 2.2f, 5.5f), Pnt3f(0.f, 0.f, 0.f),
                 Vec3f(0.f, 1.f, 0.f));
    endEditCP(view, Transform::MatrixFieldMask);
    NodePtr cameraBeacon = makeNodeFor(view);
    addChild(root, cameraBeacon);

    PerspectiveCameraPtr camera = PerspectiveCamera::create();
    beginEditCP(camera);
    camera->setBeacon(cameraBeacon);
    camera->setFov(osgdegree2rad(40.f));
    camera->setNear(0.1f);
    camera->setFar(50.f);
    endEditCP(camera);

    SolidBackgroundPtr background = SolidBackground::create();
    beginEditCP(background);
    background->setColor(Color3f(0.1f, 0.12f, 0.2f));
    endEditCP(background);

    // the volume viewport casts the rays; the ordinary port behind it draws
    // the scene, mixes the volume in, and dumps the frame
    VolumeViewportPtr volumePort = VolumeViewport::create();
    beginEditCP(volumePort);
    volumePort->setCamera(camera);
    volumePort->setRoot(root);
    volumePort->setBackground(background);
    volumePort->getVolumeNodes().push_back(volume);
    endEditCP(volumePort);

    ImagePtr shot = Image::create();
    beginEditCP(shot);
    shot->set(Image::OSG_RGB_PF, width, height);
    endEditCP(shot);
    ScreenDumpForegroundPtr dump = ScreenDumpForeground::create();
    beginEditCP(dump);
    dump->setImage(shot);
    dump->setAutoResize(true);
    dump->setActive(false);
    endEditCP(dump);

    ViewportPtr port = Viewport::create();
    beginEditCP(port);
    port->setSize(0.f, 0.f, 1.f, 1.f);
    port->setCamera(camera);
    port->setRoot(root);
    port->setBackground(background);
    port->getForegrounds().push_back(dump);
    endEditCP(port);

    beginEditCP(win, Window::PortFieldMask);
    win->addPort(volumePort);
    win->addPort(port);
    endEditCP(win, Window::PortFieldMask);

    RenderAction *action = RenderAction::create();
    // the first frame builds the volume's GPU side; the second shows it
    win->render(action);
    beginEditCP(dump);
    dump->setActive(true);
    dump->getFilenames().push_back(fileName);
    endEditCP(dump);
    win->render(action);
    const bool written = dump->getFilenames().empty();

    beginEditCP(win, Window::PortFieldMask);
    while(!win->getPort().empty())
        win->subPort(UInt32(0));
    endEditCP(win, Window::PortFieldMask);
    delete action;
    subRefCP(root);
    subRefCP(win);
    return written;
}

} // namespace

int main(int argc, char **argv)
{
    if(argc != 2 && argc != 4)
    {
        fprintf(stderr, "usage: %s OUT.png [WIDTH HEIGHT]\n", argv[0]);
        return 2;
    }
    const int width  = argc == 4 ? std::atoi(argv[2]) : 320;
    const int height = argc == 4 ? std::atoi(argv[3]) : 240;
    if(width < 1 || height < 1 || width > 4096 || height > 4096)
    {
        fprintf(stderr, "%s: the size must be 1 to 4096 pixels a side\n", argv[0]);
        return 2;
    }
    const char *env  = std::getenv("CORVANE_DATA_DIR");
    std::string data = env != NULL ? env : VOLUME_SCENE_DATA_DIR;

    osgInit(argc, argv);
    const bool ok = render(argv[1], UInt16(width), UInt16(height), data + "/ramp.tf");
    osgExit();
    if(!ok)
    {
        fprintf(stderr, "%s: can't write %s\n", argv[0], argv[1]);
        return 1;
    }
    printf("wrote %s (%d x %d)\n", argv[1], width, height);
    return 0;
}
