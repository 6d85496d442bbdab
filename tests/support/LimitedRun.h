/// Runs a piece of a test in a forked child under a memory and a time
/// limit, for the checks that a hostile file is refused fast and small.
///
/// The child's address space may grow by `extraBytes` beyond what the
/// process holds when it forks (RLIMIT_AS; not under AddressSanitizer,
/// whose shadow memory reserves far more), its peak resident memory is
/// measured from the fork on, and an alarm ends it after `seconds`.
#ifndef _CORVANE_TESTS_LIMITEDRUN_H_
#define _CORVANE_TESTS_LIMITEDRUN_H_

#include <OpenSG/OSGLog.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__)
#define CORVANE_TEST_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define CORVANE_TEST_ASAN 1
#endif
#endif

namespace corvanetest
{

struct LimitedResult
{
    bool        passed     = false; ///< the body ran to its end and said yes
    int         signal     = 0;     ///< what ended the child, if a signal did
    long        peakGrowthKiB = 0;  ///< resident memory peak above the start
    std::string log;                ///< what the body logged
};

/// A field of /proc/self/status in KiB ("VmHWM", "VmSize"), 0 if absent.
inline long statusKiB(const char *field)
{
    std::ifstream in("/proc/self/status");
    std::string   line;
    const std::string key = std::string(field) + ":";
    while(std::getline(in, line))
    {
        if(line.compare(0, key.size(), key) == 0)
            return std::atol(line.c_str() + key.size());
    }
    return 0;
}

/// Runs body in a child; its log goes to the result. body answers whether
/// what it saw was what the test expects.
inline LimitedResult runLimited(const std::function<bool(void)> &body,
                                unsigned seconds = 10,
                                unsigned long long extraBytes = 1ull << 30)
{
    LimitedResult result;
    int           fds[2];

    if(pipe(fds) != 0)
        return result;

    std::fflush(nullptr);
    const pid_t child = fork();

    if(child == 0)
    {
        close(fds[0]);
#ifndef CORVANE_TEST_ASAN
        const rlim_t limit = rlim_t(statusKiB("VmSize")) * 1024 + extraBytes;
        const rlimit as    = {limit, limit};
        setrlimit(RLIMIT_AS, &as);
#else
        (void)extraBytes;
#endif
        // the peak counts from here on ("5": reset the high-water mark)
        {
            std::ofstream reset("/proc/self/clear_refs");
            reset << "5";
        }
        const long start = statusKiB("VmHWM");
        alarm(seconds);

        bool ok = false;
        std::string text;
        {
            osg::LogCapture capture;
            ok   = body();
            text = capture.take();
        }

        std::ostringstream report;
        report << (statusKiB("VmHWM") - start) << "\n" << text;
        const std::string bytes = report.str();
        for(size_t done = 0; done < bytes.size();)
        {
            const ssize_t n = write(fds[1], bytes.data() + done, bytes.size() - done);
            if(n <= 0)
                break;
            done += size_t(n);
        }
        close(fds[1]);
        _exit(ok ? 0 : 1);
    }

    close(fds[1]);
    std::string bytes;
    char        buffer[4096];
    ssize_t     n;
    while((n = read(fds[0], buffer, sizeof(buffer))) > 0)
        bytes.append(buffer, size_t(n));
    close(fds[0]);

    int status = 0;
    if(child < 0 || waitpid(child, &status, 0) != child)
        return result;

    const size_t nl = bytes.find('\n');
    if(nl != std::string::npos)
    {
        result.peakGrowthKiB = std::atol(bytes.c_str());
        result.log           = bytes.substr(nl + 1);
    }
    result.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    result.passed = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    return result;
}

} // namespace corvanetest

#endif
