// FBOForeground and ForegroundGroup: a group of polygon foregrounds drawn
// through the framebuffer object into two colour textures (each draw
// buffer into its texture, in field order, texel for texel), depth-only
// rendering, the GL viewport under each kind of override, the resize modes
// (the image is set once per size change), the mipmap step, the warnings
// of the unsupported target mixes, and the window's framebuffer, viewport
// and pixels intact after the pass.
#include "window/WindowTestSupport.h"

#include <OpenSG/OSGChangeList.h>
#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGDepthChunk.h>
#include <OpenSG/OSGFBOForeground.h>
#include <OpenSG/OSGForegroundGroup.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGPolygonForeground.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGThread.h>

#include <algorithm>
#include <functional>
#include <sstream>

using namespace osg;
using namespace wintest;

namespace
{

const RGBA Empty = {0, 0, 0, 0}; // a fresh target's texels

const Vec4f NoOverride(0.f, 0.f, 0.f, 0.f);
const Vec4f WholeTarget(-1.f, -1.f, -1.f, -1.f);

// The partial port of some cases: pixels 8..55 x 4..43.
const GLint PortRect[4] = {8, 4, 48, 40};
const GLint Odd[4]      = {1, 2, 3, 4};

/// Captures warnings (or what level says) without log headers.
struct PlainLog : LogCapture
{
    explicit PlainLog(LogLevel level = LOG_WARNING) : LogCapture(level)
    {
        osgLog().setHeaderElem(0, true);
    }
};

std::vector<RGBA> uniform(const RGBA &c, UInt32 n)
{
    return std::vector<RGBA>(n, c);
}

std::vector<RGBA> layout(UInt32 w, UInt32 h, std::function<RGBA(UInt32, UInt32)> f)
{
    std::vector<RGBA> px;
    for(UInt32 y = 0; y < h; ++y)
        for(UInt32 x = 0; x < w; ++x)
            px.push_back(f(x, y));
    return px;
}

class FBOForegroundFixture : public FrameFixture
{
  protected:
    /// A target of the internal format with a zeroed w x h image (none for
    /// w 0); a depth target's texels start at depth 1.
    TextureChunkPtr target(GLenum internal, UInt32 w = 0, UInt32 h = 0,
                           GLenum minFilter = GL_NEAREST)
    {
        TextureChunkPtr tex = TextureChunk::create();
        keep(tex);
        beginEditCP(tex);
        tex->setInternalFormat(internal);
        tex->setMinFilter(minFilter);
        tex->setMagFilter(GL_NEAREST);
        if(w > 0)
        {
            ImagePtr img = Image::create();
            if(internal == GL_DEPTH_COMPONENT24)
            {
                img->set(GL_LUMINANCE, w, h, 1, 1, 1, 0.0, NULL, GL_FLOAT, true);
                Real32 *d = reinterpret_cast<Real32 *>(img->editData());
                std::fill(d, d + w * h, 1.f);
                tex->setExternalFormat(GL_DEPTH_COMPONENT);
            }
            else
            {
                img->set(GL_RGBA, w, h);
            }
            tex->setImage(img);
        }
        endEditCP(tex);
        return tex;
    }

    /// A polygon over the normalised rectangle (x0, y0)..(x1, y1) of the
    /// port; its shader writes colours[i] to draw buffer i, and it writes
    /// depth 0 wherever it lands.
    PolygonForegroundPtr polygon(Real32 x0, Real32 y0, Real32 x1, Real32 y1,
                                 const std::vector<RGBA> &colours)
    {
        std::ostringstream fs;
        fs << "void main(void)\n{\n";
        for(UInt32 i = 0; i < colours.size(); ++i)
            fs << "    gl_FragData[" << i << "] = vec4(" << colours[i].r / 255.f << ", "
               << colours[i].g / 255.f << ", " << colours[i].b / 255.f << ", "
               << colours[i].a / 255.f << ");\n";
        fs << "}\n";

        SHLChunkPtr shl = SHLChunk::create();
        beginEditCP(shl);
        shl->setVertexProgram("void main(void)\n{\n    gl_Position = ftransform();\n}\n");
        shl->setFragmentProgram(fs.str());
        endEditCP(shl);

        DepthChunkPtr depth = DepthChunk::create();
        beginEditCP(depth);
        depth->setFunc(GL_ALWAYS);
        endEditCP(depth);

        ChunkMaterialPtr mat = ChunkMaterial::create();
        beginEditCP(mat);
        mat->addChunk(shl);
        mat->addChunk(depth);
        endEditCP(mat);

        PolygonForegroundPtr fg = PolygonForeground::create();
        keep(fg);
        beginEditCP(fg);
        fg->setMaterial(mat);
        fg->setNormalizedX(true);
        fg->setNormalizedY(true);
        const Pnt2f corners[4] = {Pnt2f(x0, y0), Pnt2f(x1, y0), Pnt2f(x1, y1), Pnt2f(x0, y1)};
        for(UInt32 i = 0; i < 4; ++i)
        {
            fg->getPositions().push_back(corners[i]);
            fg->getTexCoords().push_back(Vec3f(0.f, 0.f, 0.f));
        }
        endEditCP(fg);
        return fg;
    }

