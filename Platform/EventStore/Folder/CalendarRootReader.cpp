#include "Platform/EventStore/Folder/CalendarRootReader.h"

#include "Foundation/Text.h"
#include "Platform/EventStore/Folder/CalendarLooks.h"
#include "Platform/EventStore/Folder/FolderListing.h"
#include "Platform/EventStore/Folder/OccurrenceMapping.h"
#include "Platform/EventStore/Index/IndexFolder.h"

#include <algorithm>
#include <set>
#include <unistd.h>
#include <unordered_map>
#include <utility>

namespace Platform {

namespace {

bool concernsNone(std::string_view) {
    return false;
}

constexpr std::int64_t mostTextOfSeries = 16LL * 1024 * 1024;
constexpr std::int64_t isCut = -1;

StoreProblem::Effect effectOf(ICalendar::Problem const& problem) {
    return problem.effect == ICalendar::Problem::Effect::skipped ? StoreProblem::Effect::skipped
                                                                 : StoreProblem::Effect::adjusted;
}

// What is not shown is named where it stands; the rest bears on the calendar, which may be of many files.
StoreProblem problemOf(ICalendar::Problem const& problem, std::filesystem::path const& calendar) {
    bool const isSkipped = problem.effect == ICalendar::Problem::Effect::skipped;
    return {.path = isSkipped ? std::filesystem::path(problem.path) : calendar,
            .line = isSkipped ? problem.line : 0,
            .effect = effectOf(problem),
            .reason = problem.reason};
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
    std::filesystem::path folder; ///< Where its files lie, or its only file.
    std::filesystem::path listed; ///< The folder of its index, by the path that it is listed by.
    FileChoice choice = {};       ///< Which of the files there are its own.
};

/// What is kept of a calendar between two calls.
struct CalendarRootReader::KnownSeries {
    Files files;
    std::optional<ICalendar::SeriesSet> set;
};

CalendarRootReader::CalendarRootReader(CalendarRoot root, RootLayout layout,
                                       std::shared_ptr<ICalendar::ZoneCatalog> zones,
                                       std::optional<std::filesystem::path> indexDirectory,
                                       std::shared_ptr<FolderChanges> changes, FolderTrust trust)
    : givenRoot(std::move(root)),
      layout(layout),
      zones(std::move(zones)),
      indexDirectory(std::move(indexDirectory)),
      changes(std::move(changes)),
      trust(trust) {}

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
        Files files;
        ask(calendar.listed, now, [&](FolderIndex& index) {
            files = index.filesTouching(predicate.start, predicate.end, calendar.choice, now);
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
            auto const* const owner = occurrence.master != nullptr ? occurrence.master : occurrence.event;
            auto& bytes = bytesOfSeries[owner];
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
        Files files;
        ask(calendar.listed, now,
            [&](FolderIndex& index) { files = index.filesWithUID(uid, calendar.choice, now); });
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
        Files files;
        ask(calendar.listed, now,
            [&](FolderIndex& index) { files = index.filesWithUID(uid, calendar.choice, now); });
        for (auto const& file : files) {
            if (std::ranges::find(file->events, uid, &ICalendar::EventComponent::uid) != file->events.end())
                paths.emplace_back(file->path);
        }
    }
    return paths;
}

bool CalendarRootReader::refresh(std::int64_t now) {
    writing = IndexWriting::always;
    find([](std::string_view) { return true; }, now);
    writing = IndexWriting::ifWorthIt;
    auto const isUnwritable = [](auto const& folder) { return folder.second->index.isUnwritable(); };
    return !listingFailure && !hasClosedFolders && std::ranges::none_of(folders, isUnwritable);
}

std::vector<StoreProblem> CalendarRootReader::problems(std::int64_t now) {
    metProblems.clear();
    // Without an index every file is new.
    CalendarRootReader whole(givenRoot, layout, zones);
    whole.readsForProblems = true;
    for (auto const& calendar : whole.find([](std::string_view) { return true; }, now))
        whole.bringSharedEventsTogether(calendar, now);
    listingFailure = whole.listingFailure;
    return whole.takeProblems();
}

// What only several files together show. Who asks for a day is not told of it: every answer would come with
// it.
void CalendarRootReader::bringSharedEventsTogether(Found const& calendar, std::int64_t now) {
    if (calendar.choice.kind == FileChoice::Kind::one) return;
    Files files;
    ask(calendar.listed, now,
        [&](FolderIndex& index) { files = index.filesSharingUIDs(calendar.choice, now); });
    if (files.size() < 2) return;
    for (auto const& problem : seriesOf(calendar, std::move(files)).hiddenEvents())
        report(problemOf(problem, calendar.folder));
}

std::vector<StoreProblem> CalendarRootReader::takeProblems() {
    return std::exchange(metProblems, {});
}

std::int64_t CalendarRootReader::reads() const {
    auto count = readsOfForgottenFolders;
    for (auto const& [path, folder] : folders)
        count += folder->index.reads();
    return count;
}

std::vector<CalendarRootReader::Found> CalendarRootReader::find(Concerns const& concerns, std::int64_t now) {
    std::vector<Found> found;
    unverified.clear();
    hasClosedFolders = false;
    std::error_code failure;
    auto const canonicalRoot = std::filesystem::canonical(givenRoot.path, failure);
    FolderListing listing;
    if (failure) {
        listing.failure = failure;
    } else if (layout == RootLayout::singleCalendar && !concerns(givenRoot.id)) {
        listing = listFolder(canonicalRoot, canonicalRoot, ListingExtent::untilCalendarFile);
    } else {
        listing = look({.folder = canonicalRoot, .root = canonicalRoot}, givenRoot.path, now);
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
    if (layout == RootLayout::singleCalendar) {
        found.push_back(folderCalendar(givenRoot.id, givenRoot.title, givenRoot.path, listing));
        found.back().listed = canonicalRoot;
        return found;
    }

    findLooseCalendars(canonicalRoot, listing, now, found);
    for (auto const& name : listing.folders)
        findFolderCalendar(name, canonicalRoot, concerns, now, found);
    std::ranges::sort(found, {}, &Found::order);
    forgetAllBut(found, listing);
    return found;
}

void CalendarRootReader::forgetAllBut(std::vector<Found> const& found, FolderListing const& listing) {
    std::erase_if(folders, [&](auto const& entry) {
        auto const isThis = [&](std::string const& name) { return entry.first == givenRoot.path / name; };
        bool const isGone =
            entry.second->index.path() != givenRoot.path && std::ranges::none_of(listing.folders, isThis);
        if (isGone) readsOfForgottenFolders += entry.second->index.reads();
        return isGone;
    });
    std::erase_if(series, [&](auto const& entry) {
        return std::ranges::none_of(
            found, [&](Found const& calendar) { return calendar.record.calendarIdentifier == entry.first; });
    });
}

void CalendarRootReader::findLooseCalendars(std::filesystem::path const& listed, FolderListing const& listing,
                                            std::int64_t now, std::vector<Found>& found) {
    FolderIndex::Calendars calendars;
    ask(listed, now, [&](FolderIndex& index) { calendars = index.calendars(); });
    for (auto const& calendar : calendars.own) {
        auto loose = looseCalendar(calendar);
        loose.listed = listed;
        bool const isTaken = std::ranges::any_of(found, [&](Found const& other) {
            return other.record.calendarIdentifier == loose.record.calendarIdentifier;
        });
        if (isTaken) {
            reportTaken(loose.folder);
        } else {
            found.push_back(std::move(loose));
        }
    }
    if (!calendars.hasOthers) return;
    // A root that is a vdir calendar itself says so by the files that name and colour it.
    auto together = folderCalendar(givenRoot.id + "/.", givenRoot.title, givenRoot.path, listing);
    together.order = ".";
    together.listed = listed;
    together.choice = {.kind = FileChoice::Kind::together};
    found.push_back(std::move(together));
}

CalendarRootReader::Found CalendarRootReader::looseCalendar(FolderIndex::OwnCalendar const& calendar) const {
    auto const path = givenRoot.path / calendar.file;
    auto const stem = Foundation::Text::sanitizedUTF8(path.stem().string());
    return {
        .record = {.calendarIdentifier = givenRoot.id + "/" + Foundation::Text::sanitizedUTF8(calendar.file),
                   .title = calendar.name.value_or(stem),
                   .cgColor = calendarColor(calendar.color),
                   .sourceIdentifier = givenRoot.id,
                   .allowsContentModifications = isWritable(givenRoot.path)},
        .order = calendar.file,
        .folder = path,
        .listed = {},
        .choice = {.kind = FileChoice::Kind::one, .name = calendar.file},
    };
}

void CalendarRootReader::findFolderCalendar(std::string const& name,
                                            std::filesystem::path const& canonicalRoot,
                                            Concerns const& concerns, std::int64_t now,
                                            std::vector<Found>& found) {
    auto const folder = givenRoot.path / name;
    auto const shownName = Foundation::Text::sanitizedUTF8(name);
    auto const identifier = givenRoot.id + "/" + shownName;
    bool const isTaken = std::ranges::any_of(
        found, [&](Found const& other) { return other.record.calendarIdentifier == identifier; });
    FolderListing listing;
    if (concerns(identifier) && !isTaken) {
        listing = look({.folder = folder, .root = canonicalRoot}, folder, now);
    } else {
        listing = shortListing({.folder = folder, .root = canonicalRoot}, folder, now);
    }
    if (listing.failure) {
        hasClosedFolders = true;
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
    if (!listing.isCalendar()) return;
    if (isTaken) return reportTaken(folder);
    auto calendar = folderCalendar(identifier, shownName, folder, listing);
    calendar.order = name;
    calendar.listed = folder;
    found.push_back(std::move(calendar));
}

// Two names that differ only in bytes that are no UTF-8 cannot be told apart by identifier.
void CalendarRootReader::reportTaken(std::filesystem::path const& path) {
    report({.path = path,
            .line = 0,
            .effect = StoreProblem::Effect::skipped,
            .reason = "its name is not valid UTF-8 and reads as another calendar's; rename it to see it"});
}

CalendarRootReader::Found CalendarRootReader::folderCalendar(std::string identifier, std::string title,
                                                             std::filesystem::path const& folder,
                                                             FolderListing const& listing) const {
    auto const displayName = listing.hasDisplayName ? calendarMetadata(folder / "displayname") : std::nullopt;
    auto const color = listing.hasColor ? calendarMetadata(folder / "color") : std::nullopt;
    return {
        .record = {.calendarIdentifier = std::move(identifier),
                   .title = displayName.value_or(std::move(title)),
                   .cgColor = calendarColor(color),
                   .sourceIdentifier = givenRoot.id,
                   .allowsContentModifications = isWritable(folder)},
        .order = {},
        .folder = folder,
        .listed = {},
    };
}

FolderIndex CalendarRootReader::newIndex(std::filesystem::path const& folder) {
    FolderIndex index(folder, indexDirectory ? std::optional(IndexFolder::fileFor(*indexDirectory, folder))
                                             : std::nullopt);
    if (readsForProblems) {
        index.onRead([this, folder](std::shared_ptr<ICalendar::CalendarFile const> const& file) {
            ICalendar::SeriesSet const set({file}, zones);
            for (auto const* const met : {&set.problems(), &set.hiddenEvents()})
                for (auto const& problem : *met)
                    report(problemOf(problem, folder));
        });
    }
    return index;
}

ICalendar::SeriesSet const& CalendarRootReader::seriesOf(Found const& calendar, Files files) {
    auto& slot = series[calendar.record.calendarIdentifier];
    if (!slot) slot = std::make_unique<KnownSeries>();
    if (!slot->set || slot->files != files) {
        slot->set.emplace(files, zones);
        slot->files = std::move(files);
    }
    for (auto const& problem : slot->set->problems())
        report(problemOf(problem, calendar.folder));
    return *slot->set;
}

void CalendarRootReader::report(StoreProblem problem) {
    metProblems.push_back(std::move(problem));
}

} // namespace Platform
