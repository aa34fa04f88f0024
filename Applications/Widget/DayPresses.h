#pragma once

#include "Foundation/Task.h"
#include "Platform/Files/FileManager.h"
#include "Platform/Files/WriteWitness.h"
#include "Platform/WidgetHost/WidgetCenter.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace Widget {

/// What came of a press. Both are absent when the day moved, or is at the end of its way.
struct PressOutcome {
    std::optional<std::int64_t> refusedDay; ///< The stored day, when there is no further step from it.
    std::optional<Platform::WriteWitness::Failure> notSaved;
};

/// Carries out what the buttons, the keys and the menu ask for, one after another and off the window's
/// thread.
class DayPresses final {
public:
    /// `done` hears of each press on the executor's thread.
    DayPresses(Foundation::TaskExecutor executor, std::shared_ptr<Platform::FileManager const> files,
               std::shared_ptr<Platform::WidgetCenter> widgetCenter,
               std::function<void(PressOutcome const&)> done);

    void previousDay() const;
    void nextDay() const;
    void today() const;

private:
    Foundation::TaskExecutor executor;
    std::shared_ptr<Platform::FileManager const> files;
    std::shared_ptr<Platform::WidgetCenter> widgetCenter;
    std::function<void(PressOutcome const&)> done;
};

} // namespace Widget
