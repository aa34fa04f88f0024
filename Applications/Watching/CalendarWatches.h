#pragma once

#include "Applications/Watching/WatchedPlaces.h"
#include "Foundation/Task.h"
#include "Platform/EventStore/Folder/CalendarStoreConfiguration.h"
#include "Platform/EventStore/Folder/CalendarStorePlaces.h"
#include "Platform/WidgetHost/FolderWatch.h"
#include "Platform/WidgetHost/GLibSource.h"
#include "Platform/WidgetHost/MainLoop.h"

#include <functional>
#include <map>
#include <memory>
#include <vector>

namespace Watching {

/// Notices when a program writes into the person's calendars, and when a folder of them is moved away, comes
/// back or is made only later. On the main loop's thread but for the listing of folders, which may take long.
class CalendarWatches final {
public:
    /// A program that brings many files tells of it many times; this is how long more of them are awaited.
    static constexpr unsigned settlingMilliseconds = 250;

    CalendarWatches(Platform::FolderEvents& events, Platform::CalendarStorePlaces places,
                    std::shared_ptr<Platform::CalendarStoreConfiguration const> configuration,
                    Foundation::TaskExecutor executor, Platform::MainLoop& mainLoop,
                    std::function<void()> onChange);
    CalendarWatches(CalendarWatches const&) = delete;
    CalendarWatches& operator=(CalendarWatches const&) = delete;

    /// Looks which folders there are and watches them from then on. After its end nothing is touched any
    /// more.
    void update();

private:
    void watch(std::vector<WatchedPlace> const& wanted);
    std::unique_ptr<Platform::FolderWatch> watchOf(WatchedPlace const& place);
    void changed();

    Platform::FolderEvents& events;
    Platform::CalendarStorePlaces places;
    std::shared_ptr<Platform::CalendarStoreConfiguration const> configuration;
    Foundation::TaskExecutor executor;
    Platform::MainLoop& mainLoop;
    std::function<void()> onChange;
    std::map<WatchedPlace, std::unique_ptr<Platform::FolderWatch>> watches;
    Platform::GLibSource settled;
    bool isSettling = false;
    std::shared_ptr<CalendarWatches*> self;
};

} // namespace Watching
