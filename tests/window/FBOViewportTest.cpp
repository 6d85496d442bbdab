// Off-screen passes: an FBOViewport renders a scene into float colour and
// depth textures (compared with the projection of a quad at a known eye
// depth), leaves the window's framebuffer, viewport and pixels alone,
// follows a size change through `dirty`, renders to several colour
// targets, reads back, and keeps excluded nodes out of its pass.
#include "WindowTestSupport.h"

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGFBOViewport.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGPolygonForeground.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGTextureChunk.h>

#include <algorithm>
#include <cmath>

using namespace osg;
using namespace wintest;

namespace
{

const Real32 Near = 0.5f;
const Real32 Far  = 10.f;

// The quad of the scene: colour written by its shader, far outside 0..1 so
// that only a float target keeps it.
const Real32 QuadColour[4] = {2.5f, -1.f, 0.125f, 0.75f};
const Real32 ClearColour[4] = {0.25f, 0.5f, 0.75f, 0.f};

/// Window depth of an eye-space point at distance d in front of a
/// perspective camera (OpenGL's frustum matrix, depth range 0..1).
Real32 windowDepth(Real32 d)
{
    const Real32 ndc = (Far + Near) / (Far - Near) - 2.f * Far * Near / ((Far - Near) * d);
    return 0.5f * ndc + 0.5f;
}

SHLChunkPtr constantShader(const char *fragmentBody)
{
    SHLChunkPtr shl = SHLChunk::create();
    beginEditCP(shl);
    shl->setVertexProgram("void main(void) { gl_Position = ftransform(); }\n");
    shl->setFragmentProgram(fragmentBody);
    endEditCP(shl);
    return shl;
}

TextureChunkPtr targetTexture(UInt32 w, UInt32 h, GLenum imageFormat, GLenum internalFormat,
                              GLenum externalFormat = GL_NONE, GLenum type = GL_UNSIGNED_BYTE)
{
    ImagePtr img = Image::create();
    img->set(imageFormat, w, h, 1, 1, 1, 0.0, NULL, type, true);

    TextureChunkPtr tex = TextureChunk::create();
    beginEditCP(tex);
    tex->setImage(img);
    tex->setInternalFormat(internalFormat);
    tex->setExternalFormat(externalFormat);
    tex->setMinFilter(GL_NEAREST);
    tex->setMagFilter(GL_NEAREST);
    tex->setTarget(GL_TEXTURE_2D);
    endEditCP(tex);
    return tex;
}

class FBOViewportFixture : public FrameFixture
{
  protected:
    void SetUp(void) override
    {
        FrameFixture::SetUp();
        if(win == NullFC)
            return;

        beginEditCP(camera);
        camera->setFov(2.f * std::atan(0.5f));
        camera->setNear(Near);
        camera->setFar(Far);
        endEditCP(camera);

        quad = addQuad(1.f, -2.f, constantShader("void main(void) {"
                                                  " gl_FragColor = vec4(2.5, -1.0, 0.125, 0.75);"
                                                  " }\n"));

        background = SolidBackground::create();
        keep(background);
        beginEditCP(background);
        background->setColor(Color3f(ClearColour[0], ClearColour[1], ClearColour[2]));
        background->setAlpha(ClearColour[3]);
        endEditCP(background);

        action->setWindow(win.getCPtr());
    }

    void TearDown(void) override
    {
        if(win != NullFC)
        {
            win->activate();
            EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
        }
        FrameFixture::TearDown();
    }

    NodePtr keepNode(const NodeCorePtr &core)
    {
        NodePtr n = Node::create();
        beginEditCP(n);
        n->setCore(core);
        endEditCP(n);
        keep(n);
        return n;
    }

    /// A size x size quad facing the camera at eye depth z, drawn with the
    /// shader; returns its transform node (a child of root).
    NodePtr addQuad(Real32 size, Real32 z, const SHLChunkPtr &shader)
    {
        ChunkMaterialPtr mat = ChunkMaterial::create();
        beginEditCP(mat);
        mat->addChunk(shader);
        endEditCP(mat);

        GeometryPtr geo = makePlaneGeo(size, size, 1, 1);
        beginEditCP(geo);
        geo->setMaterial(mat);
        endEditCP(geo);

        NodePtr geoNode = Node::create();
        beginEditCP(geoNode);
        geoNode->setCore(geo);
        endEditCP(geoNode);

        TransformPtr xf = Transform::create();
        Matrix       m;
        m.setTranslate(0.f, 0.f, z);
        beginEditCP(xf);
        xf->setMatrix(m);
        endEditCP(xf);

        NodePtr xfNode = Node::create();
        beginEditCP(xfNode);
        xfNode->setCore(xf);
        xfNode->addChild(geoNode);
        endEditCP(xfNode);

        beginEditCP(root);
        root->addChild(xfNode);
        endEditCP(root);
        return xfNode;
    }

