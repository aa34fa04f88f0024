#pragma once

#include "Foundation/Task.h"
#include "Platform/Files/FileManager.h"
#include "Platform/WidgetHost/AppIntent.h"
#include "Platform/WidgetHost/WidgetCenter.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace Widget {

/// Carries out what the buttons, the keys and the menu ask for, one after another and off the window's
/// thread.
class DayPresses final {
public:
    /// `refused` hears, on the executor's thread, of a press that was not carried out because from the stored
    /// day, which it is given, there is no further step.
    DayPresses(Foundation::TaskExecutor executor, std::shared_ptr<Platform::FileManager const> files,
               std::shared_ptr<Platform::WidgetCenter> widgetCenter,
               std::function<void(std::int64_t storedDay)> refused);

    void previousDay() const;
    void nextDay() const;
    void today() const;

private:
    void perform(std::shared_ptr<Platform::AppIntent> intent, std::int64_t days) const;

    Foundation::TaskExecutor executor;
    std::shared_ptr<Platform::FileManager const> files;
    std::shared_ptr<Platform::WidgetCenter> widgetCenter;
    std::function<void(std::int64_t storedDay)> refused;
};

} // namespace Widget
