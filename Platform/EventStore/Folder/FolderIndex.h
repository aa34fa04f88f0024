#pragma once

#include "Foundation/Date.h"
#include "Platform/EventStore/Folder/ScannedFiles.h"
#include "Platform/EventStore/Folder/StoreProblem.h"
#include "Platform/EventStore/ICalendar/CalendarFile.h"
#include "Platform/EventStore/Index/StoredIndex.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Platform {

/// Some of a folder's calendar files.
struct FileChoice {
    enum class Kind : std::uint8_t {
        all,
        together, ///< Those that make no calendar of their own.
        one,      ///< That of `name`.
    };
    Kind kind = Kind::all;
    std::string name = {};

    [[nodiscard]] bool covers(std::string_view file, bool isCalendarOfItsOwn) const;
};

/// When a look at a folder is written into its index.
enum class IndexWriting : std::uint8_t {
    ifWorthIt, ///< Not for a few files, which are as soon read at each start.
    always,
};

/// The calendar files of one folder, known by an index: a question reads those files alone whose events may
/// matter to it. What the index says holds as long as the files are those that it was made from; `update`
/// finds out. Without a place to keep it, it is made at the first look and lives in memory.
///
/// All but the constructor and `update` may throw IndexDamaged; after `discard` and `update` they do no more.
class FolderIndex {
public:
    FolderIndex(std::filesystem::path folder, std::optional<std::filesystem::path> indexFile);

    [[nodiscard]] std::filesystem::path const& path() const { return folder; }

    /// Called with each file that is read because it is new or changed.
    void onRead(std::function<void(std::shared_ptr<ICalendar::CalendarFile const> const&)> call) {
        readCall = std::move(call);
    }

    /// Whether there is something to answer from before the first `update`.
    [[nodiscard]] bool isKnown() const { return stored.has_value(); }

    /// Brings it to the files as a look at the folder found them: those that changed, or were too young to be
    /// trusted when they were read, are read again. `now` is the time of the file system's clock, in
    /// nanoseconds since 1970. Yields whether the files are other ones than at the last look, or than those
    /// that the index was made from.
    bool update(ScannedFiles const& scan, std::int64_t now, IndexWriting writing = IndexWriting::ifWorthIt);

    /// Notes that `update` has taken in a look at every file, before which the folder had that stamp, so that
    /// the next process can do without.
    void noteLook(FileStamp const& stamp, std::int64_t now) const;
    /// The next process is to look.
    void forgetLook() const;

    /// Whether the folder has many files and is as it was when each of them was last looked at, a quarter of
    /// an hour ago at most: none came, went or was renamed since. One that was written in place does not
    /// show. Never where the next look could not be noted.
    [[nodiscard]] bool isAsSeen(std::int64_t now) const;

    /// Whether the folder has many files and the last look found some that `IndexWriting::always` would add
    /// to the written index, or take out of it.
    [[nodiscard]] bool isWrittenBehind() const;
    /// Whether the index could not be written when it was last to be.
    [[nodiscard]] bool isUnwritable() const { return hasFailedToWrite; }

    /// Forgets the index, and keeps the next one in memory.
    void discard();

    /// The files that may have an event within [from, to], and all that speak of the same events; by name. A
    /// file of many events may come as an excerpt that holds those in question.
    std::vector<std::shared_ptr<ICalendar::CalendarFile const>>
    filesTouching(Foundation::Date from, Foundation::Date to, FileChoice const& choice, std::int64_t now);

    /// The files that name that UID.
    std::vector<std::shared_ptr<ICalendar::CalendarFile const>>
    filesWithUID(std::string_view uid, FileChoice const& choice, std::int64_t now);

    /// The files that name a UID that another file names, too.
    std::vector<std::shared_ptr<ICalendar::CalendarFile const>> filesSharingUIDs(FileChoice const& choice,
                                                                                 std::int64_t now);

