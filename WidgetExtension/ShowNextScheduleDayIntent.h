#pragma once

#include "Platform/Files/FileManager.h"
#include "Platform/WidgetHost/AppIntent.h"
#include "Platform/WidgetHost/WidgetCenter.h"

#include <memory>
#include <string_view>

namespace WidgetExtension {

/// Moves the widget to the day after the one it shows.
class ShowNextScheduleDayIntent final : public Platform::AppIntent {
public:
    ShowNextScheduleDayIntent(std::shared_ptr<Platform::FileManager const> files,
                              std::shared_ptr<Platform::WidgetCenter> widgetCenter);

    [[nodiscard]] std::string_view title() const override;

    /// Stores the new offset and asks every timeline to reload. The task keeps what it needs, also when the
    /// intent is gone. A stored offset at the end of its type is a fatal error.
    Foundation::Task<void> perform() override;

private:
    std::shared_ptr<Platform::FileManager const> files;
    std::shared_ptr<Platform::WidgetCenter> widgetCenter;
};

} // namespace WidgetExtension
