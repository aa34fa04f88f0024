#include "WidgetExtension/ShowPreviousScheduleDayIntent.h"

#include "WidgetExtension/ScheduleDayStep.h"

#include <utility>

namespace WidgetExtension {

ShowPreviousScheduleDayIntent::ShowPreviousScheduleDayIntent(
    std::shared_ptr<Platform::FileManager const> files, std::shared_ptr<Platform::WidgetCenter> widgetCenter)
    : files(std::move(files)),
      widgetCenter(std::move(widgetCenter)) {}

std::string_view ShowPreviousScheduleDayIntent::title() const {
    return "schedule-widget-previous-day";
}

Foundation::Task<void> ShowPreviousScheduleDayIntent::perform() {
    return stepScheduleDay(files, widgetCenter, -1);
}

} // namespace WidgetExtension
