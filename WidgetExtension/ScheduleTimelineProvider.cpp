#include "WidgetExtension/ScheduleTimelineProvider.h"

#include "Foundation/Task.h"
#include "WidgetExtension/ScheduleWidgetDayOffsetStore.h"

#include <utility>

namespace WidgetExtension {
namespace {

constexpr std::int64_t minutesToReload = 15;

std::int64_t loadDayOffset(ScheduleWidgetServices const& services) {
    return ScheduleWidgetDayOffsetStore::load(*services.files);
}

Foundation::Date displayDateOf(ScheduleWidgetServices const& services) {
    auto const now = services.clock->now();
    return services.region->currentCalendar().dateByAddingDays(loadDayOffset(services), now).value_or(now);
}

Foundation::Date reloadDate(ScheduleWidgetServices const& services) {
    auto const now = services.clock->now();
    return services.region->currentCalendar().dateByAddingMinutes(minutesToReload, now).value_or(now);
}

// The tasks own copies of all they use, so that the provider may go away before they end.

Foundation::Task<ScheduleWidgetEntry> makeEntry(ScheduleWidgetServices services,
                                                ScheduleWidgetController controller) {
    // The offset is read again for the date, on purpose: after a press in between, the entry carries the
    // first value and a date made from the second, and the reload that follows sets it right.
    auto const dayOffset = loadDayOffset(services);
    auto const displayDate = displayDateOf(services);
    ScheduleWidgetController::DayMeetings day = co_await controller.getTodaysMeetings(displayDate);
    ScheduleWidgetEntry entry = {
        .date = displayDate,
        .meetings = std::move(day.meetings),
        .hasAccessError = day.hasAccessError,
        .dayOffset = dayOffset,
    };
    co_return entry;
}

Foundation::Task<void> answerSnapshot(ScheduleWidgetServices services, ScheduleWidgetController controller,
                                      std::function<void(ScheduleWidgetEntry)> completion) {
    ScheduleWidgetEntry entry = co_await makeEntry(std::move(services), std::move(controller));
    completion(std::move(entry));
}

Foundation::Task<void>
answerTimeline(ScheduleWidgetServices services, ScheduleWidgetController controller,
               std::function<void(Platform::Timeline<ScheduleWidgetEntry>)> completion) {
    ScheduleWidgetEntry entry = co_await makeEntry(services, std::move(controller));
    Platform::Timeline<ScheduleWidgetEntry> timeline = {
        .entries = {},
        .policy = Platform::TimelineReloadPolicy::after(reloadDate(services)),
    };
    timeline.entries.push_back(std::move(entry));
    completion(std::move(timeline));
}

} // namespace

ScheduleTimelineProvider::ScheduleTimelineProvider(ScheduleWidgetServices services)
    : services(std::move(services)),
      controller(this->services) {}

ScheduleWidgetEntry ScheduleTimelineProvider::placeholder(Platform::TimelineProviderContext const&) {
    return {.date = services.clock->now(), .meetings = {}, .hasAccessError = false, .dayOffset = 0};
}

void ScheduleTimelineProvider::getSnapshot(Platform::TimelineProviderContext const&,
                                           std::function<void(ScheduleWidgetEntry)> completion) {
    services.executor.start(answerSnapshot(services, controller, std::move(completion)));
}

void ScheduleTimelineProvider::getTimeline(
    Platform::TimelineProviderContext const&,
    std::function<void(Platform::Timeline<ScheduleWidgetEntry>)> completion) {
    services.executor.start(answerTimeline(services, controller, std::move(completion)));
}

std::int64_t ScheduleTimelineProvider::dayOffset() const {
    return loadDayOffset(services);
}

Foundation::Date ScheduleTimelineProvider::displayDate() const {
    return displayDateOf(services);
}

} // namespace WidgetExtension
