#include "Platform/Keychain/FileKeychain.h"

#include "Foundation/UUID.h"
#include "Platform/Files/FileDescriptor.h"
#include "Platform/Keychain/KeyFile.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <expected>
#include <memory>
#include <string_view>
#include <thread>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Platform {
namespace {

using Foundation::SecretBytes;
using Place = std::expected<FileDescriptor, KeychainStatus>;

constexpr std::string_view asideMark = "aside ";

constexpr auto productFolder = "Quillora";
constexpr auto itemFolder = "Keychain";

FileDescriptor opened(int folder, char const* name, int flags, mode_t mode = 0) {
    while (true) {
        auto const number = ::openat(folder, name, flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, mode);
        if (number >= 0 || errno != EINTR) return FileDescriptor(number);
    }
}

// Nothing of that name is there, not even a link that leads nowhere: what it should lead to may come back.
bool isAbsent(int folder, char const* name) {
    struct stat status{};
    return ::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0 && errno == ENOENT;
}

bool isPrivate(struct stat const& status) {
    return status.st_uid == ::geteuid() && (status.st_mode & 077) == 0;
}

bool isSynced(int descriptor) {
    // EINVAL: a file system that keeps no folder of its own has nothing to sync.
    return ::fsync(descriptor) == 0 || errno == EINVAL;
}

Place folderIn(int parent, char const* name) {
    auto folder = opened(parent, name, O_RDONLY | O_DIRECTORY);
    if (folder.isOpen()) return folder;
    auto const wasMissing = errno == ENOENT;
    return std::unexpected(wasMissing && isAbsent(parent, name) ? KeychainStatus::itemNotFound
                                                                : KeychainStatus::ioErr);
}

Place madeFolderIn(int parent, char const* name) {
    if (::mkdirat(parent, name, 0700) == 0) {
        // The process's mask may have taken away more than we ask for.
        if (::fchmodat(parent, name, 0700, 0) != 0 || !isSynced(parent))
            return std::unexpected(KeychainStatus::ioErr);
    } else if (errno != EEXIST) {
        return std::unexpected(KeychainStatus::ioErr);
    }
    return folderIn(parent, name);
}

// The folder of the items, for its owner alone.
Place itemsIn(std::optional<std::filesystem::path> const& dataHome,
              Place (*subfolder)(int parent, char const* name)) {
    if (!dataHome) return std::unexpected(KeychainStatus::ioErr);
    auto const home = opened(AT_FDCWD, dataHome->c_str(), O_RDONLY | O_DIRECTORY);
    if (!home.isOpen()) return std::unexpected(KeychainStatus::ioErr);
    auto const product = subfolder(home.get(), productFolder);
    if (!product) return std::unexpected(product.error());
    auto items = subfolder(product->get(), itemFolder);
    if (!items) return items;
    struct stat status{};
    if (::fstat(items->get(), &status) != 0 || !isPrivate(status))
        return std::unexpected(KeychainStatus::ioErr);
    return items;
}

// All that the file holds. Absent when it is more than an item can have, or cannot be read.
std::optional<SecretBytes> contentOf(int file) {
    std::size_t length = 0;
    bool isWhole = false;
    auto const buffer = SecretBytes::filledBy(KeyFile::greatestFileSize + 1, [&](std::span<std::byte> place) {
        while (length < place.size()) {
            auto const count = ::read(file, place.data() + length, place.size() - length);
            if (count < 0 && errno == EINTR) continue;
            isWhole = count == 0;
            if (count <= 0) return;
            length += static_cast<std::size_t>(count);
        }
    });
    if (!isWhole) return std::nullopt;
    return SecretBytes(buffer.bytes().first(length));
}

GenericPasswordMatch failed(KeychainStatus status) {
    return {.status = status, .data = std::nullopt};
}

GenericPasswordMatch itemIn(int folder, std::string const& name) {
    auto const file = opened(folder, name.c_str(), O_RDONLY | O_NOFOLLOW);
    if (!file.isOpen()) return failed(errno == ENOENT ? KeychainStatus::itemNotFound : KeychainStatus::ioErr);
    struct stat status{};
    if (::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode) || !isPrivate(status)) {
        return failed(KeychainStatus::ioErr);
    }
    auto const content = contentOf(file.get());
    if (!content) return failed(KeychainStatus::ioErr);
    return KeyFile::valueIn(content->bytes());
}

// The folder itself is the lock, so that none lies beside the items. Held until the folder is closed.
bool isLocked(int folder) {
    constexpr std::chrono::seconds patience{10};
    constexpr std::chrono::milliseconds pause{5};
    auto const end = std::chrono::steady_clock::now() + patience;
    while (::flock(folder, LOCK_EX | LOCK_NB) != 0) {
        bool const isHeld = errno == EWOULDBLOCK || errno == EINTR;
        if (!isHeld || std::chrono::steady_clock::now() >= end) return false;
        std::this_thread::sleep_for(pause);
    }
    return true;
}

Place lockedItemsIn(std::optional<std::filesystem::path> const& dataHome,
                    Place (*subfolder)(int parent, char const* name)) {
    auto items = itemsIn(dataHome, subfolder);
    if (items && !isLocked(items->get())) return std::unexpected(KeychainStatus::ioErr);
    return items;
}

