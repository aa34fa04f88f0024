#include "Applications/Companion/Doctor/Examinations.h"

#include "Applications/Companion/Doctor/PreferenceFault.h"
#include "Applications/Companion/DoctorTexts.h"
#include "Applications/Companion/Support.h"
#include "Applications/Composition/AlarmServiceLock.h"
#include "Meetings/Alarms/AlarmEnabledCalendarsStore.h"
#include "Platform/Defaults/FileUserDefaults.h"
#include "Platform/EventStore/Folder/CalendarStorePlaces.h"
#include "Platform/SessionBus/BusNameState.h"
#include "Platform/UserNotifications/SessionBusUserNotificationCenter.h"

namespace Companion::Doctor {

namespace {

// Whether the settings count: damaged ones name no calendar, though the person chose some.
bool examineSettings(Composition::LiveServices& services, Findings& findings) {
    auto const file =
        services.calendarPlaces()->configurationDirectory / Platform::FileUserDefaults::fileName;
    auto const fault = preferenceFault(*services.files(), file, Platform::GuardedPreference::Form::object);
    if (fault)
        findings.broken("settings", Texts::settingsDoNotCount(shownPath(file), fault->reason), fault->mend);
    else
        findings.works("settings", Texts::settingsAreRead(shownPath(file)));
    return !fault;
}

// Who chose no calendar misses no announcement.
void examineService(bool isRunning, std::size_t announced, Findings& findings) {
    if (announced == 0) {
        findings.note("alarms", Texts::nothingIsAnnounced(), Texts::addAnnouncedCalendarCommand());
    } else if (isRunning) {
        findings.works("alarms", Texts::alarmServiceRuns(announced));
    } else {
        findings.broken("alarms", Texts::noAlarmServiceRuns(announced), Texts::startAlarmsCommand());
    }
}

// Without a server an alarm is still heard. A bus that does not answer has a finding of its own.
void examineServer(Foundation::Environment const& environment, std::size_t announced, Findings& findings) {
    auto const* const name = Platform::SessionBusUserNotificationCenter::serverName;
    switch (Platform::busNameState(environment, name)) {
    case Platform::BusNameState::noBus:
    case Platform::BusNameState::busUnreachable:
        findings.note("notifications", Texts::noBusForNotifications());
        return;
    case Platform::BusNameState::absent:
        if (announced == 0)
            findings.note("notifications", Texts::noNotificationServer());
        else
            findings.broken("notifications", Texts::noNotificationServer(), Texts::notificationsCommand());
        return;
    case Platform::BusNameState::startable:
        findings.works("notifications", Texts::notificationServerStarts());
        return;
    case Platform::BusNameState::owned:
        findings.works("notifications", Texts::notificationServerRuns());
        return;
    }
}

} // namespace

void examineAlarms(Composition::LiveServices& services, Findings& findings) {
    auto const announced = Meetings::AlarmEnabledCalendarsStore::load(*services.userDefaults()).size();
    if (examineSettings(services, findings))
        examineService(Composition::AlarmServiceLock::isHeld(*services.calendarPlaces()), announced,
                       findings);
    examineServer(services.environment(), announced, findings);
}

} // namespace Companion::Doctor
