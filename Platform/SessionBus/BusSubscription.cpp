#include "Platform/SessionBus/BusSubscription.h"

#include <systemd/sd-bus.h>

#include <cstdint>
#include <utility>

namespace Platform {

namespace {

using Clock = std::chrono::steady_clock;

// The library counts microseconds of the monotonic clock, which is the standard library's steady one here.
std::optional<Clock::time_point> momentOf(std::uint64_t microseconds) {
    if (microseconds == UINT64_MAX) return std::nullopt;
    return Clock::time_point(std::chrono::microseconds(microseconds));
}

} // namespace

struct BusSubscription::State {
    State(std::string const& address, BusSignal const& signal, std::function<void()> heard)
        : heard(std::move(heard)) {
        if (!begin(address, signal)) close();
    }
    State(State const&) = delete;
    State& operator=(State const&) = delete;
    ~State() { close(); }

    bool begin(std::string const& address, BusSignal const& signal) {
        return sd_bus_new(&connection) >= 0 && sd_bus_set_address(connection, address.c_str()) >= 0 &&
               sd_bus_set_bus_client(connection, 1) >= 0 && sd_bus_start(connection) >= 0 &&
               // Without a slot of its own the subscription lasts as long as the connection.
               sd_bus_match_signal_async(connection, nullptr, nullptr, signal.objectPath, signal.interface,
                                         signal.name, arrived, nullptr, this) >= 0;
    }

    void close() { connection = sd_bus_close_unref(connection); }

    // An exception must not pass through the library's frames: it ends the process here.
    static int arrived(sd_bus_message*, void* self, sd_bus_error*) noexcept {
        static_cast<State*>(self)->heard();
        return 0;
    }

    std::function<void()> heard;
    sd_bus* connection = nullptr;
};

BusSubscription::BusSubscription(std::string const& address, BusSignal const& signal,
                                 std::function<void()> heard)
    : state(std::make_unique<State>(address, signal, std::move(heard))) {}

BusSubscription::~BusSubscription() = default;

std::optional<BusSubscription::Wait> BusSubscription::wait() const {
    if (state->connection == nullptr) return std::nullopt;
    int const descriptor = sd_bus_get_fd(state->connection);
    int const events = sd_bus_get_events(state->connection);
    std::uint64_t moment = UINT64_MAX;
    bool const isKnown =
        descriptor >= 0 && events >= 0 && sd_bus_get_timeout(state->connection, &moment) >= 0;
    if (!isKnown) return std::nullopt;
    return Wait{.descriptor = descriptor, .events = static_cast<short>(events), .until = momentOf(moment)};
}

void BusSubscription::serve() {
    int processed = 1;
    while (processed > 0)
        processed = sd_bus_process(state->connection, nullptr);
    if (processed < 0) state->close();
}

} // namespace Platform
