#pragma once

#include <csignal>
#include <cstdio>
#include <exception>
#include <functional>
#include <optional>

#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

/// Work in a process of its own that is killed in the middle.
namespace KilledProcess {

enum class Outcome { killed, finished, failed, notPermitted };

/// Runs the work and kills the process without warning at its `stop`th system call, counting each twice: on
/// the way in and on the way out. `finished` when it has fewer. The work yields whether it succeeded.
inline Outcome killedAtSystemCall(int stop, std::function<bool()> const& work) {
    constexpr int untraceable = 77;
    auto const child = ::fork();
    if (child == 0) {
        if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) ::_exit(untraceable);
        ::raise(SIGSTOP);
        ::_exit(work() ? 0 : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    if (WIFEXITED(status)) return Outcome::notPermitted;
    ::ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_EXITKILL | PTRACE_O_TRACESYSGOOD);
    int pending = 0;
    for (int seen = 0; seen < stop;) {
        ::ptrace(PTRACE_SYSCALL, child, nullptr, pending);
        ::waitpid(child, &status, 0);
        if (WIFEXITED(status)) return WEXITSTATUS(status) == 0 ? Outcome::finished : Outcome::failed;
        auto const isSystemCall = WSTOPSIG(status) == (SIGTRAP | 0x80);
        if (isSystemCall) ++seen;
        pending = isSystemCall ? 0 : WSTOPSIG(status);
    }
    ::kill(child, SIGKILL);
    ::waitpid(child, &status, 0);
    return Outcome::killed;
}

/// Runs the work and holds it at its `stop`th system call, counted as above, while `interruption` happens;
/// then lets it go on to its end. `finished` when it has come to its end, before the stop or after it.
inline Outcome interruptedAtSystemCall(int stop, std::function<bool()> const& work,
                                       std::function<void()> const& interruption, bool& wasInterrupted) {
    constexpr int untraceable = 77;
    auto const child = ::fork();
    if (child == 0) {
        if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) ::_exit(untraceable);
        ::raise(SIGSTOP);
        ::_exit(work() ? 0 : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    if (WIFEXITED(status)) return Outcome::notPermitted;
    ::ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_EXITKILL | PTRACE_O_TRACESYSGOOD);
    int pending = 0;
    wasInterrupted = false;
    for (int seen = 0;;) {
        // Once it is over, the rest runs without halts.
        ::ptrace(wasInterrupted ? PTRACE_CONT : PTRACE_SYSCALL, child, nullptr, pending);
        ::waitpid(child, &status, 0);
        if (WIFEXITED(status)) return WEXITSTATUS(status) == 0 ? Outcome::finished : Outcome::failed;
        if (WIFSIGNALED(status)) return Outcome::failed;
        auto const isSystemCall = WSTOPSIG(status) == (SIGTRAP | 0x80);
        pending = isSystemCall ? 0 : WSTOPSIG(status);
        if (isSystemCall && ++seen == stop) {
            interruption();
            wasInterrupted = true;
        }
    }
}

/// A process that repeats its work, and tells after each time that it has been done.
class Repeating {
public:
    explicit Repeating(std::function<bool(int time)> const& work) {
        int ends[2];
        if (::pipe(ends) != 0) ::_exit(1);
        child = ::fork();
        if (child == 0) {
            ::close(ends[0]);
            // Nothing may leave this process but by its end: the rest of the test is its parent's.
            try {
                for (int time = 1; work(time); ++time) {
                    if (::write(ends[1], "x", 1) != 1) break;
                }
            } catch (std::exception const& failure) {
                std::fprintf(stderr, "%s\n", failure.what());
            }
            ::_exit(1);
        }
        ::close(ends[1]);
        reports = ends[0];
    }
    ~Repeating() {
        kill();
        ::close(reports);
    }
    Repeating(Repeating const&) = delete;
    Repeating& operator=(Repeating const&) = delete;

    /// Waits until the work has been done that often in all. Yields false when the process has ended before.
    bool awaitDone(int times) {
        char report = 0;
        while (done < times) {
            if (::read(reports, &report, 1) != 1) return false;
            ++done;
        }
        return true;
    }

    /// Kills it without warning, and yields how often the work had been done by its own account.
    int kill() {
        if (child < 0) return done;
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        child = -1;
        awaitDone(1 << 30);
        return done;
    }

private:
    pid_t child = -1;
    int reports = -1;
    int done = 0;
};

} // namespace KilledProcess
