#pragma once

#include "Foundation/TimeZone.h"
#include "Platform/EventStore/EKEventStore.h"
#include "Platform/EventStore/Folder/CalendarRoot.h"
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
    /// Each direct sub-folder that holds .ics files is a calendar, identified by its name. So is each loose
    /// file that holds several events or names itself. The other loose files together are one calendar,
    /// identified as "." and titled as the root. Nothing deeper is read.
    folderOfCalendars,
    /// The folder is one calendar, whose identifier is the root's id alone, also without any file.
    singleCalendar,
};

/// Reads the calendars of one root by an index of each folder. Every call looks at the folders anew and reads
/// only what changed and what the question is about. Not safe for use from two threads at once.
class CalendarRootReader {
public:
    /// Without a folder for the indexes they are made anew in memory.
    CalendarRootReader(CalendarRoot root, RootLayout layout, std::shared_ptr<ICalendar::ZoneCatalog> zones,
                       std::optional<std::filesystem::path> indexDirectory = std::nullopt);
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
    struct State;
    /// Whether the files of the calendar with that identifier matter to the question.
    using Concerns = std::function<bool(std::string_view)>;

    using Files = std::vector<std::shared_ptr<ICalendar::CalendarFile const>>;

    std::vector<Found> find(Concerns const& concerns, std::int64_t now);
    void findLooseCalendars(FolderScan const& scan, std::int64_t now, std::vector<Found>& found);
    void findFolderCalendar(std::string const& name, std::filesystem::path const& canonicalRoot,
                            Concerns const& concerns, std::int64_t now, std::vector<Found>& found);
    bool isTaken(Found const& calendar, std::vector<Found> const& found);
    [[nodiscard]] Found folderCalendar(std::string identifier, std::string title,
                                       std::filesystem::path const& folder,
                                       FolderListing const& listing) const;
    [[nodiscard]] Found looseCalendar(FolderIndex::OwnCalendar const& calendar) const;
    State& stateOf(Found const& calendar);
    [[nodiscard]] FolderIndex newIndex(std::filesystem::path const& folder);
    FolderIndex& indexOf(Found const& calendar);
    void update(FolderIndex& index, ScannedFiles const& scan, std::int64_t now);
    void takeProblemsOf(FolderIndex& index);
    Files ask(Found const& calendar, std::int64_t now, std::function<Files(FolderIndex&)> const& question);
    ICalendar::SeriesSet const& seriesOf(Found const& calendar, Files files);
    void report(StoreProblem problem);

    CalendarRoot givenRoot;
    RootLayout layout;
    std::shared_ptr<ICalendar::ZoneCatalog> zones;
    std::optional<std::filesystem::path> indexDirectory;
    std::map<std::string, std::unique_ptr<State>, std::less<>> states; ///< By calendar identifier.
    std::optional<FolderIndex> looseFiles;
    std::optional<std::error_code> listingFailure;
    std::vector<StoreProblem> metProblems;
    std::int64_t readsOfForgottenCalendars = 0;
    bool readsForProblems = false; ///< Then what only a calendar as a whole shows is reported of each file.
};

/// Whether a loose file is a calendar, not one event of its folder's: it names itself or holds several
/// events.
bool isCalendarOfItsOwn(ICalendar::CalendarFile const& file);

} // namespace Platform
