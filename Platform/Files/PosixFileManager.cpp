#include "Platform/Files/PosixFileManager.h"

#include "Platform/Files/FileDescriptor.h"

#include "Foundation/UUID.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Platform {
namespace {

using std::filesystem::path;

constexpr mode_t privateFolder = 0700;
constexpr mode_t privateFile = 0600;

std::error_code lastError() {
    return {errno, std::generic_category()};
}

// An invalid argument to who compares it. To a person those words would say nothing.
class FileKindCategory final : public std::error_category {
public:
    [[nodiscard]] char const* name() const noexcept override { return "file kind"; }
    [[nodiscard]] std::string message(int) const override { return "Not a regular file"; }
    [[nodiscard]] std::error_condition default_error_condition(int) const noexcept override {
        return std::make_error_condition(std::errc::invalid_argument);
    }
};

std::error_code notARegularFile() {
    static FileKindCategory const category;
    return {1, category};
}

std::error_code failure(std::errc code) {
    return std::make_error_code(code);
}

std::optional<path> absolutePath(std::optional<std::string> const& text) {
    if (!text || !text->starts_with('/')) return std::nullopt;
    return path(*text);
}

std::error_code writeAll(int descriptor, std::string_view content) {
    while (!content.empty()) {
        auto const written = ::write(descriptor, content.data(), content.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return lastError();
        content.remove_prefix(static_cast<std::size_t>(written));
    }
    return {};
}

// The mode that the new file takes over; absent when nothing, or no regular file, is there.
std::optional<mode_t> modeOfRegularFile(path const& file) {
    struct stat status{};
    if (::lstat(file.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    return status.st_mode & 07777;
}

std::error_code syncFolder(path const& folder) {
    FileDescriptor const descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!descriptor.isOpen()) return lastError();
    // EINVAL: a file system that keeps no folder of its own has nothing to sync.
    if (::fsync(descriptor.get()) != 0 && errno != EINVAL) return lastError();
    return {};
}

constexpr std::string_view asideEnd = ".tmp";

// Whether it is called as a file that `AsideFile` makes.
bool isAsideName(std::string_view name) {
    if (!name.starts_with('.') || !name.ends_with(asideEnd)) return false;
    return Foundation::UUID::fromText(name.substr(1, name.size() - 1 - asideEnd.size())).has_value();
}

// Takes away what a process left that was killed while it wrote. One of these days it would be a heap: nobody
// else knows what they are. A young one may be in the making.
void sweep(path const& folder) {
    constexpr std::chrono::minutes longEnough{10};
    std::error_code failure;
    for (std::filesystem::directory_iterator entry(folder, failure), end; !failure && entry != end;
         entry.increment(failure)) {
        if (!isAsideName(entry->path().filename().string())) continue;
        struct stat status{};
        if (::lstat(entry->path().c_str(), &status) != 0 || !S_ISREG(status.st_mode)) continue;
        auto const changed = std::chrono::system_clock::from_time_t(status.st_mtime);
        bool const isOld = std::chrono::system_clock::now() - changed > longEnough;
        if (isOld && status.st_uid == ::geteuid()) ::unlink(entry->path().c_str());
    }
}

// A file beside its target, gone with this object unless it has been moved into place.
class AsideFile {
public:
    explicit AsideFile(path const& folder)
        : file(folder / ("." + Foundation::UUID::random().uuidString() + std::string(asideEnd))),
          descriptor(
              ::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, privateFile)) {
        if (!descriptor.isOpen()) openFailure = lastError();
        exists = descriptor.isOpen();
    }
    ~AsideFile() {
        if (exists) ::unlink(file.c_str());
    }
    AsideFile(AsideFile const&) = delete;
    AsideFile& operator=(AsideFile const&) = delete;

    std::error_code fill(std::string_view content, mode_t mode) {
        if (!descriptor.isOpen()) return openFailure;
        // Also for a new file: the process's mask may have taken away more than we ask for.
        if (::fchmod(descriptor.get(), mode) != 0) return lastError();
        if (auto const failed = writeAll(descriptor.get(), content)) return failed;
        if (::fsync(descriptor.get()) != 0) return lastError();
        return descriptor.close();
    }

    std::error_code moveTo(path const& target) {
        if (::rename(file.c_str(), target.c_str()) != 0) return lastError();
        exists = false;
        return {};
    }

private:
    path file;
    FileDescriptor descriptor;
    std::error_code openFailure;
    bool exists = false;
};

// Whether `createDirectory` would succeed, as far as that shows without trying.
bool couldBeMade(path const& folder) {
    auto existing = folder;
    std::error_code failure;
    while (existing.has_relative_path() &&
           std::filesystem::symlink_status(existing, failure).type() == std::filesystem::file_type::not_found)
        existing = existing.parent_path();
    if (!std::filesystem::is_directory(existing, failure)) return false;
    return existing == folder || ::access(existing.c_str(), W_OK | X_OK) == 0;
}

} // namespace

PosixFileManager::PosixFileManager(Foundation::Environment environment, Durability durability,
                                   MissingContainer missingContainer)
    : environment(std::move(environment)),
      durability(durability),
      missingContainer(missingContainer) {}

std::optional<path>
PosixFileManager::containerURLForSecurityApplicationGroupIdentifier(std::string_view group) const {
    auto const chosen = environment.value("QUILLORA_GROUP_CONTAINER");
    if (chosen) return absolutePath(chosen);
    auto const dataHome = applicationSupportDirectory();
    if (!dataHome) return std::nullopt;
    auto container = *dataHome / group;
    if (missingContainer == MissingContainer::isLeft) {
        if (!couldBeMade(container)) return std::nullopt;
    } else if (createDirectory(container)) {
        return std::nullopt;
    }
    return container;
}

path PosixFileManager::temporaryDirectory() const {
    return absolutePath(environment.value("TMPDIR")).value_or("/tmp");
}

std::optional<path> PosixFileManager::applicationSupportDirectory() const {
    if (auto dataHome = absolutePath(environment.value("XDG_DATA_HOME"))) return dataHome;
    auto const home = absolutePath(environment.value("HOME"));
    if (!home) return std::nullopt;
    return *home / ".local" / "share";
}

std::error_code PosixFileManager::createDirectory(path const& folder) const {
    std::error_code unreadable;
    if (std::filesystem::is_directory(folder, unreadable)) return {};
    auto const parent = folder.parent_path();
    if (!parent.empty() && parent != folder) {
        if (auto const failed = createDirectory(parent)) return failed;
    }
    if (::mkdir(folder.c_str(), privateFolder) == 0) return {};
    auto const failed = lastError();
    // Someone else may have made it meanwhile.
    if (std::filesystem::is_directory(folder, unreadable)) return {};
    return failed;
}

std::expected<std::string, std::error_code> PosixFileManager::contents(path const& file,
                                                                       std::size_t mostBytes) const {
    // Without O_NONBLOCK the opening of a FIFO would wait for a writer.
    FileDescriptor const descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!descriptor.isOpen()) return std::unexpected(lastError());
    struct stat status{};
    if (::fstat(descriptor.get(), &status) != 0) return std::unexpected(lastError());
    if (S_ISDIR(status.st_mode)) return std::unexpected(failure(std::errc::is_a_directory));
    if (!S_ISREG(status.st_mode)) return std::unexpected(notARegularFile());

