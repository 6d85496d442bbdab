// A window, viewport, camera and background for tests that look at pixels.
#ifndef _FRAMEFIXTURE_H_
#define _FRAMEFIXTURE_H_

#include "ActionTestSupport.h"

#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGPNGCodec.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGQuaternion.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGViewport.h>

#include <cstdlib>

namespace actiontest
{

using namespace osg;

const UInt32 Size = 64;

struct Pixel
{
    int r, g, b;
};

/// A 64x64 window looking down -z from z = 5 with a 90 degree view: the
/// plane z = 0 shows x, y in [-5, 5].
class FrameFixture : public ::testing::Test
{
  protected:
    void SetUp(void) override
    {
        clearActionTestLog();

        win = EGLWindow::create();
        addRefCP(win);
        win->setSize(Size, Size);
        win->init();
        if(!win->isInitialized())
            GTEST_SKIP() << "no EGL window on this machine";

        camBeacon = scene.root(scene.translate(0, 0, 5));

        cam = PerspectiveCamera::create();
        beginEditCP(cam);
        cam->setBeacon(camBeacon);
        cam->setFov(osgdegree2rad(90.f));
        cam->setNear(0.1f);
        cam->setFar(100.f);
        endEditCP(cam);
        scene.hold(cam);

        bg = SolidBackground::create();
        beginEditCP(bg);
        bg->setColor(Color3f(0.f, 0.f, 0.2f));
        endEditCP(bg);
        scene.hold(bg);

        vp = Viewport::create();
        beginEditCP(vp);
        vp->setCamera(cam);
        vp->setBackground(bg);
        endEditCP(vp);
        scene.hold(vp);

        beginEditCP(win);
        win->addPort(vp);
        endEditCP(win);

        action.reset(RenderAction::create());
    }

    void TearDown(void) override
    {
        action.reset();
        if(win != NullFC)
        {
            if(win->getPort().size() != 0)
            {
                beginEditCP(win);
                win->subPort(0u);
                endEditCP(win);
            }
            subRefCP(win);
        }
        scene.clear();
    }

    /// Renders root and reads the image back.
    void render(NodePtr root)
    {
        beginEditCP(vp, Viewport::RootFieldMask);
        vp->setRoot(root);
        endEditCP(vp, Viewport::RootFieldMask);

        win->render(action.get());

        pixels.assign(Size * Size * 4, 0);
        ASSERT_TRUE(win->readPixels(0, 0, Size, Size, GL_RGBA, GL_UNSIGNED_BYTE, &pixels[0]));

        win->activate();
        glError = glGetError();
    }

    Pixel at(UInt32 x, UInt32 y) const
    {
        const UInt8 *p = &pixels[(y * Size + x) * 4];
        return Pixel{p[0], p[1], p[2]};
    }

    void save(const char *name) const
    {
        PNGPixels png;
        png.width    = Size;
        png.height   = Size;
        png.channels = 4;
        png.bitDepth = 8;
        png.data     = pixels;
        writePNGFile((std::string("/tmp/") + name).c_str(), png);
    }

    /// A square of edge 'edge' at (x, y, z), drawn with mat.
    NodePtr square(const std::string &label, MaterialPtr mat, Real32 x, Real32 y, Real32 z,
                   Real32 edge)
    {
        NodePtr d = scene.draw(label, mat);
        ActionTestCorePtr core = ActionTestCorePtr::dcast(d->getCore());
        beginEditCP(core);
        core->setQuad(true);
        endEditCP(core);

        Matrix m;
        m.setTransform(Vec3f(x, y, z), Quaternion(), Vec3f(edge, edge, edge));
        return scene.transform(m, {d});
    }

    RecordMaterialPtr colour(const std::string &label, Color4f c, Int32 sortKey = 0,
                             bool transparent = false)
    {
        RecordMaterialPtr m = scene.material(label, sortKey, transparent);
        beginEditCP(m);
        m->setGl(true);
        m->setColor(c);
        endEditCP(m);
        return m;
    }

    Scene                         scene;
    EGLWindowPtr                  win;
    ViewportPtr                   vp;
    PerspectiveCameraPtr          cam;
    SolidBackgroundPtr            bg;
    NodePtr                       camBeacon;
    std::unique_ptr<RenderAction> action;
    std::vector<UInt8>            pixels;
    GLenum                        glError = GL_NO_ERROR;
};

#define EXPECT_PIXEL(px, R, G, B, TOL)                                                   \
    do                                                                                   \
    {                                                                                    \
        Pixel p_ = (px);                                                                 \
        EXPECT_LE(std::abs(p_.r - (R)), TOL) << "red " << p_.r;                          \
        EXPECT_LE(std::abs(p_.g - (G)), TOL) << "green " << p_.g;                        \
        EXPECT_LE(std::abs(p_.b - (B)), TOL) << "blue " << p_.b;                         \
    } while(0)

} // namespace actiontest

#endif
