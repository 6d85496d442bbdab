// The GL object of a surface or curve: its own id apart from Geometry's,
// the status word (status in the low 3 bits, id above), tessellation only
// in the next frame after a change and only once, nothing for a clean
// object or for destroy statuses, and an id that the windows get back when
// the object goes, without ever calling into the dead object.
#include "NurbsTestSupport.h"

#include <OpenSG/OSGGroup.h>

using namespace nurbstest;

namespace
{

const char *const Built     = "NurbsSurface::createGeometry() called";
const char *const Compiled  = "NurbsSurface::createDList(";
const char *const CurveMade = "NurbsCurve::createGeometry() called";

class NurbsGLObjectFrame : public PixelFrame
{
  protected:
    /// Renders a frame and returns what it logged at info level and up.
    std::string infoFrame(void)
    {
        LogCapture log(LOG_INFO);
        win->render(action.get());
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
        return log.take();
    }

    /// Calls the surface's callback as the window would, context current.
    std::string callback(const NurbsSurfacePtr &s, Window::GLObjectStatusE status)
    {
        LogCapture log(LOG_INFO);
        win->activate();
        s->handleGL(win.getCPtr(), (UInt32(s->getSurfaceGLId()) << 3) | status);
        return log.take();
    }
};

} // namespace

TEST_F(NurbsGLObjectFrame, SurfaceAndCurveHaveTheirOwnIds)
{
    NurbsSurfacePtr s = flatSquare(16, 16, 48, 48);
    keep(s);
    NurbsCurvePtr c = NurbsCurve::create();
    keep(c);

    EXPECT_GT(s->getSurfaceGLId(), 0);
    EXPECT_GT(s->getGLId(), 0);
    EXPECT_NE(s->getSurfaceGLId(), s->getGLId());
    EXPECT_NE(s->getSurfaceGLId(), s->getGLId() + 1);
    EXPECT_GT(c->getSurfaceGLId(), 0);
    EXPECT_NE(c->getSurfaceGLId(), s->getSurfaceGLId());
    EXPECT_TRUE(s->getDirty());
    EXPECT_TRUE(s->getFillGeo());

    // the prototype has none
    EXPECT_EQ(NurbsSurfacePtr::dcast(NurbsSurface::getClassType().getPrototype())
                  ->getSurfaceGLId(),
              0);
}

// The word carries the status in its low three bits and the object's id
// above them: initialize makes this window's display list under that id;
// destroy, final destroy and unknown statuses do nothing.
TEST_F(NurbsGLObjectFrame, CallbackReadsTheStatusWord)
{
    NurbsSurfacePtr s = flatSquare(16, 16, 48, 48);
    keep(s);
    const UInt32 id = UInt32(s->getSurfaceGLId());

    for(Window::GLObjectStatusE st : {Window::destroy, Window::finaldestroy, Window::notused,
                                      Window::initialized})
    {
        EXPECT_EQ(callback(s, st), "");
        EXPECT_TRUE(s->getDirty());
        EXPECT_EQ(win->getGLObjectId(id), 0u);
    }

    EXPECT_EQ(count(callback(s, Window::initialize), Built), 1u);
    EXPECT_FALSE(s->getDirty());
    const UInt32 list = win->getGLObjectId(id);
    EXPECT_NE(list, 0u);
    EXPECT_TRUE(glIsList(list));

    // clean: needrefresh and reinitialize do no GLU work
    EXPECT_EQ(callback(s, Window::needrefresh), "");
    EXPECT_EQ(callback(s, Window::reinitialize), "");
    EXPECT_EQ(win->getGLObjectId(id), list);
}

// A change marks the surface dirty in changed, without any GLU work; the
// next frame tessellates once, the one after does nothing.
TEST_F(NurbsGLObjectFrame, ChangeRebuildsOnceInTheNextFrame)
{
    NurbsSurfacePtr s = flatSquare(16, 16, 48, 48);
    add(s);

    EXPECT_EQ(count(infoFrame(), Built), 1u);
    EXPECT_FALSE(s->getDirty());
    EXPECT_EQ(count(infoFrame(), Built), 0u);

    const BitVector masks[] = {
        NurbsSurface::ControlPointFieldMask,  NurbsSurface::UOrderFieldMask,
        NurbsSurface::VOrderFieldMask,        NurbsSurface::UKnotFieldMask,
        NurbsSurface::VKnotFieldMask,         NurbsSurface::UTessellationFieldMask,
        NurbsSurface::VTessellationFieldMask, NurbsSurface::UDimFieldMask,
        NurbsSurface::VDimFieldMask,          NurbsSurface::ControlTexCoordFieldMask,
        NurbsSurface::TrimmingLoopFieldMask,  NurbsSurface::FillGeoFieldMask};
    for(BitVector mask : masks)
    {
        SCOPED_TRACE(mask);
        LogCapture log(LOG_INFO);
        beginEditCP(s, mask);
        endEditCP(s, mask);
        EXPECT_TRUE(s->getDirty());
        EXPECT_EQ(count(log.take(), Built), 0u) << "no tessellation in changed";

        EXPECT_EQ(count(infoFrame(), Built), 1u);
        EXPECT_FALSE(s->getDirty());
        EXPECT_EQ(count(infoFrame(), Built), 0u);
    }

    // fields that say nothing about the surface leave it clean
    for(BitVector mask : {NurbsSurface::DirtyFieldMask, NurbsSurface::NumVerticesFieldMask,
                          NurbsSurface::SurfaceGLIdFieldMask, Geometry::MaterialFieldMask})
    {
        beginEditCP(s, mask);
        endEditCP(s, mask);
        EXPECT_FALSE(s->getDirty());
    }
    EXPECT_EQ(count(infoFrame(), Built), 0u);
}

