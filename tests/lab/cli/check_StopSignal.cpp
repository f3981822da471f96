#include "lab/cli/StopSignal.h"

#include "practice/Check.h"

#include <csignal>
#include <initializer_list>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// How a process ends that is sent a signal twice while nothing in it looks at the flag; its own words as
/// exit codes.
int endOf(int number)
{
    const pid_t child = ::fork();
    if (child == 0) {
        lab::watchStopSignals();
        if (lab::stopFlag() || lab::stopStatus() != 0)
            ::_exit(1);
        ::raise(number);
        if (!lab::stopFlag() || lab::stopStatus() != 128 + number)
            ::_exit(2);
        ::raise(number);
        ::_exit(3);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return status;
}

} // namespace

TEST_CASE("the first signal asks a program to stop, the second one ends it")
{
    for (const int number : {SIGINT, SIGTERM}) {
        const int status = endOf(number);
        CHECK(WIFSIGNALED(status));
        CHECK_EQ(WTERMSIG(status), number);
        CHECK_EQ(WIFEXITED(status) ? WEXITSTATUS(status) : 0, 0);
    }
}

CHECK_MAIN()
