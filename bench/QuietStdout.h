// Standard output silenced for a while.
#ifndef CORVANE_BENCH_QUIETSTDOUT_H
#define CORVANE_BENCH_QUIETSTDOUT_H

#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

namespace corvanebench
{

/// Standard output goes to /dev/null while it lives: loading a volume
/// reports its progress there, in the middle of the benchmark table.
class QuietStdout
{
  public:
    QuietStdout(void)
    {
        std::fflush(stdout);
        _saved   = dup(1);
        int sink = open("/dev/null", O_WRONLY);
        dup2(sink, 1);
        close(sink);
    }
    ~QuietStdout(void)
    {
        std::fflush(stdout);
        dup2(_saved, 1);
        close(_saved);
    }
    QuietStdout(const QuietStdout &)            = delete;
    QuietStdout &operator=(const QuietStdout &) = delete;

  private:
    int _saved;
};

} // namespace corvanebench

#endif
