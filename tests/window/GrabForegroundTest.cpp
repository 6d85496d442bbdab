// Read-back foregrounds: a GrabForeground reads exactly the viewport's
// pixels of the composed frame (checked pixel by pixel against the layout
// of solid backgrounds), resizes its image by the rules of autoResize,
// starts inactive, and a FileGrabForeground writes numbered files.
#include "WindowTestSupport.h"

#include <OpenSG/OSGFileGrabForeground.h>
#include <OpenSG/OSGGrabForeground.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGPassiveBackground.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGPolygonForeground.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <support/ScratchDir.h>

using namespace osg;
using namespace wintest;

namespace
{

class GrabFixture : public FrameFixture
{
  protected:
    GrabForegroundPtr grab(const ViewportPtr &vp, const ImagePtr &img, bool autoResize)
    {
        GrabForegroundPtr fg = GrabForeground::create();
        beginEditCP(fg);
        fg->setImage(img);
        fg->setAutoResize(autoResize);
        fg->setActive(true);
        endEditCP(fg);
        vp->addForeground(fg);
        return fg;
    }

    void frame(void)
    {
        FrameFixture::frame();
        GLint rowLength = -1;
        glGetIntegerv(GL_PACK_ROW_LENGTH, &rowLength);
        EXPECT_EQ(rowLength, 0);
    }
};

// The composed frame: grey everywhere, a red rectangle at pixels 8..39 x
// 4..27, a green one at 30..49 x 20..39 over it.
RGBA layout(UInt32 x, UInt32 y)
{
    if(x >= 30 && x <= 49 && y >= 20 && y <= 39)
        return Green;
    if(x >= 8 && x <= 39 && y >= 4 && y <= 27)
        return Red;
    return Grey;
}

} // namespace

TEST_F(GrabFixture, ReadsExactlyTheViewportOfTheComposedFrame)
{
    port(0.f, 1.f, 0.f, 1.f, solid(Grey));
    ViewportPtr red = port(8.f, 39.f, 4.f, 27.f, solid(Red));
    port(30.f, 49.f, 20.f, 39.f, solid(Green));

    // A passive port over the lower left 48 x 36 pixels grabs the result.
    ViewportPtr reader = port(0.f, 47.f, 0.f, 35.f, PassiveBackground::create());

    ImagePtr whole   = image(1, 1, 0);
    ImagePtr ofRed   = image(1, 1, 0);
    grab(reader, whole, true);
    grab(red, ofRed, false); // 1 x 1 grows to the port even without autoResize

    frame();

    std::vector<RGBA> px = readAll(win);
    writePNG("grab_frame", px, 64, 48);

    ASSERT_EQ(whole->getWidth(), 48);
    ASSERT_EQ(whole->getHeight(), 36);
    ASSERT_EQ(ofRed->getWidth(), 32);
    ASSERT_EQ(ofRed->getHeight(), 24);

    // The red port's grab ran before the green port was drawn.
    UInt32 wrong = 0;
    for(UInt32 y = 0; y < 36; ++y)
        for(UInt32 x = 0; x < 48; ++x)
            if(at(whole, x, y) != layout(x, y) && ++wrong <= 5)
                ADD_FAILURE() << "grabbed " << x << "," << y << " is " << at(whole, x, y)
                              << ", expected " << layout(x, y);
    for(UInt32 y = 0; y < 24; ++y)
        for(UInt32 x = 0; x < 32; ++x)
            if(at(ofRed, x, y) != Red && ++wrong <= 5)
                ADD_FAILURE() << "red port " << x << "," << y << " is " << at(ofRed, x, y);
    EXPECT_EQ(wrong, 0u);

    // With autoResize the image follows a new port size; without, it stays.
    reader->setSize(0.f, 0.f, 31.f, 15.f);
    red->setSize(8.f, 4.f, 29.f, 27.f);
    frame();
    EXPECT_EQ(whole->getWidth(), 32);
    EXPECT_EQ(whole->getHeight(), 16);
    EXPECT_EQ(ofRed->getWidth(), 32);
}

