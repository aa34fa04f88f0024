#pragma once

#include "Platform/Clock/RegionSettings.h"

#include "Foundation/Environment.h"

namespace Platform {

/// The region of the process's environment and the system's time zone.
class SystemRegionSettings final : public RegionSettings {
public:
    explicit SystemRegionSettings(Foundation::Environment environment);

    [[nodiscard]] Foundation::Calendar currentCalendar() const override;
    [[nodiscard]] Foundation::Locale currentLocale() const override;

private:
    Foundation::Environment environment;
};

} // namespace Platform
