// An X display for tests of on-screen windows.
#ifndef CORVANE_TEST_XDISPLAY_H
#define CORVANE_TEST_XDISPLAY_H

#include <X11/Xlib.h>

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

namespace corvanetest
{

/// Makes sure DISPLAY names a working X display for this process and
/// returns "" when it does, otherwise why not. A DISPLAY that answers is
/// used as it is; otherwise (unset, or nothing there) the first call starts
/// a private Xvfb (`Xvfb -displayfd FD -screen 0 1024x768x24 -nolisten
/// tcp -noreset`), points DISPLAY at it, and stops it when the process
/// exits (the server also dies with the process if that is killed).
/// -noreset: an X server otherwise resets when its last client leaves, and
/// refuses connections for a moment while it does.
inline const std::string &ensureXDisplay()
{
    struct Server
    {
        pid_t       pid = -1;
        std::string error;

        static bool answers(const char *name)
        {
            if(name == nullptr || *name == '\0')
                return false;
            Display *dpy = XOpenDisplay(name);
            if(dpy == nullptr)
                return false;
            XCloseDisplay(dpy);
            return true;
        }

        Server()
        {
            if(answers(getenv("DISPLAY")))
                return;

            int fds[2];
            if(pipe2(fds, O_CLOEXEC) != 0)
            {
                error = "no pipe for Xvfb";
                return;
            }

            pid = fork();
            if(pid == 0)
            {
                // the server goes when the test process goes
                prctl(PR_SET_PDEATHSIG, SIGTERM);
                dup2(fds[1], 3);
                int devnull = open("/dev/null", O_WRONLY);
                if(devnull >= 0)
                {
                    dup2(devnull, 1);
                    dup2(devnull, 2);
                }
                execlp("Xvfb", "Xvfb", "-displayfd", "3", "-screen", "0",
                       "1024x768x24", "-nolisten", "tcp", "-noreset",
                       static_cast<char *>(nullptr));
                _exit(127);
            }
            close(fds[1]);
            if(pid < 0)
            {
                close(fds[0]);
                error = "cannot fork for Xvfb";
                return;
            }

            // Xvfb writes its display number and a newline once it serves
            std::string number;
            for(;;)
            {
                pollfd p = {fds[0], POLLIN, 0};
                if(poll(&p, 1, 20000) <= 0)
                    break;
                char c;
                const ssize_t n = read(fds[0], &c, 1);
                if(n <= 0 || c == '\n')
                    break;
                number += c;
            }
            close(fds[0]);

            const std::string name = ":" + number;
            if(number.empty() || !answers(name.c_str()))
            {
                int status = 0;
                if(waitpid(pid, &status, WNOHANG) == pid)
                    pid = -1;
                error = (pid < 0 && WIFEXITED(status) && WEXITSTATUS(status) == 127)
                            ? "no X display: DISPLAY is not set or does not answer, "
                              "and Xvfb is not installed (scripts/deps.sh installs it)"
                            : "no X display: DISPLAY is not set or does not answer, "
                              "and Xvfb did not start";
                return;
            }
            setenv("DISPLAY", name.c_str(), 1);
        }

        ~Server()
        {
            if(pid > 0)
            {
                kill(pid, SIGTERM);
                int status;
                while(waitpid(pid, &status, 0) < 0 && errno == EINTR)
                {
                }
            }
        }
    };

    static Server server;
    return server.error;
}

} // namespace corvanetest

#endif