    ForegroundGroupPtr group(const std::vector<ForegroundPtr> &members, bool active = true)
    {
        ForegroundGroupPtr g = ForegroundGroup::create();
        keep(g);
        beginEditCP(g);
        g->getForegrounds().setValues(members);
        g->setActive(active);
        endEditCP(g);
        return g;
    }

    FBOForegroundPtr fbo(const ForegroundPtr &inner, const std::vector<TextureChunkPtr> &targets,
                         const Vec4f &overrideViewport)
    {
        FBOForegroundPtr fg = FBOForeground::create();
        keep(fg);
        beginEditCP(fg);
        fg->setForeground(inner);
        fg->getTextures().setValues(targets);
        fg->setOverrideViewport(overrideViewport);
        endEditCP(fg);
        return fg;
    }

    /// Level `level` of a 2-D target as GL holds it; its size goes to
    /// texW, texH.
    std::vector<RGBA> readColour(const TextureChunkPtr &tex, GLint level = 0)
    {
        win->activate();
        glBindTexture(GL_TEXTURE_2D, win->getGLObjectId(tex->getGLId()));
        glGetTexLevelParameteriv(GL_TEXTURE_2D, level, GL_TEXTURE_WIDTH, &texW);
        glGetTexLevelParameteriv(GL_TEXTURE_2D, level, GL_TEXTURE_HEIGHT, &texH);
        std::vector<RGBA> px(texW * texH);
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glGetTexImage(GL_TEXTURE_2D, level, GL_RGBA, GL_UNSIGNED_BYTE, px.data());
        glBindTexture(GL_TEXTURE_2D, 0);
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
        return px;
    }

    std::vector<Real32> readDepth(const TextureChunkPtr &tex)
    {
        std::vector<Real32> d(tex->getImage()->getWidth() * tex->getImage()->getHeight());
        win->activate();
        glBindTexture(GL_TEXTURE_2D, win->getGLObjectId(tex->getGLId()));
        glGetTexImage(GL_TEXTURE_2D, 0, GL_DEPTH_COMPONENT, GL_FLOAT, d.data());
        glBindTexture(GL_TEXTURE_2D, 0);
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
        return d;
    }

    /// Whether the window ever created the texture's GL object.
    bool validated(const TextureChunkPtr &tex)
    {
        return win->getGLObjectId(tex->getGLId()) != 0;
    }

    /// Renders a frame; returns its warnings.
    std::string frameLog(void)
    {
        PlainLog log;
        win->render(action.get());
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
        return log.take();
    }

    /// Draws fg as the port would, with the GL viewport at Odd and the
    /// port's scissor on or off; returns the warnings.
    std::string drawOver(const FBOForegroundPtr &fg, const ViewportPtr &vp, bool scissor)
    {
        win->activate();
        win->frameInit();
        action->setWindow(win.getCPtr());
        vp->activate();
        glViewport(Odd[0], Odd[1], Odd[2], Odd[3]);
        if(!scissor)
            glDisable(GL_SCISSOR_TEST);

        PlainLog log;
        fg->draw(action.get(), vp.getCPtr());
        return log.take();
    }

    GLint texW = 0, texH = 0;
};

} // namespace

