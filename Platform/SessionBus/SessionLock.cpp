#include "Platform/SessionBus/SessionLock.h"

#include "Platform/SessionBus/BusWait.h"
#include "Platform/SessionBus/MessageValues.h"

#include <systemd/sd-bus.h>

#include <utility>
#include <vector>

namespace Platform {

namespace {

constexpr char const* loginService = "org.freedesktop.login1";
constexpr char const* sessionInterface = "org.freedesktop.login1.Session";
constexpr char const* propertiesInterface = "org.freedesktop.DBus.Properties";

} // namespace

std::string systemBusAddress(Foundation::Environment const& environment) {
    auto const address = environment.value("DBUS_SYSTEM_BUS_ADDRESS");
    return address && !address->empty() ? *address : "unix:path=/run/dbus/system_bus_socket";
}

struct SessionLock::State {
    State(std::string const& address, std::function<void(bool)> changed) : changed(std::move(changed)) {
        // The caller's session, or, for a service of the person's, the one that is on their display.
        static constexpr BusMethod session{.owner = loginService,
                                           .objectPath = "/org/freedesktop/login1",
                                           .interface = "org.freedesktop.login1.Manager",
                                           .name = "GetSession"};
        bool const hasBegun = sd_bus_new(&connection) >= 0 &&
                              sd_bus_set_address(connection, address.c_str()) >= 0 &&
                              sd_bus_set_bus_client(connection, 1) >= 0 && sd_bus_start(connection) >= 0 &&
                              ask(session, {"auto"}, sessionIsKnown);
        if (!hasBegun) close();
    }
    State(State const&) = delete;
    State& operator=(State const&) = delete;
    ~State() { close(); }

    void close() { connection = sd_bus_close_unref(connection); }

    /// Calls a method, and `answered` with what comes back; whether the call is on its way.
    bool ask(BusMethod const& method, std::vector<char const*> const& arguments,
             sd_bus_message_handler_t answered) {
        auto const message = madeMessage([&](sd_bus_message** made) {
            return sd_bus_message_new_method_call(connection, made, method.owner, method.objectPath,
                                                  method.interface, method.name);
        });
        if (!message || sd_bus_message_set_auto_start(message.get(), 0) < 0) return false;
        for (auto const* const argument : arguments)
            if (sd_bus_message_append_basic(message.get(), SD_BUS_TYPE_STRING, argument) < 0) return false;
        return sd_bus_call_async(connection, nullptr, message.get(), answered, this, 0) >= 0;
    }

    bool listen(char const* sessionPath) {
        path = sessionPath;
        return sd_bus_match_signal_async(connection, nullptr, loginService, path.c_str(), propertiesInterface,
                                         "PropertiesChanged", somethingChanged, somethingChanged, this) >= 0;
    }

    bool askForHint() {
        return ask({.owner = loginService,
                    .objectPath = path.c_str(),
                    .interface = propertiesInterface,
                    .name = "Get"},
                   {sessionInterface, "LockedHint"}, hintIsKnown);
    }

    void tell(bool isLockedNow) {
        if (std::exchange(isLocked, isLockedNow) != isLockedNow) changed(isLockedNow);
    }

    // No exception passes through the library's frames: it ends the process here.

    static int sessionIsKnown(sd_bus_message* answer, void* data, sd_bus_error*) noexcept {
        auto* const self = static_cast<State*>(data);
        auto const found = firstValue(answer);
        auto const* const session = found ? found->as<std::string>() : nullptr;
        bool const isFound = sd_bus_message_is_method_error(answer, nullptr) == 0 && session != nullptr;
        self->isOver = !isFound || !self->listen(session->c_str());
        return 0;
    }

    // Also once the bus has taken the subscription: what changed before that was not heard.
    static int somethingChanged(sd_bus_message* message, void* data, sd_bus_error*) noexcept {
        auto* const self = static_cast<State*>(data);
        self->isOver = sd_bus_message_is_method_error(message, nullptr) != 0 || !self->askForHint();
        return 0;
    }

    static int hintIsKnown(sd_bus_message* answer, void* data, sd_bus_error*) noexcept {
        auto* const self = static_cast<State*>(data);
        auto const found = firstValue(answer);
        // An error's first value is a text: a service that is being restarted does not unlock the session.
        if (auto const* const hint = found ? found->as<bool>() : nullptr) self->tell(*hint);
        return 0;
    }

    std::function<void(bool)> changed;
    std::string path;
    bool isLocked = false;
    bool isOver = false; // Nobody tells; the connection is of no use.
    sd_bus* connection = nullptr;
};

SessionLock::SessionLock(std::string const& systemBusAddress, std::function<void(bool isLocked)> changed)
    : state(std::make_unique<State>(systemBusAddress, std::move(changed))) {}

SessionLock::~SessionLock() = default;

std::optional<BusSubscription::Wait> SessionLock::wait() const {
    return waitOf(state->connection);
}

void SessionLock::serve() {
    int processed = 1;
    while (processed > 0 && !state->isOver)
        processed = sd_bus_process(state->connection, nullptr);
    if (processed < 0 || state->isOver) state->close();
}

} // namespace Platform
