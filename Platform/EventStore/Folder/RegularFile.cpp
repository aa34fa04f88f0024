#include "Platform/EventStore/Folder/RegularFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace Platform {

namespace {

class Descriptor {
public:
    explicit Descriptor(int number) : number(number) {}
    Descriptor(Descriptor const&) = delete;
    Descriptor& operator=(Descriptor const&) = delete;
    ~Descriptor() {
        if (number >= 0) ::close(number);
    }

    int const number;
};

std::unexpected<std::string> lastError() {
    return std::unexpected(std::generic_category().message(errno));
}

// Years beyond 2262 do not fit; such a time stands at the end of those that do.
std::int64_t nanosecondsOf(struct timespec const& time) {
    constexpr std::int64_t nanoseconds = 1'000'000'000;
    constexpr std::int64_t most = INT64_MAX / nanoseconds - 1;
    auto const seconds = static_cast<std::int64_t>(time.tv_sec);
    if (seconds > most) return INT64_MAX;
    if (seconds < -most) return INT64_MIN;
    return seconds * nanoseconds + time.tv_nsec;
}

FileStamp anyStampFrom(struct stat const& status) {
    return {
        .device = static_cast<std::uint64_t>(status.st_dev),
        .inode = static_cast<std::uint64_t>(status.st_ino),
        .size = static_cast<std::int64_t>(status.st_size),
        .modified = nanosecondsOf(status.st_mtim),
        .changed = nanosecondsOf(status.st_ctim),
    };
}

std::expected<FileStamp, std::string> stampFrom(struct stat const& status) {
    if (!S_ISREG(status.st_mode)) return std::unexpected("it is not a regular file");
    return anyStampFrom(status);
}

int openToRead(std::filesystem::path const& path) {
    return ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
}

std::expected<FileStamp, std::string> stampOfOpen(Descriptor const& file) {
    if (file.number < 0) return lastError();
    struct stat status{};
    if (::fstat(file.number, &status) != 0) return lastError();
    return stampFrom(status);
}

} // namespace

bool FileStamp::isYoung(std::int64_t now) const {
    constexpr std::int64_t twoSeconds = 2'000'000'000;
    return std::max(modified, changed) > now - twoSeconds;
}

std::expected<FileStamp, std::string> stampOfRegularFile(std::filesystem::path const& path) {
    struct stat status{};
    if (::stat(path.c_str(), &status) != 0) return lastError();
    return stampFrom(status);
}

std::expected<FileStamp, std::string> stampOfRegularFile(int folder, char const* name) {
    struct stat status{};
    if (::fstatat(folder, name, &status, 0) != 0) return lastError();
    return stampFrom(status);
}

std::optional<FileStamp> stampOfFolder(std::filesystem::path const& path) {
    struct stat status{};
    if (::stat(path.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) return std::nullopt;
    return anyStampFrom(status);
}

std::optional<FileStamp> stampOfFolder(int folder) {
    struct stat status{};
    if (::fstat(folder, &status) != 0 || !S_ISDIR(status.st_mode)) return std::nullopt;
    return anyStampFrom(status);
}

std::expected<StampedContent, std::string> readRegularFile(std::filesystem::path const& path,
                                                           std::int64_t limit) {
    Descriptor const file(openToRead(path));
    auto const stamp = stampOfOpen(file);
    if (!stamp) return std::unexpected(stamp.error());
    auto const tooLarge = [&] {
        return std::unexpected(fmt::format("it is larger than {} MiB", limit / (1024 * 1024)));
    };
    if (stamp->size > limit) return tooLarge();

    // One byte more than the file has, so that a file at rest is read to its end in one go.
    std::string content(static_cast<std::size_t>(stamp->size) + 1, '\0');
    std::size_t length = 0;
    for (;;) {
        if (length == content.size()) content.resize(content.size() * 2);
        auto const count = ::read(file.number, content.data() + length, content.size() - length);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return lastError();
        if (count == 0) break;
        length += static_cast<std::size_t>(count);
        if (static_cast<std::int64_t>(length) > limit) return tooLarge();
        // All that the stamp tells of, and less than was asked for: no call is needed to learn that it ends.
        if (static_cast<std::int64_t>(length) == stamp->size && length < content.size()) break;
    }
    content.resize(length);
    return StampedContent{.stamp = *stamp, .content = std::move(content)};
}

std::expected<StampedContent, std::string> readParts(std::filesystem::path const& path,
                                                     std::vector<ICalendar::ExcerptPart> const& parts) {
    Descriptor const file(openToRead(path));
    auto const stamp = stampOfOpen(file);
    if (!stamp) return std::unexpected(stamp.error());
    StampedContent read{.stamp = *stamp, .content = {}};
    for (auto const& part : parts) {
        auto const begin = read.content.size();
        read.content.resize(begin + part.length);
        for (std::size_t length = 0; length < part.length;) {
            auto const count = ::pread(file.number, read.content.data() + begin + length,
                                       part.length - length, static_cast<off_t>(part.offset + length));
            if (count < 0 && errno == EINTR) continue;
            if (count < 0) return lastError();
            if (count == 0) return std::unexpected("it has become shorter");
            length += static_cast<std::size_t>(count);
        }
    }
    return read;
}

} // namespace Platform
