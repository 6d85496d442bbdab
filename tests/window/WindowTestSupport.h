// Helpers shared by the window tests: an EGL window of a given size, RGBA
// pixels and a way to look at them.
#ifndef _WINDOWTESTSUPPORT_H_
#define _WINDOWTESTSUPPORT_H_

#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGHeadlessGLContext.h>
#include <OpenSG/OSGPNGCodec.h>

#include <gtest/gtest.h>

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

} // namespace wintest

#endif