// --- colour targets -------------------------------------------------------------

TEST_F(FBOForegroundFixture, GroupDrawsIntoTwoColourTexturesPerDrawBuffer)
{
    ViewportPtr vp = port(0.f, 1.f, 0.f, 1.f, solid(Grey));

    // Buffer 0 gets red then green, buffer 1 blue then yellow; the second
    // polygon overlaps the first. The depth texture between the two colour
    // targets stays unattached.
    TextureChunkPtr first  = target(GL_RGBA8, 16, 8);
    TextureChunkPtr depth  = target(GL_DEPTH_COMPONENT24, 16, 8);
    TextureChunkPtr second = target(GL_RGBA8, 16, 8);
    vp->addForeground(fbo(group({polygon(0.f, 0.f, 0.5f, 1.f, {Red, Blue}),
                                 polygon(0.25f, 0.5f, 1.f, 1.f, {Green, Yellow})}),
                          {first, depth, second}, WholeTarget));

    frame();
    frame(); // the framebuffer object is reused

    GLint binding = -1, viewport[4];
    glGetIntegerv(GL_FRAMEBUFFER_BINDING_EXT, &binding);
    glGetIntegerv(GL_VIEWPORT, viewport);
    EXPECT_EQ(binding, 0);
    EXPECT_EQ(viewport[2], 64);
    EXPECT_EQ(viewport[3], 48);
    EXPECT_EQ(readAll(win), uniform(Grey, 64 * 48)) << "the window keeps the port's pixels";

    auto expected = [](const RGBA &a, const RGBA &b) {
        return layout(16, 8, [&](UInt32 x, UInt32 y) {
            return x >= 4 && y >= 4 ? b : x < 8 ? a : Empty;
        });
    };
    std::vector<RGBA> texels = readColour(first);
    writePNG("fbo_foreground_buffer0", texels, 16, 8);
    EXPECT_EQ(texels, expected(Red, Green));
    EXPECT_EQ(readColour(second), expected(Blue, Yellow));
    EXPECT_FALSE(validated(depth)) << "a depth texture beside colour is ignored";
}

TEST_F(FBOForegroundFixture, UsesNoMoreTexturesThanColourAttachments)
{
    ViewportPtr      vp = port(0.f, 1.f, 0.f, 1.f, solid(Grey));
    FBOForegroundPtr fg = fbo(NullFC, {}, WholeTarget);

    win->activate();
    const Int32 max = fg->getMaxBuffers();
    GLint       drawBuffers = 0;
    glGetIntegerv(GL_MAX_DRAW_BUFFERS, &drawBuffers);
    ASSERT_GE(max, 1);
    ASSERT_LE(max, drawBuffers);

    beginEditCP(fg);
    fg->setForeground(polygon(0.f, 0.f, 1.f, 1.f, uniform(Red, max)));
    for(Int32 i = 0; i <= max; ++i)
        fg->getTextures().push_back(target(GL_RGBA8, 2, 2));
    endEditCP(fg);
    vp->addForeground(fg);

    frame();

    for(Int32 i = 0; i < max; ++i)
        EXPECT_EQ(readColour(fg->getTextures(i)), uniform(Red, 4)) << "target " << i;
    EXPECT_FALSE(validated(fg->getTextures(max))) << "the texture past the limit";
}

TEST_F(FBOForegroundFixture, MipmapsShowThePreviousFrame)
{
    ViewportPtr     vp  = port(0.f, 1.f, 0.f, 1.f, solid(Grey));
    TextureChunkPtr tex = target(GL_RGBA8, 16, 8, GL_NEAREST_MIPMAP_NEAREST);
    vp->addForeground(fbo(polygon(0.f, 0.f, 1.f, 1.f, {Red}), {tex}, WholeTarget));

    frame();
    EXPECT_EQ(readColour(tex, 0), uniform(Red, 16 * 8));
    EXPECT_EQ(readColour(tex, 1), uniform(Empty, 8 * 4));

    frame();
    EXPECT_EQ(readColour(tex, 1), uniform(Red, 8 * 4));
}

// --- depth and stencil targets --------------------------------------------------

