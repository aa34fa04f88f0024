#include "ProgramRunner.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <linux/capability.h>
#include <poll.h>
#include <pty.h>
#include <string_view>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace {

[[noreturn]] void failed(char const* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

// A pipe, or the two ends of a terminal.
struct Ends {
    int ours = -1;
    int theirs = -1;
};

Ends readablePipe() {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) failed("pipe2");
    return {.ours = ends[0], .theirs = ends[1]};
}

Ends writablePipe() {
    auto const [reading, writing] = readablePipe();
    return {.ours = writing, .theirs = reading};
}

Ends terminal() {
    Ends ends;
    winsize size{};
    size.ws_row = 24;
    size.ws_col = 80;
    if (::openpty(&ends.ours, &ends.theirs, nullptr, nullptr, &size) != 0) failed("openpty");
    ::fcntl(ends.ours, F_SETFD, FD_CLOEXEC);
    ::fcntl(ends.theirs, F_SETFD, FD_CLOEXEC);
    return ends;
}

// Root may read everything; without these two it may read what its files' modes allow, like anybody.
bool dropOverride() {
    if (::geteuid() != 0) return true;
    return ::prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE, 0, 0, 0) == 0 &&
           ::prctl(PR_CAPBSET_DROP, CAP_DAC_READ_SEARCH, 0, 0, 0) == 0;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (auto& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

// Gathers what arrives on two descriptors until both are closed or the time is over.
class Gathering {
public:
    Gathering(int output, int errors) : descriptors{{output, POLLIN, 0}, {errors, POLLIN, 0}} {}

    // Whether both ended in time, or `text` came on the first.
    bool run(std::chrono::steady_clock::time_point deadline, std::string_view text = {}) {
        while (descriptors[0].fd >= 0 || descriptors[1].fd >= 0) {
            if (!text.empty() && texts[0].contains(text)) return true;
            auto const left = std::chrono::duration_cast<std::chrono::milliseconds>(
                deadline - std::chrono::steady_clock::now());
            if (left.count() <= 0) return false;
            int const ready = ::poll(descriptors, 2, static_cast<int>(left.count()));
            if (ready < 0 && errno != EINTR) failed("poll");
            for (int index = 0; index < 2; ++index)
                if (descriptors[index].fd >= 0 && descriptors[index].revents != 0) read(index);
        }
        return true;
    }

    std::string texts[2];

private:
    void read(int index) {
        char buffer[65536];
        auto const count = ::read(descriptors[index].fd, buffer, sizeof buffer);
        if (count < 0 && errno == EINTR) return;
        // A terminal whose other end has gone answers EIO in place of an end.
        if (count <= 0) {
            descriptors[index].fd = -1;
            return;
        }
        texts[index].append(buffer, static_cast<std::size_t>(count));
    }

    pollfd descriptors[2];
};

void writeInput(int descriptor, std::string_view text) {
    while (!text.empty()) {
        auto const count = ::write(descriptor, text.data(), text.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return; // Nobody reads: the program's own affair.
        text.remove_prefix(static_cast<std::size_t>(count));
    }
}

std::string commandLineOf(pid_t process) {
    std::ifstream stream("/proc/" + std::to_string(process) + "/cmdline", std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

// The new process, up to the program. Only calls that are safe after fork.
[[noreturn]] void become(ProgramRun const& program, int input, int output, int errors, char** arguments,
                         char** environment) {
    bool const isTerminal = program.output == ProgramRun::Output::terminal;
    bool const isReady = (!isTerminal || (::setsid() >= 0 && ::ioctl(input, TIOCSCTTY, 0) == 0)) &&
                         ::dup2(input, STDIN_FILENO) >= 0 && ::dup2(output, STDOUT_FILENO) >= 0 &&
                         ::dup2(errors, STDERR_FILENO) >= 0 && ::chdir(program.directory.c_str()) == 0 &&
                         (program.rights == ProgramRun::Rights::usual || dropOverride());
    // The tests' own settings must not reach the program: an ignored SIGPIPE is inherited.
    std::signal(SIGPIPE, SIG_DFL);
    if (isReady) ::execve(program.path.c_str(), arguments, environment);
    ::_exit(127);
}

} // namespace

bool canGiveUpOverride() {
    pid_t const child = ::fork();
    if (child < 0) failed("fork");
    if (child == 0) ::_exit(dropOverride() ? 0 : 1);
    int status = 0;
    ::waitpid(child, &status, 0);
    return status == 0;
}

ProgramResult run(ProgramRun const& program) {
    bool const isTerminal = program.output == ProgramRun::Output::terminal;
    Ends const input = isTerminal ? terminal() : writablePipe();
    Ends const output = isTerminal ? Ends{.ours = ::dup(input.ours), .theirs = input.theirs} : readablePipe();
    Ends const errors = readablePipe();
    int const fullDevice = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
    int const theirOutput = program.output == ProgramRun::Output::fullDevice ? fullDevice : output.theirs;
    int const theirErrors = isTerminal ? output.theirs : errors.theirs;
    if (program.output == ProgramRun::Output::readerGone) ::close(output.ours);

    auto words = program.arguments;
    words.insert(words.begin(), program.path);
    std::vector<std::string> variables;
    for (auto const& [name, value] : program.environment)
        variables.push_back(name + "=" + value);
    auto arguments = pointersTo(words);
    auto environment = pointersTo(variables);

    pid_t const child = ::fork();
    if (child < 0) failed("fork");
    if (child == 0)
        become(program, input.theirs, theirOutput, theirErrors, arguments.data(), environment.data());

    if (!isTerminal) ::close(input.theirs);
    ::close(output.theirs);
    ::close(errors.theirs);
    ::close(fullDevice);
    std::signal(SIGPIPE, SIG_IGN);
    auto const deadline = std::chrono::steady_clock::now() + program.patience;
    Gathering gathering(program.output == ProgramRun::Output::readerGone ? -1 : output.ours, errors.ours);
    if (!program.inputAfter.empty()) gathering.run(deadline, program.inputAfter);
    if (program.beforeInput) program.beforeInput();
    auto commandLine = commandLineOf(child);
    writeInput(input.ours, program.input);
    if (!isTerminal) ::close(input.ours);
    if (!gathering.run(deadline)) ::kill(child, SIGKILL);
    int status = 0;
    rusage usage{};
    while (::wait4(child, &status, 0, &usage) < 0 && errno == EINTR) {
    }
    if (isTerminal) ::close(input.ours);
    if (program.output != ProgramRun::Output::readerGone) ::close(output.ours);
    ::close(errors.ours);
    return {.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1,
            .signal = WIFSIGNALED(status) ? std::optional(WTERMSIG(status)) : std::nullopt,
            .output = std::move(gathering.texts[0]),
            .errors = std::move(gathering.texts[1]),
            .peakMemory = usage.ru_maxrss,
            .commandLine = std::move(commandLine)};
}
