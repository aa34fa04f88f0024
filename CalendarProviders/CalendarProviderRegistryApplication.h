#pragma once

#include "CalendarProviders/CalendarPermissionRepository.h"
#include "CalendarProviders/CalendarProviderEntity.h"
#include "CalendarProviders/CalendarProviderRegistryRepository.h"
#include "CalendarProviders/ResultEntity.h"
#include "Foundation/Task.h"
#include "Platform/Files/FileManager.h"

#include <memory>
#include <string>

namespace CalendarProviders {

/// What can be done with the registered providers. Every change that succeeds rewrites the mirror of the
/// enabled kinds, which the widget reads. Results of the layers below come as they are. A value; copies share
/// the repositories.
class CalendarProviderRegistryApplication final {
public:
    CalendarProviderRegistryApplication(std::shared_ptr<CalendarProviderRegistryRepository> repository,
                                        std::shared_ptr<CalendarPermissionRepository> permissionRepository,
                                        std::shared_ptr<Platform::FileManager const> files);

    /// Registers a provider that keeps the rules: a good one, of an id that is free, of a kind that may be
    /// registered once more.
    [[nodiscard]] ResultEntity newProvider(CalendarProviderEntity const& provider) const;

    /// Only the provider's own fields are examined; an unknown one is registered.
    [[nodiscard]] ResultEntity update(CalendarProviderEntity const& provider) const;

    [[nodiscard]] ResultEntity deleteProvider(std::string const& id) const;
    [[nodiscard]] ResultEntity getOne(std::string const& id) const;
    [[nodiscard]] ResultEntity getAll() const;

    /// The permission repository outlives the task.
    [[nodiscard]] Foundation::Task<ResultEntity> requestAccess(AccountProviderEnum provider) const;

private:
    void syncEnabledAccountsMirror() const;

    std::shared_ptr<CalendarProviderRegistryRepository> repository;
    std::shared_ptr<CalendarPermissionRepository> permissionRepository;
    std::shared_ptr<Platform::FileManager const> files;
};

} // namespace CalendarProviders
