// The interactive viewer of the main program, started as a program on an X
// display and driven by synthetic input (xdotool): keys switch the shading
// style and the traversal, a drag turns the camera, p writes the window as
// PNG, q ends it; every bad invocation ends with one line and an exit code.
#include <OpenSG/OSGImage.h>

#include <gtest/gtest.h>

#include <support/ScratchDir.h>
#include <support/XDisplay.h>

#include <chrono>
#include <cmath>
#include <functional>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace osg;

namespace
{

const int W = 160, H = 120;

std::string readFile(const std::string &name)
{
    std::ifstream     in(name);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

/// Runs a shell command; its standard output.
std::string capture(const std::string &command)
{
    std::string out;
    if(FILE *pipe = popen(command.c_str(), "r"))
    {
        char buffer[256];
        while(fgets(buffer, sizeof(buffer), pipe) != NULL)
            out += buffer;
        pclose(pipe);
    }
    return out;
}

/// Counts the times text occurs in what the viewer printed so far.
int occurrences(const std::string &file, const std::string &text)
{
    const std::string all = readFile(file);
    int               n   = 0;
    for(size_t at = all.find(text); at != std::string::npos; at = all.find(text, at + 1))
        ++n;
    return n;
}

bool waitFor(const std::function<bool()> &done, int seconds = 60)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    while(std::chrono::steady_clock::now() < end)
    {
        if(done())
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return done();
}

/// The viewer running as a child process, its output in files.
class ViewerProgram
{
  public:
    explicit ViewerProgram(const std::string &arguments)
        : out(corvanetest::scratchPath("view-out.txt")),
          err(corvanetest::scratchPath("view-err.txt"))
    {
        const std::string command =
            std::string("exec ") + CORVANE_PROGRAM + " view " + arguments + " > " + out + " 2> " + err;
        _pid = fork();
        if(_pid == 0)
        {
            execl("/bin/sh", "sh", "-c", command.c_str(), (char *)NULL);
            _exit(127);
        }
    }
    ~ViewerProgram(void)
    {
        if(_pid > 0 && !_exited)
        {
            kill(_pid, SIGKILL);
            waitpid(_pid, NULL, 0);
        }
    }
    /// The X window of the viewer, 0 when none appeared in time.
    unsigned long window(void)
    {
        const std::string id =
            capture("timeout 60 xdotool search --sync --onlyvisible --name '^corvane view$' 2>/dev/null");
        return std::strtoul(id.c_str(), NULL, 10);
    }
    /// The exit code, -1 when the program did not end in time.
    int wait(int seconds = 60)
    {
        int  status = 0;
        bool ended  = waitFor(
            [&] {
                if(_exited)
                    return true;
                if(waitpid(_pid, &status, WNOHANG) == _pid)
                {
                    _exited = true;
                    _status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
                }
                return _exited;
            },
            seconds);
        return ended ? _status : -1;
    }

    const std::string out, err;

  private:
    pid_t _pid    = -1;
    bool  _exited = false;
    int   _status = -1;
};

void xdotool(const std::string &arguments)
{
    const std::string command = "xdotool " + arguments;
    ASSERT_EQ(std::system(command.c_str()), 0) << command;
}

/// Share of pixels brighter than the black background.
double litShare(const ImagePtr &image)
{
    const int   bpp = image->getBpp();
    const UInt8 *p  = image->getData();
    int          lit = 0;
    for(int i = 0; i < image->getWidth() * image->getHeight(); ++i)
        lit += p[i * bpp] + p[i * bpp + 1] + p[i * bpp + 2] > 30;
    return double(lit) / (image->getWidth() * image->getHeight());
}

double meanDifference(const ImagePtr &a, const ImagePtr &b)
{
    const int bpp = a->getBpp();
    double    sum = 0;
    for(int i = 0; i < a->getWidth() * a->getHeight() * bpp; ++i)
        sum += std::abs(int(a->getData()[i]) - int(b->getData()[i]));
    return sum / (a->getWidth() * a->getHeight() * bpp);
}

ImagePtr readPicture(const std::string &file)
{
    ImagePtr image = Image::create();
    addRefCP(image);
    if(!image->read(file.c_str()))
    {
        ADD_FAILURE() << "can't read " << file;
        subRefCP(image);
        return NullFC;
    }
    return image;
}

class ViewerTest : public ::testing::Test
{
  protected:
    void SetUp(void) override
    {
        const std::string &why = corvanetest::ensureXDisplay();
        ASSERT_EQ(why, "") << why;
    }
};

} // namespace

// The phantom and the sphere show; 3 switches to MIP and t to block
// skipping, each acknowledged; a drag with the left button turns the
// picture; p writes the window, q ends the program with frame times.
TEST_F(ViewerTest, KeysAndMouseDriveTheView)
{
    const std::string shot = corvanetest::scratchPath("view.png");
    const std::string size = std::to_string(W) + " " + std::to_string(H);
    ViewerProgram     viewer("--size " + size + " --shot " + shot);
    const unsigned long id = viewer.window();
    ASSERT_NE(id, 0u) << readFile(viewer.err);
    const std::string win = std::to_string(id);

    // keys go to the window under the pointer
    xdotool("mousemove --window " + win + " 5 5");
    xdotool("key 3 t");
    ASSERT_TRUE(waitFor([&] { return occurrences(viewer.out, "traversal: skipping") == 1; }))
        << readFile(viewer.out) << readFile(viewer.err);
    EXPECT_EQ(occurrences(viewer.out, "style: mip"), 1);

    xdotool("key p");
    ASSERT_TRUE(waitFor([&] { return occurrences(viewer.out, "wrote " + shot) == 1; }))
        << readFile(viewer.out) << readFile(viewer.err);
    ImagePtr before = readPicture(shot);

    // a drag across a third of the window turns the camera about the volume
    xdotool("mousemove --window " + win + " 50 60 mousedown 1 mousemove --window " + win +
            " 80 60 mousemove --window " + win + " 110 60 mouseup 1");
    xdotool("mousemove --window " + win + " 5 5 key p");
    ASSERT_TRUE(waitFor([&] { return occurrences(viewer.out, "wrote " + shot) == 2; }))
        << readFile(viewer.out) << readFile(viewer.err);
    ImagePtr after = readPicture(shot);

    xdotool("key q");
    EXPECT_EQ(viewer.wait(), 0) << readFile(viewer.err);
    EXPECT_GE(occurrences(viewer.out, "frames, median"), 1) << readFile(viewer.out);

    ASSERT_NE(before, NullFC);
    ASSERT_NE(after, NullFC);
    ASSERT_EQ(before->getWidth(), W);
    ASSERT_EQ(before->getHeight(), H);
    // the volume and the sphere fill a good part of the window, and the
    // turned view is another picture of the same size of scene
    EXPECT_GT(litShare(before), 0.2);
    EXPECT_GT(litShare(after), 0.2);
    EXPECT_GT(meanDifference(before, after), 5.0);
    subRefCP(before);
    subRefCP(after);
}

// The window manager's close button (a WM_DELETE_WINDOW message) ends the
// program cleanly, with its frame times.
TEST_F(ViewerTest, ClosingTheWindowEndsTheProgram)
{
    ViewerProgram       viewer("--mesh " CORVANE_DATA_DIR "/knot.obj.gz --size 160 120");
    const unsigned long id = viewer.window();
    ASSERT_NE(id, 0u) << readFile(viewer.err);

    Display *display = XOpenDisplay(NULL);
    ASSERT_NE(display, nullptr);
    XEvent close;
    memset(&close, 0, sizeof(close));
    close.xclient.type         = ClientMessage;
    close.xclient.window       = id;
    close.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
    close.xclient.format       = 32;
    close.xclient.data.l[0]    = long(XInternAtom(display, "WM_DELETE_WINDOW", False));
    close.xclient.data.l[1]    = CurrentTime;
    XSendEvent(display, id, False, NoEventMask, &close);
    XFlush(display);
    XCloseDisplay(display);

    EXPECT_EQ(viewer.wait(), 0) << readFile(viewer.err);
    EXPECT_GE(occurrences(viewer.out, "frames, median"), 1) << readFile(viewer.out);
}

// A mesh file alone: the knot of the sample data fills the middle.
TEST_F(ViewerTest, ShowsAMeshFile)
{
    const std::string shot = corvanetest::scratchPath("mesh.png");
    ViewerProgram     viewer("--mesh " CORVANE_DATA_DIR "/knot.obj.gz --size 160 120 --frames 2 --shot " +
                         shot);
    EXPECT_EQ(viewer.wait(), 0) << readFile(viewer.err);
    ImagePtr image = readPicture(shot);
    ASSERT_NE(image, NullFC);
    EXPECT_GT(litShare(image), 0.15);
    // copper: red above green above blue, summed over the lit pixels
    const int   bpp = image->getBpp();
    const UInt8 *p  = image->getData();
    long         r = 0, g = 0, b = 0;
    for(int i = 0; i < image->getWidth() * image->getHeight(); ++i)
        if(p[i * bpp] + p[i * bpp + 1] + p[i * bpp + 2] > 30)
        {
            r += p[i * bpp];
            g += p[i * bpp + 1];
            b += p[i * bpp + 2];
        }
    EXPECT_GT(r, g);
    EXPECT_GT(g, b);
    subRefCP(image);
}

// Each bad invocation ends with exactly one "corvane view: ..." line.
TEST_F(ViewerTest, BadInvocationsEndWithOneLine)
{
    const std::string garbage = corvanetest::scratchPath("garbage.obj");
    {
        std::ofstream out(garbage);
        out << "v 1 2\nf 1 2 9 x\n\x01\x02";
    }
    struct Case
    {
        std::string prefix, arguments;
        int         code;
    } cases[] = {
        {"env -u DISPLAY ", "", 1},
        {"DISPLAY=:4711 ", "", 1},
        {"", "/nonexistent/volume.nrrd", 1},
        {"", "--mesh /nonexistent/mesh.obj", 1},
        {"", "--mesh " + garbage, 1},
        {"", "--tf /nonexistent/table.tf", 1},
        {"", "--style glow", 2},
        {"", "--size 0 10", 2},
        {"", "--frames many", 2},
        {"", "--fast", 2},
        {"", "a.nrrd b.nrrd", 2},
    };
    for(const Case &c : cases)
    {
        const std::string errFile = corvanetest::scratchPath("bad-err.txt");
        const std::string command = c.prefix + CORVANE_PROGRAM + " view " + c.arguments +
                                    " --frames 1 > /dev/null 2> " + errFile;
        const int status = std::system(command.c_str());
        const int code   = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        EXPECT_EQ(code, c.code) << command;
        std::istringstream lines(readFile(errFile));
        std::string        line;
        int                own = 0;
        while(std::getline(lines, line))
            own += line.compare(0, 14, "corvane view: ") == 0;
        EXPECT_EQ(own, 1) << command << "\n" << readFile(errFile);
    }
}
