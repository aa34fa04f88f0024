#include "Platform/Clock/SystemRegionSettings.h"

#include <utility>

namespace Platform {

SystemRegionSettings::SystemRegionSettings(Foundation::Environment environment)
    : environment(std::move(environment)) {}

Foundation::Calendar SystemRegionSettings::currentCalendar() const {
    return Foundation::Calendar(Foundation::TimeZone::current(environment));
}

Foundation::Locale SystemRegionSettings::currentLocale() const {
    return Foundation::Locale::forFormats(environment);
}

} // namespace Platform
