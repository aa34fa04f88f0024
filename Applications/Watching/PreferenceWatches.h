#pragma once

#include "Platform/Files/FileManager.h"
#include "Platform/WidgetHost/FolderWatch.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Watching {

/// The names of the files that a program goes by.
struct PreferenceFiles {
    std::vector<std::string> shared;        ///< In the container of the application group.
    std::vector<std::string> configuration; ///< In the configuration folder.
};

/// Notices what other processes change: preference files, and the system's time zone.
class PreferenceWatches final {
public:
    /// `onChange` is called on the main loop's thread.
    PreferenceWatches(Platform::FolderEvents& events, Platform::FileManager const& files,
                      std::optional<std::filesystem::path> const& configurationDirectory,
                      PreferenceFiles const& names, std::function<void()> const& onChange);

    /// Takes up folders that were missing before. Cheap.
    void renew();

private:
    std::vector<std::unique_ptr<Platform::FolderWatch>> watches;
};

} // namespace Watching
