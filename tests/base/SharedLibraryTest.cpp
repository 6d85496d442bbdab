// Loading libraries and looking up symbols, with the messages on stderr.
#include <OpenSG/OSGSharedLibrary.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

OSG_USING_NAMESPACE

namespace
{

typedef double (*UnaryFunc)(double);

std::string handleText(void *p)
{
    char buf[64];
    std::snprintf(buf, sizeof(buf), "%p", p);
    return buf;
}

} // namespace

TEST(SharedLibrary, StartsClosedAndUnnamed)
{
    SharedLibrary lib;
    EXPECT_FALSE(lib.isOpen());
    EXPECT_EQ(lib.getName(), nullptr);
    EXPECT_EQ(lib.getType(), SharedLibrary::Invalid);
    EXPECT_FALSE(lib.close());
    EXPECT_EQ(lib.getSymbol("cos"), nullptr); // nothing to reopen
}

TEST(SharedLibrary, OpensAndReportsEverySymbolLookup)
{
    SharedLibrary lib("libm.so.6");
    ASSERT_TRUE(lib.isOpen());
    EXPECT_STREQ(lib.getName(), "libm.so.6");
    EXPECT_EQ(lib.getType(), SharedLibrary::SharedLib);

    testing::internal::CaptureStderr();
    void       *sym = lib.getSymbol("cos");
    std::string err = testing::internal::GetCapturedStderr();
    ASSERT_NE(sym, nullptr);
    EXPECT_DOUBLE_EQ(reinterpret_cast<UnaryFunc>(sym)(0.0), 1.0);

    // The handle is printed too; it is whatever dlopen gave.
    ASSERT_EQ(err.rfind("Got Symbol : cos ", 0), 0u) << err;
    EXPECT_EQ(err.substr(err.size() - handleText(sym).size() - 1),
              handleText(sym) + "\n");

    EXPECT_TRUE(lib.close());
    EXPECT_FALSE(lib.isOpen());
    EXPECT_FALSE(lib.close());
}

TEST(SharedLibrary, MissingSymbolPrintsTheErrorThenTheReport)
{
    SharedLibrary lib("libm.so.6");
    testing::internal::CaptureStderr();
    EXPECT_EQ(lib.getSymbol("no_such_symbol_here"), nullptr);
    std::string err = testing::internal::GetCapturedStderr();
    size_t      at  = err.find("Got Symbol : no_such_symbol_here ");
    ASSERT_NE(at, std::string::npos) << err;
    EXPECT_GT(at, 0u); // dlerror() text comes first
    EXPECT_NE(err.find("no_such_symbol_here", 0), at);
    EXPECT_EQ(err.substr(err.size() - 6), "(nil)\n");
}

TEST(SharedLibrary, FailedOpenKeepsTheNameAndPrintsDlerror)
{
    testing::internal::CaptureStderr();
    SharedLibrary lib;
    EXPECT_FALSE(lib.open("libdoes-not-exist.so"));
    std::string err = testing::internal::GetCapturedStderr();
    EXPECT_NE(err.find("libdoes-not-exist.so"), std::string::npos) << err;
    EXPECT_EQ(err.back(), '\n');
    EXPECT_STREQ(lib.getName(), "libdoes-not-exist.so");
    EXPECT_FALSE(lib.isOpen());

    // A lookup tries to reopen, fails and reports no symbol.
    testing::internal::CaptureStderr();
    EXPECT_EQ(lib.getSymbol("cos"), nullptr);
    err = testing::internal::GetCapturedStderr();
    EXPECT_EQ(err.find("Got Symbol"), std::string::npos) << err;
}

TEST(SharedLibrary, LookupReopensAClosedLibrary)
{
    SharedLibrary lib("libm.so.6");
    lib.close();
    testing::internal::CaptureStderr();
    EXPECT_NE(lib.getSymbol("sqrt"), nullptr);
    testing::internal::GetCapturedStderr();
    EXPECT_TRUE(lib.isOpen());
}

TEST(SharedLibrary, NullMeansTheApplication)
{
    SharedLibrary app(NULL);
    ASSERT_TRUE(app.isOpen());
    EXPECT_STREQ(app.getName(), "Application");
    EXPECT_EQ(app.getType(), SharedLibrary::Application);

    testing::internal::CaptureStderr();
    void *sym = app.getSymbol("osgLogP"); // misses: C++ names are mangled
    EXPECT_EQ(sym, nullptr);
    EXPECT_NE(app.getSymbol("malloc"), nullptr);
    testing::internal::GetCapturedStderr();

    // Reopening after close goes back to the application, not a file.
    app.close();
    testing::internal::CaptureStderr();
    EXPECT_NE(app.getSymbol("malloc"), nullptr);
    testing::internal::GetCapturedStderr();
}
