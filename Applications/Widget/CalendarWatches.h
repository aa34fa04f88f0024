#pragma once

#include "Foundation/Task.h"
#include "Platform/EventStore/Folder/CalendarStoreConfiguration.h"
#include "Platform/EventStore/Folder/CalendarStorePlaces.h"
#include "Platform/WidgetHost/FolderWatch.h"
#include "Platform/WidgetHost/GLibSource.h"
#include "Platform/WidgetHost/MainLoop.h"

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <vector>

namespace Widget {

/// The folders whose files are calendars: the product's own, each root of the list, and the folders directly
/// in a root; 512 at most. Relative roots and those that cannot be read are left out.
std::vector<std::filesystem::path> calendarFolders(Platform::CalendarStorePlaces const& places,
                                                   Platform::CalendarStoreConfiguration const& configuration);

/// Notices when a program writes into the person's calendars. On the main loop's thread but for the listing
/// of folders, which may take long.
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
    void watch(std::vector<std::filesystem::path> const& folders);
    void changed();

    Platform::FolderEvents& events;
    Platform::CalendarStorePlaces places;
    std::shared_ptr<Platform::CalendarStoreConfiguration const> configuration;
    Foundation::TaskExecutor executor;
    Platform::MainLoop& mainLoop;
    std::function<void()> onChange;
    std::map<std::filesystem::path, std::unique_ptr<Platform::FolderWatch>> watches;
    Platform::GLibSource settled;
    bool isSettling = false;
    std::shared_ptr<CalendarWatches*> self;
};

} // namespace Widget
