#include "Platform/EventStore/Folder/CalendarRootReader.h"

#include "Foundation/Text.h"
#include "Platform/EventStore/Folder/FolderListing.h"
#include "Platform/EventStore/Folder/OccurrenceMapping.h"
#include "Platform/EventStore/ICalendar/ColorText.h"
#include "Platform/EventStore/Index/IndexFolder.h"

#include <algorithm>
#include <set>
#include <unistd.h>
#include <unordered_map>
#include <utility>

namespace Platform {

namespace {

using CalendarFiles = std::vector<std::shared_ptr<ICalendar::CalendarFile const>>;

bool concernsNone(std::string_view) {
    return false;
}

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
    std::string order;            ///< The name that it is sorted by.
    std::filesystem::path folder; ///< Where its files lie.
    FileChoice choice = {};       ///< Which of the files there are its own.
    bool isLoose = false;         ///< They lie in the root itself.
};

/// What is kept of a calendar between two calls.
struct CalendarRootReader::State {
    std::optional<FolderIndex> index; ///< Of the calendar's own folder.
    CalendarFiles files;
    std::optional<ICalendar::SeriesSet> series;
};

CalendarRootReader::CalendarRootReader(CalendarRoot root, RootLayout layout,
                                       std::shared_ptr<ICalendar::ZoneCatalog> zones,
                                       std::optional<std::filesystem::path> indexDirectory)
    : givenRoot(std::move(root)),
      layout(layout),
      zones(std::move(zones)),
      indexDirectory(std::move(indexDirectory)) {}

CalendarRootReader::~CalendarRootReader() = default;

CalendarRoot const& CalendarRootReader::root() const {
    return givenRoot;
}

std::optional<std::error_code> CalendarRootReader::failure() const {
    return listingFailure;
}

std::vector<EKCalendar> CalendarRootReader::calendars(std::int64_t now) {
    std::vector<EKCalendar> records;
    for (auto& calendar : find(concernsNone, now))
        records.push_back(std::move(calendar.record));
    return records;
}

void CalendarRootReader::appendEvents(EKEventPredicate const& predicate, Foundation::TimeZone const& viewer,
                                      std::int64_t now, std::vector<EKEvent>& events) {
    auto const concerns = [&](std::string_view identifier) { return predicate.covers(identifier); };
    for (auto const& calendar : find(concerns, now)) {
        if (!predicate.covers(calendar.record.calendarIdentifier)) continue;
        auto files = ask(calendar, now, [&](FolderIndex& index) {
            return index.filesTouching(predicate.start, predicate.end, calendar.choice, now);
        });
        auto const expansion =
            seriesOf(calendar, std::move(files)).occurrences(predicate.start, predicate.end, viewer);
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
    auto const prefixOf = [](std::string_view calendar) { return eventIdentifier(calendar, ""); };
    auto const concerns = [&](std::string_view candidate) {
        return identifier.starts_with(prefixOf(candidate));
    };
    for (auto const& calendar : find(concerns, now)) {
        if (!concerns(calendar.record.calendarIdentifier)) continue;
        auto const uid = identifier.substr(prefixOf(calendar.record.calendarIdentifier).size());
        auto files = ask(calendar, now,
                         [&](FolderIndex& index) { return index.filesWithUID(uid, calendar.choice, now); });
        auto const occurrence = seriesOf(calendar, std::move(files)).firstOccurrence(uid, viewer);
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
    auto const concerns = [&](std::string_view candidate) { return candidate == calendarIdentifier; };
    for (auto const& calendar : find(concerns, now)) {
        if (!concerns(calendar.record.calendarIdentifier)) continue;
        auto const files = ask(
            calendar, now, [&](FolderIndex& index) { return index.filesWithUID(uid, calendar.choice, now); });
        for (auto const& file : files) {
            if (std::ranges::find(file->events, uid, &ICalendar::EventComponent::uid) != file->events.end())
                paths.emplace_back(file->path);
        }
    }
    return paths;
}

std::vector<StoreProblem> CalendarRootReader::problems(std::int64_t now) {
    metProblems.clear();
    // Without an index every file is new.
    CalendarRootReader whole(givenRoot, layout, zones);
    whole.readsForProblems = true;
    whole.find([](std::string_view) { return true; }, now);
    listingFailure = whole.listingFailure;
    return whole.takeProblems();
}

std::vector<StoreProblem> CalendarRootReader::takeProblems() {
    return std::exchange(metProblems, {});
}

std::int64_t CalendarRootReader::reads() const {
    auto count = readsOfForgottenCalendars + (looseFiles ? looseFiles->reads() : 0);
    for (auto const& [identifier, state] : states)
        count += state->index ? state->index->reads() : 0;
    return count;
}

std::vector<CalendarRootReader::Found> CalendarRootReader::find(Concerns const& concerns, std::int64_t now) {
    std::vector<Found> found;
    std::error_code failure;
    auto const canonicalRoot = std::filesystem::canonical(givenRoot.path, failure);
    FolderScan scan;
    if (failure) {
        scan.listing.failure = failure;
    } else if (layout == RootLayout::singleCalendar && !concerns(givenRoot.id)) {
        scan.listing = listFolder(canonicalRoot, canonicalRoot, ListingExtent::untilCalendarFile);
    } else {
        scan = scanFolder(canonicalRoot, canonicalRoot);
    }
    auto const& listing = scan.listing;
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
        found.push_back(folderCalendar(givenRoot.id, givenRoot.title, givenRoot.path, listing));
        if (concerns(givenRoot.id)) update(indexOf(found.back()), scan.files, now);
        return found;
    }

    findLooseCalendars(scan, now, found);
    for (auto const& name : listing.folders)
        findFolderCalendar(name, canonicalRoot, concerns, now, found);
    std::ranges::sort(found, {}, &Found::order);
    std::erase_if(states, [&](auto const& entry) {
        bool const isGone = std::ranges::none_of(
            found, [&](Found const& calendar) { return calendar.record.calendarIdentifier == entry.first; });
        if (isGone && entry.second->index) readsOfForgottenCalendars += entry.second->index->reads();
        return isGone;
    });
    return found;
}

void CalendarRootReader::findLooseCalendars(FolderScan const& scan, std::int64_t now,
                                            std::vector<Found>& found) {
    if (!looseFiles) looseFiles.emplace(newIndex(givenRoot.path));
    update(*looseFiles, scan.files, now);
    FolderIndex::Calendars calendars;
    try {
        calendars = looseFiles->calendars();
    } catch (IndexDamaged const&) {
        looseFiles->discard();
        update(*looseFiles, scan.files, now);
        calendars = looseFiles->calendars();
    }
    for (auto const& calendar : calendars.own) {
        auto loose = looseCalendar(calendar);
        if (!isTaken(loose, found)) found.push_back(std::move(loose));
    }
    if (!calendars.hasOthers) return;
    // A root that is a vdir calendar itself says so by the files that name and colour it.
    auto together = folderCalendar(givenRoot.id + "/.", givenRoot.title, givenRoot.path, scan.listing);
    together.order = ".";
    together.choice = {.kind = FileChoice::Kind::together};
    together.isLoose = true;
    found.push_back(std::move(together));
}

CalendarRootReader::Found CalendarRootReader::looseCalendar(FolderIndex::OwnCalendar const& calendar) const {
    auto const path = givenRoot.path / calendar.file;
    auto const stem = Foundation::Text::sanitizedUTF8(path.stem().string());
    return {
        .record = {.calendarIdentifier = givenRoot.id + "/" + Foundation::Text::sanitizedUTF8(calendar.file),
                   .title = calendar.name.value_or(stem),
                   .cgColor = colorOf(calendar.color),
                   .sourceIdentifier = givenRoot.id,
                   .allowsContentModifications = isWritable(givenRoot.path)},
        .order = calendar.file,
        .folder = path,
        .choice = {.kind = FileChoice::Kind::one, .name = calendar.file},
        .isLoose = true,
    };
}

void CalendarRootReader::findFolderCalendar(std::string const& name,
                                            std::filesystem::path const& canonicalRoot,
                                            Concerns const& concerns, std::int64_t now,
                                            std::vector<Found>& found) {
    auto const folder = givenRoot.path / name;
    auto const shownName = Foundation::Text::sanitizedUTF8(name);
    auto const identifier = givenRoot.id + "/" + shownName;
    FolderScan scan;
    if (concerns(identifier)) {
        scan = scanFolder(folder, canonicalRoot);
    } else {
        scan.listing = listFolder(folder, canonicalRoot, ListingExtent::untilCalendarFile);
    }
    auto const& listing = scan.listing;
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
    if (listing.calendarFiles.empty() && scan.files.empty()) return;
    auto calendar = folderCalendar(identifier, shownName, folder, listing);
    calendar.order = name;
    if (isTaken(calendar, found)) return;
    if (concerns(identifier)) update(indexOf(calendar), scan.files, now);
    found.push_back(std::move(calendar));
}

// Two names that differ only in bytes that are no UTF-8 cannot be told apart by identifier.
bool CalendarRootReader::isTaken(Found const& calendar, std::vector<Found> const& found) {
    bool const isTaken = std::ranges::any_of(found, [&](Found const& other) {
        return other.record.calendarIdentifier == calendar.record.calendarIdentifier;
    });
    if (isTaken) {
        report(
            {.path = calendar.folder,
             .line = 0,
             .effect = StoreProblem::Effect::skipped,
             .reason = "its name is not valid UTF-8 and reads as another calendar's; rename it to see it"});
    }
    return isTaken;
}

CalendarRootReader::Found CalendarRootReader::folderCalendar(std::string identifier, std::string title,
                                                             std::filesystem::path const& folder,
                                                             FolderListing const& listing) const {
    auto const displayName = listing.hasDisplayName ? metadata(folder / "displayname") : std::nullopt;
    auto const color = listing.hasColor ? metadata(folder / "color") : std::nullopt;
    return {
        .record = {.calendarIdentifier = std::move(identifier),
                   .title = displayName.value_or(std::move(title)),
                   .cgColor = colorOf(color),
                   .sourceIdentifier = givenRoot.id,
                   .allowsContentModifications = isWritable(folder)},
        .order = {},
        .folder = folder,
    };
}

CalendarRootReader::State& CalendarRootReader::stateOf(Found const& calendar) {
    auto& slot = states[calendar.record.calendarIdentifier];
    if (!slot) slot = std::make_unique<State>();
    return *slot;
}

FolderIndex CalendarRootReader::newIndex(std::filesystem::path const& folder) {
    FolderIndex index(folder, indexDirectory ? std::optional(IndexFolder::fileFor(*indexDirectory, folder))
                                             : std::nullopt);
    if (readsForProblems) {
        index.onRead([this, folder](std::shared_ptr<ICalendar::CalendarFile const> const& file) {
            for (auto const& problem : ICalendar::SeriesSet({file}, zones).problems())
                report({.path = folder, .line = 0, .effect = effectOf(problem), .reason = problem.reason});
        });
    }
    return index;
}

// Of a calendar of loose files all that lie beside each other.
FolderIndex& CalendarRootReader::indexOf(Found const& calendar) {
    if (calendar.isLoose) return *looseFiles;
    auto& index = stateOf(calendar).index;
    if (!index) index.emplace(newIndex(calendar.folder));
    return *index;
}

void CalendarRootReader::update(FolderIndex& index, ScannedFiles const& scan, std::int64_t now) {
    index.update(scan, now);
    takeProblemsOf(index);
}

void CalendarRootReader::takeProblemsOf(FolderIndex& index) {
    for (auto& problem : index.takeProblems())
        report(std::move(problem));
}

// What a question about a calendar finds, whatever has become of its index.
CalendarFiles CalendarRootReader::ask(Found const& calendar, std::int64_t now,
                                      std::function<CalendarFiles(FolderIndex&)> const& question) {
    auto& index = indexOf(calendar);
    CalendarFiles files;
    try {
        files = question(index);
    } catch (IndexDamaged const&) {
        index.discard();
        auto const folder = calendar.isLoose ? givenRoot.path : calendar.folder;
        std::error_code failure;
        auto const canonicalRoot = std::filesystem::canonical(givenRoot.path, failure);
        update(index, scanFolder(folder, canonicalRoot).files, now);
        files = question(index);
    }
    takeProblemsOf(index);
    return files;
}

ICalendar::SeriesSet const& CalendarRootReader::seriesOf(Found const& calendar, CalendarFiles files) {
    auto& state = stateOf(calendar);
    if (!state.series || state.files != files) {
        state.series.emplace(files, zones);
        state.files = std::move(files);
    }
    for (auto const& problem : state.series->problems()) {
        report({.path = calendar.folder, .line = 0, .effect = effectOf(problem), .reason = problem.reason});
    }
    return *state.series;
}

void CalendarRootReader::report(StoreProblem problem) {
    metProblems.push_back(std::move(problem));
}

} // namespace Platform
