#include "Platform/WidgetHost/FolderEvents.h"

#include "Platform/WidgetHost/FolderWatch.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace Platform {

namespace {

// Several watches may share one of the kernel's: each adds what it wants to be told.
constexpr std::uint32_t eventsOfFolder = IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR | IN_MASK_ADD;

// IN_CREATE alone tells of a file that is linked in.
constexpr std::uint32_t eventsWithin = IN_MOVED_TO | IN_MOVED_FROM | IN_CLOSE_WRITE | IN_CREATE | IN_DELETE;

} // namespace

FolderEvents::FolderEvents() : descriptor(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    if (descriptor >= 0) {
        readable = GLibSource::watchingDescriptor(descriptor, [this] { readEvents(); });
    }
}

FolderEvents::~FolderEvents() {
    readable = {};
    if (descriptor >= 0) {
        close(descriptor);
    }
}

int FolderEvents::add(std::filesystem::path const& folder, FolderWatch& watch) {
    if (descriptor < 0) {
        return -1;
    }
    auto const wanted = watch.mattersWithin() ? eventsOfFolder | eventsWithin : eventsOfFolder;
    int const handle = inotify_add_watch(descriptor, folder.c_str(), wanted);
    if (handle >= 0) {
        watches.emplace(handle, &watch);
    }
    return handle;
}

void FolderEvents::remove(int handle, FolderWatch& watch) {
    told.erase(&watch);
    auto const [first, last] = watches.equal_range(handle);
    auto const entry = std::find_if(first, last, [&](auto const& known) { return known.second == &watch; });
    if (entry == last) {
        return;
    }
    watches.erase(entry);
    // Two watches on one folder share the kernel's.
    if (!watches.contains(handle)) {
        inotify_rm_watch(descriptor, handle);
    }
}

void FolderEvents::readEvents() {
    alignas(inotify_event) std::array<char, 8192> buffer{};
    for (;;) {
        auto const count = read(descriptor, buffer.data(), buffer.size());
        if (count <= 0) {
            break;
        }
        for (std::size_t offset = 0; offset < static_cast<std::size_t>(count);) {
            inotify_event event{};
            std::memcpy(&event, buffer.data() + offset, sizeof event);
            char const* const name = buffer.data() + offset + sizeof event;
            offset += sizeof event + event.len;
            note(event.wd, event.mask, event.len > 0 ? name : "");
        }
    }
    while (!told.empty()) {
        auto const entry = told.extract(told.begin());
        entry.key()->tell(entry.mapped().isLost);
    }
}

void FolderEvents::note(int handle, unsigned mask, std::string_view name) {
    if ((mask & IN_Q_OVERFLOW) != 0) {
        // Something was dropped, whatever it was.
        for (auto const& [_, watch] : watches) {
            told[watch].hasChanged = true;
        }
        return;
    }
    auto const [first, last] = watches.equal_range(handle);
    for (auto entry = first; entry != last; ++entry) {
        if ((mask & (IN_DELETE_SELF | IN_MOVE_SELF | IN_UNMOUNT)) != 0) {
            told[entry->second].isLost = true;
        } else if (!name.empty() && entry->second->matters(name)) {
            told[entry->second].hasChanged = true;
        }
    }
}

} // namespace Platform