TEST_F(FBOForegroundFixture, RendersDepthOnlyAndDropsAStencilBesideIt)
{
    ViewportPtr     vp    = port(0.f, 1.f, 0.f, 1.f, solid(Grey));
    TextureChunkPtr depth = target(GL_DEPTH_COMPONENT24, 16, 8);

    // The override puts the polygon's left half onto the target's left half.
    FBOForegroundPtr fg = fbo(polygon(0.f, 0.f, 0.5f, 1.f, {Red}),
                              {target(GL_STENCIL_INDEX), depth}, Vec4f(0.f, 0.f, 16.f, 8.f));
    vp->addForeground(fg);

    EXPECT_EQ(frameLog(), "Rendering to separate depth and stencil textures is not "
                          "possible. Disabling stencil texture.\n");

    std::vector<Real32> d = readDepth(depth);
    for(UInt32 i = 0; i < d.size(); ++i)
        ASSERT_EQ(d[i], i % 16 < 8 ? 0.f : 1.f) << "texel " << i % 16 << "," << i / 16;
    EXPECT_EQ(readAll(win), uniform(Grey, 64 * 48));

    // What the foreground keeps is complete: a depth attachment, no
    // draw or read buffer.
    PlainLog info(LOG_INFO);
    fg->bind(win.getCPtr());
    EXPECT_TRUE(fg->checkFrameBufferStatus(win.getCPtr()));
    fg->unbind(win.getCPtr());
    EXPECT_EQ(info.take(), "8cd5: framebuffer complete!\n");
    EXPECT_TRUE(fg->extensionCheck(*win.getCPtr()));
}

TEST_F(FBOForegroundFixture, DepthStencilTargetIsSkippedButTheForegroundStillDraws)
{
    ViewportPtr vp = port(0.f, 1.f, 0.f, 1.f, solid(Grey));

    // The inner foreground is an FBOForeground too, so its drawing shows in
    // its own target while the outer framebuffer has no attachment at all.
    TextureChunkPtr  tex   = target(GL_RGBA8, 4, 4);
    FBOForegroundPtr inner = fbo(polygon(0.f, 0.f, 1.f, 1.f, {Green}), {tex}, WholeTarget);
    FBOForegroundPtr outer = fbo(inner, {target(0x84F9)}, NoOverride);
    vp->addForeground(outer);

    EXPECT_EQ(frameLog(), "DEPTH_STENCIL format not yet impl.\n");
    EXPECT_EQ(readColour(tex), uniform(Green, 16));

    PlainLog log;
    outer->bind(win.getCPtr());
    EXPECT_TRUE(outer->checkFrameBufferStatus(win.getCPtr()));
    outer->unbind(win.getCPtr());
    EXPECT_EQ(log.take(), "8cd7: framebuffer FRAMEBUFFER_MISSING_ATTACHMENT\n");
}

// --- GL viewport ------------------------------------------------------------------

