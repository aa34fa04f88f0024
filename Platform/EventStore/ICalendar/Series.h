#pragma once

#include "Platform/EventStore/ICalendar/FileClocks.h"
#include "Platform/EventStore/ICalendar/Occurrence.h"
#include "Platform/EventStore/ICalendar/RoughBounds.h"
#include "Platform/EventStore/ICalendar/SeriesSet.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Platform::ICalendar {

/// All that the files of one calendar say about one UID. Filled by `add`, closed by `settle`; immutable then.
class Series {
public:
    void add(ClockedEvent event);

    /// Of the versions of the master and of each override, keeps the one that counts.
    void settle();

    [[nodiscard]] std::optional<ClockedEvent> const& master() const { return chosenMaster; }
    [[nodiscard]] std::vector<ClockedEvent> const& overrides() const { return chosenOverrides; }
    [[nodiscard]] std::string const& uid() const;

    /// A cancelled event is hidden with all its occurrences.
    [[nodiscard]] bool isCancelled() const;

    /// False when it certainly has nothing within [from, to] of UTC seconds, in any zone.
    [[nodiscard]] bool mayTouch(std::int64_t from, std::int64_t to) const;

    /// Where on the master's clock one of its rules ends: past the last occurrence that COUNT and UNTIL
    /// allow, by less than two days for an UNTIL in UTC. Works the count out at the first call only.
    struct RuleEnd {
        std::int64_t last; ///< The end of time for an endless rule.
        bool isEndless;
        bool isCut;         ///< The count could not be followed to its end.
        std::int64_t steps; ///< Spent on it now.
    };
    [[nodiscard]] RuleEnd ruleEnd(std::size_t ruleIndex) const;

    [[nodiscard]] std::optional<SeriesExtent> extent(EventZone const& viewer) const;

private:
    void boundRoughly();

    // What COUNT comes to on the master's clock. Worked out when it is first needed; threads that meet there
    // find the same.
    struct CountEnd {
        std::atomic<std::int64_t> last = unknown;
        std::atomic<bool> isCut = false;
        static constexpr std::int64_t unknown = INT64_MIN;
    };

    std::optional<ClockedEvent> chosenMaster;
    std::vector<ClockedEvent> chosenOverrides;
    std::unique_ptr<CountEnd[]> countEnds; // One a rule, of recurring masters only.
    RoughBounds bounds = {.first = 0, .last = 0};
};

} // namespace Platform::ICalendar
