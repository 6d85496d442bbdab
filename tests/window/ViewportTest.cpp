// The viewport's edge rules (pixels above 1, fractions of the window up to
// 1), the port list of a window, the foreground references, and the field
// ids other code numbers its own fields from.
#include <OpenSG/OSGCameraDecorator.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGFieldDescription.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGMatrixCamera.h>
#include <OpenSG/OSGPassiveBackground.h>
#include <OpenSG/OSGPassiveWindow.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGRecordingTestForeground.h>
#include <OpenSG/OSGShearedStereoCameraDecorator.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGViewport.h>

#include <gtest/gtest.h>

using namespace osg;

namespace
{

struct Rect
{
    Int32 l, r, b, t;
};

Rect pixels(const ViewportPtr &vp)
{
    return Rect{vp->getPixelLeft(), vp->getPixelRight(), vp->getPixelBottom(),
                vp->getPixelTop()};
}

class ViewportEdgeTest : public ::testing::Test
{
  protected:
    void SetUp(void) override
    {
        win = PassiveWindow::create();
        addRefCP(win);
        win->setSize(800, 600);

        vp = Viewport::create();
        addRefCP(vp);
        win->addPort(vp);
    }

    void TearDown(void) override
    {
        win->subPort(vp);
        subRefCP(vp);
        subRefCP(win);
    }

    void edges(Real32 l, Real32 r, Real32 b, Real32 t)
    {
        beginEditCP(vp);
        vp->setSize(l, b, r, t);
        endEditCP(vp);
    }

    PassiveWindowPtr win;
    ViewportPtr      vp;
};

} // namespace

TEST_F(ViewportEdgeTest, FractionsPixelsAndMixtures)
{
    Rect p = pixels(vp); // default 0, 1, 0, 1
    EXPECT_EQ(p.l, 0);
    EXPECT_EQ(p.r, 799);
    EXPECT_EQ(p.b, 0);
    EXPECT_EQ(p.t, 599);
    EXPECT_EQ(vp->getPixelWidth(), 800);
    EXPECT_EQ(vp->getPixelHeight(), 600);
    EXPECT_TRUE(vp->isFullWindow());

    edges(0.25f, 0.75f, 0.5f, 1.f);
    p = pixels(vp);
    EXPECT_EQ(p.l, 200);
    EXPECT_EQ(p.r, 599);
    EXPECT_EQ(p.b, 300);
    EXPECT_EQ(p.t, 599);
    EXPECT_FALSE(vp->isFullWindow());

    // Pixels are truncated; 0 and 1 stay fractions.
    edges(10.7f, 109.9f, 20.f, 69.f);
    EXPECT_EQ(vp->getPixelLeft(), 10);
    EXPECT_EQ(vp->getPixelWidth(), 100);
    EXPECT_EQ(vp->getPixelHeight(), 50);

    edges(0.f, 99.f, 0.5f, 1.f);
    p = pixels(vp);
    EXPECT_EQ(p.l, 0);
    EXPECT_EQ(p.r, 99);
    EXPECT_EQ(p.b, 300);
    EXPECT_EQ(p.t, 599);

    // A "right edge" of 1 is read as the whole width.
    edges(0.f, 1.f, 0.f, 1.f);
    EXPECT_EQ(vp->getPixelRight(), 799);

    // -1 is not special: a fraction like any other.
    edges(-1.f, 1.f, 0.f, 1.f);
    EXPECT_EQ(vp->getPixelLeft(), -800);
}

TEST_F(ViewportEdgeTest, NeighboursShareNoPixel)
{
    win->setSize(801, 601);

    edges(0.f, 0.5f, 0.f, 0.5f);
    Rect a = pixels(vp);
    edges(0.5f, 1.f, 0.5f, 1.f);
    Rect b = pixels(vp);

    EXPECT_EQ(a.r + 1, b.l);
    EXPECT_EQ(a.t + 1, b.b);
    EXPECT_EQ(b.r, 800);
    EXPECT_EQ(b.t, 600);
}

TEST_F(ViewportEdgeTest, FractionsWithoutParentWarnAndGiveZero)
{
    win->subPort(vp);
    EXPECT_EQ(vp->getParent(), NullFC);

    edges(0.5f, 0.5f, 0.5f, 0.5f);

    LogCapture log(LOG_WARNING);

    EXPECT_EQ(vp->getPixelLeft(), 0);
    EXPECT_EQ(vp->getPixelRight(), 0);
    EXPECT_EQ(vp->getPixelBottom(), 0);
    EXPECT_EQ(vp->getPixelTop(), 0);
    EXPECT_FALSE(vp->isFullWindow());

    const std::string text = log.take();
    for(const char *edge : {"Left", "Right", "Bottom", "Top"})
        EXPECT_NE(text.find(std::string("Viewport::getPixel") + edge +
                            ": viewport has no parent window!"),
                  std::string::npos)
            << edge;
    EXPECT_NE(text.find("Viewport::isFullWindow: viewport has no parent "
                        "window!"),
              std::string::npos);

    // Pixel edges need no window.
    edges(0.f, 63.f, 0.f, 31.f);
    log.take();
    EXPECT_EQ(vp->getPixelWidth(), 64);
    EXPECT_EQ(vp->getPixelHeight(), 32);

    win->addPort(vp);
}

