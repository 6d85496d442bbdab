// The GL-object registry (what each validation reports, per window, and when
// destroy callbacks run) and the extension/function registry, on real EGL
// windows.
#include "WindowTestSupport.h"

#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGRecordingTestForeground.h>
#include <OpenSG/OSGWindow.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

using namespace osg;
using namespace wintest;

namespace
{

struct Call
{
    Window *win;
    UInt32  id;
    UInt32  status;

    bool operator==(const Call &o) const
    {
        return win == o.win && id == o.id && status == o.status;
    }
};

std::ostream &operator<<(std::ostream &os, const Call &c)
{
    return os << "(" << static_cast<void *>(c.win) << ", " << c.id << ", "
              << c.status << ")";
}

// Records every callback with its unpacked id and status; on initialize it
// makes a real texture in the window's context, on destroy it deletes it.
struct Recorder
{
    std::vector<Call> calls;

    Window::GLObjectFunctor functor(void)
    {
        return Window::GLObjectFunctor([this](Window *win, UInt32 idstatus) {
            UInt32                  id;
            Window::GLObjectStatusE status;
            Window::unpackIdStatus(idstatus, id, status);
            calls.push_back(Call{win, id, UInt32(status)});

            if(status == Window::initialize)
            {
                GLuint tex = 0;
                glGenTextures(1, &tex);
                glBindTexture(GL_TEXTURE_2D, tex);
                glBindTexture(GL_TEXTURE_2D, 0);
                win->setGLObjectId(id, tex);
            }
            else if(status == Window::destroy)
            {
                GLuint tex = win->getGLObjectId(id);
                glDeleteTextures(1, &tex);
            }
        });
    }

    std::vector<Call> take(void)
    {
        std::vector<Call> c;
        c.swap(calls);
        return c;
    }
};

class GLObjectRegistryTest : public ::testing::Test
{
  protected:
    void SetUp(void) override
    {
        win = makeWindow(8, 8);
        if(win == NullFC)
            GTEST_SKIP() << "no EGL context on this machine";
        w = win.getCPtr();
    }

    void TearDown(void) override
    {
        if(win != NullFC)
        {
            EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
            subRefCP(win);
        }
    }

    EGLWindowPtr win;
    Window      *w = nullptr;
};

} // namespace

TEST(GLObjectStatusTest, PackingKeepsIdAboveThreeStatusBits)
{
    UInt32                  id;
    Window::GLObjectStatusE status;

    Window::unpackIdStatus((1234u << 3) | 6u, id, status);
    EXPECT_EQ(id, 1234u);
    EXPECT_EQ(status, Window::destroy);

    EXPECT_EQ(Window::statusShift, 3);
    EXPECT_EQ(Window::statusMask, 7);
    EXPECT_EQ(UInt32(Window::invalidExtensionID), 0x7FFFFFFFu);
}

TEST_F(GLObjectRegistryTest, ValidateReportsEachChangeOnce)
{
    Recorder     rec;
    const UInt32 id = Window::registerGLObject(rec.functor(), 1);
    ASSERT_GT(id, 0u);
    ASSERT_LT(id, Window::getGLObjectsSize());

    // A refresh before the first validation still gives initialize.
    Window::refreshGLObject(id);

    w->validateGLObject(id);
    EXPECT_EQ(rec.take(), std::vector<Call>({{w, id, Window::initialize}}));
    const UInt32 tex = w->getGLObjectId(id);
    EXPECT_NE(tex, 0u);
    EXPECT_TRUE(glIsTexture(tex));

    w->validateGLObject(id);
    EXPECT_TRUE(rec.take().empty());

    Window::refreshGLObject(id);
    w->validateGLObject(id);
    w->validateGLObject(id);
    EXPECT_EQ(rec.take(), std::vector<Call>({{w, id, Window::needrefresh}}));

    Window::reinitializeGLObject(id);
    Window::refreshGLObject(id);
    w->validateGLObject(id);
    w->validateGLObject(id);
    EXPECT_EQ(rec.take(), std::vector<Call>({{w, id, Window::reinitialize}}));

    // Destruction waits for the end of the window's frame.
    Window::destroyGLObject(id, 1);
    EXPECT_TRUE(rec.take().empty());
    w->frameExit();
    EXPECT_EQ(rec.take(), std::vector<Call>({{w, id, Window::destroy},
                                             {w, id, Window::finaldestroy}}));
    EXPECT_FALSE(glIsTexture(tex));
    EXPECT_EQ(w->getGLObjectId(id), 0u);

    LogCapture log(LOG_WARNING);
    w->validateGLObject(id);
    EXPECT_NE(log.take().find("Window::validateGLObject: obj with id " +
                              std::to_string(id) + " is NULL!"),
              std::string::npos);
    EXPECT_TRUE(rec.take().empty());
}

