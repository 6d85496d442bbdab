// The log: macros, level gating, headers, locking and the environment.
#include <OpenSG/OSGLog.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <support/ScratchDir.h>

OSG_USING_NAMESPACE

TEST(LogDefaults, GlobalLogStartsAtWarningWithTypeHeader)
{
    if(std::getenv("OSG_LOG_LEVEL") || std::getenv("OSG_LOG_TYPE") ||
       std::getenv("OSG_LOG_HEADER"))
        GTEST_SKIP() << "OSG_LOG_* set in the environment";

    EXPECT_EQ(osgLog().getLogLevel(), LOG_WARNING);
    EXPECT_EQ(osgLog().getLogType(), LOG_STDERR);
    EXPECT_EQ(osgLog().getHeaderElem(), UInt32(LOG_TYPE_HEADER));
    EXPECT_STREQ(Log::getLevelName(LOG_LOG), "LOG");
    EXPECT_STREQ(Log::getLevelName(LOG_DEBUG), "DEBUG");
}

TEST(LogMacros, StreamMacrosWriteLevelNameColonTwoBlanks)
{
    LogCapture log(LOG_NOTICE);
    SWARNING << "text" << std::endl;
    SLOG << "x" << endLog;
    SFATAL << 42 << std::endl;
    SNOTICE << "n" << std::endl;
    SINFO << "hidden" << std::endl;
    EXPECT_EQ(log.take(), "WARNING:  text\nLOG:  x\nFATAL:  42\nNOTICE:  n\n");
}

TEST(LogMacros, PlainMacrosHaveNoHeader)
{
    LogCapture log(LOG_WARNING);
    PWARNING << "a";
    PLOG << "b" << std::endl;
    PNOTICE << "hidden" << std::endl;
    EXPECT_EQ(log.take(), "ab\n");
}

TEST(LogMacros, PrintfMacrosFormatAndGrowTheirBuffer)
{
    LogCapture log(LOG_NOTICE);
    FWARNING(("value %d of %s\n", 3, "x"));
    FINFO(("hidden %d\n", 1));

    std::string longText(5000, 'a');
    FNOTICE(("%s|\n", longText.c_str()));
    FPWARNING(("no header\n"));
    EXPECT_EQ(log.take(), "WARNING:  value 3 of x\nNOTICE:  " + longText +
                              "|\nno header\n");

    FLOG(("%s\n", "log"));
    FFATAL(("%.2f\n", 1.5));
    EXPECT_EQ(log.take(), "LOG:  log\nFATAL:  1.50\n");
}

TEST(LogMacros, FdebugIsFilteredAtRunTime)
{
    int calls = 0;
    {
        LogCapture log(LOG_INFO);
        FDEBUG(("%d\n", ++calls));
        EXPECT_EQ(calls, 0); // not even evaluated
        EXPECT_EQ(log.take(), "");
    }
    {
        LogCapture log(LOG_DEBUG);
        FDEBUG(("%d\n", ++calls));
        EXPECT_EQ(log.take(), "DEBUG:  1\n");
    }
}

TEST(LogLevels, EachLevelShowsItselfAndEverythingMoreSevere)
{
    for(Int32 level = LOG_LOG; level <= LOG_DEBUG; ++level)
    {
        LogCapture log{LogLevel(level)};
        FLOG(("0"));
        FFATAL(("1"));
        FWARNING(("2"));
        FNOTICE(("3"));
        FINFO(("4"));
        FDEBUG(("5"));
        std::string expected;
        for(Int32 l = LOG_LOG; l <= level; ++l)
            expected += std::string(Log::getLevelName(LogLevel(l))) + ":  " +
                        char('0' + l);
        EXPECT_EQ(log.take(), expected) << "level " << level;

        EXPECT_EQ(osgLog().checkLevel(LOG_INFO), level >= LOG_INFO);
    }
}

