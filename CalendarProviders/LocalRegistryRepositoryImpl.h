#pragma once

#include "CalendarProviders/CalendarProviderDatabase.h"
#include "CalendarProviders/CalendarProviderRegistryRepository.h"

namespace CalendarProviders {

/// The providers registered in this user's database. Failures are the database's own, and as said.
class LocalRegistryRepositoryImpl final : public CalendarProviderRegistryRepository {
public:
    explicit LocalRegistryRepositoryImpl(CalendarProviderDatabase database);

    /// An id that is taken is told in `infrastructureMessage`, and nothing is written.
    ResultEntity newProvider(CalendarProviderEntity const& provider) override;
    ResultEntity update(CalendarProviderEntity const& provider) override;
    ResultEntity deleteProvider(std::string const& id) override;
    ResultEntity getOne(std::string const& id) override;
    ResultEntity getAll() override;

private:
    CalendarProviderDatabase database;
};

} // namespace CalendarProviders
