#pragma once

#include "Platform/EventStore/ICalendar/CalendarSplice.h"
#include "Platform/EventStore/ICalendar/ComponentText.h"
#include "Platform/EventStore/ICalendar/RuleText.h"
#include "Platform/EventStore/ICalendar/Series.h"

#include <cstddef>
#include <string>
#include <vector>

namespace Platform::ICalendar {

/// One VEVENT of an event, in whatever version.
struct SeriesPart {
    std::size_t source; ///< The file that it stands in.
    ClockedEvent event;
};

/// All that some files hold of one UID, and what of it counts.
class SeriesParts {
public:
    /// `sources` must outlive this.
    SeriesParts(std::vector<CalendarSource> const& sources, std::string uid, ZoneCatalog& zones);
    SeriesParts(SeriesParts const&) = delete; // The parts point to the clocks.
    SeriesParts& operator=(SeriesParts const&) = delete;

    [[nodiscard]] std::string const& uid() const { return ownUID; }
    [[nodiscard]] std::vector<CalendarSource> const& sources() const { return givenSources; }

    /// In the order of the files.
    [[nodiscard]] std::vector<SeriesPart> const& all() const { return parts; }
    [[nodiscard]] bool isEmpty() const { return parts.empty(); }

    /// The versions that count. Not of use when it is empty.
    [[nodiscard]] Series const& series() const { return counting; }

    [[nodiscard]] SeriesPart const& partOf(EventComponent const* component) const;
    [[nodiscard]] SeriesPart const& master() const { return partOf(counting.master()->component); }
    [[nodiscard]] ComponentText textOf(SeriesPart const& part) const;

    /// The master's rules as they are written; none without a master.
    [[nodiscard]] std::vector<RuleText> rules() const;

private:
    std::vector<CalendarSource> const& givenSources;
    std::string ownUID;
    std::vector<FileClocks> clocks; // One a source.
    std::vector<SeriesPart> parts;
    Series counting;
};

} // namespace Platform::ICalendar
