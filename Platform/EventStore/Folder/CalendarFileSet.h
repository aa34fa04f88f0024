#pragma once

#include "Platform/EventStore/Folder/RegularFile.h"
#include "Platform/EventStore/Folder/StoreProblem.h"
#include "Platform/EventStore/ICalendar/CalendarFile.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace Platform {

/// The calendar files of one folder, each parsed once and again only after it changed.
class CalendarFileSet {
public:
    /// Brings the set to the files as they stand now: every one is examined, and one whose stamp differs, or
    /// was too young to be trusted when it was read, is read again. `names` are files in `folder`, in
    /// ascending order. `now` is the time of the file system's clock, in nanoseconds since 1970.
    void update(std::filesystem::path const& folder, std::vector<std::string> const& names, std::int64_t now);

    /// The readable ones, in the order of their names. A file that did not change is the same object as
    /// before.
    [[nodiscard]] std::vector<std::shared_ptr<ICalendar::CalendarFile const>> files() const;

    /// Of reading and of parsing, in the order of the files.
    void appendProblems(std::vector<StoreProblem>& problems) const;

    /// How many files were read since the set was made.
    [[nodiscard]] std::int64_t reads() const;

private:
    struct Entry {
        std::string name;
        std::filesystem::path path;
        FileStamp stamp = {};
        bool wasYoung = true;
        std::shared_ptr<ICalendar::CalendarFile const> file = nullptr; ///< Null when it could not be read.
        std::string failure = {};                                      ///< Why not.
    };

    void refresh(Entry& entry, std::int64_t now);

    std::vector<Entry> entries;
    std::int64_t readCount = 0;
};

} // namespace Platform
