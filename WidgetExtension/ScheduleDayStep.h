#pragma once

#include "Foundation/Task.h"
#include "Platform/Files/FileManager.h"
#include "Platform/WidgetHost/WidgetCenter.h"

#include <cstdint>
#include <memory>

namespace WidgetExtension {

/// What both day intents do: load the offset, add `days`, save it clamped, ask for a reload of all timelines.
/// The reload is asked for even when nothing changed or the save failed. Two quick presses may lose one.
Foundation::Task<void> stepScheduleDay(std::shared_ptr<Platform::FileManager const> files,
                                       std::shared_ptr<Platform::WidgetCenter> widgetCenter,
                                       std::int64_t days);

} // namespace WidgetExtension
