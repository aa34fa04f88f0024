#pragma once

#include "Platform/Files/FileManager.h"
#include "Platform/WidgetHost/FolderWatch.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace Watching {

/// Notices what other processes change: the shared preference files, the calendar store's own files, the
/// system's time zone.
class PreferenceWatches final {
public:
    /// `onChange` is called on the main loop's thread.
    PreferenceWatches(Platform::FolderEvents& events, Platform::FileManager const& files,
                      std::optional<std::filesystem::path> const& configurationDirectory,
                      std::function<void()> const& onChange);

    /// Takes up folders that were missing before. Cheap.
    void renew();

private:
    std::vector<std::unique_ptr<Platform::FolderWatch>> watches;
};

} // namespace Watching
