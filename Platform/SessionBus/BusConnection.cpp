#include "Platform/SessionBus/BusConnection.h"

#include "Platform/SessionBus/MessageValues.h"

#include <systemd/sd-bus.h>

#include <algorithm>
#include <cstdint>
#include <utility>

namespace Platform {

namespace {

// 0 would stand for the library's own patience.
std::uint64_t microsecondsUntil(BusConnection::Deadline deadline) {
    using std::chrono::microseconds;
    auto const left =
        std::chrono::duration_cast<microseconds>(deadline - std::chrono::steady_clock::now()).count();
    return static_cast<std::uint64_t>(std::max<microseconds::rep>(left, 1));
}

// Serves the connection until `isDone`; yields whether it came to that before the deadline.
template <typename Condition>
bool serveUntil(sd_bus* connection, BusConnection::Deadline deadline, Condition const& isDone) {
    while (!isDone()) {
        int const processed = sd_bus_process(connection, nullptr);
        if (processed < 0) return false;
        if (processed > 0) continue;
        if (std::chrono::steady_clock::now() >= deadline) return false;
        if (sd_bus_wait(connection, microsecondsUntil(deadline)) < 0) return false;
    }
    return true;
}

bool isRunning(sd_bus* connection) {
    return sd_bus_is_ready(connection) > 0;
}

bool hasSentAll(sd_bus* connection) {
    std::uint64_t waiting = 0;
    return sd_bus_get_n_queued_write(connection, &waiting) >= 0 && waiting == 0;
}

} // namespace

void BusConnection::Close::operator()(sd_bus* opened) const {
    sd_bus_close_unref(opened);
}

std::optional<BusConnection> BusConnection::open(std::string const& address, Deadline deadline) {
    sd_bus* made = nullptr;
    if (sd_bus_new(&made) < 0) return std::nullopt;
    std::unique_ptr<sd_bus, Close> opened(made);
    bool const isStarted = sd_bus_set_address(made, address.c_str()) >= 0 &&
                           sd_bus_set_bus_client(made, 1) >= 0 && sd_bus_start(made) >= 0;
    if (!isStarted || !serveUntil(made, deadline, [made] { return isRunning(made); })) return std::nullopt;
    return BusConnection(std::move(opened));
}

bool BusConnection::isOpen() const {
    return isRunning(connection.get());
}

std::optional<BusValue> BusConnection::call(BusMethod const& method,
                                            std::vector<std::string> const& arguments, Deadline deadline) {
    auto const message = madeMessage([&](sd_bus_message** made) {
        return sd_bus_message_new_method_call(connection.get(), made, method.owner, method.objectPath,
                                              method.interface, method.name);
    });
    if (!message) return std::nullopt;
    for (auto const& argument : arguments)
        if (sd_bus_message_append_basic(message.get(), SD_BUS_TYPE_STRING, argument.c_str()) < 0)
            return std::nullopt;
    auto const answer = madeMessage([&](sd_bus_message** made) {
        return sd_bus_call(connection.get(), message.get(), microsecondsUntil(deadline), nullptr, made);
    });
    if (!answer) return std::nullopt;
    return firstValue(answer.get());
}

void BusConnection::emit(BusSignal const& signal, Deadline deadline) {
    if (sd_bus_emit_signal(connection.get(), signal.objectPath, signal.interface, signal.name, nullptr) < 0)
        return;
    serveUntil(connection.get(), deadline, [this] { return hasSentAll(connection.get()); });
}

} // namespace Platform
