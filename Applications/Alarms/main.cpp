#include "Applications/Alarms/AlarmService.h"
#include "Applications/Alarms/CalendarMeets.h"
#include "Applications/Alarms/DesktopBell.h"
#include "Applications/Alarms/Texts.h"
#include "Applications/Composition/AlarmServiceLock.h"
#include "Applications/Composition/LiveHTMLReader.h"
#include "Applications/Composition/LiveServices.h"
#include "Applications/Watching/CalendarWatches.h"
#include "Applications/Watching/PreferenceWatches.h"
#include "Foundation/Locale.h"
#include "Meetings/Alarms/AlarmEnabledCalendarsStore.h"
#include "Meetings/MeetConfigEnum.h"
#include "Platform/Clock/RegionSettings.h"
#include "Platform/Defaults/FileUserDefaults.h"
#include "Platform/EventStore/Folder/CalendarStorePlaces.h"
#include "Platform/Files/PosixFileLocks.h"
#include "Platform/SessionBus/SessionBusAddress.h"
#include "Platform/UserNotifications/SessionBusUserNotificationCenter.h"
#include "Platform/WidgetHost/GLibMainLoop.h"
#include "Platform/WidgetHost/MainLoopExecutor.h"
#include "Platform/WidgetHost/TaskThread.h"
#include "Platform/WidgetHost/TimerfdWallClockTimer.h"
#include "Platform/WidgetHost/WidgetBus.h"
#include "Platform/Workspace/GIOWorkspace.h"
#include "WidgetExtension/MeetSummary.h"

#include <malloc.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <optional>
#include <utility>

namespace {

void fail(std::string const& text) {
    std::fprintf(stderr, "quillora-alarms: %s\n", text.c_str());
}

// What a notification tells besides the name: times, place, the description's first line.
std::vector<std::string> details(Meetings::MeetEntity meet, Composition::LiveServices& services,
                                 Platform::MainExecutor& mainExecutor) {
    meet.metName.clear(); // The title says it.
    return WidgetExtension::meetSummaryLines(meet, services.region()->currentCalendar(),
                                             Composition::liveHTMLReader(), mainExecutor);
}

void runAlarms(Composition::LiveServices& services, Platform::CalendarStorePlaces const& places) {
    // The ground: the loop that owns the alarms, a thread that reads calendars and one that speaks.
    Platform::GLibMainLoop mainLoop;
    Platform::MainLoopExecutor mainExecutor(mainLoop);
    Platform::TimerfdWallClockTimer timer;
    Platform::FolderEvents folderEvents;
    Platform::TaskThread calendarThread;
    Platform::TaskThread audioThread;
    auto const bus = Platform::sessionBusAddress(services.environment());
    Platform::SessionBusUserNotificationCenter notifications(
        bus, {.name = "Quillora", .desktopEntry = Platform::WidgetBus::applicationIdentifier});
    Platform::GIOWorkspace workspace(bus);
    Platform::Logger const logger(services.logSink(), std::string(Meetings::MeetConfigEnum::loggerSubsystem),
                                  "AlarmService");
    auto const report = [logger](std::string const& text) { logger.error(text); };
    auto const defaults = services.userDefaults();

    // The road: the service plans what the calendars hold, the bell rings it, answers come back.
    std::optional<Alarms::AlarmService> service;
    Alarms::DesktopBell bell(
        {.notifications = notifications,
         .workspace = workspace,
         .announcer = Composition::AlarmAnnouncer::live(services),
         .executor = audioThread.executor(),
         .details = [&](auto const& meet) { return details(meet, services, mainExecutor); },
         .report = report},
        {.alarm = [&](auto const& identifier) { return service->rungAlarm(identifier); },
         .snooze = [&](auto const& identifier) { service->snooze(identifier); }});
    service.emplace(
        *services.clock(), timer, mainLoop, Alarms::AlarmMemory(defaults),
        Alarms::AlarmServiceRoads{
            .askMeets = Alarms::askingCalendars(services.scheduleWidgetServices(calendarThread.executor())),
            .announcedCalendars = [&] { return Meetings::AlarmEnabledCalendarsStore::load(*defaults); },
            .ring = [&](Alarms::Alarm const& alarm) { bell.ring(alarm); },
            .report = report});

    // Whatever makes the plan another one.
    auto const replan = [&] { service->replan(); };
    Watching::CalendarWatches calendars(folderEvents, places, services.calendarConfiguration(),
                                        calendarThread.executor(), mainLoop, replan);
    calendars.update();
    Watching::PreferenceWatches const preferences(
        folderEvents, *services.files(), places.configurationDirectory,
        {.shared = {"enabledCalendarAccounts.json"},
         .configuration = {"calendar-store.json", "calendar-access.json",
                           std::string(Platform::FileUserDefaults::fileName)}},
        [&] {
            replan();
            calendars.update();
        });
    auto const quit = [&] { mainLoop.quit(); };
    auto const interrupted = Platform::GLibSource::onSignal(SIGINT, quit);
    auto const terminated = Platform::GLibSource::onSignal(SIGTERM, quit);
    service->start();
    mainLoop.run();
}

int run(Foundation::Environment const& environment) {
    Composition::LiveServices services(environment);
    auto const places = services.calendarPlaces();
    if (!places) {
        fail(Alarms::Texts::noHome());
        return 1;
    }
    auto const lockFile = Composition::AlarmServiceLock::file(*places);
    auto const unmade = services.files()->createDirectory(places->configurationDirectory);
    auto const held = Platform::PosixFileLocks().take(lockFile, Composition::AlarmServiceLock::patience);
    if (!held && held.error() == std::errc::timed_out) {
        fail(Alarms::Texts::runsAlready());
        return 0;
    }
    if (!held) {
        fail(Alarms::Texts::cannotLock(lockFile.string(), (unmade ? unmade : held.error()).message()));
        return 1;
    }
    runAlarms(services, *places);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    // One heap for all threads: they hardly ever want memory at once, and each heap of its own costs some.
    mallopt(M_ARENA_MAX, 1);
    // Writing to a program that has gone, or to a full quota, is an error of that write and not our end.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);

    auto const environment = Foundation::Environment::ofProcess();
    Alarms::Texts::useLanguages(Foundation::Locale::textLanguages(environment));
    // A program may be started without even its own name.
    std::vector<std::string> const words(argv + std::min(argc, 1), argv + argc);
    if (words.empty()) return run(environment);
    if (words.front() == "--help" || words.front() == "-h") {
        std::fputs(Alarms::Texts::help().c_str(), stdout);
        return 0;
    }
    if (words.front() == "--version") {
        std::fputs(Alarms::Texts::version().c_str(), stdout);
        return 0;
    }
    fail(Alarms::Texts::unknownWord(words.front()));
    return 2;
}