TEST(LogLevels, LevelStreamsAreConnectedOrSinks)
{
    Log log(LOG_BUFFER, LOG_NOTICE);
    log.stream(LOG_NOTICE) << "n";
    log.stream(LOG_INFO) << "i";
    log.doHeader(LOG_DEBUG, "M", "f", 1, "fn") << "d";
    log.nilstream() << "nil";
    log << "direct";
    EXPECT_EQ(log.getLogBuf().take(), "ndirect");

    log.setLogLevel(LogLevel(17));
    EXPECT_EQ(log.getLogLevel(), LOG_DEBUG);
    log.stream(LOG_DEBUG) << "now";
    EXPECT_EQ(log.getLogBuf().take(), "now");
}

TEST(LogHeader, ElementsInOrder)
{
    LogCapture log;

    osgLog().setHeaderElem(0, true);
    SWARNING << "bare" << std::endl;
    EXPECT_EQ(log.take(), "bare\n");

    osgLog().setHeaderElem(LOG_TYPE_HEADER | LOG_TAB_HEADER, true);
    SWARNING << "tab" << std::endl;
    EXPECT_EQ(log.take(), "WARNING\t tab\n");

    osgLog().setHeaderElem(LOG_BEGIN_NEWLINE_HEADER | LOG_TYPE_HEADER |
                               LOG_END_NEWLINE_HEADER,
                           true);
    SWARNING << "lines" << std::endl;
    EXPECT_EQ(log.take(), "\nWARNING: \nlines\n");

    osgLog().setHeaderElem(LOG_MODULE_HEADER, true);
    osgLog().addHeaderElem(LOG_FILE_HEADER, true);
    osgLog().addHeaderElem(LOG_LINE_HEADER, true);
    int line = __LINE__; SWARNING << "where" << std::endl;
    EXPECT_EQ(log.take(), std::string("OpenSG: ") + __FILE__ + ":" +
                              std::to_string(line) + ":  where\n");

    osgLog().delHeaderElem(LOG_FILE_HEADER, true);
    osgLog().delHeaderElem(LOG_MODULE_HEADER, true);
    line = __LINE__; FWARNING(("only line\n"));
    EXPECT_EQ(log.take(), std::to_string(line) + ":  only line\n");

    osgLog().setHeaderElem(LOG_FUNCNAME_HEADER, true);
    SWARNING << "fn" << std::endl;
    EXPECT_NE(log.take().find("TestBody"), std::string::npos);
}

TEST(LogHeader, TimestampCountsFromTheReferenceTime)
{
    Log log(LOG_BUFFER);
    log.setHeaderElem(LOG_TIMESTAMP_HEADER, true);
    log.setRefTime(getSystemTime() - 100);
    log.doHeader(LOG_WARNING, NULL, NULL, 0, NULL) << "x";
    double stamp = std::atof(log.getLogBuf().take().c_str());
    EXPECT_GE(stamp, 100.0);
    EXPECT_LT(stamp, 200.0);

    log.resetRefTime();
    EXPECT_NEAR(log.getRefTime(), getSystemTime(), 10.0);
}

TEST(LogLocking, StatementHoldsTheLockToItsEnd)
{
    LogCapture  log;
    std::thread other;
    auto        startOther = [&]() -> const char * {
        other = std::thread([] { SWARNING << "other" << std::endl; });
        // Give the other thread every chance to write into our line.
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        return "middle";
    };
    SWARNING << "first " << startOther() << " end" << std::endl;
    other.join();
    EXPECT_EQ(log.take(), "WARNING:  first middle end\nWARNING:  other\n");
}

