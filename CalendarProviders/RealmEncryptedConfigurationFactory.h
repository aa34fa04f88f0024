#pragma once

#include "CalendarProviders/ResultEntity.h"
#include "Platform/Keychain/Keychain.h"
#include "Platform/Keychain/RandomSource.h"
#include "Platform/ObjectDatabase/ObjectDatabaseEngine.h"

#include <cstdint>
#include <string_view>

/// From the name of a keychain service to the configuration of an encrypted database.
namespace CalendarProviders::RealmEncryptedConfigurationFactory {

/// What a configuration is made with.
struct Sources {
    Platform::Keychain& keychain;
    Platform::RandomSource& random;
    Platform::ObjectDatabaseEngine const& engine; ///< Tells the folder of the database file.
};

/// Yields a `Platform::ObjectDatabaseConfiguration`: the service's key, made when there is none, and the file
/// named after the service. Touches no file. Fails when there is no key, with the key store's text in
/// `infrastructureMessage`.
ResultEntity make(Sources sources, std::string_view keychainService, std::uint64_t schemaVersion,
                  Platform::MigrationBlock migrationBlock);

} // namespace CalendarProviders::RealmEncryptedConfigurationFactory
