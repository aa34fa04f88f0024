#include "WidgetExtension/QuilloraWidgetBundle.h"

#include <utility>

namespace WidgetExtension {

QuilloraWidgetBundle::QuilloraWidgetBundle(ScheduleWidgetServices services)
    : widgets{ScheduleWidget(std::move(services))} {}

} // namespace WidgetExtension