TEST(WindowPortsTest, ListHelpersKeepParentsAndOrder)
{
    PassiveWindowPtr win = PassiveWindow::create();
    addRefCP(win);

    ViewportPtr a = Viewport::create(), b = Viewport::create(),
                c = Viewport::create();
    for(ViewportPtr p : {a, b, c})
        addRefCP(p);

    win->addPort(a);
    win->addPort(c);
    win->insertPort(1, b);
    ASSERT_EQ(win->getPort().size(), 3u);
    EXPECT_EQ(win->getPort(0), a);
    EXPECT_EQ(win->getPort(1), b);
    EXPECT_EQ(win->getPort(2), c);
    EXPECT_EQ(b->getParent(), win);
    // The list holds no references.
    EXPECT_EQ(a.getRefCount(), 1);

    win->subPort(UInt32(0));
    EXPECT_EQ(a->getParent(), NullFC);
    EXPECT_EQ(win->getPort(0), b);

    win->replacePortBy(c, a);
    EXPECT_EQ(c->getParent(), NullFC);
    EXPECT_EQ(a->getParent(), win);
    EXPECT_EQ(win->getPort(1), a);

    win->subPort(b);
    ASSERT_EQ(win->getPort().size(), 1u);

    // clearPorts lets go of one reference of each port.
    addRefCP(a);
    win->clearPorts();
    EXPECT_TRUE(win->getPort().empty());
    EXPECT_EQ(a->getParent(), NullFC);
    EXPECT_EQ(a.getRefCount(), 1);

    for(ViewportPtr p : {a, b, c})
        subRefCP(p);
    subRefCP(win);
}

TEST(ViewportTest, ForegroundsAreCountedReferences)
{
    ViewportPtr vp = Viewport::create();
    addRefCP(vp);

    RecordingTestForegroundPtr fg = RecordingTestForeground::create();
    addRefCP(fg);

    vp->addForeground(fg);
    vp->addForeground(fg);
    EXPECT_EQ(fg.getRefCount(), 3);
    EXPECT_EQ(vp->getForegrounds().size(), 2u);

    vp->clearForegrounds();
    EXPECT_EQ(fg.getRefCount(), 1);
    EXPECT_TRUE(vp->getForegrounds().empty());

    // Plain pointer fields count nothing.
    SolidBackgroundPtr bg = SolidBackground::create();
    addRefCP(bg);
    beginEditCP(vp);
    vp->setBackground(bg);
    endEditCP(vp);
    EXPECT_EQ(bg.getRefCount(), 1);

    subRefCP(vp);
    EXPECT_EQ(bg.getRefCount(), 1);
    subRefCP(bg);
    subRefCP(fg);
}

// Derived classes elsewhere number their fields on from these.
TEST(WindowFieldsTest, IdsAndDefaults)
{
    EXPECT_EQ(Window::WidthFieldId, 2u);
    EXPECT_EQ(Window::PortFieldMask, 0x10u);
    EXPECT_EQ(Window::GlObjectLastReinitializeFieldId, 8u);
    EXPECT_EQ(UInt32(PassiveWindow::NextFieldId), 9u);
    EXPECT_EQ(Viewport::TravMaskFieldId, 11u);
    EXPECT_EQ(Viewport::DrawTimeFieldId, 12u);
    EXPECT_EQ(UInt32(Viewport::NextFieldId), 13u);
    EXPECT_EQ(Camera::BeaconFieldId, 2u);
    EXPECT_EQ(UInt32(PerspectiveCamera::NextFieldId), 8u);
    EXPECT_EQ(MatrixCamera::ModelviewMatrixFieldMask, 0x40u);
    EXPECT_EQ(CameraDecorator::DecorateeFieldId, 5u);
    EXPECT_EQ(StereoCameraDecorator::EyeSeparationFieldId, 7u);
    EXPECT_EQ(ShearedStereoCameraDecorator::OverlapFieldId, 9u);
    EXPECT_EQ(UInt32(Background::NextFieldId), 2u);
    EXPECT_EQ(UInt32(PassiveBackground::NextFieldId), 2u);
    EXPECT_EQ(SolidBackground::ClearColorFieldMask, 0x80u);
    EXPECT_EQ(UInt32(Foreground::NextFieldId), 3u);

    const FieldDescription *d =
        Viewport::getClassType().findFieldDescription("drawTime");
    ASSERT_NE(d, nullptr);
    EXPECT_TRUE(d->isInternal());

    ViewportPtr vp = Viewport::create();
    EXPECT_EQ(vp->getTravMask(), 0xFFFFFFFFu);
    EXPECT_FLOAT_EQ(vp->getRight(), 1.f);
    subRefCP(vp);

    SolidBackgroundPtr bg = SolidBackground::create();
    EXPECT_EQ(bg->getClearStencilBit(), -1);
    EXPECT_FLOAT_EQ(bg->getAlpha(), 1.f);
    EXPECT_FLOAT_EQ(bg->getDepth(), 1.f);
    EXPECT_TRUE(bg->getClearDepth());
    EXPECT_TRUE(bg->getClearColor());
    subRefCP(bg);

    PerspectiveCameraPtr cam = PerspectiveCamera::create();
    EXPECT_FLOAT_EQ(cam->getAspect(), 1.f);
    EXPECT_FLOAT_EQ(cam->getFov(), 0.f);
    subRefCP(cam);

    ShearedStereoCameraDecoratorPtr st = ShearedStereoCameraDecorator::create();
    EXPECT_FLOAT_EQ(st->getZeroParallaxDistance(), 1.f);
    EXPECT_FALSE(st->getLeftEye());
    subRefCP(st);

    // Abstract classes have no prototype; concrete ones are made by name.
    EXPECT_EQ(Window::getClassType().getPrototype(), NullFC);
    FieldContainerPtr byName =
        FieldContainerFactory::the()->createFieldContainer("EGLWindow");
    EXPECT_NE(EGLWindowPtr::dcast(byName), NullFC);
    subRefCP(byName);
}
