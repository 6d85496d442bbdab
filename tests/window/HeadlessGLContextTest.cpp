// Renders into the headless context on whatever EGL offers (llvmpipe on the
// build machines) and checks the exact bytes that come back.
#include <OpenSG/OSGHeadlessGLContext.h>
#include <OpenSG/OSGLog.h>

#include <GL/gl.h>
#include <GL/glext.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <thread>
#include <vector>

using namespace osg;

namespace
{

struct Pixel
{
    UInt8 r, g, b, a;
    bool  operator==(const Pixel &o) const
    {
        return r == o.r && g == o.g && b == o.b && a == o.a;
    }
};

std::ostream &operator<<(std::ostream &os, const Pixel &c)
{
    return os << int(c.r) << ',' << int(c.g) << ',' << int(c.b) << ','
              << int(c.a);
}

const Pixel PixelRed   = {255, 0, 0, 255};
const Pixel PixelGreen = {0, 255, 0, 255};
const Pixel PixelGrey  = {10, 20, 30, 40};

void clearTo(const Pixel &c)
{
    glClearColor(c.r / 255.f, c.g / 255.f, c.b / 255.f, c.a / 255.f);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
}

// Pixel-exact projection: one unit per pixel, origin at the lower left.
void pixelOrtho(UInt32 w, UInt32 h)
{
    glViewport(0, 0, GLsizei(w), GLsizei(h));
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, w, 0, h, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
}

void quad(float x0, float y0, float x1, float y1, float z, const Pixel &c)
{
    glColor4ub(c.r, c.g, c.b, c.a);
    glBegin(GL_QUADS);
    glVertex3f(x0, y0, z);
    glVertex3f(x1, y0, z);
    glVertex3f(x1, y1, z);
    glVertex3f(x0, y1, z);
    glEnd();
}

std::vector<Pixel> readContextPixels(HeadlessGLContext &ctx)
{
    std::vector<Pixel> px(ctx.getWidth() * ctx.getHeight());
    EXPECT_TRUE(ctx.readPixels(0, 0, ctx.getWidth(), ctx.getHeight(), GL_RGBA,
                               GL_UNSIGNED_BYTE, px.data()));
    return px;
}

// Every pixel whose centre lies in [x0,x1) x [y0,y1) must be `in`, the rest
// `out`.
void expectRect(HeadlessGLContext &ctx, UInt32 x0, UInt32 y0, UInt32 x1,
                UInt32 y1, const Pixel &in, const Pixel &out)
{
    const std::vector<Pixel> px = readContextPixels(ctx);
    for(UInt32 y = 0; y < ctx.getHeight(); ++y)
        for(UInt32 x = 0; x < ctx.getWidth(); ++x)
        {
            const bool inside = x >= x0 && x < x1 && y >= y0 && y < y1;
            ASSERT_EQ(px[y * ctx.getWidth() + x], inside ? in : out)
                << "at " << x << "," << y;
        }
}

class HeadlessGLContextTest : public ::testing::Test
{
  protected:
    void SetUp(void) override
    {
        if(!HeadlessGLContext::isAvailable())
            GTEST_SKIP() << "no EGL implementation gives a desktop GL context";
        ASSERT_TRUE(ctx.init(16, 12));
        pixelOrtho(16, 12);
    }

    HeadlessGLContext ctx;
};

} // namespace

TEST_F(HeadlessGLContextTest, ComesUpWithACompatibilityContextAndItsFramebuffer)
{
    std::cout << "renderer: " << ctx.getRenderer() << " | version: "
              << ctx.getVersion() << " | platform: " << ctx.getPlatformName()
              << (ctx.isSurfaceless() ? " (surfaceless)" : " (pbuffer)")
              << std::endl;
    RecordProperty("renderer", ctx.getRenderer());

    EXPECT_TRUE(ctx.isInitialized());
    EXPECT_TRUE(ctx.isCurrent());
    EXPECT_STRNE(ctx.getRenderer(), "");
    EXPECT_GE(std::atoi(ctx.getVersion()), 2);
    const std::string platform = ctx.getPlatformName();
    EXPECT_TRUE(platform == "device" || platform == "surfaceless" ||
                platform == "default")
        << platform;
    EXPECT_EQ(ctx.getWidth(), 16u);
    EXPECT_EQ(ctx.getHeight(), 12u);

    // with a pbuffer the back buffer is framebuffer 0 itself
    GLint bound = -1;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &bound);
    EXPECT_EQ(GLuint(bound), ctx.getFramebufferId());
    if(!ctx.isSurfaceless())
    {
        EXPECT_EQ(ctx.getFramebufferId(), 0u);
    }
    EXPECT_NE(ctx.getProcAddress("glGenFramebuffers"), nullptr);
    EXPECT_EQ(ctx.getProcAddress(nullptr), nullptr);
}

