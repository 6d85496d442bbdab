// The main program's demo scene, rendered headless and read back from its PNG.
#include <OpenSG/OSGHeadlessGLContext.h>
#include <OpenSG/OSGImage.h>

#include <corvane/DemoScene.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

using namespace osg;

TEST(DemoScene, RendersTheShadedSceneToPNG)
{
    if(!HeadlessGLContext::isAvailable())
        GTEST_SKIP() << "no EGL context";

    const std::string file = ::testing::TempDir() + "corvane_demo_scene.png";
    ASSERT_TRUE(corvane::renderShadedScene(file.c_str(), 160, 120));

    ImagePtr image = Image::create();
    addRefCP(image);
    ASSERT_TRUE(image->read(file.c_str()));
    ASSERT_EQ(160, image->getWidth());
    ASSERT_EQ(120, image->getHeight());
    const UInt32 comps = image->getComponents();
    auto at = [&](int x, int y) { return image->getData() + (y * 160 + x) * comps; };

    // the top rows show the background colour exactly
    const UInt8 *sky = at(5, 115);
    EXPECT_EQ(31, sky[0]);
    EXPECT_EQ(33, sky[1]);
    EXPECT_EQ(41, sky[2]);
    // the torus on the right is blue, the sphere on the left warm
    const UInt8 *torus = at(108, 75);
    EXPECT_GT(torus[2], torus[0] + 40);
    const UInt8 *sphere = at(52, 62);
    EXPECT_GT(sphere[0], sphere[2] + 20);
    subRefCP(image);
    std::remove(file.c_str());
}