    FBOViewportPtr makeFBO(UInt32 w, UInt32 h)
    {
        FBOViewportPtr fbo = FBOViewport::create();
        keep(fbo);
        beginEditCP(fbo);
        fbo->setSize(0.f, 0.f, Real32(w - 1), Real32(h - 1));
        fbo->setStorageWidth(w);
        fbo->setStorageHeight(h);
        fbo->setCamera(camera);
        fbo->setBackground(background);
        fbo->setRoot(root);
        fbo->setParent(win);
        endEditCP(fbo);
        return fbo;
    }

    /// The pass, checked for GL errors and warnings.
    void renderPass(const FBOViewportPtr &fbo)
    {
        LogCapture log(LOG_WARNING);
        win->activate();
        win->frameInit();
        fbo->render(action.get());
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
        EXPECT_EQ(log.take(), "");
    }

    std::vector<Real32> readTexture(const TextureChunkPtr &tex, GLenum format, UInt32 comps)
    {
        ImagePtr            img = tex->getImage();
        std::vector<Real32> v(img->getWidth() * img->getHeight() * comps, -7.f);

        win->activate();
        glBindTexture(GL_TEXTURE_2D, win->getGLObjectId(tex->getGLId()));
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glGetTexImage(GL_TEXTURE_2D, 0, format, GL_FLOAT, v.data());
        glBindTexture(GL_TEXTURE_2D, 0);
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
        return v;
    }

    NodePtr            quad;
    SolidBackgroundPtr background;
};

/// Whether the centre of pixel (x, y) of a w x h target lies inside a
/// quad of the given half size at eye distance d: the view (aspect 4:3)
/// is d units high there.
bool insideCentred(UInt32 x, UInt32 y, UInt32 w, UInt32 h, Real32 half, Real32 d)
{
    const Real32 fx = (x + 0.5f) / w - 0.5f;
    const Real32 fy = (y + 0.5f) / h - 0.5f;
    return std::fabs(fx) < half / (d * 4.f / 3.f) && std::fabs(fy) < half / d;
}

// The unit quad at eye depth 2: in a 32 x 24 target columns 10..21 and
// rows 6..17.
bool insideQuad(UInt32 x, UInt32 y, UInt32 w, UInt32 h)
{
    return insideCentred(x, y, w, h, 0.5f, 2.f);
}

UInt32 countColourMismatches(const std::vector<Real32> &texels, UInt32 w, UInt32 h)
{
    UInt32 wrong = 0;
    for(UInt32 y = 0; y < h; ++y)
    {
        for(UInt32 x = 0; x < w; ++x)
        {
            const Real32 *expect = insideQuad(x, y, w, h) ? QuadColour : ClearColour;
            const Real32 *got    = &texels[(y * w + x) * 4];
            bool          ok     = true;
            for(UInt32 c = 0; c < 4; ++c)
                ok = ok && std::fabs(got[c] - expect[c]) < 1e-3f;
            if(!ok && ++wrong <= 5)
                ADD_FAILURE() << "texel " << x << "," << y << " is " << got[0] << " "
                              << got[1] << " " << got[2] << " " << got[3];
        }
    }
    return wrong;
}

std::vector<RGBA> toPreview(const std::vector<Real32> &texels, UInt32 comps)
{
    std::vector<RGBA> px(texels.size() / comps);
    for(UInt32 i = 0; i < px.size(); ++i)
    {
        Real32 c[4] = {0, 0, 0, 1};
        for(UInt32 k = 0; k < comps; ++k)
            c[k] = std::min(std::max(texels[i * comps + k], 0.f), 1.f);
        if(comps == 1)
            c[1] = c[2] = c[0];
        px[i] = toRGBA(c[0], c[1], c[2], 1.f);
    }
    return px;
}

} // namespace

