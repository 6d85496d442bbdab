// Grab foregrounds on llvmpipe. PBOGrabForeground: frames of solid
// viewports read back through rings of 1, 2 and 3 pixel buffer objects
// (the image lags by N - 1 frames, seen by changing the colour every
// frame), the ring follows numPBOs and the image size, a texture source is
// read in full, a viewport of width 1 reads 2 columns, a fixed image smaller
// than the viewport gets the lower-left part and GL_PACK_ROW_LENGTH is reset.
// ScreenDumpForeground: one PNG per frame from the queue, read back and
// compared pixel by pixel; a file that can't be opened is dropped quietly.
#include "window/WindowTestSupport.h"

#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGPBOGrabForeground.h>
#include <OpenSG/OSGPNGCodec.h>
#include <OpenSG/OSGPassiveBackground.h>
#include <OpenSG/OSGScreenDumpForeground.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGWindow.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>

#include <sys/stat.h>
#include <unistd.h>
#include <support/ScratchDir.h>

using namespace osg;
using namespace wintest;

namespace
{

/// The background colour of frame i: every frame differs from its
/// neighbours, so a lag shows as a colour.
RGBA frameColour(UInt32 i)
{
    return RGBA{UInt8(20 + 30 * i), UInt8(200 - 25 * i), UInt8(7 * i), 255};
}

// The composed frame of the layout tests: grey everywhere, a red rectangle
// at pixels 8..39 x 4..27.
RGBA layoutPixel(UInt32 x, UInt32 y)
{
    if(x >= 8 && x <= 39 && y >= 4 && y <= 27)
        return Red;
    return Grey;
}

class GrabsFixture : public FrameFixture
{
  protected:
    /// Renders a frame; afterwards no pack buffer may be bound and the row
    /// length must be back at 0.
    void frame(void)
    {
        FrameFixture::frame();

        GLint rowLength = -1, packBuffer = -1;
        glGetIntegerv(GL_PACK_ROW_LENGTH, &rowLength);
        glGetIntegerv(GL_PIXEL_PACK_BUFFER_BINDING_ARB, &packBuffer);
        EXPECT_EQ(rowLength, 0);
        EXPECT_EQ(packBuffer, 0);
    }

    PBOGrabForegroundPtr pboGrab(const ViewportPtr &vp, const ImagePtr &img, Int32 numPBOs,
                                 bool autoResize)
    {
        PBOGrabForegroundPtr fg = PBOGrabForeground::create();
        keep(fg);
        beginEditCP(fg);
        fg->setImage(img);
        fg->setAutoResize(autoResize);
        fg->setNumPBOs(numPBOs);
        fg->setActive(true);
        endEditCP(fg);
        vp->addForeground(fg);
        return fg;
    }

    static void setColour(const BackgroundPtr &bg, const RGBA &c)
    {
        SolidBackgroundPtr solidBg = SolidBackgroundPtr::dcast(bg);
        beginEditCP(solidBg);
        solidBg->setColor(Color3f(c.r / 255.f, c.g / 255.f, c.b / 255.f));
        endEditCP(solidBg);
    }

    /// Number of pixels of the image that differ from expect(x, y); the
    /// first few are reported.
    template <class ExpectT>
    static UInt32 mismatches(const ImagePtr &img, ExpectT expect, const char *what)
    {
        UInt32 wrong = 0;
        for(Int32 y = 0; y < img->getHeight(); ++y)
            for(Int32 x = 0; x < img->getWidth(); ++x)
                if(at(img, x, y) != expect(x, y) && ++wrong <= 3)
                    ADD_FAILURE() << what << ": " << x << "," << y << " is " << at(img, x, y)
                                  << ", expected " << expect(x, y);
        return wrong;
    }

    static UInt32 mismatches(const ImagePtr &img, const RGBA &c, const char *what)
    {
        return mismatches(img, [&c](UInt32, UInt32) { return c; }, what);
    }
};

} // namespace

