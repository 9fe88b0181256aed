#pragma once

#include <functional>

#include <sys/wait.h>
#include <unistd.h>

namespace quillon::testing {

// A test's work done in a child process: under limits (setrlimit) or rights that must not touch
// the test process, or next to other processes at the same time.

// The exit status of a child that gave up the rights of the superuser and could not.
constexpr int kNoRights = 77;

// Starts body in a child process, which exits with 1 when body returns true, 0 otherwise. With
// dropRights, the child gives up the rights of the superuser first (becoming the unprivileged
// user 65534), so that file permissions hold for it; it exits with kNoRights when it cannot.
inline pid_t StartChild(bool dropRights, const std::function<bool()>& body) {
    const pid_t child = ::fork();
    if (child == 0) {
        if (dropRights && ::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0))
            ::_exit(kNoRights);
        ::_exit(body() ? 1 : 0);
    }
    return child;
}

// Waits for the child; its exit status, or -1 when it did not exit normally (a crash).
inline int ExitStatus(pid_t child) {
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status))
        return -1;
    return WEXITSTATUS(status);
}

inline int RunInChild(bool dropRights, const std::function<bool()>& body) {
    return ExitStatus(StartChild(dropRights, body));
}

} // namespace quillon::testing
