#include "Applications/Widget/CalendarWatches.h"

#include <system_error>
#include <utility>

namespace Widget {

namespace {

/// Past this many folders the rest is followed by the host's ordinary reload: watches are a scarce resource
/// that the whole session shares.
constexpr std::size_t mostFolders = 512;

using Folders = std::vector<std::filesystem::path>;

bool isHidden(std::filesystem::path const& path) {
    return path.filename().native().starts_with('.');
}

void appendRoot(Folders& folders, std::filesystem::path const& root) {
    // The store reads no relative root either: it would lie wherever the program was started.
    if (!root.is_absolute() || folders.size() >= mostFolders) {
        return;
    }
    std::error_code failure;
    std::filesystem::directory_iterator entries(root, failure);
    if (failure) {
        return;
    }
    folders.push_back(root);
    for (; entries != std::filesystem::directory_iterator() && folders.size() < mostFolders;
         entries.increment(failure)) {
        if (failure) {
            return;
        }
        std::error_code unknown;
        if (!isHidden(entries->path()) && entries->is_directory(unknown)) {
            folders.push_back(entries->path());
        }
    }
}

} // namespace

Folders calendarFolders(Platform::CalendarStorePlaces const& places,
                        Platform::CalendarStoreConfiguration const& configuration) {
    Folders folders;
    appendRoot(folders, places.nativeCalendar);
    for (auto const& root : configuration.load().roots) {
        appendRoot(folders, root.path);
    }
    return folders;
}

CalendarWatches::CalendarWatches(Platform::FolderEvents& events, Platform::CalendarStorePlaces places,
                                 std::shared_ptr<Platform::CalendarStoreConfiguration const> configuration,
                                 Foundation::TaskExecutor executor, Platform::MainLoop& mainLoop,
                                 std::function<void()> onChange)
    : events(events),
      places(std::move(places)),
      configuration(std::move(configuration)),
      executor(std::move(executor)),
      mainLoop(mainLoop),
      onChange(std::move(onChange)),
      self(std::make_shared<CalendarWatches*>(this)) {}

void CalendarWatches::update() {
    auto const list = [](Platform::CalendarStorePlaces places,
                         std::shared_ptr<Platform::CalendarStoreConfiguration const> configuration,
                         Platform::MainLoop* loop,
                         std::weak_ptr<CalendarWatches*> weak) -> Foundation::Task<void> {
        auto folders = calendarFolders(places, *configuration);
        loop->invoke([weak = std::move(weak), folders = std::move(folders)] {
            if (auto const watches = weak.lock()) {
                (*watches)->watch(folders);
            }
        });
        co_return;
    };
    executor.start(list(places, configuration, &mainLoop, self));
}

void CalendarWatches::watch(Folders const& folders) {
    bool const isFirst = watches.empty();
    bool hasNew = false;
    auto former = std::exchange(watches, {});
    for (auto const& folder : folders) {
        auto known = former.extract(folder);
        if (!known.empty() && known.mapped()->isWatching()) {
            watches.insert(std::move(known));
            continue;
        }
        watches.try_emplace(folder, std::make_unique<Platform::FolderWatch>(
                                        events, folder, std::vector<std::string>{}, [this] { changed(); }));
        hasNew = true;
    }
    if (hasNew && !isFirst) {
        // Files may have come into a new folder after it was read and before it was watched.
        onChange();
    }
}

void CalendarWatches::changed() {
    if (std::exchange(isSettling, true)) {
        return;
    }
    settled = Platform::GLibSource::afterDelay(settlingMilliseconds, [this] {
        isSettling = false;
        update();
        onChange();
    });
}

} // namespace Widget
