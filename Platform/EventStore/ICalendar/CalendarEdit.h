#pragma once

#include "Foundation/TimeZone.h"
#include "Platform/EventStore/ICalendar/CalendarSplice.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace Platform::ICalendar {

/// What an edit makes of the files that hold an event.
struct CalendarEdit {
    /// One file that changes.
    struct FileEdit {
        std::size_t source; ///< Which of the files given.
        std::vector<Splice> splices;
        bool leavesNothing; ///< Nothing but the event was in the file, and all of it goes.
    };
    std::vector<FileEdit> files = {};

    /// Events of a UID that the calendar did not have, to be put into it; without the zones that they name.
    struct NewItem {
        std::string uid;
        std::string components;
        std::size_t origin;                                        ///< The file that explains their zones.
        std::optional<Foundation::TimeZone> viewer = std::nullopt; ///< Whose zone they may name as well.
    };
    std::optional<NewItem> newItem = std::nullopt;

    /// What the edited event is found by afterwards; not of use after a removal.
    std::string uid = {};
    std::optional<std::string> key = std::nullopt;
};

/// Gathers the changes of an edit, file by file.
class CalendarEditBuilder {
public:
    /// `sources` must outlive the builder.
    CalendarEditBuilder(std::vector<CalendarSource> const& sources, std::string uid);

    void remove(std::size_t source, EventComponent const& component);
    void replace(std::size_t source, EventComponent const& component, std::string text);
    void add(std::size_t source, std::vector<Splice> splices);

    /// A file of which every event goes is one that is left with nothing.
    [[nodiscard]] CalendarEdit edit() const;

private:
    CalendarEdit::FileEdit& fileEdit(std::size_t source);

    std::vector<CalendarSource> const& sources;
    CalendarEdit gathered;
};

} // namespace Platform::ICalendar