TEST(LogDestinations, FileAndNone)
{
    std::string path = corvanetest::scratchPath("osg_log_test.txt");
    {
        Log log(path.c_str());
        EXPECT_EQ(log.getLogType(), LOG_FILE);
        log.doHeader(LOG_FATAL, NULL, NULL, 0, NULL) << "to file" << std::endl;
    }
    std::ifstream in(path);
    std::string   content((std::istreambuf_iterator<char>(in)),
                          std::istreambuf_iterator<char>());
    EXPECT_EQ(content, "FATAL:  to file\n");
    std::remove(path.c_str());

    Log none(LOG_NONE);
    none << "gone";
    none.doHeader(LOG_LOG, NULL, NULL, 0, NULL) << "gone";
    EXPECT_TRUE(none.good());
    none.setLogType(LOG_BUFFER);
    none << "kept";
    EXPECT_EQ(none.getLogBuf().str(), "kept");

    testing::internal::CaptureStderr();
    Log bad(LOG_BUFFER);
    EXPECT_FALSE(bad.setLogFile("/nonexistent-dir/x.log"));
    EXPECT_EQ(bad.getLogType(), LOG_BUFFER);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("couldn't open"),
              std::string::npos);
}

TEST(LogCapture, RestoresTheLogAfterwards)
{
    Log     &log      = osgLog();
    LogType  oldType  = log.getLogType();
    LogLevel oldLevel = log.getLogLevel();
    UInt32   oldElem  = log.getHeaderElem();
    {
        LogCapture outer(LOG_INFO);
        SINFO << "outer" << std::endl;
        {
            LogCapture inner(LOG_DEBUG);
            osgLog().setHeaderElem(0, true);
            SINFO << "inner" << std::endl;
            EXPECT_EQ(inner.str(), "inner\n");
        }
        EXPECT_EQ(osgLog().getLogLevel(), LOG_INFO);
        EXPECT_EQ(outer.take(), "INFO:  outer\ninner\n");
    }
    EXPECT_EQ(log.getLogType(), oldType);
    EXPECT_EQ(log.getLogLevel(), oldLevel);
    EXPECT_EQ(log.getHeaderElem(), oldElem);
}

TEST(LogEnvironment, ParsesLevels)
{
    bool ok;
    EXPECT_EQ(Log::parseLogLevel("notice", &ok), LOG_NOTICE);
    EXPECT_TRUE(ok);
    EXPECT_EQ(Log::parseLogLevel("WaRnInG"), LOG_WARNING);
    EXPECT_EQ(Log::parseLogLevel("log"), LOG_LOG);
    EXPECT_EQ(Log::parseLogLevel("4"), LOG_INFO);
    EXPECT_EQ(Log::parseLogLevel("9"), LOG_DEBUG);
    EXPECT_EQ(Log::parseLogLevel("-3"), LOG_LOG);
    EXPECT_EQ(Log::parseLogLevel("chatty", &ok), LOG_DEBUG);
    EXPECT_FALSE(ok);
}

TEST(LogEnvironment, ParsesTypes)
{
    bool ok;
    EXPECT_EQ(Log::parseLogType("-", &ok), LOG_STDOUT);
    EXPECT_TRUE(ok);
    EXPECT_EQ(Log::parseLogType("STDERR"), LOG_STDERR);
    EXPECT_EQ(Log::parseLogType("none"), LOG_NONE);
    EXPECT_EQ(Log::parseLogType("buffer"), LOG_BUFFER);
    // Numbers index (none, stdout, stdout, stderr, file, buffer).
    EXPECT_EQ(Log::parseLogType("1"), LOG_STDOUT);
    EXPECT_EQ(Log::parseLogType("2"), LOG_STDOUT);
    EXPECT_EQ(Log::parseLogType("3"), LOG_STDERR);
    EXPECT_EQ(Log::parseLogType("4"), LOG_FILE);
    EXPECT_EQ(Log::parseLogType("99"), LOG_BUFFER);
    EXPECT_EQ(Log::parseLogType("-1"), LOG_NONE);
    EXPECT_EQ(Log::parseLogType("printer", &ok), LOG_STDERR);
    EXPECT_FALSE(ok);
}

