#include "Platform/WidgetHost/FolderWatch.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace Platform {

namespace {

// IN_CREATE alone tells of a file that is linked in.
constexpr std::uint32_t interestingEvents = IN_MOVED_TO | IN_MOVED_FROM | IN_CLOSE_WRITE | IN_CREATE |
                                            IN_DELETE | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;

} // namespace

FolderWatch::FolderWatch(std::filesystem::path folder, std::vector<std::string> names,
                         std::function<void()> onChange)
    : folder(std::move(folder)),
      names(std::move(names)),
      onChange(std::move(onChange)),
      descriptor(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    if (descriptor >= 0) {
        readable = GLibSource::watchingDescriptor(descriptor, [this] { readEvents(); });
    }
    renew();
}

FolderWatch::~FolderWatch() {
    readable = {};
    if (descriptor >= 0) {
        close(descriptor);
    }
}

void FolderWatch::renew() {
    if (descriptor >= 0 && watch < 0) {
        watch = inotify_add_watch(descriptor, folder.c_str(), interestingEvents);
    }
}

void FolderWatch::readEvents() {
    bool hasChanged = false;
    bool isLost = false;
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
            if ((event.mask & IN_Q_OVERFLOW) != 0) {
                hasChanged = true;
            } else if ((event.mask & (IN_DELETE_SELF | IN_MOVE_SELF)) != 0) {
                isLost = true;
            } else if (event.len > 0 && matters(name)) {
                hasChanged = true;
            }
        }
    }
    if (isLost) {
        // A folder that was moved away is still the watched one; let go of it, another may stand at the path.
        inotify_rm_watch(descriptor, watch);
        watch = -1;
        renew();
    }
    if (hasChanged || isLost) {
        // A copy: the handler may end this object.
        auto const handler = onChange;
        handler();
    }
}

bool FolderWatch::matters(std::string_view name) const {
    return names.empty() ? !name.starts_with('.') : std::ranges::find(names, name) != names.end();
}

} // namespace Platform
