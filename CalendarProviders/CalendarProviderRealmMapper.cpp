#include "CalendarProviders/CalendarProviderRealmMapper.h"

namespace CalendarProviders::CalendarProviderRealmMapper {

CalendarProviderRealmModel toRealmModel(CalendarProviderEntity const& entity) {
    return {
        .capId = entity.capId,
        .capProvider = std::string(Foundation::rawValue(entity.capProvider)),
        .capDisplayName = entity.capDisplayName,
        .capDescription = entity.capDescription,
        .capEmail = entity.capEmail,
        .capIsEnabled = entity.capIsEnabled,
        .capRegisteredAt = entity.capRegisteredAt,
    };
}

std::optional<CalendarProviderEntity> toEntity(CalendarProviderRealmModel const& model) {
    auto const provider = Foundation::fromRawValue<AccountProviderEnum>(model.capProvider);
    if (!provider) return std::nullopt;
    return CalendarProviderEntity{
        .capId = model.capId,
        .capProvider = *provider,
        .capDisplayName = model.capDisplayName,
        .capDescription = model.capDescription,
        .capEmail = model.capEmail,
        .capIsEnabled = model.capIsEnabled,
        .capRegisteredAt = model.capRegisteredAt,
    };
}

} // namespace CalendarProviders::CalendarProviderRealmMapper