class LogEnvironmentOverride : public testing::Test
{
  protected:
    void SetUp(void) override
    {
        for(const char *name : Names)
            unsetenv(name);
    }
    void TearDown(void) override
    {
        for(const char *name : Names)
            unsetenv(name);
    }

    static constexpr const char *Names[] = {"OSG_LOG_LEVEL", "OSG_LOG_FILE",
                                            "OSG_LOG_TYPE", "OSG_LOG_HEADER"};
};

TEST_F(LogEnvironmentOverride, VariablesOverrideWithANotice)
{
    setenv("OSG_LOG_LEVEL", "notice", 1);
    setenv("OSG_LOG_TYPE", "buffer", 1);
    setenv("OSG_LOG_HEADER", "0", 1);

    Log log(LOG_BUFFER, LOG_WARNING);
    log.applyEnvironment();
    EXPECT_EQ(log.getLogLevel(), LOG_NOTICE);
    EXPECT_EQ(log.getLogType(), LOG_BUFFER);
    EXPECT_EQ(log.getHeaderElem(), 0u);
    EXPECT_EQ(log.getLogBuf().take(),
              "OSGLog::setLogLevel: overriden by envvar OSG_LOG_LEVEL "
              "'notice'.\n"
              "Log::setLogType: overriden by envvar OSG_LOG_TYPE 'buffer'.\n"
              "Log::setHeaderElem: overriden by envvar OSG_LOG_HEADER '0'.\n");
}

TEST_F(LogEnvironmentOverride, UnknownLevelNameMeansDebug)
{
    setenv("OSG_LOG_LEVEL", "loud", 1);
    setenv("OSG_LOG_TYPE", "buffer", 1);
    Log log(LOG_BUFFER);
    log.applyEnvironment();
    EXPECT_EQ(log.getLogLevel(), LOG_DEBUG);
    EXPECT_NE(log.getLogBuf().str().find(
                  "Log::setLogLevel: couldn't interpret envvar, set to "
                  "LOG_DEBUG!\n"),
              std::string::npos);
}

TEST_F(LogEnvironmentOverride, FileAloneDoesNotStick)
{
    std::string path = corvanetest::scratchPath("osg_log_env.txt");
    setenv("OSG_LOG_FILE", path.c_str(), 1);
    Log log(LOG_BUFFER);
    log.applyEnvironment();
    EXPECT_EQ(log.getLogType(), LOG_STDERR);
    EXPECT_EQ(log.getLogBuf().take(),
              "Log::setLogFile: overriden by envvar OSG_LOG_FILE '" + path +
                  "'.\n");

    setenv("OSG_LOG_TYPE", "file", 1);
    Log withType(LOG_BUFFER);
    withType.applyEnvironment();
    EXPECT_EQ(withType.getLogType(), LOG_FILE);
    std::remove(path.c_str());
}

TEST_F(LogEnvironmentOverride, NonForcedSettersGiveWayOnTheGlobalLog)
{
    Log log(LOG_BUFFER, LOG_WARNING);
    log.setEnvironmentOverrides(true);
    setenv("OSG_LOG_LEVEL", "info", 1);

    log.setLogLevel(LOG_FATAL);
    EXPECT_EQ(log.getLogLevel(), LOG_INFO);
    log.setLogLevel(LOG_FATAL, true);
    EXPECT_EQ(log.getLogLevel(), LOG_FATAL);

    setenv("OSG_LOG_HEADER", "2", 1);
    log.addHeaderElem(LOG_FILE_HEADER);
    EXPECT_EQ(log.getHeaderElem(), UInt32(LOG_TYPE_HEADER));

    // Without overrides the environment is not consulted.
    Log plain(LOG_BUFFER);
    plain.setLogLevel(LOG_FATAL);
    EXPECT_EQ(plain.getLogLevel(), LOG_FATAL);
    EXPECT_EQ(plain.getLogBuf().str(), "");
}
