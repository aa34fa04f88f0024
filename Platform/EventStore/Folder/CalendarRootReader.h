#pragma once

#include "Foundation/TimeZone.h"
#include "Platform/EventStore/EKEventStore.h"
#include "Platform/EventStore/Folder/CalendarRoot.h"
#include "Platform/EventStore/Folder/FolderChanges.h"
#include "Platform/EventStore/Folder/FolderIndex.h"
#include "Platform/EventStore/Folder/FolderListing.h"
#include "Platform/EventStore/Folder/StoreProblem.h"
#include "Platform/EventStore/ICalendar/SeriesSet.h"
#include "Platform/EventStore/ICalendar/ZoneCatalog.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace Platform {

/// How a root's files make calendars.
enum class RootLayout : std::uint8_t {
    /// Each direct sub-folder that holds .ics files, or a calendar's name or colour, is a calendar,
    /// identified by its name. So is each loose file that holds several events or names itself. The other
    /// loose files together are one calendar, identified as "." and titled as the root. Nothing deeper is
    /// read.
    folderOfCalendars,
    /// The folder is one calendar, whose identifier is the root's id alone, also without any file.
    singleCalendar,
};

/// What a process that asks once takes for granted.
enum class FolderTrust : std::uint8_t {
    none,   ///< Every file is looked at before an answer.
    asSeen, ///< Of a folder that is as it was at the last look, the files that an answer comes from.
};

/// Reads the calendars of one root by an index of each folder: only what changed, and what the question is
/// about. Every call looks at the folders anew, as far as `trust` says so; or, given `changes`, it answers
/// from what is known of them, looks at those that have changed, and names those where only a look could
/// tell. Not safe for use from two threads at once.
class CalendarRootReader {
public:
    /// Without a folder for the indexes they are made anew in memory.
    CalendarRootReader(CalendarRoot root, RootLayout layout, std::shared_ptr<ICalendar::ZoneCatalog> zones,
                       std::optional<std::filesystem::path> indexDirectory = std::nullopt,
                       std::shared_ptr<FolderChanges> changes = nullptr,
                       FolderTrust trust = FolderTrust::none);
    ~CalendarRootReader();

    [[nodiscard]] CalendarRoot const& root() const;

    /// The calendars by name. `now` is the time in nanoseconds since 1970.
    std::vector<EKCalendar> calendars(std::int64_t now);

    /// The occurrences that `predicate` asks for, by calendar and start, appended to `events`. All-day and
    /// floating events lie on `viewer`'s days and clocks.
    void appendEvents(EKEventPredicate const& predicate, Foundation::TimeZone const& viewer, std::int64_t now,
                      std::vector<EKEvent>& events);

    /// The event, or the first occurrence of the series, of that event identifier.
    std::optional<EKEvent> event(std::string_view identifier, Foundation::TimeZone const& viewer,
                                 std::int64_t now);

    /// The files that hold something of that UID in one of the root's calendars.
    std::vector<std::filesystem::path> filesOfEvent(std::string_view calendarIdentifier, std::string_view uid,
                                                    std::int64_t now);

    /// Looks at every file and writes what the indexes do not have yet. Yields whether all folders could be
    /// looked at, and what was found could be written.
    bool refresh(std::int64_t now);

    /// A folder that was answered from before anyone looked at it, or that the next process will have to read
    /// anew unless somebody looks at it before.
    struct Unverified {
        std::filesystem::path folder;
        std::filesystem::path root; ///< Canonical.

        /// Looks at it; may be called on any thread.
        [[nodiscard]] FolderScan look() const { return scanFolder(folder, root); }
    };
    std::vector<Unverified> takeUnverified() { return std::exchange(unverified, {}); }

    /// Takes what a look found. Yields whether an answer given before may have been another one.
    bool verified(Unverified const& folder, FolderScan scan, std::int64_t now);

    /// Reads every file and yields all that could not be taken as it stands.
    std::vector<StoreProblem> problems(std::int64_t now);

    /// What the calls since the last `takeProblems` met; a thing met twice is there twice.
    std::vector<StoreProblem> takeProblems();