TEST_F(FBOForegroundFixture, OverrideViewportDecidesWhereTheForegroundLands)
{
    ViewportPtr vp = port(8.f, 55.f, 4.f, 43.f, solid(Grey));

    struct Case
    {
        const char *name;
        Vec4f       override;
        bool        deactivate, scissor; // scissor: the port's, on at the start
        GLint       x0, y0, x1, y1;      // texels covered, inclusive
        bool        portAfter;           // the port's viewport and scissor afterwards
    };
    const Case cases[] = {
        {"none", NoOverride, false, false, 1, 2, 3, 5, false},
        {"none, deactivating", NoOverride, true, false, 1, 2, 3, 5, true},
        {"explicit", Vec4f(2.9f, 3.9f, 10.9f, 4.9f), false, false, 2, 3, 11, 6, true},
        {"whole target", WholeTarget, false, true, 0, 0, 15, 7, true},
    };

    for(const Case &c : cases)
    {
        TextureChunkPtr  tex = target(GL_RGBA8, 16, 8);
        FBOForegroundPtr fg  = fbo(polygon(0.f, 0.f, 1.f, 1.f, {Yellow}), {tex}, c.override);
        beginEditCP(fg);
        fg->setDeactivateViewport(c.deactivate);
        endEditCP(fg);

        EXPECT_EQ(drawOver(fg, vp, c.scissor), "") << c.name;
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR)) << c.name;

        GLint viewport[4], box[4];
        glGetIntegerv(GL_VIEWPORT, viewport);
        glGetIntegerv(GL_SCISSOR_BOX, box);
        EXPECT_TRUE(std::equal(viewport, viewport + 4, c.portAfter ? PortRect : Odd)) << c.name;
        if(c.portAfter)
        {
            EXPECT_TRUE(glIsEnabled(GL_SCISSOR_TEST)) << c.name;
            EXPECT_TRUE(std::equal(box, box + 4, PortRect)) << c.name;
        }

        EXPECT_EQ(readColour(tex), layout(16, 8, [&](UInt32 x, UInt32 y) {
                      return GLint(x) >= c.x0 && GLint(x) <= c.x1 && GLint(y) >= c.y0 &&
                                     GLint(y) <= c.y1
                                 ? Yellow
                                 : Empty;
                  })) << c.name;
    }

    // Without a colour texture the -1s go to GL as they are, which refuses
    // them; the port's viewport comes back all the same.
    EXPECT_EQ(drawOver(fbo(NullFC, {target(GL_DEPTH_COMPONENT24, 16, 8)}, WholeTarget), vp, false),
              "");
    EXPECT_EQ(glGetError(), GLenum(GL_INVALID_VALUE));
    GLint viewport[4];
    glGetIntegerv(GL_VIEWPORT, viewport);
    EXPECT_TRUE(std::equal(viewport, viewport + 4, PortRect));
}

// --- resizing ---------------------------------------------------------------------

TEST_F(FBOForegroundFixture, ResizeModesFollowPortOrWindowOncePerSizeChange)
{
    ViewportPtr whole = port(0.f, 1.f, 0.f, 1.f, solid(Grey));
    ViewportPtr part  = port(8.f, 55.f, 4.f, 43.f, solid(Grey));

    // Mode 1 starts at the window's size, mode 2 and 3 don't.
    TextureChunkPtr targets[3] = {target(GL_RGBA8, 64, 48), target(GL_RGBA8, 4, 4),
                                  target(GL_RGBA8, 4, 4)};
    ViewportPtr     ports[3]   = {whole, part, part};
    for(UInt32 i = 0; i < 3; ++i)
    {
        FBOForegroundPtr fg = fbo(polygon(0.f, 0.f, 1.f, 1.f, {Blue}), {targets[i]}, WholeTarget);
        beginEditCP(fg);
        fg->setTextureResizeMode(i + 1);
        endEditCP(fg);
        ports[i]->addForeground(fg);
    }

    // Image::set is the only edit of an image's width: the change list
    // counts the calls of a frame per target.
    ChangeList *cl      = Thread::getCurrentChangeList();
    auto        counted = [&](void) {
        cl->clearAll();
        frame();
        std::vector<UInt32> sets;
        for(const TextureChunkPtr &t : targets)
            sets.push_back(UInt32(std::count_if(
                cl->beginChanged(), cl->endChanged(), [&](const ChangeList::ChangeEntry &e) {
                    return e.first == t->getImage().getFieldContainerId() &&
                           (e.second & Image::WidthFieldMask);
                })));
        return sets;
    };

    EXPECT_EQ(counted(), (std::vector<UInt32>{0, 1, 0}));
    EXPECT_EQ(readColour(targets[1]), uniform(Blue, 48 * 40));
    EXPECT_EQ(texW, 48);
    EXPECT_EQ(texH, 40);
    EXPECT_EQ(readColour(targets[2]), uniform(Blue, 16)) << "mode 3 behaves like 0";

    EXPECT_EQ(counted(), (std::vector<UInt32>{0, 0, 0}));

    win->resize(80, 60);
    EXPECT_EQ(counted(), (std::vector<UInt32>{1, 0, 0}));
    EXPECT_EQ(readColour(targets[0]), uniform(Blue, 80 * 60));
    EXPECT_EQ(texW, 80);
    EXPECT_EQ(texH, 60);

    EXPECT_EQ(counted(), (std::vector<UInt32>{0, 0, 0}));
}

// --- switching off and failures -------------------------------------------------

