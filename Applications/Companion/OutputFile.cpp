#include "Applications/Companion/OutputFile.h"

#include "Applications/Companion/CommandError.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "Platform/Files/FileDescriptor.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Companion {

namespace fs = std::filesystem;

namespace {

bool writeAll(Platform::FileDescriptor const& file, std::string_view bytes) {
    while (!bytes.empty()) {
        auto const written = ::write(file.get(), bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

// Closing tells of a full disk as well as writing does.
bool closes(Platform::FileDescriptor& file) {
    auto const error = file.close();
    errno = error.value();
    return !error;
}

[[noreturn]] void fail(fs::path const& path) {
    throw CommandError::failed(
        Texts::cannotWrite(shownPath(path), std::error_code(errno, std::generic_category()).message()));
}

void replaceFile(fs::path const& path, std::string_view content, std::optional<mode_t> mode) {
    auto const aside =
        path.parent_path() / ("." + path.filename().string() + "." + std::to_string(::getpid()) + ".tmp");
    constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW;
    Platform::FileDescriptor file(::open(aside.c_str(), flags, 0666));
    if (!file.isOpen()) fail(path);
    bool const isWritten =
        (!mode || ::fchmod(file.get(), *mode) == 0) && writeAll(file, content) && closes(file);
    if (isWritten && ::rename(aside.c_str(), path.c_str()) == 0) return;
    int const error = errno;
    ::unlink(aside.c_str());
    errno = error;
    fail(path);
}

// Where the links lead, also those to a file that is not there yet.
fs::path linksFollowed(fs::path path) {
    constexpr int mostLinks = 40; // As the system itself follows.
    std::error_code error;
    for (int count = 0; count < mostLinks && fs::is_symlink(fs::symlink_status(path, error)); ++count)
        path = path.parent_path() / fs::read_symlink(path, error);
    auto folder = fs::weakly_canonical(path.parent_path(), error);
    return (error ? path.parent_path() : folder) / path.filename();
}

} // namespace

std::optional<std::string> whyNotAnOutputFile(fs::path const& path) {
    std::error_code error;
    if (fs::is_directory(path, error)) return Texts::outputIsAFolder(shownPath(path));
    if (!fs::is_directory(path.parent_path(), error))
        return Texts::noSuchFolder(shownPath(path.parent_path()));
    return std::nullopt;
}

bool isSameOutput(fs::path const& one, fs::path const& other) {
    std::error_code error;
    if (!fs::exists(one, error) || !fs::exists(other, error))
        return linksFollowed(one) == linksFollowed(other);
    return !fs::is_character_file(one, error) && fs::equivalent(one, other, error);
}

bool isStandardOutput(fs::path const& path) {
    struct stat named{};
    struct stat standard{};
    if (::stat(path.c_str(), &named) != 0 || ::fstat(STDOUT_FILENO, &standard) != 0) return false;
    if (named.st_dev != standard.st_dev || named.st_ino != standard.st_ino) return false;
    return !S_ISCHR(standard.st_mode) || ::isatty(STDOUT_FILENO) == 1;
}

void writeOutputFile(fs::path const& path, std::string_view content) {
    struct stat status{};
    bool const exists = ::stat(path.c_str(), &status) == 0;
    if (!exists || S_ISREG(status.st_mode)) {
        std::error_code error;
        // A link stays a link: what it names is replaced.
        auto const target = exists ? fs::canonical(path, error) : path;
        replaceFile(error ? path : target, content,
                    exists ? std::optional(status.st_mode & 07777U) : std::nullopt);
        return;
    }
    Platform::FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CLOEXEC));
    if (!file.isOpen() || !writeAll(file, content) || !closes(file)) fail(path);
}

} // namespace Companion
