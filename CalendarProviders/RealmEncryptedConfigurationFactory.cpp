#include "CalendarProviders/RealmEncryptedConfigurationFactory.h"

#include "CalendarProviders/RealmEncryptionKeyStore.h"
#include "Foundation/SecretBytes.h"

#include <filesystem>
#include <optional>
#include <string>
#include <utility>

namespace CalendarProviders::RealmEncryptedConfigurationFactory {
namespace {

std::optional<std::filesystem::path> fileURL(Platform::ObjectDatabaseEngine const& engine,
                                             std::string_view name) {
    auto const defaultFileURL = engine.defaultFileURL();
    if (!defaultFileURL) return std::nullopt;
    return defaultFileURL->parent_path() / (std::string(name) + ".realm");
}

} // namespace

ResultEntity make(Sources sources, std::string_view keychainService, std::uint64_t schemaVersion,
                  Platform::MigrationBlock migrationBlock) {
    auto const key =
        RealmEncryptionKeyStore::loadOrCreateKey(sources.keychain, sources.random, keychainService);
    auto const encryptionKey = key.result ? key.dataAs<Foundation::SecretBytes>() : std::nullopt;
    if (!encryptionKey) return failedAbove(key, "Failed to prepare the encryption key");
    return succeeded(Platform::ObjectDatabaseConfiguration{
        .fileURL = fileURL(sources.engine, keychainService),
        .encryptionKey = *encryptionKey,
        .readOnly = false,
        .schemaVersion = schemaVersion,
        .migrationBlock = std::move(migrationBlock),
    });
}

} // namespace CalendarProviders::RealmEncryptedConfigurationFactory