    auto const size = static_cast<std::size_t>(status.st_size);
    if (size > mostBytes) return std::unexpected(failure(std::errc::file_too_large));
    std::string content;
    content.reserve(size);
    std::array<char, 65536> buffer;
    while (true) {
        auto const count = ::read(descriptor.get(), buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return std::unexpected(lastError());
        if (count == 0) return content;
        content.append(buffer.data(), static_cast<std::size_t>(count));
        // It may have grown since, and some file systems do not tell a size.
        if (content.size() > mostBytes) return std::unexpected(failure(std::errc::file_too_large));
    }
}

std::error_code PosixFileManager::writeAtomically(path const& file, std::string_view content) const {
    auto const folder = file.has_parent_path() ? file.parent_path() : path(".");
    AsideFile aside(folder);
    if (auto const failed = aside.fill(content, modeOfRegularFile(file).value_or(privateFile))) return failed;
    if (auto const failed = aside.moveTo(file)) return failed;
    sweep(folder);
    return durability == Durability::fileAndFolder ? syncFolder(folder) : std::error_code();
}

std::error_code PosixFileManager::appendToItem(path const& file, std::string_view content) const {
    auto const flags = O_WRONLY | O_CREAT | O_APPEND | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    FileDescriptor descriptor(::open(file.c_str(), flags, privateFile));
    if (!descriptor.isOpen()) return lastError();
    struct stat status{};
    if (::fstat(descriptor.get(), &status) != 0) return lastError();
    if (!S_ISREG(status.st_mode)) return notARegularFile();
    if (auto const failed = writeAll(descriptor.get(), content)) return failed;
    return descriptor.close();
}

std::error_code PosixFileManager::removeItem(path const& file) const {
    if (::unlink(file.c_str()) != 0) return lastError();
    return {};
}

std::error_code PosixFileManager::clearQuarantineProperties(path const&) const {
    return {};
}

} // namespace Platform
