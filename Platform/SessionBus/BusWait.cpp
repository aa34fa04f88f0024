#include "Platform/SessionBus/BusWait.h"

#include <chrono>
#include <cstdint>

namespace Platform {

namespace {

using Clock = std::chrono::steady_clock;

// The library counts microseconds of the monotonic clock, which is the standard library's steady one here.
std::optional<Clock::time_point> momentOf(std::uint64_t microseconds) {
    if (microseconds == UINT64_MAX) return std::nullopt;
    return Clock::time_point(std::chrono::microseconds(microseconds));
}

} // namespace

std::optional<BusSubscription::Wait> waitOf(sd_bus* connection) {
    if (connection == nullptr) return std::nullopt;
    int const descriptor = sd_bus_get_fd(connection);
    int const events = sd_bus_get_events(connection);
    std::uint64_t moment = UINT64_MAX;
    bool const isKnown = descriptor >= 0 && events >= 0 && sd_bus_get_timeout(connection, &moment) >= 0;
    if (!isKnown) return std::nullopt;
    return BusSubscription::Wait{
        .descriptor = descriptor, .events = static_cast<short>(events), .until = momentOf(moment)};
}

} // namespace Platform
