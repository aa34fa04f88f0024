#pragma once

#include <chrono>
#include <expected>
#include <filesystem>
#include <memory>
#include <system_error>

namespace Platform {

/// Locks that keep the programs of one user, and the threads of one program, from changing a file at once.
class FileLocks {
public:
    /// A lock that is held until its end.
    class Held {
    public:
        Held() = default;
        Held(Held const&) = delete;
        Held& operator=(Held const&) = delete;
        virtual ~Held() = default;
    };

    virtual ~FileLocks() = default;

    /// Takes the lock that `lockFile` stands for, and waits at most `patience` for whoever holds it. The file
    /// is made when it is missing and stays; its folder must be there. `timed_out` when the lock was not let
    /// go in time.
    [[nodiscard]] virtual std::expected<std::unique_ptr<Held>, std::error_code>
    take(std::filesystem::path const& lockFile, std::chrono::milliseconds patience) const = 0;
};

} // namespace Platform
