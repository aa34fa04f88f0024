#include "Applications/Watching/PreferenceWatches.h"

namespace Watching {

namespace {

constexpr char const* applicationGroup = "group.quillora";

} // namespace

PreferenceWatches::PreferenceWatches(Platform::FolderEvents& events, Platform::FileManager const& files,
                                     std::optional<std::filesystem::path> const& configurationDirectory,
                                     PreferenceFiles const& names, std::function<void()> const& onChange) {
    auto const container = files.containerURLForSecurityApplicationGroupIdentifier(applicationGroup);
    watches.push_back(std::make_unique<Platform::FolderWatch>(
        events, container.value_or(files.temporaryDirectory()), names.shared, onChange));
    if (configurationDirectory) {
        watches.push_back(std::make_unique<Platform::FolderWatch>(events, *configurationDirectory,
                                                                  names.configuration, onChange));
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
