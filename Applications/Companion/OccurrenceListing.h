#pragma once

#include "Foundation/Date.h"
#include "Foundation/TimeZone.h"
#include "Platform/Files/FileManager.h"

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace Companion {

/// The civil days of an all-day occurrence.
struct DayRange {
    std::chrono::local_days first;
    std::chrono::local_days end; ///< Exclusive.
};

/// One happening of an event.
struct ListedOccurrence {
    Foundation::Date start;
    Foundation::Date end;         ///< Exclusive.
    std::optional<DayRange> days; ///< Absent for a timed one.
    std::string title;            ///< Empty for an untitled event.
    std::string uid;
};

struct OccurrenceListing {
    std::vector<ListedOccurrence> occurrences; ///< By start, then end, then as the files give them.
    std::vector<std::string> problems;         ///< What was skipped or adjusted: file, line and reason.
};

/// Whatever overlaps it is listed; what has no length and starts at `to` is not.
struct Interval {
    Foundation::Date from;
    Foundation::Date to;
};

/// The occurrences of one iCalendar file, or of a folder as a source would read it. Throws CommandError:
/// wrongUse when there is nothing at `path`, failed when it cannot be read.
OccurrenceListing listOccurrences(Platform::FileManager const& files, std::filesystem::path const& path,
                                  Interval interval, Foundation::TimeZone const& viewer);

} // namespace Companion
