#include "CalendarProviders/CalendarProviderRegistryApplication.h"

#include "CalendarProviders/CalendarProviderDomain.h"
#include "CalendarProviders/EnabledCalendarAccountsStore.h"

#include <set>
#include <utility>
#include <vector>

namespace CalendarProviders {
namespace {

using Providers = std::vector<CalendarProviderEntity>;

// A read that failed counts as no registrations, on purpose: it must not keep a person from registering, and
// what cannot be read must not stay switched on.
Providers registeredIn(ResultEntity const& read) {
    return read.dataAs<Providers>().value_or(Providers{});
}

} // namespace

CalendarProviderRegistryApplication::CalendarProviderRegistryApplication(
    std::shared_ptr<CalendarProviderRegistryRepository> repository,
    std::shared_ptr<CalendarPermissionRepository> permissionRepository,
    std::shared_ptr<Platform::FileManager const> files)
    : repository(std::move(repository)),
      permissionRepository(std::move(permissionRepository)),
      files(std::move(files)) {}

ResultEntity CalendarProviderRegistryApplication::newProvider(CalendarProviderEntity const& provider) const {
    auto valid = CalendarProviderDomain::validate(provider);
    if (!valid.result) return valid;

    auto allowed = CalendarProviderDomain::canRegister(provider, registeredIn(repository->getAll()));
    if (!allowed.result) return allowed;

    auto registered = repository->newProvider(provider);
    if (registered.result) syncEnabledAccountsMirror();
    return registered;
}

ResultEntity CalendarProviderRegistryApplication::update(CalendarProviderEntity const& provider) const {
    auto valid = CalendarProviderDomain::validate(provider);
    if (!valid.result) return valid;

    // Whether the kind is registered already is not asked here, on purpose.
    auto updated = repository->update(provider);
    if (updated.result) syncEnabledAccountsMirror();
    return updated;
}

ResultEntity CalendarProviderRegistryApplication::deleteProvider(std::string const& id) const {
    auto deleted = repository->deleteProvider(id);
    // Also after the deletion of what was not there: the mirror may need it.
    if (deleted.result) syncEnabledAccountsMirror();
    return deleted;
}

ResultEntity CalendarProviderRegistryApplication::getOne(std::string const& id) const {
    return repository->getOne(id);
}

ResultEntity CalendarProviderRegistryApplication::getAll() const {
    return repository->getAll();
}

Foundation::Task<ResultEntity>
CalendarProviderRegistryApplication::requestAccess(AccountProviderEnum provider) const {
    return permissionRepository->requestAccess(provider);
}

void CalendarProviderRegistryApplication::syncEnabledAccountsMirror() const {
    std::set<AccountProviderEnum> enabled;
    for (auto const& provider : registeredIn(repository->getAll())) {
        if (provider.capIsEnabled) enabled.insert(provider.capProvider);
    }
    EnabledCalendarAccountsStore::save(*files, enabled);
}

} // namespace CalendarProviders
