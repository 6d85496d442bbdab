// The volume renderer of the main program: the phantom shows where the
// camera sees it, the sphere stands in front of the volume where it cuts
// into it, and every bad invocation ends with one line and an exit code.
#include <corvane/VolumeRenderer.h>

#include <OpenSG/OSGHeadlessGLContext.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGMatrix.h>
#include <OpenSG/OSGMatrixUtility.h>

#include <gtest/gtest.h>

#include <support/ScratchDir.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include <sys/wait.h>

using namespace osg;

namespace
{

const unsigned Size = 96;

/// One pixel of an 8-bit RGB(A) image, (0,0) bottom left.
struct Pixel
{
    int r, g, b;
};

Pixel pixelAt(const ImagePtr &image, int x, int y)
{
    const int     bpp = image->getBpp();
    const UInt8 *p   = image->getData() + (size_t(y) * image->getWidth() + x) * bpp;
    return Pixel{p[0], p[1], p[2]};
}

ImagePtr render(const corvane::VolumeRenderOptions &options)
{
    std::string error;
    if(!corvane::renderVolume(options, error))
    {
        ADD_FAILURE() << error;
        return NullFC;
    }
    ImagePtr image = Image::create();
    addRefCP(image);
    if(!image->read(options.output.c_str()) || image->getWidth() != Int32(Size))
    {
        ADD_FAILURE() << "can't read back " << options.output;
        subRefCP(image);
        return NullFC;
    }
    return image;
}

/// Where a world point lands in the renderer's picture, in pixels.
Vec2f project(const corvane::VolumeRenderOptions &o, const Pnt3f &point)
{
    const Real32 radius = o.distance * 2.f;
    const Real32 az = osgdegree2rad(o.azimuth), el = osgdegree2rad(o.elevation);
    const Pnt3f  from(radius * osgcos(el) * osgsin(az), radius * osgsin(el),
                      radius * osgcos(el) * osgcos(az));
    Matrix view, projection;
    MatrixLookAt(view, from, Pnt3f(0.f, 0.f, 0.f), Vec3f(0.f, 1.f, 0.f));
    view.invert();
    MatrixPerspective(projection, osgdegree2rad(40.f) / 2.f, 1.f, 0.1f, 50.f);
    projection.mult(view);
    Pnt3f clip;
    projection.multFullMatrixPnt(point, clip);
    return Vec2f((clip[0] + 1.f) / 2.f * Size, (clip[1] + 1.f) / 2.f * Size);
}

class VolumeRendererProgram : public ::testing::Test
{
  protected:
    /// Runs the program; its exit code, and standard error in err.
    int run(const std::string &arguments, std::string &err)
    {
        const std::string errFile = corvanetest::scratchPath("stderr.txt");
        const std::string command = std::string(CORVANE_PROGRAM) + " volume " + arguments +
                                    " > /dev/null 2> " + errFile;
        const int         status  = std::system(command.c_str());
        std::ifstream     in(errFile);
        std::stringstream text;
        text << in.rdbuf();
        err = text.str();
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    /// The program's own lines on standard error (the library's log lines
    /// may stand before them).
    static std::string ownLines(const std::string &err)
    {
        std::istringstream in(err);
        std::string        line, own;
        while(std::getline(in, line))
            if(line.compare(0, 16, "corvane volume: ") == 0)
                own += line + "\n";
        return own;
    }
};

} // namespace

TEST(VolumeRenderer, PhantomShowsAndTheSphereStandsInFrontOfIt)
{
    if(!HeadlessGLContext::isAvailable())
        GTEST_SKIP() << "no EGL context";
    corvane::VolumeRenderOptions options;
    options.width = options.height = Size;
    options.phantomSize            = 32;
    options.mesh                   = false;
    options.output                 = corvanetest::scratchPath("phantom.png");
    ImagePtr bare = render(options);
    options.mesh   = true;
    options.output = corvanetest::scratchPath("phantom-sphere.png");
    ImagePtr cut = render(options);
    ASSERT_NE(bare, NullFC);
    ASSERT_NE(cut, NullFC);

    // the background colour in the corners, the skull's bright rim on
    // the way from the centre to the border
    const Pixel corner = pixelAt(bare, 2, 2);
    EXPECT_NEAR(corner.r, 20, 2);
    EXPECT_NEAR(corner.g, 23, 2);
    EXPECT_NEAR(corner.b, 31, 2);
    int brightest = 0;
    for(unsigned x = Size / 2; x < Size; ++x)
    {
        const Pixel p = pixelAt(bare, int(x), int(Size / 2));
        brightest     = std::max(brightest, p.r + p.g + p.b);
    }
    EXPECT_GT(brightest, 3 * 100) << "the phantom shows in the middle row";

    // the sphere's centre: orange, over whatever the volume showed there
    const Vec2f at = project(options, Pnt3f(0.3f * 2.f, 0.05f, 0.3f * 2.f));
    ASSERT_GT(at[0], 0.f);
    ASSERT_LT(at[0], Real32(Size));
    const Pixel sphere = pixelAt(cut, int(at[0]), int(at[1]));
    EXPECT_GT(sphere.r, 120);
    EXPECT_GT(sphere.r, sphere.g + 30);
    EXPECT_GT(sphere.g, sphere.b);
    const Pixel under = pixelAt(bare, int(at[0]), int(at[1]));
    EXPECT_GT(std::abs(sphere.r - under.r) + std::abs(sphere.b - under.b), 60);
    // and away from the sphere the two pictures agree
    const Pixel far1 = pixelAt(bare, int(Size) - int(at[0]), int(Size) - int(at[1]));
    const Pixel far2 = pixelAt(cut, int(Size) - int(at[0]), int(Size) - int(at[1]));
    EXPECT_NEAR(far1.r, far2.r, 3);
    EXPECT_NEAR(far1.g, far2.g, 3);
    EXPECT_NEAR(far1.b, far2.b, 3);
    subRefCP(bare);
    subRefCP(cut);
}

TEST_F(VolumeRendererProgram, BadInvocationsEndWithOneLineAndAnExitCode)
{
    const std::string out     = " -o " + corvanetest::scratchPath("out.png");
    const std::string garbage = corvanetest::scratchPath("garbage.nrrd");
    std::ofstream(garbage) << "NRRD0004\ntype: what\n";
    const std::string flat = corvanetest::scratchPath("flat.png");
    {
        // a 2-D picture is no volume
        corvane::VolumeRenderOptions options;
        options.width = options.height = 8;
        options.phantomSize            = 8;
        options.output                 = flat;
        std::string error;
        if(HeadlessGLContext::isAvailable())
        {
            ASSERT_TRUE(corvane::renderVolume(options, error)) << error;
        }
    }

    struct Case
    {
        std::string arguments;
        int         code;
        std::string says;
    };
    std::vector<Case> cases = {
        {"/no/such/volume.nrrd" + out, 1, "can't read the volume '/no/such/volume.nrrd'"},
        {garbage + out, 1, "can't read the volume"},
        {"--transfer /no/such.tf --size 8 8" + out, 1, "can't read the transfer function"},
        {"--mesh /no/such/mesh.obj --size 8 8" + out, 1, "can't read the mesh '/no/such/mesh.obj'"},
        {"--mesh " + garbage + " --size 8 8" + out, 1, "can't read the mesh"},
        {"--frobnicate" + out, 2, "unknown option '--frobnicate'"},
        {"--style glossy" + out, 2, "unknown style 'glossy'"},
        {"--step -1" + out, 2, "bad step '-1'"},
        {"--step nan" + out, 2, "bad step 'nan'"},
        {"--size 0 10" + out, 2, "bad image size '0 10'"},
        {"--size 10" + out, 2, ""},
        {"--orbit x" + out, 2, "bad frame count 'x'"},
        {"--traversal sideways" + out, 2, "sideways"},
        {"--size 8 8", 2, "no output file"},
    };
    if(HeadlessGLContext::isAvailable())
        cases.push_back({flat + out, 1, "is not a 3-D volume"});

    for(const Case &c : cases)
    {
        std::string err;
        EXPECT_EQ(run(c.arguments, err), c.code) << c.arguments << "\n" << err;
        const std::string own = ownLines(err);
        EXPECT_EQ(std::count(own.begin(), own.end(), '\n'), 1) << c.arguments << "\n" << err;
        EXPECT_NE(own.find(c.says), std::string::npos) << c.arguments << "\n" << err;
    }
}
