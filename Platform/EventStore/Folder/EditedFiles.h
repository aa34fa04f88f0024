#pragma once

#include "Platform/EventStore/Folder/CalendarFileWriter.h"
#include "Platform/EventStore/Folder/CalendarPlace.h"
#include "Platform/EventStore/ICalendar/CalendarEdit.h"

#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Platform {

/// The files of a calendar as an edit makes them, not written yet.
class EditedFiles {
public:
    /// One file that changes; absent contents stand for a file that is not there.
    struct Change {
        std::filesystem::path path;
        std::optional<std::string> before;
        std::optional<std::string> after;
    };

    /// `sources` are the files as they were read.
    EditedFiles(std::vector<ICalendar::CalendarSource> const& sources, ICalendar::CalendarEdit const& edit,
                CalendarPlace const& place);

    /// All files that hold something of the edited events afterwards, those that do not change as well.
    [[nodiscard]] std::vector<ICalendar::CalendarSource> const& results() const { return after; }

    /// Has another file written before these.
    void beginWith(Change change) { changes.insert(changes.begin(), std::move(change)); }

    /// Writes all of them. When one has changed meanwhile, or cannot be written, those written already are
    /// made what they were.
    [[nodiscard]] CalendarFileWriter::Result write(CalendarFileWriter const& files) const;

private:
    static Change newFile(ICalendar::CalendarEdit::NewItem const& item,
                          std::vector<ICalendar::CalendarSource> const& sources, CalendarPlace const& place);
    static CalendarFileWriter::Result apply(CalendarFileWriter const& files, Change const& change);

    std::vector<Change> changes; // In the order of writing: nothing is lost wherever it stops.
    std::vector<ICalendar::CalendarSource> after;
};

} // namespace Platform
