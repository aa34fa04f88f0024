#pragma once

#include "Platform/WidgetHost/MainLoop.h"
#include "Platform/WidgetHost/WidgetCenter.h"

#include <functional>
#include <utility>

namespace Platform {

/// The way to a host in this very process. Requests may come from any thread.
class LocalWidgetCenter final : public WidgetCenter {
public:
    /// `reload` is called on the main loop's thread, once for each request.
    LocalWidgetCenter(MainLoop& mainLoop, std::function<void()> reload)
        : mainLoop(mainLoop),
          reload(std::move(reload)) {}

    void reloadAllTimelines() override {
        mainLoop.invoke([reload = reload] { reload(); });
    }

private:
    MainLoop& mainLoop;
    std::function<void()> reload;
};

} // namespace Platform
