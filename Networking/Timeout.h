#pragma once

#include "Foundation/Task.h"
#include "Foundation/TaskRace.h"
#include "Networking/TimeoutError.h"

#include <cstdint>
#include <exception>
#include <functional>
#include <optional>
#include <utility>

namespace Networking {
namespace Detail {

/// `seconds` × 10⁹. Not a number, negative, or 2⁶⁴ and above is a fatal error.
std::uint64_t nanoseconds(double seconds);

/// Keeps what an operation yields or throws, so that the race itself never fails for it.
template <typename T>
struct Captured {
    std::optional<T> value;
    std::exception_ptr error;
};

template <typename T>
Foundation::Task<void> capture(std::function<Foundation::Task<T>()> operation,
                               std::shared_ptr<Captured<T>> captured) {
    try {
        T value = co_await operation();
        captured->value = std::move(value);
    } catch (...) {
        captured->error = std::current_exception();
    }
}

} // namespace Detail

/// What `operation` yields or throws, if that comes within `seconds`; otherwise TimeoutError. The loser of
/// the two is cancelled and awaited, so nothing runs on when this returns: an operation that does not heed
/// its cancellation holds the caller up. Seconds that are not a number, negative, or beyond 2⁶⁴ ns are a
/// fatal error. Time in suspend does not count.
template <typename T>
Foundation::Task<T> withTimeout(double seconds, std::function<Foundation::Task<T>()> operation) {
    auto const nanoseconds = Detail::nanoseconds(seconds);
    auto captured = std::make_shared<Detail::Captured<T>>();
    auto contender = Detail::capture<T>(std::move(operation), captured);
    bool const isInTime = co_await Foundation::outrunsTimer(std::move(contender), nanoseconds);
    if (!isInTime) throw TimeoutError();
    if (captured->error) std::rethrow_exception(captured->error);
    co_return std::move(*captured->value);
}

} // namespace Networking
