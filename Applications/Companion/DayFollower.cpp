#include "Applications/Companion/DayFollower.h"

#include "Applications/Companion/StoredOffset.h"
#include "Applications/Watching/CalendarWatches.h"
#include "Applications/Watching/EntryChanges.h"
#include "Applications/Watching/PreferenceWatches.h"
#include "Platform/EventStore/Folder/CalendarStorePlaces.h"
#include "Platform/SessionBus/SessionBusAddress.h"
#include "Platform/WidgetHost/GLibMainLoop.h"
#include "Platform/WidgetHost/GLibSource.h"
#include "Platform/WidgetHost/ReloadListener.h"
#include "Platform/WidgetHost/ResidentHost.h"
#include "Platform/WidgetHost/TaskThread.h"
#include "Platform/WidgetHost/TimerfdWallClockTimer.h"
#include "WidgetExtension/QuilloraWidgetBundle.h"

#include <algorithm>
#include <csignal>
#include <utility>

namespace Companion {

using WidgetExtension::ScheduleWidgetEntry;

namespace {

// When a meet on today's page begins, if that comes before `change`.
Foundation::Date firstOf(Foundation::Date change, ScheduleWidgetEntry const& entry, Foundation::Date now,
                         Foundation::Calendar const& calendar) {
    if (!calendar.isDateInSameDay(entry.date, now)) return change;
    for (auto const& meeting : entry.meetings)
        if (!meeting.metIsAllDay && meeting.metDate > now && meeting.metDate < change)
            change = meeting.metDate;
    return change;
}

Watching::PreferenceFiles followedFiles() {
    return {.shared = {"scheduleWidgetDayOffset.json", "hiddenCalendarIdentifiers.json",
                       "enabledCalendarAccounts.json"},
            .configuration = {"calendar-store.json", "calendar-access.json"}};
}

} // namespace

// In the order of use: what stands below ends first.
struct DayFollower::State {
    State(Composition::LiveServices& live, FollowedDay followed)
        : live(live),
          day(std::move(followed)),
          services(live.scheduleWidgetServices(taskThread.executor())),
          bundle(day.offset ? withStoredOffset(services, *day.offset) : services),
          provider(bundle.body().front().timelineProvider()),
          host(*provider, *live.clock(), timer, mainLoop,
               Platform::TimelineProviderContext{.family = day.family},
               Platform::ResidentHostView<ScheduleWidgetEntry>{
                   .show = [this](ScheduleWidgetEntry const& entry,
                                  Platform::EntryKind kind) { show(entry, kind); },
                   .nextChange = [this](ScheduleWidgetEntry const& entry,
                                        Foundation::Date now) { return nextChange(entry, now); },
               }) {}

    void show(ScheduleWidgetEntry const& entry, Platform::EntryKind kind) {
        // A placeholder knows nothing of the day yet.
        if (kind == Platform::EntryKind::placeholder) return;
        if (preferences) preferences->renew();
        day.show(bundle.body().front().content(entry, day.family, Platform::ColorScheme::light));
    }

    std::optional<Foundation::Date> nextChange(ScheduleWidgetEntry const& entry, Foundation::Date now) const {
        auto const calendar = services.region->currentCalendar();
        auto const change = Watching::nextChange(entry, now, calendar);
        return day.changesAtStarts ? firstOf(change, entry, now, calendar) : change;
    }

    void watch() {
        auto const places = live.calendarPlaces();
        if (places) {
            calendars.emplace(folderEvents, *places, live.calendarConfiguration(), taskThread.executor(),
                              mainLoop, [this] { host.reload(); });
            calendars->update();
        }
        preferences.emplace(folderEvents, *live.files(),
                            places.transform([](auto const& known) { return known.configurationDirectory; }),
                            followedFiles(), [this] {
                                host.reload();
                                if (calendars) calendars->update();
                            });
        requests.emplace(Platform::sessionBusAddress(live.environment()), [this] { host.reload(); });
    }

    Composition::LiveServices& live;
    FollowedDay day;
    Platform::GLibMainLoop mainLoop;
    Platform::TimerfdWallClockTimer timer;
    Platform::FolderEvents folderEvents;
    Platform::TaskThread taskThread;
    WidgetExtension::ScheduleWidgetServices services;
    WidgetExtension::QuilloraWidgetBundle bundle;
    std::unique_ptr<WidgetExtension::ScheduleTimelineProvider> provider;
    Platform::ResidentHost<ScheduleWidgetEntry> host;
    std::optional<Watching::CalendarWatches> calendars;
    std::optional<Watching::PreferenceWatches> preferences;
    std::optional<Platform::ReloadListener> requests;
    bool hasQuit = false;
};

DayFollower::DayFollower(Composition::LiveServices& live, FollowedDay day)
    : state(std::make_unique<State>(live, std::move(day))) {}

DayFollower::~DayFollower() = default;

void DayFollower::run() {
    auto const end = [this] { quit(); };
    auto const interrupted = Platform::GLibSource::onSignal(SIGINT, end);
    auto const terminated = Platform::GLibSource::onSignal(SIGTERM, end);
    auto const hungUp = Platform::GLibSource::onSignal(SIGHUP, end);
    state->watch();
    state->host.start();
    if (!state->hasQuit) state->mainLoop.run();
}

void DayFollower::quit() {
    state->hasQuit = true;
    state->mainLoop.quit();
}

void DayFollower::showAgain() {
    state->host.showAgain();
}

void DayFollower::reload() {
    state->host.reload();
}

} // namespace Companion
