#pragma once

#include "Applications/Composition/KeychainSetting.h"
#include "CalendarProviders/ResultEntity.h"
#include "Foundation/URL.h"
#include "Platform/Files/FileLocks.h"
#include "Platform/Keychain/Keychain.h"

#include <cstdint>
#include <expected>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Platform {
class ObjectDatabaseEngine;
} // namespace Platform

namespace Composition {

class LiveServices;

/// What came of a choice of a keychain.
struct KeychainChange {
    bool isNew; ///< Another one was in use before, or none was on record.
    /// Sentences for the person: a secret that could not be taken along, or a copy that may have stayed.
    std::vector<std::string> warnings;
};

/// The live parts below the registry of calendar providers. They are apart from the others because the widget
/// needs none of them, and so need not load the libraries of keyring and database.
class LiveRegistryServices final {
public:
    /// `services` outlives this object.
    explicit LiveRegistryServices(LiveServices& services) : services(services) {}

    /// Which keychain the person chose. Null when the environment names no home.
    std::shared_ptr<KeychainSetting const> keychainSetting();

    /// The person's choice as it is now. Where only its record was lost, a key file tells it: none is made
    /// unless it was asked for. The error is a sentence for the person, as for `keychain`.
    std::expected<KeychainKind, std::string> chosenKeychain();

    /// The keychain of the person's choice, as it is now. The error is a sentence for the person: the choice
    /// cannot be read, or the environment names no home.
    std::expected<std::shared_ptr<Platform::Keychain>, std::string> keychain();

    /// Where the key of the registrations is kept in either keychain.
    static Platform::GenericPasswordIdentity keyIdentity();

    /// The file that holds that key in the keychain of files, whether it is there or not. Absent when the
    /// environment names no home.
    std::optional<std::filesystem::path> keyFile();

    /// Whether secrets go to the desktop's keyring, and it says that it has no place for new ones yet.
    bool lacksKeyring();

    /// The file of the registered providers, whether it is there or not. Absent when the environment names no
    /// home.
    std::optional<std::filesystem::path> databaseFile();

    /// The keychain whose key opens the database, whatever the person's choice says. Absent where there is
    /// none of either.
    std::optional<KeychainKind> keychainOfDatabase();

    /// Locks the registry and the choice of its keychain for as long as what it yields is held: whoever
    /// changes what was read, or may come to make a first key, does all of it under one lock. Waits a minute
    /// for others; the error is a sentence for the person. Null where there is no place for a registry.
    std::expected<std::unique_ptr<Platform::FileLocks::Held>, std::string> lock();

    /// The file of that lock, which stays. Absent where there is no place for a registry.
    std::optional<std::filesystem::path> lockFile();

    /// Whether something is where the registered providers are kept. An empty file is what a system leaves
    /// that stopped before the first writing: nothing yet.
    bool isDatabaseThere();

    /// Records the person's choice. Where a database of providers exists, its key is first copied from the
    /// keychain in use, unless the other one holds the right one already, or else the choice is refused: no
    /// registration is lost to a change of keychain. Where the record of the choice is damaged, the key that
    /// opens the database is the one in use. The backend's token is taken along too. Once the choice is on
    /// the disk, what was copied is removed from the keychain that it came from. The error is a sentence for
    /// the person. Only where the environment names a home, and under the lock.
    std::expected<KeychainChange, std::string> chooseKeychain(KeychainKind kind);

    std::shared_ptr<Platform::ObjectDatabaseEngine> objectDatabaseEngine();

    /// Yields a `CalendarProviders::CalendarProviderRegistryApplication` over the person's keychain and
    /// database. Fails, with `infrastructureMessage`, when there is no key. Only under the lock: two programs
    /// that both find no key would each make one.
    CalendarProviders::ResultEntity calendarProviderRegistry();

private:
    std::shared_ptr<Platform::Keychain> keychainOf(KeychainKind kind);
    /// Whether the person's choice is known that was in force.
    enum class Choice : std::uint8_t { known, lost };

    std::expected<void, std::string> carryKey(Choice choice, KeychainKind from, KeychainKind to);
    std::optional<Foundation::URL> knownBackend();
    std::string whereToRemove(KeychainKind kind, Platform::GenericPasswordIdentity const& identity);
    void carryToken(Choice choice, KeychainKind from, KeychainKind to, KeychainChange& change);
    void removeOldCopies(KeychainKind from, KeychainKind to, KeychainChange& change);
    bool opensDatabase(Platform::Keychain const& keychain);

    LiveServices& services;
    std::shared_ptr<Platform::ObjectDatabaseEngine> engine;
};

} // namespace Composition
