#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

typedef struct _GDBusConnection GDBusConnection;
typedef struct _GCancellable GCancellable;
typedef struct _GMainContext GMainContext;
typedef struct _GVariant GVariant;

namespace Platform {

/// A connection to a bus on which all exchanges together take no longer than a given time, for a program that
/// has nothing else to wait for. For one thread, whose default main context it is while it stands.
class BoundedBusConnection {
public:
    BoundedBusConnection(std::string const& address, std::chrono::milliseconds patience);
    ~BoundedBusConnection();
    BoundedBusConnection(BoundedBusConnection const&) = delete;
    BoundedBusConnection& operator=(BoundedBusConnection const&) = delete;

    /// Whether the bus took the connection in time.
    [[nodiscard]] bool isOpen() const { return connection != nullptr; }

    /// Sends a signal without arguments to everybody, and waits until it has left this process.
    void emitSignal(char const* objectPath, char const* interface, char const* signal) const;

    /// Whether somebody owns the name; absent when the bus did not answer.
    [[nodiscard]] std::optional<bool> hasOwner(char const* name) const;

    /// Whether the bus can start who owns the name; absent when it did not answer.
    [[nodiscard]] std::optional<bool> isStartable(char const* name) const;

private:
    struct Release {
        void operator()(GDBusConnection* object) const;
        void operator()(GCancellable* object) const;
        void operator()(GMainContext* context) const;
        void operator()(GVariant* value) const;
    };

    [[nodiscard]] std::unique_ptr<GVariant, Release> askBus(char const* method, GVariant* arguments,
                                                            char const* answerType) const;

    std::unique_ptr<GMainContext, Release> context;
    std::unique_ptr<GCancellable, Release> cancellable;
    std::unique_ptr<GDBusConnection, Release> connection;
};

} // namespace Platform
