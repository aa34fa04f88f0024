#pragma once

#include "Platform/SessionBus/BusValue.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct sd_bus;

namespace Platform {

/// A method of an object on the bus.
struct BusMethod {
    char const* owner;
    char const* objectPath;
    char const* interface;
    char const* name;
};

/// A signal of an object on the bus.
struct BusSignal {
    char const* objectPath;
    char const* interface;
    char const* name;
};

/// A connection to a message bus, for a program that has nothing else to wait for: every exchange ends at a
/// given moment, answered or not. For one thread at a time.
class BusConnection final {
public:
    using Deadline = std::chrono::steady_clock::time_point;

    /// Absent when `address` is none that can be connected to, or when the bus did not take the connection in
    /// time.
    static std::optional<BusConnection> open(std::string const& address, Deadline deadline);

    /// Whether the connection still stands, as far as the last exchange told.
    [[nodiscard]] bool isOpen() const;

    /// The first value of the answer to a method that takes texts; absent when there was none in time, or an
    /// error.
    [[nodiscard]] std::optional<BusValue> call(BusMethod const& method,
                                               std::vector<std::string> const& arguments, Deadline deadline);

    /// Sends a signal without arguments to everybody, and waits until it has left this process.
    void emit(BusSignal const& signal, Deadline deadline);

private:
    struct Close {
        void operator()(sd_bus* opened) const;
    };

    explicit BusConnection(std::unique_ptr<sd_bus, Close> connection) : connection(std::move(connection)) {}

    std::unique_ptr<sd_bus, Close> connection;
};

} // namespace Platform
