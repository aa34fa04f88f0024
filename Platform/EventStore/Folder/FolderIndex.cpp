#include "Platform/EventStore/Folder/FolderIndex.h"

#include "Platform/EventStore/Folder/SharedFileSystem.h"
#include "Platform/EventStore/Index/IndexBuilder.h"
#include "Platform/EventStore/Index/IndexFolder.h"
#include "Platform/EventStore/Index/Mixing.h"
#include "Platform/EventStore/Index/SeenFolder.h"

#include <algorithm>
#include <bit>
#include <unistd.h>

namespace Platform {

namespace {

using IndexFormat::none;

constexpr std::int64_t minute = 60LL * 1'000'000'000;
constexpr std::int64_t hour = 60 * minute;
constexpr std::int64_t month = 30 * 24 * hour;

// A look at so few files takes no time worth saving.
constexpr std::size_t fewFiles = 500;

// What is kept of parsed files from one question to the next.
constexpr std::size_t mostParsedBytes = 2 * 1024 * 1024;

// Finds the stored file of a name by its hash. Two names of one hash do not come about by chance, and whoever
// could bring them about may as well write into the files.
class PlacesByName {
public:
    explicit PlacesByName(StoredIndex& index) {
        auto const count = index.fileCount();
        slots.resize(std::bit_ceil(std::size_t{count} * 2 + 1), {.hash = 0, .stamp = 0, .place = none});
        for (std::uint32_t place = 0; place < count; ++place) {
            auto const record = index.fileAt(place);
            auto slot = record.name & mask();
            while (slots[slot].place != none)
                slot = (slot + 1) & mask();
            slots[slot] = {.hash = record.name, .stamp = record.stamp, .place = place};
        }
    }

    struct Slot {
        std::uint64_t hash;
        std::uint64_t stamp;
        std::uint32_t place; // `none` where there is no such file.
    };
    [[nodiscard]] Slot const& find(std::uint64_t hash) const {
        auto slot = hash & mask();
        while (slots[slot].place != none && slots[slot].hash != hash)
            slot = (slot + 1) & mask();
        return slots[slot];
    }

private:
    [[nodiscard]] std::size_t mask() const { return slots.size() - 1; }