TEST_F(FBOForegroundFixture, InactiveNoWindowOrNoTexturesDrawNothing)
{
    ViewportPtr      vp    = port(0.f, 1.f, 0.f, 1.f, solid(Grey));
    TextureChunkPtr  tex   = target(GL_RGBA8, 4, 4);
    FBOForegroundPtr inner = fbo(polygon(0.f, 0.f, 1.f, 1.f, {Red}), {tex}, WholeTarget);
    FBOForegroundPtr outer = fbo(inner, {target(GL_RGBA8, 4, 4)}, WholeTarget);

    std::unique_ptr<RenderAction> windowless(RenderAction::create());
    win->activate();
    {
        PlainLog log;
        beginEditCP(outer);
        outer->setActive(false);
        endEditCP(outer);
        outer->draw(windowless.get(), vp.getCPtr());
        EXPECT_EQ(log.take(), "") << "inactive: the window is not even looked at";

        beginEditCP(outer);
        outer->setActive(true);
        endEditCP(outer);
        outer->draw(windowless.get(), vp.getCPtr());
        EXPECT_EQ(log.take(), "FBOForeground::draw: no window!\n");
    }

    vp->addForeground(fbo(inner, {}, WholeTarget));
    frame();

    EXPECT_FALSE(validated(tex)) << "the inner foreground never drew";
}

TEST_F(FBOForegroundFixture, InitializeOnceAndSetTargetReports)
{
    FBOForegroundPtr fg = fbo(NullFC, {}, NoOverride);
    win->activate();
    win->frameInit();

    PlainLog log;
    fg->setTarget(win.getCPtr(), 1, GL_COLOR_ATTACHMENT0_EXT, GL_TEXTURE_2D, 0);
    EXPECT_EQ(log.take(), "Invalid FrameBufferObject index!\n");

    // The first initialize announces the foreground with all its fields.
    ChangeList *cl = Thread::getCurrentChangeList();
    cl->clearAll();
    EXPECT_TRUE(fg->initialize(win.getCPtr(), 0));
    EXPECT_TRUE(fg->initialize(win.getCPtr(), 0));
    EXPECT_EQ(std::count(cl->beginChanged(), cl->endChanged(),
                         ChangeList::ChangeEntry(fg.getFieldContainerId(), FieldBits::AllFields)),
              1);

    GLint binding = -1;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING_EXT, &binding);
    EXPECT_EQ(binding, 0);

    fg->bind(win.getCPtr());
    fg->setTarget(win.getCPtr(), 4242, GL_COLOR_ATTACHMENT0_EXT, GL_TEXTURE_2D, 0);
    fg->unbind(win.getCPtr());
    EXPECT_NE(log.take().find("Error with attachment: 36064, id: 4242, target: 3553\n"),
              std::string::npos);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

// --- ForegroundGroup -------------------------------------------------------------

TEST_F(FBOForegroundFixture, GroupSkipsInactiveMembersAndDrawsNothingWhenInactive)
{
    ViewportPtr vp = port(0.f, 1.f, 0.f, 1.f, solid(Grey));

    PolygonForegroundPtr off = polygon(0.f, 0.f, 1.f, 1.f, {Red});
    beginEditCP(off);
    off->setActive(false);
    endEditCP(off);

    TextureChunkPtr targets[3] = {target(GL_RGBA8, 4, 2), target(GL_RGBA8, 4, 2),
                                  target(GL_RGBA8, 4, 2)};
    vp->addForeground(fbo(group({polygon(0.f, 0.f, 1.f, 1.f, {Green}), off,
                                 polygon(0.5f, 0.f, 1.f, 1.f, {Blue})}),
                          {targets[0]}, WholeTarget));
    vp->addForeground(fbo(group({}), {targets[1]}, WholeTarget));
    vp->addForeground(
        fbo(group({polygon(0.f, 0.f, 1.f, 1.f, {Red})}, false), {targets[2]}, WholeTarget));

    frame();

    EXPECT_EQ(readColour(targets[0]),
              layout(4, 2, [](UInt32 x, UInt32) { return x < 2 ? Green : Blue; }));
    EXPECT_EQ(readColour(targets[1]), uniform(Empty, 8)) << "empty group";
    EXPECT_EQ(readColour(targets[2]), uniform(Empty, 8)) << "inactive group";
}
