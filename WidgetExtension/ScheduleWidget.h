#pragma once

#include "Platform/WidgetHost/WidgetConfiguration.h"
#include "WidgetExtension/ScheduleTimelineProvider.h"
#include "WidgetExtension/ScheduleWidgetServices.h"
#include "WidgetExtension/ScheduleWidgetView.h"

#include <memory>
#include <string>

namespace WidgetExtension {

/// The one widget: what it declares, where its entries come from and what they look like.
class ScheduleWidget {
public:
    explicit ScheduleWidget(ScheduleWidgetServices services);

    std::string kind = "ScheduleWidget";

    [[nodiscard]] Platform::StaticConfiguration configuration() const;

    /// A new provider.
    [[nodiscard]] std::unique_ptr<ScheduleTimelineProvider> timelineProvider() const;

    /// The face of an entry as it stands now, in the user's region.
    [[nodiscard]] ScheduleWidgetView content(ScheduleWidgetEntry entry, Platform::WidgetFamily family,
                                             Platform::ColorScheme colorScheme) const;

private:
    ScheduleWidgetServices services;
};

} // namespace WidgetExtension