TEST_F(HeadlessGLContextTest, ClearReadsBackExactBytesTightlyPacked)
{
    clearTo(PixelGrey);
    expectRect(ctx, 0, 0, 0, 0, PixelRed, PixelGrey);

    // Three RGB pixels make 9-byte rows: padding to the default alignment of
    // 4 would shift every row after the first.
    glPixelStorei(GL_PACK_ALIGNMENT, 8);
    std::vector<UInt8> rgb(3 * 3 * 2, 0xEE);
    ASSERT_TRUE(ctx.readPixels(13, 10, 3, 2, GL_RGB, GL_UNSIGNED_BYTE,
                               rgb.data()));
    for(size_t i = 0; i < rgb.size(); i += 3)
        EXPECT_EQ((std::vector<int>{rgb[i], rgb[i + 1], rgb[i + 2]}),
                  (std::vector<int>{10, 20, 30}));
    GLint alignment = 0;
    glGetIntegerv(GL_PACK_ALIGNMENT, &alignment);
    EXPECT_EQ(alignment, 8);

    // Rectangles that leave the framebuffer, and a missing target, fail
    // with a line in the log.
    LogCapture log;
    EXPECT_FALSE(ctx.readPixels(14, 0, 3, 1, GL_RGBA, GL_UNSIGNED_BYTE,
                                rgb.data()));
    EXPECT_FALSE(ctx.readPixels(0, 12, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE,
                                rgb.data()));
    EXPECT_FALSE(ctx.readPixels(0, 0, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE,
                                nullptr));
    const std::string text = log.take();
    EXPECT_NE(text.find("outside the 16x12 framebuffer"), std::string::npos);
    EXPECT_NE(text.find("without a destination"), std::string::npos);
}

TEST_F(HeadlessGLContextTest, FixedFunctionDrawingHitsExactPixels)
{
    clearTo(PixelGrey);
    quad(2, 3, 7, 5, 0, PixelRed);
    expectRect(ctx, 2, 3, 7, 5, PixelRed, PixelGrey); // rows counted from the bottom

    // Hypotenuse x + y = 12.5: no pixel centre lies on an edge, so the
    // covered set is exact without relying on the tie rules.
    clearTo(PixelGrey);
    const Pixel Blue = {0, 0, 255, 255};
    glColor4ub(Blue.r, Blue.g, Blue.b, Blue.a);
    glBegin(GL_TRIANGLES);
    glVertex2f(0, 4);
    glVertex2f(8.5f, 4);
    glVertex2f(0, 12.5f);
    glEnd();
    const std::vector<Pixel> px = readContextPixels(ctx);
    for(UInt32 y = 0; y < 12; ++y)
        for(UInt32 x = 0; x < 16; ++x)
            ASSERT_EQ(px[y * 16 + x], (y >= 4 && x + y <= 11) ? Blue : PixelGrey)
                << "at " << x << "," << y;
}

TEST_F(HeadlessGLContextTest, DepthAndStencilBuffersWork)
{
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LESS);
    clearTo(PixelGrey);
    // glOrtho(-1, 1) maps eye z = 0.5 nearer than z = -0.5; the near quad
    // is drawn first so that only the depth test can keep it.
    quad(2, 2, 10, 10, 0.5f, PixelRed);
    quad(6, 6, 14, 11, -0.5f, PixelGreen);
    const std::vector<Pixel> px = readContextPixels(ctx);
    EXPECT_EQ(px[7 * 16 + 7], PixelRed);    // overlap
    EXPECT_EQ(px[10 * 16 + 12], PixelGreen); // green only
    EXPECT_EQ(px[3 * 16 + 3], PixelRed);
    EXPECT_EQ(px[0], PixelGrey);
    glDisable(GL_DEPTH_TEST);

    glEnable(GL_STENCIL_TEST);
    clearTo(PixelGrey);
    glStencilFunc(GL_ALWAYS, 1, 0xFF);
    glStencilOp(GL_KEEP, GL_KEEP, GL_REPLACE);
    glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_FALSE);
    quad(4, 1, 8, 9, 0, PixelRed);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glStencilFunc(GL_EQUAL, 1, 0xFF);
    quad(0, 0, 16, 12, 0, PixelGreen);
    glDisable(GL_STENCIL_TEST);
    expectRect(ctx, 4, 1, 8, 9, PixelGreen, PixelGrey);
}

TEST_F(HeadlessGLContextTest, ResizeReallocatesTheFramebuffer)
{
    ASSERT_TRUE(ctx.resize(40, 24));
    EXPECT_EQ(ctx.getWidth(), 40u);
    EXPECT_EQ(ctx.getHeight(), 24u);
    pixelOrtho(40, 24);
    clearTo(PixelGrey);
    quad(30, 20, 40, 24, 0, PixelRed); // beyond the old size
    expectRect(ctx, 30, 20, 40, 24, PixelRed, PixelGrey);

    ASSERT_TRUE(ctx.resize(3, 2));
    std::vector<Pixel> px(4);
    EXPECT_FALSE(ctx.readPixels(3, 0, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE,
                                px.data()));
}

