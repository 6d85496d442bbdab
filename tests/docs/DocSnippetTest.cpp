// The code snippets of the usage pages (docs/usage/*.md): each one, compiled
// from the page by extract_snippets.py, runs in a fresh headless window. It
// must log no warning or error, neither while it builds its objects nor in
// the three frames rendered after it, and leave no GL error. A snippet that
// gave the scene something to draw (children under root, another port, a
// background or foregrounds on the viewport) must change a pixel of the
// black frame. With DOCSNIPPET_PNG_DIR set, the last frame of each snippet
// is written there as <page>_<n>.png.
#include "DocSnippetScene.h"

#include "support/ScratchDir.h"

#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGHeadlessGLContext.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGPNGCodec.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTransform.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

OSG_USING_NAMESPACE

namespace
{

const UInt16 SnippetWidth  = 96;
const UInt16 SnippetHeight = 72;

/// The lines of a captured log at warning level and above (the volume
/// code reports its loads at the always-on level).
std::string warningsIn(const std::string &text)
{
    std::istringstream lines(text);
    std::string        line, found;
    while(std::getline(lines, line))
    {
        if(line.compare(0, 7, "WARNING") == 0 || line.compare(0, 5, "FATAL") == 0)
            found += line + "\n";
    }
    return found;
}

std::vector<std::string> snippetNames(void)
{
    std::vector<std::string> names;
    for(const docsnippets::Snippet *s = docsnippets::snippets; s->name != nullptr; ++s)
        names.push_back(s->name);
    return names;
}

class DocSnippet : public ::testing::TestWithParam<std::string>
{
  protected:
    void SetUp(void) override
    {
        if(!HeadlessGLContext::isAvailable())
            GTEST_SKIP() << "no EGL context on this machine";

        EGLWindowPtr win = EGLWindow::create();
        addRefCP(win);
        beginEditCP(win);
        win->setSize(SnippetWidth, SnippetHeight);
        endEditCP(win);
        win->init();
        ASSERT_TRUE(win->isInitialized());
        scene.window = win;

        NodePtr beacon = Node::create();
        beginEditCP(beacon);
        TransformPtr view = Transform::create();
        beginEditCP(view);
        MatrixLookAt(view->editMatrix(), Pnt3f(0.f, 0.f, 6.f), Pnt3f(0.f, 0.f, 0.f),
                     Vec3f(0.f, 1.f, 0.f));
        endEditCP(view);
        beacon->setCore(view);
        endEditCP(beacon);

        DirectionalLightPtr light = DirectionalLight::create();
        beginEditCP(light);
        light->setDirection(Vec3f(0.f, 0.f, 1.f));
        light->setBeacon(beacon);
        endEditCP(light);

        scene.root = Node::create();
        addRefCP(scene.root);
        beginEditCP(scene.root);
        scene.root->setCore(light);
        scene.root->addChild(beacon);
        endEditCP(scene.root);

        scene.camera = PerspectiveCamera::create();
        addRefCP(scene.camera);
        beginEditCP(scene.camera);
        scene.camera->setBeacon(beacon);
        scene.camera->setFov(osgdegree2rad(40.f));
        scene.camera->setNear(0.1f);
        scene.camera->setFar(50.f);
        endEditCP(scene.camera);

        _background = SolidBackground::create();
        addRefCP(_background);
        beginEditCP(_background);
        _background->setColor(Color3f(0.f, 0.f, 0.f));
        endEditCP(_background);

        scene.viewport = Viewport::create();
        addRefCP(scene.viewport);
        beginEditCP(scene.viewport);
        scene.viewport->setSize(0.f, 0.f, 1.f, 1.f);
        scene.viewport->setCamera(scene.camera);
        scene.viewport->setRoot(scene.root);
        scene.viewport->setBackground(_background);
        endEditCP(scene.viewport);

        beginEditCP(win, Window::PortFieldMask);
        win->addPort(scene.viewport);
        endEditCP(win, Window::PortFieldMask);

        scene.dataDir    = CORVANE_DATA_DIR;
        scene.scratchDir = corvanetest::scratchDir();
    }

    void TearDown(void) override
    {
        if(scene.window == NullFC)
            return;
        beginEditCP(scene.window, Window::PortFieldMask);
        while(!scene.window->getPort().empty())
            scene.window->subPort(UInt32(0));
        endEditCP(scene.window, Window::PortFieldMask);
        subRefCP(scene.viewport);
        subRefCP(_background);
        subRefCP(scene.camera);
        subRefCP(scene.root);
        subRefCP(scene.window);
    }

    /// Whether the snippet gave the frame anything to show.
    bool drawsSomething(void) const
    {
        return scene.root->getNChildren() > 1 || scene.window->getPort().size() > 1 ||
               scene.viewport->getBackground() != _background ||
               !scene.viewport->getForegrounds().empty();
    }

    docsnippets::Scene  scene;
    SolidBackgroundPtr  _background;
};

TEST_P(DocSnippet, RunsWithoutWarningsAndDraws)
{
    const docsnippets::Snippet *snippet = docsnippets::snippets;
    while(snippet->name != nullptr && GetParam() != snippet->name)
        ++snippet;
    ASSERT_NE(snippet->name, nullptr);

    {
        LogCapture log(LOG_WARNING);
        snippet->run(scene);
        EXPECT_EQ(warningsIn(log.take()), "") << "while building";
    }

    std::unique_ptr<RenderAction> action(RenderAction::create());
    std::vector<UInt8>            pixels(size_t(SnippetWidth) * SnippetHeight * 4);
    for(int frame = 0; frame < 3; ++frame)
    {
        LogCapture log(LOG_WARNING);
        scene.window->render(action.get());
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR)) << "frame " << frame;
        EXPECT_EQ(warningsIn(log.take()), "") << "frame " << frame;
    }
    ASSERT_TRUE(scene.window->readPixels(0, 0, SnippetWidth, SnippetHeight, GL_RGBA,
                                         GL_UNSIGNED_BYTE, pixels.data()));

    if(const char *dir = std::getenv("DOCSNIPPET_PNG_DIR"))
    {
        PNGPixels png;
        png.width    = SnippetWidth;
        png.height   = SnippetHeight;
        png.channels = 4;
        png.bitDepth = 8;
        png.data     = pixels;
        writePNGFile((std::string(dir) + "/" + GetParam() + ".png").c_str(), png);
    }

    if(drawsSomething())
    {
        size_t lit = 0;
        for(size_t i = 0; i < pixels.size(); i += 4)
            lit += (pixels[i] | pixels[i + 1] | pixels[i + 2]) != 0;
        EXPECT_GT(lit, 0u) << "the frame stayed black";
    }
}

INSTANTIATE_TEST_SUITE_P(Pages, DocSnippet, ::testing::ValuesIn(snippetNames()),
                         [](const ::testing::TestParamInfo<std::string> &info) {
                             return info.param;
                         });

} // namespace
