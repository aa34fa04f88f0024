#include "Platform/EventStore/Index/IndexFolder.h"

#include "Platform/EventStore/Index/IndexFile.h"
#include "Platform/EventStore/Index/Mixing.h"
#include "Platform/EventStore/Index/SeenFolder.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Platform::IndexFolder {
namespace {

constexpr std::int64_t second = 1'000'000'000;
constexpr std::int64_t day = 86400 * second;

constexpr auto indexSuffix = ".index";
constexpr auto asideSuffix = ".tmp";

// Each with mode 0700, as the user's caches are. Not more of them than the cache is deep: a home that was
// removed meanwhile stays removed.
void makeFolders(std::filesystem::path const& folder, int most = 3) {
    if (::mkdir(folder.c_str(), 0700) == 0 || errno != ENOENT || most == 1) return;
    makeFolders(folder.parent_path(), most - 1);
    ::mkdir(folder.c_str(), 0700);
}

} // namespace

std::filesystem::path fileFor(std::filesystem::path const& directory, std::filesystem::path const& folder) {
    return directory / fmt::format("{:016x}{}", hashOf(folder.native()), indexSuffix);
}

std::error_code write(std::filesystem::path const& file, std::span<std::byte const> image, std::int64_t now) {
    auto const directory = file.parent_path();
    auto failure = writeIndex(file, image);
    if (failure == std::errc::no_such_file_or_directory) {
        makeFolders(directory);
        failure = writeIndex(file, image);
    }
    if (!failure) sweep(directory, now, file);
    return failure;
}

void touch(std::filesystem::path const& file) {
    ::utimensat(AT_FDCWD, file.c_str(), nullptr, AT_SYMLINK_NOFOLLOW);
}

void sweep(std::filesystem::path const& directory, std::int64_t now, std::filesystem::path const& spared) {
    std::error_code failure;
    for (std::filesystem::directory_iterator entries(directory, failure), end; !failure && entries != end;
         entries.increment(failure)) {
        auto const& path = entries->path();
        struct stat status{};
        if (::lstat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) continue;
        if (path == spared) continue;
        auto const age = now / second - status.st_mtim.tv_sec;
        bool const isOfAFolder =
            path.extension() == indexSuffix || path.extension() == SeenFolderFile::suffix;
        bool const isForgotten = isOfAFolder && age > 60 * day / second;
        bool const isLeftBehind = path.extension() == asideSuffix && age > day / second;
        if (isForgotten || isLeftBehind) ::unlink(path.c_str());
    }
}

} // namespace Platform::IndexFolder
