// The main program's demo scenes, rendered headless, written by the screen
// dump foreground and read back from their PNG files.
#include <OpenSG/OSGHeadlessGLContext.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>

#include <corvane/DemoScene.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>
#include <string>
#include <support/ScratchDir.h>

using namespace osg;

namespace
{

const UInt32 W = 160, H = 120;

/// Renders a scene and reads its PNG back; NullFC when that fails.
class SceneShot
{
  public:
    explicit SceneShot(const std::string &name)
    {
        _file = corvanetest::scratchPath("demo_" + name + ".png");
        std::remove(_file.c_str());
        if(!corvane::renderDemoScene(name, _file.c_str(), W, H))
            return;
        _image = Image::create();
        addRefCP(_image);
        if(!_image->read(_file.c_str()) || _image->getWidth() != Int32(W) ||
           _image->getHeight() != Int32(H))
        {
            subRefCP(_image);
            _image = NullFC;
        }
    }
    ~SceneShot(void)
    {
        if(_image != NullFC)
            subRefCP(_image);
        std::remove(_file.c_str());
    }
    bool ok(void) const { return _image != NullFC; }

    /// r, g, b of pixel (x, y), bottom row first
    Vec3f at(UInt32 x, UInt32 y) const
    {
        const UInt32 comps = _image->getComponents();
        const UInt8 *p     = _image->getData() + (y * W + x) * comps;
        return Vec3f(p[0], p[1], p[2]);
    }

  private:
    std::string _file;
    ImagePtr    _image;
};

} // namespace

TEST(DemoScene, EverySceneRendersWithoutWarnings)
{
    if(!HeadlessGLContext::isAvailable())
        GTEST_SKIP() << "no EGL context";

    for(const std::string &name : corvane::demoSceneNames())
    {
        LogCapture log(LOG_WARNING);
        SceneShot  shot(name);
        EXPECT_TRUE(shot.ok()) << name;
        // plain log lines (SLOG) are the system's progress reports, not warnings
        std::istringstream lines(log.take());
        std::string        line, warnings;
        while(std::getline(lines, line))
            if(line.compare(0, 4, "LOG:") != 0)
                warnings += line + "\n";
        EXPECT_EQ(warnings, "") << name;
    }
}

TEST(DemoScene, UnknownScenesAndUnwritableFilesFail)
{
    if(!HeadlessGLContext::isAvailable())
        GTEST_SKIP() << "no EGL context";

    LogCapture log(LOG_WARNING);
    EXPECT_FALSE(corvane::renderDemoScene("nosuch", corvanetest::scratchPath("x.png").c_str(), W, H));
    EXPECT_NE(log.take().find("no scene named nosuch"), std::string::npos);
    EXPECT_FALSE(corvane::renderDemoScene("shaded", "/nonexistent/dir/x.png", W, H));
    EXPECT_NE(log.take().find("can't write"), std::string::npos);
}

TEST(DemoScene, ShadedSceneShowsBackgroundAndObjects)
{
    if(!HeadlessGLContext::isAvailable())
        GTEST_SKIP() << "no EGL context";

    SceneShot shot("shaded");
    ASSERT_TRUE(shot.ok());
    // the top rows show the background colour exactly
    EXPECT_EQ(shot.at(5, 115), Vec3f(31, 33, 41));
    // the torus on the right is blue, the sphere on the left warm
    Vec3f torus = shot.at(108, 75), sphere = shot.at(52, 62);
    EXPECT_GT(torus[2], torus[0] + 40);
    EXPECT_GT(sphere[0], sphere[2] + 20);
}

TEST(DemoScene, SkyDomeIsBlueAtTheZenithAndPalerLow)
{
    if(!HeadlessGLContext::isAvailable())
        GTEST_SKIP() << "no EGL context";

    SceneShot shot("sky");
    ASSERT_TRUE(shot.ok());
    Vec3f zenith = shot.at(80, 118);
    EXPECT_GT(zenith[2], zenith[0] + 60);
    // the sky brightens towards the horizon
    Vec3f low = shot.at(5, 80);
    EXPECT_GT(low[0], zenith[0]);
}

TEST(DemoScene, CalibrationDimsTheCentreAndWarmsThePanel)
{
    if(!HeadlessGLContext::isAvailable())
        GTEST_SKIP() << "no EGL context";

    SceneShot plain("shaded"), calibrated("calibrated");
    ASSERT_TRUE(plain.ok() && calibrated.ok());
    // a light floor tile near the bottom centre
    Vec3f a = plain.at(80, 8), b = calibrated.at(80, 8);
    EXPECT_LT(b[1], a[1]);
    EXPECT_GT(b[0] - b[2], a[0] - a[2]);
}

TEST(DemoScene, HeadMountedPairIsWarpedPerEye)
{
    if(!HeadlessGLContext::isAvailable())
        GTEST_SKIP() << "no EGL context";

    SceneShot shot("hmd");
    ASSERT_TRUE(shot.ok());
    // the lens warp leaves the outer corners of each eye black
    EXPECT_EQ(shot.at(0, 0), Vec3f(0, 0, 0));
    EXPECT_EQ(shot.at(W - 1, H - 1), Vec3f(0, 0, 0));
    EXPECT_EQ(shot.at(W / 2 - 1, 0), Vec3f(0, 0, 0));
    // while the lens centres see the scene
    EXPECT_NE(shot.at(W / 4, H / 2), Vec3f(0, 0, 0));
    EXPECT_NE(shot.at(3 * W / 4, H / 2), Vec3f(0, 0, 0));
}
