#include "Platform/Keychain/FileKeychain.h"

#include "Foundation/UUID.h"
#include "Platform/Files/FileDescriptor.h"
#include "Platform/Keychain/KeyFile.h"

#include <cerrno>
#include <cstdio>
#include <expected>
#include <memory>
#include <string_view>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
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

// What a process that was killed while it added an item has left behind: key bytes that nothing uses.
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

KeychainStatus addedTo(int folder, std::string const& name, SecretBytes const& content) {
    removeAsideFiles(folder);
    auto const aside = std::string(asideMark) + Foundation::UUID::random().uuidString();
    auto file = opened(folder, aside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0600);
    if (!file.isOpen()) return KeychainStatus::ioErr;
    if (!isWritten(file, content.bytes()) || !isMoved(folder, aside, name)) {
        ::unlinkat(folder, aside.c_str(), 0);
        return KeychainStatus::ioErr;
    }
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
        auto const items = itemsIn(dataHome, folderIn);
        if (!items) return items.error();
        if (::unlinkat(items->get(), KeyFile::nameOf(identity).c_str(), 0) != 0) {
            return errno == ENOENT ? KeychainStatus::itemNotFound : KeychainStatus::ioErr;
        }
        return isSynced(items->get()) ? KeychainStatus::success : KeychainStatus::ioErr;
    } catch (...) {
        return KeychainStatus::ioErr;
    }
}

KeychainStatus FileKeychain::add(GenericPasswordIdentity const& identity, SecretBytes const& value) {
    try {
        if (value.size() > KeyFile::greatestValueSize) return KeychainStatus::ioErr;
        auto const items = itemsIn(dataHome, madeFolderIn);
        if (!items) return KeychainStatus::ioErr;
        return addedTo(items->get(), KeyFile::nameOf(identity), KeyFile::contentOf(value));
    } catch (...) {
        return KeychainStatus::ioErr;
    }
}

} // namespace Platform
