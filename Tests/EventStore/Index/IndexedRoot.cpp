#include "Tests/EventStore/Index/IndexedRoot.h"

#include "Platform/EventStore/Folder/FolderListing.h"
#include "Platform/EventStore/Folder/OccurrenceMapping.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <iterator>

using namespace Platform;

namespace {

std::string lineOf(EKEvent const& event) {
    return fmt::format("{} {} {:.0f}-{:.0f} {} {} {} rules {} {}:{}", event.eventIdentifier.value_or("none"),
                       event.title.value_or("untitled"), event.startDate->secondsSince1970,
                       event.endDate->secondsSince1970, event.isAllDay ? "day" : "time",
                       event.occurrenceKey.value_or("single"), event.notes.value_or("").size(),
                       event.recurrenceRules.size(), event.sourceFile, event.sourceLine);
}

CalendarRoot rootAt(std::filesystem::path const& path) {
    return {.kind = "folder", .id = "r1", .path = path, .title = "My root"};
}

} // namespace

std::int64_t IndexedRoot::later() {
    auto const now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::nanoseconds>(now).count() + 1800 * second;
}

std::unique_ptr<CalendarRootReader> IndexedRoot::reader() const {
    return std::make_unique<CalendarRootReader>(rootAt(root / "calendars"), RootLayout::folderOfCalendars,
                                                std::make_shared<ICalendar::ZoneCatalog>(), indexes());
}

std::unique_ptr<CalendarRootReader> IndexedRoot::trustingReader() const {
    return std::make_unique<CalendarRootReader>(rootAt(root / "calendars"), RootLayout::folderOfCalendars,
                                                std::make_shared<ICalendar::ZoneCatalog>(), indexes(),
                                                nullptr, FolderTrust::asSeen);
}

std::unique_ptr<CalendarRootReader> IndexedRoot::readerWithoutPlace() const {
    return std::make_unique<CalendarRootReader>(rootAt(root / "calendars"), RootLayout::folderOfCalendars,
                                                std::make_shared<ICalendar::ZoneCatalog>());
}

std::filesystem::path IndexedRoot::onlyIndex() const {
    std::filesystem::path found;
    std::uintmax_t most = 0;
    // That of the root itself is there, too, and as good as empty.
    for (auto const& entry : std::filesystem::directory_iterator(indexes())) {
        if (entry.path().extension() != ".index" || entry.file_size() <= most) continue;
        most = entry.file_size();
        found = entry.path();
    }
    return found;
}

std::map<std::filesystem::path, std::string> IndexedRoot::indexContents() const {
    std::map<std::filesystem::path, std::string> contents;
    for (auto const& entry : std::filesystem::directory_iterator(indexes())) {
        std::ifstream stream(entry.path(), std::ios::binary);
        contents[entry.path()] = {std::istreambuf_iterator<char>(stream), {}};
    }
    return contents;
}

std::vector<std::string> IndexedRoot::answer(CalendarRootReader& reader, double from, double to,
                                             std::string_view viewer, std::int64_t now) {
    std::vector<EKEvent> events;
    reader.appendEvents({.start = {from}, .end = {to}, .calendars = std::nullopt},
                        Foundation::TimeZone::named(viewer).value(), now, events);
    std::vector<std::string> lines;
    std::ranges::transform(events, std::back_inserter(lines), lineOf);
    return lines;
}

WholeCalendar IndexedRoot::whole(std::string const& name) const {
    return {root / "calendars" / name, name};
}

WholeCalendar::WholeCalendar(std::filesystem::path const& folder, std::string const& name) : name(name) {
    std::vector<std::shared_ptr<ICalendar::CalendarFile const>> files;
    for (auto const& file : listFolder(folder, folder.parent_path()).calendarFiles) {
        auto content = readRegularFile(folder / file);
        if (content) files.push_back(ICalendar::read(std::move(content->content), (folder / file).string()));
    }
    series.emplace(std::move(files), std::make_shared<ICalendar::ZoneCatalog>());
}

std::vector<std::string> WholeCalendar::answer(double from, double to, std::string_view viewer) const {
    auto const calendar =
        std::make_shared<EKCalendar const>(EKCalendar{.calendarIdentifier = "r1/" + name,
                                                      .title = name,
                                                      .cgColor = {.components = std::nullopt},
                                                      .sourceIdentifier = "r1",
                                                      .allowsContentModifications = true});
    auto const zone = Foundation::TimeZone::named(viewer).value();
    std::vector<std::string> lines;
    for (auto const& occurrence : series->occurrences({from}, {to}, zone).occurrences)
        lines.push_back(lineOf(eventOfOccurrence(occurrence, calendar, zone)));
    return lines;
}

std::vector<std::string> IndexedRoot::titles(CalendarRootReader& reader, std::int64_t now) {
    std::vector<EKEvent> events;
    reader.appendEvents({.start = {1772319600}, .end = {1774994400}, .calendars = std::nullopt},
                        Foundation::TimeZone::utc(), now, events);
    std::vector<std::string> texts;
    for (auto const& event : events)
        texts.push_back(event.title.value_or("untitled"));
    return texts;
}
