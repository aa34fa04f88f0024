#include "Platform/EventStore/Folder/FolderChanges.h"

#include "Platform/EventStore/Folder/SharedFileSystem.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Platform {

namespace {

// Watches are a scarce resource that the whole session shares.
constexpr std::size_t mostFolders = 512;

// A file that is linked in is created and nothing more.
constexpr std::uint32_t whatMatters = IN_CREATE | IN_MODIFY | IN_CLOSE_WRITE | IN_ATTRIB | IN_MOVED_FROM |
                                      IN_MOVED_TO | IN_DELETE | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;

} // namespace

FolderChanges::FolderChanges() : descriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {}

FolderChanges::~FolderChanges() {
    if (descriptor >= 0) ::close(descriptor);
}

FolderChanges::State FolderChanges::state(std::filesystem::path const& folder) {
    readEvents();
    auto const entry = folders.find(folder);
    if (entry == folders.end()) return State::unknown;
    auto const& known = entry->second;
    if (known.watch < 0 || known.hasChanged) return State::changed;
    // When a folder above it was moved, the path leads elsewhere and no event tells.
    struct stat status{};
    bool const isSame =
        ::stat(folder.c_str(), &status) == 0 && status.st_dev == known.device && status.st_ino == known.inode;
    return isSame ? State::unchanged : State::changed;
}

void FolderChanges::watch(std::filesystem::path const& folder) {
    readEvents();
    struct stat status{};
    if (::stat(folder.c_str(), &status) != 0) {
        folders.erase(folder);
        return;
    }
    auto const entry = folders.find(folder);
    if (entry != folders.end()) {
        auto& known = entry->second;
        if (known.watch >= 0 && status.st_dev == known.device && status.st_ino == known.inode) {
            known.hasChanged = false;
            return;
        }
        if (known.watch >= 0) {
            ::inotify_rm_watch(descriptor, known.watch);
            watches.erase(known.watch);
        }
        folders.erase(entry);
    }
    if (descriptor < 0 || folders.size() >= mostFolders || isSharedWithOthers(folder)) return;
    auto const number = ::inotify_add_watch(descriptor, folder.c_str(), whatMatters);
    if (number < 0) return;
    // Two paths to one folder share a watch, which tells of the last one alone: the first is looked at again.
    if (auto const twin = watches.find(number); twin != watches.end()) folders.erase(twin->second);
    watches[number] = folder;
    folders[folder] = {.watch = number, .device = status.st_dev, .inode = status.st_ino, .hasChanged = false};
}

void FolderChanges::readEvents() {
    if (descriptor < 0) return;
    alignas(inotify_event) std::array<char, 16 * 1024> buffer;
    for (;;) {
        auto const length = ::read(descriptor, buffer.data(), buffer.size());
        if (length < 0 && errno == EINTR) continue;
        if (length <= 0) return;
        for (std::size_t place = 0; place < static_cast<std::size_t>(length);) {
            inotify_event event{};
            std::memcpy(&event, buffer.data() + place, sizeof event);
            place += sizeof event + event.len;
            if ((event.mask & IN_Q_OVERFLOW) != 0) {
                changeAll();
                continue;
            }
            auto const path = watches.find(event.wd);
            if (path == watches.end()) continue;
            auto& folder = folders[path->second];
            folder.hasChanged = true;
            if ((event.mask & IN_IGNORED) != 0) {
                folder.watch = -1;
                watches.erase(path);
            }
        }
    }
}

// Some events were lost, and nobody knows of which folders.
void FolderChanges::changeAll() {
    for (auto& [path, folder] : folders)
        folder.hasChanged = true;
}

} // namespace Platform
