#pragma once

#include "Foundation/Task.h"
#include "Meetings/EventKit/EventKitStoring.h"
#include "Platform/Appearance/Appearance.h"
#include "Platform/Clock/Clock.h"
#include "Platform/Clock/RegionSettings.h"
#include "Platform/Files/FileManager.h"
#include "Platform/Logging/Logger.h"
#include "Platform/Resources/ColorProvider.h"
#include "Platform/Resources/TextProvider.h"

#include <functional>
#include <memory>

namespace WidgetExtension {

/// What the widget needs from around it. A value: whoever works on after its maker is gone keeps a copy.
struct ScheduleWidgetServices {
    std::shared_ptr<Platform::Clock const> clock;
    std::shared_ptr<Platform::RegionSettings const> region;
    std::shared_ptr<Platform::FileManager const> files;
    std::shared_ptr<Platform::Appearance const> appearance;
    std::shared_ptr<Platform::TextProvider const> texts;         ///< Of the extension's own bundle.
    std::shared_ptr<Platform::ColorProvider const> colors;       ///< Of the same bundle.
    std::shared_ptr<Platform::TextProvider const> meetingsTexts; ///< Of the bundle of `Meetings`.
    std::shared_ptr<Platform::LogSink> logSink;
    /// The process's one connection to the calendar store, made when it is first asked for. What it throws
    /// counts as a failed fetch.
    std::function<std::shared_ptr<Meetings::EventKitStoring>()> eventStore;
    /// Where snapshots and timelines are worked out, and completions are called.
    Foundation::TaskExecutor executor;
};

} // namespace WidgetExtension
