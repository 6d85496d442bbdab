// The small helpers every OpenSG program reaches through OSGBaseFunctions.h,
// OSGTime.h and OSGFileSystem.h, with OpenSG's numbers.
#include <OpenSG/OSGBaseFunctions.h>
#include <OpenSG/OSGFileSystem.h>
#include <OpenSG/OSGTime.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <unistd.h>

OSG_USING_NAMESPACE

TEST(BaseFunctions, DegreesToRadiansInSinglePrecision)
{
    // (v / 360) * 2 * 3.1415926535 in Real32, left to right: one unit in the
    // last place above v * pi / 180 for 1 and 16.66 degrees
    EXPECT_EQ(osgdegree2rad(1.f), 0x1.1df46cp-6f);
    EXPECT_EQ(osgdegree2rad(16.66f), 0x1.29c018p-2f);
    EXPECT_NE(osgdegree2rad(1.f), 1.f * Pi / 180.f);
    EXPECT_EQ(osgdegree2rad(180.f), Pi);
    EXPECT_EQ(osgdegree2rad(90), Pi / 2); // integers compute in Real32
    EXPECT_EQ(osgrad2degree(1.f), 0x1.ca5dcp+5f);
    EXPECT_FLOAT_EQ(osgrad2degree(Pi / 2), 90.f);

    // the double form does the same in double
    EXPECT_EQ(osgdegree2rad(1.0), 1.0 / 360.0 * 2.0 * 3.1415926535);

    // deg2rad and rad2deg are the same functions
    EXPECT_EQ(deg2rad(45), osgdegree2rad(45.f));
    EXPECT_EQ(deg2rad(60.f), osgdegree2rad(60.f));
    EXPECT_EQ(rad2deg(0.5f), osgrad2degree(0.5f));
}

TEST(BaseFunctions, SignRandomAndSleep)
{
    EXPECT_EQ(osgSgn(-2.5f), -1);
    EXPECT_EQ(osgSgn(0), 0);
    EXPECT_EQ(osgSgn(7u), 1);

    for(int i = 0; i < 1000; ++i)
    {
        Real32 r = osgrand();
        ASSERT_GE(r, 0.f);
        ASSERT_LE(r, 1.f);
    }

    TimeStamp before = getTimeStamp();
    osgsleep(20);
    Time slept = getTimeStampMsecs(getTimeStamp() - before);
    EXPECT_GE(slept, 20.0);
    EXPECT_EQ(getTimeStampMsecs(getTimeStampFreq()), 1000.0);
    EXPECT_GT(getSystemTime(), 1e9); // seconds since 1970
}

TEST(BaseFunctions, VersionNumbers)
{
    EXPECT_STREQ(OSG_VERSION_STRING, "1.8.1Alpha");
    EXPECT_EQ(OSG_MAJOR_VERSION, 1);
    EXPECT_EQ(OSG_MINOR_VERSION, 8);
    EXPECT_EQ(OSG_RELEASE_VERSION, 1);
}

TEST(FileSystem, CurrentDirectoryAndEntries)
{
    char tmpl[] = "/tmp/osgfsXXXXXX";
    ASSERT_NE(mkdtemp(tmpl), nullptr);
    const std::string dir = tmpl;
    std::FILE *f = std::fopen((dir + "/a.png").c_str(), "w");
    ASSERT_NE(f, nullptr);
    std::fclose(f);

    EXPECT_TRUE(Directory::tstAttr(dir.c_str()));
    EXPECT_FALSE(File::tstAttr(dir.c_str()));
    EXPECT_TRUE(File::tstAttr((dir + "/a.png").c_str(), AccessFlags::IsReadable));
    EXPECT_FALSE(File::tstAttr((dir + "/b.png").c_str()));

    std::vector<Char8 *> *entries = Directory::getEntries(dir.c_str(), "*.png");
    ASSERT_NE(entries, nullptr);
    ASSERT_EQ(entries->size(), 1u);
    EXPECT_STREQ((*entries)[0], "a.png");
    for(size_t i = 0; i < entries->size(); ++i)
        delete[](*entries)[i];
    delete entries;
    EXPECT_EQ(Directory::getEntries((dir + "/none").c_str()), nullptr);

    Char8 *old = Directory::getCurrent();
    ASSERT_NE(old, nullptr);
    EXPECT_TRUE(Directory::setCurrent(dir.c_str()));
    Char8 *now = Directory::getCurrent();
    EXPECT_STREQ(now, dir.c_str());
    EXPECT_TRUE(Directory::setCurrent(old));
    EXPECT_FALSE(Directory::setCurrent(NULL));
    EXPECT_FALSE(Directory::setCurrent((dir + "/none").c_str()));
    delete[] now;
    delete[] old;

    std::remove((dir + "/a.png").c_str());
    rmdir(dir.c_str());
}
