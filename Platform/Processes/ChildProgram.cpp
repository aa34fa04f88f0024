#include "Platform/Processes/ChildProgram.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Platform::ChildProgram {
namespace {

// How a child starts: with none of our streams and files, and none of our signals' settings.
class Surroundings {
public:
    enum class Session : std::uint8_t { ours, itsOwn };

    explicit Surroundings(Session session) {
        posix_spawn_file_actions_init(&actions);
        posix_spawnattr_init(&attributes);
        for (int const descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            posix_spawn_file_actions_addopen(&actions, descriptor, "/dev/null", O_RDWR, 0);
        posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
        // Who outlives this program keeps no file system busy.
        if (session == Session::itsOwn) posix_spawn_file_actions_addchdir_np(&actions, "/");
        // What this program ignores or blocks, others need not expect.
        sigset_t signals;
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&attributes, &signals);
        sigaddset(&signals, SIGPIPE);
        sigaddset(&signals, SIGXFSZ);
        posix_spawnattr_setsigdefault(&attributes, &signals);
        auto const apart = session == Session::itsOwn ? POSIX_SPAWN_SETSID : 0;
        posix_spawnattr_setflags(&attributes,
                                 static_cast<short>(POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | apart));
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

std::optional<pid_t> start(std::filesystem::path const& program, std::vector<std::string> arguments,
                           Foundation::Environment const& environment, Surroundings::Session session) {
    arguments.insert(arguments.begin(), program.string());
    auto variables = environment.assignments();
    auto const words = pointersTo(arguments);
    auto const surroundingVariables = pointersTo(variables);
    Surroundings const surroundings(session);
    pid_t child = -1;
    if (::posix_spawn(&child, program.c_str(), &surroundings.actions, &surroundings.attributes, words.data(),
                      surroundingVariables.data()) != 0)
        return std::nullopt;
    return child;
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
    auto const child = start(program, arguments, environment, Surroundings::Session::ours);
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
    return start(program, arguments, environment, Surroundings::Session::itsOwn).has_value();
}

} // namespace Platform::ChildProgram
