#include "CalendarProviders/CalendarProviderDatabase.h"

#include "CalendarProviders/CalendarProviderRealmMapper.h"
#include "CalendarProviders/RealmDatabaseOpener.h"
#include "CalendarProviders/RealmEncryptedConfigurationFactory.h"

#include <optional>
#include <utility>
#include <vector>

namespace CalendarProviders {
namespace {

using Model = CalendarProviderRealmModel;
using Realm = std::shared_ptr<Platform::ObjectDatabase>;

void doNothing(Platform::ObjectTransaction&, std::uint64_t) {}

ResultEntity storageFailure(Platform::ObjectDatabaseError const& error) {
    return failed({.databaseMessage = error.localizedDescription});
}

ResultEntity written(std::expected<void, Platform::ObjectDatabaseError> const& outcome) {
    if (!outcome) return storageFailure(outcome.error());
    return succeeded();
}

} // namespace

ResultEntity CalendarProviderDatabase::make(Platform::Keychain& keychain, Platform::RandomSource& random,
                                            std::shared_ptr<Platform::ObjectDatabaseEngine> engine) {
    auto const made =
        RealmEncryptedConfigurationFactory::make({.keychain = keychain, .random = random, .engine = *engine},
                                                 keychainService, schemaVersion, doNothing);
    auto configuration = made.result ? made.dataAs<Platform::ObjectDatabaseConfiguration>() : std::nullopt;
    if (!configuration) return failed({.infrastructureMessage = made.infrastructureMessage});
    return succeeded(CalendarProviderDatabase(*std::move(configuration), std::move(engine)));
}

CalendarProviderDatabase::CalendarProviderDatabase(Platform::ObjectDatabaseConfiguration configuration,
                                                   std::shared_ptr<Platform::ObjectDatabaseEngine> engine)
    : configuration(std::move(configuration)),
      engine(std::move(engine)) {}

template <typename Body>
ResultEntity CalendarProviderDatabase::withRealm(Body const& body) const {
    auto const opened = RealmDatabaseOpener::open(*engine, configuration);
    auto const realm = opened.result ? opened.dataAs<Realm>() : std::nullopt;
    if (!realm) return failedAbove(opened, "Failed to open the database");
    return body(**realm);
}

ResultEntity CalendarProviderDatabase::save(CalendarProviderEntity const& provider) const {
    return withRealm([&](Platform::ObjectDatabase& realm) {
        auto const object = CalendarProviderRealmMapper::toRealmModel(provider).toPersisted();
        return written(
            realm.write([&](Platform::ObjectTransaction& transaction) { transaction.add(object); }));
    });
}

ResultEntity CalendarProviderDatabase::deleteProvider(std::string const& id) const {
    return withRealm([&](Platform::ObjectDatabase& realm) {
        auto const existing = realm.object(Model::typeName, id);
        if (!existing) return storageFailure(existing.error());
        // What is not there need not be written about.
        if (!existing->has_value()) return succeeded();
        return written(realm.write(
            [&](Platform::ObjectTransaction& transaction) { transaction.remove(Model::typeName, id); }));
    });
}

ResultEntity CalendarProviderDatabase::getOne(std::string const& id) const {
    return withRealm([&](Platform::ObjectDatabase& realm) {
        auto const object = realm.object(Model::typeName, id);
        if (!object) return storageFailure(object.error());
        std::optional<CalendarProviderEntity> provider;
        if (*object) provider = CalendarProviderRealmMapper::toEntity(Model::fromPersisted(**object));
        if (!provider) return failed({.domainMessage = "No provider is registered with that id"});
        return succeeded(*std::move(provider));
    });
}

ResultEntity CalendarProviderDatabase::getAll() const {
    return withRealm([&](Platform::ObjectDatabase& realm) {
        auto const objects = realm.objects(Model::typeName);
        if (!objects) return storageFailure(objects.error());
        std::vector<CalendarProviderEntity> providers;
        for (auto const& object : *objects) {
            auto provider = CalendarProviderRealmMapper::toEntity(Model::fromPersisted(object));
            if (provider) providers.push_back(*std::move(provider));
        }
        return succeeded(std::move(providers));
    });
}

} // namespace CalendarProviders
