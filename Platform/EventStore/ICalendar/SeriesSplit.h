#pragma once

#include "Foundation/TimeZone.h"
#include "Platform/EventStore/ICalendar/CalendarEdit.h"
#include "Platform/EventStore/ICalendar/EventChange.h"
#include "Platform/EventStore/ICalendar/EventTextWriter.h"
#include "Platform/EventStore/ICalendar/Occurrence.h"
#include "Platform/EventStore/ICalendar/SeriesParts.h"
#include "Platform/EventStore/ICalendar/SeriesTimes.h"
#include "Platform/EventStore/ICalendar/SplitPoint.h"

#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Platform::ICalendar {

/// Why an edit is not possible, as the beginning of a sentence for people.
using EditResult = std::expected<CalendarEdit, std::string>;

/// Edits a series from one of its occurrences on: ends it before, and goes on with what follows under a UID
/// of its own; or, from the first on, changes it as a whole.
class SeriesSplit {
public:
    /// `parts` have a master, and must outlive this, as must `viewer`. `local` is the start that the series
    /// gave the occurrence, on the master's clock.
    SeriesSplit(SeriesParts const& parts, std::int64_t local, Foundation::TimeZone const& viewer);

    /// Whether anything of the series happens before.
    [[nodiscard]] bool hasEarlier() const { return point.hasEarlier(); }

    /// The series up to the occurrence, which goes as well.
    [[nodiscard]] EditResult ended(std::int64_t now) const;

    /// The series up to the occurrence, and another one from it on that shows what is shown now.
    [[nodiscard]] EditResult dividedAsItIs(Occurrence const& occurrence, std::string const& newUID,
                                           std::int64_t now) const;

    /// The same, changed: the rest goes on as the occurrence is then.
    [[nodiscard]] EditResult divided(Occurrence const& occurrence, EventChange const& change,
                                     std::string const& newUID, std::int64_t now) const;

    /// The whole series changed, given how its first occurrence changes.
    [[nodiscard]] EditResult whole(Occurrence const& occurrence, EventChange const& change,
                                   std::int64_t now) const;

private:
    enum class Exception : std::uint8_t { stays, isAbsorbed };
    [[nodiscard]] EditResult divided(Occurrence const& occurrence, EventChange const& change,
                                     std::string const& newUID, std::int64_t now, Exception own) const;
    [[nodiscard]] Occurrence withoutException(Occurrence const& occurrence) const;

    enum class Reach : std::uint8_t { rest, whole };

    /// The series as it is from the occurrence on.
    struct Continuation {
        ComponentText event;
        TimeMapping mapping;
        std::vector<RecurrenceRule> rules;
        bool repeats;
        bool hasNewRules;
    };

    [[nodiscard]] std::optional<std::string> endSeries(ComponentText& event) const;
    [[nodiscard]] SeriesPart const& speaker(Occurrence const& occurrence, EventChange const& change) const;
    [[nodiscard]] ComponentText continuedText(Occurrence const& occurrence, EventChange const& change) const;
    [[nodiscard]] std::expected<Continuation, std::string>
    continuation(Occurrence const& occurrence, EventChange const& change, Reach reach) const;
    [[nodiscard]] TimeMapping mappingFor(Occurrence const& occurrence, EventChange const& change) const;
    [[nodiscard]] WritingClock clockFor(bool isAllDay, std::int64_t start, EventChange const& change) const;
    [[nodiscard]] std::int64_t anchor() const;
    [[nodiscard]] std::int64_t startOf(Reach reach) const;
    void writeStart(ComponentText& event, Occurrence const& occurrence, EventChange const& change,
                    TimeMapping const& mapping, Reach reach) const;
    [[nodiscard]] std::optional<ComponentText>
    keptException(Occurrence const& occurrence, EventChange const& change, Continuation const& next) const;
    [[nodiscard]] std::optional<std::string> continueRules(ComponentText& event, TimeMapping const& mapping,
                                                           Reach reach) const;
    [[nodiscard]] std::optional<std::string> countRest(std::vector<RuleChange>& rules) const;
    [[nodiscard]] std::int64_t idOf(SeriesPart const& part) const;
    [[nodiscard]] bool counts(SeriesPart const& part) const;
    [[nodiscard]] bool stays(Continuation const& next, std::int64_t local) const;

    SeriesParts const& parts;
    std::int64_t split;
    Foundation::TimeZone const& viewer;
    EventZone viewerZone;
    SeriesTimes times;
    SplitPoint point;
};

} // namespace Platform::ICalendar
