#pragma once

#include <cerrno>
#include <system_error>
#include <utility>

#include <unistd.h>

namespace Platform {

/// Owns one open file descriptor.
class FileDescriptor {
public:
    explicit FileDescriptor(int number) : number(number) {}
    ~FileDescriptor() { close(); }
    FileDescriptor(FileDescriptor&& other) noexcept : number(std::exchange(other.number, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(number, other.number);
        return *this;
    }

    [[nodiscard]] bool isOpen() const { return number >= 0; }
    [[nodiscard]] int get() const { return number; }

    /// Closes now and tells whether it failed: a network file system may report a failed write only here.
    std::error_code close() {
        if (!isOpen()) return {};
        // Not tried again after EINTR: the descriptor is gone by then.
        if (::close(std::exchange(number, -1)) == 0 || errno == EINTR) return {};
        return {errno, std::generic_category()};
    }

private:
    int number;
};

} // namespace Platform
