// Processes that a test starts, kills and waits for.
#pragma once

#include <csignal>
#include <functional>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace QMT {

// Does the work in a process of its own, which then ends with the work's result, whether it went well. The
// destructor kills it.
class ChildProcess {
public:
    explicit ChildProcess(std::function<bool()> const& work) : process(::fork()) {
        if (process == 0)
            ::_exit(work() ? 0 : 1);
    }

    ChildProcess(ChildProcess&&) = delete;

    ~ChildProcess() {
        if (process > 0 && ::kill(process, SIGKILL) == 0)
            Wait();
    }

    // Whether the work went well.
    bool Wait() {
        int status = 0;
        ::waitpid(std::exchange(process, -1), &status, 0);
        return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }

private:
    pid_t process;
};

} // namespace QMT