TEST_F(HeadlessGLContextTest, TwoContextsKeepTheirOwnPixelsAcrossSwitches)
{
    clearTo(PixelRed);

    {
        HeadlessGLContext other;
        ASSERT_TRUE(other.init(8, 8));
        EXPECT_TRUE(other.isCurrent());
        EXPECT_FALSE(ctx.isCurrent());
        pixelOrtho(8, 8);
        clearTo(PixelGreen);

        ASSERT_TRUE(ctx.makeCurrent());
        EXPECT_FALSE(other.isCurrent());
        expectRect(ctx, 0, 0, 0, 0, PixelGrey, PixelRed);
        // Unbinding, as a render target does when it finishes, and binding
        // again as the window's activation does.
        auto bind = reinterpret_cast<PFNGLBINDFRAMEBUFFERPROC>(
            ctx.getProcAddress("glBindFramebuffer"));
        bind(GL_FRAMEBUFFER, 0);
        ASSERT_TRUE(ctx.bindFramebuffer());
        clearTo(PixelGrey);

        ASSERT_TRUE(other.makeCurrent());
        expectRect(other, 0, 0, 0, 0, PixelRed, PixelGreen);
        other.swap();

        ASSERT_TRUE(ctx.makeCurrent());
        // `other` dies while `ctx` is current; `ctx` must stay current.
    }
    EXPECT_TRUE(ctx.isCurrent());
    expectRect(ctx, 0, 0, 0, 0, PixelRed, PixelGrey);

    // Not current: GL work is refused instead of hitting the wrong context.
    ctx.release();
    EXPECT_FALSE(ctx.isCurrent());
    LogCapture        log;
    std::vector<Pixel> px(1);
    EXPECT_FALSE(ctx.readPixels(0, 0, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE,
                                px.data()));
    EXPECT_FALSE(ctx.resize(4, 4));
    EXPECT_NE(log.take().find("needs an initialised, current context"),
              std::string::npos);
}

TEST_F(HeadlessGLContextTest, ContextMovesToAnotherThread)
{
    ctx.release();
    bool ok = false;
    std::thread worker([&] {
        ok = ctx.makeCurrent() && ctx.isCurrent();
        pixelOrtho(16, 12);
        clearTo(PixelGrey);
        quad(0, 0, 1, 1, 0, PixelRed);
        ctx.swap();
        ctx.release();
    });
    worker.join();
    ASSERT_TRUE(ok);
    ASSERT_TRUE(ctx.makeCurrent());
    expectRect(ctx, 0, 0, 1, 1, PixelRed, PixelGrey);
}

TEST(HeadlessGLContextPlatform, EnvironmentForcesThePlatform)
{
    if(!HeadlessGLContext::isAvailable())
        GTEST_SKIP() << "no EGL implementation gives a desktop GL context";

    for(const char *name : {"surfaceless", "device", "default"})
    {
        setenv("CORVANE_EGL_PLATFORM", name, 1);
        HeadlessGLContext ctx;
        const bool        ok = ctx.init(4, 4);
        unsetenv("CORVANE_EGL_PLATFORM");
        if(!ok)
        {
            std::cout << "platform " << name << " unavailable here"
                      << std::endl;
            continue;
        }
        EXPECT_STREQ(ctx.getPlatformName(), name);
        clearTo(PixelGrey);
        expectRect(ctx, 0, 0, 0, 0, PixelRed, PixelGrey);
    }
}

TEST_F(HeadlessGLContextTest, BindingFramebufferZeroDrawsIntoTheBackBuffer)
{
    if(ctx.isSurfaceless())
        GTEST_SKIP() << "no pbuffer: the back buffer is a framebuffer object";

    // render-to-texture code binds its own framebuffer, then 0 to return
    auto gen  = reinterpret_cast<PFNGLGENFRAMEBUFFERSPROC>(ctx.getProcAddress("glGenFramebuffers"));
    auto bind = reinterpret_cast<PFNGLBINDFRAMEBUFFERPROC>(ctx.getProcAddress("glBindFramebuffer"));
    auto del  = reinterpret_cast<PFNGLDELETEFRAMEBUFFERSPROC>(
        ctx.getProcAddress("glDeleteFramebuffers"));
    GLuint fbo = 0;
    gen(1, &fbo);
    bind(GL_FRAMEBUFFER, fbo);
    bind(GL_FRAMEBUFFER, 0);
    del(1, &fbo);
    clearTo(PixelGreen);
    expectRect(ctx, 0, 0, 0, 0, PixelGreen, PixelGreen);

    // and a resized back buffer keeps working the same way
    ASSERT_TRUE(ctx.resize(40, 30));
    glViewport(0, 0, 40, 30);
    clearTo(PixelRed);
    std::vector<UInt8> px(40 * 30 * 4);
    ASSERT_TRUE(ctx.readPixels(0, 0, 40, 30, GL_RGBA, GL_UNSIGNED_BYTE, px.data()));
    EXPECT_EQ(px[(29 * 40 + 39) * 4], 255);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}
