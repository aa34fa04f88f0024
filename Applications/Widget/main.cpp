#include "Applications/Composition/LiveServices.h"
#include "Applications/Watching/CalendarWatches.h"
#include "Applications/Watching/PreferenceWatches.h"
#include "Applications/Widget/CalendarHealth.h"
#include "Applications/Widget/DayPresses.h"
#include "Applications/Widget/DesktopLooks.h"
#include "Applications/Widget/EntryChanges.h"
#include "Applications/Widget/FaceContent.h"
#include "Applications/Widget/FirstFrame.h"
#include "Applications/Widget/Notices.h"
#include "Applications/Widget/Texts.h"
#include "Applications/Widget/WidgetOptions.h"
#include "Foundation/Locale.h"
#include "Meetings/MeetConfigEnum.h"
#include "Platform/Appearance/PortalAppearanceWatch.h"
#include "Platform/Clock/SystemRegionSettings.h"
#include "Platform/Desktop/Display.h"
#include "Platform/Desktop/SingleInstance.h"
#include "Platform/EventStore/Folder/CalendarStorePlaces.h"
#include "Platform/EventStore/Folder/ConsentRecord.h"
#include "Platform/Logging/Logger.h"
#include "Platform/WidgetHost/GLibMainLoop.h"
#include "Platform/WidgetHost/LocalWidgetCenter.h"
#include "Platform/WidgetHost/MainLoopExecutor.h"
#include "Platform/WidgetHost/ReloadListener.h"
#include "Platform/WidgetHost/SessionBusWidgetCenter.h"
#include "Platform/WidgetHost/StoppedWallClockTimer.h"
#include "Platform/WidgetHost/TaskThread.h"
#include "Platform/WidgetHost/TimerfdWallClockTimer.h"
#include "WidgetExtension/QuilloraWidgetBundle.h"

#include <malloc.h>

#include <csignal>
#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace {

using WidgetExtension::ScheduleWidgetEntry;

std::unique_ptr<Platform::WallClockTimer> makeTimer(Widget::WidgetOptions const& options) {
    if (options.fixedMoment) {
        return std::make_unique<Platform::StoppedWallClockTimer>();
    }
    return std::make_unique<Platform::TimerfdWallClockTimer>();
}

void fail(char const* text) {
    std::fprintf(stderr, "quillora-widget: %s\n", text);
}

// A question that was answered elsewhere, in a terminal for example, need not stand any longer.
void withdrawWhenAnswered(Platform::ConsentDialog& dialog, Composition::LiveServices& services) {
    auto const consent = services.consent();
    if (consent && consent->status() != Platform::EKAuthorizationStatus::notDetermined) {
        dialog.withdraw();
    }
}