TEST_F(GLObjectRegistryTest, IdZeroIsRefused)
{
    LogCapture log(LOG_WARNING);

    w->validateGLObject(0);
    Window::refreshGLObject(0);
    Window::reinitializeGLObject(0);

    const std::string text = log.take();
    EXPECT_NE(text.find("Window::validateGLObject: id is 0!"), std::string::npos);
    EXPECT_NE(text.find("Window::refreshGLObject: id is 0!"), std::string::npos);
    EXPECT_NE(text.find("Window::reinitializeGLObject: id is 0!"),
              std::string::npos);
}

TEST_F(GLObjectRegistryTest, BlocksShareOneFunctorAndOneDestroy)
{
    Recorder     rec;
    const UInt32 id = Window::registerGLObject(rec.functor(), 3);

    for(UInt32 i = id; i < id + 3; ++i)
        w->validateGLObject(i);
    EXPECT_EQ(rec.take(), std::vector<Call>({{w, id, Window::initialize},
                                             {w, id + 1, Window::initialize},
                                             {w, id + 2, Window::initialize}}));

    // Each id of the block has its own GL name in the window.
    EXPECT_NE(w->getGLObjectId(id), w->getGLObjectId(id + 2));

    // One destroy for the whole block, with its first id.
    Window::destroyGLObject(id, 3);
    w->frameExit();
    std::vector<Call> calls = rec.take();
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0], (Call{w, id, Window::destroy}));
    EXPECT_EQ(calls[1], (Call{w, id, Window::finaldestroy}));
}

TEST_F(GLObjectRegistryTest, EveryWindowDestroysItsOwnAndTheLastOneFinally)
{
    EGLWindowPtr second = makeWindow(4, 4);
    ASSERT_NE(second, NullFC);
    Window *w2 = second.getCPtr();

    Recorder     rec;
    const UInt32 id = Window::registerGLObject(rec.functor(), 1);
    const UInt32 unused = Window::registerGLObject(rec.functor(), 1);

    w->activate();
    w->validateGLObject(id);
    w2->activate();
    w2->validateGLObject(id);
    EXPECT_EQ(rec.take(), std::vector<Call>({{w, id, Window::initialize},
                                             {w2, id, Window::initialize}}));

    // The second window keeps GL names of its own.
    EXPECT_NE(w2->getGLObjectId(id), 0u);

    // A refresh reaches both windows.
    Window::refreshGLObject(id);
    w2->validateGLObject(id);
    w->activate();
    w->validateGLObject(id);
    EXPECT_EQ(rec.take(), std::vector<Call>({{w2, id, Window::needrefresh},
                                             {w, id, Window::needrefresh}}));

    // Reinitialisation skips windows that never initialised the object.
    EGLWindowPtr third = makeWindow(2, 2);
    ASSERT_NE(third, NullFC);
    Window::reinitializeGLObject(id);
    third->validateGLObject(id);
    EXPECT_EQ(rec.take(),
              std::vector<Call>({{third.getCPtr(), id, Window::initialize}}));

    Window::destroyGLObject(id, 1);

    w->activate();
    w->frameExit();
    EXPECT_EQ(rec.take(), std::vector<Call>({{w, id, Window::destroy}}));

    w2->activate();
    w2->frameExit();
    EXPECT_EQ(rec.take(), std::vector<Call>({{w2, id, Window::destroy}}));

    third->activate();
    third->frameExit();
    EXPECT_EQ(rec.take(),
              std::vector<Call>({{third.getCPtr(), id, Window::destroy},
                                 {third.getCPtr(), id, Window::finaldestroy}}));

    // Never initialised anywhere: freed at once, without callbacks.
    Window::destroyGLObject(unused, 1);
    w->activate();
    w->frameExit();
    EXPECT_TRUE(rec.take().empty());

    subRefCP(third);
    subRefCP(second);
    w->activate();
}

TEST_F(GLObjectRegistryTest, ClosingAWindowReleasesItsShareWithoutCallbacks)
{
    EGLWindowPtr second = makeWindow(4, 4);
    ASSERT_NE(second, NullFC);

    Recorder     rec;
    const UInt32 id = Window::registerGLObject(rec.functor(), 1);

    second->validateGLObject(id);
    w->activate();
    w->validateGLObject(id);
    rec.take();

    subRefCP(second);
    EXPECT_TRUE(rec.take().empty());

    // Only this window is left holding the object: it destroys finally.
    Window::destroyGLObject(id, 1);
    w->frameExit();
    EXPECT_EQ(rec.take(), std::vector<Call>({{w, id, Window::destroy},
                                             {w, id, Window::finaldestroy}}));
}

