#pragma once

#include "Foundation/Date.h"
#include "Platform/ObjectDatabase/PersistedObject.h"

#include <string>
#include <string_view>

namespace CalendarProviders {

/// A provider as the database keeps it; the one persisted type of the provider database. Made empty, then
/// filled.
struct CalendarProviderRealmModel {
    static constexpr std::string_view typeName = "CalendarProviderRealmModel";

    std::string capId = {};       ///< Primary key.
    std::string capProvider = {}; ///< The raw value of an AccountProviderEnum.
    std::string capDisplayName = {};
    std::string capDescription = {};
    std::string capEmail = {};
    bool capIsEnabled = false;
    Foundation::Date capRegisteredAt = {.secondsSince1970 = 0};

    /// What a property of the object lacks, or holds as another type, stays as in an empty model.
    static CalendarProviderRealmModel fromPersisted(Platform::PersistedObject const& object);
    [[nodiscard]] Platform::PersistedObject toPersisted() const;
};

} // namespace CalendarProviders
