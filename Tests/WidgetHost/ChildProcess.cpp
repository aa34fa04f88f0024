#include "ChildProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <stdexcept>
#include <utility>

namespace {

constexpr std::chrono::seconds patience{20};

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> result;
    for (auto& text : texts) {
        result.push_back(text.data());
    }
    result.push_back(nullptr);
    return result;
}

} // namespace

ChildProcess::ChildProcess(std::vector<std::string> const& words, Environment const& environment) {
    std::vector<std::string> arguments = words;
    std::vector<std::string> variables;
    for (auto const& [name, value] : environment) {
        variables.push_back(name + "=" + value);
    }
    auto const argumentPointers = pointers(arguments);
    auto const variablePointers = pointers(variables);
    std::array<int, 2> pipe{};
    if (pipe2(pipe.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    errors = memfd_create("errors", MFD_CLOEXEC);
    process = fork();
    if (process == 0) {
        // Above the descriptors that are about to be laid, so that none is laid over.
        int const end = fcntl(pipe[1], F_DUPFD_CLOEXEC, 10);
        dup2(errors, 2);
        dup2(end, 1);
        dup2(end, 3);
        execvpe(argumentPointers[0], argumentPointers.data(), variablePointers.data());
        _exit(127);
    }
    close(pipe[1]);
    output = pipe[0];
}

ChildProcess::~ChildProcess() {
    if (process > 0) {
        kill(process, SIGKILL);
        waitpid(process, nullptr, 0);
    }
    close(output);
    close(errors);
}

std::optional<std::string> ChildProcess::readLine() {
    for (;;) {
        if (auto const end = unread.find('\n'); end != std::string::npos) {
            auto line = unread.substr(0, end);
            unread.erase(0, end + 1);
            return line;
        }
        pollfd waiting{.fd = output, .events = POLLIN, .revents = 0};
        if (poll(&waiting, 1, static_cast<int>(std::chrono::milliseconds(patience).count())) <= 0) {
            return std::nullopt;
        }
        std::array<char, 4096> buffer{};
        auto const count = read(output, buffer.data(), buffer.size());
        if (count <= 0) {
            return std::nullopt;
        }
        unread.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

void ChildProcess::signal(int number) const {
    kill(process, number);
}

std::optional<int> ChildProcess::wait() {
    int const handle = static_cast<int>(syscall(SYS_pidfd_open, process, 0));
    if (handle >= 0) {
        pollfd waiting{.fd = handle, .events = POLLIN, .revents = 0};
        poll(&waiting, 1, static_cast<int>(std::chrono::milliseconds(patience).count()));
        close(handle);
    }
    int status = 0;
    if (waitpid(process, &status, WNOHANG) != process) {
        return std::nullopt;
    }
    process = -1;
    return WIFEXITED(status) ? std::optional(WEXITSTATUS(status)) : std::nullopt;
}

std::string ChildProcess::errorText() const {
    std::string text(static_cast<std::size_t>(lseek(errors, 0, SEEK_END)), '\0');
    auto const count = pread(errors, text.data(), text.size(), 0);
    text.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return text;
}