// Display lists: compiled on the first frame and after a change, called
// in the frames between; an uncached surface compiles nothing.
TEST_F(NurbsGLObjectFrame, DisplayListIsCompiledOnlyWhenDirty)
{
    NurbsSurfacePtr s = flatSquare(16, 16, 48, 48);
    setMaterialOf(s, flatColour(Red));
    setMode(s, false, true);
    add(s);

    std::string first = infoFrame();
    EXPECT_EQ(count(first, Compiled), 1u);
    EXPECT_EQ(count(first, Built), 0u);
    EXPECT_EQ(count(infoFrame(), Compiled), 0u);
    EXPECT_EQ(px(readAll(win), 32, 32), Red);

    beginEditCP(s, NurbsSurface::UTessellationFieldMask);
    s->setUTessellation(3);
    endEditCP(s, NurbsSurface::UTessellationFieldMask);
    EXPECT_EQ(count(infoFrame(), Compiled), 1u);

    setMode(s, false, false);
    std::string uncached = infoFrame();
    EXPECT_EQ(count(uncached, Compiled), 0u);
    EXPECT_EQ(count(uncached, Built), 0u);
    EXPECT_EQ(px(readAll(win), 32, 32), Red);
}

// A loop or curve that changes doesn't make the surface dirty: only its
// own trimmingLoop field does.
TEST_F(NurbsGLObjectFrame, TrimmingChangesReachTheSurfaceOnlyThroughItsField)
{
    NurbsSurfacePtr   s     = flatSquare(16, 16, 48, 48);
    NurbsCurvePtr     outer = trimPolyline(squareLoop(0, 1, true));
    NurbsTrimmingLoopPtr loop = makeLoop({outer});
    keep(outer);
    keep(loop);
    beginEditCP(s, NurbsSurface::TrimmingLoopFieldMask);
    s->getTrimmingLoop().push_back(loop);
    endEditCP(s, NurbsSurface::TrimmingLoopFieldMask);
    add(s);
    infoFrame();
    ASSERT_FALSE(s->getDirty());

    beginEditCP(outer);
    outer->setControlPoint(squareLoop(0, 0.5f, true));
    endEditCP(outer);
    beginEditCP(loop);
    loop->setTrimOnly(false);
    endEditCP(loop);
    EXPECT_FALSE(s->getDirty());
    EXPECT_EQ(count(infoFrame(), Built), 0u);

    beginEditCP(s, NurbsSurface::TrimmingLoopFieldMask);
    endEditCP(s, NurbsSurface::TrimmingLoopFieldMask);
    EXPECT_EQ(count(infoFrame(), Built), 1u);
}

// The curve follows the same scheme, and a trimming curve in the scene
// still builds its static geometry though it is never drawn.
TEST_F(NurbsGLObjectFrame, CurveRebuildsOnceInTheNextFrame)
{
    NurbsCurvePtr c = NurbsCurve::create();
    beginEditCP(c);
    c->setControlPoint(points3({Pnt3f(10, 10, 0), Pnt3f(32, 50, 0), Pnt3f(54, 10, 0)}));
    c->setOrder(3);
    for(Real32 k : bezierKnots(3))
        c->getKnot().push_back(k);
    c->setTessellation(8);
    endEditCP(c);
    add(c);

    EXPECT_EQ(count(infoFrame(), CurveMade), 1u);
    EXPECT_EQ(count(infoFrame(), CurveMade), 0u);

    for(BitVector mask : {NurbsCurve::ControlPointFieldMask, NurbsCurve::OrderFieldMask,
                          NurbsCurve::KnotFieldMask, NurbsCurve::TessellationFieldMask,
                          NurbsCurve::ControlCurveFieldMask, NurbsCurve::FillGeoFieldMask})
    {
        beginEditCP(c, mask);
        endEditCP(c, mask);
        EXPECT_TRUE(c->getDirty());
        EXPECT_EQ(count(infoFrame(), CurveMade), 1u);
        EXPECT_FALSE(c->getDirty());
    }

    beginEditCP(c, NurbsCurve::ControlCurveFieldMask);
    c->setControlCurve(true);
    endEditCP(c, NurbsCurve::ControlCurveFieldMask);
    std::string log = infoFrame();
    EXPECT_EQ(count(log, CurveMade), 1u);
    EXPECT_GT(c->getPositions()->getSize(), 2u);
    std::vector<RGBA> img = readAll(win);
    EXPECT_EQ(std::count(img.begin(), img.end(), Grey), Size * Size);
}

// A surface that goes gives its id back; the window's end-of-frame destroy
// call finds nothing to call into, and a new surface may get the id again.
TEST_F(NurbsGLObjectFrame, DestroyedSurfaceIsNotCalledBack)
{
    NurbsSurfacePtr s = flatSquare(16, 16, 48, 48);
    setMode(s, false, true);
    NodePtr n = attach(s);
    frame();
    remove(n);

    // the destroy status arrives at the end of this frame
    frame();
    frame();

    NurbsSurfacePtr again = flatSquare(16, 16, 48, 48);
    setMaterialOf(again, flatColour(Red));
    add(again);
    std::vector<RGBA> img = shot();
    EXPECT_EQ(px(img, 32, 32), Red);
}
