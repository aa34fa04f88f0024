#include "Platform/EventStore/Folder/CalendarRootReader.h"

#include "Foundation/Text.h"
#include "Platform/EventStore/Folder/FolderListing.h"
#include "Platform/EventStore/Folder/OccurrenceMapping.h"
#include "Platform/EventStore/ICalendar/ColorText.h"

#include <algorithm>
#include <set>
#include <unistd.h>
#include <unordered_map>
#include <utility>

namespace Platform {

namespace {

using CalendarFiles = std::vector<std::shared_ptr<ICalendar::CalendarFile const>>;

CGColor colorOf(std::optional<std::string> const& text) {
    auto const color = text ? ICalendar::colorFromText(*text) : std::nullopt;
    if (!color) return {.components = std::nullopt};
    auto const channel = [](std::uint8_t value) { return static_cast<double>(value) / 255.0; };
    return {.components = {{channel(color->red), channel(color->green), channel(color->blue), 1.0}}};
}

constexpr std::int64_t mostTextOfSeries = 16LL * 1024 * 1024;
constexpr std::int64_t isCut = -1;

// The content of a vdir's one-line file; absent when it cannot be read or is blank.
std::optional<std::string> metadata(std::filesystem::path const& file) {
    constexpr std::int64_t limit = 4096;
    if (!stampOfRegularFile(file)) return std::nullopt;
    auto const read = readRegularFile(file, limit);
    if (!read) return std::nullopt;
    auto text =
        Foundation::Text::trimmingWhitespacesAndNewlines(Foundation::Text::sanitizedUTF8(read->content));
    if (text.empty()) return std::nullopt;
    return text;
}

StoreProblem::Effect effectOf(ICalendar::Problem const& problem) {
    return problem.effect == ICalendar::Problem::Effect::skipped ? StoreProblem::Effect::skipped
                                                                 : StoreProblem::Effect::adjusted;
}

bool isWritable(std::filesystem::path const& path) {
    return ::access(path.c_str(), W_OK) == 0;
}

} // namespace

bool isCalendarOfItsOwn(ICalendar::CalendarFile const& file) {
    if (file.name) return true;
    std::set<std::string_view> uids;
    for (auto const& event : file.events)
        uids.insert(event.uid);
    return uids.size() > 1;
}

/// A calendar as the last look at the root found it.
struct CalendarRootReader::Found {
    EKCalendar record;
    std::string order;              ///< The name that it is sorted by.
    std::filesystem::path folder;   ///< Where its files lie.
    std::vector<std::string> names; ///< Of its files.
    CalendarFiles looseFiles;       ///< Of a calendar of loose files, which are read already.
};

/// What is kept of a calendar between two calls.
struct CalendarRootReader::State {
    CalendarFileSet fileSet;
    CalendarFiles files;
    std::optional<ICalendar::SeriesSet> series;
};

CalendarRootReader::CalendarRootReader(CalendarRoot root, RootLayout layout,
                                       std::shared_ptr<ICalendar::ZoneCatalog> zones)
    : givenRoot(std::move(root)),
      layout(layout),
      zones(std::move(zones)) {}

CalendarRootReader::~CalendarRootReader() = default;

CalendarRoot const& CalendarRootReader::root() const {
    return givenRoot;
}

std::optional<std::error_code> CalendarRootReader::failure() const {
    return listingFailure;
}

std::vector<EKCalendar> CalendarRootReader::calendars(std::int64_t now) {
    std::vector<EKCalendar> records;
    for (auto& calendar : find(now))
        records.push_back(std::move(calendar.record));
    return records;
}

void CalendarRootReader::appendEvents(EKEventPredicate const& predicate, Foundation::TimeZone const& viewer,
                                      std::int64_t now, std::vector<EKEvent>& events) {
    for (auto const& calendar : find(now)) {
        if (!predicate.covers(calendar.record.calendarIdentifier)) continue;
        auto const& state = upToDate(calendar, now);
        auto const expansion = state.series->occurrences(predicate.start, predicate.end, viewer);
        for (auto const& problem : expansion.problems) {
            report(
                {.path = calendar.folder, .line = 0, .effect = effectOf(problem), .reason = problem.reason});
        }
        auto const record = std::make_shared<EKCalendar const>(calendar.record);
        // Every occurrence has its own copy of the texts; a rule must not make a long one fill the memory.
        std::unordered_map<ICalendar::EventComponent const*, std::int64_t> bytesOfSeries;
        for (auto const& occurrence : expansion.occurrences) {
            auto const* const series = occurrence.master != nullptr ? occurrence.master : occurrence.event;
            auto& bytes = bytesOfSeries[series];
            if (bytes == isCut) continue;
            if (bytes > mostTextOfSeries) {
                bytes = isCut;
                report({.path = calendar.folder,
                        .line = 0,
                        .effect = StoreProblem::Effect::adjusted,
                        .reason =
                            "its texts are too long for so many occurrences; only the first of the time "
                            "asked for are shown"});
                continue;
            }
            events.push_back(eventOfOccurrence(occurrence, record, viewer));
            bytes += textBytes(events.back());
        }
    }
}

std::optional<EKEvent> CalendarRootReader::event(std::string_view identifier,
                                                 Foundation::TimeZone const& viewer, std::int64_t now) {
    for (auto const& calendar : find(now)) {
        auto const prefix = eventIdentifier(calendar.record.calendarIdentifier, "");
        if (!identifier.starts_with(prefix)) continue;
        auto const& state = upToDate(calendar, now);
        auto const occurrence = state.series->firstOccurrence(identifier.substr(prefix.size()), viewer);
        if (occurrence) {
            return eventOfOccurrence(*occurrence, std::make_shared<EKCalendar const>(calendar.record),
                                     viewer);
        }
    }
    return std::nullopt;
}

std::vector<std::filesystem::path> CalendarRootReader::filesOfEvent(std::string_view calendarIdentifier,
                                                                    std::string_view uid, std::int64_t now) {
    std::vector<std::filesystem::path> paths;
    for (auto const& calendar : find(now)) {
        if (calendar.record.calendarIdentifier != calendarIdentifier) continue;
        for (auto const& file : upToDate(calendar, now).files) {
            if (std::ranges::find(file->events, uid, &ICalendar::EventComponent::uid) != file->events.end())
                paths.emplace_back(file->path);
        }
    }
    return paths;
}

std::vector<StoreProblem> CalendarRootReader::problems(std::int64_t now) {
    metProblems.clear();
    for (auto const& calendar : find(now))
        upToDate(calendar, now);
    return takeProblems();
}

std::vector<StoreProblem> CalendarRootReader::takeProblems() {
    return std::exchange(metProblems, {});
}

std::int64_t CalendarRootReader::reads() const {
    auto count = readsOfForgottenCalendars + looseFiles.reads();
    for (auto const& [identifier, state] : states)
        count += state->fileSet.reads();
    return count;
}

std::vector<CalendarRootReader::Found> CalendarRootReader::find(std::int64_t now) {
    std::vector<Found> found;
    std::error_code failure;
    auto const canonicalRoot = std::filesystem::canonical(givenRoot.path, failure);
    FolderListing listing;
    if (failure) {
        listing.failure = failure;
    } else {
        listing = listFolder(canonicalRoot, canonicalRoot);
    }
    listingFailure = listing.failure;
    if (listing.failure) {
        report({.path = givenRoot.path,
                .line = 0,
                .effect = StoreProblem::Effect::skipped,
                .reason = "the folder could not be opened, so none of its calendars is shown: " +
                          listing.failure->message()});
        return found;
    }
    for (auto const& problem : listing.problems)
        report(problem);
    if (layout == RootLayout::singleCalendar) {
        auto calendar = folderCalendar(givenRoot.id, givenRoot.title, givenRoot.path, listing.hasDisplayName,
                                       listing.hasColor);
        calendar.names = std::move(listing.calendarFiles);
        found.push_back(std::move(calendar));
        return found;
    }

    findLooseCalendars(listing.calendarFiles, now, found);
    for (auto& calendar : found) {
        // A root that is a vdir calendar itself says so by the files that name and colour it.
        if (calendar.order != ".") continue;
        auto const described = folderCalendar(calendar.record.calendarIdentifier, calendar.record.title,
                                              givenRoot.path, listing.hasDisplayName, listing.hasColor);
        calendar.record.title = described.record.title;
        calendar.record.cgColor = described.record.cgColor;
    }
    for (auto const& name : listing.folders)
        findFolderCalendar(name, canonicalRoot, found);
    std::ranges::sort(found, {}, &Found::order);
    std::erase_if(states, [&](auto const& entry) {
        bool const isGone = std::ranges::none_of(
            found, [&](Found const& calendar) { return calendar.record.calendarIdentifier == entry.first; });
        if (isGone) readsOfForgottenCalendars += entry.second->fileSet.reads();
        return isGone;
    });
    return found;
}

void CalendarRootReader::findLooseCalendars(std::vector<std::string> const& names, std::int64_t now,
                                            std::vector<Found>& found) {
    looseFiles.update(givenRoot.path, names, now);
    looseFiles.appendProblems(metProblems);
    std::optional<Found> together;
    for (auto const& file : looseFiles.files()) {
        std::filesystem::path const path(file->path);
        bool const isOwn = isCalendarOfItsOwn(*file);
        if (!isOwn && together) {
            together->looseFiles.push_back(file);
            continue;
        }
        auto const name = isOwn ? path.filename().string() : std::string(".");
        auto const stem = Foundation::Text::sanitizedUTF8(path.stem().string());
        Found calendar{
            .record = {.calendarIdentifier = givenRoot.id + "/" + Foundation::Text::sanitizedUTF8(name),
                       .title = isOwn ? file->name.value_or(stem) : givenRoot.title,
                       .cgColor = isOwn ? colorOf(file->color) : CGColor{.components = std::nullopt},
                       .sourceIdentifier = givenRoot.id,
                       .allowsContentModifications = isWritable(givenRoot.path)},
            .order = name,
            .folder = isOwn ? path : givenRoot.path,
            .names = {},
            .looseFiles = {file},
        };
        if (isOwn) {
            addUnlessTaken(std::move(calendar), found);
        } else {
            together = std::move(calendar);
        }
    }
    if (together) found.push_back(*std::move(together));
}

void CalendarRootReader::findFolderCalendar(std::string const& name,
                                            std::filesystem::path const& canonicalRoot,
                                            std::vector<Found>& found) {
    auto const folder = givenRoot.path / name;
    auto listing = listFolder(folder, canonicalRoot);
    for (auto const& problem : listing.problems)
        report(problem);
    if (listing.failure) {
        report({.path = folder,
                .line = 0,
                .effect = StoreProblem::Effect::skipped,
                .reason = "the folder could not be opened, so its events are not shown: " +
                          listing.failure->message()});
        return;
    }
    for (auto const& deeper : listing.folders) {
        report({.path = folder / deeper,
                .line = 0,
                .effect = StoreProblem::Effect::ignored,
                .reason = "folders inside a calendar's folder are not read"});
    }
    if (listing.calendarFiles.empty()) return;
    auto const shownName = Foundation::Text::sanitizedUTF8(name);
    auto calendar = folderCalendar(givenRoot.id + "/" + shownName, shownName, folder, listing.hasDisplayName,
                                   listing.hasColor);
    calendar.order = name;
    calendar.names = std::move(listing.calendarFiles);
    addUnlessTaken(std::move(calendar), found);
}

// Two names that differ only in bytes that are no UTF-8 cannot be told apart by identifier.
void CalendarRootReader::addUnlessTaken(Found calendar, std::vector<Found>& found) {
    bool const isTaken = std::ranges::any_of(found, [&](Found const& other) {
        return other.record.calendarIdentifier == calendar.record.calendarIdentifier;
    });
    if (isTaken) {
        report(
            {.path = calendar.folder,
             .line = 0,
             .effect = StoreProblem::Effect::skipped,
             .reason = "its name is not valid UTF-8 and reads as another calendar's; rename it to see it"});
        return;
    }
    found.push_back(std::move(calendar));
}

CalendarRootReader::Found CalendarRootReader::folderCalendar(std::string identifier, std::string title,
                                                             std::filesystem::path const& folder,
                                                             bool hasDisplayName, bool hasColor) const {
    auto const displayName = hasDisplayName ? metadata(folder / "displayname") : std::nullopt;
    auto const color = hasColor ? metadata(folder / "color") : std::nullopt;
    return {
        .record = {.calendarIdentifier = std::move(identifier),
                   .title = displayName.value_or(std::move(title)),
                   .cgColor = colorOf(color),
                   .sourceIdentifier = givenRoot.id,
                   .allowsContentModifications = isWritable(folder)},
        .order = {},
        .folder = folder,
        .names = {},
        .looseFiles = {},
    };
}

CalendarRootReader::State& CalendarRootReader::upToDate(Found const& calendar, std::int64_t now) {
    auto& slot = states[calendar.record.calendarIdentifier];
    if (!slot) slot = std::make_unique<State>();
    auto& state = *slot;
    auto files = calendar.looseFiles;
    if (files.empty()) {
        state.fileSet.update(calendar.folder, calendar.names, now);
        state.fileSet.appendProblems(metProblems);
        files = state.fileSet.files();
    }
    if (!state.series || state.files != files) {
        state.series.emplace(files, zones);
        state.files = std::move(files);
    }
    for (auto const& problem : state.series->problems()) {
        report({.path = calendar.folder, .line = 0, .effect = effectOf(problem), .reason = problem.reason});
    }
    return state;
}

void CalendarRootReader::report(StoreProblem problem) {
    metProblems.push_back(std::move(problem));
}

} // namespace Platform
