#include "Platform/Files/PosixFileLocks.h"

#include "Platform/Files/FileDescriptor.h"

#include <cerrno>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace Platform {
namespace {

std::error_code lastError() {
    return {errno, std::generic_category()};
}

class HeldDescriptor final : public FileLocks::Held {
public:
    explicit HeldDescriptor(FileDescriptor file) : file(std::move(file)) {}

private:
    FileDescriptor file;
};

} // namespace

std::expected<std::unique_ptr<FileLocks::Held>, std::error_code>
PosixFileLocks::take(std::filesystem::path const& lockFile, std::chrono::milliseconds patience) const {
    constexpr std::chrono::milliseconds pause{10};
    auto const flags = O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    FileDescriptor file(::open(lockFile.c_str(), flags, 0600));
    if (!file.isOpen()) return std::unexpected(lastError());
    auto const end = std::chrono::steady_clock::now() + patience;
    // Tried again and again, since a call that waits cannot be told when to give up.
    while (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR) return std::unexpected(lastError());
        if (std::chrono::steady_clock::now() >= end)
            return std::unexpected(std::make_error_code(std::errc::timed_out));
        std::this_thread::sleep_for(pause);
    }
    return std::make_unique<HeldDescriptor>(std::move(file));
}

} // namespace Platform
