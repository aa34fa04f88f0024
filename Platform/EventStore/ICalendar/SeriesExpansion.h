#pragma once

#include "Platform/EventStore/ICalendar/ExpansionWindow.h"
#include "Platform/EventStore/ICalendar/Omission.h"
#include "Platform/EventStore/ICalendar/Series.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Platform::ICalendar {

/// Works out which occurrences of one series lie in a window, in the order in which RFC 5545 builds the
/// recurrence set: DTSTART, rules and dates, less the exceptions, with the overrides put in place.
class SeriesExpansion {
public:
    /// With `omissions`, what the series names and leaves out is appended to them.
    SeriesExpansion(Series const& series, ExpansionWindow window, EventZone const& viewer,
                    ExpansionLimits const& limits, Expansion& result,
                    std::vector<Omission>* omissions = nullptr);

    void run();

private:
    /// One element of the recurrence set.
    struct Instance {
        std::int64_t local;   // On the master's clock.
        std::int64_t instant; // UTC seconds
        RecurrenceDate const* period;
    };
    /// What a RECURRENCE-ID or EXDATE names: an instant, or a whole day of the master's clock.
    struct Names {
        std::vector<std::int64_t> instants;
        std::vector<std::int64_t> days;

        void add(CalendarTime const& time, ClockedEvent const& owner, SeriesExpansion const& expansion);
        void sort();
        [[nodiscard]] bool contains(Instance const& instance) const;
    };
    /// An override that moves all that follows it.
    struct Shift {
        ClockedEvent event;
        std::int64_t instant;  // From this one on.
        std::int64_t distance; // Seconds on the override's clock.
        CalendarDuration length;
    };

    // Where an occurrence lies: its instants, and of an all-day one its days.
    struct Placement {
        std::int64_t start;
        std::int64_t end;
        std::int64_t firstDay;
        std::int64_t endDay;
    };

    void addSeries();
    void addMaster();
    void addOverrides();
    [[nodiscard]] std::vector<Instance> instances(CalendarDuration length, std::int64_t widening);
    void omitAllSince(std::ptrdiff_t first);
    void omitReplaced(Instance const& instance, CalendarDuration length);
    void omit(Omission::Reason reason, Instance const& instance, CalendarDuration length,
              ClockedEvent const& cause, std::optional<Foundation::Date> movedTo = std::nullopt);
    [[nodiscard]] Names namesOf(std::vector<ClockedEvent> const& overrides) const;
    void addRuleTimes(std::vector<std::int64_t>& times, std::int64_t from, std::int64_t to);
    void removeExceptions(std::vector<Instance>& found, CalendarDuration length, std::int64_t from,
                          std::int64_t to);
    [[nodiscard]] std::vector<Shift> shifts() const;
    void addInstance(Instance const& instance, CalendarDuration length);
    void addShifted(Instance const& instance, Shift const& shift);
    [[nodiscard]] std::int64_t endOf(Instance const& instance, CalendarDuration length) const;
    void addOccurrence(ClockedEvent const& event, std::int64_t startLocal, std::int64_t start,
                       std::int64_t end, CalendarDuration length, std::optional<std::string> key);
    [[nodiscard]] std::optional<Placement> placementInWindow(ClockedEvent const& event,
                                                             std::int64_t startLocal, std::int64_t start,
                                                             std::int64_t end, CalendarDuration length) const;
    [[nodiscard]] Occurrence occurrence(ClockedEvent const& event, Placement const& placement,
                                        std::optional<std::string> key) const;
    [[nodiscard]] std::optional<std::string> keyOfInstance(std::int64_t local) const;
    [[nodiscard]] std::string keyOfOverride(ClockedEvent const& event) const;
    [[nodiscard]] std::int64_t instantOfName(CalendarTime const& time, ClockedEvent const& owner) const;
    void reportCut(std::string reason);
    void report(Problem::Effect effect, std::string reason);

    Series const& series;
    ExpansionWindow window;
    EventZone const& viewer;
    ExpansionLimits const& limits;
    Expansion& result;
    std::vector<Omission>* omissions; // Null when nobody asks for them.
    std::int64_t steps;
    std::int64_t added = 0;
    bool hasCutRule = false;
    bool isReported = false;
};

} // namespace Platform::ICalendar
