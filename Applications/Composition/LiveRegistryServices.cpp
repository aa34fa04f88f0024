#include "Applications/Composition/LiveRegistryServices.h"

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
#include "Platform/Keychain/FileKeychain.h"
#include "Platform/Keychain/SecretServiceKeychain.h"
#include "Platform/Keychain/SystemRandomSource.h"
#include "Platform/ObjectDatabase/SealedObjectDatabaseEngine.h"

#include <chrono>
#include <filesystem>
#include <utility>

namespace Composition {

std::shared_ptr<KeychainSetting const> LiveRegistryServices::keychainSetting() {
    auto const places = services.calendarPlaces();
    if (!places) return nullptr;
    return std::make_shared<KeychainSetting>(places->configurationDirectory, services.files());
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

std::optional<std::filesystem::path> LiveRegistryServices::databaseFile() {
    using CalendarProviders::CalendarProviderDatabase;
    auto const defaultFile = objectDatabaseEngine()->defaultFileURL();
    if (!defaultFile) return std::nullopt;
    return defaultFile->parent_path() / (std::string(CalendarProviderDatabase::keychainService) + ".realm");
}

std::expected<bool, std::string> LiveRegistryServices::chooseKeychain(KeychainKind kind) {
    auto const setting = keychainSetting();
    auto const current = chosenKeychain();
    if (current && *current == kind && setting->isRecorded()) return false;
    // A choice that cannot be read is mended by making it anew; there is no telling where a key would be.
    if (current && *current != kind) {
        auto const carried = carryKey(*current, kind);
        if (!carried) return std::unexpected(carried.error());
    }
    if (auto const failure = setting->save(kind)) {
        return std::unexpected(Texts::keychainChoiceNotSaved(
            Foundation::Text::sanitizedUTF8(setting->file().string()), failure.message()));
    }
    return true;
}

std::expected<void, std::string> LiveRegistryServices::carryKey(KeychainKind from, KeychainKind to) {
    auto const database = databaseFile();
    if (!database) return {};
    std::error_code error;
    if (!std::filesystem::exists(*database, error) && !error) return {};
    if (opensDatabase(*keychainOf(to))) return {};

    auto const status = copyItem(*keychainOf(from), *keychainOf(to), keyIdentity());
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

// Two programs that both find no key would each make one, and what is written with the one that is replaced
// could not be read any more. Where nothing can be locked, no key can be kept either.
std::unique_ptr<Platform::FileLocks::Held> LiveRegistryServices::lockForAFirstKey() {
    constexpr std::chrono::seconds patience{10};
    auto const database = databaseFile();
    std::error_code error;
    if (!database || std::filesystem::exists(*database, error)) return nullptr;
    auto const folder = services.calendarPlaces()->configurationDirectory;
    if (services.files()->createDirectory(folder)) return nullptr;
    auto held = Platform::PosixFileLocks().take(folder / ".keychain.json.lock", patience);
    return held ? *std::move(held) : nullptr;
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
    auto lock = lockForAFirstKey();
    auto const made = CalendarProviderDatabase::make(**chosen, random, objectDatabaseEngine());
    lock.reset();
    auto database = made.dataAs<CalendarProviderDatabase>();
    if (!database) return made;
    return succeeded(CalendarProviderRegistryApplication(
        std::make_shared<LocalRegistryRepositoryImpl>(*std::move(database)),
        std::make_shared<EventKitPermissionRepositoryImpl>(services.eventStore()), services.files()));
}

} // namespace Composition