// What a process that was killed while it added an item has left behind: key bytes that nothing uses. Only
// under the lock: another's may still be in use.
void removeAsideFiles(int folder) {
    // A descriptor of its own, since the listing closes it.
    auto const number = ::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (number < 0) return;
    std::unique_ptr<DIR, int (*)(DIR*)> const listing(::fdopendir(number), ::closedir);
    if (!listing) return;
    std::vector<std::string> stale;
    while (auto const* entry = ::readdir(listing.get())) {
        if (std::string_view(entry->d_name).starts_with(asideMark)) stale.emplace_back(entry->d_name);
    }
    for (auto const& name : stale)
        ::unlinkat(folder, name.c_str(), 0);
}

bool isWritten(FileDescriptor& file, std::span<std::byte const> content) {
    if (::fchmod(file.get(), 0600) != 0) return false;
    while (!content.empty()) {
        auto const count = ::write(file.get(), content.data(), content.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        content = content.subspan(static_cast<std::size_t>(count));
    }
    return ::fsync(file.get()) == 0 && !file.close();
}

// Never in the place of another item, however many processes add one at the same moment.
bool isMoved(int folder, std::string const& from, std::string const& to) {
    if (::renameat2(folder, from.c_str(), folder, to.c_str(), RENAME_NOREPLACE) == 0) return true;
    if (errno != EINVAL && errno != ENOSYS) return false;
    // A file system without that way: a hard link refuses to replace as well.
    if (::linkat(folder, from.c_str(), folder, to.c_str(), 0) != 0) return false;
    ::unlinkat(folder, from.c_str(), 0);
    return true;
}

bool isReplaced(int folder, std::string const& from, std::string const& to) {
    return ::renameat(folder, from.c_str(), folder, to.c_str()) == 0;
}

// Writes the content aside and puts it in place. Without `isPlaced` nothing of it stays.
bool isPut(int folder, std::string const& name, SecretBytes const& content,
           bool (*isPlaced)(int folder, std::string const& from, std::string const& to)) {
    removeAsideFiles(folder);
    auto const aside = std::string(asideMark) + Foundation::UUID::random().uuidString();
    auto file = opened(folder, aside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0600);
    if (!file.isOpen()) return false;
    if (isWritten(file, content.bytes()) && isPlaced(folder, aside, name)) return true;
    ::unlinkat(folder, aside.c_str(), 0);
    return false;
}

KeychainStatus addedTo(int folder, std::string const& name, SecretBytes const& content) {
    if (!isPut(folder, name, content, isMoved)) return KeychainStatus::ioErr;
    if (isSynced(folder)) return KeychainStatus::success;
    // A name that may be gone after a power cut is no item: the key must not come into use.
    ::unlinkat(folder, name.c_str(), 0);
    return KeychainStatus::ioErr;
}

} // namespace

std::optional<std::filesystem::path> FileKeychain::folder() const {
    if (!dataHome) return std::nullopt;
    return *dataHome / productFolder / itemFolder;
}

std::optional<std::filesystem::path> FileKeychain::file(GenericPasswordIdentity const& identity) const {
    if (!dataHome) return std::nullopt;
    return *folder() / KeyFile::nameOf(identity);
}

GenericPasswordMatch FileKeychain::copyMatching(GenericPasswordIdentity const& identity) const {
    try {
        auto const items = itemsIn(dataHome, folderIn);
        if (!items) return failed(items.error());
        return itemIn(items->get(), KeyFile::nameOf(identity));
    } catch (...) {
        return failed(KeychainStatus::ioErr);
    }
}

KeychainStatus FileKeychain::deleteMatching(GenericPasswordIdentity const& identity) {
    try {
        auto const items = lockedItemsIn(dataHome, folderIn);
        if (!items) return items.error();
        if (::unlinkat(items->get(), KeyFile::nameOf(identity).c_str(), 0) != 0) {
            return errno == ENOENT ? KeychainStatus::itemNotFound : KeychainStatus::ioErr;
        }
        // Gone for everybody from here on. A failure would say that it is still there, which it is not.
        static_cast<void>(isSynced(items->get()));
        return KeychainStatus::success;
    } catch (...) {
        return KeychainStatus::ioErr;
    }
}

KeychainStatus FileKeychain::add(GenericPasswordIdentity const& identity, SecretBytes const& value) {
    try {
        if (value.size() > KeyFile::greatestValueSize) return KeychainStatus::ioErr;
        auto const items = lockedItemsIn(dataHome, madeFolderIn);
        if (!items) return KeychainStatus::ioErr;
        return addedTo(items->get(), KeyFile::nameOf(identity), KeyFile::contentOf(value));
    } catch (...) {
        return KeychainStatus::ioErr;
    }
}

KeychainStatus FileKeychain::update(GenericPasswordIdentity const& identity, SecretBytes const& value) {
    try {
        if (value.size() > KeyFile::greatestValueSize) return KeychainStatus::ioErr;
        auto const items = lockedItemsIn(dataHome, folderIn);
        if (!items) return items.error();
        auto const name = KeyFile::nameOf(identity);
        if (isAbsent(items->get(), name.c_str())) return KeychainStatus::itemNotFound;
        if (!isPut(items->get(), name, KeyFile::contentOf(value), isReplaced)) return KeychainStatus::ioErr;
        return isSynced(items->get()) ? KeychainStatus::success : KeychainStatus::ioErr;
    } catch (...) {
        return KeychainStatus::ioErr;
    }
}

} // namespace Platform
