// Helpers for the state tests that render: one EGL window for the whole
// program, a draw action on it, immediate-mode quads and pixel read-back.
#ifndef _STATEGLSUPPORT_H_
#define _STATEGLSUPPORT_H_

#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGHeadlessGLContext.h>
#include <OpenSG/OSGPNGCodec.h>

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace statetest
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
    return os << int(c.r) << ',' << int(c.g) << ',' << int(c.b) << ',' << int(c.a);
}

/// Each channel within tolerance of the expected value.
inline ::testing::AssertionResult near(const RGBA &got, const RGBA &want, int tolerance)
{
    int d[4] = {got.r - want.r, got.g - want.g, got.b - want.b, got.a - want.a};
    for(int i = 0; i < 4; ++i)
        if(d[i] > tolerance || d[i] < -tolerance)
            return ::testing::AssertionFailure() << "got " << got << ", want " << want;
    return ::testing::AssertionSuccess();
}

/// A new container of type PtrT that holds one reference (the test's).
template <class PtrT>
PtrT make(void)
{
    PtrT p = PtrT::StoredObjectType::create();
    addRefCP(p);
    return p;
}

/// The window every rendering test of this program shares (64 x 64), or
/// NullFC where EGL gives no desktop GL context.
EGLWindowPtr sharedWindow(void);

/// A draw action whose window is the shared one.
DrawAction *sharedAction(void);

/// Base of the rendering tests: skips without GL; before each test the
/// window is current with identity matrices, a cleared black framebuffer
/// and the whole window as viewport; after it there must be no GL error.
class GLTest : public ::testing::Test
{
  public:
    static const UInt32 Size = 64;

  protected:
    void SetUp(void) override;
    void TearDown(void) override;

    /// A quad from (x0, y0) to (x1, y1) in clip coordinates with texture
    /// coordinates (s0, t0) ... (s1, t1) and normal +z.
    static void drawQuad(Real32 x0 = -1, Real32 y0 = -1, Real32 x1 = 1, Real32 y1 = 1,
                         Real32 s0 = 0, Real32 t0 = 0, Real32 s1 = 1, Real32 t1 = 1);

    RGBA pixel(UInt32 x, UInt32 y);
    std::vector<RGBA> pixels(void);
    void writePNG(const std::string &name);

    /// Drains and returns the first pending GL error (GL_NO_ERROR if none).
    static GLenum takeGLError(void);

    EGLWindowPtr win;
    DrawAction  *action;
};

} // namespace statetest

#endif
