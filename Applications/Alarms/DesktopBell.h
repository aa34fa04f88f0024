#pragma once

#include "Applications/Alarms/Alarm.h"
#include "Applications/Composition/AlarmAnnouncer.h"
#include "Foundation/Task.h"
#include "Platform/UserNotifications/UserNotificationCenter.h"
#include "Platform/Workspace/Workspace.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Alarms {

/// What the bell needs from around it. The references outlive it.
struct DesktopBellParts {
    Platform::UserNotificationCenter& notifications;
    Platform::Workspace& workspace;
    std::shared_ptr<Composition::AlarmAnnouncer const> announcer;
    Foundation::TaskExecutor executor; ///< Where announcements are made, one after another.
    /// What there is to say of a meet besides its name, a line each.
    std::function<std::vector<std::string>(Meetings::MeetEntity const&)> details;
    std::function<void(std::string const&)> report; ///< What went wrong, for the log; from any thread.
};

/// What the person's answers are about.
struct DesktopBellAnswers {
    std::function<std::optional<Alarm>(std::string const& identifier)> alarm;
    std::function<void(std::string const& identifier)> snooze;
};

/// Rings: shows a notification with "open", "snooze" and "dismiss", and makes the meet heard. Where a
/// sentence cannot be spoken a chime stands in for it.
class DesktopBell final {
public:
    DesktopBell(DesktopBellParts parts, DesktopBellAnswers answers);
    DesktopBell(DesktopBell const&) = delete;
    DesktopBell& operator=(DesktopBell const&) = delete;
    ~DesktopBell();

    void ring(Alarm const& alarm);

private:
    void answered(std::string const& identifier, std::string const& action);
    void open(Meetings::MeetEntity const& meet);

    DesktopBellParts parts;
    DesktopBellAnswers answers;
};

/// The link under which one takes part in a meet: its own, or its place where that is one. Only web links:
/// what a calendar file names must not start any other program.
std::optional<Foundation::URL> linkOf(Meetings::MeetEntity const& meet);

} // namespace Alarms
