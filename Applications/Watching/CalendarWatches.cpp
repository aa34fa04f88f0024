#include "Applications/Watching/CalendarWatches.h"

#include <utility>

namespace Watching {

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
        auto found = watchedPlaces(places, *configuration);
        loop->invoke([weak = std::move(weak), found = std::move(found)] {
            if (auto const watches = weak.lock()) {
                (*watches)->watch(found);
            }
        });
        co_return;
    };
    executor.start(list(places, configuration, &mainLoop, self));
}

void CalendarWatches::watch(std::vector<WatchedPlace> const& wanted) {
    bool const isFirst = watches.empty();
    bool hasNew = false;
    auto former = std::exchange(watches, {});
    for (auto const& place : wanted) {
        auto known = former.extract(place);
        if (!known.empty() && known.mapped()->isWatching()) {
            watches.insert(std::move(known));
            continue;
        }
        auto watch = watchOf(place);
        // One that cannot be had is no news, or this would never come to an end.
        hasNew = hasNew || watch->isWatching();
        watches.emplace(place, std::move(watch));
    }
    if (!hasNew) {
        return;
    }
    // Folders and files may have come into a new place after it was listed and before it was watched.
    update();
    if (!isFirst) {
        onChange();
    }
}

std::unique_ptr<Platform::FolderWatch> CalendarWatches::watchOf(WatchedPlace const& place) {
    auto const tell = [this] { changed(); };
    switch (place.kind) {
    case WatchedPlace::Kind::calendars:
        return std::make_unique<Platform::FolderWatch>(events, place.folder, std::vector<std::string>{},
                                                       tell);
    case WatchedPlace::Kind::entry:
        return std::make_unique<Platform::FolderWatch>(events, place.folder, std::vector{place.name}, tell);
    case WatchedPlace::Kind::itself:
        return std::make_unique<Platform::FolderWatch>(events, place.folder, tell);
    }
    std::unreachable();
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

} // namespace Watching