TEST_F(GrabsFixture, RingOfOneReadsTheFrameJustDrawn)
{
    port(0.f, 1.f, 0.f, 1.f, solid(Grey));
    port(8.f, 39.f, 4.f, 27.f, solid(Red));
    ViewportPtr reader = port(0.f, 1.f, 0.f, 1.f, PassiveBackground::create());

    ImagePtr img = image(1, 1, 0);
    pboGrab(reader, img, 1, true);

    frame();

    writePNG("pbo_grab_ring1", readAll(win), winW, winH);
    writePNG("pbo_grab_ring1_image",
             std::vector<RGBA>(reinterpret_cast<const RGBA *>(img->getData()),
                               reinterpret_cast<const RGBA *>(img->getData()) +
                                   img->getWidth() * img->getHeight()),
             img->getWidth(), img->getHeight());

    ASSERT_EQ(img->getWidth(), 64);
    ASSERT_EQ(img->getHeight(), 48);
    EXPECT_EQ(img->getPixelFormat(), UInt32(GL_RGBA));
    EXPECT_EQ(mismatches(img, layoutPixel, "ring of 1"), 0u);
}

class RingLagTest : public GrabsFixture, public ::testing::WithParamInterface<Int32>
{
};

TEST_P(RingLagTest, ImageShowsTheFrameNMinusOneBack)
{
    const Int32 numPBOs = GetParam();

    BackgroundPtr bg     = solid(frameColour(0));
    ViewportPtr   vp     = port(0.f, 1.f, 0.f, 1.f, bg);
    ImagePtr      img    = image(64, 48, 0);
    pboGrab(vp, img, numPBOs, true);

    for(UInt32 i = 0; i < 6; ++i)
    {
        setColour(bg, frameColour(i));
        frame();

        if(Int32(i) + 1 < numPBOs)
            continue; // the buffer mapped now was never written

        SCOPED_TRACE("frame " + std::to_string(i));
        EXPECT_EQ(mismatches(img, frameColour(i + 1 - numPBOs), "lagged"), 0u);
    }
}

INSTANTIATE_TEST_SUITE_P(PBOGrabForeground, RingLagTest, ::testing::Values(1, 2, 3));

TEST_F(GrabsFixture, RingFollowsNumPBOsAndImageSize)
{
    BackgroundPtr bg  = solid(frameColour(0));
    ViewportPtr   vp  = port(0.f, 1.f, 0.f, 1.f, bg);
    ImagePtr      img = image(64, 48, 0);
    PBOGrabForegroundPtr fg = pboGrab(vp, img, 3, true);

    UInt32 i = 0;
    for(; i < 3; ++i)
    {
        setColour(bg, frameColour(i));
        frame();
    }
    EXPECT_EQ(mismatches(img, frameColour(i - 3), "ring of 3"), 0u);

    // Rebuilt with 2 buffers at the next draw: that frame maps a fresh
    // buffer, the one after shows the frame before it.
    beginEditCP(fg);
    fg->setNumPBOs(2);
    endEditCP(fg);
    for(UInt32 n = 0; n < 3; ++n, ++i)
    {
        setColour(bg, frameColour(i));
        frame();
        if(n > 0)
        {
            EXPECT_EQ(mismatches(img, frameColour(i - 1), "ring of 2"), 0u);
        }
    }

    // A smaller port makes a smaller image, and the ring follows its size.
    vp->setSize(0.f, 0.f, 31.f, 15.f);
    for(UInt32 n = 0; n < 2; ++n, ++i)
    {
        setColour(bg, frameColour(i));
        frame();
    }
    ASSERT_EQ(img->getWidth(), 32);
    ASSERT_EQ(img->getHeight(), 16);
    EXPECT_EQ(mismatches(img, frameColour(i - 2), "smaller image"), 0u);
}