TEST_F(FBOViewportFixture, RendersFloatColourAndDepthOfAKnownQuad)
{
    const UInt32 W = 32, H = 24;

    TextureChunkPtr colour = targetTexture(W, H, GL_RGBA, GL_RGBA32F_ARB);
    TextureChunkPtr depth  = targetTexture(W, H, GL_LUMINANCE, GL_DEPTH_COMPONENT24,
                                          GL_DEPTH_COMPONENT);
    keep(colour);
    keep(depth);

    FBOViewportPtr fbo = makeFBO(W, H);
    beginEditCP(fbo);
    fbo->getTextures().push_back(colour);
    fbo->getTextures().push_back(depth);
    fbo->setGenDepthmaps(true);
    endEditCP(fbo);

    // The window holds an image of its own that the pass must not touch.
    win->activate();
    glClearColor(1.f, 0.f, 1.f, 1.f);
    glClear(GL_COLOR_BUFFER_BIT);
    glViewport(3, 4, 20, 10);
    GLint fbBefore = -1;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING_EXT, &fbBefore);

    action->setZWriteTrans(false);
    renderPass(fbo);

    GLint viewport[4], fbAfter = -1;
    glGetIntegerv(GL_VIEWPORT, viewport);
    glGetIntegerv(GL_FRAMEBUFFER_BINDING_EXT, &fbAfter);
    EXPECT_EQ(viewport[0], 3);
    EXPECT_EQ(viewport[1], 4);
    EXPECT_EQ(viewport[2], 20);
    EXPECT_EQ(viewport[3], 10);
    EXPECT_EQ(fbAfter, fbBefore);
    EXPECT_FALSE(action->getZWriteTrans()) << "genDepthmaps must give the flag back";
    EXPECT_FALSE(fbo->getDirty());
    EXPECT_NE(fbo->getFrameBufferIndex(), 0u);
    EXPECT_EQ(action->getViewport(), fbo.getCPtr());

    std::vector<RGBA> window = readAll(win);
    UInt32            touched = 0;
    for(UInt32 i = 0; i < window.size(); ++i)
        touched += window[i] != RGBA{255, 0, 255, 255};
    EXPECT_EQ(touched, 0u) << "the pass drew into the window";

    std::vector<Real32> texels = readTexture(colour, GL_RGBA, 4);
    writePNG("fbo_colour", toPreview(texels, 4), W, H);
    EXPECT_EQ(countColourMismatches(texels, W, H), 0u);

    std::vector<Real32> depths = readTexture(depth, GL_DEPTH_COMPONENT, 1);
    writePNG("fbo_depth", toPreview(depths, 1), W, H);

    const Real32 quadDepth = windowDepth(2.f);
    UInt32       wrong     = 0;
    for(UInt32 y = 0; y < H; ++y)
    {
        for(UInt32 x = 0; x < W; ++x)
        {
            const Real32 expect = insideQuad(x, y, W, H) ? quadDepth : 1.f;
            if(std::fabs(depths[y * W + x] - expect) > 1e-5f && ++wrong <= 5)
                ADD_FAILURE() << "depth at " << x << "," << y << " is " << depths[y * W + x]
                              << ", expected " << expect;
        }
    }
    EXPECT_EQ(wrong, 0u);
}

