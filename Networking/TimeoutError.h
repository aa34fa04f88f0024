#pragma once

#include <exception>

namespace Networking {

/// The time of `withTimeout` ran out.
class TimeoutError final : public std::exception {
public:
    [[nodiscard]] char const* what() const noexcept override { return "the time ran out"; }

    friend bool operator==(TimeoutError const&, TimeoutError const&) { return true; }
};

} // namespace Networking
