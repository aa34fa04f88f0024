#pragma once

#include "Foundation/TimeZone.h"
#include "Platform/EventStore/ICalendar/CalendarEdit.h"
#include "Platform/EventStore/ICalendar/ComponentText.h"
#include "Platform/EventStore/ICalendar/EventChange.h"
#include "Platform/EventStore/ICalendar/EventTextWriter.h"
#include "Platform/EventStore/ICalendar/SeriesParts.h"
#include "Platform/EventStore/ICalendar/SeriesSet.h"
#include "Platform/EventStore/ICalendar/SeriesSplit.h"
#include "Platform/EventStore/ICalendar/SeriesTimes.h"
#include "Platform/EventStore/ICalendar/WritingClock.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Platform::ICalendar {

/// How far an edit of a repeating event reaches.
enum class EditSpan : std::uint8_t { thisOccurrence, thisAndFuture };

/// What an edit brings along from outside, so that it is the same for the same input.
struct EditCircumstances {
    std::int64_t now;   ///< UTC seconds.
    std::string newUID; ///< For the rest of a series that is split.
};

/// Edits one event, single or repeating, in the files of its calendar. Nothing is written: an edit is the
/// splices that make the new files of the old ones.
class SeriesEditor {
public:
    /// `sources` are all files that hold something of `uid`, and must outlive the editor.
    SeriesEditor(std::vector<CalendarSource> const& sources, std::string uid,
                 std::shared_ptr<ZoneCatalog> zones, Foundation::TimeZone viewer);

    /// The event as it stands now: the occurrence of that key, or the single event without one. Absent when
    /// the files hold it no more.
    [[nodiscard]] std::optional<Occurrence> occurrence(std::optional<std::string> const& key) const;

    /// The rules of the series, as they are written; none of a single event.
    [[nodiscard]] std::vector<RuleText> rules() const { return parts.rules(); }

    /// Changes an occurrence that `occurrence` gave, and with `thisAndFuture` all that follow it. The error
    /// is a reason for people.
    [[nodiscard]] EditResult save(Occurrence const& occurrence, EventChange const& change, EditSpan span,
                                  EditCircumstances const& given) const;

    /// Removes one, or with `thisAndFuture` all from it on.
    [[nodiscard]] EditResult remove(Occurrence const& occurrence, EditSpan span,
                                    EditCircumstances const& given) const;

    /// Removes the event, or the whole series.
    [[nodiscard]] CalendarEdit removeAll() const;

    /// Whether such a change of an occurrence reaches all that there is of the event.
    [[nodiscard]] bool reachesAll(Occurrence const& occurrence, EventChange const& change,
                                  EditSpan span) const;

private:
    [[nodiscard]] std::vector<SeriesPart const*> exceptionsOf(Occurrence const& occurrence) const;
    [[nodiscard]] TimesWriting timesWriting(SeriesPart const& part, Occurrence const& occurrence) const;
    [[nodiscard]] bool followsAnotherClock(WritingClock const& clock, EventTimes const& times,
                                           EventChange const& change) const;
    [[nodiscard]] ComponentText exceptionText(SeriesPart const& base, Occurrence const& occurrence) const;
    [[nodiscard]] CalendarEdit addedBesideMaster(ComponentText const& text, SeriesPart const& base,
                                                 Occurrence const& occurrence) const;
    [[nodiscard]] CalendarEdit edited(SeriesPart const& part, Occurrence const& occurrence,
                                      EventChange const& change, EditCircumstances const& given) const;
    [[nodiscard]] CalendarEdit withException(Occurrence const& occurrence, EventChange const& change,
                                             EditCircumstances const& given) const;
    [[nodiscard]] CalendarEdit withoutOccurrence(Occurrence const& occurrence,
                                                 EditCircumstances const& given) const;
    [[nodiscard]] std::vector<std::shared_ptr<CalendarFile const>> filesAfter(CalendarEdit const& edit) const;
    [[nodiscard]] bool isEmptyAfter(CalendarEdit const& edit) const;
    [[nodiscard]] bool showsTheSame(CalendarEdit const& edit, Occurrence const& around) const;

    std::vector<CalendarSource> const& sources;
    std::shared_ptr<ZoneCatalog> zones;
    Foundation::TimeZone viewer;
    EventZone viewerZone;
    SeriesSet all;
    SeriesParts parts;
};

} // namespace Platform::ICalendar
