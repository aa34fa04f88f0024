#include "Platform/ObjectDatabase/DatabaseFile.h"

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Platform {
namespace {

using std::filesystem::path;

constexpr std::int64_t greatestSize = 256 * 1024 * 1024;

std::error_code lastError() {
    return {errno, std::generic_category()};
}

std::unexpected<std::error_code> failure(std::errc code) {
    return std::unexpected(std::make_error_code(code));
}

DatabaseFileStamp stampFrom(struct stat const& status) {
    return {
        .device = static_cast<std::uint64_t>(status.st_dev),
        .inode = static_cast<std::uint64_t>(status.st_ino),
        .size = static_cast<std::int64_t>(status.st_size),
        .changed = static_cast<std::int64_t>(status.st_ctim.tv_sec) * 1'000'000'000 + status.st_ctim.tv_nsec,
    };
}

path beside(path const& file, char const* ending) {
    auto name = file;
    name += ending;
    return name;
}

std::error_code writeAll(int descriptor, std::span<std::byte const> content) {
    while (!content.empty()) {
        auto const count = ::write(descriptor, content.data(), content.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return lastError();
        content = content.subspan(static_cast<std::size_t>(count));
    }
    return {};
}

std::error_code fill(FileDescriptor& file, std::span<std::byte const> content, mode_t mode) {
    // Also for a new file: the process's mask may have taken away more than we ask for.
    if (::fchmod(file.get(), mode) != 0) return lastError();
    if (auto const failed = writeAll(file.get(), content)) return failed;
    if (::fsync(file.get()) != 0) return lastError();
    return file.close();
}

std::expected<std::vector<std::byte>, std::error_code> contentOf(int descriptor, std::int64_t size) {
    // One byte more than the file has, so that a file at rest is read to its end in one go.
    std::vector<std::byte> content(static_cast<std::size_t>(size) + 1);
    std::size_t length = 0;
    while (true) {
        if (length == content.size()) content.resize(content.size() * 2);
        auto const count = ::read(descriptor, content.data() + length, content.size() - length);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return std::unexpected(lastError());
        if (count == 0) break;
        length += static_cast<std::size_t>(count);
        if (static_cast<std::int64_t>(length) > greatestSize) return failure(std::errc::not_supported);
    }
    content.resize(length);
    return content;
}

std::error_code makeFolderAt(path const& folder) {
    if (folder.empty() || ::mkdir(folder.c_str(), 0700) == 0) return {};
    auto const failed = lastError();
    std::error_code unreadable;
    if (std::filesystem::is_directory(folder, unreadable)) return {};
    if (failed != std::errc::no_such_file_or_directory || folder.parent_path() == folder) return failed;
    if (auto const above = makeFolderAt(folder.parent_path())) return above;
    return ::mkdir(folder.c_str(), 0700) == 0 || errno == EEXIST ? std::error_code() : lastError();
}

} // namespace

std::expected<DatabaseLock, std::error_code> DatabaseLock::take(path const& lockFile) {
    auto const flags = O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    FileDescriptor file(::open(lockFile.c_str(), flags, 0600));
    if (!file.isOpen()) return std::unexpected(lastError());
    if (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) return std::unexpected(lastError());
    DatabaseLock lock(std::move(file));
    // Between the opening and the locking, somebody may have moved the file away with the old database.
    if (!lock.isStillAt(lockFile)) return failure(std::errc::resource_unavailable_try_again);
    return lock;
}

bool DatabaseLock::isStillAt(path const& lockFile) const {
    struct stat mine{};
    struct stat present{};
    return ::fstat(file.get(), &mine) == 0 && ::lstat(lockFile.c_str(), &present) == 0 &&
           mine.st_dev == present.st_dev && mine.st_ino == present.st_ino;
}

path DatabaseFile::lockPath() const {
    return beside(main, ".lock");
}

path DatabaseFile::asidePath() const {
    return beside(main, ".new");
}

std::expected<std::optional<DatabaseFileContent>, std::error_code> DatabaseFile::read() const {
    FileDescriptor const file(
        ::open(main.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!file.isOpen()) {
        if (errno == ENOENT) return std::nullopt;
        return errno == ELOOP ? failure(std::errc::not_supported) : std::unexpected(lastError());
    }
    struct stat status{};
    if (::fstat(file.get(), &status) != 0) return std::unexpected(lastError());
    if (!S_ISREG(status.st_mode) || status.st_size > greatestSize) return failure(std::errc::not_supported);
    auto content = contentOf(file.get(), status.st_size);
    if (!content) return std::unexpected(content.error());
    return DatabaseFileContent{.stamp = stampFrom(status), .bytes = std::move(*content)};
}

std::optional<DatabaseFileStamp> DatabaseFile::stamp() const {
    struct stat status{};
    if (::lstat(main.c_str(), &status) != 0) return std::nullopt;
    return stampFrom(status);
}

std::error_code DatabaseFile::makeFolder() const {
    return makeFolderAt(main.parent_path());
}

std::error_code DatabaseFile::replace(std::span<std::byte const> content) const {
    struct stat present{};
    auto const isThere = ::lstat(main.c_str(), &present) == 0 && S_ISREG(present.st_mode);
    auto const mode = isThere ? present.st_mode & 07777 : 0600;

    // Left by a process that was killed. Nobody else writes one now, since we have the lock.
    ::unlink(asidePath().c_str());
    FileDescriptor aside(
        ::open(asidePath().c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!aside.isOpen()) return lastError();
    auto failed = fill(aside, content, mode);
    if (!failed && ::rename(asidePath().c_str(), main.c_str()) != 0) failed = lastError();
    if (!failed) return syncFolder();
    ::unlink(asidePath().c_str());
    return failed;
}

std::error_code DatabaseFile::syncFolder() const {
    FileDescriptor const folder(::open(main.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder.isOpen()) return lastError();
    // EINVAL: a file system that keeps no folder of its own has nothing to sync.
    if (::fsync(folder.get()) != 0 && errno != EINVAL) return lastError();
    return {};
}

} // namespace Platform