TEST_F(FBOViewportFixture, TargetShownInTheWindowAfterThePass)
{
    const UInt32 W = 32, H = 24;

    TextureChunkPtr colour = targetTexture(W, H, GL_RGBA, GL_RGBA8);
    keep(colour);
    beginEditCP(colour);
    colour->setEnvMode(GL_REPLACE);
    endEditCP(colour);

    FBOViewportPtr fbo = makeFBO(W, H);
    beginEditCP(fbo);
    fbo->getTextures().push_back(colour);
    endEditCP(fbo);

    // A window port showing the texture 1:1 in its lower left corner.
    ChunkMaterialPtr mat = ChunkMaterial::create();
    beginEditCP(mat);
    mat->addChunk(colour);
    endEditCP(mat);

    PolygonForegroundPtr tile = PolygonForeground::create();
    beginEditCP(tile);
    tile->setMaterial(mat);
    tile->setNormalizedX(false);
    tile->setNormalizedY(false);
    const Real32 corners[4][2] = {{0, 0}, {Real32(W), 0}, {Real32(W), Real32(H)}, {0, Real32(H)}};
    for(UInt32 i = 0; i < 4; ++i)
    {
        tile->getPositions().push_back(Pnt2f(corners[i][0], corners[i][1]));
        tile->getTexCoords().push_back(Vec3f(corners[i][0] / W, corners[i][1] / H, 0.f));
    }
    endEditCP(tile);
    keep(mat);

    SolidBackgroundPtr black = SolidBackground::create();
    keep(black);

    ViewportPtr port = Viewport::create();
    keep(port);
    beginEditCP(port);
    port->setCamera(camera);
    port->setBackground(black);
    port->setRoot(keepNode(Group::create()));
    endEditCP(port);
    port->addForeground(tile);
    win->addPort(port);

    renderPass(fbo);
    {
        LogCapture log(LOG_WARNING);
        win->render(action.get());
        EXPECT_EQ(log.take(), "");
    }

    std::vector<RGBA> px = readAll(win);
    writePNG("fbo_shown", px, 64, 48);

    // Colour clamped to 8 bits: the quad shows as (255, 0, 32, 191), the
    // clear colour as (64, 128, 191, 0).
    UInt32 wrong = 0;
    for(UInt32 y = 0; y < 48; ++y)
    {
        for(UInt32 x = 0; x < 64; ++x)
        {
            RGBA expect = RGBA{0, 0, 0, 255};
            if(x < W && y < H)
                expect = insideQuad(x, y, W, H) ? toRGBA(1.f, 0.f, 0.125f, 0.75f)
                                                : toRGBA(0.25f, 0.5f, 0.75f, 0.f);
            const RGBA got = px[y * 64 + x];
            const bool ok  = std::abs(got.r - expect.r) <= 1 && std::abs(got.g - expect.g) <= 1 &&
                            std::abs(got.b - expect.b) <= 1 && std::abs(got.a - expect.a) <= 1;
            if(!ok && ++wrong <= 5)
                ADD_FAILURE() << "pixel " << x << "," << y << " is " << got << ", expected "
                              << expect;
        }
    }
    EXPECT_EQ(wrong, 0u);
}

TEST_F(FBOViewportFixture, DirtyRebuildsTheBuffersAtTheNewSize)
{
    // A second, larger quad behind the first: the depth renderbuffer (the
    // only depth buffer here) decides what shows in the centre.
    addQuad(1.6f, -3.f, constantShader("void main(void) { gl_FragColor = vec4(0.0, 0.0, 1.0, 1.0); }\n"));

    TextureChunkPtr colour = targetTexture(16, 12, GL_RGBA, GL_RGBA32F_ARB);
    keep(colour);

    FBOViewportPtr fbo = makeFBO(16, 12);
    beginEditCP(fbo);
    fbo->getTextures().push_back(colour);
    endEditCP(fbo);

    renderPass(fbo);

    // Grow to 64 x 48 (larger than the window: the target doesn't care).
    const UInt32 W = 64, H = 48;
    beginEditCP(colour->getImage());
    colour->getImage()->set(GL_RGBA, W, H);
    endEditCP(colour->getImage());

    beginEditCP(fbo);
    fbo->setSize(0.f, 0.f, Real32(W - 1), Real32(H - 1));
    fbo->setStorageWidth(W);
    fbo->setStorageHeight(H);
    fbo->setDirty(true);
    endEditCP(fbo);

    renderPass(fbo);
    EXPECT_FALSE(fbo->getDirty());
    EXPECT_NE(fbo->getFrameBufferIndex(), 0u);

    std::vector<Real32> texels = readTexture(colour, GL_RGBA, 4);
    writePNG("fbo_resized", toPreview(texels, 4), W, H);

    // At distance 3 the far quad spans columns 19..44 and rows 11..36, the
    // near one columns 20..43 and rows 12..35 in front of it.
    UInt32 wrong = 0;
    for(UInt32 y = 0; y < H; ++y)
    {
        for(UInt32 x = 0; x < W; ++x)
        {
            const Real32 *got = &texels[(y * W + x) * 4];
            const Real32  blue[4] = {0.f, 0.f, 1.f, 1.f};
            const Real32 *expect  = ClearColour;
            if(insideQuad(x, y, W, H))
                expect = QuadColour;
            else if(insideCentred(x, y, W, H, 0.8f, 3.f))
                expect = blue;
            bool ok = true;
            for(UInt32 c = 0; c < 4; ++c)
                ok = ok && std::fabs(got[c] - expect[c]) < 1e-3f;
            if(!ok && ++wrong <= 5)
                ADD_FAILURE() << "texel " << x << "," << y << " is " << got[0] << " " << got[1]
                              << " " << got[2] << " " << got[3];
        }
    }
    EXPECT_EQ(wrong, 0u);
}

