#pragma once

#include "Foundation/Date.h"
#include "Platform/WidgetHost/TimelineProvider.h"
#include "WidgetExtension/ScheduleWidgetController.h"
#include "WidgetExtension/ScheduleWidgetEntry.h"
#include "WidgetExtension/ScheduleWidgetServices.h"

#include <cstdint>
#include <functional>

namespace WidgetExtension {

/// Answers the host with the day that the stored offset tells, the same for every family. A question that was
/// asked is answered even when the provider is gone: its task keeps what it needs. A completion must guard
/// what it touches in the same way.
class ScheduleTimelineProvider final : public Platform::TimelineProvider<ScheduleWidgetEntry> {
public:
    explicit ScheduleTimelineProvider(ScheduleWidgetServices services);

    /// Dated now and empty. Reads no file and no calendar.
    ScheduleWidgetEntry placeholder(Platform::TimelineProviderContext const& context) override;

    void getSnapshot(Platform::TimelineProviderContext const& context,
                     std::function<void(ScheduleWidgetEntry)> completion) override;

    /// One entry, to be asked for again 15 minutes after it was made.
    void getTimeline(Platform::TimelineProviderContext const& context,
                     std::function<void(Platform::Timeline<ScheduleWidgetEntry>)> completion) override;

    /// The stored offset, read afresh at every call.
    [[nodiscard]] std::int64_t dayOffset() const;

    /// Now plus the stored days with the time of day kept; now where the calendar has no such date.
    [[nodiscard]] Foundation::Date displayDate() const;

private:
    ScheduleWidgetServices services;
    ScheduleWidgetController controller;
};

} // namespace WidgetExtension
