#include "Platform/SessionBus/BusSubscription.h"

#include "Platform/SessionBus/BusWait.h"

#include <systemd/sd-bus.h>

#include <utility>

namespace Platform {

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
    return waitOf(state->connection);
}

void BusSubscription::serve() {
    int processed = 1;
    while (processed > 0)
        processed = sd_bus_process(state->connection, nullptr);
    if (processed < 0) state->close();
}

} // namespace Platform
