#pragma once

#include "Foundation/Calendar.h"
#include "Foundation/Locale.h"

namespace Platform {

/// The user's calendar and formats, worked out anew at each call: the zone may change while we run.
class RegionSettings {
public:
    virtual ~RegionSettings() = default;

    /// The Gregorian calendar in the user's time zone.
    [[nodiscard]] virtual Foundation::Calendar currentCalendar() const = 0;

    /// The locale of dates and numbers.
    [[nodiscard]] virtual Foundation::Locale currentLocale() const = 0;
};

} // namespace Platform