TEST_F(GrabsFixture, EmptyRingReadsDirectly)
{
    BackgroundPtr bg  = solid(frameColour(0));
    ViewportPtr   vp  = port(0.f, 1.f, 0.f, 1.f, bg);
    ImagePtr      img = image(64, 48, 0);
    PBOGrabForegroundPtr fg = pboGrab(vp, img, 2, true);

    frame();

    // Without buffers the ring counts as ready, and nothing lags.
    beginEditCP(fg);
    fg->setNumPBOs(0);
    endEditCP(fg);
    win->activate();
    EXPECT_TRUE(fg->pbosReady(win.getCPtr(), img->calcMipmapSumSize(1)));

    for(UInt32 i = 1; i < 3; ++i)
    {
        setColour(bg, frameColour(i));
        frame();
        EXPECT_EQ(mismatches(img, frameColour(i), "no ring"), 0u);
    }
}

TEST_F(GrabsFixture, FixedImageSmallerThanThePortGetsTheLowerLeftPart)
{
    port(0.f, 1.f, 0.f, 1.f, solid(Grey));
    port(8.f, 39.f, 4.f, 27.f, solid(Red));
    ViewportPtr reader = port(0.f, 1.f, 0.f, 1.f, PassiveBackground::create());

    // 20 of 64 columns: the read needs a row length, which frame() checks
    // is reset afterwards.
    ImagePtr ring   = image(20, 10, 7);
    ImagePtr direct = image(20, 10, 7);
    pboGrab(reader, ring, 2, false);
    pboGrab(reader, direct, 0, false);

    frame();
    frame();

    ASSERT_EQ(ring->getWidth(), 20);
    ASSERT_EQ(ring->getHeight(), 10);
    EXPECT_EQ(mismatches(ring, layoutPixel, "ring"), 0u);
    EXPECT_EQ(mismatches(direct, layoutPixel, "direct"), 0u);
}

TEST_F(GrabsFixture, ViewportOfWidthOneCountsAsTwo)
{
    port(0.f, 1.f, 0.f, 1.f, solid(Grey));
    ViewportPtr thin = port(10.f, 10.f, 0.f, 1.f, solid(Red));

    ImagePtr img = image(1, 1, 0);
    pboGrab(thin, img, 1, true);

    frame();

    // The second column lies right of the port.
    ASSERT_EQ(img->getWidth(), 2);
    ASSERT_EQ(img->getHeight(), 48);
    EXPECT_EQ(mismatches(img, [](UInt32 x, UInt32) { return x == 0 ? Red : Grey; }, "thin"),
              0u);
}

TEST_F(GrabsFixture, TextureSourceIsReadInFull)
{
    port(0.f, 1.f, 0.f, 1.f, solid(Grey));
    ViewportPtr vp = port(0.f, 20.f, 0.f, 10.f, solid(Green));

    // 8 x 4 texels of a pattern that no frame buffer holds.
    ImagePtr texImg = Image::create();
    texImg->set(GL_RGBA, 8, 4);
    UInt8 *p = texImg->editData();
    for(UInt32 i = 0; i < 8 * 4 * 4; ++i)
        p[i] = UInt8(i * 7 + 3);

    TextureChunkPtr tex = TextureChunk::create();
    keep(tex);
    beginEditCP(tex);
    tex->setImage(texImg);
    tex->setMinFilter(GL_NEAREST);
    tex->setMagFilter(GL_NEAREST);
    endEditCP(tex);

    win->activate();
    win->frameInit();
    win->validateGLObject(tex->getGLId());

    // Two sizes that differ from the viewport, both resized to the
    // texture; one read through a ring, one directly.
    ImagePtr ring   = image(1, 1, 0);
    ImagePtr direct = image(5, 5, 0);
    PBOGrabForegroundPtr a = pboGrab(vp, ring, 1, true);
    PBOGrabForegroundPtr b = pboGrab(vp, direct, 0, true);
    beginEditCP(a);
    a->setSourceTexture(tex);
    endEditCP(a);
    beginEditCP(b);
    b->setSourceTexture(tex);
    endEditCP(b);

    frame();

    for(const ImagePtr &img : {ring, direct})
    {
        ASSERT_EQ(img->getWidth(), 8);
        ASSERT_EQ(img->getHeight(), 4);
        EXPECT_TRUE(std::equal(img->getData(), img->getData() + 8 * 4 * 4, p));
    }
}

