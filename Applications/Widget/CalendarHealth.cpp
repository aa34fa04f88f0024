#include "Applications/Widget/CalendarHealth.h"

#include "Foundation/Text.h"

#include <filesystem>
#include <system_error>
#include <utility>

namespace Widget {

namespace {

std::string shown(std::filesystem::path const& path) {
    return Foundation::Text::neutralized(Foundation::Text::sanitizedUTF8(path.native()));
}

std::optional<CalendarTrouble> troubleOf(Platform::CalendarStoreConfiguration const& configuration) {
    auto const content = configuration.load();
    if (content.problem) {
        return CalendarTrouble{
            .path = shown(configuration.file()), .cause = *content.problem, .lastRead = std::nullopt};
    }
    for (auto const& root : content.roots) {
        std::error_code failure;
        std::filesystem::directory_iterator const probe(root.path, failure);
        if (failure) {
            return CalendarTrouble{
                .path = shown(root.path), .cause = failure.message(), .lastRead = std::nullopt};
        }
    }
    return std::nullopt;
}

} // namespace

CalendarHealth::CalendarHealth(std::shared_ptr<Platform::CalendarStoreConfiguration const> configuration,
                               Foundation::TaskExecutor executor, Platform::MainLoop& mainLoop,
                               std::shared_ptr<Platform::Clock const> clock,
                               std::function<void(std::optional<CalendarTrouble> const&)> onChange)
    : configuration(std::move(configuration)),
      executor(std::move(executor)),
      mainLoop(mainLoop),
      clock(std::move(clock)),
      onChange(std::move(onChange)),
      self(std::make_shared<CalendarHealth*>(this)) {}

void CalendarHealth::check() {
    auto const look = [](std::shared_ptr<Platform::CalendarStoreConfiguration const> configuration,
                         std::shared_ptr<Platform::Clock const> clock, Platform::MainLoop* loop,
                         std::weak_ptr<CalendarHealth*> weak) -> Foundation::Task<void> {
        auto trouble = troubleOf(*configuration);
        loop->invoke([weak = std::move(weak), trouble = std::move(trouble), now = clock->now()]() mutable {
            if (auto const health = weak.lock()) {
                (*health)->found(std::move(trouble), now);
            }
        });
        co_return;
    };
    executor.start(look(configuration, clock, &mainLoop, self));
}

void CalendarHealth::found(std::optional<CalendarTrouble> trouble, Foundation::Date now) {
    if (trouble) {
        trouble->lastRead = lastRead;
    } else {
        lastRead = now;
    }
    if (std::exchange(known, trouble) != trouble) {
        onChange(known);
    }
}

} // namespace Widget