TEST_F(FBOViewportFixture, SeveralColourTargetsAndReadBack)
{
    const UInt32 W = 32, H = 24;

    SHLChunkPtr mrt = constantShader("void main(void) {\n"
                                     "    gl_FragData[0] = vec4(1.0, 0.0, 0.0, 1.0);\n"
                                     "    gl_FragData[1] = vec4(0.0, 1.0, 0.0, 1.0);\n"
                                     "}\n");
    beginEditCP(root);
    root->subChild(quad);
    endEditCP(root);
    addQuad(1.f, -2.f, mrt);

    TextureChunkPtr first  = targetTexture(W, H, GL_RGBA, GL_RGBA8);
    TextureChunkPtr second = targetTexture(W, H, GL_RGBA, GL_RGBA8);
    keep(first);
    keep(second);

    FBOViewportPtr fbo = makeFBO(W, H);
    beginEditCP(fbo);
    fbo->getTextures().push_back(first);
    fbo->getTextures().push_back(second);
    fbo->setReadBuffer(true);
    endEditCP(fbo);

    // Mark the images so a missing read-back shows.
    std::fill(first->getImage()->editData(), first->getImage()->editData() + W * H * 4, 7);
    std::fill(second->getImage()->editData(), second->getImage()->editData() + W * H * 4, 7);

    renderPass(fbo);

    const RGBA clear = toRGBA(0.25f, 0.5f, 0.75f, 0.f);
    UInt32     wrong = 0;
    for(UInt32 t = 0; t < 2; ++t)
    {
        const RGBA   inside = t == 0 ? RGBA{255, 0, 0, 255} : RGBA{0, 255, 0, 255};
        const UInt8 *data   = (t == 0 ? first : second)->getImage()->getData();
        for(UInt32 y = 0; y < H; ++y)
        {
            for(UInt32 x = 0; x < W; ++x)
            {
                const UInt8 *p      = data + (y * W + x) * 4;
                const RGBA   got    = {p[0], p[1], p[2], p[3]};
                const RGBA   expect = insideQuad(x, y, W, H) ? inside : clear;
                if(got != expect && ++wrong <= 5)
                    ADD_FAILURE() << "target " << t << " texel " << x << "," << y << " is "
                                  << got << ", expected " << expect;
            }
        }
    }
    EXPECT_EQ(wrong, 0u);

    // The texture itself holds the same as the read-back image.
    std::vector<Real32> texels = readTexture(second, GL_RGBA, 4);
    EXPECT_FLOAT_EQ(texels[((H / 2) * W + W / 2) * 4 + 1], 1.f);
    EXPECT_NEAR(texels[0 + 1], 0.5f, 1.f / 255.f);
}

TEST_F(FBOViewportFixture, ExcludedNodesSitOutThePassOnly)
{
    const UInt32 W = 32, H = 24;

    TextureChunkPtr colour = targetTexture(W, H, GL_RGBA, GL_RGBA32F_ARB);
    keep(colour);

    FBOViewportPtr fbo = makeFBO(W, H);
    beginEditCP(fbo);
    fbo->getTextures().push_back(colour);
    fbo->getExcludeNodes().push_back(quad);
    endEditCP(fbo);

    renderPass(fbo);

    EXPECT_TRUE(quad->getActive());

    std::vector<Real32> texels = readTexture(colour, GL_RGBA, 4);
    UInt32              wrong  = 0;
    for(UInt32 i = 0; i < W * H; ++i)
        wrong += std::fabs(texels[i * 4 + 2] - ClearColour[2]) > 1e-3f;
    EXPECT_EQ(wrong, 0u);

    // renderNodes stand in for root: only the quad, over the cleared target.
    beginEditCP(fbo);
    fbo->getExcludeNodes().clear();
    fbo->getRenderNodes().push_back(quad);
    fbo->setRoot(NullFC);
    endEditCP(fbo);

    renderPass(fbo);
    EXPECT_EQ(countColourMismatches(readTexture(colour, GL_RGBA, 4), W, H), 0u);
}

