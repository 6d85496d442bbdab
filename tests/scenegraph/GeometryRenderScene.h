// A window that shows a scene through an identity camera, for the geometry
// rendering tests: clip space is object space, so x and y in [-1, 1] cover
// the window, and helpers that count pixels of one colour.
#ifndef _GEOMETRYRENDERSCENE_H_
#define _GEOMETRYRENDERSCENE_H_

#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGHeadlessGLContext.h>
#include <OpenSG/OSGViewport.h>
#include <OpenSG/OSGMatrixCamera.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGPNGCodec.h>
#include <OpenSG/OSGGL.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace geometrytest
{

using namespace osg;

const UInt32 W = 64, H = 64;

/// A window showing root through an identity camera: clip space is object
/// space, so x and y in [-1, 1] cover the window.
class RenderScene
{
  public:
    RenderScene(void) : ra(NULL), da(NULL) {}

    bool init(void)
    {
        if(!HeadlessGLContext::isAvailable())
            return false;
        win = EGLWindow::create();
        addRefCP(win);
        win->setSize(W, H);
        win->init();
        if(!win->isInitialized())
            return false;

        cam = MatrixCamera::create();
        addRefCP(cam);
        beginEditCP(cam);
        cam->setProjectionMatrix(Matrix());
        cam->setModelviewMatrix(Matrix());
        cam->setNear(-1);
        cam->setFar(1);
        endEditCP(cam);

        bg = SolidBackground::create();
        addRefCP(bg);
        beginEditCP(bg);
        bg->setColor(Color3f(0, 0, 0));
        endEditCP(bg);

        root = Node::create();
        addRefCP(root);
        beginEditCP(root, Node::CoreFieldMask);
        root->setCore(Group::create());
        endEditCP(root, Node::CoreFieldMask);

        vp = Viewport::create();
        addRefCP(vp);
        beginEditCP(vp);
        vp->setCamera(cam);
        vp->setBackground(bg);
        vp->setRoot(root);
        vp->setSize(0, 0, 1, 1);
        endEditCP(vp);
        win->addPort(vp);

        ra = RenderAction::create();
        da = DrawAction::create();
        return true;
    }

    ~RenderScene(void)
    {
        delete ra;
        delete da;
        if(win != NullFC)
        {
            if(vp != NullFC)
                win->subPort(vp);
            subRefCP(win);
        }
        if(vp != NullFC)
            subRefCP(vp);
        if(root != NullFC)
            subRefCP(root);
        if(cam != NullFC)
            subRefCP(cam);
        if(bg != NullFC)
            subRefCP(bg);
    }

    NodePtr add(NodeCorePtr core)
    {
        NodePtr n = Node::create();
        beginEditCP(n, Node::CoreFieldMask);
        n->setCore(core);
        endEditCP(n, Node::CoreFieldMask);
        beginEditCP(root, Node::ChildrenFieldMask);
        root->addChild(n);
        endEditCP(root, Node::ChildrenFieldMask);
        return n;
    }

    void clearChildren(void)
    {
        beginEditCP(root, Node::ChildrenFieldMask);
        while(root->getNChildren() > 0)
            root->subChild(0u);
        endEditCP(root, Node::ChildrenFieldMask);
    }

    /// Renders and returns the image, RGB, bottom row first.
    std::vector<UInt8> render(bool drawAction = false)
    {
        if(drawAction)
            win->draw(da);
        else
            win->render(ra);
        std::vector<UInt8> px(W * H * 3);
        win->readPixels(0, 0, W, H, GL_RGB, GL_UNSIGNED_BYTE, &px[0]);
        return px;
    }

    EGLWindowPtr       win;
    ViewportPtr        vp;
    MatrixCameraPtr    cam;
    SolidBackgroundPtr bg;
    NodePtr            root;
    RenderAction      *ra;
    DrawAction        *da;
};

inline const UInt8 *pixel(const std::vector<UInt8> &img, UInt32 x, UInt32 y)
{
    return &img[(y * W + x) * 3];
}

/// Pixels of exactly that colour, and their bounding box.
inline UInt32 countColor(const std::vector<UInt8> &img, UInt8 r, UInt8 g, UInt8 b, UInt32 box[4])
{
    UInt32 n = 0;
    box[0] = box[1] = 1000;
    box[2] = box[3] = 0;
    for(UInt32 y = 0; y < H; ++y)
    {
        for(UInt32 x = 0; x < W; ++x)
        {
            const UInt8 *p = pixel(img, x, y);
            if(p[0] == r && p[1] == g && p[2] == b)
            {
                ++n;
                box[0] = std::min(box[0], x);
                box[1] = std::min(box[1], y);
                box[2] = std::max(box[2], x);
                box[3] = std::max(box[3], y);
            }
        }
    }
    return n;
}

inline void savePNG(const std::vector<UInt8> &img, const std::string &name)
{
    PNGPixels png;
    png.width    = W;
    png.height   = H;
    png.channels = 3;
    png.bitDepth = 8;
    png.data     = img;
    writePNGFile(("/tmp/corvane_geometry_" + name + ".png").c_str(), png);
}

inline SimpleMaterialPtr unlit(const Color3f &c)
{
    SimpleMaterialPtr m = SimpleMaterial::create();
    beginEditCP(m);
    m->setDiffuse(c);
    m->setLit(false);
    endEditCP(m);
    return m;
}

/// The centred quad of half the window's size, drawn green: 32 x 32 pixels
/// from 16 to 47 in both directions.
inline GeometryPtr greenQuad(void)
{
    GeometryPtr geo = makePlaneGeo(1, 1, 1, 1);
    beginEditCP(geo, Geometry::MaterialFieldMask);
    geo->setMaterial(unlit(Color3f(0, 1, 0)));
    endEditCP(geo, Geometry::MaterialFieldMask);
    return geo;
}

inline void expectQuad(const std::vector<UInt8> &img, UInt32 lo, UInt32 hi, const char *what)
{
    UInt32 box[4];
    UInt32 n = countColor(img, 0, 255, 0, box);
    EXPECT_EQ(n, (hi - lo + 1) * (hi - lo + 1)) << what;
    EXPECT_EQ(box[0], lo) << what;
    EXPECT_EQ(box[1], lo) << what;
    EXPECT_EQ(box[2], hi) << what;
    EXPECT_EQ(box[3], hi) << what;
    UInt32 dummy[4];
    EXPECT_EQ(countColor(img, 0, 0, 0, dummy), W * H - n) << what;
}

} // namespace geometrytest

#define NEED_GL(scene)                                                         \
    if(!(scene).init())                                                        \
    GTEST_SKIP() << "no EGL desktop GL context"

#endif
