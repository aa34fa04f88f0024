#pragma once

#include "Platform/Clock/RegionSettings.h"

#include <utility>

namespace Platform {

/// A region given by the caller.
class FixedRegionSettings final : public RegionSettings {
public:
    FixedRegionSettings(Foundation::Calendar calendar, Foundation::Locale locale)
        : calendar(std::move(calendar)),
          locale(std::move(locale)) {}

    [[nodiscard]] Foundation::Calendar currentCalendar() const override { return calendar; }
    [[nodiscard]] Foundation::Locale currentLocale() const override { return locale; }

private:
    Foundation::Calendar calendar;
    Foundation::Locale locale;
};

} // namespace Platform