    /// A file that is a calendar of its own.
    struct OwnCalendar {
        std::string file;
        std::optional<std::string> name;
        std::optional<std::string> color;
    };
    /// Those by the names of their files, and whether there are other files.
    struct Calendars {
        std::vector<OwnCalendar> own;
        bool hasOthers = false;
    };
    Calendars calendars();

    /// What reading met since the last call.
    std::vector<StoreProblem> takeProblems() { return std::exchange(metProblems, {}); }

    /// How many files were read because they were new, changed or not to be trusted.
    [[nodiscard]] std::int64_t reads() const { return readCount; }

private:
    /// A file that the stored index does not know as it is now.
    struct Fresh {
        std::uint64_t stamp; // 0 when it was too young to be trusted.
        FileFacts facts;
        std::size_t bytes;
        std::int64_t round; // Of `update`, when it was read.
    };
    struct ReadFile {
        Fresh facts;
        std::shared_ptr<ICalendar::CalendarFile const> file;
    };
    struct Parsed {
        std::uint64_t stamp;
        std::int64_t round; // Of `update`; a stamp that cannot be trusted holds within one.
        std::shared_ptr<ICalendar::CalendarFile const> file;
    };
    /// What a question needs of one file.
    struct Wanted {
        std::uint64_t stamp;
        std::vector<ICalendar::ExcerptPart> parts; // Empty: all of it.
    };
    using WantedFiles = std::map<std::string, Wanted, std::less<>>;

    struct Differences;
    Differences differences(ScannedFiles const& scan);
    void updateFrom(ScannedFiles const& scan, std::int64_t now, IndexWriting writing);
    void rewrite(ScannedFiles const& scan, Differences const& changes, std::int64_t now);
    void keep(std::vector<std::byte> image, std::int64_t now);
    std::optional<ReadFile> read(std::string const& name, std::int64_t now);
    void markStale(std::string_view name);
    void rememberUIDs();

    template <typename Collect>
    std::vector<std::shared_ptr<ICalendar::CalendarFile const>> collected(Collect collect, std::int64_t now);
    void want(WantedFiles& wanted, std::uint32_t place, std::uint32_t parts, FileChoice const& choice);
    void want(WantedFiles& wanted, std::string const& name, Fresh const& file, SeriesFacts const& series,
              FileChoice const& choice);
    void wantAllWithUID(WantedFiles& wanted, std::uint64_t uid, FileChoice const& choice);
    std::shared_ptr<ICalendar::CalendarFile const> load(std::string const& name, Wanted const& wanted,
                                                        std::int64_t now, bool& hasChanged);
    void remember(std::string const& name, std::uint64_t stamp,
                  std::shared_ptr<ICalendar::CalendarFile const> file);
    void forgetParsed(std::string const& name);
    void forgetParsedBut(WantedFiles const& wanted);
    void reportUnreadable(std::string const& name, std::string const& reason);

    std::filesystem::path folder;
    std::uint64_t folderHash;
    std::optional<std::filesystem::path> indexFile;
    bool isFileTrusted = true; // Not once it was found damaged.

    std::optional<StoredIndex> stored;
    std::vector<bool> isStale; // Of the stored files: changed or gone.
    std::map<std::string, Fresh, std::less<>> fresh;
    std::unordered_multimap<std::uint64_t, std::string> freshUIDs;
    struct State {
        std::size_t count;
        std::uint64_t stampSum;
        bool operator==(State const&) const = default;
    };
    [[nodiscard]] State storedState() const;
    std::optional<State> known; // The state of the folder that all this describes.
    std::optional<State> seen;  // That of the last look.
    bool hasUnwritten = false;  // Files that the written index should know otherwise.
    bool hasFailedToWrite = false;

    std::unordered_map<std::string, Parsed> parsed;
    std::size_t parsedBytes = 0;
    std::int64_t round = 0;
    std::vector<StoreProblem> metProblems;
    std::int64_t readCount = 0;
    std::function<void(std::shared_ptr<ICalendar::CalendarFile const> const&)> readCall;
};

} // namespace Platform