namespace
{
std::vector<UInt32> renderParamsCalls;
void recordRenderParams(UInt32 mode)
{
    renderParamsCalls.push_back(mode);
}
} // namespace

TEST_F(FBOViewportFixture, RefusesIncompleteSetupsWithTheirMessages)
{
    FBOViewportPtr fbo = makeFBO(16, 16);
    TextureChunkPtr colour = targetTexture(16, 16, GL_RGBA, GL_RGBA8);
    keep(colour);
    beginEditCP(fbo);
    fbo->getTextures().push_back(colour);
    endEditCP(fbo);

    win->activate();
    win->frameInit();

    {
        LogCapture log(LOG_WARNING);
        RenderAction *noWindow = RenderAction::create();
        fbo->render(noWindow);
        delete noWindow;
        EXPECT_NE(log.take().find("FBOViewport::render: no window!"), std::string::npos);

        beginEditCP(fbo);
        fbo->setCamera(NullFC);
        endEditCP(fbo);
        fbo->render(action.get());
        EXPECT_NE(log.take().find("FBOViewport::render: no camera!"), std::string::npos);

        beginEditCP(fbo);
        fbo->setCamera(camera);
        fbo->setBackground(NullFC);
        endEditCP(fbo);
        fbo->render(action.get());
        EXPECT_NE(log.take().find("FBOViewport::render: no background!"), std::string::npos);

        beginEditCP(fbo);
        fbo->setBackground(background);
        fbo->setRoot(NullFC);
        endEditCP(fbo);
        fbo->render(action.get());
        EXPECT_NE(log.take().find("FBOViewport::render: no root(s)!"), std::string::npos);
    }
    EXPECT_EQ(fbo->getFrameBufferIndex(), 0u) << "nothing may be created before the checks";

    // Disabled: nothing at all, not even the callback.
    beginEditCP(fbo);
    fbo->setRoot(root);
    fbo->setEnabled(false);
    endEditCP(fbo);

    FBOViewport::setRenderParamsCB(recordRenderParams);
    renderParamsCalls.clear();
    fbo->render(action.get());
    EXPECT_TRUE(renderParamsCalls.empty());

    beginEditCP(fbo);
    fbo->setEnabled(true);
    endEditCP(fbo);
    renderPass(fbo);
    FBOViewport::setRenderParamsCB(NULL);

    ASSERT_EQ(renderParamsCalls.size(), 2u);
    EXPECT_EQ(renderParamsCalls[0], UInt32(FBOViewport::FBO_RP_EFFECTS));
    EXPECT_EQ(renderParamsCalls[1], UInt32(FBOViewport::FBO_RP_NONE));
}

TEST_F(FBOViewportFixture, WithoutFramebufferObjectsItCopiesFromTheWindow)
{
    const UInt32 W = 32, H = 24;

    TextureChunkPtr colour = targetTexture(W, H, GL_RGBA, GL_RGBA8);
    keep(colour);

    FBOViewportPtr fbo = makeFBO(W, H);
    beginEditCP(fbo);
    fbo->getTextures().push_back(colour);
    fbo->setFboOn(false);
    endEditCP(fbo);

    renderPass(fbo);
    EXPECT_EQ(fbo->getFrameBufferIndex(), 0u);

    // Through the 8-bit back buffer: the quad's colour arrives clamped.
    std::vector<Real32> texels = readTexture(colour, GL_RGBA, 4);
    UInt32              wrong  = 0;
    for(UInt32 y = 0; y < H; ++y)
    {
        for(UInt32 x = 0; x < W; ++x)
        {
            const Real32 *got = &texels[(y * W + x) * 4];
            const Real32 quadClamped[4] = {1.f, 0.f, 0.125f, 0.75f};
            const Real32 *expect = insideQuad(x, y, W, H) ? quadClamped : ClearColour;
            bool          ok     = true;
            for(UInt32 c = 0; c < 4; ++c)
                ok = ok && std::fabs(got[c] - expect[c]) < 1.f / 255.f;
            if(!ok && ++wrong <= 5)
                ADD_FAILURE() << "texel " << x << "," << y << " is " << got[0] << " "
                              << got[1] << " " << got[2] << " " << got[3];
        }
    }
    EXPECT_EQ(wrong, 0u);
}
