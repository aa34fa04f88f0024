#pragma once

#include "CalendarProviders/CalendarProviderEntity.h"
#include "CalendarProviders/ResultEntity.h"
#include "Platform/Keychain/Keychain.h"
#include "Platform/Keychain/RandomSource.h"
#include "Platform/ObjectDatabase/ObjectDatabaseEngine.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace CalendarProviders {

/// The encrypted database of the registered providers. A value; each operation opens the database, does its
/// work on the calling thread and lets go of it. A database that does not open is told in
/// `infrastructureMessage`, what goes wrong inside it in `databaseMessage`.
class CalendarProviderDatabase final {
public:
    /// Also what the database file is named after.
    static constexpr std::string_view keychainService = "CalendarProviders.RegistryProvider";
    static constexpr std::uint64_t schemaVersion = 1;

    /// Yields a `CalendarProviderDatabase`. Fails, with `infrastructureMessage`, when there is no key to it.
    static ResultEntity make(Platform::Keychain& keychain, Platform::RandomSource& random,
                             std::shared_ptr<Platform::ObjectDatabaseEngine> engine);

    CalendarProviderDatabase(Platform::ObjectDatabaseConfiguration configuration,
                             std::shared_ptr<Platform::ObjectDatabaseEngine> engine);

    /// Inserts the provider, or gives the one of the same id the fields that differ. Yields nothing.
    [[nodiscard]] ResultEntity save(CalendarProviderEntity const& provider) const;

    /// Yields nothing. That there is no such provider is no failure.
    [[nodiscard]] ResultEntity deleteProvider(std::string const& id) const;

    /// Yields the `CalendarProviderEntity`. Fails, with `domainMessage`, when there is none of that id or it
    /// is of a kind that this program does not know.
    [[nodiscard]] ResultEntity getOne(std::string const& id) const;

    /// Yields a `std::vector<CalendarProviderEntity>` in the order of insertion, without those of a kind that
    /// this program does not know.
    [[nodiscard]] ResultEntity getAll() const;

private:
    template <typename Body>
    ResultEntity withRealm(Body const& body) const;

    Platform::ObjectDatabaseConfiguration configuration;
    std::shared_ptr<Platform::ObjectDatabaseEngine> engine;
};

} // namespace CalendarProviders
