#pragma once

#include "Platform/Files/FileManager.h"

#include <cstdint>

/// The day that the widget shows, as days from today: "scheduleWidgetDayOffset.json" in the container of the
/// application group, one JSON number. It never expires and no lock guards it.
namespace WidgetExtension::ScheduleWidgetDayOffsetStore {

/// The furthest that the buttons move away from today, either way.
inline constexpr std::int64_t maxOffset = 10;

/// 0 when the file is missing, unreadable or no integer. Not clamped: a value that another program wrote
/// comes back as it stands.
std::int64_t load(Platform::FileManager const& files);

/// Clamps to -maxOffset…maxOffset and writes. A failed write leaves the old file and is not reported.
void save(Platform::FileManager const& files, std::int64_t offset);

} // namespace WidgetExtension::ScheduleWidgetDayOffsetStore
