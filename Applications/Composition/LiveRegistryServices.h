#pragma once

#include "Applications/Composition/KeychainSetting.h"
#include "CalendarProviders/ResultEntity.h"

#include <expected>
#include <memory>
#include <string>

namespace Platform {
class Keychain;
class ObjectDatabaseEngine;
} // namespace Platform

namespace Composition {

class LiveServices;

/// The live parts below the registry of calendar providers. They are apart from the others because the widget
/// needs none of them, and so need not load the libraries of keyring and database.
class LiveRegistryServices final {
public:
    /// `services` outlives this object.
    explicit LiveRegistryServices(LiveServices& services) : services(services) {}

    /// Which keychain the person chose. Null when the environment names no home.
    std::shared_ptr<KeychainSetting const> keychainSetting();

    /// The keychain of the person's choice, as it is now. The error is a sentence for the person: the choice
    /// cannot be read, or the environment names no home.
    std::expected<std::shared_ptr<Platform::Keychain>, std::string> keychain();

    /// Records the person's choice. Where a database of providers exists, its key is first copied from the
    /// keychain in use, or else the choice is refused: no registration is lost to a change of keychain. The
    /// error is a sentence for the person. Only where the environment names a home.
    std::expected<void, std::string> chooseKeychain(KeychainKind kind);

    std::shared_ptr<Platform::ObjectDatabaseEngine> objectDatabaseEngine();

    /// Yields a `CalendarProviders::CalendarProviderRegistryApplication` over the person's keychain and
    /// database. Fails, with `infrastructureMessage`, when there is no key.
    CalendarProviders::ResultEntity calendarProviderRegistry();

private:
    std::shared_ptr<Platform::Keychain> keychainOf(KeychainKind kind);
    std::expected<void, std::string> carryKey(KeychainKind from, KeychainKind to);

    LiveServices& services;
    std::shared_ptr<Platform::ObjectDatabaseEngine> engine;
};

} // namespace Composition
