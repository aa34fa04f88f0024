#pragma once

#include "Platform/EventStore/Folder/CalendarRoot.h"
#include "Platform/Files/FileLocks.h"
#include "Platform/Files/FileManager.h"

#include <expected>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Platform {

/// The list of the person's calendar roots, in their order: calendar-store.json in the configuration folder,
///   {"version":1,"sources":[{"kind":"folder","id":"k3fa","path":"/home/ann/.calendars","title":"Home"}]}
/// It is read anew at each call and written atomically, readable by its owner alone.
class CalendarStoreConfiguration {
public:
    /// With `locks`, changes wait for those of other programs, at most 10 seconds. Without, nobody else may
    /// change the list meanwhile.
    CalendarStoreConfiguration(std::filesystem::path directory, std::shared_ptr<FileManager const> files,
                               std::shared_ptr<FileLocks const> locks = nullptr);

    struct Content {
        std::vector<CalendarRoot> roots;
        /// Why the file could not be read, or not wholly; its path is not named. A missing file is no
        /// problem.
        std::optional<std::string> problem;
        /// Whether a change goes on from `roots`: not when the file cannot be opened, or is of a newer form.
        bool mayBeChanged = true;
    };
    [[nodiscard]] Content load() const;

    /// Appends a folder and yields its record. `folder` is absolute; without a title it is titled by its
    /// name. The id is worked out from the path: a folder that was removed comes back with the calendar
    /// identifiers that it had. On failure nothing was changed, and the text tells a person why.
    std::expected<CalendarRoot, std::string> add(std::filesystem::path const& folder,
                                                 std::optional<std::string> title) const;

    /// Takes out the root with that id, path or title and yields its record. The folder itself is not
    /// touched. On failure nothing was changed, and the text tells a person why.
    std::expected<CalendarRoot, std::string> remove(std::string_view which) const;

    [[nodiscard]] std::filesystem::path file() const;

private:
    [[nodiscard]] std::expected<CalendarRoot, std::string>
    addWhileLocked(std::filesystem::path const& path, std::optional<std::string> const& title) const;
    [[nodiscard]] std::expected<CalendarRoot, std::string> removeWhileLocked(std::string_view which) const;
    [[nodiscard]] std::expected<std::unique_ptr<FileLocks::Held>, std::string> lock() const;
    [[nodiscard]] std::optional<std::string> write(std::vector<CalendarRoot> const& roots) const;

    std::filesystem::path directory;
    std::shared_ptr<FileManager const> files;
    std::shared_ptr<FileLocks const> locks;
};

} // namespace Platform