    /// Why the root's folder could not be listed when it was last looked at.
    [[nodiscard]] std::optional<std::error_code> failure() const;

    /// How many calendar files were read because they were new, changed or too young to be trusted.
    [[nodiscard]] std::int64_t reads() const;

private:
    struct Found;
    struct KnownSeries;
    /// A folder of calendar files, as far as it is known.
    struct KnownFolder {
        FolderIndex index;
        std::optional<FolderListing> listing = std::nullopt; ///< Of the last look, without the files.
        std::int64_t lookedAt = 0;                           ///< Nanoseconds since 1970.
    };
    /// Whether the files of the calendar with that identifier matter to the question.
    using Concerns = std::function<bool(std::string_view)>;

    using Files = std::vector<std::shared_ptr<ICalendar::CalendarFile const>>;

    std::vector<Found> find(Concerns const& concerns, std::int64_t now);
    void findLooseCalendars(std::filesystem::path const& listed, FolderListing const& listing,
                            std::int64_t now, std::vector<Found>& found);
    void findFolderCalendar(std::string const& name, std::filesystem::path const& canonicalRoot,
                            Concerns const& concerns, std::int64_t now, std::vector<Found>& found);
    void reportTaken(std::filesystem::path const& path);
    [[nodiscard]] Found folderCalendar(std::string identifier, std::string title,
                                       std::filesystem::path const& folder,
                                       FolderListing const& listing) const;
    [[nodiscard]] Found looseCalendar(FolderIndex::OwnCalendar const& calendar) const;
    FolderListing look(Unverified const& place, std::filesystem::path const& folder, std::int64_t now);
    std::optional<FolderListing> listingAsSeen(KnownFolder const& folder, Unverified const& place,
                                               std::int64_t now);
    [[nodiscard]] bool isOfManyCalendars(Unverified const& place) const;
    FolderListing shortListing(Unverified const& place, std::filesystem::path const& folder,
                               std::int64_t now);
    std::optional<FolderListing> listingWithoutALook(KnownFolder const& folder, Unverified const& place,
                                                     std::int64_t now);
    void update(FolderIndex& index, ScannedFiles const& scan, std::int64_t now);
    static void noteLook(FolderIndex const& index, FolderScan const& scan, std::int64_t now);
    void takeProblemsOf(FolderIndex& index);
    KnownFolder& knownFolder(Unverified const& place, std::filesystem::path const& folder);
    [[nodiscard]] FolderIndex newIndex(std::filesystem::path const& folder);
    void forgetAllBut(std::vector<Found> const& found, FolderListing const& listing);
    void ask(std::filesystem::path const& listed, std::int64_t now,
             std::function<void(FolderIndex&)> const& question);
    void bringSharedEventsTogether(Found const& calendar, std::int64_t now);
    ICalendar::SeriesSet const& seriesOf(Found const& calendar, Files files);
    void report(StoreProblem problem);

    CalendarRoot givenRoot;
    RootLayout layout;
    std::shared_ptr<ICalendar::ZoneCatalog> zones;
    std::optional<std::filesystem::path> indexDirectory;
    std::shared_ptr<FolderChanges> changes;
    FolderTrust trust;
    IndexWriting writing = IndexWriting::ifWorthIt;
    std::map<std::filesystem::path, std::unique_ptr<KnownFolder>> folders; ///< By their path as it is listed.
    std::map<std::string, std::unique_ptr<KnownSeries>, std::less<>> series; ///< By calendar identifier.
    std::vector<Unverified> unverified;
    std::optional<std::error_code> listingFailure;
    bool hasClosedFolders = false; ///< When it last looked at all of them.
    std::vector<StoreProblem> metProblems;
    std::int64_t readsOfForgottenFolders = 0;
    bool readsForProblems = false; ///< Then what only a calendar as a whole shows is reported of each file.
};

/// Whether a loose file is a calendar, not one event of its folder's: it names itself or holds several
/// events.
bool isCalendarOfItsOwn(ICalendar::CalendarFile const& file);

} // namespace Platform
