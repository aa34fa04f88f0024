#pragma once

#include "Platform/EventStore/ICalendar/Series.h"
#include "Platform/EventStore/ICalendar/SeriesTimes.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace Platform::ICalendar {

/// What a series has before one of its occurrences, there, and next.
class SplitPoint {
public:
    /// `series` has a master; it and `times`, which are the master's, must outlive this. `local` is the start
    /// that the series gave the occurrence, on the master's clock.
    SplitPoint(Series const& series, SeriesTimes const& times, std::int64_t local);

    /// Whether anything of the series happens before.
    [[nodiscard]] bool hasEarlier() const;

    /// How many of a rule's occurrences lie before, DTSTART being the first of them in any case; absent when
    /// nobody counts them.
    [[nodiscard]] std::optional<std::int64_t> countBefore(std::size_t rule) const;

    /// Whether the series itself happens there, whatever its exceptions make of it.
    [[nodiscard]] bool happens() const;

    /// The first time from there on that a rule yields; the occurrence's own when there is none.
    [[nodiscard]] std::int64_t nextOf(std::size_t rule) const;

private:
    [[nodiscard]] std::vector<std::int64_t> hiddenTimes() const;

    Series const& series;
    SeriesTimes const& times;
    std::int64_t split;
};

} // namespace Platform::ICalendar
