#include "Platform/EventStore/Folder/CalendarFileWriter.h"

#include "Platform/EventStore/Folder/AsideFile.h"
#include "Platform/EventStore/Folder/FileRights.h"
#include "Platform/EventStore/Folder/RegularFile.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace Platform {

namespace {

using std::filesystem::path;
using Outcome = CalendarFileWriter::Outcome;
using Failure = CalendarFileWriter::Failure;
using Result = CalendarFileWriter::Result;

std::error_code lastError() {
    return {errno, std::generic_category()};
}

std::unexpected<Failure> failed(path const& file, std::error_code reason) {
    return std::unexpected(Failure{.path = file, .reason = reason});
}

std::unexpected<Failure> readOnly(path const& file, std::error_code reason) {
    return std::unexpected(Failure{.path = file, .reason = reason, .isReadOnlyFile = true});
}

bool isUnsupported(std::error_code failure) {
    return failure == std::errc::invalid_argument || failure == std::errc::function_not_supported ||
           failure == std::errc::operation_not_supported;
}

std::error_code rename(path const& from, path const& to, unsigned int flags) {
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), flags) != 0) return lastError();
    return {};
}

std::error_code syncFolder(path const& folder) {
    FileDescriptor const descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!descriptor.isOpen()) return lastError();
    // EINVAL: a file system that keeps no folder of its own has nothing to sync.
    if (::fsync(descriptor.get()) != 0 && errno != EINVAL) return lastError();
    return {};
}

// The inode that a name leads to; 0 for none.
ino_t inodeAt(path const& file) {
    struct stat status{};
    return ::lstat(file.c_str(), &status) == 0 ? status.st_ino : 0;
}

