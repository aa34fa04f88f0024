#include "CalendarProviders/LocalRegistryRepositoryImpl.h"

#include <utility>

namespace CalendarProviders {

LocalRegistryRepositoryImpl::LocalRegistryRepositoryImpl(CalendarProviderDatabase database)
    : database(std::move(database)) {}

ResultEntity LocalRegistryRepositoryImpl::newProvider(CalendarProviderEntity const& provider) {
    auto const existing = database.getOne(provider.capId);
    if (existing.result)
        return failed({.infrastructureMessage = "A provider is already registered with that id"});
    // Whatever the look-up failed of, on purpose: the save meets the same fault and tells it.
    return database.save(provider);
}

ResultEntity LocalRegistryRepositoryImpl::update(CalendarProviderEntity const& provider) {
    // Without asking whether it exists, on purpose: an unknown one is inserted.
    return database.save(provider);
}

ResultEntity LocalRegistryRepositoryImpl::deleteProvider(std::string const& id) {
    return database.deleteProvider(id);
}

ResultEntity LocalRegistryRepositoryImpl::getOne(std::string const& id) {
    return database.getOne(id);
}

ResultEntity LocalRegistryRepositoryImpl::getAll() {
    return database.getAll();
}

} // namespace CalendarProviders
