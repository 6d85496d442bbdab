#include "StateGLSupport.h"

namespace statetest
{

namespace
{
EGLWindowPtr theWindow;
DrawAction  *theAction = NULL;
bool         tried     = false;

/// Releases the window before the system shuts down.
class WindowEnvironment : public ::testing::Environment
{
  public:
    void TearDown(void) override
    {
        delete theAction;
        theAction = NULL;
        if(theWindow != NullFC)
        {
            EGLWindowPtr w = theWindow;
            theWindow      = NullFC;
            subRefCP(w);
        }
    }
};

[[maybe_unused]] ::testing::Environment *const environment =
    ::testing::AddGlobalTestEnvironment(new WindowEnvironment);
} // namespace

EGLWindowPtr sharedWindow(void)
{
    if(tried)
        return theWindow;
    tried = true;

    if(!HeadlessGLContext::isAvailable())
        return NullFC;

    EGLWindowPtr win = EGLWindow::create();
    addRefCP(win);
    beginEditCP(win);
    win->setSize(GLTest::Size, GLTest::Size);
    endEditCP(win);
    win->init();
    if(!win->isInitialized())
    {
        subRefCP(win);
        return NullFC;
    }

    theWindow = win;
    theAction = DrawAction::create();
    theAction->setWindow(win.getCPtr());
    return theWindow;
}

DrawAction *sharedAction(void)
{
    sharedWindow();
    return theAction;
}

void GLTest::SetUp(void)
{
    win = sharedWindow();
    if(win == NullFC)
        GTEST_SKIP() << "no desktop OpenGL context on this machine";

    action = sharedAction();

    win->activate();
    win->frameInit();
    takeGLError();

    glViewport(0, 0, Size, Size);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glDisable(GL_LIGHTING);
    glDisable(GL_DEPTH_TEST);
    glColor4f(1, 1, 1, 1);
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

void GLTest::TearDown(void)
{
    if(win == NullFC)
        return;
    EXPECT_EQ(takeGLError(), GLenum(GL_NO_ERROR));
    win->frameExit();
    EXPECT_EQ(takeGLError(), GLenum(GL_NO_ERROR));
    glEnable(GL_DEPTH_TEST);
}

void GLTest::drawQuad(Real32 x0, Real32 y0, Real32 x1, Real32 y1, Real32 s0, Real32 t0,
                      Real32 s1, Real32 t1)
{
    glBegin(GL_QUADS);
    glNormal3f(0, 0, 1);
    glTexCoord2f(s0, t0);
    glVertex2f(x0, y0);
    glTexCoord2f(s1, t0);
    glVertex2f(x1, y0);
    glTexCoord2f(s1, t1);
    glVertex2f(x1, y1);
    glTexCoord2f(s0, t1);
    glVertex2f(x0, y1);
    glEnd();
}

RGBA GLTest::pixel(UInt32 x, UInt32 y)
{
    RGBA c = {0, 0, 0, 0};
    EXPECT_TRUE(win->readPixels(x, y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, &c));
    return c;
}

std::vector<RGBA> GLTest::pixels(void)
{
    std::vector<RGBA> px(Size * Size);
    EXPECT_TRUE(win->readPixels(0, 0, Size, Size, GL_RGBA, GL_UNSIGNED_BYTE, px.data()));
    return px;
}

void GLTest::writePNG(const std::string &name)
{
    std::vector<RGBA> px = pixels();
    PNGPixels         png;
    png.width    = Size;
    png.height   = Size;
    png.channels = 4;
    png.bitDepth = 8;
    png.data.assign(reinterpret_cast<const UInt8 *>(px.data()),
                    reinterpret_cast<const UInt8 *>(px.data() + px.size()));
    writePNGFile(("/tmp/corvane_state_" + name + ".png").c_str(), png);
}

GLenum GLTest::takeGLError(void)
{
    GLenum first = GL_NO_ERROR;
    for(int i = 0; i < 32; ++i)
    {
        GLenum e = glGetError();
        if(e == GL_NO_ERROR)
            break;
        if(first == GL_NO_ERROR)
            first = e;
    }
    return first;
}

} // namespace statetest
