#include "Applications/Widget/DayPresses.h"

#include "WidgetExtension/ScheduleWidgetDayOffsetStore.h"
#include "WidgetExtension/ShowNextScheduleDayIntent.h"
#include "WidgetExtension/ShowPreviousScheduleDayIntent.h"

#include <utility>

namespace Widget {

namespace {

Foundation::Task<void> performIntent(std::shared_ptr<Platform::AppIntent> intent) {
    co_await intent->perform();
}

Foundation::Task<void> returnToToday(std::shared_ptr<Platform::FileManager const> files,
                                     std::shared_ptr<Platform::WidgetCenter> widgetCenter) {
    WidgetExtension::ScheduleWidgetDayOffsetStore::save(*files, 0);
    widgetCenter->reloadAllTimelines();
    co_return;
}

} // namespace

DayPresses::DayPresses(Foundation::TaskExecutor executor, std::shared_ptr<Platform::FileManager const> files,
                       std::shared_ptr<Platform::WidgetCenter> widgetCenter)
    : executor(std::move(executor)),
      files(std::move(files)),
      widgetCenter(std::move(widgetCenter)) {}

void DayPresses::previousDay() const {
    perform(std::make_shared<WidgetExtension::ShowPreviousScheduleDayIntent>(files, widgetCenter));
}

void DayPresses::nextDay() const {
    perform(std::make_shared<WidgetExtension::ShowNextScheduleDayIntent>(files, widgetCenter));
}

void DayPresses::today() const {
    executor.start(returnToToday(files, widgetCenter));
}

void DayPresses::perform(std::shared_ptr<Platform::AppIntent> intent) const {
    executor.start(performIntent(std::move(intent)));
}

} // namespace Widget