int runWidget(Widget::WidgetOptions const& options, Foundation::Environment const& environment,
              Platform::SingleInstance* instance) {
    // The ground: the loop that owns the window, the thread that reads, and every live part of the product.
    Platform::GLibMainLoop mainLoop;
    Platform::MainLoopExecutor mainExecutor(mainLoop);
    auto const timer = makeTimer(options);
    Platform::FolderEvents folderEvents;
    auto const consentDialog = std::make_shared<Platform::ConsentDialog>(mainLoop, Widget::Texts::consent());
    std::function<void()> reloadHost; // Nothing before there is a host.
    Composition::LiveServices services(
        environment,
        {.fixedMoment = options.fixedMoment, .consentPrompt = consentDialog, .calendarsDiffer = [&] {
             mainLoop.invoke([&] {
                 if (reloadHost) reloadHost();
             });
         }});
    Platform::TaskThread taskThread;
    WidgetExtension::QuilloraWidgetBundle const bundle(
        services.scheduleWidgetServices(taskThread.executor()));
    WidgetExtension::ScheduleWidget const& widget = bundle.body().front();
    auto const provider = widget.timelineProvider();

    // The road: the host asks the provider, and what it answers becomes the face in the window.
    std::optional<Platform::FaceWindow> window;
    std::optional<Watching::PreferenceWatches> watches;
    std::optional<Widget::CalendarHealth> health;
    Widget::Notices notices;
    auto const showNotices = [&] { window->setNotice(notices.text(services.region()->currentCalendar())); };
    std::optional<Platform::ResidentHost<ScheduleWidgetEntry>> host;
    Widget::DesktopLooks looks(services.appearance(), options.colorScheme, mainLoop, [&] {
        window->setAccent(looks.accentColor());
        host->showAgain();
    });
    bool hasShownTheDay = false;
    auto const firstFrame = [&] {
        if (options.printsFirstFrame) {
            std::printf("%.0f\n", Widget::millisecondsSinceProcessStart());
            std::fflush(stdout);
        }
        if (options.quitsAfterFirstFrame) {
            mainLoop.quit();
        }
    };
    auto const show = [&](ScheduleWidgetEntry const& entry, Platform::EntryKind kind) {
        if (!window) {
            return; // Shown again once there is one.
        }
        window->show(Widget::faceContent(widget.content(entry, host->family(), looks.colorScheme()), kind,
                                         *services.htmlReader(), mainExecutor));
        if (kind == Platform::EntryKind::loaded) {
            watches->renew();
            if (health) {
                health->check();
            }
            if (std::exchange(notices.refusedDay, std::nullopt)) {
                showNotices();
            }
            if (!std::exchange(hasShownTheDay, true)) {
                window->afterNextFrame(firstFrame);
            }
        }
    };
    host.emplace(*provider, *services.clock(), *timer, mainLoop,
                 Platform::TimelineProviderContext{
                     .family = options.family.value_or(Platform::WidgetFamily::systemLarge)},
                 Platform::ResidentHostView<ScheduleWidgetEntry>{
                     .show = show,
                     .nextChange =
                         [&](ScheduleWidgetEntry const& entry, Foundation::Date now) {
                             return Widget::nextChange(entry, now, services.region()->currentCalendar());
                         },
                 });
    // Before the display is opened: the calendars are read meanwhile.
    host->start();
    if (!Platform::openDisplay(environment, options.placement)) {
        fail(Widget::Texts::noDisplay().c_str());
        return 1;
    }

    // The way back: presses here and elsewhere, and everything else that makes the face another one.
    auto const reload = [&] { host->reload(); };
    reloadHost = reload;
    consentDialog->onAnswer(reload);
    auto const quit = [&] { mainLoop.quit(); };
    auto const chooseFamily = [&](Platform::WidgetFamily family) { host->setFamily(family); };
    auto const center = std::make_shared<Platform::LocalWidgetCenter>(mainLoop, reload);
    Platform::Logger const logger(services.logSink(), std::string(Meetings::MeetConfigEnum::loggerSubsystem),
                                  "Widget");
    Widget::DayPresses const presses(taskThread.executor(), services.files(), center,
                                     [&](std::int64_t storedDay) {
                                         logger.error(Widget::Texts::storedDayIsOutOfRange(storedDay));
                                         mainLoop.invoke([&, storedDay] {
                                             notices.refusedDay = storedDay;
                                             showNotices();
                                         });
                                     });
    auto const places = services.calendarPlaces();
    std::optional<Watching::CalendarWatches> calendars;
    if (places) {
        calendars.emplace(folderEvents, *places, services.calendarConfiguration(), taskThread.executor(),
                          mainLoop, reload);
        calendars->update();
        health.emplace(services.calendarConfiguration(), taskThread.executor(), mainLoop, services.clock(),
                       [&](std::optional<Widget::CalendarTrouble> const& trouble) {
                           notices.calendarTrouble = trouble;
                           showNotices();
                       });
    }
    watches.emplace(
        folderEvents, *services.files(),
        places.transform([](auto const& known) { return known.configurationDirectory; }),
        Watching::PreferenceFiles{.shared = {"scheduleWidgetDayOffset.json", "hiddenCalendarIdentifiers.json",
                                             "enabledCalendarAccounts.json"},
                                  .configuration = {"calendar-store.json", "calendar-access.json"}},
        [&] {
            withdrawWhenAnswered(*consentDialog, services);
            host->reload();
            if (calendars) {
                calendars->update();
            }
        });
    auto const bus = Platform::sessionBusAddress(environment);
    Platform::ReloadListener const listener(bus, reload);
    Platform::PortalAppearanceWatch const appearanceWatch(bus, [&] { looks.askAgain(); });
    auto const interrupted = Platform::GLibSource::onSignal(SIGINT, quit);
    auto const terminated = Platform::GLibSource::onSignal(SIGTERM, quit);

    window.emplace(options.placement, Widget::Texts::window(),
                   Platform::FaceWindowActions{
                       .previousDay = [&] { presses.previousDay(); },
                       .nextDay = [&] { presses.nextDay(); },
                       .today = [&] { presses.today(); },
                       .reload = reload,
                       .quit = quit,
                       .chooseFamily = chooseFamily,
                   });
    if (instance != nullptr) {
        instance->serve({
            .activate = [&] { window->present(); },
            .previousDay = [&] { presses.previousDay(); },
            .nextDay = [&] { presses.nextDay(); },
            .today = [&] { presses.today(); },
            .reload = reload,
            .quit = quit,
            .chooseFamily = chooseFamily,
        });
    }
    window->setAccent(looks.accentColor());
    host->showAgain();
    window->present();
    mainLoop.run();
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
    Widget::Texts::useLanguages(Foundation::Locale::textLanguages(environment));
    auto const options =
        Widget::parseCommandLine(argc, argv, Platform::SystemRegionSettings(environment).currentCalendar());
    if (!options) {
        auto const& [exitCode, text] = options.error();
        if (exitCode == 0) {
            std::fputs(text.c_str(), stdout);
        } else {
            fail(text.c_str());
        }
        return exitCode;
    }
    if (options->fixedMoment) {
        // A picture of another moment stands beside the widget that shows the present.
        return runWidget(*options, environment, nullptr);
    }
    Platform::SingleInstance instance(environment);
    if (!instance.isFirst()) {
        instance.handOver(options->family);
        return 0;
    }
    return runWidget(*options, environment, &instance);
}
