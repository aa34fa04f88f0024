#pragma once

#include "Platform/Clock/Clock.h"
#include "Platform/Clock/RegionSettings.h"
#include "Platform/EventStore/ConsentPrompt.h"
#include "Platform/EventStore/EKEventStore.h"
#include "Platform/EventStore/Folder/CalendarRoot.h"
#include "Platform/EventStore/Folder/CalendarRootReader.h"
#include "Platform/EventStore/Folder/CalendarStoreConfiguration.h"
#include "Platform/EventStore/Folder/CalendarStorePlaces.h"
#include "Platform/EventStore/Folder/ConsentRecord.h"
#include "Platform/EventStore/Folder/EventFileWriter.h"
#include "Platform/EventStore/Folder/StoreProblem.h"
#include "Platform/Files/FileManager.h"
#include "Platform/Logging/Logger.h"

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <stop_token>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace Platform {

/// What a FolderEventStore stands on.
struct FolderEventStoreParts {
    CalendarStorePlaces places;
    std::shared_ptr<FileManager const> files;
    std::shared_ptr<RegionSettings const> region; ///< The viewer's zone, asked at each query.
    std::shared_ptr<Clock const> fileSystemClock; ///< The clock that the files' times come from.
    std::shared_ptr<ConsentPrompt> prompt;
    Logger logger;
    /// For a program that stays: a query is answered from what is known of the folders, which are looked at
    /// afterwards, and this is called, on a thread of its own, when that found what another answer would have
    /// come of. Absent for a program that asks once: then the folders are looked at first.
    std::function<void()> onDifference = nullptr;
    /// For a program that asks once and is in a hurry: a folder of many files that is as it was when they
    /// were last looked at is not looked at file by file before a query is answered. The query calls this
    /// when somebody should do so by `refresh`, or the next answer may lack what was written into a file in
    /// place.
    std::function<void()> onLookDue = nullptr;
};

/// The user's calendars in folders of iCalendar files: the product's own calendar, once it has been made,
/// and the folders of calendar-store.json, each a source of its own, in that order. Calendars stand by name,
/// events come by start, equal starts in the order of the calendars.
///
/// What the folders hold is known by indexes in the cache folder, which a query brings up to date: it reads
/// the files that changed and those whose events it asks for. A broken event, an unreadable file or a
/// vanished folder costs only itself: it is logged once and the rest is shown.
class FolderEventStore final : public EKEventStore {
public:
    explicit FolderEventStore(FolderEventStoreParts parts);
    ~FolderEventStore() override;

    std::vector<EKSource> sources() override;
    std::vector<EKCalendar> calendarsForEntityType(EKEntityType type) override;
    std::optional<EKCalendar> calendarWithIdentifier(std::string_view identifier) override;
    /// The product's own calendar, once it has been made.
    std::optional<EKCalendar> defaultCalendarForNewEvents() override;
    std::vector<EKEvent> eventsMatching(EKEventPredicate const& predicate) override;
    std::optional<EKEvent> eventWithIdentifier(std::string_view identifier) override;
    /// Writes a new event into a file of its own, or where all events of the calendar are in one. Of a file
    /// that is there only the bytes of what changes are replaced.
    void save(EKEvent& event, EKSpan span) override;
    void remove(EKEvent const& event, EKSpan span) override;
    EKEvent makeEvent() override;
    /// The recorded consent; denied when not one of the folders may be opened.
    EKAuthorizationStatus authorizationStatus() override;
    /// Asks by the prompt and records the answer. Without an answer it yields false and records nothing.
    Foundation::Task<bool> requestFullAccessToEvents() override;

    /// Reads every file and yields all that could not be taken as it stands, in the order of the roots.
    std::vector<StoreProblem> problems();

    struct Refresh {
        std::int64_t filesRead; ///< Because they were new or changed, or too young to be known.
        bool isWhole;           ///< All folders could be looked at, and what was found could be kept.
    };
    /// Looks at every file and brings the indexes up to date, to the last file.
    Refresh refresh();

    /// Waits until all folders have been looked at that answers came from without a look.
    void awaitVerification();

    /// How many calendar files were read because they were new, changed or too young to be trusted.
    std::int64_t fileReads();

private:
    struct FolderToVerify {
        std::string rootIdentifier;
        CalendarRootReader::Unverified folder;
    };

    void bringRootsUpToDate();
    [[nodiscard]] EditSurroundings editSurroundings();
    void logNew(std::vector<StoreProblem> const& problems);
    void finishCall();
    [[nodiscard]] std::int64_t readsSoFar() const;
    [[nodiscard]] std::int64_t now() const;
    [[nodiscard]] std::vector<CalendarRoot> rootsOnRecord(std::vector<StoreProblem>& problems) const;
    bool record(ConsentAnswer answer);
    void verify(std::stop_token const& stop);
    bool takeLook(FolderToVerify const& place, FolderScan scan, std::int64_t lookedAt);

    FolderEventStoreParts parts;
    CalendarStoreConfiguration configuration;
    ConsentRecord consent;
    std::shared_ptr<ICalendar::ZoneCatalog> zones;

    std::mutex mutex; ///< Guards all that follows.
    std::vector<std::unique_ptr<CalendarRootReader>> readers;
    EventFileWriter writer;
    std::vector<StoreProblem> recordProblems; ///< Of calendar-store.json, when it was last read.
    std::set<StoreProblem> loggedProblems;
    std::shared_ptr<FolderChanges> changes; ///< Null in a program that asks once.
    std::vector<FolderToVerify> toVerify;
    bool isVerifying = false;
    std::condition_variable_any verification; ///< Something is to be verified, or has been.

    std::jthread verifier; ///< Last, so that it ends before what it uses.
};

/// The identifier of the product's own calendar and the title that it is made with.
inline constexpr std::string_view nativeCalendarIdentifier = "quillora-native-calendar";
inline constexpr std::string_view nativeCalendarTitle = "Quillora";

/// Makes the product's own calendar: its folder, with the files that name and colour it. Of one that exists
/// only what is missing is written.
std::error_code createNativeCalendar(CalendarStorePlaces const& places, FileManager const& files);

} // namespace Platform
