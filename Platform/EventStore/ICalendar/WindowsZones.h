#pragma once

#include <optional>
#include <string_view>

namespace Platform::ICalendar {

/// The IANA name that stands for a zone of Windows where no territory is known (CLDR's windowsZones, "001").
/// Absent for any other name; the case of letters does not matter.
std::optional<std::string_view> ianaNameOfWindowsZone(std::string_view name);

} // namespace Platform::ICalendar
