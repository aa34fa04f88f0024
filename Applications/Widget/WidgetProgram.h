#pragma once

#include "Applications/Composition/LiveServices.h"
#include "Applications/Watching/CalendarWatches.h"
#include "Applications/Watching/PreferenceWatches.h"
#include "Applications/Widget/CalendarHealth.h"
#include "Applications/Widget/DayPresses.h"
#include "Applications/Widget/DesktopLooks.h"
#include "Applications/Widget/Notices.h"
#include "Applications/Widget/WidgetMemory.h"
#include "Applications/Widget/WidgetOptions.h"
#include "Foundation/Environment.h"
#include "Foundation/URL.h"
#include "Meetings/MeetEntity.h"
#include "Platform/Appearance/PortalAppearanceWatch.h"
#include "Platform/Desktop/ConsentDialog.h"
#include "Platform/Desktop/DetailDialog.h"
#include "Platform/Desktop/FaceWindow.h"
#include "Platform/Desktop/SingleInstance.h"
#include "Platform/WidgetHost/FolderWatch.h"
#include "Platform/WidgetHost/GLibMainLoop.h"
#include "Platform/WidgetHost/GLibSource.h"
#include "Platform/WidgetHost/LockListener.h"
#include "Platform/WidgetHost/MainLoopExecutor.h"
#include "Platform/WidgetHost/ReloadListener.h"
#include "Platform/WidgetHost/ResidentHost.h"
#include "Platform/WidgetHost/TaskThread.h"
#include "Platform/WidgetHost/WallClockTimer.h"
#include "Platform/Workspace/GIOWorkspace.h"
#include "WidgetExtension/QuilloraWidgetBundle.h"

#include <cstddef>
#include <cstdint>
#include <expected>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Widget {

/// The running widget: every live part of it, and what the parts tell each other. All but the reading of
/// calendars happens on the thread that runs it.
class WidgetProgram final {
public:
    WidgetProgram(Foundation::Environment const& environment, WidgetOptions const& options);
    WidgetProgram(WidgetProgram const&) = delete;
    WidgetProgram& operator=(WidgetProgram const&) = delete;

    /// Shows the day until somebody ends the program. What is asked of `instance`, if there is one, is done
    /// here. The error is a line for people: why there is nothing to show the day on. Called once.
    std::expected<void, std::string> run(Platform::SingleInstance* instance);

private:
    using Entry = WidgetExtension::ScheduleWidgetEntry;

    // The road: what the host is answered becomes the face in the window.
    void show(Entry const& entry, Platform::EntryKind kind);
    void loadedDayIsShown();
    void firstFrameIsPainted();
    void showNotices();
    void showNewLooks();

    // The way back: whatever makes the face another one.
    void followPresses();
    void followCalendars();
    void followPreferences();
    void followTheDesktop();
    void followSignals();
    void lockChanged(bool isLockedNow);
    void preferencesChanged();
    void withdrawAnsweredQuestion();
    void pressIsDone(PressOutcome const& outcome);
    void reloadByHand();

    // A meet that the person wants to see whole.
    void openMeet(std::size_t row);
    void startCalendarProgram();
    void openLink(Foundation::URL const& link);

    void openWindow();
    void chooseFamily(Platform::WidgetFamily family);
    void serve(Platform::SingleInstance& instance);
    void reload() { host.reload(); }
    void quit() { mainLoop.quit(); }

    WidgetOptions const options;

    // The ground: the loop that owns the window, the thread that reads, and every live part of the product.
    Platform::GLibMainLoop mainLoop;
    Platform::MainLoopExecutor mainExecutor;
    std::unique_ptr<Platform::WallClockTimer> const timer;
    Platform::FolderEvents folderEvents;
    std::shared_ptr<Platform::ConsentDialog> const consentDialog;
    Composition::LiveServices services;
    Platform::TaskThread taskThread;

    // The road.
    WidgetExtension::QuilloraWidgetBundle const bundle;
    WidgetExtension::ScheduleWidget const& widget;
    std::unique_ptr<WidgetExtension::ScheduleTimelineProvider> const provider;
    Notices notices;
    bool hasShownTheDay = false;
    bool isLocked = false;                      // The session; its day is nobody's then.
    std::optional<Platform::FaceWindow> window; // Absent until the display is open, as is the way back.
    std::vector<std::optional<Meetings::MeetEntity>> shownMeets; // One for each row of the face.
    Platform::DetailDialog meetDialog;
    Platform::GIOWorkspace workspace;
    DesktopLooks looks;
    WidgetMemory memory;
    Platform::ResidentHost<Entry> host;

    // The way back. Without a home there are no calendars to follow.
    std::optional<DayPresses> presses;
    std::optional<CalendarHealth> health;
    std::optional<Watching::CalendarWatches> calendars;
    std::optional<Watching::PreferenceWatches> preferences;
    std::optional<Platform::ReloadListener> reloadListener;
    std::optional<Platform::PortalAppearanceWatch> appearanceWatch;
    std::optional<Platform::LockListener> lockListener;
    Platform::GLibSource interrupted;
    Platform::GLibSource terminated;
};

} // namespace Widget