TEST_F(GLObjectRegistryTest, BoundContainerFunctorAndWindowsMadeLater)
{
    RecordingTestForegroundPtr owner = RecordingTestForeground::create();
    addRefCP(owner);

    const UInt32 id = Window::registerGLObject(
        osgTypedMethodVoidFunctor2ObjCPtrPtr<RecordingTestForegroundPtr, Window,
                                             UInt32>(
            owner, &RecordingTestForeground::handleGL),
        1);

    // A window made after the registration knows the object too.
    EGLWindowPtr later = makeWindow(4, 4);
    ASSERT_NE(later, NullFC);
    later->validateGLObject(id);

    ASSERT_EQ(owner->glCalls.size(), 1u);
    EXPECT_EQ(owner->glCalls[0].win, later.getCPtr());
    EXPECT_EQ(owner->glCalls[0].id, id);
    EXPECT_EQ(owner->glCalls[0].status, UInt32(Window::initialize));

    // GL names are per window; unknown ids read as 0.
    later->setGLObjectId(id, 77);
    EXPECT_EQ(later->getGLObjectId(id), 77u);
    EXPECT_EQ(w->getGLObjectId(id), 0u);
    EXPECT_EQ(w->getGLObjectId(100000), 0u);

    {
        LogCapture log(LOG_WARNING);
        later->setGLObjectId(100000, 1);
        EXPECT_NE(log.take().find("Window::setGLObjectId: id (100000) is not "
                                  "valid!"),
                  std::string::npos);
    }

    Window::destroyGLObject(id, 1);
    later->frameExit();
    ASSERT_EQ(owner->glCalls.size(), 3u);
    EXPECT_EQ(owner->glCalls[2].status, UInt32(Window::finaldestroy));

    subRefCP(later);
    subRefCP(owner);
    w->activate();
}

// --- extensions and functions -----------------------------------------------

class ExtensionRegistryTest : public GLObjectRegistryTest
{
};

TEST_F(ExtensionRegistryTest, ExtensionsByIdAndByName)
{
    const UInt32 vbo = Window::registerExtension("GL_ARB_vertex_buffer_object");
    EXPECT_EQ(Window::registerExtension("GL_ARB_vertex_buffer_object"), vbo);
    EXPECT_EQ(Window::getExtensionId("GL_ARB_vertex_buffer_object"), Int32(vbo));
    EXPECT_EQ(Window::registerExtension(NULL), 0xFFFFFFFFu);
    EXPECT_EQ(Window::getExtensionId("GL_CORVANE_never_registered"), -1);

    const UInt32 bogus = Window::registerExtension("GL_CORVANE_no_such_thing");

    // Registered after the window's last frameInit: not known yet.
    {
        LogCapture log(LOG_WARNING);
        EXPECT_FALSE(w->hasExtension(bogus));
        EXPECT_NE(log.take().find("Extension id [" + std::to_string(bogus) +
                                  "] out-of-range!"),
                  std::string::npos);
        EXPECT_FALSE(w->hasExtension(UInt32(Window::invalidExtensionID)));
    }

    w->frameInit();

    EXPECT_GE(w->getGLVersion(), 0x0201u);
    EXPECT_TRUE(w->hasExtension("GL_ARB_vertex_buffer_object"));
    EXPECT_TRUE(w->hasExtension(vbo));
    EXPECT_TRUE(Window::hasCommonExtension(vbo));
    EXPECT_FALSE(w->hasExtension(bogus));
    EXPECT_FALSE(Window::hasCommonExtension(bogus));

    const std::vector<std::string> &ext = w->getExtensions();
    EXPECT_TRUE(std::is_sorted(ext.begin(), ext.end()));
    EXPECT_TRUE(std::binary_search(ext.begin(), ext.end(),
                                   "GL_ARB_vertex_buffer_object"));
}

TEST_F(ExtensionRegistryTest, IgnoredExtensionsAreGoneEverywhere)
{
    // Ignoring lasts for the process: one that nothing else here uses.
    const char  *name = "GL_ARB_conditional_render_inverted";
    const UInt32 id   = Window::registerExtension(name);
    w->frameInit();
    ASSERT_TRUE(w->hasExtension(id));

    Window::ignoreExtensions(
        "GL_CORVANE_x, GL_ARB_conditional_render_inverted.GL_CORVANE_y");

    EXPECT_FALSE(w->hasExtension(id));
    EXPECT_FALSE(w->hasExtension(name));
    EXPECT_FALSE(Window::hasCommonExtension(id));

    const std::vector<std::string> &ign = Window::getIgnoredExtensions();
    EXPECT_TRUE(std::is_sorted(ign.begin(), ign.end()));
    EXPECT_TRUE(std::binary_search(ign.begin(), ign.end(), "GL_CORVANE_y"));

    // A window that comes up afterwards does not see it either.
    EGLWindowPtr later = makeWindow(2, 2);
    ASSERT_NE(later, NullFC);
    EXPECT_FALSE(later->hasExtension(id));
    EXPECT_FALSE(later->hasExtension(name));
    subRefCP(later);
    w->activate();
}

