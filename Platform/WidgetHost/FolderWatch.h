#pragma once

#include "Platform/WidgetHost/FolderEvents.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Platform {

/// Tells when files directly in one folder are replaced, written, made or removed, by whichever process. It
/// watches the folder and not the files, since a file that is replaced by a rename is another file.
class FolderWatch final {
public:
    /// `names` are the file names that matter; none means all but hidden ones. `onChange` is called on GLib's
    /// default main context, once for changes that arrive together, and may end this watch. A folder that is
    /// missing or cannot be watched is tried again by renew(). `events` has to outlive the watch.
    FolderWatch(FolderEvents& events, std::filesystem::path folder, std::vector<std::string> names,
                std::function<void()> onChange);

    /// Tells only when the folder itself is moved or removed: what happens in it wakes nobody.
    FolderWatch(FolderEvents& events, std::filesystem::path folder, std::function<void()> onChange);

    FolderWatch(FolderWatch const&) = delete;
    FolderWatch& operator=(FolderWatch const&) = delete;
    ~FolderWatch();

    /// Watches again if the folder was missing or has gone since. Cheap when it is being watched.
    void renew();

    [[nodiscard]] bool isWatching() const { return handle >= 0; }

private:
    friend class FolderEvents;

    void tell(bool isLost);
    [[nodiscard]] bool mattersWithin() const { return names.has_value(); }
    [[nodiscard]] bool matters(std::string_view name) const;
    void letGo();

    FolderEvents& events;
    std::filesystem::path folder;
    std::optional<std::vector<std::string>> names; // Absent when no entry matters.
    std::function<void()> onChange;
    int handle = -1;
};

} // namespace Platform
