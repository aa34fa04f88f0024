#include "WidgetExtension/ScheduleDayStep.h"

#include "Foundation/Numbers.h"
#include "WidgetExtension/ScheduleWidgetDayOffsetStore.h"

namespace WidgetExtension {

Foundation::Task<void> stepScheduleDay(std::shared_ptr<Platform::FileManager const> files,
                                       std::shared_ptr<Platform::WidgetCenter> widgetCenter,
                                       std::int64_t days) {
    auto const current = ScheduleWidgetDayOffsetStore::load(*files);
    ScheduleWidgetDayOffsetStore::save(*files, Foundation::checkedAdd(current, days));
    widgetCenter->reloadAllTimelines();
    co_return;
}

} // namespace WidgetExtension
