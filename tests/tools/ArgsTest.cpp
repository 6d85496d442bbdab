// The main program's numbers and output files: strict parsing, and
// outputs that are written whole or not at all, never through a link;
// the program's exit codes say so.
#include <corvane/Args.h>
#include <corvane/OutputFile.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

std::string readFile(const std::string &path)
{
    std::ifstream      in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

class OutputFiles : public ::testing::Test
{
  protected:
    void SetUp(void) override
    {
        char pattern[] = "/tmp/corvane-output-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        _dir = pattern;
    }

    void TearDown(void) override { std::filesystem::remove_all(_dir); }

    std::string path(const std::string &name) const { return _dir + "/" + name; }

    /// The files in the folder, as "name name ...".
    std::string listing(void) const
    {
        std::string names;
        for(const auto &entry : std::filesystem::directory_iterator(_dir))
            names += entry.path().filename().string() + " ";
        return names;
    }

    /// Runs the main program; its exit code, -1 if it didn't exit.
    int run(const std::string &arguments) const
    {
        const std::string command = std::string(CORVANE_PROGRAM) + " " + arguments +
                                    " > " + path("stdout") + " 2>&1";
        const int status = std::system(command.c_str());
        std::remove(path("stdout").c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    std::string _dir;
};

} // namespace

TEST(Args, UnsignedIntegersAreDigitsInRange)
{
    unsigned out = 7;
    EXPECT_TRUE(corvane::parseUInt("320", 1, 8192, out));
    EXPECT_EQ(out, 320u);
    EXPECT_TRUE(corvane::parseUInt("8192", 1, 8192, out));
    EXPECT_TRUE(corvane::parseUInt("0001", 1, 8192, out));
    EXPECT_EQ(out, 1u);
    EXPECT_TRUE(corvane::parseUInt("4294967295", 0, 4294967295u, out));
    EXPECT_EQ(out, 4294967295u);

    out = 7;
    for(const char *text : {"4294967297", "99999999999999999999999", "0", "8193", "-1", "+5",
                            " 5", "5 ", "5px", "0x10", "1e3", "", "3.0"})
    {
        EXPECT_FALSE(corvane::parseUInt(text, 1, 8192, out)) << text;
        EXPECT_EQ(out, 7u) << text;
    }
    EXPECT_FALSE(corvane::parseUInt(nullptr, 0, 1, out));
}

TEST(Args, FloatsAreFiniteAndInRange)
{
    float out = 7.f;
    EXPECT_TRUE(corvane::parseFloat("0.5", 0.f, 1.f, out));
    EXPECT_EQ(out, 0.5f);
    EXPECT_TRUE(corvane::parseFloat("-2.5e1", -100.f, 100.f, out));
    EXPECT_EQ(out, -25.f);
    EXPECT_TRUE(corvane::parseFloat("1", 0.f, 1.f, out));

    out = 7.f;
    for(const char *text : {"nan", "inf", "-inf", "1e39", "1.5", "-0.1", "0x1p-1", " 0.5",
                            "0.5 ", "0.5f", "", ".", "e5", "--1", "1e"})
    {
        EXPECT_FALSE(corvane::parseFloat(text, 0.f, 1.f, out)) << text;
        EXPECT_EQ(out, 7.f) << text;
    }
}

TEST_F(OutputFiles, WrittenWholeOrNotAtAll)
{
    const std::string out = path("out.bin");
    EXPECT_TRUE(corvane::writeOutputFile(out, [](const std::string &temp) {
        std::ofstream(temp, std::ios::binary) << "first";
        return true;
    }));
    EXPECT_EQ(readFile(out), "first");

    // a write that fails, or leaves nothing, keeps what was there
    EXPECT_FALSE(corvane::writeOutputFile(out, [](const std::string &temp) {
        std::ofstream(temp, std::ios::binary) << "half";
        return false;
    }));
    EXPECT_FALSE(corvane::writeOutputFile(out, [](const std::string &) { return true; }));
    EXPECT_EQ(readFile(out), "first");
    EXPECT_EQ(listing(), "out.bin ") << "no temporary file is left behind";

    // the usual permissions, not the temporary file's private ones
    struct stat info;
    ASSERT_EQ(stat(out.c_str(), &info), 0);
    const mode_t mask = umask(0);
    umask(mask);
    EXPECT_EQ(info.st_mode & 0777, 0666 & ~mask);
}

TEST_F(OutputFiles, NeverThroughALinkNorOverAnythingButAFile)
{
    const std::string victim = path("victim.txt");
    std::ofstream(victim) << "keep me";
    ASSERT_EQ(symlink(victim.c_str(), path("link.png").c_str()), 0);
    ASSERT_EQ(mkdir(path("folder").c_str(), 0700), 0);
    ASSERT_EQ(mkfifo(path("fifo").c_str(), 0600), 0);

    bool called = false;
    for(const char *name : {"link.png", "folder", "fifo"})
    {
        EXPECT_FALSE(corvane::writeOutputFile(path(name), [&called](const std::string &) {
            called = true;
            return true;
        })) << name;
    }
    EXPECT_FALSE(called) << "refused before anything is made";
    EXPECT_EQ(readFile(victim), "keep me");
}

TEST_F(OutputFiles, TheProgramEndsWithAnErrorWhenItWritesNothing)
{
    const std::string victim = path("victim.txt");
    std::ofstream(victim) << "keep me";
    ASSERT_EQ(symlink(victim.c_str(), path("link.png").c_str()), 0);

    // a folder, a link, a path that can't be: exit code 1
    EXPECT_EQ(run("render " + _dir + " 8 8"), 1);
    EXPECT_EQ(run("scene shaded " + path("link.png") + " 8 8"), 1);
    EXPECT_EQ(run("render " + path("no/such/dir.png") + " 8 8"), 1);
    EXPECT_EQ(readFile(victim), "keep me");

    // sizes are parsed strictly: "4294967297" is no 1 (usage: 2)
    EXPECT_EQ(run("render " + path("a.png") + " 4294967297 1"), 2);
    EXPECT_EQ(run("render " + path("a.png") + " 8px 8"), 2);
    EXPECT_EQ(run("render " + path("a.png") + " 0 8"), 2);

    // and a good one writes its file
    EXPECT_EQ(run("render " + path("a.png") + " 8 8"), 0);
    EXPECT_GT(readFile(path("a.png")).size(), 8u);
    EXPECT_EQ(readFile(path("a.png")).compare(1, 3, "PNG"), 0);

    // the DDS output obeys the same rules
    EXPECT_EQ(run("dxt " + path("a.png") + " " + path("link.png")), 1);
    EXPECT_EQ(readFile(victim), "keep me");
    EXPECT_EQ(run("dxt " + path("a.png") + " " + path("a.dds")), 0);
    EXPECT_EQ(readFile(path("a.dds")).compare(0, 4, "DDS "), 0);
}
