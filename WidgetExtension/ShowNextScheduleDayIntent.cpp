#include "WidgetExtension/ShowNextScheduleDayIntent.h"

#include "WidgetExtension/ScheduleDayStep.h"

#include <utility>

namespace WidgetExtension {

ShowNextScheduleDayIntent::ShowNextScheduleDayIntent(std::shared_ptr<Platform::FileManager const> files,
                                                     std::shared_ptr<Platform::WidgetCenter> widgetCenter)
    : files(std::move(files)),
      widgetCenter(std::move(widgetCenter)) {}

std::string_view ShowNextScheduleDayIntent::title() const {
    return "schedule-widget-next-day";
}

Foundation::Task<void> ShowNextScheduleDayIntent::perform() {
    return stepScheduleDay(files, widgetCenter, 1);
}

} // namespace WidgetExtension
