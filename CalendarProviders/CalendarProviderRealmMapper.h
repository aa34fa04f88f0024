#pragma once

#include "CalendarProviders/CalendarProviderEntity.h"
#include "CalendarProviders/CalendarProviderRealmModel.h"

#include <optional>

/// Between the provider record and its persisted twin.
namespace CalendarProviders::CalendarProviderRealmMapper {

CalendarProviderRealmModel toRealmModel(CalendarProviderEntity const& entity);

/// Absent when the stored kind is not one that this program knows.
std::optional<CalendarProviderEntity> toEntity(CalendarProviderRealmModel const& model);

} // namespace CalendarProviders::CalendarProviderRealmMapper
