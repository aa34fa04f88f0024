#include "WidgetExtension/ScheduleWidget.h"

#include <utility>

namespace WidgetExtension {

ScheduleWidget::ScheduleWidget(ScheduleWidgetServices services) : services(std::move(services)) {}

Platform::StaticConfiguration ScheduleWidget::configuration() const {
    return {
        .kind = kind,
        .displayNameKey = "schedule-widget-display-name",
        .descriptionKey = "schedule-widget-description",
        .supportedFamilies = {Platform::WidgetFamily::systemSmall, Platform::WidgetFamily::systemMedium,
                              Platform::WidgetFamily::systemLarge},
    };
}

std::unique_ptr<ScheduleTimelineProvider> ScheduleWidget::timelineProvider() const {
    return std::make_unique<ScheduleTimelineProvider>(services);
}

ScheduleWidgetView ScheduleWidget::content(ScheduleWidgetEntry entry, Platform::WidgetFamily family,
                                           Platform::ColorScheme colorScheme) const {
    return {
        .entry = std::move(entry),
        .colorScheme = colorScheme,
        .family = family,
        .calendar = services.region->currentCalendar(),
        .now = services.clock->now(),
        .locale = services.region->currentLocale(),
        .texts = services.texts,
        .colors = services.colors,
    };
}

} // namespace WidgetExtension
