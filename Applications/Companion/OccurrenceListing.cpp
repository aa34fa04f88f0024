#include "Applications/Companion/OccurrenceListing.h"

#include "Applications/Companion/CalendarFolders.h"
#include "Applications/Companion/CommandError.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "Foundation/Calendar.h"
#include "Platform/EventStore/Folder/CalendarRootReader.h"
#include "Platform/EventStore/Folder/RegularFile.h"
#include "Platform/EventStore/ICalendar/CalendarFile.h"
#include "Platform/EventStore/ICalendar/SeriesSet.h"
#include "Platform/EventStore/ICalendar/ZoneCatalog.h"

#include <algorithm>
#include <cstddef>
#include <tuple>
#include <utility>

namespace Companion {

namespace ICalendar = Platform::ICalendar;

namespace {

void appendProblems(std::filesystem::path const& path, std::vector<ICalendar::Problem> const& found,
                    std::vector<std::string>& problems) {
    for (auto const& problem : found) {
        problems.push_back(Platform::describe({.path = path,
                                               .line = problem.line,
                                               .effect = Platform::StoreProblem::Effect::skipped,
                                               .reason = problem.reason}));
    }
}

// A reader of standard error is told of what might be missed, not of the hidden files that no one expects.
bool isWorthTelling(Platform::StoreProblem const& problem) {
    return problem.effect != Platform::StoreProblem::Effect::ignored ||
           !problem.path.filename().string().starts_with('.');
}

void sortByTime(std::vector<ListedOccurrence>& occurrences) {
    std::vector<std::tuple<double, double, std::size_t>> order;
    for (auto const& occurrence : occurrences)
        order.emplace_back(occurrence.start.secondsSince1970, occurrence.end.secondsSince1970, order.size());
    std::ranges::sort(order);
    std::vector<ListedOccurrence> sorted;
    for (auto const& [start, end, place] : order)
        sorted.push_back(std::move(occurrences[place]));
    occurrences = std::move(sorted);
}

// The nearest moment that has a day and a time on the calendar: an event may reach past the ends of time.
Foundation::Date nameable(Foundation::Date date, Foundation::Calendar const& calendar) {
    if (calendar.dateByAddingMinutes(0, date)) return date;
    constexpr Foundation::DateComponents first{
        .year = 1, .month = 1, .day = 1, .hour = 0, .minute = 0, .second = 0, .weekday = 0};
    constexpr Foundation::DateComponents last{
        .year = 9999, .month = 12, .day = 31, .hour = 23, .minute = 59, .second = 59, .weekday = 0};
    return *calendar.dateFromComponents(date.secondsSince1970 < 0 ? first : last);
}

ListedOccurrence listed(ICalendar::Occurrence const& occurrence, Foundation::Calendar const& calendar) {
    auto const& event = *occurrence.event;
    return {
        .start = nameable(occurrence.start, calendar),
        .end = nameable(occurrence.end, calendar),
        .days = occurrence.isAllDay ? std::optional(DayRange{occurrence.firstDay, occurrence.endDay})
                                    : std::nullopt,
        .title = event.summary ? event.summary->text() : std::string(),
        .uid = event.uid,
    };
}

OccurrenceListing listFile(Platform::FileManager const& files, std::filesystem::path const& path,
                           Interval interval, Foundation::TimeZone const& viewer) {
    auto bytes = files.contents(path, std::size_t{Platform::largestCalendarFile});
    if (!bytes) throw CommandError::failed(Texts::unreadableFile(shownPath(path), bytes.error().message()));
    auto const file = ICalendar::read(*std::move(bytes), path.string());
    if (file->isForeign)
        throw CommandError::failed(Texts::unreadableFile(shownPath(path), file->problems.front().reason));
    ICalendar::SeriesSet const series({file}, std::make_shared<ICalendar::ZoneCatalog>());
    auto const expansion = series.occurrences(interval.from, interval.to, viewer);

    OccurrenceListing listing;
    Foundation::Calendar const calendar(viewer);
    for (auto const& occurrence : expansion.occurrences)
        listing.occurrences.push_back(listed(occurrence, calendar));
    appendProblems(path, file->problems, listing.problems);
    appendProblems(path, series.problems(), listing.problems);
    appendProblems(path, series.hiddenEvents(), listing.problems);
    appendProblems(path, expansion.problems, listing.problems);
    return listing;
}

ListedOccurrence listed(Platform::EKEvent const& event, Foundation::Calendar const& calendar) {
    ListedOccurrence occurrence{
        .start = nameable(*event.startDate, calendar),
        .end = nameable(*event.endDate, calendar),
        .days = std::nullopt,
        .title = event.title.value_or(""),
        // An event identifier is its calendar's, ":" and the UID.
        .uid = event.eventIdentifier->substr(event.calendar->calendarIdentifier.size() + 1)};
    if (event.isAllDay)
        occurrence.days = DayRange{calendar.day(occurrence.start), calendar.day(occurrence.end)};
    return occurrence;
}

OccurrenceListing listFolder(std::filesystem::path const& path, Interval interval,
                             Foundation::TimeZone const& viewer) {
    Platform::CalendarRootReader reader(
        {.kind = Platform::folderRootKind, .id = "folder", .path = path, .title = path.filename().string()},
        Platform::RootLayout::folderOfCalendars, std::make_shared<ICalendar::ZoneCatalog>());
    // A reader used once compares no file with an earlier look, so the time of looking plays no part.
    constexpr std::int64_t now = 0;
    std::vector<Platform::EKEvent> events;
    reader.appendEvents({.start = interval.from, .end = interval.to, .calendars = std::nullopt}, viewer, now,
                        events);

    OccurrenceListing listing;
    Foundation::Calendar const calendar(viewer);
    for (auto const& event : events)
        listing.occurrences.push_back(listed(event, calendar));
    for (auto const& problem : reader.takeProblems())
        if (isWorthTelling(problem)) listing.problems.push_back(Platform::describe(problem));
    return listing;
}

} // namespace

OccurrenceListing listOccurrences(Platform::FileManager const& files, std::filesystem::path const& path,
                                  Interval interval, Foundation::TimeZone const& viewer) {
    std::error_code error;
    auto const status = std::filesystem::status(path, error);
    if (status.type() == std::filesystem::file_type::not_found)
        throw CommandError::wrongUse(Texts::noSuchPath(shownPath(path)));

    bool const isFolder = std::filesystem::is_directory(status);
    // A device, a pipe or a socket has no end to read to.
    if (!error && !isFolder && !std::filesystem::is_regular_file(status))
        throw CommandError::wrongUse(Texts::neitherFileNorFolder(shownPath(path)));
    if (isFolder)
        if (auto const reason = whyNotAFolder(path)) throw CommandError::failed(*reason);
    auto listing = isFolder ? listFolder(path, interval, viewer) : listFile(files, path, interval, viewer);
    sortByTime(listing.occurrences);
    return listing;
}

} // namespace Companion
