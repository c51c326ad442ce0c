// Processes that a test starts, kills and waits for.
#pragma once

#include <csignal>
#include <functional>
#include <sys/wait.h>
#include <unistd.h>

namespace QMT {

// Does the work in a process of its own, which then ends with the work's result. The destructor kills it.
class ChildProcess {
public:
    explicit ChildProcess(std::function<int()> const& work) : process(::fork()) {
        if (process == 0)
            ::_exit(work());
    }

    ChildProcess(ChildProcess const&) = delete;
    ChildProcess& operator=(ChildProcess const&) = delete;

    ~ChildProcess() {
        if (process > 0 && ::kill(process, SIGKILL) == 0)
            Wait();
    }

    // What the work gave.
    int Wait() {
        int status = 0;
        ::waitpid(process, &status, 0);
        process = -1;
        return WEXITSTATUS(status);
    }

private:
    pid_t process;
};

} // namespace QMT
