#include "Platform/EventStore/Folder/CalendarRootReader.h"

#include <algorithm>
#include <utility>

// When a root's folders are looked at, and what is known of them without.
namespace Platform {

// What is in a folder, its index brought up to date with it; or what is known of it, where that will do.
// `folder` is where its files are read from.
FolderListing CalendarRootReader::look(Unverified const& place, std::filesystem::path const& folder,
                                       std::int64_t now) {
    auto& known = knownFolder(place, folder);
    if (changes) {
        if (auto listing = listingWithoutALook(known, place, now)) return *std::move(listing);
        // Before the look, so that nothing happens between the two.
        changes->watch(place.folder);
    } else if (trust == FolderTrust::asSeen && writing == IndexWriting::ifWorthIt &&
               !isOfManyCalendars(place)) {
        if (auto listing = listingAsSeen(known, place, now)) return *std::move(listing);
    }
    auto scan = place.look();
    for (auto const& problem : scan.listing.problems)
        report(problem);
    if (scan.listing.failure) return std::move(scan.listing);
    update(known.index, scan.files, now);
    noteLook(known.index, scan, now);
    if (trust == FolderTrust::asSeen && known.index.isWrittenBehind()) unverified.push_back(place);
    known.listing = scan.listing;
    known.lookedAt = now;
    return std::move(scan.listing);
}

// What tells a calendar from other folders.
FolderListing CalendarRootReader::shortListing(Unverified const& place, std::filesystem::path const& folder,
                                               std::int64_t now) {
    bool const isAsSeen =
        trust == FolderTrust::asSeen && !changes && knownFolder(place, folder).index.isAsSeen(now);
    return isAsSeen ? listingOfCalendar(place.folder)
                    : listFolder(place.folder, place.root, ListingExtent::untilCalendarFile);
}

std::optional<FolderListing> CalendarRootReader::listingAsSeen(KnownFolder const& folder,
                                                               Unverified const& place, std::int64_t now) {
    if (!folder.index.isAsSeen(now)) return std::nullopt;
    unverified.push_back(place);
    return listingOfCalendar(place.folder);
}

// Which calendars there are is then written in its files.
bool CalendarRootReader::isOfManyCalendars(Unverified const& place) const {
    return place.folder == place.root && layout == RootLayout::folderOfCalendars;
}

// Absent when one has to look first.
std::optional<FolderListing> CalendarRootReader::listingWithoutALook(KnownFolder const& folder,
                                                                     Unverified const& place,
                                                                     std::int64_t now) {
    // Now and then all is looked at whatever the system tells: it does not tell of every way to write.
    constexpr std::int64_t longestTrust = 3600LL * 1'000'000'000;
    if (!folder.index.isKnown()) return std::nullopt;
    auto const state = changes->state(place.folder);
    if (state == FolderChanges::State::changed) return std::nullopt;
    bool const isCertain = state == FolderChanges::State::unchanged && folder.listing &&
                           !folder.listing->hasLinks && now >= folder.lookedAt &&
                           now - folder.lookedAt < longestTrust;
    if (!isCertain) {
        // From here on, so that the look which is to follow misses nothing.
        changes->watch(place.folder);
        unverified.push_back(place);
    }
    if (folder.listing) return folder.listing;
    return listFolder(place.folder, place.root,
                      isOfManyCalendars(place) ? ListingExtent::whole : ListingExtent::untilCalendarFile);
}

bool CalendarRootReader::verified(Unverified const& folder, FolderScan scan, std::int64_t now) {
    auto const entry = folders.find(folder.folder);
    if (entry == folders.end()) return false;
    auto& known = *entry->second;
    for (auto const& problem : scan.listing.problems)
        report(problem);
    if (scan.listing.failure) return true;
    bool isAnother = known.index.update(scan.files, now);
    takeProblemsOf(known.index);
    noteLook(known.index, scan, now);
    if (known.listing) isAnother = isAnother || known.listing->folders != scan.listing.folders;
    known.listing = std::move(scan.listing);
    known.lookedAt = now;
    return isAnother;
}

void CalendarRootReader::update(FolderIndex& index, ScannedFiles const& scan, std::int64_t now) {
    // Of a folder that never held any there is nothing to keep.
    if (scan.empty() && !index.isKnown()) return;
    index.update(scan, now, writing);
    takeProblemsOf(index);
}

// What lies behind a link may change without a trace in the folder; and what cannot be read is told of at
// each start.
void CalendarRootReader::noteLook(FolderIndex const& index, FolderScan const& scan, std::int64_t now) {
    auto const isSkipped = [](StoreProblem const& problem) {
        return problem.effect == StoreProblem::Effect::skipped;
    };
    bool const isWhole = !scan.listing.hasLinks && scan.files.failures().empty() &&
                         std::ranges::none_of(scan.listing.problems, isSkipped);
    if (isWhole && scan.listing.stamp) {
        index.noteLook(*scan.listing.stamp, now);
    } else {
        index.forgetLook();
    }
}

void CalendarRootReader::takeProblemsOf(FolderIndex& index) {
    for (auto& problem : index.takeProblems())
        report(std::move(problem));
}

CalendarRootReader::KnownFolder& CalendarRootReader::knownFolder(Unverified const& place,
                                                                 std::filesystem::path const& folder) {
    auto& slot = folders[place.folder];
    if (!slot) slot = std::make_unique<KnownFolder>(KnownFolder{.index = newIndex(folder)});
    return *slot;
}

// Asks what is known of a folder, whatever has become of its index.
void CalendarRootReader::ask(std::filesystem::path const& listed, std::int64_t now,
                             std::function<void(FolderIndex&)> const& question) {
    auto& index = folders.at(listed)->index;
    try {
        question(index);
    } catch (IndexDamaged const&) {
        index.discard();
        std::error_code failure;
        update(index, scanFolder(listed, std::filesystem::canonical(givenRoot.path, failure)).files, now);
        question(index);
    }
    takeProblemsOf(index);
}

} // namespace Platform
