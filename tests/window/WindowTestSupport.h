// Helpers shared by the window tests: an EGL window of a given size, RGBA
// pixels and a way to look at them.
#ifndef _WINDOWTESTSUPPORT_H_
#define _WINDOWTESTSUPPORT_H_

#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGHeadlessGLContext.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGPNGCodec.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace wintest
{

using namespace osg;

struct RGBA
{
    UInt8 r, g, b, a;

    bool operator==(const RGBA &o) const
    {
        return r == o.r && g == o.g && b == o.b && a == o.a;
    }
    bool operator!=(const RGBA &o) const { return !(*this == o); }
};

inline std::ostream &operator<<(std::ostream &os, const RGBA &c)
{
    return os << int(c.r) << ',' << int(c.g) << ',' << int(c.b) << ','
              << int(c.a);
}

// The colours the tests paint with.
const RGBA Grey   = {64, 64, 64, 255};
const RGBA Red    = {255, 0, 0, 255};
const RGBA Green  = {0, 255, 0, 255};
const RGBA Blue   = {0, 0, 255, 255};
const RGBA Yellow = {255, 255, 0, 255};

/// A texture chunk that shows img's texels exactly as they are: nearest
/// filtering, replacing the fragment colour.
inline TextureChunkPtr nearestTexture(const ImagePtr &img)
{
    TextureChunkPtr tex = TextureChunk::create();
    beginEditCP(tex);
    tex->setImage(img);
    tex->setMinFilter(GL_NEAREST);
    tex->setMagFilter(GL_NEAREST);
    tex->setEnvMode(GL_REPLACE);
    endEditCP(tex);
    return tex;
}

/// An initialised EGL window of w x h, or NullFC when EGL gives no context
/// (the caller skips). The caller releases it with subRefCP.
inline EGLWindowPtr makeWindow(UInt16 w, UInt16 h)
{
    if(!HeadlessGLContext::isAvailable())
        return NullFC;

    EGLWindowPtr win = EGLWindow::create();
    addRefCP(win);

    beginEditCP(win);
    win->setSize(w, h);
    endEditCP(win);

    win->init();

    EXPECT_TRUE(win->isInitialized());
    if(!win->isInitialized())
    {
        subRefCP(win);
        return NullFC;
    }

    return win;
}

inline std::vector<RGBA> readAll(const EGLWindowPtr &win)
{
    std::vector<RGBA> px(win->getWidth() * win->getHeight());
    EXPECT_TRUE(win->readPixels(0, 0, win->getWidth(), win->getHeight(),
                                GL_RGBA, GL_UNSIGNED_BYTE, px.data()));
    return px;
}

/// Writes the pixels (bottom row first) to /tmp for looking at them.
inline void writePNG(const std::string &name, const std::vector<RGBA> &px,
                     UInt32 w, UInt32 h)
{
    PNGPixels png;
    png.width    = w;
    png.height   = h;
    png.channels = 4;
    png.bitDepth = 8;
    png.data.assign(reinterpret_cast<const UInt8 *>(px.data()),
                    reinterpret_cast<const UInt8 *>(px.data() + px.size()));
    writePNGFile(("/tmp/corvane_window_" + name + ".png").c_str(), png);
}

inline RGBA toRGBA(Real32 r, Real32 g, Real32 b, Real32 a = 1.f)
{
    auto c = [](Real32 v) { return UInt8(v * 255.f + 0.5f); };
    return RGBA{c(r), c(g), c(b), c(a)};
}

/// A window with an empty scene (a group root), a perspective camera on a
/// transform beacon and a render action; tests add ports, backgrounds and
/// foregrounds. Everything handed to keep() is released in reverse order.
/// Tests are skipped where EGL gives no context.
class FrameFixture : public ::testing::Test
{
  protected:
    explicit FrameFixture(UInt16 w = 64, UInt16 h = 48) : winW(w), winH(h) {}

    void SetUp(void) override
    {
        win = makeWindow(winW, winH);
        if(win == NullFC)
            GTEST_SKIP() << "no EGL context on this machine";

        root = Node::create();
        keep(root);
        beginEditCP(root);
        root->setCore(Group::create());
        endEditCP(root);

        beacon = Node::create();
        keep(beacon);
        beginEditCP(beacon);
        beacon->setCore(Transform::create());
        endEditCP(beacon);

        camera = PerspectiveCamera::create();
        keep(camera);
        beginEditCP(camera);
        camera->setBeacon(beacon);
        camera->setFov(1.f);
        camera->setNear(0.1f);
        camera->setFar(10.f);
        endEditCP(camera);

        action.reset(RenderAction::create());
    }

    void TearDown(void) override
    {
        if(win == NullFC)
            return;

        action.reset();
        for(UInt32 i = UInt32(owned.size()); i > 0; --i)
            subRefCP(owned[i - 1]);
        subRefCP(win);
    }

    void keep(const FieldContainerPtr &fc)
    {
        addRefCP(fc);
        owned.push_back(fc);
    }

    /// A viewport of the window over the scene; l, r, b, t as Viewport::setSize
    /// takes them (fractions or pixels).
    ViewportPtr port(Real32 l, Real32 r, Real32 b, Real32 t, const BackgroundPtr &bg)
    {
        ViewportPtr vp = Viewport::create();
        keep(vp);
        keep(bg);
        beginEditCP(vp);
        vp->setSize(l, b, r, t);
        vp->setCamera(camera);
        vp->setRoot(root);
        vp->setBackground(bg);
        endEditCP(vp);
        win->addPort(vp);
        return vp;
    }

    static BackgroundPtr solid(const RGBA &c)
    {
        SolidBackgroundPtr bg = SolidBackground::create();
        beginEditCP(bg);
        bg->setColor(Color3f(c.r / 255.f, c.g / 255.f, c.b / 255.f));
        endEditCP(bg);
        return bg;
    }

    /// An RGBA image of w x h with every byte set to fill, kept by the test.
    ImagePtr image(UInt32 w, UInt32 h, UInt8 fill)
    {
        ImagePtr img = Image::create();
        keep(img);
        img->set(GL_RGBA, w, h);
        std::fill(img->editData(), img->editData() + img->getSize(), fill);
        return img;
    }

    /// Pixel (x, y) of an RGBA image, bottom row first.
    static RGBA at(const ImagePtr &img, UInt32 x, UInt32 y)
    {
        const UInt8 *p = img->getData() + (y * img->getWidth() + x) * 4;
        return RGBA{p[0], p[1], p[2], p[3]};
    }

    /// Renders one frame and returns what it logged at warning level and
    /// up; a GL error fails the test.
    std::string frameLog(void)
    {
        LogCapture log(LOG_WARNING);
        win->render(action.get());
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
        return log.take();
    }

    /// Renders one frame; no GL error and no warning may come of it.
    void frame(void) { EXPECT_EQ(frameLog(), ""); }

    UInt16                         winW, winH;
    EGLWindowPtr                   win;
    NodePtr                        root, beacon;
    PerspectiveCameraPtr           camera;
    std::unique_ptr<RenderAction>  action;
    std::vector<FieldContainerPtr> owned;
};

} // namespace wintest

#endif
