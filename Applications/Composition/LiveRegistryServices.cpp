#include "Applications/Composition/LiveRegistryServices.h"

#include "Applications/Composition/BackendSetting.h"
#include "Applications/Composition/BackendTokens.h"
#include "Applications/Composition/KeychainItem.h"
#include "Applications/Composition/LiveServices.h"
#include "Applications/Composition/Texts.h"
#include "CalendarProviders/CalendarProviderRegistryApplication.h"
#include "CalendarProviders/EventKitPermissionRepositoryImpl.h"
#include "CalendarProviders/LocalRegistryRepositoryImpl.h"
#include "CalendarProviders/RealmEncryptionKeyStore.h"
#include "Foundation/Text.h"
#include "Platform/Clock/SystemClock.h"
#include "Platform/EventStore/Folder/CalendarStorePlaces.h"
#include "Platform/Files/PosixFileLocks.h"
#include "Platform/Files/PosixFileManager.h"
#include "Platform/Keychain/FileKeychain.h"
#include "Platform/Keychain/SecretServiceKeychain.h"
#include "Platform/Keychain/SystemRandomSource.h"
#include "Platform/ObjectDatabase/SealedObjectDatabaseEngine.h"

#include <chrono>
#include <filesystem>
#include <utility>

namespace Composition {
namespace {

// More than several commands need, one after the other, on a busy computer or with a keyring that does not
// answer.
constexpr std::chrono::seconds patienceWithOthers{60};

KeychainKind otherThan(KeychainKind kind) {
    return kind == KeychainKind::file ? KeychainKind::secretService : KeychainKind::file;
}

} // namespace

std::shared_ptr<KeychainSetting const> LiveRegistryServices::keychainSetting() {
    auto const places = services.calendarPlaces();
    if (!places) return nullptr;
    // The old keychain forgets the key as soon as this is written: it must not come back after a power cut.
    return std::make_shared<KeychainSetting>(
        places->configurationDirectory,
        std::make_shared<Platform::PosixFileManager>(services.environment(),
                                                     Platform::PosixFileManager::Durability::fileAndFolder));
}

std::expected<KeychainKind, std::string> LiveRegistryServices::chosenKeychain() {
    auto const setting = keychainSetting();
    if (!setting) return std::unexpected(Texts::noHomeForKeychain());
    auto kind = setting->load();
    if (!kind || setting->isRecorded()) return kind;
    auto const keyFile = keychainOf(KeychainKind::file)->copyMatching(keyIdentity());
    return keyFile.data ? KeychainKind::file : kind;
}

std::expected<std::shared_ptr<Platform::Keychain>, std::string> LiveRegistryServices::keychain() {
    auto const kind = chosenKeychain();
    if (!kind) return std::unexpected(kind.error());
    return keychainOf(*kind);
}

std::shared_ptr<Platform::Keychain> LiveRegistryServices::keychainOf(KeychainKind kind) {
    switch (kind) {
    case KeychainKind::secretService: break;
    case KeychainKind::file:
        return std::make_shared<Platform::FileKeychain>(services.files()->applicationSupportDirectory());
    }
    return std::make_shared<Platform::SecretServiceKeychain>();
}

Platform::GenericPasswordIdentity LiveRegistryServices::keyIdentity() {
    return {.service = std::string(CalendarProviders::CalendarProviderDatabase::keychainService),
            .account = std::string(CalendarProviders::RealmEncryptionKeyStore::defaultAccount)};
}

std::optional<std::filesystem::path> LiveRegistryServices::keyFile() {
    return Platform::FileKeychain(services.files()->applicationSupportDirectory()).file(keyIdentity());
}

bool LiveRegistryServices::lacksKeyring() {
    return chosenKeychain() == KeychainKind::secretService &&
           Platform::SecretServiceKeychain().lacksDefaultCollection();
}

std::optional<std::filesystem::path> LiveRegistryServices::databaseFile() {
    using CalendarProviders::CalendarProviderDatabase;
    auto const defaultFile = objectDatabaseEngine()->defaultFileURL();
    if (!defaultFile) return std::nullopt;
    return defaultFile->parent_path() / (std::string(CalendarProviderDatabase::keychainService) + ".realm");
}

std::expected<KeychainChange, std::string> LiveRegistryServices::chooseKeychain(KeychainKind kind) {
    auto const setting = keychainSetting();
    auto const current = chosenKeychain();
    KeychainChange change{.isNew = true, .warnings = {}};
    if (current && *current == kind && setting->isRecorded()) change.isNew = false;
    if (!change.isNew) return change;
    bool const isOther = !current || *current != kind;
    if (isOther) {
        auto const choice = current ? Choice::known : Choice::lost;
        auto const carried = carryKey(choice, otherThan(kind), kind);
        if (!carried) return std::unexpected(carried.error());
        carryToken(choice, otherThan(kind), kind, change);
    }
    if (auto const failure = setting->save(kind)) {
        return std::unexpected(Texts::keychainChoiceNotSaved(
            Foundation::Text::sanitizedUTF8(setting->file().string()), failure.message()));
    }
    if (isOther) removeOldCopies(otherThan(kind), kind, change);
    return change;
}

std::optional<Foundation::URL> LiveRegistryServices::knownBackend() {
    auto const places = services.calendarPlaces();
    if (!places) return std::nullopt;
    return BackendSetting(places->configurationDirectory, services.files()).baseURL().value_or(std::nullopt);
}

void LiveRegistryServices::carryToken(Choice choice, KeychainKind from, KeychainKind to,
                                      KeychainChange& change) {
    auto const backend = knownBackend();
    if (!backend) return;
    auto const identity = BackendTokens::identity(*backend);
    auto const target = keychainOf(to);
    // Nobody knows which of two was in use: the one that is there already is as good.
    if (choice == Choice::lost && target->copyMatching(identity).data) return;
    auto const status = copyItem(*keychainOf(from), *target, identity);
    if (status == Platform::KeychainStatus::success || status == Platform::KeychainStatus::itemNotFound)
        return;
    change.warnings.push_back(Texts::tokenNotCarried(Foundation::Text::neutralized(backend->absoluteString),
                                                     static_cast<std::int32_t>(status)));
}

std::string LiveRegistryServices::whereToRemove(KeychainKind kind,
                                                Platform::GenericPasswordIdentity const& identity) {
    if (kind == KeychainKind::secretService) return Texts::oldCopyInKeyring(identity.service);
    Platform::FileKeychain const files(services.files()->applicationSupportDirectory());
    return Texts::oldCopyInFile(
        Foundation::Text::sanitizedUTF8(files.file(identity).value_or(std::filesystem::path()).string()));
}

void LiveRegistryServices::removeOldCopies(KeychainKind from, KeychainKind to, KeychainChange& change) {
    using enum Platform::KeychainStatus;
    std::vector<Platform::GenericPasswordIdentity> identities{keyIdentity()};
    if (auto const backend = knownBackend()) identities.push_back(BackendTokens::identity(*backend));
    auto const source = keychainOf(from);
    auto const target = keychainOf(to);
    for (auto const& identity : identities) {
        auto const old = source->copyMatching(identity);
        // What cannot be reached at all was never known to hold anything.
        if (old.status == itemNotFound || old.status == ioErr) continue;
        // Another value than the one in use is nobody's copy: it stays, and the person is told.
        bool const isCopy = old.data && target->copyMatching(identity).data == old.data;
        if (isCopy && source->deleteMatching(identity) == success) continue;
        change.warnings.push_back(whereToRemove(from, identity));
    }
}

bool LiveRegistryServices::isDatabaseThere() {
    auto const database = databaseFile();
    if (!database) return false;
    std::error_code error;
    auto const status = std::filesystem::symlink_status(*database, error);
    if (std::filesystem::is_regular_file(status)) return std::filesystem::file_size(*database, error) != 0;
    return std::filesystem::exists(status);
}

std::optional<KeychainKind> LiveRegistryServices::keychainOfDatabase() {
    for (auto const kind : {KeychainKind::secretService, KeychainKind::file})
        if (opensDatabase(*keychainOf(kind))) return kind;
    return std::nullopt;
}

std::expected<void, std::string> LiveRegistryServices::carryKey(Choice choice, KeychainKind from,
                                                                KeychainKind to) {
    auto const database = databaseFile();
    if (!database) return {};
    auto const source = keychainOf(from);
    auto const target = keychainOf(to);
    std::error_code error;
    if (!std::filesystem::exists(*database, error) && !error) {
        // Of use to nobody just now, and so no reason to refuse anything.
        if (target->copyMatching(keyIdentity()).status == Platform::KeychainStatus::itemNotFound)
            static_cast<void>(copyItem(*source, *target, keyIdentity()));
        return {};
    }
    if (opensDatabase(*target)) return {};
    // Nobody knows which keychain was in use: a key that opens nothing takes no other one's place.
    bool const isWorthless = choice == Choice::lost && !opensDatabase(*source);
    auto const status = isWorthless && target->copyMatching(keyIdentity()).data
                            ? source->copyMatching(keyIdentity()).status
                            : copyItem(*source, *target, keyIdentity());
    if (status == Platform::KeychainStatus::success || status == Platform::KeychainStatus::itemNotFound)
        return {};
    return std::unexpected(Texts::keyNotCopied(static_cast<std::int32_t>(status),
                                               Foundation::Text::sanitizedUTF8(database->string())));
}

bool LiveRegistryServices::opensDatabase(Platform::Keychain const& keychain) {
    auto const match = keychain.copyMatching(keyIdentity());
    if (!match.data) return false;
    auto const opened = objectDatabaseEngine()->open({
        .fileURL = databaseFile(),
        .encryptionKey = *match.data,
        .readOnly = true,
        .schemaVersion = CalendarProviders::CalendarProviderDatabase::schemaVersion,
        .migrationBlock = {},
    });
    return opened.has_value();
}

std::optional<std::filesystem::path> LiveRegistryServices::lockFile() {
    auto const database = databaseFile();
    if (!database) return std::nullopt;
    // Not one of the database's own files: those come and go with it.
    return database->parent_path() / ".providers.lock";
}

std::expected<std::unique_ptr<Platform::FileLocks::Held>, std::string> LiveRegistryServices::lock() {
    auto const file = lockFile();
    if (!file || services.files()->createDirectory(file->parent_path())) return nullptr;
    auto held = Platform::PosixFileLocks().take(*file, patienceWithOthers);
    if (held) return *std::move(held);
    auto const path = Foundation::Text::sanitizedUTF8(file->string());
    if (held.error() == std::errc::timed_out)
        return std::unexpected(Texts::registryIsBusy(patienceWithOthers.count(), path));
    // Where no lock can be made, no registration can be written either: its own failure will say so.
    std::error_code error;
    bool const isThere = std::filesystem::exists(std::filesystem::symlink_status(*file, error));
    if (!isThere || held.error() == std::errc::read_only_file_system) return nullptr;
    return std::unexpected(Texts::registryNotLocked(path, held.error().message()));
}

std::shared_ptr<Platform::ObjectDatabaseEngine> LiveRegistryServices::objectDatabaseEngine() {
    // One for all, since it remembers which file it could not open. What it sets aside bears the system's
    // time also when the program's clock stands still.
    if (!engine) {
        engine = std::make_shared<Platform::SealedObjectDatabaseEngine>(
            services.files()->applicationSupportDirectory(), std::make_shared<Platform::SystemClock>());
    }
    return engine;
}

CalendarProviders::ResultEntity LiveRegistryServices::calendarProviderRegistry() {
    using namespace CalendarProviders;
    auto const chosen = keychain();
    if (!chosen) return failed({.infrastructureMessage = chosen.error()});
    Platform::SystemRandomSource random;
    auto const made = CalendarProviderDatabase::make(**chosen, random, objectDatabaseEngine());
    auto database = made.dataAs<CalendarProviderDatabase>();
    if (!database) return made;
    return succeeded(CalendarProviderRegistryApplication(
        std::make_shared<LocalRegistryRepositoryImpl>(*std::move(database)),
        std::make_shared<EventKitPermissionRepositoryImpl>(services.eventStore()), services.files()));
}

} // namespace Composition