TEST_F(GrabFixture, FixedSizeImagesReceiveTheLowerLeftPart)
{
    port(0.f, 1.f, 0.f, 1.f, solid(Grey));
    port(8.f, 39.f, 4.f, 27.f, solid(Red));
    port(30.f, 49.f, 20.f, 39.f, solid(Green));
    ViewportPtr reader = port(0.f, 31.f, 0.f, 23.f, PassiveBackground::create());

    // Larger than the port: 32 x 24 rows land in a 40 x 30 image, the rest
    // keeps its marks. Smaller: the lower left 10 x 6 pixels.
    ImagePtr large = image(40, 30, 7);
    ImagePtr small = image(10, 6, 7);
    grab(reader, large, false);
    grab(reader, small, false);

    frame();

    ASSERT_EQ(large->getWidth(), 40);
    ASSERT_EQ(small->getWidth(), 10);

    const RGBA mark  = {7, 7, 7, 7};
    UInt32     wrong = 0;
    for(UInt32 y = 0; y < 30; ++y)
        for(UInt32 x = 0; x < 40; ++x)
        {
            const RGBA expect = (x < 32 && y < 24) ? layout(x, y) : mark;
            if(at(large, x, y) != expect && ++wrong <= 5)
                ADD_FAILURE() << "large " << x << "," << y << " is " << at(large, x, y);
        }
    for(UInt32 y = 0; y < 6; ++y)
        for(UInt32 x = 0; x < 10; ++x)
            if(at(small, x, y) != layout(x, y) && ++wrong <= 5)
                ADD_FAILURE() << "small " << x << "," << y << " is " << at(small, x, y);
    EXPECT_EQ(wrong, 0u);
}

TEST_F(GrabFixture, NewGrabsStartInactive)
{
    GrabForegroundPtr fg = GrabForeground::create();
    keep(fg);
    EXPECT_FALSE(fg->getActive());
    EXPECT_FALSE(fg->getAutoResize());
    EXPECT_EQ(UInt32(GrabForeground::ImageFieldId), 3u);
    EXPECT_EQ(UInt32(GrabForeground::NextFieldId), 5u);

    FileGrabForegroundPtr file = FileGrabForeground::create();
    keep(file);
    EXPECT_FALSE(file->getActive());

    ViewportPtr vp  = port(0.f, 1.f, 0.f, 1.f, solid(Red));
    ImagePtr    img = image(1, 1, 9);
    beginEditCP(fg);
    fg->setImage(img);
    endEditCP(fg);
    vp->addForeground(fg);

    frame();
    EXPECT_EQ(img->getWidth(), 1);
    EXPECT_EQ(img->getData()[0], 9);
}

TEST_F(GrabFixture, FileGrabWritesNumberedFiles)
{
    ViewportPtr vp = port(0.f, 1.f, 0.f, 1.f, solid(Grey));
    port(8.f, 39.f, 4.f, 27.f, solid(Red));
    ViewportPtr reader = port(0.f, 1.f, 0.f, 1.f, PassiveBackground::create());
    (void)vp;

    const std::string pattern = corvanetest::scratchPath("filegrab_%02d.png");

    FileGrabForegroundPtr fg = FileGrabForeground::create();
    beginEditCP(fg);
    fg->setName(pattern);
    fg->setFrame(3);
    fg->setActive(true);
    endEditCP(fg);
    reader->addForeground(fg);

    frame();
    frame();
    EXPECT_EQ(fg->getFrame(), 5u);

    PNGPixels png;
    ASSERT_TRUE(readPNGFile(corvanetest::scratchPath("filegrab_04.png").c_str(), png));
    EXPECT_EQ(png.width, 64u);
    EXPECT_EQ(png.height, 48u);
    ASSERT_EQ(png.channels, 3u);
    ASSERT_TRUE(fg->getImage() != NullFC);
    EXPECT_EQ(fg->getImage()->getPixelFormat(), UInt32(GL_RGB));

    // The file holds the frame (its row order is the writer's business, so
    // compare a pixel that is red and one that is grey in both orders).
    const UInt8 *data = fg->getImage()->getData();
    EXPECT_EQ(data[(10 * 64 + 20) * 3 + 0], 255);
    EXPECT_EQ(data[(10 * 64 + 20) * 3 + 1], 0);
    EXPECT_EQ(data[(45 * 64 + 60) * 3 + 0], 64);

    UInt32 red = 0;
    for(UInt32 i = 0; i < 64u * 48u; ++i)
        red += png.data[i * 3] == 255 && png.data[i * 3 + 1] == 0;
    EXPECT_EQ(red, 32u * 24u);

    // Without a name it warns and writes nothing.
    beginEditCP(fg);
    fg->setName("");
    endEditCP(fg);
    LogCapture log(LOG_WARNING);
    win->render(action.get());
    EXPECT_NE(log.take().find("FileGrabForeground::draw: no name ?!?"), std::string::npos);
    EXPECT_EQ(fg->getFrame(), 5u);
}
