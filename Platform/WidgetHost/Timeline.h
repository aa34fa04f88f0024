#pragma once

#include "Foundation/Date.h"

#include <optional>
#include <vector>

namespace Platform {

/// When a host asks for the next timeline.
struct TimelineReloadPolicy {
    /// The instant after which to ask again; absent means not before it is told to.
    std::optional<Foundation::Date> afterDate;

    static TimelineReloadPolicy after(Foundation::Date date) { return {.afterDate = date}; }

    bool operator==(TimelineReloadPolicy const&) const = default;
};

/// Entries to show, in order, and when to ask for more.
template <typename Entry>
struct Timeline {
    std::vector<Entry> entries;
    TimelineReloadPolicy policy;
};

} // namespace Platform