TEST_F(GrabsFixture, RegistersBufferObjectExtensionAndFunctions)
{
    const std::vector<std::string> &ext = Window::getRegisteredExtensions();
    const std::vector<std::string> &fn  = Window::getRegisteredFunctions();

    for(const char *name : {"GL_ARB_vertex_buffer_object", "GL_ARB_pixel_buffer_object"})
        EXPECT_NE(std::find(ext.begin(), ext.end(), name), ext.end()) << name;

    for(const char *name : {"glGenBuffersARB", "glDeleteBuffersARB", "glBindBufferARB",
                            "glBufferDataARB", "glBufferSubDataARB",
                            "glGetBufferParameterivARB", "glMapBufferARB", "glUnmapBufferARB"})
        EXPECT_NE(std::find(fn.begin(), fn.end(), name), fn.end()) << name;
}

namespace
{

/// Reads a PNG written by the screen dump and compares it with expect(x, y)
/// on RGB; returns the number of differing pixels.
template <class ExpectT>
UInt32 pngMismatches(const std::string &file, UInt32 w, UInt32 h, ExpectT expect)
{
    PNGPixels png;
    EXPECT_TRUE(readPNGFile(file.c_str(), png)) << file;
    EXPECT_EQ(png.width, w);
    EXPECT_EQ(png.height, h);
    EXPECT_EQ(png.channels, 3u);
    if(png.width != w || png.height != h || png.channels != 3)
        return w * h;

    UInt32 wrong = 0;
    for(UInt32 y = 0; y < h; ++y)
        for(UInt32 x = 0; x < w; ++x)
        {
            const UInt8 *q = &png.data[(y * w + x) * 3];
            const RGBA   e = expect(x, y);
            if((q[0] != e.r || q[1] != e.g || q[2] != e.b) && ++wrong <= 3)
                ADD_FAILURE() << file << ": " << x << "," << y << " is " << int(q[0]) << ','
                              << int(q[1]) << ',' << int(q[2]) << ", expected " << e;
        }
    return wrong;
}

} // namespace

TEST_F(GrabsFixture, ScreenDumpWritesOneFilePerFrame)
{
    BackgroundPtr bg = solid(Grey);
    port(0.f, 1.f, 0.f, 1.f, bg);
    ViewportPtr red    = port(8.f, 39.f, 4.f, 27.f, solid(Red));
    ViewportPtr reader = port(0.f, 1.f, 0.f, 1.f, PassiveBackground::create());
    (void)red;

    const std::string first  = corvanetest::scratchPath("grab_dump_1.png");
    const std::string second = corvanetest::scratchPath("grab_dump_2.png");
    std::remove(first.c_str());
    std::remove(second.c_str());

    ScreenDumpForegroundPtr dump = ScreenDumpForeground::create();
    keep(dump);
    beginEditCP(dump);
    dump->setActive(true);
    dump->getMFFilenames()->push_back(first);
    dump->getMFFilenames()->push_back(second);
    endEditCP(dump);
    reader->addForeground(dump);

    frame();

    // The image it made for itself is RGB and has the port's size.
    ASSERT_NE(dump->getImage(), NullFC);
    EXPECT_EQ(dump->getImage()->getPixelFormat(), UInt32(GL_RGB));
    EXPECT_EQ(dump->getImage()->getWidth(), 64);
    ASSERT_EQ(dump->getMFFilenames()->size(), 1u);
    EXPECT_EQ((*dump->getMFFilenames())[0], second);

    setColour(bg, Green);
    frame();
    EXPECT_TRUE(dump->getMFFilenames()->empty());

    EXPECT_EQ(pngMismatches(first, 64, 48, layoutPixel), 0u);
    EXPECT_EQ(pngMismatches(second, 64, 48,
                            [](UInt32 x, UInt32 y) {
                                return layoutPixel(x, y) == Red ? Red : Green;
                            }),
              0u);

    // An empty queue writes nothing more.
    std::remove(first.c_str());
    frame();
    std::FILE *again = std::fopen(first.c_str(), "rb");
    EXPECT_EQ(again, nullptr);
    if(again != nullptr)
        std::fclose(again);
}