TEST_F(ExtensionRegistryTest, FunctionsLoadByExtensionOrVersion)
{
    const Int32 bogusExt =
        Int32(Window::registerExtension("GL_CORVANE_fake_buffers"));

    const UInt32 gen  = Window::registerFunction("glGenBuffers", -1);
    const UInt32 is   = Window::registerFunction("glIsBuffer", bogusExt, 0x0105);
    const UInt32 del  = Window::registerFunction("glDeleteBuffers", bogusExt);
    const UInt32 bind = Window::registerFunction("glBindBuffer", bogusExt, 0x0105);
    EXPECT_EQ(Window::registerFunction("glGenBuffers", 5, 0), gen);
    EXPECT_EQ(Window::registerFunction(NULL), 0xFFFFFFFFu);

    w->frameInit();

    typedef void (*GenBuffersF)(GLsizei, GLuint *);
    typedef GLboolean (*IsBufferF)(GLuint);
    typedef void (*BindBufferF)(GLenum, GLuint);

    GenBuffersF genBuffers = reinterpret_cast<GenBuffersF>(w->getFunction(gen));
    IsBufferF   isBuffer   = reinterpret_cast<IsBufferF>(w->getFunction(is));
    BindBufferF bindBuffer = reinterpret_cast<BindBufferF>(w->getFunction(bind));
    ASSERT_NE(genBuffers, nullptr);
    ASSERT_NE(isBuffer, nullptr);
    ASSERT_NE(bindBuffer, nullptr);

    GLuint buffer = 0;
    genBuffers(1, &buffer);
    EXPECT_NE(buffer, 0u);
    bindBuffer(GL_ARRAY_BUFFER, buffer);
    bindBuffer(GL_ARRAY_BUFFER, 0);
    EXPECT_TRUE(isBuffer(buffer));

    typedef void (*DeleteBuffersF)(GLsizei, const GLuint *);
    reinterpret_cast<DeleteBuffersF>(w->getFunctionByName("glDeleteBuffers"))(
        1, &buffer);

    // 0xFFFF: only with the extension, which this context lacks.
    {
        LogCapture log(LOG_INFO);
        EXPECT_EQ(w->getFunction(del), nullptr);
        EXPECT_NE(log.take().find("Window::getFunction: function "
                                  "\"glDeleteBuffers\" is NULL!"),
                  std::string::npos);

        EXPECT_EQ(w->getFunction(UInt32(Window::invalidFunctionID)), nullptr);
        EXPECT_NE(log.take().find("Window::getFunction: illegal id"),
                  std::string::npos);
    }

    // Registered after the last frameInit: usable after the next one.
    const UInt32 late = Window::registerFunction("glBufferData", -1);
    EXPECT_EQ(w->getFunctionNoCheck(gen), reinterpret_cast<Window::GLExtensionFunction>(genBuffers));
    {
        LogCapture log(LOG_INFO);
        EXPECT_EQ(w->getFunction(late), nullptr);
    }
    w->frameInit();
    EXPECT_NE(w->getFunction(late), nullptr);
}

TEST_F(ExtensionRegistryTest, FrameInitMakesTheContextReadyBeforeAnyFrame)
{
    // The context is not current when an owner registers in the middle of
    // things; frameInit alone must make the new entry points usable.
    win->deactivate();
    ASSERT_FALSE(win->getContext()->isCurrent());

    const UInt32 fn = Window::registerFunction("glGetStringi", -1);
    Window::registerConstant(GL_MAX_TEXTURE_SIZE);

    win->frameInit();
    EXPECT_TRUE(win->getContext()->isCurrent());

    typedef const GLubyte *(*GetStringiF)(GLenum, GLuint);
    GetStringiF getStringi = reinterpret_cast<GetStringiF>(w->getFunction(fn));
    ASSERT_NE(getStringi, nullptr);
    EXPECT_NE(getStringi(GL_EXTENSIONS, 0), nullptr);

    EXPECT_GE(w->getConstantValue(GL_MAX_TEXTURE_SIZE), 64.f);
    EXPECT_TRUE(std::isinf(w->getConstantValue(GL_MAX_3D_TEXTURE_SIZE)));
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}
