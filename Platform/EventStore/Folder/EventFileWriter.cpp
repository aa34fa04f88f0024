#include "Platform/EventStore/Folder/EventFileWriter.h"

#include "Foundation/Text.h"
#include "Foundation/UUID.h"
#include "Platform/EventStore/Folder/EditedFiles.h"
#include "Platform/EventStore/Folder/EventDifference.h"
#include "Platform/EventStore/Folder/EventMove.h"
#include "Platform/EventStore/Folder/FolderListing.h"
#include "Platform/EventStore/Folder/OccurrenceMapping.h"
#include "Platform/EventStore/Folder/RegularFile.h"
#include "Platform/EventStore/ICalendar/EventTextWriter.h"
#include "Platform/EventStore/ICalendar/SeriesEditor.h"
#include "Platform/EventStore/ICalendar/TimeZoneWriter.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <fmt/format.h>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

namespace Platform {

namespace {

using ICalendar::CalendarSource;
using ICalendar::SeriesEditor;
using Outcome = CalendarFileWriter::Outcome;

constexpr std::string_view notSaved = "the event was not saved";
constexpr std::string_view notRemoved = "nothing was removed";

std::string shown(std::filesystem::path const& path) {
    return Foundation::Text::sanitizedUTF8(path.string());
}

[[noreturn]] void refuse(CalendarFileWriter::Failure const& failure, std::string_view consequence) {
    auto const folder = shown(failure.path.parent_path());
    auto const& reason = failure.reason;
    if (failure.isReadOnlyFile) {
        throw EKError(fmt::format("The file {} may not be written to ({}); {}. Allow it, or choose another "
                                  "calendar.",
                                  shown(failure.path), reason.message(), consequence));
    }
    if (reason == std::errc::no_space_on_device || reason == std::errc::value_too_large ||
        reason.value() == EDQUOT) {
        throw EKError(
            fmt::format("There is no room left on the disk that holds {} ({}); {}. Make room and try "
                        "again.",
                        folder, reason.message(), consequence));
    }
    if (reason == std::errc::no_such_file_or_directory || reason == std::errc::not_a_directory) {
        throw EKError(fmt::format("The calendar's folder {} is no longer there; {}.", folder, consequence));
    }
    bool const isRefused = reason == std::errc::permission_denied ||
                           reason == std::errc::operation_not_permitted ||
                           reason == std::errc::read_only_file_system;
    if (isRefused) {
        throw EKError(fmt::format("The folder {} may not be written to ({}); {}. Allow it, or choose another "
                                  "calendar.",
                                  folder, reason.message(), consequence));
    }
    throw EKError(
        fmt::format("{} could not be written ({}); {}.", shown(failure.path), reason.message(), consequence));
}

// Repeats what another program's change has made void. Each time it starts from what that left.
template <typename Attempt>
void repeatWhileDisturbed(std::filesystem::path const& place, std::string_view consequence, Attempt attempt) {
    constexpr int mostAttempts = 50;
    for (int count = 1; count <= mostAttempts; ++count) {
        if (attempt()) return;
        std::this_thread::sleep_for(std::chrono::milliseconds(count));
    }
    throw EKError(
        fmt::format("Another program keeps changing {}; {}. Try again.", shown(place), consequence));
}

// What can be read of the files. One that has just gone is none; one that cannot be read may hold what the
// edit must change.
std::vector<CalendarSource> readAll(std::vector<std::filesystem::path> const& paths,
                                    std::string_view consequence) {
    std::vector<CalendarSource> sources;
    for (auto const& path : paths) {
        auto read = readRegularFile(path);
        if (read) {
            sources.push_back(ICalendar::calendarSource(std::move(read->content), path.string()));
            continue;
        }
        std::error_code failure;
        if (std::filesystem::exists(path, failure))
            throw EKError(
                fmt::format("{} could not be read ({}); {}.", shown(path), read.error(), consequence));
    }
    return sources;
}

// The file that the record was read from, if it is all that a change of this event alone concerns: then
// nothing else of the calendar needs to be looked at, however much there is. Empty when the file is another's
// by now, or when an exception stands apart from its series.
std::vector<CalendarSource> sourceOfRecord(EKEvent const& event, CalendarPlace const& place,
                                           std::string const& uid) {
    std::filesystem::path const file(event.sourceFile);
    std::error_code failure;
    bool const isFile = place.kind == CalendarPlace::Kind::file;
    bool const isOfCalendar =
        std::filesystem::equivalent(isFile ? file : file.parent_path(), place.path, failure);
    if (failure || !isOfCalendar || !isCalendarFileName(file.filename().string())) return {};
    std::vector<CalendarSource> sources;
    auto read = readRegularFile(file);
    if (!read) return sources;
    auto source = ICalendar::calendarSource(std::move(read->content), file.string());
    bool const holdsMaster =
        std::ranges::any_of(source.file->events, [&](ICalendar::EventComponent const& own) {
            return own.uid == uid && !own.recurrenceId;
        });
    if (holdsMaster) sources.push_back(std::move(source));
    return sources;
}

std::int64_t seconds(Foundation::Date date) {
    return static_cast<std::int64_t>(std::floor(date.secondsSince1970));
}

ICalendar::EditSpan spanOf(EKSpan span) {
    return span == EKSpan::futureEvents ? ICalendar::EditSpan::thisAndFuture
                                        : ICalendar::EditSpan::thisOccurrence;
}

// A rule without a frequency is one of a kind that a record has no word for.
bool hasUnwritableRule(ICalendar::EventChange const& change) {
    return change.rules && std::ranges::any_of(*change.rules, [](ICalendar::RuleChange const& rule) {
               return rule.rule.value("FREQ").value_or("").empty();
           });
}

// The edit that makes the change; none of an empty one.
ICalendar::CalendarEdit editOf(SeriesEditor const& editor, ICalendar::Occurrence const& occurrence,
                               ICalendar::EventChange const& change, EKSpan span, Foundation::Date now) {
    if (change.isEmpty()) return {.key = occurrence.key};
    if (hasUnwritableRule(change))
        throw EKError("The event repeats in a way that has no name here; it was not saved.");
    auto edit = editor.save(occurrence, change, spanOf(span),
                            {.now = seconds(now), .newUID = Foundation::UUID::random().uuidString()});
    if (!edit) throw EKError(edit.error() + "; it was not saved.");
    return *std::move(edit);
}

// The record as a query will yield it.
void takeSaved(EKEvent& event, std::vector<CalendarSource> const& sources, std::string const& uid,
               std::optional<std::string> const& key, std::shared_ptr<ICalendar::ZoneCatalog> const& zones,
               Foundation::TimeZone const& viewer) {
    SeriesEditor const saved(sources, uid, zones, viewer);
    auto const calendar = event.calendar;
    event.eventIdentifier = eventIdentifier(calendar->calendarIdentifier, uid);
    event.calendarItemIdentifier = uid;
    if (auto const occurrence = saved.occurrence(key))
        event = eventOfOccurrence(*occurrence, calendar, viewer);
}

[[noreturn]] void refuseGone(EKCalendar const& calendar, std::string_view consequence) {
    throw EKError(fmt::format("The calendar \"{}\" is no longer there; {}.", calendar.title, consequence));
}

[[noreturn]] void refuseVanished(EKCalendar const& calendar, std::string_view consequence) {
    throw EKError(fmt::format("The calendar \"{}\" is no longer there; {}.", calendar.title, consequence));
}

CalendarPlace placeOf(EKEvent const& event, EditSurroundings const& surroundings,
                      std::string_view consequence) {
    if (!event.calendar) {
        throw EKError(consequence == notSaved ? "The event has no calendar; it was not saved."
                                              : "The event has no calendar; nothing was removed.");
    }
    auto place = findCalendarPlace(surroundings.roots, event.calendar->calendarIdentifier);
    if (!place) refuseGone(*event.calendar, consequence);
    return *std::move(place);
}

// The calendar that the event was in when it was read.
std::optional<std::string> formerCalendar(EKEvent const& event) {
    auto const ending = eventIdentifier("", event.calendarItemIdentifier.value_or(""));
    if (!event.eventIdentifier->ends_with(ending)) return std::nullopt;
    return event.eventIdentifier->substr(0, event.eventIdentifier->size() - ending.size());
}

// The UID that an event identifier of that calendar names.
std::optional<std::string> uidOf(EKEvent const& event) {
    auto const prefix = eventIdentifier(event.calendar->calendarIdentifier, "");
    if (!event.eventIdentifier->starts_with(prefix)) return std::nullopt;
    return event.eventIdentifier->substr(prefix.size());
}

} // namespace

EventFileWriter::EventFileWriter(std::shared_ptr<ICalendar::ZoneCatalog> zones, CalendarFileWriter files)
    : zones(std::move(zones)),
      files(files) {}

void EventFileWriter::save(EKEvent& event, EKSpan span, EditSurroundings const& surroundings) {
    auto const place = placeOf(event, surroundings, notSaved);
    if (auto const reason = whyNotWritable(event)) throw EKError(*reason + "; it was not saved.");
    clearLeftovers(place, surroundings.now);
    if (!event.eventIdentifier) return create(event, place, surroundings);
    bool const goesElsewhere = !uidOf(event);
    repeatWhileDisturbed(place.path, notSaved, [&] {
        return goesElsewhere ? moveOnce(event, span, place, surroundings)
                             : changeOnce(event, span, place, surroundings);
    });
}

void EventFileWriter::remove(EKEvent const& event, EKSpan span, EditSurroundings const& surroundings) {
    auto const place = placeOf(event, surroundings, notRemoved);
    clearLeftovers(place, surroundings.now);
    repeatWhileDisturbed(place.path, notRemoved,
                         [&] { return removeOnce(event, span, place, surroundings); });
}

void EventFileWriter::create(EKEvent& event, CalendarPlace const& place,
                             EditSurroundings const& surroundings) {
    repeatWhileDisturbed(place.path, notSaved, [&] { return createOnce(event, place, surroundings); });
}

bool EventFileWriter::createOnce(EKEvent& event, CalendarPlace const& place,
                                 EditSurroundings const& surroundings) {
    auto const content = contentOf(event, surroundings.viewer);
    if (hasUnwritableRule(content))
        throw EKError("The event repeats in a way that has no name here; it was not saved.");
    auto const uid = Foundation::UUID::random().uuidString();
    std::vector<CalendarSource> sources;
    if (place.kind == CalendarPlace::Kind::file) {
        sources = readAll({place.path}, notSaved);
        if (sources.empty()) refuseGone(*event.calendar, notSaved);
    }
    auto const lineBreak = sources.empty() ? std::string("\r\n") : ICalendar::lineBreakOf(sources[0].bytes);
    ICalendar::CalendarEdit edit{.uid = uid};
    edit.newItem = {.uid = uid,
                    .components = ICalendar::newEventText(uid, content, surroundings.viewer,
                                                          seconds(surroundings.now), lineBreak),
                    .origin = 0,
                    .viewer = surroundings.viewer};
    EditedFiles const edited(sources, edit, place);
    auto const written = edited.write(files);
    if (!written) refuse(written.error(), notSaved);
    if (*written != Outcome::done) return false;
    takeSaved(event, edited.results(), uid, std::nullopt, zones, surroundings.viewer);
    return true;
}

bool EventFileWriter::changeOnce(EKEvent& event, EKSpan span, CalendarPlace const& place,
                                 EditSurroundings const& surroundings) {
    auto const uid = uidOf(event);
    auto sources =
        span == EKSpan::thisEvent ? sourceOfRecord(event, place, *uid) : std::vector<CalendarSource>();
    if (sources.empty())
        sources = readAll(surroundings.filesOfEvent(event.calendar->calendarIdentifier, *uid), notSaved);
    SeriesEditor const editor(sources, *uid, zones, surroundings.viewer);
    auto const occurrence = editor.occurrence(event.occurrenceKey);
    if (!occurrence) throw EKError("The event is no longer in the store; it was not saved.");
    auto const change = differenceBetween(event, *occurrence, editor.rules(), surroundings.viewer);
    if (change.isEmpty()) return true;
    auto const edit = editOf(editor, *occurrence, change, span, surroundings.now);
    EditedFiles const edited(sources, edit, place);
    auto const written = edited.write(files);
    if (!written) refuse(written.error(), notSaved);
    if (*written != Outcome::done) return false;
    takeSaved(event, edited.results(), edit.uid, edit.key, zones, surroundings.viewer);
    return true;
}

// The event is written where it goes, and only then taken away where it was. A process that dies in between
// leaves it in both; moved again from where it was, it is found in the other and only taken away.
bool EventFileWriter::moveOnce(EKEvent& event, EKSpan span, CalendarPlace const& place,
                               EditSurroundings const& surroundings) {
    auto const calendar = formerCalendar(event);
    auto const from = calendar ? findCalendarPlace(surroundings.roots, *calendar) : std::nullopt;
    auto const uid = event.calendarItemIdentifier.value_or("");
    std::vector<CalendarSource> sources;
    if (from) sources = readAll(surroundings.filesOfEvent(*calendar, uid), notSaved);
    SeriesEditor const editor(sources, uid, zones, surroundings.viewer);
    auto const occurrence = editor.occurrence(event.occurrenceKey);
    if (!occurrence) throw EKError("The event is no longer in the store; it was not saved.");
    auto const change = differenceBetween(event, *occurrence, editor.rules(), surroundings.viewer);
    if (!editor.reachesAll(*occurrence, change, spanOf(span)))
        throw EKError("A series can only be moved to another calendar as a whole; it was not saved.");
    auto const edit = editOf(editor, *occurrence, change, span, surroundings.now);

    MoveTarget target{.title = event.calendar->title, .place = place, .files = {}};
    bool const isOneFile = place.kind == CalendarPlace::Kind::file;
    target.files = readAll(isOneFile ? std::vector{place.path}
                                     : surroundings.filesOfEvent(event.calendar->calendarIdentifier, uid),
                           notSaved);
    if (isOneFile && target.files.empty()) refuseVanished(*event.calendar, notSaved);
    auto const moved = movedEvent(uid, EditedFiles(sources, edit, *from).results(), target, *zones);
    if (!moved) throw EKError(moved.error() + "; it was not saved.");
    EditedFiles edited(sources, editor.removeAll(), *from);
    if (moved->change) edited.beginWith(*moved->change);
    auto const written = edited.write(files);
    if (!written) refuse(written.error(), notSaved);
    if (*written != Outcome::done) return false;
    takeSaved(event, moved->files, uid, edit.key, zones, surroundings.viewer);
    return true;
}

bool EventFileWriter::removeOnce(EKEvent const& event, EKSpan span, CalendarPlace const& place,
                                 EditSurroundings const& surroundings) {
    auto const uid = event.eventIdentifier ? uidOf(event) : std::nullopt;
    std::vector<CalendarSource> sources;
    if (uid) {
        sources = readAll(surroundings.filesOfEvent(event.calendar->calendarIdentifier, *uid), notRemoved);
    }
    SeriesEditor const editor(sources, uid.value_or(""), zones, surroundings.viewer);
    auto const occurrence = editor.occurrence(event.occurrenceKey);
    if (!occurrence) throw EKError("The event is no longer in the store; nothing was removed.");
    auto const edit =
        editor.remove(*occurrence, spanOf(span),
                      {.now = seconds(surroundings.now), .newUID = Foundation::UUID::random().uuidString()});
    if (!edit) throw EKError(edit.error() + "; nothing was removed.");
    auto const written = EditedFiles(sources, *edit, place).write(files);
    if (!written) refuse(written.error(), notRemoved);
    return *written == Outcome::done;
}

// Once a folder: looking for them costs a look at all its names.
void EventFileWriter::clearLeftovers(CalendarPlace const& place, Foundation::Date now) {
    auto const folder = place.folder();
    if (!clearedFolders.insert(folder).second) return;
    files.clearLeftovers(folder, static_cast<std::int64_t>(now.secondsSince1970 * 1e9));
}

} // namespace Platform