/// A file that nobody else has open for writing while this object stands, as far as the file system can tell.
class QuietFile {
public:
    explicit QuietFile(path const& file)
        : descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW)) {
        if (!descriptor.isOpen()) return;
        // A read lease is granted only while there is no writer. Whoever opens the file for writing makes the
        // kernel send a signal; this one is ignored by default.
        ::fcntl(descriptor.get(), F_SETSIG, SIGURG);
        bool const isGranted = ::fcntl(descriptor.get(), F_SETLEASE, F_RDLCK) == 0;
        isBusy = !isGranted && errno == EAGAIN;
    }

    /// False as well for a file that cannot be read, and for one that somebody is writing.
    [[nodiscard]] bool holds(std::string_view expected) const {
        if (!descriptor.isOpen() || isBusy) return false;
        struct stat status{};
        if (::fstat(descriptor.get(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
        if (status.st_size != static_cast<off_t>(expected.size())) return false;
        std::string content(expected.size() + 1, '\0');
        std::size_t length = 0;
        while (length < content.size()) {
            auto const count = ::read(descriptor.get(), content.data() + length, content.size() - length);
            if (count < 0 && errno == EINTR) continue;
            if (count < 0) return false;
            if (count == 0) break;
            length += static_cast<std::size_t>(count);
        }
        return std::string_view(content).substr(0, length) == expected;
    }

private:
    FileDescriptor descriptor;
    bool isBusy = false;
};

// Whether the reason is that the hidden file has gone from a folder that is there: a process that slept for
// long enough is taken for dead by the others, who then clear up after it.
bool wasClearedAway(std::error_code reason, path const& file) {
    std::error_code failure;
    return reason == std::errc::no_such_file_or_directory &&
           std::filesystem::is_directory(file.parent_path(), failure);
}

// Puts back what the aside file holds now. Whatever has come to the file's place in the meantime is newer,
// and goes back in its turn, until the file written here comes out.
std::error_code putBack(AsideFile& aside, path const& file) {
    auto placed = aside.inode();
    constexpr int mostTries = 100;
    for (int tries = 0; tries < mostTries; ++tries) {
        auto const held = inodeAt(aside.path());
        auto failure = rename(aside.path(), file, RENAME_EXCHANGE);
        if (failure == std::errc::no_such_file_or_directory) {
            // Somebody has deleted the file. What is held here they have not seen.
            failure = rename(aside.path(), file, RENAME_NOREPLACE);
            if (!failure) aside.release();
            if (failure == std::errc::file_exists) continue;
            if (wasClearedAway(failure, file)) return {}; // What was held here was put back with it.
        }
        if (failure) {
            // Rather a hidden file too many than somebody's change lost.
            aside.release();
            return failure;
        }
        if (inodeAt(aside.path()) == placed) return {};
        placed = held;
    }
    aside.release();
    return std::make_error_code(std::errc::device_or_resource_busy);
}

Result exchange(AsideFile& aside, path const& file, std::string_view expected) {
    if (auto const failure = rename(aside.path(), file, RENAME_EXCHANGE)) {
        if (failure == std::errc::no_such_file_or_directory) return Outcome::changedMeanwhile;
        return failed(file, failure);
    }
    {
        QuietFile const replaced(aside.path());
        if (replaced.holds(expected)) {
            auto const failure = syncFolder(file.parent_path());
            if (!failure) return Outcome::done;
            static_cast<void>(putBack(aside, file));
            return failed(file, failure);
        }
    }
    if (auto const failure = putBack(aside, file)) return failed(file, failure);
    return Outcome::changedMeanwhile;
}

Result compareAndMove(AsideFile& aside, path const& file, std::string_view expected) {
    // The lease keeps writers out until the file has been replaced.
    QuietFile const present(file);
    if (!present.holds(expected)) return Outcome::changedMeanwhile;
    if (auto const failure = rename(aside.path(), file, 0)) {
        if (wasClearedAway(failure, file)) return Outcome::changedMeanwhile;
        return failed(file, failure);
    }
    aside.release();
    if (auto const failure = syncFolder(file.parent_path())) return failed(file, failure);
    return Outcome::done;
}

// Where the file itself is: the hidden one must lie beside it, and a link must stay a link.
std::expected<path, std::error_code> followed(path const& file) {
    std::error_code failure;
    auto target = std::filesystem::canonical(file, failure);
    if (failure) return std::unexpected(failure);
    return target;
}

} // namespace

Result CalendarFileWriter::replace(path const& file, std::string_view expected,
                                   std::string_view content) const {
    auto const target = followed(file);
    if (!target) {
        if (target.error() == std::errc::no_such_file_or_directory) return Outcome::changedMeanwhile;
        return failed(file, target.error());
    }
    auto const rights = FileRights::of(*target);
    if (!rights) {
        if (rights.error() == std::errc::no_such_file_or_directory) return Outcome::changedMeanwhile;
        return failed(*target, rights.error());
    }
    if (auto const reason = rights->whyNotToBeChanged(*target)) return readOnly(*target, reason);
    AsideFile aside(target->parent_path(), {.oldDigest = AsideName::digestOf(expected),
                                            .newDigest = AsideName::digestOf(content),
                                            .fileName = target->filename().string()});
    if (auto const failure = aside.fill(content, *rights)) return failed(*target, failure);
    if (method == Method::exchange) {
        auto result = exchange(aside, *target, expected);
        if (result || !isUnsupported(result.error().reason)) return result;
    }
    return compareAndMove(aside, *target, expected);
}

Result CalendarFileWriter::create(path const& file, std::string_view content) const {
    auto const folder = file.parent_path();
    AsideFile aside(folder, {.oldDigest = AsideName::digestOfNothing(),
                             .newDigest = AsideName::digestOf(content),
                             .fileName = file.filename().string()});
    if (auto const failure = aside.fill(content, FileRights::ofNewFile())) return failed(file, failure);
    auto failure = method == Method::exchange ? rename(aside.path(), file, RENAME_NOREPLACE)
                                              : std::make_error_code(std::errc::invalid_argument);
    if (!failure) {
        aside.release();
    } else if (isUnsupported(failure)) {
        // A second name is made only where there is none; the first goes with the aside file.
        failure = ::link(aside.path().c_str(), file.c_str()) == 0 ? std::error_code() : lastError();
    }
    if (failure == std::errc::file_exists || wasClearedAway(failure, file)) return Outcome::changedMeanwhile;
    if (failure) return failed(file, failure);
    if (auto const unsynced = syncFolder(folder)) {
        ::unlink(file.c_str());
        return failed(file, unsynced);
    }
    return Outcome::done;
}

Result CalendarFileWriter::remove(path const& link, std::string_view expected) const {
    auto const target = followed(link);
    if (!target) {
        if (target.error() == std::errc::no_such_file_or_directory) return Outcome::changedMeanwhile;
        return failed(link, target.error());
    }
    auto const result = removeRegular(*target, expected);
    bool const leadsNowhere = result == Outcome::done && *target != link;
    if (leadsNowhere && std::filesystem::is_symlink(link)) ::unlink(link.c_str());
    return result;
}

Result CalendarFileWriter::removeRegular(path const& file, std::string_view expected) {
    auto const rights = FileRights::of(file);
    auto const refusal = rights ? rights->whyNotToBeChanged(file) : std::error_code();
    if (refusal) return readOnly(file, refusal);
    auto const folder = file.parent_path();
    AsideFile aside(folder, {.oldDigest = AsideName::digestOf(expected),
                             .newDigest = AsideName::digestOfNothing(),
                             .fileName = file.filename().string()});
    // Taken away first, looked at then: nobody else can change it in between without its being seen.
    if (auto const failure = rename(file, aside.path(), 0)) {
        if (failure == std::errc::no_such_file_or_directory) return Outcome::changedMeanwhile;
        return failed(file, failure);
    }
    aside.exists();
    QuietFile const taken(aside.path());
    bool const isExpected = taken.holds(expected);
    auto const unsynced = isExpected ? syncFolder(folder) : std::error_code();
    if (isExpected && !unsynced) return Outcome::done;
    auto failure = rename(aside.path(), file, RENAME_NOREPLACE);
    if (isUnsupported(failure)) failure = rename(aside.path(), file, 0);
    // A file that came there in the meantime has taken the place of this one.
    if (failure && failure != std::errc::file_exists && !wasClearedAway(failure, file)) {
        aside.release();
        return failed(file, failure);
    }
    if (!failure) aside.release();
    if (unsynced) return failed(file, unsynced);
    return Outcome::changedMeanwhile;
}

void CalendarFileWriter::clearLeftovers(path const& folder, std::int64_t now) const {
    constexpr std::int64_t longEnough = 600LL * 1'000'000'000;
    std::error_code failure;
    std::vector<path> leftovers;
    for (std::filesystem::directory_iterator entry(folder, failure), end; !failure && entry != end;
         entry.increment(failure)) {
        if (AsideName::fromText(entry->path().filename().string())) leftovers.push_back(entry->path());
    }
    for (auto const& leftover : leftovers) {
        auto const name = *AsideName::fromText(leftover.filename().string());
        auto const read = readRegularFile(leftover);
        if (!read || std::max(read->stamp.changed, read->stamp.modified) > now - longEnough) continue;
        auto const digest = AsideName::digestOf(read->content);
        bool const isOwn = digest == name.oldDigest || digest == name.newDigest || name.fileName.empty();
        if (!isOwn) {
            // Begun and not finished, or another's change that came out of the exchange. The latter, if the
            // file is as the killed process made it.
            auto const file = folder / name.fileName;
            auto const present = readRegularFile(file);
            bool const wasMade = name.newDigest == AsideName::digestOfNothing()
                                     ? !present && inodeAt(file) == 0
                                     : present && AsideName::digestOf(present->content) == name.newDigest;
            if (wasMade) {
                unsigned int const flags = present ? RENAME_EXCHANGE : RENAME_NOREPLACE;
                if (rename(leftover, file, flags) || !present) continue;
            }
        }
        ::unlink(leftover.c_str());
    }
}

} // namespace Platform
