#include "Platform/EventStore/Folder/EditedFiles.h"

#include "Platform/EventStore/Folder/CalendarRootReader.h"
#include "Platform/EventStore/ICalendar/TimeZoneWriter.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <ranges>
#include <utility>

namespace Platform {

namespace {

using ICalendar::CalendarEdit;
using ICalendar::CalendarSource;
using NewItem = CalendarEdit::NewItem;
using Outcome = CalendarFileWriter::Outcome;
using Result = CalendarFileWriter::Result;

// A file of many events stays a calendar of its own when few are left, by the name that it is shown under.
std::string keptCalendar(std::string content, std::filesystem::path const& path) {
    auto const source = ICalendar::calendarSource(std::move(content));
    if (isCalendarOfItsOwn(*source.file)) return source.bytes;
    return ICalendar::withCalendarName(source, path.stem().string());
}

// The item in the file that it came from.
void addInside(NewItem const& item, std::vector<CalendarSource> const& sources,
               std::vector<CalendarEdit::FileEdit>& edits) {
    auto const& origin = sources[item.origin];
    auto components =
        ICalendar::missingTimeZones(item.components, {.target = origin.file.get(), .viewer = item.viewer},
                                    ICalendar::lineBreakOf(origin.bytes)) +
        item.components;
    auto splice = ICalendar::insertion(origin, std::move(components));
    auto const known = std::ranges::find(edits, item.origin, &CalendarEdit::FileEdit::source);
    if (known != edits.end()) {
        known->splices.push_back(std::move(splice));
        known->leavesNothing = false;
    } else {
        edits.push_back({.source = item.origin, .splices = {std::move(splice)}, .leavesNothing = false});
    }
}

} // namespace

EditedFiles::Change EditedFiles::newFile(NewItem const& item, std::vector<CalendarSource> const& sources,
                                         CalendarPlace const& place) {
    auto const* const origin = item.origin < sources.size() ? &sources[item.origin] : nullptr;
    auto const lineBreak = origin ? ICalendar::lineBreakOf(origin->bytes) : std::string("\r\n");
    auto const components =
        ICalendar::missingTimeZones(item.components,
                                    {.origin = origin ? origin->file.get() : nullptr, .viewer = item.viewer},
                                    lineBreak) +
        item.components;
    return {.path = place.path / (item.uid + ".ics"),
            .before = std::nullopt,
            .after = ICalendar::newCalendar(components, lineBreak)};
}

EditedFiles::EditedFiles(std::vector<CalendarSource> const& sources, CalendarEdit const& edit,
                         CalendarPlace const& place) {
    auto fileEdits = edit.files;
    std::optional<Change> created;
    if (edit.newItem && place.kind == CalendarPlace::Kind::folder) {
        created = newFile(*edit.newItem, sources, place);
    } else if (edit.newItem) {
        addInside(*edit.newItem, sources, fileEdits);
    }
    // What is new comes first and what goes last: a process that dies in between leaves something twice,
    // never nothing.
    if (created) {
        after.push_back(ICalendar::calendarSource(*created->after, created->path.string()));
        changes.push_back(*std::move(created));
    }
    std::vector<Change> removals;
    for (std::size_t index = 0; index < sources.size(); ++index) {
        auto const& source = sources[index];
        auto const known = std::ranges::find(fileEdits, index, &CalendarEdit::FileEdit::source);
        if (known == fileEdits.end()) {
            after.push_back(source);
            continue;
        }
        std::filesystem::path const path(source.file->path);
        Change change{.path = path, .before = source.bytes, .after = std::nullopt};
        bool const goes = known->leavesNothing && place.kind == CalendarPlace::Kind::folder;
        if (!goes) {
            auto content = ICalendar::spliced(source.bytes, known->splices);
            if (place.kind == CalendarPlace::Kind::file) content = keptCalendar(std::move(content), path);
            after.push_back(ICalendar::calendarSource(content, path.string()));
            change.after = std::move(content);
        }
        (change.after ? changes : removals).push_back(std::move(change));
    }
    std::ranges::move(removals, std::back_inserter(changes));
}

Result EditedFiles::write(CalendarFileWriter const& files) const {
    for (auto change = changes.begin(); change != changes.end(); ++change) {
        auto const result = apply(files, *change);
        if (result == Outcome::done) continue;
        for (auto const& written : std::ranges::subrange(changes.begin(), change) | std::views::reverse) {
            // Should somebody have changed it since, theirs stays.
            static_cast<void>(
                apply(files, {.path = written.path, .before = written.after, .after = written.before}));
        }
        return result;
    }
    return Outcome::done;
}

Result EditedFiles::apply(CalendarFileWriter const& files, Change const& change) {
    if (!change.before) return files.create(change.path, *change.after);
    if (!change.after) return files.remove(change.path, *change.before);
    return files.replace(change.path, *change.before, *change.after);
}

} // namespace Platform
