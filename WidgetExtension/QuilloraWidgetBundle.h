#pragma once

#include "WidgetExtension/ScheduleWidget.h"
#include "WidgetExtension/ScheduleWidgetServices.h"

#include <array>

namespace WidgetExtension {

/// The widgets of this extension: exactly one.
class QuilloraWidgetBundle {
public:
    explicit QuilloraWidgetBundle(ScheduleWidgetServices services);

    [[nodiscard]] std::array<ScheduleWidget, 1> const& body() const { return widgets; }

private:
    std::array<ScheduleWidget, 1> widgets;
};

} // namespace WidgetExtension
