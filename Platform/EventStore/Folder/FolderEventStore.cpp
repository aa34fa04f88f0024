#include "Platform/EventStore/Folder/FolderEventStore.h"

#include "Platform/EventStore/Folder/CalendarRootReader.h"
#include "Platform/EventStore/Folder/RefusedFolder.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fmt/format.h>
#include <iterator>
#include <utility>

namespace Platform {

namespace {

bool isDirectory(std::filesystem::path const& path) {
    std::error_code failure;
    return std::filesystem::is_directory(path, failure);
}

RootLayout layoutOf(CalendarRoot const& root) {
    return root.id == nativeCalendarIdentifier ? RootLayout::singleCalendar : RootLayout::folderOfCalendars;
}

// A list written by hand, or by a newer version, may hold what this one cannot use.
std::optional<std::string> whyUnusable(CalendarRoot const& root, std::set<std::string> const& takenIds) {
    if (root.kind != folderRootKind) {
        return fmt::format("it is of the kind \"{}\", which this version cannot read", root.kind);
    }
    if (!root.path.is_absolute()) return fmt::format("its path {} is not absolute", root.path.string());
    if (takenIds.contains(root.id)) return fmt::format("its id \"{}\" belongs to another source", root.id);
    return std::nullopt;
}

// By start, equal starts as they stood. Events are large, so their places are sorted and each moves once.
std::vector<EKEvent> sortedByStart(std::vector<EKEvent> events) {
    std::vector<std::pair<double, std::size_t>> order;
    order.reserve(events.size());
    for (auto const& event : events)
        order.emplace_back(event.startDate->secondsSince1970, order.size());
    std::ranges::sort(order);
    std::vector<EKEvent> sorted;
    sorted.reserve(events.size());
    for (auto const& [start, place] : order)
        sorted.push_back(std::move(events[place]));
    return sorted;
}

} // namespace

FolderEventStore::FolderEventStore(FolderEventStoreParts parts)
    : parts(std::move(parts)),
      configuration(this->parts.places.configurationDirectory, this->parts.files),
      consent(this->parts.places.configurationDirectory, this->parts.files),
      zones(std::make_shared<ICalendar::ZoneCatalog>()),
      writer(zones),
      changes(this->parts.onDifference ? std::make_shared<FolderChanges>() : nullptr) {}

FolderEventStore::~FolderEventStore() = default;

std::vector<EKSource> FolderEventStore::sources() {
    std::scoped_lock const lock(mutex);
    bringRootsUpToDate();
    std::vector<EKSource> sources;
    for (auto const& reader : readers) {
        sources.push_back({.sourceIdentifier = reader->root().id,
                           .title = reader->root().title,
                           .sourceType = EKSourceType::local,
                           .calendars = reader->calendars(now())});
    }
    finishCall();
    return sources;
}

std::vector<EKCalendar> FolderEventStore::calendarsForEntityType(EKEntityType type) {
    std::vector<EKCalendar> calendars;
    if (type != EKEntityType::event) return calendars;
    for (auto& source : sources()) {
        std::ranges::move(source.calendars, std::back_inserter(calendars));
    }
    return calendars;
}

std::optional<EKCalendar> FolderEventStore::calendarWithIdentifier(std::string_view identifier) {
    auto calendars = calendarsForEntityType(EKEntityType::event);
    auto const found = std::ranges::find(calendars, identifier, &EKCalendar::calendarIdentifier);
    if (found == calendars.end()) return std::nullopt;
    return std::move(*found);
}

std::optional<EKCalendar> FolderEventStore::defaultCalendarForNewEvents() {
    return calendarWithIdentifier(nativeCalendarIdentifier);
}

std::vector<EKEvent> FolderEventStore::eventsMatching(EKEventPredicate const& predicate) {
    std::scoped_lock const lock(mutex);
    std::vector<EKEvent> events;
    if (predicate.calendars && predicate.calendars->empty()) return events;
    bringRootsUpToDate();
    auto const viewer = parts.region->currentCalendar().timeZone();
    for (auto const& reader : readers)
        reader->appendEvents(predicate, viewer, now(), events);
    finishCall();
    return sortedByStart(std::move(events));
}

std::optional<EKEvent> FolderEventStore::eventWithIdentifier(std::string_view identifier) {
    std::scoped_lock const lock(mutex);
    bringRootsUpToDate();
    auto const viewer = parts.region->currentCalendar().timeZone();
    std::optional<EKEvent> found;
    for (auto const& reader : readers) {
        found = reader->event(identifier, viewer, now());
        if (found) break;
    }
    finishCall();
    return found;
}

void FolderEventStore::save(EKEvent& event, EKSpan span) {
    std::scoped_lock const lock(mutex);
    writer.save(event, span, editSurroundings());
}

void FolderEventStore::remove(EKEvent const& event, EKSpan span) {
    std::scoped_lock const lock(mutex);
    writer.remove(event, span, editSurroundings());
}

EditSurroundings FolderEventStore::editSurroundings() {
    bringRootsUpToDate();
    std::vector<CalendarRoot> roots;
    for (auto const& reader : readers)
        roots.push_back(reader->root());
    return {.roots = std::move(roots),
            .viewer = parts.region->currentCalendar().timeZone(),
            .now = parts.fileSystemClock->now(),
            .filesOfEvent = [this](std::string_view calendarIdentifier, std::string_view uid) {
                std::vector<std::filesystem::path> files;
                for (auto const& reader : readers)
                    std::ranges::move(reader->filesOfEvent(calendarIdentifier, uid, now()),
                                      std::back_inserter(files));
                finishCall();
                return files;
            }};
}

EKEvent FolderEventStore::makeEvent() {
    return {};
}

EKAuthorizationStatus FolderEventStore::authorizationStatus() {
    std::scoped_lock const lock(mutex);
    std::vector<StoreProblem> unused;
    auto const roots = rootsOnRecord(unused);
    bool const isClosed = !roots.empty() && std::ranges::all_of(roots, isRefused, &CalendarRoot::path);
    if (isClosed) return EKAuthorizationStatus::denied;
    return consent.status();
}

Foundation::Task<bool> FolderEventStore::requestFullAccessToEvents() {
    auto const answer = co_await parts.prompt->ask();
    co_return record(answer);
}

bool FolderEventStore::record(ConsentAnswer answer) {
    if (answer == ConsentAnswer::unavailable) return false;
    bool const isGranted = answer == ConsentAnswer::yes;
    auto const failure =
        consent.record(isGranted ? EKAuthorizationStatus::fullAccess : EKAuthorizationStatus::denied);
    if (failure) {
        throw EKError(fmt::format("The answer could not be kept in {} ({}); you will be asked again.",
                                  consent.file().string(), failure.message()));
    }
    return isGranted;
}

std::vector<StoreProblem> FolderEventStore::problems() {
    std::scoped_lock const lock(mutex);
    bringRootsUpToDate();
    auto all = recordProblems;
    for (auto const& reader : readers)
        std::ranges::move(reader->problems(now()), std::back_inserter(all));
    logNew(all);
    return all;
}

FolderEventStore::Refresh FolderEventStore::refresh() {
    std::scoped_lock const lock(mutex);
    bringRootsUpToDate();
    auto const before = readsSoFar();
    bool isWhole = true;
    for (auto const& reader : readers)
        isWhole = reader->refresh(now()) && isWhole;
    finishCall();
    return {.filesRead = readsSoFar() - before, .isWhole = isWhole};
}

std::int64_t FolderEventStore::fileReads() {
    std::scoped_lock const lock(mutex);
    return readsSoFar();
}

std::int64_t FolderEventStore::readsSoFar() const {
    std::int64_t count = 0;
    for (auto const& reader : readers)
        count += reader->reads();
    return count;
}

std::vector<CalendarRoot> FolderEventStore::rootsOnRecord(std::vector<StoreProblem>& problems) const {
    std::vector<CalendarRoot> roots;
    if (hasNativeCalendar(parts.places)) {
        roots.push_back({.kind = folderRootKind,
                         .id = std::string(nativeCalendarIdentifier),
                         .path = parts.places.nativeCalendar,
                         .title = std::string(nativeCalendarTitle)});
    }
    auto content = configuration.load();
    if (content.problem) {
        problems.push_back({.path = configuration.file(),
                            .line = 0,
                            .effect = StoreProblem::Effect::skipped,
                            .reason = *content.problem});
    }
    std::set<std::string> ids{std::string(nativeCalendarIdentifier)};
    for (auto& root : content.roots) {
        auto const reason = whyUnusable(root, ids);
        if (reason) {
            problems.push_back(
                {.path = configuration.file(),
                 .line = 0,
                 .effect = StoreProblem::Effect::skipped,
                 .reason = fmt::format("the source \"{}\" is not shown: {}", root.title, *reason)});
            continue;
        }
        ids.insert(root.id);
        roots.push_back(std::move(root));
    }
    return roots;
}

void FolderEventStore::bringRootsUpToDate() {
    recordProblems.clear();
    auto roots = rootsOnRecord(recordProblems);
    std::vector<std::unique_ptr<CalendarRootReader>> next;
    for (auto& root : roots) {
        auto const known = std::ranges::find_if(
            readers, [&](auto const& reader) { return reader && reader->root() == root; });
        if (known != readers.end()) {
            next.push_back(std::move(*known));
        } else {
            auto const layout = layoutOf(root);
            next.push_back(std::make_unique<CalendarRootReader>(
                std::move(root), layout, zones, parts.places.indexDirectory, changes,
                parts.onLookDue ? FolderTrust::asSeen : FolderTrust::none));
        }
    }
    readers = std::move(next);
    logNew(recordProblems);
}

// What a call leaves behind.
void FolderEventStore::finishCall() {
    bool isLookDue = false;
    for (auto const& reader : readers) {
        logNew(reader->takeProblems());
        for (auto& folder : reader->takeUnverified()) {
            isLookDue = true;
            if (changes)
                toVerify.push_back({.rootIdentifier = reader->root().id, .folder = std::move(folder)});
        }
    }
    if (isLookDue && parts.onLookDue) parts.onLookDue();
    if (toVerify.empty()) return;
    if (!verifier.joinable()) {
        verifier = std::jthread([this](std::stop_token const& stop) {
            try {
                verify(stop);
            } catch (std::exception const& failure) {
                parts.logger.error(fmt::format("the calendars are no longer looked at: {}", failure.what()));
            }
        });
    }
    verification.notify_all();
}

// Runs on the verifier's thread. Looks take long, so they hold nobody up.
void FolderEventStore::verify(std::stop_token const& stop) {
    std::unique_lock lock(mutex);
    while (verification.wait(lock, stop, [this] { return !toVerify.empty(); }) && !stop.stop_requested()) {
        isVerifying = true;
        bool isAnother = false;
        while (!toVerify.empty() && !stop.stop_requested()) {
            auto const next = std::move(toVerify.back());
            toVerify.pop_back();
            lock.unlock();
            auto const lookedAt = now();
            auto scan = next.folder.look();
            lock.lock();
            isAnother = takeLook(next, std::move(scan), lookedAt) || isAnother;
        }
        if (isAnother && !stop.stop_requested()) {
            lock.unlock();
            parts.onDifference();
            lock.lock();
        }
        isVerifying = false;
        verification.notify_all();
    }
}

bool FolderEventStore::takeLook(FolderToVerify const& place, FolderScan scan, std::int64_t lookedAt) {
    auto const reader = std::ranges::find_if(
        readers, [&](auto const& one) { return one->root().id == place.rootIdentifier; });
    if (reader == readers.end()) return false;
    bool const isAnother = (*reader)->verified(place.folder, std::move(scan), lookedAt);
    logNew((*reader)->takeProblems());
    return isAnother;
}

void FolderEventStore::awaitVerification() {
    std::unique_lock lock(mutex);
    verification.wait(lock, [this] { return toVerify.empty() && !isVerifying; });
}

void FolderEventStore::logNew(std::vector<StoreProblem> const& problems) {
    // A resident store would otherwise repeat itself at every query, or remember without end.
    constexpr std::size_t rememberedProblems = 10'000;
    for (auto const& problem : problems) {
        if (loggedProblems.contains(problem)) continue;
        if (loggedProblems.size() >= rememberedProblems) loggedProblems.clear();
        loggedProblems.insert(problem);
        if (problem.effect == StoreProblem::Effect::skipped) {
            parts.logger.error(describe(problem));
        } else {
            parts.logger.info(describe(problem));
        }
    }
}

std::int64_t FolderEventStore::now() const {
    return static_cast<std::int64_t>(std::floor(parts.fileSystemClock->now().secondsSince1970 * 1e9));
}

std::error_code createNativeCalendar(CalendarStorePlaces const& places, FileManager const& files) {
    if (!isDirectory(places.nativeCalendar)) {
        if (auto const failure = files.createDirectory(places.nativeCalendar)) return failure;
    }
    // What an earlier attempt left out is made up for; what is there is the person's.
    auto const writeMissing = [&](char const* name, std::string_view content) -> std::error_code {
        auto const file = places.nativeCalendar / name;
        std::error_code failure;
        auto const kind = std::filesystem::symlink_status(file, failure).type();
        if (kind == std::filesystem::file_type::not_found) return files.writeAtomically(file, content);
        return kind == std::filesystem::file_type::none ? failure : std::error_code();
    };
    if (auto const failure = writeMissing("displayname", nativeCalendarTitle)) return failure;
    return writeMissing("color", "#5CC2C6");
}

} // namespace Platform
