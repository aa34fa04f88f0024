#pragma once

#include "Platform/Keychain/Keychain.h"
#include "Tests/Platform/TemporaryFolder.h"

#include <gio/gio.h>
#include <libsecret/secret.h>

#include <cstdint>
#include <string>

/// A session bus of the test's own. While it stands it is the process's session bus.
class PrivateBus {
public:
    PrivateBus();
    ~PrivateBus();
    PrivateBus(PrivateBus const&) = delete;
    PrivateBus& operator=(PrivateBus const&) = delete;

    [[nodiscard]] std::string address() const { return g_test_dbus_get_bus_address(bus); }
    /// The bus goes, with every connection to it.
    void stop();

private:
    GTestDBus* bus;
    bool isUp = true;
};

/// The keyring daemon of a desktop, the real one, on a bus and in a home of the test's own.
class PrivateKeyring {
public:
    enum class Login : std::uint8_t {
        unlocked, ///< As after a person has signed in.
        locked,   ///< Started without the password.
        fresh,    ///< The same in a home where nobody has ever made a keyring.
    };

    /// Under which schema another program puts a text.
    enum class Schema : std::uint8_t { ours, none, another };

    explicit PrivateKeyring(PrivateBus const& bus) : bus(bus) {}
    ~PrivateKeyring();
    PrivateKeyring(PrivateKeyring const&) = delete;
    PrivateKeyring& operator=(PrivateKeyring const&) = delete;

    /// Starts the daemon on the home as it stands, and waits until it serves.
    void start(Login login);
    /// Ends the daemon and waits until it has gone; the home stays.
    void stop();
    /// Freezes the daemon: it takes calls and does not answer.
    void freeze();
    /// Ends a daemon that may be frozen, at once.
    void kill();
    /// Locks every collection of the running daemon.
    void lockCollections();
    /// Puts a text in the place of an item, as a program for passwords does.
    void placeText(Platform::GenericPasswordIdentity const& identity, std::string const& text,
                   Schema schema = Schema::ours);

private:
    void spawn(Login login);
    [[nodiscard]] bool waitUntilServing(Login login);

    PrivateBus const& bus;
    TemporaryFolder home;
    GSubprocess* daemon = nullptr;
};
