#pragma once

#include "CalendarProviders/CalendarProviderEntity.h"
#include "CalendarProviders/ResultEntity.h"

#include <string>

namespace CalendarProviders {

/// The registered providers. No operation throws.
class CalendarProviderRegistryRepository {
public:
    virtual ~CalendarProviderRegistryRepository() = default;

    /// Yields nothing. Fails when one of the same id is registered.
    virtual ResultEntity newProvider(CalendarProviderEntity const& provider) = 0;

    /// Yields nothing. A provider that is not registered is registered.
    virtual ResultEntity update(CalendarProviderEntity const& provider) = 0;

    /// Yields nothing. That there is no such provider is no failure.
    virtual ResultEntity deleteProvider(std::string const& id) = 0;

    /// Yields the `CalendarProviderEntity`; fails when there is none.
    virtual ResultEntity getOne(std::string const& id) = 0;

    /// Yields a `std::vector<CalendarProviderEntity>`, earliest registration first.
    virtual ResultEntity getAll() = 0;
};

} // namespace CalendarProviders
