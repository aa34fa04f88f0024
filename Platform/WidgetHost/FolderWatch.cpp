#include "Platform/WidgetHost/FolderWatch.h"

#include <algorithm>
#include <utility>

namespace Platform {

FolderWatch::FolderWatch(FolderEvents& events, std::filesystem::path folder, std::vector<std::string> names,
                         std::function<void()> onChange)
    : events(events),
      folder(std::move(folder)),
      names(std::move(names)),
      onChange(std::move(onChange)) {
    renew();
}

FolderWatch::FolderWatch(FolderEvents& events, std::filesystem::path folder, std::function<void()> onChange)
    : events(events),
      folder(std::move(folder)),
      onChange(std::move(onChange)) {
    renew();
}

FolderWatch::~FolderWatch() {
    letGo();
}

void FolderWatch::renew() {
    if (handle < 0) {
        handle = events.add(folder, *this);
    }
}

void FolderWatch::letGo() {
    if (handle >= 0) {
        events.remove(std::exchange(handle, -1), *this);
    }
}

void FolderWatch::tell(bool isLost) {
    if (isLost) {
        // A folder that was moved away is still the watched one; let go of it, another may stand at the path.
        letGo();
        renew();
    }
    // A copy: the handler may end this object.
    auto const handler = onChange;
    handler();
}

bool FolderWatch::matters(std::string_view name) const {
    if (!names) {
        return false;
    }
    return names->empty() ? !name.starts_with('.') : std::ranges::find(*names, name) != names->end();
}

} // namespace Platform
