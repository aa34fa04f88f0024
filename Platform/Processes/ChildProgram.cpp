#include "Platform/Processes/ChildProgram.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Platform::ChildProgram {
namespace {

constexpr auto emptyFile = "/dev/null";
constexpr int firstOfOtherFiles = STDERR_FILENO + 1;
// What this program ignores, others need not expect.
constexpr std::array ignoredSignals = {SIGPIPE, SIGXFSZ};

// How a child starts: with none of our streams and files, and none of our signals' settings.
class Surroundings {
public:
    Surroundings() {
        posix_spawn_file_actions_init(&actions);
        posix_spawnattr_init(&attributes);
        for (int const descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            posix_spawn_file_actions_addopen(&actions, descriptor, emptyFile, O_RDWR, 0);
        posix_spawn_file_actions_addclosefrom_np(&actions, firstOfOtherFiles);
        sigset_t signals;
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&attributes, &signals);
        for (int const signal : ignoredSignals)
            sigaddset(&signals, signal);
        posix_spawnattr_setsigdefault(&attributes, &signals);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    Surroundings(Surroundings const&) = delete;
    Surroundings& operator=(Surroundings const&) = delete;
    ~Surroundings() {
        posix_spawnattr_destroy(&attributes);
        posix_spawn_file_actions_destroy(&actions);
    }

    posix_spawn_file_actions_t actions{};
    posix_spawnattr_t attributes{};
};

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (auto& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

// What a program is started with, in the form that the system takes.
class Words {
public:
    Words(std::filesystem::path const& program, std::vector<std::string> arguments,
          Foundation::Environment const& environment)
        : path(program.string()),
          words(std::move(arguments)),
          assignments(environment.assignments()) {
        words.insert(words.begin(), path);
        argumentPointers = pointersTo(words);
        variablePointers = pointersTo(assignments);
    }
    Words(Words const&) = delete;
    Words& operator=(Words const&) = delete;

    [[nodiscard]] char const* program() const { return path.c_str(); }
    [[nodiscard]] char* const* arguments() const { return argumentPointers.data(); }
    [[nodiscard]] char* const* variables() const { return variablePointers.data(); }

private:
    std::string path;
    std::vector<std::string> words;
    std::vector<std::string> assignments;
    std::vector<char*> argumentPointers;
    std::vector<char*> variablePointers;
};

std::optional<pid_t> start(Words const& words) {
    Surroundings const surroundings;
    pid_t child = -1;
    if (::posix_spawn(&child, words.program(), &surroundings.actions, &surroundings.attributes,
                      words.arguments(), words.variables()) != 0)
        return std::nullopt;
    return child;
}

// A handler of ours must not run in a child, which has no more than this thread.
class AllSignalsBlocked {
public:
    AllSignalsBlocked() {
        sigset_t all;
        sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, &former);
    }
    AllSignalsBlocked(AllSignalsBlocked const&) = delete;
    AllSignalsBlocked& operator=(AllSignalsBlocked const&) = delete;
    ~AllSignalsBlocked() { ::pthread_sigmask(SIG_SETMASK, &former, nullptr); }

private:
    sigset_t former{};
};

// Runs in the child of a program that may have other threads: nothing here may take a lock or memory. Our
// streams go first, since somebody may be waiting for their end.
[[noreturn]] void becomeApart(Words const& words) {
    int const null = ::open(emptyFile, O_RDWR);
    bool isReady = null >= 0;
    for (int const descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        isReady = isReady && ::dup2(null, descriptor) == descriptor;
    ::closefrom(firstOfOtherFiles);
    // Who outlives this program keeps no file system busy.
    isReady = isReady && ::setsid() >= 0 && ::chdir("/") == 0;
    for (int const signal : ignoredSignals)
        std::signal(signal, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    if (isReady && ::pthread_sigmask(SIG_SETMASK, &none, nullptr) == 0)
        ::execve(words.program(), words.arguments(), words.variables());
    ::_exit(1);
}

// Whether the process has ended by then; it is not yet waited for.
bool endsWithin(pid_t child, std::chrono::milliseconds patience) {
    int const handle = static_cast<int>(::syscall(SYS_pidfd_open, child, 0));
    if (handle < 0) return true; // A kernel without such handles: it is waited for without a bound.
    auto const deadline = std::chrono::steady_clock::now() + patience;
    int ready = 0;
    do {
        auto const left =
            std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        if (left.count() < 0) break;
        pollfd waiting{.fd = handle, .events = POLLIN, .revents = 0};
        ready = ::poll(&waiting, 1, static_cast<int>(left.count()));
    } while (ready < 0 && errno == EINTR);
    ::close(handle);
    return ready > 0;
}

} // namespace

std::optional<std::filesystem::path> find(Foundation::Environment const& environment, std::string_view name) {
    auto const path = environment.value("PATH").value_or("");
    for (std::size_t begin = 0; begin <= path.size();) {
        auto const end = std::min(path.find(':', begin), path.size());
        std::filesystem::path const folder(path.substr(begin, end - begin));
        begin = end + 1;
        if (!folder.is_absolute()) continue;
        auto program = folder / name;
        std::error_code failure;
        if (std::filesystem::is_regular_file(program, failure) && ::access(program.c_str(), X_OK) == 0)
            return program;
    }
    return std::nullopt;
}

std::optional<int> run(std::filesystem::path const& program, std::vector<std::string> const& arguments,
                       Foundation::Environment const& environment, std::chrono::milliseconds patience) {
    auto const child = start(Words(program, arguments, environment));
    if (!child) return std::nullopt;
    bool const hasEnded = endsWithin(*child, patience);
    if (!hasEnded) ::kill(*child, SIGKILL);
    int status = 0;
    while (::waitpid(*child, &status, 0) < 0) {
        if (errno != EINTR) return std::nullopt;
    }
    if (!hasEnded || !WIFEXITED(status)) return std::nullopt;
    return WEXITSTATUS(status);
}

bool startApart(std::filesystem::path const& program, std::vector<std::string> const& arguments,
                Foundation::Environment const& environment) {
    // posix_spawn() would hold us up until the program is loaded, and how long that takes is the others'
    // affair on a busy machine.
    Words const words(program, arguments, environment);
    AllSignalsBlocked const blocked;
    auto const child = ::fork();
    if (child == 0) becomeApart(words);
    return child > 0;
}

} // namespace Platform::ChildProgram