TEST_F(GrabsFixture, ScreenDumpDropsAFileItCannotOpen)
{
    ViewportPtr vp = port(0.f, 1.f, 0.f, 1.f, solid(Red));

    const std::string good = corvanetest::scratchPath("grab_dump_good.png");
    std::remove(good.c_str());

    ScreenDumpForegroundPtr dump = ScreenDumpForeground::create();
    keep(dump);
    beginEditCP(dump);
    dump->setActive(true);
    dump->getMFFilenames()->push_back("/nonexistent-corvane-dir/dump.png");
    dump->getMFFilenames()->push_back(good);
    endEditCP(dump);
    vp->addForeground(dump);

    // frame() checks that no warning comes of it.
    frame();
    ASSERT_EQ(dump->getMFFilenames()->size(), 1u);
    EXPECT_EQ((*dump->getMFFilenames())[0], good);

    frame();
    EXPECT_TRUE(dump->getMFFilenames()->empty());
    EXPECT_EQ(pngMismatches(good, 64, 48, [](UInt32, UInt32) { return Red; }), 0u);
}

TEST_F(GrabsFixture, ScreenDumpNeverWritesThroughALinkOrIntoAFifo)
{
    ViewportPtr vp = port(0.f, 1.f, 0.f, 1.f, solid(Red));

    char pattern[] = "/tmp/corvane_grab_dump_XXXXXX";
    ASSERT_NE(mkdtemp(pattern), nullptr);
    const std::string dir    = pattern;
    const std::string victim = dir + "/victim.txt";
    const std::string link   = dir + "/link.png";
    const std::string fifo   = dir + "/fifo.png";
    const std::string good   = dir + "/good.png";
    {
        std::FILE *f = std::fopen(victim.c_str(), "wb");
        ASSERT_NE(f, nullptr);
        std::fputs("keep me", f);
        std::fclose(f);
    }
    ASSERT_EQ(symlink(victim.c_str(), link.c_str()), 0);
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);

    ScreenDumpForegroundPtr dump = ScreenDumpForeground::create();
    keep(dump);
    beginEditCP(dump);
    dump->setActive(true);
    dump->getMFFilenames()->push_back(link);
    dump->getMFFilenames()->push_back(fifo);
    dump->getMFFilenames()->push_back(good);
    endEditCP(dump);
    vp->addForeground(dump);

    // each name leaves the queue; a FIFO without a reader never blocks
    frame();
    frame();
    frame();
    EXPECT_TRUE(dump->getMFFilenames()->empty());

    std::FILE *f = std::fopen(victim.c_str(), "rb");
    ASSERT_NE(f, nullptr);
    char text[16] = {};
    EXPECT_EQ(std::fread(text, 1, sizeof(text), f), 7u);
    std::fclose(f);
    EXPECT_STREQ(text, "keep me");
    EXPECT_EQ(pngMismatches(good, 64, 48, [](UInt32, UInt32) { return Red; }), 0u);

    for(const std::string &name : {victim, link, fifo, good})
        std::remove(name.c_str());
    rmdir(dir.c_str());
}
