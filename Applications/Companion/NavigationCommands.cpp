#include "Applications/Companion/Commands.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "Foundation/DateFormatting.h"
#include "Foundation/Text.h"
#include "Platform/Clock/Clock.h"
#include "Platform/Clock/RegionSettings.h"
#include "Platform/WidgetHost/WidgetCenter.h"
#include "WidgetExtension/ScheduleWidgetDayOffsetStore.h"
#include "WidgetExtension/ShowNextScheduleDayIntent.h"
#include "WidgetExtension/ShowPreviousScheduleDayIntent.h"

#include <algorithm>
#include <fmt/format.h>

namespace Companion {

namespace DayOffsetStore = WidgetExtension::ScheduleWidgetDayOffsetStore;

namespace {

std::int64_t clamped(std::int64_t offset) {
    return std::clamp(offset, -DayOffsetStore::maxOffset, DayOffsetStore::maxOffset);
}

// "Thursday 2026-03-12 (1 day ahead)"
std::string dayLine(Composition::LiveServices& services, std::int64_t offset) {
    auto const calendar = services.region()->currentCalendar();
    auto const now = services.clock()->now();
    auto const date = calendar.dateByAddingDays(offset, now).value_or(now);
    auto const components = calendar.components(date);
    auto const weekday = Foundation::weekdayName(date, calendar, services.region()->currentLocale());
    auto const day = fmt::format("{:04}-{:02}-{:02}", components.year, components.month, components.day);
    return Texts::dayShown(Foundation::Text::capitalized(weekday), day, offset, DayOffsetStore::maxOffset);
}

// The stores and intents fail silently, as a button must; a command looks whether its day was kept.
ExitCode reportMove(Invocation const& invocation, Composition::LiveServices& services,
                    Platform::WriteWitness const& files, std::int64_t expected, std::int64_t before) {
    auto const stored = DayOffsetStore::load(files);
    // A press elsewhere may have moved on meanwhile; only a day that did not move at all was not kept.
    if (stored == before && expected != before)
        throw CommandError::failed(Texts::dayNotSaved(whyNotKept(files)));
    invocation.console.confirmLine(dayLine(services, stored));
    return ExitCode::done;
}

template <typename Intent>
ExitCode step(Invocation const& invocation, std::int64_t days) {
    auto const services = liveServices(invocation);
    auto const files = std::make_shared<Platform::WriteWitness const>(services->files());
    auto const before = DayOffsetStore::load(*files);
    std::int64_t next = 0;
    // The intent ends the process over such a file; a person is better told what to do.
    if (__builtin_add_overflow(before, days, &next))
        throw CommandError::failed(Texts::storedDayIsOutOfRange(before));
    Intent intent(files, services->widgetCenter());
    Foundation::runTask(intent.perform());
    return reportMove(invocation, *services, *files, clamped(next), before);
}

ExitCode next(Invocation const& invocation) {
    return step<WidgetExtension::ShowNextScheduleDayIntent>(invocation, 1);
}

ExitCode previous(Invocation const& invocation) {
    return step<WidgetExtension::ShowPreviousScheduleDayIntent>(invocation, -1);
}

ExitCode today(Invocation const& invocation) {
    auto const services = liveServices(invocation);
    Platform::WriteWitness const files(services->files());
    auto const before = DayOffsetStore::load(files);
    DayOffsetStore::save(files, 0);
    services->widgetCenter()->reloadAllTimelines();
    return reportMove(invocation, *services, files, 0, before);
}

} // namespace

Command nextCommand() {
    return {
        .path = "next",
        .summary = Texts::text("next-summary"),
        .description = Texts::text("next-description"),
        .run = next,
    };
}

Command previousCommand() {
    return {
        .path = "previous",
        .summary = Texts::text("previous-summary"),
        .description = Texts::text("previous-description"),
        .run = previous,
    };
}

Command todayCommand() {
    return {
        .path = "today",
        .summary = Texts::text("today-summary"),
        .description = Texts::text("today-description"),
        .run = today,
    };
}

} // namespace Companion
