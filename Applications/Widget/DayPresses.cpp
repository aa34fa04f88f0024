#include "Applications/Widget/DayPresses.h"

#include "WidgetExtension/ScheduleWidgetDayOffsetStore.h"
#include "WidgetExtension/ShowNextScheduleDayIntent.h"
#include "WidgetExtension/ShowPreviousScheduleDayIntent.h"

#include <utility>

namespace Widget {

namespace {

Foundation::Task<void> performIntent(std::shared_ptr<Platform::AppIntent> intent,
                                     std::shared_ptr<Platform::FileManager const> files, std::int64_t days,
                                     std::function<void(std::int64_t)> refused) {
    auto const storedDay = WidgetExtension::ScheduleWidgetDayOffsetStore::load(*files);
    std::int64_t next = 0;
    // The intent ends the process over such a file. A widget had better stay, and say what is wrong.
    if (__builtin_add_overflow(storedDay, days, &next)) {
        refused(storedDay);
        co_return;
    }
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
                       std::shared_ptr<Platform::WidgetCenter> widgetCenter,
                       std::function<void(std::int64_t storedDay)> refused)
    : executor(std::move(executor)),
      files(std::move(files)),
      widgetCenter(std::move(widgetCenter)),
      refused(std::move(refused)) {}

void DayPresses::previousDay() const {
    perform(std::make_shared<WidgetExtension::ShowPreviousScheduleDayIntent>(files, widgetCenter), -1);
}

void DayPresses::nextDay() const {
    perform(std::make_shared<WidgetExtension::ShowNextScheduleDayIntent>(files, widgetCenter), 1);
}

void DayPresses::today() const {
    executor.start(returnToToday(files, widgetCenter));
}

void DayPresses::perform(std::shared_ptr<Platform::AppIntent> intent, std::int64_t days) const {
    executor.start(performIntent(std::move(intent), files, days, refused));
}

} // namespace Widget
