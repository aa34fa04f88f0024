#include "Applications/Companion/ShownDay.h"

#include "Applications/Companion/CommandError.h"
#include "Applications/Companion/StoredOffset.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "Foundation/FatalError.h"
#include "Platform/Clock/FixedClock.h"
#include "WidgetExtension/QuilloraWidgetBundle.h"
#include "WidgetExtension/ScheduleWidgetDayOffsetStore.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Companion {

namespace DayOffsetStore = WidgetExtension::ScheduleWidgetDayOffsetStore;
using WidgetExtension::ScheduleWidgetServices;

namespace {

ShownDay timelineOf(ScheduleWidgetServices const& services, Foundation::TaskLoop& loop) {
    WidgetExtension::QuilloraWidgetBundle const bundle(services);
    auto const provider = bundle.body().front().timelineProvider();
    std::optional<Platform::Timeline<WidgetExtension::ScheduleWidgetEntry>> timeline;
    // The same entry serves every family.
    provider->getTimeline({.family = Platform::WidgetFamily::systemLarge},
                          [&timeline](auto answer) { timeline = std::move(answer); });
    loop.run();
    if (!timeline || timeline->entries.empty()) Foundation::fatalError("the timeline provider gave no entry");
    return {.entry = std::move(timeline->entries.front()), .policy = timeline->policy};
}

// Asked from the day itself, of which the provider then fetches all.
ShownDay dayFromItself(ScheduleWidgetServices const& services, Foundation::TaskLoop& loop,
                       std::int64_t offset) {
    auto const now = services.clock->now();
    auto const date = services.region->currentCalendar().dateByAddingDays(offset, now);
    if (!date) throw CommandError::wrongUse(Texts::noSuchDay(offset));

    auto there = withStoredOffset(services, 0);
    there.clock = std::make_shared<Platform::FixedClock>(*date);
    auto day = timelineOf(there, loop);
    day.entry.dayOffset = offset;
    // The policy was made as of that day; the day is looked at now.
    if (day.policy.afterDate)
        day.policy = Platform::TimelineReloadPolicy::after(
            now.addingTimeInterval(day.policy.afterDate->timeIntervalSince(*date)));
    return day;
}

} // namespace

std::vector<CommandOption> withDayChoice(std::vector<CommandOption> others) {
    std::vector<CommandOption> options = {{.name = "--offset",
                                           .valueName = "N",
                                           .help = Texts::text("day-option-offset"),
                                           .kind = ValueKind::number,
                                           .excludes = {"--day"}},
                                          {.name = "--day",
                                           .valueName = "DATE",
                                           .help = Texts::text("day-option-day"),
                                           .kind = ValueKind::day}};
    std::ranges::move(others, std::back_inserter(options));
    return options;
}

DayChoice dayChoice(ArgumentValues const& values) {
    DayChoice choice;
    if (auto const text = values.option("--offset")) choice.offset = wholeNumber("--offset", *text);
    if (auto const text = values.option("--day")) choice.day = civilDay("--day", *text);
    return choice;
}

std::optional<std::int64_t> offsetOf(DayChoice const& choice, ScheduleWidgetServices const& services) {
    if (!choice.day) return choice.offset;
    auto const today = services.region->currentCalendar().day(services.clock->now());
    return (*choice.day - today).count();
}

ShownDay shownDay(ScheduleWidgetServices const& services, Foundation::TaskLoop& loop,
                  std::optional<std::int64_t> offset) {
    if (!offset) return timelineOf(services, loop);
    bool const isInReach = *offset >= -DayOffsetStore::maxOffset && *offset <= DayOffsetStore::maxOffset;
    return isInReach ? timelineOf(withStoredOffset(services, *offset), loop)
                     : dayFromItself(services, loop, *offset);
}

ShownDay completeDay(ScheduleWidgetServices const& services, Foundation::TaskLoop& loop,
                     std::optional<std::int64_t> offset) {
    auto const chosen = offset.value_or(DayOffsetStore::load(*services.files));
    bool const isOutermost = chosen == -DayOffsetStore::maxOffset || chosen == DayOffsetStore::maxOffset;
    return isOutermost ? dayFromItself(services, loop, chosen) : shownDay(services, loop, offset);
}

Platform::FaceLayout faceOf(ScheduleWidgetServices const& services, ShownDay const& day,
                            Platform::WidgetFamily family, Platform::ColorScheme scheme) {
    WidgetExtension::QuilloraWidgetBundle const bundle(services);
    return bundle.body().front().content(day.entry, family, scheme).layout();
}

} // namespace Companion
