#pragma once

#include "Foundation/Date.h"
#include "Foundation/TimeZone.h"
#include "Platform/EventStore/ICalendar/CalendarFile.h"
#include "Platform/EventStore/ICalendar/Occurrence.h"
#include "Platform/EventStore/ICalendar/ZoneCatalog.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace Platform::ICalendar {

/// When a series can happen at all, for an index.
struct SeriesExtent {
    Foundation::Date first;               ///< No occurrence starts before.
    std::optional<Foundation::Date> last; ///< No occurrence ends after; absent for an endless series.
    bool isRecurring;
};

/// The events of one calendar, from one file or many, brought together by UID: masters with their overrides,
/// of several versions of an event the one with the highest SEQUENCE. Immutable; may be asked from any
/// thread.
class SeriesSet {
public:
    SeriesSet(std::vector<std::shared_ptr<CalendarFile const>> files, std::shared_ptr<ZoneCatalog> zones);
    ~SeriesSet();
    SeriesSet(SeriesSet&&) noexcept;
    SeriesSet& operator=(SeriesSet&&) noexcept;

    /// Occurrences with start < `to` and end > `from`, and those without length with `from` ≤ start < `to`.
    /// All-day events lie on the viewer's days; floating times are read on the viewer's clock.
    [[nodiscard]] Expansion occurrences(Foundation::Date from, Foundation::Date to,
                                        Foundation::TimeZone const& viewer,
                                        ExpansionLimits const& limits = {}) const;

    /// The same for the one series of that UID; nothing when there is none.
    [[nodiscard]] Expansion occurrencesOfSeries(std::string_view uid, Foundation::Date from,
                                                Foundation::Date to, Foundation::TimeZone const& viewer,
                                                ExpansionLimits const& limits = {}) const;

    /// The single event, or the earliest occurrence of the series that is not cancelled; absent when there is
    /// none.
    [[nodiscard]] std::optional<Occurrence> firstOccurrence(std::string_view uid,
                                                            Foundation::TimeZone const& viewer) const;

    /// Absent for an unknown UID and for a cancelled event.
    [[nodiscard]] std::optional<SeriesExtent> extent(std::string_view uid,
                                                     Foundation::TimeZone const& viewer) const;

    /// The master that counts for a UID; null when the files hold only overrides, or nothing, of it.
    [[nodiscard]] EventComponent const* master(std::string_view uid) const;

    /// All UIDs, in the order in which the files first name them.
    [[nodiscard]] std::vector<std::string_view> uids() const;

    /// The files' problems are not repeated here: only what bringing them together showed, such as a TZID
    /// that nothing explains.
    [[nodiscard]] std::vector<Problem> const& problems() const;

    /// Those of two different events that were given one UID and SEQUENCE of which the other is shown.
    [[nodiscard]] std::vector<Problem> const& hiddenEvents() const;

private:
    struct Contents;
    std::unique_ptr<Contents const> contents;
};

} // namespace Platform::ICalendar