    std::vector<Slot> slots;
};

// Whether so much has changed that the index is better written anew than made up for at every start.
bool isWorthWriting(std::size_t changes, std::size_t bytes, std::size_t files, std::int64_t age) {
    constexpr std::size_t fewChanges = 16;
    constexpr std::size_t manyBytes = 512 * 1024;
    if (changes == 0) return false;
    return changes > fewChanges + files / 64 || bytes > manyBytes || age > hour || age < 0;
}

} // namespace

bool FileChoice::covers(std::string_view file, bool isCalendarOfItsOwn) const {
    switch (kind) {
    case Kind::all: return true;
    case Kind::together: return !isCalendarOfItsOwn;
    case Kind::one: return file == name;
    }
    return false;
}

FolderIndex::FolderIndex(std::filesystem::path folder, std::optional<std::filesystem::path> indexFile)
    : folder(std::move(folder)),
      folderHash(hashOf(this->folder.native())),
      indexFile(std::move(indexFile)) {
    if (!this->indexFile) return;
    auto file = IndexFile::open(*this->indexFile, folderHash);
    if (!file) return;
    stored.emplace(*std::move(file));
    isStale.assign(stored->fileCount(), false);
    auto const& header = stored->header();
    if (header.untrusted == 0) known = storedState();
}

void FolderIndex::discard() {
    stored.reset();
    isStale.clear();
    fresh.clear();
    freshUIDs.clear();
    known.reset();
    isFileTrusted = false;
}

/// What sets a folder as it was found apart from what is known of it.
struct FolderIndex::Differences {
    std::vector<std::uint32_t> places; // Of each scanned file, where its facts are stored; else `none`.
    std::vector<ScannedFiles::File const*> files; // Those whose facts are not.
    std::size_t gone = 0; // Stored files, known by a stamp, that are not there as they were.
};

FolderIndex::Differences FolderIndex::differences(ScannedFiles const& scan) {
    Differences found;
    found.places.assign(scan.files().size(), none);
    isStale.assign(stored ? stored->fileCount() : 0, true);
    if (stored) {
        PlacesByName const places(*stored);
        for (std::size_t index = 0; index < scan.files().size(); ++index) {
            auto const& file = scan.files()[index];
            auto const& slot = places.find(file.nameHash);
            if (slot.place == none || slot.stamp != file.stamp) continue;
            found.places[index] = slot.place;
            isStale[slot.place] = false;
        }
        stored->forget();
    }
    for (std::size_t index = 0; index < scan.files().size(); ++index) {
        if (found.places[index] == none) found.files.push_back(&scan.files()[index]);
    }
    // Those that were too young when they were read never are.
    auto const untrusted = stored ? stored->header().untrusted : 0;
    found.gone = static_cast<std::size_t>(std::ranges::count(isStale, true)) - untrusted;
    return found;
}

bool FolderIndex::update(ScannedFiles const& scan, std::int64_t now, IndexWriting writing) {
    ++round;
    for (auto const& failure : scan.failures())
        reportUnreadable(failure.name, failure.reason);
    State const state{.count = scan.files().size(), .stampSum = scan.stampSum()};
    if (stored && indexFile && now - stored->header().writtenAt > month) IndexFolder::touch(*indexFile);
    bool const isAnother = (seen ? seen : known) != state;
    seen = state;
    if (known == state) return isAnother;
    known.reset();
    try {
        updateFrom(scan, now, writing);
    } catch (IndexDamaged const&) {
        discard();
        updateFrom(scan, now, writing);
    }
    return isAnother;
}

FolderIndex::State FolderIndex::storedState() const {
    return {.count = stored->header().fileCount, .stampSum = stored->header().stampSum};
}

void FolderIndex::noteLook(FileStamp const& stamp, std::int64_t now) const {
    if (!indexFile || !stored || stored->fileCount() <= fewFiles) return;
    // Also where a file could not be read: then the index is not of all that was seen.
    bool const isToBeTrusted = isFileTrusted && known == storedState() && seen == known &&
                               !stamp.isYoung(now) && !isSharedWithOthers(folder);
    if (!isToBeTrusted) return forgetLook();
    SeenFolderFile const file(*indexFile, folderHash);
    auto const before = file.load();
    SeenFolder const sight{
        .stamp = stampOfFile(stamp), .stampSum = known->stampSum, .fileCount = known->count, .lookedAt = now};
    bool const isNoted = before && before->stamp == sight.stamp && before->stampSum == sight.stampSum &&
                         before->fileCount == sight.fileCount && before->lookedAt <= now &&
                         now - before->lookedAt < minute;
    if (!isNoted) file.save(sight);
}

void FolderIndex::forgetLook() const {
    if (indexFile) SeenFolderFile(*indexFile, folderHash).remove();
}

bool FolderIndex::isAsSeen(std::int64_t now) const {
    constexpr auto longestTrust = 15 * minute;
    if (!indexFile || !known || known->count <= fewFiles) return false;
    auto const sight = SeenFolderFile(*indexFile, folderHash).load();
    if (!sight || sight->fileCount != known->count || sight->stampSum != known->stampSum) return false;
    if (sight->lookedAt > now || now - sight->lookedAt > longestTrust) return false;
    if (::access(indexFile->parent_path().c_str(), W_OK) != 0) return false;
    auto const stamp = stampOfFolder(folder);
    return stamp && stampOfFile(*stamp) == sight->stamp;
}

bool FolderIndex::isWrittenBehind() const {
    return indexFile && stored && stored->fileCount() > fewFiles && hasUnwritten;
}

void FolderIndex::updateFrom(ScannedFiles const& scan, std::int64_t now, IndexWriting writing) {
    auto const changes = differences(scan);
    constexpr std::size_t fewChanges = 64;
    if (!stored || changes.files.size() > fewChanges + stored->fileCount() / 8)
        return rewrite(scan, changes, now);

    std::map<std::string, Fresh, std::less<>> former;
    former.swap(fresh);
    std::size_t bytes = 0;
    bool isWhole = true;
    for (auto const* const file : changes.files) {
        std::string const name(scan.nameOf(*file));
        auto entry = former.extract(name);
        if (entry.empty() || entry.mapped().stamp != file->stamp) {
            auto read = this->read(name, now);
            isWhole = isWhole && read && read->facts.stamp == file->stamp;
            if (!read) continue;
            fresh.insert_or_assign(name, std::move(read->facts));
        } else {
            fresh.insert(std::move(entry));
        }
        bytes += fresh.find(name)->second.bytes;
    }
    rememberUIDs();
    auto const age = now - stored->header().writtenAt;
    auto const changed = changes.files.size() + changes.gone;
    // What is too young, or dated ahead, is read anew at the next start all the same.
    auto const untrusted = static_cast<std::size_t>(
        std::ranges::count_if(fresh, [](auto const& file) { return file.second.stamp == 0; }));
    hasUnwritten = changes.gone > 0 || fresh.size() > untrusted || stored->header().untrusted > untrusted;
    bool const isToBeWritten = writing == IndexWriting::always
                                   ? hasUnwritten
                                   : isWorthWriting(changed, bytes, stored->fileCount(), age);
    if (isToBeWritten) return rewrite(scan, changes, now);
    if (isWhole) known = {.count = scan.files().size(), .stampSum = scan.stampSum()};
}

void FolderIndex::rewrite(ScannedFiles const& scan, Differences const& changes, std::int64_t now) {
    IndexBuilder builder;
    for (auto const index : scan.order()) {
        auto const& file = scan.files()[index];
        std::string const name(scan.nameOf(file));
        if (changes.places[index] != none) {
            builder.adoptFile(*stored, changes.places[index]);
            continue;
        }
        auto const entry = fresh.find(name);
        bool const isRead =
            entry != fresh.end() && (entry->second.stamp == file.stamp || entry->second.round == round);
        if (isRead) {
            builder.addFile(name, entry->second.stamp, entry->second.facts);
        } else if (auto const read = this->read(name, now)) {
            builder.addFile(name, read->facts.stamp, read->facts.facts);
        }
    }
    if (stored) builder.adoptSeries(*stored);
    keep(builder.build(folderHash, now), now);
    fresh.clear();
    freshUIDs.clear();
    auto const& header = stored->header();
    // Where reading found other stamps than the look before it, the next look will find out.
    if (header.untrusted == 0) known = storedState();
}

void FolderIndex::keep(std::vector<std::byte> image, std::int64_t now) {
    hasUnwritten = false;
    hasFailedToWrite = false;
    std::optional<IndexFile> file;
    if (indexFile) {
        auto const failure = IndexFolder::write(*indexFile, image, now);
        if (failure) {
            hasFailedToWrite = true;
            metProblems.push_back({.path = *indexFile,
                                   .line = 0,
                                   .effect = StoreProblem::Effect::ignored,
                                   .reason = "the index of " + folder.string() +
                                             " could not be written, so its files are read at each start: " +
                                             failure.message()});
        } else if (isFileTrusted) {
            file = IndexFile::open(*indexFile, folderHash);
        }
    }
    if (!file) file = IndexFile::inMemory(std::move(image));
    stored.emplace(*std::move(file));
    isStale.assign(stored->fileCount(), false);
}

std::optional<FolderIndex::ReadFile> FolderIndex::read(std::string const& name, std::int64_t now) {
    ++readCount;
    auto const path = folder / name;
    auto content = readRegularFile(path);
    if (!content) {
        reportUnreadable(name, content.error());
        return std::nullopt;
    }
    auto const bytes = content->content.size();
    auto const stamp = stampOfFile(content->stamp);
    auto const file = ICalendar::read(std::move(content->content), path.string());
    for (auto const& problem : file->problems) {
        metProblems.push_back({.path = path,
                               .line = problem.line,
                               .effect = problem.effect == ICalendar::Problem::Effect::skipped
                                             ? StoreProblem::Effect::skipped
                                             : StoreProblem::Effect::adjusted,
                               .reason = problem.reason});
    }
    if (readCall) readCall(file);
    remember(name, stamp, file);
    return ReadFile{.facts = {.stamp = content->stamp.isYoung(now) ? 0 : stamp,
                              .facts = factsOf(*file),
                              .bytes = bytes,
                              .round = round},
                    .file = file};
}

void FolderIndex::remember(std::string const& name, std::uint64_t stamp,
                           std::shared_ptr<ICalendar::CalendarFile const> file) {
    forgetParsed(name);
    auto const bytes = file->bytes->size();
    if (parsedBytes + bytes > mostParsedBytes) return;
    parsedBytes += bytes;
    parsed.insert_or_assign(name, Parsed{.stamp = stamp, .round = round, .file = std::move(file)});
}

void FolderIndex::forgetParsed(std::string const& name) {
    auto const entry = parsed.find(name);
    if (entry == parsed.end()) return;
    parsedBytes -= entry->second.file->bytes->size();
    parsed.erase(entry);
}

void FolderIndex::markStale(std::string_view name) {
    std::uint32_t low = 0;
    for (std::uint32_t high = stored ? stored->fileCount() : 0; low < high;) {
        auto const middle = low + (high - low) / 2;
        auto const order = stored->nameOf(stored->fileAt(middle)) <=> name;
        if (order == 0) {
            isStale[middle] = true;
            return;
        }
        if (order < 0) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
}

void FolderIndex::rememberUIDs() {
    freshUIDs.clear();
    for (auto const& [name, file] : fresh) {
        for (auto const& series : file.facts.series)
            freshUIDs.emplace(series.uid, name);
    }
}

void FolderIndex::reportUnreadable(std::string const& name, std::string const& reason) {
    // A file that somebody has removed since the folder was looked at is nothing to tell of.
    std::error_code failure;
    auto const status = std::filesystem::symlink_status(folder / name, failure);
    if (status.type() == std::filesystem::file_type::not_found) return;
    metProblems.push_back({.path = folder / name,
                           .line = 0,
                           .effect = StoreProblem::Effect::skipped,
                           .reason = "it could not be read: " + reason});
}

FolderIndex::Calendars FolderIndex::calendars() {
    Calendars found;
    auto const take = [&](std::string name, bool isOwn, auto const& text) {
        if (isOwn) {
            found.own.push_back({.file = std::move(name), .name = text.name, .color = text.color});
        } else {
            found.hasOthers = true;
        }
    };
    for (std::uint32_t place = 0; stored && place < stored->fileCount(); ++place) {
        if (isStale[place]) continue;
        auto const record = stored->fileAt(place);
        bool const isOwn = record.isCalendarOfItsOwn != 0;
        if (!isOwn && found.hasOthers) continue;
        take(std::string(stored->nameOf(record)), isOwn, stored->textOf(record));
    }
    for (auto const& [name, file] : fresh)
        take(name, file.facts.isCalendarOfItsOwn, file.facts);
    std::ranges::sort(found.own, {}, &OwnCalendar::file);
    return found;
}

} // namespace Platform
