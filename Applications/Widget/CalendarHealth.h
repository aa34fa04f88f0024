#pragma once

#include "Foundation/Date.h"
#include "Foundation/Task.h"
#include "Platform/Clock/Clock.h"
#include "Platform/EventStore/Folder/CalendarStoreConfiguration.h"
#include "Platform/WidgetHost/MainLoop.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace Widget {

/// Why not all of the person's calendars are in what is shown.
struct CalendarTrouble {
    std::string path;  ///< The first of the sources, or the list of them, that could not be read.
    std::string cause; ///< For people.
    /// When all could last be read; absent when they never could since the start.
    std::optional<Foundation::Date> lastRead;

    bool operator==(CalendarTrouble const&) const = default;
};

/// Looks whether the person's calendars can be read. The face itself shows what could be, without a word.
/// On the main loop's thread but for the looking, which may take long.
class CalendarHealth final {
public:
    /// `onChange` hears of each change; the calendars count as well until they were looked at.
    CalendarHealth(std::shared_ptr<Platform::CalendarStoreConfiguration const> configuration,
                   Foundation::TaskExecutor executor, Platform::MainLoop& mainLoop,
                   std::shared_ptr<Platform::Clock const> clock,
                   std::function<void(std::optional<CalendarTrouble> const&)> onChange);
    CalendarHealth(CalendarHealth const&) = delete;
    CalendarHealth& operator=(CalendarHealth const&) = delete;

    /// Looks anew. After its end nothing is touched any more.
    void check();

private:
    void found(std::optional<CalendarTrouble> trouble, Foundation::Date now);

    std::shared_ptr<Platform::CalendarStoreConfiguration const> configuration;
    Foundation::TaskExecutor executor;
    Platform::MainLoop& mainLoop;
    std::shared_ptr<Platform::Clock const> clock;
    std::function<void(std::optional<CalendarTrouble> const&)> onChange;
    std::optional<CalendarTrouble> known;
    std::optional<Foundation::Date> lastRead;
    std::shared_ptr<CalendarHealth*> self;
};

} // namespace Widget
