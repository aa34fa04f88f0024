#pragma once

#include "Foundation/Task.h"
#include "Platform/Files/FileManager.h"
#include "Platform/WidgetHost/AppIntent.h"
#include "Platform/WidgetHost/WidgetCenter.h"

#include <memory>

namespace Widget {

/// Carries out what the buttons, the keys and the menu ask for, one after another and off the window's
/// thread.
class DayPresses final {
public:
    DayPresses(Foundation::TaskExecutor executor, std::shared_ptr<Platform::FileManager const> files,
               std::shared_ptr<Platform::WidgetCenter> widgetCenter);

    void previousDay() const;
    void nextDay() const;
    void today() const;

private:
    void perform(std::shared_ptr<Platform::AppIntent> intent) const;

    Foundation::TaskExecutor executor;
    std::shared_ptr<Platform::FileManager const> files;
    std::shared_ptr<Platform::WidgetCenter> widgetCenter;
};

} // namespace Widget
