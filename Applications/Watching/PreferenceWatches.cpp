#include "Applications/Watching/PreferenceWatches.h"

#include <string>

namespace Watching {

namespace {

constexpr char const* applicationGroup = "group.quillora";

std::vector<std::string> sharedFiles() {
    return {"scheduleWidgetDayOffset.json", "hiddenCalendarIdentifiers.json", "enabledCalendarAccounts.json"};
}

std::vector<std::string> calendarStoreFiles() {
    return {"calendar-store.json", "calendar-access.json"};
}

} // namespace

PreferenceWatches::PreferenceWatches(Platform::FolderEvents& events, Platform::FileManager const& files,
                                     std::optional<std::filesystem::path> const& configurationDirectory,
                                     std::function<void()> const& onChange) {
    auto const container = files.containerURLForSecurityApplicationGroupIdentifier(applicationGroup);
    watches.push_back(std::make_unique<Platform::FolderWatch>(
        events, container.value_or(files.temporaryDirectory()), sharedFiles(), onChange));
    if (configurationDirectory) {
        watches.push_back(std::make_unique<Platform::FolderWatch>(events, *configurationDirectory,
                                                                  calendarStoreFiles(), onChange));
    }
    watches.push_back(std::make_unique<Platform::FolderWatch>(
        events, "/etc", std::vector<std::string>{"localtime"}, onChange));
}

void PreferenceWatches::renew() {
    for (auto const& watch : watches) {
        watch->renew();
    }
}

} // namespace Watching
