// A volume in a window, built as an application builds it: a VolumeNode
// with voxels, a VolumeViewport ahead of an ordinary viewport, a camera on
// a beacon. The fixture renders frames and reads back the frame buffer and
// the viewport's textures.
#ifndef _VOLUMEFRAMESUPPORT_H_
#define _VOLUMEFRAMESUPPORT_H_

#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGHeadlessGLContext.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>
#include <OpenSG/OSGVolumeNode.h>
#include <OpenSG/OSGVolumeViewport.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <vector>

namespace voltest
{

using namespace osg;

/// The edge of the test volumes.
const Int32 N = 16;

/// A soft ball in an N^3 volume: 255 at the centre, falling off to 0 at
/// the edge.
inline UInt8 ball(Int32 x, Int32 y, Int32 z)
{
    const Real32 c = (N - 1) / 2.f;
    const Real32 r = std::sqrt((x - c) * (x - c) + (y - c) * (y - c) + (z - c) * (z - c)) / c;
    return UInt8(std::max(0.f, 1.f - r) * 255.f + 0.5f);
}

/// Voxels of an n^3 8-bit volume from a function of the voxel index.
inline TextureChunkPtr makeVoxels(Int32 w, Int32 h, Int32 d,
                                  const std::function<UInt8(Int32, Int32, Int32)> &value)
{
    std::vector<UInt8> data(size_t(w) * h * d);
    size_t             n = 0;
    for(Int32 z = 0; z < d; ++z)
        for(Int32 y = 0; y < h; ++y)
            for(Int32 x = 0; x < w; ++x)
                data[n++] = value(x, y, z);
    ImagePtr image = Image::create();
    beginEditCP(image);
    image->set(Image::OSG_L_PF, w, h, d, 1, 1, 0.0, data.data(), Image::OSG_UINT8_IMAGEDATA);
    endEditCP(image);
    TextureChunkPtr voxels = TextureChunk::create();
    beginEditCP(voxels);
    voxels->setImage(image);
    endEditCP(voxels);
    return voxels;
}

inline NodePtr makeNode(const NodeCorePtr &core)
{
    NodePtr node = Node::create();
    beginEditCP(node);
    node->setCore(core);
    endEditCP(node);
    return node;
}

inline void addChild(const NodePtr &parent, const NodePtr &child)
{
    beginEditCP(parent, Node::ChildrenFieldMask);
    parent->addChild(child);
    endEditCP(parent, Node::ChildrenFieldMask);
}

/// One window with a volume scene. Everything is released at the end.
class VolumeFrame : public ::testing::Test
{
  protected:
    static const UInt16 W = 64, H = 64;

    void SetUp(void) override
    {
        if(!HeadlessGLContext::isAvailable())
            GTEST_SKIP() << "no EGL context";
        win = EGLWindow::create();
        addRefCP(win);
        beginEditCP(win);
        win->setSize(W, H);
        endEditCP(win);
        win->init();
        if(!win->isInitialized())
            GTEST_SKIP() << "no EGL context";

        lightBeacon = makeNode(Transform::create());
        DirectionalLightPtr sun = DirectionalLight::create();
        beginEditCP(sun);
        sun->setDirection(Vec3f(0.f, 0.f, 1.f));
        sun->setBeacon(lightBeacon);
        endEditCP(sun);
        root = makeNode(sun);
        addRefCP(root);
        addChild(root, lightBeacon);

        volume = VolumeNode::create();
        volumeNode = makeNode(volume);
        addChild(root, volumeNode);

        cameraBeacon = makeNode(Transform::create());
        addChild(root, cameraBeacon);
        camera = PerspectiveCamera::create();
        beginEditCP(camera);
        camera->setBeacon(cameraBeacon);
        camera->setFov(osgdegree2rad(40.f));
        camera->setNear(0.5f);
        camera->setFar(20.f);
        endEditCP(camera);
        lookFrom(Pnt3f(0.f, 0.f, 4.f));

        background = SolidBackground::create();
        beginEditCP(background);
        background->setColor(Color3f(0.f, 0.f, 0.f));
        endEditCP(background);

        volumePort = VolumeViewport::create();
        beginEditCP(volumePort);
        volumePort->setCamera(camera);
        volumePort->setRoot(root);
        volumePort->setBackground(background);
        volumePort->getVolumeNodes().push_back(volume);
        endEditCP(volumePort);

        port = Viewport::create();
        beginEditCP(port);
        port->setCamera(camera);
        port->setRoot(root);
        port->setBackground(background);
        endEditCP(port);
        win->addPort(volumePort);
        win->addPort(port);
        action.reset(RenderAction::create());
    }

    void TearDown(void) override
    {
        if(win == NullFC)
            return;
        while(!win->getPort().empty())
            win->subPort(UInt32(0));
        subRefCP(root);
        subRefCP(win);
    }

    void lookFrom(const Pnt3f &from, const Pnt3f &at = Pnt3f(0.f, 0.f, 0.f))
    {
        Matrix m;
        MatrixLookAt(m, from, at, Vec3f(0.f, 1.f, 0.f));
        TransformPtr t = TransformPtr::dcast(cameraBeacon->getCore());
        beginEditCP(t);
        t->setMatrix(m);
        endEditCP(t);
    }

    void render(void) { win->render(action.get()); }

    /// The frame buffer, bottom row first, RGBA floats.
    std::vector<Vec4f> frame(void)
    {
        std::vector<Vec4f> pixels(size_t(W) * H);
        glReadPixels(0, 0, W, H, GL_RGBA, GL_FLOAT, &pixels[0]);
        return pixels;
    }

    /// The texels of one of the viewport's 2-D textures, bottom row first.
    std::vector<Vec4f> texels(const TextureChunkPtr &texture)
    {
        std::vector<Vec4f> pixels(size_t(W) * H);
        glBindTexture(GL_TEXTURE_2D, win->getGLObjectId(texture->getGLId()));
        glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_FLOAT, &pixels[0]);
        glBindTexture(GL_TEXTURE_2D, 0);
        return pixels;
    }

    EGLWindowPtr                  win;
    NodePtr                       root, lightBeacon, cameraBeacon, volumeNode;
    VolumeNodePtr                 volume;
    PerspectiveCameraPtr          camera;
    SolidBackgroundPtr            background;
    VolumeViewportPtr             volumePort;
    ViewportPtr                   port;
    std::unique_ptr<RenderAction> action;
};

} // namespace voltest

#endif
